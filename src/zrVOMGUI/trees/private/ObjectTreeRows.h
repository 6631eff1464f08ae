#pragma once

// Not for hosts: the rows that the first generation has to itself.

#include "zrVOMGUI/foundation/util/MakeShared.h"
#include "zrVOMGUI/trees/ObjectTreeView.h"
#include "zrVOMGUI/trees/private/VoidRowT.h"

#include <utility>

namespace ZR::VOM::GUI {

class ObjectTreeTraits::VoidRow : public Trees::VoidRowT<ObjectTreeView> {
public:
    using VoidRowT::VoidRowT;

    virtual void onObjIconDBChanged() {}
    virtual void onTypeNameChanged() {}
    virtual void onAddressChanged() {}
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
    void onAddressChanged() override { dirtyText(); }
};

template <class AnyRow, class... Arguments>
ObjectTreeTraits::OwnedRow ObjectTreeTraits::make(Arguments &&...arguments)
{
    return MakeShared::make<AnyRow>(std::forward<Arguments>(arguments)...);
}

} // namespace ZR::VOM::GUI
