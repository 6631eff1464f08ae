#include "foundation/gui/TreeScene.h"

#include <QAccessible>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

#include <utility>

using namespace TreeTest;

namespace {

std::vector<ItemPtr> letters()
{
    return {opened(item("a", {item("b"), item("c", {item("d")})})), item("e")};
}

QAccessibleInterface *treeOf(Scene &scene)
{
    return QAccessible::queryAccessibleInterface(scene.view());
}

/// Name, level and state of each line.
std::string heard(Scene &scene)
{
    std::string text;
    QAccessibleInterface &tree = *treeOf(scene);
    for (int i = 0; i < tree.childCount(); ++i) {
        QAccessibleInterface &row = *tree.child(i);
        const QAccessible::State state = row.state();
        text += (i ? "; " : "") + row.text(QAccessible::Name).toStdString() + ' ' +
                row.text(QAccessible::Description).toStdString() +
                (state.expanded ? " expanded" : "") + (state.collapsed ? " collapsed" : "") +
                (state.selected ? " selected" : "") + (state.focused ? " focused" : "");
    }
    return text;
}

/// Takes down events in place of the platform, a word each and the name of the row.
class Listener {
public:
    Listener()
    {
        heardEvents().clear();
        setActive(true);
        before = QAccessible::installUpdateHandler(&Listener::hear);
    }
    ~Listener()
    {
        QAccessible::installUpdateHandler(before);
        setActive(false);
    }

    static QString take() { return std::exchange(heardEvents(), {}).join(", "); }

private:
    static void setActive(bool active)
    {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(active);
    }
    static QStringList &heardEvents()
    {
        static QStringList events;
        return events;
    }
    static void hear(QAccessibleEvent *event)
    {
        QAccessibleInterface *const subject = event->accessibleInterface();
        const QString name = subject ? ' ' + subject->text(QAccessible::Name) : QString();
        if (event->type() == QAccessible::Focus)
            heardEvents() << "focus" + name;
        else if (event->type() == QAccessible::StateChanged)
            heardEvents() << "state" + name;
        else if (event->type() == QAccessible::SelectionWithin)
            heardEvents() << "selection";
        else if (event->type() == QAccessible::ObjectReorder)
            heardEvents() << "order";
        else if (event->type() == QAccessible::NameChanged)
            heardEvents() << "name" + name;
    }

    QAccessible::UpdateHandler before;
};

} // namespace

/// What assistive programs hear of a tree.
class tst_TreeAccessible : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void tellsTextLevelAndState();
    void rowsHaveTheirPlaces();
    void rowsAreTheSameWhenAskedAgain();
    void actionsToggleAndFocus();
    void rowThatWasNeverInSightTellsItsActions();
    void nothingLiesOutside();
    void interfacesEndWithTheirRows();
    void interfacesEndWithTheView();
    void rowsOutOfSightTellTheirText();
    void changesAreTold();
    void newRowsAndNamesAreTold();
};

void tst_TreeAccessible::tellsTextLevelAndState()
{
    const auto scene = makeScene(letters());
    scene->click("b");
    QCOMPARE(treeOf(*scene)->role(), QAccessible::Tree);
    QCOMPARE(treeOf(*scene)->child(0)->role(), QAccessible::TreeItem);
    QCOMPARE(heard(*scene), std::string("a Level 1 expanded; b Level 2 selected focused; "
                                        "c Level 2 collapsed; e Level 1"));
    scene->row("c").setOpen(true);
    scene->click("e");
    QCOMPARE(heard(*scene),
             std::string("a Level 1 expanded; b Level 2; c Level 2 expanded; d Level 3; "
                         "e Level 1 selected focused"));
}

void tst_TreeAccessible::rowsHaveTheirPlaces()
{
    const auto scene = makeScene(letters());
    QAccessibleInterface &tree = *treeOf(*scene);
    for (int i = 0; i < tree.childCount(); ++i) {
        QAccessibleInterface *const row = tree.child(i);
        QCOMPARE(tree.indexOfChild(row), i);
        QCOMPARE(row->parent(), &tree);
        const QPoint center = row->rect().center();
        QCOMPARE(tree.childAt(center.x(), center.y()), row);
        QVERIFY(!row->state().offscreen);
    }
    scene->click("c");
    QCOMPARE(tree.focusChild(), tree.child(2));
}

void tst_TreeAccessible::rowsAreTheSameWhenAskedAgain()
{
    const auto scene = makeScene(letters());
    QCOMPARE(treeOf(*scene)->child(1), treeOf(*scene)->child(1));
    QVERIFY(treeOf(*scene)->child(1) != treeOf(*scene)->child(2));
}

