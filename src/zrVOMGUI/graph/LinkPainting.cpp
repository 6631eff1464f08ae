// The routes of links, from the top of their from node's lower band to the top of their to node's
// box. A back link, whose end lies above its start, climbs around both nodes.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/private/PaintContext.h"

#include <QPainter>
#include <QPolygon>

#include <utility>

namespace ZR::VOM::GUI {

namespace {

/// The gaps that routes keep.
struct RouteGaps {
    int half; // Of an icon's edge: how far routes swing out below and above nodes.
    int margin;
};

/// From below a node around its left side to its top.
void climbFromSource(QPolygon &route, Graph::Node const &node, QPoint source, RouteGaps gaps)
{
    const QPoint start = route.last();
    const int left = start.x() - node.width / 2 - gaps.margin;
    route << start + QPoint(-gaps.half, gaps.half) << QPoint(left, start.y() + gaps.half)
          << QPoint(left, source.y() + node.topY + gaps.half);
}

/// From below a node around its right side to its top.
///
/// KEPT: the heights are those of the source's bands and not of the target's. The two are the same
/// for nodes of equal height, and hosts' pictures show this route.
void climbToTarget(QPolygon &route, Graph::Node const &node, Graph::Node const &far, QPoint target,
                   RouteGaps gaps)
{
    const int right = target.x() + far.width / 2 + gaps.margin;
    const int below = target.y() + gaps.half + node.bottomY;
    const int above = target.y() + gaps.half + node.topY;
    route << QPoint(right, below) << QPoint(right, above) << QPoint(target.x() + gaps.half, above);
}

} // namespace

/// Slanted pieces are smoothed; upright ones stay sharp, since the lines run through the middle of
/// their pixels.
void ObjectGraphView::paintLinks(PaintContext const &context)
{
    context.painter.save();
    context.painter.setRenderHint(QPainter::Antialiasing);
    context.painter.translate(0.5, 0.5);
    QPolygon route;
    for (auto const &[obj, slot] : nodes) {
        if (!slot.node->visible)
            continue;
        for (auto const &[far, entry] : slot.node->linkedOut) {
            if (!far->visible)
                continue;
            layRoute(context, *slot.node, *far, entry, route);
            if (!context.isOffScreen(route))
                context.painter.drawPolyline(route);
        }
    }
    context.painter.restore();
}

/// Fills in the points that a link is drawn through, on the viewport.
void ObjectGraphView::layRoute(PaintContext const &context, Node const &node, Node const &far,
                               Graph::LinkEntry const &entry, QPolygon &route) const
{
    const RouteGaps gaps{iconSize / 2, margin};
    const QPoint source = context.centreOf(node);
    const QPoint target = context.centreOf(far);
    const QPoint start = source + QPoint(0, node.bottomY);
    const QPoint end = target + QPoint(0, far.topY + iconSize);
    const bool isLoop = &far == &node;
    const bool isBackLink = end.y() < start.y();
    route.resize(0);
    route << start;
    if (isLoop)
        route << start + QPoint(gaps.half, gaps.half);
    else if (isBackLink)
        climbFromSource(route, node, source, gaps);
    forEachIntermediate(entry, [&](Node const &station) {
        const QPoint centre = context.centreOf(station);
        QPoint enter = centre + QPoint(0, station.topY + iconSize);
        QPoint leave = centre + QPoint(0, station.bottomY);
        if (isBackLink)
            std::swap(enter, leave);
        route << enter << leave;
    });
    if (isBackLink)
        climbToTarget(route, node, far, target, gaps);
    route << end;
}

} // namespace ZR::VOM::GUI
