#include "graph/layout/Places.h"
#include "support/LayoutOracle.h"

#include <QDir>
#include <QTimerEvent>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::LayoutOracle;
using Graph::Node;
using Links = std::vector<NumberedGraph::Link>;

namespace {

/// All targets, relative to the first node's.
std::vector<QPoint> shapeOf(ViewGraph const &graph)
{
    std::vector<QPoint> shape;
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        shape.push_back(targetOf(graph, i) - targetOf(graph, 0));
    return shape;
}

QByteArray seedText(unsigned seed, QString const &difference)
{
    return QString("seed %1: %2").arg(seed).arg(difference).toUtf8();
}

const QDir graphFolder(ZRVOMGUI_TEST_DATA "/graphs");

void addGraphFiles()
{
    QTest::addColumn<QString>("file");
    for (QString const &file : graphFolder.entryList({"*.graph"}, QDir::Files))
        QTest::newRow(qPrintable(file)) << graphFolder.filePath(file);
}

} // namespace

class tst_Layout : public QObject {
    Q_OBJECT

private slots:
    // Nothing to lay out.
    void withoutVisibleNodesNothingChanges_data();
    void withoutVisibleNodesNothingChanges();
    void emptyViewLaysOut();

    // Where components go.
    void singleNodeStandsAtTheOrigin();
    void componentsStandInARowByAddress();
    void componentsStandWithTheirTopsAt0();
    void componentsBeginWithTheirLeftmostEdges();
    void rowOfComponentsNeverWraps();
    void hiddenNodesSeparateComponents();

    // The start of the animation.
    void nodesStandWhereTheyStood();
    void chainsStandAtTheirStart();
    void chainsGetOneTarget_data();
    void chainsGetOneTarget();
    void timerStartsWhateverTheDuration_data();
    void timerStartsWhateverTheDuration();
    void placedNodesLoseTheirPlaces();
    void earlierPlacesDontMatter();
    void runningAnimationStartsAnewFromWhereNodesStand();

    // Hidden nodes, and links to them.
    void hiddenNodesKeepTheirPlaces();
    void chainBetweenHiddenNodesStays();
    void chainToAHiddenNodeGoes();
    void shownAgainANodeIsLinkedByNewChains();

    // The whole.
    void layoutTwiceGivesTheSame();
    void layoutTwiceGivesTheSameOfRealGraphs_data() { addGraphFiles(); }
    void layoutTwiceGivesTheSameOfRealGraphs();
    void selfLinkTakesNoPart();
    void longChainNeedsNoDeepStack();
    void manyComponentsDontTakeLong();
    void realGraphsEqualTheLiteralLayout_data() { addGraphFiles(); }
    void realGraphsEqualTheLiteralLayout();
    void randomGraphsEqualTheLiteralLayout_data();
    void randomGraphsEqualTheLiteralLayout();
    void changedGraphsEqualTheLiteralLayout();
    void nodesDontOverlap();
};

void tst_Layout::withoutVisibleNodesNothingChanges_data()
{
    QTest::addColumn<bool>("wasLaidOut");
    QTest::newRow("never laid out") << false;
    QTest::newRow("hidden after a layout") << true;
}

void tst_Layout::withoutVisibleNodesNothingChanges()
{
    QFETCH(bool, wasLaidOut);
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    if (wasLaidOut) {
        graph.show();
        graph.view.setVisible(graph.model.objs, false);
    }
    for (unsigned i = 0; i < 3; ++i)
        place(graph, i, static_cast<int>(5 + i), 6);
    GraphViewAccess::animTimer(graph.view).stop();
    graph.view.layout();
    for (unsigned i = 0; i < 3; ++i) {
        QCOMPARE(posOf(graph, i), QPoint(static_cast<int>(5 + i), 6));
        QCOMPARE(targetOf(graph, i), posOf(graph, i));
    }
    QVERIFY(!GraphViewAccess::animTimer(graph.view).isActive());
    QCOMPARE(graph.view.getLayoutFigures().nodes, 0u);
    QCOMPARE(graph.view.getLayoutFigures().components, 0u);
    QCOMPARE(graph.view.getLayoutFigures().layers, 0u);
}

