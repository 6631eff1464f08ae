#include "support/ViewGraph.h"
#include "support/ViewPicture.h"

#include <QTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

enum Hit { None, Box, UpperArrow, LowerArrow };

/// Where a node takes the mouse, as rectangles: right and bottom are outside.
struct Areas {
    Areas(ObjectGraphView const &view, Node const &node)
    {
        const int icon = Access::iconSize(view);
        const QPoint corner(node.x - node.width / 2, node.y - node.height / 2);
        box = QRect(corner + QPoint(0, icon), QSize(node.width, node.height - 2 * icon));
        upper = QRect(node.x + node.arrowX, node.y + node.topY, icon, icon);
        lower = QRect(node.x + node.arrowX, node.y + node.bottomY, icon, icon);
        whole = QRect(corner, QSize(node.width, node.height));
    }
    Hit at(QPoint const &pos, bool hasUpper, bool hasLower) const
    {
        if (box.contains(pos))
            return Box;
        if (hasUpper && upper.contains(pos))
            return UpperArrow;
        return hasLower && lower.contains(pos) ? LowerArrow : None;
    }

    QRect box, upper, lower, whole;
};

/// A visible node with a label of this size, at a place.
Node &put(ViewGraph &graph, unsigned index, QSize const &text, QPoint const &pos)
{
    Node &node = graph.node(index);
    graph.setTextSize(index, text.width(), text.height());
    Access::updateSize(graph.view, node);
    node.visible = true;
    graph.view.setPos(graph.obj(index), pos.x(), pos.y(), false);
    return node;
}

int hitAt(ViewGraph const &graph, QPoint const &pos)
{
    return Access::find(graph.view, pos).second;
}

} // namespace

/// What lies under a point.
class tst_HitTest : public QObject {
    Q_OBJECT

private slots:
    void everyPixelOfANode_data();
    void everyPixelOfANode();
    void hiddenNodeIsNotHit();
    void measuredNothingIsNotHit();
    void paintedBoxIsHit_data();
    void paintedBoxIsHit();
    void lowestObjectAddressWinsWhereBoxesOverlap();
    void emptyBandLetsTheNodeUnderItBeHit();
    void arrowInABandHidesTheNodeUnderIt();
    void farPlacesDoNotOverflow();
};

void tst_HitTest::everyPixelOfANode_data()
{
    QTest::addColumn<QSize>("text");
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<bool>("hasUpper");
    QTest::addColumn<bool>("hasLower");
    QTest::newRow("even, no arrow") << QSize(40, 12) << QPoint(0, 0) << false << false;
    QTest::newRow("odd, both arrows") << QSize(41, 31) << QPoint(7, -3) << true << true;
    QTest::newRow("upper arrow") << QSize(60, 16) << QPoint(-100, 50) << true << false;
    QTest::newRow("lower arrow") << QSize(61, 17) << QPoint(100, -51) << false << true;
    QTest::newRow("no label") << QSize(0, 0) << QPoint(3, 4) << true << true;
    QTest::newRow("label higher than the icon") << QSize(10, 40) << QPoint(-7, -9) << true << true;
}

void tst_HitTest::everyPixelOfANode()
{
    QFETCH(QSize, text);
    QFETCH(QPoint, pos);
    QFETCH(bool, hasUpper);
    QFETCH(bool, hasLower);
    ViewGraph graph(1);
    Node &node = put(graph, 0, text, pos);
    node.hiddenIn = hasUpper;
    node.hiddenOut = hasLower;
    const Areas areas(graph.view, node);
    int numHits[4] = {0, 0, 0, 0};
    for (int y = areas.whole.top() - 2; y <= areas.whole.bottom() + 2; ++y) {
        for (int x = areas.whole.left() - 2; x <= areas.whole.right() + 2; ++x) {
            const int hit = hitAt(graph, {x, y});
            QVERIFY2(hit == areas.at({x, y}, hasUpper, hasLower),
                     qPrintable(QString("%1 at %2, %3").arg(hit).arg(x).arg(y)));
            ++numHits[hit];
        }
    }
    QVERIFY(numHits[Box] > 0);
    QCOMPARE(numHits[UpperArrow] > 0, hasUpper);
    QCOMPARE(numHits[LowerArrow] > 0, hasLower);
}

