#pragma once

#include "PackageModel.h"
#include "SectionsWatch.h"

#include "zrVOMGUI/trees/ObjectTreeView.h"

#include <QWidget>

class QMenu;

namespace Explorer {

/// The model's sections as a tree, with what a host can set on it above. Carries out what is
/// dropped, and what the context menu offers.
class TreePanel : public QWidget {
    Q_OBJECT

public:
    using Tree = ZR::VOM::GUI::ObjectTreeView;

    /// The model isn't owned.
    explicit TreePanel(PackageModel &shownModel, QWidget *parent = nullptr);

    PackageModel &getModel() const { return model; }
    Tree &getTree() { return *tree; }
    /// Shows the sections anew, as also happens when there are others, and selects what was
    /// selected.
    void updateRows();

signals:
    /// For the user to read once.
    void said(QString const &text);
    /// A package is to be shown elsewhere.
    void packageChosen(QString const &name);

private:
    void connectTree();
    void insertDropped(Tree::SigDropData const &drop);
    void popupMenu(Tree::RowHandle const &row, QPoint const &pos);
    void addObjectActions(QMenu &menu, Tree::RowHandle const &row, Item const &item);
    void addRemoveAction(QMenu &menu, ZR::VOM::Path const &path);
    /// Runs an edit of the model, and says why it was refused if it was.
    template <class Edit>
    void edit(Edit &&change);

    PackageModel &model;
    Tree *tree;
    SectionsWatch sections;
};

} // namespace Explorer
