// Turns links round so that the component has no cycle, and back again after the layout.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <algorithm>

namespace ZR::VOM::GUI::Graph {

void Hierarchy::breakCycles()
{
    const StageTimer timer(figures.cyclesTime);
    collectLinks();
    numberDepthFirst();
    reverseBackLinks();
}

/// A node's links are in address order of their far ends, so that the list comes out in rising
/// order. A self-link is passed over: it has no part in the layout.
void Hierarchy::collectLinks()
{
    for (Node *node : nodes)
        for (auto const &[far, entry] : node->linkedOut)
            if (far->visible && far.get() != node)
                links.push_back({node->index, far->index});
}

/// Numbers all nodes as a depth-first walk enters and leaves them. A loop over an explicit stack:
/// the depth follows the longest chain of the graph.
void Hierarchy::numberDepthFirst()
{
    for (Node *node : nodes)
        node->dfsEnter = node->dfsLeave = 0;
    struct Visit {
        Node *node;
        std::vector<Link>::const_iterator nextLink;
    };
    std::vector<Visit> path;
    unsigned enter = 0, leave = 0;
    const auto begin = [&](unsigned index) {
        nodes[index]->dfsEnter = ++enter;
        path.push_back(
            {nodes[index], std::lower_bound(links.cbegin(), links.cend(), Link{index, 0})});
    };
    for (unsigned root = 0; root < nodes.size(); ++root) {
        if (nodes[root]->dfsEnter == 0)
            begin(root);
        while (!path.empty()) {
            Visit &visit = path.back();
            if (visit.nextLink == links.cend() || visit.nextLink->from != visit.node->index) {
                visit.node->dfsLeave = ++leave;
                path.pop_back();
                continue;
            }
            const unsigned to = (visit.nextLink++)->to;
            if (nodes[to]->dfsEnter == 0)
                begin(to);
        }
    }
}

/// Reverses each link that leads back to where the depth-first walk came from.
///
/// The reversal is made on the nodes' own links: for the length of the layout the graph really
/// holds the link in the other direction.
///
/// KEPT: of a pair of opposed links one is merged into the other, and revertLinks() turns the
/// merged link as a whole: the pair is one link from then on, in the direction of the one that was
/// reversed. Hosts see the opposite link again when links are next rebuilt.
void Hierarchy::reverseBackLinks()
{
    const auto isBackLink = [this](Link link) {
        Node const &from = *nodes[link.from];
        Node const &to = *nodes[link.to];
        return from.dfsEnter >= to.dfsEnter && from.dfsLeave <= to.dfsLeave;
    };
    const auto firstBackLink = std::stable_partition(links.begin(), links.end(),
                                                     [&](Link link) { return !isBackLink(link); });
    if (firstBackLink == links.end())
        return;
    for (auto link = firstBackLink; link != links.end(); ++link) {
        std::swap(link->from, link->to);
        Node &from = *nodes[link->from];
        Node &to = *nodes[link->to];
        const unsigned count = to.linkedOut.at(keyOf(from)).count;
        dropLink(to, from, count);
        addLink(from, to, count);
        reversedLinks.emplace_back(&from, &to);
    }
    std::sort(links.begin(), links.end());
    links.erase(std::unique(links.begin(), links.end()), links.end());
}

bool Hierarchy::revertLinks()
{
    for (auto const &[from, to] : reversedLinks)
        revertLink(*from, *to);
    const bool any = !reversedLinks.empty();
    reversedLinks.clear();
    return any;
}

} // namespace ZR::VOM::GUI::Graph
