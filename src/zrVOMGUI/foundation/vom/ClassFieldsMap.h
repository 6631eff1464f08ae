#pragma once

#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <map>
#include <set>
#include <string>

namespace ZR::VOM {

/// A set of (class name, field name) pairs, used as a filter of fields.
class ZRVOM_EXPORT ClassFieldsMap {
public:
    /// Both answer whether the map changed.
    bool add(std::string const &className, std::string const &fieldName);
    bool remove(std::string const &className, std::string const &fieldName);
    void clear();
    bool empty() const;
    /// Whether the class of the field's owner, or a base of it, or the empty class name, holds the
    /// field's name. A field without an owner matches by the empty class name alone.
    bool matches(Field &field) const;

private:
    ZR_LOCAL bool holds(std::string const &className, std::string const &fieldName) const;

    std::map<std::string, std::set<std::string>> fieldNames; // By class name; none is empty.
};

} // namespace ZR::VOM
