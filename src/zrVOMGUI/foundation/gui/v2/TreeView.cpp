#include "zrVOMGUI/foundation/gui/v2/TreeView.h"

#include "zrVOMGUI/foundation/gui/private/TreeHooksT.h"

namespace ZR::GUI::V2 {

namespace {

constexpr char const *viewName = "ZR::GUI::V2::TreeView";

} // namespace

TreeView::TreeView(std::unique_ptr<Row> &&rootRow, QWidget *parent)
    : TreeArea(parent, new TreeHooksT<TreeView>(*this, viewName))
    , root(std::move(rootRow))
{
    getEngine().setRoot(root.get());
}

TreeView::~TreeView()
{
    getEngine().leaveView();
    getEngine().bury(std::move(root));
}

TreeView::RowHandle TreeView::handleOf(TreeRow *row)
{
    return static_cast<Row *>(row);
}

std::vector<TreeView::Row *> TreeView::getSel()
{
    std::vector<Row *> rows;
    for (TreeRow *const row : getEngine().getSel())
        rows.push_back(handleOf(row));
    return rows;
}

void TreeView::setSel(std::vector<Row *> const &rows)
{
    getEngine().setSel({rows.begin(), rows.end()});
}

TreeView::Row *TreeView::getCurrentRow() const
{
    return handleOf(getEngine().getCurrent());
}

TreeView::Row *TreeView::findRow(QPoint const &pos)
{
    const TreeEngine::Ref ref(getEngine());
    return handleOf(ref->findRow(pos));
}

void TreeView::setRowText(Row &row, std::string const &text)
{
    row.setText(text);
}

void TreeView::editRow(Row *row, std::string const &text)
{
    const TreeEngine::Ref ref(getEngine());
    if (row && row->getTreeView() == this)
        ref->edit(*row, text);
}

QMimeData *TreeView::makeMimeData(std::vector<Row *> const &)
{
    return nullptr;
}

void TreeView::onDeleteRow(Row &) {}

void TreeView::onConfirm() {}

void TreeView::onRequestContextMenu(Row *, QPoint const &) {}

void TreeView::onEditRow(Row &) {}

void TreeView::onEditRowConfirm(Row &, std::string const &) {}

bool TreeView::onCanDrop(QDropEvent &, Row *, std::size_t)
{
    return false;
}

void TreeView::onDrop(QDropEvent &, Row *, std::size_t) {}

TreeView::Row::Row(TreeView &treeView, Row *parentRow)
    : TreeRow(nullptr, parentRow)
    , ownerView(treeView)
{
}

TreeView::Row::~Row()
{
    // A row may outlive its view for the rest of an onUpdate() that destroyed it.
    if (isViewAlive())
        tryCatch("ZR::GUI::V2::TreeView::onDeleteRow", [this] { ownerView.onDeleteRow(*this); });
    destroyRows(releaseChildRows());
}

TreeView::Row *TreeView::Row::getParent() const
{
    return handleOf(getParentRow());
}

TreeView::Row *TreeView::Row::getChildRow(std::size_t pos) const
{
    return handleOf(getMadeChild(pos));
}

std::vector<std::unique_ptr<TreeView::Row>> TreeView::Row::releaseChildRows()
{
    std::vector<std::unique_ptr<Row>> rows;
    for (TreeRow *const row : takeChildren())
        rows.emplace_back(handleOf(row));
    return rows;
}

void TreeView::Row::setChildRows(std::vector<std::unique_ptr<Row>> &&rows)
{
    std::vector<std::unique_ptr<Row>> old = releaseChildRows();
    std::vector<TreeRow *> children;
    children.reserve(rows.size());
    for (std::unique_ptr<Row> &row : rows) {
        if (row && canAdopt(*row))
            children.push_back(row.release());
    }
    putChildren(std::move(children));
    drop(std::move(rows));
    drop(std::move(old));
}

} // namespace ZR::GUI::V2
