#include "support/DropScene.h"
#include "support/QtStrings.h"
#include "support/ViewCheck.h"
#include "support/dump.h"

#include <QScrollBar>
#include <QTest>

#include <stdexcept>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;
using Scene = DropScene;

// What a drop does.

class tst_Drop : public QObject {
    Q_OBJECT

private slots:
    void hiddenOnesAreShownWithRoutes();
    void hiddenOneWithoutARouteIsShownAlone();
    void hiddenOnesShowWhatLiesBetweenThem();
    void firstShownObjectsNeedNoRoute();
    void shownOnesStartAtTheDropPoint();
    void firstHiddenNodeHoldsItsPlace();
    void nodesThatWereShownStartWhereTheyStand();
    void droppedOnesAreSelected();
    void selectionIsShown();
    void selectionIsShownFromTheFirst();
    void staleLabelsAreMeasured();
    void asksForRepaintAndBounds();
    void dropOfVisibleOnesOnlySelects();
    void dropOfSomeVisibleOnesLaysOut();

    void signalsComeOnceInOrder();
    void listenersSeeItDone();
    void listenerMayDestroyTheView_data();
    void listenerMayDestroyTheView();
    void throwingListenersAreReported();
    void dropLeavesTheEventAsItWas_data();
    void dropLeavesTheEventAsItWas();
    void dropLeavesTheModelAlone();
};

// a - b - c - d
//      \     /
//       e - f    g - b
void tst_Drop::hiddenOnesAreShownWithRoutes()
{
    const Scene scene("abcdefg", {"ab", "bc", "cd", "be", "ef", "fd", "gb"});
    QVERIFY(scene.drop("d"));
    QCOMPARE(dumpNodes(*scene.view), "a+ b+ c+ d+* e+ f+ g"s);
    QCOMPARE(faultsOf(*scene.view), ""s);
}

void tst_Drop::hiddenOneWithoutARouteIsShownAlone()
{
    const Scene scene("abcd", {"ab", "cd"});
    QVERIFY(scene.drop("c"));
    QCOMPARE(dumpNodes(*scene.view), "a+ b c+* d"s);
}

void tst_Drop::hiddenOnesShowWhatLiesBetweenThem()
{
    // None of b to e is linked to a.
    const Scene scene("abcde", {"bc", "cd", "de"});
    QVERIFY(scene.drop("bd"));
    QCOMPARE(dumpNodes(*scene.view), "a+ b+* c+ d+* e"s);
}

void tst_Drop::firstShownObjectsNeedNoRoute()
{
    const Scene scene("abc", {"ab", "bc"});
    scene.view->setVisible({scene['a']}, false);
    QVERIFY(scene.drop("c"));
    QCOMPARE(dumpNodes(*scene.view), "a b c+*"s);
}

void tst_Drop::shownOnesStartAtTheDropPoint()
{
    const Scene scene("abcd", {"ab", "bc", "cd"});
    for (QScrollBar *bar : {scene.view->horizontalScrollBar(), scene.view->verticalScrollBar()})
        bar->setRange(-1000, 1000);
    scene.view->horizontalScrollBar()->setValue(300);
    scene.view->verticalScrollBar()->setValue(-200);
    QVERIFY(scene.drop("d", {70, 30}));
    for (char letter : {'b', 'c', 'd'}) {
        QCOMPARE(QPoint(scene.node(letter).x, scene.node(letter).y), QPoint(370, -170));
        QCOMPARE(QPoint(scene.node(letter).fromX, scene.node(letter).fromY), QPoint(370, -170));
    }
    QVERIFY(Access::animTimer(*scene.view).isActive());
    QVERIFY(scene.node('b').toY != scene.node('d').toY);
    finishAnimation(*scene.view);
    QCOMPARE(faultsAtRest(*scene.view), ""s);
}

void tst_Drop::firstHiddenNodeHoldsItsPlace()
{
    const Scene scene("abcdef", {"ab", "bc", "cd", "be", "af"});
    QVERIFY(scene.drop("fed", {70, 30}));
    const std::set<Node *> dropped = scene.nodesOf("def");
    for (Node *node : dropped)
        QCOMPARE(QPoint(node->toX, node->toY) == QPoint(70, 30), node == *dropped.begin());
}

