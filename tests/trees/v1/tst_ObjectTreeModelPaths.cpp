#include "trees/v1/ModelScene.h"

#include <limits>

using namespace model_test;

/// From paths to rows and back.
class tst_ObjectTreeModelPaths : public QObject {
    Q_OBJECT

private slots:
    void pathsLeadToRowsAndBack_data();
    void pathsLeadToRowsAndBack();
    void createFetchesTheWay();
    void withoutCreateNothingIsFetched();
    void topRowsOfFieldsHavePaths();
    void emptyRootLeadsToTheTop();
    void emptyRootLeadsToTheTopPastEmptyLinks();
    void foreignPathsLeadToTheTop();
    void pathThatEndsAtAnObjectLeadsToItsRoot();
    void refusedFieldsLeadNowhere();
    void foreignFieldsLeadNowhere();
    void positionsBeyondTheEndLeadNowhere();
    void hiddenPositionsBeyondAFieldLeadToTheNext();
    void fieldsOfTheTypeLeadNowhereInHideMode();
    void topHasNoPath();
    void pathsOfDeadFieldsEndBefore();
    void longPathsAreWalked();
    void deepestRowHasAPath();
};

void tst_ObjectTreeModelPaths::pathsLeadToRowsAndBack_data()
{
    QTest::addColumn<bool>("hideFields");
    QTest::addColumn<std::vector<int>>("positions");
    QTest::addColumn<std::string>("path");
    using At = std::vector<int>;
    QTest::newRow("object") << false << At{0} << std::string("a");
    QTest::newRow("field of an owning link") << false << At{0, 0} << std::string("a/part");
    QTest::newRow("owning link") << false << At{0, 0, 0} << std::string("a/part[0]");
    QTest::newRow("field of a watching link") << false << At{0, 1} << std::string("a/next");
    QTest::newRow("watching link") << false << At{0, 1, 0} << std::string("a/next[0]");
    QTest::newRow("watching list") << false << At{0, 2} << std::string("a/all");
    QTest::newRow("value of a watching list") << false << At{0, 2, 1} << std::string("a/all[1]");
    QTest::newRow("owning list") << false << At{0, 3} << std::string("a/own");
    QTest::newRow("value of an owning list") << false << At{0, 3, 1} << std::string("a/own[1]");
    QTest::newRow("on from a value") << false << At{0, 2, 0, 0} << std::string("a/all[0]/back");
    QTest::newRow("round a circle")
        << false << At{0, 0, 0, 0, 0, 3, 0} << std::string("a/part[0]/back[0]/own[0]");

    QTest::newRow("hidden: object") << true << At{0} << std::string("a");
    QTest::newRow("hidden: first field") << true << At{0, 0} << std::string("a/part[0]");
    QTest::newRow("hidden: second field") << true << At{0, 1} << std::string("a/next[0]");
    QTest::newRow("hidden: start of a list") << true << At{0, 2} << std::string("a/all[0]");
    QTest::newRow("hidden: end of a list") << true << At{0, 3} << std::string("a/all[1]");
    QTest::newRow("hidden: last list") << true << At{0, 5} << std::string("a/own[1]");
    QTest::newRow("hidden: round a circle")
        << true << At{0, 0, 0, 4} << std::string("a/part[0]/back[0]/own[0]");
}

void tst_ObjectTreeModelPaths::pathsLeadToRowsAndBack()
{
    QFETCH(bool, hideFields);
    QFETCH(std::vector<int>, positions);
    Scene scene;
    scene.model->hideFields(hideFields);
    scene.showFetched(int(positions.size()));
    const QModelIndex index = scene.at(positions);
    Path path{PtrT<Object>()};
    QVERIFY(scene.model->getPath(index, path));
    QTEST(textOf(path), "path");
    QCOMPARE(scene.model->makeIndex(path, false), index);
}

void tst_ObjectTreeModelPaths::createFetchesTheWay()
{
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->hideFields(hideFields);
        scene.show();
        Path path = scene.path("part", 0);
        path.pushValue(fieldOf<FieldPtr>(scene.b(), "back"));
        path.pushValue(scene.own(), 1);
        QVERIFY(!scene.model->makeIndex(path, false).isValid());
        const QModelIndex index = scene.model->makeIndex(path, true);
        QCOMPARE(textOf(index), std::string("'e'"));
        QCOMPARE(scene.model->makeIndex(path, false), index);
        // Beside the way nothing is.
        if (!hideFields)
            QCOMPARE(scene.model->rowCount(scene.at({0, 3})), 0);
    }
}

