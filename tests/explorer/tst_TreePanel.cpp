#include "support/SentDrag.h"

#include "ExplorerWindow.h"
#include "GraphPage.h"
#include "PackageGraph.h"
#include "TreePanel.h"

#include "zrVOMGUI/transfer/MimeData.h"

#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <memory>

using namespace Explorer;
using ZR::cast;
using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::MFieldPtr;
using ZR::VOM::MFieldRef;
using ZR::VOM::Object;
using ZR::VOM::Path;
using Tree = TreePanel::Tree;

namespace {

PackageModel makeModel()
{
    const auto stanza = [](std::string const &name, std::string const &lines) {
        return "Package: " + name + "\nStatus: install ok installed\n" + lines + "\n";
    };
    return PackageModel(readStatus(
        stanza("x", "Section: one\nDepends: y, z\nDescription: what x does\nMaintainer: m\n") +
        stanza("y", "Section: one\n") + stanza("z", "Section: two\n")));
}

template <class Values>
QString names(Values const &values)
{
    QStringList list;
    for (auto const &value : values) {
        auto const *const item = cast<Item>(value);
        list << (item ? QString::fromStdString(item->getName()) : QString("null"));
    }
    return list.join(' ');
}

} // namespace

/// The explorer's tree as a host: what it does with drops, edits and its menu.
class tst_TreePanel : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void sectionsAreTheTopRows();
    void newSectionAppearsAndTheSelectionStays();
    void boxesSetTheTree();
    void linkedDropIsInserted();
    void copiedDropInsertsTheCopies();
    void movedPackageLeavesItsSection();
    void moveWithinAListReordersIt();
    void refusedDropIsSaidAndChangesNothing();
    void newNameIsStored();
    void badNamesAreRefused_data();
    void badNamesAreRefused();
    void renamedPackageIsFound();
    void menuShowsAPackageInTheGraph();
    void menuTakesAValueOutOfItsList();
    void menuForgetsValuesThatHaveMoved();
    void menuRenames();
    void noMenuBesideTheRows();
    void tooltipIsTheSummary();
    void logTellsSignalsOfTheTree();

private:
    Path pathTo(char const *section,
                std::initializer_list<std::pair<char const *, std::size_t>> to);
    /// Drops onto the row of a field, between its values.
    bool drop(Path const &fieldPath, std::size_t position, char const *package,
              Qt::KeyboardModifiers keys);
    QPoint pointOf(Path const &path);
    void rename(Path const &path, QString const &text);
    QMenu *openMenu(Path const &path);
    QAction *findAction(QMenu &menu, QString const &text);
    MFieldRef &packagesOf(char const *section);
    MFieldPtr &dependsOf(char const *package) { return *model->findPackage(package)->getDepends(); }
    Tree &tree() { return panel->getTree(); }
    QString rows();

    std::unique_ptr<PackageModel> model;
    std::unique_ptr<TreePanel> panel;
};

void tst_TreePanel::init()
{
    model = std::make_unique<PackageModel>(makeModel());
    panel = std::make_unique<TreePanel>(*model);
    panel->resize(320, 400);
    panel->show();
    QVERIFY(QTest::qWaitForWindowExposed(panel.get()));
}

void tst_TreePanel::cleanup()
{
    panel.reset();
    model.reset();
}

MFieldRef &tst_TreePanel::packagesOf(char const *name)
{
    for (auto const &section : model->getSections())
        if (section->getName() == name)
            return *cast<MFieldRef>(section->findField("packages"));
    qFatal("no such section");
}

Path tst_TreePanel::pathTo(char const *section,
                           std::initializer_list<std::pair<char const *, std::size_t>> to)
{
    Path path(packagesOf(section).owner);
    for (auto const &[name, index] : to) {
        ZR::VOM::Field &field = *path.getObj()->findField(name);
        auto *const list = dynamic_cast<ZR::VOM::MField *>(&field);
        if (index == std::size_t(-1))
            path.pushField(field);
        else if (list)
            path.pushValue(*list, index);
        else
            path.pushValue(field);
    }
    return path;
}

/// Selects the row, which opens what leads to it, and finds it among the visible ones.
QPoint tst_TreePanel::pointOf(Path const &path)
{
    tree().setSel(std::vector<Path>{path});
    const auto row = tree().getSel().at(0);
    for (auto up = row->getParent(); up; up = up->getParent())
        up->setOpen(true);
    tree().viewport()->grab();
    for (int y = tree().getRowHeight() / 2; y < tree().viewport()->height();
         y += tree().getRowHeight())
        if (tree().findRow({5, y}) == row)
            return {100, y};
    return {-1, -1};
}

QString tst_TreePanel::rows()
{
    tree().viewport()->grab();
    QStringList list;
    for (int y = tree().getRowHeight() / 2; const auto row = tree().findRow({5, y});
         y += tree().getRowHeight())
        list << row->getText();
    return list.join(' ');
}

