#pragma once

// Not for hosts.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <QPainter>
#include <QPoint>
#include <QPolygon>
#include <QRect>

namespace ZR::VOM::GUI {

/// What one paint needs at every node.
struct ObjectGraphView::PaintContext {
    QPainter &painter;
    QPoint scroll;
    int width, height; // Of the widget.

    bool isOffScreen(int left, int top, int w, int h) const
    {
        return left + w < 0 || top + h < 0 || left >= width || top >= height;
    }
    bool isOffScreen(Graph::Node const &node) const
    {
        const QPoint centre = centreOf(node);
        return isOffScreen(centre.x() - node.width / 2, centre.y() - node.height / 2, node.width,
                           node.height);
    }
    /// With room for the smoothed edges of lines.
    bool isOffScreen(QPolygon const &route) const
    {
        constexpr int smoothing = 2;
        return !route.boundingRect()
                    .adjusted(-smoothing, -smoothing, smoothing, smoothing)
                    .intersects(QRect(0, 0, width, height));
    }
    QPoint centreOf(Node const &node) const { return QPoint(node.x, node.y) - scroll; }
};

} // namespace ZR::VOM::GUI