void tst_Drop::nodesThatWereShownStartWhereTheyStand()
{
    const Scene scene("abc", {"ab", "bc"});
    scene.view->setPos(scene['a'], 500, 600, false);
    QVERIFY(scene.drop("c", {70, 30}));
    QCOMPARE(QPoint(scene.node('a').x, scene.node('a').y), QPoint(500, 600));
    QVERIFY(scene.node('a').toY < 30);
}

void tst_Drop::droppedOnesAreSelected()
{
    const Scene scene("abcde", {"ab", "bc"});
    scene.view->setVisible(scene.these("e"), true);
    scene.view->setSel(scene.these("bed"));
    // b is shown on the way to c, a and c are dropped.
    QVERIFY(scene.drop("ca"));
    QCOMPARE(dumpNodes(*scene.view), "a+* b+ c+* d e+"s);
}

void tst_Drop::selectionIsShown()
{
    const Scene scene("ab");
    scene.view->setPos(scene['a'], 5000, 5000, false);
    QVERIFY(!Access::scrollTimer(*scene.view).isActive());
    QVERIFY(scene.drop("a"));
    QVERIFY(Access::scrollTimer(*scene.view).isActive());
    QVERIFY(Access::scrollTo(*scene.view).x() > 4000);
}

void tst_Drop::selectionIsShownFromTheFirst()
{
    const Scene scene("abc");
    scene.view->setVisible(scene.these("b"), true);
    finishAnimation(*scene.view);
    for (char letter : {'a', 'b'})
        scene.view->setPos(scene[letter], 150, 100, false);
    Access::selCursor(*scene.view) = 1;
    QVERIFY(scene.drop("ab", {100, 100}));
    // Both are in view, or else it would have moved on.
    QVERIFY(!Access::scrollTimer(*scene.view).isActive());
    QCOMPARE(Access::selCursor(*scene.view), std::size_t(1));
    QVERIFY(scene.drop("abc", {150, 100}));
    QVERIFY(!Access::scrollTimer(*scene.view).isActive());
    QCOMPARE(Access::selCursor(*scene.view), std::size_t(0));
}

void tst_Drop::staleLabelsAreMeasured()
{
    const Scene scene("ab", {"ab"});
    QVERIFY(scene.node('b').sizeDirty);
    QVERIFY(scene.drop("b"));
    QVERIFY(!scene.node('b').sizeDirty);
    QVERIFY(scene.node('b').width > 0);
}

void tst_Drop::asksForRepaintAndBounds()
{
    const Scene scene("ab");
    for (char const *letters : {"b", "a"}) {
        const Asked asked = askedBy(*scene.view, [&] { QVERIFY(scene.drop(letters)); });
        QVERIFY(asked.repaint);
        QVERIFY(asked.bounds);
    }
}

void tst_Drop::dropOfVisibleOnesOnlySelects()
{
    const Scene scene("abc", {"ab", "bc"});
    scene.view->setVisible(scene.these("c"), true);
    finishAnimation(*scene.view);
    scene.view->setPos(scene['a'], 20, 30, false);
    SignalNotes notes(*scene.view);
    Access::selCursor(*scene.view) = 5;
    QVERIFY(scene.drop("ac"));
    QCOMPARE(dumpNodes(*scene.view), "a+* b c+*"s);
    QCOMPARE(QPoint(scene.node('a').toX, scene.node('a').toY), QPoint(20, 30));
    QVERIFY(!Access::animTimer(*scene.view).isActive());
    QCOMPARE(notes.take(), "sel"s);
    // Not set to 0 but taken modulo the selection.
    QCOMPARE(Access::selCursor(*scene.view), std::size_t(1));
}

void tst_Drop::dropOfSomeVisibleOnesLaysOut()
{
    const Scene scene("abc", {"ab"});
    QVERIFY(scene.drop("ab", {70, 30}));
    QCOMPARE(dumpNodes(*scene.view), "a+* b+* c"s);
    QVERIFY(Access::animTimer(*scene.view).isActive());
    QCOMPARE(QPoint(scene.node('b').toX, scene.node('b').toY), QPoint(70, 30));
}

void tst_Drop::signalsComeOnceInOrder()
{
    const Scene scene("abcdef", {"ab", "bc", "cd", "ae", "ef"});
    SignalNotes notes(*scene.view);
    QVERIFY(scene.drop("fd"));
    std::string inSetOrder;
    for (Node *node : scene.nodesOf("bcdef"))
        inSetOrder += ' ' + nameOf(node->obj);
    QCOMPARE(notes.take(), "insert" + inSetOrder + "; sel");
}

