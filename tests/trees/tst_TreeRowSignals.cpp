#include "trees/TreeScene.h"

#include "zrVOMGUI/foundation/util/text.h"

using namespace tree_test;

/// What each kind of row does when its part of the model changes, a test for each signal.
class tst_TreeRowSignals : public QObject {
    Q_OBJECT

private slots:
    void topRowLeavesWithItsObject();
    void topRowLeavesWithItsField();
    void topRowsOfOneObjectLeaveTogether();
    void objectRowOfADeadObjectOnlyLosesItsPath();
    void objectRowFollowsItsName();
    void objectRowCountsANewField();
    void objectRowPassesOverFieldsOutsideTheFilter();
    void objectRowDropsARemovedField();
    void flaggedFieldRowCountsAsLost();
    void unflaggedFieldRowIsNotLost();
    void watchingLinkFollowsItsValue();
    void watchingLinkShowsItsDeadValueAsVoid();
    void watchingLinkTakesAnotherValueForALostOne();
    void owningLinkFollowsItsValue();
    void owningLinkFollowsASignalOfLoss();
    void watchingListFollowsItsValues();
    void watchingListShowsItsDeadValueAsVoid();
    void owningListFollowsItsValues();
    void owningListFollowsASignalOfLoss();

    void changedNameFieldIsFollowed();
    void changedNameFieldSwitchesTheWatchOverFields_data();
    void changedNameFieldSwitchesTheWatchOverFields();
};

void tst_TreeRowSignals::topRowLeavesWithItsObject()
{
    Scene scene;
    scene.show();
    RefT<Object> other = makeThing("x");
    scene.view->addRow(other, 0);
    QCOMPARE(scene.dump(), std::string("'x' 'a'"));
    other = {};
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_TreeRowSignals::topRowLeavesWithItsField()
{
    Scene scene;
    scene.show();
    scene.view->addRow(scene.own(), 0);
    QCOMPARE(scene.dump(), std::string("own 'a'"));
    removeField(*scene.a(), scene.field("own"));
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_TreeRowSignals::topRowsOfOneObjectLeaveTogether()
{
    Scene scene;
    RefT<Object> other = makeThing("x");
    // The second stands before the first.
    scene.view->addRow(other, 0);
    scene.view->addRow(other, 0);
    scene.show();
    QCOMPARE(scene.dump(), std::string("'a' 'x' 'x'"));
    other = {};
    QCOMPARE(scene.dump(), std::string("'a'"));
    scene.view->removeRow(0);
    QCOMPARE(scene.dump(), std::string());
}

void tst_TreeRowSignals::objectRowOfADeadObjectOnlyLosesItsPath()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    scene.dump();
    const RowHandle row = scene.row(scene.path("next", 0));
    scene.things[2] = {};
    QVERIFY(!scene.view->getRowPath(row).getObj());
    QCOMPARE(row->getText(), QString("'c'"));
    QCOMPARE(row->getPos(), std::size_t(0));
}

void tst_TreeRowSignals::objectRowFollowsItsName()
{
    Scene scene;
    scene.show();
    scene.dump();
    fieldOf<FieldString>(scene.a(), "name").set("new");
    QCOMPARE(scene.dump(), std::string("'new'"));
}

void tst_TreeRowSignals::objectRowCountsANewField()
{
    Scene scene;
    scene.show();
    scene.dump();
    const RowHandle row = scene.row(scene.path());
    QCOMPARE(row->getNumChildRows(), std::size_t(4));
    addField<FieldPtr>(*scene.a(), "fifth");
    scene.dump();
    QCOMPARE(row->getNumChildRows(), std::size_t(5));
    QCOMPARE(row->getNumMadeChildRows(), std::size_t(0));
}

void tst_TreeRowSignals::objectRowPassesOverFieldsOutsideTheFilter()
{
    Scene scene;
    scene.view->addAcceptedField("", "own");
    scene.show();
    scene.open(scene.path());
    scene.dump();
    const RowHandle own = scene.row(scene.path("own"));
    int numBirths = 0;
    scene.view->sigRow.connect([&](auto const &) { ++numBirths; });
    Field &other = addField<FieldPtr>(*scene.a(), "other");
    addField<FieldInt>(*scene.a(), "number", 1);
    QCOMPARE(scene.dump(), std::string("'a' .own"));
    removeField(*scene.a(), other);
    QCOMPARE(scene.dump(), std::string("'a' .own"));
    QCOMPARE(scene.row(scene.path("own")), own);
    QCOMPARE(numBirths, 0);
}

void tst_TreeRowSignals::objectRowDropsARemovedField()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    removeField(*scene.a(), scene.field("all"));
    QCOMPARE(scene.dump(), std::string("'a' .part .next .own"));
}

/// KEPT: only a field that says so is listened to.
void tst_TreeRowSignals::flaggedFieldRowCountsAsLost()
{
    Scene scene;
    scene.field("all").setFlags(1);
    scene.show();
    const RowHandle row = scene.row(scene.path("all"));
    QCOMPARE(scene.view->getRowPath(row).getNum(), std::size_t(1));
    // Told of its end, it still is there.
    ZR::SigVoidData sigData;
    scene.field("all").sigDelete.emitCatching(sigData, "test");
    QCOMPARE(scene.view->getRowField(row), &scene.field("all"));
    QCOMPARE(scene.view->getRowPath(row).getNum(), std::size_t(0));
}

void tst_TreeRowSignals::unflaggedFieldRowIsNotLost()
{
    Scene scene;
    scene.field("all").setFlags(2);
    scene.show();
    const RowHandle row = scene.row(scene.path("all"));
    ZR::SigVoidData sigData;
    scene.field("all").sigDelete.emitCatching(sigData, "test");
    QCOMPARE(scene.view->getRowPath(row).getNum(), std::size_t(1));
}

