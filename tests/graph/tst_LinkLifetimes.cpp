#include "support/LinkScene.h"
#include "support/QtStrings.h"
#include "support/ViewProbe.h"

#include <QTest>

#include <functional>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldPtr;
using VOM::FieldRef;
using VOM::MFieldPtr;
using VOM::MFieldRef;
using Access = GraphViewAccess;
using Node = Graph::Node;

// What comes and goes while links are there: fields, objects, and the stations of long links.

namespace {

void addKinds(bool withDirection)
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("out");
    for (int kind : linkKinds)
        for (bool out : {true, false})
            if (out || withDirection)
                QTest::addRow("type %d, %s field", kind, out ? "out" : "in") << kind << out;
}

/// Calls `act` once, from within the next signal that the field emits of a change.
void onNextChange(VOM::Field &field, std::function<void()> const &act)
{
    const auto once = [act, done = std::make_shared<bool>(false)](auto const &) {
        if (!std::exchange(*done, true))
            act();
    };
    switch (field.getType()) {
    case 5:
        static_cast<FieldPtr &>(field).sigSet.connect(once);
        break;
    case 6:
        static_cast<FieldRef &>(field).sigSet.connect(once);
        break;
    case 11:
        static_cast<MFieldPtr &>(field).sigReplace.connect(once);
        break;
    default:
        static_cast<MFieldRef &>(field).sigReplace.connect(once);
    }
}

} // namespace

class tst_LinkLifetimes : public QObject {
    Q_OBJECT

private slots:
    void singleFieldAddedToALiveObjectIsLinked_data();
    void singleFieldAddedToALiveObjectIsLinked();
    void listFieldAddedToALiveObjectIsNotLinked_data();
    void listFieldAddedToALiveObjectIsNotLinked();
    void addedFieldMayBeGoneAlready();
    void removedFieldTakesItsLinks_data() { addKinds(true); }
    void removedFieldTakesItsLinks();
    void fieldRemovedWhileLinksAreRebuiltIsLetGo();

    void deathOfATargetTakesItsLinks_data() { addKinds(true); }
    void deathOfATargetTakesItsLinks();
    void deathOfAnOwnerTakesItsLinks_data() { addKinds(true); }
    void deathOfAnOwnerTakesItsLinks();
    void deathInsideAHandler_data();
    void deathInsideAHandler();
    void removalInsideAHandler_data() { addKinds(false); }
    void removalInsideAHandler();
    void changeInsideAHandlerIsRightAfterARebuild_data() { addKinds(false); }
    void changeInsideAHandlerIsRightAfterARebuild();
    void chainOfOwnersDiesAtOnce();

    void selfLinksComeAndGo_data() { addKinds(true); }
    void selfLinksComeAndGo();
    void selfLinksSurviveALayout();
    void opposedLinksBecomeOneByALayout();
    void removalOfALostEntryDoesNothing_data();
    void removalOfALostEntryDoesNothing();

    void changesGoAlongTheChainOfALongLink();
    void lastReferenceDissolvesTheChain();
    void addOfANewObjectMakesLongLinksDirect();
    void deathOfAnEndDissolvesTheChain_data();
    void deathOfAnEndDissolvesTheChain();
    void unlinkOfNothingDoesNothing();
};

void tst_LinkLifetimes::singleFieldAddedToALiveObjectIsLinked_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("out");
    QTest::addColumn<bool>("in");
    QTest::addColumn<std::string>("links");
    for (int kind : {5, 6}) {
        QTest::addRow("type %d, out", kind) << kind << true << false << "a>b"s;
        QTest::addRow("type %d, in", kind) << kind << false << true << "b>a"s;
        QTest::addRow("type %d, both", kind) << kind << true << true << "a>b b>a"s;
        QTest::addRow("type %d, neither", kind) << kind << false << false << ""s;
    }
}

void tst_LinkLifetimes::singleFieldAddedToALiveObjectIsLinked()
{
    QFETCH(int, kind);
    QFETCH(bool, out);
    QFETCH(bool, in);
    QFETCH(std::string, links);
    LinkScene scene;
    scene.addRule(true, "", out ? "f" : "g");
    scene.addRule(false, "", in ? "f" : "g");
    VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("b"));
    QCOMPARE(scene.links(), links);
    storeLinks(field, 0, 0, scene.pick("c"));
    storeLinks(field, 0, 0, scene.pick("b"));
    QCOMPARE(scene.links(), links);
    QCOMPARE(scene.rebuiltLinks(), links);
}

