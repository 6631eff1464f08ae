#pragma once

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace ZR::VOM {

/// The classes that an importer may make, by name, and how. Empty at first; the host fills it.
class ZRVOM_EXPORT ClassRegistry : public Class {
public:
    /// Makes a new object on each call. What it raises, and null, counts as a failure.
    using Factory = std::function<RefT<Object>()>;

    /// What an importer does with a field that a document has and a new object hasn't.
    enum class Fields {
        Fixed, ///< It is an error.
        Open,  ///< It is added, for classes whose objects get fields with addField().
    };

    ~ClassRegistry() override;

    /// Registers a class under a name. False, and nothing changes, when the name is taken or the
    /// factory is empty.
    bool add(std::string const &className, Factory factory, Fields fields = Fields::Fixed);
    /// Registers a class with a default constructor under the name in its ClassInfo.
    template <class T>
    bool add(Fields fields = Fields::Fixed)
    {
        const Factory factory = [] { return RefT<Object>(new T); };
        return add(factory()->getClassInfo().name, factory, fields);
    }
    /// False when there is no class of that name.
    bool remove(std::string const &className);

    bool isKnown(std::string const &className) const;
    /// Whether an importer may add fields; false for an unknown class.
    bool isOpen(std::string const &className) const;
    /// A new object. Null for an unknown class; an exception from the factory passes on.
    RefT<Object> create(std::string const &className) const;

private:
    std::map<std::string, std::pair<Factory, Fields>> classes;
};

} // namespace ZR::VOM
