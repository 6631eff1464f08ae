// Gives each node its layer.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/NetworkSimplex.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"

#include <algorithm>
#include <limits>

namespace ZR::VOM::GUI::Graph {

void Hierarchy::assignRanks()
{
    breakCycles();
    solveRanks();
    const int span = normalizeRanks();
    const std::size_t numReal = nodes.size();
    {
        const StageTimer timer(figures.splitTime);
        splitLongLinks();
        fillLayers(span);
    }
    figures.splitNodes += static_cast<unsigned>(nodes.size() - numReal);
    figures.layers = std::max(figures.layers, static_cast<unsigned>(layers.size()));
}

/// Ranks by network simplex. Departs from the published method in that every link has weight 1 and
/// minimum length 1, whatever its multiplicity.
void Hierarchy::solveRanks()
{
    const StageTimer timer(figures.ranksTime);
    NetworkSimplex simplex;
    simplex.reserve(links.size());
    for (std::size_t i = 0; i < nodes.size(); ++i)
        simplex.addVertex();
    for (Link link : links)
        simplex.addEdge(link.from, link.to, 1, 1);
    simplex.solve();
    for (Node *node : nodes)
        node->rank = simplex.rank(node->index);
}

/// Lets ranks begin at 0, and returns the highest.
int Hierarchy::normalizeRanks()
{
    int lowest = std::numeric_limits<int>::max();
    int highest = std::numeric_limits<int>::min();
    for (Node *node : nodes) {
        lowest = std::min(lowest, node->rank);
        highest = std::max(highest, node->rank);
    }
    for (Node *node : nodes)
        node->rank -= lowest;
    return highest - lowest;
}

} // namespace ZR::VOM::GUI::Graph
