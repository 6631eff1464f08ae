#pragma once

#include "zrVOMGUI/graph/ObjectGraphView.h"

#include <string>

namespace ZR::VOM::GUI {

/// What is wrong inside a view, a line for each fault; empty when it agrees with itself.
///
/// Walks all nodes: every node belongs to its living object; both ends of a link agree; chains of
/// intermediate nodes are whole, between visible nodes, and on no second link; watched fields
/// belong to the object and are covered by a rule; labels say what the model says.
std::string faultsOf(ObjectGraphView &view);

/// The same once a running animation has arrived, with nodes and stations that aren't on their
/// targets.
std::string faultsAtRest(ObjectGraphView &view);

} // namespace ZR::VOM::GUI
