#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"
#include "support/dump.h"
#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/presentation/ItemLabel.h"

#include <QFontMetrics>
#include <QPixmap>
#include <QTest>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldInt;
using VOM::FieldPtr;
using VOM::FieldString;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

QIcon squareIcon(Qt::GlobalColor color)
{
    QPixmap pixmap(8, 8);
    pixmap.fill(color);
    return QIcon(pixmap);
}

/// A view of one object "a" of class Thing, with the text field "name".
struct Scene {
    Scene()
    {
        view.add({obj}, false);
        view.setFieldName("name");
    }
    Node &node() { return *Access::node(view, obj); }
    QString label() { return node().watch->label; }
    FieldString &name() { return fieldOf<FieldString>(obj, "name"); }
    /// As if it had just been painted.
    void measure() { Access::updateSize(view, node()); }

    RefT<VOM::Object> obj = makeThing("a");
    ObjectGraphView view;
};

} // namespace

class tst_NodeLabels : public QObject {
    Q_OBJECT

private slots:
    void labelFollowsTheSettings_data();
    void labelFollowsTheSettings();
    void equalSettingsTouchNoNode();
    void newSettingsAskForRepaint_data();
    void newSettingsAskForRepaint();
    void tooltipFieldIsOnlyStored();

    void changedNameChangesTheLabel();
    void changedNameOfAHiddenNodeWaits();
    void otherFieldsDoNotTouchTheLabel();
    void oldNameFieldIsNotHeardAnyMore();
    void removedNameFieldGivesWayToTheNextOfItsName();
    void fieldOfAnotherTypeCountsAsNone();
    void fieldAddedToALiveObjectGivesTheName();
    void fieldRemovedFromALiveObjectTakesTheName();
    void removedFieldIsNotHeardAnyMore();
    void renamedNameFieldKeepsFollowing();

    void labelIsMeasuredOncePerChange();
    void emptyLabelHasANarrowBox();
    void labelOfSeveralLines();
    void invalidTextIsShownAllTheSame();
    void enormousLabelsAreCut();
    void labelsAreTranslated();
    void fontChangeMeasuresAgain();

    void iconIsFoundWhenANodeIsMade();
    void newDatabaseLeavesOldIcons();
    void settingADatabaseAsksForRepaint();
    void deathOfTheDatabaseClearsTheReference();
    void replacedDatabaseIsNotWatched();
    void databaseMayOutliveTheView();
    void intermediateNodesHaveNeitherLabelNorIcon();
};

void tst_NodeLabels::labelFollowsTheSettings_data()
{
    QTest::addColumn<std::string>("fieldName");
    QTest::addColumn<bool>("typeName");
    QTest::addColumn<QString>("label");
    QTest::newRow("nothing") << ""s << false << QString();
    QTest::newRow("class") << ""s << true << QString("Thing");
    QTest::newRow("name") << "name"s << false << QString("'a'");
    QTest::newRow("class and name") << "name"s << true << QString("Thing 'a'");
    QTest::newRow("no such field") << "nome"s << true << QString("Thing");
    QTest::newRow("no such field, no class") << "nome"s << false << QString();
}

void tst_NodeLabels::labelFollowsTheSettings()
{
    QFETCH(std::string, fieldName);
    QFETCH(bool, typeName);
    QFETCH(QString, label);
    const Things a = makeThings("a");
    // Set before a node is made, and after.
    ObjectGraphView before, after;
    after.add(a, false);
    for (ObjectGraphView *view : {&before, &after}) {
        view->setFieldName(fieldName);
        view->setTypeName(typeName);
        QCOMPARE(view->getFieldName(), fieldName);
        QCOMPARE(view->isTypeName(), typeName);
    }
    before.add(a, false);
    for (ObjectGraphView *view : {&before, &after}) {
        QCOMPARE(Access::node(*view, a[0])->watch->label, label);
        QCOMPARE(label.toStdString(), getItemLabel(a[0], fieldName, typeName, false));
    }
}

