#include "graph/layout/Places.h"
#include "support/LayoutOracle.h"
#include "support/ViewProbe.h"

#include <cstdint>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::LayoutOracle;
using Graph::Node;

/// What a layout holds in place.
class tst_LayoutAnchors : public QObject {
    Q_OBJECT

private slots:
    void nodesInSightAreTheAnchors_data();
    void nodesInSightAreTheAnchors();
    void sightIsAsLargeAsTheWidget();
    void hiddenNodesInSightAreNoAnchors();
    void withoutAnchorsTheDrawingBeginsAtTheOrigin();
    void anchorsKeepTheirMean_data();
    void anchorsKeepTheirMean();
    void meansAreTruncatedTowardsZero();
    void meanOfFarNodesDoesntWrap();
    void givenAnchorIsHeldInPlace();
    void hiddenAnchorHoldsNothing();
    void shownNodeIsHeldInPlace();
    void lastNodeThatChangedIsHeldInPlace_data();
    void lastNodeThatChangedIsHeldInPlace();
    void hidingLaysNothingOut();
    void anyAnchorsEqualTheLiteralOnes_data();
    void anyAnchorsEqualTheLiteralOnes();
};

void tst_LayoutAnchors::nodesInSightAreTheAnchors_data()
{
    QTest::addColumn<QPoint>("centre"); // From the corner of what the user sees.
    QTest::addColumn<bool>("isAnchor");
    QTest::newRow("in the middle") << QPoint(200, 150) << true;
    QTest::newRow("left edge") << QPoint(0, 150) << true;
    QTest::newRow("left of the left edge") << QPoint(-1, 150) << false;
    QTest::newRow("last column of the widget, frame or not") << QPoint(399, 150) << true;
    QTest::newRow("right edge") << QPoint(400, 150) << false;
    QTest::newRow("top edge") << QPoint(200, 0) << true;
    QTest::newRow("above the top edge") << QPoint(200, -1) << false;
    QTest::newRow("last line of the widget") << QPoint(200, 299) << true;
    QTest::newRow("bottom edge") << QPoint(200, 300) << false;
    QTest::newRow("bottom right corner") << QPoint(399, 299) << true;
    QTest::newRow("right in x, wrong in y") << QPoint(0, 301) << false;
    QTest::newRow("right in y, wrong in x") << QPoint(-2, 0) << false;
}

void tst_LayoutAnchors::nodesInSightAreTheAnchors()
{
    QFETCH(QPoint, centre);
    QFETCH(bool, isAnchor);
    for (const QPoint scroll : {QPoint(0, 0), QPoint(-700, 55), QPoint(900, -31)}) {
        ViewGraph graph(2);
        showOutOfSight(graph);
        lookAt(graph, {scroll, QSize(400, 300)});
        graph.view.layout();
        const QPoint unshifted = targetOf(graph, 1);
        const QPoint at = scroll + centre;
        QVERIFY(at != unshifted);
        place(graph, 1, at.x(), at.y());
        graph.view.layout();
        QCOMPARE(targetOf(graph, 1), isAnchor ? at : unshifted);
    }
}

/// Scroll bars cover a part of the widget that counts as in sight.
void tst_LayoutAnchors::sightIsAsLargeAsTheWidget()
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

void tst_LayoutAnchors::hiddenNodesInSightAreNoAnchors()
{
    ViewGraph graph(2);
    graph.show(0);
    graph.setWidth(0, 40);
    place(graph, 0, 100, 100);
    place(graph, 1, 500, 300);
    graph.view.layout();
    QCOMPARE(targetOf(graph, 0), QPoint(100, 100));
}

void tst_LayoutAnchors::withoutAnchorsTheDrawingBeginsAtTheOrigin()
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