void tst_Layout::emptyViewLaysOut()
{
    ObjectGraphView view;
    view.layout();
    view.resize(0, 0);
    view.layout();
    QVERIFY(!GraphViewAccess::animTimer(view).isActive());
    QCOMPARE(view.getLayoutFigures().components, 0u);
}

void tst_Layout::singleNodeStandsAtTheOrigin()
{
    ViewGraph graph(1);
    graph.showWithoutLayout();
    place(graph, 0, -5, -5);
    graph.view.layout();
    QCOMPARE(leftOf(graph.node(0)), gap);
    QCOMPARE(topOf(graph.node(0)), 0);
    QCOMPARE(graph.view.getLayoutFigures().layers, 1u);
    QCOMPARE(graph.view.getLayoutFigures().crossings, 0u);
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, 0u);
}

void tst_Layout::componentsStandInARowByAddress()
{
    // The components are 0 with 4, 1 alone, and 2 with 3.
    ViewGraph graph(5, {{4, 0}, {3, 2}});
    const std::vector<int> widths{40, 61, 30, 100, 35};
    for (unsigned i = 0; i < 5; ++i)
        graph.setWidth(i, widths[i]);
    graph.showWithoutLayout();
    lookAt(graph, QRect(90000, 0, 10, 10));
    graph.view.layout();
    QCOMPARE(leftOf(graph.node(0)), gap);
    QCOMPARE(leftOf(graph.node(1)), gap + 40 + 1 + gap);
    QCOMPARE(leftOf(graph.node(3)), gap + 40 + 1 + gap + 61 + 1 + gap);
    QCOMPARE(graph.view.getLayoutFigures().width, 40 + 1 + gap + 61 + 1 + gap + 100);
    QCOMPARE(graph.view.getLayoutFigures().components, 3u);
}

void tst_Layout::componentsStandWithTheirTopsAt0()
{
    ViewGraph graph(4, {{1, 2}});
    graph.setTextSize(0, 10, 200);
    graph.setTextSize(1, 10, 90);
    graph.setTextSize(2, 10, 400);
    graph.showWithoutLayout();
    lookAt(graph, QRect(90000, 0, 10, 10));
    graph.view.layout();
    QCOMPARE(topOf(graph.node(0)), 0);
    // Layers stand apart by the height of the upper one: the high node reaches above it.
    QCOMPARE(topOf(graph.node(2)), 0);
    QVERIFY(topOf(graph.node(1)) > 0);
    QCOMPARE(topOf(graph.node(3)), 0);
}

/// Which needn't be that of a node in the first layer.
void tst_Layout::componentsBeginWithTheirLeftmostEdges()
{
    ViewGraph graph(4, {{0, 1}, {2, 3}});
    showOutOfSight(graph);
    for (unsigned node : {0u, 2u})
        graph.setWidth(node, 20);
    for (unsigned node : {1u, 3u})
        graph.setWidth(node, 200);
    graph.view.layout();
    QCOMPARE(graph.node(1).toX, gap + 100);
    QCOMPARE(graph.node(3).toX, gap + 200 + 1 + gap + 100);
}

void tst_Layout::rowOfComponentsNeverWraps()
{
    ViewGraph graph(300);
    graph.view.resize(100, 100);
    graph.show();
    for (unsigned i = 1; i < 300; ++i) {
        QCOMPARE(graph.node(i).toY, graph.node(0).toY);
        QVERIFY(leftOf(graph.node(i)) > leftOf(graph.node(i - 1)) + graph.node(i - 1).width);
    }
}

