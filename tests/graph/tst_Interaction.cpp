#include "support/QtStrings.h"
#include "support/ViewGraph.h"
#include "support/ViewProbe.h"

#include <QApplication>
#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QtTest>

#include <memory>
#include <stdexcept>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;
using Node = Graph::Node;

namespace {

/// Numbered nodes with labels "0", "1", ... in a row, apart from each other, in a window.
struct Scene {
    explicit Scene(unsigned numNodes, std::vector<NumberedGraph::Link> const &links = {})
        : graph(std::make_unique<ViewGraph>(numNodes, links))
    {
        for (unsigned i = 0; i < numNodes; ++i)
            VOM::addField<VOM::FieldString>(*graph->obj(i), "name", std::to_string(i));
        view().animDuration.set(0);
        view().setTypeName(false);
        view().setFieldName("name");
        view().setFrameShape(QFrame::NoFrame);
        view().resize(600, 300);
        view().show();
        graph->showWithoutLayout();
        for (unsigned i = 0; i < numNodes; ++i)
            view().setPos(graph->obj(i), 50 + 100 * int(i), 150, false);
        GraphViewAccess::boundsStale(view()) = true;
        view().grab();
        view().sigSel.connect([this](auto const &) { ++numSel; });
        view().sigPopupMenu.connect([this](auto const &sigData) {
            ++numMenus;
            menuPos = QPoint(sigData.x, sigData.y);
        });
    }

    ObjectGraphView &view() { return graph->view; }
    QWidget *viewport() { return view().viewport(); }
    QPoint scroll()
    {
        return {view().horizontalScrollBar()->value(), view().verticalScrollBar()->value()};
    }
    /// In the viewport.
    QPoint centre(unsigned index)
    {
        return QPoint(graph->node(index).x, graph->node(index).y) - scroll();
    }
    QPoint upperArrow(unsigned index) { return arrow(index, graph->node(index).topY); }
    QPoint lowerArrow(unsigned index) { return arrow(index, graph->node(index).bottomY); }
    /// Over the box, beside the arrow.
    QPoint band(unsigned index)
    {
        Node const &node = graph->node(index);
        return centre(index) + QPoint(node.width / 2 - 1, -(node.height / 2) + 1);
    }
    QPoint nowhere() { return {viewport()->width() - 3, viewport()->height() - 3}; }

    void click(QPoint const &pos, Qt::KeyboardModifiers modifiers = {},
               Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(viewport(), button, modifiers, pos);
    }
    void rightClick(QPoint const &pos) { click(pos, {}, Qt::RightButton); }
    void move(QPoint const &pos, Qt::MouseButtons buttons = Qt::NoButton)
    {
        QMouseEvent event(QEvent::MouseMove, pos, Qt::NoButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(viewport(), &event);
    }
    void press(QPoint const &pos) { QTest::mousePress(viewport(), Qt::LeftButton, {}, pos); }
    void release(QPoint const &pos) { QTest::mouseRelease(viewport(), Qt::LeftButton, {}, pos); }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&view(), which, modifiers);
    }

    void select(std::vector<unsigned> const &numbers)
    {
        std::vector<RefT<VOM::Object>> objs;
        for (unsigned number : numbers)
            objs.push_back(graph->obj(number));
        view().setSel(objs);
    }
    /// Numbers of the selected nodes, hidden ones too.
    QString selected()
    {
        QStringList numbers;
        for (unsigned i = 0; i < graph->numNodes(); ++i)
            if (graph->node(i).selected)
                numbers << QString::number(i);
        return numbers.join(' ');
    }
    int takeNumSel() { return std::exchange(numSel, 0); }

    std::unique_ptr<ViewGraph> graph;
    int numSel = 0, numMenus = 0;
    QPoint menuPos;

private:
    QPoint arrow(unsigned index, int offset)
    {
        Node const &node = graph->node(index);
        return centre(index) + QPoint(node.arrowX + 2, offset + 2);
    }
};

