#include "trees/TreeScene.h"
#include "zrVOMGUI/foundation/util/text.h"

using namespace tree_test;

namespace {

/// Counts what is asked of the rows of a view: those that are made.
struct Born {
    explicit Born(ObjectTreeView &view)
    {
        view.sigRow.connect([this](auto const &) { ++num; });
    }
    int take() { return std::exchange(num, 0); }
    int num = 0;
};

} // namespace

/// What rows show, and how they follow the model.
class tst_ObjectTreeRows : public QObject {
    Q_OBJECT

private slots:
    void objectsAndFieldsAlternate();
    void closedRowsMakeNoChildren();
    void emptyLinkShowsAVoidRow();
    void emptyListHasNoChild();
    void nullItemIsAVoidRow();
    void valueThatChangesIsANewRow();
    void equalValueKeepsItsRow();
    void movedValueKeepsItsRow();
    void sameObjectTwiceHasTwoRows();
    void deadValueLeavesAVoidRow();
    void deadTopObjectLeaves();
    void lostObjectUnderASingleFieldIsReplaced();
    void lostRowsGiveNoPath();
    void newFieldAppearsWithANameField();
    void newFieldIsMissedWithoutANameField();
    void removedFieldLeaves();
    void labelFollowsTheNameField();
    void nameFieldThatComesIsFollowed();
    void removedNameFieldIsStillListenedTo();
    void changeOfTheNameFieldForgetsTheDeath();
    void hiddenFieldsLetValuesTakeTheirPlace();
    void hiddenFieldsAreBuiltInAClosedRow();
    void hiddenFieldsShowAgain();
    void fieldAsATopRowShowsItsValues();
    void pathsOfAllKindsOfRows();
    void pathFindsItsRow();
    void pathOfSeveralStepsFindsItsRow();
    void pathsOfSingleLinksAndOfTheTop();
    void rowsMadeOnTheWayStayAndOpenOnesStayOpen();
    void voidLabelIsTranslated();
    void pathOpensOnTheWayAndKeepsOpenOnWish();
    void manyChangesAreOneRebuild();
    void fieldTextStays();
    void iconsComeFromTheDatabase();
    void iconDatabaseThatWasReplacedMayDie();
};

void tst_ObjectTreeRows::objectsAndFieldsAlternate()
{
    Scene scene;
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a'"));
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
    for (char const *name : {"part", "next", "all", "own"})
        scene.open(scene.path(name));
    QCOMPARE(scene.dump(),
             std::string("'a' .part ..'b' .next ..'c' .all ..'b' ..'c' .own ..'d' ..'e'"));
}

void tst_ObjectTreeRows::closedRowsMakeNoChildren()
{
    Scene scene;
    Born born(*scene.view);
    scene.show();
    scene.dump();
    QCOMPARE(born.take(), 1);
    QCOMPARE(scene.row(scene.path())->getNumChildRows(), std::size_t(4));
    scene.all().replace(0, 0, {scene.d()});
    scene.dump();
    QCOMPARE(born.take(), 0);
    scene.open(scene.path());
    scene.dump();
    QCOMPARE(born.take(), 4);
    QCOMPARE(scene.row(scene.path("all"))->getNumChildRows(), std::size_t(3));
    QCOMPARE(scene.row(scene.path("part"))->getNumChildRows(), std::size_t(1));
}

void tst_ObjectTreeRows::emptyLinkShowsAVoidRow()
{
    Scene scene;
    scene.show();
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    scene.all().replace(0, 1, {PtrT<Object>()});
    scene.open(scene.path("next"));
    scene.open(scene.path("all"));
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' .part .next ..void .all ..void ..'c' .own"));
}

void tst_ObjectTreeRows::emptyListHasNoChild()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("all"));
    scene.all().replace(0, 2, {});
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
    QCOMPARE(scene.row(scene.path("all"))->getNumChildRows(), std::size_t(0));
}

