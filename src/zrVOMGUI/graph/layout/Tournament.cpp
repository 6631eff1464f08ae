#include "zrVOMGUI/graph/layout/Tournament.h"

namespace ZR::VOM::GUI::Graph {

void Tournament::assign(std::size_t numPlaces, int value)
{
    numLeaves = numPlaces;
    firstDeepLeaf = 1;
    while (firstDeepLeaf < numLeaves)
        firstDeepLeaf *= 2;
    lowestOf.assign(2 * numLeaves, value);
}

void Tournament::assign(std::vector<int> const &values)
{
    assign(values.size(), absent);
    for (unsigned place = 0; place < values.size(); ++place)
        lowestOf[leafOf(place)] = values[place];
    for (std::size_t match = numLeaves; match-- > 1;)
        lowestOf[match] = std::min(lowestOf[2 * match], lowestOf[2 * match + 1]);
}

unsigned Tournament::findLowest() const
{
    if (numLeaves == 0)
        return none;
    std::size_t match = 1;
    while (match < numLeaves)
        match = lowestOf[2 * match] == lowestOf[match] ? 2 * match : 2 * match + 1;
    return placeOf(match);
}

void Tournament::appendAllLowest(std::vector<unsigned> &places) const
{
    if (numLeaves == 0)
        return;
    // From match to match, the left one first: down as long as it is won by the lowest value, and
    // then on to the next one to the right.
    const int wanted = lowest();
    std::size_t match = 1;
    for (;;) {
        if (lowestOf[match] == wanted) {
            if (match < numLeaves) {
                match *= 2;
                continue;
            }
            places.push_back(placeOf(match));
        }
        while (match % 2 == 1) {
            if (match == 1)
                return;
            match /= 2;
        }
        ++match;
    }
}

} // namespace ZR::VOM::GUI::Graph
