#include "zrVOMGUI/graph/layout/Components.h"

#include <vector>

namespace ZR::VOM::GUI::Graph {

namespace {

/// Walks from `start` along links in either direction, to each node that `enter` admits.
template <class Enter>
void walkLinks(RefT<Node> const &start, Enter const &enter)
{
    std::vector<RefT<Node>> open{start};
    while (!open.empty()) {
        const RefT<Node> node = std::move(open.back());
        open.pop_back();
        for (LinkMap const *links : {&node->linkedOut, &node->linkedIn})
            for (auto const &[far, entry] : *links)
                if (enter(far))
                    open.emplace_back(far);
    }
}

} // namespace

std::set<RefT<Node>> findIsolatedVisibleGraphs(std::set<RefT<Node>> &nodes)
{
    std::set<RefT<Node>> representatives;
    while (!nodes.empty()) {
        const RefT<Node> first = *nodes.begin();
        representatives.insert(representatives.end(), first);
        nodes.erase(nodes.begin());
        walkLinks(first, [&](PtrT<Node> const &far) { return nodes.erase(far) != 0; });
    }
    return representatives;
}

void findIsolatedVisibleGraph(RefT<Node> const &node, std::set<RefT<Node>> &found)
{
    walkLinks(node, [&](PtrT<Node> const &far) { return far->visible && found.insert(far).second; });
}

} // namespace ZR::VOM::GUI::Graph