void tst_Layout::hiddenNodesSeparateComponents()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    graph.show(0);
    graph.show(2);
    QCOMPARE(graph.view.getLayoutFigures().components, 2u);
    QCOMPARE(graph.node(0).toY, graph.node(2).toY);
    graph.show(1);
    QCOMPARE(graph.view.getLayoutFigures().components, 1u);
    QVERIFY(graph.node(0).toY < graph.node(2).toY);
}

void tst_Layout::nodesStandWhereTheyStood()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    graph.showWithoutLayout();
    for (unsigned i = 0; i < 3; ++i) {
        place(graph, i, static_cast<int>(10 * i + 1), static_cast<int>(200 - 7 * i));
        // Where an animation once began says nothing.
        graph.node(i).fromX = 4444;
    }
    graph.view.layout();
    for (unsigned i = 0; i < 3; ++i) {
        const QPoint before(static_cast<int>(10 * i + 1), static_cast<int>(200 - 7 * i));
        QCOMPARE(posOf(graph, i), before);
        QCOMPARE(QPoint(graph.node(i).fromX, graph.node(i).fromY), before);
    }
    // The one in the middle may stay.
    QVERIFY(targetOf(graph, 0) != posOf(graph, 0));
    QVERIFY(targetOf(graph, 2) != posOf(graph, 2));
}

void tst_Layout::chainsStandAtTheirStart()
{
    ViewGraph graph(4, {{0, 1}, {1, 2}, {2, 3}, {0, 3}, {3, 1}});
    graph.showWithoutLayout();
    for (unsigned i = 0; i < 4; ++i)
        place(graph, i, static_cast<int>(100 * i), static_cast<int>(40 * i));
    graph.view.layout();
    auto chain = graph.chain(0, 3);
    QCOMPARE(chain.size(), std::size_t(2));
    const auto turned = graph.chain(3, 1);
    QCOMPARE(turned.size(), std::size_t(1));
    chain.push_back(turned.front());
    for (RefT<Node> const &station : chain) {
        QCOMPARE(station->x, station->fromX);
        QCOMPARE(station->y, station->fromY);
        QVERIFY(station->toY > graph.node(0).toY);
        QVERIFY(station->toY < graph.node(3).toY);
    }
    QCOMPARE(chain[0]->x, 75);
    QCOMPARE(chain[1]->x, 150);
    // This link ran from 1 to 3 when it was split.
    QCOMPARE(chain[2]->x, 166);
    QCOMPARE(chain[2]->y, 66);
}

/// Met from both of its ends, a chain would be shifted twice.
void tst_Layout::chainsGetOneTarget_data()
{
    QTest::addColumn<NumberedGraph::Link>("longLink");
    QTest::newRow("link as it is") << NumberedGraph::Link{0, 2};
    QTest::newRow("link that was turned") << NumberedGraph::Link{2, 0};
}

void tst_Layout::chainsGetOneTarget()
{
    QFETCH(NumberedGraph::Link, longLink);
    ViewGraph graph(3, {{0, 1}, {1, 2}, longLink});
    graph.showWithoutLayout();
    for (unsigned i = 0; i < 3; ++i)
        place(graph, i, 5000, 7000);
    GraphViewAccess::layout(graph.view, graph.ref(0));
    const auto chain = graph.chain(longLink.first, longLink.second);
    QCOMPARE(chain.size(), std::size_t(1));
    Node const &station = *chain.front();
    QCOMPARE(station.toY, graph.node(1).toY);
    QCOMPARE(std::abs(station.toX - graph.node(1).toX), graph.node(1).width / 2 + gap);
    QCOMPARE(QPoint(station.x, station.y), QPoint(5000, 7000));
}

void tst_Layout::timerStartsWhateverTheDuration_data()
{
    QTest::addColumn<double>("duration");
    QTest::newRow("default") << 2.0;
    QTest::newRow("none") << 0.0;
    QTest::newRow("negative") << -1.0;
    QTest::newRow("very long") << 1e9;
}

