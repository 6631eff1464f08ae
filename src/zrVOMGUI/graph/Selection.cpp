// Which nodes are selected, and bringing them into view.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <QScrollBar>

#include <algorithm>
#include <tuple>

namespace ZR::VOM::GUI {

using Graph::Bounds;

namespace {

struct View {
    int x, y, width, height;

    bool contains(Bounds const &box) const
    {
        return box.left >= x && box.top >= y && box.right <= x + width && box.bottom <= y + height;
    }
    bool canHold(Bounds const &box) const
    {
        return box.right - box.left <= width && box.bottom - box.top <= height;
    }
};

Bounds grown(Bounds box, int dx, int dy)
{
    return {box.left - dx, box.top - dy, box.right + dx, box.bottom + dy};
}

Bounds unite(Bounds const &a, Bounds const &b)
{
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// The scroll value that brings a stretch into view, or its middle when it is too long for that.
int scrollTarget(int begin, int end, int scroll, int extent)
{
    const int excess = end - begin - extent;
    if (excess > 0)
        return begin + excess / 2;
    int target = scroll;
    if (begin < scroll)
        target = begin;
    if (end > scroll + extent)
        target = end - extent;
    return target;
}

} // namespace

void ObjectGraphView::setSel(std::vector<RefT<Object>> const &objs)
{
    bool anyVisible = false;
    for (auto const &[obj, slot] : nodes) {
        slot.node->selected = false;
        anyVisible |= slot.node->visible;
    }
    for (RefT<Object> const &obj : objs) {
        if (Node *const node = findNode(obj)) {
            node->selected = true;
            anyVisible |= node->visible;
        }
    }
    if (anyVisible)
        refresh(false);
}

std::vector<RefT<VOM::Object>> ObjectGraphView::getSel() const
{
    return collectObjs([](Node const &node) { return node.selected && node.visible; });
}

void ObjectGraphView::showSel()
{
    std::vector<Node *> selected;
    for (auto const &[obj, slot] : nodes)
        if (slot.node->visible && slot.node->selected)
            selected.push_back(slot.node.get());
    if (selected.empty())
        return;
    std::stable_sort(selected.begin(), selected.end(), [](Node const *a, Node const *b) {
        return std::tie(a->toY, a->toX) < std::tie(b->toY, b->toX);
    });

    const std::size_t num = selected.size();
    const View view{horizontalScrollBar()->value(), verticalScrollBar()->value(),
                    viewport()->width(), viewport()->height()};
    selCursor %= num;
    std::size_t first = selCursor;
    while (view.contains(boundsOf(*selected[first]))) {
        first = (first + 1) % num;
        if (first == selCursor)
            return;
    }

    const auto grownBox = [&](std::size_t i) {
        return grown(boundsOf(*selected[i]), xSpacing, ySpacing);
    };
    Bounds shown = grownBox(first);
    std::size_t stop = first;
    for (; stop != selCursor; stop = (stop + 1) % num) {
        const Bounds with = unite(shown, grownBox(stop));
        if (!view.canHold(with))
            break;
        shown = with;
    }
    selCursor = stop;
    startScrolling(scrollTarget(shown.left, shown.right, view.x, view.width),
                   scrollTarget(shown.top, shown.bottom, view.y, view.height));
}

} // namespace ZR::VOM::GUI
