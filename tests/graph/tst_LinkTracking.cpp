#include "support/LinkScene.h"
#include "support/QtStrings.h"
#include "support/ViewProbe.h"

#include <QTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldInt;
using VOM::FieldPtr;
using VOM::FieldReal;
using VOM::FieldString;
using Access = GraphViewAccess;

class tst_LinkTracking : public QObject {
    Q_OBJECT

private slots:
    void fieldsBecomeLinks_data();
    void fieldsBecomeLinks();
    void fieldsInBothMapsLinkBothWays();
    void countIsTheNumberOfReferences();
    void fieldsOfOtherTypesArePassedOver();

    void changedFieldsChangeLinks_data();
    void changedFieldsChangeLinks();
    void nullFieldIsWatchedAllTheSame();
    void objectsWithoutNodeAreNotRemembered();

    void rebuildingChangesNothing();
    void linksAskForRepaintWhereTheyCanBeSeen_data();
    void linksAskForRepaintWhereTheyCanBeSeen();
    void linksAreKeptBetweenHiddenNodes();
};

void tst_LinkTracking::fieldsBecomeLinks_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<std::string>("values");
    QTest::addColumn<std::string>("links");
    for (int kind : linkKinds) {
        const auto row = [&](char const *what, std::string const &values,
                             std::string const &links) {
            QTest::addRow("type %d, %s", kind, what) << kind << values << links;
        };
        row("empty", "-", "");
        row("one", "b", "a>b");
        row("itself", "a", "a>a");
        row("without a node", "x", "");
        if (isSingleLink(kind))
            continue;
        row("no entry", "", "");
        row("several", "bcd", "a>b a>c a>d");
        row("one twice", "bcb", "a>b:2 a>c");
        row("nulls between", "-b--b-", "a>b:2");
        row("itself twice", "aba", "a>a:2 a>b");
        row("one without a node among others", "bxc", "a>b a>c");
    }
}

void tst_LinkTracking::fieldsBecomeLinks()
{
    QFETCH(int, kind);
    QFETCH(std::string, values);
    QFETCH(std::string, links);
    for (bool out : {true, false}) {
        const std::string expected = linksAlong(out, links);
        LinkScene scene;
        addLinkField(scene['a'], "f", kind, scene.pick(values));
        QCOMPARE(scene.links(), ""s);
        scene.addRule(out, "Thing");
        QCOMPARE(scene.links(), expected);
        QVERIFY(scene.view.canRefresh());
        QCOMPARE(scene.rebuiltLinks(), expected);
        scene.removeRule(out, "Thing");
        QCOMPARE(scene.links(), ""s);
        scene.addRule(out);
        QCOMPARE(scene.links(), expected);
    }
}

void tst_LinkTracking::fieldsInBothMapsLinkBothWays()
{
    for (int kind : linkKinds) {
        LinkScene scene;
        VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("b"));
        scene.addRule(true);
        scene.addRule(false);
        QCOMPARE(scene.links(), "a>b b>a"s);
        storeLinks(field, 0, 1, scene.pick("c"));
        QCOMPARE(scene.links(), "a>c c>a"s);
        QCOMPARE(scene.rebuiltLinks(), "a>c c>a"s);
        // To itself, both are one link.
        storeLinks(field, 0, 1, scene.pick("a"));
        QCOMPARE(scene.links(), "a>a:2"s);
        scene.removeRule(false);
        QCOMPARE(scene.links(), "a>a"s);
        scene.removeRule(true);
        QCOMPARE(scene.links(), ""s);
    }
}

void tst_LinkTracking::countIsTheNumberOfReferences()
{
    LinkScene scene;
    scene.addRule(true, "", "f");
    scene.addRule(true, "", "g");
    scene.addRule(false, "", "back");
    VOM::Field &f = addLinkField(scene['a'], "f", 5, scene.pick("b"));
    VOM::Field &g = addLinkField(scene['a'], "g", 6, scene.pick("b"));
    QCOMPARE(scene.links(), "a>b:2"s);
    // An in field of b makes the same link.
    VOM::Field &back = addLinkField(scene['b'], "back", 5, scene.pick("a"));
    QCOMPARE(scene.links(), "a>b:3"s);
    storeLinks(f, 0, 0, {});
    QCOMPARE(scene.links(), "a>b:2"s);
    storeLinks(back, 0, 0, {});
    QCOMPARE(scene.links(), "a>b"s);
    storeLinks(g, 0, 0, {});
    QCOMPARE(scene.links(), ""s);
    addLinkField(scene['c'], "f", 12, scene.pick("dddd"));
    QCOMPARE(scene.rebuiltLinks(), "c>d:4"s);
}