void tst_ObjectTreeModelPaths::withoutCreateNothingIsFetched()
{
    Scene scene;
    scene.show();
    Told told(*scene.model);
    QVERIFY(!scene.model->makeIndex(scene.path("own", 1), false).isValid());
    QVERIFY(!scene.model->makeIndex(scene.path("own"), false).isValid());
    QCOMPARE(told.take(), std::string());
    QVERIFY(scene.model->makeIndex(scene.path("own"), true).isValid());
    QVERIFY(!scene.model->makeIndex(scene.path("own", 1), false).isValid());
}

void tst_ObjectTreeModelPaths::topRowsOfFieldsHavePaths()
{
    Scene scene;
    scene.model->addRow(scene.next(), 0);
    scene.model->addRow(scene.own(), 1);
    Path path{PtrT<Object>()};
    QVERIFY(scene.model->getPath(scene.at({1}), path));
    QCOMPARE(textOf(path), std::string("a/own"));
    QCOMPARE(scene.model->makeIndex(path, false), scene.at({1}));
    const QModelIndex e = scene.model->makeIndex(scene.path("own", 1), true);
    QCOMPARE(textOf(e), std::string("'e'"));
    QVERIFY(scene.model->getPath(e, path));
    QCOMPARE(textOf(path), std::string("a/own[1]"));
    // The path of their object alone isn't theirs.
    QCOMPARE(scene.model->makeIndex(scene.path(), true), scene.top());
}

void tst_ObjectTreeModelPaths::emptyRootLeadsToTheTop()
{
    Scene scene;
    scene.show();
    QCOMPARE(scene.model->makeIndex(Path(PtrT<Object>()), false), scene.top());
    QCOMPARE(scene.model->makeIndex(Path(PtrT<Object>()), true), scene.top());
}

void tst_ObjectTreeModelPaths::emptyRootLeadsToTheTopPastEmptyLinks()
{
    Scene scene;
    scene.model->addRow(PtrT<Object>(), 0);
    QCOMPARE(scene.model->makeIndex(Path(PtrT<Object>()), true), scene.top());
}

void tst_ObjectTreeModelPaths::foreignPathsLeadToTheTop()
{
    Scene scene, other;
    scene.show();
    QCOMPARE(scene.model->makeIndex(other.path("own", 1), true), scene.top());
    Path dead = other.path("own", 1);
    other.a().reset();
    QCOMPARE(scene.model->makeIndex(dead, true), scene.top());
}

/// KEPT: whatever its steps.
void tst_ObjectTreeModelPaths::pathThatEndsAtAnObjectLeadsToItsRoot()
{
    Scene scene;
    scene.showFetched(3);
    Path path = scene.path("own", 1);
    path.pushField(*scene.e()->findField("name"));
    path.pop();
    QCOMPARE(path.getType(), Path::Object);
    QCOMPARE(path.getObj().get(), scene.e().get());
    QVERIFY(scene.model->makeIndex(path, true) == scene.at({0}));
}

void tst_ObjectTreeModelPaths::refusedFieldsLeadNowhere()
{
    Scene scene;
    scene.model->addAcceptedField("", "next");
    scene.show();
    QVERIFY(!scene.model->makeIndex(scene.path("own"), true).isValid());
    QVERIFY(!scene.model->makeIndex(scene.path("name"), true).isValid());
    QVERIFY(scene.model->makeIndex(scene.path("next"), true).isValid());
}

void tst_ObjectTreeModelPaths::foreignFieldsLeadNowhere()
{
    for (bool hideFields : {false, true}) {
        Scene scene, other;
        scene.model->hideFields(hideFields);
        scene.show();
        Path path = scene.path();
        path.pushValue(other.own(), 1);
        QVERIFY(!scene.model->makeIndex(path, true).isValid());
        // A field of a, below c.
        path = scene.path("next", 0);
        path.pushField(scene.own());
        QVERIFY(!scene.model->makeIndex(path, true).isValid());
    }
}

