#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"

#include <QTest>

#include <algorithm>
#include <climits>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

// Which nodes are shown, and where they are put.

namespace {

QPoint posOf(ObjectGraphView const &view, RefT<VOM::Object> const &obj)
{
    int x = INT_MIN, y = INT_MIN;
    view.getPos(obj, x, y);
    return {x, y};
}

} // namespace

class tst_NodePlaces : public QObject {
    Q_OBJECT

private slots:
    void setVisibleTells_data();
    void setVisibleTells();
    void setVisibleOfVisibleObjectsOnlyRefreshes();
    void showingStartsALayoutAndHidingDoesNot();
    void showingHoldsTheLastChangedObjectInPlace();
    void showingAnUnmeasuredNodeMakesSizesStale();
    void hidingMakesLongLinksDirect();
    void setVisibleOfTheWidgetIsQWidgets();
    void listsOfObjectsAreInAddressOrder();

    void getPosTellsWhereANodeStands();
    void setPosPlacesAtOnce();
    void setPosMovesByAnimation();
    void setPosMovesAtOnceWithoutAnimationTime_data();
    void setPosMovesAtOnceWithoutAnimationTime();
    void setPosKeepsPositionsInRange();
};

void tst_NodePlaces::setVisibleTells_data()
{
    QTest::addColumn<std::string>("shown");
    QTest::addColumn<std::string>("selected");
    QTest::addColumn<std::string>("changed"); // In the order of the call; ? is a null reference.
    QTest::addColumn<bool>("visible");
    QTest::addColumn<std::string>("signalsEmitted");
    QTest::addColumn<std::string>("nodes");
    QTest::newRow("shows") << ""s
                           << ""s
                           << "cb"s << true << "insert c b"s
                           << "a b+ c+"s;
    QTest::newRow("hides") << "abc"s
                           << ""s
                           << "ca"s << false << "remove c a"s
                           << "a b+ c"s;
    QTest::newRow("only changed ones count when showing") << "b"s
                                                          << ""s
                                                          << "abc"s << true << "insert a c"s
                                                          << "a+ b+ c+"s;
    QTest::newRow("only changed ones count when hiding") << "b"s
                                                         << ""s
                                                         << "abc"s << false << "remove b"s
                                                         << "a b c"s;
    QTest::newRow("an object named twice counts once") << ""s
                                                       << ""s
                                                       << "aa"s << true << "insert a"s
                                                       << "a+ b c"s;
    QTest::newRow("unknown and null are passed over") << ""s
                                                      << ""s
                                                      << "?xa"s << true << "insert a"s
                                                      << "a+ b c"s;
    QTest::newRow("nobody at all") << "a"s
                                   << ""s
                                   << ""s << true << ""s
                                   << "a+ b c"s;
    QTest::newRow("nobody hidden") << "a"s
                                   << ""s
                                   << "b"s << false << ""s
                                   << "a+ b c"s;
    QTest::newRow("a selected one shown") << ""s
                                          << "b"s
                                          << "ab"s << true << "insert a b; sel"s
                                          << "a+ b+* c"s;
    QTest::newRow("a selected one hidden keeps its mark") << "ab"s
                                                          << "b"s
                                                          << "b"s << false << "remove b; sel"s
                                                          << "a+ b* c"s;
    QTest::newRow("a selected one that doesn't change") << "b"s
                                                        << "b"s
                                                        << "ab"s << true << "insert a"s
                                                        << "a+ b+* c"s;
}

void tst_NodePlaces::setVisibleTells()
{
    QFETCH(std::string, shown);
    QFETCH(std::string, selected);
    QFETCH(std::string, changed);
    QFETCH(bool, visible);
    QFETCH(std::string, signalsEmitted);
    QFETCH(std::string, nodes);
    const Things abc = makeThings("abc");
    const RefT<VOM::Object> unknown = makeThing("x");
    const auto pick = [&](std::string const &letters) {
        Things picked;
        for (char c : letters)
            picked.push_back(c == '?'   ? RefT<VOM::Object>()
                             : c == 'x' ? unknown
                                        : abc[std::size_t(c - 'a')]);
        return picked;
    };
    for (bool counted : {false, true}) {
        ObjectGraphView view;
        view.add(abc, false);
        view.setVisible(pick(shown), true);
        view.setSel(pick(selected));
        SignalNotes notes(view);
        // State first, signal last.
        const auto check = [&](auto const &) { QCOMPARE(dumpNodes(view), nodes); };
        view.sigInsertNode.connect(check);
        view.sigRemoveNode.connect(check);
        const Things objs = pick(changed);
        if (counted)
            view.setVisible(objs.size(), objs.data(), visible);
        else
            view.setVisible(objs, visible);
        QCOMPARE(notes.take(), signalsEmitted);
        QCOMPARE(dumpNodes(view), nodes);
    }
}

