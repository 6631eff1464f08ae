#include "WindowScene.h"

#include "FormPanel.h"
#include "NumberEdit.h"
#include "TreesPage.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>

using namespace Explorer;
using window_test::names;
using window_test::WindowScene;
using ZR::cast;
using ZR::VOM::Path;

/// All generations of trees side by side in the explorer's window: they are set alike, and what is
/// dragged from any of them, or from the graph in the other tab, lands in any of them.
class tst_TreesPage : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void eachBoxSetsAllTrees();
    void newSectionAppearsInAllTreesAndSelectionsStay();
    void formFollowsAllTrees_data();
    void formFollowsAllTrees();
    void refusedDropIsSaid();
    void dragsGoBetweenAll_data();
    void dragsGoBetweenAll();

private:
    TreesPage &page() { return scene->window->getTreesPage(); }
    QTabWidget &tabs() { return *scene->window->findChild<QTabWidget *>(); }
    std::vector<QAbstractScrollArea *> trees()
    {
        return {&page().getThird(), &page().getSecond(), &page().getFirst()};
    }
    QCheckBox &box(QString const &text);
    /// In the window, over the text.
    QPoint pointOfRow(QWidget &tree, int line);
    /// What is selected, of each tree.
    QString selected();
    void goToEnd(QAbstractScrollArea &tree)
    {
        tree.grab(); // The rows follow the model.
        // From nowhere, a tree of Qt goes to its first row by any key.
        for (Qt::Key key : {Qt::Key_Home, Qt::Key_End})
            QTest::keyClick(&tree, key);
    }
    /// A widget by its name in the rows of a test.
    bool isGraph(QString const &name) { return name == "graph"; }
    QAbstractScrollArea &find(QString const &name);
    void showTabOf(QString const &name) { tabs().setCurrentIndex(isGraph(name) ? 0 : 1); }
    QPoint pointOfApt(QString const &name);
    QPoint pointOfDrop(QString const &name);

    std::unique_ptr<WindowScene> scene;
};

void tst_TreesPage::init()
{
    scene = std::make_unique<WindowScene>();
    tabs().setCurrentIndex(1);
    for (QAbstractScrollArea *tree : trees())
        scene->openRows(*tree);
}

void tst_TreesPage::cleanup()
{
    scene.reset();
}

QCheckBox &tst_TreesPage::box(QString const &text)
{
    for (QCheckBox *found : page().findChildren<QCheckBox *>())
        if (found->text() == text)
            return *found;
    qFatal("no such box");
}

QPoint tst_TreesPage::pointOfRow(QWidget &tree, int line)
{
    if (&tree == &page().getFirst()) {
        TreesPage::First &first = page().getFirst();
        QModelIndex index = first.indexAt(QPoint(0, 0));
        while (line-- > 0)
            index = first.indexBelow(index);
        const QRect rect = first.visualRect(index);
        return scene->pointOf(*first.viewport(), rect.topLeft() + QPoint(30, rect.height() / 2));
    }
    auto &area = static_cast<QAbstractScrollArea &>(tree);
    const int height = page().getThird().getRowHeight();
    return scene->pointOf(*area.viewport(), QPoint(5 * height, line * height + height / 2));
}

QString tst_TreesPage::selected()
{
    std::vector<Path> ofEach[3];
    page().getThird().getSel(ofEach[0]);
    page().getSecond().getSel(ofEach[1]);
    page().getFirst().getSel(ofEach[2]);
    QStringList all;
    for (auto const &paths : ofEach) {
        Objects objects;
        for (Path const &path : paths)
            if (const ZR::PtrT<ZR::VOM::Object> object = path.getObj())
                objects.emplace_back(object);
        all << names(objects);
    }
    return all.join('|');
}

QAbstractScrollArea &tst_TreesPage::find(QString const &name)
{
    if (isGraph(name))
        return scene->graph();
    return *trees().at(name == "third" ? 0 : name == "second" ? 1 : 2);
}

QPoint tst_TreesPage::pointOfApt(QString const &name)
{
    return isGraph(name) ? scene->pointOfNode("apt") : pointOfRow(find(name), 2);
}

/// The dependencies of "apt", or free space of the graph.
QPoint tst_TreesPage::pointOfDrop(QString const &name)
{
    return isGraph(name) ? scene->pointOf(*scene->graph().viewport(), QPoint(60, 60))
                         : pointOfRow(find(name), 3);
}

