#include "zrVOMGUI/graph/layout/CutValueIndex.h"

namespace ZR::VOM::GUI::Graph {

void CutValueIndex::assign(std::vector<int> const &values)
{
    std::vector<int> capped(values);
    for (int &value : capped)
        value = std::min(value, 0);
    tournament.assign(capped);
}

unsigned CutValueIndex::findLowest() const
{
    return tournament.lowest() < 0 ? tournament.findLowest() : none;
}

} // namespace ZR::VOM::GUI::Graph
