#include "zrVOMGUI/graph/layout/Hierarchy.h"

namespace ZR::VOM::GUI::Graph {

Hierarchy::Hierarchy(Geometry const &nodeGeometry, LayoutFigures &layoutFigures,
                     std::vector<Node *> component)
    : geometry(nodeGeometry)
    , figures(layoutFigures)
    , nodes(std::move(component))
{
    numberNodes();
}

void Hierarchy::numberNodes()
{
    unsigned index = 0;
    for (Node *node : nodes)
        node->index = index++;
}

} // namespace ZR::VOM::GUI::Graph
