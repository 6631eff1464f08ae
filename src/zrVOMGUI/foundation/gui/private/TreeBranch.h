#pragma once

// Not for hosts.

#include "zrVOMGUI/foundation/gui/TreeRow.h"

#include <utility>

namespace ZR::GUI {

/// The children of one row, and how many lines each takes with all that is shown below it.
///
/// As long as each takes exactly one, which is so for lists of closed rows, nothing is counted.
/// From then on a Fenwick tree holds the counts: any child's first line, and the child at any line,
/// cost a logarithm. (Fenwick, A New Data Structure for Cumulative Frequency Tables, 1994.)
class TreeBranch {
public:
    explicit TreeBranch(std::vector<TreeRow *> &&children)
        : rows(std::move(children))
        , total(rows.size())
    {
    }

    std::size_t getTotal() const { return total; }

    /// Child `pos` takes `change` lines more. Before the first change it took one.
    void add(std::size_t pos, std::ptrdiff_t change)
    {
        if (!change)
            return;
        if (sums.empty())
            count();
        total += std::size_t(change);
        for (std::size_t i = pos + 1; i < sums.size(); i += i & (~i + 1))
            sums[i] += std::uint32_t(change);
    }

    /// The lines of all children before `pos`.
    std::size_t before(std::size_t pos) const
    {
        if (sums.empty())
            return pos;
        std::size_t lines = 0;
        for (std::size_t i = pos; i; i &= i - 1)
            lines += sums[i];
        return lines;
    }

    /// The child that takes `line`, and the number of the line in that child. \pre line < total
    std::pair<std::size_t, std::size_t> find(std::size_t line) const
    {
        if (sums.empty())
            return {line, 0};
        std::size_t pos = 0, step = 1;
        while (step * 2 < sums.size())
            step *= 2;
        for (; step; step /= 2) {
            if (pos + step < sums.size() && sums[pos + step] <= line) {
                pos += step;
                line -= sums[pos];
            }
        }
        return {pos, line};
    }

    const std::vector<TreeRow *> rows; // Owned by their handles.

private:
    void count()
    {
        sums.resize(rows.size() + 1);
        for (std::size_t i = 1; i < sums.size(); ++i)
            sums[i] = std::uint32_t(i & (~i + 1));
    }

    std::size_t total;
    std::vector<std::uint32_t> sums; // From 1; each of as many children as its lowest bit says.
};

} // namespace ZR::GUI
