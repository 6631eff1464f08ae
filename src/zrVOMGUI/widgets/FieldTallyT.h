#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Ptr.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace ZR::VOM::GUI {

/// The fields of a list of objects, and whether their values agree.
///
/// A slot for each object, in the order of the list; empty where the object has no such field.
/// Slots whose values differ stand in pairs, as many as can be, so that those that are left without
/// a mate agree: all agree when there is no pair. A change concerns its slot, the mate of that and
/// one of those without, so that it costs a few comparisons, whatever the number of slots
/// and whatever changed before.
template <class F>
class ZRVOMGUI_EXPORT FieldTallyT {
public:
    using Value = typename F::Value;

    std::size_t getNumSlots() const { return entries.size(); }
    /// That many slots, all empty.
    void reset(std::size_t numSlots)
    {
        entries.clear();
        entries.resize(numSlots);
        recount();
    }

    /// Null for an empty slot.
    F *get(std::size_t i) const { return entries[i].field.get(); }
    /// Into an empty slot, which is to be emptied before the field is gone.
    void fill(std::size_t i, F &field)
    {
        entries[i].field = field;
        if (++count == 1 || i < first)
            first = i;
        place(i);
    }
    /// A filled one.
    void empty(std::size_t i)
    {
        const std::size_t mate = entries[i].mate;
        if (mate == none)
            takeFromSingles(i);
        else
            part(i, mate);
        entries[i].field.reset();
        --count;
        if (mate != none)
            place(mate);
        if (i == first)
            first = findFilled(i);
    }
    /// The value of a filled slot has changed.
    void noteValue(std::size_t i)
    {
        const std::size_t mate = entries[i].mate;
        if (mate == none ? agrees(i) : differ(i, mate))
            return;
        if (mate == none) {
            takeFromSingles(i);
        } else {
            part(i, mate);
            place(mate);
        }
        place(i);
    }

    /// Looks at all slots, also at those whose change wasn't noted.
    void recount()
    {
        count = numPairs = 0;
        singles.clear();
        first = findFilled(0);
        for (std::size_t i = first; i < entries.size(); ++i) {
            entries[i].mate = none;
            if (entries[i].field) {
                ++count;
                place(i);
            }
        }
    }

    /// The number of filled slots.
    std::size_t getCount() const { return count; }
    /// Not all values agree.
    /// KEPT: one that doesn't equal itself, such as NaN, agrees with none. So an empty line warns
    /// the user of it wherever there is more than one.
    bool isMixed() const { return numPairs != 0; }
    /// The first value; that of a new number where there is none.
    Value getValue() const
    {
        F const *const field = first < entries.size() ? entries[first].field.get() : nullptr;
        return field ? field->get() : Value{};
    }

private:
    static constexpr auto none = std::numeric_limits<std::size_t>::max();

    struct Slot {
        PtrT<F> field;
        std::size_t mate = none;  // A slot of another value.
        std::size_t position = 0; // Among those without a mate.
    };

    /// The first filled slot that isn't before `i`, or the number of slots.
    std::size_t findFilled(std::size_t i) const
    {
        while (i < entries.size() && !entries[i].field)
            ++i;
        return i;
    }

    bool differ(std::size_t i, std::size_t k) const
    {
        F const *const a = entries[i].field.get();
        F const *const b = entries[k].field.get();
        return !a || !b || !(a->get() == b->get());
    }

    bool agrees(std::size_t i) const
    {
        F const *const field = entries[i].field.get();
        return field && field->get() == agreed;
    }

    /// Finds a mate for a filled slot, or puts it to those that agree.
    void place(std::size_t i)
    {
        std::vector<std::size_t> changed; // Of which that isn't noted yet.
        for (;;) {
            if (singles.empty())
                agreed = entries[i].field->get();
            if (singles.empty() || agrees(i)) {
                entries[i].position = singles.size();
                singles.push_back(i);
            } else {
                const std::size_t mate = singles.back();
                singles.pop_back();
                if (!differ(i, mate)) {
                    changed.push_back(mate);
                    continue;
                }
                entries[i].mate = mate;
                entries[mate].mate = i;
                ++numPairs;
            }
            if (changed.empty())
                return;
            i = changed.back();
            changed.pop_back();
        }
    }

    void part(std::size_t i, std::size_t mate)
    {
        entries[i].mate = entries[mate].mate = none;
        --numPairs;
    }

    void takeFromSingles(std::size_t i)
    {
        const std::size_t position = entries[i].position;
        singles[position] = singles.back();
        entries[singles[position]].position = position;
        singles.pop_back();
    }

    std::vector<Slot> entries;
    std::vector<std::size_t> singles; // Filled slots without a mate, which agree.
    Value agreed{};                   // On this. Theirs may have changed and be noted next.
    std::size_t numPairs = 0;
    std::size_t count = 0; // Of filled slots.
    std::size_t first = 0; // The first filled slot; the number of slots when there is none.
};

} // namespace ZR::VOM::GUI
