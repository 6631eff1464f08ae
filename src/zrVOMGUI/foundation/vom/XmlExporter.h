#pragma once

#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>

namespace ZR::VOM {

/// Writes an object, and what it owns directly or not, as an XML document in UTF-8.
///
/// Each object is written once, however many own it, and owners may form circles. Values survive
/// bit for bit. A watching link to an object that isn't in the document is written as nothing; in a
/// list it stays as an entry that reads null, so that the others keep their positions. A field that
/// is none of the seven kinds is left out.
class ZRVOM_EXPORT XmlExporter : public Exporter {
public:
    ~XmlExporter() override;
    /// The context reports an error, and leaves `out` as it was, for a null or dead object, a
    /// string of more than 512 MiB, and when `progress` ends the work.
    RefT<Context> createContext(RefT<Object> const &object) override;
};

/// The document of one object. Empty after an error, which goes to `errors`.
ZRVOM_EXPORT std::string toXml(RefT<Object> const &object, ErrorManager &errors);

} // namespace ZR::VOM
