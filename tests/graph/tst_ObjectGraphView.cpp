#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QTimer>

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

std::string namesOf(std::set<RefT<Node>> const &nodes)
{
    Things objs;
    for (RefT<Node> const &node : nodes)
        objs.emplace_back(node->obj);
    return ZR::VOM::GUI::namesOf(objs);
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
    std::vector<QMetaProperty> colours;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (QByteArray(meta.property(i).name()).startsWith("color"))
            colours.push_back(meta.property(i));
    }
    QCOMPARE(colours.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const QMetaProperty property = colours[i];
        QCOMPARE(property.name(), expected[i].first);
        QCOMPARE(property.userType(), int(QMetaType::QColor));
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
