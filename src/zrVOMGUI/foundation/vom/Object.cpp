#include "zrVOMGUI/foundation/vom/Object.h"

#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/LostWatch.h"
#include "zrVOMGUI/foundation/vom/MField.h"

#include <algorithm>

namespace ZR::VOM {

ClassInfo const Object::classInfo = {nullptr, "ZR::VOM::Object"};

bool ClassInfo::isType(std::string const &typeName) const
{
    for (ClassInfo const *info = this; info; info = info->base)
        if (typeName == info->name)
            return true;
    return false;
}

Object::Object(unsigned initialFlags) : Flags(initialFlags) {}

Object::Object(Object const &other) : Class(other), Flags(other)
{
    fields.reserve(other.fields.size());
    for (RefT<Field> const &field : other.fields)
        field->clone(*this);
}

Object::~Object()
{
    announceDelete();
    for (RefT<Field> const &field : fields)
        field->owner = nullptr;
    forgetWatchers();
    announceLost();
}

ClassInfo const &Object::getClassInfo() const
{
    return classInfo;
}

RefT<Object> Object::clone()
{
    return new Object(*this);
}

std::size_t Object::findFieldIndex(std::string const &name) const
{
    const auto field = std::find_if(fields.begin(), fields.end(),
                                    [&](RefT<Field> const &f) { return f->name == name; });
    return static_cast<std::size_t>(field - fields.begin());
}

bool Object::isSharable() const
{
    return false;
}

PtrT<Field> Object::findField(std::string const &name) const
{
    const std::size_t index = findFieldIndex(name);
    return index < getNumFields() ? PtrT<Field>(fields[index]) : PtrT<Field>();
}

void Object::addField(Field &field)
{
    // Objects have few fields and there are many objects: no spare places at first.
    constexpr std::size_t fewFields = 8;
    if (fields.size() < fewFields)
        fields.reserve(fields.size() + 1);
    fields.emplace_back(field);
    SigAddFieldData data;
    data.index = fields.size() - 1;
    sigAddField.emit(data);
}

void Object::announceLost() noexcept
{
    // All links leave the list before anyone hears of it: a listener may drop further links.
    std::vector<RefT<Field>> losers;
    while (LostWatch *const watch = lostWatches) {
        if (losers.empty() || losers.back().get() != watch->field)
            losers.emplace_back(*watch->field);
        watch->leave();
    }
    std::sort(losers.begin(), losers.end());
    losers.erase(std::unique(losers.begin(), losers.end()), losers.end());
    for (RefT<Field> const &field : losers) {
        constexpr char where[] = "ZR::VOM::Object::sigLost";
        if (field->getType() == 5) {
            SigVoidData data;
            static_cast<FieldPtr &>(*field).sigLost.emitCatching(data, where);
        } else {
            MFieldPtr::SigLostData data;
            static_cast<MFieldPtr &>(*field).sigLost.emitCatching(data, where);
        }
    }
}

bool removeField(Object &object, Field &field)
{
    const RefT<Field> removed(field);
    const auto isRemoved = [&](RefT<Field> const &f) { return f == removed; };
    if (std::none_of(object.fields.begin(), object.fields.end(), isRemoved))
        return false;
    const PtrT<Object> watched(object);
    SigRemoveFieldData data;
    data.field = &removed;
    object.sigRemoveField.emit(data);
    // A listener may have removed the field, or the object.
    if (!watched)
        return true;
    const auto place = std::find_if(object.fields.begin(), object.fields.end(), isRemoved);
    if (place != object.fields.end()) {
        field.owner = nullptr;
        object.fields.erase(place);
    }
    return true;
}

} // namespace ZR::VOM
