#include "support/Things.h"
#include "support/ViewProbe.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <QScrollBar>
#include <QTest>

#include <cmath>
#include <limits>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

/// a > b > c and a > c: the long link passes one intermediate node.
class Scene {
public:
    Scene()
    {
        setLink(things[0], "near", things[1]);
        setLink(things[1], "near", things[2]);
        setLink(things[0], "far", things[2]);
        view.addOutLinkField("", "near");
        view.addOutLinkField("", "far");
        view.add(things, false);
        view.setVisible(things, true);
    }

    Node &node(unsigned index) { return *Access::node(view, things[index]); }
    Node &station() { return *Graph::chainOf(node(0).linkedOut.at(Graph::keyOf(node(2)))).front(); }
    void tickAt(double seconds)
    {
        letPass(Access::animStart(view), seconds);
        tick(Access::animTimer(view));
    }
    bool isRunning() { return Access::animTimer(view).isActive(); }

    Things things = makeThings("abc");
    ObjectGraphView view;
};

void setWay(Node &node, int fromX, int toX, int fromY, int toY)
{
    node.x = node.fromX = fromX;
    node.y = node.fromY = fromY;
    node.toX = toX;
    node.toY = toY;
}

/// Where an intermediate node is after `passed` of `period` milliseconds.
int stationAt(int from, int to, unsigned passed, unsigned period)
{
    const unsigned sum =
        static_cast<unsigned>(to) * passed + static_cast<unsigned>(from) * (period - passed);
    return static_cast<int>(sum) / static_cast<int>(period);
}

} // namespace

class tst_Animation : public QObject {
    Q_OBJECT
private slots:
    void timersTickEveryFiftyMilliseconds();
    void defaultIsTwoSeconds();
    void realNodesGoByTheShareOfTime();
    void waysAreCutTowardsZero();
    void intermediateNodesGoInWholeMilliseconds();
    void intermediateNodesWrapOnLongWays();
    void periodBelowAMillisecondDividesByNothing();
    void lastTickArrivesExactly();
    void durationIsTakenAsSixtySecondsAtMost();
    void noDurationEndsAtTheNextTick_data();
    void noDurationEndsAtTheNextTick();
    void durationCountsAsItIsAtTheTick();
    void layoutStartsTheClockAnew();
    void layoutWithNoDurationStillStartsTheTimer();
    void hiddenNodeStaysWhereItIs();
    void tickAsksForBoundsAndPaint();
    void animatedPositionStartsTheAnimation();
    void positionWithNoDurationIsTakenAtOnce();
    void placedNodeDoesNotMove();
    void objectsMayDieUnderWay();
    void scrollGoesByTheShareOfTime();
    void scrollArrivesAndStops();
    void scrollOverwritesTheUser();
    void scrollLeavesTheBounds();
};

void tst_Animation::timersTickEveryFiftyMilliseconds()
{
    ObjectGraphView view;
    QCOMPARE(Access::animTimer(view).interval(), 50);
    QCOMPARE(Access::scrollTimer(view).interval(), 50);
    QVERIFY(!Access::animTimer(view).isActive());
    QVERIFY(!Access::scrollTimer(view).isActive());
    QVERIFY(!Access::animTimer(view).isSingleShot());
}

void tst_Animation::defaultIsTwoSeconds()
{
    Scene scene;
    QCOMPARE(scene.view.animDuration.get(), 2.0);
    scene.tickAt(1.9);
    QVERIFY(scene.isRunning());
    scene.tickAt(2.0);
    QVERIFY(!scene.isRunning());
}

void tst_Animation::realNodesGoByTheShareOfTime()
{
    Scene scene;
    scene.view.animDuration.set(60);
    setWay(scene.node(0), 0, 600, 1000, 400);
    scene.tickAt(30.05);
    QCOMPARE(scene.node(0).x, 300);
    QCOMPARE(scene.node(0).y, 1000 - 300);
    QCOMPARE(scene.node(0).fromX, 0);
    QCOMPARE(scene.node(0).toX, 600);
}

void tst_Animation::waysAreCutTowardsZero()
{
    Scene scene;
    scene.view.animDuration.set(60);
    setWay(scene.node(0), 10, 16, 10, 4);
    scene.tickAt(15.5);
    QCOMPARE(scene.node(0).x, 10 + 1);
    QCOMPARE(scene.node(0).y, 10 - 1);
}

