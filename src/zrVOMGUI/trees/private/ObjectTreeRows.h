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
