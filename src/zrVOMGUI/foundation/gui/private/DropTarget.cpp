#include "zrVOMGUI/foundation/gui/private/DropTarget.h"

#include "zrVOMGUI/foundation/gui/QtVersion.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QWindow>

#include <algorithm>

namespace ZR::GUI {

namespace {

/// A widget's window at a point of the screen, whatever lies in `ignored` there.
QWidget *windowAt(QPoint const &pos, QWidget const *ignored)
{
    QWidget *const top = QApplication::topLevelAt(pos);
    if (!ignored || top != ignored)
        return top;
    // What lies below it only the order of creation tells, as it does for Qt's own drags.
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto isHit = [&](QWindow const *window) {
        return window->isVisible() && window != ignored->windowHandle() &&
               window->geometry().contains(pos);
    };
    const auto hit = std::find_if(windows.crbegin(), windows.crend(), isHit);
    if (hit == windows.crend())
        return nullptr;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    const auto owner = std::find_if(widgets.begin(), widgets.end(), [&](QWidget const *widget) {
        return widget->windowHandle() == *hit;
    });
    return owner == widgets.end() ? nullptr : *owner;
}

bool descendsFrom(QWidget const *widget, QWidget const *ancestor)
{
    while (widget && widget != ancestor)
        widget = widget->parentWidget();
    return widget;
}

/// A modal window keeps drops from the others, as it keeps clicks.
bool isBlocked(QWidget const &window)
{
    QWidget const *const modal = QApplication::activeModalWidget();
    if (!modal || descendsFrom(&window, modal))
        return false;
    return modal->windowModality() != Qt::WindowModal || descendsFrom(modal, &window);
}

/// The widget at a point of the screen that is asked first, or null.
QWidget *findSite(QPoint const &pos, QWidget const *ignored)
{
    QWidget *const window = windowAt(pos, ignored);
    if (!window || isBlocked(*window))
        return nullptr;
    QWidget *widget = window->childAt(window->mapFromGlobal(pos));
    if (!widget)
        widget = window;
    while (widget && !widget->acceptDrops())
        widget = widget->isWindow() ? nullptr : widget->parentWidget();
    return widget;
}

bool takesDrops(QWidget const &widget)
{
    return widget.isEnabled() && widget.acceptDrops() && widget.isVisible();
}

/// Proposes an action, and presets the one that the receiver need only accept.
void setActions(QDropEvent &event, Qt::DropAction proposed, Qt::DropAction preset)
{
    setDefaultAction(event, proposed);
    event.setDropAction(preset);
}

} // namespace

Qt::DropAction DropOffer::propose(Qt::KeyboardModifiers modifiers) const
{
    const bool move = modifiers & Qt::ShiftModifier, copy = modifiers & Qt::ControlModifier;
    const bool link = (move && copy) || (!move && !copy && modifiers & Qt::AltModifier);
    const Qt::DropAction asked = link   ? Qt::LinkAction
                                 : copy ? Qt::CopyAction
                                 : move ? Qt::MoveAction
                                        : defaultAction;
    for (const Qt::DropAction action :
         {asked, defaultAction, Qt::CopyAction, Qt::MoveAction, Qt::LinkAction})
        if (actions & action)
            return action;
    return Qt::IgnoreAction;
}

void DropTarget::moveTo(DragPointer const &pointer, QWidget const *ignored)
{
    const QPointer<QWidget> newSite = findSite(pointer.pos, ignored);
    if (isStale(newSite, pointer)) {
        leave();
        site = newSite;
        modifiersOfEntry = pointer.modifiers;
        if (site)
            enter(pointer);
    }
    // Also at once after entering: a widget may enter by the payload and decide by the place.
    if (target)
        move(pointer);
}

bool DropTarget::isStale(QWidget const *newSite, DragPointer const &pointer) const
{
    if (newSite != site)
        return true;
    if (hasEntered)
        return !site || !target || !takesDrops(*target);
    return site && pointer.modifiers != modifiersOfEntry;
}

void DropTarget::enter(DragPointer const &pointer)
{
    QDragEnterEvent event(site->mapFromGlobal(pointer.pos), offer.actions, offer.payload.get(),
                          pointer.buttons, pointer.modifiers);
    proposed = offer.propose(pointer.modifiers);
    setActions(event, proposed, proposed);
    entering = &event;
    lastEntered.clear();
    // QApplication offers it to the parents, too.
    QCoreApplication::sendEvent(site, &event);
    entering = nullptr;
    if (!event.isAccepted())
        return;
    hasEntered = true;
    target = lastEntered;
    accepted = event.dropAction();
}

void DropTarget::watch(QObject *receiver, QEvent const *event)
{
    if (event == entering)
        lastEntered = qobject_cast<QWidget *>(receiver);
}

void DropTarget::move(DragPointer const &pointer)
{
    const Qt::DropAction lastProposed = proposed;
    proposed = offer.propose(pointer.modifiers);
    QDragMoveEvent event(target->mapFromGlobal(pointer.pos), offer.actions, offer.payload.get(),
                         pointer.buttons, pointer.modifiers);
    // Who accepted need not do it again, and who followed the proposal follows the next one.
    const bool follows = accepted == Qt::IgnoreAction || accepted == lastProposed;
    setActions(event, proposed, follows ? proposed : accepted);
    event.setAccepted(accepted != Qt::IgnoreAction);
    QCoreApplication::sendEvent(target, &event);
    accepted = event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
}

void DropTarget::leave()
{
    const QPointer<QWidget> left = target;
    site.clear();
    target.clear();
    hasEntered = false;
    accepted = Qt::IgnoreAction;
    if (!left)
        return;
    QDragLeaveEvent event;
    QCoreApplication::sendEvent(left, &event);
}

Qt::DropAction DropTarget::drop(DragPointer const &pointer)
{
    if (action() == Qt::IgnoreAction || !takesDrops(*target)) {
        leave();
        return Qt::IgnoreAction;
    }
    QDropEvent event(QPointF(target->mapFromGlobal(pointer.pos)), offer.actions,
                     offer.payload.get(), pointer.buttons, pointer.modifiers);
    setActions(event, offer.propose(pointer.modifiers), accepted);
    QCoreApplication::sendEvent(target, &event);
    return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
}

} // namespace ZR::GUI
