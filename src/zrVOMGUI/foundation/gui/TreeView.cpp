#include "zrVOMGUI/foundation/gui/TreeView.h"

#include "zrVOMGUI/foundation/gui/private/TreeHooksT.h"

namespace ZR::GUI {

namespace {

constexpr char const *viewName = "ZR::GUI::TreeView";

} // namespace

TreeView::TreeView(QWidget *parent)
    : TreeArea(parent, new TreeHooksT<TreeView>(*this, viewName))
{
}

TreeView::~TreeView()
{
    getEngine().leaveView();
    leaveChildren();
    getEngine().bury(std::move(root));
}

TreeView::RowHandle TreeView::handleOf(TreeRow *row)
{
    return row ? static_cast<TreeViewRow *>(row)->weak_from_this().lock() : nullptr;
}

void TreeView::setRoot(std::shared_ptr<TreeViewRow> &&newRoot)
{
    const TreeEngine::Ref ref(getEngine());
    std::shared_ptr<TreeViewRow> old = std::move(root);
    root = std::move(newRoot);
    ref->setRoot(root.get());
    ref->bury(std::move(old));
}

std::vector<std::shared_ptr<TreeViewRow>> TreeView::getSel()
{
    std::vector<std::shared_ptr<TreeViewRow>> rows;
    for (TreeRow *const row : getEngine().getSel())
        rows.push_back(handleOf(row));
    return rows;
}

void TreeView::setSel(std::vector<std::shared_ptr<TreeViewRow>> const &rows)
{
    std::vector<TreeRow *> plain;
    for (std::shared_ptr<TreeViewRow> const &row : rows)
        plain.push_back(row.get());
    getEngine().setSel(plain);
}

std::shared_ptr<TreeViewRow> TreeView::getCurrentRow()
{
    return handleOf(getEngine().getCurrent());
}

std::shared_ptr<TreeViewRow> TreeView::findRow(QPoint const &pos)
{
    const TreeEngine::Ref ref(getEngine());
    return handleOf(ref->findRow(pos));
}

void TreeView::setRowText(TreeViewRow &row, std::string const &text)
{
    row.setText(text);
}

void TreeView::editRow(std::shared_ptr<TreeViewRow> const &row, std::string const &text)
{
    const TreeEngine::Ref ref(getEngine());
    if (row && row->getTreeView() == this)
        ref->edit(*row, text);
}

QMimeData *TreeView::makeMimeData(std::vector<std::shared_ptr<TreeViewRow>> const &)
{
    return nullptr;
}

void TreeView::onDeleteRow(TreeViewRow &) {}

void TreeView::onConfirm() {}

void TreeView::onRequestContextMenu(std::shared_ptr<TreeViewRow> const &, QPoint const &) {}

void TreeView::onEditRow(TreeViewRow &) {}

void TreeView::onEditRowConfirm(TreeViewRow &, std::string const &) {}

bool TreeView::onCanDrop(QDropEvent &, std::shared_ptr<TreeViewRow> const &, std::size_t)
{
    return false;
}

void TreeView::onDrop(QDropEvent &, std::shared_ptr<TreeViewRow> const &, std::size_t) {}

TreeViewRow::TreeViewRow(TreeView &view, std::shared_ptr<TreeViewRow> const &parentRow)
    : TreeRow(&view.getEngine(), parentRow.get())
    , ChildT(view)
{
}

TreeViewRow::~TreeViewRow()
{
    if (getTreeView())
        tryCatch("ZR::GUI::TreeView::onDeleteRow", [this] { getTreeView()->onDeleteRow(*this); });
    destroyRows(releaseChildRows());
}

std::shared_ptr<TreeViewRow> TreeViewRow::getParent()
{
    return TreeView::handleOf(getParentRow());
}

std::shared_ptr<TreeViewRow> TreeViewRow::getChildRow(std::size_t pos) const
{
    return TreeView::handleOf(getMadeChild(pos));
}

std::vector<std::shared_ptr<TreeViewRow>> TreeViewRow::releaseChildRows()
{
    std::vector<std::shared_ptr<TreeViewRow>> rows;
    for (TreeRow *const row : takeChildren())
        rows.push_back(std::move(static_cast<TreeViewRow *>(row)->ownerRef));
    return rows;
}

void TreeViewRow::setChildRows(std::vector<std::shared_ptr<TreeViewRow>> &&rows)
{
    std::vector<std::shared_ptr<TreeViewRow>> old = releaseChildRows();
    std::vector<TreeRow *> children;
    children.reserve(rows.size());
    for (std::shared_ptr<TreeViewRow> &row : rows) {
        if (!row || row->ownerRef || !canAdopt(*row))
            continue;
        TreeViewRow &child = *row;
        children.push_back(&child);
        child.ownerRef = std::move(row);
    }
    putChildren(std::move(children));
    drop(std::move(rows));
    drop(std::move(old));
}

} // namespace ZR::GUI
