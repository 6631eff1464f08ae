#pragma once

#include "zrVOMGUI/foundation/vom/Field.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <variant>
#include <vector>

// A host may have included Qt first, whose keywords are macros.
#pragma push_macro("emit")
#undef emit

namespace ZR::VOM {

/// A field with a list of values.
class ZRVOM_EXPORT MField : public Field {
public:
    ~MField() override;
    virtual std::size_t getNum() const = 0;

protected:
    using Field::Field;

    /// Refuses a range that isn't in the list.
    void checkRange(std::size_t index, std::size_t numRemoved) const;
};

/// A list field's values, and its signals.
template <class Type>
class ZRVOM_EXPORT MFieldBaseT : public MField {
public:
    using Traits = Type;
    using Value = typename Type::Value;
    using Values = typename Type::Container;

    struct SigCanReplaceData : SigVoidData {
        std::size_t index;      ///< First position to be replaced.
        std::size_t numRemoved; ///< Number of values to be removed.
        Values const *values;   ///< To be put in their place. Not owned.
    };
    /// One SigReplaceData tells every change of a list: an insertion has numOld 0, a removal has
    /// end equal to index.
    struct SigReplaceData : SigVoidData {
        std::size_t index;  ///< First replaced position.
        std::size_t numOld; ///< Number of removed values.
        Value const *old;   ///< The first of numOld removed values, contiguous. Not owned.
        std::size_t end;    ///< One past the last new value.
    };

    int getType() const override { return Type::code; }
    void copyValue(Field const &other) override
    {
        auto const *const same = dynamic_cast<MFieldBaseT const *>(&other);
        if (!same)
            throw ErrorTypeMismatch(*this);
        replace(0, getNum(), same->getAll());
    }
    std::size_t getNum() const override { return values.size(); }

    /// Raises std::out_of_range for a position not below getNum().
    Value const &get(std::size_t index) const { return values.at(index); }
    Values const &getAll() const { return values; }

    /// Whether replace() would be allowed: false for a range that isn't in the list, else asks the
    /// listeners of sigCanReplace.
    bool canReplace(std::size_t index, std::size_t numRemoved, Values const &newValues)
    {
        try {
            checkRange(index, numRemoved);
            emitCanReplace(index, numRemoved, newValues);
            return true;
        } catch (ZR::Error const &) {
            return false;
        }
    }

    /// Puts `newValues` in the place of the `numRemoved` values from `index` on.
    ///
    /// Raises ErrorField for a range that isn't in the list. Emits sigCanReplace, whose listeners
    /// refuse by raising an Error, which passes on to the caller and leaves the list; then changes
    /// the list and emits sigReplace. Ends early if a listener destroys the field.
    void replace(std::size_t index, std::size_t numRemoved, Values newValues)
    {
        const PtrT<Field> self(*this);
        checkRange(index, numRemoved);
        emitCanReplace(index, numRemoved, newValues);
        if (!self)
            return;
        // A listener may have changed the list.
        checkRange(index, numRemoved);
        const std::size_t end = index + newValues.size();
        const Values old = splice(values, index, numRemoved, std::move(newValues));
        watchTargets(index, numRemoved, end);
        SigReplaceData data;
        data.index = index;
        data.numOld = numRemoved;
        data.old = old.data();
        data.end = end;
        sigReplace.emit(data);
    }

protected:
    MFieldBaseT(Object &newOwner, char const *fieldName, unsigned initialFlags, Values startValues)
        : MField(newOwner, fieldName, initialFlags)
        , values(std::move(startValues))
    {
        watchTargets(0, 0, values.size());
    }
    MFieldBaseT(Object &newOwner, MFieldBaseT const &other)
        : MField(newOwner, other)
        , values(other.values)
    {
        watchTargets(0, 0, values.size());
    }

private:
    void emitCanReplace(std::size_t index, std::size_t numRemoved, Values const &newValues)
    {
        SigCanReplaceData data;
        data.index = index;
        data.numRemoved = numRemoved;
        data.values = &newValues;
        sigCanReplace.emit(data);
    }

    /// Replaces a range of `list` by `fresh` and returns what was there. Values behind the range
    /// move at most once.
    template <class Item>
    static std::vector<Item> splice(std::vector<Item> &list, std::size_t index,
                                    std::size_t numRemoved, std::vector<Item> fresh)
    {
        const auto first = list.begin() + static_cast<std::ptrdiff_t>(index);
        const auto last = first + static_cast<std::ptrdiff_t>(numRemoved);
        std::vector<Item> old(std::make_move_iterator(first), std::make_move_iterator(last));
        const std::size_t numCommon = std::min(numRemoved, fresh.size());
        const auto freshRest = fresh.begin() + static_cast<std::ptrdiff_t>(numCommon);
        const auto listRest = std::move(fresh.begin(), freshRest, first);
        if (listRest != last)
            list.erase(listRest, last);
        else
            list.insert(listRest, std::make_move_iterator(freshRest),
                        std::make_move_iterator(fresh.end()));
        return old;
    }

    void watchTargets(std::size_t index, std::size_t numRemoved, std::size_t end)
    {
        if constexpr (Type::isWatching) {
            if (!lostWatches)
                lostWatches = std::make_unique<std::vector<LostWatch>>();
            std::vector<LostWatch> fresh;
            fresh.reserve(end - index);
            for (std::size_t i = index; i < end; ++i)
                fresh.emplace_back(values[i].get(), *this);
            splice(*lostWatches, index, numRemoved, std::move(fresh));
            if (lostWatches->empty())
                lostWatches.reset();
        }
    }

    Values values;

public:
    /// Before the list changes; a listener refuses by raising an Error.
    SignalT<SigCanReplaceData> sigCanReplace;
    /// After the list changed.
    SignalT<SigReplaceData> sigReplace;

    struct SigLostData : SigVoidData {};
    /// A linked object died, and its entry reads null. The entry stays.
    SignalT<SigLostData> sigLost;

private:
    // Position by position with `values`; null for an empty list.
    std::conditional_t<Type::isWatching, std::unique_ptr<std::vector<LostWatch>>, std::monostate>
        lostWatches;
};

/// A list field.
template <class Type>
class ZRVOM_EXPORT MFieldT : public MFieldBaseT<Type> {
public:
    using Values = typename Type::Container;

    MFieldT(Object &newOwner, char const *fieldName, unsigned initialFlags = 0,
            Values const &startValues = {})
        : MFieldBaseT<Type>(newOwner, fieldName, initialFlags, startValues)
    {
    }
    MFieldT(Object &newOwner, MFieldT const &other)
        : MFieldBaseT<Type>(newOwner, other)
    {
    }

    PtrT<Field> clone(Object &newOwner) const override { return cloneField(*this, newOwner); }
};

using MFieldPtr = MFieldT<
    FieldTypeT<11, PtrT<Object>, PtrT<Object> &, PtrT<Object> const &, std::vector<PtrT<Object>>>>;
using MFieldRef = MFieldT<
    FieldTypeT<12, RefT<Object>, RefT<Object> &, RefT<Object> const &, std::vector<RefT<Object>>>>;

extern template class MFieldT<
    FieldTypeT<11, PtrT<Object>, PtrT<Object> &, PtrT<Object> const &, std::vector<PtrT<Object>>>>;
extern template class MFieldT<
    FieldTypeT<12, RefT<Object>, RefT<Object> &, RefT<Object> const &, std::vector<RefT<Object>>>>;

} // namespace ZR::VOM

#pragma pop_macro("emit")
