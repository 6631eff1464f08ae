#include "zrVOMGUI/foundation/gui/Drag.h"

#include "zrVOMGUI/foundation/gui/private/DragSession.h"

#include <QApplication>

namespace ZR::GUI {

Drag::Drag(QObject *parent)
    : QObject(parent)
{
}

Drag::~Drag()
{
    cancel();
}

void Drag::setMimeData(QMimeData *mimeData)
{
    if (mimeData != payload.get())
        payload.reset(mimeData);
}

Qt::DropAction Drag::exec(Qt::DropActions actions, Qt::DropAction defaultAction)
{
    if (session)
        return Qt::IgnoreAction;
    const QPointer<Drag> self(this);
    Qt::DropAction result = Qt::IgnoreAction;
    if (payload && actions && qobject_cast<QApplication *>(qApp) && !DragSession::isRunning()) {
        DragSession newSession(DropOffer{payload, actions, defaultAction}, picture, spot);
        session = &newSession;
        result = newSession.run();
        if (self) {
            session = nullptr;
            lastTarget = result == Qt::IgnoreAction ? nullptr : newSession.target();
        }
    }
    if (self)
        deleteLater();
    return result;
}

void Drag::cancel()
{
    if (session)
        session->cancel();
}

QWidget *Drag::target() const
{
    return session ? session->target() : lastTarget.data();
}

} // namespace ZR::GUI
