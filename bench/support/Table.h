#pragma once

#include "support/statistics.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

/// A table on the standard output: a row for each operation and size, with the median time in
/// milliseconds and the growth from the size before.
class Table {
public:
    Table();
    void add(std::string const &operation, unsigned numNodes, std::vector<double> times);

private:
    std::map<std::string, double> last; // By operation.
};

/// How long each of `repeat` runs took, in seconds.
template <class Operation>
std::vector<double> timesOf(int repeat, Operation const &operation)
{
    std::vector<double> times;
    for (int i = 0; i < repeat; ++i) {
        const double start = wallTime();
        operation();
        times.push_back(wallTime() - start);
    }
    return times;
}
