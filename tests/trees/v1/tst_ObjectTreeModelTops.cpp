#include "trees/v1/ModelScene.h"

#include <limits>

using namespace model_test;

/// What the host puts at the top.
class tst_ObjectTreeModelTops : public QObject {
    Q_OBJECT

private slots:
    void addsObjectsAtPositions();
    void clampsThePosition();
    void addsManyAtOnce_data();
    void addsManyAtOnce();
    void hiddenFieldsValuesComeOneByOne();
    void addsFieldsOfAllFourKinds();
    void hiddenFieldsContributeTheirValues();
    void hiddenTopFieldsArentWatched();
    void emptyLinkIsARow();
    void sameObjectTwiceHasTwoRows();
    void itemsThatDieLeave();
    void deathOfOneOfManyIsOneMove_data();
    void deathOfOneOfManyIsOneMove();
    void manyThatDieLeaveInAnyOrder();
    void manyThatDieBesideAMarkMoveOnce_data();
    void manyThatDieBesideAMarkMoveOnce();
    void deathBesideHiddenFieldsTakesItsRowOut();
    void hiddenFieldThatDiesTakesItsRowsOut();
    void itemsMayDieInTheNewsOfOthers();
    void fieldsThatDieLeave();
    void itemOfTwoRowsLeavesBoth();
    void fieldThatLeavesItsObjectStays();
    void rowsStayWhenOthersCome();
    void clearResets();
    void clearInASlotResetsAfterwards_data();
    void clearInASlotResetsAfterwards();
    void rowsAddedBehindAClearInASlotCome();
    void clearedItemsArentWatched();
    void nothingIsOwned();
};

void tst_ObjectTreeModelTops::addsObjectsAtPositions()
{
    Scene scene;
    Told told(*scene.model);
    QCOMPARE(scene.model->addRow(PtrT<Object>(scene.c()), 0), std::size_t(0));
    QCOMPARE(told.take(), std::string("insert top 0, added c"));
    QCOMPARE(scene.model->addRow(PtrT<Object>(scene.b()), 0), std::size_t(0));
    QCOMPARE(told.take(), std::string("insert top 0, added b, changed 'b'"));
    QCOMPARE(scene.model->addRow(PtrT<Object>(scene.d()), 1), std::size_t(1));
    QCOMPARE(scene.dump(), std::string("'b'+\n'd'\n'c'\n"));
}

void tst_ObjectTreeModelTops::clampsThePosition()
{
    Scene scene;
    QCOMPARE(scene.model->addRow(PtrT<Object>(scene.c()), 7), std::size_t(0));
    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    QCOMPARE(scene.model->addRow(PtrT<Object>(scene.d()), huge), std::size_t(1));
    QCOMPARE(scene.model->addRow(scene.own(), huge), std::size_t(2));
    QCOMPARE(scene.dump(), std::string("'c'\n'd'\nown+\n"));
}

void tst_ObjectTreeModelTops::addsManyAtOnce_data()
{
    QTest::addColumn<bool>("hideFields");
    QTest::newRow("field rows") << false;
    QTest::newRow("values only") << true;
}

void tst_ObjectTreeModelTops::addsManyAtOnce()
{
    QFETCH(bool, hideFields);
    Scene scene;
    scene.model->hideFields(hideFields);
    scene.model->addRow(PtrT<Object>(scene.a()), 0);
    scene.model->addRow(PtrT<Object>(scene.b()), 1);
    Told told(*scene.model);
    scene.model->addRows({PtrT<Object>(scene.c()), PtrT<Object>(scene.d())}, 1);
    QCOMPARE(told.take(), std::string("insert top 1, added c, insert top 2, added d"));
    scene.model->addRows({}, 0);
    scene.model->addRows({PtrT<Object>(scene.e())}, 99);
    QCOMPARE(scene.dump(), std::string("'a'+\n'c'\n'd'\n'b'+\n'e'\n"));
}