void tst_Drop::listenersSeeItDone()
{
    const Scene scene("abc", {"ab", "bc"});
    std::vector<std::string> seen;
    const auto look = [&] {
        Node const &node = scene.node('c');
        seen.push_back(dumpNodes(*scene.view) + ' ' +
                       (scene.node('a').toY < node.toY ? "laid out" : "not laid out") + ' ' +
                       (Access::scrollTimer(*scene.view).isActive() ? "scrolls" : "stands"));
    };
    scene.view->sigInsertNode.connect([&](auto const &) { look(); });
    scene.view->sigSel.connect([&](auto const &) { look(); });
    QVERIFY(scene.drop("c", {5000, 40}));
    QCOMPARE(seen, std::vector<std::string>(2, "a+ b+ c+* laid out scrolls"));
}

void tst_Drop::listenerMayDestroyTheView_data()
{
    QTest::addColumn<bool>("atInsert");
    QTest::newRow("when nodes are shown") << true;
    QTest::newRow("when the selection is told") << false;
}

void tst_Drop::listenerMayDestroyTheView()
{
    QFETCH(bool, atInsert);
    Scene scene("ab", {"ab"});
    int numSel = 0;
    scene.view->sigSel.connect([&](auto const &) {
        ++numSel;
        scene.view.reset();
    });
    if (atInsert)
        scene.view->sigInsertNode.connect([&](auto const &) { scene.view.reset(); });
    const Data data = offer(scene.these("b"));
    SentDrag(*scene.view).run({10, 10}, data.get());
    QVERIFY(!scene.view);
    QCOMPARE(numSel, atInsert ? 0 : 1);
}

void tst_Drop::throwingListenersAreReported()
{
    const Scene scene("ab", {"ab"});
    scene.view->sigInsertNode.connect([](auto const &) { throw std::runtime_error("first"); });
    scene.view->sigSel.connect([](auto const &) { throw std::runtime_error("second"); });
    Reports reports;
    QVERIFY(scene.drop("b"));
    QCOMPARE(reports.texts.size(), std::size_t(2));
    QCOMPARE(dumpNodes(*scene.view), "a+ b+*"s);
}

void tst_Drop::dropLeavesTheEventAsItWas_data()
{
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<Qt::DropAction>("action");
    QTest::newRow("as the view's own move left it") << true << Qt::LinkAction;
    QTest::newRow("accepted for a copy") << true << Qt::CopyAction;
    QTest::newRow("accepted for a move") << true << Qt::MoveAction;
    QTest::newRow("ignored") << false << Qt::MoveAction;
}

/// KEPT: the event stays as the last move left it.
void tst_Drop::dropLeavesTheEventAsItWas()
{
    QFETCH(bool, accepted);
    QFETCH(Qt::DropAction, action);
    for (char const *letters : {"a", "b"}) {
        const Scene scene("ab");
        const Data data = offer(scene.these(letters));
        SentDrag drag(*scene.view);
        QVERIFY(drag.enter({10, 10}, data.get()));
        drag.accepted = accepted;
        drag.action = action;
        QCOMPARE(drag.drop({10, 10}, data.get()), accepted);
        QCOMPARE(drag.action, action);
        QVERIFY(scene.node(*letters).selected);
    }
}

void tst_Drop::dropLeavesTheModelAlone()
{
    const Scene scene("abcdef", {"ab", "bc", "ca", "de", "cf"});
    const std::string before = xmlOf(scene.things);
    QVERIFY(before.find("<model") != std::string::npos);
    int numWrites = 0;
    for (RefT<VOM::Object> const &thing : scene.things) {
        thing->sigAddField.connect([&](auto const &) { ++numWrites; });
        thing->sigRemoveField.connect([&](auto const &) { ++numWrites; });
        for (std::size_t i = 0; i < thing->getNumFields(); ++i)
            if (auto const link = cast<VOM::FieldPtr>(PtrT<VOM::Field>(thing->getField(i))))
                link->sigSet.connect([&](auto const &) { ++numWrites; });
    }
    for (char const *letters : {"f", "ab", "dec"})
        QVERIFY(scene.drop(letters));
    QCOMPARE(numWrites, 0);
    QCOMPARE(xmlOf(scene.things), before);
}

QTEST_MAIN(tst_Drop)
#include "tst_Drop.moc"