void tst_NodeLabels::equalSettingsTouchNoNode()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    scene.node().watch->label = "marked";
    scene.node().sizeDirty = false;
    const Asked asked = askedBy(scene.view, [&] {
        scene.view.setFieldName("name");
        scene.view.setFieldName(scene.view.getFieldName());
        scene.view.setTypeName(true);
        scene.view.setFieldTooltip("");
    });
    QVERIFY(!asked.repaint && !asked.bounds);
    QCOMPARE(scene.label(), QString("marked"));
    QVERIFY(!scene.node().sizeDirty);
}

void tst_NodeLabels::newSettingsAskForRepaint_data()
{
    QTest::addColumn<bool>("visible");
    QTest::newRow("hidden nodes only") << false;
    QTest::newRow("a visible node") << true;
}

void tst_NodeLabels::newSettingsAskForRepaint()
{
    QFETCH(bool, visible);
    Scene scene;
    scene.view.setVisible({scene.obj}, visible);
    const auto check = [&](auto const &set) {
        scene.measure();
        const Asked asked = askedBy(scene.view, set);
        QVERIFY(asked.repaint);
        // A visible node's new label makes sizes stale; the setter itself doesn't.
        QCOMPARE(asked.bounds, visible);
        QVERIFY(scene.node().sizeDirty);
    };
    check([&] { scene.view.setFieldName("other"); });
    check([&] { scene.view.setTypeName(false); });

    ObjectGraphView empty;
    const Asked asked = askedBy(empty, [&] { empty.setFieldName("name"); });
    QVERIFY(asked.repaint && !asked.bounds);
}

void tst_NodeLabels::tooltipFieldIsOnlyStored()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    const Asked asked = askedBy(scene.view, [&] { scene.view.setFieldTooltip("name"); });
    QCOMPARE(scene.view.getFieldTooltip(), "name"s);
    QVERIFY(!asked.repaint && !asked.bounds);
    QCOMPARE(scene.view.toolTip(), QString());
}

void tst_NodeLabels::changedNameChangesTheLabel()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    scene.measure();
    const Asked asked = askedBy(scene.view, [&] { scene.name().set("b"); });
    QCOMPARE(scene.label(), QString("Thing 'b'"));
    QVERIFY(asked.repaint && asked.bounds);
    QVERIFY(scene.node().sizeDirty);
    scene.name().set("");
    QCOMPARE(scene.label(), QString("Thing ''"));
}

void tst_NodeLabels::changedNameOfAHiddenNodeWaits()
{
    Scene scene;
    scene.measure();
    Asked asked = askedBy(scene.view, [&] { scene.name().set("b"); });
    QCOMPARE(scene.label(), QString("Thing 'b'"));
    QVERIFY(asked.repaint && !asked.bounds);
    // It is measured once it is shown.
    asked = askedBy(scene.view, [&] { scene.view.setVisible({scene.obj}, true); });
    QVERIFY(!scene.node().sizeDirty);
    QVERIFY(asked.bounds);
}

void tst_NodeLabels::otherFieldsDoNotTouchTheLabel()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    scene.measure();
    const Asked asked = askedBy(scene.view, [&] {
        VOM::addField<FieldString>(*scene.obj, "other", "x").set("y");
        VOM::addField<FieldInt>(*scene.obj, "name", 1).set(2);
        VOM::removeField(*scene.obj, *scene.obj->findField("other"));
    });
    QVERIFY(!asked.repaint && !asked.bounds);
    QVERIFY(!scene.node().sizeDirty);
    QCOMPARE(scene.label(), QString("Thing 'a'"));
}

void tst_NodeLabels::oldNameFieldIsNotHeardAnyMore()
{
    Scene scene;
    FieldString &other = VOM::addField<FieldString>(*scene.obj, "other", "x");
    scene.view.setFieldName("other");
    QCOMPARE(scene.label(), QString("Thing 'x'"));
    scene.view.setVisible({scene.obj}, true);
    scene.measure();
    const Asked asked = askedBy(scene.view, [&] { scene.name().set("b"); });
    QVERIFY(!asked.repaint && !asked.bounds);
    QVERIFY(!scene.node().sizeDirty);
    other.set("y");
    QCOMPARE(scene.label(), QString("Thing 'y'"));
    // Nor is it once there is no name at all.
    scene.view.setFieldName("");
    other.set("z");
    QCOMPARE(scene.label(), QString("Thing"));
    scene.view.setFieldName("other");
    QCOMPARE(scene.label(), QString("Thing 'z'"));
}

