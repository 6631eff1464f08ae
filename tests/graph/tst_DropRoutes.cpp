#include "support/LiteralRoutes.h"
#include "support/QtStrings.h"
#include "support/SentDrag.h"
#include "support/ViewCheck.h"
#include "support/ViewGraph.h"
#include "support/ViewProbe.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QElapsedTimer>
#include <QMimeData>
#include <QTest>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;
using NodeSet = std::set<RefT<Node>>;

// What becomes visible by a drop, over made graphs.

namespace {

bool drop(ObjectGraphView &view, std::vector<RefT<VOM::Object>> const &objs)
{
    const std::unique_ptr<QMimeData> data(createMimeData({}, &objs, nullptr));
    return SentDrag(view).run({50, 50}, data.get());
}

/// Takes everything that is linked to the node, in either direction and by members of the set, out
/// of the set.
void removeLinked(RefT<Node> const &node, NodeSet &set)
{
    std::vector<RefT<Node>> open{node};
    while (!open.empty()) {
        const RefT<Node> at = open.back();
        open.pop_back();
        for (Graph::LinkMap const *links : {&at->linkedOut, &at->linkedIn})
            for (auto const &[far, entry] : *links)
                if (set.erase(RefT<Node>(far)) != 0)
                    open.emplace_back(far);
    }
}

/// The lowest node of each part of what is visible.
NodeSet startsIn(ViewGraph const &graph)
{
    NodeSet visible;
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        if (graph.node(i).visible)
            visible.insert(graph.ref(i));
    NodeSet starts;
    while (!visible.empty()) {
        const RefT<Node> lowest = *visible.begin();
        starts.insert(lowest);
        visible.erase(visible.begin());
        removeLinked(lowest, visible);
    }
    return starts;
}

/// What a drop of the hidden nodes shows: each path of the graph walked once.
NodeSet routesTo(ViewGraph const &graph, NodeSet const &hidden)
{
    NodeSet starts = startsIn(graph);
    starts.insert(hidden.begin(), hidden.end());
    NodeSet route;
    for (RefT<Node> const &start : starts) {
        NodeSet targets = hidden, path;
        findAllRoutesLiterally(start, targets, path, route);
    }
    return route;
}

/// Such as "0+ 1 2+*".
QString stateOf(std::vector<bool> const &visible, std::vector<bool> const &selected)
{
    QStringList texts;
    for (std::size_t i = 0; i < visible.size(); ++i)
        texts << QString::number(i) + (visible[i] ? "+" : "") + (selected[i] ? "*" : "");
    return texts.join(' ');
}

QString stateOf(ViewGraph const &graph)
{
    std::vector<bool> visible, selected;
    for (unsigned i = 0; i < graph.numNodes(); ++i) {
        visible.push_back(graph.node(i).visible);
        selected.push_back(graph.node(i).selected);
    }
    return stateOf(visible, selected);
}

/// Drops some random nodes, and holds the outcome against the literal search.
void checkDrop(ViewGraph &graph, std::mt19937 &generator)
{
    std::vector<bool> visible, selected;
    std::vector<RefT<VOM::Object>> objs;
    NodeSet hidden;
    for (unsigned i = 0; i < graph.numNodes(); ++i) {
        const bool isDropped = drawBelow(generator, 4) == 0;
        visible.push_back(graph.node(i).visible);
        selected.push_back(isDropped);
        if (!isDropped)
            continue;
        objs.push_back(graph.obj(i));
        if (!graph.node(i).visible)
            hidden.insert(graph.ref(i));
    }
    if (objs.empty())
        return;
    std::shuffle(objs.begin(), objs.end(), generator);
    const NodeSet route = routesTo(graph, hidden);
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        visible[i] = visible[i] || route.count(graph.ref(i)) != 0;

    QVERIFY(drop(graph.view, objs));
    QCOMPARE(stateOf(graph), stateOf(visible, selected));
    QCOMPARE(faultsOf(graph.view), ""s);
}

/// The shortest of some runs, in seconds.
template <class Action>
double secondsOf(Action const &action)
{
    double least = 1e9;
    for (int i = 0; i < 5; ++i) {
        QElapsedTimer timer;
        timer.start();
        action();
        least = std::min(least, double(timer.nsecsElapsed()) * 1e-9);
    }
    return least;
}

} // namespace

class tst_DropRoutes : public QObject {
    Q_OBJECT

private slots:
    void showsWhatTheLiteralSearchFinds_data();
    void showsWhatTheLiteralSearchFinds();
    void manyRoutesTakeNoTime();
    void timeOfADropGrowsWithTheObjects();
};

void tst_DropRoutes::showsWhatTheLiteralSearchFinds_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 60; ++seed)
        QTest::newRow(std::to_string(seed).c_str()) << seed;
}

void tst_DropRoutes::showsWhatTheLiteralSearchFinds()
{
    QFETCH(unsigned, seed);
    std::mt19937 generator(seed);
    const unsigned numNodes = 2 + drawBelow(generator, 9);
    ViewGraph graph(randomGraph(numNodes, drawBelow(generator, 2 * numNodes), generator));
    std::vector<RefT<VOM::Object>> shown;
    for (unsigned i = 0; i < numNodes; ++i)
        if (drawBelow(generator, 4) == 0)
            shown.push_back(graph.obj(i));
    graph.view.setVisible(shown, true);
    // One drop after another, until most is shown.
    for (int i = 0; i < 4; ++i) {
        checkDrop(graph, generator);
        if (QTest::currentTestFailed())
            return;
    }
}

// A ladder of n rungs has 2^n routes from one end to the other.
void tst_DropRoutes::manyRoutesTakeNoTime()
{
    constexpr unsigned numRungs = 200;
    std::vector<NumberedGraph::Link> links;
    for (unsigned i = 0; i < numRungs; ++i) {
        links.emplace_back(2 * i, 2 * i + 1);
        if (i != 0)
            for (unsigned side : {0, 1})
                links.emplace_back(2 * i - 2 + side, 2 * i + side);
    }
    ViewGraph graph(2 * numRungs, links);
    graph.show(0);
    QVERIFY(drop(graph.view, {graph.obj(2 * numRungs - 1)}));
    QCOMPARE(graph.view.getVisibleObjs().size(), std::size_t(2 * numRungs));
}

void tst_DropRoutes::timeOfADropGrowsWithTheObjects()
{
    constexpr unsigned numObjs = 50000, factor = 8;
    const auto secondsFor = [](unsigned num) {
        ViewGraph graph(num);
        graph.showWithoutLayout();
        return secondsOf([&] { QVERIFY(drop(graph.view, graph.model.objs)); });
    };
    const double few = secondsFor(numObjs / factor), many = secondsFor(numObjs);
    // Half way from in proportion to in proportion to the square, on a scale of powers.
    QVERIFY2(
        many < few * factor * 3,
        qPrintable(QString("%1 s, and %2 s for %3 times as many").arg(few).arg(many).arg(factor)));
}

QTEST_MAIN(tst_DropRoutes)
#include "tst_DropRoutes.moc"
