#pragma once

#include "zrVOMGUI/foundation/gui/export.h"

#include <QDrag>
#include <QMimeData>
#include <QPixmap>
#include <QPointer>

#include <functional>
#include <memory>

namespace ZR::GUI {

/// Runs the QDrags of one source, which may be destroyed while one runs.
///
/// A member of the source. A QDrag is its source's child and dies with it, in the middle of its own
/// event loop; this one is set free before that, emptied, since its payload may name what the
/// source owns, and cancelled.
class ZRGUI_EXPORT GuardedDrag {
public:
    GuardedDrag() = default;
    ~GuardedDrag() { abandon(); }
    GuardedDrag(GuardedDrag const &) = delete;
    GuardedDrag &operator=(GuardedDrag const &) = delete;

    /// What is dragged, and what shows it.
    struct Load {
        std::unique_ptr<QMimeData> payload;
        QPixmap pixmap;
        QPoint hotSpot;
        /// Called when the drag is over, unless it or the source is gone.
        std::function<void(QDrag &, Qt::DropAction)> onEnd = {};
    };

    bool isRunning() const { return drag; }

    /// Returns when the drag is over. The source, and this with it, may be gone then. IgnoreAction
    /// when one runs already, and without payload.
    Qt::DropAction exec(QObject &source, Load load, Qt::DropActions actions,
                        Qt::DropAction defaultAction);

    /// Ends the drag that runs, if one does, as if its source were destroyed.
    void abandon();

private:
    QPointer<QDrag> drag; // The running one.
};

} // namespace ZR::GUI
