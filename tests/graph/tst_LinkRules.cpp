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

// Which fields link, by what the host names.

namespace {

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

class tst_LinkRules : public QObject {
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

    void removedRuleTakesItsLinks_data();
    void removedRuleTakesItsLinks();
    void removedRuleLeavesWhatAnotherCovers_data();
    void removedRuleLeavesWhatAnotherCovers();
    void fieldUnderTwoRulesCountsOnce_data();
    void fieldUnderTwoRulesCountsOnce();
    void fieldUnderTwoRulesGoesWithTheLastOne();
    void removingUnknownRulesChangesNothing();
};

void tst_LinkRules::rulesNameFields_data()
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

void tst_LinkRules::rulesNameFields()
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

void tst_LinkRules::onlyFourTypesOfFieldsLink()
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

void tst_LinkRules::nullAndOwnerlessFieldsAreNoLinkFields()
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

void tst_LinkRules::outRulesAndInRulesAreApart()
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

void tst_LinkRules::emptyFieldNameChangesNothing()
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

void tst_LinkRules::sameRuleAgainTouchesNoNode()
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

void tst_LinkRules::rulesForWhatDoesNotExistAreStored()
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

void tst_LinkRules::ruleIsAppliedByClass_data()
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

void tst_LinkRules::ruleIsAppliedByClass()
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

void tst_LinkRules::removedRuleTakesItsLinks_data()
{
    QTest::addColumn<int>("kind");
    for (int kind : linkKinds)
        QTest::addRow("type %d", kind) << kind;
}

void tst_LinkRules::removedRuleTakesItsLinks()
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

void tst_LinkRules::removedRuleLeavesWhatAnotherCovers_data()
{
    QTest::addColumn<std::string>("other");
    QTest::newRow("any class") << ""s;
    QTest::newRow("the base class") << "Thing"s;
    QTest::newRow("the root class") << "ZR::VOM::Object"s;
}

void tst_LinkRules::removedRuleLeavesWhatAnotherCovers()
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

void tst_LinkRules::fieldUnderTwoRulesCountsOnce_data()
{
    removedRuleTakesItsLinks_data();
}

void tst_LinkRules::fieldUnderTwoRulesCountsOnce()
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

void tst_LinkRules::fieldUnderTwoRulesGoesWithTheLastOne()
{
    for (bool out : {true, false}) {
        LinkScene scene;
        VOM::Field &field = addLinkField(scene['a'], "f", 5, scene.pick("b"));
        scene.addRule(out, "Thing");
        scene.addRule(out, "");
        scene.removeRule(out, "Thing");
        QCOMPARE(scene.links(), linksAlong(out, "a>b"));
        scene.removeRule(out, "");
        QCOMPARE(scene.links(), ""s);
        storeLinks(field, 0, 1, scene.pick("c"));
        QCOMPARE(scene.links(), ""s);
    }
}

void tst_LinkRules::removingUnknownRulesChangesNothing()
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

QTEST_MAIN(tst_LinkRules)
#include "tst_LinkRules.moc"
