#pragma once

// Not for hosts.

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Which of many places holds the lowest value, without a look at the others.
///
/// Each match is won by the lower value, and by the left one of equal values. A change of one value
/// costs a logarithm of the number of places at most, and ends at the first match of which the
/// outcome stays. Answers cost a logarithm for each place in them.
class Tournament {
public:
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();
    /// The value of a place that takes no part: no other is higher.
    static constexpr int absent = std::numeric_limits<int>::max();

    /// Gives all places the same value.
    void assign(std::size_t numPlaces, int value);
    /// Takes the values of all places, position by position.
    void assign(std::vector<int> const &values);

    std::size_t numPlaces() const { return numLeaves; }
    int value(unsigned place) const { return lowestOf[leafOf(place)]; }
    void set(unsigned place, int value)
    {
        std::size_t match = leafOf(place);
        if (lowestOf[match] == value)
            return;
        lowestOf[match] = value;
        while (match > 1) {
            match /= 2;
            const int winner = std::min(lowestOf[2 * match], lowestOf[2 * match + 1]);
            if (lowestOf[match] == winner)
                break;
            lowestOf[match] = winner;
        }
    }

    /// absent when there is no place.
    int lowest() const { return numLeaves == 0 ? absent : lowestOf[1]; }
    /// The leftmost place of the lowest value; none when there is no place.
    unsigned findLowest() const;
    /// Appends all places of the lowest value, from left to right.
    void appendAllLowest(std::vector<unsigned> &places) const;

private:
    // The matches of n leaves fill n - 1 positions from 1 on, and the leaves follow. Where n isn't
    // a power of two, the leaves at the end are a level deeper: those are the first places, so that
    // left in the tournament is left among the places.
    std::size_t leafOf(unsigned place) const
    {
        const std::size_t leaf = firstDeepLeaf + place;
        return leaf < lowestOf.size() ? leaf : leaf - numLeaves;
    }
    unsigned placeOf(std::size_t leaf) const
    {
        return static_cast<unsigned>(leaf >= firstDeepLeaf ? leaf - firstDeepLeaf
                                                           : leaf + numLeaves - firstDeepLeaf);
    }

    std::size_t numLeaves = 0;
    std::size_t firstDeepLeaf = 1;
    std::vector<int>
        lowestOf; // The winners of all matches: 1 the final, 2 and 3 the one before, ...
};

} // namespace ZR::VOM::GUI::Graph