void tst_ObjectTreeModelTops::hiddenFieldsValuesComeOneByOne()
{
    Scene scene;
    scene.model->hideFields(true);
    Told told(*scene.model);
    scene.model->addRow(scene.own(), 0);
    QCOMPARE(told.take(), std::string("insert top 0, added d, insert top 1, added e"));
}

void tst_ObjectTreeModelTops::addsFieldsOfAllFourKinds()
{
    Scene scene;
    QCOMPARE(scene.model->addRow(scene.next(), 0), std::size_t(0));
    QCOMPARE(scene.model->addRow(scene.part(), 1), std::size_t(1));
    QCOMPARE(scene.model->addRow(scene.all(), 2), std::size_t(2));
    QCOMPARE(scene.model->addRow(scene.own(), 3), std::size_t(3));
    GUI::fetchRows(*scene.model, scene.top(), 2);
    QCOMPARE(scene.dump(), std::string("next+\n.'c'\npart+\n.'b'+\n"
                                       "all+\n.'b'+\n.'c'\nown+\n.'d'\n.'e'\n"));
}

void tst_ObjectTreeModelTops::hiddenFieldsContributeTheirValues()
{
    Scene scene;
    scene.model->addRow(scene.own(), 0);
    scene.model->addRow(PtrT<Object>(scene.b()), 1);
    scene.model->addRow(scene.next(), 2);
    scene.model->hideFields(true);
    QCOMPARE(scene.dump(), std::string("'d'\n'e'\n'b'+\n'c'\n"));
    scene.model->hideFields(false);
    QCOMPARE(scene.dump(), std::string("own+\n'b'+\nnext+\n"));
}

void tst_ObjectTreeModelTops::hiddenTopFieldsArentWatched()
{
    Scene scene;
    scene.model->hideFields(true);
    scene.model->addRow(scene.own(), 0);
    Told told(*scene.model);
    const RefT<Object> d = scene.d();
    scene.own().replace(0, 1, {});
    scene.model->update();
    QCOMPARE(told.take(), std::string());
    scene.model->addRow(PtrT<Object>(scene.c()), 9);
    QCOMPARE(scene.dump(), std::string("'e'\n'c'\n"));
}

void tst_ObjectTreeModelTops::emptyLinkIsARow()
{
    Scene scene;
    scene.model->addRow(PtrT<Object>(), 0);
    QCOMPARE(scene.dump(), std::string("void\n"));
    scene.model->addRow(PtrT<Object>(scene.c()), 0);
    QCOMPARE(scene.dump(), std::string("'c'\nvoid\n"));
}

void tst_ObjectTreeModelTops::sameObjectTwiceHasTwoRows()
{
    Scene scene;
    scene.model->addRows({PtrT<Object>(scene.c()), PtrT<Object>(scene.c())}, 0);
    QCOMPARE(scene.dump(), std::string("'c'\n'c'\n"));
}

void tst_ObjectTreeModelTops::itemsThatDieLeave()
{
    Scene scene;
    scene.model->addRows({PtrT<Object>(scene.c()), PtrT<Object>(scene.a())}, 0);
    Told told(*scene.model);
    scene.c().reset();
    QCOMPARE(told.take(), std::string("move top 1 to 0, removed c, remove top 1"));
    QCOMPARE(scene.dump(), std::string("'a'+\n"));
}

void tst_ObjectTreeModelTops::deathOfOneOfManyIsOneMove_data()
{
    QTest::addColumn<bool>("hideFields");
    QTest::addColumn<int>("victim");
    QTest::addColumn<std::string>("news");
    for (bool hideFields : {false, true}) {
        char const *const mode = hideFields ? "values only" : "field rows";
        QTest::addRow("%s, first", mode)
            << hideFields << 0 << std::string("move top 1-99 to 0, removed x, remove top 99");
        QTest::addRow("%s, middle", mode)
            << hideFields << 40 << std::string("move top 41-99 to 40, removed x, remove top 99");
        QTest::addRow("%s, last", mode)
            << hideFields << 99 << std::string("removed x, remove top 99");
    }
}

