#include "trees/DroppedObject.h"
#include "trees/Generations.h"

using namespace tree_test;

namespace {

constexpr auto noPosition = static_cast<std::size_t>(-1);

} // namespace

/// What dies while something is dragged or dropped, in both generations.
class tst_TreeDropLifetimes : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void ruleMayDestroyTheView_data();
    void ruleMayDestroyTheView();
    void lastReferenceOfADragMayDestroyTheView();
};

void tst_TreeDropLifetimes::ruleMayDestroyTheView_data()
{
    QTest::addColumn<bool>("drops");
    QTest::addColumn<bool>("hidesFields");
    QTest::newRow("a drag over a field") << false << false;
    QTest::newRow("a drop on a field") << true << false;
    QTest::newRow("a drag over an object") << false << true;
    QTest::newRow("a drop on an object") << true << true;
}

void tst_TreeDropLifetimes::ruleMayDestroyTheView()
{
    QFETCH(bool, drops);
    QFETCH(bool, hidesFields);
    withScene([&](auto &scene) {
        scene.show();
        scene.view->setHideFields(hidesFields);
        scene.dump();
        const auto row = scene.row(hidesFields ? scene.path() : scene.path("part"));
        DroppedObject dropped(scene);
        int numTold = 0;
        scene.view->sigDrop.connect([&](auto const &) { ++numTold; });
        // It doesn't refuse.
        fieldOf<FieldRef>(scene.a(), "part").sigCanSet.connect([&](auto const &) {
            scene.view.reset();
        });
        if (drops)
            scene.view->onDrop(dropped.event, row, noPosition);
        else
            QVERIFY(!scene.view->onCanDrop(dropped.event, row, noPosition));
        QVERIFY(!scene.view);
        QCOMPARE(numTold, 0);
    });
}

void tst_TreeDropLifetimes::lastReferenceOfADragMayDestroyTheView()
{
    withScene([](auto &scene) {
        scene.show();
        scene.view->addRow(scene.c(), 1);
        const std::unique_ptr<QMimeData> before(
            scene.view->makeMimeData({scene.row(Path(PtrT<Object>(scene.c())))}));
        const auto row = scene.row(scene.path());
        destroyViewWith(scene, scene.c());
        // Only the drag holds it from now on.
        scene.things[2] = {};
        QVERIFY(scene.view);
        const std::unique_ptr<QMimeData> mime(scene.view->makeMimeData({row}));
        QVERIFY(!scene.view);
    });
}

QTEST_MAIN(tst_TreeDropLifetimes)
#include "tst_TreeDropLifetimes.moc"