void tst_ObjectTreeRows::nullItemIsAVoidRow()
{
    Scene scene;
    scene.view->addRow(RefT<Object>(), 0);
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a' void"));
    QVERIFY(!scene.view->getRowObj(scene.view->findRow({5, scene.view->getRowHeight() + 3})));
}

void tst_ObjectTreeRows::valueThatChangesIsANewRow()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    const RowHandle before = scene.row(scene.path("next", 0));
    fieldOf<FieldPtr>(scene.a(), "next").set(scene.d());
    QCOMPARE(scene.dump(), std::string("'a' .part .next ..'d' .all .own"));
    QVERIFY(scene.row(scene.path("next", 0)) != before);
}

void tst_ObjectTreeRows::equalValueKeepsItsRow()
{
    Scene scene;
    scene.show();
    const RowHandle before = scene.row(scene.path("next", 0));
    fieldOf<FieldPtr>(scene.a(), "next").set(scene.c());
    QCOMPARE(scene.row(scene.path("next", 0)), before);
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    const RowHandle none = scene.row(scene.path("next", 0));
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    QCOMPARE(scene.row(scene.path("next", 0)), none);
}

void tst_ObjectTreeRows::movedValueKeepsItsRow()
{
    Scene scene;
    scene.show();
    const RowHandle d = scene.row(scene.path("own", 0)), e = scene.row(scene.path("own", 1));
    d->setOpen(true);
    scene.own().replace(0, 2, {scene.e(), scene.d()});
    QCOMPARE(scene.row(scene.path("own", 0)), e);
    QCOMPARE(scene.row(scene.path("own", 1)), d);
    QVERIFY(d->isOpen());
}

void tst_ObjectTreeRows::sameObjectTwiceHasTwoRows()
{
    Scene scene;
    scene.show();
    scene.all().replace(0, 2, {scene.b(), scene.b()});
    const RowHandle first = scene.row(scene.path("all", 0)),
                    second = scene.row(scene.path("all", 1));
    QVERIFY(first != second);
    first->setOpen(true);
    scene.all().replace(1, 1, {});
    QCOMPARE(scene.row(scene.path("all", 0)), first);
    QVERIFY(first->isOpen());
    // First goes to first, whichever of them left.
    scene.all().replace(0, 1, {scene.b(), scene.b()});
    const RowHandle newSecond = scene.row(scene.path("all", 1));
    QVERIFY(!newSecond->isOpen());
    scene.all().replace(0, 1, {});
    QCOMPARE(scene.row(scene.path("all", 0)), first);
    QVERIFY(first->isOpen());
}

void tst_ObjectTreeRows::deadValueLeavesAVoidRow()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    scene.open(scene.path("all"));
    scene.dump();
    scene.things[2] = {};
    QCOMPARE(scene.dump(), std::string("'a' .part .next ..void .all ..'b' ..void .own"));
}

void tst_ObjectTreeRows::deadTopObjectLeaves()
{
    Scene scene;
    RefT<Object> other = makeThing("x");
    scene.view->addRow(other, 0);
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a' 'x'"));
    other = {};
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeRows::lostObjectUnderASingleFieldIsReplaced()
{
    Scene scene;
    scene.show();
    const RowHandle before = scene.row(scene.path("next", 0));
    scene.things[2] = {};
    scene.dump();
    QVERIFY(scene.row(scene.path("next", 0)) != before);
    QVERIFY(!scene.view->getRowObj(before));
}

void tst_ObjectTreeRows::lostRowsGiveNoPath()
{
    Scene scene;
    scene.show();
    const RowHandle c = scene.row(scene.path("next", 0));
    QCOMPARE(scene.view->getRowPath(c).getObj().get(), scene.c().get());
    scene.things[2] = {};
    QVERIFY(!scene.view->getRowPath(c).getObj());
    QCOMPARE(scene.view->getRowPath(c).getNum(), std::size_t(0));
    QCOMPARE(scene.view->getRowPath({}).getNum(), std::size_t(0));
}

void tst_ObjectTreeRows::newFieldAppearsWithANameField()
{
    Scene scene;
    scene.view->addRow(scene.e(), 0);
    QCOMPARE(scene.row(Path(PtrT<Object>(scene.e())))->getNumChildRows(), std::size_t(0));
    addField<FieldPtr>(*scene.e(), "new");
    scene.dump();
    QCOMPARE(scene.row(Path(PtrT<Object>(scene.e())))->getNumChildRows(), std::size_t(1));
}

/// KEPT: without a name field nobody watches fields come and go.
void tst_ObjectTreeRows::newFieldIsMissedWithoutANameField()
{
    Scene scene;
    scene.view->setNameField("");
    scene.view->addRow(scene.e(), 0);
    const RowHandle row = scene.row(Path(PtrT<Object>(scene.e())));
    scene.dump();
    addField<FieldPtr>(*scene.e(), "new");
    scene.dump();
    QCOMPARE(row->getNumChildRows(), std::size_t(0));
    // Until something else tells the row.
    scene.view->addAcceptedField("", "new");
    scene.dump();
    QCOMPARE(row->getNumChildRows(), std::size_t(1));
}

void tst_ObjectTreeRows::removedFieldLeaves()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    removeField(*scene.a(), scene.field("next"));
    QCOMPARE(scene.dump(), std::string("'a' .part .all .own"));
}

