#include "support/MouseScene.h"
#include "support/QtStrings.h"

#include <stdexcept>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Scene = MouseScene;

namespace {

/// A widget around views, which counts the mouse events that they leave to it.
struct Host : QWidget {
    void mousePressEvent(QMouseEvent *) override { ++numEvents; }
    void mouseReleaseEvent(QMouseEvent *) override { ++numEvents; }
    void mouseMoveEvent(QMouseEvent *) override { ++numEvents; }

    int numEvents = 0;
};

/// Lets the view be a page of the host's window.
void showInside(Host &host, Scene &scene)
{
    host.resize(scene.view().size() + QSize(40, 60));
    scene.view().setParent(&host);
    scene.view().move(20, 30);
    scene.view().show();
    host.show();
    QVERIFY(QTest::qWaitForWindowExposed(&host));
}

} // namespace

/// Clicks on a graph, and what their listeners may do.
class tst_Interaction : public QObject {
    Q_OBJECT

private slots:
    void pressSelectsNothing();
    void clickSelectsThatNodeAlone();
    void controlClickAddsAndRemoves();
    void clickOnNothingClearsTheSelection_data();
    void clickOnNothingClearsTheSelection();
    void clickOfASelectedOneAmongOthersSelectsItAlone();
    void clickAsksForARepaintOfTheSameBounds();
    void releaseCountsWhereItHappens();
    void scrollBarsAreAddedToTheMouse();
    void arrowsRevealAndSelectNothing();
    void arrowWithoutHiddenNeighboursIsNothing();
    void rightClickSelectsWithoutASignal();
    void rightClickOnASelectedNodeKeepsTheSelection();
    void rightClickOnNothingKeepsTheSelectionAndAsksForAMenu();
    void menuIsAskedForWhereTheMouseIs();
    void menuIsAskedForInsideTheFrame();
    void otherButtonsDoNothing();
    void mouseEventsEndAtTheView();
    void doubleClickIsTwoClicks_data();
    void doubleClickIsTwoClicks();
    void windowSystemsMouseSelects();
    void rightToLeftLayoutKeepsTheMouseWhereItIs();

    void listenerMayThrow();
    void listenerMayDestroyTheView_data();
    void listenerMayDestroyTheView();
    void listenerMayDestroyTheViewInsideAHost();
    void listenerMayRemoveTheClickedNode_data();
    void listenerMayRemoveTheClickedNode();
    void listenerMayClick();
};

void tst_Interaction::pressSelectsNothing()
{
    Scene scene(2);
    scene.press(scene.centre(0));
    QCOMPARE(scene.selected(), QString());
    QCOMPARE(scene.numSel, 0);
    scene.release(scene.centre(0));
    QCOMPARE(scene.selected(), QString("0"));
    QCOMPARE(scene.numSel, 1);
}

void tst_Interaction::clickSelectsThatNodeAlone()
{
    Scene scene(3);
    scene.select({1, 2});
    scene.click(scene.centre(0));
    QCOMPARE(scene.selected(), QString("0"));
    QCOMPARE(scene.takeNumSel(), 1);
    scene.click(scene.centre(0));
    QCOMPARE(scene.selected(), QString("0"));
    QCOMPARE(scene.takeNumSel(), 1);
}

void tst_Interaction::controlClickAddsAndRemoves()
{
    Scene scene(3);
    scene.click(scene.centre(0));
    scene.click(scene.centre(2), Qt::ControlModifier);
    QCOMPARE(scene.selected(), QString("0 2"));
    scene.click(scene.centre(0), Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(scene.selected(), QString("2"));
    QCOMPARE(scene.numSel, 3);
}

void tst_Interaction::clickOnNothingClearsTheSelection_data()
{
    QTest::addColumn<bool>("onBand");
    QTest::addColumn<bool>("withControl");
    QTest::newRow("empty space") << false << false;
    QTest::newRow("empty space with Control") << false << true;
    QTest::newRow("band of a node, beside its arrow") << true << false;
}

void tst_Interaction::clickOnNothingClearsTheSelection()
{
    QFETCH(bool, onBand);
    QFETCH(bool, withControl);
    Scene scene(2);
    scene.select({0, 1});
    scene.click(onBand ? scene.band(0) : scene.nowhere(),
                withControl ? Qt::ControlModifier : Qt::NoModifier);
    QCOMPARE(scene.selected(), QString());
    QCOMPARE(scene.numSel, 1);
}

void tst_Interaction::clickOfASelectedOneAmongOthersSelectsItAlone()
{
    Scene scene(3);
    scene.select({0, 1, 2});
    scene.click(scene.centre(1));
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel, 1);
}

