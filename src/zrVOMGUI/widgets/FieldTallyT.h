#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Ptr.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI {

/// The fields of a list of objects, and whether their values agree.
///
/// A slot for each object, in the order of the list; empty where the object has no such field. All
/// are compared to the first one that is there. While they don't agree, one that differs is known,
/// so that most changes cost one comparison, whatever the number of slots. Only when that one comes
/// to agree, another is looked for, from its place on: changing all slots in whatever order costs
/// few looks at all of them.
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
        recount();
    }

    /// Null for an empty slot.
    F *get(std::size_t i) const { return fields[i].get(); }
    /// Into an empty slot, which is to be emptied before the field is gone.
    void fill(std::size_t i, F &field)
    {
        fields[i] = field;
        if (++count == 1 || i < first) {
            first = i;
            takeFirstValue();
        } else {
            noteValue(i);
        }
    }
    /// A filled one.
    void empty(std::size_t i)
    {
        fields[i].reset();
        --count;
        if (i == first) {
            first = findFilled(i);
            takeFirstValue();
        }
    }
    /// The value of a filled slot has changed.
    void noteValue(std::size_t i)
    {
        if (i == first) {
            takeFirstValue();
        } else if (isAgreed && differs(i)) {
            isAgreed = false;
            differing = i;
        }
    }

    /// Looks at all slots, also at those whose change wasn't noted. A field that left its object,
    /// or outlives it, is taken out.
    void recount()
    {
        count = 0;
        for (PtrT<F> &field : fields) {
            if (field && !field->owner)
                field.reset();
            count += field ? 1 : 0;
        }
        first = findFilled(0);
        isAgreed = false;
        takeFirstValue();
        refresh();
    }
    /// Makes sure that what is said to differ does.
    void refresh()
    {
        if (!isAgreed && (differing >= fields.size() || !isDiffering(differing)))
            findDiffering();
    }

    /// \name What the last recount() or refresh() found
    /// @{

    /// The number of filled slots.
    std::size_t getCount() const { return count; }
    /// Not all values agree.
    /// KEPT: one that doesn't equal itself, such as NaN, agrees with none. So an empty line warns
    /// the user of it wherever there is more than one.
    bool isMixed() const { return !isAgreed; }
    /// The first value; that of a new number where there is none.
    Value const &getValue() const { return value; }
    /// @}

private:
    bool differs(std::size_t i) const { return !(fields[i]->get() == value); }

    /// The first filled slot that isn't before `i`, or the number of slots.
    std::size_t findFilled(std::size_t i) const
    {
        while (i < fields.size() && !fields[i])
            ++i;
        return i;
    }

    void takeFirstValue()
    {
        const Value old = std::exchange(value, count != 0 ? fields[first]->get() : Value{});
        if (isAgreed && count > 1 && !(old == value)) {
            isAgreed = false;
            differing = first;
        }
    }

    bool isDiffering(std::size_t i) const { return i != first && fields[i] && differs(i); }

    /// From the last one that differed on, and round to it.
    void findDiffering()
    {
        for (std::size_t n = 0; n < fields.size(); ++n) {
            differing = differing + 1 < fields.size() ? differing + 1 : 0;
            if (isDiffering(differing))
                return;
        }
        isAgreed = true;
    }

    std::vector<PtrT<F>> fields;
    std::size_t count = 0;     // Of filled slots.
    std::size_t first = 0;     // The first filled slot; the number of slots when there is none.
    Value value{};             // Of that.
    std::size_t differing = 0; // Unless all agree, a slot that differs from the first.
    bool isAgreed = true;
};

} // namespace ZR::VOM::GUI
