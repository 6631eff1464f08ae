#pragma once

// Part of Drag; not for hosts.

#include "zrVOMGUI/foundation/gui/private/DragPicture.h"
#include "zrVOMGUI/foundation/gui/private/DropTarget.h"

#include <QEventLoop>
#include <QObject>

#include <memory>

class QKeyEvent;
class QMouseEvent;

namespace ZR::GUI {

/// One run of a Drag: takes mouse and keyboard from the widgets, and follows them.
///
/// Lies on the stack of Drag::exec() and keeps all that it needs, so that the Drag may die while it
/// runs. All work with widgets that may go on for long, the drop above all, is done when the event
/// loop has ended.
class DragSession : public QObject {
public:
    DragSession(DropOffer const &offer, QPixmap const &pixmap, QPoint const &hotSpot);
    ~DragSession() override;

    /// Returns what was done with the payload. Once only.
    Qt::DropAction run();

    void cancel() { end(End::Cancelled); }

    QWidget *target() const { return dropTarget.widget(); }

    /// Whether there is one in this process.
    static bool isRunning() { return running; }

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    enum class End { NotYet, Dropped, Cancelled };

    void begin();
    void end(End how);
    bool filterMouse(QObject *receiver, QMouseEvent const &event);
    bool filterKey(QKeyEvent const &event);
    void follow();
    void showCursor();
    void giveReleaseBack();

    static bool running;

    DropTarget dropTarget;
    std::unique_ptr<DragPicture> picture; // Null when there is none to show.
    DragPointer pointer;
    Qt::MouseButtons heldButtons; // Those that the drag began with, once one is known.
    End ending = End::NotYet;
    QEventLoop loop;

    bool isFollowing = false; // Guards follow(), whose handlers may run event loops.
    bool hasMoved = false;    // Meanwhile.

    // The release that ended the drag, which its receiver still has to see.
    std::unique_ptr<QMouseEvent> release;
    QPointer<QObject> releaseReceiver;
};

} // namespace ZR::GUI
