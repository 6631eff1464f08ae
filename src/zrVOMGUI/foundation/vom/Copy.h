#pragma once

#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <unordered_map>
#include <vector>

namespace ZR::VOM::Copy {

/// A deep copier that keeps the identity of shared objects inside one run.
///
/// Copies along owning links. Watching links inside the copied set point at the copies, others at
/// the originals. An object that isSharable() is shared and not copied. Cycles of owning links are
/// copied as they are.
class ZRVOM_EXPORT Context {
public:
    Context();
    ~Context();
    Context(Context const &) = delete;
    Context &operator=(Context const &) = delete;

    /// Deep copies in the order of `objs`; null for null. An object that this context has copied
    /// before gives the same copy. An exception from a clone() passes on; what the call copied
    /// until then is forgotten. An object whose clone() is null copies as null.
    std::vector<RefT<Object>> copy(std::vector<RefT<Object>> const &objs);

private:
    struct Entry {
        RefT<Object> original; // Null once an object that no reference owns is gone.
        RefT<Object> copy;     // The original itself if that is sharable.
    };
    class Run;

    ZR_LOCAL Entry const *find(Object const *original) const;
    ZR_LOCAL void redirectLinks(Object &copy) const;

    std::unordered_map<Object const *, Entry> entries; // By original.
};

} // namespace ZR::VOM::Copy
