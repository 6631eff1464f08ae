#pragma once

// Part of Drag; not for hosts.

#include <QEvent>
#include <QMimeData>
#include <QPoint>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace ZR::GUI {

/// What a drag offers to whom it meets.
struct DropOffer {
    std::shared_ptr<QMimeData> payload;
    Qt::DropActions actions;
    Qt::DropAction defaultAction;

    /// What these modifiers propose; IgnoreAction when nothing is allowed.
    Qt::DropAction propose(Qt::KeyboardModifiers modifiers) const;
};

/// Where the pointer is, on the screen, and what is held.
struct DragPointer {
    QPoint pos;
    Qt::MouseButtons buttons;
    Qt::KeyboardModifiers modifiers;
};

/// The widget that a drag is over: enters it, moves over it, leaves it and drops on it, with the
/// same events and in the same order as Qt's own drags.
///
/// Handlers may do anything, destroy any widget among it, but not this object.
class DropTarget {
public:
    explicit DropTarget(DropOffer dropOffer)
        : offer(std::move(dropOffer))
    {
    }

    /// Tells the widgets concerned that the pointer is there. `ignored` is a window that counts as
    /// not there; may be null.
    void moveTo(DragPointer const &pointer, QWidget const *ignored);

    /// Drops on the widget that accepts it, or leaves the one that doesn't. Returns what was done.
    Qt::DropAction drop(DragPointer const &pointer);

    void leave();

    /// Who accepted to be entered; null when nobody did, or when it has died.
    QWidget *widget() const { return target; }

    /// What a drop here would do; IgnoreAction when it isn't accepted.
    Qt::DropAction action() const { return target ? accepted : Qt::IgnoreAction; }

    /// Sees events on their way to objects, and learns from them who it is that accepts.
    void watch(QObject *receiver, QEvent const *event);

private:
    bool isStale(QWidget const *newSite, DragPointer const &pointer) const;
    void enter(DragPointer const &pointer);
    void move(DragPointer const &pointer);

    DropOffer offer;
    QPointer<QWidget> site;   // The one under the pointer that takes drops; asked first.
    QPointer<QWidget> target; // The site, or the parent of it that accepted.
    bool hasEntered = false;  // Somebody accepted, and wasn't left since. It may have died.
    Qt::DropAction accepted = Qt::IgnoreAction;
    Qt::DropAction proposed = Qt::IgnoreAction; // With the last event.
    Qt::KeyboardModifiers modifiersOfEntry;
    QEvent const *entering = nullptr; // Being sent.
    QPointer<QWidget> lastEntered;    // Who saw that one last.
};

} // namespace ZR::GUI
