// What it costs to find all nodes on routes from what a graph view shows to what is dropped on it,
// at 5,000, 50,000 and 500,000 known nodes.
//
//     ./run bench routes [--largest NODES]
//
// A row for each shape and size: the median time in milliseconds, and the growth from the size
// before, which is ten times smaller.
//
// - chain: all nodes in a line.
// - web: two random links for each node; nearly all of them are one graph, with more routes than
//   anyone can walk.
// - scatter: one random link for every two nodes, which makes thousands of small graphs.
//
// "one" goes from one node to one other, "drop" from each twentieth node to each hundredth, which
// is a start, too: hundreds of dropped nodes and thousands of separate graphs on the screen.

#include "zrVOMGUI/graph/layout/Routes.h"
#include "support/EngineGraph.h"
#include "support/Table.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using ZR::VOM::GUI::Graph::EngineGraph;
using NodeSet = std::set<ZR::RefT<ZR::VOM::GUI::Graph::Node>>;

NodeSet everyNth(EngineGraph const &graph, unsigned first, unsigned step)
{
    NodeSet nodes;
    for (unsigned i = first; i < graph.numNodes(); i += step)
        nodes.emplace(graph.node(i));
    return nodes;
}

void measure(std::string const &shape, NumberedGraph const &links, Table &table)
{
    constexpr int repeat = 9;
    const EngineGraph graph(links);
    const unsigned num = graph.numNodes();
    const NodeSet first = everyNth(graph, 0, num), last = everyNth(graph, num - 1, num);
    const NodeSet dropped = everyNth(graph, 0, 100);
    NodeSet starts = everyNth(graph, 7, 20);
    starts.insert(dropped.begin(), dropped.end());
    const auto search = [&](NodeSet const &from, NodeSet const &to) {
        return timesOf(repeat, [&] {
            NodeSet route;
            findAllRoutes(from, to, route);
        });
    };
    table.add(shape + ", one", num, search(first, last));
    table.add(shape + ", drop", num, search(starts, dropped));
}

} // namespace

int main(int argc, char **argv)
{
    // Nothing is to be seen, and there may be no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    unsigned largest = 500000;
    if (argc == 3 && std::strcmp(argv[1], "--largest") == 0)
        largest = static_cast<unsigned>(std::atoi(argv[2]));
    else if (argc != 1) {
        std::fprintf(stderr, "usage: routes [--largest NODES]\n");
        return 2;
    }
    Table table;
    for (unsigned num = 5000; num <= largest; num *= 10) {
        std::mt19937 generator(num);
        measure("chain", chainGraph(num), table);
        measure("web", randomGraph(num, 2 * num, generator), table);
        measure("scatter", randomGraph(num, num / 2, generator), table);
    }
    return 0;
}
