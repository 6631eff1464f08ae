#include "support/LinkScene.h"
#include "support/QtStrings.h"
#include "support/ViewProbe.h"

#include <QtTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldInt;
using VOM::FieldPtr;
using VOM::FieldReal;
using VOM::FieldString;
using Access = GraphViewAccess;

namespace {

/// A field of a type that the library doesn't know.
class OpaqueField : public VOM::Field {
public:
    OpaqueField(VOM::Object &newOwner, char const *fieldName, unsigned initialFlags = 0)
        : Field(newOwner, fieldName, initialFlags)
    {
    }
    OpaqueField(VOM::Object &newOwner, OpaqueField const &other)
        : Field(newOwner, other)
    {
    }
    PtrT<Field> clone(VOM::Object &newOwner) const override
    {
        return VOM::cloneField(*this, newOwner);
    }
    int getType() const override { return 99; }
    void copyValue(Field const &) override {}
};

RefT<VOM::Object> makeOf(std::string const &className)
{
    if (className == "Special")
        return new Special;
    if (className == "Stranger")
        return new Stranger;
    if (className == "ZR::VOM::Object")
        return new VOM::Object;
    return new Thing;
}

} // namespace

class tst_LinkTracking : public QObject {
    Q_OBJECT

private slots:
    void rulesNameFields_data();
    void rulesNameFields();
    void onlyFourTypesOfFieldsLink();
    void nullAndOwnerlessFieldsAreNoLinkFields();
    void outRulesAndInRulesAreApart();

    void emptyFieldNameChangesNothing();
    void sameRuleAgainTouchesNoNode();
    void rulesForWhatDoesNotExistAreStored();
    void ruleIsAppliedByClass_data();
    void ruleIsAppliedByClass();

    void fieldsBecomeLinks_data();
    void fieldsBecomeLinks();
    void fieldsInBothMapsLinkBothWays();
    void countIsTheNumberOfReferences();
    void fieldsOfOtherTypesArePassedOver();

    void changedFieldsChangeLinks_data();
    void changedFieldsChangeLinks();
    void nullFieldIsWatchedAllTheSame();
    void objectsWithoutNodeAreNotRemembered();

    void removedRuleTakesItsLinks_data();
    void removedRuleTakesItsLinks();
    void removedRuleLeavesWhatAnotherCovers_data();
    void removedRuleLeavesWhatAnotherCovers();
    void fieldUnderTwoRulesCountsOnce_data();
    void fieldUnderTwoRulesCountsOnce();
    void removingUnknownRulesChangesNothing();

    void rebuildingChangesNothing();
    void linksAskForRepaintWhereTheyCanBeSeen_data();
    void linksAskForRepaintWhereTheyCanBeSeen();
    void linksAreKeptBetweenHiddenNodes();
};

void tst_LinkTracking::rulesNameFields_data()
{
    QTest::addColumn<std::string>("className");
    QTest::addColumn<std::string>("fieldName");
    QTest::addColumn<std::string>("ofClass"); // Of an object with a field "next".
    QTest::addColumn<bool>("covered");
    QTest::newRow("its class") << "Thing"s
                               << "next"s
                               << "Thing"s << true;
    QTest::newRow("its base class") << "Thing"s
                                    << "next"s
                                    << "Special"s << true;
    QTest::newRow("the root class") << "ZR::VOM::Object"s
                                    << "next"s
                                    << "Special"s << true;
    QTest::newRow("any class") << ""s
                               << "next"s
                               << "Stranger"s << true;
    QTest::newRow("a derived class") << "Special"s
                                     << "next"s
                                     << "Thing"s << false;
    QTest::newRow("another class") << "Stranger"s
                                   << "next"s
                                   << "Thing"s << false;
    QTest::newRow("another field") << "Thing"s
                                   << "nex"s
                                   << "Thing"s << false;
    QTest::newRow("another field of any class") << ""s
                                                << "next2"s
                                                << "Thing"s << false;
    QTest::newRow("capitals differ") << "thing"s
                                     << "next"s
                                     << "Thing"s << false;
    QTest::newRow("the class alone") << "Thing"s
                                     << "Thing"s
                                     << "Thing"s << false;
}

