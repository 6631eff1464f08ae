#include "support/ViewGraph.h"

#include <QTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::Node;

namespace {

std::vector<RefT<Node>> split(ViewGraph &graph, unsigned from, unsigned to, unsigned count)
{
    return GraphViewAccess::split(graph.view, graph.node(from), graph.node(to), count);
}

void unsplit(ViewGraph &graph, unsigned from, unsigned to)
{
    GraphViewAccess::unsplit(graph.view, graph.node(from), graph.node(to));
}

/// The only entry of a map, as text such as "to via d1, 3": far end, next hop and count. The nodes
/// are named by `names`.
QString onlyEntry(Graph::LinkMap const &map, std::map<Node const *, QString> const &names)
{
    if (map.size() != 1)
        return QString("%1 entries").arg(map.size());
    auto const &[far, entry] = *map.begin();
    const auto name = [&](Node const *node) { return node ? names.at(node) : QString("none"); };
    return QString("%1 via %2, %3").arg(name(far.get()), name(entry.split.get())).arg(entry.count);
}

/// A chain 0 -> 1 -> ... -> n - 1 beside the links that are asked for, so that these become long.
std::vector<NumberedGraph::Link> besideChain(unsigned numNodes,
                                             std::vector<NumberedGraph::Link> links)
{
    for (auto const &link : chainGraph(numNodes).links)
        links.push_back(link);
    return links;
}

} // namespace

class tst_LongLinks : public QObject {
    Q_OBJECT

private slots:
    // Splitting a link, and making it direct again.
    void splitLinkHasOneEntryEachWay();
    void splitByNoneMakesNothing();
    void splitOfAMissingLinkMakesNothing_data();
    void splitOfAMissingLinkMakesNothing();
    void intermediateNodeIsVisibleFromBirth();
    void intermediateNodeIsNoneOfTheViewsNodes();
    void stationsStopShortOfTheFarEnd_data();
    void stationsStopShortOfTheFarEnd();
    void negativeCoordinatesGiveVeryLargeStations();
    void currentPositionOfAStationMixesXWithY();
    void unsplitMakesTheLinkDirectAndLetsTheChainGo();
    void unsplitOfADirectLinkLeavesItDirect();
    void unsplitOfAMissingLinkDoesNothing();
    void heldStationOfAGoneChainIsUnlinked();
    void splitAgainReplacesTheChain();

    // Links that change while they are split.
    void linkAddsAlongTheChain();
    void unlinkSubtractsAlongTheChain();
    void unlinkOfTheLastReferenceDissolvesTheChain();
    void deathOfAnEndDissolvesTheChain();
    void hidingANodeMakesItsLinksDirect();
    void longChainComesAndGoesWithoutADeepStack();

    // Long links in the layout.
    void linkToTheNextLayerIsNotSplit();
    void linkOverOneLayerGetsOneNodeAThirdOfTheWay();
    void linkGetsOneNodeForEachLayerBetween();
    void countGoesAlongTheWholeChain();
    void chainOfATurnedLinkIsKeyedByItsRealEnds();
    void nextLayoutMakesNewChains();
    void chainGoesWhenItsLinkGetsShort();
};

void tst_LongLinks::splitLinkHasOneEntryEachWay()
{
    ViewGraph graph(2, {{0, 1}, {0, 1}, {0, 1}});
    const auto chain = split(graph, 0, 1, 3);
    QCOMPARE(chain.size(), std::size_t(3));
    const std::map<Node const *, QString> names{{&graph.node(0), "from"},
                                                {&graph.node(1), "to"},
                                                {chain[0].get(), "d1"},
                                                {chain[1].get(), "d2"},
                                                {chain[2].get(), "d3"}};
    QCOMPARE(onlyEntry(graph.node(0).linkedOut, names), QString("to via d1, 3"));
    QCOMPARE(onlyEntry(chain[0]->linkedIn, names), QString("from via none, 3"));
    QCOMPARE(onlyEntry(chain[0]->linkedOut, names), QString("to via d2, 3"));
    QCOMPARE(onlyEntry(chain[1]->linkedIn, names), QString("from via d1, 3"));
    QCOMPARE(onlyEntry(chain[1]->linkedOut, names), QString("to via d3, 3"));
    QCOMPARE(onlyEntry(chain[2]->linkedIn, names), QString("from via d2, 3"));
    QCOMPARE(onlyEntry(chain[2]->linkedOut, names), QString("to via none, 3"));
    QCOMPARE(onlyEntry(graph.node(1).linkedIn, names), QString("from via d3, 3"));
    QVERIFY(graph.node(0).linkedIn.empty());
    QVERIFY(graph.node(1).linkedOut.empty());
    QVERIFY(graph.chain(0, 1) == chain);
}

