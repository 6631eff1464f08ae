#pragma once

#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <map>
#include <vector>

namespace ZR::VOM::Copy {

/// A deep copier that keeps the identity of shared objects inside one run.
///
/// Copies along owning links. Watching links inside the copied set point at the copies, others at the
/// originals. An object that isSharable() is shared and not copied. Cycles of owning links are copied
/// as they are.
class ZRVOM_EXPORT Context {
public:
    Context();
    ~Context();
    Context(Context const &) = delete;
    Context &operator=(Context const &) = delete;

    /// Deep copies in the order of `objs`; null for null. An object copied before, by this context,
    /// gives the same copy.
    std::vector<RefT<Object>> copy(std::vector<RefT<Object>> const &objs);

private:
    RefT<Object> enter(RefT<Object> const &original, std::vector<RefT<Object>> &fresh);
    void redirectLinks(Object &copy) const;

    std::map<RefT<Object>, RefT<Object>> copies; // By original; sharable objects are their own.
};

} // namespace ZR::VOM::Copy