void tst_LinkTracking::rulesNameFields()
{
    QFETCH(std::string, className);
    QFETCH(std::string, fieldName);
    QFETCH(std::string, ofClass);
    QFETCH(bool, covered);
    const RefT<VOM::Object> obj = makeOf(ofClass);
    const RefT<VOM::Field> field(VOM::addField<FieldPtr>(*obj, "next"));
    ObjectGraphView view;
    QVERIFY(!view.isOutLinkField(field));
    view.addOutLinkField(className, fieldName);
    QCOMPARE(view.isOutLinkField(field), covered);
    QVERIFY(!view.isInLinkField(field));
    view.addInLinkField(className, fieldName);
    QCOMPARE(view.isInLinkField(field), covered);
    view.removeOutLinkField(className, fieldName);
    QVERIFY(!view.isOutLinkField(field));
    QCOMPARE(view.isInLinkField(field), covered);
}

void tst_LinkTracking::onlyFourTypesOfFieldsLink()
{
    ObjectGraphView view;
    view.addOutLinkField("", "f");
    const auto links = [&](auto const &add) {
        const RefT<VOM::Object> obj(new Thing);
        const RefT<VOM::Field> field(add(*obj));
        return view.isOutLinkField(field);
    };
    QVERIFY(!links([](auto &o) -> auto & { return VOM::addField<FieldInt>(o, "f"); }));
    QVERIFY(!links([](auto &o) -> auto & { return VOM::addField<FieldReal>(o, "f"); }));
    QVERIFY(!links([](auto &o) -> auto & { return VOM::addField<FieldString>(o, "f"); }));
    QVERIFY(!links([](auto &o) -> auto & { return VOM::addField<OpaqueField>(o, "f"); }));
    for (int kind : linkKinds) {
        const RefT<VOM::Object> obj(new Thing);
        QVERIFY(view.isOutLinkField(RefT<VOM::Field>(addLinkField(obj, "f", kind, {}))));
    }
}

void tst_LinkTracking::nullAndOwnerlessFieldsAreNoLinkFields()
{
    ObjectGraphView view;
    view.addOutLinkField("", "f");
    view.addInLinkField("", "f");
    QVERIFY(!view.isOutLinkField({}));
    QVERIFY(!view.isInLinkField({}));
    RefT<VOM::Object> obj(new Thing);
    const RefT<VOM::Field> removed(addLinkField(obj, "f", 5, {}));
    VOM::removeField(*obj, *removed);
    QVERIFY(!view.isOutLinkField(removed));
    const RefT<VOM::Field> orphan(addLinkField(obj, "f", 5, {}));
    obj.reset();
    QVERIFY(!view.isOutLinkField(orphan));
}

void tst_LinkTracking::outRulesAndInRulesAreApart()
{
    ObjectGraphView view;
    view.addOutLinkField("A", "f");
    view.addOutLinkField("A", "g");
    view.addOutLinkField("", "f");
    view.addInLinkField("B", "h");
    using Rules = ObjectGraphView::LinkFields;
    QCOMPARE(view.getOutLinkFields(), (Rules{{"", {"f"}}, {"A", {"f", "g"}}}));
    QCOMPARE(view.getInLinkFields(), (Rules{{"B", {"h"}}}));
    view.removeInLinkField("A", "f");
    view.removeOutLinkField("A", "f");
    QCOMPARE(view.getOutLinkFields(), (Rules{{"", {"f"}}, {"A", {"g"}}}));
    // A class goes with its last field.
    view.removeOutLinkField("A", "g");
    view.removeInLinkField("B", "h");
    QCOMPARE(view.getOutLinkFields(), (Rules{{"", {"f"}}}));
    QCOMPARE(view.getInLinkFields(), Rules());
}

