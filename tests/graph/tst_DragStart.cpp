#include "support/MouseScene.h"
#include "support/QtStrings.h"

#include <limits>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Scene = MouseScene;

Q_DECLARE_METATYPE(Qt::MouseButton)

/// Presses and moves: which of them begin a drag, seen by what it selects.
class tst_DragStart : public QObject {
    Q_OBJECT

private slots:
    void dragSelectsThePressedNode();
    void selectedNodeIsDraggedWithAllThatIsSelected();
    void dragBeginsAtTheStartDistance_data();
    void dragBeginsAtTheStartDistance();
    void onlyPressedBoxesAreDragged_data();
    void onlyPressedBoxesAreDragged();
    void movesWithoutButtonsDragNothing();
    void otherPressesAreNotStored_data();
    void otherPressesAreNotStored();
    void nextLeftPressReplacesTheStoredOne();
    void releasedPressStillDragsByAnyButton_data();
    void releasedPressStillDragsByAnyButton();
    void farNodeIsDraggedFromWhereItWasPressed();
    void nodeThatMovedAwayIsDragged();
    void goneNodeIsNotDragged_data();
    void goneNodeIsNotDragged();
    void nodeThatWasAddedAgainIsNotDragged();
    void hiddenNodeIsSelectedAndDraggedAsNothing();
    void placesBeyondAllNodesDoNotOverflow();
    void windowSystemsMouseDrags();
};

void tst_DragStart::dragSelectsThePressedNode()
{
    Scene scene(3);
    scene.select({2});
    scene.press(scene.centre(0));
    QCOMPARE(scene.selected(), QString("2"));
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("0"));
    QCOMPARE(scene.takeDragged(), QString("0"));
    QCOMPARE(scene.numSel, 0);
}

void tst_DragStart::selectedNodeIsDraggedWithAllThatIsSelected()
{
    Scene scene(3);
    scene.select({1, 2});
    scene.press(scene.centre(1));
    scene.move(scene.centre(0), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("1 2"));
    QCOMPARE(scene.takeDragged(), QString("1 2"));
    QCOMPARE(scene.numSel, 0);
}

void tst_DragStart::dragBeginsAtTheStartDistance_data()
{
    QTest::addColumn<QPoint>("distance");
    QTest::addColumn<bool>("drags");
    const int start = QApplication::startDragDistance();
    QTest::newRow("none") << QPoint(0, 0) << false;
    QTest::newRow("one less to the right") << QPoint(start - 1, 0) << false;
    QTest::newRow("as far to the right") << QPoint(start, 0) << true;
    QTest::newRow("one less to the left") << QPoint(1 - start, 0) << false;
    QTest::newRow("as far to the left") << QPoint(-start, 0) << true;
    QTest::newRow("one less down") << QPoint(0, start - 1) << false;
    QTest::newRow("as far up") << QPoint(0, -start) << true;
    QTest::newRow("one less, both ways added") << QPoint(-1, start - 2) << false;
    QTest::newRow("as far, both ways added") << QPoint(-1, 1 - start) << true;
}

void tst_DragStart::dragBeginsAtTheStartDistance()
{
    QFETCH(QPoint, distance);
    QFETCH(bool, drags);
    Scene scene(2);
    scene.press(scene.centre(0));
    scene.move(scene.centre(0) + distance, Qt::LeftButton);
    QCOMPARE(scene.takeDragged(), QString(drags ? "0" : ""));
    QCOMPARE(scene.selected(), QString(drags ? "0" : ""));
}

void tst_DragStart::onlyPressedBoxesAreDragged_data()
{
    QTest::addColumn<QString>("place");
    for (char const *place : {"empty space", "band", "upper arrow", "lower arrow"})
        QTest::newRow(place) << QString(place);
}

