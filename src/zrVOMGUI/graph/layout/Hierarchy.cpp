#include "zrVOMGUI/graph/layout/Hierarchy.h"

namespace ZR::VOM::GUI::Graph {

Hierarchy::Hierarchy(Geometry const &nodeGeometry, LayoutFigures &layoutFigures)
    : geometry(nodeGeometry)
    , figures(layoutFigures)
{
}

} // namespace ZR::VOM::GUI::Graph