void tst_ObjectTreeModelTops::deathOfOneOfManyIsOneMove()
{
    QFETCH(bool, hideFields);
    QFETCH(int, victim);
    QFETCH(std::string, news);
    Scene scene;
    scene.model->hideFields(hideFields);
    Things tops;
    for (int i = 0; i < 100; ++i)
        tops.push_back(makeThing("x"));
    scene.model->addRows({tops.begin(), tops.end()}, 0);
    Told told(*scene.model);
    tops[std::size_t(victim)].reset();
    QCOMPARE(told.take(), news);
    for (int row = 0; row < 99; ++row) {
        const auto shown = scene.model->getObjRow(scene.at({row}));
        QCOMPARE(shown.obj, PtrT<Object>(tops[std::size_t(row < victim ? row : row + 1)]));
        QCOMPARE(scene.model->getIndex(shown.row), scene.at({row}));
    }
}

/// Beside a list, whose values stand among them in hide mode.
void tst_ObjectTreeModelTops::manyThatDieLeaveInAnyOrder()
{
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->hideFields(hideFields);
        Things tops;
        for (char name = 'A'; name <= 'Z'; ++name)
            tops.push_back(makeThing(std::string(1, name)));
        scene.model->addRows({tops.begin(), tops.end()}, 0);
        scene.model->addRow(scene.own(), 10);
        for (int i = 0; i < 24; ++i)
            tops[std::size_t(i * 7 % 26)].reset();
        QCOMPARE(scene.dump(),
                 std::string(hideFields ? "'d'\n'e'\n'M'\n'T'\n" : "own+\n'M'\n'T'\n"));
    }
}

void tst_ObjectTreeModelTops::manyThatDieBesideAMarkMoveOnce_data()
{
    QTest::addColumn<bool>("hideFields");
    QTest::addColumn<bool>("isDeath");
    for (bool hideFields : {false, true}) {
        char const *const mode = hideFields ? "values only" : "field rows";
        QTest::addRow("%s, row added in a slot", mode) << hideFields << false;
        QTest::addRow("%s, death in a slot", mode) << hideFields << true;
    }
}

/// What a slot of the top's own change does waits for the next update, and a hidden view has none.
void tst_ObjectTreeModelTops::manyThatDieBesideAMarkMoveOnce()
{
    QFETCH(bool, hideFields);
    QFETCH(bool, isDeath);
    constexpr int num = 300;
    Scene scene;
    scene.model->hideFields(hideFields);
    Things tops = makeThings(std::string(num, 'x'));
    scene.model->addRows({tops.begin(), tops.end()}, 0);
    int numMoves = 0, numAdded = 0;
    QObject context;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsMoved, &context,
                     [&] { ++numMoves; });
    // The first time, and again in the middle.
    scene.model->sigRowsRemoved.connect([&](auto const &) {
        if (numAdded++ % 100 != 0)
            return;
        if (isDeath)
            tops[std::size_t(num - 1 - numAdded / 100)].reset();
        else
            scene.model->addRow(PtrT<Object>(scene.e()), 0);
    });
    for (int i = 0; i < num; ++i)
        tops[std::size_t(i)].reset();
    QVERIFY2(numMoves > 0 && numMoves < 2 * num, std::to_string(numMoves).c_str());
    scene.model->update();
    QCOMPARE(scene.dump(), std::string(isDeath ? "" : "'e'\n'e'\n'e'\n"));
}

