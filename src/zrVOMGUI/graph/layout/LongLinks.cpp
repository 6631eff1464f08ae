// Cuts links that span layers into unit pieces, and puts the nodes into their layers.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <algorithm>
#include <functional>

namespace ZR::VOM::GUI::Graph {

/// The whole links stay in reversedLinks, since a link is turned back with its chain.
void Hierarchy::splitLongLinks()
{
    const std::size_t numReal = nodes.size();
    for (Link link : links) {
        Node &from = *nodes[link.from];
        Node &to = *nodes[link.to];
        const int length = to.rank - from.rank;
        if (length < 2)
            continue;
        int rank = from.rank;
        for (RefT<Node> const &station : splitLink(from, to, static_cast<unsigned>(length - 1))) {
            station->rank = ++rank;
            nodes.push_back(station.get());
        }
    }
    if (nodes.size() == numReal)
        return;
    std::sort(nodes.begin(), nodes.end(), std::less<Node *>());
    numberNodes();
    collectUnitLinks();
}

void Hierarchy::collectUnitLinks()
{
    links.clear();
    for (Node *node : nodes) {
        const auto begin = static_cast<std::ptrdiff_t>(links.size());
        for (auto const &link : node->linkedOut) {
            Node const &far = neighbour(link);
            if (far.visible && &far != node)
                links.push_back({node->index, far.index});
        }
        // In address order of the next hops, which isn't that of the far ends.
        std::sort(links.begin() + begin, links.end());
    }
}

/// The first order in each layer is that of the nodes' addresses, not one of a depth-first walk.
void Hierarchy::fillLayers(int span)
{
    layers.assign(static_cast<std::size_t>(span) + 1, {});
    for (Node *node : nodes) {
        auto &layer = layers[static_cast<std::size_t>(node->rank)];
        node->order = static_cast<unsigned>(layer.size());
        layer.push_back(node->index);
    }
}

} // namespace ZR::VOM::GUI::Graph
