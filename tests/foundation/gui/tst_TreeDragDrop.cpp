#include "foundation/gui/TreeScene.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QPointer>
#include <QTimer>

#include <utility>

using namespace TreeTest;

namespace {

std::vector<ItemPtr> letters()
{
    return {opened(item("a", {item("b"), item("c", {item("d")})})), item("e")};
}

/// Sends what a drag over the viewport sends: after a refused entry nothing, and a farewell.
struct Visitor {
    explicit Visitor(Scene &visited, char const *type = mimeType)
        : scene(visited)
    {
        payload.setData(type, "payload");
    }
    bool enter(QPoint const &pos)
    {
        QDragEnterEvent event(pos, actions, &payload, Qt::LeftButton, modifiers);
        event.ignore();
        QApplication::sendEvent(scene.viewport(), &event);
        return inside = event.isAccepted();
    }
    bool move(QPoint const &pos)
    {
        if (!inside)
            return false;
        QDragMoveEvent event(pos, actions, &payload, Qt::LeftButton, modifiers);
        event.setAccepted(true);
        QApplication::sendEvent(scene.viewport(), &event);
        action = event.dropAction();
        return event.isAccepted();
    }
    bool drop(QPoint const &pos)
    {
        if (!std::exchange(inside, false))
            return false;
        QDropEvent event(pos, actions, &payload, Qt::LeftButton, modifiers);
        QApplication::sendEvent(scene.viewport(), &event);
        return event.isAccepted();
    }
    void leave()
    {
        QDragLeaveEvent event;
        if (std::exchange(inside, false))
            QApplication::sendEvent(scene.viewport(), &event);
    }
    ~Visitor() { leave(); }

    Scene &scene;
    QMimeData payload;
    Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    Qt::KeyboardModifiers modifiers;
    Qt::DropAction action = Qt::IgnoreAction;
    bool inside = false;
};

} // namespace

/// Rows as a drag's source, by whole drags, and as its target, by the events of one.
class tst_TreeDragDrop : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void placesFollowThePointer_data();
    void placesFollowThePointer();
    void belowAllRowsIsTheRootsEnd();
    void refusedBetweenRowsFallsOnTheRow();
    void refusalIsTold();
    void dropThatIsNotCarriedOutIsRefused();
    void foreignTypesAreNotOffered();
    void actionsAreThoseOfTheView_data();
    void actionsAreThoseOfTheView();
    void indicatorIsShownAndGoes();
    void closedRowsOpenUnderThePointer();
    void edgesScroll();
    void edgesScrollSideways_data();
    void edgesScrollSideways();
    void scrollingAsksAboutTheRowThatComesUnderTheDrag();
    void scrollingOpensOnlyWhatTheDragRestsOn();
    void hiddenRowsAreOfferedByTheRowThatIsSeen();
    void dragsCarryTheSelection();
    void smallMovesDragNothing();
    void withoutPayloadNothingIsDragged();
    void escapeEndsADrag();
    void viewMayDieWhileItsDragRuns();
    void rowsMayDieWhileTheirDragRuns();
};

void tst_TreeDragDrop::placesFollowThePointer_data()
{
    QTest::addColumn<std::string>("row");
    QTest::addColumn<int>("quarter");
    QTest::addColumn<std::string>("place");
    using std::string;
    QTest::newRow("onto a row") << string("b") << 2 << string("b");
    QTest::newRow("before a row") << string("b") << 0 << string("a[0]");
    QTest::newRow("behind a row") << string("b") << 4 << string("a[1]");
    QTest::newRow("behind the last child") << string("c") << 4 << string("a[2]");
    QTest::newRow("behind an open row") << string("a") << 4 << string("a[0]");
    QTest::newRow("before the first row") << string("a") << 0 << string("root[0]");
    QTest::newRow("behind the last row") << string("e") << 4 << string("root[2]");
}