void tst_Interaction::clickAsksForARepaintOfTheSameBounds()
{
    Scene scene(2);
    const QPoint pos = scene.centre(0);
    const Asked asked = askedBy(scene.view(), [&] { scene.click(pos); });
    QVERIFY(asked.repaint);
    QVERIFY(!asked.bounds);
}

void tst_Interaction::releaseCountsWhereItHappens()
{
    Scene scene(2);
    scene.press(scene.centre(0));
    scene.release(scene.centre(1));
    QCOMPARE(scene.selected(), QString("1"));
}

void tst_Interaction::scrollBarsAreAddedToTheMouse()
{
    Scene scene(12);
    for (unsigned i = 0; i < 12; ++i)
        scene.view().setPos(scene.graph->obj(i), 50 + 100 * int(i), 150 + 70 * int(i), false);
    GraphViewAccess::boundsStale(scene.view()) = true;
    scene.view().grab();
    const QPoint before = scene.scroll();
    scene.view().horizontalScrollBar()->setValue(before.x() + 400);
    scene.view().verticalScrollBar()->setValue(before.y() + 300);
    QCOMPARE(scene.scroll(), before + QPoint(400, 300));
    scene.click(scene.centre(6));
    QCOMPARE(scene.selected(), QString("6"));
}

void tst_Interaction::arrowsRevealAndSelectNothing()
{
    Scene scene(3, {{0, 1}, {1, 2}});
    for (unsigned hidden : {0u, 2u})
        scene.graph->hide(hidden);
    scene.select({1});
    scene.view().grab();
    scene.click(scene.upperArrow(1));
    QVERIFY(scene.graph->node(0).visible);
    QVERIFY(scene.graph->node(0).y < scene.graph->node(1).y);
    QVERIFY(!scene.graph->node(2).visible);
    scene.view().grab();
    scene.click(scene.lowerArrow(1), Qt::ControlModifier);
    QVERIFY(scene.graph->node(2).visible);
    QVERIFY(scene.graph->node(2).y > scene.graph->node(1).y);
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel, 0);
}

void tst_Interaction::arrowWithoutHiddenNeighboursIsNothing()
{
    Scene scene(2, {{0, 1}});
    scene.select({0});
    scene.click(scene.lowerArrow(0));
    QCOMPARE(scene.selected(), QString());
}

/// KEPT: a right click that selects emits no sigSel.
void tst_Interaction::rightClickSelectsWithoutASignal()
{
    Scene scene(3);
    scene.select({0, 2});
    scene.rightClick(scene.centre(1));
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel, 0);
    QCOMPARE(scene.numMenus, 1);
}

void tst_Interaction::rightClickOnASelectedNodeKeepsTheSelection()
{
    Scene scene(3);
    scene.select({0, 1});
    scene.rightClick(scene.centre(1));
    QCOMPARE(scene.selected(), QString("0 1"));
    QCOMPARE(scene.numSel, 0);
    QCOMPARE(scene.numMenus, 1);
}

void tst_Interaction::rightClickOnNothingKeepsTheSelectionAndAsksForAMenu()
{
    Scene scene(2, {{0, 1}});
    scene.graph->hide(1);
    scene.select({0});
    scene.view().grab();
    for (QPoint const &pos : {scene.nowhere(), scene.band(0), scene.lowerArrow(0)})
        scene.rightClick(pos);
    QCOMPARE(scene.selected(), QString("0"));
    QVERIFY(!scene.graph->node(1).visible);
    QCOMPARE(scene.numSel, 0);
    QCOMPARE(scene.numMenus, 3);
}

