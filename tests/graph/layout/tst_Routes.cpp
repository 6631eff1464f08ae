#include "support/EngineGraph.h"
#include "support/LiteralRoutes.h"
#include "support/ViewGraph.h"
#include "zrVOMGUI/graph/layout/Routes.h"

#include <QElapsedTimer>
#include <QTest>

#include <limits>
#include <numeric>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::EngineGraph;
using Graph::findAllRoutes;
using Links = std::vector<NumberedGraph::Link>;
using Numbers = std::vector<unsigned>;
using NodeSet = std::set<RefT<Graph::Node>>;

namespace {

template <class Nodes>
NodeSet nodesOf(Nodes const &graph, Numbers const &numbers)
{
    NodeSet nodes;
    for (unsigned number : numbers)
        nodes.emplace(graph.node(number));
    return nodes;
}

/// As text such as "0 3 4".
QString numbersOf(ViewGraph const &graph, NodeSet const &nodes)
{
    QStringList numbers;
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        if (nodes.count(graph.ref(i)) != 0)
            numbers << QString::number(i);
    return numbers.join(' ');
}

/// What a search answers: the nodes on routes, or "-" when there is none.
QString answer(ViewGraph const &graph, bool found, NodeSet const &route)
{
    if (found == route.empty())
        return found ? "found, but no route" : "a route, but not found";
    return found ? numbersOf(graph, route) : QString("-");
}

QString routes(ViewGraph const &graph, unsigned start, Numbers const &targets,
               Numbers const &path = {})
{
    NodeSet route;
    const bool found =
        findAllRoutes(graph.ref(start), nodesOf(graph, targets), nodesOf(graph, path), route);
    return answer(graph, found, route);
}

QString routesFromAll(ViewGraph const &graph, Numbers const &starts, Numbers const &targets)
{
    NodeSet route;
    const bool found = findAllRoutes(nodesOf(graph, starts), nodesOf(graph, targets), route);
    return answer(graph, found, route);
}

QString literalRoutes(ViewGraph const &graph, Numbers const &starts, Numbers const &targetNumbers,
                      Numbers const &pathNumbers = {})
{
    NodeSet targets = nodesOf(graph, targetNumbers), path = nodesOf(graph, pathNumbers), route;
    bool found = false;
    for (unsigned start : starts)
        found |= findAllRoutesLiterally(graph.ref(start), targets, path, route);
    return answer(graph, found, route);
}

/// Numbers below `num`, each one time in `odds`.
Numbers someOf(unsigned num, unsigned odds, std::mt19937 &generator)
{
    Numbers some;
    for (unsigned i = 0; i < num; ++i)
        if (drawBelow(generator, odds) == 0)
            some.push_back(i);
    return some;
}

/// Two long sides, the even and the odd numbers, and a rung between each two.
NumberedGraph ladderGraph(unsigned numNodes)
{
    NumberedGraph graph;
    graph.numNodes = numNodes;
    for (unsigned i = 0; i + 2 < numNodes; ++i)
        graph.links.emplace_back(i, i + 2);
    for (unsigned i = 0; i + 1 < numNodes; i += 2)
        graph.links.emplace_back(i, i + 1);
    return graph;
}

/// How many nodes are on routes.
unsigned numOnRoutes(EngineGraph const &graph, Numbers const &starts, Numbers const &targets)
{
    NodeSet route;
    const bool found = findAllRoutes(nodesOf(graph, starts), nodesOf(graph, targets), route);
    return found ? static_cast<unsigned>(route.size()) : 0;
}

QString describe(Links const &links, Numbers const &starts, Numbers const &targets,
                 Numbers const &path)
{
    QString text;
    for (auto const &[tail, head] : links)
        text += QString("%1>%2 ").arg(tail).arg(head);
    for (auto const &[what, numbers] :
         {std::pair("from", starts), {"to", targets}, {"off", path}}) {
        text += what;
        for (unsigned number : numbers)
            text += ' ' + QString::number(number);
        text += "; ";
    }
    return text;
}

} // namespace

