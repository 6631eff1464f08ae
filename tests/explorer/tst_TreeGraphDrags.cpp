#include "WindowScene.h"

#include "FieldSlot.h"
#include "FormPanel.h"
#include "TreePanel.h"

using namespace Explorer;
using window_test::names;
using window_test::WindowScene;
using ZR::cast;

/// Objects dragged by the mouse from the tree into the graph, and back, and into and out of the
/// form, in the explorer's window.
class tst_TreeGraphDrags : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void packageFromTheTreeAppearsInTheGraph();
    void nodeFromTheGraphIsLinkedInTheTree();
    void nodeIsCopiedWithTheControlKey();
    void escapeDropsNothing();
    void nodeFromTheGraphFillsASlot();
    void rowOfTheTreeFillsASlot();
    void nodeOfAnotherClassIsRefusedByASlot();
    void objectMovedFromASlotLeavesItsField();

private:
    TreePanel::Tree &tree() { return scene->window->getTreePanel().getTree(); }
    PackageGraph &graph() { return scene->graph(); }
    PackageModel &model() { return *scene->model; }
    ZR::VOM::MFieldPtr &depends(char const *name) { return scene->depends(name); }
    /// In the window.
    QPoint pointOfRow(int line);
    QPoint pointOfNode(char const *name) { return scene->pointOfNode(name); }
    QPoint pointOfSlot(FieldSlot &slot) { return scene->pointOf(slot, slot.rect().center()); }
    FormPanel &form() { return *scene->window->findChild<FormPanel *>(); }
    void showOtherInForm()
    {
        form().showObjects({model().findPackage("other")});
        scene->settle();
    }
    void drag(QPoint const &from, QPoint const &to, Qt::KeyboardModifiers keys = {},
              bool escapes = false)
    {
        scene->drag(
            from, [to] { return to; }, keys, {}, escapes);
    }

    std::unique_ptr<WindowScene> scene;
};

void tst_TreeGraphDrags::init()
{
    scene = std::make_unique<WindowScene>();
    scene->openRows(tree());
}

void tst_TreeGraphDrags::cleanup()
{
    scene.reset();
}

QPoint tst_TreeGraphDrags::pointOfRow(int line)
{
    const int height = tree().getRowHeight();
    // Right of the indentation, over the text.
    return scene->pointOf(*tree().viewport(), QPoint(5 * height, line * height + height / 2));
}

void tst_TreeGraphDrags::packageFromTheTreeAppearsInTheGraph()
{
    graph().hideAll();
    drag(pointOfRow(4), scene->pointOf(*graph().viewport(), QPoint(60, 60)));
    QCOMPARE(names(graph().getVisibleObjs()), QString("libc6"));
}

void tst_TreeGraphDrags::nodeFromTheGraphIsLinkedInTheTree()
{
    drag(pointOfNode("apt"), pointOfRow(3), Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(names(depends("apt").getAll()), QString("apt libc6"));
}

void tst_TreeGraphDrags::nodeIsCopiedWithTheControlKey()
{
    drag(pointOfNode("apt"), pointOfRow(1), Qt::ControlModifier);
    auto const &packages =
        cast<ZR::VOM::MFieldRef>(model().getSections()[0]->findField("packages"))->getAll();
    QCOMPARE(names(packages), QString("apt apt libc6 other"));
    QVERIFY(packages[3] != packages[0]);
}

void tst_TreeGraphDrags::escapeDropsNothing()
{
    drag(pointOfNode("apt"), pointOfRow(3), Qt::ControlModifier | Qt::ShiftModifier, true);
    QCOMPARE(names(depends("apt").getAll()), QString("libc6"));
}

void tst_TreeGraphDrags::nodeFromTheGraphFillsASlot()
{
    showOtherInForm();
    drag(pointOfNode("apt"), pointOfSlot(form().getDependencySlot()));
    QCOMPARE(names(depends("other").getAll()), QString("apt"));
    QCOMPARE(form().getDependencySlot().getValue().get(),
             static_cast<ZR::VOM::Object *>(model().findPackage("apt").get()));
}

void tst_TreeGraphDrags::rowOfTheTreeFillsASlot()
{
    showOtherInForm();
    depends("other").replace(0, 1, {});
    drag(pointOfRow(4), pointOfSlot(form().getDependencySlot()));
    QCOMPARE(names(depends("other").getAll()), QString("libc6"));
}

void tst_TreeGraphDrags::nodeOfAnotherClassIsRefusedByASlot()
{
    QString said;
    connect(&form(), &FormPanel::said, this, [&](QString const &text) { said = text; });
    drag(pointOfNode("libc6"), pointOfSlot(form().getMaintainerSlot()));
    QVERIFY(!form().getMaintainerSlot().getValue());
    QCOMPARE(said, QString("This takes a maintainer, and not a package"));
}

void tst_TreeGraphDrags::objectMovedFromASlotLeavesItsField()
{
    showOtherInForm();
    const QPoint betweenRows = pointOfRow(4) - QPoint(0, tree().getRowHeight() / 2);
    drag(pointOfSlot(form().getDependencySlot()), betweenRows, Qt::ShiftModifier);
    QCOMPARE(names(depends("other").getAll()), QString());
    QVERIFY(!form().getDependencySlot().getValue());
    QCOMPARE(names(depends("apt").getAll()), QString("libc6"));
}

QTEST_MAIN(tst_TreeGraphDrags)
#include "tst_TreeGraphDrags.moc"
