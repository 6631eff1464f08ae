// Nodes glide from where they stood to their new places, and the view glides to what it shows. Both
// go by the clock, so that a slow machine drops steps and ends on time. There is no easing.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <QScrollBar>

#include <algorithm>
#include <cstdint>

namespace ZR::VOM::GUI {

namespace {

constexpr double maxPeriod = 60.0;

int wayAt(int from, int to, double fraction)
{
    return static_cast<int>((static_cast<double>(to) - from) * fraction) + from;
}

/// KEPT: intermediate nodes move in milliseconds and 32-bit arithmetic that wraps, unlike real
/// nodes, so that on long ways in large drawings they jump on their way. They arrive exactly all
/// the same, and hosts count on these steps.
int wayAtMilliseconds(int from, int to, int passed, int period)
{
    if (period == 0)
        return to;
    const auto sum = static_cast<std::uint32_t>(to) * static_cast<std::uint32_t>(passed) +
                     static_cast<std::uint32_t>(from) * static_cast<std::uint32_t>(period - passed);
    return static_cast<int>(sum) / period;
}

void arrive(Graph::Node &node)
{
    node.fromX = node.toX;
    node.x = node.toX;
    node.fromY = node.toY;
    node.y = node.toY;
}

} // namespace

double ObjectGraphView::animPeriod() const
{
    const double duration = animDuration.get();
    return duration > 0.0 ? std::min(duration, maxPeriod) : 0.0;
}

void ObjectGraphView::startAnimation()
{
    animStart = Time(Time::Now);
    animTimer.start();
}

void ObjectGraphView::startScrolling(int x, int y)
{
    scrollFromX = horizontalScrollBar()->value();
    scrollFromY = verticalScrollBar()->value();
    scrollToX = x;
    scrollToY = y;
    scrollStart = Time(Time::Now);
    scrollTimer.start();
}

void ObjectGraphView::onQTimerAnimSigTimeout()
{
    const double passed = (Time(Time::Now) - animStart).seconds();
    const double period = animPeriod();
    const bool ends = !(passed < period);
    if (ends)
        animTimer.stop();
    const double fraction = ends ? 1.0 : passed / period;
    const int passedMilliseconds = ends ? 0 : static_cast<int>(passed * 1000);
    const int periodMilliseconds = static_cast<int>(period * 1000);

    const auto moveIntermediate = [&](Node &node) {
        if (ends) {
            arrive(node);
        } else {
            node.x =
                wayAtMilliseconds(node.fromX, node.toX, passedMilliseconds, periodMilliseconds);
            node.y =
                wayAtMilliseconds(node.fromY, node.toY, passedMilliseconds, periodMilliseconds);
        }
    };
    for (auto const &[obj, slot] : nodes) {
        Node &node = *slot.node;
        if (!node.visible)
            continue;
        if (ends) {
            arrive(node);
        } else {
            node.x = wayAt(node.fromX, node.toX, fraction);
            node.y = wayAt(node.fromY, node.toY, fraction);
        }
        for (auto const &[far, entry] : node.linkedOut)
            forEachIntermediate(entry, moveIntermediate);
    }
    refresh(true);
}

void ObjectGraphView::onScrollQTimerAnimSigTimeout()
{
    const double passed = (Time(Time::Now) - scrollStart).seconds();
    const double period = animPeriod();
    if (passed < period) {
        const double fraction = passed / period;
        horizontalScrollBar()->setValue(wayAt(scrollFromX, scrollToX, fraction));
        verticalScrollBar()->setValue(wayAt(scrollFromY, scrollToY, fraction));
    } else {
        scrollTimer.stop();
        horizontalScrollBar()->setValue(scrollToX);
        verticalScrollBar()->setValue(scrollToY);
    }
}

} // namespace ZR::VOM::GUI