class tst_Routes : public QObject {
    Q_OBJECT

private slots:
    void findsAllNodesOnRoutes_data();
    void findsAllNodesOnRoutes();
    void keepsOffThePath_data();
    void keepsOffThePath();
    void goesFromAllStartsToAllTargets_data();
    void goesFromAllStartsToAllTargets();
    void addsToTheRoute();
    void passesOverNullReferences();
    void goesThroughHiddenNodesAndNotThroughIntermediateOnes();
    void agreesWithTheWalkOverAllPaths_data();
    void agreesWithTheWalkOverAllPaths();

    void chainOfAMillionNodes();
    void star();
    void denseBlock();
    void ladderWithMoreRoutesThanAtoms();
    void manyStartsInOneRun();
    void timeGrowsLinearly_data();
    void timeGrowsLinearly();
};

void tst_Routes::findsAllNodesOnRoutes_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<Links>("links");
    QTest::addColumn<unsigned>("start");
    QTest::addColumn<Numbers>("targets");
    QTest::addColumn<QString>("wanted");
    const Links chain{{0, 1}, {1, 2}, {2, 3}};
    QTest::newRow("no target") << 4u << chain << 0u << Numbers{} << "-";
    QTest::newRow("start is the only target") << 4u << chain << 1u << Numbers{1} << "1";
    QTest::newRow("unreachable target") << 5u << chain << 0u << Numbers{4} << "-";
    QTest::newRow("along links") << 4u << chain << 0u << Numbers{2} << "0 1 2";
    QTest::newRow("against links") << 4u << chain << 3u << Numbers{1} << "1 2 3";
    QTest::newRow("on through a target") << 4u << chain << 0u << Numbers{1, 2} << "0 1 2";
    QTest::newRow("start among the targets") << 4u << chain << 1u << Numbers{1, 2} << "1 2";
    QTest::newRow("start among targets that can't be reached")
        << 6u << chain << 1u << Numbers{1, 4, 5} << "1";
    QTest::newRow("targets on both sides") << 4u << chain << 1u << Numbers{0, 3} << "0 1 2 3";
    QTest::newRow("both ways round a cycle")
        << 5u << Links{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {3, 4}} << 0u << Numbers{2} << "0 1 2 3";
    // 0 - 1 - 4, and a cycle that hangs on 1 by 2 and 3, one that hangs on 4 by 5 and 6
    QTest::newRow("no side cycle that comes back where it left")
        << 7u << Links{{0, 1}, {1, 2}, {2, 3}, {3, 1}, {1, 4}, {4, 5}, {5, 6}, {6, 4}} << 0u
        << Numbers{4} << "0 1 4";
    QTest::newRow("opposed links make no cycle")
        << 3u << Links{{0, 1}, {1, 0}, {1, 2}, {2, 1}} << 0u << Numbers{1} << "0 1";
    QTest::newRow("self-links lead nowhere")
        << 2u << Links{{0, 0}, {0, 1}, {1, 1}} << 0u << Numbers{1} << "0 1";
    QTest::newRow("a node with itself alone") << 2u << Links{{0, 0}} << 0u << Numbers{1} << "-";
}

void tst_Routes::findsAllNodesOnRoutes()
{
    QFETCH(unsigned, numNodes);
    QFETCH(Links, links);
    QFETCH(unsigned, start);
    QFETCH(Numbers, targets);
    QFETCH(QString, wanted);
    const ViewGraph graph(numNodes, links);
    QCOMPARE(literalRoutes(graph, {start}, targets), wanted);
    QCOMPARE(routes(graph, start, targets), wanted);
    // It may be asked again.
    QCOMPARE(routes(graph, start, targets), wanted);
    QCOMPARE(routesFromAll(graph, {start}, targets), wanted);
}