void tst_HitTest::hiddenNodeIsNotHit()
{
    ViewGraph graph(1);
    put(graph, 0, {40, 16}, {0, 0});
    QCOMPARE(hitAt(graph, {0, 0}), int(Box));
    graph.hide(0);
    QCOMPARE(hitAt(graph, {0, 0}), int(None));
    QVERIFY(!Access::find(graph.view, {0, 0}).first);
}

void tst_HitTest::measuredNothingIsNotHit()
{
    ViewGraph graph(1);
    graph.node(0).visible = true;
    QCOMPARE(hitAt(graph, {0, 0}), int(None));
}

void tst_HitTest::paintedBoxIsHit_data()
{
    QTest::addColumn<QSize>("text");
    QTest::addColumn<QPoint>("scroll");
    QTest::newRow("even") << QSize(30, 26) << QPoint(0, 0);
    QTest::newRow("odd") << QSize(31, 27) << QPoint(0, 0);
    QTest::newRow("scrolled") << QSize(30, 27) << QPoint(-37, 41);
}

void tst_HitTest::paintedBoxIsHit()
{
    QFETCH(QSize, text);
    QFETCH(QPoint, scroll);
    PaintScene scene("a");
    scene.place('a', {150, 140}, text);
    scene.scrollTo(scroll);
    const QRect painted = otherThan(PaintScene::background, scene.paint());
    QRect taken;
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 300; ++x)
            if (Access::find(scene.view, QPoint(x, y) + scroll).second == Box)
                taken |= QRect(x, y, 1, 1);
    // The outline's right and lower lines lie just outside.
    QCOMPARE(taken, painted.adjusted(0, 0, -1, -1));
}

/// KEPT: where boxes overlap, the one of the lowest object address is found.
void tst_HitTest::lowestObjectAddressWinsWhereBoxesOverlap()
{
    ViewGraph graph(3);
    for (unsigned i = 0; i < 3; ++i)
        put(graph, i, {40, 16}, {int(i), 0});
    for (int numHidden = 0; numHidden < 3; ++numHidden) {
        const RefT<VOM::Object> lowest = graph.view.getVisibleObjs().front();
        QCOMPARE(Access::find(graph.view, {2, 0}).first->obj.get(), lowest.get());
        graph.view.setVisible({lowest}, false);
    }
}

/// KEPT: the bands over and under a box aren't part of it.
void tst_HitTest::emptyBandLetsTheNodeUnderItBeHit()
{
    ViewGraph graph(2);
    for (unsigned i : {0u, 1u})
        put(graph, i, {40, 16}, {0, 0});
    Node &lowest = *Access::node(graph.view, graph.view.getVisibleObjs()[0]);
    Node &other = *Access::node(graph.view, graph.view.getVisibleObjs()[1]);
    graph.view.setPos(other.obj, 0, -lowest.height / 2, false);
    const auto [node, hit] = Access::find(graph.view, {0, -lowest.height / 2});
    QCOMPARE(hit, int(Box));
    QCOMPARE(node.get(), &other);
}

void tst_HitTest::arrowInABandHidesTheNodeUnderIt()
{
    ViewGraph graph(2);
    for (unsigned i : {0u, 1u})
        put(graph, i, {40, 16}, {0, 0});
    Node &lowest = *Access::node(graph.view, graph.view.getVisibleObjs()[0]);
    Node &other = *Access::node(graph.view, graph.view.getVisibleObjs()[1]);
    lowest.hiddenIn = true;
    const QPoint arrow(lowest.arrowX, lowest.topY);
    graph.view.setPos(other.obj, arrow.x(), arrow.y(), false);
    QCOMPARE(Access::find(graph.view, arrow).second, int(UpperArrow));
    QCOMPARE(Access::find(graph.view, arrow).first.get(), &lowest);
    QCOMPARE(Access::find(graph.view, arrow - QPoint(1, 0)).first.get(), &other);
}

void tst_HitTest::farPlacesDoNotOverflow()
{
    constexpr int far = ObjectGraphView::maxPos;
    ViewGraph graph(1);
    put(graph, 0, {40, 16}, {far, -far});
    QCOMPARE(hitAt(graph, {far, -far}), int(Box));
    QCOMPARE(hitAt(graph, {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}),
             int(None));
}

QTEST_MAIN(tst_HitTest)
#include "tst_HitTest.moc"
