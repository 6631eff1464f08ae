#include "foundation/gui/DragScene.h"

#include <QAction>
#include <QDialog>
#include <QListWidget>
#include <QMimeData>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QVBoxLayout>

#include <memory>

using ZR::GUI::Drag;
using namespace gui_test;

class tst_Drag : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void entersMovesAndDrops();
    void tellsEachWidgetItsOwnPlace();
    void leavesForTheNextWidget();
    void offersToParentsWhatAChildRefuses();
    void offersToParentsOfWhatTakesNoDrops_data();
    void offersToParentsOfWhatTakesNoDrops();
    void reachesOtherWindows();
    void modalWindowKeepsDropsFromOthers_data();
    void modalWindowKeepsDropsFromOthers();

    void proposesByModifiers_data();
    void proposesByModifiers();
    void keysChangeTheActionUnderAResting();
    void refusingWidgetIsAskedAgainWithOtherModifiers();
    void dropDoesWhatTheTargetChose();
    void dropThatIsntAcceptedIsNone();
    void dropOnARefusingPlaceLeaves();
    void targetThatNoLongerTakesDropsIsLeft();

    void escapeCancels();
    void escapeDoesntStartTheNextDrag();
    void cancelEndsWithoutADrop();
    void missedReleaseCancels();
    void lossOfFocusCancels();
    void endOfTheLoopCancels();
    void otherButtonsDontEndIt();
    void clickDropsWhenNoButtonWasHeld();
    void releaseReachesTheSourceAfterTheDrag();
    void keysAndShortcutsReachNobody();
    void mouseGrabDoesntMatter();

    void survivesDeath_data();
    void survivesDeath();
    void dropMayDestroyAnything_data();
    void dropMayDestroyAnything();
    void secondDragIsRefused();
    void sameDragIsRefusedWhileItRuns();
    void handlersMayRunEventLoops();
    void dropHandlerMayRunADialog();
    void itemViewTakesTheDropAfterItsModelChanged();

    void cannotStart_data();
    void cannotStart();
    void ownsItsPayload();
    void offersThePayloadItWasGiven();
    void knowsSourceAndTarget();
    void deletesItselfAfterwards();

    void cursorTellsTheAction_data();
    void cursorTellsTheAction();
    void pictureFollowsThePointer();
    void pictureCoversNothing();
    void pictureIsAsLargeAsItsPixmap();
    void plainDragHasNoPicture();

private:
    Drag *makeDrag(QObject *parent);
    Qt::DropAction run(std::vector<Hand::Step> steps,
                       Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction,
                       Qt::DropAction defaultAction = Qt::CopyAction);

    std::unique_ptr<QWidget> window;
    QPointer<QWidget> source;
    QPointer<Site> left, right;
    QPointer<Drag> drag;
};

namespace {

const Qt::DropActions allActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;

QWidget *findPicture()
{
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->windowType() == Qt::ToolTip && widget->isVisible())
            return widget;
    return nullptr;
}

} // namespace

/// Three widgets in a row: source, left and right.
void tst_Drag::init()
{
    window = std::make_unique<QWidget>();
    window->setGeometry(0, 0, 180, 60);
    source = new QWidget(window.get());
    left = new Site(window.get());
    right = new Site(window.get());
    source->setGeometry(0, 0, 60, 60);
    left->setGeometry(60, 0, 60, 60);
    right->setGeometry(120, 0, 60, 60);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    press(*source);
    moveTo(*source);
    drag = makeDrag(source);
}

void tst_Drag::cleanup()
{
    if (window)
        release(*window);
    QVERIFY(!QGuiApplication::overrideCursor());
    QVERIFY(!findPicture());
    delete drag;
    window.reset();
}

Drag *tst_Drag::makeDrag(QObject *parent)
{
    auto *const made = new Drag(parent);
    auto *const payload = new QMimeData;
    payload->setText("payload");
    made->setMimeData(payload);
    return made;
}

/// Runs the drag while the steps are done. They begin with the pointer in the source.
Qt::DropAction tst_Drag::run(std::vector<Hand::Step> steps, Qt::DropActions actions,
                             Qt::DropAction defaultAction)
{
    steps.emplace_back([this] {
        if (drag)
            drag->cancel();
    });
    const Hand hand(std::move(steps));
    return drag->exec(actions, defaultAction);
}

