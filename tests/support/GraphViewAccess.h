#pragma once

// What the tests of the graph see of a view beyond its public interface.

#include "zrVOMGUI/foundation/gui/GuardedDrag.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/private/PaintContext.h"

#include <QDrag>
#include <QPoint>
#include <QTimer>

namespace ZR::VOM::GUI {

struct GraphViewAccess {
    using Node = Graph::Node;

    static Node *node(ObjectGraphView &view, Ptr const &obj) { return view.findNode(obj); }
    static std::size_t numNodes(ObjectGraphView const &view) { return view.nodes.size(); }
    /// All nodes with an object, in the order of the objects' addresses.
    static std::vector<RefT<Node>> nodes(ObjectGraphView const &view)
    {
        std::vector<RefT<Node>> all;
        for (auto const &[obj, slot] : view.nodes)
            all.push_back(slot.node);
        return all;
    }

    static bool &boundsStale(ObjectGraphView &view) { return view.boundsStale; }
    static bool &refreshPending(ObjectGraphView &view) { return view.refreshPending; }
    static std::size_t &selCursor(ObjectGraphView &view) { return view.selCursor; }
    static QTimer &animTimer(ObjectGraphView &view) { return view.animTimer; }
    static QTimer &scrollTimer(ObjectGraphView &view) { return view.scrollTimer; }
    static Time &animStart(ObjectGraphView &view) { return view.animStart; }
    static Time &scrollStart(ObjectGraphView &view) { return view.scrollStart; }
    static QPoint scrollFrom(ObjectGraphView const &view)
    {
        return {view.scrollFromX, view.scrollFromY};
    }
    static QPoint scrollTo(ObjectGraphView const &view) { return {view.scrollToX, view.scrollToY}; }
    static int xSpacing(ObjectGraphView const &view) { return view.xSpacing; }
    static int ySpacing(ObjectGraphView const &view) { return view.ySpacing; }
    static int iconSize(ObjectGraphView const &view) { return view.iconSize; }
    static int margin(ObjectGraphView const &view) { return view.margin; }

    static void link(ObjectGraphView &view, Node &from, Node &to, unsigned count)
    {
        view.link(from, to, count);
    }
    static void unlink(ObjectGraphView &view, Node &from, Node &to, unsigned count)
    {
        view.unlink(from, to, count);
    }
    static std::vector<RefT<Node>> split(ObjectGraphView &view, Node &from, Node &to,
                                         unsigned count)
    {
        return view.split(from, to, count);
    }
    static void unsplit(ObjectGraphView &view, Node &from, Node &to) { view.unsplit(from, to); }
    static void layout(ObjectGraphView &view, RefT<Node> const &anchor) { view.layout(anchor); }
    static void updateSize(ObjectGraphView &view, Node &node) { view.updateSize(node); }
    static void updateLinks(ObjectGraphView &view) { view.updateLinks(); }
    static bool getVisibleBound(ObjectGraphView &view, std::vector<RefT<Node>> const &nodes,
                                int &left, int &top, int &right, int &bottom)
    {
        return view.getVisibleBound(nodes, left, top, right, bottom);
    }

    /// What a point in content coordinates meets: 0 nothing, 1 a box, 2 an upper and 3 a lower
    /// arrow.
    static std::pair<RefT<Node>, int> find(ObjectGraphView const &view, QPoint const &pos)
    {
        const auto [node, hit] = view.find(pos.x(), pos.y());
        return {node, hit};
    }

    static void showLinkedIn(ObjectGraphView &view, RefT<Node> const &node)
    {
        view.showLinkedIn(node);
    }
    static void showLinkedOut(ObjectGraphView &view, RefT<Node> const &node)
    {
        view.showLinkedOut(node);
    }
    static void scrollTo(ObjectGraphView &view, std::vector<RefT<Node>> const &nodes)
    {
        view.scrollTo(nodes);
    }
    static std::vector<RefT<VOM::Object>> getDropObjs(ObjectGraphView &view, QMimeData const &data)
    {
        return view.getDropObjs(data);
    }
    static QPixmap makeDragPixmap(ObjectGraphView &view) { return view.makeDragPixmap(); }
    /// The running one; null when none runs.
    static QDrag *drag(ObjectGraphView &view)
    {
        // Qt deletes ended ones later.
        return view.drag->isRunning() ? view.findChildren<QDrag *>().last() : nullptr;
    }
    static std::vector<RefT<VOM::Object>> &dragObjs(ObjectGraphView &view) { return view.dragObjs; }
    static std::vector<RefT<VOM::Object>> &dragCopies(ObjectGraphView &view)
    {
        return view.dragCopies;
    }
    static void updateScrollbars(ObjectGraphView &view) { view.updateScrollbars(); }
    static void startScrolling(ObjectGraphView &view, int x, int y) { view.startScrolling(x, y); }
    static void paintNode(ObjectGraphView &view, QPainter &painter, QPoint scroll, Node &node)
    {
        view.paintNode({painter, scroll, view.width(), view.height()}, node);
    }
    static void paintLinks(ObjectGraphView &view, QPainter &painter, QPoint scroll)
    {
        view.paintLinks({painter, scroll, view.width(), view.height()});
    }
    /// The points that a link is drawn through. Empty when there is no such link.
    static QPolygon route(ObjectGraphView &view, QPoint scroll, Node &from, Node &to)
    {
        QPolygon route;
        QPainter painter;
        const auto link = from.linkedOut.find(Graph::keyOf(to));
        if (link != from.linkedOut.end())
            view.layRoute({painter, scroll, view.width(), view.height()}, from, to, link->second,
                          route);
        return route;
    }
};

} // namespace ZR::VOM::GUI
