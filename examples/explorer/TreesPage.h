#pragma once

#include "PackageModel.h"
#include "SectionsWatch.h"

#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeView.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

#include <QWidget>

class QHBoxLayout;

namespace Explorer {

class TreeSettings;

/// The sections in all generations of trees, side by side, set alike, so that their differences can
/// be seen. Carries out what is dropped on any of them.
class TreesPage : public QWidget {
    Q_OBJECT

public:
    using Third = ZR::VOM::GUI::ObjectTreeView;
    using Second = ZR::VOM::GUI::V2::ObjectTreeView;
    using First = ZR::VOM::GUI::V1::ObjectTreeView;

    /// The model isn't owned.
    explicit TreesPage(PackageModel &shownModel, QWidget *parent = nullptr);

    Third &getThird() { return *third; }
    Second &getSecond() { return *second; }
    First &getFirst() { return *first; }

signals:
    /// For the user to read once.
    void said(QString const &text);

private:
    void addColumn(QHBoxLayout &row, QString const &title, QWidget &tree);
    template <class Tree>
    void setUpRows(Tree &tree);
    void setUpFirst();
    void connectSettings(TreeSettings &settings);
    template <class Operation>
    void forEachTree(Operation const &operation);
    void updateRows();

    PackageModel &model;
    Third *third;
    Second *second;
    First *first;
    SectionsWatch sections;
};

} // namespace Explorer