void tst_LinkTracking::fieldsOfOtherTypesArePassedOver()
{
    LinkScene scene;
    VOM::addField<FieldInt>(*scene['a'], "f", 1);
    VOM::addField<FieldString>(*scene['b'], "f", "text");
    VOM::addField<OpaqueField>(*scene['c'], "f");
    scene.addRule(true);
    scene.addRule(false);
    QCOMPARE(scene.links(), ""s);
    QCOMPARE(scene.rebuiltLinks(), ""s);
    VOM::addField<FieldReal>(*scene['d'], "f", 1.5);
    fieldOf<FieldInt>(scene['a'], "f").set(2);
    VOM::removeField(*scene['c'], *scene['c']->findField("f"));
    scene.removeRule(true);
    QCOMPARE(scene.links(), ""s);
}

void tst_LinkTracking::changedFieldsChangeLinks_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<std::string>("before");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("numRemoved");
    QTest::addColumn<std::string>("values");
    QTest::addColumn<std::string>("links");
    for (int kind : {5, 6}) {
        const auto row = [&](char const *what, std::string const &before, std::string const &value,
                             std::string const &links) {
            QTest::addRow("type %d, %s", kind, what) << kind << before << 0 << 1 << value << links;
        };
        row("set", "-", "b", "a>b");
        row("set to another", "b", "c", "a>c");
        row("cleared", "b", "-", "");
        row("set to what it is", "b", "b", "a>b");
        row("null to null", "-", "-", "");
        row("set to itself", "b", "a", "a>a");
        row("set to itself again", "a", "a", "a>a");
        row("from itself", "a", "d", "a>d");
        row("to one without a node", "b", "x", "");
        row("from one without a node", "x", "b", "a>b");
    }
    for (int kind : {11, 12}) {
        const auto row = [&](char const *what, std::string const &before, int index, int numRemoved,
                             std::string const &values, std::string const &links) {
            QTest::addRow("type %d, %s", kind, what)
                << kind << before << index << numRemoved << values << links;
        };
        row("inserted first", "b", 0, 0, "c", "a>b a>c");
        row("inserted last", "b", 1, 0, "cd", "a>b a>c a>d");
        row("inserted in an empty list", "", 0, 0, "bb", "a>b:2");
        row("removed first", "bcd", 0, 1, "", "a>c a>d");
        row("removed in the middle", "bcd", 1, 1, "", "a>b a>d");
        row("removed last", "bcd", 2, 1, "", "a>b a>c");
        row("all removed", "bcb", 0, 3, "", "");
        row("replaced by more", "bcd", 1, 1, "bbb", "a>b:4 a>d");
        row("replaced by fewer", "bbcc", 0, 3, "d", "a>c a>d");
        row("replaced by the same", "bcb", 0, 3, "bcb", "a>b:2 a>c");
        row("moved within", "bcd", 0, 3, "dbc", "a>b a>c a>d");
        row("one of two goes", "bb", 0, 1, "", "a>b");
        row("nothing by nothing", "bc", 1, 0, "", "a>b a>c");
        row("nulls go", "-b-", 0, 1, "", "a>b");
        row("nulls come", "b", 1, 0, "--", "a>b");
        row("itself comes", "b", 0, 1, "aa", "a>a:2");
        row("itself goes", "aba", 2, 1, "", "a>a a>b");
        row("ones without nodes come and go", "xbx", 0, 1, "xx", "a>b");
    }
}

void tst_LinkTracking::changedFieldsChangeLinks()
{
    QFETCH(int, kind);
    QFETCH(std::string, before);
    QFETCH(int, index);
    QFETCH(int, numRemoved);
    QFETCH(std::string, values);
    QFETCH(std::string, links);
    for (bool out : {true, false}) {
        for (bool refresh : {true, false}) {
            const std::string expected = linksAlong(out, links);
            LinkScene scene;
            scene.view.setRefresh(refresh);
            VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick(before));
            scene.addRule(out);
            storeLinks(field, std::size_t(index), std::size_t(numRemoved), scene.pick(values));
            QCOMPARE(scene.links(), expected);
            QCOMPARE(scene.view.canRefresh(), refresh);
            QCOMPARE(scene.rebuiltLinks(), expected);
        }
    }
}

