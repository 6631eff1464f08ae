#include "support/LayoutOracle.h"
#include "support/ViewGraph.h"

#include <QDir>
#include <QScrollBar>
#include <QTimerEvent>
#include <QtTest>

#include <cmath>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::LayoutOracle;
using Graph::Node;
using Links = std::vector<NumberedGraph::Link>;

namespace {

constexpr int gap = 8; // The view's xSpacing.

int leftOf(Node const &node)
{
    return node.toX - node.width / 2;
}

int topOf(Node const &node)
{
    return node.toY - node.height / 2;
}

void place(ViewGraph &graph, unsigned node, int x, int y)
{
    QVERIFY(graph.view.setPos(graph.obj(node), x, y, false));
}

QPoint posOf(ViewGraph const &graph, unsigned node)
{
    return {graph.node(node).x, graph.node(node).y};
}

QPoint targetOf(ViewGraph const &graph, unsigned node)
{
    return {graph.node(node).toX, graph.node(node).toY};
}

/// Lets the view look at a part of its content, without a paint.
void lookAt(ViewGraph &graph, QRect const &part)
{
    graph.view.resize(part.size());
    graph.view.horizontalScrollBar()->setRange(-100000, 100000);
    graph.view.horizontalScrollBar()->setValue(part.left());
    graph.view.verticalScrollBar()->setRange(-100000, 100000);
    graph.view.verticalScrollBar()->setValue(part.top());
}

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

    // What stays in place.
    void nodesInSightAreTheAnchors_data();
    void nodesInSightAreTheAnchors();
    void sightIsAsLargeAsTheWidget();
    void anchorsKeepTheirMean();
    void meansAreTruncatedTowardsZero();
    void withoutAnchorsTheDrawingBeginsAtTheOrigin();
    void shownNodeIsHeldInPlace();
    void lastNodeThatChangedIsHeldInPlace();
    void hiddenAnchorHoldsNothing();

    // Where components go.
    void singleNodeStandsAtTheOrigin();
    void componentsStandInARowByAddress();
    void componentsStandWithTheirTopsAt0();
    void rowOfComponentsNeverWraps();
    void hiddenNodesSeparateComponents();

    // The start of the animation.
    void nodesStandWhereTheyStood();
    void chainsStandAtTheirStart();
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
    void figuresCountTheWholeDrawing();
    void figuresOfTheLastLayoutStand();
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

void tst_Layout::nodesInSightAreTheAnchors_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<bool>("isAnchor");
    // The part in sight begins at (-30, 40) and is 200 wide and 100 high.
    QTest::newRow("inside") << QPoint(50, 90) << true;
    QTest::newRow("top left corner") << QPoint(-30, 40) << true;
    QTest::newRow("left of the left edge") << QPoint(-31, 90) << false;
    QTest::newRow("above the top edge") << QPoint(50, 39) << false;
    QTest::newRow("last column") << QPoint(169, 90) << true;
    QTest::newRow("right edge") << QPoint(170, 90) << false;
    QTest::newRow("last row") << QPoint(50, 139) << true;
    QTest::newRow("bottom edge") << QPoint(50, 140) << false;
}

void tst_Layout::nodesInSightAreTheAnchors()
{
    QFETCH(QPoint, point);
    QFETCH(bool, isAnchor);
    ViewGraph graph(2, {{0, 1}});
    graph.showWithoutLayout();
    place(graph, 0, 5000, 5000);
    place(graph, 1, point.x(), point.y());
    lookAt(graph, QRect(-30, 40, 200, 100));
    graph.view.layout();
    QCOMPARE(targetOf(graph, 1) == point, isAnchor);
    if (!isAnchor)
        QCOMPARE(topOf(graph.node(0)), 0);
}

/// Scroll bars cover a part of the widget that counts as in sight.
void tst_Layout::sightIsAsLargeAsTheWidget()
{
    ViewGraph graph(1);
    graph.view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    graph.view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    graph.view.resize(300, 200);
    graph.view.QWidget::setVisible(true);
    QVERIFY(QTest::qWaitForWindowExposed(&graph.view));
    QVERIFY(graph.view.viewport()->width() < 299);
    graph.showWithoutLayout();
    lookAt(graph, QRect(0, 0, 300, 200));
    place(graph, 0, 299, 199);
    graph.view.layout();
    QCOMPARE(targetOf(graph, 0), QPoint(299, 199));
}

void tst_Layout::anchorsKeepTheirMean()
{
    ViewGraph graph(4, {{0, 1}, {0, 2}, {0, 3}});
    graph.showWithoutLayout();
    place(graph, 0, 100, 10);
    place(graph, 1, 200, 20);
    place(graph, 2, 331, 45);
    place(graph, 3, 9000, 9000);
    lookAt(graph, QRect(0, 0, 400, 300));
    graph.view.layout();
    const auto mean = [&](QPoint const &sum) { return QPoint(sum.x() / 3, sum.y() / 3); };
    const QPoint sum = targetOf(graph, 0) + targetOf(graph, 1) + targetOf(graph, 2);
    // Truncation may take up to 1 on the way from place to place.
    QVERIFY((mean(sum) - QPoint(631 / 3, 75 / 3)).manhattanLength() <= 2);
    QCOMPARE(shapeOf(graph)[1].y(), graph.node(0).height + gap);
}