void tst_LinkLifetimes::listFieldAddedToALiveObjectIsNotLinked_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("out");
    for (int kind : {11, 12})
        for (bool out : {true, false})
            QTest::addRow("type %d, %s field", kind, out ? "out" : "in") << kind << out;
}

void tst_LinkLifetimes::listFieldAddedToALiveObjectIsNotLinked()
{
    QFETCH(int, kind);
    QFETCH(bool, out);
    LinkScene scene;
    scene.addRule(out);
    VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("bb"));
    QCOMPARE(scene.links(), ""s);
    // It isn't watched either,
    storeLinks(field, 0, 1, scene.pick("c"));
    QCOMPARE(scene.links(), ""s);
    // nor linked by an add() that makes no node,
    scene.view.add(scene.abcd, true);
    QCOMPARE(scene.links(), ""s);
    // but by one that does.
    scene.view.add({makeThing("e")}, false);
    QCOMPARE(scene.links(), linksAlong(out, "a>b a>c"));
    storeLinks(field, 0, 1, scene.pick("d"));
    QCOMPARE(scene.links(), linksAlong(out, "a>b a>d"));
}

void tst_LinkLifetimes::addedFieldMayBeGoneAlready()
{
    LinkScene scene;
    scene.addRule(true);
    const RefT<VOM::Object> e = makeThing("e");
    // Before the view hears of it.
    e->sigAddField.connect(
        [&](VOM::SigAddFieldData const &data) { VOM::removeField(*e, *e->getField(data.index)); });
    scene.view.add({e}, false);
    RefT<VOM::Field> removed;
    e->sigRemoveField.connect([&](VOM::SigRemoveFieldData const &data) { removed = *data.field; });
    addLinkField(e, "f", 5, scene.pick("b"));
    QVERIFY(removed);
    QCOMPARE(scene.links(), ""s);
    storeLinks(*removed, 0, 0, scene.pick("c"));
    QCOMPARE(scene.links(), ""s);
}

void tst_LinkLifetimes::removedFieldTakesItsLinks()
{
    QFETCH(int, kind);
    QFETCH(bool, out);
    LinkScene scene;
    const RefT<VOM::Field> field(addLinkField(scene['a'], "f", kind, scene.pick("bcb")));
    addLinkField(scene['a'], "g", 5, scene.pick("b"));
    scene.addRule(out);
    scene.addRule(out, "", "g");
    QVERIFY(VOM::removeField(*scene['a'], *field));
    QCOMPARE(scene.links(), linksAlong(out, "a>b"));
    // Who holds the field changes it unheard.
    storeLinks(*field, 0, 1, scene.pick("d"));
    QCOMPARE(scene.links(), linksAlong(out, "a>b"));
    scene.removeRule(out);
    QCOMPARE(scene.links(), linksAlong(out, "a>b"));
}

void tst_LinkLifetimes::fieldRemovedWhileLinksAreRebuiltIsLetGo()
{
    for (bool outlives : {false, true}) {
        LinkScene scene;
        scene.addRule(true);
        addLinkField(scene['a'], "f", 5, scene.pick("b"));
        addLinkField(scene['c'], "f", 5, scene.pick("d"));
        RefT<VOM::Field> held;
        // After the view has heard of the removal, and while the field is still there.
        scene['a']->sigRemoveField.connect([&](VOM::SigRemoveFieldData const &data) {
            Access::updateLinks(scene.view);
            if (outlives)
                held = *data.field;
        });
        VOM::removeField(*scene['a'], *scene['a']->findField("f"));
        // Fields that come later may take the place of the one that is gone.
        for (int i = 0; i < 20; ++i)
            addLinkField(scene['a'], "f", 5, scene.pick("c"));
        QCOMPARE(scene.links(), "a>b a>c:20 c>d"s);
        scene.removeRule(true);
        scene.addRule(true);
        QVERIFY(scene.links().find('!') == std::string::npos);
        QCOMPARE(scene.rebuiltLinks(), "a>c:20 c>d"s);
        if (held) {
            storeLinks(*held, 0, 0, scene.pick("d"));
            QCOMPARE(scene.links(), "a>c:20 c>d"s);
        }
    }
}

