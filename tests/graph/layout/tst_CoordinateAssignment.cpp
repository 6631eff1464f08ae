#include "support/LayoutOracle.h"
#include "support/ViewGraph.h"

#include <QFontMetrics>
#include <QStyle>
#include <QTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::LayoutOracle;
using Graph::Node;

namespace {

int leftOf(Node const &node)
{
    return node.toX - node.width / 2;
}

int rightOf(Node const &node)
{
    return leftOf(node) + node.width;
}

/// The height of a node whose label is no higher than its icon: two bands and the box between.
int leastHeight(ViewGraph const &graph)
{
    return 3 * GraphViewAccess::iconSize(graph.view) + 2 * GraphViewAccess::margin(graph.view);
}

/// Lays out with nothing held in place: the drawing begins at the origin.
void layoutFromOrigin(ViewGraph &graph)
{
    graph.view.resize(0, 0);
    graph.showWithoutLayout();
    graph.view.layout();
}

} // namespace

class tst_CoordinateAssignment : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    // Measuring.
    void nodeMeasuresIconAndText();
    void textHigherThanTheIconMakesTheNodeHigher();
    void offsetsAreRelativeToTheCentre();
    void intermediateNodeHasNoWidthAndTheHeightOfAnIcon();
    void textIsMeasuredOnlyWhenItChanged();
    void layoutMeasuresEachNode();

    // Places.
    void oneNodeStandsOnItself_data();
    void oneNodeStandsOnItself();
    void neighboursKeepTheirDistance_data();
    void neighboursKeepTheirDistance();
    void intermediateNodeKeepsHalfAWidthAway();
    void parentStandsBetweenItsChildren();
    void chainIsStraight();
    void layersAreStackedByTheFullHeightBefore();
    void nodesOfALayerShareOneY();
    void intermediateNodesHaveAPartInTheirLayersHeight();
    void linksPointDownwards();
    void distancesOf65536AndMoreWrapToSmallOnes_data();
    void distancesOf65536AndMoreWrapToSmallOnes();
    void referencesDontPull();
    void lengthIsSummedOverUnitPieces();
    void boundHoldsEveryNode();
    void randomWidthsEqualTheLiteralLayout();
};

void tst_CoordinateAssignment::initTestCase()
{
    const ViewGraph graph(0);
    QCOMPARE(GraphViewAccess::xSpacing(graph.view), 8);
    QCOMPARE(GraphViewAccess::ySpacing(graph.view), 8);
    QCOMPARE(GraphViewAccess::margin(graph.view), 2);
    QCOMPARE(GraphViewAccess::iconSize(graph.view),
             graph.view.style()->pixelMetric(QStyle::PM_ListViewIconSize));
}

void tst_CoordinateAssignment::nodeMeasuresIconAndText()
{
    ViewGraph graph(1);
    Node &node = graph.node(0);
    QVERIFY(node.sizeDirty);
    GraphViewAccess::updateSize(graph.view, node);
    const QSize text = graph.view.fontMetrics().size(0, "'0'");
    QVERIFY(text.width() > 0);
    QCOMPARE(node.textWidth, text.width());
    QCOMPARE(node.textHeight, text.height());
    QCOMPARE(node.width, 6 + text.width() + GraphViewAccess::iconSize(graph.view));
    QCOMPARE(node.height, leastHeight(graph));
    QVERIFY(!node.sizeDirty);
}

void tst_CoordinateAssignment::textHigherThanTheIconMakesTheNodeHigher()
{
    ViewGraph graph(1);
    const int iconSize = GraphViewAccess::iconSize(graph.view);
    for (int textHeight : {iconSize - 1, iconSize, iconSize + 1, 5 * iconSize}) {
        graph.setTextSize(0, 10, textHeight);
        GraphViewAccess::updateSize(graph.view, graph.node(0));
        QCOMPARE(graph.node(0).height, std::max(iconSize, textHeight) + 2 * (iconSize + 2));
    }
}

