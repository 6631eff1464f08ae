#pragma once

#include "zrVOMGUI/foundation/gui/export.h"

#include <QMimeData>
#include <QObject>
#include <QPixmap>
#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace ZR::GUI {

class DragSession;

/// A drag that never leaves this process.
///
/// Widgets see what they see of a QDrag: they are entered, moved over, left and dropped on, by the
/// same events, and what one ignores is offered to its parents. Only QDropEvent::source() reads
/// null. Without modifiers the default action is proposed; Shift proposes to move, Control to copy,
/// Alt or both of them to link, where that is allowed. A widget that refused is asked again when
/// the modifiers change. Escape cancels, and so do the loss of the application's focus, a button
/// that went up unseen, and the end of the program.
///
/// It stands on an event filter of its own and not on QDrag, which offers its payload to every
/// program on the screen, doesn't run at all on some platforms, and works on in freed memory when
/// its source dies. A payload may name what lives in this process, and drag, source and target may
/// be gone before the drag ends.
///
/// Create it with new, as a child of the drag's source. It is used up by exec(), which deletes it
/// later; if its parent dies meanwhile, the drag is cancelled and exec() returns. GUI thread only.
class ZRGUI_EXPORT Drag : public QObject {
    Q_OBJECT

public:
    explicit Drag(QObject *parent);
    ~Drag() override;

    /// What is dragged. Takes ownership; what was set before is deleted. A drag that runs goes on
    /// with what it started with.
    void setMimeData(QMimeData *mimeData);
    QMimeData *mimeData() const { return payload.get(); }

    /// What is shown at the pointer, in the size that its device pixel ratio makes of it; nothing
    /// by default.
    void setPixmap(QPixmap const &newPixmap) { picture = newPixmap; }
    QPixmap pixmap() const { return picture; }

    /// The picture's point that stays at the pointer, in pixels that are independent of the device.
    void setHotSpot(QPoint const &point) { spot = point; }
    QPoint hotSpot() const { return spot; }

    /// Follows the pointer until the button that is held goes up, in an event loop of its own; with
    /// none held, until the next click's end. Returns what the target did, and IgnoreAction without
    /// a drop.
    ///
    /// Refused with IgnoreAction while any Drag runs, without payload, without actions and without
    /// a QApplication. A default action that isn't among the actions stands for the first of copy,
    /// move and link that is. Afterwards this drag and whatever the caller works on may be
    /// destroyed: hold it by QPointer. The source gets its release of the button after the drag.
    Qt::DropAction exec(Qt::DropActions actions, Qt::DropAction defaultAction);

    /// Ends a running drag without a drop. exec() returns when the event loop gets there.
    void cancel();

    /// Whose drag this is: its parent.
    QObject *source() const { return parent(); }

    /// While the drag runs, the widget that accepts it under the pointer; afterwards, the one that
    /// took the drop. Null when there is none, or when it has died.
    QWidget *target() const;

private:
    std::shared_ptr<QMimeData> payload; // Shared with the session that runs.
    QPixmap picture;
    QPoint spot;
    DragSession *session = nullptr; // Not owned; only while exec() runs.
    QPointer<QWidget> lastTarget;
};

} // namespace ZR::GUI
