#pragma once

// What the tests of labels and lists share: a model class with a name.

#include "zrVOMGUI/foundation/vom/Field.h"

#include <sstream>
#include <string>

using namespace ZR;
using VOM::ClassInfo;
using VOM::FieldString;
using Model = VOM::Object;

class House : public Model {
public:
    ClassInfo const &getClassInfo() const override { return info; }
    std::size_t findFieldIndex(std::string const &name) const override
    {
        ++numLookUps;
        return Model::findFieldIndex(name);
    }
    static ClassInfo const info;
    mutable int numLookUps = 0;
};
inline ClassInfo const House::info = {&Model::classInfo, "Estate::House"};

inline RefT<Model> named(std::string const &name)
{
    RefT<Model> object(new House);
    VOM::addField<FieldString>(*object, "name", name);
    return object;
}

inline std::string streamed(RefT<Model> const &object)
{
    std::ostringstream stream;
    stream << static_cast<void const *>(object.get());
    return stream.str();
}
