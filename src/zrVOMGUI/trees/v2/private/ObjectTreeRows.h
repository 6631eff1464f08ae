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
