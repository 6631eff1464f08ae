#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Ptr.h"

#include <cstddef>
#include <vector>

namespace ZR::VOM::GUI {

/// The fields of a list of objects, and whether their values agree.
///
/// A slot for each object, in the order of the list; empty where the object has no such field. All
/// are compared to the first one that is there, so that what changes elsewhere costs one
/// comparison, whatever the number of slots, and only a change of the first costs a look at all.
template <class F>
class ZRVOMGUI_EXPORT FieldTallyT {
public:
    using Value = typename F::Value;

    std::size_t getNumSlots() const { return fields.size(); }
    /// That many slots, all empty.
    void reset(std::size_t numSlots)
    {
        fields.clear();
        fields.resize(numSlots);
        differs.assign(numSlots, false);
        isStale = true;
    }

    /// Null for an empty slot, and once the field is gone.
    F *get(std::size_t i) const { return fields[i].get(); }
    /// Into an empty slot.
    void fill(std::size_t i, F &field)
    {
        fields[i] = field;
        if (isStale || count == 0 || i < first) {
            isStale = true;
            return;
        }
        ++count;
        compare(i);
    }
    void empty(std::size_t i)
    {
        fields[i].reset();
        if (isStale || i == first) {
            isStale = true;
            return;
        }
        --count;
        numDiffering -= differs[i];
        differs[i] = false;
    }
    /// The value of a filled slot has changed.
    void noteValue(std::size_t i)
    {
        if (i == first)
            isStale = true;
        if (!isStale)
            compare(i);
    }

    /// Looks at all values, also at those of fields whose change wasn't noted.
    void recount()
    {
        count = 0;
        numDiffering = 0;
        first = fields.size();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            differs[i] = false;
            F const *const field = fields[i].get();
            if (!field)
                continue;
            if (++count == 1) {
                first = i;
                value = field->get();
            } else {
                compare(i);
            }
        }
        if (count == 0)
            value = Value{};
        isStale = false;
    }

    void refresh()
    {
        if (isStale)
            recount();
    }

    /// \name What the last recount() found, with what was noted since
    /// Only while nothing is stale, see refresh().
    /// @{

    std::size_t getCount() const { return count; }
    /// Not all values agree.
    /// KEPT: one that doesn't equal itself, such as NaN, agrees with none. So an empty line warns
    /// the user of it wherever there is more than one.
    bool isMixed() const { return numDiffering != 0; }
    /// The first value; that of a new number where there is none.
    Value const &getValue() const { return value; }
    /// @}

private:
    void compare(std::size_t i)
    {
        const bool differing = !(fields[i]->get() == value);
        numDiffering += differing;
        numDiffering -= differs[i];
        differs[i] = differing;
    }

    std::vector<PtrT<F>> fields;
    std::vector<unsigned char> differs; // From the first value.
    std::size_t count = 0;              // Of filled slots.
    std::size_t numDiffering = 0;
    std::size_t first = 0; // The first filled slot; the number of slots when there is none.
    Value value{};         // Of that.
    bool isStale = true;
};

} // namespace ZR::VOM::GUI
