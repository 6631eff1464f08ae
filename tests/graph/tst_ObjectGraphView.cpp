#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <QStyle>
#include <QtTest>

#include <climits>
#include <memory>
#include <type_traits>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldPtr;
using VOM::FieldString;
using VOM::MFieldPtr;
using Access = GraphViewAccess;
using Node = Graph::Node;

static_assert(std::is_base_of_v<QAbstractScrollArea, ObjectGraphView>);
static_assert(std::is_base_of_v<ZR::Object, ObjectGraphView>);
static_assert(std::is_base_of_v<Class, ObjectGraphView::Node>);
static_assert(std::is_base_of_v<SigVoidData, ObjectGraphView::SigNodeData>);
static_assert(std::is_base_of_v<SigVoidData, ObjectGraphView::SigPopupMenuData>);
static_assert(std::is_base_of_v<SigVoidData, ObjectGraphView::SigPaintNodeIconData>);
static_assert(std::is_same_v<decltype(ObjectGraphView::animDuration), PropT<double>>);
static_assert(std::is_same_v<decltype(ObjectGraphView::tooltip), PropT<bool>>);
static_assert(std::is_same_v<decltype(ObjectGraphView::sigSel), SignalT<SigVoidData>>);

namespace {

/// Notes each signal of a view, in the order in which they come.
class SignalNotes {
public:
    explicit SignalNotes(ObjectGraphView &view)
    {
        view.sigInsertNode.connect(
            [this](auto const &data) { add("insert " + namesInOrder(*data.objs)); });
        view.sigRemoveNode.connect(
            [this](auto const &data) { add("remove " + namesInOrder(*data.objs)); });
        view.sigSel.connect([this](auto const &) { add("sel"); });
    }
    std::string take() { return std::exchange(text, {}); }

private:
    void add(std::string const &note) { text += (text.empty() ? "" : "; ") + note; }

    std::string text;
};

std::string namesOf(std::set<RefT<Node>> const &nodes)
{
    Things objs;
    for (RefT<Node> const &node : nodes)
        objs.emplace_back(node->obj);
    return ZR::VOM::GUI::namesOf(objs);
}

QPoint posOf(ObjectGraphView const &view, RefT<VOM::Object> const &obj)
{
    int x = INT_MIN, y = INT_MIN;
    view.getPos(obj, x, y);
    return {x, y};
}

} // namespace

class tst_ObjectGraphView : public QObject {
    Q_OBJECT

private slots:
    void startsAsDocumented();
    void hasColourPropertiesForStyleSheets();
    void nodesOfObjectsAreBornHidden();
    void intermediateNodesAreBornVisible();

    void addMakesOneHiddenNodeForEachObject();
    void addReportsHowObjectsStand();
    void addReportsNothingUnlessAsked();
    void addOfNothingStillAsksForRepaint();
    void addOfKnownObjectsDoesNotRebuildLinks();
    void addTakesObjectsOnTheStack();
    void addPassesOverDyingObjects();

    void removeForgetsObjects();
    void removeTellsOfVisibleObjectsOnly();
    void clearForgetsEverythingInSilence();

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

    void refreshIsWithheldAndCarriedOut();
    void refreshWithheldByAListIsCarriedOutAtItsEnd();

    void deathOfAnObjectErasesItsNodeInSilence_data();
    void deathOfAnObjectErasesItsNodeInSilence();
    void viewMayDieBeforeItsObjects();
    void nodesThatAHostHoldsHaveLeftTheGraph();

    void switchingTooltipsOffClearsTheCurrentOne();
};

void tst_ObjectGraphView::startsAsDocumented()
{
    ObjectGraphView view;
    QCOMPARE(view.animDuration.get(), 2.0);
    QCOMPARE(view.tooltip.get(), false);
    QVERIFY(view.getOutLinkFields().empty());
    QVERIFY(view.getInLinkFields().empty());
    QVERIFY(!view.getObjIconDB());
    QCOMPARE(view.getFieldName(), ""s);
    QVERIFY(view.isTypeName());
    QCOMPARE(view.getFieldTooltip(), ""s);
    QVERIFY(view.canRefresh());
    QVERIFY(view.getObjs().empty());
    QVERIFY(view.getSel().empty());
    QCOMPARE(Access::iconSize(view), view.style()->pixelMetric(QStyle::PM_ListViewIconSize));
    QCOMPARE(Access::margin(view), 2);
    QCOMPARE(Access::xSpacing(view), 8);
    QCOMPARE(Access::ySpacing(view), 8);
    QCOMPARE(Access::selCursor(view), std::size_t(0));
    QVERIFY(!Access::boundsStale(view));
    QVERIFY(!Access::refreshPending(view));
    for (QTimer *timer : {&Access::animTimer(view), &Access::scrollTimer(view)}) {
        QCOMPARE(timer->interval(), 50);
        QVERIFY(!timer->isSingleShot());
        QVERIFY(!timer->isActive());
    }
    QVERIFY(view.acceptDrops());
    QVERIFY(view.hasMouseTracking());
    QCOMPARE(view.parentWidget(), nullptr);

    QWidget parent;
    auto *const child = new ObjectGraphView({}, &parent);
    QCOMPARE(child->parentWidget(), &parent);
}

