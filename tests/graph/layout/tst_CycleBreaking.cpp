#include "support/LayoutOracle.h"
#include "support/ViewGraph.h"

#include <QTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::LayoutOracle;
using Links = std::vector<NumberedGraph::Link>;

class tst_CycleBreaking : public QObject {
    Q_OBJECT

private slots:
    void layersAndLinks_data();
    void layersAndLinks();
    void opposedPairBecomesOneLinkTheWayOfTheTurnedOne();
    void lostOppositeLinkComesBackWhenLinksAreRebuilt();
    void lostOppositeLinkCanBeTakenAway();
    void turnedLinkKeepsItsCount();
    void turnedLinkTakesAForwardLinkAlong();
    void turnedLongLinkRunsTheWayOfTheModel();
    void selfLinkIsSteppedOver();
    void selfLinkAmongACycleIsSteppedOver();
    void linksToHiddenNodesTakeNoPart();
    void turningLinksAsksForARepaint();
    void layoutWithoutCyclesAsksForNoRepaint();
    void longCycleIsBrokenOnce();
    void randomCyclesEqualTheLiteralOnes_data();
    void randomCyclesEqualTheLiteralOnes();
};

void tst_CycleBreaking::layersAndLinks_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<Links>("links");
    QTest::addColumn<QString>("layers");
    const auto row = [](char const *name, unsigned numNodes, Links const &links,
                        QString const &layers) {
        QTest::newRow(name) << numNodes << links << layers;
    };
    row("tree links stay", 3, {{2, 1}, {1, 0}}, "2|1|0");
    row("forward link stays", 3, {{0, 1}, {1, 2}, {0, 2}}, "0|1 *|2");
    // The walk has left 1 when it comes to 2: neither leads to the other.
    row("cross link stays", 4, {{0, 1}, {0, 2}, {2, 1}, {1, 3}}, "0|2 *|1|3");
    row("link from a later walk into an earlier one stays", 2, {{1, 0}}, "1|0");
    row("cycle of two is broken at its lowest node", 2, {{0, 1}, {1, 0}}, "0|1");
    row("cycle of three is broken at its lowest node", 3, {{2, 0}, {0, 1}, {1, 2}}, "0|1 *|2");
    row("the lowest node's walk decides, not the host's order", 3, {{1, 2}, {2, 1}, {0, 2}},
        "0|2|1");
    row("two cycles through one node", 3, {{0, 1}, {1, 0}, {1, 2}, {2, 1}}, "0|1|2");
    row("cycle behind an entry that comes later", 4, {{3, 1}, {0, 1}, {1, 2}, {2, 1}}, "0 3|1|2");
}

void tst_CycleBreaking::layersAndLinks()
{
    QFETCH(unsigned, numNodes);
    QFETCH(Links, links);
    QFETCH(QString, layers);
    ViewGraph graph(numNodes, links);
    graph.show();
    QCOMPARE(graph.layers(), layers);
}

/// KEPT in cycle breaking: the pair is one link from then on.
void tst_CycleBreaking::opposedPairBecomesOneLinkTheWayOfTheTurnedOne()
{
    ViewGraph graph(2, {{0, 1}, {0, 1}, {1, 0}, {1, 0}, {1, 0}});
    QCOMPARE(graph.links(), QString("0>1x2 1>0x3"));
    graph.show();
    // The walk begins at 0, so that the link from 1 leads back.
    QCOMPARE(graph.layers(), QString("0|1"));
    QCOMPARE(graph.links(), QString("1>0x5"));
    QVERIFY(graph.node(0).linkedOut.empty());
    QVERIFY(graph.node(1).linkedIn.empty());

    // The next layout knows one link only.
    graph.view.layout();
    QCOMPARE(graph.layers(), QString("1|0"));
    QCOMPARE(graph.links(), QString("1>0x5"));
}

void tst_CycleBreaking::lostOppositeLinkComesBackWhenLinksAreRebuilt()
{
    ViewGraph graph(2, {{0, 1}, {1, 0}});
    graph.show();
    QCOMPARE(graph.links(), QString("1>0x2"));
    graph.view.add({RefT<VOM::Object>(new VOM::Object)}, false);
    QCOMPARE(graph.links(), QString("0>1 1>0"));
}

void tst_CycleBreaking::lostOppositeLinkCanBeTakenAway()
{
    ViewGraph graph(2, {{0, 1}, {1, 0}});
    graph.show();
    graph.model.links(0).replace(0, 1, {});
    QCOMPARE(graph.links(), QString("1>0x2"));
    graph.model.links(1).replace(0, 1, {});
    QCOMPARE(graph.links(), QString("1>0"));
}

void tst_CycleBreaking::turnedLinkKeepsItsCount()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}, {2, 0}, {2, 0}, {2, 0}});
    graph.show();
    QCOMPARE(graph.links(), QString("0>1 1>2 2>0x3"));
}