void tst_Drag::entersMovesAndDrops()
{
    const Qt::DropAction done = run({[&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, move copy, drop copy"));
    QCOMPARE(right->text(), QString());
}

void tst_Drag::tellsEachWidgetItsOwnPlace()
{
    QPoint inLeft, inRight;
    run({[&] {
             sendMouse(*window, QEvent::MouseMove, {63, 7});
         },
         [&] {
             inLeft = left->lastPos;
             sendMouse(*window, QEvent::MouseMove, {125, 9});
         },
         [&] { inRight = right->lastPos; }});
    QCOMPARE(inLeft, QPoint(3, 7));
    QCOMPARE(inRight, QPoint(5, 9));
}

void tst_Drag::leavesForTheNextWidget()
{
    const Qt::DropAction done = run({[&] { moveTo(*left); }, [&] { moveTo(*right); },
                                     [&] { moveTo(*source); }, [&] { release(*source); }});
    QCOMPARE(done, Qt::IgnoreAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
    QCOMPARE(right->text(), QString("enter copy, move copy, leave"));
}

void tst_Drag::offersToParentsWhatAChildRefuses()
{
    auto *const child = new Site(left);
    child->setGeometry(20, 20, 40, 40);
    child->onEvent = [](QDropEvent &event) { event.ignore(); };
    child->show();
    QPointer<QWidget> target;
    const Qt::DropAction done = run({[&] { moveTo(*child); },
                                     [&] {
                                         target = drag->target();
                                         release(*child);
                                     }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(child->text(), QString("enter copy"));
    QCOMPARE(left->text(), QString("enter copy, move copy, move copy, drop copy"));
    QCOMPARE(target.data(), static_cast<QWidget *>(left));
    QCOMPARE(left->lastPos, child->mapToParent(child->rect().center()));
}

void tst_Drag::offersToParentsOfWhatTakesNoDrops_data()
{
    QTest::addColumn<bool>("acceptsDrops");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("seesMouse");
    QTest::newRow("takes none") << false << true << true;
    QTest::newRow("disabled") << true << false << true;
    QTest::newRow("transparent for the mouse") << true << true << false;
}

void tst_Drag::offersToParentsOfWhatTakesNoDrops()
{
    QFETCH(bool, acceptsDrops);
    QFETCH(bool, enabled);
    QFETCH(bool, seesMouse);
    auto *const child = new Site(left);
    child->setGeometry(left->rect());
    child->setAcceptDrops(acceptsDrops);
    child->setEnabled(enabled);
    child->setAttribute(Qt::WA_TransparentForMouseEvents, !seesMouse);
    child->show();
    run({[&] { moveTo(*child); }, [&] { release(*child); }});
    QCOMPARE(child->text(), QString());
    QCOMPARE(left->text(), QString("enter copy, move copy, move copy, drop copy"));
}

void tst_Drag::reachesOtherWindows()
{
    Site other;
    other.setGeometry(0, 100, 60, 60);
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    // The window that was pressed hears of the mouse, wherever it is.
    const QPoint there = other.geometry().center() - window->pos();
    const Qt::DropAction done =
        run({[&] { sendMouse(*window, QEvent::MouseMove, there); },
             [&] { sendMouse(*window, QEvent::MouseButtonRelease, there, Qt::LeftButton, {}); }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(other.text(), QString("enter copy, move copy, move copy, drop copy"));
}

void tst_Drag::modalWindowKeepsDropsFromOthers_data()
{
    QTest::addColumn<Qt::WindowModality>("modality");
    QTest::addColumn<bool>("isParent");
    QTest::addColumn<bool>("dropsOutside");
    QTest::newRow("of no modality") << Qt::NonModal << false << true;
    QTest::newRow("of the application") << Qt::ApplicationModal << false << false;
    QTest::newRow("of the window") << Qt::WindowModal << true << false;
    QTest::newRow("of another window") << Qt::WindowModal << false << true;
}

void tst_Drag::modalWindowKeepsDropsFromOthers()
{
    QFETCH(Qt::WindowModality, modality);
    QFETCH(bool, isParent);
    QFETCH(bool, dropsOutside);
    QWidget unrelated;
    QDialog dialog(isParent ? window.get() : &unrelated);
    auto *const inside = new Site(&dialog);
    inside->setGeometry(0, 0, 60, 60);
    dialog.setGeometry(0, 100, 60, 60);
    dialog.setWindowModality(modality);
    release(*source);
    dialog.show();
    press(*inside);
    const QPoint toLeft = left->mapToGlobal(QPoint(30, 30)) - dialog.pos();
    const Qt::DropAction done =
        run({[&] { sendMouse(dialog, QEvent::MouseMove, toLeft); },
             [&] {
                 sendMouse(dialog, QEvent::MouseMove, {20, 20});
             },
             [&] {
                 sendMouse(dialog, QEvent::MouseButtonRelease, {20, 20}, Qt::LeftButton, {});
             }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(!left->text().isEmpty(), dropsOutside);
    QVERIFY(inside->text().endsWith("drop copy"));
}

void tst_Drag::proposesByModifiers_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<Qt::DropActions>("actions");
    QTest::addColumn<Qt::DropAction>("defaultAction");
    QTest::addColumn<QString>("expected");
    using Modifiers = Qt::KeyboardModifiers;
    using Actions = Qt::DropActions;
    const Actions copyAndMove = Qt::CopyAction | Qt::MoveAction;
    const Actions moveAndLink = Qt::MoveAction | Qt::LinkAction;
    const Modifiers none = Qt::NoModifier, shift = Qt::ShiftModifier, control = Qt::ControlModifier,
                    alt = Qt::AltModifier;
    QTest::newRow("none, default copy") << none << allActions << Qt::CopyAction << "copy";
    QTest::newRow("none, default move") << none << allActions << Qt::MoveAction << "move";
    QTest::newRow("none, default link") << none << allActions << Qt::LinkAction << "link";
    QTest::newRow("Shift") << shift << allActions << Qt::CopyAction << "move";
    QTest::newRow("Control") << control << allActions << Qt::MoveAction << "copy";
    QTest::newRow("Alt") << alt << allActions << Qt::CopyAction << "link";
    QTest::newRow("Control and Shift")
        << (control | shift) << allActions << Qt::CopyAction << "link";
    QTest::newRow("Control and Alt") << (control | alt) << allActions << Qt::MoveAction << "copy";
    QTest::newRow("Shift and Alt") << (shift | alt) << allActions << Qt::CopyAction << "move";
    QTest::newRow("keypad") << Modifiers(Qt::KeypadModifier) << allActions << Qt::MoveAction
                            << "move";
    QTest::newRow("Alt, but no link") << alt << copyAndMove << Qt::MoveAction << "move";
    QTest::newRow("Control, but no copy") << control << moveAndLink << Qt::LinkAction << "link";
    QTest::newRow("default not allowed") << none << moveAndLink << Qt::CopyAction << "move";
    QTest::newRow("no default") << none << moveAndLink << Qt::IgnoreAction << "move";
    QTest::newRow("only link") << shift << Actions(Qt::LinkAction) << Qt::CopyAction << "link";
}

void tst_Drag::proposesByModifiers()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(Qt::DropActions, actions);
    QFETCH(Qt::DropAction, defaultAction);
    QFETCH(QString, expected);
    QStringList proposed;
    left->onEvent = [&](QDropEvent &event) {
        proposed += nameOf(event.proposedAction());
        QCOMPARE(event.possibleActions(), actions);
        QCOMPARE(ZR::GUI::modifiersOf(event), modifiers);
        event.acceptProposedAction();
    };
    const Qt::DropAction done =
        run({[&] { moveTo(*left, modifiers); }, [&] { release(*left, modifiers); }}, actions,
            defaultAction);
    QCOMPARE(proposed, QStringList({expected, expected, expected, expected}));
    QCOMPARE(nameOf(done), expected);
}

void tst_Drag::keysChangeTheActionUnderAResting()
{
    const auto key = [&](QEvent::Type type, Qt::Key code, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(type, code, modifiers);
        QCoreApplication::sendEvent(window->windowHandle(), &event);
    };
    run({[&] { moveTo(*left); }, [&] { key(QEvent::KeyPress, Qt::Key_A, Qt::ShiftModifier); },
         [&] { key(QEvent::KeyRelease, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier); },
         [&] { key(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier); }});
    QCOMPARE(left->text(),
             QString("enter copy, move copy, move move, move link, move copy, leave"));
}

void tst_Drag::refusingWidgetIsAskedAgainWithOtherModifiers()
{
    left->onEvent = [](QDropEvent &event) {
        event.setAccepted(event.dropAction() == Qt::MoveAction);
    };
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
    const auto moveBy = [&](int way, Qt::KeyboardModifiers modifiers) {
        sendMouse(*window, QEvent::MouseMove, centerOf(*left) + QPoint(way, 0), Qt::NoButton,
                  Qt::LeftButton, modifiers);
    };
    const Qt::DropAction done = run({[&] { moveBy(1, {}); }, [&] { moveBy(2, {}); },
                                     [&] { moveBy(0, shift); }, [&] { release(*left, shift); }});
    QCOMPARE(done, Qt::MoveAction);
    QCOMPARE(left->text(), QString("enter copy, enter move, move move, move move, drop move"));
}

void tst_Drag::dropDoesWhatTheTargetChose()
{
    left->onEvent = [](QDropEvent &event) {
        if (event.type() != QEvent::Drop)
            event.setDropAction(Qt::LinkAction);
        event.accept();
    };
    const Qt::DropAction done = run({[&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::LinkAction);
    QCOMPARE(left->text(), QString("enter copy, move link, move link, drop link"));
}

void tst_Drag::dropThatIsntAcceptedIsNone()
{
    left->onEvent = [](QDropEvent &event) { event.setAccepted(event.type() != QEvent::Drop); };
    const Qt::DropAction done = run({[&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::IgnoreAction);
    QVERIFY(!drag->target());
}

void tst_Drag::dropOnARefusingPlaceLeaves()
{
    // Enters by its payload and decides by the place.
    left->onEvent = [](QDropEvent &event) {
        event.setAccepted(event.type() == QEvent::DragEnter || ZR::GUI::dropPos(event).x() < 10);
    };
    const Qt::DropAction done = run({[&] {
                                         sendMouse(*window, QEvent::MouseMove, {65, 5});
                                     },
                                     [&] { release(*left); }});
    QCOMPARE(done, Qt::IgnoreAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, move copy, move copy, leave"));
}

void tst_Drag::targetThatNoLongerTakesDropsIsLeft()
{
    const Qt::DropAction done =
        run({[&] { moveTo(*left); }, [&] { left->setEnabled(false); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::IgnoreAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
}

void tst_Drag::escapeCancels()
{
    QString before;
    const Qt::DropAction done = run({[&] { moveTo(*left); },
                                     [&] {
                                         before = left->text();
                                         QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
                                     }});
    QCOMPARE(done, Qt::IgnoreAction);
    QCOMPARE(before, QString("enter copy, move copy"));
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
    QVERIFY(!drag->target());
}

void tst_Drag::escapeDoesntStartTheNextDrag()
{
    struct Moves : QObject {
        int num = 0, releases = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            num += event->type() == QEvent::MouseMove;
            releases += event->type() == QEvent::MouseButtonRelease;
            return false;
        }
    } moves;
    run({[&] { QTest::keyClick(window->windowHandle(), Qt::Key_Escape); }});
    source->installEventFilter(&moves);
    source->setMouseTracking(true);

    sendMouse(*window, QEvent::MouseMove, {20, 20});
    sendMouse(*window, QEvent::MouseMove, {21, 21});
    QCOMPARE(moves.num, 0);
    sendMouse(*window, QEvent::MouseButtonRelease, {21, 21}, Qt::LeftButton, {});
    QCOMPARE(moves.releases, 1);
    sendMouse(*window, QEvent::MouseMove, {22, 22}, Qt::NoButton, {});
    QCOMPARE(moves.num, 1);
    sendMouse(*window, QEvent::MouseButtonPress, {22, 22}, Qt::LeftButton);
    sendMouse(*window, QEvent::MouseMove, {23, 23});
    QCOMPARE(moves.num, 2);
}

void tst_Drag::cancelEndsWithoutADrop()
{
    const Qt::DropAction done = run({[&] { moveTo(*left); }, [&] { drag->cancel(); }});
    QCOMPARE(done, Qt::IgnoreAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
    drag->cancel(); // Of no drag.
}

void tst_Drag::missedReleaseCancels()
{
    bool runs = false;
    const Qt::DropAction done = run(
        {[&] { moveTo(*left); }, [&] { moveTo(*right, {}, Qt::NoButton); }, [&] { runs = true; }});
    QCOMPARE(done, Qt::IgnoreAction);
    QVERIFY(!runs);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
}

void tst_Drag::lossOfFocusCancels()
{
    bool runsWhileActive = false, runs = false;
    const Qt::DropAction done =
        run({[&] { moveTo(*left); },
             [&] { Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive); },
             [&] {
                 runsWhileActive = true;
                 Q_EMIT qApp->applicationStateChanged(Qt::ApplicationInactive);
             },
             [&] { runs = true; }});
    QCOMPARE(done, Qt::IgnoreAction);
    QVERIFY(runsWhileActive);
    QVERIFY(!runs);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
}

void tst_Drag::endOfTheLoopCancels()
{
    Qt::DropAction done = Qt::CopyAction;
    QTimer::singleShot(0, [&] {
        done = run({[&] { moveTo(*left); }, [] { QCoreApplication::exit(3); }});
    });
    QCOMPARE(QCoreApplication::exec(), 3);
    QCOMPARE(done, Qt::IgnoreAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
}

void tst_Drag::otherButtonsDontEndIt()
{
    const Qt::MouseButtons both = Qt::LeftButton | Qt::RightButton;
    const QPoint there = centerOf(*left);
    const Qt::DropAction done = run({
        [&] { moveTo(*left); },
        [&] { sendMouse(*window, QEvent::MouseButtonPress, there, Qt::RightButton, both); },
        [&] {
            sendMouse(*window, QEvent::MouseButtonRelease, there, Qt::RightButton, Qt::LeftButton);
        },
        [&] { moveTo(*right); },
        [&] { release(*right); },
    });
    QCOMPARE(done, Qt::CopyAction);
    QVERIFY(left->text().endsWith("leave"));
    QVERIFY(right->text().endsWith("drop copy"));
}

void tst_Drag::clickDropsWhenNoButtonWasHeld()
{
    release(*source);
    const Qt::DropAction done =
        run({[&] { moveTo(*right, {}, Qt::NoButton); }, [&] { moveTo(*left, {}, Qt::NoButton); },
             [&] { press(*left); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::CopyAction);
    QVERIFY(right->text().endsWith("leave"));
    QVERIFY(left->text().endsWith("drop copy"));
}

void tst_Drag::releaseReachesTheSourceAfterTheDrag()
{
    struct Events : QObject {
        QList<QEvent::Type> seen;
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (dynamic_cast<QMouseEvent *>(event))
                seen += event->type();
            return false;
        }
    } events;
    source->installEventFilter(&events);
    run({[&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(events.seen, {});
    QCoreApplication::processEvents();
    QCOMPARE(events.seen, QList<QEvent::Type>{QEvent::MouseButtonRelease});
}

void tst_Drag::keysAndShortcutsReachNobody()
{
    struct Keys : QObject {
        int num = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            num += event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
            return false;
        }
    } keys;
    QAction action;
    action.setShortcut(Qt::Key_F5);
    window->addAction(&action);
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    source->setFocusPolicy(Qt::StrongFocus);
    source->setFocus();
    source->installEventFilter(&keys);
    QSignalSpy triggered(&action, &QAction::triggered);
    run({[&] { QTest::keyClick(window->windowHandle(), Qt::Key_F5); },
         [&] { QTest::keyClick(window->windowHandle(), Qt::Key_A); }});
    QCOMPARE(triggered.size(), 0);
    QCOMPARE(keys.num, 0);

    QTest::keyClick(window->windowHandle(), Qt::Key_F5);
    QTest::keyClick(window->windowHandle(), Qt::Key_A);
    QCOMPARE(triggered.size(), 1);
    QCOMPARE(keys.num, 3); // F5 only goes up: its press was the shortcut.
}

void tst_Drag::mouseGrabDoesntMatter()
{
    QWidget grabber(window.get());
    const Qt::DropAction done = run({[&] { grabber.grabMouse(); }, [&] { moveTo(*left); },
                                     [&] { grabber.releaseMouse(); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::CopyAction);
}

void tst_Drag::survivesDeath_data()
{
    QTest::addColumn<QString>("victim");
    QTest::addColumn<QString>("moment");
    for (char const *victim : {"drag", "source", "target", "window"})
        for (char const *moment : {"between events", "on enter", "on move"})
            QTest::addRow("%s, %s", victim, moment) << victim << moment;
}

void tst_Drag::survivesDeath()
{
    QFETCH(QString, victim);
    QFETCH(QString, moment);
    QPointer<Site> other(right);
    const auto kill = [&] {
        if (victim == "drag")
            delete drag;
        else if (victim == "source")
            delete source;
        else if (victim == "target")
            delete left;
        else
            window.reset();
    };
    left->onEvent = [&](QDropEvent &event) {
        event.accept();
        if ((moment == "on enter" && event.type() == QEvent::DragEnter) ||
            (moment == "on move" && event.type() == QEvent::DragMove))
            kill();
    };
    const Qt::DropAction done = run({
        [&] { moveTo(*left); },
        [&] {
            if (moment == "between events")
                kill();
        },
        [&] {
            if (other)
                moveTo(*other);
        },
        [&] {
            if (other)
                release(*other);
        },
    });
    const bool goesOn = victim == "target";
    QCOMPARE(done, goesOn ? Qt::CopyAction : Qt::IgnoreAction);
    QCOMPARE(!drag, !goesOn);
    QCOMPARE(!window, victim == "window");
    if (other)
        QCOMPARE(other->text().endsWith("drop copy"), goesOn);
}

void tst_Drag::dropMayDestroyAnything_data()
{
    QTest::addColumn<QString>("victim");
    QTest::newRow("drag") << "drag";
    QTest::newRow("source") << "source";
    QTest::newRow("target") << "target";
    QTest::newRow("window") << "window";
}

void tst_Drag::dropMayDestroyAnything()
{
    QFETCH(QString, victim);
    left->onEvent = [&](QDropEvent &event) {
        event.accept();
        if (event.type() != QEvent::Drop)
            return;
        if (victim == "drag")
            delete drag;
        else if (victim == "source")
            delete source;
        else if (victim == "target")
            delete left;
        else
            window.reset();
    };
    const Qt::DropAction done = run({[&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(!drag, victim != "target");
    if (drag)
        QVERIFY(!drag->target());
}

void tst_Drag::secondDragIsRefused()
{
    const QPointer<Drag> second = makeDrag(right);
    Qt::DropAction secondDone = Qt::CopyAction;
    const Qt::DropAction done =
        run({[&] { moveTo(*left); }, [&] { secondDone = second->exec(allActions, Qt::MoveAction); },
             [&] { release(*left); }});
    QCOMPARE(secondDone, Qt::IgnoreAction);
    QCOMPARE(done, Qt::CopyAction);
    QTRY_VERIFY(!second);

    delete drag;
    drag = makeDrag(source);
    press(*source);
    QCOMPARE(run({[&] { moveTo(*left); }, [&] { release(*left); }}), Qt::CopyAction);
}

void tst_Drag::sameDragIsRefusedWhileItRuns()
{
    Qt::DropAction again = Qt::CopyAction;
    const Qt::DropAction done = run({[&] { again = drag->exec(allActions, Qt::MoveAction); },
                                     [&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(again, Qt::IgnoreAction);
    QCOMPARE(done, Qt::CopyAction);
}

void tst_Drag::handlersMayRunEventLoops()
{
    bool released = false;
    QString meanwhile = "nothing was asked";
    left->onEvent = [&](QDropEvent &event) {
        event.accept();
        if (event.type() != QEvent::DragMove || released)
            return;
        released = true;
        moveTo(*right);
        meanwhile = right->text();
        release(*right);
    };
    const Qt::DropAction done = run({[&] { moveTo(*left); }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(left->text(), QString("enter copy, move copy, leave"));
    QCOMPARE(meanwhile, QString()); // One widget at a time.
    QVERIFY(right->text().startsWith("enter copy"));
    QVERIFY(right->text().endsWith("drop copy"));
}

void tst_Drag::dropHandlerMayRunADialog()
{
    QWidget dialog;
    dialog.setGeometry(0, 100, 60, 60);
    int presses = 0;
    struct Presses : QObject {
        int *num;
        bool eventFilter(QObject *, QEvent *event) override
        {
            *num += event->type() == QEvent::MouseButtonPress;
            return false;
        }
    } filter;
    filter.num = &presses;
    dialog.installEventFilter(&filter);
    left->onEvent = [&](QDropEvent &event) {
        event.accept();
        if (event.type() != QEvent::Drop)
            return;
        dialog.setWindowModality(Qt::ApplicationModal);
        dialog.show();
        QCoreApplication::processEvents();
        press(dialog);
        release(dialog);
        dialog.hide();
    };
    QCOMPARE(run({[&] { moveTo(*left); }, [&] { release(*left); }}), Qt::CopyAction);
    QCOMPARE(presses, 1);
    QVERIFY(!QGuiApplication::overrideCursor());
}

void tst_Drag::itemViewTakesTheDropAfterItsModelChanged()
{
    QListWidget from, to(window.get());
    from.addItems({"a", "b"});
    from.item(1)->setSelected(true);
    to.setAcceptDrops(true);
    to.setDragDropMode(QAbstractItemView::DropOnly);
    to.addItems({"x", "y", "z"});
    to.setGeometry(left->geometry());
    to.show();
    to.raise();
    drag->setMimeData(from.model()->mimeData({from.model()->index(1, 0)}));
    const Qt::DropAction done = run({[&] { moveTo(to); }, [&] { to.clear(); }, [&] { moveTo(to); },
                                     [&] { to.addItem("w"); }, [&] { release(to); }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(to.count(), 2);
    QCOMPARE(to.findItems("b", Qt::MatchExactly).size(), 1);
}

void tst_Drag::cannotStart_data()
{
    QTest::addColumn<bool>("hasPayload");
    QTest::addColumn<Qt::DropActions>("actions");
    QTest::newRow("no payload") << false << allActions;
    QTest::newRow("no actions") << true << Qt::DropActions();
}

void tst_Drag::cannotStart()
{
    QFETCH(bool, hasPayload);
    QFETCH(Qt::DropActions, actions);
    if (!hasPayload)
        drag->setMimeData(nullptr);
    QCOMPARE(drag->exec(actions, Qt::CopyAction), Qt::IgnoreAction);
    QTRY_VERIFY(!drag);
}

void tst_Drag::ownsItsPayload()
{
    const QPointer<QMimeData> first = drag->mimeData();
    QVERIFY(first);
    drag->setMimeData(first);
    QVERIFY(first);
    const QPointer<QMimeData> second = new QMimeData;
    drag->setMimeData(second);
    QVERIFY(!first);
    QCOMPARE(drag->mimeData(), second.data());
    delete drag;
    QVERIFY(!second);
}

void tst_Drag::offersThePayloadItWasGiven()
{
    QMimeData const *const given = drag->mimeData();
    std::vector<QMimeData const *> seen;
    left->onEvent = [&](QDropEvent &event) {
        seen.push_back(event.mimeData());
        QCOMPARE(event.mimeData()->text(), QString("payload"));
        event.accept();
    };
    // Another payload is for the next drag; what runs keeps its own alive.
    run({[&] { moveTo(*left); }, [&] { drag->setMimeData(new QMimeData); },
         [&] { release(*left); }});
    QCOMPARE(seen, std::vector<QMimeData const *>(4, given));
}

void tst_Drag::knowsSourceAndTarget()
{
    QCOMPARE(drag->source(), static_cast<QObject *>(source));
    QWidget *target = nullptr, *nobody = left;
    run({[&] { nobody = drag->target(); }, [&] { moveTo(*left); },
         [&] {
             target = drag->target();
             release(*left);
         }});
    QCOMPARE(nobody, nullptr);
    QCOMPARE(target, static_cast<QWidget *>(left));
    QCOMPARE(drag->target(), static_cast<QWidget *>(left));
    delete left;
    QCOMPARE(drag->target(), nullptr);
}

void tst_Drag::deletesItselfAfterwards()
{
    const QPointer<QMimeData> payload = drag->mimeData();
    run({[&] { moveTo(*left); }, [&] { release(*left); }});
    QVERIFY(drag);
    QTRY_VERIFY(!drag);
    QVERIFY(!payload);
}

void tst_Drag::cursorTellsTheAction_data()
{
    QTest::addColumn<Qt::DropAction>("action");
    QTest::addColumn<Qt::CursorShape>("shape");
    QTest::newRow("copy") << Qt::CopyAction << Qt::DragCopyCursor;
    QTest::newRow("move") << Qt::MoveAction << Qt::DragMoveCursor;
    QTest::newRow("link") << Qt::LinkAction << Qt::DragLinkCursor;
    QTest::newRow("nothing") << Qt::IgnoreAction << Qt::ForbiddenCursor;
}

void tst_Drag::cursorTellsTheAction()
{
    QFETCH(Qt::DropAction, action);
    QFETCH(Qt::CursorShape, shape);
    left->onEvent = [&](QDropEvent &event) {
        event.setDropAction(action);
        event.setAccepted(action != Qt::IgnoreAction);
    };
    std::vector<Qt::CursorShape> shapes;
    const auto look = [&] { shapes.push_back(QGuiApplication::overrideCursor()->shape()); };
    run({look, [&] { moveTo(*left); }, look, [&] { moveTo(*source); }, look});
    QCOMPARE(shapes,
             (std::vector<Qt::CursorShape>{Qt::ForbiddenCursor, shape, Qt::ForbiddenCursor}));
    QVERIFY(!QGuiApplication::overrideCursor());
}

void tst_Drag::pictureFollowsThePointer()
{
    QPixmap pixmap(20, 10);
    pixmap.fill(Qt::red);
    drag->setPixmap(pixmap);
    drag->setHotSpot({4, 3});
    std::vector<QPoint> corners;
    const auto look = [&] {
        if (QWidget const *const picture = findPicture())
            corners.push_back(picture->pos());
    };
    run({look, [&] { moveTo(*left); }, look, [&] { release(*left); }});
    QCOMPARE(corners,
             (std::vector<QPoint>{source->mapToGlobal(source->rect().center()) - QPoint(4, 3),
                                  left->mapToGlobal(left->rect().center()) - QPoint(4, 3)}));
    QVERIFY(!findPicture());
}

void tst_Drag::pictureCoversNothing()
{
    QPixmap pixmap(100, 100);
    pixmap.fill(Qt::red);
    drag->setPixmap(pixmap);
    drag->setHotSpot({50, 50});
    const Qt::DropAction done =
        run({[&] { moveTo(*right); }, [&] { moveTo(*left); }, [&] { release(*left); }});
    QCOMPARE(done, Qt::CopyAction);
    QCOMPARE(right->text(), QString("enter copy, move copy, leave"));
}

void tst_Drag::pictureIsAsLargeAsItsPixmap()
{
    QPixmap pixmap(40, 20);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::blue);
    drag->setPixmap(pixmap);
    QSize size;
    QImage shown;
    run({[&] {
        if (QWidget *const picture = findPicture()) {
            size = picture->size();
            shown = picture->grab().toImage();
        }
    }});
    QCOMPARE(size, QSize(20, 10));
    QCOMPARE(shown.pixelColor(shown.rect().center()), QColor(Qt::blue));
    QCOMPARE(shown.pixelColor(shown.rect().bottomRight()), QColor(Qt::blue));
}

void tst_Drag::plainDragHasNoPicture()
{
    bool hasPicture = true;
    run({[&] { moveTo(*left); }, [&] { hasPicture = findPicture(); }});
    QVERIFY(!hasPicture);
}

QTEST_MAIN(tst_Drag)

#include "tst_Drag.moc"