void tst_ObjectGraphView::hasColourPropertiesForStyleSheets()
{
    ObjectGraphView view;
    const QMetaObject &meta = ObjectGraphView::staticMetaObject;
    const std::vector<std::pair<char const *, QRgb>> expected = {
        {"colorBg0", 0xfff8c8},        {"colorBg1", 0xffffff},     {"colorBaseNode", 0xffffff},
        {"colorTextNode", 0x000000},   {"colorSelNode", 0xc0e0ff}, {"colorRectNode", 0x000000},
        {"colorRectSelNode", 0x000000}};
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), int(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const QMetaProperty property = meta.property(meta.propertyOffset() + int(i));
        QCOMPARE(property.name(), expected[i].first);
        QCOMPARE(property.type(), QVariant::Color);
        QCOMPARE(property.read(&view).value<QColor>(), QColor(QRgb(expected[i].second)));
        const Asked asked = askedBy(view, [&] { property.write(&view, QColor(1, 2, 3, 4)); });
        QCOMPARE(property.read(&view).value<QColor>(), QColor(1, 2, 3, 4));
        QVERIFY(asked.repaint && !asked.bounds);
    }
}

void tst_ObjectGraphView::nodesOfObjectsAreBornHidden()
{
    ObjectGraphView view;
    const RefT<VOM::Object> obj = makeThing("a");
    view.add({obj}, false);
    Node const &node = *Access::node(view, obj);
    QCOMPARE(node.view, &view);
    QCOMPARE(node.obj.get(), obj.get());
    QVERIFY(!node.visible && !node.selected && !node.hiddenIn && !node.hiddenOut);
    QVERIFY(!node.isIntermediate());
    // The label was set, and is still to be measured.
    QVERIFY(node.sizeDirty);
    for (int coordinate : {node.x, node.y, node.fromX, node.fromY, node.toX, node.toY})
        QCOMPARE(coordinate, 0);
    for (int measure : {node.width, node.height, node.iconX, node.iconY, node.textX, node.textY,
                        node.textWidth, node.textHeight, node.arrowX, node.topY, node.bottomY})
        QCOMPARE(measure, 0);
    QVERIFY(node.linkedIn.empty() && node.linkedOut.empty());
}

void tst_ObjectGraphView::intermediateNodesAreBornVisible()
{
    ObjectGraphView view;
    const RefT<Node> node(new Node(view, {}));
    QVERIFY(node->visible);
    QVERIFY(node->isIntermediate());
    QVERIFY(!node->obj);
    QVERIFY(node->sizeDirty);
    QCOMPARE(Access::numNodes(view), std::size_t(0));
}

void tst_ObjectGraphView::addMakesOneHiddenNodeForEachObject()
{
    ObjectGraphView view;
    const Things ab = makeThings("ab");
    view.add({ab[0], {}, ab[1], ab[0]}, false);
    QCOMPARE(dumpNodes(view), "a b"s);

    const RefT<VOM::Object> c = makeThing("c");
    view.add(1, &c, false);
    QCOMPARE(dumpNodes(view), "a b c"s);
    view.add(0, nullptr, true);
    QCOMPARE(dumpNodes(view), "a b c"s);
}

void tst_ObjectGraphView::addReportsHowObjectsStand()
{
    ObjectGraphView view;
    const Things abcd = makeThings("abcd");
    view.add({abcd[0], abcd[1]}, false);
    view.setVisible({abcd[0]}, true);

    ObjectGraphView::AddedNodes added;
    const Asked asked = askedBy(view, [&] { added = view.add(abcd, true); });
    QCOMPARE(namesOf(added.visible), "a"s);
    QCOMPARE(namesOf(added.hidden), "b c d"s);
    QVERIFY(asked.repaint && asked.bounds);
    QCOMPARE(dumpNodes(view), "a+ b c d"s);
}

