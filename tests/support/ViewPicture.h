#pragma once

// Views as pictures.

#include "support/Things.h"
#include "support/ViewProbe.h"

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QProxyStyle>
#include <QScrollBar>

#include <algorithm>
#include <functional>
#include <string>

namespace ZR::VOM::GUI {

/// Fusion with measures that don't hang on the platform. Views take their icon size from the
/// application's style when they are made.
class MeasuredStyle : public QProxyStyle {
public:
    explicit MeasuredStyle(int iconEdge = 24, int barThickness = 10)
        : QProxyStyle("fusion")
        , iconSize(iconEdge)
        , barExtent(barThickness)
    {
    }
    int pixelMetric(PixelMetric metric, QStyleOption const *option,
                    QWidget const *widget) const override
    {
        if (metric == PM_ListViewIconSize)
            return iconSize;
        if (metric == PM_ScrollBarExtent)
            return barExtent;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

private:
    const int iconSize, barExtent;
};

/// What the view paints now, shown or not.
inline QImage pictureOf(ObjectGraphView &view)
{
    return view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The least rectangle that holds all pixels in which two pictures of equal size differ.
inline QRect differenceOf(QImage const &a, QImage const &b)
{
    QRect rect;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                rect |= QRect(x, y, 1, 1);
    return rect;
}

/// The box of a node, in content coordinates.
inline QRect boxOf(ObjectGraphView const &view, Graph::Node const &node)
{
    const int band = GraphViewAccess::iconSize(view);
    return {node.x - node.width / 2, node.y - node.height / 2 + band, node.width,
            node.height - 2 * band};
}

/// Where all pixels lie that aren't of a colour.
inline QRect otherThan(QRgb color, QImage const &picture)
{
    QImage plain(picture.size(), QImage::Format_RGB32);
    plain.fill(color);
    return differenceOf(picture, plain);
}

/// Whether all pixels of an area are of a colour.
inline bool isAll(QImage const &picture, QRect const &area, QRgb color)
{
    return picture.rect().contains(area) && otherThan(color, picture.copy(area)).isNull();
}

inline void setColor(ObjectGraphView &view, char const *name, QColor const &color)
{
    view.setProperty(name, color);
}

/// Objects by letter in a view of one background colour, without a frame and bars, so that the
/// viewport is as large as the widget. All nodes are visible and stand at (0, 0), without a layout.
struct PaintScene {
    explicit PaintScene(std::string const &letters, QSize const &size = {300, 300})
        : names(letters)
        , things(makeThings(letters))
    {
        view.setFrameShape(QFrame::NoFrame);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setFieldName("name");
        view.setTypeName(false);
        setColor(view, "colorBg0", background);
        setColor(view, "colorBg1", background);
        view.add(things, false);
        // Layouts hang on the order of the nodes' addresses: in that of the letters they are the
        // same in each run.
        std::sort(things.begin(), things.end(),
                  [this](RefT<VOM::Object> const &a, RefT<VOM::Object> const &b) {
                      return std::less<Graph::Node *>()(GraphViewAccess::node(view, a),
                                                        GraphViewAccess::node(view, b));
                  });
        for (std::size_t i = 0; i < letters.size(); ++i) {
            fieldOf<VOM::FieldString>(things[i], "name").set(letters.substr(i, 1));
            node(letters[i]).visible = true;
        }
        // Shown, since resize events of hidden widgets come late; but nowhere.
        view.setAttribute(Qt::WA_DontShowOnScreen);
        view.show();
        resize(size);
    }

    RefT<VOM::Object> const &obj(char letter) const { return things[names.find(letter)]; }
    Graph::Node &node(char letter) { return *GraphViewAccess::node(view, obj(letter)); }

    void setLabel(char letter, std::string const &label)
    {
        node(letter).watch->label = QString::fromStdString(label);
        node(letter).sizeDirty = true;
    }
    /// Puts a node somewhere, and measures it.
    Graph::Node &place(char letter, QPoint const &pos)
    {
        view.setPos(obj(letter), pos.x(), pos.y(), false);
        GraphViewAccess::updateSize(view, node(letter));
        return node(letter);
    }
    /// The same with an empty label that takes this much room.
    Graph::Node &place(char letter, QPoint const &pos, QSize const &textSize)
    {
        node(letter).watch->label.clear();
        node(letter).textWidth = textSize.width();
        node(letter).textHeight = textSize.height();
        node(letter).sizeDirty = false;
        return place(letter, pos);
    }
    void link(char from, char to) { GraphViewAccess::link(view, node(from), node(to), 1); }

    void resize(QSize const &size)
    {
        view.resize(size);
        scrollTo(scroll);
    }
    /// Scrolls to anywhere: the next paint doesn't limit it.
    void scrollTo(QPoint const &pos)
    {
        scroll = pos;
        GraphViewAccess::boundsStale(view) = false;
        constexpr int far = ObjectGraphView::maxPos;
        view.horizontalScrollBar()->setRange(-far, far);
        view.horizontalScrollBar()->setValue(pos.x());
        view.verticalScrollBar()->setRange(-far, far);
        view.verticalScrollBar()->setValue(pos.y());
    }
    QImage paint()
    {
        scrollTo(scroll);
        return pictureOf(view);
    }

    static constexpr QRgb background = 0xffe0e0e0;
    const std::string names;
    Things things;
    ObjectGraphView view;
    QPoint scroll;
};

} // namespace ZR::VOM::GUI
