#pragma once

// Not for hosts.

#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Answers which tree edge has the most negative cut value, the first of equal ones, without a look
/// at the others.
///
/// A tournament: each match is won by the lower value, and by the left one of equal values. Values
/// that aren't negative all count as 0, so that most changes of cut values end at the leaf. A
/// change costs a logarithm of the number of places at most, the question nothing.
class CutValueIndex {
public:
    static constexpr unsigned none = 0xffffffff;

    /// Takes the values of all places, position by position.
    void assign(std::vector<int> const &values);

    void set(unsigned place, int value)
    {
        unsigned match = numLeaves + place;
        const int capped = value < 0 ? value : 0;
        if (lowest[match] == capped)
            return;
        lowest[match] = capped;
        while (match > 1) {
            match /= 2;
            const int winner = lowest[2 * match + 1] < lowest[2 * match] ? lowest[2 * match + 1]
                                                                         : lowest[2 * match];
            if (lowest[match] == winner)
                break;
            lowest[match] = winner;
        }
    }

    /// The leftmost place of the lowest value; none when no value is negative.
    unsigned findLowest() const;

private:
    unsigned numLeaves = 0;  // A power of two.
    std::vector<int> lowest; // The winners of all matches: 1 the final, 2 and 3 the one before, ...
};

} // namespace ZR::VOM::GUI::Graph
