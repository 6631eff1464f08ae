#pragma once

#include "zrVOMGUI/foundation/util/export.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <memory>
#include <utility>
#include <vector>

namespace ZR::VOM {

class Field;
class Object;

/// A watching link's place in the list of those who must hear that the linked object is gone.
///
/// An intrusive list, so that a link costs three pointers and no allocation of its own. GUI thread.
class ZRVOM_EXPORT LostWatch {
public:
    /// Watches nothing when `target` is null.
    LostWatch(Object *target, Field &watchingField);
    LostWatch(LostWatch &&other) noexcept;
    LostWatch &operator=(LostWatch &&other) noexcept;
    ~LostWatch() { leave(); }

private:
    friend class Object;

    void leave() noexcept;
    ZR_LOCAL void takePlaceOf(LostWatch &other) noexcept;

    LostWatch *next = nullptr;
    LostWatch **link = nullptr; // The pointer that points here; null when no object is watched.
    Field *field;               // Not owned.
};

/// The watch of a field with one link; takes memory only while it watches.
class SingleLostWatch {
public:
    void watch(Object *target, Field &field)
    {
        watching.reset();
        if (target)
            watching = std::make_unique<LostWatch>(target, field);
    }

private:
    std::unique_ptr<LostWatch> watching;
};

} // namespace ZR::VOM