void tst_LinkTracking::nullFieldIsWatchedAllTheSame()
{
    for (int kind : linkKinds) {
        LinkScene scene;
        scene.addRule(true);
        const RefT<VOM::Object> e = makeThing("e");
        VOM::Field &field = addLinkField(e, "f", kind, isSingleLink(kind) ? Things(1) : Things());
        scene.view.add({e}, false);
        QCOMPARE(scene.links(), ""s);
        storeLinks(field, 0, 0, scene.pick("b"));
        QCOMPARE(scene.links(), "e>b"s);
    }
}

void tst_LinkTracking::objectsWithoutNodeAreNotRemembered()
{
    for (int kind : linkKinds) {
        LinkScene scene;
        scene.addRule(true);
        VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("x"));
        Access::updateLinks(scene.view);
        QCOMPARE(scene.links(), ""s);
        // The link comes with the node.
        scene.view.add({scene.x}, false);
        QCOMPARE(scene.links(), "a>x"s);
        scene.view.remove({scene.x});
        QCOMPARE(scene.links(), ""s);
        storeLinks(field, 0, 1, scene.pick("b"));
        QCOMPARE(scene.links(), "a>b"s);
    }
}

void tst_LinkTracking::rebuildingChangesNothing()
{
    LinkScene scene;
    VOM::Field &single = addLinkField(scene['a'], "f", 5, scene.pick("b"));
    VOM::Field &list = addLinkField(scene['b'], "g", 11, scene.pick("cdc"));
    scene.addRule(true, "", "f");
    scene.addRule(false, "", "g");
    const std::string before = scene.links();
    QCOMPARE(before, "a>b c>b:2 d>b"s);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(scene.rebuiltLinks(), before);
    // Each field is watched once.
    storeLinks(single, 0, 0, scene.pick("d"));
    storeLinks(list, 0, 1, scene.pick("a"));
    QCOMPARE(scene.links(), "a>b a>d c>b d>b"s);
}

void tst_LinkTracking::linksAskForRepaintWhereTheyCanBeSeen_data()
{
    QTest::addColumn<bool>("from");
    QTest::addColumn<bool>("to");
    QTest::newRow("both hidden") << false << false;
    QTest::newRow("from visible") << true << false;
    QTest::newRow("to visible") << false << true;
    QTest::newRow("both visible") << true << true;
}

void tst_LinkTracking::linksAskForRepaintWhereTheyCanBeSeen()
{
    QFETCH(bool, from);
    QFETCH(bool, to);
    for (int kind : linkKinds) {
        LinkScene scene;
        VOM::Field &field =
            addLinkField(scene['a'], "f", kind, isSingleLink(kind) ? Things(1) : Things());
        scene.addRule(true);
        scene.view.setVisible({scene['a']}, from);
        scene.view.setVisible({scene['b']}, to);
        const auto check = [&](auto const &change) {
            const Asked asked = askedBy(scene.view, change);
            QCOMPARE(asked.repaint, from || to);
            QCOMPARE(asked.bounds, from || to);
        };
        check([&] { storeLinks(field, 0, 0, scene.pick("b")); });
        check([&] { storeLinks(field, 0, 1, {}); });
        storeLinks(field, 0, 0, scene.pick("b"));
        check([&] { scene.removeRule(true); });
        check([&] { scene.addRule(true); });
        check([&] { VOM::removeField(*scene['a'], field); });
    }
}

void tst_LinkTracking::linksAreKeptBetweenHiddenNodes()
{
    LinkScene scene;
    scene.addRule(true);
    addLinkField(scene['a'], "f", 6, scene.pick("b"));
    scene.view.setVisible(scene.pick("ab"), true);
    scene.view.setVisible(scene.pick("ab"), false);
    QCOMPARE(scene.links(), "a>b"s);
    QCOMPARE(dumpNodes(scene.view), "a b c d"s);
}

QTEST_MAIN(tst_LinkTracking)
#include "tst_LinkTracking.moc"