void tst_LongLinks::splitByNoneMakesNothing()
{
    ViewGraph graph(2, {{0, 1}});
    QVERIFY(split(graph, 0, 1, 0).empty());
    QVERIFY(split(graph, 1, 0, 0).empty());
    QCOMPARE(graph.links(), QString("0>1"));
    QVERIFY(graph.chain(0, 1).empty());

    // A chain that is there isn't looked at.
    const auto chain = split(graph, 0, 1, 2);
    QVERIFY(split(graph, 0, 1, 0).empty());
    QVERIFY(graph.chain(0, 1) == chain);
}

void tst_LongLinks::splitOfAMissingLinkMakesNothing_data()
{
    QTest::addColumn<unsigned>("from");
    QTest::addColumn<unsigned>("to");
    QTest::newRow("no link at all") << 0u << 2u;
    QTest::newRow("link the other way") << 1u << 0u;
    QTest::newRow("node and itself") << 2u << 2u;
}

void tst_LongLinks::splitOfAMissingLinkMakesNothing()
{
    QFETCH(unsigned, from);
    QFETCH(unsigned, to);
    ViewGraph graph(3, {{0, 1}});
    QVERIFY(split(graph, from, to, 2).empty());
    QCOMPARE(graph.links(), QString("0>1"));
    QVERIFY(graph.chain(0, 1).empty());
}

void tst_LongLinks::intermediateNodeIsVisibleFromBirth()
{
    ViewGraph graph(2, {{0, 1}});
    const auto chain = split(graph, 0, 1, 1);
    QVERIFY(chain[0]->visible);
    QVERIFY(chain[0]->isIntermediate());
    QVERIFY(!chain[0]->obj);
    QVERIFY(!chain[0]->selected);
    QCOMPARE(chain[0]->view, &graph.view);
}

void tst_LongLinks::intermediateNodeIsNoneOfTheViewsNodes()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}, {0, 2}});
    graph.show();
    QCOMPARE(graph.chain(0, 2).size(), std::size_t(1));
    QCOMPARE(GraphViewAccess::numNodes(graph.view), std::size_t(3));
    QCOMPARE(graph.view.getVisibleObjs().size(), std::size_t(3));
}

void tst_LongLinks::stationsStopShortOfTheFarEnd_data()
{
    QTest::addColumn<unsigned>("count");
    QTest::addColumn<QVector<int>>("places"); // Between 0 and 1200.
    QTest::newRow("one stands at a third") << 1u << QVector<int>{400};
    QTest::newRow("two stand at quarters") << 2u << QVector<int>{300, 600};
    QTest::newRow("three stand at fifths") << 3u << QVector<int>{240, 480, 720};
    QTest::newRow("division drops the rest") << 5u << QVector<int>{171, 342, 514, 685, 857};
}

