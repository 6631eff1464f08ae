#pragma once

#include "zrVOMGUI/foundation/gui/TreeArea.h"
#include "zrVOMGUI/foundation/gui/TreeRow.h"
#include "zrVOMGUI/foundation/util/Parent.h"
#include "zrVOMGUI/foundation/util/Signal.h"

class QMimeData;

namespace ZR::GUI {

class TreeViewRow;

/// A tree of rows, which it owns through shared pointers.
///
/// Give it a root with setRoot(); what is shown are the rows below it. The user selects by mouse
/// and keyboard, opens and closes, edits in place and drags. What any of that means is the
/// subclass's: it overrides the operations at the end, each of which may destroy rows and the view.
/// Exceptions from them go to the error sink.
///
/// With an open row of n children an event costs at most a logarithm of n, however many they are.
/// Content is measured in pixels and ends at 2^31.
class ZRGUI_EXPORT TreeView : public TreeArea, public ParentT<TreeView, TreeViewRow> {
    Q_OBJECT

public:
    /// For signals of subclasses that tell of one row.
    struct SigRowData : SigVoidData {
        TreeViewRow *row = nullptr; ///< Not owned.
    };

    explicit TreeView(QWidget *parent = nullptr);
    ~TreeView() override;

    /// In the order of the tree.
    std::vector<std::shared_ptr<TreeViewRow>> getSel();
    /// Null rows and those of other views are passed over. Neither scrolls nor changes the current
    /// row. Rows may be inside a closed one.
    void setSel(std::vector<std::shared_ptr<TreeViewRow>> const &rows);

    /// The row that keys go to; may be null.
    std::shared_ptr<TreeViewRow> getCurrentRow();
    /// The row at a point of the content, that is of the viewport plus the values of the scroll
    /// bars. A row reaches over all of its line. Null where there is none.
    std::shared_ptr<TreeViewRow> findRow(QPoint const &pos);

    void setRowText(TreeViewRow &row, std::string const &text);
    /// Opens an editor with the text in place of the row's, scrolled to and with the focus. Enter
    /// confirms it, and so does going elsewhere; Escape doesn't. Closed rows that it lies in are
    /// opened. Null, a hidden row, one that lies in no tree and one of another view are passed
    /// over.
    void editRow(std::shared_ptr<TreeViewRow> const &row, std::string const &text);

protected:
    /// The tree in place of the one before, which dies. Null for none.
    void setRoot(std::shared_ptr<TreeViewRow> &&newRoot);
    std::shared_ptr<TreeViewRow> const &getRoot() const { return root; }

    /// A drag of these rows starts, in the order of the tree: returns its payload, which the caller
    /// takes. None, as here, starts no drag.
    virtual QMimeData *makeMimeData(std::vector<std::shared_ptr<TreeViewRow>> const &rows);
    /// A row dies while its view lives. Nothing is left of it but what TreeViewRow has.
    virtual void onDeleteRow(TreeViewRow &row);
    /// Enter was pressed, or a row was double-clicked that can't be opened or, with Control, any
    /// beside its expander. See getSel(). Enter goes no further, so that it presses no default
    /// button of a dialog, whether or not a subclass overrides this.
    virtual void onConfirm();
    /// By the mouse, on a row or, with a null row, beside all; or by key, on the current row. `pos`
    /// is on the screen.
    virtual void onRequestContextMenu(std::shared_ptr<TreeViewRow> const &row, QPoint const &pos);
    /// F2, or a second click on a row that was selected alone: a subclass calls editRow().
    virtual void onEditRow(TreeViewRow &row);
    virtual void onEditRowConfirm(TreeViewRow &row, std::string const &text);
    /// Whether a drop is possible before child `index` of the row, or onto the row with
    /// TreeRow::npos. Between two rows their parent is asked, and if it refuses, the row under
    /// the pointer; below all rows the root. The event's action is one of those allowed.
    virtual bool onCanDrop(QDropEvent &event, std::shared_ptr<TreeViewRow> const &row,
                           std::size_t index);
    /// The drop, where onCanDrop() allowed it for the same event just before. The event counts as
    /// accepted; who doesn't carry it out ignores it, which the sender hears of.
    virtual void onDrop(QDropEvent &event, std::shared_ptr<TreeViewRow> const &row,
                        std::size_t index);

private:
    friend class TreeViewRow;
    template <class View>
    friend class TreeHooksT;
    using RowType = TreeViewRow;
    using RowHandle = std::shared_ptr<TreeViewRow>;
    ZR_LOCAL static RowHandle handleOf(TreeRow *row);

    std::shared_ptr<TreeViewRow> root;
};

/// One row of a TreeView; see TreeRow. Held by std::shared_ptr from its birth on, as
/// std::make_shared makes it. While it is among its parent's children, the parent owns it.
///
/// Rows may outlive their view, which then reads null; what is done to them has no effect.
class ZRGUI_EXPORT TreeViewRow : public TreeRow,
                                 public std::enable_shared_from_this<TreeViewRow>,
                                 public ChildT<TreeViewRow, TreeView> {
public:
    ~TreeViewRow() override;

    /// Null while the view is being torn down and afterwards.
    TreeView *getTreeView() const { return getLivingParent(); }
    /// Null for the root, and when the parent is gone.
    std::shared_ptr<TreeViewRow> getParent();
    /// A child that exists; null for other positions.
    std::shared_ptr<TreeViewRow> getChildRow(std::size_t pos) const;

protected:
    /// The parent is known from now on; setChildRows() makes the row its child.
    TreeViewRow(TreeView &view, std::shared_ptr<TreeViewRow> const &parentRow);

    /// Hands the present rows out.
    std::vector<std::shared_ptr<TreeViewRow>> releaseChildRows();
    /// Takes the new rows in place of those that are there. Rows that nobody else owns and that
    /// aren't handed back die. Null rows, rows of other views, rows that are children already,
    /// twice in the list or ancestors of this row are passed over.
    void setChildRows(std::vector<std::shared_ptr<TreeViewRow>> &&rows);

private:
    friend class TreeView;
    template <class Handle>
    friend void destroyRows(std::vector<Handle> &&rows);

    std::shared_ptr<TreeViewRow> ownerRef; // Of itself, for its parent, while it is a child.
};

} // namespace ZR::GUI
