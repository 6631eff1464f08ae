// Gives each node of an ordered component its place.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/NetworkSimplex.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace ZR::VOM::GUI::Graph {

/// x comes from a second run of the network simplex, on the auxiliary graph of the published method;
/// y from the layers' heights. Departs from it in that
/// - every link edge has weight 1, with no priority for the inner segments of long links;
/// - layers are stacked by the full height of the layer before, not by half heights.
Bounds Hierarchy::assignCoordinates(NodeSet const &nodes)
{
    const StageTimer timer(figures.coordsTime);
    solveX(nodes);
    assignY();
    figures.length += horizontalLength();
    return bound();
}

/// Each link gets an auxiliary vertex with an edge to both ends, whose cost is the horizontal distance
/// between them; neighbours in a layer get an edge of no cost that holds order and distance.
void Hierarchy::solveX(NodeSet const &nodes)
{
    NetworkSimplex simplex;
    std::map<RefT<Node>, unsigned> vertexOf;
    for (RefT<Node> const &node : nodes)
        vertexOf.emplace_hint(vertexOf.end(), node, simplex.addVertex());
    for (auto const &[key, count] : links) {
        if (key.first == key.second)
            continue;
        const unsigned auxiliary = simplex.addVertex();
        simplex.addEdge(auxiliary, vertexOf.at(key.first), 1, 0);
        simplex.addEdge(auxiliary, vertexOf.at(key.second), 1, 0);
    }
    for (auto const &layer : layers) {
        Node const *previous = nullptr;
        unsigned previousVertex = 0;
        for (RefT<Node> const &node : layer) {
            geometry.measure(*node);
            const unsigned vertex = vertexOf.at(node);
            if (previous) {
                // KEPT: distances of 65,536 and more wrap to small ones. Only boxes wider than any
                // screen meet it, and a solver's edge is the smaller for it.
                const int distance = (node->width + previous->width) / 2 + geometry.xSpacing;
                simplex.addEdge(previousVertex, vertex, 0, static_cast<std::uint16_t>(distance));
            }
            previous = node.get();
            previousVertex = vertex;
        }
    }
    simplex.solve();
    const int lowest = simplex.lowestRank();
    for (auto const &[node, vertex] : vertexOf)
        node->x = simplex.rank(vertex) - lowest;
}

/// All nodes of a layer share one y.
void Hierarchy::assignY()
{
    int y = 0;
    for (auto const &layer : layers) {
        int height = 0;
        for (RefT<Node> const &node : layer) {
            geometry.measure(*node);
            height = std::max(height, node->height);
            node->y = y;
        }
        y += geometry.ySpacing + height;
    }
}

Bounds Hierarchy::bound() const
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    Bounds all{highest, highest, lowest, lowest};
    for (auto const &layer : layers) {
        for (RefT<Node> const &node : layer) {
            const Bounds box = boundsOf(*node);
            all.left = std::min(all.left, box.left);
            all.top = std::min(all.top, box.top);
            all.right = std::max(all.right, box.right);
            all.bottom = std::max(all.bottom, box.bottom);
        }
    }
    return all;
}

double Hierarchy::horizontalLength() const
{
    double length = 0;
    for (auto const &[key, count] : links)
        length += std::abs(static_cast<double>(key.first->x) - key.second->x);
    return length;
}

} // namespace ZR::VOM::GUI::Graph
