#pragma once

// What differs between Qt versions.

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QDropEvent>
#include <QIcon>
#include <QMouseEvent>

#include <memory>

#if QT_VERSION < QT_VERSION_CHECK(5, 15, 0)
#error "zrVOMGUI needs Qt 5.15"
#endif

namespace ZR::GUI {

/// Follows the screen's scale factor, with icons in its full resolution. Call before the
/// application object is made. From Qt 6 on that is so without it.
inline void enableHighDpi()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
}

/// Reaches what a QDropEvent keeps from others than its sender.
struct DropEventAccess : QDropEvent {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    static constexpr auto proposed = &DropEventAccess::m_defaultAction;
#else
    static constexpr auto proposed = &DropEventAccess::default_action;
#endif
};

/// Lets the event propose another action than its modifiers do.
inline void setDefaultAction(QDropEvent &event, Qt::DropAction action)
{
    event.*DropEventAccess::proposed = action;
}

/// Where the payload is, in the receiver.
inline QPoint dropPos(QDropEvent const &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.position().toPoint();
#else
    return event.pos();
#endif
}

inline Qt::MouseButtons buttonsOf(QDropEvent const &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.buttons();
#else
    return event.mouseButtons();
#endif
}

inline Qt::KeyboardModifiers modifiersOf(QDropEvent const &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.modifiers();
#else
    return event.keyboardModifiers();
#endif
}

/// Where the pointer is, on the screen.
inline QPoint globalPos(QMouseEvent const &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.globalPosition().toPoint();
#else
    return event.globalPos();
#endif
}

/// The same event anew: accepted, and not from the system.
inline std::unique_ptr<QMouseEvent> copyOf(QMouseEvent const &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return std::make_unique<QMouseEvent>(event.type(), event.position(), event.scenePosition(),
                                         event.globalPosition(), event.button(), event.buttons(),
                                         event.modifiers(), event.pointingDevice());
#else
    return std::make_unique<QMouseEvent>(event.type(), event.localPos(), event.windowPos(),
                                         event.screenPos(), event.button(), event.buttons(),
                                         event.modifiers(), event.source());
#endif
}

/// The icon in the resolution of the screen that shows the widget.
inline QPixmap pixmapFor(QWidget const &widget, QIcon const &icon, QSize const &size)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return icon.pixmap(size, widget.devicePixelRatioF());
#else
    return icon.pixmap(widget.window()->windowHandle(), size);
#endif
}

/// Reaches what an item view keeps from others than its heirs.
struct ItemViewAccess : QAbstractItemView {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    static constexpr auto options = &ItemViewAccess::initViewItemOption;
#else
    static constexpr auto options = &ItemViewAccess::viewOptions;
#endif
};

/// What the view paints its items with, before it asks for an item.
inline QStyleOptionViewItem itemOptions(QAbstractItemView const &view)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStyleOptionViewItem option;
    (view.*ItemViewAccess::options)(&option);
    return option;
#else
    return (view.*ItemViewAccess::options)();
#endif
}

/// The delegate of an item, which paints it and edits it.
inline QAbstractItemDelegate *delegateOf(QAbstractItemView const &view, QModelIndex const &index)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return view.itemDelegateForIndex(index);
#else
    return view.itemDelegate(index);
#endif
}

} // namespace ZR::GUI