void tst_LinkLifetimes::deathOfATargetTakesItsLinks()
{
    QFETCH(int, kind);
    QFETCH(bool, out);
    LinkScene scene;
    scene.addRule(out);
    const bool owning = kind == 6 || kind == 12;
    VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("bcb"));
    addLinkField(scene['d'], "f", 5, scene.pick("b"));
    Access::updateLinks(scene.view);
    const Things c = scene.pick("c");
    scene['b'].reset();
    if (owning) {
        // As long as the field owns it, it lives.
        QVERIFY(scene.links().find('b') != std::string::npos);
        storeLinks(field, 0, isSingleLink(kind) ? 1 : 3, c);
    }
    const bool linksToC = owning || !isSingleLink(kind);
    QCOMPARE(scene.links(), linksAlong(out, linksToC ? "a>c" : ""));
    QCOMPARE(dumpNodes(scene.view), "a c d"s);
    QCOMPARE(scene.rebuiltLinks(), linksAlong(out, linksToC ? "a>c" : ""));
    // The field goes on: its dead entries are nulls, and make no links.
    storeLinks(field, 0, 1, c);
    QCOMPARE(scene.links(), scene.rebuiltLinks());
}

void tst_LinkLifetimes::deathOfAnOwnerTakesItsLinks()
{
    QFETCH(int, kind);
    QFETCH(bool, out);
    LinkScene scene;
    scene.addRule(out);
    RefT<VOM::Field> held(addLinkField(scene['a'], "f", kind, scene.pick("bcb")));
    addLinkField(scene['b'], "f", 5, scene.pick("d"));
    Access::updateLinks(scene.view);
    scene['a'].reset();
    QCOMPARE(scene.links(), linksAlong(out, "b>d"));
    QCOMPARE(dumpNodes(scene.view), "b c d"s);
    storeLinks(*held, 0, 1, scene.pick("d"));
    QCOMPARE(scene.links(), linksAlong(out, "b>d"));
}

void tst_LinkLifetimes::deathInsideAHandler_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<char>("victim"); // a owns the field, which changes from b to c.
    QTest::addColumn<bool>("first");  // Before the view hears of the change.
    QTest::addColumn<std::string>("links");
    for (int kind : linkKinds) {
        for (bool first : {true, false}) {
            char const *const when = first ? "before" : "after";
            QTest::addRow("type %d, the owner, %s the view hears", kind, when)
                << kind << 'a' << first << ""s;
            QTest::addRow("type %d, the old value, %s the view hears", kind, when)
                << kind << 'b' << first << "a>c"s;
            // An owning field keeps the new value alive.
            const bool owning = kind == 6 || kind == 12;
            QTest::addRow("type %d, the new value, %s the view hears", kind, when)
                << kind << 'c' << first << (owning ? "a>c"s : ""s);
        }
    }
}

void tst_LinkLifetimes::deathInsideAHandler()
{
    QFETCH(int, kind);
    QFETCH(char, victim);
    QFETCH(bool, first);
    QFETCH(std::string, links);
    LinkScene scene;
    VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("b"));
    Things values = scene.pick("c");
    const auto kill = [&] {
        values.clear();
        scene[victim].reset();
    };
    if (first)
        onNextChange(field, kill);
    scene.addRule(true);
    if (!first)
        onNextChange(field, kill);
    scene.view.setVisible(scene.abcd, true);
    storeLinks(field, 0, 1, values);
    QCOMPARE(scene.links(), links);
    QCOMPARE(scene.rebuiltLinks(), links);
    scene.view.layout();
    scene.view.viewport()->grab();
}

void tst_LinkLifetimes::removalInsideAHandler()
{
    QFETCH(int, kind);
    for (bool first : {true, false}) {
        for (bool wholeRule : {true, false}) {
            LinkScene scene;
            VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("b"));
            const auto remove = [&] {
                if (wholeRule)
                    scene.removeRule(true);
                else
                    VOM::removeField(*scene['a'], field);
            };
            if (first)
                onNextChange(field, remove);
            scene.addRule(true);
            if (!first)
                onNextChange(field, remove);
            storeLinks(field, 0, 1, scene.pick("c"));
            // The old value was unlinked, or what the field held last: a rebuild mends the first.
            QCOMPARE(scene.rebuiltLinks(), ""s);
            QCOMPARE(dumpNodes(scene.view), "a b c d"s);
        }
    }
}

void tst_LinkLifetimes::changeInsideAHandlerIsRightAfterARebuild()
{
    QFETCH(int, kind);
    for (bool first : {true, false}) {
        LinkScene scene;
        VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("b"));
        const auto change = [&] { storeLinks(field, 0, 1, scene.pick("d")); };
        if (first)
            onNextChange(field, change);
        scene.addRule(true);
        if (!first)
            onNextChange(field, change);
        storeLinks(field, 0, 1, scene.pick("c"));
        // Whoever changes a field before the view hears of it hides the first change from the view.
        if (!first)
            QCOMPARE(scene.links(), "a>d"s);
        QVERIFY(scene.links().find('!') == std::string::npos);
        QCOMPARE(scene.rebuiltLinks(), "a>d"s);
    }
}

