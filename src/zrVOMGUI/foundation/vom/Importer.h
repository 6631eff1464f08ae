#pragma once

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/util/Log.h"
#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>

namespace ZR::VOM {

/// Reads objects back from what an exporter wrote.
class ZRVOM_EXPORT Importer : public Class {
public:
    class Context;

    ~Importer() override;
    /// The work of reading one text into `target`, whose owning links take up what is read.
    /// `target` is on the stack or in the hands of the caller, and outlives the context.
    virtual RefT<Context> createContext(RefT<Object> const &target) = 0;
};

/// One run of an Importer.
class ZRVOM_EXPORT Importer::Context : public Class {
public:
    ~Context() override;
    /// Reads `size` bytes; `title` is what reports call them. Errors go to `errors`; after any, the
    /// target object is as it was.
    virtual void import_(char const *data, int size, std::string const &title, ErrorManager &errors,
                         Progress &progress) = 0;
};

namespace Xml {

/// An importer of XML text. Held as RefT; the host gives one to the widgets.
class ZRVOM_EXPORT Importer : public VOM::Importer {
public:
    ~Importer() override;
};

} // namespace Xml

} // namespace ZR::VOM
