#include "zrVOMGUI/presentation/ObjectIconDB.h"

namespace ZR::VOM::GUI {

/// A question on its way down the chain, kept by each database that has passed it on.
///
/// By object and not by a plain flag: a rule at the end of a sound chain may ask the chain's head
/// again for another object, such as the owner of the first.
struct ObjectIconDB::Walk {
    Walk(ObjectIconDB const &asked, Class const *object)
        : db(asked)
        , obj(object)
        , outer(std::exchange(asked.walks, this))
    {
    }
    ~Walk() { db.walks = outer; }
    Walk(Walk const &) = delete;
    Walk &operator=(Walk const &) = delete;

    ObjectIconDB const &db;
    Class const *const obj; // Null for an empty reference. Not owned.
    Walk const *const outer;
};

ObjectIconDB::~ObjectIconDB() = default;

QIcon ObjectIconDB::find(RefT<Object> const &obj) const
{
    if (!next)
        return {};
    for (Walk const *walk = walks; walk; walk = walk->outer)
        if (walk->obj == obj.get())
            return {};
    const Walk walk(*this, obj.get());
    return next->find(obj);
}

ObjectClassIconDB::~ObjectClassIconDB() = default;

QIcon ObjectClassIconDB::find(RefT<Object> const &obj) const
{
    if (obj) {
        const QIcon icon = find(obj->getClassInfo(), true);
        if (!icon.isNull())
            return icon;
    }
    return ObjectIconDB::find(obj);
}

QIcon ObjectClassIconDB::find(ClassInfo const &info, bool useBases) const
{
    for (ClassInfo const *level = &info; level; level = useBases ? level->base : nullptr) {
        const auto entry = icons.find(level->name);
        if (entry != icons.end())
            return entry->second;
    }
    return {};
}

void ObjectClassIconDB::add(std::string const &className, QIcon icon)
{
    icons[className] = std::move(icon);
}

template class ObjectFieldIconDBT<FieldInt>;

ObjectFieldIntIconDB::ObjectFieldIntIconDB(Icons const &icons)
    : ObjectFieldIconDBT(icons)
{
}

ObjectFieldIntIconDB::~ObjectFieldIntIconDB() = default;

QIcon ObjectFieldIntIconDB::find(RefT<Object> const &obj) const
{
    if (const RefT<FieldInt> field = findField(obj)) {
        // KEPT: the table is looked up once, with the masked value. An entry with bits outside the
        // mask is never met, so a host that shows some bits of a word may use one table for all of
        // them and choose by the mask.
        const QIcon icon = find(mask & field->get());
        if (!icon.isNull())
            return icon;
    }
    return ObjectIconDB::find(obj);
}

} // namespace ZR::VOM::GUI
