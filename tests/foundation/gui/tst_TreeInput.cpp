#include "foundation/gui/TreeScene.h"

#include <QContextMenuEvent>
#include <QLineEdit>

using namespace TreeTest;

namespace {

/// a(b, c(d)), e, f with a open.
std::vector<ItemPtr> letters()
{
    return {opened(item("a", {item("b"), item("c", {item("d")})})), item("e"), item("f")};
}

std::string state(Scene &scene)
{
    return scene.sel() + " | " + scene.current();
}

QLineEdit *editorOf(Scene &scene)
{
    for (QLineEdit *const editor : scene.viewport()->findChildren<QLineEdit *>())
        if (editor->isVisible())
            return editor;
    return nullptr;
}

} // namespace

/// What mouse and keyboard do to selection, current row and open state, and editing in place.
class tst_TreeInput : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void clicksSelect();
    void pressOnTheSelectionWaitsForTheRelease();
    void clickBesideRowsSelectsNothing();
    void rightPressSelectsUnlessSelected();
    void expandersOpenWithoutSelecting();
    void expandersLieOnTheOtherSideFromRightToLeft();
    void keysMoveTheCurrentRow_data();
    void keysMoveTheCurrentRow();
    void pagesAreAsHighAsTheView();
    void keysWithShiftExtendAndWithControlOnlyMove();
    void spaceSelectsAndControlSpaceTurns();
    void shiftSpaceSelectsUpToTheCurrentRow();
    void controlASelectsAllLines();
    void arrowsOpenCloseAndClimb();
    void arrowsFollowTheReadingDirection();
    void closingTakesSelectionAndCurrentRowAlong();
    void asteriskOpensABranchWithoutEnd();
    void typingFindsRows();
    void typingLeavesRowsTheirChildren();
    void typingSurvivesRowsThatDie();
    void theCurrentRowIsScrolledTo();
    void whatBeginsOutOfSightIsScrolledToSideways();
    void doubleClickOpensOrConfirms();
    void enterConfirms();
    void contextMenuComesByMouseAndByKey();
    void keysWithoutMeaningGoOn();
    void f2Edits();
    void secondSlowClickEdits();
    void doubleClickDoesNotEdit();
    void editorEnds_data();
    void editorEnds();
    void editorGoesWithItsRow();
    void editingOpensWhatIsClosed();
    void editingSomethingElseConfirms();
};

void tst_TreeInput::clicksSelect()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    QCOMPARE(state(*scene), std::string("b | b"));
    scene->click("e", Qt::ControlModifier);
    QCOMPARE(state(*scene), std::string("b e | e"));
    scene->click("b", Qt::ControlModifier);
    QCOMPARE(state(*scene), std::string("e | b"));
    scene->click("f", Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(state(*scene), std::string("b c e f | f"));
    scene->click("c", Qt::ShiftModifier);
    QCOMPARE(state(*scene), std::string("b c | c"));
    scene->click("a", Qt::ShiftModifier);
    QCOMPARE(state(*scene), std::string("a b | a"));
    scene->click("c");
    QCOMPARE(state(*scene), std::string("c | c"));
}

void tst_TreeInput::pressOnTheSelectionWaitsForTheRelease()
{
    const auto scene = makeScene(letters());
    scene->lines();
    scene->select({"b", "e"});
    QTest::mousePress(scene->viewport(), Qt::LeftButton, {}, scene->at("b"));
    QCOMPARE(state(*scene), std::string("b e | b"));
    QTest::mouseRelease(scene->viewport(), Qt::LeftButton, {}, scene->at("b"));
    QCOMPARE(state(*scene), std::string("b | b"));
}

void tst_TreeInput::clickBesideRowsSelectsNothing()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    const QPoint below(50, scene->viewport()->height() - 2);
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, Qt::ControlModifier, below);
    QCOMPARE(state(*scene), std::string("b | b"));
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, below);
    QCOMPARE(state(*scene), std::string(" | b"));
}

void tst_TreeInput::rightPressSelectsUnlessSelected()
{
    const auto scene = makeScene(letters());
    scene->lines();
    scene->select({"b", "e"});
    QTest::mouseClick(scene->viewport(), Qt::RightButton, {}, scene->at("e"));
    QCOMPARE(state(*scene), std::string("b e | e"));
    QTest::mouseClick(scene->viewport(), Qt::RightButton, {}, scene->at("f"));
    QCOMPARE(state(*scene), std::string("f | f"));
}