void tst_Layout::meansAreTruncatedTowardsZero()
{
    // Two nodes of equal width stand at 8 + w/2 and 17 + 3w/2 before the shift.
    ViewGraph graph(2);
    graph.setWidth(0, 50);
    graph.setWidth(1, 50);
    graph.showWithoutLayout();
    place(graph, 0, -1, -1);
    place(graph, 1, -2, -4);
    lookAt(graph, QRect(-10, -10, 20, 20));
    graph.view.layout();
    // The mean before is (-1, -2), not (-2, -3).
    const int meanAfter = (33 + 92) / 2;
    QCOMPARE(targetOf(graph, 0).x(), 33 - 1 - meanAfter);
    QCOMPARE(targetOf(graph, 1).x(), 92 - 1 - meanAfter);
    QCOMPARE(targetOf(graph, 0).y(), -2);
    QCOMPARE(targetOf(graph, 1).y(), -2);
}

void tst_Layout::withoutAnchorsTheDrawingBeginsAtTheOrigin()
{
    ViewGraph graph(3, {{0, 1}, {0, 2}});
    graph.showWithoutLayout();
    for (unsigned i = 0; i < 3; ++i)
        place(graph, i, -700 - static_cast<int>(i), 20);
    lookAt(graph, QRect(0, 0, 300, 200));
    graph.view.layout();
    int left = leftOf(graph.node(0));
    for (unsigned i = 1; i < 3; ++i)
        left = std::min(left, leftOf(graph.node(i)));
    QCOMPARE(left, gap);
    QCOMPARE(topOf(graph.node(0)), 0);
}

void tst_Layout::shownNodeIsHeldInPlace()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    place(graph, 1, -4321, 1234);
    graph.show(1);
    QCOMPARE(targetOf(graph, 1), QPoint(-4321, 1234));
    graph.show(0);
    QCOMPARE(targetOf(graph, 0), QPoint(0, 0));
}

void tst_Layout::lastNodeThatChangedIsHeldInPlace()
{
    ViewGraph graph(4, {{0, 1}, {1, 2}, {2, 3}});
    graph.show(3);
    for (unsigned i = 0; i < 4; ++i)
        place(graph, i, static_cast<int>(1000 * i), static_cast<int>(100 * i));
    // 3 comes last, but is visible already.
    graph.view.setVisible({graph.obj(0), graph.obj(2), graph.obj(1), graph.obj(3)}, true);
    QCOMPARE(targetOf(graph, 1), QPoint(1000, 100));
    QVERIFY(targetOf(graph, 2) != QPoint(2000, 200));
}

/// Its mean is the same before and after.
void tst_Layout::hiddenAnchorHoldsNothing()
{
    ViewGraph graph(2, {{0, 1}});
    graph.node(0).visible = true;
    place(graph, 0, 777, 77);
    place(graph, 1, 500, 50);
    graph.node(1).toX = 3;
    GraphViewAccess::layout(graph.view, graph.ref(1));
    QCOMPARE(leftOf(graph.node(0)), gap);
    QCOMPARE(topOf(graph.node(0)), 0);
    // And it isn't given a target.
    QCOMPARE(posOf(graph, 1), QPoint(500, 50));
    QCOMPARE(targetOf(graph, 1), QPoint(3, 50));
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
    QCOMPARE(graph.view.getLayoutFigures().width, gap + 40 + 1 + gap + 61 + 1 + gap + 100 + 1);
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

void tst_Layout::figuresCountTheWholeDrawing()
{
    // A triangle with a long link, a pair, one node alone, and a hidden one.
    ViewGraph graph(7, {{0, 1}, {1, 2}, {0, 2}, {3, 4}, {6, 6}});
    graph.view.setVisible(
        {graph.obj(0), graph.obj(1), graph.obj(2), graph.obj(3), graph.obj(4), graph.obj(5)}, true);
    LayoutFigures const &figures = graph.view.getLayoutFigures();
    QCOMPARE(figures.nodes, 6u);
    QCOMPARE(figures.splitNodes, 1u);
    QCOMPARE(figures.components, 3u);
    QCOMPARE(figures.layers, 3u);
    QCOMPARE(figures.crossings, 0u);
    QCOMPARE(figures.height, 3 * graph.node(0).height + 2 * gap);
    for (double time : {figures.cyclesTime, figures.ranksTime, figures.splitTime, figures.orderTime,
                        figures.coordsTime})
        QVERIFY(time >= 0 && time < 60);
    QVERIFY(figures.ranksTime > 0);
    QVERIFY(figures.coordsTime > 0);
}

void tst_Layout::figuresOfTheLastLayoutStand()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    QCOMPARE(graph.view.getLayoutFigures().nodes, 0u);
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().nodes, 3u);
    graph.hide(2);
    QCOMPARE(graph.view.getLayoutFigures().nodes, 3u);
    graph.view.layout();
    QCOMPARE(graph.view.getLayoutFigures().nodes, 2u);
    QCOMPARE(graph.view.getLayoutFigures().layers, 2u);
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
