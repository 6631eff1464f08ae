#pragma once

#include "zrVOMGUI/foundation/vom/private/Reports.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace ZR::VOM::Xml {

/// What a link leads to: an id in the document as it was read, and a position in it once links are
/// resolved.
using Link = std::uint64_t;
constexpr Link noLink = std::numeric_limits<Link>::max();
using Links = std::vector<Link>; ///< One entry for a single link, null or not.

struct FieldRecord {
    Place place;
    int type = 0;
    unsigned flags = 0;
    std::string name;
    std::variant<int, double, std::string, Links> value;
};

struct ObjectRecord {
    Place place;
    std::uint64_t id = 0;
    unsigned flags = 0;
    std::string className;
    std::vector<FieldRecord> fields;
};

/// What a document says, before any object is made of it. The first object is the root.
class Document {
public:
    std::vector<ObjectRecord> objects;

    /// Lets links name positions. Reports ids that are used twice, ids that no object has, and
    /// objects that the root doesn't own, directly or not: they would die, or worse, circles of
    /// them would never die, and nobody could reach them.
    void resolveLinks(Reports &reports);

private:
    void reportOrphans(Reports &reports) const;
};

} // namespace ZR::VOM::Xml