void tst_LayoutAnchors::anchorsKeepTheirMean_data()
{
    QTest::addColumn<std::vector<QPoint>>("places");
    QTest::addColumn<QPoint>("mean");
    using Places = std::vector<QPoint>;
    QTest::newRow("one") << Places{{30, -40}} << QPoint(30, -40);
    QTest::newRow("two") << Places{{30, 40}, {50, 80}} << QPoint(40, 60);
    QTest::newRow("rounded down") << Places{{30, 40}, {31, 41}} << QPoint(30, 40);
    QTest::newRow("rounded up below 0") << Places{{-30, -40}, {-31, -41}} << QPoint(-30, -40);
    QTest::newRow("towards 0 from both sides") << Places{{-1, 1}, {0, 0}, {-1, 1}} << QPoint(0, 0);
}

void tst_LayoutAnchors::anchorsKeepTheirMean()
{
    QFETCH(std::vector<QPoint>, places);
    QFETCH(QPoint, mean);
    const auto num = static_cast<unsigned>(places.size());
    // One more, which is out of sight and has no part in the mean.
    ViewGraph graph(num + 1);
    showOutOfSight(graph);
    graph.view.layout();
    QPoint unshifted;
    for (unsigned i = 0; i < num; ++i)
        unshifted += targetOf(graph, i);
    unshifted = {unshifted.x() / static_cast<int>(num), unshifted.y() / static_cast<int>(num)};
    const QPoint first = targetOf(graph, 0);

    lookAt(graph, QRect(-100, -100, 400, 300));
    for (unsigned i = 0; i < num; ++i)
        place(graph, i, places[i].x(), places[i].y());
    graph.view.layout();
    QCOMPARE(targetOf(graph, 0), first + mean - unshifted);
}

void tst_LayoutAnchors::meansAreTruncatedTowardsZero()
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

/// The sum of ten of them is far beyond what an int holds.
void tst_LayoutAnchors::meanOfFarNodesDoesntWrap()
{
    constexpr int far = ObjectGraphView::maxPos;
    ViewGraph graph(10);
    graph.showWithoutLayout();
    graph.view.horizontalScrollBar()->setRange(far, far);
    graph.view.verticalScrollBar()->setRange(-far, -far);
    for (unsigned i = 0; i < 10; ++i)
        place(graph, i, far, -far);
    graph.view.layout();
    std::int64_t sum = 0;
    for (unsigned i = 0; i < 10; ++i) {
        sum += graph.node(i).toX;
        QCOMPARE(graph.node(i).toY, -far);
    }
    QCOMPARE(static_cast<int>(sum / 10), far);
}

void tst_LayoutAnchors::givenAnchorIsHeldInPlace()
{
    ViewGraph graph(4, {{0, 1}, {0, 2}, {2, 3}});
    graph.showWithoutLayout();
    for (unsigned i = 0; i < 4; ++i)
        place(graph, i, 10 * static_cast<int>(i), 5);
    place(graph, 3, -3000, 4000);
    GraphViewAccess::layout(graph.view, graph.ref(3));
    QCOMPARE(targetOf(graph, 3), QPoint(-3000, 4000));
    QVERIFY(targetOf(graph, 2).y() < 4000);
}

/// It isn't moved, so that its mean is the same before and after.
void tst_LayoutAnchors::hiddenAnchorHoldsNothing()
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

void tst_LayoutAnchors::shownNodeIsHeldInPlace()
{
    ViewGraph graph(3, {{0, 1}, {1, 2}});
    place(graph, 1, -4321, 1234);
    graph.show(1);
    QCOMPARE(targetOf(graph, 1), QPoint(-4321, 1234));
    graph.show(0);
    QCOMPARE(targetOf(graph, 0), QPoint(0, 0));
}

void tst_LayoutAnchors::lastNodeThatChangedIsHeldInPlace_data()
{
    QTest::addColumn<std::vector<unsigned>>("shown");
    QTest::addColumn<unsigned>("anchor");
    using Nodes = std::vector<unsigned>;
    QTest::newRow("one") << Nodes{1} << 1u;
    QTest::newRow("last of several") << Nodes{1, 3, 2} << 2u;
    QTest::newRow("last one is visible already") << Nodes{3, 1, 0} << 1u;
    QTest::newRow("last one came before") << Nodes{1, 2, 1} << 2u;
}

