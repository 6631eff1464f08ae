#include "zrVOMGUI/foundation/vom/ClassFieldsMap.h"

namespace ZR::VOM {

bool ClassFieldsMap::add(std::string const &className, std::string const &fieldName)
{
    return fieldNames[className].insert(fieldName).second;
}

bool ClassFieldsMap::remove(std::string const &className, std::string const &fieldName)
{
    const auto names = fieldNames.find(className);
    if (names == fieldNames.end() || names->second.erase(fieldName) == 0)
        return false;
    if (names->second.empty())
        fieldNames.erase(names);
    return true;
}

void ClassFieldsMap::clear()
{
    fieldNames.clear();
}

bool ClassFieldsMap::empty() const
{
    return fieldNames.empty();
}

bool ClassFieldsMap::matches(Field &field) const
{
    if (field.owner)
        for (ClassInfo const *info = &field.owner->getClassInfo(); info; info = info->base)
            if (holds(info->name, field.name))
                return true;
    return holds({}, field.name);
}

bool ClassFieldsMap::holds(std::string const &className, std::string const &fieldName) const
{
    const auto names = fieldNames.find(className);
    return names != fieldNames.end() && names->second.count(fieldName) != 0;
}

} // namespace ZR::VOM
