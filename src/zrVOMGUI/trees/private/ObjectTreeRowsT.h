#pragma once

// Not for hosts: which rows the trees have, and how they are made.

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/trees/ObjectTreeT.h"
#include "zrVOMGUI/trees/private/RowsT.h"
#include "zrVOMGUI/trees/private/VoidRowT.h"

#include <string>
#include <type_traits>
#include <utility>

namespace ZR::VOM::GUI {

extern char const *const _ObjectTreeViewVoidRowLabel;

namespace Trees {

/// The full name of an operation of the view, under which reports of exceptions appear.
template <class Traits>
std::string where(char const *operation)
{
    return std::string(Traits::name) + "::" + operation;
}

template <class View, class RowTraits>
class ObjectTreeT<View, RowTraits>::Root : public RowsT<View>::Root {
public:
    using RowsT<View>::Root::Root;
};

template <class View, class RowTraits>
class ObjectTreeT<View, RowTraits>::FieldRow : public RowsT<View>::FieldRow {
public:
    using RowsT<View>::FieldRow::FieldRow;
};

template <class View, class RowTraits>
class ObjectTreeT<View, RowTraits>::FieldPtrRow
    : public RowsT<View>::template SingleLinkRow<FieldPtr> {
public:
    using RowsT<View>::template SingleLinkRow<FieldPtr>::SingleLinkRow;
};

template <class View, class RowTraits>
class ObjectTreeT<View, RowTraits>::FieldRefRow
    : public RowsT<View>::template SingleLinkRow<FieldRef> {
public:
    using RowsT<View>::template SingleLinkRow<FieldRef>::SingleLinkRow;
};

template <class View, class RowTraits>
class ObjectTreeT<View, RowTraits>::MFieldPtrRow
    : public RowsT<View>::template LinkListRow<MFieldPtr> {
public:
    using RowsT<View>::template LinkListRow<MFieldPtr>::LinkListRow;
};

template <class View, class RowTraits>
class ObjectTreeT<View, RowTraits>::MFieldRefRow
    : public RowsT<View>::template LinkListRow<MFieldRef> {
public:
    using RowsT<View>::template LinkListRow<MFieldRef>::LinkListRow;
};

/// Tells the host of a new row, who may do anything.
template <class View, class RowTraits>
auto ObjectTreeT<View, RowTraits>::announce(OwnedRow row) -> OwnedRow
{
    static const std::string place = where<Traits>("makeRow");
    const NewRow newRow(*this, detachedRows, *row);
    typename Traits::Base::SigRowData sigData;
    sigData.row = row.get();
    self().sigRow.emitCatching(sigData, place.c_str());
    return row;
}

template <class View, class RowTraits>
auto ObjectTreeT<View, RowTraits>::makeRow(VoidRow &parent, Object &obj) -> OwnedRow
{
    return announce(Traits::template make<ObjectRow>(self(), parent.getHandle(), obj));
}

template <class View, class RowTraits>
auto ObjectTreeT<View, RowTraits>::makeRow(VoidRow &parent, Field &field) -> OwnedRow
{
    OwnedRow row;
    visitLinkField(field, [&](auto &link) {
        using Link = std::decay_t<decltype(link)>;
        using SingleRow =
            std::conditional_t<std::is_same_v<Link, FieldPtr>, FieldPtrRow, FieldRefRow>;
        using ListRow =
            std::conditional_t<std::is_same_v<Link, MFieldPtr>, MFieldPtrRow, MFieldRefRow>;
        using LinkRow = std::conditional_t<std::is_base_of_v<MField, Link>, ListRow, SingleRow>;
        row = Traits::template make<LinkRow>(self(), parent.getHandle(), link);
    });
    return row ? announce(std::move(row)) : OwnedRow();
}

template <class View, class RowTraits>
auto ObjectTreeT<View, RowTraits>::makeRow(VoidRow &parent) -> OwnedRow
{
    OwnedRow row = Traits::template make<VoidRow>(self(), parent.getHandle());
    this->setRowText(*row, getLocText(_ObjectTreeViewVoidRowLabel));
    return announce(std::move(row));
}

template <class View, class RowTraits>
auto ObjectTreeT<View, RowTraits>::makeRow(Path const &path, bool keepOpen) -> RowHandle
{
    return root().makeRow(path, keepOpen);
}

} // namespace Trees

} // namespace ZR::VOM::GUI
