#pragma once

#include "PackageModel.h"

#include "zrVOMGUI/foundation/vom/Path.h"

#include <QWidget>

#include <functional>
#include <map>

class QAbstractScrollArea;
class QGridLayout;
class QGroupBox;
class QLabel;

namespace ZR::VOM::GUI {
class PathListView;
}

namespace Explorer {

class FieldSlot;
class NumberEdit;
class PackageGraph;

/// A form on what is selected: what a package refers to, numbers of all selected objects, and the
/// paths that lead to them.
///
/// Watches, beside the model, whatever the selection comes from. Owns none of it.
class FormPanel : public QWidget {
    Q_OBJECT

public:
    using Paths = std::vector<ZR::VOM::Path>;

    explicit FormPanel(PackageModel &shownModel, QWidget *parent = nullptr);
    ~FormPanel() override;

    /// \name Widgets to follow, which don't outlive the form
    /// The form shows what was selected last, in whichever.
    /// @{
    void watch(PackageGraph &graph);
    /// A tree of any generation: asked after each key and each click.
    template <class Tree>
    void watchTree(Tree &tree);
    /// @}

    void showPaths(Paths const &paths);
    /// Packages with the way to them from their sections.
    void showObjects(Objects const &objects);

    FieldSlot &getMaintainerSlot() { return *maintainer; }
    FieldSlot &getDependencySlot() { return *dependency; }
    NumberEdit &getSizeEdit() { return *size; }
    NumberEdit &getRatingEdit() { return *rating; }
    ZR::VOM::GUI::PathListView &getPathList() { return *pathList; }

signals:
    /// For the user to read once.
    void said(QString const &text);

protected:
    bool eventFilter(QObject *source, QEvent *event) override;

private:
    void watch(QAbstractScrollArea &area, std::function<Paths()> const &getSel);
    QGroupBox *makePackageBox();
    QGroupBox *makeNumberBox();
    QGroupBox *makePathBox();
    void addSlot(QGridLayout &grid, QString const &label, FieldSlot &slot);
    void addNumber(QGridLayout &grid, QString const &label, NumberEdit &edit);
    QLabel *addRow(QGridLayout &grid, QString const &label, QWidget &field, QWidget &more);
    Paths pathsTo(Objects const &objects) const;
    void showPackage(ZR::PtrT<Package> const &package);
    void showTitle(std::vector<ZR::PtrT<ZR::VOM::Object>> const &objects);
    void followTitle(Item &item);
    void disconnectTitle();

    PackageModel &model;
    std::map<QObject *, std::function<Paths()>> watched; // By widgets and their viewports.
    QLabel *title;
    std::vector<ZR::Signal::Connection> titleConnections; // To the single object that it names.
    FieldSlot *maintainer, *dependency;
    NumberEdit *size, *rating;
    ZR::VOM::GUI::PathListView *pathList;
};

template <class Tree>
void FormPanel::watchTree(Tree &tree)
{
    watch(tree, [&tree] {
        Paths paths;
        tree.getSel(paths);
        return paths;
    });
}

} // namespace Explorer
