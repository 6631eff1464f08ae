#include "designer/icons.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace Designer {
namespace {

// Icons are drawn on a square of this edge, and scaled from there.
constexpr int edge = 16;

class Drawing {
public:
    Drawing()
    {
        pixmap.fill(Qt::transparent);
        painter.begin(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.setPen(QPen(palette.color(QPalette::Text), 1));
        painter.setBrush(palette.color(QPalette::Base));
    }

    void box(double x, double y, double width, double height)
    {
        painter.drawRect(QRectF(x, y, width, height));
    }
    void mark(double x, double y, double size)
    {
        painter.fillRect(QRectF(x, y, size, size), palette.color(QPalette::Highlight));
    }
    void line(double x1, double y1, double x2, double y2)
    {
        painter.drawLine(QPointF(x1, y1), QPointF(x2, y2));
    }
    void text(QString const &shown)
    {
        QFont font = painter.font();
        font.setPixelSize(8);
        painter.setFont(font);
        painter.drawText(QRectF(0, 0, edge, edge), Qt::AlignCenter, shown);
    }
    QIcon icon()
    {
        painter.end();
        return QIcon(pixmap);
    }

private:
    static constexpr int scale = 4;
    const QPalette palette = QGuiApplication::palette();
    QPixmap pixmap{scale * edge, scale *edge};
    QPainter painter;
};

} // namespace

QIcon graphIcon()
{
    Drawing drawing;
    drawing.line(8, 5, 4, 11);
    drawing.line(8, 5, 12, 11);
    drawing.box(5.5, 1.5, 5, 4);
    drawing.box(1.5, 10.5, 5, 4);
    drawing.box(9.5, 10.5, 5, 4);
    return drawing.icon();
}

QIcon treeIcon()
{
    Drawing drawing;
    drawing.mark(2, 2, 3);
    drawing.line(7, 3.5, 14, 3.5);
    drawing.mark(5, 7, 3);
    drawing.line(10, 8.5, 14, 8.5);
    drawing.mark(5, 12, 3);
    drawing.line(10, 13.5, 14, 13.5);
    return drawing.icon();
}

QIcon secondTreeIcon()
{
    Drawing drawing;
    drawing.line(3.5, 3.5, 3.5, 13.5);
    for (const double y : {8.5, 13.5}) {
        drawing.line(3.5, y, 7, y);
        drawing.mark(6, y - 1.5, 3);
        drawing.line(11, y, 15, y);
    }
    drawing.mark(2, 2, 3);
    drawing.line(7, 3.5, 15, 3.5);
    return drawing.icon();
}

QIcon firstTreeIcon()
{
    Drawing drawing;
    drawing.box(0.5, 0.5, 15, 15);
    drawing.mark(2, 2, 3);
    drawing.line(7, 3.5, 13, 3.5);
    drawing.mark(5, 7, 3);
    drawing.line(10, 8.5, 13, 8.5);
    drawing.mark(5, 11, 3);
    drawing.line(10, 12.5, 13, 12.5);
    return drawing.icon();
}

QIcon slotIcon()
{
    Drawing drawing;
    drawing.box(1.5, 4.5, 13, 7);
    drawing.mark(3, 6, 4);
    drawing.line(9, 8, 13, 8);
    return drawing.icon();
}

QIcon pathsIcon()
{
    Drawing drawing;
    for (const int y : {2, 7, 12}) {
        drawing.mark(1, y, 3);
        drawing.line(4, y + 1.5, 7, y + 1.5);
        drawing.mark(7, y, 3);
        drawing.line(10, y + 1.5, 12, y + 1.5);
        drawing.mark(12, y, 3);
    }
    return drawing.icon();
}

QIcon realIcon()
{
    Drawing drawing;
    drawing.box(0.5, 3.5, 15, 9);
    drawing.text("0.5");
    return drawing.icon();
}

} // namespace Designer
