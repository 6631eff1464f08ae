#include "support/SentDrag.h"
#include "trees/TreeScene.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QPointer>

#include <stdexcept>

using namespace tree_test;

/// The widget around the rows.
class tst_ObjectTreeView : public QObject {
    Q_OBJECT

private slots:
    void defaults();
    void rowsAreAddedAtPositions();
    void positionsOutOfRangeAreSafe();
    void clearForgetsAllAndTells();
    void settersPauseUpdates();
    void settersWithTheOldValueDoNothing();
    void updatesThatAreOffStayOff();
    void onlyLinksAreAccepted();
    void filterCountsBases();
    void clearedFilterTouchesNoRow();
    void selectionOutlivesARebuildByPaths();
    void selectionAppendsAndPassesOver();
    void currentRowHasAPath();
    void tooltipIsTheFieldOfTheObject();
    void tooltipIsThatOfTheRowScrolledThere();
    void tooltipStaysWhileAButtonIsPressed();
    void fieldRowsHaveNoTooltip();
    void editChangesTheNameField();
    void refusedEditIsTold();
    void otherExceptionIsSwallowed();
    void rowsWithoutANameCannotBeEdited();
    void menuIsAskedForWithItsRow();
    void listenersMayDestroyTheView_data();
    void listenersMayDestroyTheView();
    void viewMayDieBeforeItsRows();
    void editedObjectMayDie();
    void objectMayDieUnderADrag();
    void closedObjectsHaveNoChildRows();
};

void tst_ObjectTreeView::defaults()
{
    ObjectTreeView view;
    QVERIFY(view.isTypeName());
    QVERIFY(!view.isAddress());
    QVERIFY(!view.isHideFields());
    QVERIFY(view.getNameField().empty());
    QVERIFY(view.getTooltipField().empty());
    QVERIFY(!view.getXmlExporter());
    QVERIFY(!view.getXmlImporter());
    QVERIFY(!view.getObjIconDB());
    QCOMPARE(view.getMimeTypes(),
             (std::vector<QString>{"ZR::VOM::Object::Ref", "ZR::VOM::Object::Copy::Ref",
                                   "ZR::VOM::Object::XML"}));
}

void tst_ObjectTreeView::rowsAreAddedAtPositions()
{
    Scene scene;
    QCOMPARE(scene.view->addRow(scene.a(), 5), std::size_t(0));
    QCOMPARE(scene.view->addRow(scene.b(), 0), std::size_t(0));
    scene.view->addRows({scene.c(), scene.d()}, 1);
    scene.view->addRows({scene.e()}, 99);
    QCOMPARE(scene.dump(), std::string("'b' 'c' 'd' 'a' 'e'"));
    QCOMPARE(scene.view->addRow(scene.c(), 99), std::size_t(5));
    scene.view->removeRow(5);
    scene.view->removeRow(1);
    QCOMPARE(scene.dump(), std::string("'b' 'd' 'a' 'e'"));
}

void tst_ObjectTreeView::positionsOutOfRangeAreSafe()
{
    Scene scene;
    scene.view->removeRow(0);
    scene.show();
    scene.view->removeRow(1);
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeView::clearForgetsAllAndTells()
{
    Scene scene;
    int numClears = 0;
    scene.view->sigClear.connect([&](auto const &) { ++numClears; });
    scene.show();
    scene.dump();
    scene.view->clear();
    QCOMPARE(numClears, 1);
    QCOMPARE(scene.dump(), std::string(""));
    QVERIFY(scene.view->updatesEnabled());
}

namespace {

/// Counts the paints of a shown view. Updates that were off and come on again paint its frame, too.
class Paints : public QObject {
public:
    explicit Paints(QAbstractScrollArea &counted)
        : view(counted)
    {
        settle();
        view.installEventFilter(this);
        view.viewport()->installEventFilter(this);
    }
    void settle()
    {
        for (int i = 0; i < 3; ++i)
            QTest::qWait(1);
        frames = contents = 0;
    }
    bool isAny()
    {
        QTest::qWait(1);
        return frames || contents;
    }
    bool isFrame()
    {
        QTest::qWait(1);
        return frames;
    }

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++(object == &view ? frames : contents);
        return false;
    }

    QAbstractScrollArea &view;
    int frames = 0, contents = 0;
};

} // namespace