void tst_Layout::timerStartsWhateverTheDuration()
{
    QFETCH(double, duration);
    ViewGraph graph(2, {{0, 1}});
    graph.view.animDuration.set(duration);
    graph.showWithoutLayout();
    QTimer &timer = GraphViewAccess::animTimer(graph.view);
    QVERIFY(!timer.isActive());
    const Time before(Time::Now);
    graph.view.layout();
    QVERIFY(timer.isActive());
    QVERIFY((GraphViewAccess::animStart(graph.view) - before).seconds() < 60);
    QVERIFY(GraphViewAccess::animStart(graph.view).sec >= before.sec);
    QCOMPARE(posOf(graph, 1), QPoint(0, 0));

    if (duration <= 0) {
        QTimerEvent tick(timer.timerId());
        QCoreApplication::sendEvent(&timer, &tick);
        QVERIFY(!timer.isActive());
        QCOMPARE(posOf(graph, 1), targetOf(graph, 1));
        QVERIFY(posOf(graph, 1) != QPoint(0, 0));
    }
}

void tst_Layout::placedNodesLoseTheirPlaces()
{
    ViewGraph graph(3, {{0, 1}, {0, 2}});
    graph.show();
    const std::vector<QPoint> shape = shapeOf(graph);
    place(graph, 1, 12345, 54321);
    QCOMPARE(targetOf(graph, 1), QPoint(12345, 54321));
    graph.view.layout();
    QVERIFY(shapeOf(graph) == shape);
    QCOMPARE(posOf(graph, 1), QPoint(12345, 54321));
}

void tst_Layout::earlierPlacesDontMatter()
{
    std::mt19937 generator(5);
    // Without long links: addresses of intermediate nodes matter, and they are new each time.
    Links links;
    for (unsigned i = 1; i < 40; ++i)
        links.emplace_back(drawBelow(generator, i), i);
    ViewGraph graph(40, links);
    graph.show();
    const std::vector<QPoint> shape = shapeOf(graph);
    for (int round = 0; round < 5; ++round) {
        for (unsigned i = 0; i < 40; ++i)
            place(graph, i, static_cast<int>(drawBelow(generator, 2000)) - 1000,
                  static_cast<int>(drawBelow(generator, 2000)) - 1000);
        graph.view.layout();
        QVERIFY(shapeOf(graph) == shape);
    }
}

void tst_Layout::runningAnimationStartsAnewFromWhereNodesStand()
{
    ViewGraph graph(2, {{0, 1}});
    graph.show();
    // Halfway.
    for (unsigned i = 0; i < 2; ++i) {
        graph.node(i).x = 33;
        graph.node(i).y = 44;
    }
    GraphViewAccess::animStart(graph.view) = Time();
    graph.view.layout();
    QCOMPARE(graph.node(1).fromX, 33);
    QCOMPARE(graph.node(1).fromY, 44);
    QCOMPARE(posOf(graph, 1), QPoint(33, 44));
    QVERIFY((Time(Time::Now) - GraphViewAccess::animStart(graph.view)).seconds() < 60);
}

void tst_Layout::hiddenNodesKeepTheirPlaces()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    graph.show(0);
    place(graph, 2, 60, 70);
    graph.node(2).fromX = 1;
    graph.node(2).toY = 2;
    graph.show(1);
    QCOMPARE(posOf(graph, 2), QPoint(60, 70));
    QCOMPARE(graph.node(2).fromX, 1);
    QCOMPARE(graph.node(2).toY, 2);
}

void tst_Layout::chainBetweenHiddenNodesStays()
{
    ViewGraph graph(4, {{0, 1}, {2, 3}});
    const auto chain = GraphViewAccess::split(graph.view, graph.node(2), graph.node(3), 2);
    chain[0]->x = 5;
    chain[0]->toX = 6;
    graph.show(0);
    graph.show(1);
    QVERIFY(graph.chain(2, 3) == chain);
    QCOMPARE(chain[0]->x, 5);
    QCOMPARE(chain[0]->toX, 6);
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, 0u);
}