void tst_Interaction::menuIsAskedForWhereTheMouseIs()
{
    Scene scene(12);
    scene.view().horizontalScrollBar()->setValue(scene.scroll().x() + 300);
    scene.rightClick({17, 23});
    QCOMPARE(scene.menuPos, QPoint(17, 23));
}

void tst_Interaction::menuIsAskedForInsideTheFrame()
{
    Scene scene(12);
    scene.view().setFrameStyle(QFrame::Box | QFrame::Plain);
    scene.view().setLineWidth(7);
    // The other bar stands on the left.
    scene.view().setLayoutDirection(Qt::RightToLeft);
    scene.view().setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QApplication::processEvents();
    QVERIFY(scene.viewport()->x() > 7);
    scene.rightClick({1, 2});
    QCOMPARE(scene.menuPos, QPoint(1, 2));
}

void tst_Interaction::otherButtonsDoNothing()
{
    Scene scene(2);
    scene.select({1});
    for (Qt::MouseButton button : {Qt::MiddleButton, Qt::BackButton})
        scene.click(scene.centre(0), {}, button);
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel + scene.numMenus, 0);
}

void tst_Interaction::mouseEventsEndAtTheView()
{
    Host host;
    Scene scene(2);
    showInside(host, scene);
    // The scroll area would leave them to the host.
    for (QPoint const &pos : {scene.centre(0), scene.nowhere()}) {
        for (Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
            scene.click(pos, {}, button);
        scene.move(pos);
    }
    QCOMPARE(host.numEvents, 0);
    QTest::mouseClick(&host, Qt::LeftButton, {}, {5, 5});
    QCOMPARE(host.numEvents, 2);
}

void tst_Interaction::doubleClickIsTwoClicks_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("selected");
    QTest::newRow("plain") << Qt::KeyboardModifiers() << "0";
    QTest::newRow("Control") << Qt::KeyboardModifiers(Qt::ControlModifier) << "1";
}

void tst_Interaction::doubleClickIsTwoClicks()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Scene scene(2);
    scene.select({1});
    QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
    QTest::mouseDClick(scene.view().windowHandle(), Qt::LeftButton, modifiers, scene.centre(0));
    QTRY_COMPARE(scene.numSel, 2);
    QTEST(scene.selected(), "selected");
}

void tst_Interaction::windowSystemsMouseSelects()
{
    Host host;
    Scene scene(3);
    showInside(host, scene);
    const auto inWindow = [&](QPoint const &pos) { return scene.viewport()->mapTo(&host, pos); };
    QTest::mouseClick(host.windowHandle(), Qt::LeftButton, {}, inWindow(scene.centre(1)));
    QTRY_COMPARE(scene.selected(), QString("1"));
    QTest::mouseClick(host.windowHandle(), Qt::LeftButton, Qt::ControlModifier,
                      inWindow(scene.centre(2)));
    QTRY_COMPARE(scene.selected(), QString("1 2"));
    QTest::mouseClick(host.windowHandle(), Qt::RightButton, {}, inWindow({17, 23}));
    QTRY_COMPARE(scene.menuPos, QPoint(17, 23));
}

void tst_Interaction::rightToLeftLayoutKeepsTheMouseWhereItIs()
{
    Scene scene(12);
    scene.view().setLayoutDirection(Qt::RightToLeft);
    QApplication::processEvents();
    scene.view().horizontalScrollBar()->setValue(scene.scroll().x() + 300);
    scene.view().grab();
    scene.click(scene.centre(5));
    QCOMPARE(scene.selected(), QString("5"));
}

void tst_Interaction::listenerMayThrow()
{
    Scene scene(2);
    const auto fail = [](auto const &) { throw std::runtime_error("broken"); };
    scene.view().sigSel.connect(fail);
    scene.view().sigPopupMenu.connect(fail);
    Reports reports;
    scene.click(scene.centre(0));
    scene.key(Qt::Key_A, Qt::ControlModifier);
    scene.rightClick(scene.nowhere());
    QCOMPARE(reports.texts, (std::vector<std::string>{
                                "ZR::VOM::GUI::ObjectGraphView::mouseReleaseEvent: broken",
                                "ZR::VOM::GUI::ObjectGraphView::keyPressEvent: broken",
                                "ZR::VOM::GUI::ObjectGraphView::mouseReleaseEvent: broken"}));
    QCOMPARE(scene.selected(), QString("0 1"));
}

