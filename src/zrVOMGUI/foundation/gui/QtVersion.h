#pragma once

// What differs between Qt versions.

#include <QCoreApplication>
#include <QDropEvent>

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

} // namespace ZR::GUI