void tst_LinkTracking::emptyFieldNameChangesNothing()
{
    LinkScene scene;
    addLinkField(scene['a'], "", 5, scene.pick("b"));
    for (bool out : {true, false}) {
        scene.addRule(out, "", "");
        scene.addRule(out, "Thing", "");
        scene.removeRule(out, "Thing", "");
    }
    QVERIFY(scene.view.getOutLinkFields().empty());
    QVERIFY(scene.view.getInLinkFields().empty());
    QCOMPARE(scene.rebuiltLinks(), ""s);
}

void tst_LinkTracking::sameRuleAgainTouchesNoNode()
{
    LinkScene scene;
    addLinkField(scene['a'], "f", 5, scene.pick("b"));
    addLinkField(scene['b'], "f", 12, scene.pick("cc"));
    scene.view.setVisible(scene.abcd, true);
    for (bool out : {true, false}) {
        scene.addRule(out, "Thing");
        const std::string before = scene.links();
        const Asked asked = askedBy(scene.view, [&] { scene.addRule(out, "Thing"); });
        QVERIFY(!asked.repaint && !asked.bounds);
        QCOMPARE(scene.links(), before);
    }
}

void tst_LinkTracking::rulesForWhatDoesNotExistAreStored()
{
    LinkScene scene;
    scene.addRule(true, "No such class", "f");
    scene.addRule(true, "Thing", "no such field");
    addLinkField(scene['a'], "f", 5, scene.pick("b"));
    QCOMPARE(scene.rebuiltLinks(), ""s);
    QCOMPARE(scene.view.getOutLinkFields().size(), std::size_t(2));
    // The rule waits for its field.
    addLinkField(scene['a'], "no such field", 5, scene.pick("c"));
    QCOMPARE(scene.links(), "a>c"s);
}

void tst_LinkTracking::ruleIsAppliedByClass_data()
{
    QTest::addColumn<std::string>("className");
    QTest::addColumn<std::string>("links"); // With fields of t (Thing), s (Special), o (Stranger).
    QTest::newRow("any class") << ""s
                               << "o>t s>t t>t"s;
    QTest::newRow("a class and what derives from it") << "Thing"s
                                                      << "s>t t>t"s;
    QTest::newRow("a derived class") << "Special"s
                                     << "s>t"s;
    QTest::newRow("an unrelated class") << "Stranger"s
                                        << "o>t"s;
    QTest::newRow("the root class") << "ZR::VOM::Object"s
                                    << "o>t s>t t>t"s;
    QTest::newRow("no class") << "Nothing"s
                              << ""s;
}

void tst_LinkTracking::ruleIsAppliedByClass()
{
    QFETCH(std::string, className);
    QFETCH(std::string, links);
    const Things objs = {makeThing<Thing>("t"), makeThing<Special>("s"), makeThing<Stranger>("o")};
    for (RefT<VOM::Object> const &obj : objs)
        setLink(obj, "f", objs[0]);
    for (bool out : {true, false}) {
        // To nodes that are there, and to nodes that come later.
        ObjectGraphView before, after;
        after.add(objs, false);
        for (ObjectGraphView *view : {&before, &after}) {
            if (out)
                view->addOutLinkField(className, "f");
            else
                view->addInLinkField(className, "f");
        }
        before.add(objs, false);
        QCOMPARE(dumpLinks(after), linksAlong(out, links));
        QCOMPARE(dumpLinks(before), linksAlong(out, links));
    }
}

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

void tst_LinkTracking::removedRuleTakesItsLinks_data()
{
    QTest::addColumn<int>("kind");
    for (int kind : linkKinds)
        QTest::addRow("type %d", kind) << kind;
}

