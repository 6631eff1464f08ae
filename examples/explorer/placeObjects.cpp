#include "placeObjects.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <algorithm>
#include <type_traits>

namespace Explorer {

using ZR::cast;
using ZR::RefT;
using ZR::VOM::Field;
using ZR::VOM::MField;
using ZR::VOM::MFieldRef;
using ZR::VOM::Object;

namespace {

bool holds(Objects const &objects, Object const *object)
{
    return std::any_of(objects.begin(), objects.end(),
                       [&](RefT<Object> const &other) { return other.get() == object; });
}

/// The order of the list with the objects moved before a position, as one change.
template <class List>
void reorder(List &list, std::size_t index, Objects const &objects)
{
    typename List::Values values, behind;
    for (std::size_t i = 0; i < list.getNum(); ++i)
        if (!holds(objects, list.get(i).get()))
            (i < index ? values : behind).push_back(list.get(i));
    values.insert(values.end(), objects.begin(), objects.end());
    values.insert(values.end(), behind.begin(), behind.end());
    list.replace(0, list.getNum(), std::move(values));
}

template <class List>
bool holdsAny(List const &list, Objects const &objects)
{
    return std::any_of(list.getAll().begin(), list.getAll().end(),
                       [&](auto const &value) { return holds(objects, value.get()); });
}

/// Takes objects out of the sections that own them, but for one list.
void takeFromSections(PackageModel const &model, Objects const &objects, Field const &but)
{
    for (RefT<Section> const &section : model.getSections()) {
        auto *const list = cast<MFieldRef>(section->findField("packages"));
        if (!list || list == &but || !holdsAny(*list, objects))
            continue;
        Objects left;
        for (RefT<Object> const &value : list->getAll())
            if (!holds(objects, value.get()))
                left.push_back(value);
        list->replace(0, list->getNum(), left);
    }
}

} // namespace

void placeObjects(Field &field, std::size_t index, Objects const &objects)
{
    ZR::VOM::visitLinkField(field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>)
            links.replace(std::min(index, links.getNum()), 0, {objects.begin(), objects.end()});
        else if (!objects.empty())
            links.set(objects.front());
    });
}

void moveObjects(PackageModel const &model, Field &field, std::size_t index, Objects const &objects)
{
    bool owns = false;
    ZR::VOM::visitLinkField(field, [&](auto &links) {
        using Links = std::decay_t<decltype(links)>;
        owns = std::is_same_v<typename Links::Value, RefT<Object>>;
        if constexpr (std::is_base_of_v<MField, Links>) {
            if (holdsAny(links, objects))
                reorder(links, index, objects);
            else
                placeObjects(links, index, objects);
        } else {
            placeObjects(links, index, objects);
        }
    });
    // Last, so that what the model refuses to take stays where it was.
    if (owns)
        takeFromSections(model, objects, field);
}

} // namespace Explorer