void tst_TreeAccessible::actionsToggleAndFocus()
{
    const auto scene = makeScene(letters());
    QAccessibleInterface &tree = *treeOf(*scene);
    QAccessibleActionInterface *const row = tree.child(2)->actionInterface();
    QVERIFY(row);
    QCOMPARE(row->actionNames(), QStringList({QAccessibleActionInterface::toggleAction(),
                                              QAccessibleActionInterface::setFocusAction()}));
    row->doAction(QAccessibleActionInterface::toggleAction());
    QCOMPARE(scene->lines(), std::string("a b c d e"));
    row->doAction(QAccessibleActionInterface::setFocusAction());
    QCOMPARE(scene->current(), std::string("c"));
    QCOMPARE(tree.child(1)->actionInterface()->actionNames().size(), 1);
}

void tst_TreeAccessible::rowThatWasNeverInSightTellsItsActions()
{
    std::vector<ItemPtr> many = items("i", 100);
    many.push_back(item("last", {item("below")}));
    const auto scene = makeScene(many);
    QCOMPARE(treeOf(*scene)->child(100)->actionInterface()->actionNames().size(), 2);
}

void tst_TreeAccessible::nothingLiesOutside()
{
    const auto scene = makeScene(letters());
    QAccessibleInterface &tree = *treeOf(*scene);
    QCOMPARE(tree.childCount(), 4);
    QVERIFY(!tree.child(-1));
    QVERIFY(!tree.child(4));
    QVERIFY(!tree.childAt(-1000, -1000));
    QCOMPARE(tree.indexOfChild(&tree), -1);
    const auto other = makeScene(letters());
    QCOMPARE(tree.indexOfChild(treeOf(*other)->child(0)), -1);
}

void tst_TreeAccessible::interfacesEndWithTheirRows()
{
    const auto scene = makeScene(letters());
    const QAccessible::Id id = QAccessible::uniqueId(treeOf(*scene)->child(1));
    QVERIFY(QAccessible::accessibleInterface(id));
    scene->find("a")->dropChildren();
    QVERIFY(!QAccessible::accessibleInterface(id));
    QCOMPARE(treeOf(*scene)->childCount(), 2);
}

void tst_TreeAccessible::interfacesEndWithTheView()
{
    const auto scene = makeScene(letters());
    const QAccessible::Id id = QAccessible::uniqueId(treeOf(*scene)->child(1));
    scene->destroyView();
    QVERIFY(!QAccessible::accessibleInterface(id));
}

void tst_TreeAccessible::rowsOutOfSightTellTheirText()
{
    std::vector<ItemPtr> model = items("x", 300);
    model[250]->children = {item("below")};
    const auto scene = makeScene(model);
    QAccessibleInterface &row = *treeOf(*scene)->child(250);
    QCOMPARE(row.text(QAccessible::Name), QString("x250"));
    QVERIFY(row.state().collapsed);
    // And makes its children when it comes into sight.
    scene->view()->verticalScrollBar()->setValue(250 * scene->view()->getRowHeight());
    scene->row("x250").setOpen(true);
    scene->lines();
    QVERIFY(scene->find("below"));
}

void tst_TreeAccessible::newRowsAndNamesAreTold()
{
    const auto scene = makeScene(letters());
    scene->lines();
    treeOf(*scene)->child(0); // Somebody asks about "a".
    QCoreApplication::processEvents();
    const Listener listener;
    scene->find("a")->changeText("other");
    QCOMPARE(Listener::take(), QString("name other"));
    scene->find("e")->changeText("nobody asked");
    QCOMPARE(Listener::take(), QString());
    scene->row("c").setOpen(true);
    QCoreApplication::processEvents();
    QVERIFY(Listener::take().contains("order"));
}

void tst_TreeAccessible::changesAreTold()
{
    const auto scene = makeScene(letters());
    scene->click("a");
    const Listener listener;
    scene->key(Qt::Key_Down);
    QCoreApplication::processEvents(); // The selection is told once, however much of it changed.
    const QString moved = Listener::take();
    QVERIFY2(moved.contains("focus b") && moved.contains("selection"), qPrintable(moved));
    scene->key(Qt::Key_Down);
    Listener::take();
    scene->key(Qt::Key_Right); // Opens "c".
    QCoreApplication::processEvents();
    QVERIFY(Listener::take().contains("state c"));
    scene->select({"a", "b", "e"});
    QCoreApplication::processEvents();
    QCOMPARE(Listener::take(), QString("selection"));
}

QTEST_MAIN(tst_TreeAccessible)
#include "tst_TreeAccessible.moc"
