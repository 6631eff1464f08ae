#include "support/LiteralRoutes.h"
#include "support/ViewGraph.h"
#include "zrVOMGUI/graph/layout/Routes.h"

#include <QtTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::findAllRoutes;
using Links = std::vector<NumberedGraph::Link>;
using Numbers = std::vector<unsigned>;
using NodeSet = std::set<RefT<Graph::Node>>;

namespace {

NodeSet nodesOf(ViewGraph const &graph, Numbers const &numbers)
{
    NodeSet nodes;
    for (unsigned number : numbers)
        nodes.insert(graph.ref(number));
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
    void agreesWithTheWalkOverAllPaths_data();
    void agreesWithTheWalkOverAllPaths();
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
    // 0 - 1 - 2    4 - 5
    //     | \ /    | \ /
    //     |  3  -- 4  6
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

QTEST_MAIN(tst_Routes)
#include "tst_Routes.moc"
