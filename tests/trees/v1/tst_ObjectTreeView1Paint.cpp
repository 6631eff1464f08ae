#include "support/PaintCounter.h"
#include "trees/v1/ViewScene.h"

#include <QPointer>
#include <QScreen>

#include <functional>

using namespace view_test;

using Edit = std::function<void(ViewScene &, int)>;
Q_DECLARE_METATYPE(Edit)

namespace {

void countSelections(ViewScene &scene, int &num)
{
    scene.view->sigSelChange.connect([&num](auto const &) { ++num; });
}

} // namespace

/// When the view paints, and what has followed by then.
class tst_ObjectTreeView1Paint : public QObject {
    Q_OBJECT

private slots:
    void rowsFollowOnTheWayIntoAPaint();
    void hiddenViewDoesNoWork();
    void manySignalsAreOneRepaint_data();
    void manySignalsAreOneRepaint();
    void screenShowsWhatThereIs();
    void eachChangeIsPainted();
    void changesWhileQtPaintsAreNotLost();
    void changesWhileQtLaysOutAreNotLost();
    void openBranchShowsWhatItIsFilledWith();
    void partOfTheViewIsFollowedByAll();
    void changesWhileRowsFollowAreNotLost();
    void dialogInASlotCostsNoPaints();
    void listsThatFillEachOtherDontHangThePaint();
    void widgetsMadeWhileRowsFollowArePainted();
    void updatesDisabledWhileRowsFollowStaySo_data();
    void updatesDisabledWhileRowsFollowStaySo();
    void requestUpdatePaintsTheFrame();
    void requestUpdateIsPassedOverWhileOneIsOnTheWay();
    void rowUpdatePaintsAndPassesOver();
    void selectionThatChangesInAPaintIsToldAfterIt();
    void paintTellsOfNoSelectionThatStays();
    void selectionBetweenAPaintAndItsNewsIsToldToo();
    void viewThatDiesBeforeIsNotToldOf();
    void selectionWhileRowsFollowDoesNothing();
};

void tst_ObjectTreeView1Paint::rowsFollowOnTheWayIntoAPaint()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path("own"));
    scene.dump();
    const QModelIndex own = scene.row(scene.path("own"));
    scene.own().replace(0, 1, {});
    QCOMPARE(scene.view->items().rowCount(own), 2);
    scene.paint();
    QCOMPARE(scene.view->items().rowCount(own), 1);
}

void tst_ObjectTreeView1Paint::hiddenViewDoesNoWork()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path("own"));
    scene.dump();
    scene.view->hide();
    const QModelIndex own = scene.row(scene.path("own"));
    scene.own().replace(0, 2, {});
    QTest::qWait(20);
    QCOMPARE(scene.view->items().rowCount(own), 2);
    scene.view->show();
    QTRY_COMPARE(scene.view->items().rowCount(own), 0);
}

void tst_ObjectTreeView1Paint::manySignalsAreOneRepaint_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::newRow("of a name") << Edit(
        [](ViewScene &s, int i) { fieldOf<FieldString>(s.d(), "name").set(i % 2 ? "x" : "y"); });
    QTest::newRow("of a link") << Edit([](ViewScene &s, int i) {
        fieldOf<FieldPtr>(s.a(), "next").set(PtrT<Object>(i % 2 ? s.d() : s.e()));
    });
    QTest::newRow("of an open list")
        << Edit([](ViewScene &s, int) { s.own().replace(0, 1, makeThings("n")); });
    QTest::newRow("of an open list that grows") << Edit([](ViewScene &s, int) {
        if (s.own().getNum() < 7)
            s.own().replace(0, 0, makeThings("n"));
    });
    QTest::newRow("of an open list that is emptied and filled") << Edit([](ViewScene &s, int i) {
        s.own().replace(0, s.own().getNum(), makeThings(i % 2 ? "" : "n"));
    });
}

