#include "graph/layout/Places.h"
#include "support/EngineGraph.h"
#include "support/ViewProbe.h"

#include <QFontMetrics>

#include <limits>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::EngineGraph;
using Graph::maxCoordinate;

namespace {

constexpr int huge = 1000000;

/// A path that goes up and down between two layers.
NumberedGraph zigzagGraph(unsigned numNodes)
{
    NumberedGraph graph;
    graph.numNodes = numNodes;
    for (unsigned i = 1; i < numNodes; ++i)
        graph.links.push_back(i % 2 == 1 ? NumberedGraph::Link(i - 1, i)
                                         : NumberedGraph::Link(i, i - 1));
    return graph;
}

std::vector<int> xOf(EngineGraph const &graph)
{
    std::vector<int> all;
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        all.push_back(graph.node(i).x);
    return all;
}

} // namespace

/// Boxes and drawings so large that 16 bits, or those of an int, don't hold them.
class tst_LayoutLimits : public QObject {
    Q_OBJECT

private slots:
    void distancesThatWrapStillMakeADrawing_data();
    void distancesThatWrapStillMakeADrawing();
    void longestLabelsAreLaidOut();
    void layerWiderThanAnIntIsPressedTogether();
    void rowWiderThanAnIntPilesUpAtItsEnd();
    void columnHigherThanAnIntPilesUpAtItsEnd();
    void anchorAtTheFarEndIsHeldInPlace_data();
    void anchorAtTheFarEndIsHeldInPlace();
    void hugeDrawingIsPainted();
};

void tst_LayoutLimits::distancesThatWrapStillMakeADrawing_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("last that fits") << 65527;
    QTest::newRow("distance 0") << 65528;
    QTest::newRow("distance 1") << 65529;
    QTest::newRow("twice 16 bits") << 131064;
    QTest::newRow("longest label") << huge;
}

void tst_LayoutLimits::distancesThatWrapStillMakeADrawing()
{
    QFETCH(int, width);
    for (unsigned seed = 1; seed <= 5; ++seed) {
        std::mt19937 generator(seed);
        EngineGraph graph(randomDag(60, 50, generator));
        for (unsigned i = 0; i < graph.numNodes(); ++i)
            graph.setSize(i, drawBelow(generator, 3) == 0 ? 50 : width, 20);
        QCOMPARE(graph.layout(), QString());
    }
}

void tst_LayoutLimits::longestLabelsAreLaidOut()
{
    ViewGraph graph(4, {{0, 1}, {0, 2}, {0, 3}});
    for (unsigned i = 1; i < 4; ++i)
        static_cast<VOM::FieldString &>(*graph.obj(i)->getField(0)).set(std::string(100000, 'W'));
    showOutOfSight(graph);
    graph.view.layout();
    const int width = graph.node(1).width;
    QVERIFY(width > 65536);
    std::vector<int> x{graph.node(1).toX, graph.node(2).toX, graph.node(3).toX};
    std::sort(x.begin(), x.end());
    const int distance = (width + gap) % 65536;
    QVERIFY(x[1] - x[0] >= distance);
    QVERIFY(x[2] - x[1] >= distance);
    QCOMPARE(leftOf(graph.node(1)) == gap || leftOf(graph.node(2)) == gap ||
                 leftOf(graph.node(3)) == gap,
             true);
}

/// All distances are divided by the same number: the drawing is that of smaller boxes.
void tst_LayoutLimits::layerWiderThanAnIntIsPressedTogether()
{
    constexpr unsigned n = 16000;
    constexpr int wide = 65000, half = (wide + gap) / 2 - gap;
    static_assert((n - 2) * std::int64_t(wide + gap) > maxCoordinate);
    EngineGraph graph(zigzagGraph(n)), smaller(zigzagGraph(n));
    for (unsigned i = 0; i < n; ++i) {
        graph.setSize(i, wide, 20);
        smaller.setSize(i, half, 20);
    }
    graph.layout();
    QCOMPARE(smaller.layout(), QString());
    QVERIFY(xOf(graph) == xOf(smaller));
}