void tst_ObjectGraphView::addReportsNothingUnlessAsked()
{
    ObjectGraphView view;
    ObjectGraphView::AddedNodes added;
    const Asked asked = askedBy(view, [&] { added = view.add(makeThings("ab"), false); });
    QVERIFY(added.hidden.empty() && added.visible.empty());
    QVERIFY(!asked.repaint && !asked.bounds);
}

void tst_ObjectGraphView::addOfNothingStillAsksForRepaint()
{
    ObjectGraphView view;
    ObjectGraphView::AddedNodes added;
    Asked asked = askedBy(view, [&] { added = view.add(Things(), true); });
    QVERIFY(added.hidden.empty() && added.visible.empty());
    QVERIFY(asked.repaint && asked.bounds);

    asked = askedBy(view, [&] { view.add(Things(), false); });
    QVERIFY(!asked.repaint && !asked.bounds);
}

void tst_ObjectGraphView::addOfKnownObjectsDoesNotRebuildLinks()
{
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    const Things abc = makeThings("abc");
    setLink(abc[0], "next", abc[2]);
    view.add({abc[0], abc[1]}, false);
    // Nothing is known of c, and a list that comes later isn't followed: only a rebuild links both.
    setLinks(abc[1], "next", {abc[0]});
    QCOMPARE(dumpLinks(view), ""s);
    view.add({abc[0], abc[1]}, true);
    QCOMPARE(dumpLinks(view), ""s);
    view.add({abc[0], abc[2]}, false);
    QCOMPARE(dumpLinks(view), "a>c b>a"s);
}

void tst_ObjectGraphView::addTakesObjectsOnTheStack()
{
    ObjectGraphView view;
    {
        Thing thing;
        VOM::addField<FieldString>(thing, "name", "stack");
        view.add({RefT<VOM::Object>(thing)}, false);
        QCOMPARE(dumpNodes(view), "stack"s);
    }
    QCOMPARE(dumpNodes(view), ""s);
}

void tst_ObjectGraphView::addPassesOverDyingObjects()
{
    ObjectGraphView view;
    RefT<VOM::Object> obj = makeThing("a");
    view.add({obj}, false);
    // Called after the view's own slot has erased the node.
    obj->sigDelete.connect([&view, dying = obj.get()](SigVoidData const &) {
        QCOMPARE(dumpNodes(view), ""s);
        QVERIFY(view.add({RefT<VOM::Object>(dying)}, true).hidden.empty());
    });
    obj.reset();
    QCOMPARE(Access::numNodes(view), std::size_t(0));
    view.addOutLinkField("Thing", "next");
    const Things b = makeThings("b");
    view.add(b, false);
    QCOMPARE(dumpNodes(view), "b"s);
}

void tst_ObjectGraphView::removeForgetsObjects()
{
    ObjectGraphView view;
    const Things abc = makeThings("abc");
    view.add(abc, false);
    SignalNotes notes(view);
    Asked asked = askedBy(view, [&] { view.remove({abc[1], {}, makeThing("x"), abc[1]}); });
    QCOMPARE(dumpNodes(view), "a c"s);
    QVERIFY(!asked.repaint && !asked.bounds);
    QCOMPARE(notes.take(), ""s);

    view.remove(1, &abc[2]);
    view.remove(0, nullptr);
    QCOMPARE(dumpNodes(view), "a"s);
    // A node made again is a new one.
    view.setVisible({abc[0]}, true);
    view.remove({abc[0]});
    view.add({abc[0]}, false);
    QCOMPARE(dumpNodes(view), "a"s);
}

void tst_ObjectGraphView::removeTellsOfVisibleObjectsOnly()
{
    ObjectGraphView view;
    const Things abcd = makeThings("abcd");
    view.add(abcd, false);
    view.setVisible({abcd[0], abcd[2]}, true);
    SignalNotes notes(view);
    view.sigRemoveNode.connect([&](auto const &) { QCOMPARE(dumpNodes(view), "d"s); });
    const Asked asked = askedBy(view, [&] { view.remove({abcd[2], abcd[1], abcd[0], abcd[2]}); });
    QCOMPARE(notes.take(), "remove c a"s);
    QVERIFY(asked.repaint && asked.bounds);
}