void tst_Animation::intermediateNodesGoInWholeMilliseconds()
{
    Scene scene;
    scene.view.animDuration.set(60);
    setWay(scene.station(), 100, 160, -100, -220);
    scene.tickAt(30.05);
    QCOMPARE(scene.station().x, stationAt(100, 160, 30050, 60000));
    QCOMPARE(scene.station().x, 130);
    QCOMPARE(scene.station().y, -160);
}

void tst_Animation::intermediateNodesWrapOnLongWays()
{
    // KEPT: the product of way and milliseconds is taken in 32 bits.
    Scene scene;
    scene.view.animDuration.set(60);
    constexpr int from = 1000000, to = 9000000;
    setWay(scene.station(), from, to, 0, 0);
    scene.tickAt(30.05);
    bool isOneOfTheSteps = false;
    for (unsigned passed = 30050; passed < 30550; ++passed)
        isOneOfTheSteps |= scene.station().x == stationAt(from, to, passed, 60000);
    QVERIFY(isOneOfTheSteps);
    QVERIFY(scene.station().x < from);
}

void tst_Animation::periodBelowAMillisecondDividesByNothing()
{
    Scene scene;
    scene.view.animDuration.set(0.0009);
    setWay(scene.station(), 0, 50, 0, 70);
    // A start that lies ahead: whatever the clock does, the period isn't over.
    scene.tickAt(-10);
    QVERIFY(scene.isRunning());
    QCOMPARE(scene.station().x, 50);
    QCOMPARE(scene.station().y, 70);
}

void tst_Animation::lastTickArrivesExactly()
{
    Scene scene;
    setWay(scene.node(1), 7, 1234567, -3, -7654321);
    setWay(scene.station(), 1 << 30, 123, 5, 9999999);
    scene.tickAt(2.5);
    QVERIFY(!scene.isRunning());
    for (Node *node : {&scene.node(1), &scene.station()}) {
        QCOMPARE(node->x, node->toX);
        QCOMPARE(node->y, node->toY);
        QCOMPARE(node->fromX, node->toX);
        QCOMPARE(node->fromY, node->toY);
    }
    QCOMPARE(scene.node(1).x, 1234567);
    QCOMPARE(scene.station().y, 9999999);
}

void tst_Animation::durationIsTakenAsSixtySecondsAtMost()
{
    Scene scene;
    scene.view.animDuration.set(1000);
    scene.tickAt(59);
    QVERIFY(scene.isRunning());
    scene.tickAt(60);
    QVERIFY(!scene.isRunning());
    QCOMPARE(scene.view.animDuration.get(), 1000.0);
}

void tst_Animation::noDurationEndsAtTheNextTick_data()
{
    QTest::addColumn<double>("duration");
    QTest::newRow("none") << 0.0;
    QTest::newRow("below none") << -5.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
}

void tst_Animation::noDurationEndsAtTheNextTick()
{
    QFETCH(double, duration);
    Scene scene;
    setWay(scene.node(0), 0, 600, 0, 0);
    scene.view.animDuration.set(duration);
    tick(Access::animTimer(scene.view));
    QVERIFY(!scene.isRunning());
    QCOMPARE(scene.node(0).x, 600);
}

void tst_Animation::durationCountsAsItIsAtTheTick()
{
    Scene scene;
    setWay(scene.node(0), 0, 600, 0, 0);
    scene.view.animDuration.set(60);
    scene.tickAt(15.05);
    QCOMPARE(scene.node(0).x, 150);
    scene.view.animDuration.set(30);
    scene.tickAt(15.05);
    QCOMPARE(scene.node(0).x, 301);
    scene.view.animDuration.set(10);
    scene.tickAt(15.05);
    QVERIFY(!scene.isRunning());
}

void tst_Animation::layoutStartsTheClockAnew()
{
    Scene scene;
    scene.tickAt(1.5);
    const int underWay = scene.node(2).y;
    scene.view.layout();
    QVERIFY((Time(Time::Now) - Access::animStart(scene.view)).seconds() < 1.0);
    QCOMPARE(scene.node(2).fromY, underWay);
    QCOMPARE(scene.node(2).y, underWay);
    QVERIFY(scene.isRunning());
}

void tst_Animation::layoutWithNoDurationStillStartsTheTimer()
{
    Scene scene;
    finishAnimation(scene.view);
    scene.view.animDuration.set(0);
    scene.view.layout();
    QVERIFY(scene.isRunning());
    tick(Access::animTimer(scene.view));
    QVERIFY(!scene.isRunning());
}