void tst_NodeLabels::removedNameFieldGivesWayToTheNextOfItsName()
{
    Scene scene;
    FieldString &second = VOM::addField<FieldString>(*scene.obj, "name", "second");
    VOM::removeField(*scene.obj, scene.name());
    QCOMPARE(scene.label(), QString("Thing 'second'"));
    second.set("changed");
    QCOMPARE(scene.label(), QString("Thing 'changed'"));
    VOM::removeField(*scene.obj, second);
    QCOMPARE(scene.label(), QString("Thing"));
}

void tst_NodeLabels::fieldOfAnotherTypeCountsAsNone()
{
    const RefT<VOM::Object> obj(new Thing);
    FieldInt &number = VOM::addField<FieldInt>(*obj, "name", 7);
    ObjectGraphView view;
    view.setFieldName("name");
    view.add({obj}, false);
    QCOMPARE(dumpLabels(view), "Thing=Thing"s);
    VOM::addField<FieldPtr>(*obj, "name");
    number.set(8);
    QCOMPARE(dumpLabels(view), "Thing=Thing"s);
}

void tst_NodeLabels::fieldAddedToALiveObjectGivesTheName()
{
    const RefT<VOM::Object> obj(new Thing);
    ObjectGraphView view;
    view.setFieldName("name");
    view.add({obj}, false);
    view.setVisible({obj}, true);
    Node &node = *Access::node(view, obj);
    QCOMPARE(node.watch->label, QString("Thing"));
    Access::updateSize(view, node);
    FieldString *name = nullptr;
    const Asked asked =
        askedBy(view, [&] { name = &VOM::addField<FieldString>(*obj, "name", "b"); });
    QCOMPARE(node.watch->label, QString("Thing 'b'"));
    QVERIFY(asked.bounds);
    name->set("c");
    QCOMPARE(node.watch->label, QString("Thing 'c'"));
}

void tst_NodeLabels::fieldRemovedFromALiveObjectTakesTheName()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    scene.measure();
    const Asked asked = askedBy(scene.view, [&] { VOM::removeField(*scene.obj, scene.name()); });
    QCOMPARE(scene.label(), QString("Thing"));
    QVERIFY(asked.bounds);
    QVERIFY(scene.node().sizeDirty);
    VOM::addField<FieldString>(*scene.obj, "name", "back");
    QCOMPARE(scene.label(), QString("Thing 'back'"));
}

void tst_NodeLabels::removedFieldIsNotHeardAnyMore()
{
    Scene scene;
    const RefT<FieldString> held(scene.name());
    VOM::removeField(*scene.obj, *held);
    held->set("unheard");
    QCOMPARE(scene.label(), QString("Thing"));
    scene.obj.reset();
    held->set("unheard again");
    QCOMPARE(Access::numNodes(scene.view), std::size_t(0));
}

void tst_NodeLabels::renamedNameFieldKeepsFollowing()
{
    Scene scene;
    // Nothing of the field's is taken anew when only the class name comes or goes.
    scene.view.setTypeName(false);
    QCOMPARE(scene.label(), QString("'a'"));
    scene.name().set("b");
    QCOMPARE(scene.label(), QString("'b'"));
    scene.view.setTypeName(true);
    scene.name().set("c");
    QCOMPARE(scene.label(), QString("Thing 'c'"));
}

void tst_NodeLabels::labelIsMeasuredOncePerChange()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    scene.view.viewport()->grab();
    QVERIFY(!scene.node().sizeDirty);
    const QSize text = QFontMetrics(scene.view.font()).size(0, "Thing 'a'");
    QCOMPARE(QSize(scene.node().textWidth, scene.node().textHeight), text);
    // Not measured again while it isn't dirty.
    scene.node().textWidth = 1000;
    scene.view.add({}, true);
    scene.view.viewport()->grab();
    const int frame = 3 * Access::margin(scene.view) + Access::iconSize(scene.view);
    QCOMPARE(scene.node().width, frame + 1000);
    scene.name().set("b");
    scene.view.viewport()->grab();
    QVERIFY(scene.node().width < frame + 1000);
    QVERIFY(!scene.node().sizeDirty);
}