void tst_ObjectTreeRows::labelFollowsTheNameField()
{
    Scene scene;
    scene.show();
    scene.dump();
    fieldOf<FieldString>(scene.a(), "name").set("new");
    QCOMPARE(scene.dump(), std::string("'new'"));
    scene.view->setTypeName(true);
    QCOMPARE(scene.dump(), std::string("Thing 'new'"));
}

void tst_ObjectTreeRows::nameFieldThatComesIsFollowed()
{
    Scene scene;
    scene.view->setNameField("title");
    scene.show();
    scene.dump();
    FieldString &title = addField<FieldString>(*scene.a(), "title", "one");
    QCOMPARE(scene.dump(), std::string("'one'"));
    title.set("two");
    QCOMPARE(scene.dump(), std::string("'two'"));
}

/// KEPT: the look-up by name still finds a field that is just being removed.
void tst_ObjectTreeRows::removedNameFieldIsStillListenedTo()
{
    Scene scene;
    scene.show();
    scene.dump();
    const RefT<Field> name(scene.a()->findField("name"));
    removeField(*scene.a(), *name);
    QCOMPARE(scene.dump(), std::string(""));
    auto &held = *ZR::cast<FieldString>(name);
    QVERIFY(held.sigSet.hasSlots());
    // The label is asked for again, and finds no such field on the object.
    held.set("ghost");
    QCOMPARE(scene.dump(), std::string(""));
}

/// KEPT: a row no longer counts as lost after a change of the name field.
void tst_ObjectTreeRows::changeOfTheNameFieldForgetsTheDeath()
{
    Scene scene;
    scene.show();
    const RowHandle c = scene.row(scene.path("next", 0));
    scene.view->setNameField("other");
    scene.things[2] = {};
    // It isn't lost, and gives the path to where it stands.
    QCOMPARE(scene.view->getRowPath(c).getNum(), std::size_t(1));
    QVERIFY(!scene.view->getRowObj(c));
}

void tst_ObjectTreeRows::hiddenFieldsLetValuesTakeTheirPlace()
{
    Scene scene;
    scene.view->setHideFields(true);
    scene.show();
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' ..'b' ..'c' ..'b' ..'c' ..'d' ..'e'"));
}

/// Else nobody would know whether it has anything to open.
void tst_ObjectTreeRows::hiddenFieldsAreBuiltInAClosedRow()
{
    Scene scene;
    scene.view->setHideFields(true);
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a'"));
    const RowHandle row = scene.row(scene.path());
    QVERIFY(!row->isOpen());
    QCOMPARE(row->getNumMadeChildRows(), std::size_t(4));
    for (std::size_t i = 0; i < 4; ++i)
        QVERIFY(row->getChildRow(i)->getNumMadeChildRows() > 0);
}

