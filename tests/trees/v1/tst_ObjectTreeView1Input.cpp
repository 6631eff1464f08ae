#include "trees/v1/ViewScene.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QDragMoveEvent>
#include <QMimeData>

#include <climits>
#include <optional>

using namespace view_test;

namespace {

constexpr Qt::DropActions allActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;

/// Keys, and what they ask for when all is allowed.
struct Keys {
    char const *name;
    Qt::KeyboardModifiers modifiers;
    std::optional<Qt::DropAction> action;
};
Keys const keyRows[] = {
    {"none", Qt::NoModifier, {}},
    {"Shift", Qt::ShiftModifier, Qt::MoveAction},
    {"Control", Qt::ControlModifier, Qt::CopyAction},
    {"Alt", Qt::AltModifier, Qt::LinkAction},
    {"Shift and Control", Qt::ShiftModifier | Qt::ControlModifier, {}},
    {"Shift and Alt", Qt::ShiftModifier | Qt::AltModifier, {}},
    {"Control and Alt", Qt::ControlModifier | Qt::AltModifier, {}},
    {"Meta", Qt::MetaModifier, {}},
    {"Shift and the key pad", Qt::ShiftModifier | Qt::KeypadModifier, {}},
};

/// A scene whose host lets everything land, and hears what does.
struct DropScene : ViewScene {
    DropScene()
        : objs{e()}
        , mime(GUI::createMimeData({}, &objs, nullptr))
    {
        view->setAcceptDrops(true);
        view->setDragDropMode(QAbstractItemView::DragDrop);
        show();
        open(path());
        dump();
        view->sigCanDrop.connect([this](auto const &sigData) {
            asked = sigData.action;
            *sigData.result = true;
        });
        view->sigDrop.connect([this](auto const &sigData) {
            dropped = sigData.action;
            ++numDrops;
        });
        onOwn = view->visualRect(row(path("own"))).center();
    }

    Things objs;
    std::unique_ptr<QMimeData> mime;
    QPoint onOwn;
    Qt::DropAction asked = Qt::IgnoreAction, dropped = Qt::IgnoreAction;
    int numDrops = 0;
};

} // namespace

/// What the user does to V1's view by mouse and drags, and the list of expanded rows.
class tst_ObjectTreeView1Input : public QObject {
    Q_OBJECT

private slots:
    void doubleClickIsToldAndExpandsNothing();
    void otherButtonsDoubleClickInSilence_data();
    void otherButtonsDoubleClickInSilence();
    void everyDragMayEnter();
    void dragActionFollowsExactlyOneKey_data();
    void dragActionFollowsExactlyOneKey();
    void dropActionFollowsExactlyOneKey_data();
    void dropActionFollowsExactlyOneKey();
    void actionThatIsNotAllowedIsTheDefault();
    void dropThatIsNotAllowedIsTheDefault();
    void withoutADefaultOnlyKeysLetDropsLand();
    void eventWithoutPayloadStaysAsItIs();
    void nothingExpandedLeavesTheList();
    void expandedRowsAreNumbers();
    void expandedRowsGoBelowEachOther();
    void expandedRowsAreAppended();
    void emptyListExpandsTheTop();
    void emptyListFetchesTheTop();
    void listExpandsWhatItSays();
    void missingRowEndsItsLevel_data();
    void missingRowEndsItsLevel();
    void absurdListsAreHarmless_data();
    void absurdListsAreHarmless();
    void listOfAnotherModelIsAHint();
    void listGoesDeep();
    void rowsThatGoWhileTheyAreExpanded();
};