void tst_Animation::hiddenNodeStaysWhereItIs()
{
    Scene scene;
    scene.view.animDuration.set(60);
    setWay(scene.node(2), 0, 600, 0, 600);
    scene.tickAt(10.05);
    scene.view.setVisible({scene.things[2]}, false);
    scene.tickAt(30);
    scene.tickAt(61);
    QCOMPARE(scene.node(2).x, 100);
    QCOMPARE(scene.node(2).fromX, 0);
    QCOMPARE(scene.node(2).toX, 600);
}

void tst_Animation::tickAsksForBoundsAndPaint()
{
    Scene scene;
    for (double seconds : {1.0, 3.0}) {
        const Asked asked = askedBy(scene.view, [&] { scene.tickAt(seconds); });
        QVERIFY(asked.repaint);
        QVERIFY(asked.bounds);
    }
}

void tst_Animation::animatedPositionStartsTheAnimation()
{
    Scene scene;
    finishAnimation(scene.view);
    scene.view.animDuration.set(60);
    const int x = scene.node(0).x;
    const Asked asked =
        askedBy(scene.view, [&] { scene.view.setPos(scene.things[0], x + 600, 0, true); });
    QVERIFY(!asked.repaint);
    QVERIFY(scene.isRunning());
    QCOMPARE(scene.node(0).x, x);
    QCOMPARE(scene.node(0).fromX, x);
    scene.tickAt(30.05);
    QCOMPARE(scene.node(0).x, x + 300);
}

void tst_Animation::positionWithNoDurationIsTakenAtOnce()
{
    Scene scene;
    finishAnimation(scene.view);
    for (double duration : {0.0, -1.0}) {
        scene.view.animDuration.set(duration);
        scene.view.setPos(scene.things[0], 77, 88, true);
        QVERIFY(!scene.isRunning());
        QCOMPARE(scene.node(0).x, 77);
        QCOMPARE(scene.node(0).fromY, 88);
        QCOMPARE(scene.node(0).toX, 77);
    }
}

void tst_Animation::placedNodeDoesNotMove()
{
    Scene scene;
    scene.view.setPos(scene.things[0], 77, 88, false);
    scene.tickAt(1.0);
    QCOMPARE(scene.node(0).x, 77);
    scene.tickAt(3.0);
    QCOMPARE(scene.node(0).y, 88);
}

void tst_Animation::objectsMayDieUnderWay()
{
    Scene scene;
    scene.tickAt(0.5);
    scene.things[1].reset();
    scene.tickAt(1.0);
    scene.things.clear();
    scene.tickAt(1.5);
    QCOMPARE(Access::numNodes(scene.view), std::size_t(0));
    scene.tickAt(3.0);
    QVERIFY(!scene.isRunning());
}

namespace {

/// A view that can scroll far in both directions.
class WideScene : public Scene {
public:
    WideScene()
    {
        finishAnimation(view);
        view.setPos(things[0], -5000, -5000, false);
        view.setPos(things[2], 5000, 5000, false);
        Access::updateScrollbars(view);
        view.animDuration.set(60);
        horizontal.setValue(0);
        vertical.setValue(1000);
        Access::startScrolling(view, 600, 400);
    }
    void scrollTickAt(double seconds)
    {
        letPass(Access::scrollStart(view), seconds);
        tick(Access::scrollTimer(view));
    }

    QScrollBar &horizontal = *view.horizontalScrollBar();
    QScrollBar &vertical = *view.verticalScrollBar();
};

} // namespace

void tst_Animation::scrollGoesByTheShareOfTime()
{
    WideScene scene;
    scene.scrollTickAt(30.05);
    QCOMPARE(scene.horizontal.value(), 300);
    QCOMPARE(scene.vertical.value(), 700);
    QVERIFY(Access::scrollTimer(scene.view).isActive());
}

void tst_Animation::scrollArrivesAndStops()
{
    WideScene scene;
    scene.scrollTickAt(60);
    QCOMPARE(scene.horizontal.value(), 600);
    QCOMPARE(scene.vertical.value(), 400);
    QVERIFY(!Access::scrollTimer(scene.view).isActive());
}

void tst_Animation::scrollOverwritesTheUser()
{
    WideScene scene;
    scene.horizontal.setValue(-2000);
    scene.scrollTickAt(30.05);
    QCOMPARE(scene.horizontal.value(), 300);
}

void tst_Animation::scrollLeavesTheBounds()
{
    WideScene scene;
    for (double seconds : {10.0, 61.0}) {
        const Asked asked = askedBy(scene.view, [&] { scene.scrollTickAt(seconds); });
        QVERIFY(!asked.bounds);
        QVERIFY(!asked.repaint);
    }
}

QTEST_MAIN(tst_Animation)
#include "tst_Animation.moc"
