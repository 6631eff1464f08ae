#include "foundation/gui/DragScene.h"

#include "ExplorerWindow.h"
#include "FieldSlot.h"
#include "FormPanel.h"
#include "GraphPage.h"
#include "PackageGraph.h"
#include "TreePanel.h"

#include <QScrollBar>

#include <memory>

using namespace Explorer;
using gui_test::Hand;
using ZR::cast;
using ZR::RefT;

namespace {

PackageModel makeModel()
{
    const auto stanza = [](std::string const &name, std::string const &lines) {
        return "Package: " + name + "\nStatus: install ok installed\nSection: s\n" + lines + "\n";
    };
    return PackageModel(readStatus(stanza("apt", "Depends: libc6\n") + stanza("libc6", "") +
                                   stanza("other", "Depends: libc6\n")));
}

/// In alphabetical order.
template <class Values>
QString names(Values const &values)
{
    QStringList list;
    for (auto const &value : values)
        list << QString::fromStdString(cast<Item>(value)->getName());
    list.sort();
    return list.join(' ');
}

} // namespace

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
    TreePanel::Tree &tree() { return window->getTreePanel().getTree(); }
    PackageGraph &graph() { return window->getPage().getGraph(); }
    ZR::VOM::MFieldPtr &depends(char const *name)
    {
        return *model->findPackage(name)->getDepends();
    }
    /// In the window.
    QPoint pointOfRow(int line);
    QPoint pointOfNode(char const *name);
    QPoint pointOfSlot(FieldSlot &slot) { return slot.mapTo(window.get(), slot.rect().center()); }
    FormPanel &form() { return *window->findChild<FormPanel *>(); }
    void mouse(QEvent::Type type, QPoint const &pos, Qt::MouseButton button = Qt::NoButton,
               Qt::KeyboardModifiers keys = {});
    /// Presses, moves and lets go, while the drag's event loop runs.
    void drag(QPoint const &from, QPoint const &to, Qt::KeyboardModifiers keys = {},
              bool escapes = false);

    std::shared_ptr<PackageModel> model;
    std::unique_ptr<ExplorerWindow> window;
};

void tst_TreeGraphDrags::init()
{
    model = std::make_shared<PackageModel>(makeModel());
    window = std::make_unique<ExplorerWindow>(model, "test");
    window->resize(1300, 800);
    graph().animDuration.set(0);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    window->start("apt");
    // Section, its packages, "apt", and what that depends on.
    tree().viewport()->grab();
    for (Qt::Key key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down,
                        Qt::Key_Right, Qt::Key_Down, Qt::Key_Right})
        QTest::keyClick(&tree(), key);
    graph().grab();
    constexpr int fewTicks = 100; // Milliseconds, in which nodes arrive at where they are drawn.
    QTest::qWait(fewTicks);
}

void tst_TreeGraphDrags::cleanup()
{
    window.reset();
}

QPoint tst_TreeGraphDrags::pointOfRow(int line)
{
    const int height = tree().getRowHeight();
    // Right of the indentation, over the text.
    const QPoint inViewport(5 * height, line * height + height / 2);
    return tree().viewport()->mapTo(window.get(), inViewport);
}

QPoint tst_TreeGraphDrags::pointOfNode(char const *name)
{
    int x = 0, y = 0;
    graph().getPos(model->findPackage(name), x, y);
    const QPoint scroll(graph().horizontalScrollBar()->value(),
                        graph().verticalScrollBar()->value());
    return graph().viewport()->mapTo(window.get(), QPoint(x, y) - scroll);
}

void tst_TreeGraphDrags::mouse(QEvent::Type type, QPoint const &pos, Qt::MouseButton button,
                               Qt::KeyboardModifiers keys)
{
    const bool held = type != QEvent::MouseButtonRelease;
    gui_test::sendMouse(*window, type, pos, button, held ? Qt::LeftButton : Qt::NoButton, keys);
}

void tst_TreeGraphDrags::drag(QPoint const &from, QPoint const &to, Qt::KeyboardModifiers keys,
                              bool escapes)
{
    const Hand hand({
        [&] { mouse(QEvent::MouseMove, to, Qt::NoButton, keys); },
        [&] { mouse(QEvent::MouseMove, to + QPoint(1, 0), Qt::NoButton, keys); },
        [&] {
            if (escapes)
                QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
        },
        [&] { mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, keys); },
    });
    mouse(QEvent::MouseButtonPress, from, Qt::LeftButton);
    // The move that begins the drag runs its event loop, and the hand goes on in it.
    mouse(QEvent::MouseMove, from + QPoint(30, 3), Qt::NoButton, keys);
    QTRY_VERIFY(hand.isDone());
}

void tst_TreeGraphDrags::packageFromTheTreeAppearsInTheGraph()
{
    graph().hideAll();
    drag(pointOfRow(4), graph().viewport()->mapTo(window.get(), QPoint(60, 60)));
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
        cast<ZR::VOM::MFieldRef>(model->getSections()[0]->findField("packages"))->getAll();
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
    form().showObjects({model->findPackage("other")});
    drag(pointOfNode("apt"), pointOfSlot(form().getDependencySlot()));
    QCOMPARE(names(depends("other").getAll()), QString("apt"));
    QCOMPARE(form().getDependencySlot().getValue().get(),
             static_cast<ZR::VOM::Object *>(model->findPackage("apt").get()));
}

void tst_TreeGraphDrags::rowOfTheTreeFillsASlot()
{
    form().showObjects({model->findPackage("other")});
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
    form().showObjects({model->findPackage("other")});
    const QPoint betweenRows = pointOfRow(4) - QPoint(0, tree().getRowHeight() / 2);
    drag(pointOfSlot(form().getDependencySlot()), betweenRows, Qt::ShiftModifier);
    QCOMPARE(names(depends("other").getAll()), QString());
    QVERIFY(!form().getDependencySlot().getValue());
    QCOMPARE(names(depends("apt").getAll()), QString("libc6"));
}

QTEST_MAIN(tst_TreeGraphDrags)
#include "tst_TreeGraphDrags.moc"