/// Back link and forward link between the same nodes are an opposed pair, too.
void tst_CycleBreaking::turnedLinkTakesAForwardLinkAlong()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}, {0, 2}, {2, 0}, {2, 0}});
    graph.show();
    QCOMPARE(graph.links(), QString("0>1 1>2 2>0x3"));
    QCOMPARE(graph.layers(), QString("0|1 *|2"));
}

void tst_CycleBreaking::turnedLongLinkRunsTheWayOfTheModel()
{
    ViewGraph graph(4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}});
    graph.show();
    QCOMPARE(graph.layers(), QString("0|1 *|2 *|3"));
    const auto chain = graph.chain(3, 0);
    QCOMPARE(chain.size(), std::size_t(2));
    QVERIFY(chain[0]->toY > chain[1]->toY);
    QVERIFY(graph.chain(0, 3).empty());
}

void tst_CycleBreaking::selfLinkIsSteppedOver()
{
    ViewGraph graph(2, {{0, 0}, {0, 1}});
    graph.show();
    QCOMPARE(graph.layers(), QString("0|1"));
    QCOMPARE(graph.links(), QString("0>0 0>1"));
    QVERIFY(graph.chain(0, 0).empty());

    ViewGraph alone(1, {{0, 0}, {0, 0}});
    alone.show();
    QCOMPARE(alone.layers(), QString("0"));
    QCOMPARE(alone.links(), QString("0>0x2"));
}

void tst_CycleBreaking::selfLinkAmongACycleIsSteppedOver()
{
    ViewGraph graph(3, {{0, 0}, {0, 1}, {1, 1}, {1, 2}, {2, 2}, {2, 0}});
    graph.show();
    QCOMPARE(graph.layers(), QString("0|1 *|2"));
    QCOMPARE(graph.links(), QString("0>0 0>1 1>1 1>2 2>0 2>2"));
}

void tst_CycleBreaking::linksToHiddenNodesTakeNoPart()
{
    ViewGraph graph(3, {{0, 1}, {1, 0}, {1, 2}, {2, 1}});
    graph.show(0);
    graph.show(1);
    QCOMPARE(graph.layers(), QString("0|1"));
    QCOMPARE(graph.links(), QString("1>0x2 1>2 2>1"));
}

void tst_CycleBreaking::turningLinksAsksForARepaint()
{
    ViewGraph graph(2);
    graph.show();
    graph.fill({{0, 1}, {1, 0}});
    graph.view.setRefresh(false);
    GraphViewAccess::boundsStale(graph.view) = false;
    GraphViewAccess::refreshPending(graph.view) = false;
    graph.view.layout();
    QVERIFY(GraphViewAccess::boundsStale(graph.view));
    QVERIFY(GraphViewAccess::refreshPending(graph.view));
}

void tst_CycleBreaking::layoutWithoutCyclesAsksForNoRepaint()
{
    ViewGraph graph(3);
    graph.show();
    graph.fill({{0, 1}, {1, 2}});
    graph.view.setRefresh(false);
    GraphViewAccess::boundsStale(graph.view) = false;
    GraphViewAccess::refreshPending(graph.view) = false;
    graph.view.layout();
    QVERIFY(!GraphViewAccess::boundsStale(graph.view));
    QVERIFY(!GraphViewAccess::refreshPending(graph.view));
}

void tst_CycleBreaking::longCycleIsBrokenOnce()
{
    constexpr unsigned n = 1000;
    NumberedGraph cycle = chainGraph(n);
    cycle.links.emplace_back(n - 1, 0);
    ViewGraph graph(cycle);
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().layers, n);
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, n - 2);
    QCOMPARE(graph.chain(n - 1, 0).size(), std::size_t(n - 2));
}

void tst_CycleBreaking::randomCyclesEqualTheLiteralOnes_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<unsigned>("numLinks");
    QTest::newRow("pairs") << 2u << 4u;
    QTest::newRow("few links") << 8u << 9u;
    QTest::newRow("many links") << 8u << 24u;
    QTest::newRow("all kinds of cycles") << 14u << 35u;
}

void tst_CycleBreaking::randomCyclesEqualTheLiteralOnes()
{
    QFETCH(unsigned, numNodes);
    QFETCH(unsigned, numLinks);
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 generator(seed);
        ViewGraph graph(randomGraph(numNodes, numLinks, generator));
        LayoutOracle oracle(graph.view);
        graph.show();
        const QString difference = oracle.difference(graph.ref(numNodes - 1));
        QVERIFY2(difference.isEmpty(), qPrintable(QString("seed %1: ").arg(seed) + difference));
    }
}

QTEST_MAIN(tst_CycleBreaking)
#include "tst_CycleBreaking.moc"
