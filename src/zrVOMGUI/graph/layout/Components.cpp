#include "zrVOMGUI/graph/layout/Components.h"

#include <limits>

namespace ZR::VOM::GUI::Graph {

namespace {

constexpr unsigned unknown = std::numeric_limits<unsigned>::max();

/// Stores the component's number in every node that can be reached along links in either direction.
void numberComponent(Node &start, unsigned number)
{
    std::vector<Node *> open{&start};
    start.index = number;
    while (!open.empty()) {
        Node const &node = *open.back();
        open.pop_back();
        for (LinkMap const *links : {&node.linkedOut, &node.linkedIn}) {
            for (auto const &[far, entry] : *links) {
                if (far->visible && far->index == unknown) {
                    far->index = number;
                    open.push_back(far.get());
                }
            }
        }
    }
}

} // namespace

std::vector<std::vector<Node *>> findComponents(std::vector<Node *> const &visibleNodes)
{
    for (Node *node : visibleNodes)
        node->index = unknown;
    std::vector<std::vector<Node *>> components;
    for (Node *node : visibleNodes) {
        if (node->index == unknown) {
            numberComponent(*node, static_cast<unsigned>(components.size()));
            components.emplace_back();
        }
        components[node->index].push_back(node);
    }
    return components;
}

} // namespace ZR::VOM::GUI::Graph
