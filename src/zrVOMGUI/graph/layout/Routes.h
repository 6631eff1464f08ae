#pragma once

// Not for hosts.

#include "zrVOMGUI/graph/private/Node.h"

#include <set>

namespace ZR::VOM::GUI::Graph {

/// Inserts into `route` every node on a route from any of `starts` to any of `targets`, and answers
/// whether there is a route.
///
/// A route is a path that meets no node twice, along links in either direction, through visible and
/// hidden nodes alike. A start that is a target is a route by itself. Null references are passed
/// over.
///
/// O(n + e + r log r) for the n nodes and e links of the starts' components and r nodes on routes,
/// however many routes there are. Overwrites Node::index.
bool findAllRoutes(std::set<RefT<Node>> const &starts, std::set<RefT<Node>> const &targets,
                   std::set<RefT<Node>> &route);

/// The same from one start, by routes that keep off the nodes in `path`. The start itself may be in
/// it.
bool findAllRoutes(RefT<Node> const &node, std::set<RefT<Node>> const &targets,
                   std::set<RefT<Node>> const &path, std::set<RefT<Node>> &route);

} // namespace ZR::VOM::GUI::Graph
