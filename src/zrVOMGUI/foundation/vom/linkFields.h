#pragma once

#include "zrVOMGUI/foundation/vom/MField.h"

#include <cstddef>

namespace ZR::VOM {

/// Calls `visitor` with `field` if that is a FieldType, and answers whether it is.
template <class FieldType, class Visitor>
bool visitFieldAs(Field &field, Visitor &&visitor)
{
    auto *const found = dynamic_cast<FieldType *>(&field);
    if (found)
        visitor(*found);
    return found != nullptr;
}

/// Calls `visitor` with `field` as what its type code says: a FieldPtr &, a FieldRef &, an
/// MFieldPtr & or an MFieldRef &. Answers false, and calls nothing, for a field that holds no
/// links, and for one that isn't what its type code says.
template <class Visitor>
bool visitLinkField(Field &field, Visitor &&visitor)
{
    switch (field.getType()) {
    case 5:
        return visitFieldAs<FieldPtr>(field, visitor);
    case 6:
        return visitFieldAs<FieldRef>(field, visitor);
    case 11:
        return visitFieldAs<MFieldPtr>(field, visitor);
    case 12:
        return visitFieldAs<MFieldRef>(field, visitor);
    default:
        return false;
    }
}

/// Whether fields of this type code hold links.
inline bool isLinkType(int type)
{
    return type == 5 || type == 6 || type == 11 || type == 12;
}

/// Whether fields of this type code hold a list of links.
inline bool isLinkListType(int type)
{
    return type == 11 || type == 12;
}

/// Whether fields of this type code own what they link to.
inline bool isOwningLinkType(int type)
{
    return type == 6 || type == 12;
}

/// Calls `use` with a RefT<Object> for each link of the field that is set, in list order. Does
/// nothing for a field that holds no links.
template <class Use>
void forEachLink(Field &field, Use &&use)
{
    visitLinkField(field, [&](auto &linkField) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(linkField)>>) {
            for (std::size_t i = 0; i < linkField.getNum(); ++i)
                if (linkField.get(i))
                    use(RefT<Object>(linkField.get(i)));
        } else {
            if (linkField.get())
                use(RefT<Object>(linkField.get()));
        }
    });
}

} // namespace ZR::VOM