void tst_ObjectTreeModelPaths::positionsBeyondTheEndLeadNowhere()
{
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->hideFields(hideFields);
        scene.show();
        const std::size_t huge = std::numeric_limits<std::size_t>::max();
        for (std::size_t index : {std::size_t(2), huge, huge - 3})
            QVERIFY(!scene.model->makeIndex(scene.path("own", index), true).isValid());
        QVERIFY(!scene.model->makeIndex(scene.path("all", huge), true).isValid());
    }
}

/// Positions count on from field to field.
void tst_ObjectTreeModelPaths::hiddenPositionsBeyondAFieldLeadToTheNext()
{
    Scene scene;
    scene.model->hideFields(true);
    scene.show();
    QCOMPARE(textOf(scene.model->makeIndex(scene.path("all", 2), true)), std::string("'d'"));
    QCOMPARE(textOf(scene.model->makeIndex(scene.path("all", 3), true)), std::string("'e'"));
    QVERIFY(!scene.model->makeIndex(scene.path("all", 4), true).isValid());
}

void tst_ObjectTreeModelPaths::fieldsOfTheTypeLeadNowhereInHideMode()
{
    Scene scene;
    scene.model->hideFields(true);
    scene.show();
    QVERIFY(!scene.model->makeIndex(scene.path("own"), true).isValid());
    QVERIFY(scene.model->makeIndex(scene.path("own", 0), true).isValid());
}

void tst_ObjectTreeModelPaths::topHasNoPath()
{
    Scene scene;
    scene.show();
    Path path = scene.path("own", 1);
    QVERIFY(!scene.model->getPath(scene.top(), path));
    QCOMPARE(path.getNum(), std::size_t(0));
    path = scene.path("own", 1);
    QVERIFY(!scene.model->getPath(QModelIndex(), path));
    QCOMPARE(path.getNum(), std::size_t(0));
}

void tst_ObjectTreeModelPaths::pathsOfDeadFieldsEndBefore()
{
    Scene scene;
    scene.showFetched(3);
    const QModelIndex e = scene.at({0, 3, 1});
    removeField(*scene.a(), scene.own());
    Path path{PtrT<Object>()};
    QVERIFY(scene.model->getPath(e, path));
    QCOMPARE(textOf(path), std::string("a"));
}

void tst_ObjectTreeModelPaths::longPathsAreWalked()
{
    Scene scene;
    scene.show();
    FieldPtr &back = fieldOf<FieldPtr>(scene.b(), "back");
    Path path = scene.path();
    for (int i = 0; i < 1000; ++i) {
        path.pushValue(scene.part());
        path.pushValue(back);
    }
    const QModelIndex index = scene.model->makeIndex(path, true);
    QCOMPARE(textOf(index), std::string("'a'"));
    Path found{PtrT<Object>()};
    QVERIFY(scene.model->getPath(index, found));
    QCOMPARE(found.getNum(), std::size_t(2000));
    scene.a().reset();
    QCOMPARE(scene.dump(), std::string());
}

void tst_ObjectTreeModelPaths::deepestRowHasAPath()
{
    constexpr std::size_t depth = 100000;
    Things chain{makeThing("0")};
    while (chain.size() < depth) {
        chain.push_back(makeThing("n"));
        addField<FieldPtr>(*chain[chain.size() - 2], "next", PtrT<Object>(chain.back()));
    }
    for (bool hideFields : {false, true}) {
        ObjectTreeModel model;
        model.hideFields(hideFields);
        model.addRow(PtrT<Object>(chain[0]), 0);
        Path path{PtrT<Object>(chain[0])};
        for (std::size_t i = 0; i + 1 < depth; ++i)
            path.pushValue(*chain[i]->findField("next"));
        const QModelIndex deepest = model.makeIndex(path, true);
        QCOMPARE(model.getObjRow(deepest).obj, PtrT<Object>(chain.back()));
        QCOMPARE(model.makeIndex(path, false), deepest);
        Path back{PtrT<Object>()};
        QVERIFY(model.getPath(deepest, back));
        QCOMPARE(back.getNum(), depth - 1);
        QCOMPARE(back.getObj().get(), chain.back().get());
    }
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelPaths)
#include "tst_ObjectTreeModelPaths.moc"