void tst_ObjectTreeRows::hiddenFieldsShowAgain()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.view->setHideFields(true);
    scene.dump();
    scene.view->setHideFields(false);
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
}

void tst_ObjectTreeRows::fieldAsATopRowShowsItsValues()
{
    Scene scene;
    QCOMPARE(scene.view->addRow(scene.own(), 7), std::size_t(0));
    const RowHandle row = scene.view->findRow({5, 3});
    QCOMPARE(scene.view->getRowField(row), static_cast<Field *>(&scene.own()));
    row->setOpen(true);
    QCOMPARE(scene.dump(), std::string("own .'d' .'e'"));
    const Path path = scene.view->getRowPath(row);
    QCOMPARE(path.getType(), Path::Field);
    QCOMPARE(path.getRoot().get(), scene.a().get());
}

void tst_ObjectTreeRows::pathsOfAllKindsOfRows()
{
    Scene scene;
    scene.show();
    const auto type = [&](Path const &to) {
        return scene.view->getRowPath(scene.row(to)).getType();
    };
    QCOMPARE(type(scene.path()), Path::Object);
    QCOMPARE(type(scene.path("all")), Path::Field);
    QCOMPARE(type(scene.path("all", 1)), Path::Value);
    const Path value = scene.view->getRowPath(scene.row(scene.path("all", 1)));
    QCOMPARE(value.getNum(), std::size_t(1));
    QCOMPARE(value.getLast().index, std::size_t(1));
    QCOMPARE(value.getObj().get(), scene.c().get());
    scene.all().replace(0, 1, {PtrT<Object>()});
    const Path none = scene.view->getRowPath(scene.row(scene.path("all", 0)));
    QCOMPARE(none.getType(), Path::Value);
    QVERIFY(!none.getObj());
}

void tst_ObjectTreeRows::pathFindsItsRow()
{
    Scene scene;
    scene.show();
    QCOMPARE(scene.view->getRowObj(scene.row(scene.path())), scene.a().get());
    QCOMPARE(scene.view->getRowField(scene.row(scene.path("own"))), &scene.field("own"));
    QCOMPARE(scene.view->getRowObj(scene.row(scene.path("own", 1))), scene.e().get());
    QVERIFY(!scene.row(scene.path("own", 7)));
    QVERIFY(!scene.row(Path(PtrT<Object>(scene.b()))));
    QVERIFY(!scene.row(Path(PtrT<Object>())));
    scene.view->addAcceptedField("", "part");
    QVERIFY(!scene.row(scene.path("own")));
}

void tst_ObjectTreeRows::pathOfSeveralStepsFindsItsRow()
{
    Scene scene;
    addField<FieldPtr>(*scene.e(), "back", PtrT<Object>(scene.a()));
    scene.show();
    Path deep = scene.path("own", 1);
    deep.pushField(*scene.e()->findField("back"));
    QCOMPARE(scene.view->getRowField(scene.row(deep)), scene.e()->findField("back").get());
    deep.pushValue(*scene.e()->findField("back"));
    const RowHandle again = scene.row(deep);
    QCOMPARE(scene.view->getRowObj(again), scene.a().get());
    QVERIFY(again != scene.row(scene.path()));
    const Path found = scene.view->getRowPath(again);
    QCOMPARE(found.getNum(), std::size_t(2));
    QCOMPARE(found.get(0).index, std::size_t(1));
    QCOMPARE(found.getObj().get(), scene.a().get());
}

void tst_ObjectTreeRows::pathsOfSingleLinksAndOfTheTop()
{
    Scene scene;
    scene.show();
    for (char const *name : {"part", "next"}) {
        const Path field = scene.view->getRowPath(scene.row(scene.path(name)));
        QCOMPARE(field.getType(), Path::Field);
        QCOMPARE(field.getLast().field.get(), &scene.field(name));
        const Path value = scene.view->getRowPath(scene.row(scene.path(name, 0)));
        QCOMPARE(value.getType(), Path::Value);
        QVERIFY(value.getObj());
    }
    const Path top = scene.view->getRowPath(scene.row(scene.path())->getParent());
    QVERIFY(!top.getRoot());
    QCOMPARE(top.getNum(), std::size_t(0));
}

