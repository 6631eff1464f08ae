#include "support/QtStrings.h"
#include "support/SentDrag.h"
#include "support/Things.h"
#include "support/ViewCheck.h"
#include "support/ViewProbe.h"
#include "support/dump.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include <QScrollBar>
#include <QtTest>

#include <cstring>
#include <functional>
#include <memory>
#include <numeric>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

/// Things by letter, of which "a" is shown. Links are given as "ab", from and to.
struct Scene {
    explicit Scene(std::string const &letters, std::vector<std::string> const &links = {})
        : things(makeThings(letters))
        , first(letters.front())
    {
        for (std::string const &link : links)
            setLink((*this)[link[0]], link.c_str(), (*this)[link[1]]);
        for (std::string const &link : links)
            view->addOutLinkField("", link);
        view->resize(300, 200);
        view->add(things, false);
        view->setVisible({things.front()}, true);
        finishAnimation(*view);
    }
    RefT<VOM::Object> const &operator[](char letter) const
    {
        return things[std::size_t(letter - first)];
    }
    Things these(std::string const &letters) const
    {
        Things found;
        for (char letter : letters)
            found.push_back((*this)[letter]);
        return found;
    }
    Node &node(char letter) const { return *Access::node(*view, (*this)[letter]); }
    std::set<Node *> nodesOf(std::string const &letters) const
    {
        std::set<Node *> found;
        for (char letter : letters)
            found.insert(&node(letter));
        return found;
    }
    bool drop(std::string const &letters, QPoint const &pos = {50, 40}) const
    {
        return dropObjs(these(letters), pos);
    }
    bool dropObjs(Things const &objs, QPoint const &pos = {50, 40}) const
    {
        const std::unique_ptr<QMimeData> data(createMimeData({}, &objs, nullptr));
        return SentDrag(*view).run(pos, data.get());
    }

    Things things;
    const char first;
    std::unique_ptr<ObjectGraphView> view = std::make_unique<ObjectGraphView>();
};

using Data = std::unique_ptr<QMimeData>;
using MakeData = std::function<Data(Scene const &)>;

Data makeData(char const *type, QByteArray const &bytes)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(type, bytes);
    return data;
}

/// Kept until the program ends, since payloads lead to it.
Things const &kept(Things const &objs)
{
    static std::vector<std::unique_ptr<Things>> all;
    all.push_back(std::make_unique<Things>(objs));
    return *all.back();
}

Data offer(Things const &objs)
{
    return Data(createMimeData({}, &kept(objs), nullptr));
}

/// A reference to a list of "a", changed by `change`.
template <class Change>
Data forged(Scene const &scene, Change const &change)
{
    QByteArray bytes = offer(scene.these("a"))->data(MimeType::objects);
    change(bytes);
    return makeData(MimeType::objects, bytes);
}

void addPayload(char const *row, bool isTaken, MakeData const &make)
{
    QTest::newRow(row) << isTaken << make;
}

/// All fields and links of the model.
std::string xmlOf(Things const &things)
{
    Log log;
    ErrorManager errors(log);
    std::string text;
    for (RefT<VOM::Object> const &thing : things)
        text += VOM::toXml(thing, errors);
    return errors.errorCount == 0 ? text : "not written";
}

} // namespace

Q_DECLARE_METATYPE(MakeData)

