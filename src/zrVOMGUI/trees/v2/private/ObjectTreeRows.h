#pragma once

// Not for hosts: the rows that the second generation has to itself.

#include "zrVOMGUI/trees/private/VoidRowT.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

#include <utility>

namespace ZR::VOM::GUI::V2 {

class ObjectTreeTraits::VoidRow : public Trees::VoidRowT<ObjectTreeView> {
public:
    using VoidRowT::VoidRowT;

    virtual void onObjIconDBChanged() {}
    virtual void onTypeNameChanged() {}
    virtual void onNameFieldChanged() {}
    virtual void onHideFieldsChanged() {}
    virtual void onAcceptedFieldsChanged() {}

    // What getPath() and makeRow() ask of each row; these come last, since the operations above
    // keep their slots.

    /// Turns the path of the parent into that of this row.
    virtual void extendPath(Path &path)
    {
        Trees::RowsT<ObjectTreeView>::extendByValue(path, getPos());
    }
    /// Where a path leads whose step `step` is this row's.
    virtual Trees::Way wayOf(Path const &path, std::size_t step) const
    {
        return step == path.getNum() ? Trees::Way::EndsHere : Trees::Way::EndsNowhere;
    }
    /// The child that it goes on to, whose step is put in the place of this row's. Null if it isn't
    /// there.
    virtual VoidRow *getNext(Path const &, std::size_t &) const { return nullptr; }
};

class ObjectTreeTraits::ObjectRow : public Trees::RowsT<ObjectTreeView>::ObjectRow {
public:
    using Trees::RowsT<ObjectTreeView>::ObjectRow::ObjectRow;
};

template <class AnyRow, class... Arguments>
ObjectTreeTraits::OwnedRow ObjectTreeTraits::make(Arguments &&...arguments)
{
    return std::make_unique<AnyRow>(std::forward<Arguments>(arguments)...);
}

} // namespace ZR::VOM::GUI::V2