void tst_NodeLabels::emptyLabelHasANarrowBox()
{
    Scene scene;
    scene.view.setFieldName("");
    scene.view.setTypeName(false);
    scene.measure();
    QCOMPARE(scene.node().width, Access::iconSize(scene.view) + 3 * Access::margin(scene.view));
}

void tst_NodeLabels::labelOfSeveralLines()
{
    Scene scene;
    scene.name().set("one\ntwo\nthree\nfour");
    scene.measure();
    const QSize text = QFontMetrics(scene.view.font()).size(0, scene.label());
    QVERIFY(text.height() > Access::iconSize(scene.view));
    QCOMPARE(scene.node().height,
             text.height() + 2 * (Access::iconSize(scene.view) + Access::margin(scene.view)));
}

void tst_NodeLabels::invalidTextIsShownAllTheSame()
{
    Scene scene;
    for (std::string const &text :
         {"\xff\xfe"s, "\xc3"s, "a\x80z"s, "\xed\xa0\x80"s, "\xf8\x88\x80\x80\x80"s, "a\0b"s}) {
        scene.name().set(text);
        QVERIFY(scene.label().startsWith("Thing '"));
        scene.view.setVisible({scene.obj}, true);
        scene.view.viewport()->grab();
        QVERIFY(scene.node().width > 0);
    }
    scene.name().set("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80");
    QCOMPARE(scene.label(), QString("Thing 'ä€😀'"));
}

void tst_NodeLabels::enormousLabelsAreCut()
{
    Scene scene;
    scene.view.setTypeName(false);
    scene.name().set(std::string(65534, 'x'));
    QCOMPARE(scene.label().size(), 65536);
    QVERIFY(scene.label().endsWith("x'"));
    scene.name().set(std::string(65535, 'x'));
    QCOMPARE(scene.label().size(), 65536);
    QVERIFY(scene.label().endsWith("x"));
    // No half of a character is left: the 65,536th would be the first half of one.
    std::string wide(65534, 'x');
    scene.name().set(wide + "\xf0\x9f\x98\x80");
    QCOMPARE(scene.label().size(), 65535);
    QVERIFY(scene.label().endsWith("x"));
    scene.measure();
    QVERIFY(scene.node().width > 65535);
}

void tst_NodeLabels::labelsAreTranslated()
{
    setTextTranslation([](char const *text) -> char const * {
        return text == std::string(_ObjectItemLabelType_1_Name_2) ? "%2 (%1)" : nullptr;
    });
    {
        Scene scene;
        QCOMPARE(scene.label(), QString("a (Thing)"));
    }
    setTextTranslation({});
}

void tst_NodeLabels::fontChangeMeasuresAgain()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    scene.view.viewport()->grab();
    const int before = scene.node().width;
    QFont font = scene.view.font();
    font.setPixelSize(60);
    const Asked asked = askedBy(scene.view, [&] { scene.view.setFont(font); });
    QVERIFY(asked.repaint && asked.bounds);
    scene.view.viewport()->grab();
    QVERIFY(scene.node().width > before);
}

void tst_NodeLabels::iconIsFoundWhenANodeIsMade()
{
    const RefT<ObjectClassIconDB> db(new ObjectClassIconDB);
    db->add("Special", squareIcon(Qt::red));
    ObjectGraphView view;
    view.setObjIconDB(db);
    QCOMPARE(view.getObjIconDB(), db);
    const RefT<VOM::Object> special = makeThing<Special>("s");
    const RefT<VOM::Object> plain = makeThing<Thing>("t");
    view.add({special, plain}, false);
    QCOMPARE(Access::node(view, special)->watch->icon.cacheKey(), db->find(special).cacheKey());
    QVERIFY(Access::node(view, plain)->watch->icon.isNull());
}

