#include "trees/v1/ModelScene.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"

#include <QPixmap>

using namespace model_test;

namespace {

/// An icon for every object, and a count of the questions.
class OneIcon : public GUI::ObjectIconDB {
public:
    QIcon find(RefT<Object> const &) const override
    {
        ++numAsked;
        QPixmap pixmap(4, 4);
        pixmap.fill(Qt::red);
        return pixmap;
    }
    mutable int numAsked = 0;
};

} // namespace

/// What a host can set, and what follows.
class tst_ObjectTreeModelSettings : public QObject {
    Q_OBJECT

private slots:
    void beginsWithDefaults();
    void keepsExporterAndImporter();
    void labelSettersLayOutOnChangeOnly();
    void settersStoreBetweenTheSignals();
    void iconSetterAlwaysLaysOut();
    void deletedIconDatabaseIsDropped();
    void dropActionsAreTold();
    void mimeTypesAreNeverTold();
    void oldRowsWatchTheOldNameField();

    void acceptsLinkFieldsOnly();
    void acceptsByFilter_data();
    void acceptsByFilter();
    void acceptsNoDeadField();
    void filterOfOthersLeavesNoChildren();
    void filterChangesUpdateAllRows();
    void filterThatStaysUpdatesNothing();
    void clearedFilterUpdatesNoRow();
};

void tst_ObjectTreeModelSettings::beginsWithDefaults()
{
    const ObjectTreeModel model;
    QVERIFY(!model.getXmlExporter());
    QVERIFY(!model.getXmlImporter());
    QVERIFY(!model.getObjIconDB());
    QCOMPARE(model.getFieldName(), std::string());
    QVERIFY(model.isTypeName());
    QCOMPARE(model.getFieldTooltip(), std::string());
    QVERIFY(!model.isHideFields());
    QCOMPARE(int(model.getDropActions()), 7);
    QCOMPARE(model.rowCount(model.index(0, 0)), 0);
}

void tst_ObjectTreeModelSettings::keepsExporterAndImporter()
{
    const RefT<Exporter> exporter(new XmlExporter);
    const ObjectTreeModel model(exporter);
    QVERIFY(model.getXmlExporter() == exporter);
    QVERIFY(!model.getXmlImporter());
    const RefT<Xml::Importer> importer(new XmlImporter(RefT<ClassRegistry>(new ClassRegistry)));
    const ObjectTreeModel other({}, importer);
    QVERIFY(other.getXmlImporter() == importer);
    QVERIFY(!other.getXmlExporter());
}

void tst_ObjectTreeModelSettings::labelSettersLayOutOnChangeOnly()
{
    ObjectTreeModel model;
    Told told(model);
    model.setFieldName("name");
    QCOMPARE(told.take(), std::string("layout, laid out"));
    model.setFieldName("name");
    QCOMPARE(told.take(), std::string());
    model.setFieldTooltip("tip");
    QCOMPARE(told.take(), std::string("layout, laid out"));
    model.setFieldTooltip("tip");
    QCOMPARE(told.take(), std::string());
    model.setTypeName(false);
    QCOMPARE(told.take(), std::string("layout, laid out"));
    model.setTypeName(false);
    QCOMPARE(told.take(), std::string());
    QCOMPARE(model.getFieldName(), std::string("name"));
    QCOMPARE(model.getFieldTooltip(), std::string("tip"));
    QVERIFY(!model.isTypeName());
}

void tst_ObjectTreeModelSettings::settersStoreBetweenTheSignals()
{
    ObjectTreeModel model;
    std::string told;
    const auto note = [&] {
        told += model.getFieldName() + '|' + model.getFieldTooltip() + '|' +
                (model.isTypeName() ? "type" : "") + '|' + (model.getObjIconDB() ? "icons" : "") +
                ' ';
    };
    QObject context;
    QObject::connect(&model, &QAbstractItemModel::layoutAboutToBeChanged, &context, note);
    QObject::connect(&model, &QAbstractItemModel::layoutChanged, &context, note);
    const auto take = [&] { return std::exchange(told, {}); };
    model.setFieldName("n");
    QCOMPARE(take(), std::string("||type| n||type| "));
    model.setFieldTooltip("t");
    QCOMPARE(take(), std::string("n||type| n|t|type| "));
    model.setTypeName(false);
    QCOMPARE(take(), std::string("n|t|type| n|t|| "));
    model.setObjIconDB(RefT<OneIcon>(new OneIcon));
    QCOMPARE(take(), std::string("n|t|| n|t||icons "));
}