void tst_TreeRowSignals::watchingLinkFollowsItsValue()
{
    Scene scene;
    scene.view->addAcceptedField("", "next");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    QCOMPARE(scene.dump(), std::string("'a' .next ..'c'"));
    fieldOf<FieldPtr>(scene.a(), "next").set(scene.d());
    QCOMPARE(scene.dump(), std::string("'a' .next ..'d'"));
}

void tst_TreeRowSignals::watchingLinkShowsItsDeadValueAsVoid()
{
    Scene scene;
    scene.view->addAcceptedField("", "next");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    scene.dump();
    scene.things[2] = {};
    // "all" watches it as well, outside the filter.
    QCOMPARE(scene.dump(), std::string("'a' .next ..void"));
}

void tst_TreeRowSignals::watchingLinkTakesAnotherValueForALostOne()
{
    Scene scene;
    scene.show();
    const RowHandle lost = scene.row(scene.path("next", 0));
    scene.things[2] = {};
    fieldOf<FieldPtr>(scene.a(), "next").set(scene.d());
    const RowHandle fresh = scene.row(scene.path("next", 0));
    QVERIFY(fresh != lost);
    QCOMPARE(scene.view->getRowObj(fresh), scene.d().get());
}

void tst_TreeRowSignals::owningLinkFollowsItsValue()
{
    Scene scene;
    scene.view->addAcceptedField("", "part");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("part"));
    QCOMPARE(scene.dump(), std::string("'a' .part ..'b'"));
    const RowHandle before = scene.row(scene.path("part", 0));
    fieldOf<FieldRef>(scene.a(), "part").set(scene.b());
    QCOMPARE(scene.row(scene.path("part", 0)), before);
    fieldOf<FieldRef>(scene.a(), "part").set(scene.d());
    QCOMPARE(scene.dump(), std::string("'a' .part ..'d'"));
    fieldOf<FieldRef>(scene.a(), "part").set({});
    QCOMPARE(scene.dump(), std::string("'a' .part ..void"));
}

void tst_TreeRowSignals::owningLinkFollowsASignalOfLoss()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("part"));
    scene.dump();
    FieldRef &part = fieldOf<FieldRef>(scene.a(), "part");
    QVERIFY(part.sigLost.hasSlots());
    const RowHandle row = scene.row(scene.path("part"));
    ZR::SigVoidData sigData;
    part.sigLost.emitCatching(sigData, "test");
    // Asked again, it finds the same.
    QCOMPARE(scene.row(scene.path("part")), row);
    QCOMPARE(scene.dump(), std::string("'a' .part ..'b' .next .all .own"));
}

void tst_TreeRowSignals::watchingListFollowsItsValues()
{
    Scene scene;
    scene.view->addAcceptedField("", "all");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("all"));
    scene.dump();
    scene.all().replace(1, 1, {scene.d(), PtrT<Object>()});
    QCOMPARE(scene.dump(), std::string("'a' .all ..'b' ..'d' ..void"));
}

void tst_TreeRowSignals::watchingListShowsItsDeadValueAsVoid()
{
    Scene scene;
    scene.view->addAcceptedField("", "all");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("all"));
    scene.dump();
    scene.things[2] = {};
    QCOMPARE(scene.dump(), std::string("'a' .all ..'b' ..void"));
}

void tst_TreeRowSignals::owningListFollowsItsValues()
{
    Scene scene;
    scene.view->addAcceptedField("", "own");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.dump();
    scene.own().replace(0, 1, {scene.b(), scene.b()});
    QCOMPARE(scene.dump(), std::string("'a' .own ..'b' ..'b' ..'e'"));
}

void tst_TreeRowSignals::owningListFollowsASignalOfLoss()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    QVERIFY(scene.own().sigLost.hasSlots());
    MFieldRef::SigLostData sigData;
    scene.own().sigLost.emitCatching(sigData, "test");
    QCOMPARE(scene.dump(), std::string("'a' .part .next .all .own"));
}

void tst_TreeRowSignals::changedNameFieldIsFollowed()
{
    Scene scene;
    FieldString &title = addField<FieldString>(*scene.a(), "title", "one");
    scene.show();
    scene.dump();
    scene.view->setNameField("title");
    QCOMPARE(scene.dump(), std::string("'one'"));
    title.set("two");
    QCOMPARE(scene.dump(), std::string("'two'"));
}

void tst_TreeRowSignals::changedNameFieldSwitchesTheWatchOverFields_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<bool>("watches");
    QTest::newRow("from none to one") << ""
                                      << "name" << true;
    QTest::newRow("from one to none") << "name"
                                      << "" << false;
    QTest::newRow("from one to another") << "name"
                                         << "title" << true;
}

void tst_TreeRowSignals::changedNameFieldSwitchesTheWatchOverFields()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(bool, watches);
    Scene scene;
    scene.view->setNameField(before.toStdString());
    scene.show();
    scene.dump();
    scene.view->setNameField(after.toStdString());
    scene.dump();
    const RowHandle row = scene.row(scene.path());
    Field &added = addField<FieldPtr>(*scene.a(), "fifth");
    scene.dump();
    QCOMPARE(row->getNumChildRows(), std::size_t(watches ? 5 : 4));
    removeField(*scene.a(), added);
    scene.dump();
    QCOMPARE(row->getNumChildRows(), std::size_t(4));
}

QTEST_MAIN(tst_TreeRowSignals)
#include "tst_TreeRowSignals.moc"