void tst_TreeInput::expandersOpenWithoutSelecting()
{
    const auto scene = makeScene(letters());
    scene->click("e");
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, scene->expander("c", 1));
    QCOMPARE(scene->lines(), std::string("a b c d e f"));
    QCOMPARE(state(*scene), std::string("e | e"));
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, scene->expander("a", 0));
    QCOMPARE(scene->lines(), std::string("a e f"));
    // Where a row has nothing to open the click is for the row.
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, scene->expander("f", 0));
    QCOMPARE(state(*scene), std::string("f | f"));
}

void tst_TreeInput::expandersLieOnTheOtherSideFromRightToLeft()
{
    const auto scene = makeScene(letters());
    scene->view()->setLayoutDirection(Qt::RightToLeft);
    QPoint expander = scene->expander("a", 0);
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, expander);
    QCOMPARE(scene->lines(), std::string("a b c e f"));
    expander.setX(scene->viewport()->width() - expander.x());
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, expander);
    QCOMPARE(scene->lines(), std::string("a e f"));
}

void tst_TreeInput::keysMoveTheCurrentRow_data()
{
    QTest::addColumn<std::string>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<std::string>("to");
    using std::string;
    QTest::newRow("down") << string("b") << int(Qt::Key_Down) << string("c");
    QTest::newRow("down at the end") << string("f") << int(Qt::Key_Down) << string("f");
    QTest::newRow("up") << string("e") << int(Qt::Key_Up) << string("c");
    QTest::newRow("up at the top") << string("a") << int(Qt::Key_Up) << string("a");
    QTest::newRow("home") << string("e") << int(Qt::Key_Home) << string("a");
    QTest::newRow("end") << string("b") << int(Qt::Key_End) << string("f");
    QTest::newRow("page down") << string("b") << int(Qt::Key_PageDown) << string("f");
    QTest::newRow("page up") << string("e") << int(Qt::Key_PageUp) << string("a");
    QTest::newRow("down from nowhere") << string() << int(Qt::Key_Down) << string("a");
    QTest::newRow("up from nowhere") << string() << int(Qt::Key_Up) << string("f");
}

void tst_TreeInput::keysMoveTheCurrentRow()
{
    QFETCH(std::string, from);
    QFETCH(int, key);
    QFETCH(std::string, to);
    const auto scene = makeScene(letters());
    if (!from.empty())
        scene->click(from);
    scene->key(key);
    QCOMPARE(state(*scene), to + " | " + to);
}

void tst_TreeInput::pagesAreAsHighAsTheView()
{
    const auto scene = makeScene(items("x", 1000));
    const int height = scene->view()->getRowHeight();
    scene->view()->resize(200, 10 * height + 2 * scene->view()->frameWidth());
    scene->click("x0");
    scene->key(Qt::Key_PageDown);
    QCOMPARE(scene->current(), std::string("x9"));
    scene->key(Qt::Key_PageDown);
    QCOMPARE(scene->current(), std::string("x18"));
    scene->key(Qt::Key_PageUp);
    QCOMPARE(scene->current(), std::string("x9"));
}

