#include "support/Table.h"

#include <cstdio>

Table::Table()
{
    std::printf("%-24s %8s %12s %8s\n", "operation", "nodes", "ms", "growth");
}

void Table::add(std::string const &operation, unsigned numNodes, std::vector<double> times)
{
    const double time = medianOf(std::move(times));
    double &before = last[operation];
    std::printf("%-24s %8u %12.3f", operation.c_str(), numNodes, time * 1000);
    if (before > 0)
        std::printf(" %8.1f", time / before);
    std::printf("\n");
    std::fflush(stdout);
    before = time;
}