VOM::FieldString &addTip(Scene &scene, unsigned index, std::string const &text)
{
    return VOM::addField<VOM::FieldString>(*scene.graph->obj(index), "tip", text);
}

} // namespace

/// The mouse and the keyboard on a graph.
class tst_Interaction : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

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
    void otherButtonsDoNothing();

    void controlASelectsAllThatIsVisible();
    void controlShiftAClears();
    void plainADoesNothing_data();
    void plainADoesNothing();
    void otherKeysAreTheScrollAreas();
    void tenThousandNodesAreSelectedAtOnce();

    void dragSelectsThePressedNode();
    void shortMovesAreNoDrag();
    void pressOnNothingDragsNothing();
    void releasedPressStillDragsByAnyButton();
    void farNodeIsDraggedFromWhereItWasPressed();
    void deadNodeIsNotDragged();
    void nodeThatWasAddedAgainIsNotDragged();
    void hiddenNodeIsSelectedAndDraggedAsNothing();

    void tooltipIsTheFieldOfTheNodeUnderTheMouse();
    void tooltipsAreOffAtFirst();
    void switchingTooltipsOffClearsTheCurrentOne();
    void onlyBoxesWithAStringFieldHaveTooltips();
    void moveThatMayBeADragLeavesTheTooltip();
    void tooltipIsShownOverTheViewport();

    void listenerMayThrow();
    void listenerMayDestroyTheView_data();
    void listenerMayDestroyTheView();
    void listenerMayRemoveTheClickedNode();
    void rightToLeftLayoutKeepsTheMouseWhereItIs();
};

void tst_Interaction::initTestCase()
{
    // Drags end at once on this platform, and say so.
    qInstallMessageHandler([](QtMsgType type, QMessageLogContext const &, QString const &text) {
        if (type != QtWarningMsg && type != QtDebugMsg)
            fprintf(stderr, "%s\n", qPrintable(text));
    });
}

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
    const QPoint before = scene.scroll();
    scene.view().horizontalScrollBar()->setValue(before.x() + 400);
    QCOMPARE(scene.scroll().x(), before.x() + 400);
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

void tst_Interaction::otherButtonsDoNothing()
{
    Scene scene(2);
    scene.select({1});
    for (Qt::MouseButton button : {Qt::MiddleButton, Qt::BackButton})
        scene.click(scene.centre(0), {}, button);
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel + scene.numMenus, 0);
    // Nor do they begin a drag.
    QTest::mousePress(scene.viewport(), Qt::MiddleButton, {}, scene.centre(0));
    scene.move(scene.centre(0) + QPoint(50, 0), Qt::MiddleButton);
    QCOMPARE(scene.selected(), QString("1"));
}

void tst_Interaction::controlASelectsAllThatIsVisible()
{
    Scene scene(4);
    scene.graph->hide(2);
    scene.select({2});
    const Asked asked = askedBy(scene.view(), [&] { scene.key(Qt::Key_A, Qt::ControlModifier); });
    QCOMPARE(scene.selected(), QString("0 1 3"));
    QCOMPARE(scene.numSel, 1);
    QVERIFY(asked.repaint);
    QVERIFY(!asked.bounds);
}

void tst_Interaction::controlShiftAClears()
{
    Scene scene(2);
    scene.select({0, 1});
    scene.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(scene.selected(), QString());
    QCOMPARE(scene.numSel, 1);
}

void tst_Interaction::plainADoesNothing_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("alone") << Qt::KeyboardModifiers();
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier);
}

void tst_Interaction::plainADoesNothing()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    Scene scene(2);
    scene.select({1});
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, modifiers);
    event.setAccepted(true);
    QApplication::sendEvent(&scene.view(), &event);
    // The scroll area would have ignored it.
    QVERIFY(event.isAccepted());
    QCOMPARE(scene.selected(), QString("1"));
    QCOMPARE(scene.numSel, 0);
}

