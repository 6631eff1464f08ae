#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QScrollBar>
#include <QTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

/// A shown view whose nodes stand where the test puts them, all of one size, with a scroll range
/// that reaches everywhere.
struct Scene {
    Scene()
    {
        view.setFrameShape(QFrame::NoFrame);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(width, height);
        view.show();
        view.setRefresh(false);
        scrollTo(0, 0);
    }
    /// The node's left top corner; its box is 40 wide and 20 high.
    void put(char const *name, int left, int top)
    {
        objs.push_back(makeThing(name));
        view.add({objs.back()}, false);
        Node &node = *Access::node(view, objs.back());
        node.visible = true;
        node.width = boxWidth;
        node.height = boxHeight;
        view.setPos(objs.back(), left + boxWidth / 2, top + boxHeight / 2, false);
    }
    Node &node(std::size_t index) { return *Access::node(view, objs[index]); }
    void selectAll() { view.setSel(objs); }
    void scrollTo(int x, int y)
    {
        view.horizontalScrollBar()->setRange(-100000, 100000);
        view.verticalScrollBar()->setRange(-100000, 100000);
        view.horizontalScrollBar()->setValue(x);
        view.verticalScrollBar()->setValue(y);
    }
    /// Calls showSel(), and tells where it scrolls to, or "-".
    std::string show()
    {
        Access::scrollTimer(view).stop();
        view.showSel();
        if (!Access::scrollTimer(view).isActive())
            return "-";
        Access::scrollTimer(view).stop();
        const QPoint from = Access::scrollFrom(view), to = Access::scrollTo(view);
        if (from != QPoint(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value()))
            return "doesn't start at the scroll values";
        return std::to_string(to.x()) + ',' + std::to_string(to.y());
    }
    /// The same, and goes there at once.
    std::string showAndGo()
    {
        const std::string target = show();
        if (target != "-")
            scrollTo(Access::scrollTo(view).x(), Access::scrollTo(view).y());
        return target;
    }
    std::size_t cursor() { return Access::selCursor(view); }

    static constexpr int width = 300, height = 200;
    static constexpr int boxWidth = 40, boxHeight = 20;
    ObjectGraphView view;
    Things objs;
};

} // namespace

class tst_Selection : public QObject {
    Q_OBJECT

private slots:
    void setSelSelectsTheseAndNoOthers();
    void setSelPassesOverUnknownObjects();
    void setSelIsSilent();
    void setSelAsksForRepaintWhereItCanBeSeen_data();
    void setSelAsksForRepaintWhereItCanBeSeen();
    void getSelKnowsVisibleOnes();

    void showSelOfNothingDoesNothing();
    void showSelLeavesWhatIsInView_data();
    void showSelLeavesWhatIsInView();
    void showSelScrollsAsLittleAsItMust_data();
    void showSelScrollsAsLittleAsItMust();
    void showSelCentresWhatIsTooLarge();
    void showSelGoesInTheOrderOfTargets();
    void showSelGoesByWhereNodesStandNow();
    void showSelShowsOneScreenfulForEachCall();
    void showSelTakesWhatFits_data();
    void showSelTakesWhatFits();
    void showSelStopsAtANodeThatFitsNowhere();
    void showSelCursorShrinksWithTheSelection();
    void showSelSkipsHiddenAndUnselectedNodes();
    void showSelStartsTheClock();
    void showSelWorksAtNegativeCoordinates();
};

void tst_Selection::setSelSelectsTheseAndNoOthers()
{
    ObjectGraphView view;
    const Things abc = makeThings("abc");
    view.add(abc, false);
    view.setVisible({abc[0]}, true);
    view.setSel({abc[0], abc[1]});
    QCOMPARE(dumpNodes(view), "a+* b* c"s);
    view.setSel({abc[1], abc[2], abc[1]});
    QCOMPARE(dumpNodes(view), "a+ b* c*"s);
    view.setSel({});
    QCOMPARE(dumpNodes(view), "a+ b c"s);
}