void tst_ObjectTreeView::settersPauseUpdates()
{
    Scene scene;
    scene.show();
    QVERIFY(QTest::qWaitForWindowExposed(scene.view.get()));
    Paints paints(*scene.view);
    // Without a setter only the content is painted.
    scene.view->viewport()->update();
    QVERIFY(!paints.isFrame());
    scene.view->setAddress(true);
    QVERIFY(scene.view->updatesEnabled());
    QVERIFY(paints.isFrame());
    QVERIFY(scene.dump() != "'a'");
    QVERIFY(scene.view->isAddress());
    paints.settle();
    scene.view->clear();
    QVERIFY(paints.isFrame());
}

void tst_ObjectTreeView::settersWithTheOldValueDoNothing()
{
    Scene scene;
    scene.view->addAcceptedField("", "own");
    scene.show();
    QVERIFY(QTest::qWaitForWindowExposed(scene.view.get()));
    Paints paints(*scene.view);
    scene.view->setTypeName(false);
    scene.view->setAddress(false);
    scene.view->setHideFields(false);
    scene.view->setNameField("name");
    scene.view->addAcceptedField("", "own");
    scene.view->removeAcceptedField("", "nothing");
    scene.view->setTooltipField("tip");
    scene.view->clearAcceptedFields();
    QVERIFY(!paints.isAny());
    scene.view->setTypeName(true);
    QVERIFY(paints.isAny());
}

void tst_ObjectTreeView::updatesThatAreOffStayOff()
{
    Scene scene;
    scene.show();
    scene.view->setUpdatesEnabled(false);
    scene.view->setTypeName(true);
    QVERIFY(!scene.view->updatesEnabled());
    scene.view->clear();
    QVERIFY(!scene.view->updatesEnabled());
}

void tst_ObjectTreeView::onlyLinksAreAccepted()
{
    Scene scene;
    for (char const *name : {"part", "next", "all", "own"})
        QVERIFY2(scene.view->isAccepted(scene.field(name)), name);
    addField<FieldInt>(*scene.a(), "number", 1);
    addField<FieldReal>(*scene.a(), "size", 1.0);
    for (char const *name : {"name", "number", "size"}) {
        QVERIFY2(!scene.view->isAccepted(scene.field(name)), name);
        scene.view->addAcceptedField("", name);
        QVERIFY2(!scene.view->isAccepted(scene.field(name)), name);
    }
    QVERIFY(!scene.view->isAccepted(scene.field("name")));
    QVERIFY(!scene.view->isAccepted(scene.field("part")));
}

void tst_ObjectTreeView::filterCountsBases()
{
    Scene scene;
    const RefT<Object> special = makeThing<Special>("s");
    Field &field = addField<FieldPtr>(*special, "part");
    scene.view->addAcceptedField("Thing", "part");
    QVERIFY(scene.view->isAccepted(field));
    QVERIFY(scene.view->isAccepted(scene.field("part")));
    scene.show();
    scene.open(scene.path());
    QCOMPARE(scene.dump(), std::string("'a' .part"));
    scene.view->addAcceptedField("", "own");
    QCOMPARE(scene.dump(), std::string("'a' .part .own"));
    scene.view->removeAcceptedField("Thing", "part");
    QCOMPARE(scene.dump(), std::string("'a' .own"));
}

/// KEPT: no row is told that the filter is empty.
void tst_ObjectTreeView::clearedFilterTouchesNoRow()
{
    Scene scene;
    scene.view->addAcceptedField("", "part");
    scene.show();
    scene.open(scene.path());
    scene.dump();
    scene.view->clearAcceptedFields();
    QCOMPARE(scene.dump(), std::string("'a' .part"));
    QVERIFY(scene.view->isAccepted(scene.field("own")));
    scene.view->addAcceptedField("", "own");
    QCOMPARE(scene.dump(), std::string("'a' .own"));
}