void tst_ObjectGraphView::clearForgetsEverythingInSilence()
{
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    Things abc = makeThings("abc");
    setLink(abc[0], "next", abc[1]);
    view.add(abc, false);
    view.setVisible({abc[0], abc[1]}, true);
    view.setSel({abc[0]});
    SignalNotes notes(view);
    Asked asked = askedBy(view, [&] { view.clear(); });
    QCOMPARE(dumpNodes(view), ""s);
    QCOMPARE(notes.take(), ""s);
    QVERIFY(asked.repaint && asked.bounds);

    // The model is free of the view.
    asked = askedBy(view, [&] {
        setLink(abc[0], "next", abc[2]);
        abc.clear();
    });
    QVERIFY(!asked.repaint && !asked.bounds);
    // Rules stay.
    QVERIFY(view.getOutLinkFields().count(""));

    asked = askedBy(view, [&] { view.clear(); });
    QVERIFY(asked.repaint && asked.bounds);
}

void tst_ObjectGraphView::setVisibleTells_data()
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

void tst_ObjectGraphView::setVisibleTells()
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

void tst_ObjectGraphView::setVisibleOfVisibleObjectsOnlyRefreshes()
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

void tst_ObjectGraphView::showingStartsALayoutAndHidingDoesNot()
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

void tst_ObjectGraphView::showingHoldsTheLastChangedObjectInPlace()
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

void tst_ObjectGraphView::showingAnUnmeasuredNodeMakesSizesStale()
{
    ObjectGraphView view;
    const Things a = makeThings("a");
    view.add(a, false);
    const Asked asked = askedBy(view, [&] { view.setVisible(a, true); });
    QVERIFY(asked.bounds);
}

void tst_ObjectGraphView::hidingMakesLongLinksDirect()
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

void tst_ObjectGraphView::setVisibleOfTheWidgetIsQWidgets()
{
    ObjectGraphView view;
    view.setVisible(true);
    QVERIFY(static_cast<QWidget &>(view).isVisible());
    QWidget &widget = view;
    widget.setVisible(false);
    QVERIFY(widget.isHidden());
}

void tst_ObjectGraphView::listsOfObjectsAreInAddressOrder()
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

void tst_ObjectGraphView::getPosTellsWhereANodeStands()
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

void tst_ObjectGraphView::setPosPlacesAtOnce()
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

void tst_ObjectGraphView::setPosMovesByAnimation()
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

void tst_ObjectGraphView::setPosMovesAtOnceWithoutAnimationTime_data()
{
    QTest::addColumn<double>("duration");
    QTest::newRow("none") << 0.0;
    QTest::newRow("negative") << -1.0;
    QTest::newRow("not a number") << qQNaN();
}

void tst_ObjectGraphView::setPosMovesAtOnceWithoutAnimationTime()
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

void tst_ObjectGraphView::setPosKeepsPositionsInRange()
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