/// KEPT: a double click doesn't expand a row.
void tst_ObjectTreeView1Input::doubleClickIsToldAndExpandsNothing()
{
    ViewScene scene;
    scene.show();
    scene.dump();
    QPoint pos;
    int num = 0;
    scene.view->sigDoubleClick.connect([&](auto const &sigData) {
        pos = *sigData.pos;
        ++num;
    });
    const QModelIndex a = scene.row(scene.path());
    const QPoint at = scene.view->visualRect(a).center();
    QTest::mouseDClick(scene.view->viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(num, 1);
    QCOMPARE(pos, at);
    QVERIFY(!scene.view->isExpanded(a));
    // Beside all rows, too.
    QTest::mouseDClick(scene.view->viewport(), Qt::LeftButton, {}, {50, 350});
    QCOMPARE(num, 2);
    QCOMPARE(pos, QPoint(50, 350));
}

void tst_ObjectTreeView1Input::otherButtonsDoubleClickInSilence_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("right") << int(Qt::RightButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
}

void tst_ObjectTreeView1Input::otherButtonsDoubleClickInSilence()
{
    QFETCH(int, button);
    ViewScene scene;
    scene.show();
    scene.dump();
    int num = 0;
    scene.view->sigDoubleClick.connect([&](auto const &) { ++num; });
    const QModelIndex a = scene.row(scene.path());
    QTest::mouseDClick(scene.view->viewport(), Qt::MouseButton(button), {},
                       scene.view->visualRect(a).center());
    QCOMPARE(num, 0);
    QVERIFY(!scene.view->isExpanded(a));
}

/// KEPT: so that moves keep coming.
void tst_ObjectTreeView1Input::everyDragMayEnter()
{
    ViewScene scene;
    QMimeData mime;
    mime.setText("nothing of ours");
    QDragEnterEvent event({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    event.ignore();
    scene.view->dragEnterEvent(&event);
    QVERIFY(event.isAccepted());
}

void tst_ObjectTreeView1Input::dragActionFollowsExactlyOneKey_data()
{
    QTest::addColumn<int>("keys");
    for (std::size_t i = 0; i < std::size(keyRows); ++i)
        QTest::newRow(keyRows[i].name) << int(i);
}

void tst_ObjectTreeView1Input::dragActionFollowsExactlyOneKey()
{
    QFETCH(int, keys);
    for (const Qt::DropAction byDefault : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}) {
        DropScene scene;
        scene.view->setDefaultDropAction(byDefault);
        const Qt::DropAction expected = keyRows[keys].action.value_or(byDefault);
        QDragMoveEvent event(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton,
                             keyRows[keys].modifiers);
        scene.view->dragMoveEvent(&event);
        QCOMPARE(event.dropAction(), expected);
        QCOMPARE(event.proposedAction(), expected);
        QCOMPARE(scene.asked, expected);
        QVERIFY(event.isAccepted());
    }
}

void tst_ObjectTreeView1Input::dropActionFollowsExactlyOneKey_data()
{
    dragActionFollowsExactlyOneKey_data();
}

/// KEPT: a drop proposes the default action, whatever it does.
void tst_ObjectTreeView1Input::dropActionFollowsExactlyOneKey()
{
    QFETCH(int, keys);
    for (const Qt::DropAction byDefault : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}) {
        DropScene scene;
        scene.view->setDefaultDropAction(byDefault);
        QDropEvent event(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton,
                         keyRows[keys].modifiers);
        scene.view->dropEvent(&event);
        QCOMPARE(scene.numDrops, 1);
        QCOMPARE(scene.dropped, keyRows[keys].action.value_or(byDefault));
        QCOMPARE(event.proposedAction(), byDefault);
    }
}

void tst_ObjectTreeView1Input::actionThatIsNotAllowedIsTheDefault()
{
    DropScene scene;
    scene.view->setDefaultDropAction(Qt::LinkAction);
    scene.view->setDropActions(Qt::CopyAction | Qt::LinkAction);
    QDragMoveEvent shift(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton,
                         Qt::ShiftModifier);
    scene.view->dragMoveEvent(&shift);
    QCOMPARE(shift.dropAction(), Qt::LinkAction);
    QDragMoveEvent control(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton,
                           Qt::ControlModifier);
    scene.view->dragMoveEvent(&control);
    QCOMPARE(control.dropAction(), Qt::CopyAction);
}

void tst_ObjectTreeView1Input::dropThatIsNotAllowedIsTheDefault()
{
    DropScene scene;
    scene.view->setDefaultDropAction(Qt::LinkAction);
    scene.view->setDropActions(Qt::CopyAction | Qt::LinkAction);
    QDropEvent event(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton, Qt::ShiftModifier);
    scene.view->dropEvent(&event);
    QCOMPARE(scene.numDrops, 1);
    QCOMPARE(scene.dropped, Qt::LinkAction);
}

/// Qt's own default is to ignore.
void tst_ObjectTreeView1Input::withoutADefaultOnlyKeysLetDropsLand()
{
    DropScene scene;
    QCOMPARE(scene.view->defaultDropAction(), Qt::IgnoreAction);
    QDragMoveEvent move(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton, Qt::NoModifier);
    scene.view->dragMoveEvent(&move);
    QCOMPARE(move.dropAction(), Qt::IgnoreAction);
    QVERIFY(!move.isAccepted());
    QDropEvent plain(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton, Qt::NoModifier);
    scene.view->dropEvent(&plain);
    QCOMPARE(scene.numDrops, 0);
    QDropEvent shift(scene.onOwn, allActions, scene.mime.get(), Qt::LeftButton, Qt::ShiftModifier);
    scene.view->dropEvent(&shift);
    QCOMPARE(scene.numDrops, 1);
    QCOMPARE(scene.dropped, Qt::MoveAction);
}

void tst_ObjectTreeView1Input::eventWithoutPayloadStaysAsItIs()
{
    DropScene scene;
    scene.view->setDefaultDropAction(Qt::LinkAction);
    QDropEvent event({300, 390}, allActions, nullptr, Qt::LeftButton, Qt::ShiftModifier);
    event.setDropAction(Qt::CopyAction);
    const Qt::DropAction proposed = event.proposedAction();
    scene.view->dropEvent(&event);
    QCOMPARE(event.dropAction(), Qt::CopyAction);
    QCOMPARE(event.proposedAction(), proposed);
    QCOMPARE(scene.numDrops, 0);
}

void tst_ObjectTreeView1Input::nothingExpandedLeavesTheList()
{
    ViewScene scene;
    scene.show();
    scene.dump();
    std::vector<int> rows{7};
    scene.view->getExpandedRows(rows);
    QCOMPARE(rows, (std::vector<int>{7}));
}

void tst_ObjectTreeView1Input::expandedRowsAreNumbers()
{
    ViewScene scene;
    setLink(scene.c(), "more", scene.a());
    scene.view->addRows({scene.a(), scene.b(), scene.c()}, 0);
    scene.open(scene.path());
    scene.open(Path(PtrT<Object>(scene.c())));
    std::vector<int> rows;
    scene.view->getExpandedRows(rows);
    QCOMPARE(rows, (std::vector<int>{0, -1, 2, -1}));
}

void tst_ObjectTreeView1Input::expandedRowsGoBelowEachOther()
{
    ViewScene scene;
    scene.show();
    for (Path const &path : {scene.path(), scene.path("next"), scene.path("own")})
        scene.open(path);
    std::vector<int> rows;
    scene.view->getExpandedRows(rows);
    QCOMPARE(rows, (std::vector<int>{0, 1, -1, 3, -1, -1}));
    // What is below a row that isn't expanded isn't told.
    scene.view->collapse(scene.row(scene.path()));
    rows.clear();
    scene.view->getExpandedRows(rows);
    QVERIFY(rows.empty());
}

void tst_ObjectTreeView1Input::expandedRowsAreAppended()
{
    ViewScene scene;
    scene.show();
    scene.open(scene.path());
    std::vector<int> rows{5};
    scene.view->getExpandedRows(rows);
    QCOMPARE(rows, (std::vector<int>{5, 0, -1}));
}

void tst_ObjectTreeView1Input::emptyListExpandsTheTop()
{
    ViewScene scene;
    scene.show();
    QVERIFY(!scene.view->isExpanded(scene.view->rootIndex()));
    scene.view->expandRows({});
    QVERIFY(scene.view->isExpanded(scene.view->rootIndex()));
    QCOMPARE(scene.dump(), std::string("'a'"));
}

/// Which brings values of hidden fields up to date that nobody watches.
void tst_ObjectTreeView1Input::emptyListFetchesTheTop()
{
    ViewScene scene;
    scene.view->hideFields(true);
    scene.view->addRow(scene.own(), 0);
    scene.own().replace(0, 0, makeThings("n"));
    QCOMPARE(scene.dump(), std::string("'d' 'e'"));
    scene.view->expandRows({});
    QCOMPARE(scene.dump(), std::string("'n' 'd' 'e'"));
}

void tst_ObjectTreeView1Input::listExpandsWhatItSays()
{
    ViewScene scene;
    scene.show();
    scene.view->expandRows({0, 1, -1, 3, -1, -1});
    QCOMPARE(scene.dump(), std::string("'a' .part .next ..'c' .all .own ..'d' ..'e'"));
    std::vector<int> rows;
    scene.view->getExpandedRows(rows);
    QCOMPARE(rows, (std::vector<int>{0, 1, -1, 3, -1, -1}));
}

void tst_ObjectTreeView1Input::missingRowEndsItsLevel_data()
{
    QTest::addColumn<std::vector<int>>("rows");
    QTest::addColumn<std::string>("expected");
    const std::string a = "'a' .part .next .all .own", b = " 'b' .back";
    QTest::newRow("all there") << std::vector<int>{0, -1, 1, -1} << a + b;
    // Its -1 ends the top level.
    QTest::newRow("missing at the top") << std::vector<int>{9, -1, 0, -1} << std::string("'a' 'b'");
    // Its -1 ends the level of a, so that the 1 behind it is a row of the top.
    QTest::newRow("missing below a row") << std::vector<int>{0, 9, -1, 1, -1, -1} << a + b;
    QTest::newRow("missing with rows below")
        << std::vector<int>{0, 9, 0, 2, -1, -1, -1, 1, -1, -1} << a + b;
    QTest::newRow("missing at the end") << std::vector<int>{0, 9} << a + " 'b'";
    QTest::newRow("missing with no end") << std::vector<int>{0, 9, 1, 2} << a + " 'b'";
}

/// KEPT: the siblings that follow a missing row are read by the level above.
void tst_ObjectTreeView1Input::missingRowEndsItsLevel()
{
    QFETCH(std::vector<int>, rows);
    ViewScene scene;
    setLink(scene.b(), "back", scene.a());
    scene.view->addRows({scene.a(), scene.b()}, 0);
    scene.view->expandRows(rows);
    QTEST(scene.dump(), "expected");
}

void tst_ObjectTreeView1Input::absurdListsAreHarmless_data()
{
    QTest::addColumn<std::vector<int>>("rows");
    QTest::addColumn<std::string>("expected");
    const std::string closed = "'a'", open = "'a' .part .next .all .own";
    QTest::newRow("only ends") << std::vector<int>{-1, -1, -1} << closed;
    QTest::newRow("more ends than rows") << std::vector<int>{0, -1, -1, -1, 0} << open;
    QTest::newRow("the least number is an end") << std::vector<int>{0, INT_MIN, INT_MIN} << open;
    QTest::newRow("the greatest is missing") << std::vector<int>{INT_MAX, 0, 1} << closed;
    QTest::newRow("no ends") << std::vector<int>{0} << open;
    QTest::newRow("a million rows that are missing") << std::vector<int>(1000000, 5) << closed;
    QTest::newRow("a million ends") << std::vector<int>(1000000, -7) << closed;
}

void tst_ObjectTreeView1Input::absurdListsAreHarmless()
{
    QFETCH(std::vector<int>, rows);
    ViewScene scene;
    scene.show();
    scene.view->expandRows(rows);
    QTEST(scene.dump(), "expected");
}

void tst_ObjectTreeView1Input::listOfAnotherModelIsAHint()
{
    ViewScene from;
    from.show();
    for (Path const &path : {from.path(), from.path("part"), from.path("own")})
        from.open(path);
    std::vector<int> rows;
    from.view->getExpandedRows(rows);
    ViewScene to;
    to.view->addRows({to.b(), to.c()}, 0);
    to.view->expandRows(rows);
    QCOMPARE(to.dump(), std::string("'b' 'c'"));
}

void tst_ObjectTreeView1Input::listGoesDeep()
{
    ViewScene scene;
    // A circle, so that there is always a row below.
    const RefT<Object> one = makeThing("o");
    setLink(one, "again", one);
    scene.view->addRow(PtrT<Object>(one), 0);
    std::vector<int> rows(200, 0);
    rows.insert(rows.end(), 200, -1);
    scene.view->expandRows(rows);
    std::vector<int> expanded;
    scene.view->getExpandedRows(expanded);
    QCOMPARE(expanded, rows);
}

void tst_ObjectTreeView1Input::rowsThatGoWhileTheyAreExpanded()
{
    ViewScene scene;
    scene.view->addRows({scene.a(), scene.b()}, 0);
    bool isTold = false;
    scene.view->sigRowsAdded.connect([&](auto const &) {
        if (!std::exchange(isTold, true))
            scene.view->clear();
    });
    scene.view->expandRows({0, 0, -1, 3, 0, -1, 1, -1, -1, -1, 1, -1});
    QVERIFY(isTold);
    QCOMPARE(scene.dump(), std::string());
    QCOMPARE(scene.view->rootIndex(), scene.view->items().index(0, 0));
}

QTEST_MAIN(tst_ObjectTreeView1Input)
#include "tst_ObjectTreeView1Input.moc"
