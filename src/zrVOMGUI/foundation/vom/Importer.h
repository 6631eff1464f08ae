#pragma once

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/util/Log.h"
#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>

namespace ZR::VOM {

namespace Importer {

/// One run of reading text into an object.
class ZRVOM_EXPORT Context : public Class {
public:
    ~Context() override;
    /// Reads `size` bytes. Errors go to `errors`; after any, the target object is as it was.
    virtual void import_(char const *data, int size, std::string const &title, ErrorManager &errors,
                         Progress &progress)
        = 0;
};

} // namespace Importer

namespace Xml {

/// Reads objects back from XML text. Held as RefT; the host gives one to the widgets.
class ZRVOM_EXPORT Importer : public Class {
public:
    ~Importer() override;
    /// The work of reading one text into `target`.
    virtual RefT<VOM::Importer::Context> createContext(RefT<Object> const &target) = 0;
};

} // namespace Xml

} // namespace ZR::VOM
