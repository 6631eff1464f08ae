#include "trees/v1/ModelScene.h"

#include <stdexcept>

using namespace model_test;

/// Fields that come and go while rows show them.
class tst_ObjectTreeModelFields : public QObject {
    Q_OBJECT

private slots:
    void refusedRemovalBringsTheFieldBack_data() { modes(); }
    void refusedRemovalBringsTheFieldBack();
    void fieldsMayLeaveInsideEachOther_data() { modes(); }
    void fieldsMayLeaveInsideEachOther();
    void newsInsideNewsReachesAllRows();
    void fieldThatLeavesAndComesBackHasARow();

private:
    static void modes()
    {
        QTest::addColumn<bool>("hideFields");
        QTest::newRow("field rows") << false;
        QTest::newRow("values only") << true;
    }
};

void tst_ObjectTreeModelFields::refusedRemovalBringsTheFieldBack()
{
    QFETCH(bool, hideFields);
    Scene scene;
    scene.model->hideFields(hideFields);
    scene.showFetched(3);
    const std::string before = scene.dump(3);
    auto connection =
        scene.a()->sigRemoveField.connect([](auto const &) { throw std::runtime_error("no"); });
    QVERIFY_EXCEPTION_THROWN(removeField(*scene.a(), scene.own()), std::runtime_error);
    scene.model->update();
    int numUpdates = 0;
    scene.model->sigUpdate.connect([&](auto const &) { ++numUpdates; });
    QCoreApplication::processEvents();
    QCOMPARE(numUpdates, 1);
    scene.model->update();
    GUI::fetchRows(*scene.model, scene.top(), 3);
    QCOMPARE(scene.dump(3), before);
    // One that isn't refused leaves for good.
    connection.disconnect();
    removeField(*scene.a(), scene.own());
    scene.model->update();
    const std::string after = scene.dump(3);
    QVERIFY(after != before);
    QCoreApplication::processEvents();
    QCOMPARE(numUpdates, 2);
    QCOMPARE(scene.dump(3), after);
}

/// A host that updates at once sees neither of the two.
void tst_ObjectTreeModelFields::fieldsMayLeaveInsideEachOther()
{
    QFETCH(bool, hideFields);
    Scene scene;
    scene.model->hideFields(hideFields);
    scene.showFetched(3);
    const RefT<MFieldRef> own(scene.own());
    const RefT<MFieldPtr> all(scene.all());
    scene.model->sigUpdate.connect([&](auto const &) {
        removeField(*scene.a(), *all);
        scene.model->update();
    });
    removeField(*scene.a(), *own);
    const std::string rest =
        hideFields ? "'a'+\n.'b'+\n..'a'+\n.'c'\n" : "'a'+\n.part+\n..'b'+\n.next+\n..'c'\n";
    QCOMPARE(scene.dump(3), rest);
    scene.model->update();
    QCOMPARE(scene.dump(3), rest);
}

/// The inner news of a removal ends the outer one, which the second row misses.
void tst_ObjectTreeModelFields::newsInsideNewsReachesAllRows()
{
    Scene scene;
    scene.model->addAcceptedField("", "own");
    scene.model->addAcceptedField("", "all");
    const RefT<MFieldRef> own(scene.own());
    scene.model->addRows({PtrT<Object>(scene.a()), PtrT<Object>(scene.a())}, 0);
    GUI::fetchRows(*scene.model, scene.top(), 2);
    QCOMPARE(scene.dump(2), std::string("'a'+\n.all+\n.own+\n'a'+\n.all+\n.own+\n"));
    scene.model->sigUpdate.connect([&](auto const &) {
        if (scene.a()->findField("part"))
            removeField(*scene.a(), scene.part());
    });
    removeField(*scene.a(), *own);
    scene.model->update();
    QCOMPARE(scene.dump(2), std::string("'a'+\n.all+\n'a'+\n.all+\n"));
}

void tst_ObjectTreeModelFields::fieldThatLeavesAndComesBackHasARow()
{
    Scene scene;
    scene.showFetched(2);
    addField<MFieldRef>(*scene.a(), "more");
    scene.model->update();
    QCOMPARE(scene.model->rowCount(scene.at({0})), 5);
    removeField(*scene.a(), *scene.a()->findField("more"));
    addField<MFieldRef>(*scene.a(), "more");
    scene.model->update();
    QCOMPARE(scene.model->rowCount(scene.at({0})), 5);
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelFields)
#include "tst_ObjectTreeModelFields.moc"