void tst_CoordinateAssignment::offsetsAreRelativeToTheCentre()
{
    ViewGraph graph(1);
    Node const &node = graph.node(0);
    const int i = GraphViewAccess::iconSize(graph.view);
    for (int textWidth : {20, 21}) {
        graph.setTextSize(0, textWidth, 15);
        GraphViewAccess::updateSize(graph.view, graph.node(0));
        QCOMPARE(node.iconX, 2 - node.width / 2);
        QCOMPARE(node.iconY, -(i / 2));
        QCOMPARE(node.textX, node.iconX + i + 2);
        QCOMPARE(node.textY, -7);
        QCOMPARE(node.arrowX, -(i / 2) - 2);
        QCOMPARE(node.topY, -(node.height / 2));
        QCOMPARE(node.bottomY, node.topY + node.height - i);
    }
}

void tst_CoordinateAssignment::intermediateNodeHasNoWidthAndTheHeightOfAnIcon()
{
    ViewGraph graph(2, {{0, 1}});
    const auto chain = GraphViewAccess::split(graph.view, graph.node(0), graph.node(1), 1);
    Node &node = *chain.front();
    GraphViewAccess::updateSize(graph.view, node);
    QCOMPARE(node.width, 0);
    QCOMPARE(node.height, leastHeight(graph));
    for (int measure : {node.textWidth, node.textHeight, node.iconX, node.iconY, node.textX,
                        node.textY, node.arrowX})
        QCOMPARE(measure, 0);
    QCOMPARE(node.topY, -(node.height / 2));
    QCOMPARE(node.bottomY, node.topY + node.height - GraphViewAccess::iconSize(graph.view));
    QVERIFY(!node.sizeDirty);
}

void tst_CoordinateAssignment::textIsMeasuredOnlyWhenItChanged()
{
    ViewGraph graph(1);
    Node &node = graph.node(0);
    graph.setTextSize(0, 1234, 15);
    GraphViewAccess::updateSize(graph.view, node);
    QCOMPARE(node.textWidth, 1234);
    node.sizeDirty = true;
    GraphViewAccess::updateSize(graph.view, node);
    QCOMPARE(node.textWidth, graph.view.fontMetrics().size(0, "'0'").width());
}

void tst_CoordinateAssignment::layoutMeasuresEachNode()
{
    ViewGraph graph(4, {{0, 1}, {1, 2}, {0, 2}});
    graph.show();
    for (unsigned i = 0; i < 4; ++i) {
        QVERIFY(graph.node(i).width > 0);
        QVERIFY(!graph.node(i).sizeDirty);
    }
    QVERIFY(graph.chain(0, 2).front()->height > 0);
}

void tst_CoordinateAssignment::oneNodeStandsOnItself_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("toX");
    // The left edge is at -width / 2, truncated, before it is moved to 8.
    QTest::newRow("even width") << 60 << 38;
    QTest::newRow("odd width: the left half is the smaller one") << 61 << 38;
    QTest::newRow("width 5 goes from -2 to 3") << 5 << 10;
    QTest::newRow("no width") << 0 << 8;
}

void tst_CoordinateAssignment::oneNodeStandsOnItself()
{
    QFETCH(int, width);
    QFETCH(int, toX);
    ViewGraph graph(1);
    graph.setWidth(0, width);
    layoutFromOrigin(graph);
    QCOMPARE(graph.node(0).width, width);
    QCOMPARE(graph.node(0).toX, toX);
    QCOMPARE(leftOf(graph.node(0)), 8);
    QCOMPARE(graph.node(0).toY, graph.node(0).height / 2);
}

void tst_CoordinateAssignment::neighboursKeepTheirDistance_data()
{
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("distance");
    QTest::newRow("widths 10 and 20") << 10 << 20 << 23;
    QTest::newRow("order doesn't matter") << 20 << 10 << 23;
    QTest::newRow("odd sum is truncated") << 10 << 21 << 23;
    QTest::newRow("two odd widths are halved as one sum") << 11 << 21 << 24;
    QTest::newRow("no widths") << 0 << 0 << 8;
}

/// Two children of one parent stand as close as they may.
void tst_CoordinateAssignment::neighboursKeepTheirDistance()
{
    QFETCH(int, left);
    QFETCH(int, right);
    QFETCH(int, distance);
    ViewGraph graph(3, {{0, 1}, {0, 2}});
    graph.setWidth(1, left);
    graph.setWidth(2, right);
    graph.show();
    QCOMPARE(graph.layers(), QString("0|1 2"));
    QCOMPARE(graph.node(2).toX - graph.node(1).toX, distance);
}