void tst_NodeLabels::newDatabaseLeavesOldIcons()
{
    const RefT<ObjectClassIconDB> red(new ObjectClassIconDB);
    red->add("Thing", squareIcon(Qt::red));
    const RefT<ObjectClassIconDB> blue(new ObjectClassIconDB);
    blue->add("Thing", squareIcon(Qt::blue));
    const Things abc = makeThings("abc");
    const auto iconOf = [](ObjectGraphView &view, RefT<VOM::Object> const &obj) {
        return Access::node(view, obj)->watch->icon.cacheKey();
    };
    ObjectGraphView view;
    view.add({abc[0]}, false);
    view.setObjIconDB(red);
    view.add({abc[0], abc[1]}, false);
    view.setObjIconDB(blue);
    view.add(abc, false);
    QVERIFY(Access::node(view, abc[0])->watch->icon.isNull());
    QCOMPARE(iconOf(view, abc[1]), red->find(abc[1]).cacheKey());
    QCOMPARE(iconOf(view, abc[2]), blue->find(abc[2]).cacheKey());
    view.setObjIconDB({});
    QCOMPARE(iconOf(view, abc[1]), red->find(abc[1]).cacheKey());
}

void tst_NodeLabels::settingADatabaseAsksForRepaint()
{
    Scene scene;
    scene.view.setVisible({scene.obj}, true);
    for (RefT<ObjectIconDB> const &db : {RefT<ObjectIconDB>(new ObjectIconDB), {}, {}}) {
        const Asked asked = askedBy(scene.view, [&] { scene.view.setObjIconDB(db); });
        QVERIFY(asked.repaint && !asked.bounds);
        QCOMPARE(scene.view.getObjIconDB(), db);
    }
    scene.view.setObjIconDB(new ObjectIconDB);
    scene.view.setObjIconDB(scene.view.getObjIconDB());
    QVERIFY(scene.view.getObjIconDB());
}

void tst_NodeLabels::deathOfTheDatabaseClearsTheReference()
{
    ObjectGraphView view;
    bool repainted = false;
    {
        // A reference to it owns nothing: it dies by itself.
        ObjectClassIconDB db;
        view.setObjIconDB(RefT<ObjectIconDB>(db));
        QVERIFY(view.getObjIconDB());
        view.setRefresh(false);
        Access::refreshPending(view) = false;
    }
    repainted = Access::refreshPending(view);
    QVERIFY(!view.getObjIconDB());
    QVERIFY(repainted);
    const Things a = makeThings("a");
    view.add(a, false);
    QVERIFY(Access::node(view, a[0])->watch->icon.isNull());
}

void tst_NodeLabels::replacedDatabaseIsNotWatched()
{
    ObjectGraphView view;
    const RefT<ObjectIconDB> second(new ObjectIconDB);
    {
        ObjectIconDB first;
        view.setObjIconDB(RefT<ObjectIconDB>(first));
        view.setObjIconDB(second);
    }
    QCOMPARE(view.getObjIconDB(), second);
}

void tst_NodeLabels::databaseMayOutliveTheView()
{
    ObjectIconDB db;
    {
        ObjectGraphView view;
        view.setObjIconDB(RefT<ObjectIconDB>(db));
    }
    SigVoidData data;
    db.sigDelete.emitCatching(data, "test");
}

void tst_NodeLabels::intermediateNodesHaveNeitherLabelNorIcon()
{
    ObjectGraphView view;
    view.setFieldName("name");
    view.setObjIconDB(new ObjectIconDB);
    const Asked asked = askedBy(view, [&] {
        const RefT<Node> node(new Node(view, {}));
        QVERIFY(!node->watch);
        Access::updateSize(view, *node);
        QCOMPARE(node->width, 0);
        QVERIFY(!node->sizeDirty);
    });
    // Visible from birth, and not measured yet.
    QVERIFY(asked.bounds && !asked.repaint);
}

QTEST_MAIN(tst_NodeLabels)
#include "tst_NodeLabels.moc"