void tst_Routes::keepsOffThePath_data()
{
    QTest::addColumn<unsigned>("start");
    QTest::addColumn<Numbers>("targets");
    QTest::addColumn<Numbers>("path");
    QTest::addColumn<QString>("wanted");
    // 0 - 1 - 2 - 3 - 0, and 4 behind 3
    QTest::newRow("open") << 0u << Numbers{4} << Numbers{} << "0 1 2 3 4";
    QTest::newRow("one way closed") << 0u << Numbers{4} << Numbers{1} << "0 3 4";
    QTest::newRow("all ways closed") << 0u << Numbers{4} << Numbers{3} << "-";
    QTest::newRow("target closed") << 0u << Numbers{4} << Numbers{4} << "-";
    QTest::newRow("one target closed") << 0u << Numbers{2, 4} << Numbers{4} << "0 1 2 3";
    QTest::newRow("start itself") << 0u << Numbers{4} << Numbers{0, 1} << "0 3 4";
    QTest::newRow("start is a target") << 0u << Numbers{0} << Numbers{0, 1, 2, 3} << "0";
}

void tst_Routes::keepsOffThePath()
{
    QFETCH(unsigned, start);
    QFETCH(Numbers, targets);
    QFETCH(Numbers, path);
    QFETCH(QString, wanted);
    const ViewGraph graph(5, {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {3, 4}});
    QCOMPARE(literalRoutes(graph, {start}, targets, path), wanted);
    QCOMPARE(routes(graph, start, targets, path), wanted);
}

void tst_Routes::goesFromAllStartsToAllTargets_data()
{
    QTest::addColumn<Numbers>("starts");
    QTest::addColumn<Numbers>("targets");
    QTest::addColumn<QString>("wanted");
    // 0 - 1 - 2 - 3    4 - 5    6
    QTest::newRow("no start") << Numbers{} << Numbers{1, 4} << "-";
    QTest::newRow("no target") << Numbers{1, 4} << Numbers{} << "-";
    QTest::newRow("none of them meet") << Numbers{0, 1, 6} << Numbers{4, 5} << "-";
    QTest::newRow("some of them meet") << Numbers{1, 6} << Numbers{2, 4} << "1 2";
    QTest::newRow("in several parts") << Numbers{0, 5} << Numbers{2, 4} << "0 1 2 4 5";
    QTest::newRow("from both sides") << Numbers{0, 3} << Numbers{1} << "0 1 2 3";
    QTest::newRow("from start to start there is no need")
        << Numbers{0, 3} << Numbers{3, 6} << "0 1 2 3";
    QTest::newRow("targets that are their own starts") << Numbers{3, 6} << Numbers{3, 6} << "3 6";
    QTest::newRow("from target to target, since both are starts")
        << Numbers{1, 3} << Numbers{1, 3} << "1 2 3";
}

void tst_Routes::goesFromAllStartsToAllTargets()
{
    QFETCH(Numbers, starts);
    QFETCH(Numbers, targets);
    QFETCH(QString, wanted);
    const ViewGraph graph(7, {{0, 1}, {2, 1}, {2, 3}, {5, 4}});
    QCOMPARE(literalRoutes(graph, starts, targets), wanted);
    QCOMPARE(routesFromAll(graph, starts, targets), wanted);
}

void tst_Routes::addsToTheRoute()
{
    const ViewGraph graph(4, {{0, 1}});
    NodeSet route = nodesOf(graph, {0, 3});
    QVERIFY(findAllRoutes(graph.ref(0), nodesOf(graph, {1}), {}, route));
    QCOMPARE(numbersOf(graph, route), QString("0 1 3"));
    QVERIFY(!findAllRoutes(graph.ref(0), nodesOf(graph, {2}), {}, route));
    QCOMPARE(numbersOf(graph, route), QString("0 1 3"));
}

