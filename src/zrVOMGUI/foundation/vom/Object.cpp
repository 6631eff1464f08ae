#include "zrVOMGUI/foundation/vom/Object.h"

#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/LostWatch.h"
#include "zrVOMGUI/foundation/vom/MField.h"

#include <algorithm>
#include <unordered_set>

namespace ZR::VOM {

ClassInfo const Object::classInfo = {nullptr, "ZR::VOM::Object"};

bool ClassInfo::isType(std::string const &typeName) const
{
    for (ClassInfo const *info = this; info; info = info->base)
        if (typeName == info->name)
            return true;
    return false;
}

Object::Object(unsigned initialFlags)
    : Flags(initialFlags)
{
}

Object::Object(Object const &other)
    : Class(other)
    , Flags(other)
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

void Object::enterField(Field &field)
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
    // All links leave the list before anyone hears of it: a listener may drop further links. A list
    // that holds the object more than once hears it once.
    std::vector<PtrT<Field>> losers;
    std::unordered_set<Field const *> seen;
    while (LostWatch *const watch = lostWatches) {
        if (seen.insert(watch->field).second)
            losers.emplace_back(*watch->field);
        watch->leave();
    }
    // The head of the list is the youngest link; the eldest hears it first.
    std::reverse(losers.begin(), losers.end());
    for (PtrT<Field> const &field : losers) {
        constexpr char where[] = "ZR::VOM::Object::sigLost";
        // It is null, and neither, if a listener has removed it.
        if (auto *const list = cast<MFieldBaseT<MFieldPtr::Traits>>(field)) {
            MFieldPtr::SigLostData data;
            list->sigLost.emitCatching(data, where);
        } else if (auto *const single = cast<FieldBaseT<FieldPtr::Traits>>(field)) {
            SigVoidData data;
            single->sigLost.emitCatching(data, where);
        }
    }
}

bool removeField(Object &object, Field &field)
{
    const auto isField = [&](RefT<Field> const &f) { return f.get() == &field; };
    if (std::none_of(object.fields.begin(), object.fields.end(), isField))
        return false;
    const RefT<Field> removed(field);
    const PtrT<Object> watched(object);
    SigRemoveFieldData data;
    data.field = &removed;
    object.sigRemoveField.emit(data);
    // A listener may have removed the field, or the object.
    if (!watched)
        return true;
    const auto place = std::find_if(object.fields.begin(), object.fields.end(), isField);
    if (place != object.fields.end()) {
        field.owner = nullptr;
        object.fields.erase(place);
    }
    return true;
}

} // namespace ZR::VOM
