// One whole layout: which nodes take part, each component through the stages of the engine, and the
// result as targets of the animation.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/layout/Components.h"
#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <QFontMetrics>
#include <QScrollBar>

#include <algorithm>
#include <cstdint>
#include <functional>

namespace ZR::VOM::GUI {

using Graph::Hierarchy;

namespace {

struct Mean {
    int x = 0, y = 0;
};

Mean meanPosition(std::vector<RefT<Graph::Node>> const &nodes)
{
    if (nodes.empty())
        return {};
    std::int64_t sumX = 0, sumY = 0;
    for (RefT<Graph::Node> const &node : nodes) {
        sumX += node->x;
        sumY += node->y;
    }
    const auto count = static_cast<std::int64_t>(nodes.size());
    return {static_cast<int>(sumX / count), static_cast<int>(sumY / count)};
}

/// Makes the place that the layout found the target, and puts the node back to where it stood.
void commit(Graph::Node &node, std::int64_t dx, std::int64_t dy)
{
    node.toX = Graph::toCoordinate(node.x + dx);
    node.x = node.fromX;
    node.toY = Graph::toCoordinate(node.y + dy);
    node.y = node.fromY;
}

} // namespace

void ObjectGraphView::layout()
{
    layout(RefT<Node>());
}

void ObjectGraphView::layout(RefT<Node> const &anchor)
{
    const std::vector<RefT<Node>> anchors = findAnchors(anchor);
    const Mean before = meanPosition(anchors);
    const std::vector<Node *> visibleNodes = beginLayout();
    layoutFigures = {};
    layoutFigures.nodes = static_cast<unsigned>(visibleNodes.size());
    if (visibleNodes.empty())
        return;
    layoutComponents(visibleNodes);
    const Mean after = meanPosition(anchors);
    commitLayout(std::int64_t(before.x) - after.x, std::int64_t(before.y) - after.y);
    startAnimation();
}

/// The nodes that keep their place on average: the given one, or all that the user can see.
std::vector<RefT<Graph::Node>> ObjectGraphView::findAnchors(RefT<Node> const &anchor) const
{
    if (anchor)
        return {anchor};
    const int left = horizontalScrollBar()->value();
    const int top = verticalScrollBar()->value();
    std::vector<RefT<Node>> anchors;
    for (auto const &[obj, slot] : nodes) {
        Node const &node = *slot.node;
        if (node.visible && node.x >= left && node.x - left < width() && node.y >= top &&
            node.y - top < height())
            anchors.push_back(slot.node);
    }
    return anchors;
}

/// Stores where each visible node stands, makes its links direct, and returns these nodes.
std::vector<Graph::Node *> ObjectGraphView::beginLayout()
{
    std::vector<Node *> visibleNodes;
    for (auto const &[obj, slot] : nodes) {
        Node &node = *slot.node;
        if (!node.visible)
            continue;
        node.fromX = node.x;
        node.fromY = node.y;
        Graph::unsplitNode(node);
        visibleNodes.push_back(&node);
    }
    return visibleNodes;
}

/// Lays each component out and puts them side by side on one row, their tops at y 0.
void ObjectGraphView::layoutComponents(std::vector<Node *> visibleNodes)
{
    // Components stand in address order of their nodes, while the view's nodes are in that of
    // objects.
    std::sort(visibleNodes.begin(), visibleNodes.end(), std::less<Node *>());
    const Graph::Geometry geometry{xSpacing, ySpacing, [this](Node &node) { updateSize(node); }};
    std::vector<std::vector<Node *>> components = Graph::findComponents(visibleNodes);
    std::int64_t cursor = 0;
    bool linksTurned = false;
    for (std::vector<Node *> &component : components) {
        Hierarchy hierarchy(geometry, layoutFigures, std::move(component));
        hierarchy.assignRanks();
        hierarchy.orderLayers();
        const Graph::Bounds bound = hierarchy.assignCoordinates();
        const std::int64_t dx = cursor - bound.left + xSpacing;
        const std::int64_t dy = -std::int64_t(bound.top);
        for (Node *node : hierarchy.getNodes()) {
            node->x = Graph::toCoordinate(node->x + dx);
            node->y = Graph::toCoordinate(node->y + dy);
        }
        cursor += 1 + (bound.right - bound.left) + xSpacing;
        linksTurned |= hierarchy.revertLinks();
        layoutFigures.height = std::max(layoutFigures.height, bound.bottom - bound.top);
    }
    layoutFigures.components = static_cast<unsigned>(components.size());
    layoutFigures.width = Graph::toCoordinate(cursor - 1 - xSpacing);
    if (linksTurned)
        refresh(true);
}

void ObjectGraphView::commitLayout(std::int64_t dx, std::int64_t dy)
{
    for (auto const &[obj, slot] : nodes) {
        Node &node = *slot.node;
        if (!node.visible)
            continue;
        commit(node, dx, dy);
        // A chain is committed once, from the side of its from node.
        for (auto const &[far, entry] : node.linkedOut)
            forEachIntermediate(entry, [&](Node &station) { commit(station, dx, dy); });
    }
}

void ObjectGraphView::place(RefT<Node> const &node, int x, int y)
{
    node->x = node->fromX = node->toX = x;
    node->y = node->fromY = node->toY = y;
}

void ObjectGraphView::move(RefT<Node> const &node, int x, int y)
{
    const bool animated = animDuration.get() > 0.0;
    if (!animated) {
        node->x = x;
        node->y = y;
    }
    node->fromX = node->x;
    node->fromY = node->y;
    node->toX = x;
    node->toY = y;
    if (animated)
        startAnimation();
}

/// Measures a node: its size, and the offsets that painting and hit tests use. Text is measured
/// only when it changed.
void ObjectGraphView::updateSize(Node &node)
{
    if (node.isIntermediate()) {
        node.width = 0;
        node.height = iconSize + 2 * (iconSize + margin);
    } else {
        if (node.sizeDirty) {
            const QSize text = QFontMetrics(font()).size(0, node.watch->label);
            node.textWidth = text.width();
            node.textHeight = text.height();
        }
        node.width = 3 * margin + node.textWidth + iconSize;
        node.height = std::max(iconSize, node.textHeight) + 2 * (iconSize + margin);
        node.iconX = margin - node.width / 2;
        node.iconY = -(iconSize / 2);
        node.textX = node.iconX + iconSize + margin;
        node.textY = -(node.textHeight / 2);
        node.arrowX = -(iconSize / 2) - margin;
    }
    node.topY = -(node.height / 2);
    node.bottomY = node.topY - iconSize + node.height;
    node.sizeDirty = false;
}

} // namespace ZR::VOM::GUI