void tst_ObjectTreeRows::rowsMadeOnTheWayStayAndOpenOnesStayOpen()
{
    Scene scene;
    scene.show();
    const RowHandle e = scene.row(scene.path("own", 1));
    const RowHandle own = scene.row(scene.path("own"));
    QVERIFY(!own->isOpen() && !scene.row(scene.path())->isOpen());
    QCOMPARE(own->getNumMadeChildRows(), std::size_t(2));
    QCOMPARE(own->getChildRow(1), e);
    own->setOpen(true);
    scene.row(scene.path("own", 0));
    QVERIFY(own->isOpen());
}

void tst_ObjectTreeRows::voidLabelIsTranslated()
{
    ZR::setTextTranslation([](char const *text) -> char const * {
        return text == std::string(GUI::_ObjectTreeViewVoidRowLabel) ? "leer" : nullptr;
    });
    Scene scene;
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    scene.show();
    const RowHandle row = scene.row(scene.path("next", 0));
    ZR::setTextTranslation({});
    QCOMPARE(row->getText(), QString("leer"));
}

void tst_ObjectTreeRows::pathOpensOnTheWayAndKeepsOpenOnWish()
{
    Scene scene;
    scene.show();
    scene.row(scene.path("own", 1));
    QCOMPARE(scene.dump(), std::string("'a'"));
    scene.view->makeRow(scene.path("own", 1), true);
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own ..'d' ..'e'"));
    // A path that leads nowhere leaves all as it was.
    scene.row(scene.path("own"))->setOpen(false);
    scene.view->makeRow(scene.path("own", 7), true);
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
}

void tst_ObjectTreeRows::manyChangesAreOneRebuild()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.dump();
    Born born(*scene.view);
    for (int i = 0; i < 100; ++i)
        scene.own().replace(0, 0, {makeThing("n")});
    QCOMPARE(born.take(), 0);
    scene.dump();
    QCOMPARE(born.take(), 100);
}

void tst_ObjectTreeRows::fieldTextStays()
{
    Scene scene;
    scene.show();
    QCOMPARE(scene.row(scene.path("own"))->getText(), QString("own"));
    QVERIFY(scene.row(scene.path("own"))->getIcon().isNull());
}

namespace {

class DB : public GUI::ObjectIconDB {
public:
    QIcon find(RefT<Object> const &) const override
    {
        QPixmap pixmap(8, 8);
        pixmap.fill(Qt::red);
        return pixmap;
    }
};

} // namespace

void tst_ObjectTreeRows::iconsComeFromTheDatabase()
{
    Scene scene;
    scene.show();
    scene.dump();
    QVERIFY(scene.row(scene.path())->getIcon().isNull());
    scene.view->setObjIconDB(RefT<GUI::ObjectIconDB>(new DB));
    scene.dump();
    QVERIFY(!scene.row(scene.path())->getIcon().isNull());
    {
        DB onStack;
        scene.view->setObjIconDB(RefT<GUI::ObjectIconDB>(onStack));
    }
    QVERIFY(!scene.view->getObjIconDB());
    scene.dump();
    QVERIFY(scene.row(scene.path())->getIcon().isNull());
}

void tst_ObjectTreeRows::iconDatabaseThatWasReplacedMayDie()
{
    Scene scene;
    scene.show();
    const RefT<GUI::ObjectIconDB> icons(new DB);
    {
        DB onStack;
        scene.view->setObjIconDB(RefT<GUI::ObjectIconDB>(onStack));
        scene.dump();
        scene.view->setObjIconDB(icons);
    }
    QCOMPARE(scene.view->getObjIconDB().get(), icons.get());
    scene.dump();
    QVERIFY(!scene.row(scene.path())->getIcon().isNull());
}

QTEST_MAIN(tst_ObjectTreeRows)
#include "tst_ObjectTreeRows.moc"
