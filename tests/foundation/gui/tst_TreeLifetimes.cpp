#include "foundation/gui/TreeScene.h"
#include "support/slotOf.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QLineEdit>

using namespace TreeTest;

namespace {

std::vector<ItemPtr> letters()
{
    return {opened(item("a", {item("b"), item("c", {item("d")})})), item("e")};
}

/// Does whatever calls the virtual operation of that name, on row b.
void provoke(Scene &scene, std::string const &operation)
{
    QWidget *const viewport = scene.viewport();
    const QPoint pos = scene.at("b");
    QMimeData payload;
    payload.setData(mimeType, "payload");
    scene.click("b");
    // Qt sends no moves and no drop without it.
    QDragEnterEvent enter(pos, Qt::CopyAction, &payload, Qt::LeftButton, {});
    if (operation == "canDrop b" || operation == "drop b action 1")
        QApplication::sendEvent(viewport, &enter);
    if (operation == "confirm") {
        scene.key(Qt::Key_Return);
    } else if (operation == "edit b") {
        scene.key(Qt::Key_F2);
    } else if (operation == "edited b to x") {
        scene.editRow(&scene.row("b"), "x");
        QTest::keyClick(viewport->findChild<QLineEdit *>(), Qt::Key_Return);
    } else if (operation == "menu b") {
        QContextMenuEvent event(QContextMenuEvent::Mouse, pos, viewport->mapToGlobal(pos));
        QApplication::sendEvent(viewport, &event);
    } else if (operation == "canDrop b") {
        QDragMoveEvent event(pos, Qt::CopyAction, &payload, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &event);
    } else if (operation == "drop b action 1") {
        QDropEvent event(pos, Qt::CopyAction, &payload, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &event);
    } else if (operation == "makeMimeData b") {
        QTest::mousePress(viewport, Qt::LeftButton, {}, pos);
        const QPoint aside = pos + QPoint(50, 0);
        QMouseEvent move(QEvent::MouseMove, aside, viewport->mapToGlobal(aside), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &move);
    } else if (operation == "deleteRow") {
        scene.find("a")->dropChildren();
    } else if (operation == "update b wanted") {
        scene.find("b")->rebuild();
        scene.logUpdates = true;
        scene.findRow({0, 0});
    } else if (operation == "update c wanted") {
        scene.logUpdates = true;
        scene.row("c").setOpen(true);
        QTest::qWait(10);
    }
}

} // namespace

/// Views and rows that die where it hurts, rows that outlive their view, and exceptions.
class tst_TreeLifetimes : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void viewMayDieInEveryOperation_data() { addOperations(); }
    void viewMayDieInEveryOperation();
    void rowsMayDieInEveryOperation_data() { addOperations(); }
    void rowsMayDieInEveryOperation();
    void exceptionsStayInside_data() { addOperations(); }
    void exceptionsStayInside();
    void rowsThatMarkThemselvesDoNotHang();
    void longChainsDieWithoutRecursion();
    void editedViewDies();
    void viewMayDieByTheFocusThatItsEditorHands_data();
    void viewMayDieByTheFocusThatItsEditorHands();
    void hoveredAndCurrentRowsDie();
    void sharedRowsOutliveTheirView();
    void foreignAndRepeatedRowsArePassedOver();
    void operationsKeepTheirSlots();

private:
    static void addOperations();
};

void tst_TreeLifetimes::addOperations()
{
    QTest::addColumn<std::string>("operation");
    for (char const *operation :
         {"confirm", "edit b", "edited b to x", "menu b", "canDrop b", "drop b action 1",
          "makeMimeData b", "deleteRow", "update b wanted", "update c wanted"})
        QTest::newRow(operation) << std::string(operation);
}

void tst_TreeLifetimes::viewMayDieInEveryOperation()
{
    QFETCH(std::string, operation);
    const auto scene = makeScene(letters());
    bool came = false;
    scene->react = [&](std::string const &what) {
        if (what != operation || came)
            return;
        came = true;
        // A row whose onUpdate() runs goes on with itself.
        scene->destroyView();
    };
    provoke(*scene, operation);
    QVERIFY(came);
    QVERIFY(!scene->view());
    QCOMPARE(scene->numRows, std::size_t(0));
}

void tst_TreeLifetimes::rowsMayDieInEveryOperation()
{
    QFETCH(std::string, operation);
    const auto scene = makeScene(letters());
    bool came = false;
    scene->react = [&](std::string const &what) {
        if (what != operation || came)
            return;
        came = true;
        if (operation.compare(0, 6, "update") == 0) {
            scene->model->children.pop_back();
            scene->root->rebuild();
        } else if (operation != "deleteRow") {
            scene->find("a")->dropChildren();
        } else {
            scene->root->dropChildren();
        }
    };
    provoke(*scene, operation);
    QVERIFY(came);
    scene->key(Qt::Key_Down);
    scene->view()->grab();
    QTest::qWait(0);
    if (operation == "deleteRow")
        QCOMPARE(scene->lines(), std::string());
    else if (operation == "update c wanted")
        QCOMPARE(scene->lines(), std::string("a b c d"));
    else if (operation == "update b wanted")
        QCOMPARE(scene->lines(), std::string("a b c"));
    else
        QCOMPARE(scene->lines(), std::string("a e"));
}