void tst_ObjectTreeView1Paint::manySignalsAreOneRepaint()
{
    QFETCH(Edit, edit);
    ViewScene scene;
    scene.show();
    for (Path const &to : {scene.path(), scene.path("own"), scene.path("next")})
        scene.open(to);
    scene.dump();
    PaintCounter paints(*scene.view->viewport());
    for (int i = 0; i < 10000; ++i)
        edit(scene, i);
    QCOMPARE(paints.take(), 1);
    // The next one gets its own.
    paints.take();
    fieldOf<FieldString>(scene.a(), "name").set("A");
    QCOMPARE(paints.take(), 1);
}

/// Also where the scroll bar comes and goes, and the rows have another width.
void tst_ObjectTreeView1Paint::screenShowsWhatThereIs()
{
    ViewScene scene;
    scene.show();
    for (Path const &to : {scene.path(), scene.path("own"), scene.path("next")})
        scene.open(to);
    PaintCounter paints(*scene.view->viewport());
    QVERIFY(QTest::qWaitForWindowExposed(scene.view.get()));
    const auto isOnScreen = [&] {
        paints.take();
        const QImage screen = scene.view->screen()->grabWindow(scene.view->winId()).toImage();
        return screen.convertToFormat(QImage::Format_RGB32) ==
               scene.view->grab().toImage().convertToFormat(QImage::Format_RGB32);
    };
    QVERIFY(isOnScreen());
    for (std::size_t num : {3, 100, 50, 0, 1, 100, 2}) {
        scene.own().replace(0, scene.own().getNum(), makeThings(std::string(num, 'x')));
        QVERIFY2(isOnScreen(), std::to_string(num).c_str());
        scene.own().replace(0, num / 2, {});
        fieldOf<FieldPtr>(scene.a(), "next").set(PtrT<Object>(scene.b()));
        QVERIFY2(isOnScreen(), std::to_string(num).c_str());
    }
}

void tst_ObjectTreeView1Paint::eachChangeIsPainted()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    PaintCounter paints(*scene.view->viewport());
    const QModelIndex own = scene.view->makeIndex(scene.path("own"), false);
    for (int num = 3; num < 6; ++num) {
        scene.own().replace(0, 0, makeThings("n"));
        QCOMPARE(paints.take(), 1);
        QCOMPARE(scene.view->items().rowCount(own), num);
    }
}

namespace {

/// A host whose database does something when it is asked for an icon.
struct Icons : GUI::ObjectIconDB {
    QIcon find(RefT<Object> const &) const override
    {
        if (auto const run = std::exchange(deed, nullptr))
            run();
        return {};
    }
    mutable std::function<void()> deed;
};

} // namespace

void tst_ObjectTreeView1Paint::changesWhileQtPaintsAreNotLost()
{
    ViewScene scene;
    const RefT<Icons> icons(new Icons);
    scene.view->setObjIconDB(RefT<GUI::ObjectIconDB>(icons));
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    PaintCounter paints(*scene.view->viewport());
    const QModelIndex own = scene.view->makeIndex(scene.path("own"), false);
    icons->deed = [&] { scene.own().replace(0, 0, makeThings("m")); };
    fieldOf<FieldPtr>(scene.a(), "next").set(PtrT<Object>(scene.d()));
    QTRY_COMPARE(scene.view->items().rowCount(own), 3);
    paints.take();
    scene.own().replace(0, 0, makeThings("n"));
    QCOMPARE(paints.take(), 1);
    QCOMPARE(scene.view->items().rowCount(own), 4);
}

/// Qt's layout fetches what is open.
void tst_ObjectTreeView1Paint::changesWhileQtLaysOutAreNotLost()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    PaintCounter paints(*scene.view->viewport());
    scene.open(scene.path("own"));
    paints.take();
    const QModelIndex own = scene.view->makeIndex(scene.path("own"), false);
    auto connection = scene.view->sigRowsAdded.connect([&](auto const &sigData) {
        if (sigData.rows->front().obj == scene.c())
            scene.own().replace(0, 0, makeThings("m"));
    });
    scene.view->expand(scene.view->makeIndex(scene.path("next"), false));
    fieldOf<FieldString>(scene.a(), "name").set("A");
    QTRY_COMPARE(scene.view->items().rowCount(own), 3);
    connection.disconnect();
}

