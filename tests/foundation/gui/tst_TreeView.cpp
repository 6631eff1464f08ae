#include "foundation/gui/TreeScene.h"

#include <algorithm>
#include <limits>
#include <random>

using namespace TreeTest;

namespace {

/// The lines of all that lies below an item, worked out from the model and the rows' flags.
void addLines(Scene &scene, Item const &above, std::string &lines)
{
    for (ItemPtr const &child : above.children) {
        RowAccess *const found = scene.find(child->text);
        const bool hidden = found ? found->row().isHidden() : child->hidden;
        const bool open = found ? found->row().isOpen() : child->open;
        if (!hidden)
            lines += (lines.empty() ? "" : " ") + child->text;
        if (open || hidden)
            addLines(scene, *child, lines);
    }
}

/// Changes a model, and the rows that show it, as hosts and users do.
class Editor {
public:
    Editor(Scene &edited, unsigned seed)
        : scene(edited)
        , random(seed)
    {
    }
    void edit()
    {
        const ItemPtr chosen = choose();
        RowAccess *const shown = chosen == scene.model ? scene.root : scene.find(chosen->text);
        switch (draw(7)) {
        case 0:
        case 1:
            add(*chosen);
            break;
        case 2:
            if (!chosen->children.empty())
                chosen->children.erase(chosen->children.begin() +
                                       draw(int(chosen->children.size())));
            break;
        case 3:
            std::shuffle(chosen->children.begin(), chosen->children.end(), random);
            break;
        case 4:
        case 5:
            if (shown)
                shown->row().setOpen(!shown->row().isOpen());
            return;
        default:
            if (shown && shown != scene.root)
                shown->row().setHidden(!shown->row().isHidden());
            return;
        }
        if (shown)
            shown->rebuild();
    }

private:
    int draw(int limit) { return int(random() % unsigned(limit)); }
    ItemPtr choose()
    {
        ItemPtr chosen = scene.model;
        while (!chosen->children.empty() && draw(3))
            chosen = chosen->children[std::size_t(draw(int(chosen->children.size())))];
        return chosen;
    }
    void add(Item &above)
    {
        const ItemPtr made = item("x" + std::to_string(++numMade));
        made->open = !draw(2);
        made->hidden = !draw(5);
        above.children.insert(above.children.begin() + draw(int(above.children.size()) + 1), made);
    }

    Scene &scene;
    std::mt19937 random;
    int numMade = 0;
};

} // namespace

/// The tree and its rows; what the user does has test programs of its own.
class tst_TreeView : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void showsOpenRowsInOrder();
    void closedRowsMakeNoChildren();
    void openingMakesChildrenAndClosingKeepsThem();
    void hiddenRowsLeaveTheirPlaceToTheirChildren();
    void rootHasNoLine();
    void findsNothingOutside();
    void asksOncePerLayoutHoweverManyMarks();
    void asksParentsBeforeChildren();
    void asksOnlyWhatIsInSight();
    void rowsInsideOfClosedRowsWait();
    void allInSightAreAskedInOneLayout();
    void hiddenRowsOfClosedRowsAreAsked();
    void rowsThatStayKeepTheirState();
    void selectionKeepsTheOrderOfTheTree();
    void selectionForgetsRowsThatDie();
    void tellsOfRowsThatDie();
    void rowTextIsSetFromOutside();
    void randomEditsShowWhatTheModelHolds_data();
    void randomEditsShowWhatTheModelHolds();
};

void tst_TreeView::showsOpenRowsInOrder()
{
    const auto scene = makeScene(
        {opened(item("a", {item("b"), opened(item("c", {item("d")})), item("e")})), item("f")});
    QCOMPARE(scene->lines(), std::string("a b c d e f"));
}

void tst_TreeView::closedRowsMakeNoChildren()
{
    const auto scene = makeScene({item("a", items("x", 100)), item("b")});
    QCOMPARE(scene->lines(), std::string("a b"));
    QCOMPARE(scene->numRows, std::size_t(2));
    QCOMPARE(scene->row("a").getNumChildRows(), std::size_t(100));
    QCOMPARE(scene->row("a").getNumMadeChildRows(), std::size_t(0));
}

void tst_TreeView::openingMakesChildrenAndClosingKeepsThem()
{
    const auto scene = makeScene({item("a", {item("b"), item("c")}), item("d")});
    QCOMPARE(scene->lines(), std::string("a d"));
    scene->row("a").setOpen(true);
    QCOMPARE(scene->lines(), std::string("a b c d"));
    scene->row("a").setOpen(false);
    QCOMPARE(scene->lines(), std::string("a d"));
    QVERIFY(scene->find("b"));
}

