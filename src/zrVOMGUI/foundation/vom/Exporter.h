#pragma once

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/util/Log.h"
#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>

namespace ZR::VOM {

/// Writes objects to XML text. Held as RefT; the host gives one to the widgets.
class ZRVOM_EXPORT Exporter : public Class {
public:
    class Context;

    ~Exporter() override;
    /// The work of writing one object and what it owns. `object` is on the stack or in the hands of
    /// the caller, and outlives the context.
    virtual RefT<Context> createContext(RefT<Object> const &object) = 0;
};

/// One run of an Exporter.
class ZRVOM_EXPORT Exporter::Context : public Class {
public:
    ~Context() override;
    /// Appends the text to `out`; `title` is what reports call it. Errors go to `errors`; after
    /// any, `out` isn't to be used.
    virtual void export_(std::string &out, std::string const &title, ErrorManager &errors,
                         Progress &progress) = 0;
};

} // namespace ZR::VOM