void tst_Interaction::listenerMayDestroyTheView_data()
{
    QTest::addColumn<QString>("deed");
    for (char const *deed : {"click", "menu", "key", "reveal"})
        QTest::newRow(deed) << QString(deed);
}

void tst_Interaction::listenerMayDestroyTheView()
{
    QFETCH(QString, deed);
    Scene scene(2, {{0, 1}});
    if (deed == "reveal") {
        scene.graph->hide(1);
        scene.view().grab();
    }
    const QPoint pos = deed == "click"    ? scene.centre(0)
                       : deed == "reveal" ? scene.lowerArrow(0)
                                          : scene.nowhere();
    const auto destroy = [&scene](auto const &) { scene.graph.reset(); };
    scene.view().sigSel.connect(destroy);
    scene.view().sigPopupMenu.connect(destroy);
    scene.view().sigInsertNode.connect(destroy);
    // QTest itself would look at the viewport afterwards.
    QWidget *const viewport = scene.viewport();
    if (deed == "key") {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
        QApplication::sendEvent(&scene.view(), &event);
    } else {
        const Qt::MouseButton button = deed == "menu" ? Qt::RightButton : Qt::LeftButton;
        QMouseEvent event(QEvent::MouseButtonRelease, pos, viewport->mapToGlobal(pos), button, {},
                          {});
        QApplication::sendEvent(viewport, &event);
    }
    QVERIFY(!scene.graph);
}

void tst_Interaction::listenerMayDestroyTheViewInsideAHost()
{
    Host host;
    Scene scene(2);
    showInside(host, scene);
    const QPoint pos = scene.viewport()->mapTo(&host, scene.centre(0));
    scene.view().sigSel.connect([&scene](auto const &) { scene.graph.reset(); });
    QTest::mouseClick(host.windowHandle(), Qt::LeftButton, {}, pos);
    QTRY_VERIFY(!scene.graph);
}

void tst_Interaction::listenerMayRemoveTheClickedNode_data()
{
    QTest::addColumn<QString>("end");
    for (char const *end : {"removes", "kills", "clears", "hides"})
        QTest::newRow(end) << QString(end);
}

void tst_Interaction::listenerMayRemoveTheClickedNode()
{
    QFETCH(QString, end);
    for (const bool byMenu : {false, true}) {
        Scene scene(2);
        const auto act = [&](auto const &) {
            if (end == "removes")
                scene.view().remove({scene.graph->obj(0)});
            else if (end == "kills")
                scene.graph->model.objs[0] = {};
            else if (end == "clears")
                scene.view().clear();
            else
                scene.graph->hide(0);
        };
        const QPoint pos = scene.centre(0);
        if (byMenu)
            scene.view().sigPopupMenu.connect(act);
        else
            scene.view().sigSel.connect(act);
        scene.click(pos, {}, byMenu ? Qt::RightButton : Qt::LeftButton);
        QVERIFY(scene.view().getSel().empty());
        scene.move(pos + QPoint(100, 0), Qt::LeftButton);
        QVERIFY(GraphViewAccess::dragObjs(scene.view()).empty());
        // What is left works on.
        scene.view().grab();
        scene.click(scene.nowhere());
        scene.rightClick(scene.nowhere());
    }
}

void tst_Interaction::listenerMayClick()
{
    Scene scene(3);
    bool clicks = true;
    scene.view().sigSel.connect([&](auto const &) {
        if (std::exchange(clicks, false))
            scene.click(scene.centre(2), Qt::ControlModifier);
    });
    scene.click(scene.centre(0));
    QCOMPARE(scene.selected(), QString("0 2"));
    QCOMPARE(scene.numSel, 2);
}

QTEST_MAIN(tst_Interaction)
#include "tst_Interaction.moc"