/// Without a look at the values of the others, which follow with the next update.
void tst_ObjectTreeModelTops::deathBesideHiddenFieldsTakesItsRowOut()
{
    Scene scene;
    scene.model->hideFields(true);
    Things tops = makeThings("pqr");
    scene.model->addRow(PtrT<Object>(tops[0]), 0);
    scene.model->addRow(scene.own(), 1);
    scene.model->addRow(PtrT<Object>(tops[1]), 2);
    scene.model->addRow(PtrT<Object>(tops[2]), 3);
    scene.own().replace(0, 0, makeThings("n"));
    Told told(*scene.model);
    tops[1].reset();
    QCOMPARE(told.take(), std::string("move top 4 to 3, removed q, remove top 4, update"));
    QCOMPARE(scene.dump(), std::string("'p'\n'd'\n'e'\n'r'\n"));
    tops[0].reset();
    QCOMPARE(told.take(), std::string("move top 1-3 to 0, removed p, remove top 3"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("insert top 0, added n"));
    QCOMPARE(scene.dump(), std::string("'n'\n'd'\n'e'\n'r'\n"));
}

void tst_ObjectTreeModelTops::hiddenFieldThatDiesTakesItsRowsOut()
{
    Scene scene;
    scene.model->hideFields(true);
    const Things values = scene.own().getAll();
    scene.model->addRow(scene.own(), 0);
    scene.model->addRow(PtrT<Object>(scene.c()), 1);
    Told told(*scene.model);
    scene.a().reset();
    QCOMPARE(told.take(), std::string("move top 2 to 0, removed e d, remove top 1-2, update"));
    QCOMPARE(scene.dump(), std::string("'c'\n"));
}

void tst_ObjectTreeModelTops::itemsMayDieInTheNewsOfOthers()
{
    for (bool isMove : {false, true}) {
        Scene scene;
        Things tops = makeThings("klmnop");
        scene.model->addRows({tops.begin(), tops.end()}, 0);
        QObject context;
        const auto kill = [&] { tops[4].reset(); };
        if (isMove)
            QObject::connect(scene.model.get(), &QAbstractItemModel::rowsMoved, &context, kill);
        else
            QObject::connect(scene.model.get(), &QAbstractItemModel::rowsRemoved, &context, kill);
        tops[1].reset();
        scene.model->update();
        QCOMPARE(scene.dump(), std::string("'k'\n'm'\n'n'\n'p'\n"));
    }
}

void tst_ObjectTreeModelTops::fieldsThatDieLeave()
{
    Scene scene;
    scene.model->addRow(scene.own(), 0);
    scene.model->addRow(PtrT<Object>(scene.b()), 1);
    GUI::fetchRows(*scene.model, scene.top(), 2);
    scene.a().reset();
    QCOMPARE(scene.dump(2), std::string("'b'+\n.back+\n"));
}

void tst_ObjectTreeModelTops::itemOfTwoRowsLeavesBoth()
{
    Scene scene;
    scene.model->addRows(
        {PtrT<Object>(scene.d()), PtrT<Object>(scene.e()), PtrT<Object>(scene.d())}, 0);
    scene.own().replace(0, 1, {});
    scene.d().reset();
    QCOMPARE(scene.dump(), std::string("'e'\n"));
}

void tst_ObjectTreeModelTops::fieldThatLeavesItsObjectStays()
{
    Scene scene;
    const RefT<Field> own(scene.own());
    scene.model->addRow(scene.own(), 0);
    removeField(*scene.a(), *own);
    QCOMPARE(scene.dump(), std::string("own+\n"));
    Path path{PtrT<Object>(scene.a())};
    QVERIFY(scene.model->getPath(scene.at({0}), path));
    QVERIFY(!path.getRoot());
}

void tst_ObjectTreeModelTops::rowsStayWhenOthersCome()
{
    Scene scene;
    scene.showFetched(2);
    ObjectTreeModel::ObjectRow *const row = scene.model->getObjRow(scene.at({0})).row;
    scene.model->addRow(PtrT<Object>(scene.c()), 0);
    QCOMPARE(scene.model->getObjRow(scene.at({1})).row, row);
    QCOMPARE(scene.model->rowCount(scene.at({1})), 4);
}

void tst_ObjectTreeModelTops::clearResets()
{
    Scene scene;
    scene.showFetched(3);
    const QModelIndex old = scene.at({0});
    Told told(*scene.model);
    scene.model->clear();
    QCOMPARE(told.take(), std::string("reset, clear"));
    QCOMPARE(scene.model->rowCount(scene.top()), 0);
    QVERIFY(!scene.model->hasChildren(scene.top()));
    QVERIFY(!old.data().isValid());
    scene.show();
    QCOMPARE(told.take(), std::string("insert top 0, added a, changed 'a'"));
}

void tst_ObjectTreeModelTops::clearInASlotResetsAfterwards_data()
{
    QTest::addColumn<bool>("isBetweenTheSignals");
    QTest::addColumn<bool>("isOfTheTop");
    QTest::addColumn<std::string>("news");
    QTest::newRow("of a top row") << false << true
                                  << std::string(
                                         "insert top 1, added b, changed 'b', reset, clear");
    QTest::newRow("of a top row, in between")
        << true << true << std::string("insert top 1, added b, changed 'b', reset, clear");
    QTest::newRow("of another row, in between")
        << true << false << std::string("insert own 0-1, added d e, reset, clear");
}

void tst_ObjectTreeModelTops::clearInASlotResetsAfterwards()
{
    QFETCH(bool, isBetweenTheSignals);
    QFETCH(bool, isOfTheTop);
    Scene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    bool hasRows = false;
    const auto clear = [&] { scene.model->clear(); };
    QObject context;
    if (isBetweenTheSignals)
        QObject::connect(scene.model.get(), &QAbstractItemModel::rowsAboutToBeInserted, &context,
                         clear);
    else
        scene.model->sigRowsAdded.connect([&](auto const &) { clear(); });
    scene.model->sigClear.connect(
        [&](auto const &) { hasRows = scene.model->rowCount(scene.top()) != 0; });
    if (isOfTheTop)
        scene.model->addRow(PtrT<Object>(scene.b()), 1);
    else
        scene.model->fetchMore(scene.at({0, 3}));
    QTEST(told.take(), "news");
    QVERIFY(!hasRows);
    QCOMPARE(scene.dump(), std::string());
}

/// Those that were there go by the reset all the same.
void tst_ObjectTreeModelTops::rowsAddedBehindAClearInASlotCome()
{
    Scene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    QObject context;
    bool isCleared = false;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsAboutToBeInserted, &context, [&] {
        if (std::exchange(isCleared, true))
            return;
        scene.model->clear();
        scene.model->addRow(PtrT<Object>(scene.b()), 0);
    });
    bool isAdded = false;
    scene.model->sigRowsAdded.connect([&](auto const &) {
        if (!std::exchange(isAdded, true))
            scene.model->addRow(PtrT<Object>(scene.c()), 1);
    });
    scene.model->fetchMore(scene.at({0, 3}));
    scene.model->update();
    QCOMPARE(told.take().find("removed"), std::string::npos);
    QCOMPARE(scene.dump(1), std::string("'b'+\n'c'\n"));
}

void tst_ObjectTreeModelTops::clearedItemsArentWatched()
{
    Scene scene;
    scene.model->addRows({PtrT<Object>(scene.c()), PtrT<Object>(scene.d())}, 0);
    scene.model->clear();
    scene.model->addRow(PtrT<Object>(scene.d()), 0);
    Told told(*scene.model);
    scene.c().reset();
    QCOMPARE(told.take(), std::string());
    QCOMPARE(scene.dump(), std::string("'d'\n"));
}

void tst_ObjectTreeModelTops::nothingIsOwned()
{
    Scene scene;
    const PtrT<Object> a(scene.a());
    scene.showFetched(4);
    scene.a().reset();
    QVERIFY(!a);
    QCOMPARE(scene.dump(), std::string());
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelTops)
#include "tst_ObjectTreeModelTops.moc"
