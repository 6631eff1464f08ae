// Gives each node its layer.

#include "zrVOMGUI/graph/layout/Components.h"
#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/NetworkSimplex.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"

#include <algorithm>
#include <limits>

namespace ZR::VOM::GUI::Graph {

Hierarchy::NodeSet Hierarchy::assignRanks(RefT<Node> const &representative)
{
    NodeSet nodes;
    if (!representative->visible)
        return nodes;
    nodes.insert(representative);
    findIsolatedVisibleGraph(representative, nodes);
    breakCycles(nodes);
    solveRanks(nodes);
    const int span = normalizeRanks(nodes);
    const std::size_t numReal = nodes.size();
    {
        const StageTimer timer(figures.splitTime);
        splitLongLinks(nodes);
        fillLayers(nodes, span);
    }
    figures.splitNodes += static_cast<unsigned>(nodes.size() - numReal);
    figures.layers = std::max(figures.layers, static_cast<unsigned>(layers.size()));
    return nodes;
}

/// Ranks by network simplex. Departs from the published method in that every link has weight 1 and
/// minimum length 1, whatever its multiplicity.
void Hierarchy::solveRanks(NodeSet const &nodes)
{
    const StageTimer timer(figures.ranksTime);
    NetworkSimplex simplex;
    std::map<RefT<Node>, unsigned> vertexOf;
    for (RefT<Node> const &node : nodes)
        vertexOf.emplace_hint(vertexOf.end(), node, simplex.addVertex());
    for (auto const &[key, count] : links)
        if (key.first != key.second)
            simplex.addEdge(vertexOf.at(key.first), vertexOf.at(key.second), 1, 1);
    simplex.solve();
    for (auto const &[node, vertex] : vertexOf)
        node->rank = simplex.rank(vertex);
}

/// Lets ranks begin at 0, and returns the highest.
int Hierarchy::normalizeRanks(NodeSet const &nodes)
{
    int lowest = std::numeric_limits<int>::max();
    int highest = std::numeric_limits<int>::min();
    for (RefT<Node> const &node : nodes) {
        lowest = std::min(lowest, node->rank);
        highest = std::max(highest, node->rank);
    }
    for (RefT<Node> const &node : nodes)
        node->rank -= lowest;
    return highest - lowest;
}

} // namespace ZR::VOM::GUI::Graph
