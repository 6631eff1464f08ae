#pragma once

// What tests of views ask for again and again.

#include "support/ErrorReports.h"
#include "support/GraphViewAccess.h"
#include "support/dump.h"

#include <QCoreApplication>
#include <QTimerEvent>

#include <string>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// What a view was asked to do at its next paint.
struct Asked {
    bool repaint; ///< A repaint was asked for,
    bool bounds;  ///< and sizes and the scroll range are stale.
};

/// What `action` asks of the view.
template <class Action>
Asked askedBy(ObjectGraphView &view, Action const &action)
{
    const bool before = view.setRefresh(false);
    GraphViewAccess::refreshPending(view) = false;
    GraphViewAccess::boundsStale(view) = false;
    action();
    const Asked asked{GraphViewAccess::refreshPending(view), GraphViewAccess::boundsStale(view)};
    view.setRefresh(before);
    return asked;
}

/// Fires one tick of a timer, without waiting for the clock.
inline void tick(QTimer &timer)
{
    QTimerEvent event(timer.timerId());
    QCoreApplication::sendEvent(&timer, &event);
}

/// Sets a start back, so that this many seconds seem to have passed.
inline void letPass(Time &start, double seconds)
{
    const auto nsec = static_cast<std::int64_t>(seconds * 1e9);
    const Time now(Time::Now);
    const std::int64_t then = std::int64_t(now.sec) * 1000000000 + now.nsec - nsec;
    start.sec = static_cast<std::int32_t>(then / 1000000000);
    start.nsec = static_cast<std::int32_t>(then % 1000000000);
}

/// Lets a running animation of nodes arrive.
inline void finishAnimation(ObjectGraphView &view)
{
    QTimer &timer = GraphViewAccess::animTimer(view);
    if (!timer.isActive())
        return;
    letPass(GraphViewAccess::animStart(view), 61);
    tick(timer);
}

/// Notes each signal of a view, in the order in which they come.
class SignalNotes {
public:
    explicit SignalNotes(ObjectGraphView &view)
    {
        view.sigInsertNode.connect(
            [this](auto const &data) { add("insert " + namesInOrder(*data.objs)); });
        view.sigRemoveNode.connect(
            [this](auto const &data) { add("remove " + namesInOrder(*data.objs)); });
        view.sigSel.connect([this](auto const &) { add("sel"); });
    }
    std::string take() { return std::exchange(text, {}); }

private:
    void add(std::string const &note) { text += (text.empty() ? "" : "; ") + note; }

    std::string text;
};

} // namespace ZR::VOM::GUI