class tst_Drop : public QObject {
    Q_OBJECT

private slots:
    void knownObjectsOfThisProcessAreTaken_data();
    void knownObjectsOfThisProcessAreTaken();
    void moveLooksAgain();
    void eventsWithoutDataAreRefused();
    void placeDoesNotMatter_data();
    void placeDoesNotMatter();
    void modifiersDoNotMatter_data();
    void modifiersDoNotMatter();
    void actionIsLink_data();
    void actionIsLink();
    void knownOnesAreTakenInTheirOrder();
    void dropOfNothingKnownDoesNothing_data();
    void dropOfNothingKnownDoesNothing();

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

void tst_Drop::knownObjectsOfThisProcessAreTaken_data()
{
    QTest::addColumn<bool>("isTaken");
    QTest::addColumn<MakeData>("make");
    addPayload("hidden one", true, [](auto &s) { return offer(s.these("b")); });
    addPayload("visible one", true, [](auto &s) { return offer(s.these("a")); });
    addPayload("known and unknown ones", true, [](auto &s) {
        return offer({makeThing("x"), s['b'], makeThing("y")});
    });
    addPayload("known ones and null", true, [](auto &s) { return offer({{}, s['b'], {}}); });
    addPayload("nothing", false, [](auto &) { return std::make_unique<QMimeData>(); });
    addPayload("text", false, [](auto &) {
        auto data = std::make_unique<QMimeData>();
        data->setText("b");
        return data;
    });
    addPayload("empty list", false, [](auto &) { return offer({}); });
    addPayload("only null", false, [](auto &) { return offer({{}, {}}); });
    addPayload("only unknown ones", false, [](auto &) {
        return offer({makeThing("x"), makeThing("y")});
    });
    addPayload("reference of another process", false,
               [](auto &s) { return forged(s, [](auto &bytes) { bytes[0] = char(~bytes[0]); }); });
    addPayload("reference that is too short", false,
               [](auto &s) { return forged(s, [](auto &bytes) { bytes.chop(1); }); });
    addPayload("reference that is too long", false,
               [](auto &s) { return forged(s, [](auto &bytes) { bytes.append('\0'); }); });
    addPayload("reference to nowhere", false, [](auto &s) {
        return forged(s, [](auto &bytes) { std::memset(bytes.data() + 8, 0, 8); });
    });
    addPayload("empty reference", false, [](auto &) { return makeData(MimeType::objects, {}); });
    addPayload("reference to copies alone", false, [](auto &s) {
        return makeData(MimeType::objectCopies, offer(s.these("b"))->data(MimeType::objects));
    });
    addPayload("XML alone", false, [](auto &s) {
        return makeData(MimeType::objectsXml, QByteArray::fromStdString(xmlOf(s.these("b"))));
    });
    addPayload("unknown ones, known copies and XML", false, [](auto &s) {
        const Data copies = offer(s.these("b"));
        Data data = offer({makeThing("x")});
        data->setData(MimeType::objectCopies, copies->data(MimeType::objects));
        data->setData(MimeType::objectsXml, QByteArray::fromStdString(xmlOf(s.these("b"))));
        return data;
    });
}

void tst_Drop::knownObjectsOfThisProcessAreTaken()
{
    QFETCH(bool, isTaken);
    QFETCH(MakeData, make);
    const Scene scene("ab");
    const Data data = make(scene);
    SentDrag drag(*scene.view);
    QCOMPARE(drag.enter({10, 10}, data.get()), isTaken);
    QCOMPARE(drag.action == Qt::LinkAction, isTaken);
    // A look changes nothing.
    QCOMPARE(dumpNodes(*scene.view), "a+ b"s);
}

void tst_Drop::moveLooksAgain()
{
    const Scene scene("ab");
    Things offered = scene.these("b");
    const Data data(createMimeData({}, &offered, nullptr));
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QVERIFY(drag.move({20, 20}, data.get()));
    scene.view->remove(scene.these("b"));
    QVERIFY(!drag.move({30, 30}, data.get()));
    scene.view->add(scene.these("b"), false);
    QVERIFY(drag.move({40, 40}, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
    offered.clear();
    QVERIFY(!drag.move({40, 40}, data.get()));
}

void tst_Drop::eventsWithoutDataAreRefused()
{
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view);
    QVERIFY(!drag.enter({10, 10}, nullptr));
    QVERIFY(drag.enter({10, 10}, data.get()));
    QVERIFY(!drag.move({10, 10}, nullptr));
    QVERIFY(drag.move({10, 10}, data.get()));
    QVERIFY(!drag.drop({10, 10}, nullptr));
    QCOMPARE(dumpNodes(*scene.view), "a+ b"s);
}

void tst_Drop::placeDoesNotMatter_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::newRow("at the left top") << QPoint(0, 0);
    QTest::newRow("at the right bottom") << QPoint(299, 199);
    QTest::newRow("outside") << QPoint(-50, 5000);
    QTest::newRow("in the middle") << QPoint(150, 100);
}

void tst_Drop::placeDoesNotMatter()
{
    QFETCH(QPoint, pos);
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter(pos, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
    QVERIFY(drag.move(pos, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
}

void tst_Drop::modifiersDoNotMatter_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("keys");
    QTest::newRow("none") << Qt::KeyboardModifiers(Qt::NoModifier);
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Control") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier);
    QTest::newRow("Control and Shift") << (Qt::ControlModifier | Qt::ShiftModifier);
}

void tst_Drop::modifiersDoNotMatter()
{
    QFETCH(Qt::KeyboardModifiers, keys);
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view, keys);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QCOMPARE(drag.action, Qt::LinkAction);
    QVERIFY(drag.run({10, 10}, data.get()));
    QCOMPARE(dumpNodes(*scene.view), "a+ b+*"s);
}

void tst_Drop::actionIsLink_data()
{
    QTest::addColumn<Qt::DropActions>("possible");
    QTest::addColumn<Qt::DropAction>("action");
    const Qt::DropActions copyOrMove = Qt::CopyAction | Qt::MoveAction;
    QTest::newRow("of all") << (copyOrMove | Qt::LinkAction) << Qt::LinkAction;
    QTest::newRow("alone") << Qt::DropActions(Qt::LinkAction) << Qt::LinkAction;
    // Qt falls back to the proposed one.
    QTest::newRow("where it isn't possible") << copyOrMove << Qt::CopyAction;
}

void tst_Drop::actionIsLink()
{
    QFETCH(Qt::DropActions, possible);
    QFETCH(Qt::DropAction, action);
    const Scene scene("ab");
    const Data data = offer(scene.these("b"));
    SentDrag drag(*scene.view, Qt::NoModifier, possible);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QCOMPARE(drag.action, action);
    QVERIFY(drag.move({10, 10}, data.get()));
    QCOMPARE(drag.action, action);
}

void tst_Drop::knownOnesAreTakenInTheirOrder()
{
    const Scene scene("abcde");
    const RefT<VOM::Object> stranger = makeThing("x");
    const Data data = offer({scene['d'], {}, scene['b'], stranger, scene['b'], stranger, {}});
    QCOMPARE(namesInOrder(Access::getDropObjs(*scene.view, *data)), "d b b"s);
}

void tst_Drop::dropOfNothingKnownDoesNothing_data()
{
    QTest::addColumn<bool>("known");
    QTest::newRow("unknown ones") << false;
    QTest::newRow("ones that were known before the last move") << true;
}

void tst_Drop::dropOfNothingKnownDoesNothing()
{
    QFETCH(bool, known);
    const Scene scene("abc");
    scene.view->setSel(scene.these("a"));
    SignalNotes notes(*scene.view);
    const Data data = offer(scene.these("b"));
    const Data dropped = known ? offer(scene.these("b")) : offer({makeThing("x")});
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter({10, 10}, data.get()));
    QVERIFY(drag.move({10, 10}, data.get()));
    scene.view->remove(scene.these("b"));
    const Asked asked = askedBy(*scene.view, [&] { QVERIFY(!drag.drop({10, 10}, dropped.get())); });
    QVERIFY(!asked.repaint && !asked.bounds);
    QCOMPARE(dumpNodes(*scene.view), "a+* c"s);
    QCOMPARE(notes.take(), ""s);
}

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
