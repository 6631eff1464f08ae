#include "zrVOMGUI/graph/layout/CutValueIndex.h"

#include "zrVOMGUI/foundation/util/text.h"

#include <algorithm>

namespace ZR::VOM::GUI::Graph {

void CutValueIndex::assign(std::vector<int> const &values)
{
    numLeaves = ceilPow2(std::max(1u, static_cast<unsigned>(values.size())));
    lowest.assign(2 * static_cast<std::size_t>(numLeaves), 0);
    for (std::size_t i = 0; i < values.size(); ++i)
        lowest[numLeaves + i] = std::min(values[i], 0);
    for (std::size_t match = numLeaves; match-- > 1;)
        lowest[match] = std::min(lowest[2 * match], lowest[2 * match + 1]);
}

unsigned CutValueIndex::findLowest() const
{
    if (lowest.empty() || lowest[1] == 0)
        return none;
    unsigned match = 1;
    while (match < numLeaves)
        match = lowest[2 * match] == lowest[match] ? 2 * match : 2 * match + 1;
    return match - numLeaves;
}

} // namespace ZR::VOM::GUI::Graph
