#pragma once

#include <QWidget>

#include <utility>

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

/// Lets a tree of any generation show no link fields but the dependencies of packages, and the
/// packages of sections on the way to them; or all again.
template <class Tree>
void setDependenciesOnly(Tree &tree, bool on)
{
    for (auto const &[className, fieldName] :
         {std::pair("Package", "depends"), std::pair("Section", "packages")})
        if (on)
            tree.addAcceptedField(className, fieldName);
        else
            tree.removeAcceptedField(className, fieldName);
}

} // namespace Explorer