void tst_ObjectTreeModelSettings::iconSetterAlwaysLaysOut()
{
    Scene scene;
    scene.show();
    const RefT<OneIcon> db(new OneIcon);
    Told told(*scene.model);
    for (int i = 0; i < 2; ++i) {
        scene.model->setObjIconDB(db);
        QCOMPARE(told.take(), std::string("layout, laid out"));
    }
    QVERIFY(scene.model->getObjIconDB() == db);
    QVERIFY(!scene.at({0}).data(Qt::DecorationRole).value<QIcon>().isNull());
    QCOMPARE(db->numAsked, 1);
}

void tst_ObjectTreeModelSettings::deletedIconDatabaseIsDropped()
{
    Scene scene;
    scene.show();
    Told told(*scene.model);
    {
        // No reference owns it.
        OneIcon db;
        scene.model->setObjIconDB(RefT<GUI::ObjectIconDB>(db));
        told.take();
    }
    QCOMPARE(told.take(), std::string("layout, laid out"));
    QVERIFY(!scene.model->getObjIconDB());
    QVERIFY(!scene.at({0}).data(Qt::DecorationRole).isValid());

    // The one before isn't listened to any more.
    RefT<OneIcon> first(new OneIcon);
    const RefT<OneIcon> second(new OneIcon);
    scene.model->setObjIconDB(first);
    scene.model->setObjIconDB(second);
    first.reset();
    QVERIFY(scene.model->getObjIconDB() == second);
}

void tst_ObjectTreeModelSettings::dropActionsAreTold()
{
    ObjectTreeModel model;
    model.setDropActions(Qt::MoveAction);
    QCOMPARE(int(model.getDropActions()), int(Qt::MoveAction));
    QCOMPARE(int(model.supportedDropActions()), int(Qt::MoveAction));
    QCOMPARE(int(model.supportedDragActions()), 7);
}

void tst_ObjectTreeModelSettings::mimeTypesAreNeverTold()
{
    ObjectTreeModel model;
    model.addMimeType("text/plain");
    QVERIFY(model.mimeTypes().isEmpty());
    model.removeMimeType("text/plain");
    model.removeMimeType("text/html");
    model.clearMimeTypes();
    QVERIFY(model.mimeTypes().isEmpty());
}

void tst_ObjectTreeModelSettings::oldRowsWatchTheOldNameField()
{
    Scene scene;
    FieldString &title = addField<FieldString>(*scene.a(), "title", "A");
    scene.show();
    scene.model->setFieldName("title");
    QCOMPARE(textOf(scene.at({0})), std::string("'A'"));
    Told told(*scene.model);
    title.set("B");
    QCOMPARE(told.take(), std::string());
    QCOMPARE(textOf(scene.at({0})), std::string("'B'"));
    fieldOf<FieldString>(scene.a(), "name").set("x");
    QCOMPARE(told.take(), std::string("changed 'B'"));
}

void tst_ObjectTreeModelSettings::acceptsLinkFieldsOnly()
{
    Scene scene;
    for (char const *name : {"part", "next", "all", "own"})
        QVERIFY2(scene.model->isAccepted(PtrT<Field>(scene.field(name))), name);
    for (Field *field : {static_cast<Field *>(&addField<FieldInt>(*scene.a(), "int", 1)),
                         static_cast<Field *>(&addField<FieldReal>(*scene.a(), "real", 1.0)),
                         &scene.field("name")})
        QVERIFY(!scene.model->isAccepted(PtrT<Field>(*field)));
    scene.model->addAcceptedField("", "name");
    QVERIFY(!scene.model->isAccepted(PtrT<Field>(scene.field("name"))));
}

