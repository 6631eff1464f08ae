#pragma once

// Not for hosts.

#include "zrVOMGUI/graph/layout/Tournament.h"

namespace ZR::VOM::GUI::Graph {

/// Answers which tree edge has the most negative cut value, the first of equal ones, without a look
/// at the others.
///
/// Values that aren't negative all count as 0, so that most changes of cut values end at once. A
/// change costs a logarithm of the number of places at most.
class CutValueIndex {
public:
    static constexpr unsigned none = Tournament::none;

    /// Takes the values of all places, position by position.
    void assign(std::vector<int> const &values);

    void set(unsigned place, int value) { tournament.set(place, std::min(value, 0)); }

    /// The leftmost place of the lowest value; none when no value is negative.
    unsigned findLowest() const;

private:
    Tournament tournament;
};

} // namespace ZR::VOM::GUI::Graph
