#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/vom/Object.h"

#include <vector>

namespace ZR::VOM {

/// The root of the XML that objects travel as: an object with one list of owning links, "objects".
///
/// An importer that makes objects by class name needs this class by the name "Clipboard" only if it
/// makes the root itself. clone() answers a plain Object with the same list.
class ZRVOMGUI_EXPORT Clipboard : public Object {
public:
    static ClassInfo const classInfo;
    static constexpr char FieldObjects[] = "objects";

    Clipboard();
    explicit Clipboard(std::vector<RefT<Object>> const &objects);
    /// Shares the objects of `other`.
    Clipboard(Clipboard const &other);
    ~Clipboard() override;

    ClassInfo const &getClassInfo() const override;

    /// The values of the field; nothing if somebody removed it.
    std::vector<RefT<Object>> getObjects() const;
};

} // namespace ZR::VOM