void tst_TreeView::hiddenRowsLeaveTheirPlaceToTheirChildren()
{
    const auto scene =
        makeScene({item("a", {hiddenItem(item("h", {item("b"), item("c")})), item("d")}),
                   hiddenItem(item("i", {item("e")})), hiddenItem(item("j"))});
    QCOMPARE(scene->lines(), std::string("a e"));
    scene->row("a").setOpen(true);
    QCOMPARE(scene->lines(), std::string("a b c d e"));
    scene->row("h").setHidden(false);
    QCOMPARE(scene->lines(), std::string("a h d e"));
    scene->row("h").setOpen(true);
    QCOMPARE(scene->lines(), std::string("a h b c d e"));
}

void tst_TreeView::rootHasNoLine()
{
    const auto scene = makeScene({});
    QCOMPARE(scene->lines(), std::string());
    QVERIFY(!scene->findRow({0, 0}));
    QVERIFY(!scene->root->row().isHidden());
}

void tst_TreeView::findsNothingOutside()
{
    const auto scene = makeScene({item("a")});
    const int height = scene->view()->getRowHeight();
    QVERIFY(scene->findRow({0, 0}));
    QVERIFY(scene->findRow({100000, height - 1}));
    QVERIFY(scene->findRow({-100000, 0}));
    QVERIFY(!scene->findRow({0, -1}));
    QVERIFY(!scene->findRow({0, height}));
    QVERIFY(!scene->findRow({0, std::numeric_limits<int>::max()}));
    QVERIFY(!scene->findRow({0, std::numeric_limits<int>::min()}));
}

void tst_TreeView::asksOncePerLayoutHoweverManyMarks()
{
    const auto scene = makeScene({item("a"), item("b")});
    scene->lines();
    scene->logUpdates = true;
    scene->find("a")->rebuild();
    scene->find("a")->invalidateText();
    scene->find("a")->invalidateIcon();
    scene->find("a")->rebuild();
    QCOMPARE(scene->takeLog(), std::string());
    scene->findRow({0, 0});
    QCOMPARE(scene->takeLog(), std::string("update a wanted"));
    scene->findRow({0, 0});
    QCOMPARE(scene->takeLog(), std::string());

    // The same by a paint alone.
    scene->find("b")->invalidateIcon();
    QTRY_VERIFY(!scene->log.empty());
    QCOMPARE(scene->takeLog(), std::string("update b wanted"));
}

void tst_TreeView::asksParentsBeforeChildren()
{
    const auto scene = makeScene({opened(item("a", {opened(item("b", {opened(item("c"))}))}))});
    scene->lines();
    scene->logUpdates = true;
    scene->find("c")->rebuild();
    scene->find("b")->rebuild();
    scene->find("a")->rebuild();
    scene->root->rebuild();
    scene->lines();
    QCOMPARE(scene->takeLog(), std::string("update root wanted; update a wanted; "
                                           "update b wanted; update c wanted"));
}

void tst_TreeView::asksOnlyWhatIsInSight()
{
    const auto scene = makeScene(items("x", 10000));
    scene->view()->resize(200, 10 * scene->view()->getRowHeight());
    scene->findRow({0, 0});
    QVERIFY(scene->numUpdates < 50);
    scene->logUpdates = true;
    scene->log.clear();
    scene->view()->verticalScrollBar()->setValue(5000 * scene->view()->getRowHeight());
    scene->findRow({0, 0});
    QVERIFY(scene->log.size() < 15);
    QCOMPARE(scene->log.front(), std::string("update x5000 wanted"));
}

void tst_TreeView::rowsInsideOfClosedRowsWait()
{
    const auto scene = makeScene({opened(item("a", {opened(item("b", {item("c")}))}))});
    scene->lines();
    scene->row("a").setOpen(false);
    scene->lines();
    scene->logUpdates = true;
    scene->find("b")->item().children.push_back(item("d"));
    scene->find("b")->rebuild();
    QCOMPARE(scene->lines(), std::string("a"));
    QCOMPARE(scene->takeLog(), std::string());
    scene->row("a").setOpen(true);
    QCOMPARE(scene->lines(), std::string("a b c d"));
    QCOMPARE(scene->takeLog(), std::string("update a wanted; update b wanted; update d wanted"));
}

/// Rows that appear while others are asked are in sight, too.
void tst_TreeView::allInSightAreAskedInOneLayout()
{
    std::vector<ItemPtr> top;
    for (int i = 0; i < 8; ++i)
        top.push_back(hiddenItem(item("h" + std::to_string(i), items("x" + std::to_string(i), 2))));
    const auto scene = makeScene(top, false);
    scene->findRow({0, 0});
    for (int i = 0; i < 8; ++i)
        QVERIFY(!scene->row("x" + std::to_string(i) + "1").getText().isEmpty());
}