void tst_TreesPage::eachBoxSetsAllTrees()
{
    box("Hide fields").click();
    QVERIFY(page().getThird().isHideFields());
    QVERIFY(page().getSecond().isHideFields());
    QVERIFY(page().getFirst().isHideFields());
    box("Class names").click();
    QVERIFY(page().getThird().isTypeName());
    QVERIFY(page().getSecond().isTypeName());
    QVERIFY(page().getFirst().isTypeName());
    box("Dependencies only").click();
    auto const &other = *scene->model->findPackage("other");
    const ZR::PtrT<ZR::VOM::Field> shown = other.findField("depends");
    const ZR::PtrT<ZR::VOM::Field> hidden = other.findField("maintainer");
    QVERIFY(page().getThird().isAccepted(*shown) && !page().getThird().isAccepted(*hidden));
    QVERIFY(page().getSecond().isAccepted(*shown) && !page().getSecond().isAccepted(*hidden));
    QVERIFY(page().getFirst().isAccepted(shown) && !page().getFirst().isAccepted(hidden));
}

void tst_TreesPage::newSectionAppearsInAllTreesAndSelectionsStay()
{
    auto &sections = *cast<ZR::VOM::MFieldRef>(scene->model->getArchive()->findField("sections"));
    for (QAbstractScrollArea *tree : trees())
        QTest::keyClick(tree, Qt::Key_Down);
    sections.replace(sections.getNum(), 0, {ZR::RefT<Section>(new Section("t", {}))});
    QCOMPARE(selected(), QString("libc6|libc6|libc6"));
    for (QAbstractScrollArea *tree : trees())
        goToEnd(*tree);
    QCOMPARE(selected(), QString("t|t|t"));
}

void tst_TreesPage::formFollowsAllTrees_data()
{
    QTest::addColumn<QString>("name");
    for (char const *name : {"third", "second", "first"})
        QTest::addRow("%s", name) << name;
}

void tst_TreesPage::formFollowsAllTrees()
{
    QFETCH(QString, name);
    const QPoint apt = pointOfApt(name);
    scene->mouse(QEvent::MouseButtonPress, apt, Qt::LeftButton);
    scene->mouse(QEvent::MouseButtonRelease, apt, Qt::LeftButton);
    auto &form = *scene->window->findChild<FormPanel *>();
    QTRY_COMPARE(names(form.getSizeEdit().getObjs()), QString("apt"));
}

void tst_TreesPage::refusedDropIsSaid()
{
    scene->depends("apt").sigCanReplace.connect(
        [](auto const &) { throw ZR::Error("It is full."); });
    // The model would refuse it while it is still in motion.
    const auto allow = [](auto const &sigData) { *sigData.result = true; };
    page().getThird().sigCanDrop.connect(allow);
    page().getSecond().sigCanDrop.connect(allow);
    page().getFirst().sigCanDrop.connect(allow);
    QSignalSpy said(&page(), &TreesPage::said);
    for (QString const name : {"third", "second", "first"}) {
        scene->drag(
            pointOfApt(name), [=] { return pointOfDrop(name); },
            Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(said.size(), 1);
        QCOMPARE(said.takeFirst()[0].toString(), QString("It is full."));
    }
    QCOMPARE(names(scene->depends("apt").getAll()), QString("libc6"));
}

void tst_TreesPage::dragsGoBetweenAll_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("dependencies");
    for (QString const from : {"third", "second", "first", "graph"})
        for (QString const to : {"third", "second", "first", "graph"})
            if (!isGraph(from) || !isGraph(to))
                QTest::addRow("%s to %s", qPrintable(from), qPrintable(to))
                    << from << to << (isGraph(to) ? "libc6" : "apt libc6");
}

void tst_TreesPage::dragsGoBetweenAll()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(QString, dependencies);
    showTabOf(from);
    std::vector<gui_test::Hand::Step> rests;
    if (isGraph(from) || isGraph(to)) {
        // Over the other tab, until it opens.
        QTabBar &bar = *tabs().tabBar();
        const int other = isGraph(to) ? 0 : 1;
        const QPoint tab = scene->pointOf(bar, bar.tabRect(other).center());
        for (int i = 0; i < 2; ++i) // Into it and within it.
            rests.emplace_back([=] { scene->mouse(QEvent::MouseMove, tab + QPoint(i, 0)); });
        rests.emplace_back([=] { return tabs().currentIndex() == other; }, [] {});
    }
    const QPoint start = pointOfApt(from);
    if (isGraph(to))
        scene->graph().hideAll();
    scene->drag(
        start, [=] { return pointOfDrop(to); },
        isGraph(to) ? Qt::NoModifier : Qt::ControlModifier | Qt::ShiftModifier, rests);
    QCOMPARE(names(scene->depends("apt").getAll()), dependencies);
    if (isGraph(to))
        QCOMPARE(names(scene->graph().getVisibleObjs()), QString("apt"));
}

QTEST_MAIN(tst_TreesPage)
#include "tst_TreesPage.moc"