/// KEPT in long links: the divisor is the number of nodes plus 2, so that the last piece is twice
/// as long as the others.
void tst_LongLinks::stationsStopShortOfTheFarEnd()
{
    QFETCH(unsigned, count);
    QFETCH(QVector<int>, places);
    ViewGraph graph(2, {{0, 1}});
    graph.node(1).fromX = 1200;
    graph.node(0).fromY = 1200;
    graph.node(1).toX = 2400;
    graph.node(0).toX = 1200;
    graph.node(1).toY = 1201;
    graph.node(0).toY = 1;
    const auto chain = split(graph, 0, 1, count);
    for (int i = 0; i < places.size(); ++i) {
        Node const &station = *chain[static_cast<std::size_t>(i)];
        QCOMPARE(station.fromX, places[i]);
        // Downwards from 1200; the rest is dropped here, too.
        const unsigned steps = count + 2;
        QCOMPARE(station.fromY,
                 static_cast<int>((steps - 1 - static_cast<unsigned>(i)) * 1200 / steps));
        QCOMPARE(station.toX, places[i] + 1200);
        QCOMPARE(station.toY, places[i] + 1);
    }
}

/// KEPT in long links: the division is unsigned.
void tst_LongLinks::negativeCoordinatesGiveVeryLargeStations()
{
    ViewGraph graph(2, {{0, 1}});
    graph.node(0).fromX = -9;
    graph.node(1).fromX = -9;
    graph.node(0).fromY = -300;
    graph.node(1).fromY = 600;
    graph.node(0).toX = -300;
    graph.node(1).toX = 900;
    graph.node(0).toY = -1;
    const auto chain = split(graph, 0, 1, 1);
    // 2^32 - 27, and a third of it.
    QCOMPARE(chain[0]->fromX, 1431655756);
    // The sum is what is divided, and may be 0 or more although one end is negative.
    QCOMPARE(chain[0]->fromY, 0);
    QCOMPARE(chain[0]->toX, 100);
    QCOMPARE(chain[0]->toY, 1431655764);
}

/// KEPT in long links: nobody sees the current position before the layout overwrites it.
void tst_LongLinks::currentPositionOfAStationMixesXWithY()
{
    ViewGraph graph(2, {{0, 1}});
    graph.node(0).x = 300;
    graph.node(0).y = 900;
    graph.node(1).x = 30;
    graph.node(1).y = 90;
    const auto chain = split(graph, 0, 1, 1);
    QCOMPARE(chain[0]->x, 500);
    QCOMPARE(chain[0]->y, 50);
}

void tst_LongLinks::unsplitMakesTheLinkDirectAndLetsTheChainGo()
{
    for (unsigned count : {1u, 4u}) {
        ViewGraph graph(2, {{0, 1}, {0, 1}});
        std::vector<PtrT<Node>> watched;
        for (RefT<Node> const &station : split(graph, 0, 1, count))
            watched.emplace_back(station);
        QVERIFY(watched.front());
        unsplit(graph, 0, 1);
        for (PtrT<Node> const &station : watched)
            QVERIFY(!station);
        QVERIFY(!graph.node(0).linkedOut.begin()->second.split);
        QVERIFY(!graph.node(1).linkedIn.begin()->second.split);
        QCOMPARE(graph.links(), QString("0>1x2"));
    }
}

void tst_LongLinks::unsplitOfADirectLinkLeavesItDirect()
{
    ViewGraph graph(2, {{0, 1}});
    unsplit(graph, 0, 1);
    QCOMPARE(graph.links(), QString("0>1"));
    QVERIFY(graph.chain(0, 1).empty());
}

void tst_LongLinks::unsplitOfAMissingLinkDoesNothing()
{
    ViewGraph graph(3, {{0, 1}});
    const auto chain = split(graph, 0, 1, 2);
    unsplit(graph, 1, 0);
    unsplit(graph, 0, 2);
    QVERIFY(graph.chain(0, 1) == chain);
}

void tst_LongLinks::heldStationOfAGoneChainIsUnlinked()
{
    ViewGraph graph(2, {{0, 1}});
    const auto chain = split(graph, 0, 1, 2);
    unsplit(graph, 0, 1);
    for (RefT<Node> const &station : chain) {
        QVERIFY(station->linkedIn.empty());
        QVERIFY(station->linkedOut.empty());
    }
}

void tst_LongLinks::splitAgainReplacesTheChain()
{
    ViewGraph graph(2, {{0, 1}});
    const PtrT<Node> first(split(graph, 0, 1, 1).front());
    const auto chain = split(graph, 0, 1, 3);
    QVERIFY(!first);
    QVERIFY(graph.chain(0, 1) == chain);
    QCOMPARE(graph.links(), QString("0>1"));
}