/// What stands in the place of hidden rows decides whether a closed row can be opened.
void tst_TreeView::hiddenRowsOfClosedRowsAreAsked()
{
    std::vector<ItemPtr> top;
    for (int i = 0; i < 8; ++i) {
        const std::string name = std::to_string(i);
        top.push_back(opened(item("a" + name, {hiddenItem(item("h" + name, {item("x" + name)}))})));
    }
    const auto scene = makeScene(top, false);
    scene->findRow({0, 0});
    for (int i = 0; i < 8; ++i)
        scene->row("a" + std::to_string(i)).setOpen(false);
    for (int i = 0; i < 8; ++i) {
        const std::string name = std::to_string(i);
        QCOMPARE(scene->row("a" + name).getText(), QString::fromStdString("a" + name));
        scene->find("h" + name)->item().children.push_back(item("y" + name));
        scene->find("h" + name)->rebuild();
    }
    scene->findRow({0, 0});
    for (int i = 0; i < 8; ++i)
        QVERIFY(scene->find("y" + std::to_string(i)));
}

void tst_TreeView::rowsThatStayKeepTheirState()
{
    const auto scene = makeScene({opened(item("a", {item("b", {item("c")}), item("d")}))});
    scene->lines();
    scene->row("b").setOpen(true);
    scene->select({"d", "b"});
    TreeRow *const before = &scene->row("b");
    std::swap(scene->find("a")->item().children[0], scene->find("a")->item().children[1]);
    scene->find("a")->item().children.push_back(item("e"));
    scene->find("a")->rebuild();
    QCOMPARE(scene->lines(), std::string("a d b c e"));
    QCOMPARE(&scene->row("b"), before);
    QCOMPARE(scene->sel(), std::string("d b"));
    QCOMPARE(scene->row("b").getPos(), std::size_t(1));
}

void tst_TreeView::selectionKeepsTheOrderOfTheTree()
{
    const auto scene =
        makeScene({opened(item("a", {opened(item("b", {item("c")})), item("d")})), item("e")});
    scene->lines();
    scene->select({"e", "c", "d", "a", "c"});
    QCOMPARE(scene->sel(), std::string("a c d e"));
    scene->setSel({nullptr, &scene->row("d")});
    QCOMPARE(scene->sel(), std::string("d"));
    // Also inside of what is closed.
    scene->row("a").setOpen(false);
    QCOMPARE(scene->sel(), std::string("d"));
}

void tst_TreeView::selectionForgetsRowsThatDie()
{
    const auto scene = makeScene({opened(item("a", {item("b"), item("c")})), item("d")});
    scene->lines();
    scene->click("b");
    scene->select({"b", "c", "d"});
    scene->find("a")->dropChildren();
    QCOMPARE(scene->sel(), std::string("d"));
    QCOMPARE(scene->current(), std::string("-"));
    QCOMPARE(scene->numRows, std::size_t(2));
}

void tst_TreeView::tellsOfRowsThatDie()
{
    const auto scene = makeScene({opened(item("a", {item("b"), opened(item("c", {item("d")}))}))});
    scene->lines();
    scene->takeLog();
    scene->find("a")->dropChildren();
    QCOMPARE(scene->takeLog(), std::string("deleteRow; deleteRow; deleteRow"));
    // Not of those that die with the view.
    scene->destroyView();
    QCOMPARE(scene->takeLog(), std::string());
    QCOMPARE(scene->numRows, std::size_t(0));
}

void tst_TreeView::rowTextIsSetFromOutside()
{
    const auto scene = makeScene({item("a")});
    scene->lines();
    scene->setRowText(scene->row("a"), "K\xC3\xA4se");
    QCOMPARE(scene->row("a").getText(), QString::fromUtf8("Käse"));
}

void tst_TreeView::randomEditsShowWhatTheModelHolds_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 0; seed < 20; ++seed)
        QTest::newRow(std::to_string(seed).c_str()) << seed;
}

void tst_TreeView::randomEditsShowWhatTheModelHolds()
{
    QFETCH(unsigned, seed);
    const auto scene = makeScene({}, false);
    Editor editor(*scene, seed);
    for (int step = 0; step < 200; ++step) {
        for (int edits = step % 3; edits >= 0; --edits)
            editor.edit();
        const std::string lines = scene->lines();
        std::string expected;
        addLines(*scene, *scene->model, expected);
        QCOMPARE(lines, expected);
        // All of them, and no more, can be scrolled to.
        const auto numLines = std::count(lines.begin(), lines.end(), ' ') + !lines.empty();
        scene->view()->resize(100, 3 * scene->view()->getRowHeight());
        scene->findRow({0, 0});
        QScrollBar const &bar = *scene->view()->verticalScrollBar();
        QCOMPARE(bar.maximum(), std::max(0, int(numLines) * scene->view()->getRowHeight() -
                                                scene->viewport()->height()));
    }
}

QTEST_MAIN(tst_TreeView)
#include "tst_TreeView.moc"