void tst_Interaction::otherKeysAreTheScrollAreas()
{
    Scene scene(12);
    const int before = scene.scroll().x();
    scene.key(Qt::Key_Right);
    QVERIFY(scene.scroll().x() > before);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_B, Qt::NoModifier);
    event.setAccepted(true);
    QApplication::sendEvent(&scene.view(), &event);
    QVERIFY(!event.isAccepted());
}

void tst_Interaction::tenThousandNodesAreSelectedAtOnce()
{
    Scene scene(10000);
    scene.key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(scene.view().getSel().size(), std::size_t(10000));
    QCOMPARE(scene.numSel, 1);
}

void tst_Interaction::dragSelectsThePressedNode()
{
    Scene scene(3);
    scene.select({2});
    scene.press(scene.centre(0));
    scene.move(scene.centre(0) + QPoint(QApplication::startDragDistance(), 0), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("0"));
    QCOMPARE(scene.numSel, 0);
    // What is selected already stays, with what else is.
    scene.select({1, 2});
    scene.press(scene.centre(1));
    scene.move(scene.centre(1) + QPoint(0, -50), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("1 2"));
    QCOMPARE(scene.numSel, 0);
}

void tst_Interaction::shortMovesAreNoDrag()
{
    Scene scene(2);
    const int almost = QApplication::startDragDistance() - 1;
    scene.press(scene.centre(0));
    scene.move(scene.centre(0) + QPoint(almost, 0), Qt::LeftButton);
    scene.move(scene.centre(0) + QPoint(-1, 1 - almost), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString());
    scene.move(scene.centre(0) + QPoint(-1, -almost), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("0"));
}

void tst_Interaction::pressOnNothingDragsNothing()
{
    Scene scene(2);
    for (QPoint const &pos : {scene.nowhere(), scene.band(0)}) {
        scene.press(pos);
        scene.move(scene.centre(0), Qt::LeftButton);
        scene.move(scene.centre(1), Qt::LeftButton);
    }
    QCOMPARE(scene.selected(), QString());
}

/// KEPT: a release doesn't forget what was pressed, and any button drags it from there.
void tst_Interaction::releasedPressStillDragsByAnyButton()
{
    Scene scene(3);
    scene.click(scene.centre(0));
    scene.select({});
    scene.rightClick(scene.centre(2));
    QCOMPARE(scene.selected(), QString("2"));
    scene.move(scene.centre(2), Qt::RightButton);
    QCOMPARE(scene.selected(), QString("0"));
}

void tst_Interaction::farNodeIsDraggedFromWhereItWasPressed()
{
    Scene scene(12);
    scene.press(scene.centre(0));
    // The mouse stands still, and the content runs along under it.
    const QPoint pos = scene.centre(0);
    scene.view().horizontalScrollBar()->setValue(scene.scroll().x() + 200);
    scene.move(pos, Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("0"));
}

void tst_Interaction::deadNodeIsNotDragged()
{
    Scene scene(2);
    scene.select({1});
    scene.press(scene.centre(0));
    scene.view().remove({scene.graph->obj(0)});
    scene.move(scene.centre(1), Qt::LeftButton);
    QVERIFY(scene.graph->node(1).selected);
}

void tst_Interaction::nodeThatWasAddedAgainIsNotDragged()
{
    Scene scene(2);
    scene.select({1});
    scene.press(scene.centre(0));
    const RefT<VOM::Object> obj = scene.graph->obj(0);
    scene.view().remove({obj});
    scene.view().add({obj}, false);
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.view().getSel(), std::vector<RefT<VOM::Object>>{scene.graph->obj(1)});
}

void tst_Interaction::hiddenNodeIsSelectedAndDraggedAsNothing()
{
    Scene scene(2);
    scene.select({1});
    scene.press(scene.centre(0));
    scene.graph->hide(0);
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.selected(), QString("0"));
    QVERIFY(scene.view().getSel().empty());
}