void tst_TreeInput::keysWithShiftExtendAndWithControlOnlyMove()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    scene->key(Qt::Key_Down, Qt::ShiftModifier);
    scene->key(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(state(*scene), std::string("b c e | e"));
    scene->key(Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(state(*scene), std::string("b c | c"));
    scene->key(Qt::Key_Home, Qt::ShiftModifier);
    QCOMPARE(state(*scene), std::string("a b | a"));
    scene->key(Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(state(*scene), std::string("a b | f"));
}

void tst_TreeInput::spaceSelectsAndControlSpaceTurns()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    scene->key(Qt::Key_Down, Qt::ControlModifier);
    scene->key(Qt::Key_Space);
    QCOMPARE(state(*scene), std::string("b c | c"));
    scene->key(Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(state(*scene), std::string("b | c"));
    scene->key(Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(state(*scene), std::string("b c | c"));
}

void tst_TreeInput::shiftSpaceSelectsUpToTheCurrentRow()
{
    const auto scene = makeScene(items("x", 5));
    scene->click("x1");
    scene->key(Qt::Key_Down, Qt::ControlModifier);
    scene->key(Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(scene->sel(), std::string("x1"));
    scene->key(Qt::Key_Space, Qt::ShiftModifier);
    QCOMPARE(scene->sel(), std::string("x1 x2 x3"));
}

void tst_TreeInput::controlASelectsAllLines()
{
    const auto scene = makeScene(letters());
    scene->click("e");
    scene->key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(state(*scene), std::string("a b c e f | e"));
}

void tst_TreeInput::arrowsOpenCloseAndClimb()
{
    const auto scene = makeScene(letters());
    scene->click("c");
    scene->key(Qt::Key_Right);
    QCOMPARE(scene->lines(), std::string("a b c d e f"));
    QCOMPARE(scene->current(), std::string("c"));
    scene->key(Qt::Key_Right);
    QCOMPARE(scene->current(), std::string("d"));
    scene->key(Qt::Key_Right);
    QCOMPARE(scene->current(), std::string("d"));
    scene->key(Qt::Key_Left);
    QCOMPARE(state(*scene), std::string("c | c"));
    scene->key(Qt::Key_Left);
    QCOMPARE(scene->lines(), std::string("a b c e f"));
    scene->key(Qt::Key_Left);
    QCOMPARE(scene->current(), std::string("a"));
    scene->key(Qt::Key_Minus);
    QCOMPARE(scene->lines(), std::string("a e f"));
    scene->key(Qt::Key_Plus);
    QCOMPARE(scene->lines(), std::string("a b c e f"));
}

void tst_TreeInput::arrowsFollowTheReadingDirection()
{
    const auto scene = makeScene(letters());
    scene->view()->setLayoutDirection(Qt::RightToLeft);
    scene->click("c");
    scene->key(Qt::Key_Left);
    QCOMPARE(scene->lines(), std::string("a b c d e f"));
    scene->key(Qt::Key_Right);
    QCOMPARE(scene->lines(), std::string("a b c e f"));
}

void tst_TreeInput::closingTakesSelectionAndCurrentRowAlong()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    scene->click("c", Qt::ControlModifier);
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, scene->expander("a", 0));
    QCOMPARE(state(*scene), std::string("a | a"));

    // A host that closes keeps what was selected; keys begin at what is in sight.
    scene->row("a").setOpen(true);
    scene->click("b");
    scene->row("a").setOpen(false);
    QCOMPARE(state(*scene), std::string("b | b"));
    scene->key(Qt::Key_Down);
    QCOMPARE(scene->current(), std::string("e"));
}

void tst_TreeInput::asteriskOpensABranchWithoutEnd()
{
    const ItemPtr a = item("a"), b = item("b", {item("x"), item("y", {item("z")})});
    // Each row shows one below itself, as in a model with a circle.
    a->children = {a};
    const auto scene = makeScene({b, a});
    scene->click("b");
    scene->key(Qt::Key_Asterisk);
    QCOMPARE(scene->lines(), std::string("b x y z a"));
    scene->click("a");
    scene->key(Qt::Key_Asterisk);
    QVERIFY(scene->numRows > 900);
    QVERIFY(scene->numRows < 1100);
    scene->destroyView();
    a->children.clear();
}

void tst_TreeInput::typingFindsRows()
{
    const auto scene = makeScene(
        {item("anna"), item("bert"), item("berta"), item("Bruno"), item("carl"), item("a b")});
    scene->click("anna");
    QTest::keyClicks(scene->view(), "b");
    QCOMPARE(scene->current(), std::string("bert"));
    QTest::keyClicks(scene->view(), "b");
    QCOMPARE(scene->current(), std::string("berta"));
    QTest::keyClicks(scene->view(), "b");
    QCOMPARE(state(*scene), std::string("Bruno | Bruno"));
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(scene->view(), "berta");
    QCOMPARE(scene->current(), std::string("berta"));
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(scene->view(), "a b");
    QCOMPARE(scene->current(), std::string("a b"));
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(scene->view(), "zz");
    QCOMPARE(scene->current(), std::string("a b"));
}

/// Rows that were asked for their text only are asked again when they come into sight.
void tst_TreeInput::typingLeavesRowsTheirChildren()
{
    std::vector<ItemPtr> model = items("x", 100);
    model.push_back(opened(item("branch", {item("leaf")})));
    model.push_back(item("end"));
    model[50]->children = {hiddenItem(item("hidden", {item("shown")}))};
    const auto scene = makeScene(model);
    scene->lines();
    scene->logUpdates = true;
    scene->key(Qt::Key_E);
    QCOMPARE(scene->current(), std::string("end"));
    scene->takeLog();
    scene->view()->verticalScrollBar()->setValue(50 * scene->view()->getRowHeight());
    scene->findRow({0, 0});
    QVERIFY(scene->takeLog().find("update x50 wanted") != std::string::npos);
}

void tst_TreeInput::typingSurvivesRowsThatDie()
{
    const auto scene = makeScene({item("a"), opened(item("b", items("x", 200)))});
    scene->view()->resize(200, 5 * scene->view()->getRowHeight());
    scene->click("a");
    scene->logUpdates = true;
    scene->react = [&](std::string const &what) {
        if (what == "update x100") {
            scene->react = nullptr;
            scene->find("b")->dropChildren();
        }
    };
    QTest::keyClicks(scene->view(), "x150");
    QCOMPARE(scene->lines(), std::string("a b"));
}

void tst_TreeInput::theCurrentRowIsScrolledTo()
{
    const auto scene = makeScene(items("x", 1000));
    const int height = scene->view()->getRowHeight();
    scene->view()->resize(200, 10 * height + 2 * scene->view()->frameWidth());
    scene->click("x0");
    scene->key(Qt::Key_End);
    QCOMPARE(scene->view()->verticalScrollBar()->value(), 990 * height);
    QCOMPARE(scene->view()->verticalScrollBar()->maximum(), 990 * height);
    scene->key(Qt::Key_Home);
    QCOMPARE(scene->view()->verticalScrollBar()->value(), 0);
}

void tst_TreeInput::whatBeginsOutOfSightIsScrolledToSideways()
{
    // Each deeper than the view is wide.
    std::vector<ItemPtr> below = {item("deep")};
    for (int level = 30; level-- != 0;)
        below = {opened(item("level" + std::to_string(level), below))};
    const auto scene = makeScene(below);
    scene->view()->resize(200, 800);
    scene->lines();
    QScrollBar &bar = *scene->view()->horizontalScrollBar();
    scene->key(Qt::Key_Home);
    scene->key(Qt::Key_Down);
    QCOMPARE(bar.value(), 0);
    scene->key(Qt::Key_End);
    QCOMPARE(scene->current(), std::string("deep"));
    const int indent = scene->view()->style()->pixelMetric(QStyle::PM_TreeViewIndentation);
    const int begin = 30 * indent;
    QVERIFY(bar.value() <= begin);
    QVERIFY(begin + 2 * indent <= bar.value() + scene->viewport()->width());
    scene->key(Qt::Key_Home);
    QCOMPARE(bar.value(), 0);
}

void tst_TreeInput::doubleClickOpensOrConfirms()
{
    const auto scene = makeScene(letters());
    scene->lines();
    const auto doubleClick = [&](std::string const &name) {
        const QPoint pos = scene->at(name);
        QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, pos);
        QTest::mouseDClick(scene->viewport(), Qt::LeftButton, {}, pos);
        QTest::mouseRelease(scene->viewport(), Qt::LeftButton, {}, pos);
    };
    doubleClick("c");
    QCOMPARE(scene->lines(), std::string("a b c d e f"));
    QCOMPARE(scene->takeLog(), std::string());
    doubleClick("e");
    QCOMPARE(scene->takeLog(), std::string("confirm"));
    QCOMPARE(state(*scene), std::string("e | e"));
}

void tst_TreeInput::enterConfirms()
{
    const auto scene = makeScene(letters());
    scene->click("c");
    scene->key(Qt::Key_Return);
    scene->key(Qt::Key_Enter);
    QCOMPARE(scene->takeLog(), std::string("confirm; confirm"));
}

void tst_TreeInput::contextMenuComesByMouseAndByKey()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    const auto ask = [&](QContextMenuEvent::Reason reason, QPoint const &pos) {
        QContextMenuEvent event(reason, pos, scene->viewport()->mapToGlobal(pos));
        QApplication::sendEvent(scene->viewport(), &event);
    };
    ask(QContextMenuEvent::Mouse, scene->at("e"));
    QCOMPARE(scene->takeLog(), std::string("menu e"));
    QCOMPARE(scene->menuPos(), scene->viewport()->mapToGlobal(scene->at("e")));
    ask(QContextMenuEvent::Mouse, {20, scene->viewport()->height() - 2});
    QCOMPARE(scene->takeLog(), std::string("menu -"));
    ask(QContextMenuEvent::Keyboard, {1, 1});
    QCOMPARE(scene->takeLog(), std::string("menu b"));
    const QPoint pos = scene->viewport()->mapFromGlobal(scene->menuPos());
    QCOMPARE(scene->nameOf(scene->findRow(pos)), std::string("b"));
}