void tst_LinkTracking::removedRuleTakesItsLinks()
{
    QFETCH(int, kind);
    for (bool out : {true, false}) {
        LinkScene scene;
        VOM::Field &f = addLinkField(scene['a'], "f", kind, scene.pick("bcb"));
        addLinkField(scene['b'], "g", 5, scene.pick("d"));
        scene.addRule(out, "Thing", "f");
        scene.addRule(out, "Thing", "g");
        scene.addRule(!out, "Thing", "g");
        scene.removeRule(out, "Thing", "f");
        QCOMPARE(scene.links(), "b>d d>b"s);
        // What isn't covered isn't watched.
        storeLinks(f, 0, 1, scene.pick("d"));
        QCOMPARE(scene.links(), "b>d d>b"s);
        QCOMPARE(scene.rebuiltLinks(), "b>d d>b"s);
    }
}

void tst_LinkTracking::removedRuleLeavesWhatAnotherCovers_data()
{
    QTest::addColumn<std::string>("other");
    QTest::newRow("any class") << ""s;
    QTest::newRow("the base class") << "Thing"s;
    QTest::newRow("the root class") << "ZR::VOM::Object"s;
}

void tst_LinkTracking::removedRuleLeavesWhatAnotherCovers()
{
    QFETCH(std::string, other);
    for (int kind : linkKinds) {
        for (bool out : {true, false}) {
            LinkScene scene;
            const RefT<VOM::Object> s = makeThing<Special>("s");
            VOM::Field &field = addLinkField(s, "f", kind, scene.pick("b"));
            scene.addRule(out, "Special");
            scene.addRule(out, other.c_str());
            scene.view.add({s}, false);
            scene.view.setVisible({s}, true);
            const std::string expected = linksAlong(out, "s>b");
            QCOMPARE(scene.links(), expected);
            const Asked asked = askedBy(scene.view, [&] { scene.removeRule(out, "Special"); });
            QCOMPARE(scene.links(), expected);
            QVERIFY(!asked.repaint && !asked.bounds);
            // It is still watched.
            storeLinks(field, 0, 1, scene.pick("c"));
            QCOMPARE(scene.links(), linksAlong(out, "s>c"));
            scene.removeRule(out, other.c_str());
            QCOMPARE(scene.links(), ""s);
        }
    }
}

void tst_LinkTracking::fieldUnderTwoRulesCountsOnce_data()
{
    removedRuleTakesItsLinks_data();
}

void tst_LinkTracking::fieldUnderTwoRulesCountsOnce()
{
    QFETCH(int, kind);
    for (bool out : {true, false}) {
        LinkScene scene;
        VOM::Field &field = addLinkField(scene['a'], "f", kind, scene.pick("b"));
        scene.addRule(out, "Thing");
        scene.addRule(out, "");
        scene.addRule(out, "ZR::VOM::Object");
        QCOMPARE(scene.links(), linksAlong(out, "a>b"));
        storeLinks(field, 0, 1, scene.pick("c"));
        QCOMPARE(scene.links(), linksAlong(out, "a>c"));
        storeLinks(field, 0, 1, {});
        QCOMPARE(scene.links(), ""s);
    }
}

void tst_LinkTracking::removingUnknownRulesChangesNothing()
{
    LinkScene scene;
    addLinkField(scene['a'], "f", 5, scene.pick("b"));
    scene.addRule(true, "Thing");
    scene.view.setVisible(scene.abcd, true);
    const Asked asked = askedBy(scene.view, [&] {
        scene.removeRule(true, "Thing", "g");
        scene.removeRule(true, "Special", "f");
        scene.removeRule(true, "", "f");
        scene.removeRule(false, "Thing", "f");
    });
    QVERIFY(!asked.repaint && !asked.bounds);
    QCOMPARE(scene.links(), "a>b"s);
    QCOMPARE(scene.view.getOutLinkFields().size(), std::size_t(1));
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
