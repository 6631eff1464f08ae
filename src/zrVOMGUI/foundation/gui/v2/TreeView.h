#pragma once

#include "zrVOMGUI/foundation/gui/TreeArea.h"
#include "zrVOMGUI/foundation/gui/TreeRow.h"
#include "zrVOMGUI/foundation/util/Signal.h"

class QMimeData;

namespace ZR::GUI::V2 {

/// A tree of rows, each owned by its parent through a unique pointer.
///
/// As ZR::GUI::TreeView, with these differences: the root comes with the constructor, rows are
/// handed out as plain pointers that are valid until their parent is rebuilt, and a row always has
/// its view and its parent at hand.
class ZRGUI_EXPORT TreeView : public TreeArea {
    Q_OBJECT

public:
    class Row;

    /// For signals of subclasses that tell of one row.
    struct SigRowData : SigVoidData {
        Row *row = nullptr; ///< Not owned.
    };

    ~TreeView() override;

    std::vector<Row *> getSel();
    void setSel(std::vector<Row *> const &rows);
    Row *getCurrentRow() const;
    Row *findRow(QPoint const &pos);
    void setRowText(Row &row, std::string const &text);
    void editRow(Row *row, std::string const &text);

protected:
    /// The root may be made with a reference to this view before the view is constructed.
    TreeView(std::unique_ptr<Row> &&rootRow, QWidget *parent);
    /// \pre The constructor was given a root.
    Row &getRoot() { return *root; }

    // See ZR::GUI::TreeView.
    virtual QMimeData *makeMimeData(std::vector<Row *> const &rows);
    virtual void onDeleteRow(Row &row);
    virtual void onConfirm();
    virtual void onRequestContextMenu(Row *row, QPoint const &pos);
    virtual void onEditRow(Row &row);
    virtual void onEditRowConfirm(Row &row, std::string const &text);
    virtual bool onCanDrop(QDropEvent &event, Row *row, std::size_t index);
    virtual void onDrop(QDropEvent &event, Row *row, std::size_t index);

private:
    template <class View>
    friend class GUI::TreeHooksT;
    using RowType = Row;
    using RowHandle = Row *;
    ZR_LOCAL static RowHandle handleOf(TreeRow *row);

    std::unique_ptr<Row> root;
};

/// One row; see TreeRow.
class ZRGUI_EXPORT TreeView::Row : public TreeRow {
public:
    ~Row() override;

    TreeView *getTreeView() const { return &ownerView; }
    /// Null for the root.
    Row *getParent() const;
    /// A child that exists; null for other positions.
    Row *getChildRow(std::size_t pos) const;

protected:
    Row(TreeView &treeView, Row *parentRow);

    std::vector<std::unique_ptr<Row>> releaseChildRows();
    void setChildRows(std::vector<std::unique_ptr<Row>> &&rows);

private:
    friend class TreeView;
    template <class Handle>
    friend void GUI::destroyRows(std::vector<Handle> &&rows);

    TreeView &ownerView;
};

} // namespace ZR::GUI::V2