void tst_TreeLifetimes::exceptionsStayInside()
{
    QFETCH(std::string, operation);
    const auto scene = makeScene(letters());
    static int reports;
    reports = 0;
    const ZR::ErrorSink before =
        ZR::setErrorSink([](std::string const &, std::string const &) { ++reports; });
    scene->react = [&](std::string const &what) {
        if (what == operation)
            throw std::runtime_error("It failed.");
    };
    provoke(*scene, operation);
    scene->react = nullptr;
    ZR::setErrorSink(before);
    QVERIFY(reports > 0);
    QVERIFY(scene->view());
    scene->view()->grab();
}

void tst_TreeLifetimes::rowsThatMarkThemselvesDoNotHang()
{
    const auto scene = makeScene(letters());
    scene->logUpdates = true;
    scene->react = [&](std::string const &what) {
        if (what == "update a wanted" || what == "update b wanted") {
            scene->find("a")->rebuild();
            scene->find("b")->rebuild();
        }
    };
    scene->find("a")->rebuild();
    scene->find("b")->rebuild();
    scene->findRow({0, 0});
    QCOMPARE(scene->takeLog(), std::string("update a wanted; update b wanted"));
    scene->react = nullptr;
    QCOMPARE(scene->lines(), std::string("a b c e"));
}

void tst_TreeLifetimes::longChainsDieWithoutRecursion()
{
    ItemPtr chain = item("x0");
    for (int i = 1; i < 3000; ++i)
        chain = opened(item("x" + std::to_string(i), {chain}));
    const auto scene = makeScene({chain}, false);
    scene->findRow({0, 0});
    QCOMPARE(scene->numRows, std::size_t(3000));
    scene->root->dropChildren();
    QCOMPARE(scene->numRows, std::size_t(0));
    // The items themselves are no subject here.
    scene->model->children.clear();
    while (chain) {
        const ItemPtr next = chain->children.empty() ? nullptr : chain->children.front();
        chain->children.clear();
        chain = next;
    }
}

void tst_TreeLifetimes::editedViewDies()
{
    const auto scene = makeScene(letters());
    scene->lines();
    scene->editRow(&scene->row("b"), "x");
    scene->destroyView();
    QCOMPARE(scene->takeLog(), std::string());
}

void tst_TreeLifetimes::viewMayDieByTheFocusThatItsEditorHands_data()
{
    QTest::addColumn<QString>("end");
    for (char const *end :
         {"confirmed", "given up", "without its row", "without its row, scrolled"})
        QTest::newRow(end) << end;
}

void tst_TreeLifetimes::viewMayDieByTheFocusThatItsEditorHands()
{
    QFETCH(QString, end);
    // Qt itself goes on with a widget that gets the focus, so that another one gets it here.
    QWidget window;
    QLineEdit proxy(&window);
    const auto scene = makeScene(letters(), false);
    scene->view()->setParent(&window);
    scene->view()->setFocusProxy(&proxy);
    window.show();
    QApplication::setActiveWindow(&window);
    scene->lines();
    scene->editRow(&scene->row("b"), "x");
    auto *const editor = scene->viewport()->findChild<QLineEdit *>();
    QVERIFY(editor && editor->hasFocus());
    const auto watch =
        QObject::connect(qApp, &QApplication::focusChanged, [&](QWidget *, QWidget *now) {
            if (now == &proxy)
                scene->destroyView();
        });
    if (end == "confirmed") {
        QTest::keyClick(editor, Qt::Key_Return);
    } else if (end == "given up") {
        QTest::keyClick(editor, Qt::Key_Escape);
    } else {
        scene->find("a")->dropChildren();
        if (end != "without its row") {
            scene->view()->verticalScrollBar()->setRange(0, 9);
            scene->view()->verticalScrollBar()->setValue(3);
        }
        QTest::qWait(0);
    }
    QObject::disconnect(watch);
    QVERIFY(!scene->view());
    QCOMPARE(scene->numRows, std::size_t(0));
}

void tst_TreeLifetimes::hoveredAndCurrentRowsDie()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    QTest::mouseMove(scene->viewport(), scene->at("b"));
    QTest::mousePress(scene->viewport(), Qt::LeftButton, {}, scene->at("b"));
    scene->find("a")->dropChildren();
    QTest::mouseRelease(scene->viewport(), Qt::LeftButton, {}, QPoint(20, 5));
    QCOMPARE(scene->current(), std::string("-"));
    scene->view()->grab();
    scene->key(Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(scene->sel(), std::string("a"));
}

