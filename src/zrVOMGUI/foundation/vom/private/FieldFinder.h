#pragma once

#include "zrVOMGUI/foundation/vom/Field.h"

#include <cstddef>
#include <map>
#include <string>

namespace ZR::VOM::Xml {

/// Finds the fields of one object by name, each once: of several fields of a name first the first.
/// Takes no longer than it must where fields are asked for in the object's order.
class FieldFinder {
public:
    explicit FieldFinder(Object &searched)
        : object(searched)
    {
    }

    /// Null when no field of that name is left.
    RefT<Field> take(std::string const &name)
    {
        if (rest.empty() && next < object.getNumFields() && object.getField(next)->name == name)
            return object.getField(next++);
        while (next < object.getNumFields()) {
            RefT<Field> const &field = object.getField(next++);
            rest.emplace(field->name, field);
        }
        const auto found = rest.lower_bound(name);
        if (found == rest.end() || found->first != name)
            return {};
        return rest.extract(found).mapped();
    }

private:
    Object &object;
    std::size_t next = 0;                         // The first field not yet looked at.
    std::multimap<std::string, RefT<Field>> rest; // Passed over; equal names in the object's order.
};

} // namespace ZR::VOM::Xml