void tst_Selection::setSelPassesOverUnknownObjects()
{
    ObjectGraphView view;
    const Things abc = makeThings("abc");
    view.add(abc, false);
    view.setSel({{}, makeThing("x"), abc[2]});
    QCOMPARE(dumpNodes(view), "a b c*"s);
}

void tst_Selection::setSelIsSilent()
{
    ObjectGraphView view;
    const Things ab = makeThings("ab");
    view.add(ab, false);
    view.setVisible(ab, true);
    int numTold = 0;
    view.sigSel.connect([&](auto const &) { ++numTold; });
    view.setSel(ab);
    view.setSel({});
    QCOMPARE(numTold, 0);
}

void tst_Selection::setSelAsksForRepaintWhereItCanBeSeen_data()
{
    QTest::addColumn<bool>("anyVisible");
    QTest::addColumn<bool>("selectsVisible");
    QTest::addColumn<bool>("repaints");
    QTest::newRow("all hidden") << false << false << false;
    // Any visible node may have been selected before.
    QTest::newRow("a visible one, left out") << true << false << true;
    QTest::newRow("a visible one, taken") << true << true << true;
}

void tst_Selection::setSelAsksForRepaintWhereItCanBeSeen()
{
    QFETCH(bool, anyVisible);
    QFETCH(bool, selectsVisible);
    QFETCH(bool, repaints);
    ObjectGraphView view;
    const Things ab = makeThings("ab");
    view.add(ab, false);
    view.setVisible({ab[0]}, anyVisible);
    const Asked asked = askedBy(view, [&] { view.setSel({ab[selectsVisible ? 0 : 1]}); });
    QCOMPARE(asked.repaint, repaints);
    QVERIFY(!asked.bounds);
}

void tst_Selection::getSelKnowsVisibleOnes()
{
    ObjectGraphView view;
    const Things abc = makeThings("abc");
    view.add(abc, false);
    view.setVisible({abc[0], abc[1]}, true);
    view.setSel({abc[1], abc[2]});
    QCOMPARE(namesOf(view.getSel()), "b"s);
    view.setVisible({abc[2]}, true);
    QCOMPARE(namesOf(view.getSel()), "b c"s);
    view.setVisible({abc[1]}, false);
    QCOMPARE(namesOf(view.getSel()), "c"s);
    view.remove({abc[2]});
    QCOMPARE(namesOf(view.getSel()), ""s);
}

void tst_Selection::showSelOfNothingDoesNothing()
{
    Scene scene;
    QCOMPARE(scene.show(), "-"s);
    scene.put("far", 5000, 5000);
    Access::selCursor(scene.view) = 3;
    QCOMPARE(scene.show(), "-"s);
    QCOMPARE(scene.cursor(), std::size_t(3));
}

void tst_Selection::showSelLeavesWhatIsInView_data()
{
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("top");
    QTest::addColumn<bool>("inView");
    QTest::newRow("in the middle") << 100 << 100 << true;
    QTest::newRow("at the left top") << 0 << 0 << true;
    QTest::newRow("one past the left") << -1 << 0 << false;
    QTest::newRow("one past the top") << 0 << -1 << false;
    QTest::newRow("at the right bottom") << 260 << 180 << true;
    QTest::newRow("one past the right") << 261 << 180 << false;
    QTest::newRow("one past the bottom") << 260 << 181 << false;
}

void tst_Selection::showSelLeavesWhatIsInView()
{
    QFETCH(int, left);
    QFETCH(int, top);
    QFETCH(bool, inView);
    Scene scene;
    QCOMPARE(scene.view.viewport()->size(), QSize(300, 200));
    scene.put("a", left, top);
    scene.put("b", 50, 50);
    scene.selectAll();
    Access::selCursor(scene.view) = 1;
    QCOMPARE(scene.show() == "-", inView);
    if (inView)
        QCOMPARE(scene.cursor(), std::size_t(1));
}

