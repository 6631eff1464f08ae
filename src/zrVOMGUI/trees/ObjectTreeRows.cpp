// The rows of the tree of the first generation, and how they are made.

#include "zrVOMGUI/trees/private/ObjectTreeRows.h"
#include "zrVOMGUI/foundation/util/MakeShared.h"
#include "zrVOMGUI/foundation/util/text.h"

namespace ZR::VOM::GUI {

ObjectTreeView::VoidRow::VoidRow(ObjectTreeView &view, RowHandle const &parent)
    : TreeViewRow(view, parent)
{
}

ObjectTreeView::VoidRow::~VoidRow()
{
    Trees::RowWatch::tellGone(watches);
}

void ObjectTreeView::VoidRow::onUpdate(bool wanted)
{
    TreeViewRow::onUpdate(wanted);
}

ObjectTreeView *ObjectTreeView::VoidRow::getView() const
{
    return static_cast<ObjectTreeView *>(getTreeView());
}

ObjectTreeView::VoidRow *ObjectTreeView::VoidRow::getVoidParent()
{
    return dynamic_cast<VoidRow *>(getParent().get());
}

ObjectTreeView::VoidRow *ObjectTreeView::VoidRow::getVoidChild(std::size_t position) const
{
    return dynamic_cast<VoidRow *>(getChildRow(position).get());
}

void ObjectTreeView::VoidRow::repaintView()
{
    if (ObjectTreeView *const view = getView())
        view->viewport()->update();
}

Path ObjectTreeView::VoidRow::getPath()
{
    VoidRow *const parent = getVoidParent();
    const Path path = parent ? parent->getPath() : Path(PtrT<Object>());
    return Trees::RowsT<ObjectTreeView>::isEmpty(path)
               ? path
               : Trees::RowsT<ObjectTreeView>::valuePath(path, getPos());
}

ObjectTreeView::RowHandle ObjectTreeView::VoidRow::makeRow(Path const &path, std::size_t step, bool)
{
    return step == path.getNum() ? getHandle() : RowHandle();
}

std::shared_ptr<ObjectTreeView::Root> ObjectTreeView::makeRoot()
{
    const std::shared_ptr<Root> made = MakeShared::make<Root>(*this, RowHandle());
    made->setHidden(true);
    return made;
}

/// Tells the host of a new row, who may do anything.
ObjectTreeView::RowHandle ObjectTreeView::announce(RowHandle const &row)
{
    const Trees::NewRow newRow(*this, detachedRows, *row);
    SigRowData sigData;
    sigData.row = row.get();
    sigRow.emitCatching(sigData, "ZR::VOM::GUI::ObjectTreeView::makeRow");
    return row;
}

ObjectTreeView::RowHandle ObjectTreeView::makeRow(VoidRow &parent, Object &obj)
{
    return announce(MakeShared::make<ObjectRow>(*this, parent.getHandle(), obj));
}

ObjectTreeView::RowHandle ObjectTreeView::makeRow(VoidRow &parent, Field &field)
{
    RowHandle row;
    visitLinkField(field, [&](auto &link) {
        using Link = std::decay_t<decltype(link)>;
        if constexpr (std::is_same_v<Link, FieldPtr>)
            row = MakeShared::make<FieldPtrRow>(*this, parent.getHandle(), link);
        else if constexpr (std::is_same_v<Link, FieldRef>)
            row = MakeShared::make<FieldRefRow>(*this, parent.getHandle(), link);
        else if constexpr (std::is_same_v<Link, MFieldPtr>)
            row = MakeShared::make<MFieldPtrRow>(*this, parent.getHandle(), link);
        else
            row = MakeShared::make<MFieldRefRow>(*this, parent.getHandle(), link);
    });
    return row ? announce(row) : row;
}

ObjectTreeView::RowHandle ObjectTreeView::makeRow(VoidRow &parent)
{
    const RowHandle row = MakeShared::make<VoidRow>(*this, parent.getHandle());
    setRowText(*row, getLocText(_ObjectTreeViewVoidRowLabel));
    return announce(row);
}

} // namespace ZR::VOM::GUI