void tst_ObjectGraphView::refreshIsWithheldAndCarriedOut()
{
    class CountingView : public ObjectGraphView {
    public:
        int numPaints = 0;

    protected:
        void paintEvent(QPaintEvent *event) override
        {
            ++numPaints;
            ObjectGraphView::paintEvent(event);
        }
    };
    CountingView view;
    const Things a = makeThings("a");
    view.add(a, false);
    view.resize(200, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTRY_VERIFY(view.numPaints > 0);
    QTest::qWait(20);

    int before = view.numPaints;
    QVERIFY(view.setRefresh(false));
    QVERIFY(!view.canRefresh());
    view.add({}, true);
    QVERIFY(Access::refreshPending(view));
    QTest::qWait(50);
    QCOMPARE(view.numPaints, before);

    QVERIFY(!view.setRefresh(false));
    QTest::qWait(20);
    QCOMPARE(view.numPaints, before);
    QVERIFY(!view.setRefresh(true));
    QVERIFY(view.canRefresh());
    QVERIFY(!Access::refreshPending(view));
    QTRY_COMPARE(view.numPaints, before + 1);

    // Nothing was withheld: nothing is carried out.
    before = view.numPaints;
    view.setRefresh(false);
    view.setRefresh(true);
    QVERIFY(view.setRefresh(true));
    QTest::qWait(50);
    QCOMPARE(view.numPaints, before);

    view.clear();
    QTRY_COMPARE(view.numPaints, before + 1);
}

void tst_ObjectGraphView::refreshWithheldByAListIsCarriedOutAtItsEnd()
{
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    const Things abc = makeThings("abc");
    MFieldPtr &list = setLinks(abc[0], "next", {});
    view.add(abc, false);
    view.setVisible(abc, true);
    for (bool enabled : {true, false}) {
        view.setRefresh(enabled);
        Access::refreshPending(view) = false;
        Access::boundsStale(view) = false;
        list.replace(0, list.getNum(), {abc[1], abc[2]});
        QCOMPARE(view.canRefresh(), enabled);
        QCOMPARE(Access::refreshPending(view), !enabled);
        QVERIFY(Access::boundsStale(view));
    }
}

void tst_ObjectGraphView::deathOfAnObjectErasesItsNodeInSilence_data()
{
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("farVisible");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<bool>("repaints");
    QTest::newRow("hidden, unlinked") << false << false << false << false;
    QTest::newRow("visible, unlinked") << true << false << false << false;
    QTest::newRow("hidden, linked to a hidden one") << false << false << true << false;
    QTest::newRow("visible, linked to a hidden one") << true << false << true << true;
    QTest::newRow("hidden, linked to a visible one") << false << true << true << true;
}

void tst_ObjectGraphView::deathOfAnObjectErasesItsNodeInSilence()
{
    QFETCH(bool, visible);
    QFETCH(bool, farVisible);
    QFETCH(bool, linked);
    QFETCH(bool, repaints);
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    Things ab = makeThings("ab");
    if (linked)
        setLink(ab[0], "next", ab[1]);
    view.add(ab, false);
    view.setSel(ab);
    view.setVisible({ab[0]}, visible);
    view.setVisible({ab[1]}, farVisible);
    SignalNotes notes(view);
    const Asked asked = askedBy(view, [&] { ab.erase(ab.begin()); });
    QCOMPARE(dumpNodes(view), std::string(farVisible ? "b+*" : "b*"));
    QCOMPARE(dumpLinks(view), ""s);
    QCOMPARE(notes.take(), ""s);
    QCOMPARE(asked.repaint, repaints);
    QCOMPARE(asked.bounds, repaints);
}

void tst_ObjectGraphView::viewMayDieBeforeItsObjects()
{
    const Things abc = makeThings("abc");
    const RefT<ObjectIconDB> db(new ObjectIconDB);
    auto view = std::make_unique<ObjectGraphView>();
    view->setObjIconDB(db);
    view->setFieldName("name");
    view->addOutLinkField("", "next");
    view->addInLinkField("", "list");
    setLinks(abc[0], "next", {abc[1], abc[2], abc[0]});
    setLink(abc[1], "next", abc[2]);
    setLinks(abc[2], "list", {abc[0]});
    view->add(abc, false);
    view->setVisible(abc, true);
    view.reset();
    // The model tells nobody any more.
    setLinks(abc[0], "next", {abc[1]});
    setLink(abc[1], "next", abc[0]);
    fieldOf<FieldString>(abc[0], "name").set("other");
    VOM::removeField(*abc[2], *abc[2]->findField("list"));
    VOM::addField<FieldPtr>(*abc[2], "next");
    QCOMPARE(abc[0]->getNumFields(), std::size_t(2));
}

void tst_ObjectGraphView::nodesThatAHostHoldsHaveLeftTheGraph()
{
    auto view = std::make_unique<ObjectGraphView>();
    view->addOutLinkField("", "next");
    const Things abc = makeThings("abc");
    setLink(abc[0], "next", abc[1]);
    setLink(abc[1], "next", abc[2]);
    const ObjectGraphView::AddedNodes held = view->add(abc, true);
    view->setVisible(abc, true);
    QCOMPARE(dumpLinks(*view), "a>b b>c"s);
    view->remove({abc[1]});
    QCOMPARE(dumpLinks(*view), ""s);
    // The held node doesn't follow its object any more.
    setLink(abc[1], "next", abc[0]);
    QCOMPARE(dumpLinks(*view), ""s);
    view->layout();
    view.reset();
    setLink(abc[0], "next", abc[2]);
    QCOMPARE(held.hidden.size(), std::size_t(3));
}

void tst_ObjectGraphView::switchingTooltipsOffClearsTheCurrentOne()
{
    ObjectGraphView view;
    view.tooltip.set(true);
    view.setToolTip("shown");
    view.tooltip.set(true);
    QCOMPARE(view.toolTip(), QString("shown"));
    view.tooltip.set(false);
    QCOMPARE(view.toolTip(), QString());
}

QTEST_MAIN(tst_ObjectGraphView)
#include "tst_ObjectGraphView.moc"