void tst_TreeDragDrop::placesFollowThePointer()
{
    QFETCH(std::string, row);
    QFETCH(int, quarter);
    QFETCH(std::string, place);
    const auto scene = makeScene(letters());
    Visitor visitor(*scene);
    const QPoint pos = scene->at(row, quarter);
    QVERIFY(visitor.enter(pos));
    QVERIFY(visitor.move(pos));
    QCOMPARE(scene->takeLog(), "canDrop " + place);
    QVERIFY(visitor.drop(pos));
    QCOMPARE(scene->takeLog(), "canDrop " + place + "; drop " + place + " action 1");
}

void tst_TreeDragDrop::belowAllRowsIsTheRootsEnd()
{
    const auto scene = makeScene(letters());
    Visitor visitor(*scene);
    const QPoint pos(10, scene->viewport()->height() - 3);
    visitor.enter(pos);
    QVERIFY(visitor.move(pos));
    QCOMPARE(scene->takeLog(), std::string("canDrop root[2]"));
    const auto empty = makeScene({});
    Visitor other(*empty);
    other.enter(pos);
    QVERIFY(other.move(pos));
    QCOMPARE(empty->takeLog(), std::string("canDrop root[0]"));
}

void tst_TreeDragDrop::refusedBetweenRowsFallsOnTheRow()
{
    const auto scene = makeScene(letters());
    scene->canDrop = [](TreeRow *, std::size_t index) { return index == TreeRow::npos; };
    Visitor visitor(*scene);
    const QPoint pos = scene->at("b", 0);
    visitor.enter(pos);
    QVERIFY(visitor.move(pos));
    QCOMPARE(scene->takeLog(), std::string("canDrop a[0]; canDrop b"));
}

void tst_TreeDragDrop::refusalIsTold()
{
    const auto scene = makeScene(letters());
    scene->canDrop = [](TreeRow *, std::size_t) { return false; };
    Visitor visitor(*scene);
    const QPoint pos = scene->at("b");
    QVERIFY(visitor.enter(pos));
    QVERIFY(!visitor.move(pos));
    QVERIFY(!visitor.drop(pos));
    QCOMPARE(scene->takeLog(), std::string("canDrop b; canDrop b"));
}

void tst_TreeDragDrop::dropThatIsNotCarriedOutIsRefused()
{
    const auto scene = makeScene(letters());
    const QPoint pos = scene->at("b");
    scene->carriesOut = false;
    Visitor visitor(*scene);
    visitor.enter(pos);
    QVERIFY(visitor.move(pos));
    QVERIFY(!visitor.drop(pos));
    QCOMPARE(scene->log.back(), std::string("drop b action 1"));
}

void tst_TreeDragDrop::foreignTypesAreNotOffered()
{
    const auto scene = makeScene(letters());
    Visitor visitor(*scene, "test/other");
    QVERIFY(!visitor.enter(scene->at("b")));
    QCOMPARE(scene->view()->getMimeTypes(), std::vector<QString>{mimeType});
    scene->view()->addMimeType("test/other");
    scene->view()->addMimeType("test/other");
    QCOMPARE(scene->view()->getMimeTypes().size(), std::size_t(2));
    QVERIFY(visitor.enter(scene->at("b")));
}

void tst_TreeDragDrop::actionsAreThoseOfTheView_data()
{
    QTest::addColumn<int>("offered");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("action");
    const int all = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QTest::newRow("no modifier copies") << all << int(Qt::NoModifier) << int(Qt::CopyAction);
    QTest::newRow("shift moves") << all << int(Qt::ShiftModifier) << int(Qt::MoveAction);
    QTest::newRow("control copies") << all << int(Qt::ControlModifier) << int(Qt::CopyAction);
    QTest::newRow("a link, which the view has not, copies")
        << all << int(Qt::AltModifier) << int(Qt::CopyAction);
    QTest::newRow("what can only be moved is moved")
        << int(Qt::MoveAction) << int(Qt::NoModifier) << int(Qt::MoveAction);
    QTest::newRow("what can only be linked is refused")
        << int(Qt::LinkAction) << int(Qt::NoModifier) << int(Qt::IgnoreAction);
}

