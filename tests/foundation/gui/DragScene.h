#pragma once

// Widgets that keep what a drag tells them, and a hand that moves the pointer while it runs.

#include "zrVOMGUI/foundation/gui/Drag.h"
#include "zrVOMGUI/foundation/gui/QtVersion.h"

#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QTest>
#include <QTimer>

#include <functional>
#include <vector>

namespace gui_test {

inline QString nameOf(Qt::DropAction action)
{
    switch (action) {
    case Qt::CopyAction:
        return "copy";
    case Qt::MoveAction:
        return "move";
    case Qt::LinkAction:
        return "link";
    default:
        return "nothing";
    }
}

/// Takes drops, and writes what happens: "enter copy, move copy, drop copy". The word is what the
/// event would do if it was only accepted.
class Site : public QWidget {
public:
    explicit Site(QWidget *parent = nullptr)
        : QWidget(parent)
    {
        setAcceptDrops(true);
    }

    QString text() const { return log.join(", "); }

    /// Answers events; by default accepts whatever comes, as it comes.
    std::function<void(QDropEvent &)> onEvent = [](QDropEvent &event) { event.accept(); };
    QStringList log;
    QPoint lastPos;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { answer("enter", *event); }
    void dragMoveEvent(QDragMoveEvent *event) override { answer("move", *event); }
    void dropEvent(QDropEvent *event) override { answer("drop", *event); }
    void dragLeaveEvent(QDragLeaveEvent *) override { log += "leave"; }

private:
    void answer(char const *name, QDropEvent &event)
    {
        log += name + QString(" ") + nameOf(event.dropAction());
        lastPos = ZR::GUI::dropPos(event);
        const auto answerer = onEvent; // It may destroy this.
        answerer(event);
    }
};

/// Lets the window system send a mouse event to a window.
inline void sendMouse(QWidget &window, QEvent::Type type, QPoint const &pos,
                      Qt::MouseButton button = Qt::NoButton, Qt::MouseButtons held = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    static int now = 0;
    now += 1000; // No two presses make a double click.
    qt_handleMouseEvent(window.windowHandle(), pos, window.mapToGlobal(pos), held, button, type,
                        modifiers, now);
    QCoreApplication::processEvents();
}

inline QPoint centerOf(QWidget const &widget)
{
    return widget.mapTo(widget.window(), widget.rect().center());
}

inline void press(QWidget &widget)
{
    sendMouse(*widget.window(), QEvent::MouseButtonPress, centerOf(widget), Qt::LeftButton);
}

inline void moveTo(QWidget &widget, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                   Qt::MouseButtons held = Qt::LeftButton)
{
    sendMouse(*widget.window(), QEvent::MouseMove, centerOf(widget), Qt::NoButton, held, modifiers);
}

inline void release(QWidget &widget, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    sendMouse(*widget.window(), QEvent::MouseButtonRelease, centerOf(widget), Qt::LeftButton,
              Qt::NoButton, modifiers);
}

/// Does its steps one by one while an event loop runs, and then calls a way out.
class Hand : public QObject {
public:
    /// Something to do, at once or as soon as it is time for it; after some seconds anyway.
    struct Step {
        template <class Deed>
        Step(Deed const &deedToDo)
            : Step([] { return true; }, deedToDo)
        {
        }
        Step(std::function<bool()> const &condition, std::function<void()> const &deedToDo)
            : isTime(condition)
            , deed(deedToDo)
        {
        }

        std::function<bool()> isTime;
        std::function<void()> deed;
    };

    explicit Hand(std::vector<Step> stepsToDo)
        : steps(std::move(stepsToDo))
    {
        waiting.start();
        arm();
    }

    bool isDone() const { return numDone == steps.size(); }

private:
    void arm()
    {
        QTimer::singleShot(1, this, [this] { step(); });
    }

    void step()
    {
        if (isDone())
            return;
        constexpr qint64 patience = 5000; // Milliseconds.
        if (!waiting.hasExpired(patience) && !steps[numDone].isTime())
            return arm();
        waiting.start();
        const auto deed = steps[numDone++].deed;
        arm();
        deed();
    }

    std::vector<Step> steps;
    std::size_t numDone = 0;
    QElapsedTimer waiting;
};

} // namespace gui_test