void tst_DragStart::onlyPressedBoxesAreDragged()
{
    QFETCH(QString, place);
    Scene scene(3, {{2, 0}, {0, 2}});
    scene.graph->hide(2);
    scene.view().grab();
    const QPoint pos = place == "band"          ? scene.band(0)
                       : place == "upper arrow" ? scene.upperArrow(0)
                       : place == "lower arrow" ? scene.lowerArrow(0)
                                                : scene.nowhere();
    scene.press(pos);
    scene.move(scene.centre(0), Qt::LeftButton);
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString());
    QVERIFY(!scene.graph->node(2).visible);
}

void tst_DragStart::movesWithoutButtonsDragNothing()
{
    Scene scene(2);
    scene.click(scene.centre(0));
    scene.select({});
    scene.move(scene.centre(1));
    QCOMPARE(scene.selected(), QString());
    QCOMPARE(scene.takeDragged(), QString());
}

void tst_DragStart::otherPressesAreNotStored_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("back") << Qt::BackButton;
}

void tst_DragStart::otherPressesAreNotStored()
{
    QFETCH(Qt::MouseButton, button);
    Scene scene(2);
    QTest::mousePress(scene.viewport(), button, {}, scene.centre(0));
    scene.move(scene.centre(1), button);
    QCOMPARE(scene.takeDragged(), QString());
    scene.press(scene.centre(0));
    QTest::mousePress(scene.viewport(), button, {}, scene.centre(1));
    scene.move(scene.centre(1), Qt::LeftButton | button);
    QCOMPARE(scene.takeDragged(), QString("0"));
}

void tst_DragStart::nextLeftPressReplacesTheStoredOne()
{
    Scene scene(3);
    scene.press(scene.centre(0));
    scene.press(scene.centre(1));
    scene.move(scene.centre(2), Qt::LeftButton);
    QCOMPARE(scene.takeDragged(), QString("1"));
    scene.press(scene.nowhere());
    scene.move(scene.centre(2), Qt::LeftButton);
    QCOMPARE(scene.takeDragged(), QString());
}

void tst_DragStart::releasedPressStillDragsByAnyButton_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

/// KEPT: a release doesn't forget what was pressed, and any button drags it from there.
void tst_DragStart::releasedPressStillDragsByAnyButton()
{
    QFETCH(Qt::MouseButton, button);
    Scene scene(3);
    scene.click(scene.centre(0));
    scene.click(scene.nowhere(), {}, Qt::RightButton);
    scene.select({2});
    // Where nothing is; it is measured from the old press.
    scene.move(scene.nowhere(), button);
    QCOMPARE(scene.selected(), QString("0"));
    QCOMPARE(scene.takeDragged(), QString("0"));
    scene.move(scene.centre(0) + QPoint(1, 1), button);
    QCOMPARE(scene.takeDragged(), QString());
}

void tst_DragStart::farNodeIsDraggedFromWhereItWasPressed()
{
    for (Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
        Scene scene(12);
        scene.view().setPos(scene.graph->obj(1), 0, 3000, false);
        GraphViewAccess::boundsStale(scene.view()) = true;
        scene.view().grab();
        QScrollBar *const bar = orientation == Qt::Horizontal ? scene.view().horizontalScrollBar()
                                                              : scene.view().verticalScrollBar();
        const QPoint pos = scene.centre(0);
        scene.press(pos);
        // The mouse stands still, and the content runs along under it.
        bar->setValue(bar->value() + 200);
        scene.move(pos, Qt::LeftButton);
        QCOMPARE(scene.takeDragged(), QString("0"));
        // And it runs back while the mouse moves with it.
        scene.press(scene.centre(0));
        bar->setValue(bar->value() - 40);
        scene.move(scene.centre(0), Qt::LeftButton);
        QCOMPARE(scene.takeDragged(), QString());
    }
}

void tst_DragStart::nodeThatMovedAwayIsDragged()
{
    Scene scene(2);
    scene.press(scene.centre(0));
    scene.view().setPos(scene.graph->obj(0), 5000, 5000, false);
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.takeDragged(), QString("0"));
}