void tst_TreeDragDrop::actionsAreThoseOfTheView()
{
    QFETCH(int, offered);
    QFETCH(int, modifiers);
    QFETCH(int, action);
    const auto scene = makeScene(letters());
    Visitor visitor(*scene);
    visitor.actions = Qt::DropActions(offered);
    visitor.modifiers = Qt::KeyboardModifiers(modifiers);
    const bool taken = action != Qt::IgnoreAction;
    QCOMPARE(visitor.enter(scene->at("b")), taken);
    QCOMPARE(visitor.move(scene->at("b")), taken);
    if (taken)
        QCOMPARE(int(visitor.action), action);
    QCOMPARE(visitor.drop(scene->at("b")), taken);
    QCOMPARE(scene->takeLog(), taken
                                   ? "canDrop b; canDrop b; drop b action " + std::to_string(action)
                                   : std::string());
}

void tst_TreeDragDrop::indicatorIsShownAndGoes()
{
    const auto scene = makeScene(letters());
    scene->lines();
    const QImage before = scene->viewport()->grab().toImage();
    Visitor visitor(*scene);
    const auto differs = [&] { return scene->viewport()->grab().toImage() != before; };
    visitor.enter(scene->at("b"));
    visitor.move(scene->at("b"));
    QVERIFY(differs());
    const QImage onto = scene->viewport()->grab().toImage();
    visitor.move(scene->at("b", 0));
    QVERIFY(differs());
    QVERIFY(scene->viewport()->grab().toImage() != onto);
    visitor.leave();
    QVERIFY(!differs());
    visitor.enter(scene->at("b"));
    visitor.move(scene->at("b"));
    QVERIFY(visitor.drop(scene->at("b")));
    QVERIFY(!differs());
}

void tst_TreeDragDrop::closedRowsOpenUnderThePointer()
{
    const auto scene = makeScene(letters());
    Visitor visitor(*scene);
    visitor.enter(scene->at("c"));
    visitor.move(scene->at("c"));
    QCOMPARE(scene->lines(), std::string("a b c e"));
    QTRY_COMPARE(scene->lines(), std::string("a b c d e"));
}

void tst_TreeDragDrop::edgesScroll()
{
    const auto scene = makeScene(items("x", 100));
    scene->view()->resize(200, 10 * scene->view()->getRowHeight());
    scene->lines();
    QScrollBar const &bar = *scene->view()->verticalScrollBar();
    Visitor visitor(*scene);
    visitor.enter({10, scene->viewport()->height() - 2});
    visitor.move({10, scene->viewport()->height() - 2});
    QTRY_VERIFY(bar.value() > 3 * scene->view()->getRowHeight());
    visitor.move({10, 2});
    QTRY_COMPARE(bar.value(), 0);
    visitor.move({10, scene->viewport()->height() - 2});
    visitor.leave();
    QTest::qWait(200);
    QCOMPARE(bar.value(), 0);
}

void tst_TreeDragDrop::edgesScrollSideways_data()
{
    QTest::addColumn<bool>("rightToLeft");
    QTest::newRow("left to right") << false;
    QTest::newRow("right to left") << true;
}

void tst_TreeDragDrop::edgesScrollSideways()
{
    QFETCH(bool, rightToLeft);
    const auto scene = makeScene({item(std::string(200, 'w'))});
    scene->view()->setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    scene->view()->resize(200, 10 * scene->view()->getRowHeight());
    scene->lines();
    QScrollBar &bar = *scene->view()->horizontalScrollBar();
    QVERIFY(bar.maximum() > 0);
    const int middle = scene->viewport()->height() / 2, last = scene->viewport()->width() - 1;
    const QPoint begin(rightToLeft ? last : 0, middle), end(rightToLeft ? 0 : last, middle);
    Visitor visitor(*scene);
    visitor.enter(end);
    visitor.move(end);
    QTRY_VERIFY(bar.value() > 0);
    visitor.move({last / 2, middle});
    const int rest = bar.value();
    QTest::qWait(120);
    QCOMPARE(bar.value(), rest);
    visitor.move(begin);
    QTRY_COMPARE(bar.value(), 0);
}

