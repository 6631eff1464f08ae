#pragma once

// Model classes for tests of views.

#include "zrVOMGUI/foundation/vom/MField.h"

#include <string>
#include <utility>
#include <vector>

/// A class of the model, and the base of Special.
class Thing : public ZR::VOM::Object {
public:
    ZR::VOM::ClassInfo const &getClassInfo() const override { return info; }
    inline static ZR::VOM::ClassInfo const info = {&ZR::VOM::Object::classInfo, "Thing"};
};

class Special : public Thing {
public:
    ZR::VOM::ClassInfo const &getClassInfo() const override { return info; }
    inline static ZR::VOM::ClassInfo const info = {&Thing::info, "Special"};
};

/// Not related to Thing.
class Stranger : public ZR::VOM::Object {
public:
    ZR::VOM::ClassInfo const &getClassInfo() const override { return info; }
    inline static ZR::VOM::ClassInfo const info = {&ZR::VOM::Object::classInfo, "Stranger"};
};

using Things = std::vector<ZR::RefT<ZR::VOM::Object>>;

/// An object with a string field "name".
template <class Class = Thing>
ZR::RefT<ZR::VOM::Object> makeThing(std::string const &name)
{
    ZR::RefT<ZR::VOM::Object> thing(new Class);
    ZR::VOM::addField<ZR::VOM::FieldString>(*thing, "name", name);
    return thing;
}

/// One for each letter, named by it.
inline Things makeThings(std::string const &letters)
{
    Things things;
    for (char letter : letters)
        things.push_back(makeThing(std::string(1, letter)));
    return things;
}

/// The first field of that name, which must be of the type.
template <class FieldType>
FieldType &fieldOf(ZR::RefT<ZR::VOM::Object> const &object, std::string const &name)
{
    return dynamic_cast<FieldType &>(*object->findField(name));
}

/// Sets a field of one link, which is added if the object has none of that name.
template <class FieldType = ZR::VOM::FieldPtr>
FieldType &setLink(ZR::RefT<ZR::VOM::Object> const &from, char const *name,
                   ZR::RefT<ZR::VOM::Object> const &to)
{
    if (!from->findField(name))
        ZR::VOM::addField<FieldType>(*from, name);
    FieldType &field = fieldOf<FieldType>(from, name);
    field.set(to);
    return field;
}

/// The same with a list of links, whose values are replaced.
template <class FieldType = ZR::VOM::MFieldPtr>
FieldType &setLinks(ZR::RefT<ZR::VOM::Object> const &from, char const *name, Things const &to)
{
    if (!from->findField(name))
        ZR::VOM::addField<FieldType>(*from, name);
    FieldType &field = fieldOf<FieldType>(from, name);
    field.replace(0, field.getNum(), typename FieldType::Values(to.begin(), to.end()));
    return field;
}