void tst_Interaction::tooltipIsTheFieldOfTheNodeUnderTheMouse()
{
    Scene scene(2);
    addTip(scene, 0, "Größe");
    scene.view().setFieldTooltip("tip");
    scene.view().tooltip.set(true);
    scene.move(scene.centre(0));
    QCOMPARE(scene.view().toolTip(), QString::fromUtf8("Größe"));
    scene.move(scene.nowhere());
    QCOMPARE(scene.view().toolTip(), QString());
}

void tst_Interaction::tooltipsAreOffAtFirst()
{
    Scene scene(1);
    addTip(scene, 0, "text");
    scene.view().setFieldTooltip("tip");
    scene.view().setToolTip("the host's own");
    scene.move(scene.centre(0));
    QCOMPARE(scene.view().toolTip(), QString("the host's own"));
}

void tst_Interaction::switchingTooltipsOffClearsTheCurrentOne()
{
    Scene scene(1);
    addTip(scene, 0, "text");
    scene.view().setFieldTooltip("tip");
    scene.view().tooltip.set(true);
    scene.move(scene.centre(0));
    QCOMPARE(scene.view().toolTip(), QString("text"));
    scene.view().tooltip.set(false);
    QCOMPARE(scene.view().toolTip(), QString());
    scene.move(scene.centre(0) + QPoint(1, 0));
    QCOMPARE(scene.view().toolTip(), QString());
}

void tst_Interaction::onlyBoxesWithAStringFieldHaveTooltips()
{
    Scene scene(4);
    addTip(scene, 0, "text");
    VOM::addField<VOM::FieldInt>(*scene.graph->obj(1), "tip", 7);
    scene.view().setFieldTooltip("tip");
    scene.view().tooltip.set(true);
    for (QPoint const &pos : {scene.centre(1), scene.centre(2), scene.band(0), scene.nowhere()}) {
        scene.move(scene.centre(0));
        QCOMPARE(scene.view().toolTip(), QString("text"));
        scene.move(pos);
        QCOMPARE(scene.view().toolTip(), QString());
    }
}

void tst_Interaction::moveThatMayBeADragLeavesTheTooltip()
{
    Scene scene(2);
    addTip(scene, 0, "text");
    scene.view().setFieldTooltip("tip");
    scene.view().tooltip.set(true);
    scene.move(scene.centre(0));
    scene.press(scene.centre(0));
    scene.move(scene.centre(0) + QPoint(1, 0), Qt::LeftButton);
    scene.move(scene.centre(1), Qt::LeftButton);
    QCOMPARE(scene.view().toolTip(), QString("text"));
}

void tst_Interaction::tooltipIsShownOverTheViewport()
{
    Scene scene(1);
    addTip(scene, 0, "text");
    scene.view().setFieldTooltip("tip");
    scene.view().tooltip.set(true);
    scene.move(scene.centre(0));
    const QPoint pos = scene.centre(0);
    QHelpEvent event(QEvent::ToolTip, pos, scene.viewport()->mapToGlobal(pos));
    QApplication::sendEvent(scene.viewport(), &event);
    QCOMPARE(QToolTip::text(), QString("text"));
    QToolTip::hideText();
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
        QMouseEvent event(QEvent::MouseButtonRelease, pos, button, {}, {});
        QApplication::sendEvent(viewport, &event);
    }
    QVERIFY(!scene.graph);
}

void tst_Interaction::listenerMayRemoveTheClickedNode()
{
    Scene scene(2);
    scene.view().sigSel.connect([&](auto const &) { scene.view().remove({scene.graph->obj(0)}); });
    scene.click(scene.centre(0));
    QCOMPARE(scene.view().getObjs().size(), std::size_t(1));
    scene.rightClick(scene.centre(1));
    QVERIFY(scene.graph->node(1).selected);
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

QTEST_MAIN(tst_Interaction)
#include "tst_Interaction.moc"
