#include "zrVOMGUI/foundation/vom/canMove.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <unordered_set>

namespace ZR::VOM {

namespace {

/// Whether `sought` is one of the objects or owned by one of them, directly or not.
bool ownAny(std::vector<RefT<Object>> const &objs, Object const *sought)
{
    std::unordered_set<Object const *> seen;
    std::vector<Object *> open;
    const auto enter = [&](Object *object) {
        if (object && seen.insert(object).second)
            open.push_back(object);
    };
    for (RefT<Object> const &object : objs)
        enter(object.get());
    while (!open.empty() && seen.count(sought) == 0) {
        Object &object = *open.back();
        open.pop_back();
        for (std::size_t i = 0; i < object.getNumFields(); ++i) {
            Field &field = *object.getField(i);
            if (isOwningLinkType(field.getType()))
                forEachLink(field, [&](RefT<Object> const &owned) { enter(owned.get()); });
        }
    }
    return seen.count(sought) != 0;
}

template <class ListField>
bool canMoveTo(std::vector<RefT<Object>> const &objs, ListField &field, std::size_t index)
{
    if (field.owner && ownAny(objs, field.owner))
        return false;
    return field.canReplace(index, 0, typename ListField::Values(objs.begin(), objs.end()));
}

} // namespace

bool canMove(std::vector<RefT<Object>> const &objs, MFieldRef &field, std::size_t index)
{
    return canMoveTo(objs, field, index);
}

bool canMove(std::vector<RefT<Object>> const &objs, MFieldPtr &field, std::size_t index)
{
    return canMoveTo(objs, field, index);
}

} // namespace ZR::VOM
