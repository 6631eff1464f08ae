#pragma once

// Not for hosts: links between nodes, without the view's repainting.

#include "zrVOMGUI/graph/private/Node.h"

#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Adds `count` references to the link, which is made if need be, and to its intermediate nodes.
void addLink(Node &from, Node &to, unsigned count);

/// Takes `count` references off the link and its intermediate nodes; at none left the link goes,
/// and its intermediate nodes with it. Does nothing when there is no such link.
void dropLink(Node &from, Node &to, unsigned count);

/// Cuts a link into `count` + 1 pieces by intermediate nodes, and returns these from the `from`
/// side to the `to` side; those that it had go. Empty when `count` is 0 or there is no such link.
std::vector<RefT<Node>> splitLink(Node &from, Node &to, unsigned count);

/// Makes a link direct again; its intermediate nodes go. Does nothing when there is no such link.
void unsplitLink(Node &from, Node &to);

/// Makes every link at the node direct.
void unsplitNode(Node &node);

/// Turns the link round, with its whole chain of intermediate nodes. Does nothing when there is no
/// such link.
void revertLink(Node &from, Node &to);

/// The intermediate nodes of a link, in chain order, held.
std::vector<RefT<Node>> chainOf(LinkEntry const &entry);

} // namespace ZR::VOM::GUI::Graph
