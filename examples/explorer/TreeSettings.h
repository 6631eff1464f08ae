#pragma once

#include <QWidget>

namespace Explorer {

/// What a host can set on a tree of packages, as a row of boxes, all of them unchecked at first.
class TreeSettings : public QWidget {
    Q_OBJECT

public:
    explicit TreeSettings(QWidget *parent = nullptr);

signals:
    void hideFieldsToggled(bool on);
    void classNamesToggled(bool on);
    /// No link fields of packages but their dependencies.
    void dependenciesOnlyToggled(bool on);
};

} // namespace Explorer