void tst_TreeDragDrop::scrollingAsksAboutTheRowThatComesUnderTheDrag()
{
    const auto scene = makeScene(items("x", 100));
    const int height = scene->view()->getRowHeight();
    scene->view()->resize(200, 10 * height);
    scene->lines();
    Visitor visitor(*scene);
    const QPoint edge(10, scene->viewport()->height() - 2);
    visitor.enter(edge);
    visitor.move(edge);
    scene->takeLog();
    QScrollBar const &bar = *scene->view()->verticalScrollBar();
    QTRY_VERIFY(bar.value() > 2 * height);
    const std::string log = scene->takeLog();
    const std::string under = scene->nameOf(scene->findRow({10, edge.y() + bar.value()}));
    QVERIFY2(log.find("canDrop") != std::string::npos, log.c_str());
    // The last question was about the present row, or the gap below it.
    const std::string last = log.substr(log.rfind("canDrop "));
    const std::string number = std::to_string(std::stoi(under.substr(1)) + 1);
    QVERIFY2(last == "canDrop " + under || last == "canDrop root[" + number + "]", last.c_str());
}

void tst_TreeDragDrop::scrollingOpensOnlyWhatTheDragRestsOn()
{
    std::vector<ItemPtr> model;
    for (int i = 0; i < 60; ++i)
        model.push_back(item("x" + std::to_string(i), {item("y" + std::to_string(i))}));
    const auto scene = makeScene(model);
    const int height = scene->view()->getRowHeight();
    scene->view()->resize(200, 10 * height);
    scene->lines();
    Visitor visitor(*scene);
    const QPoint edge(10, scene->viewport()->height() - 2);
    visitor.enter(edge);
    visitor.move(edge);
    // Longer than it takes to open a row, and too short to reach the end.
    QTest::qWait(1200);
    QVERIFY(scene->view()->verticalScrollBar()->value() <
            scene->view()->verticalScrollBar()->maximum());
    for (int i = 0; i < 60; ++i)
        QVERIFY(!scene->find("y" + std::to_string(i)));
}

void tst_TreeDragDrop::hiddenRowsAreOfferedByTheRowThatIsSeen()
{
    const auto scene =
        makeScene({opened(item("a", {hiddenItem(item("h", {item("b"), item("c")})), item("d")}))});
    QCOMPARE(scene->lines(), std::string("a b c d"));
    Visitor visitor(*scene);
    scene->takeLog();
    visitor.enter(scene->at("c"));
    visitor.move(scene->at("c", 0));
    QCOMPARE(scene->takeLog(), std::string("canDrop a[0]"));
    visitor.move(scene->at("c"));
    QCOMPARE(scene->takeLog(), std::string("canDrop c"));
    visitor.move(scene->at("d", 4));
    QCOMPARE(scene->takeLog(), std::string("canDrop a[2]"));
}

namespace {

/// Leads the button's press over the window, step by step, while the drag's own loop runs.
class Pull : public QObject {
public:
    Pull(Scene &pulled, QPoint const &start, QPoint const &end)
        : scene(pulled)
        , window(scene.view()->windowHandle())
        , from(scene.viewport()->mapTo(scene.view()->window(), start))
        , to(scene.viewport()->mapTo(scene.view()->window(), end))
    {
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        arm();
    }
    bool run()
    {
        return QTest::qWaitFor([this] { return step > 9; }, 10000);
    }
    bool cancels = false;
    bool runs = false;

private:
    void arm()
    {
        QTimer::singleShot(15, this, [this] {
            if (step > 9)
                return;
            ++step;
            arm();
            act();
        });
    }
    void act()
    {
        if (!window || !scene.view()) {
            QDrag::cancel();
            return;
        }
        runs = runs || scene.viewport()->findChild<QDrag *>() || scene.view()->findChild<QDrag *>();
        if (step <= 6)
            QTest::mouseMove(window, from + (to - from) * step / 6);
        else if (step == 7 && cancels)
            QTest::keyClick(window, Qt::Key_Escape);
        else if (step == 8)
            QTest::mouseRelease(window, Qt::LeftButton, {}, to);
        else if (step == 9)
            QDrag::cancel();
    }

