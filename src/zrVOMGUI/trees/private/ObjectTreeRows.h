#pragma once

// Not for hosts: the rows of ObjectTreeView.

#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/private/RowWatch.h"
#include "zrVOMGUI/trees/private/RowsT.h"

namespace ZR::VOM::GUI {

/// An empty link, and the base of all rows of the tree.
class ObjectTreeView::VoidRow : public ZR::GUI::TreeViewRow {
public:
    using Watch = Trees::RowWatch;

    VoidRow(ObjectTreeView &view, RowHandle const &parent);
    ~VoidRow() override;

    void onUpdate(bool wanted) override;
    /// The path that leads to this row.
    virtual Path getPath();
    /// The row that the path leads to from its step `step` on, which is this row's; null if there
    /// is none.
    virtual RowHandle makeRow(Path const &path, std::size_t step, bool keepOpen);
    virtual void onObjIconDBChanged() {}
    virtual void onTypeNameChanged() {}
    virtual void onAddressChanged() {}
    virtual void onNameFieldChanged() {}
    virtual void onHideFieldsChanged() {}
    virtual void onAcceptedFieldsChanged() {}

    RowHandle getHandle() { return shared_from_this(); }
    /// A child that exists; null for other positions.
    VoidRow *getVoidChild(std::size_t position) const;

protected:
    /// Null while the view is torn down.
    ObjectTreeView *getView() const;
    VoidRow *getVoidParent();
    void repaintView();

private:
    friend Trees::RowWatch;
    Trees::RowWatch *watches = nullptr;
};

class ObjectTreeView::Root : public Trees::RowsT<ObjectTreeView>::Root {
public:
    using Trees::RowsT<ObjectTreeView>::Root::Root;
};

class ObjectTreeView::ObjectRow : public Trees::RowsT<ObjectTreeView>::ObjectRow {
public:
    using Trees::RowsT<ObjectTreeView>::ObjectRow::ObjectRow;
    void onAddressChanged() override { dirtyText(); }
};

class ObjectTreeView::FieldRow : public Trees::RowsT<ObjectTreeView>::FieldRow {
public:
    using Trees::RowsT<ObjectTreeView>::FieldRow::FieldRow;
};

class ObjectTreeView::FieldPtrRow : public Trees::RowsT<ObjectTreeView>::SingleLinkRow<FieldPtr> {
public:
    using SingleLinkRow<FieldPtr>::SingleLinkRow;
};

class ObjectTreeView::FieldRefRow : public Trees::RowsT<ObjectTreeView>::SingleLinkRow<FieldRef> {
public:
    using SingleLinkRow<FieldRef>::SingleLinkRow;
};

class ObjectTreeView::MFieldPtrRow : public Trees::RowsT<ObjectTreeView>::LinkListRow<MFieldPtr> {
public:
    using LinkListRow<MFieldPtr>::LinkListRow;
};

class ObjectTreeView::MFieldRefRow : public Trees::RowsT<ObjectTreeView>::LinkListRow<MFieldRef> {
public:
    using LinkListRow<MFieldRef>::LinkListRow;
};

} // namespace ZR::VOM::GUI
