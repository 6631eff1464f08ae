#pragma once

#include "PackageModel.h"

#include "zrVOMGUI/trees/ObjectTreeView.h"

#include <QWidget>

namespace Explorer {

/// The model as a tree, with what a host can set on it above. Carries out what is dropped.
class TreePanel : public QWidget {
    Q_OBJECT

public:
    using Tree = ZR::VOM::GUI::ObjectTreeView;

    /// The model isn't owned.
    explicit TreePanel(PackageModel &shownModel, QWidget *parent = nullptr);

    Tree &getTree() { return *tree; }
    /// Shows the model's objects anew, and selects what was selected.
    void updateRows();

signals:
    /// For the user to read once.
    void said(QString const &text);

private:
    void connectTree();
    void insertDropped(Tree::SigDropData const &drop);

    PackageModel &model;
    Tree *tree;
};

} // namespace Explorer
