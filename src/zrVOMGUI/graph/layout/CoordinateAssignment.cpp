// Gives each node of an ordered component its place.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/NetworkSimplex.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace ZR::VOM::GUI::Graph {

/// x comes from a second run of the network simplex, on the auxiliary graph of the published
/// method; y from the layers' heights. Departs from it in that
/// - every link edge has weight 1, with no priority for the inner segments of long links;
/// - layers are stacked by the full height of the layer before, not by half heights.
Bounds Hierarchy::assignCoordinates()
{
    const StageTimer timer(figures.coordsTime);
    solveX();
    assignY();
    figures.length += horizontalLength();
    return bound();
}

/// Each link gets an auxiliary vertex with an edge to both ends, whose cost is the horizontal
/// distance between them; neighbours in a layer get an edge of no cost that holds order and
/// distance.
void Hierarchy::solveX()
{
    for (Node *node : nodes)
        geometry.measure(*node);
    NetworkSimplex simplex;
    simplex.reserve(2 * links.size() + nodes.size() - layers.size());
    for (std::size_t i = 0; i < nodes.size(); ++i)
        simplex.addVertex();
    for (Link link : links) {
        const NetworkSimplex::VertexId auxiliary = simplex.addVertex();
        simplex.addEdge(auxiliary, link.from, 1, 0);
        simplex.addEdge(auxiliary, link.to, 1, 0);
    }
    const int shrink = shrinkFactor();
    for (auto const &layer : layers)
        for (std::size_t i = 1; i < layer.size(); ++i)
            simplex.addEdge(layer[i - 1], layer[i], 0,
                            static_cast<std::uint16_t>(distance(layer[i - 1], layer[i]) / shrink));
    simplex.solve();
    const int lowest = simplex.lowestRank();
    for (Node *node : nodes)
        node->x = simplex.rank(node->index) - lowest;
}

/// How far apart the centres of two neighbours are kept.
///
/// KEPT: distances of 65,536 and more wrap to small ones. Only boxes wider than any screen meet it,
/// and a solver's edge is the smaller for it.
std::uint16_t Hierarchy::distance(unsigned left, unsigned right) const
{
    const int widths = nodes[left]->width + nodes[right]->width;
    return static_cast<std::uint16_t>(widths / 2 + geometry.xSpacing);
}

/// By what all distances are divided: 1, unless the drawing might get wider than it may.
int Hierarchy::shrinkFactor() const
{
    std::int64_t sum = 0;
    for (auto const &layer : layers)
        for (std::size_t i = 1; i < layer.size(); ++i)
            sum += distance(layer[i - 1], layer[i]);
    return static_cast<int>(sum / maxCoordinate + 1);
}

/// All nodes of a layer share one y.
void Hierarchy::assignY()
{
    int y = 0;
    for (auto const &layer : layers) {
        int height = 0;
        for (unsigned index : layer) {
            height = std::max(height, nodes[index]->height);
            nodes[index]->y = y;
        }
        y += std::min(geometry.ySpacing + height, maxCoordinate - y);
    }
}

Bounds Hierarchy::bound() const
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    Bounds all{highest, highest, lowest, lowest};
    for (Node const *node : nodes) {
        const Bounds bounds = boundsOf(*node);
        all.left = std::min(all.left, bounds.left);
        all.top = std::min(all.top, bounds.top);
        all.right = std::max(all.right, bounds.right);
        all.bottom = std::max(all.bottom, bounds.bottom);
    }
    return all;
}

double Hierarchy::horizontalLength() const
{
    double length = 0;
    for (Link link : links)
        length += std::abs(static_cast<double>(nodes[link.from]->x) - nodes[link.to]->x);
    return length;
}

} // namespace ZR::VOM::GUI::Graph
