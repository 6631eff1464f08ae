// The layout beside a widely used peer of the same published method: the `dot` engine of Graphviz,
// called in process, with edge routing off and the same node sizes and gaps.
//
//     ./run bench compare [--limit SECONDS] [--repeat N] FILE...
//
// A row for each graph: processor time of the layout call alone, in milliseconds, the median of N
// runs (3 by default; 1 where a run takes over a second), of ours, of the peer's, and how many
// times ours fits into the peer's. The peer is given up after --limit seconds (150 by default), and
// its time is then shown as ">limit". At the end the targets, each with what was reached:
// - no graph slower than the peer;
// - at least 10 times faster as the geometric mean over the graphs of 400 nodes and more;
// - every graph that the peer finishes within a minute in 4 seconds.
//
// Load inflates processor time, for both in the same way: compare within one run only. Each layout
// runs in a process of its own, so that one can't leave the other a heated or crowded heap.

#include "support/GraphModel.h"
#include "support/statistics.h"

#include <QApplication>
#include <QFontMetrics>
#include <QStyle>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#ifdef HAS_GRAPHVIZ
#include <graphviz/gvc.h>
#endif

namespace {

constexpr double notFinished = -1;

struct Options {
    double limit = 150;
    int repeat = 3;
    std::vector<char const *> files;
};

bool readOptions(int argc, char **argv, Options &options)
{
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "--limit") == 0 && hasValue)
            options.limit = std::atof(argv[++i]);
        else if (std::strcmp(argv[i], "--repeat") == 0 && hasValue)
            options.repeat = std::atoi(argv[++i]);
        else if (argv[i][0] == '-')
            return false;
        else
            options.files.push_back(argv[i]);
    }
    return options.limit > 0 && options.repeat > 0 && !options.files.empty();
}

/// Median processor time of a layout, which `layOut` does once and returns the time of.
template <class LayOut>
double medianTime(int repeat, LayOut const &layOut)
{
    std::vector<double> times{layOut()};
    while (static_cast<int>(times.size()) < repeat && times.front() < 1)
        times.push_back(layOut());
    return medianOf(times);
}

/// What `measure` returns in a process of its own, or notFinished after `limit` seconds.
template <class Measure>
double inOwnProcess(double limit, Measure const &measure)
{
    int ends[2];
    if (pipe(ends) != 0)
        return notFinished;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        alarm(static_cast<unsigned>(std::ceil(limit)));
        const double time = measure();
        const bool isWritten = write(ends[1], &time, sizeof time) == sizeof time;
        _exit(isWritten ? 0 : 1);
    }
    close(ends[1]);
    double time = notFinished;
    if (read(ends[0], &time, sizeof time) != sizeof time)
        time = notFinished;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return time;
}

double measureOurs(NumberedGraph const &graph, int repeat)
{
    GraphModel model(graph.numNodes);
    model.fill(graph);
    return medianTime(repeat, [&] {
        ZR::VOM::GUI::ObjectGraphView view;
        model.addTo(view);
        const double start = processorTime();
        view.setVisible(model.objs, true);
        return processorTime() - start;
    });
}

#ifdef HAS_GRAPHVIZ
/// The size of the box that the view gives a node, whose label is its number.
QSize boxSize(unsigned node)
{
    const int icon = QApplication::style()->pixelMetric(QStyle::PM_ListViewIconSize);
    const QSize text = QFontMetrics(QApplication::font()).size(0, QStringLiteral("'%1'").arg(node));
    constexpr int margin = 2;
    return {3 * margin + text.width() + icon, std::max(icon, text.height()) + 2 * (icon + margin)};
}

void set(void *element, char const *name, std::string value)
{
    char empty[] = "";
    agsafeset(element, const_cast<char *>(name), value.data(), empty);
}

