#include "zrVOMGUI/foundation/gui/GuardedDrag.h"

namespace ZR::GUI {

Qt::DropAction GuardedDrag::exec(QObject &source, Load load, Qt::DropActions actions,
                                 Qt::DropAction defaultAction)
{
    if (drag || !load.payload)
        return Qt::IgnoreAction;
    const QPointer<QObject> guard(&source);
    auto *const started = new QDrag(&source);
    started->setMimeData(load.payload.release());
    started->setPixmap(load.pixmap);
    started->setHotSpot(load.hotSpot);
    drag = started;
    const QPointer<QDrag> kept(started);
    const Qt::DropAction done = started->exec(actions, defaultAction);
    // Qt keeps the QDrag for as long as another program may ask for its data.
    if (guard && drag == started)
        drag = nullptr;
    if (guard && kept && load.onEnd)
        load.onEnd(*kept, done);
    return done;
}

void GuardedDrag::abandon()
{
    if (!drag)
        return;
    QDrag *const abandoned = drag;
    drag = nullptr;
    abandoned->setParent(nullptr);
    // Emptied, not replaced: whoever destroys the source may be in the middle of a drop.
    abandoned->mimeData()->clear();
    QDrag::cancel();
}

} // namespace ZR::GUI