void tst_NodePlaces::setVisibleOfVisibleObjectsOnlyRefreshes()
{
    ObjectGraphView view;
    const Things a = makeThings("a");
    view.add(a, false);
    view.setVisible(a, true);
    Access::animTimer(view).stop();
    const Asked asked = askedBy(view, [&] { view.setVisible(a, true); });
    QVERIFY(asked.repaint && asked.bounds);
    QVERIFY(!Access::animTimer(view).isActive());
}

void tst_NodePlaces::showingStartsALayoutAndHidingDoesNot()
{
    ObjectGraphView view;
    const Things ab = makeThings("ab");
    view.add(ab, false);
    // Sizes known, so that the layout alone could make them stale.
    for (auto const &obj : ab)
        Access::node(view, obj)->sizeDirty = false;
    Asked asked = askedBy(view, [&] { view.setVisible(ab, true); });
    QVERIFY(Access::animTimer(view).isActive());
    // The first tick repaints.
    QVERIFY(asked.repaint && !asked.bounds);

    Access::animTimer(view).stop();
    asked = askedBy(view, [&] { view.setVisible({ab[0]}, false); });
    QVERIFY(!Access::animTimer(view).isActive());
    QVERIFY(asked.repaint && asked.bounds);
}

void tst_NodePlaces::showingHoldsTheLastChangedObjectInPlace()
{
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    const Things abcd = makeThings("abcd");
    setLink(abcd[0], "next", abcd[1]);
    setLink(abcd[1], "next", abcd[2]);
    view.add(abcd, false);
    view.setPos(abcd[1], 321, -123, false);
    view.setPos(abcd[2], 7, 9, false);
    view.setVisible({abcd[2]}, true);
    // d is named last, but doesn't change: it stays unknown to the call's anchor.
    view.setVisible({abcd[3]}, true);
    view.setVisible({abcd[0], abcd[1], abcd[2], abcd[3]}, true);
    Node const &b = *Access::node(view, abcd[1]);
    QCOMPARE(QPoint(b.toX, b.toY), QPoint(321, -123));
    Node const &a = *Access::node(view, abcd[0]);
    QVERIFY(a.toY < b.toY);
    QCOMPARE(a.x, 0);
}

void tst_NodePlaces::showingAnUnmeasuredNodeMakesSizesStale()
{
    ObjectGraphView view;
    const Things a = makeThings("a");
    view.add(a, false);
    const Asked asked = askedBy(view, [&] { view.setVisible(a, true); });
    QVERIFY(asked.bounds);
}

void tst_NodePlaces::hidingMakesLongLinksDirect()
{
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    const Things abc = makeThings("abc");
    setLinks(abc[0], "next", {abc[1], abc[2]});
    setLinks(abc[1], "next", {abc[2]});
    view.add(abc, false);
    view.setVisible(abc, true);
    QCOMPARE(dumpLinks(view), "a>b a>c/1 b>c"s);
    view.setVisible({abc[1]}, false);
    QCOMPARE(dumpLinks(view), "a>b a>c/1 b>c"s);
    view.setVisible({abc[2]}, false);
    QCOMPARE(dumpLinks(view), "a>b a>c b>c"s);
}

void tst_NodePlaces::setVisibleOfTheWidgetIsQWidgets()
{
    ObjectGraphView view;
    view.setVisible(true);
    QVERIFY(static_cast<QWidget &>(view).isVisible());
    QWidget &widget = view;
    widget.setVisible(false);
    QVERIFY(widget.isHidden());
}

void tst_NodePlaces::listsOfObjectsAreInAddressOrder()
{
    ObjectGraphView view;
    const Things objs = makeThings("abcdefgh");
    view.add(objs, false);
    view.setVisible({objs[1], objs[6], objs[3]}, true);
    view.setSel({objs[6], objs[1], objs[0]});
    const auto check = [](Things const &list, std::string const &names) {
        QVERIFY(std::is_sorted(list.begin(), list.end()));
        QCOMPARE(ZR::VOM::GUI::namesOf(list), names);
    };
    check(view.getObjs(), "a b c d e f g h");
    check(view.getVisibleObjs(), "b d g");
    check(view.getSel(), "b g");
    QVERIFY(view.isVisible(objs[1]));
    QVERIFY(!view.isVisible(objs[0]));
    QVERIFY(!view.isVisible(makeThing("x")));
    QVERIFY(!view.isVisible(PtrT<VOM::Object>()));
}

