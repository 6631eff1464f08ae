// Turns links round so that the component has no cycle, and back again after the layout.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

namespace ZR::VOM::GUI::Graph {

void Hierarchy::breakCycles(NodeSet const &nodes)
{
    const StageTimer timer(figures.cyclesTime);
    for (RefT<Node> const &node : nodes)
        node->dfsEnter = node->dfsLeave = 0;
    unsigned enter = 0, leave = 0;
    for (RefT<Node> const &node : nodes)
        if (node->dfsEnter == 0)
            numberDepthFirst(*node, nodes, enter, leave);
    reverseBackLinks();
}

/// Numbers what can be reached from `start`, and collects its links. A loop over an explicit stack:
/// the depth follows the longest chain of the graph.
void Hierarchy::numberDepthFirst(Node &start, NodeSet const &nodes, unsigned &enter, unsigned &leave)
{
    struct Visit {
        Node &node;
        LinkMap::const_iterator nextLink;
    };
    std::vector<Visit> path;
    const auto begin = [&](Node &node) {
        node.dfsEnter = ++enter;
        path.push_back({node, node.linkedOut.cbegin()});
    };
    begin(start);
    while (!path.empty()) {
        Visit &visit = path.back();
        if (visit.nextLink == visit.node.linkedOut.cend()) {
            visit.node.dfsLeave = ++leave;
            path.pop_back();
            continue;
        }
        auto const &[far, entry] = *visit.nextLink;
        ++visit.nextLink;
        const auto found = nodes.find(far);
        if (found == nodes.end())
            continue;
        links.emplace(LinkKey(visit.node, *found), entry.count);
        if (far->dfsEnter == 0)
            begin(*far);
    }
}

/// Reverses each link that leads back to where the depth-first walk came from.
///
/// The reversal is made on the nodes' own links: for the length of the layout the graph really holds
/// the link in the other direction. A self-link is neither, and stays.
///
/// KEPT: of a pair of opposed links one is merged into the other, and revertLinks() turns the merged
/// link as a whole: the pair is one link from then on, in the direction of the one that was reversed.
/// Hosts see the opposite link again when links are next rebuilt.
void Hierarchy::reverseBackLinks()
{
    for (auto link = links.begin(); link != links.end();) {
        const auto [from, to] = link->first;
        const bool isBackLink =
            from != to && from->dfsEnter >= to->dfsEnter && from->dfsLeave <= to->dfsLeave;
        if (!isBackLink) {
            ++link;
            continue;
        }
        const unsigned count = link->second;
        dropLink(*from, *to, count);
        addLink(*to, *from, count);
        links[LinkKey(to, from)] += count;
        reversedLinks.emplace(LinkKey(to, from), count);
        link = links.erase(link);
    }
}

bool Hierarchy::revertLinks()
{
    for (auto const &[key, count] : reversedLinks)
        revertLink(*key.first, *key.second);
    const bool any = !reversedLinks.empty();
    reversedLinks.clear();
    return any;
}

} // namespace ZR::VOM::GUI::Graph