void tst_Layout::chainToAHiddenNodeGoes()
{
    ViewGraph graph(3, {{0, 1}, {2, 0}});
    GraphViewAccess::split(graph.view, graph.node(0), graph.node(1), 2);
    const PtrT<Node> station(
        GraphViewAccess::split(graph.view, graph.node(2), graph.node(0), 1).front());
    QVERIFY(station);
    graph.show(0);
    QVERIFY(!station);
    QVERIFY(graph.chain(0, 1).empty());
    QCOMPARE(graph.links(), QString("0>1 2>0"));
}

void tst_Layout::shownAgainANodeIsLinkedByNewChains()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}, {0, 2}});
    graph.show();
    graph.hide(2);
    graph.view.layout();
    QVERIFY(graph.chain(0, 2).empty());
    graph.show(2);
    QCOMPARE(graph.layers(), QString("0|1 *|2"));
}

void tst_Layout::layoutTwiceGivesTheSame()
{
    // Crossings that can't be avoided, so that the orders are shuffled, and no long links.
    std::mt19937 generator(3);
    Links links;
    for (unsigned from = 0; from < 8; ++from)
        for (int i = 0; i < 4; ++i)
            links.emplace_back(from, 8 + drawBelow(generator, 8));
    ViewGraph graph(16, links);
    graph.show();
    QVERIFY(graph.view.getLayoutFigures().crossings > 0);
    const std::vector<QPoint> shape = shapeOf(graph);
    const QString before = graph.links();
    for (int round = 0; round < 3; ++round) {
        graph.view.layout();
        QVERIFY(shapeOf(graph) == shape);
        QCOMPARE(graph.links(), before);
    }
}

/// Orders may differ with the addresses of intermediate nodes; layers and links don't.
void tst_Layout::layoutTwiceGivesTheSameOfRealGraphs()
{
    QFETCH(QString, file);
    ViewGraph graph(readGraphFile(file.toStdString()));
    graph.show();
    // The first layout has made one link of each opposed pair.
    graph.view.layout();
    const LayoutFigures figures = graph.view.getLayoutFigures();
    const QString links = graph.links();
    std::vector<int> heights;
    for (QPoint const &place : shapeOf(graph))
        heights.push_back(place.y());
    graph.view.layout();
    QCOMPARE(graph.links(), links);
    QCOMPARE(graph.view.getLayoutFigures().layers, figures.layers);
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, figures.splitNodes);
    std::vector<int> heightsAfter;
    for (QPoint const &place : shapeOf(graph))
        heightsAfter.push_back(place.y());
    QVERIFY(heightsAfter == heights);
}

void tst_Layout::selfLinkTakesNoPart()
{
    ViewGraph with(3, {{0, 1}, {1, 1}, {0, 2}, {2, 2}, {2, 2}});
    ViewGraph without(3, {{0, 1}, {0, 2}});
    with.show();
    without.show();
    QVERIFY(shapeOf(with) == shapeOf(without));
    QCOMPARE(with.view.getLayoutFigures().crossings, 0u);
    QCOMPARE(with.view.getLayoutFigures().length, without.view.getLayoutFigures().length);
    QCOMPARE(with.links(), QString("0>1 0>2 1>1 2>2x2"));
}

void tst_Layout::longChainNeedsNoDeepStack()
{
    constexpr unsigned n = 200000;
    ViewGraph graph(chainGraph(n));
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().layers, n);
    QCOMPARE(graph.view.getLayoutFigures().components, 1u);
    QCOMPARE(graph.view.getLayoutFigures().length, 0.0);
    const int step = graph.node(0).height + gap;
    QCOMPARE(graph.node(n - 1).toY - graph.node(0).toY, static_cast<int>(n - 1) * step);
}