void tst_ObjectTreeView1Paint::openBranchShowsWhatItIsFilledWith()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    const Things own = scene.own().getAll();
    PaintCounter paints(*scene.view->viewport());
    for (int i = 0; i < 3; ++i) {
        scene.own().replace(0, scene.own().getNum(), {});
        QCOMPARE(paints.take(), 1);
        QCOMPARE(scene.dumpPainted(), std::string("'a' .part .next .all .own"));
        scene.own().replace(0, 0, own);
        QCOMPARE(paints.take(), 1);
        QCOMPARE(scene.dumpPainted(), std::string("'a' .part .next .all .own ..'d' ..'e'"));
    }
    // What is closed isn't fetched.
    scene.own().replace(0, 2, {});
    paints.take();
    scene.view->collapse(scene.view->makeIndex(scene.path("own"), false));
    scene.own().replace(0, 0, own);
    paints.take();
    QCOMPARE(scene.view->items().rowCount(scene.view->makeIndex(scene.path("own"), false)), 0);
}

void tst_ObjectTreeView1Paint::partOfTheViewIsFollowedByAll()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    PaintCounter paints(*scene.view->viewport());
    scene.own().replace(0, 2, {});
    QPixmap part(10, 10);
    scene.view->viewport()->render(&part, {}, QRegion(0, 0, 10, 10));
    paints.take();
    QCOMPARE(paints.takeRegion(), QRegion(scene.view->viewport()->rect()));
}

/// Rows that are closed, since Qt asks for repaints of open ones.
void tst_ObjectTreeView1Paint::changesWhileRowsFollowAreNotLost()
{
    ViewScene scene;
    scene.show();
    scene.dump();
    const QPersistentModelIndex own = scene.row(scene.path("own"));
    scene.view->items().fetchMore(own);
    scene.dump();
    int numLeft = 20;
    scene.view->sigRowsAdded.connect([&](auto const &) {
        if (numLeft-- > 0)
            scene.own().replace(scene.own().getNum(), 0, {makeThing("n")});
    });
    scene.own().replace(0, 0, {makeThing("n")});
    QTRY_COMPARE(scene.view->items().rowCount(own), 23);
    QTRY_COMPARE(numLeft, -1);
}

/// While it is open, what changes elsewhere is painted.
void tst_ObjectTreeView1Paint::dialogInASlotCostsNoPaints()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    PaintCounter paints(*scene.view->viewport());
    paints.take();
    const QPersistentModelIndex own = scene.row(scene.path("own"));
    int numPaints = -1, numRows = 0;
    scene.view->sigRowsAdded.connect([&](auto const &) {
        if (numPaints >= 0)
            return;
        numPaints = 0;
        scene.view->addRow(PtrT<Object>(scene.c()), 9);
        scene.own().replace(0, 0, makeThings("n"));
        QTest::qWait(50);
        numPaints = paints.take();
        numRows = scene.view->items().rowCount(own);
    });
    scene.view->addRow(PtrT<Object>(scene.b()), 9);
    QVERIFY2(numPaints > 0 && numPaints < 5, std::to_string(numPaints).c_str());
    QCOMPARE(numRows, 3);
    QTRY_COMPARE(scene.dumpPainted(),
                 std::string("'a' .part .next .all .own ..'n' ..'d' ..'e' 'b' 'c'"));
}

