#include "zrVOMGUI/foundation/vom/Path.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <type_traits>

namespace ZR::VOM {

namespace {

/// What one value of a link field leads to; null for other fields and for positions out of range.
PtrT<Object> linkedObject(Field &field, std::size_t index)
{
    PtrT<Object> linked;
    visitLinkField(field, [&](auto &linkField) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(linkField)>>) {
            if (index < linkField.getNum())
                linked = linkField.get(index);
        } else {
            linked = linkField.get();
        }
    });
    return linked;
}

} // namespace

Path::Path(PtrT<VOM::Object> const &rootObject)
    : root(rootObject)
{
}

Path::Path(VOM::Object const &rootObject)
    : root(const_cast<VOM::Object &>(rootObject))
{
}

void Path::pushField(VOM::Field &field)
{
    push(field, 0, Field);
}

void Path::pushValue(VOM::Field &field)
{
    push(field, 0, Value);
}

void Path::pushValue(MField &field, std::size_t index)
{
    push(field, index, Value);
}

void Path::push(VOM::Field &field, std::size_t index, Type newType)
{
    const bool goesOnFromField = type == Field && getLast().field.get() == &field;
    if (!goesOnFromField)
        entries.emplace_back();
    entries.back() = {PtrT<VOM::Field>(field), index};
    type = newType;
}

void Path::pop()
{
    if (!entries.empty())
        entries.pop_back();
    type = Object;
}

void Path::clear()
{
    entries.clear();
    type = Object;
}

PtrT<Object> Path::getObj() const
{
    if (entries.empty())
        return root;
    PtrT<VOM::Field> const &field = getLast().field;
    if (type == Field || !field)
        return {};
    return linkedObject(*field, getLast().index);
}

} // namespace ZR::VOM