void tst_Routes::passesOverNullReferences()
{
    const ViewGraph graph(2, {{0, 1}});
    const NodeSet ends{{}, graph.ref(0)}, none{{}};
    NodeSet route;
    QVERIFY(!findAllRoutes(RefT<Graph::Node>(), ends, {}, route));
    QVERIFY(!findAllRoutes(graph.ref(1), none, {}, route));
    QVERIFY(!findAllRoutes(none, none, route));
    QVERIFY(route.empty());
    QVERIFY(findAllRoutes(graph.ref(1), ends, none, route));
    QCOMPARE(numbersOf(graph, route), QString("0 1"));
}

void tst_Routes::goesThroughHiddenNodesAndNotThroughIntermediateOnes()
{
    // 0 > 1 > 2 > 3, a long link beside them, and 4 behind.
    ViewGraph graph(5, {{0, 1}, {1, 2}, {2, 3}, {0, 3}, {3, 4}});
    graph.show();
    QCOMPARE(graph.chain(0, 3).size(), std::size_t(2));
    NodeSet route;
    QVERIFY(findAllRoutes(graph.ref(4), nodesOf(graph, {0}), {}, route));
    QCOMPARE(numbersOf(graph, route), QString("0 1 2 3 4"));
    QCOMPARE(route.size(), std::size_t(5));
    for (unsigned i : {0, 2, 4})
        graph.hide(i);
    QCOMPARE(routes(graph, 4, {0}), QString("0 1 2 3 4"));
}

void tst_Routes::agreesWithTheWalkOverAllPaths_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<unsigned>("numLinks");
    QTest::newRow("one node") << 1u << 1u;
    QTest::newRow("two nodes") << 2u << 2u;
    QTest::newRow("three nodes") << 3u << 4u;
    QTest::newRow("five nodes, few links") << 5u << 4u;
    QTest::newRow("five nodes, many links") << 5u << 12u;
    QTest::newRow("six nodes, dense") << 6u << 30u;
    QTest::newRow("nine nodes, mostly apart") << 9u << 6u;
    QTest::newRow("nine nodes, mostly trees") << 9u << 9u;
    QTest::newRow("nine nodes, some cycles") << 9u << 11u;
    QTest::newRow("nine nodes, many cycles") << 9u << 13u;
}

void tst_Routes::agreesWithTheWalkOverAllPaths()
{
    QFETCH(unsigned, numNodes);
    QFETCH(unsigned, numLinks);
    std::mt19937 generator(numNodes * 100 + numLinks);
    ViewGraph graph(numNodes);
    for (int turn = 0; turn < 4000; ++turn) {
        const Links links =
            randomGraph(numNodes, drawBelow(generator, numLinks + 1), generator).links;
        graph.fill(links);
        const unsigned start = drawBelow(generator, numNodes);
        const Numbers starts = someOf(numNodes, 3, generator);
        const Numbers targets = someOf(numNodes, 1 + drawBelow(generator, 5), generator);
        const Numbers path = someOf(numNodes, turn % 2 == 0 ? numNodes : ~0u, generator);
        const QString about =
            describe(links, starts, targets, path) + QString("start %1").arg(start);
        QVERIFY2(routesFromAll(graph, starts, targets) == literalRoutes(graph, starts, targets),
                 qPrintable(about));
        QVERIFY2(routes(graph, start, targets, path) ==
                     literalRoutes(graph, {start}, targets, path),
                 qPrintable(about));
    }
}

void tst_Routes::chainOfAMillionNodes()
{
    constexpr unsigned n = 1000000;
    const EngineGraph graph(chainGraph(n));
    QCOMPARE(numOnRoutes(graph, {0}, {n - 1}), n);
    QCOMPARE(numOnRoutes(graph, {n / 2}, {n - 1}), n / 2);
    QCOMPARE(numOnRoutes(graph, {n / 2}, {n / 4, n / 2 + 9}), n / 4 + 10);
}

