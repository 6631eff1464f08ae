#pragma once

#include <QPaintEvent>
#include <QRegion>
#include <QTest>
#include <QWidget>

#include <utility>

/// How often a widget painted since the last time, and what of it.
class PaintCounter : public QObject {
public:
    /// Begins when the widget's window has been shown, which some systems take their time for.
    explicit PaintCounter(QWidget &watched)
    {
        const bool isShown = QTest::qWaitForWindowExposed(watched.window());
        Q_ASSERT(isShown);
        Q_UNUSED(isShown);
        settle();
        watched.installEventFilter(this);
    }

    int take()
    {
        settle();
        return std::exchange(num, 0);
    }
    /// Of the last paint.
    QRegion takeRegion() { return std::exchange(region, {}); }

private:
    static void settle()
    {
        // Qt's item views lay new rows out by a timer of their own.
        for (int i = 0; i < 3; ++i)
            QTest::qWait(5);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++num;
            region = static_cast<QPaintEvent *>(event)->region();
        }
        return false;
    }

    int num = 0;
    QRegion region;
};
