// Lays graphs out through the public interface of ObjectGraphView, offscreen, and prints a row for
// each.
//
//     ./run bench layout [--repeat N] [--csv] FILE...
//
// A file's first line is "n m", and m lines "tail head" follow, nodes numbered from 0. Each node is
// an object with a list of links, labelled by its number; all are shown at once. Times are medians
// of N runs (5 by default; 1 where a run takes over two seconds), in milliseconds: total_ms is the
// wall time and cpu_ms the processor time of the whole call that lays out, the others are those of
// the stages. split_nodes are the intermediate nodes, layers those of the component with the most,
// crossings those between adjacent layers, length the summed horizontal distance over all unit
// pieces of links, width and height those of the whole drawing. peak_kib is the peak of resident
// memory over what the process held before the first layout.
//
// The layout's orders descend from the addresses of nodes, so that counts vary a little from run to
// run where the system places memory at random.

#include "support/GraphModel.h"
#include "support/statistics.h"

#include <QApplication>
#include <QFontMetrics>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using ZR::VOM::GUI::LayoutFigures;
using ZR::VOM::GUI::ObjectGraphView;

struct Options {
    int repeat = 5;
    bool csv = false;
    std::vector<char const *> files;
};

bool readOptions(int argc, char **argv, Options &options)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc)
            options.repeat = std::atoi(argv[++i]);
        else if (std::strcmp(argv[i], "--csv") == 0)
            options.csv = true;
        else if (argv[i][0] == '-')
            return false;
        else
            options.files.push_back(argv[i]);
    }
    return options.repeat > 0 && !options.files.empty();
}

std::string graphName(std::string const &path)
{
    const std::size_t slash = path.rfind('/');
    const std::string file = slash == std::string::npos ? path : path.substr(slash + 1);
    return file.substr(0, file.rfind(".graph"));
}

/// A value in KiB that the system tells of this process, such as "VmHWM", the peak of resident
/// memory.
long memoryOfProcess(std::string const &key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, key.size() + 1, key + ":") == 0)
            return std::atol(line.c_str() + key.size() + 1);
    return 0;
}

void resetMemoryPeak()
{
    std::ofstream("/proc/self/clear_refs") << 5;
}

struct Run {
    LayoutFigures figures;
    double wall, processor;
    long peakMemory;
};

Run layOut(GraphModel const &model)
{
    ObjectGraphView view;
    model.addTo(view);
    resetMemoryPeak();
    const long memoryBefore = memoryOfProcess("VmRSS");
    const double wallStart = wallTime();
    const double processorStart = processorTime();
    view.setVisible(model.objs, true);
    Run run;
    run.processor = processorTime() - processorStart;
    run.wall = wallTime() - wallStart;
    run.peakMemory = memoryOfProcess("VmHWM") - memoryBefore;
    run.figures = view.getLayoutFigures();
    return run;
}

template <class Value>
double medianMilliseconds(std::vector<Run> const &runs, Value const &value)
{
    std::vector<double> values;
    for (Run const &run : runs)
        values.push_back(value(run) * 1000);
    return medianOf(values);
}

void printRow(std::string const &name, NumberedGraph const &graph, std::vector<Run> const &runs,
              bool csv)
{
    const auto median = [&](double LayoutFigures::*time) {
        return medianMilliseconds(runs, [&](Run const &run) { return run.figures.*time; });
    };
    LayoutFigures const &figures = runs.front().figures;
    char const *const format =
        csv ? "%s,%u,%zu,%u,%u,%u,%.0f,%d,%d,%.3f,%.3f,%.3f,%.3f,%.3f,%.3f,%.3f,%ld\n"
            : "%-18s %7u %7zu %8u %7u %10u %12.0f %9d %9d %9.2f %9.2f %9.2f %9.2f %9.2f %9.2f "
              "%9.2f "
              "%9ld\n";
    std::printf(format, name.c_str(), graph.numNodes, graph.links.size(), figures.splitNodes,
                figures.layers, figures.crossings, figures.length, figures.width, figures.height,
                median(&LayoutFigures::cyclesTime), median(&LayoutFigures::ranksTime),
                median(&LayoutFigures::splitTime), median(&LayoutFigures::orderTime),
                median(&LayoutFigures::coordsTime),
                medianMilliseconds(runs, [](Run const &run) { return run.wall; }),
                medianMilliseconds(runs, [](Run const &run) { return run.processor; }),
                runs.front().peakMemory);
}

void printHeader(bool csv)
{
    if (csv)
        std::puts("graph,nodes,links,split_nodes,layers,crossings,length,width,height,cycles_ms,"
                  "ranks_ms,split_ms,order_ms,coords_ms,total_ms,cpu_ms,peak_kib");
    else
        std::printf("%-18s %7s %7s %8s %7s %10s %12s %9s %9s %9s %9s %9s %9s %9s %9s %9s %9s\n",
                    "graph", "nodes", "links", "split", "layers", "crossings", "length", "width",
                    "height", "cycles_ms", "ranks_ms", "split_ms", "order_ms", "coords_ms",
                    "total_ms", "cpu_ms", "peak_kib");
}

/// One graph, in a process of its own: what one leaves behind in memory is not the next one's.
bool measure(char const *file, Options const &options)
{
    const NumberedGraph graph = readGraphFile(file);
    std::fflush(stdout);
    const pid_t child = fork();
    if (child != 0) {
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    GraphModel model(graph.numNodes);
    model.fill(graph);
    constexpr double longRun = 2;
    std::vector<Run> runs{layOut(model)};
    while (static_cast<int>(runs.size()) < options.repeat && runs.front().wall < longRun)
        runs.push_back(layOut(model));
    printRow(graphName(file), graph, runs, options.csv);
    std::fflush(stdout);
    _exit(0);
}

} // namespace

int main(int argc, char **argv)
{
    // Nothing is to be seen, and there may be no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    Options options;
    if (!readOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: layout [--repeat N] [--csv] FILE...\n");
        return 2;
    }
    // Loads the font, which isn't a cost of the first graph.
    QFontMetrics(QApplication::font()).size(0, QStringLiteral("'0'"));
    printHeader(options.csv);
    bool allDone = true;
    for (char const *file : options.files) {
        try {
            if (!measure(file, options)) {
                std::fprintf(stderr, "%s: the layout failed\n", file);
                allDone = false;
            }
        } catch (GraphFileError const &error) {
            std::fprintf(stderr, "%s\n", error.what());
            allDone = false;
        }
    }
    return allDone ? 0 : 1;
}
