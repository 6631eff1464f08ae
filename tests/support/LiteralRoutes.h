#pragma once

#include "zrVOMGUI/graph/private/Node.h"

#include <set>

/// The route search as it reads: it walks every path that meets no node twice. For small graphs, to
/// hold the library's against.
bool findAllRoutesLiterally(ZR::RefT<ZR::VOM::GUI::Graph::Node> const &node,
                            std::set<ZR::RefT<ZR::VOM::GUI::Graph::Node>> &targets,
                            std::set<ZR::RefT<ZR::VOM::GUI::Graph::Node>> &path,
                            std::set<ZR::RefT<ZR::VOM::GUI::Graph::Node>> &route);
