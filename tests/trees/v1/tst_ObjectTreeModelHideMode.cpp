#include "trees/v1/ModelScene.h"

using namespace model_test;

/// Values directly below their objects.
class tst_ObjectTreeModelHideMode : public QObject {
    Q_OBJECT

private slots:
    void valuesStandInFieldOrder();
    void togglingUpdatesFetchedRows();
    void settingTheSameDoesNothing();
    void unfetchedRowsCountTheirValues();
    void unfetchedRowsFollowTheirValues();
    void valuesMoveAcrossFields();
    void signalsMark_data();
    void signalsMark();
    void linkSetToTheSameDoesntMark();
    void valuesOfFieldsShownAgainArentWatched();
    void fieldsThatComeAreWatched();
    void fieldsThatGoArentWatched();
    void worksWithoutAFieldName();
    void objectsThatDieLoseTheirRows();
    void filterChangesFollow();
};

namespace {

constexpr char hidden[] = "'a'+\n.'b'+\n.'c'\n.'b'+\n.'c'\n.'d'\n.'e'\n";

struct HidingScene : Scene {
    HidingScene() { model->hideFields(true); }
};

} // namespace

void tst_ObjectTreeModelHideMode::valuesStandInFieldOrder()
{
    HidingScene scene;
    scene.show();
    Told told(*scene.model);
    scene.model->fetchMore(scene.at({0}));
    QCOMPARE(scene.dump(), std::string(hidden));
    QCOMPARE(told.take(),
             std::string("insert 'a' 0-5, added b c b c d e, changed 'b', changed 'b'"));
}

void tst_ObjectTreeModelHideMode::togglingUpdatesFetchedRows()
{
    Scene scene;
    scene.showFetched(3);
    Told told(*scene.model);
    scene.model->hideFields(true);
    QVERIFY(scene.model->isHideFields());
    QCOMPARE(scene.dump(), std::string(hidden));
    QVERIFY(told.take().find("insert 'a' 0-5, added b c b c d e") == 0);
    scene.model->hideFields(false);
    QCOMPARE(scene.dump(), std::string("'a'+\n.part+\n.next+\n.all+\n.own+\n"));
}