void tst_LongLinks::linkAddsAlongTheChain()
{
    ViewGraph graph(2, {{0, 1}});
    const auto chain = split(graph, 0, 1, 2);
    graph.model.links(0).replace(0, 0, {graph.obj(1), graph.obj(1)});
    QCOMPARE(graph.links(), QString("0>1x3"));
    for (RefT<Node> const &station : chain) {
        QCOMPARE(station->linkedIn.begin()->second.count, 3u);
        QCOMPARE(station->linkedOut.begin()->second.count, 3u);
    }
}

void tst_LongLinks::unlinkSubtractsAlongTheChain()
{
    ViewGraph graph(2, {{0, 1}, {0, 1}, {0, 1}});
    const auto chain = split(graph, 0, 1, 2);
    graph.model.links(0).replace(0, 1, {});
    QCOMPARE(graph.links(), QString("0>1x2"));
    QVERIFY(graph.chain(0, 1) == chain);
    for (RefT<Node> const &station : chain) {
        QCOMPARE(station->linkedIn.begin()->second.count, 2u);
        QCOMPARE(station->linkedOut.begin()->second.count, 2u);
    }
}

void tst_LongLinks::unlinkOfTheLastReferenceDissolvesTheChain()
{
    ViewGraph graph(2, {{0, 1}, {0, 1}});
    const PtrT<Node> station(split(graph, 0, 1, 2).front());
    graph.model.links(0).replace(0, 1, {});
    QVERIFY(station);
    graph.model.links(0).replace(0, 1, {});
    QVERIFY(!station);
    QCOMPARE(graph.links(), QString());
}

void tst_LongLinks::deathOfAnEndDissolvesTheChain()
{
    for (unsigned end : {0u, 2u}) {
        ViewGraph graph(3, besideChain(3, {{0, 2}}));
        graph.show();
        const PtrT<Node> station(graph.chain(0, 2).front());
        QVERIFY(station);
        graph.view.remove({graph.obj(end)});
        QVERIFY(!station);
        QCOMPARE(graph.view.getObjs().size(), std::size_t(2));
    }
}

void tst_LongLinks::hidingANodeMakesItsLinksDirect()
{
    for (unsigned hidden : {0u, 3u}) {
        ViewGraph graph(4, besideChain(4, {{0, 3}, {1, 3}, {0, 2}}));
        graph.show();
        QCOMPARE(graph.chain(0, 3).size(), std::size_t(2));
        graph.hide(hidden);
        QCOMPARE(graph.chain(0, 3).size(), std::size_t(0));
        QCOMPARE(graph.chain(0, 2).size(), std::size_t(hidden == 0 ? 0 : 1));
        QCOMPARE(graph.chain(1, 3).size(), std::size_t(hidden == 0 ? 1 : 0));
        QCOMPARE(graph.links(), QString("0>1 0>2 0>3 1>2 1>3 2>3"));
    }
}

void tst_LongLinks::longChainComesAndGoesWithoutADeepStack()
{
    constexpr unsigned n = 200000;
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    QCOMPARE(split(graph, 0, 1, n).size(), std::size_t(n));
    unsplit(graph, 0, 1);
    split(graph, 0, 1, n);
    graph.model.links(0).replace(0, 1, {});
    QCOMPARE(graph.links(), QString("1>2"));
    // This one goes with the view.
    split(graph, 1, 2, n);
    QCOMPARE(graph.chain(1, 2).size(), std::size_t(n));
}

void tst_LongLinks::linkToTheNextLayerIsNotSplit()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, 0u);
    QVERIFY(graph.chain(0, 1).empty());
    QVERIFY(graph.chain(1, 2).empty());
}

