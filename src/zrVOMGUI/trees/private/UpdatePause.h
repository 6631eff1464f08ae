#pragma once

// Not for hosts.

#include <QPointer>
#include <QWidget>

namespace ZR::VOM::GUI::Trees {

/// Holds repaints back while many rows change. A view whose updates are off keeps them off.
class UpdatePause {
public:
    explicit UpdatePause(QWidget &pausedWidget)
        : widget(&pausedWidget)
        , wasEnabled(pausedWidget.updatesEnabled())
    {
        if (wasEnabled)
            widget->setUpdatesEnabled(false);
    }
    ~UpdatePause()
    {
        if (widget && wasEnabled)
            widget->setUpdatesEnabled(true);
    }
    UpdatePause(UpdatePause const &) = delete;
    UpdatePause &operator=(UpdatePause const &) = delete;

private:
    const QPointer<QWidget> widget;
    const bool wasEnabled;
};

} // namespace ZR::VOM::GUI::Trees