void tst_TreeInput::keysWithoutMeaningGoOn()
{
    const auto scene = makeScene(letters());
    for (const int key : {int(Qt::Key_F5), int(Qt::Key_Escape), int(Qt::Key_Tab)}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        static_cast<QObject *>(scene->view())->event(&event);
        QVERIFY(!event.isAccepted() || key == Qt::Key_Tab);
    }
    QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, "\x03");
    static_cast<QObject *>(scene->view())->event(&copy);
    QVERIFY(!copy.isAccepted());
}

void tst_TreeInput::f2Edits()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    scene->key(Qt::Key_F2);
    QCOMPARE(scene->takeLog(), std::string("edit b"));
    QLineEdit *const editor = editorOf(*scene);
    QVERIFY(editor);
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->text(), QString("b"));
    QCOMPARE(editor->selectedText(), QString("b"));
    QCOMPARE(scene->nameOf(scene->findRow(editor->geometry().center())), std::string("b"));
}

void tst_TreeInput::secondSlowClickEdits()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    QCOMPARE(scene->takeLog(), std::string());
    scene->click("b");
    QTRY_COMPARE(scene->log.size(), std::size_t(1));
    QCOMPARE(scene->takeLog(), std::string("edit b"));
}

void tst_TreeInput::doubleClickDoesNotEdit()
{
    const auto scene = makeScene(letters());
    scene->click("e");
    scene->takeLog();
    const QPoint pos = scene->at("e");
    QTest::mouseClick(scene->viewport(), Qt::LeftButton, {}, pos);
    QTest::mouseDClick(scene->viewport(), Qt::LeftButton, {}, pos);
    QTest::mouseRelease(scene->viewport(), Qt::LeftButton, {}, pos);
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    QCOMPARE(scene->takeLog(), std::string("confirm"));
}