void tst_LongLinks::linkOverOneLayerGetsOneNodeAThirdOfTheWay()
{
    ViewGraph graph(3, besideChain(3, {{0, 2}}));
    graph.view.setPos(graph.obj(0), 100, 50, false);
    graph.view.setPos(graph.obj(2), 400, 80, false);
    graph.show();
    QCOMPARE(graph.layers(), QString("0|1 *|2"));
    const auto chain = graph.chain(0, 2);
    QCOMPARE(chain.size(), std::size_t(1));
    QCOMPARE(chain[0]->fromX, 200);
    QCOMPARE(chain[0]->fromY, 60);
    // It starts there.
    QCOMPARE(chain[0]->x, 200);
    QCOMPARE(chain[0]->y, 60);
}

void tst_LongLinks::linkGetsOneNodeForEachLayerBetween()
{
    ViewGraph graph(6, besideChain(6, {{0, 5}, {1, 3}, {2, 5}}));
    graph.show();
    QCOMPARE(graph.layers(), QString("0|1 *|2 * *|3 * *|4 * *|5"));
    QCOMPARE(graph.chain(0, 5).size(), std::size_t(4));
    QCOMPARE(graph.chain(1, 3).size(), std::size_t(1));
    QCOMPARE(graph.chain(2, 5).size(), std::size_t(2));
    const auto chain = graph.chain(0, 5);
    for (unsigned i = 0; i < 4; ++i)
        QCOMPARE(chain[i]->toY, graph.node(i + 1).toY);
}

void tst_LongLinks::countGoesAlongTheWholeChain()
{
    ViewGraph graph(4, besideChain(4, {{0, 3}, {0, 3}, {0, 3}}));
    graph.show();
    const auto chain = graph.chain(0, 3);
    QCOMPARE(chain.size(), std::size_t(2));
    for (RefT<Node> const &station : chain) {
        QCOMPARE(station->linkedIn.begin()->second.count, 3u);
        QCOMPARE(station->linkedOut.begin()->second.count, 3u);
    }
}

void tst_LongLinks::chainOfATurnedLinkIsKeyedByItsRealEnds()
{
    ViewGraph graph(4, besideChain(4, {{3, 0}, {3, 0}}));
    graph.show();
    const auto chain = graph.chain(3, 0);
    QCOMPARE(chain.size(), std::size_t(2));
    const std::map<Node const *, QString> names{{&graph.node(3), "from"},
                                                {&graph.node(0), "to"},
                                                {chain[0].get(), "d1"},
                                                {chain[1].get(), "d2"}};
    QCOMPARE(onlyEntry(graph.node(3).linkedOut, names), QString("to via d1, 2"));
    QCOMPARE(onlyEntry(chain[0]->linkedIn, names), QString("from via none, 2"));
    QCOMPARE(onlyEntry(chain[0]->linkedOut, names), QString("to via d2, 2"));
    QCOMPARE(onlyEntry(chain[1]->linkedIn, names), QString("from via d1, 2"));
    QCOMPARE(onlyEntry(chain[1]->linkedOut, names), QString("to via none, 2"));
    QCOMPARE(onlyEntry(graph.node(0).linkedIn, names), QString("from via d2, 2"));
}

void tst_LongLinks::nextLayoutMakesNewChains()
{
    ViewGraph graph(3, besideChain(3, {{0, 2}}));
    graph.show();
    const RefT<Node> held = graph.chain(0, 2).front();
    graph.view.layout();
    QCOMPARE(graph.chain(0, 2).size(), std::size_t(1));
    QVERIFY(graph.chain(0, 2).front() != held);
    QVERIFY(held->linkedIn.empty());
    QVERIFY(held->linkedOut.empty());
}

void tst_LongLinks::chainGoesWhenItsLinkGetsShort()
{
    ViewGraph graph(3, besideChain(3, {{0, 2}}));
    graph.show();
    const PtrT<Node> station(graph.chain(0, 2).front());
    graph.model.links(1).replace(0, 1, {});
    graph.view.layout();
    QVERIFY(!station);
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, 0u);
    QCOMPARE(graph.layers(), QString("0|1 2"));
}

QTEST_MAIN(tst_LongLinks)
#include "tst_LongLinks.moc"