bool tst_TreePanel::drop(Path const &fieldPath, std::size_t position, char const *package,
                         Qt::KeyboardModifiers keys)
{
    Objects objs = {model->findPackage(package)};
    Objects copies = {objs[0]->clone()};
    const std::unique_ptr<QMimeData> data(ZR::VOM::GUI::createMimeData({}, &objs, &copies));
    const QPoint field = pointOf(fieldPath);
    tree().getSel().at(0)->setOpen(true);
    tree().viewport()->grab();
    // Its values are the rows below. Behind one of them is its last line.
    const int height = tree().getRowHeight();
    const int line = field.y() - height / 2 + (int(position) + 1) * height - 1;
    return SentDrag(tree(), keys).run({100, line}, data.get());
}

void tst_TreePanel::rename(Path const &path, QString const &text)
{
    const QPoint point = pointOf(path);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, point);
    QTest::keyClick(&tree(), Qt::Key_F2);
    auto *const editor = tree().findChild<QLineEdit *>();
    QVERIFY(editor);
    editor->setText(text);
    QTest::keyClick(editor, Qt::Key_Return);
}

QMenu *tst_TreePanel::openMenu(Path const &path)
{
    const QPoint point = pointOf(path);
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, tree().viewport()->mapToGlobal(point));
    QApplication::sendEvent(tree().viewport(), &event);
    return panel->findChild<QMenu *>();
}

QAction *tst_TreePanel::findAction(QMenu &menu, QString const &text)
{
    for (QAction *action : menu.actions())
        if (action->text().remove('&').startsWith(text))
            return action;
    return nullptr;
}

void tst_TreePanel::sectionsAreTheTopRows()
{
    QCOMPARE(rows(), QString("'one' 'two'"));
}

void tst_TreePanel::newSectionAppearsAndTheSelectionStays()
{
    tree().setSel(std::vector<Path>{pathTo("one", {{"packages", 1}})});
    model->adopt({RefT<Object>(new Package({}, {}))});
    QVERIFY(rows().endsWith("'two' 'pasted'"));
    std::vector<Path> selected;
    tree().getSel(selected);
    QCOMPARE(selected.size(), std::size_t(1));
    QCOMPARE(cast<Item>(selected[0].getObj())->getName(), std::string("y"));
}

void tst_TreePanel::boxesSetTheTree()
{
    const auto boxes = panel->findChildren<QCheckBox *>();
    QCOMPARE(boxes.size(), 3);
    for (QCheckBox *box : boxes)
        box->click();
    QVERIFY(tree().isHideFields());
    QVERIFY(tree().isTypeName());
    QVERIFY(!tree().isAccepted(*model->findPackage("x")->findField("maintainer")));
    QVERIFY(tree().isAccepted(*model->findPackage("x")->findField("depends")));
    QVERIFY(tree().isAccepted(packagesOf("one")));
    for (QCheckBox *box : boxes)
        box->click();
    QVERIFY(!tree().isHideFields());
    QVERIFY(!tree().isTypeName());
    QVERIFY(tree().isAccepted(*model->findPackage("x")->findField("maintainer")));
}

void tst_TreePanel::linkedDropIsInserted()
{
    const Path depends = pathTo("one", {{"packages", 0}, {"depends", std::size_t(-1)}});
    QVERIFY(drop(depends, 1, "x", Qt::ControlModifier | Qt::ShiftModifier));
    QCOMPARE(names(dependsOf("x").getAll()), QString("y x z"));
}

void tst_TreePanel::copiedDropInsertsTheCopies()
{
    const Path packages = pathTo("two", {{"packages", std::size_t(-1)}});
    QVERIFY(drop(packages, 1, "x", Qt::ControlModifier));
    QCOMPARE(names(packagesOf("two").getAll()), QString("z x"));
    QVERIFY(packagesOf("two").get(1) != RefT<Object>(model->findPackage("x")));
    QCOMPARE(names(packagesOf("one").getAll()), QString("x y"));
}

void tst_TreePanel::movedPackageLeavesItsSection()
{
    const Path packages = pathTo("two", {{"packages", std::size_t(-1)}});
    QVERIFY(drop(packages, 0, "y", Qt::ShiftModifier));
    QCOMPARE(names(packagesOf("two").getAll()), QString("y z"));
    QCOMPARE(names(packagesOf("one").getAll()), QString("x"));
}

void tst_TreePanel::moveWithinAListReordersIt()
{
    const Path depends = pathTo("one", {{"packages", 0}, {"depends", std::size_t(-1)}});
    QVERIFY(drop(depends, 2, "y", Qt::ShiftModifier));
    QCOMPARE(names(dependsOf("x").getAll()), QString("z y"));
}

void tst_TreePanel::refusedDropIsSaidAndChangesNothing()
{
    QSignalSpy said(panel.get(), &TreePanel::said);
    tree().sigCanDrop.connect([](auto const &sigData) { *sigData.result = true; });
    dependsOf("x").sigCanReplace.connect([](auto const &) { throw ZR::Error("It is full."); });
    const Path depends = pathTo("one", {{"packages", 0}, {"depends", std::size_t(-1)}});
    QVERIFY(drop(depends, 1, "x", Qt::ControlModifier | Qt::ShiftModifier));
    QCOMPARE(said.size(), 1);
    QCOMPARE(said[0][0].toString(), QString("It is full."));
    QCOMPARE(names(dependsOf("x").getAll()), QString("y z"));
}