void tst_TreeInput::editorEnds_data()
{
    QTest::addColumn<QString>("by");
    QTest::addColumn<std::string>("told");
    QTest::newRow("enter confirms") << "enter" << std::string("edited b to new");
    QTest::newRow("escape gives up") << "escape" << std::string();
    QTest::newRow("a click elsewhere confirms") << "click" << std::string("edited b to new");
    QTest::newRow("losing the focus confirms") << "focus" << std::string("edited b to new");
}

void tst_TreeInput::editorEnds()
{
    QFETCH(QString, by);
    QFETCH(std::string, told);
    const auto scene = makeScene(letters());
    scene->lines();
    scene->editRow(&scene->row("b"), "old");
    QLineEdit *const editor = editorOf(*scene);
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "new");
    if (by == "enter")
        QTest::keyClick(editor, Qt::Key_Return);
    else if (by == "escape")
        QTest::keyClick(editor, Qt::Key_Escape);
    else if (by == "click")
        scene->click("e");
    else
        editor->clearFocus();
    QCOMPARE(scene->takeLog(), told);
    QVERIFY(!editorOf(*scene));
    if (by == "enter" || by == "escape")
        QVERIFY(scene->view()->hasFocus());
}

void tst_TreeInput::editorGoesWithItsRow()
{
    const auto scene = makeScene(letters());
    scene->lines();
    scene->editRow(&scene->row("b"), "old");
    const QPointer<QLineEdit> editor = editorOf(*scene);
    scene->takeLog();
    scene->find("a")->dropChildren();
    QTRY_VERIFY(!editorOf(*scene));
    if (editor)
        QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(scene->takeLog(), std::string("deleteRow; deleteRow"));
}

void tst_TreeInput::editingOpensWhatIsClosed()
{
    const auto scene = makeScene(letters());
    scene->lines();
    scene->row("a").setOpen(false);
    scene->editRow(&scene->row("b"), "old");
    QVERIFY(editorOf(*scene));
    QCOMPARE(scene->lines(), std::string("a b c e f"));
    QCOMPARE(scene->current(), std::string("b"));
    scene->editRow(nullptr, "nothing");
}

void tst_TreeInput::editingSomethingElseConfirms()
{
    const auto scene = makeScene(letters());
    scene->lines();
    scene->editRow(&scene->row("b"), "old");
    scene->editRow(&scene->row("e"), "other");
    QCOMPARE(scene->takeLog(), std::string("edited b to old"));
    QVERIFY(editorOf(*scene));
    QCOMPARE(editorOf(*scene)->text(), QString("other"));
}

QTEST_MAIN(tst_TreeInput)
#include "tst_TreeInput.moc"