    Scene &scene;
    QPointer<QWindow> window;
    QPoint from, to;
    int step = 0;
};

} // namespace

void tst_TreeDragDrop::dragsCarryTheSelection()
{
    const auto scene = makeScene(letters());
    QVERIFY(QTest::qWaitForWindowExposed(scene->view()));
    scene->lines();
    scene->select({"c", "b"});
    Pull pull(*scene, scene->at("b"), scene->at("e"));
    QVERIFY(pull.run());
    QVERIFY(pull.runs);
    QCOMPARE(scene->log.front(), std::string("makeMimeData b c"));
    QCOMPARE(scene->log.back(), std::string("drop e action 1"));
    QCOMPARE(scene->sel(), std::string("b c"));
}

void tst_TreeDragDrop::smallMovesDragNothing()
{
    const auto scene = makeScene(letters());
    const QPoint from = scene->at("b");
    QTest::mousePress(scene->viewport(), Qt::LeftButton, {}, from);
    const QPoint to = from + QPoint(2, 0);
    QMouseEvent move(QEvent::MouseMove, to, scene->viewport()->mapToGlobal(to), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(scene->viewport(), &move);
    QTest::mouseRelease(scene->viewport(), Qt::LeftButton, {}, to);
    QCOMPARE(scene->takeLog(), std::string());
}

void tst_TreeDragDrop::withoutPayloadNothingIsDragged()
{
    const auto scene = makeScene(letters());
    QVERIFY(QTest::qWaitForWindowExposed(scene->view()));
    scene->offersDrag = false;
    Pull pull(*scene, scene->at("b"), scene->at("e"));
    QVERIFY(pull.run());
    QVERIFY(!pull.runs);
    QCOMPARE(scene->takeLog(), std::string("makeMimeData b"));
}

void tst_TreeDragDrop::escapeEndsADrag()
{
    const auto scene = makeScene(letters());
    QVERIFY(QTest::qWaitForWindowExposed(scene->view()));
    Pull pull(*scene, scene->at("b"), scene->at("e"));
    pull.cancels = true;
    QVERIFY(pull.run());
    QVERIFY(pull.runs);
    for (std::string const &entry : scene->log)
        QVERIFY(entry.compare(0, 4, "drop") != 0);
    // The next drag begins anew.
    scene->log.clear();
    scene->click("e");
    QCOMPARE(scene->sel(), std::string("e"));
}

void tst_TreeDragDrop::viewMayDieWhileItsDragRuns()
{
    const auto scene = makeScene(letters());
    QVERIFY(QTest::qWaitForWindowExposed(scene->view()));
    scene->react = [&](std::string const &what) {
        if (what.compare(0, 7, "canDrop") == 0 && scene->view())
            QTimer::singleShot(0, scene->view(), [&] { scene->destroyView(); });
    };
    Pull pull(*scene, scene->at("b"), scene->at("e"));
    QVERIFY(pull.run());
    QCOMPARE(scene->log.front(), std::string("makeMimeData b"));
    QVERIFY(!scene->view());
    QCOMPARE(scene->numRows, std::size_t(0));
}

void tst_TreeDragDrop::rowsMayDieWhileTheirDragRuns()
{
    const auto scene = makeScene(letters());
    QVERIFY(QTest::qWaitForWindowExposed(scene->view()));
    scene->react = [&](std::string const &what) {
        if (what == "canDrop e")
            scene->find("a")->dropChildren();
    };
    Pull pull(*scene, scene->at("b"), scene->at("e"));
    QVERIFY(pull.run());
    QVERIFY(pull.runs);
    QCOMPARE(scene->lines(), std::string("a e"));
    QCOMPARE(scene->sel(), std::string());
}

QTEST_MAIN(tst_TreeDragDrop)
#include "tst_TreeDragDrop.moc"