void tst_ObjectTreeView::selectionOutlivesARebuildByPaths()
{
    Scene scene;
    scene.show();
    scene.view->makeRow(scene.path("own", 1), true);
    scene.view->setSel({scene.row(scene.path("own", 1))});
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
    scene.view->clear();
    scene.dump();
    scene.show();
    scene.view->setSel(paths);
    const auto rows = static_cast<ZR::GUI::TreeView &>(*scene.view).getSel();
    QCOMPARE(rows.size(), std::size_t(1));
    QCOMPARE(scene.view->getRowObj(rows[0]), scene.e().get());
    // In a closed parent.
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeView::selectionAppendsAndPassesOver()
{
    Scene scene;
    scene.show();
    scene.view->setSel({scene.path(), Path(PtrT<Object>(scene.b())), scene.path("own", 9)});
    std::vector<Path> paths{scene.path("own")};
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(2));
    QCOMPARE(paths[1].getObj().get(), scene.a().get());
}

void tst_ObjectTreeView::currentRowHasAPath()
{
    Scene scene;
    scene.show();
    scene.dump();
    QVERIFY(!scene.view->getCurrent().getObj());
    QTest::mouseClick(scene.view->viewport(), Qt::LeftButton, {},
                      {60, scene.view->getRowHeight() / 2});
    QCOMPARE(scene.view->getCurrent().getObj().get(), scene.a().get());
}

void tst_ObjectTreeView::tooltipIsTheFieldOfTheObject()
{
    Scene scene;
    addField<FieldString>(*scene.a(), "tip", std::string("Größe"));
    addField<FieldInt>(*scene.b(), "tip", 1);
    scene.show();
    scene.view->addRow(scene.b(), 1);
    scene.dump();
    const int height = scene.view->getRowHeight();
    const auto tipAt = [&](int y) {
        const QPoint pos(30, y);
        QMouseEvent event(QEvent::MouseMove, pos, scene.view->viewport()->mapToGlobal(pos),
                          Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(scene.view->viewport(), &event);
        return scene.view->toolTip();
    };
    QCOMPARE(tipAt(height / 2), QString());
    scene.view->setTooltipField("tip");
    QCOMPARE(tipAt(height / 2), QString::fromUtf8("Größe"));
    QCOMPARE(tipAt(height + 3), QString());
    QCOMPARE(tipAt(height / 2), QString::fromUtf8("Größe"));
    QCOMPARE(tipAt(300), QString());
}

namespace {

/// The tooltip after a move of the mouse.
QString tooltipAt(Tree &view, int y, Qt::MouseButtons buttons = Qt::NoButton)
{
    const QPoint pos(30, y);
    QMouseEvent event(QEvent::MouseMove, pos, view.viewport()->mapToGlobal(pos), Qt::NoButton,
                      buttons, {});
    QApplication::sendEvent(view.viewport(), &event);
    return view.toolTip();
}

} // namespace

void tst_ObjectTreeView::tooltipIsThatOfTheRowScrolledThere()
{
    Scene scene;
    const Things many = makeThings(std::string(60, 'm'));
    scene.view->addRows({many.begin(), many.end()}, 0);
    const RefT<Object> wide = makeThing(std::string(500, 'w'));
    scene.view->addRow(wide, 0);
    scene.view->setTooltipField("name");
    fieldOf<FieldString>(many[20], "name").set("tip");
    scene.dump();
    const int height = scene.view->getRowHeight();
    scene.view->verticalScrollBar()->setValue(20 * height);
    scene.view->horizontalScrollBar()->setValue(50);
    QCOMPARE(scene.view->horizontalScrollBar()->value(), 50);
    QCOMPARE(tooltipAt(*scene.view, height + height / 2), QString("tip"));
    QCOMPARE(tooltipAt(*scene.view, height / 2), QString("m"));
}

void tst_ObjectTreeView::tooltipStaysWhileAButtonIsPressed()
{
    Scene scene;
    scene.show();
    scene.view->addRow(scene.b(), 1);
    scene.dump();
    scene.view->setTooltipField("name");
    const int height = scene.view->getRowHeight();
    QCOMPARE(tooltipAt(*scene.view, height / 2), QString("a"));
    QCOMPARE(tooltipAt(*scene.view, height + height / 2, Qt::RightButton), QString("a"));
    QCOMPARE(tooltipAt(*scene.view, height + height / 2), QString("b"));
}

void tst_ObjectTreeView::fieldRowsHaveNoTooltip()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    scene.view->setTooltipField("name");
    const int height = scene.view->getRowHeight();
    QCOMPARE(tooltipAt(*scene.view, height / 2), QString("a"));
    QCOMPARE(tooltipAt(*scene.view, height + height / 2), QString());
}