double measurePeer(NumberedGraph const &graph, int repeat)
{
    constexpr double pointsPerInch = 72;
    GVC_t *const context = gvContext();
    return medianTime(repeat, [&] {
        char name[] = "g";
        Agraph_t *const peer = agopen(name, Agdirected, nullptr);
        set(peer, "splines", "none");
        set(peer, "nodesep", std::to_string(8 / pointsPerInch));
        set(peer, "ranksep", std::to_string(8 / pointsPerInch));
        std::vector<Agnode_t *> nodes;
        for (unsigned i = 0; i < graph.numNodes; ++i) {
            nodes.push_back(agnode(peer, std::to_string(i).data(), 1));
            const QSize size = boxSize(i);
            set(nodes.back(), "shape", "box");
            set(nodes.back(), "fixedsize", "true");
            set(nodes.back(), "label", "");
            set(nodes.back(), "width", std::to_string(size.width() / pointsPerInch));
            set(nodes.back(), "height", std::to_string(size.height() / pointsPerInch));
        }
        for (auto const &[tail, head] : graph.links)
            agedge(peer, nodes[tail], nodes[head], nullptr, 1);
        const double start = processorTime();
        gvLayout(context, peer, "dot");
        const double time = processorTime() - start;
        gvFreeLayout(context, peer);
        agclose(peer);
        return time;
    });
}
#endif

/// What the targets are judged by.
struct Summary {
    unsigned numSlower = 0;
    unsigned numCompared = 0;
    double sumOfLogs = 0; // Of the ratios of large graphs.
    unsigned numLarge = 0;
    double slowestOfMinute = 0; // Ours, among the graphs that the peer finishes within a minute.

    void add(NumberedGraph const &graph, double ours, double peer, double limit)
    {
        constexpr unsigned large = 400;
        const bool isFinished = peer != notFinished;
        const double ratio = (isFinished ? peer : limit) / ours;
        ++numCompared;
        numSlower += ratio < 1;
        if (graph.numNodes >= large) {
            sumOfLogs += std::log(ratio);
            ++numLarge;
        }
        if (isFinished && peer <= 60)
            slowestOfMinute = std::max(slowestOfMinute, ours);
    }

    void print() const
    {
        std::printf("\n%u of %u graphs slower than the peer\n", numSlower, numCompared);
        if (numLarge != 0)
            std::printf(
                "%.1f times faster as the geometric mean of %u graphs of 400 nodes and more\n",
                std::exp(sumOfLogs / numLarge), numLarge);
        std::printf("%.0f ms for the slowest graph that the peer finishes within a minute\n",
                    slowestOfMinute * 1000);
    }
};

std::string graphName(std::string const &path)
{
    const std::size_t slash = path.rfind('/');
    const std::string file = slash == std::string::npos ? path : path.substr(slash + 1);
    return file.substr(0, file.rfind(".graph"));
}

void compare(Options const &options)
{
    Summary summary;
    std::printf("%-18s %7s %7s %12s %12s %8s\n", "graph", "nodes", "links", "ours_ms", "peer_ms",
                "ratio");
    for (char const *file : options.files) {
        const NumberedGraph graph = readGraphFile(file);
        constexpr double patience = 600;
        const double ours =
            inOwnProcess(patience, [&] { return measureOurs(graph, options.repeat); });
        std::printf("%-18s %7u %7zu %12.2f", graphName(file).c_str(), graph.numNodes,
                    graph.links.size(), ours * 1000);
        std::fflush(stdout);
#ifdef HAS_GRAPHVIZ
        const double peer =
            inOwnProcess(options.limit, [&] { return measurePeer(graph, options.repeat); });
        if (peer == notFinished)
            std::printf(" %12s %8s\n", ">limit", "");
        else
            std::printf(" %12.2f %8.1f\n", peer * 1000, peer / ours);
        summary.add(graph, ours, peer, options.limit);
#else
        std::printf(" %12s\n", "-");
#endif
        std::fflush(stdout);
    }
#ifdef HAS_GRAPHVIZ
    summary.print();
#else
    std::printf("\nGraphviz isn't installed here (package libgraphviz-dev): no comparison.\n");
#endif
}

} // namespace

int main(int argc, char **argv)
{
    // Nothing is to be seen, and there may be no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    Options options;
    if (!readOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: compare [--limit SECONDS] [--repeat N] FILE...\n");
        return 2;
    }
    try {
        compare(options);
    } catch (std::exception const &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