void tst_LayoutAnchors::lastNodeThatChangedIsHeldInPlace()
{
    QFETCH(std::vector<unsigned>, shown);
    QFETCH(unsigned, anchor);
    ViewGraph graph(4, {{0, 1}, {0, 2}, {0, 3}});
    graph.show(0);
    for (unsigned i = 0; i < 4; ++i)
        place(graph, i, 1000 * static_cast<int>(i), 300 * static_cast<int>(i));
    std::vector<RefT<VOM::Object>> objs;
    for (unsigned node : shown)
        objs.push_back(graph.obj(node));
    graph.view.setVisible(objs, true);
    for (unsigned i = 0; i < 4; ++i)
        QCOMPARE(targetOf(graph, i) == posOf(graph, i), i == anchor || !graph.node(i).visible);
}

void tst_LayoutAnchors::hidingLaysNothingOut()
{
    ViewGraph graph(3, {{0, 1}, {0, 2}});
    graph.show();
    finishAnimation(graph.view);
    const QPoint before = targetOf(graph, 2);
    place(graph, 0, 700, 600);
    graph.hide(1);
    QCOMPARE(targetOf(graph, 0), QPoint(700, 600));
    QCOMPARE(targetOf(graph, 2), before);
    QVERIFY(!GraphViewAccess::animTimer(graph.view).isActive());
}

void tst_LayoutAnchors::anyAnchorsEqualTheLiteralOnes_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<unsigned>("numLinks");
    QTest::addColumn<unsigned>("numSeeds");
    QTest::newRow("pairs and self-links") << 3u << 4u << 100u;
    QTest::newRow("many small components") << 20u << 8u << 60u;
    QTest::newRow("several components") << 20u << 16u << 60u;
    QTest::newRow("one sparse component and scraps") << 24u << 26u << 60u;
    QTest::newRow("many cycles") << 16u << 34u << 60u;
    QTest::newRow("dense, parallel links") << 7u << 60u << 40u;
    QTest::newRow("larger") << 60u << 90u << 8u;
}

/// Positions, the part in sight, sizes and what is visible are drawn too.
void tst_LayoutAnchors::anyAnchorsEqualTheLiteralOnes()
{
    QFETCH(unsigned, numNodes);
    QFETCH(unsigned, numLinks);
    QFETCH(unsigned, numSeeds);
    for (unsigned seed = 1; seed <= numSeeds; ++seed) {
        std::mt19937 generator(seed);
        const auto draw = [&](int lowest, int highest) {
            return lowest + static_cast<int>(
                                drawBelow(generator, static_cast<unsigned>(highest - lowest + 1)));
        };
        ViewGraph graph(randomGraph(numNodes, numLinks, generator));
        lookAt(graph, QRect(draw(-100, 100), draw(-50, 50), 300, 200));
        for (unsigned i = 0; i < numNodes; ++i) {
            graph.node(i).visible = drawBelow(generator, 8) != 0;
            place(graph, i, draw(-200, 400), draw(-100, 300));
            graph.setTextSize(i, draw(0, 90), draw(10, 40));
        }
        const unsigned anchor = drawBelow(generator, 2 * numNodes);
        const RefT<Node> anchorRef = anchor < numNodes ? graph.ref(anchor) : RefT<Node>();
        // Once more on what the first layout left.
        for (int i = 0; i < 2; ++i) {
            LayoutOracle oracle(graph.view);
            GraphViewAccess::layout(graph.view, anchorRef);
            const QString difference = oracle.difference(anchorRef);
            QVERIFY2(difference.isEmpty(),
                     qPrintable(QString("seed %1, layout %2: ").arg(seed).arg(i) + difference));
        }
    }
}

QTEST_MAIN(tst_LayoutAnchors)
#include "tst_LayoutAnchors.moc"