void tst_CoordinateAssignment::intermediateNodeKeepsHalfAWidthAway()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}, {0, 2}});
    graph.setWidth(1, 100);
    graph.show();
    const Node &station = *graph.chain(0, 2).front();
    QCOMPARE(std::abs(station.toX - graph.node(1).toX), 58);
}

/// A parent of two may stand anywhere between them at equal cost; it gets the middle.
void tst_CoordinateAssignment::parentStandsBetweenItsChildren()
{
    ViewGraph graph(3, {{0, 1}, {0, 2}});
    graph.setWidth(0, 30);
    graph.setWidth(1, 50);
    graph.setWidth(2, 90);
    LayoutOracle oracle(graph.view);
    graph.show();
    QCOMPARE(oracle.difference(graph.ref(2)), QString());
    QVERIFY(graph.node(0).toX >= graph.node(1).toX);
    QVERIFY(graph.node(0).toX <= graph.node(2).toX);
}

void tst_CoordinateAssignment::chainIsStraight()
{
    ViewGraph graph(chainGraph(6));
    for (unsigned i = 0; i < 6; ++i)
        graph.setWidth(i, static_cast<int>(20 + 31 * i));
    layoutFromOrigin(graph);
    for (unsigned i = 0; i < 6; ++i)
        QCOMPARE(graph.node(i).toX, graph.node(0).toX);
    // The widest one touches the margin.
    QCOMPARE(leftOf(graph.node(5)), 8);
    QCOMPARE(graph.view.getLayoutFigures().length, 0.0);
}

void tst_CoordinateAssignment::layersAreStackedByTheFullHeightBefore()
{
    ViewGraph graph(chainGraph(4));
    for (unsigned i = 0; i < 4; ++i)
        graph.setTextSize(i, 10, static_cast<int>(100 + 50 * i));
    layoutFromOrigin(graph);
    QCOMPARE(graph.node(0).toY, graph.node(0).height / 2);
    for (unsigned i = 0; i < 3; ++i)
        QCOMPARE(graph.node(i + 1).toY - graph.node(i).toY, graph.node(i).height + 8);
}

void tst_CoordinateAssignment::nodesOfALayerShareOneY()
{
    ViewGraph graph(5, {{0, 1}, {0, 2}, {0, 3}, {2, 4}});
    graph.setTextSize(1, 10, 300);
    graph.setTextSize(3, 10, 40);
    graph.show();
    QCOMPARE(graph.node(2).toY, graph.node(1).toY);
    QCOMPARE(graph.node(3).toY, graph.node(1).toY);
    // The highest one decides where the next layer is.
    QCOMPARE(graph.node(4).toY - graph.node(2).toY, graph.node(1).height + 8);
}

void tst_CoordinateAssignment::intermediateNodesHaveAPartInTheirLayersHeight()
{
    // Icons make every node as high as an intermediate one at least.
    ViewGraph graph(3, {{0, 1}, {1, 2}, {0, 2}});
    graph.setTextSize(1, 10, 0);
    graph.show();
    const Node &station = *graph.chain(0, 2).front();
    QCOMPARE(station.height, leastHeight(graph));
    QCOMPARE(station.toY, graph.node(1).toY);
    QCOMPARE(graph.node(2).toY - station.toY, station.height + 8);
}

void tst_CoordinateAssignment::linksPointDownwards()
{
    ViewGraph graph(4, {{3, 1}, {1, 0}, {3, 2}, {2, 0}, {0, 3}});
    graph.show();
    // Of the cycle the link into 3 is in the way of the walk, which begins at 0.
    QVERIFY(graph.node(0).toY < graph.node(3).toY);
    QVERIFY(graph.node(3).toY < graph.node(1).toY);
    QVERIFY(graph.node(3).toY < graph.node(2).toY);
}

void tst_CoordinateAssignment::distancesOf65536AndMoreWrapToSmallOnes_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("distance");
    QTest::newRow("greatest that holds") << 65527 << 65535;
    QTest::newRow("65536 is none") << 65528 << 0;
    QTest::newRow("wraps to 100") << 65628 << 100;
    QTest::newRow("wraps twice") << 131072 << 8;
}