void tst_ObjectTreeView::editChangesTheNameField()
{
    Scene scene;
    scene.show();
    scene.dump();
    scene.view->setFocus();
    QTest::mouseClick(scene.view->viewport(), Qt::LeftButton, {},
                      {60, scene.view->getRowHeight() / 2});
    QTest::keyClick(scene.view.get(), Qt::Key_F2);
    auto *const editor = scene.view->findChild<QLineEdit *>();
    QVERIFY(editor);
    QCOMPARE(editor->text(), QString("a"));
    editor->setText("new");
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(fieldOf<FieldString>(scene.a(), "name").get(), std::string("new"));
    QCOMPARE(scene.dump(), std::string("'new'"));
}

void tst_ObjectTreeView::refusedEditIsTold()
{
    Scene scene;
    scene.show();
    FieldString &name = fieldOf<FieldString>(scene.a(), "name");
    name.sigCanSet.connect([&](auto const &) { throw ErrorField(name, "no"); });
    int numErrors = 0;
    scene.view->sigEditRowError.connect([&](auto const &sigData) {
        ++numErrors;
        QCOMPARE(sigData.text, std::string("new"));
        QCOMPARE(&sigData.row, scene.row(scene.path()).get());
    });
    scene.view->onEditRowConfirm(*scene.row(scene.path()), "new");
    QCOMPARE(numErrors, 1);
    QCOMPARE(scene.dump(), std::string("'a'"));
}

void tst_ObjectTreeView::otherExceptionIsSwallowed()
{
    Scene scene;
    scene.show();
    FieldString &name = fieldOf<FieldString>(scene.a(), "name");
    name.sigCanSet.connect([](auto const &) { throw std::runtime_error("broken"); });
    int numErrors = 0;
    scene.view->sigEditRowError.connect([&](auto const &) { ++numErrors; });
    scene.view->onEditRowConfirm(*scene.row(scene.path()), "new");
    QCOMPARE(numErrors, 0);
    QCOMPARE(name.get(), std::string("a"));
}

void tst_ObjectTreeView::rowsWithoutANameCannotBeEdited()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    scene.view->onEditRow(*scene.row(scene.path("own")));
    QVERIFY(!scene.view->findChild<QLineEdit *>());
    scene.view->setNameField("other");
    scene.dump();
    scene.view->onEditRow(*scene.row(scene.path()));
    QVERIFY(!scene.view->findChild<QLineEdit *>());
    scene.view->setNameField("");
    scene.view->onEditRow(*scene.row(scene.path()));
    scene.view->onEditRowConfirm(*scene.row(scene.path()), "new");
    QVERIFY(!scene.view->findChild<QLineEdit *>());
    QCOMPARE(fieldOf<FieldString>(scene.a(), "name").get(), std::string("a"));
}

void tst_ObjectTreeView::menuIsAskedForWithItsRow()
{
    Scene scene;
    scene.show();
    scene.dump();
    RowHandle row;
    QPoint pos;
    scene.view->sigRowMenu.connect([&](auto const &sigData) {
        row = sigData.row;
        pos = sigData.pos;
    });
    const QPoint at(20, scene.view->getRowHeight() / 2);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, scene.view->viewport()->mapToGlobal(at));
    QApplication::sendEvent(scene.view->viewport(), &event);
    QCOMPARE(row, scene.row(scene.path()));
    QCOMPARE(pos, event.globalPos());
}

void tst_ObjectTreeView::listenersMayDestroyTheView_data()
{
    QTest::addColumn<QString>("signal");
    for (char const *name : {"row", "row below", "row of the first show", "row of a later show",
                             "clear", "menu", "error"})
        QTest::newRow(name) << QString(name);
}

