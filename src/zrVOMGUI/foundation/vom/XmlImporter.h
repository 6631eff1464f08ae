#pragma once

#include "zrVOMGUI/foundation/vom/ClassRegistry.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>

namespace ZR::VOM {

/// Reads what XmlExporter wrote.
///
///     const RefT<ClassRegistry> registry(new ClassRegistry);
///     registry->add<Package>();                            // All fields made by its constructor.
///     registry->add<Object>(ClassRegistry::Fields::Open);  // Fields added by addField().
///     const RefT<Object> copy = fromXml(toXml(house, errors), registry, errors);
///
/// The target takes the place of the document's first object, whose class must be the target's. Its
/// fields of the names in the document get the values there; its other fields stay. The registry
/// needs to know the target's class only if that may get further fields.
///
/// Whatever is wrong is reported with its line and column, both counted from 1: malformed XML, a
/// document type, an unknown class, a field that a class hasn't or has of another type, a value
/// that is none, an id that is missing or used twice, an object that nobody owns, a refusal by a
/// listener. Nothing of such a document remains, and the target is as it was.
class ZRVOM_EXPORT XmlImporter : public Xml::Importer {
public:
    /// The classes that documents may name; may be filled later. Without one none is known.
    explicit XmlImporter(RefT<ClassRegistry> const &classRegistry);
    ~XmlImporter() override;
    RefT<Context> createContext(RefT<Object> const &target) override;

private:
    RefT<ClassRegistry> registry;
};

/// Reads a document of toXml() into a new object of the class that it names. Null after an error,
/// which goes to `errors`.
ZRVOM_EXPORT RefT<Object> fromXml(std::string const &text, RefT<ClassRegistry> const &registry,
                                  ErrorManager &errors);

} // namespace ZR::VOM
