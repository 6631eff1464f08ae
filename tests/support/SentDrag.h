#pragma once

// Drags that come as events alone, without a mouse.

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>

/// A drag over a scroll area. Events go to the viewport, as Qt sends them; moves and the drop only
/// arrive after an enter that was accepted.
class SentDrag {
public:
    explicit SentDrag(QAbstractScrollArea &target, Qt::KeyboardModifiers keys = Qt::NoModifier,
                      Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction)
        : area(target)
        , modifiers(keys)
        , possible(actions)
    {
    }

    /// Each answers whether the area accepted.
    bool enter(QPoint const &pos, QMimeData const *data)
    {
        QDragEnterEvent event(pos, possible, data, Qt::LeftButton, modifiers);
        return send(event);
    }
    bool move(QPoint const &pos, QMimeData const *data)
    {
        QDragMoveEvent event(pos, possible, data, Qt::LeftButton, modifiers);
        return sendAsBefore(event);
    }
    bool drop(QPoint const &pos, QMimeData const *data)
    {
        QDropEvent event(pos, possible, data, Qt::LeftButton, modifiers);
        return sendAsBefore(event);
    }
    /// Enters, moves and drops, as far as the area accepts.
    bool run(QPoint const &pos, QMimeData const *data)
    {
        return enter(pos, data) && move(pos, data) && drop(pos, data);
    }

    bool accepted = false; ///< What the last event came to, and the next but an enter begins with.
    Qt::DropAction action = Qt::IgnoreAction;

private:
    bool sendAsBefore(QDropEvent &event)
    {
        event.setAccepted(accepted);
        event.setDropAction(action);
        return send(event);
    }
    bool send(QDropEvent &event)
    {
        QCoreApplication::sendEvent(area.viewport(), &event);
        action = event.dropAction();
        return accepted = event.isAccepted();
    }

    QAbstractScrollArea &area;
    const Qt::KeyboardModifiers modifiers;
    const Qt::DropActions possible;
};