/// Each of two listeners answers rows of one list by emptying and filling the other.
void tst_ObjectTreeView1Paint::listsThatFillEachOtherDontHangThePaint()
{
    ViewScene scene;
    MFieldRef &more = addField<MFieldRef>(*scene.a(), "more", makeThings("m"));
    scene.show();
    for (Path const &to : {scene.path(), scene.path("own"), scene.path("more")})
        scene.open(to);
    scene.dump();
    auto &model = dynamic_cast<GUI::V1::ObjectTreeModel &>(scene.view->items());
    const QPersistentModelIndex own = scene.row(scene.path("own"));
    const QPersistentModelIndex other = scene.row(scene.path("more"));
    int numLeft = 1000;
    const auto refill = [&](MFieldRef &list) {
        if (--numLeft < 0)
            return;
        list.replace(0, list.getNum(), {});
        model.update();
        list.replace(0, 0, makeThings("n"));
        model.update();
    };
    for (auto const &[at, list] : {std::pair(own, &more), std::pair(other, &scene.own())})
        scene.view->sigRowsAdded.connect([&, at = at, list = list](auto const &sigData) {
            if (model.getIndex(sigData.rows->front().row).parent() == at)
                refill(*list);
        });
    scene.own().replace(0, 2, {});
    model.update();
    scene.own().replace(0, 0, makeThings("n"));
    scene.paint();
    QVERIFY2(numLeft > 900 && numLeft < 1000, std::to_string(numLeft).c_str());
    numLeft = 0;
    scene.paint();
    QCOMPARE(model.rowCount(own), 1);
    QCOMPARE(model.rowCount(other), 1);
}

void tst_ObjectTreeView1Paint::widgetsMadeWhileRowsFollowArePainted()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    PaintCounter paints(*scene.view->viewport());
    QPointer<QWidget> indexWidget;
    scene.view->sigRowsAdded.connect([&](auto const &) {
        indexWidget = new QWidget;
        new QWidget(indexWidget);
        scene.view->setIndexWidget(scene.row(scene.path("own", 0)), indexWidget);
        scene.view->openPersistentEditor(scene.row(scene.path("own")));
    });
    scene.own().replace(0, 0, makeThings("n"));
    QVERIFY(paints.take() > 0);
    QVERIFY(indexWidget);
    QVERIFY(scene.view->viewport()->updatesEnabled());
    int num = 0;
    for (QWidget const *const child : scene.view->viewport()->findChildren<QWidget *>()) {
        QVERIFY(child->updatesEnabled());
        ++num;
    }
    QVERIFY(num > 1);
}

void tst_ObjectTreeView1Paint::updatesDisabledWhileRowsFollowStaySo_data()
{
    QTest::addColumn<bool>("isOfView");
    QTest::newRow("of the view") << true;
    QTest::newRow("of the viewport") << false;
}

void tst_ObjectTreeView1Paint::updatesDisabledWhileRowsFollowStaySo()
{
    QFETCH(bool, isOfView);
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.view->setIndexWidget(scene.row(scene.path("own")), new QWidget);
    PaintCounter paints(*scene.view->viewport());
    QWidget &viewport = *scene.view->viewport();
    QWidget &disabled = isOfView ? static_cast<QWidget &>(*scene.view) : viewport;
    auto connection =
        scene.view->sigRowsAdded.connect([&](auto const &) { disabled.setUpdatesEnabled(false); });
    scene.own().replace(0, 0, makeThings("n"));
    paints.take();
    connection.disconnect();
    QVERIFY(!viewport.updatesEnabled());
    QVERIFY(!scene.view->indexWidget(scene.row(scene.path("own")))->updatesEnabled());
    disabled.setUpdatesEnabled(true);
    QVERIFY(viewport.updatesEnabled());
    QVERIFY(scene.view->indexWidget(scene.row(scene.path("own")))->updatesEnabled());
    QVERIFY(paints.take() > 0);
}

/// KEPT: the view's own repaint is that of its frame.
void tst_ObjectTreeView1Paint::requestUpdatePaintsTheFrame()
{
    ViewScene scene;
    scene.show();
    scene.dump();
    PaintCounter frames(*scene.view), rows(*scene.view->viewport());
    scene.view->requestUpdate();
    scene.view->requestUpdate();
    QCOMPARE(frames.take(), 1);
    QCOMPARE(rows.take(), 0);
}