void tst_LinkLifetimes::chainOfOwnersDiesAtOnce()
{
    ObjectGraphView view;
    view.addOutLinkField("", "f");
    RefT<VOM::Object> head = makeThing("0");
    Things all = {head};
    for (int i = 1; i < 200; ++i) {
        all.push_back(makeThing(std::to_string(i)));
        addLinkField(all[std::size_t(i - 1)], "f", i % 2 ? 6 : 12, {all.back()});
    }
    view.add(all, false);
    view.setVisible(all, true);
    QCOMPARE(Access::numNodes(view), std::size_t(200));
    all.clear();
    QCOMPARE(Access::numNodes(view), std::size_t(200));
    head.reset();
    QCOMPARE(Access::numNodes(view), std::size_t(0));
}

void tst_LinkLifetimes::selfLinksComeAndGo()
{
    QFETCH(int, kind);
    QFETCH(bool, out);
    LinkScene scene;
    VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("aa"));
    scene.addRule(out);
    QCOMPARE(scene.links(), isSingleLink(kind) ? "a>a"s : "a>a:2"s);
    storeLinks(field, 0, 1, scene.pick("b"));
    QCOMPARE(scene.links(), linksAlong(out, isSingleLink(kind) ? "a>b" : "a>a a>b"));
    storeLinks(field, 0, 1, scene.pick("a"));
    VOM::removeField(*scene['a'], field);
    QCOMPARE(scene.links(), ""s);
    addLinkField(scene['c'], "f", kind, scene.pick("c"));
    Access::updateLinks(scene.view);
    QCOMPARE(scene.links(), "c>c"s);
    scene.view.remove(scene.pick("c"));
    QCOMPARE(scene.links(), ""s);
}

void tst_LinkLifetimes::selfLinksSurviveALayout()
{
    LinkScene scene;
    scene.addRule(true);
    addLinkField(scene['a'], "f", 5, scene.pick("a"));
    addLinkField(scene['b'], "f", 5, scene.pick("a"));
    scene.view.setVisible(scene.abcd, true);
    QCOMPARE(scene.links(), "a>a b>a"s);
    finishAnimation(scene.view);
    scene.view.viewport()->grab();
    scene.view.layout();
    QCOMPARE(scene.links(), "a>a b>a"s);
}

void tst_LinkLifetimes::opposedLinksBecomeOneByALayout()
{
    LinkScene scene;
    scene.addRule(true);
    addLinkField(scene['a'], "f", 5, scene.pick("b"));
    addLinkField(scene['b'], "f", 6, scene.pick("a"));
    QCOMPARE(scene.links(), "a>b b>a"s);
    // Hidden ones stay apart.
    scene.view.setVisible(scene.pick("a"), true);
    QCOMPARE(scene.links(), "a>b b>a"s);
    scene.view.setVisible(scene.pick("ab"), true);
    const std::string merged = scene.links();
    QVERIFY2(merged == "a>b:2" || merged == "b>a:2", merged.c_str());
    QCOMPARE(scene.rebuiltLinks(), "a>b b>a"s);
}

void tst_LinkLifetimes::removalOfALostEntryDoesNothing_data()
{
    QTest::addColumn<bool>("bothChange");
    QTest::newRow("one field changes") << false;
    QTest::newRow("both fields change") << true;
}

void tst_LinkLifetimes::removalOfALostEntryDoesNothing()
{
    QFETCH(bool, bothChange);
    LinkScene scene;
    scene.addRule(true);
    VOM::Field &fa = addLinkField(scene['a'], "f", 5, scene.pick("b"));
    VOM::Field &fb = addLinkField(scene['b'], "f", 5, scene.pick("a"));
    scene.view.setVisible(scene.abcd, true);
    const std::string merged = scene.links();
    const bool aIsLost = merged == "b>a:2";
    storeLinks(aIsLost ? fa : fb, 0, 0, {});
    QCOMPARE(scene.links(), merged);
    if (bothChange) {
        storeLinks(aIsLost ? fb : fa, 0, 0, {});
        // The merged link stood for two references, and one is left until links are rebuilt.
        QCOMPARE(scene.links(), aIsLost ? "b>a"s : "a>b"s);
    }
    scene.view.layout();
    scene.view.viewport()->grab();
    QCOMPARE(scene.rebuiltLinks(), bothChange ? ""s : aIsLost ? "b>a"s : "a>b"s);
}