void tst_Layout::manyComponentsDontTakeLong()
{
    constexpr unsigned n = 30000;
    Links links;
    for (unsigned i = 0; i + 1 < n; i += 3)
        links.emplace_back(i, i + 1);
    ViewGraph graph(n, links);
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().components, n / 3 * 2);
}

void tst_Layout::realGraphsEqualTheLiteralLayout()
{
    QFETCH(QString, file);
    ViewGraph graph(readGraphFile(file.toStdString()));
    LayoutOracle first(graph.view);
    graph.show();
    QCOMPARE(first.difference(graph.ref(graph.numNodes() - 1)), QString());
    // From where they stand now, with the nodes in sight in place.
    LayoutOracle second(graph.view);
    graph.view.layout();
    QCOMPARE(second.difference(), QString());
}

void tst_Layout::randomGraphsEqualTheLiteralLayout_data()
{
    QTest::addColumn<unsigned>("maxNodes");
    QTest::addColumn<unsigned>("linksPerTenNodes");
    QTest::newRow("loose parts") << 30u << 6u;
    QTest::newRow("about a tree") << 20u << 11u;
    QTest::newRow("cycles and long links") << 14u << 20u;
    QTest::newRow("dense") << 9u << 40u;
}

void tst_Layout::randomGraphsEqualTheLiteralLayout()
{
    QFETCH(unsigned, maxNodes);
    QFETCH(unsigned, linksPerTenNodes);
    for (unsigned seed = 1; seed <= 400; ++seed) {
        std::mt19937 generator(seed);
        const unsigned numNodes = 1 + drawBelow(generator, maxNodes);
        ViewGraph graph(randomGraph(numNodes, numNodes * linksPerTenNodes / 10, generator));
        LayoutOracle oracle(graph.view);
        graph.show();
        const QString difference = oracle.difference(graph.ref(numNodes - 1));
        QVERIFY2(difference.isEmpty(), seedText(seed, difference));
    }
}

/// Nodes come and go, are moved, and get other links; layouts in between.
void tst_Layout::changedGraphsEqualTheLiteralLayout()
{
    constexpr unsigned n = 12;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        std::mt19937 generator(seed);
        ViewGraph graph(randomGraph(n, 18, generator));
        for (int step = 0; step < 12; ++step) {
            const unsigned node = drawBelow(generator, n);
            LayoutOracle beforeShown(graph.view);
            if (graph.node(node).visible) {
                switch (drawBelow(generator, 3)) {
                case 0:
                    graph.hide(node);
                    break;
                case 1:
                    place(graph, node, static_cast<int>(drawBelow(generator, 900)) - 200,
                          static_cast<int>(drawBelow(generator, 900)) - 200);
                    break;
                default:
                    graph.model.links(node).replace(
                        0, std::min<std::size_t>(1, graph.model.links(node).getNum()),
                        {graph.obj(drawBelow(generator, n))});
                }
            } else {
                graph.show(node);
                const QString difference = beforeShown.difference(graph.ref(node));
                QVERIFY2(difference.isEmpty(), seedText(seed, difference));
            }
            LayoutOracle oracle(graph.view);
            graph.view.layout();
            const QString difference = oracle.difference();
            QVERIFY2(difference.isEmpty(), seedText(seed, difference));
        }
    }
}

void tst_Layout::nodesDontOverlap()
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 generator(seed);
        ViewGraph graph(randomGraph(25, 40, generator));
        graph.show();
        for (unsigned a = 0; a < 25; ++a) {
            for (unsigned b = 0; b < a; ++b) {
                const QRect boxA(leftOf(graph.node(a)), topOf(graph.node(a)), graph.node(a).width,
                                 graph.node(a).height);
                const QRect boxB(leftOf(graph.node(b)), topOf(graph.node(b)), graph.node(b).width,
                                 graph.node(b).height);
                QVERIFY2(!boxA.intersects(boxB), seedText(seed, "overlap"));
            }
        }
    }
}

QTEST_MAIN(tst_Layout)
#include "tst_Layout.moc"