void tst_ObjectTreeModelSettings::acceptsByFilter_data()
{
    QTest::addColumn<std::string>("className");
    QTest::addColumn<std::string>("fieldName");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("the class") << std::string("Special") << std::string("link") << true;
    QTest::newRow("its base") << std::string("Thing") << std::string("link") << true;
    QTest::newRow("the base of all")
        << std::string("ZR::VOM::Object") << std::string("link") << true;
    QTest::newRow("every class") << std::string() << std::string("link") << true;
    QTest::newRow("another class") << std::string("Stranger") << std::string("link") << false;
    QTest::newRow("another field") << std::string("Special") << std::string("name") << false;
    QTest::newRow("every class, another field") << std::string() << std::string("name") << false;
}

void tst_ObjectTreeModelSettings::acceptsByFilter()
{
    QFETCH(std::string, className);
    QFETCH(std::string, fieldName);
    const RefT<Object> special = makeThing<Special>("s");
    FieldPtr &link = addField<FieldPtr>(*special, "link");
    ObjectTreeModel model;
    model.addAcceptedField(className, fieldName);
    QTEST(model.isAccepted(PtrT<Field>(link)), "accepted");
    model.removeAcceptedField(className, fieldName);
    QVERIFY(model.isAccepted(PtrT<Field>(link)));
}

void tst_ObjectTreeModelSettings::acceptsNoDeadField()
{
    const ObjectTreeModel model;
    QVERIFY(!model.isAccepted({}));
    PtrT<Field> link;
    {
        const RefT<Object> thing = makeThing("t");
        link = addField<FieldPtr>(*thing, "link");
        QVERIFY(model.isAccepted(link));
    }
    QVERIFY(!model.isAccepted(link));
}

void tst_ObjectTreeModelSettings::filterOfOthersLeavesNoChildren()
{
    Scene scene;
    scene.model->addAcceptedField("Stranger", "own");
    scene.show();
    QVERIFY(!scene.model->hasChildren(scene.at({0})));
}

void tst_ObjectTreeModelSettings::filterChangesUpdateAllRows()
{
    Scene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    scene.model->addAcceptedField("Thing", "own");
    QCOMPARE(
        told.take(),
        std::string("move 'a' 3 to 0, changed all, changed next, changed part, remove 'a' 1-3"));
    QCOMPARE(scene.dump(), std::string("'a'+\n.own+\n"));
    scene.model->addAcceptedField("", "next");
    QCOMPARE(told.take(), std::string("insert 'a' 0, changed next"));
    scene.model->removeAcceptedField("Thing", "own");
    QCOMPARE(told.take(), std::string("changed own, remove 'a' 1"));
    scene.model->removeAcceptedField("", "next");
    QCOMPARE(scene.dump(), std::string("'a'+\n.part+\n.next+\n.all+\n.own+\n"));
}

void tst_ObjectTreeModelSettings::filterThatStaysUpdatesNothing()
{
    Scene scene;
    scene.showFetched(2);
    scene.model->addAcceptedField("Thing", "own");
    scene.model->clearAcceptedFields();
    scene.model->addAcceptedField("Thing", "own");
    Told told(*scene.model);
    scene.model->clearAcceptedFields();
    scene.model->removeAcceptedField("Thing", "own");
    scene.model->addAcceptedField("Thing", "own");
    scene.model->addAcceptedField("Thing", "own");
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelSettings::clearedFilterUpdatesNoRow()
{
    Scene scene;
    scene.model->addAcceptedField("Thing", "own");
    scene.showFetched(2);
    Told told(*scene.model);
    scene.model->clearAcceptedFields();
    scene.model->update();
    QCOMPARE(told.take(), std::string());
    QCOMPARE(scene.dump(), std::string("'a'+\n.own+\n"));
    scene.model->fetchMore(scene.at({0}));
    QCOMPARE(scene.dump(), std::string("'a'+\n.part+\n.next+\n.all+\n.own+\n"));
}

QTEST_MAIN(tst_ObjectTreeModelSettings)
#include "tst_ObjectTreeModelSettings.moc"