void tst_ObjectTreeView::listenersMayDestroyTheView()
{
    QFETCH(QString, signal);
    Scene scene;
    Tree &view = *scene.view;
    const auto destroy = [&](auto const &) { scene.view.reset(); };
    if (signal == "row below") {
        scene.show();
        scene.dump();
        scene.row(scene.path())->setOpen(true);
        view.sigRow.connect(destroy);
        view.viewport()->repaint();
        QApplication::processEvents();
        if (scene.view)
            scene.view->findRow({5, 5});
    } else if (signal == "row") {
        view.sigRow.connect(destroy);
        scene.show();
        view.findRow({5, 5});
    } else if (signal == "row of the first show") {
        view.hide();
        scene.show();
        view.sigRow.connect(destroy);
        view.show();
        QTRY_VERIFY(!scene.view);
    } else if (signal == "row of a later show") {
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QApplication::processEvents();
        view.hide();
        scene.show();
        view.sigRow.connect(destroy);
        view.show();
        // Not inside of the paint, in which Qt goes on with the view.
        QApplication::sendPostedEvents(&view, QEvent::LayoutRequest);
    } else if (signal == "clear") {
        view.sigClear.connect(destroy);
        view.clear();
    } else if (signal == "menu") {
        view.sigRowMenu.connect(destroy);
        view.onRequestContextMenu({}, {});
    } else {
        scene.show();
        FieldString &name = fieldOf<FieldString>(scene.a(), "name");
        name.sigCanSet.connect([&](auto const &) { throw ErrorField(name, "no"); });
        view.sigEditRowError.connect(destroy);
        const RowHandle row = scene.row(scene.path());
        view.onEditRowConfirm(*row, "new");
    }
    QVERIFY(!scene.view);
}

void tst_ObjectTreeView::viewMayDieBeforeItsRows()
{
    Scene scene;
    scene.show();
    const RowHandle row = scene.row(scene.path("own", 1));
    const RowHandle top = scene.row(scene.path());
    scene.view.reset();
    fieldOf<FieldString>(scene.a(), "name").set("new");
    scene.own().replace(0, 2, {});
    QVERIFY(!row->getTreeView());
    top->setOpen(true);
}

void tst_ObjectTreeView::editedObjectMayDie()
{
    Scene scene;
    RefT<Object> dying = makeThing("x");
    scene.view->addRow(dying, 0);
    scene.dump();
    const RowHandle row = scene.row(Path(PtrT<Object>(dying)));
    scene.view->onEditRow(*row);
    QPointer<QLineEdit> editor = scene.view->findChild<QLineEdit *>();
    QVERIFY(editor);
    editor->setText("new");
    dying = {};
    QTest::keyClick(editor.data(), Qt::Key_Return);
    QCOMPARE(scene.dump(), std::string());
    scene.view->onEditRowConfirm(*row, "newer");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!editor);
}

void tst_ObjectTreeView::objectMayDieUnderADrag()
{
    Scene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("next"));
    scene.dump();
    Things dragged{scene.e()};
    const std::unique_ptr<QMimeData> mime(GUI::createMimeData({}, &dragged, nullptr));
    // Over the row of c, below a, part and next.
    const int height = scene.view->getRowHeight();
    const QPoint over(100, 3 * height + height / 2);
    SentDrag drag(*scene.view);
    QVERIFY(drag.enter(over, mime.get()));
    drag.move(over, mime.get());
    scene.things[2] = {};
    drag.move(over, mime.get());
    QCOMPARE(scene.dump(), std::string("'a' .part .next ..void .all .own"));
    // And what is dragged.
    dragged.clear();
    scene.own().replace(0, 2, {});
    scene.things[4] = {};
    drag.move(over, mime.get());
    drag.drop(over, mime.get());
    QCOMPARE(scene.dump(), std::string("'a' .part .next ..void .all .own"));
}

void tst_ObjectTreeView::closedObjectsHaveNoChildRows()
{
    constexpr std::size_t num = 100000;
    Scene scene;
    Things objs;
    std::vector<PtrT<Object>> tops;
    for (std::size_t i = 0; i < num; ++i) {
        objs.push_back(makeThing("x"));
        addField<MFieldRef>(*objs.back(), "own", Things{scene.b()});
        tops.emplace_back(objs.back());
    }
    scene.view->addRows(tops, 0);
    scene.view->viewport()->grab();
    const RowHandle root = scene.view->findRow({5, 5})->getParent();
    QCOMPARE(root->getNumMadeChildRows(), num);
    std::size_t made = 0;
    for (std::size_t i = 0; i < num; ++i)
        made += root->getChildRow(i)->getNumMadeChildRows();
    QCOMPARE(made, std::size_t(0));
    QCOMPARE(root->getChildRow(0)->getNumChildRows(), std::size_t(1));
}

QTEST_MAIN(tst_ObjectTreeView)
#include "tst_ObjectTreeView.moc"
