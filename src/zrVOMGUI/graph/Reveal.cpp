// Hidden neighbours of one node come to stand in a row above or below it, without a new layout, and
// the view scrolls to them. No other node gives way: the row may cover what stands there, and
// neighbours that are visible elsewhere are called into it.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <QScrollBar>

#include <algorithm>

namespace ZR::VOM::GUI {

/// All neighbours of a node on one side, from left to right.
struct ObjectGraphView::Row {
    std::vector<RefT<Node>> nodes;
    std::int64_t width = 0; // With the gaps between them.
    int height = 0;         // Of the highest.
};

namespace {

/// The scroll value that brings a stretch into view by the shortest way. One that is too long is
/// shown from its beginning or, if that is in view already, by one extent more at most.
int scrollTarget(int begin, int end, int scroll, int extent)
{
    const std::int64_t beyond = std::int64_t(end) - scroll - extent;
    if (beyond <= 0)
        return std::min(begin, scroll);
    const bool fits = std::int64_t(end) - begin < extent;
    if (!fits && scroll < begin)
        return begin;
    return static_cast<int>(scroll + (fits ? beyond : std::min<std::int64_t>(beyond, extent)));
}

} // namespace

// KEPT: the row above hangs on where the node stands, the row below on where it is going. While the
// node moves, the two are anchored to different places: users meet the rows where they know them.
//
// The halves are rounded so that the highest box of a row and the node's own are ySpacing apart, on
// either side and for odd heights, too.

void ObjectGraphView::showLinkedIn(RefT<Node> const &node)
{
    const Row row = measureRow(*node, Graph::Direction::In);
    showRow(row, node->x - row.width / 2,
            std::int64_t(node->y) - node->height / 2 - (row.height + 1) / 2 - ySpacing);
}

void ObjectGraphView::showLinkedOut(RefT<Node> const &node)
{
    const Row row = measureRow(*node, Graph::Direction::Out);
    showRow(row, node->toX - row.width / 2,
            std::int64_t(node->toY) + (node->height + 1) / 2 + ySpacing + row.height / 2);
}

ObjectGraphView::Row ObjectGraphView::measureRow(Node &node, Graph::Direction direction)
{
    Row row;
    for (auto const &[far, entry] : node.links(direction)) {
        if (!far->visible)
            updateSize(*far);
        if (row.width != 0)
            row.width += xSpacing;
        row.width += far->width;
        row.height = std::max(row.height, far->height);
        row.nodes.emplace_back(far);
    }
    return row;
}

/// Hidden nodes appear in the row, visible ones move there.
void ObjectGraphView::showRow(Row const &row, std::int64_t left, std::int64_t y)
{
    std::vector<RefT<Object>> shown;
    for (RefT<Node> const &node : row.nodes) {
        const int nodeX = Graph::toCoordinate(left + node->width / 2);
        const int nodeY = Graph::toCoordinate(y);
        if (storeVisible(*node, true)) {
            place(node, nodeX, nodeY);
            shown.emplace_back(node->obj);
        } else {
            move(node, nodeX, nodeY);
        }
        left += node->width + xSpacing;
    }
    refresh(true);
    scrollTo(row.nodes);
    emitSigInsertNode(shown);
}

/// Scrolls as little as it must to bring the visible ones of these nodes into view.
void ObjectGraphView::scrollTo(std::vector<RefT<Node>> const &boundNodes)
{
    int left = 0, top = 0, right = 0, bottom = 0;
    if (!getVisibleBound(boundNodes, left, top, right, bottom))
        return;
    const int scrollX = horizontalScrollBar()->value();
    const int scrollY = verticalScrollBar()->value();
    const int x = scrollTarget(left, right, scrollX, width());
    const int y = scrollTarget(top, bottom, scrollY, height());
    if (x != scrollX || y != scrollY)
        startScrolling(x, y);
}

} // namespace ZR::VOM::GUI