void tst_Selection::showSelScrollsAsLittleAsItMust_data()
{
    QTest::addColumn<int>("left");
    QTest::addColumn<int>("top");
    QTest::addColumn<std::string>("target");
    // The box is grown by 8 on each side; the view is at 1000, 1000, 300 x 200.
    QTest::newRow("left of it") << 900 << 1100 << "892,1000"s;
    QTest::newRow("right of it") << 1400 << 1100 << "1148,1000"s;
    QTest::newRow("above it") << 1100 << 900 << "1000,892"s;
    QTest::newRow("below it") << 1100 << 1400 << "1000,1228"s;
    QTest::newRow("at a corner") << 900 << 1400 << "892,1228"s;
    QTest::newRow("cut at the left") << 999 << 1100 << "991,1000"s;
    QTest::newRow("cut below, near the right border") << 1259 << 1190 << "1007,1018"s;
}

void tst_Selection::showSelScrollsAsLittleAsItMust()
{
    QFETCH(int, left);
    QFETCH(int, top);
    QFETCH(std::string, target);
    Scene scene;
    scene.put("a", left, top);
    scene.selectAll();
    scene.scrollTo(1000, 1000);
    QCOMPARE(scene.show(), target);
}

void tst_Selection::showSelCentresWhatIsTooLarge()
{
    Scene scene;
    scene.put("a", 1000, 1000);
    scene.node(0).width = 400;
    scene.node(0).height = 301;
    scene.selectAll();
    // 820 to 1236 with its margins is 416 wide, 116 too much; 851 to 1168 is 317 high.
    QCOMPARE(scene.node(0).x, 1020);
    QCOMPARE(scene.node(0).y, 1010);
    const int left = 1020 - 200 - 8, top = 1010 - 150 - 8;
    QCOMPARE(scene.show(), std::to_string(left + 116 / 2) + ',' + std::to_string(top + 117 / 2));
    // Just as wide as the view is not too wide.
    scene.node(0).width = 300 - 16;
    scene.node(0).height = 20;
    QCOMPARE(scene.show(), std::to_string(1020 - 142 - 8) + ',' + std::to_string(1020 + 8 - 200));
}

void tst_Selection::showSelGoesInTheOrderOfTargets()
{
    Scene scene;
    // Far apart, so that each call shows one: by y, and by x where y is the same.
    scene.put("third", 1000, 2000);
    scene.put("second", -1000, 2000);
    scene.put("first", 5000, 1000);
    scene.selectAll();
    std::vector<std::string> targets;
    for (int i = 0; i < 4; ++i)
        targets.push_back(scene.showAndGo());
    QCOMPARE(targets, (std::vector<std::string>{"4748,828", "-1008,1828", "748,1828", "4748,992"}));
}

void tst_Selection::showSelGoesByWhereNodesStandNow()
{
    Scene scene;
    scene.put("a", 1000, 1000);
    scene.put("b", 2000, 2000);
    scene.selectAll();
    // Sorted by targets, shown where they are.
    scene.node(0).toY = 9000;
    QCOMPARE(scene.showAndGo(), "1748,1828"s);
}

void tst_Selection::showSelShowsOneScreenfulForEachCall()
{
    Scene scene;
    // Ten below each other, 100 apart.
    for (int i = 0; i < 10; ++i)
        scene.put("n", 100, 100 * i);
    scene.selectAll();
    // 0 and 1 are in view; 2 is shown, with 3 beside it: 200 to 320 grown by 8 is 192 to 328.
    QCOMPARE(scene.showAndGo(), "0,128"s);
    QCOMPARE(scene.cursor(), std::size_t(4));
    // 4 is at the cursor: it is shown alone, and the cursor stays on it.
    QCOMPARE(scene.showAndGo(), "0,228"s);
    QCOMPARE(scene.cursor(), std::size_t(4));
    // Now 4 is in view, and the walk goes on with 5 and 6.
    QCOMPARE(scene.showAndGo(), "0,428"s);
    QCOMPARE(scene.cursor(), std::size_t(7));
    QCOMPARE(scene.showAndGo(), "0,528"s);
    QCOMPARE(scene.showAndGo(), "0,728"s);
    QCOMPARE(scene.cursor(), std::size_t(0));
    // Round to the first.
    QCOMPARE(scene.showAndGo(), "0,-8"s);
    QCOMPARE(scene.cursor(), std::size_t(0));
    QCOMPARE(scene.showAndGo(), "0,128"s);
    QCOMPARE(scene.cursor(), std::size_t(4));
}