void tst_DragStart::goneNodeIsNotDragged_data()
{
    QTest::addColumn<QString>("end");
    for (char const *end : {"removed", "died", "cleared"})
        QTest::newRow(end) << QString(end);
}

void tst_DragStart::goneNodeIsNotDragged()
{
    QFETCH(QString, end);
    Scene scene(2);
    scene.select({1});
    const QPoint pos = scene.centre(1);
    scene.press(scene.centre(0));
    if (end == "removed")
        scene.view().remove({scene.graph->obj(0)});
    else if (end == "died")
        scene.graph->model.objs[0] = {};
    else
        scene.view().clear();
    const std::vector<RefT<VOM::Object>> before = scene.view().getSel();
    QCOMPARE(before.size(), std::size_t(end == "cleared" ? 0 : 1));
    scene.move(pos, Qt::LeftButton);
    QCOMPARE(scene.view().getSel(), before);
    QVERIFY(GraphViewAccess::dragObjs(scene.view()).empty());
}

void tst_DragStart::nodeThatWasAddedAgainIsNotDragged()
{
    Scene scene(2);
    scene.select({1});
    const QPoint pressed = scene.centre(0);
    scene.press(pressed);
    const RefT<VOM::Object> obj = scene.graph->obj(0);
    scene.view().remove({obj});
    scene.view().add({obj}, false);
    scene.view().setVisible({obj}, true);
    scene.move(pressed + QPoint(100, 0), Qt::LeftButton);
    QCOMPARE(scene.view().getSel(), std::vector<RefT<VOM::Object>>{scene.graph->obj(1)});
    QCOMPARE(scene.takeDragged(), QString());
}

void tst_DragStart::hiddenNodeIsSelectedAndDraggedAsNothing()
{
    Scene scene(2);
    scene.select({1});
    scene.press(scene.centre(0));
    scene.graph->hide(0);
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("0"));
    QVERIFY(scene.view().getSel().empty());
    QCOMPARE(scene.takeDragged(), QString());
}

void tst_DragStart::placesBeyondAllNodesDoNotOverflow()
{
    using Limits = std::numeric_limits<int>;
    Scene scene(12);
    // So far that both bars have something to add, and to take away.
    scene.view().setPos(scene.graph->obj(10), -5000, -5000, false);
    scene.view().setPos(scene.graph->obj(11), 5000, 5000, false);
    GraphViewAccess::boundsStale(scene.view()) = true;
    scene.view().grab();
    for (const bool right : {false, true}) {
        for (QScrollBar *bar :
             {scene.view().horizontalScrollBar(), scene.view().verticalScrollBar()})
            bar->setValue(right ? bar->maximum() : bar->minimum());
        QVERIFY(right ? scene.scroll().x() > 0 : scene.scroll().x() < 0);
        const int end = right ? Limits::max() : Limits::min();
        const QPoint far(end, end);
        scene.press(far);
        scene.release(far);
        QCOMPARE(scene.takeNumSel(), 1);
        scene.press(scene.centre(right ? 11 : 10));
        scene.move(far, Qt::LeftButton);
        QCOMPARE(scene.takeDragged(), QString(right ? "11" : "10"));
    }
}

void tst_DragStart::windowSystemsMouseDrags()
{
    Scene scene(3);
    QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
    QWindow *const window = scene.view().windowHandle();
    QTest::mouseMove(window, scene.centre(1));
    QTest::mousePress(window, Qt::LeftButton, {}, scene.centre(1));
    QCOMPARE(scene.selected(), QString());
    for (int x = 0; x <= 2 * QApplication::startDragDistance(); x += 4)
        QTest::mouseMove(window, scene.centre(1) + QPoint(x, 0));
    QTRY_COMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.takeDragged(), QString("1"));
    QTest::mouseRelease(window, Qt::LeftButton, {}, scene.centre(1));
}

QTEST_MAIN(tst_DragStart)
#include "tst_DragStart.moc"
