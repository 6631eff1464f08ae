#include "zrVOMGUI/foundation/gui/private/DragSession.h"

#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/util/LockBool.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>

namespace ZR::GUI {

namespace {

/// After a cancelled drag: keeps the pointer's moves from all widgets while a button is still held,
/// since the source would start the next drag by the first of them. Deletes itself.
class HeldButtonFilter : public QObject {
public:
    HeldButtonFilter()
        : QObject(qApp)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::MouseMove:
            if (static_cast<QMouseEvent *>(event)->buttons())
                return true;
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
            break;
        default:
            return false;
        }
        qApp->removeEventFilter(this);
        deleteLater();
        return false;
    }
};

Qt::CursorShape cursorFor(Qt::DropAction action)
{
    switch (action) {
    case Qt::CopyAction:
        return Qt::DragCopyCursor;
    case Qt::MoveAction:
    case Qt::TargetMoveAction:
        return Qt::DragMoveCursor;
    case Qt::LinkAction:
        return Qt::DragLinkCursor;
    default:
        return Qt::ForbiddenCursor;
    }
}

} // namespace

bool DragSession::running = false;

DragSession::DragSession(DropOffer const &offer, QPixmap const &pixmap, QPoint const &hotSpot)
    : dropTarget(offer)
{
    running = true;
    if (!pixmap.isNull())
        picture = std::make_unique<DragPicture>(pixmap, hotSpot);
}

DragSession::~DragSession()
{
    running = false;
}

Qt::DropAction DragSession::run()
{
    begin();
    follow();
    if (ending == End::NotYet)
        loop.exec();
    end(End::Cancelled); // When something else ended the loop, as the program's end does.

    if (ending == End::Dropped) {
        giveReleaseBack();
        follow();
        return dropTarget.drop(pointer);
    }
    if (pointer.buttons)
        new HeldButtonFilter;
    dropTarget.leave();
    return Qt::IgnoreAction;
}

void DragSession::begin()
{
    pointer = {QCursor::pos(), QGuiApplication::mouseButtons(),
               QGuiApplication::keyboardModifiers()};
    heldButtons = pointer.buttons;
    QGuiApplication::setOverrideCursor(Qt::ForbiddenCursor);
    qApp->installEventFilter(this);
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState now) {
                if (now != Qt::ApplicationActive)
                    cancel();
            });
}

/// The first call counts. From here on events go where they belong.
void DragSession::end(End how)
{
    if (ending != End::NotYet)
        return;
    ending = how;
    qApp->disconnect(this);
    QGuiApplication::restoreOverrideCursor();
    if (picture)
        picture->hide();
    loop.quit();
}

bool DragSession::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() == QEvent::DragEnter)
        dropTarget.watch(receiver, event);
    if (ending != End::NotYet)
        return false;
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return filterMouse(receiver, *static_cast<QMouseEvent *>(event));
    case QEvent::ShortcutOverride:
        event->accept(); // No shortcut is triggered; the key itself comes next.
        return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return filterKey(*static_cast<QKeyEvent *>(event));
    case QEvent::ContextMenu:
        return true;
    default:
        return false;
    }
}

bool DragSession::filterMouse(QObject *receiver, QMouseEvent const &event)
{
    pointer = {globalPos(event), event.buttons(), event.modifiers()};
    if (event.type() == QEvent::MouseButtonRelease &&
        (!heldButtons || heldButtons & event.button())) {
        release = copyOf(event);
        releaseReceiver = receiver;
        end(End::Dropped);
        return true;
    }
    if (!heldButtons)
        heldButtons = event.buttons();
    else if (!(heldButtons & event.buttons())) {
        // The release went elsewhere, say to a program that took the mouse.
        cancel();
        return true;
    }
    follow();
    return true;
}

bool DragSession::filterKey(QKeyEvent const &event)
{
    if (event.type() == QEvent::KeyPress && event.key() == Qt::Key_Escape) {
        cancel();
        return true;
    }
    pointer.modifiers = event.modifiers();
    follow();
    return true;
}

/// Brings picture, widgets and cursor to where the pointer is.
void DragSession::follow()
{
    hasMoved = true;
    if (isFollowing)
        return;
    const LockBool lock(isFollowing);
    while (hasMoved && ending != End::Cancelled) {
        hasMoved = false;
        if (picture && ending == End::NotYet)
            picture->showAt(pointer.pos);
        dropTarget.moveTo(pointer, picture.get());
    }
    showCursor();
}

void DragSession::showCursor()
{
    if (ending == End::NotYet)
        QGuiApplication::changeOverrideCursor(cursorFor(dropTarget.action()));
}

/// Qt and the widget that was pressed think that the button is held. They hear of it by the event
/// loop: after the drop, unless that runs one.
void DragSession::giveReleaseBack()
{
    if (releaseReceiver)
        QCoreApplication::postEvent(releaseReceiver, release.release());
}

} // namespace ZR::GUI