void tst_Selection::showSelTakesWhatFits_data()
{
    QTest::addColumn<int>("dx"); // From the second to the third.
    QTest::addColumn<int>("dy");
    QTest::addColumn<std::size_t>("cursor"); // The one that didn't fit, or 0 for all.
    QTest::newRow("just as wide as the view") << 300 - 56 << 0 << std::size_t(0);
    QTest::newRow("one too wide") << 300 - 56 + 1 << 0 << std::size_t(2);
    QTest::newRow("just as high as the view") << 0 << 200 - 36 << std::size_t(0);
    QTest::newRow("one too high") << 0 << 200 - 36 + 1 << std::size_t(2);
}

void tst_Selection::showSelTakesWhatFits()
{
    QFETCH(int, dx);
    QFETCH(int, dy);
    QFETCH(std::size_t, cursor);
    Scene scene;
    scene.put("in view", 100, 100);
    scene.put("second", 1000, 1000);
    scene.put("third", 1000 + dx, 1000 + dy);
    scene.selectAll();
    scene.show();
    QCOMPARE(scene.cursor(), cursor);
}

void tst_Selection::showSelStopsAtANodeThatFitsNowhere()
{
    Scene scene;
    scene.put("in view", 100, 100);
    scene.put("huge", 1000, 1000);
    scene.node(1).width = 1000;
    scene.put("third", 1000, 2000);
    scene.selectAll();
    scene.show();
    QCOMPARE(scene.cursor(), std::size_t(1));
}

void tst_Selection::showSelCursorShrinksWithTheSelection()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        scene.put("n", 100, 1000 * i);
    scene.selectAll();
    Access::selCursor(scene.view) = 7;
    // 7 modulo 3 is 1, which is out of view.
    QCOMPARE(scene.show(), "0,828"s);
    QCOMPARE(scene.cursor(), std::size_t(1));
}

void tst_Selection::showSelSkipsHiddenAndUnselectedNodes()
{
    Scene scene;
    scene.put("hidden", 1000, 100);
    scene.put("unselected", 1000, 200);
    scene.put("shown", 1000, 300);
    scene.view.setSel({scene.objs[0], scene.objs[2]});
    scene.node(0).visible = false;
    QCOMPARE(scene.show(), "748,128"s);
    scene.node(2).visible = false;
    QCOMPARE(scene.show(), "-"s);
}

void tst_Selection::showSelStartsTheClock()
{
    Scene scene;
    scene.put("a", 1000, 0);
    scene.selectAll();
    const Time before(Time::Now);
    scene.view.showSel();
    QVERIFY(Access::scrollTimer(scene.view).isActive());
    const double age = (Access::scrollStart(scene.view) - before).seconds();
    QVERIFY(age >= 0 && age < 60);
    // Nothing has moved yet.
    QCOMPARE(scene.view.horizontalScrollBar()->value(), 0);
}

void tst_Selection::showSelWorksAtNegativeCoordinates()
{
    Scene scene;
    scene.scrollTo(-5000, -5000);
    scene.put("a", -6000, -4990);
    scene.selectAll();
    QCOMPARE(scene.show(), "-6008,-5000"s);
    scene.scrollTo(-7000, -9000);
    QCOMPARE(scene.show(), "-6252,-5162"s);
}

QTEST_MAIN(tst_Selection)
#include "tst_Selection.moc"