void tst_TreePanel::newNameIsStored()
{
    rename(pathTo("one", {{"packages", 1}}), "why");
    QCOMPARE(names(packagesOf("one").getAll()), QString("x why"));
}

void tst_TreePanel::badNamesAreRefused_data()
{
    QTest::addColumn<bool>("section");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("said");
    QTest::newRow("package without a name")
        << false << ""
        << "The name \"\" isn't taken. A package needs a name without blanks.";
    QTest::newRow("package with a blank")
        << false << "a b"
        << "The name \"a b\" isn't taken. A package needs a name without blanks.";
    QTest::newRow("section without a name") << true << ""
                                            << "The name \"\" isn't taken. A section needs a name.";
}

void tst_TreePanel::badNamesAreRefused()
{
    QFETCH(bool, section);
    QFETCH(QString, text);
    QSignalSpy said(panel.get(), &TreePanel::said);
    rename(section ? pathTo("one", {}) : pathTo("one", {{"packages", 1}}), text);
    QCOMPARE(said.size(), 1);
    QTEST(said[0][0].toString(), "said");
    QCOMPARE(names(model->getSections()), QString("one two"));
    QCOMPARE(names(packagesOf("one").getAll()), QString("x y"));
}

void tst_TreePanel::renamedPackageIsFound()
{
    const RefT<Package> y = model->findPackage("y");
    rename(pathTo("one", {{"packages", 1}}), "why");
    QVERIFY(model->findPackage("why") == y);
    QVERIFY(!model->findPackage("y"));
}

void tst_TreePanel::menuShowsAPackageInTheGraph()
{
    QSignalSpy chosen(panel.get(), &TreePanel::packageChosen);
    QMenu *const menu = openMenu(pathTo("one", {{"packages", 1}}));
    QVERIFY(menu);
    QAction *const action = findAction(*menu, "Show in the graph");
    QVERIFY(action);
    action->trigger();
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen[0][0].toString(), QString("y"));
}

void tst_TreePanel::menuTakesAValueOutOfItsList()
{
    QMenu *const menu = openMenu(pathTo("one", {{"packages", 0}, {"depends", 0}}));
    QVERIFY(menu);
    QAction *const action = findAction(*menu, "Remove from depends");
    QVERIFY(action);
    action->trigger();
    QCOMPARE(names(dependsOf("x").getAll()), QString("z"));
}

void tst_TreePanel::menuForgetsValuesThatHaveMoved()
{
    QMenu *const menu = openMenu(pathTo("one", {{"packages", 0}, {"depends", 0}}));
    QVERIFY(menu);
    dependsOf("x").replace(0, 1, {});
    findAction(*menu, "Remove from depends")->trigger();
    QCOMPARE(names(dependsOf("x").getAll()), QString("z"));
}

void tst_TreePanel::menuRenames()
{
    QMenu *const menu = openMenu(pathTo("one", {{"packages", 1}}));
    QVERIFY(menu);
    menu->close();
    findAction(*menu, "Rename")->trigger();
    auto *const editor = tree().findChild<QLineEdit *>();
    QVERIFY(editor);
    QCOMPARE(editor->text(), QString("y"));
}

void tst_TreePanel::noMenuBesideTheRows()
{
    const QPoint below(100, tree().viewport()->height() - 1);
    QContextMenuEvent event(QContextMenuEvent::Mouse, below, tree().viewport()->mapToGlobal(below));
    QApplication::sendEvent(tree().viewport(), &event);
    QVERIFY(!panel->findChild<QMenu *>());
}

void tst_TreePanel::tooltipIsTheSummary()
{
    const QPoint point = pointOf(pathTo("one", {{"packages", 0}}));
    const QPoint global = tree().viewport()->mapToGlobal(point);
    QMouseEvent move(QEvent::MouseMove, point, global, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(tree().viewport(), &move);
    QHelpEvent help(QEvent::ToolTip, point, global);
    QApplication::sendEvent(tree().viewport(), &help);
    QVERIFY((QToolTip::isVisible() ? QToolTip::text() : tree().viewport()->toolTip())
                .contains("what x does"));
}

void tst_TreePanel::logTellsSignalsOfTheTree()
{
    auto shared = std::make_shared<PackageModel>(makeModel());
    ExplorerWindow window(shared, "test");
    window.resize(1200, 700);
    window.show();
    Tree &windowTree = window.getTreePanel().getTree();
    const QPoint onFirst(60, windowTree.getRowHeight() / 2);
    windowTree.viewport()->grab();
    QContextMenuEvent event(QContextMenuEvent::Mouse, onFirst,
                            windowTree.viewport()->mapToGlobal(onFirst));
    QApplication::sendEvent(windowTree.viewport(), &event);
    QVERIFY(window.findChild<QPlainTextEdit *>()->toPlainText().contains("sigRowMenu       'one'"));
}

QTEST_MAIN(tst_TreePanel)
#include "tst_TreePanel.moc"
