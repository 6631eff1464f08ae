#include "support/ErrorReports.h"
#include "trees/CallingIconDB.h"
#include "trees/DroppedObject.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QDropEvent>
#include <QMimeData>

#include <functional>
#include <map>
#include <stdexcept>

using namespace tree_test;

namespace {

constexpr auto noPosition = static_cast<std::size_t>(-1);

} // namespace

/// Listeners that destroy the view, change its settings or raise exceptions.
class tst_TreeListeners : public QObject {
    Q_OBJECT

private slots:
    void viewMayDieInEachOfThem_data();
    void viewMayDieInEachOfThem();
    void settingReachesRowsThatAreBeingRebuilt_data();
    void settingReachesRowsThatAreBeingRebuilt();
    void firstToRaiseEndsTheDecision();
    void firstToRaiseEndsTheDrop();
};

void tst_TreeListeners::viewMayDieInEachOfThem_data()
{
    QTest::addColumn<QString>("way");
    for (char const *way :
         {"a decision on a drag", "a decision on a drop", "a decision with hidden fields", "a drop",
          "a row on the way to a selection", "a row on the way to a tooltip", "a refused name",
          "an icon database"})
        QTest::newRow(way) << way;
}

void tst_TreeListeners::viewMayDieInEachOfThem()
{
    QFETCH(QString, way);
    Scene scene;
    const RefT<CallingIconDB> icons(new CallingIconDB);
    scene.view->setObjIconDB(icons);
    scene.show();
    scene.dump();
    Tree &view = *scene.view;
    const RowHandle field = scene.row(scene.path("own")), object = scene.row(scene.path());
    const Path below = scene.path("own", 1);
    DroppedObject dropped(scene);
    const auto destroy = [&](auto const &) { scene.view.reset(); };
    const auto allowAndDestroy = [&](auto const &sigData) {
        *sigData.result = true;
        scene.view.reset();
    };
    std::map<QString, std::function<void()>> const ways = {
        {"a decision on a drag",
         [&] {
             view.sigCanDrop.connect(allowAndDestroy);
             QVERIFY(!view.onCanDrop(dropped.event, field, noPosition));
         }},
        {"a decision on a drop",
         [&] {
             view.sigCanDrop.connect(allowAndDestroy);
             view.onDrop(dropped.event, field, noPosition);
         }},
        {"a decision with hidden fields",
         [&] {
             view.setHideFields(true);
             view.sigCanDrop.connect(destroy);
             QVERIFY(!view.onCanDrop(dropped.event, object, noPosition));
         }},
        {"a drop",
         [&] {
             view.sigDrop.connect(destroy);
             view.onDrop(dropped.event, field, noPosition);
         }},
        {"a row on the way to a selection",
         [&] {
             view.sigRow.connect(destroy);
             view.setSel({below, below});
         }},
        {"a row on the way to a tooltip",
         [&] {
             view.setTooltipField("name");
             view.sigRow.connect(destroy);
             view.addRow(scene.b(), 0);
             const QPoint pos(30, 5);
             QMouseEvent move(QEvent::MouseMove, pos, view.viewport()->mapToGlobal(pos),
                              Qt::NoButton, Qt::NoButton, {});
             QApplication::sendEvent(view.viewport(), &move);
         }},
        {"a refused name",
         [&] {
             fieldOf<FieldString>(scene.a(), "name").sigCanSet.connect([&](auto const &) {
                 scene.view.reset();
                 throw ZR::Error("no");
             });
             view.onEditRowConfirm(*object, "new");
         }},
        {"an icon database",
         [&] {
             icons->onFind = [&] { scene.view.reset(); };
             view.addRow(scene.b(), 0);
             view.findRow({5, 5});
         }},
    };
    ways.at(way)();
    QVERIFY(!scene.view);
}

void tst_TreeListeners::settingReachesRowsThatAreBeingRebuilt_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<std::string>("expected");
    QTest::newRow("class names") << "class names"
                                 << std::string(
                                        "Thing 'a' .own ..Thing 'd' ..Thing 'x' ..Thing 'e'");
    QTest::newRow("name field") << "name field" << std::string(".own .. .. ..");
    QTest::newRow("hide fields") << "hide fields" << std::string("'a' ..'d' ..'x' ..'e'");
}

void tst_TreeListeners::settingReachesRowsThatAreBeingRebuilt()
{
    QFETCH(QString, setting);
    Scene scene;
    scene.view->addAcceptedField("", "own");
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.dump();
    int numCalls = 0;
    scene.view->sigRow.connect([&](auto const &) {
        if (++numCalls > 1)
            return;
        if (setting == "class names")
            scene.view->setTypeName(true);
        else if (setting == "name field")
            scene.view->setNameField("no such field");
        else
            scene.view->setHideFields(true);
    });
    // The rows of 'd' and 'e' stay, and one is made between them.
    scene.own().replace(1, 0, {makeThing("x")});
    QTEST(scene.dump(), "expected");
    QCOMPARE(numCalls, 1);
}

void tst_TreeListeners::firstToRaiseEndsTheDecision()
{
    Scene scene;
    scene.show();
    GUI::Reports reports;
    scene.view->sigCanDrop.connect([](auto const &) { throw std::runtime_error("broken"); });
    scene.view->sigCanDrop.connect([](auto const &sigData) { *sigData.result = true; });
    DroppedObject dropped(scene);
    QVERIFY(!scene.view->onCanDrop(dropped.event, scene.row(scene.path("own")), noPosition));
    QCOMPARE(reports.texts,
             (std::vector<std::string>{"ZR::VOM::GUI::ObjectTreeView::canDrop: broken"}));
}

void tst_TreeListeners::firstToRaiseEndsTheDrop()
{
    Scene scene;
    scene.show();
    GUI::Reports reports;
    int numTold = 0;
    scene.view->sigDrop.connect([](auto const &) { throw std::runtime_error("broken"); });
    scene.view->sigDrop.connect([&](auto const &) { ++numTold; });
    DroppedObject dropped(scene);
    scene.view->onDrop(dropped.event, scene.row(scene.path("own")), noPosition);
    QCOMPARE(numTold, 0);
    QCOMPARE(reports.texts,
             (std::vector<std::string>{"ZR::VOM::GUI::ObjectTreeView::onDrop: broken"}));
}

QTEST_MAIN(tst_TreeListeners)
#include "tst_TreeListeners.moc"