void tst_NodePlaces::getPosTellsWhereANodeStands()
{
    ObjectGraphView view;
    const RefT<VOM::Object> a = makeThing("a");
    int x = 11, y = 12;
    QVERIFY(!view.getPos(a, x, y));
    QVERIFY(!view.getPos({}, x, y));
    QCOMPARE(QPoint(x, y), QPoint(11, 12));
    view.add({a}, false);
    QVERIFY(view.getPos(a, x, y));
    QCOMPARE(QPoint(x, y), QPoint(0, 0));
}

void tst_NodePlaces::setPosPlacesAtOnce()
{
    ObjectGraphView view;
    const RefT<VOM::Object> a = makeThing("a");
    QVERIFY(!view.setPos(a, 1, 2, false));
    QVERIFY(!view.setPos({}, 1, 2, true));
    view.add({a}, false);
    for (bool visible : {false, true}) {
        Node &node = *Access::node(view, a);
        node.visible = visible;
        const Asked asked = askedBy(view, [&] { QVERIFY(view.setPos(a, -5, 17, false)); });
        QCOMPARE(posOf(view, a), QPoint(-5, 17));
        QCOMPARE(QPoint(node.fromX, node.fromY), QPoint(-5, 17));
        QCOMPARE(QPoint(node.toX, node.toY), QPoint(-5, 17));
        QVERIFY(!asked.repaint && !asked.bounds);
        QVERIFY(!Access::animTimer(view).isActive());
        view.setPos(a, 0, 0, false);
    }
}

void tst_NodePlaces::setPosMovesByAnimation()
{
    ObjectGraphView view;
    const RefT<VOM::Object> a = makeThing("a");
    view.add({a}, false);
    view.setPos(a, 100, 200, false);
    Node &node = *Access::node(view, a);
    node.fromX = node.fromY = 55;
    const Asked asked = askedBy(view, [&] { QVERIFY(view.setPos(a, -5, 17, true)); });
    QCOMPARE(posOf(view, a), QPoint(100, 200));
    QCOMPARE(QPoint(node.fromX, node.fromY), QPoint(100, 200));
    QCOMPARE(QPoint(node.toX, node.toY), QPoint(-5, 17));
    QVERIFY(Access::animTimer(view).isActive());
    QVERIFY((Time(Time::Now) - Access::animStart(view)).seconds() < 60);
    QVERIFY(!asked.repaint && !asked.bounds);
}

void tst_NodePlaces::setPosMovesAtOnceWithoutAnimationTime_data()
{
    QTest::addColumn<double>("duration");
    QTest::newRow("none") << 0.0;
    QTest::newRow("negative") << -1.0;
    QTest::newRow("not a number") << qQNaN();
}

void tst_NodePlaces::setPosMovesAtOnceWithoutAnimationTime()
{
    QFETCH(double, duration);
    ObjectGraphView view;
    const RefT<VOM::Object> a = makeThing("a");
    view.add({a}, false);
    view.animDuration.set(duration);
    view.setPos(a, 3, 4, true);
    Node const &node = *Access::node(view, a);
    QCOMPARE(posOf(view, a), QPoint(3, 4));
    QCOMPARE(QPoint(node.fromX, node.fromY), QPoint(3, 4));
    QCOMPARE(QPoint(node.toX, node.toY), QPoint(3, 4));
    QVERIFY(!Access::animTimer(view).isActive());
}

void tst_NodePlaces::setPosKeepsPositionsInRange()
{
    ObjectGraphView view;
    const RefT<VOM::Object> a = makeThing("a");
    view.add({a}, false);
    constexpr int most = ObjectGraphView::maxPos;
    QCOMPARE(most, 268435456);
    for (bool animated : {false, true}) {
        view.animDuration.set(0);
        view.setPos(a, INT_MAX, INT_MIN, animated);
        QCOMPARE(posOf(view, a), QPoint(most, -most));
        view.setPos(a, -most, most, animated);
        QCOMPARE(posOf(view, a), QPoint(-most, most));
    }
}

QTEST_MAIN(tst_NodePlaces)
#include "tst_NodePlaces.moc"