void tst_ObjectTreeModelHideMode::settingTheSameDoesNothing()
{
    HidingScene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    scene.model->hideFields(true);
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelHideMode::unfetchedRowsCountTheirValues()
{
    Scene scene;
    scene.model->addRow(PtrT<Object>(scene.a()), 0);
    const RefT<Object> empty = makeThing("empty");
    addField<MFieldRef>(*empty, "list", Things{});
    scene.model->addRow(PtrT<Object>(empty), 1);
    QVERIFY(scene.model->hasChildren(scene.at({1})));
    Told told(*scene.model);
    scene.model->hideFields(true);
    QCOMPARE(told.take(), std::string("changed 'a', changed 'empty'"));
    QVERIFY(scene.model->hasChildren(scene.at({0})));
    QVERIFY(!scene.model->hasChildren(scene.at({1})));
    QCOMPARE(scene.model->rowCount(scene.at({0})), 0);
}

void tst_ObjectTreeModelHideMode::unfetchedRowsFollowTheirValues()
{
    HidingScene scene;
    const RefT<Object> empty = makeThing("empty");
    MFieldRef &list = addField<MFieldRef>(*empty, "list", Things{});
    scene.model->addRow(PtrT<Object>(empty), 0);
    Told told(*scene.model);
    list.replace(0, 0, makeThings("x"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, changed 'empty'"));
    QVERIFY(scene.model->hasChildren(scene.at({0})));
}

void tst_ObjectTreeModelHideMode::valuesMoveAcrossFields()
{
    HidingScene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    const Things own = scene.own().getAll();
    scene.own().replace(0, 2, {});
    scene.all().replace(0, 0, {PtrT<Object>(own[0]), PtrT<Object>(own[1])});
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, move 'a' 4-5 to 2"));
    QCOMPARE(scene.dump(), std::string("'a'+\n.'b'+\n.'c'\n.'d'\n.'e'\n.'b'+\n.'c'\n"));
}

void tst_ObjectTreeModelHideMode::signalsMark_data()
{
    QTest::addColumn<int>("deed");
    QTest::addColumn<std::string>("rows");
    QTest::newRow("single link set") << 0 << std::string("'b' 'd' 'b' 'c' 'd' 'e' ");
    QTest::newRow("single link lost") << 1 << std::string("'b' void 'b' 'd' 'e' ");
    QTest::newRow("list replaced") << 2 << std::string("'b' 'c' 'b' 'c' 'x' 'e' ");
    QTest::newRow("list lost") << 3 << std::string("'b' void 'b' void 'd' 'e' ");
}

void tst_ObjectTreeModelHideMode::signalsMark()
{
    QFETCH(int, deed);
    HidingScene scene;
    const int lossOfLink = 1, lossInList = 3;
    if (deed == lossOfLink)
        scene.all().replace(1, 1, {});
    if (deed == lossInList)
        scene.next().set({});
    scene.showFetched(2);
    Told told(*scene.model);
    switch (deed) {
    case 0:
        scene.next().set(PtrT<Object>(scene.d()));
        break;
    case 2:
        scene.own().replace(0, 1, makeThings("x"));
        break;
    default:
        scene.c().reset();
    }
    QCOMPARE(told.take(), std::string("update"));
    scene.model->update();
    std::string rows;
    for (int row = 0; row < scene.model->rowCount(scene.at({0})); ++row)
        rows += textOf(scene.at({0, row})) + ' ';
    QTEST(rows, "rows");
}

void tst_ObjectTreeModelHideMode::linkSetToTheSameDoesntMark()
{
    HidingScene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    scene.next().set(PtrT<Object>(scene.c()));
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelHideMode::valuesOfFieldsShownAgainArentWatched()
{
    HidingScene scene;
    scene.showFetched(1);
    scene.model->hideFields(false);
    scene.model->update();
    Told told(*scene.model);
    // The row of the object doesn't watch its values any more, and the fields have no rows yet.
    scene.own().replace(0, 1, {});
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelHideMode::fieldsThatComeAreWatched()
{
    HidingScene scene;
    scene.showFetched(2);
    MFieldRef &list = addField<MFieldRef>(*scene.a(), "list", Things{});
    scene.model->update();
    Told told(*scene.model);
    list.replace(0, 0, makeThings("x"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, insert 'a' 6, added x"));
}

void tst_ObjectTreeModelHideMode::fieldsThatGoArentWatched()
{
    HidingScene scene;
    scene.showFetched(2);
    const RefT<MFieldRef> own(scene.own());
    removeField(*scene.a(), *own);
    scene.model->update();
    QCOMPARE(scene.dump(), std::string("'a'+\n.'b'+\n.'c'\n.'b'+\n.'c'\n"));
    Told told(*scene.model);
    own->replace(0, 1, {});
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelHideMode::worksWithoutAFieldName()
{
    HidingScene scene;
    scene.model->setFieldName("");
    scene.model->setTypeName(true);
    scene.showFetched(2);
    Told told(*scene.model);
    scene.own().replace(0, 0, makeThings("x"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, insert Thing 4, added x"));
}

void tst_ObjectTreeModelHideMode::objectsThatDieLoseTheirRows()
{
    HidingScene scene;
    scene.showFetched(3);
    scene.part().set({});
    scene.b().reset();
    scene.model->update();
    QCOMPARE(scene.dump(), std::string("'a'+\n.void\n.'c'\n.void\n.'c'\n.'d'\n.'e'\n"));
}

void tst_ObjectTreeModelHideMode::filterChangesFollow()
{
    HidingScene scene;
    scene.showFetched(2);
    scene.model->addAcceptedField("", "own");
    QCOMPARE(scene.dump(), std::string("'a'+\n.'d'\n.'e'\n"));
    Told told(*scene.model);
    scene.next().set({});
    QCOMPARE(told.take(), std::string());
    scene.model->addAcceptedField("", "next");
    QCOMPARE(scene.dump(), std::string("'a'+\n.void\n.'d'\n.'e'\n"));
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelHideMode)
#include "tst_ObjectTreeModelHideMode.moc"
