#pragma once

// Not for hosts.

#include "zrVOMGUI/graph/private/Node.h"

#include <vector>

namespace ZR::VOM::GUI::Graph {

/// The connected components of `visibleNodes`, which are all visible nodes with an object, in
/// address order. Hidden nodes separate components.
///
/// Each component's nodes are in address order, and so are the components, by their first nodes.
/// O(n + e log d) for e links and nodes of at most d links. Nodes aren't held.
std::vector<std::vector<Node *>> findComponents(std::vector<Node *> const &visibleNodes);

} // namespace ZR::VOM::GUI::Graph
