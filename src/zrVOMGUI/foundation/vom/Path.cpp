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

Path::Path(PtrT<Object> const &rootObject) : root(rootObject) {}

Path::Path(Object const &rootObject) : root(const_cast<Object &>(rootObject)) {}

void Path::pushField(Field &field)
{
    push(field, 0, false);
}

void Path::pushValue(Field &field)
{
    push(field, 0, true);
}

void Path::pushValue(MField &field, std::size_t index)
{
    push(field, index, true);
}

void Path::push(Field &field, std::size_t index, bool isValue)
{
    // A value goes on from its field, if the path ends there.
    if (!endsAtField || getLast().field.get() != &field)
        entries.emplace_back();
    entries.back() = {PtrT<Field>(field), index};
    endsAtField = !isValue;
}

void Path::pop()
{
    if (!entries.empty())
        entries.pop_back();
    endsAtField = false;
}

void Path::clear()
{
    entries.clear();
    endsAtField = false;
}

Path::Type Path::getType() const
{
    if (endsAtField)
        return Type::Field;
    if (entries.empty())
        return Type::Object;
    PtrT<Field> const &field = getLast().field;
    return field && isLinkType(field->getType()) ? Type::Object : Type::Value;
}

PtrT<Object> Path::getObj() const
{
    if (entries.empty())
        return root;
    PtrT<Field> const &field = getLast().field;
    if (endsAtField || !field)
        return {};
    return linkedObject(*field, getLast().index);
}

} // namespace ZR::VOM
