#pragma once

#include "zrVOMGUI/graph/private/Node.h"

#include <set>

namespace ZR::VOM::GUI::Graph {

/// One representative for each connected component of `nodes`: its member of lowest address, in
/// address order. Empties the set. Links to nodes outside the set don't count.
std::set<RefT<Node>> findIsolatedVisibleGraphs(std::set<RefT<Node>> &nodes);

/// Adds to `found` every visible node that can be reached from `node` along links in either
/// direction.
void findIsolatedVisibleGraph(RefT<Node> const &node, std::set<RefT<Node>> &found);

} // namespace ZR::VOM::GUI::Graph
