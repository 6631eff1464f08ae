#include "Icons.h"

#include "PackageModel.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace Explorer {

using ZR::RefT;
using ZR::VOM::GUI::ObjectClassIconDB;
using ZR::VOM::GUI::ObjectFieldIntIconDB;
using ZR::VOM::GUI::ObjectIconDB;

namespace {

using Glyph = void (*)(QPainter &painter, QColor const &color);

constexpr int grid = 24; // Glyphs are drawn on a square of this many units.

void paintBox(QPainter &painter, QColor const &color)
{
    QPainterPath body, lid;
    body.addRoundedRect(QRectF(3, 8, 18, 13), 2, 2);
    lid.moveTo(6, 3);
    lid.lineTo(18, 3);
    lid.lineTo(21, 9);
    lid.lineTo(3, 9);
    lid.closeSubpath();
    painter.fillPath(body, color);
    painter.fillPath(lid, color.lighter(130));
    painter.fillRect(QRectF(10, 3, 4, 10), QColor(255, 255, 255, 200));
}

void paintFolder(QPainter &painter, QColor const &color)
{
    QPainterPath back, front;
    back.addRoundedRect(QRectF(2, 4, 10, 8), 2, 2);
    back.addRoundedRect(QRectF(2, 6, 20, 14), 2, 2);
    front.addRoundedRect(QRectF(2, 9, 20, 11), 2, 2);
    painter.fillPath(back.simplified(), color.darker(115));
    painter.fillPath(front, color.lighter(112));
}

void paintPerson(QPainter &painter, QColor const &color)
{
    QPainterPath shoulders;
    shoulders.moveTo(3, 21);
    shoulders.cubicTo(3, 11.5, 21, 11.5, 21, 21);
    shoulders.closeSubpath();
    painter.fillPath(shoulders, color);
    QPainterPath head;
    head.addEllipse(QPointF(12, 8), 5, 5);
    painter.fillPath(head, color.lighter(125));
}

void paintPage(QPainter &painter, QColor const &color)
{
    QPainterPath page, fold;
    page.moveTo(5, 2);
    page.lineTo(14, 2);
    page.lineTo(19, 7);
    page.lineTo(19, 22);
    page.lineTo(5, 22);
    page.closeSubpath();
    fold.moveTo(14, 2);
    fold.lineTo(14, 7);
    fold.lineTo(19, 7);
    fold.closeSubpath();
    painter.fillPath(page, color);
    painter.fillPath(fold, color.lighter(150));
    for (const int y : {10, 13, 16})
        painter.fillRect(QRectF(8, y, y == 16 ? 5 : 8, 1.5), Qt::white);
}

/// Draws a glyph at the size at hand, so that it is sharp at every size and scale.
class GlyphEngine : public QIconEngine {
public:
    GlyphEngine(Glyph drawnGlyph, QColor const &drawnColor)
        : glyph(drawnGlyph)
        , color(drawnColor)
    {
    }

    void paint(QPainter *painter, QRect const &rect, QIcon::Mode mode, QIcon::State) override
    {
        const int edge = std::min(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.x() + (rect.width() - edge) / 2.0,
                           rect.y() + (rect.height() - edge) / 2.0);
        painter->scale(double(edge) / grid, double(edge) / grid);
        const int gray = qGray(color.rgb());
        glyph(*painter, mode == QIcon::Disabled ? QColor(gray, gray, gray) : color);
        painter->restore();
    }

    QPixmap pixmap(QSize const &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new GlyphEngine(*this); }

private:
    Glyph glyph;
    QColor color;
};

struct Entry {
    Glyph glyph;
    QRgb color;
    char const *meaning;
};

struct ClassEntry : Entry {
    char const *className;
};

struct PriorityEntry : Entry {
    Priority priority;
};

constexpr ClassEntry classEntries[] = {{{paintBox, 0xff3d7fc1, "Package"}, "Package"},
                                       {{paintFolder, 0xffe0a43a, "Section"}, "Section"},
                                       {{paintPerson, 0xff8c6cc0, "Maintainer"}, "Maintainer"},
                                       {{paintPage, 0xff4a9a8c, "Details"}, "Details"}};

constexpr PriorityEntry priorityEntries[] = {{{paintBox, 0xffd0473d, "Required"}, Required},
                                             {{paintBox, 0xffe68a2e, "Important"}, Important},
                                             {{paintBox, 0xff5aa352, "Standard"}, Standard},
                                             {{paintBox, 0xff3d7fc1, "Optional"}, Optional},
                                             {{paintBox, 0xff8a8f98, "Extra"}, Extra}};

QIcon makeIcon(Entry const &entry)
{
    return QIcon(new GlyphEngine(entry.glyph, QColor(entry.color)));
}

} // namespace

RefT<ObjectIconDB> makeIconDB(IconRule rule)
{
    if (rule == IconRule::None)
        return {};
    const RefT<ObjectClassIconDB> byClass(new ObjectClassIconDB);
    for (ClassEntry const &entry : classEntries)
        byClass->add(entry.className, makeIcon(entry));
    if (rule == IconRule::ByClass)
        return byClass;
    const RefT<ObjectFieldIntIconDB> byPriority(new ObjectFieldIntIconDB);
    byPriority->setField("priority");
    for (PriorityEntry const &entry : priorityEntries)
        byPriority->add(entry.priority, makeIcon(entry));
    byPriority->setObjIconDB(byClass);
    return byPriority;
}

std::vector<std::pair<QIcon, QString>> iconLegend(IconRule rule)
{
    std::vector<std::pair<QIcon, QString>> legend;
    const auto append = [&](Entry const &entry) {
        legend.emplace_back(makeIcon(entry), QString::fromLatin1(entry.meaning));
    };
    if (rule == IconRule::ByPriority)
        for (PriorityEntry const &entry : priorityEntries)
            append(entry);
    for (ClassEntry const &entry : classEntries)
        if (rule == IconRule::ByClass || (rule == IconRule::ByPriority && entry.glyph != &paintBox))
            append(entry);
    return legend;
}

QIcon windowIcon()
{
    return makeIcon(priorityEntries[1]);
}

} // namespace Explorer