void tst_LayoutLimits::rowWiderThanAnIntPilesUpAtItsEnd()
{
    constexpr unsigned n = 3000;
    ViewGraph graph(n);
    showOutOfSight(graph);
    for (unsigned i = 0; i < n; ++i)
        graph.setWidth(i, huge);
    graph.view.layout();
    for (unsigned i = 0; i < n; ++i) {
        const std::int64_t left = gap + i * std::int64_t(huge + 1 + gap);
        const std::int64_t x = std::min<std::int64_t>(left + huge / 2, maxCoordinate);
        QCOMPARE(std::int64_t(graph.node(i).toX), x);
    }
    QCOMPARE(graph.view.getLayoutFigures().width, maxCoordinate);
}

void tst_LayoutLimits::columnHigherThanAnIntPilesUpAtItsEnd()
{
    constexpr unsigned n = 3000;
    ViewGraph graph(chainGraph(n));
    showOutOfSight(graph);
    for (unsigned i = 0; i < n; ++i)
        graph.setTextSize(i, 10, huge);
    graph.view.layout();
    const int height = graph.node(0).height;
    QVERIFY(height > huge);
    for (unsigned i = 0; i < n; ++i) {
        const std::int64_t y = height / 2 + i * std::int64_t(height + gap);
        QCOMPARE(std::int64_t(graph.node(i).toY), std::min<std::int64_t>(y, maxCoordinate));
    }
}

void tst_LayoutLimits::anchorAtTheFarEndIsHeldInPlace_data()
{
    constexpr int most = ObjectGraphView::maxPos;
    QTest::addColumn<QPoint>("position");
    QTest::newRow("lowest coordinates") << QPoint(-most, -most);
    QTest::newRow("highest coordinates") << QPoint(most, most);
}

void tst_LayoutLimits::anchorAtTheFarEndIsHeldInPlace()
{
    QFETCH(QPoint, position);
    constexpr unsigned n = 3000;
    ViewGraph graph(n);
    showOutOfSight(graph);
    for (unsigned i = 0; i < n; ++i)
        graph.setWidth(i, huge);
    for (unsigned anchor : {0u, n - 1}) {
        place(graph, anchor, position.x(), position.y());
        GraphViewAccess::layout(graph.view, graph.ref(anchor));
        QCOMPARE(targetOf(graph, anchor), position);
        for (unsigned i = 1; i < n; ++i)
            QVERIFY(graph.node(i - 1).toX <= graph.node(i).toX);
    }
}

/// What paint, scroll range and animation work out of such places stays within an int, too.
void tst_LayoutLimits::hugeDrawingIsPainted()
{
    constexpr unsigned n = 3000;
    NumberedGraph pairs;
    pairs.numNodes = n;
    for (unsigned i = 0; i + 1 < n; i += 2)
        pairs.links.emplace_back(i, i + 1);
    ViewGraph graph(pairs);
    showOutOfSight(graph);
    graph.view.resize(300, 200);
    for (unsigned i = 0; i < n; ++i)
        graph.setWidth(i, huge);
    for (int turn = 0; turn < 4; ++turn) {
        // From one end to the other, where what was in sight is held in place.
        graph.view.horizontalScrollBar()->triggerAction(
            turn % 2 == 0 ? QScrollBar::SliderToMaximum : QScrollBar::SliderToMinimum);
        graph.view.layout();
        letPass(GraphViewAccess::animStart(graph.view), 1);
        tick(GraphViewAccess::animTimer(graph.view));
        graph.view.grab();
        finishAnimation(graph.view);
        graph.view.grab();
        for (unsigned i = 0; i < n; ++i)
            QVERIFY(std::abs(graph.node(i).x) <= maxCoordinate);
    }
}

QTEST_MAIN(tst_LayoutLimits)
#include "tst_LayoutLimits.moc"
