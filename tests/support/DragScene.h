#pragma once

// Drags out of a view, with Qt's own loop inside. For the platform minimal:enable_fonts: offscreen
// ends each drag at once.

#include "support/GraphViewAccess.h"
#include "support/Things.h"
#include "support/dump.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>
#include <memory>
#include <string>

namespace ZR::VOM::GUI {

/// Things by letter in a view that is shown inside a window. Those of `visible` are visible and
/// stand below each other, with nothing animated.
struct DragScene {
    explicit DragScene(std::string const &letters, std::string const &visible,
                       RefT<Exporter> const &exporter = {})
        : DragScene(makeThings(letters), visible, exporter)
    {
    }
    /// Of the given objects, the first of which is called a, and so on.
    DragScene(Things const &objs, std::string const &visible, RefT<Exporter> const &exporter = {})
        : things(objs)
        , view(new ObjectGraphView(exporter, &window))
    {
        window.resize(220, 300);
        view->setFrameShape(QFrame::NoFrame);
        view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view->setGeometry(0, 0, 110, 300);
        view->setFieldName("name");
        view->setTypeName(false);
        view->animDuration.set(0);
        view->add(things, false);
        int y = 50;
        for (char letter : visible) {
            GraphViewAccess::node(*view, (*this)[letter])->visible = true;
            view->setPos((*this)[letter], 55, y, false);
            y += 80;
        }
        GraphViewAccess::boundsStale(*view) = true;
        window.show();
        QApplication::processEvents();
        view->viewport()->grab();
        view->horizontalScrollBar()->setRange(0, 0);
        view->verticalScrollBar()->setRange(0, 0);
        GraphViewAccess::boundsStale(*view) = false;
    }
    ~DragScene() { delete view.data(); }
    DragScene(DragScene const &) = delete;
    DragScene &operator=(DragScene const &) = delete;

    RefT<VOM::Object> &operator[](char letter) { return things[std::size_t(letter - 'a')]; }
    Things these(std::string const &letters)
    {
        Things found;
        for (char letter : letters)
            found.push_back((*this)[letter]);
        return found;
    }
    /// The middle of the node, in the viewport.
    QPoint pointOf(char letter)
    {
        Graph::Node const &node = *GraphViewAccess::node(*view, (*this)[letter]);
        return {node.x - view->horizontalScrollBar()->value(),
                node.y - view->verticalScrollBar()->value()};
    }

    void press(QPoint const &pos) { sendMouse(QEvent::MouseButtonPress, pos, Qt::LeftButton); }
    void move(QPoint const &pos, Qt::MouseButton button = Qt::LeftButton)
    {
        sendMouse(QEvent::MouseMove, pos, button);
    }
    /// The same for a host's subclass, which may call its handlers whenever it likes: Qt keeps
    /// mouse events to itself during a drag.
    void callMove(QPoint const &pos)
    {
        struct Opened : ObjectGraphView {
            using ObjectGraphView::mouseMoveEvent;
        };
        QMouseEvent event(QEvent::MouseMove, pos, view->viewport()->mapToGlobal(pos), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        (view->*&Opened::mouseMoveEvent)(&event);
    }
    /// Drags the node a little, and then lets go outside of everything. `act` runs inside Qt's
    /// loop; answers whether that was reached.
    bool drag(char letter, std::function<void()> const &act = {})
    {
        press(pointOf(letter));
        return dragOn(pointOf(letter) + QPoint(20, 0), act);
    }
    /// The same after an earlier press.
    bool dragOn(QPoint const &pos, std::function<void()> const &act = {},
                Qt::MouseButton button = Qt::LeftButton)
    {
        bool reached = false;
        QObject context;
        QTimer::singleShot(0, &context, [&] {
            reached = view && GraphViewAccess::drag(*view);
            if (act)
                act();
            QDrag::cancel();
        });
        move(pos, button);
        return reached;
    }
    /// What the running drag offers.
    QMimeData const &offered() { return *GraphViewAccess::drag(*view)->mimeData(); }

    Things things; // Null where one died.
    QWidget window;
    QPointer<ObjectGraphView> view; // Its window's.

private:
    void sendMouse(QEvent::Type type, QPoint const &pos, Qt::MouseButton button)
    {
        const bool moves = type == QEvent::MouseMove;
        QMouseEvent event(type, pos, view->viewport()->mapToGlobal(pos),
                          moves ? Qt::NoButton : button, button, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    }
};

/// A whole drag by the mouse, between global points over windows of this program.
class MouseDrag {
public:
    MouseDrag(QPoint const &begin, QPoint const &end)
        : from(begin)
        , to(end)
    {
    }
    /// Presses at the beginning, moves to the end in a few steps and releases there. `act` runs
    /// inside Qt's loop, over the end, before the release. Answers whether all came to an end.
    bool run(std::function<void()> const &act = {})
    {
        inside = act;
        send([](QWindow *window, QPoint const &pos) {
            QTest::mousePress(window, Qt::LeftButton, {}, pos);
        });
        arm();
        return QTest::qWaitFor([this] { return step > lastStep; }, 10000);
    }

private:
    static constexpr int numMoves = 6, lastStep = numMoves + 3;

    /// Each step sets the next one off before it acts, since it may enter the drag's own loop.
    void arm()
    {
        QTimer::singleShot(15, &context, [this] {
            if (step > lastStep)
                return;
            ++step;
            arm();
            act();
        });
    }
    void act()
    {
        if (step <= numMoves)
            send([](QWindow *window, QPoint const &pos) { QTest::mouseMove(window, pos); });
        else if (step == numMoves + 1 && inside)
            inside();
        else if (step == numMoves + 2)
            send([](QWindow *window, QPoint const &pos) {
                QTest::mouseRelease(window, Qt::LeftButton, {}, pos);
            });
        else if (step == lastStep)
            QDrag::cancel();
    }
    template <class Send>
    void send(Send const &send)
    {
        const QPoint pos = from + (to - from) * std::min(step, numMoves) / numMoves;
        if (QWindow *const window = QGuiApplication::topLevelAt(pos))
            send(window, window->mapFromGlobal(pos));
    }

    const QPoint from, to;
    std::function<void()> inside;
    int step = 0;
    QObject context;
};

} // namespace ZR::VOM::GUI
