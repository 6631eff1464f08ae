#pragma once

#include "zrVOMGUI/foundation/vom/MField.h"

#include <type_traits>

namespace ZR::VOM {

/// Stands for a class of fields where there is no field yet.
template <class Type>
struct FieldTag {
    using FieldType = Type;
};

/// Calls `visitor` with the FieldTag of the class whose fields have this type code. Answers false,
/// and calls nothing, for any other code.
template <class Visitor>
bool visitFieldType(int type, Visitor &&visitor)
{
    switch (type) {
    case 2:
        visitor(FieldTag<FieldInt>());
        return true;
    case 3:
        visitor(FieldTag<FieldReal>());
        return true;
    case 4:
        visitor(FieldTag<FieldString>());
        return true;
    case 5:
        visitor(FieldTag<FieldPtr>());
        return true;
    case 6:
        visitor(FieldTag<FieldRef>());
        return true;
    case 11:
        visitor(FieldTag<MFieldPtr>());
        return true;
    case 12:
        visitor(FieldTag<MFieldRef>());
        return true;
    default:
        return false;
    }
}

/// Calls `visitor` with `field` as what its type code says. Answers false, and calls nothing, for a
/// field of another code and for one that isn't what its code says.
template <class Visitor>
bool visitField(Field &field, Visitor &&visitor)
{
    bool isVisited = false;
    visitFieldType(field.getType(), [&](auto tag) {
        if (auto *const typed = dynamic_cast<typename decltype(tag)::FieldType *>(&field)) {
            visitor(*typed);
            isVisited = true;
        }
    });
    return isVisited;
}

template <class FieldType>
constexpr bool isListField = std::is_base_of_v<MField, FieldType>;

} // namespace ZR::VOM
