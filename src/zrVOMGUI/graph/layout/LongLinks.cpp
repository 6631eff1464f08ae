// Cuts links that span layers into unit pieces, and puts the nodes into their layers.

#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

namespace ZR::VOM::GUI::Graph {

/// The whole links stay in reversedLinks, since a link is turned back with its chain.
void Hierarchy::splitLongLinks(NodeSet &nodes)
{
    for (auto link = links.begin(); link != links.end();) {
        const auto [from, to] = link->first;
        const int length = to->rank - from->rank;
        if (length < 2) {
            ++link;
            continue;
        }
        const unsigned count = link->second;
        RefT<Node> previous = from;
        for (RefT<Node> const &station : splitLink(*from, *to, static_cast<unsigned>(length - 1))) {
            nodes.insert(station);
            station->rank = previous->rank + 1;
            links.emplace(LinkKey(previous, station), count);
            previous = station;
        }
        links.emplace(LinkKey(previous, to), count);
        link = links.erase(link);
    }
}

/// The first order in each layer is that of the nodes' addresses, not one of a depth-first walk.
void Hierarchy::fillLayers(NodeSet const &nodes, int span)
{
    layers.assign(static_cast<std::size_t>(span) + 1, {});
    for (RefT<Node> const &node : nodes) {
        auto &layer = layers[static_cast<std::size_t>(node->rank)];
        node->order = static_cast<unsigned>(layer.size());
        layer.push_back(node);
    }
}

} // namespace ZR::VOM::GUI::Graph