namespace {

class PlainRow : public ZR::GUI::TreeViewRow {
public:
    PlainRow(ZR::GUI::TreeView &view, std::shared_ptr<TreeViewRow> const &parent)
        : TreeViewRow(view, parent)
    {
    }
    using TreeViewRow::invalidateIconLayout;
    using TreeViewRow::releaseChildRows;
    using TreeViewRow::setChildRows;
    using TreeViewRow::setNumChildRows;
    using TreeViewRow::setText;
};

class PlainView : public ZR::GUI::TreeView {
public:
    PlainView()
        : root(std::make_shared<PlainRow>(*this, nullptr))
    {
        setRoot(std::shared_ptr<PlainRow>(root));
    }
    using TreeView::setRoot;
    const std::shared_ptr<PlainRow> root;
};

} // namespace

void tst_TreeLifetimes::sharedRowsOutliveTheirView()
{
    auto view = std::make_unique<PlainView>();
    const auto root = view->root;
    const auto row = std::make_shared<PlainRow>(*view, root);
    const auto child = std::make_shared<PlainRow>(*view, row);
    QCOMPARE(child->getParent().get(), static_cast<ZR::GUI::TreeViewRow *>(row.get()));
    QCOMPARE(child->getPos(), TreeRow::npos);
    row->setChildRows({child});
    root->setChildRows({row});
    QCOMPARE(child->getPos(), std::size_t(0));
    QCOMPARE(row->getTreeView(), view.get());
    view->setSel({row, child});
    view.reset();
    QVERIFY(!row->getTreeView());
    row->setOpen(true);
    row->setHidden(true);
    row->setText("late");
    row->setNumChildRows(5);
    row->invalidateLayout();
    row->invalidateIconLayout();
    QCOMPARE(row->getChildRow(0).get(), static_cast<ZR::GUI::TreeViewRow *>(child.get()));
    QVERIFY(!row->getChildRow(1));
    row->setChildRows({});
    QVERIFY(!child->getParent());

    // So does one that never became a child; its parent is gone.
    auto other = std::make_unique<PlainView>();
    auto parent = std::make_shared<PlainRow>(*other, other->root);
    const auto loose = std::make_shared<PlainRow>(*other, parent);
    parent.reset();
    QVERIFY(!loose->getParent());
}

void tst_TreeLifetimes::foreignAndRepeatedRowsArePassedOver()
{
    PlainView view, other;
    const auto row = std::make_shared<PlainRow>(view, view.root);
    const auto foreign = std::make_shared<PlainRow>(other, other.root);
    view.root->setChildRows({row, nullptr, row, foreign, view.root});
    QCOMPARE(view.root->getNumChildRows(), std::size_t(1));
    // A row lies in one place only, and never in itself.
    const auto inner = std::make_shared<PlainRow>(view, row);
    row->setChildRows({row, view.root, inner});
    QCOMPARE(row->getNumChildRows(), std::size_t(1));
    view.root->setChildRows({row, inner});
    QCOMPARE(view.root->getNumChildRows(), std::size_t(1));
    view.setSel({foreign, nullptr, row});
    QCOMPARE(view.getSel().size(), std::size_t(1));
    view.editRow(foreign, "x");
    view.setRoot(nullptr);
    QVERIFY(!view.findRow({0, 0}));
    QVERIFY(view.getSel().empty());
}

namespace {

template <class View>
struct Slots : View {
    static std::vector<std::ptrdiff_t> inOrder()
    {
        return {slotOf(&Slots::makeMimeData), slotOf(&Slots::onDeleteRow),
                slotOf(&Slots::onConfirm),    slotOf(&Slots::onRequestContextMenu),
                slotOf(&Slots::onEditRow),    slotOf(&Slots::onEditRowConfirm),
                slotOf(&Slots::onCanDrop),    slotOf(&Slots::onDrop)};
    }
    static std::ptrdiff_t before() { return slotOf(&Slots::viewportSizeHint); }
};

} // namespace

void tst_TreeLifetimes::operationsKeepTheirSlots()
{
    QFETCH_GLOBAL(bool, shared);
    const auto order =
        shared ? Slots<ZR::GUI::TreeView>::inOrder() : Slots<ZR::GUI::V2::TreeView>::inOrder();
    // The last of QAbstractScrollArea's own is viewportSizeHint().
    const std::ptrdiff_t before =
        shared ? Slots<ZR::GUI::TreeView>::before() : Slots<ZR::GUI::V2::TreeView>::before();
    for (std::size_t i = 0; i < order.size(); ++i)
        QCOMPARE(order[i], before + 1 + std::ptrdiff_t(i));
}

QTEST_MAIN(tst_TreeLifetimes)
#include "tst_TreeLifetimes.moc"