void tst_ObjectTreeView1Paint::requestUpdateIsPassedOverWhileOneIsOnTheWay()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.dump();
    PaintCounter frames(*scene.view), rows(*scene.view->viewport());
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    scene.view->requestUpdate();
    QCOMPARE(frames.take(), 0);
    QCOMPARE(rows.take(), 1);
    // It doesn't count as one itself.
    scene.view->requestUpdate();
    scene.own().replace(0, 1, {});
    QCOMPARE(frames.take(), 1);
    QCOMPARE(rows.take(), 1);
}

void tst_ObjectTreeView1Paint::rowUpdatePaintsAndPassesOver()
{
    ViewScene scene;
    scene.show();
    scene.dump();
    View1::ObjectRow *const row = scene.view->getObjRow(scene.row(scene.path())).row;
    QVERIFY(row);
    PaintCounter paints(*scene.view->viewport());
    scene.view->update(static_cast<View1::ObjectRow *>(nullptr));
    QCOMPARE(paints.take(), 0);
    scene.view->update(row);
    QCOMPARE(paints.take(), 1);
    scene.view->clear();
    paints.take();
    scene.view->update(row);
    QCOMPARE(paints.take(), 0);
}

void tst_ObjectTreeView1Paint::selectionThatChangesInAPaintIsToldAfterIt()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.view->setSel({scene.path("own", 1)});
    scene.dump();
    int num = 0;
    countSelections(scene, num);
    scene.own().replace(0, 2, {});
    QCOMPARE(num, 0);
    scene.paint();
    QVERIFY(!scene.view->selectionModel()->hasSelection());
    QCOMPARE(num, 0);
    QTRY_COMPARE(num, 1);
    // Only once.
    scene.paint();
    QTest::qWait(5);
    QCOMPARE(num, 1);
}

void tst_ObjectTreeView1Paint::paintTellsOfNoSelectionThatStays()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.view->setSel({scene.path("own", 1)});
    scene.dump();
    int num = 0;
    countSelections(scene, num);
    scene.own().replace(0, 1, {});
    scene.paint();
    scene.own().replace(1, 0, makeThings("n"));
    scene.paint();
    QTest::qWait(10);
    QCOMPARE(num, 0);
}

/// One that follows the paint is told at once, and that of the paint afterwards.
void tst_ObjectTreeView1Paint::selectionBetweenAPaintAndItsNewsIsToldToo()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.view->setSel({scene.path("own", 1)});
    scene.dump();
    int num = 0;
    countSelections(scene, num);
    scene.own().replace(0, 2, {});
    scene.paint();
    scene.view->setSel({scene.path()});
    QCOMPARE(num, 1);
    QTRY_COMPARE(num, 2);
    QTest::qWait(10);
    QCOMPARE(num, 2);
}

void tst_ObjectTreeView1Paint::viewThatDiesBeforeIsNotToldOf()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.view->setSel({scene.path("own", 1)});
    scene.dump();
    int num = 0;
    countSelections(scene, num);
    scene.own().replace(0, 2, {});
    scene.paint();
    scene.view.reset();
    QTest::qWait(5);
    QCOMPARE(num, 0);
}

void tst_ObjectTreeView1Paint::selectionWhileRowsFollowDoesNothing()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    scene.open(scene.path("own"));
    scene.view->setSel({scene.path()});
    scene.dump();
    bool isTold = false;
    scene.view->sigRowsAdded.connect([&](auto const &) {
        isTold = true;
        scene.view->setSel({scene.path("own")});
    });
    scene.own().replace(0, 0, {makeThing("n")});
    scene.paint();
    QVERIFY(isTold);
    std::vector<Path> paths;
    scene.view->getSel(paths);
    QCOMPARE(paths.size(), std::size_t(1));
    QCOMPARE(paths[0].getObj().get(), scene.a().get());
    // After the paint it does.
    scene.view->setSel({scene.path("own")});
    QCOMPARE(scene.view->selectionModel()->currentIndex().isValid(), false);
    paths.clear();
    scene.view->getSel(paths);
    QCOMPARE(paths[0].getType(), Path::Field);
}

QTEST_MAIN(tst_ObjectTreeView1Paint)
#include "tst_ObjectTreeView1Paint.moc"