namespace {

/// a > b > c > d, and a long link from a to d by the list "long" of a.
struct LongLinkScene : LinkScene {
    explicit LongLinkScene(std::string const &list = "d")
    {
        addRule(true);
        addRule(true, "", "long");
        for (char from : {'a', 'b', 'c'})
            addLinkField((*this)[from], "f", 5, pick(std::string(1, char(from + 1))));
        longList = &static_cast<MFieldPtr &>(addLinkField(abcd[0], "long", 11, pick(list)));
        Access::updateLinks(view);
        view.setVisible(abcd, true);
        finishAnimation(view);
    }
    std::vector<PtrT<Node>> stations()
    {
        std::vector<PtrT<Node>> all;
        Node &a = *Access::node(view, abcd[0]);
        for (auto const &[far, entry] : a.linkedOut)
            Graph::forEachIntermediate(entry, [&](Node &node) { all.emplace_back(node); });
        return all;
    }
    MFieldPtr *longList;
};

} // namespace

void tst_LinkLifetimes::changesGoAlongTheChainOfALongLink()
{
    LongLinkScene scene;
    QCOMPARE(scene.links(), "a>b a>d/2 b>c c>d"s);
    // The dump tells of chains that don't agree.
    storeLinks(*scene.longList, 1, 0, scene.pick("dd"));
    QCOMPARE(scene.links(), "a>b a>d:3/2 b>c c>d"s);
    storeLinks(*scene.longList, 0, 1, {});
    QCOMPARE(scene.links(), "a>b a>d:2/2 b>c c>d"s);
    for (PtrT<Node> const &station : scene.stations()) {
        QCOMPARE(station->linkedIn.begin()->second.count, 2u);
        QCOMPARE(station->linkedOut.begin()->second.count, 2u);
    }
}

void tst_LinkLifetimes::lastReferenceDissolvesTheChain()
{
    LongLinkScene scene("dd");
    const std::vector<PtrT<Node>> stations = scene.stations();
    QCOMPARE(stations.size(), std::size_t(2));
    storeLinks(*scene.longList, 0, 1, {});
    QVERIFY(stations[0] && stations[1]);
    storeLinks(*scene.longList, 0, 1, {});
    QVERIFY(!stations[0] && !stations[1]);
    QCOMPARE(scene.links(), "a>b b>c c>d"s);
    // A link that comes back is direct until the next layout.
    storeLinks(*scene.longList, 0, 0, scene.pick("d"));
    QCOMPARE(scene.links(), "a>b a>d b>c c>d"s);
    scene.view.layout();
    QCOMPARE(scene.links(), "a>b a>d/2 b>c c>d"s);
}

void tst_LinkLifetimes::addOfANewObjectMakesLongLinksDirect()
{
    LongLinkScene scene;
    scene.view.add(scene.abcd, true);
    QCOMPARE(scene.links(), "a>b a>d/2 b>c c>d"s);
    scene.view.add({scene.x}, true);
    QCOMPARE(scene.links(), "a>b a>d b>c c>d"s);
}

void tst_LinkLifetimes::deathOfAnEndDissolvesTheChain_data()
{
    QTest::addColumn<char>("victim");
    QTest::addColumn<std::string>("links");
    QTest::newRow("the from node") << 'a' << "b>c c>d"s;
    QTest::newRow("the to node") << 'd' << "a>b b>c"s;
    QTest::newRow("a node beside the chain") << 'b' << "a>d/2 c>d"s;
}

void tst_LinkLifetimes::deathOfAnEndDissolvesTheChain()
{
    QFETCH(char, victim);
    QFETCH(std::string, links);
    LongLinkScene scene;
    const std::vector<PtrT<Node>> stations = scene.stations();
    scene[victim].reset();
    QCOMPARE(scene.links(), links);
    QCOMPARE(!stations[0], victim != 'b');
    scene.view.viewport()->grab();
}

void tst_LinkLifetimes::unlinkOfNothingDoesNothing()
{
    LinkScene scene;
    scene.addRule(true);
    addLinkField(scene['a'], "f", 5, scene.pick("b"));
    Node &a = *Access::node(scene.view, scene['a']);
    Node &b = *Access::node(scene.view, scene['b']);
    Access::unlink(scene.view, b, a, 1);
    Access::unlink(scene.view, a, a, 1);
    QCOMPARE(scene.links(), "a>b"s);
    // More references than there are take all of them.
    Access::unlink(scene.view, a, b, 7);
    QCOMPARE(scene.links(), ""s);
    Access::link(scene.view, a, b, 3);
    Access::link(scene.view, a, b, 2);
    QCOMPARE(scene.links(), "a>b:5"s);
}

QTEST_MAIN(tst_LinkLifetimes)
#include "tst_LinkLifetimes.moc"