/// KEPT in coordinate assignment.
void tst_CoordinateAssignment::distancesOf65536AndMoreWrapToSmallOnes()
{
    QFETCH(int, width);
    QFETCH(int, distance);
    ViewGraph graph(3, {{0, 1}, {0, 2}});
    graph.setWidth(1, width);
    graph.setWidth(2, width);
    graph.show();
    QCOMPARE(graph.node(2).toX - graph.node(1).toX, distance);
}

/// A link of many references pulls no stronger than the other one: between its ends a node may
/// still stand anywhere.
void tst_CoordinateAssignment::referencesDontPull()
{
    ViewGraph single(3, {{0, 1}, {0, 2}});
    ViewGraph many(3, {{0, 1}, {0, 2}, {0, 2}, {0, 2}, {0, 2}});
    for (ViewGraph *graph : {&single, &many}) {
        for (unsigned i = 0; i < 3; ++i)
            graph->setWidth(i, 50);
        graph->show();
    }
    QCOMPARE(many.node(0).toX - many.node(1).toX, single.node(0).toX - single.node(1).toX);
    QCOMPARE(many.node(2).toX - many.node(1).toX, single.node(2).toX - single.node(1).toX);
}

void tst_CoordinateAssignment::lengthIsSummedOverUnitPieces()
{
    ViewGraph graph(5, {{0, 1}, {1, 2}, {2, 3}, {0, 3}, {0, 4}});
    graph.show();
    const auto chain = graph.chain(0, 3);
    QCOMPARE(chain.size(), std::size_t(2));
    const auto way = [](Node const &a, Node const &b) { return std::abs(a.toX - b.toX); };
    const double length = way(graph.node(0), graph.node(1)) + way(graph.node(1), graph.node(2)) +
                          way(graph.node(2), graph.node(3)) + way(graph.node(0), graph.node(4)) +
                          way(graph.node(0), *chain[0]) + way(*chain[0], *chain[1]) +
                          way(*chain[1], graph.node(3));
    QVERIFY(length > 0);
    QCOMPARE(graph.view.getLayoutFigures().length, length);
}

void tst_CoordinateAssignment::boundHoldsEveryNode()
{
    std::mt19937 generator(7);
    ViewGraph graph(randomDag(25, 10, generator));
    layoutFromOrigin(graph);
    int left = graph.node(0).toX, right = left, top = graph.node(0).toY, bottom = top;
    const auto include = [&](Node const &node) {
        left = std::min(left, leftOf(node));
        right = std::max(right, rightOf(node));
        top = std::min(top, node.toY - node.height / 2);
        bottom = std::max(bottom, node.toY - node.height / 2 + node.height);
    };
    // A long link may swing out beyond all boxes.
    for (unsigned i = 0; i < graph.numNodes(); ++i) {
        include(graph.node(i));
        for (auto const &[far, entry] : graph.node(i).linkedOut)
            ZR::VOM::GUI::Graph::forEachIntermediate(entry, include);
    }
    QCOMPARE(left, 8);
    QCOMPARE(top, 0);
    QCOMPARE(graph.view.getLayoutFigures().height, bottom);
    QCOMPARE(graph.view.getLayoutFigures().width, right - left);
}

void tst_CoordinateAssignment::randomWidthsEqualTheLiteralLayout()
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 generator(seed);
        const unsigned numNodes = 2 + drawBelow(generator, 14);
        ViewGraph graph(randomDag(numNodes, drawBelow(generator, 10), generator));
        for (unsigned i = 0; i < numNodes; ++i)
            graph.setTextSize(i, static_cast<int>(drawBelow(generator, 300)),
                              static_cast<int>(drawBelow(generator, 60)));
        LayoutOracle oracle(graph.view);
        graph.show();
        const QString difference = oracle.difference(graph.ref(numNodes - 1));
        QVERIFY2(difference.isEmpty(), qPrintable(QString("seed %1: ").arg(seed) + difference));
    }
}

QTEST_MAIN(tst_CoordinateAssignment)
#include "tst_CoordinateAssignment.moc"