void tst_Routes::star()
{
    constexpr unsigned n = 100000;
    NumberedGraph star;
    star.numNodes = n;
    for (unsigned i = 1; i < n; ++i)
        star.links.emplace_back(i % 2 == 0 ? 0 : i, i % 2 == 0 ? i : 0);
    const EngineGraph graph(star);
    QCOMPARE(numOnRoutes(graph, {1}, {n - 1}), 3u);
    QCOMPARE(numOnRoutes(graph, {0}, {n - 1}), 2u);
    Numbers leaves(n - 2);
    std::iota(leaves.begin(), leaves.end(), 2u);
    QCOMPARE(numOnRoutes(graph, {1}, leaves), n);
    QCOMPARE(numOnRoutes(graph, leaves, {1}), n);
}

void tst_Routes::denseBlock()
{
    // Each of 300 nodes linked to each other, and a tail of ten.
    constexpr unsigned n = 300, tail = 10;
    NumberedGraph dense;
    dense.numNodes = n + tail;
    for (unsigned i = 0; i < n; ++i)
        for (unsigned j = 0; j < n; ++j)
            dense.links.emplace_back(i, j);
    for (unsigned i = 0; i < tail; ++i)
        dense.links.emplace_back(n + i, n + i - 1);
    const EngineGraph graph(dense);
    QCOMPARE(numOnRoutes(graph, {0}, {1}), n);
    QCOMPARE(numOnRoutes(graph, {n + 1}, {n + 3}), 3u);
    QCOMPARE(numOnRoutes(graph, {n}, {n - 1}), 2u);
    QCOMPARE(numOnRoutes(graph, {n + tail - 1}, {n - 2}), n + tail);
}

void tst_Routes::ladderWithMoreRoutesThanAtoms()
{
    constexpr unsigned n = 50000;
    const EngineGraph graph(ladderGraph(n));
    QCOMPARE(numOnRoutes(graph, {0}, {n - 1}), n);
    QCOMPARE(numOnRoutes(graph, {7}, {8}), n);
}

void tst_Routes::manyStartsInOneRun()
{
    // Ten thousand chains of five, each with a start or a target at either end.
    constexpr unsigned n = 50000, length = 5;
    NumberedGraph chains;
    chains.numNodes = n;
    Numbers starts, targets;
    for (unsigned i = 0; i < n; ++i) {
        if (i % length != 0)
            chains.links.emplace_back(i, i - 1);
        if (i % length == 0)
            starts.push_back(i);
        if (i % (2 * length) == length - 1)
            targets.push_back(i);
    }
    const EngineGraph graph(chains);
    QCOMPARE(numOnRoutes(graph, starts, targets), n / 2);
}

void tst_Routes::timeGrowsLinearly_data()
{
    QTest::addColumn<bool>("isLadder");
    QTest::newRow("chain") << false;
    QTest::newRow("ladder") << true;
}

void tst_Routes::timeGrowsLinearly()
{
    QFETCH(bool, isLadder);
    // The least of several times, and room for a machine that is busy: of the square of the size it
    // would be 64 times as much.
    constexpr unsigned small = 20000, growth = 8, numStarts = 1000;
    const auto timeOf = [&](unsigned n) {
        const EngineGraph graph(isLadder ? ladderGraph(n) : chainGraph(n));
        Numbers starts;
        for (unsigned i = 0; i < numStarts; ++i)
            starts.push_back(i * (n / numStarts));
        const NodeSet from = nodesOf(graph, starts), to = nodesOf(graph, {n - 1, n / 2});
        qint64 least = std::numeric_limits<qint64>::max();
        for (int turn = 0; turn < 5; ++turn) {
            NodeSet route;
            QElapsedTimer timer;
            timer.start();
            findAllRoutes(from, to, route);
            least = std::min(least, timer.nsecsElapsed());
        }
        return least;
    };
    const qint64 before = timeOf(small);
    const qint64 after = timeOf(growth * small);
    QVERIFY2(after < before * growth * 4,
             qPrintable(QString("%1 ns, then %2 ns").arg(before).arg(after)));
}

QTEST_MAIN(tst_Routes)
#include "tst_Routes.moc"
