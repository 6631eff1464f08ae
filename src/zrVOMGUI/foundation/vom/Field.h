#pragma once

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/vom/Error.h"
#include "zrVOMGUI/foundation/vom/LostWatch.h"
#include "zrVOMGUI/foundation/vom/Object.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <string>
#include <type_traits>
#include <utility>

// A host may have included Qt first, whose keywords are macros.
#pragma push_macro("emit")
#undef emit

namespace ZR::VOM {

/// One named field of an object.
class ZRVOM_EXPORT Field : public Class, public Flags {
public:
    ~Field() override;
    /// Makes a field of the same name, type and value in `newOwner`, which then owns it.
    virtual PtrT<Field> clone(Object &newOwner) const = 0;
    /// The type code: 2 int, 3 real, 4 string, 5 watching link, 6 owning link, 11 list of watching
    /// links, 12 list of owning links. Any other is opaque.
    virtual int getType() const = 0;
    /// Copies the value of `other`. Raises ErrorTypeMismatch when that is of another type.
    virtual void copyValue(Field const &other) = 0;

    Object *owner;           ///< Null once the field has left its object. Not owned.
    std::string const &name; ///< Shared by all fields of that name, for the life of the process.

protected:
    Field(Object &newOwner, char const *fieldName, unsigned initialFlags);
    Field(Object &newOwner, Field const &other);

    /// Enters the field into its owner, which then owns it and emits sigAddField. For whoever
    /// creates it, after the most derived constructor has finished.
    void reg();

private:
    template <class FieldType, class... Args>
    friend FieldType &addField(Object &object, char const *name, Args &&...args);
    template <class FieldType>
    friend PtrT<Field> cloneField(FieldType const &field, Object &newOwner);
};

/// Adds a field to an object, with its start value, and returns it; emits sigAddField. A listener
/// that removes the field at once leaves the result without an object behind it.
///
///     addField<FieldString>(object, "name", "value");
template <class FieldType, class... Args>
FieldType &addField(Object &object, char const *name, Args &&...args)
{
    auto *const field = new FieldType(object, name, 0u, std::forward<Args>(args)...);
    field->reg();
    return *field;
}

/// What Field::clone() does, for a field class that copies with its constructor.
template <class FieldType>
PtrT<Field> cloneField(FieldType const &field, Object &newOwner)
{
    auto *const copy = new FieldType(newOwner, field);
    copy->reg();
    return copy;
}

/// The traits of a field class.
template <int typeCode, class ValueType, class ReferenceType, class ConstReferenceType,
          class ContainerType>
struct ZRVOM_EXPORT FieldTypeT {
    static constexpr int code = typeCode;
    using Value = ValueType;
    using Reference = ReferenceType;
    using ConstReference = ConstReferenceType;
    using Container = ContainerType;

    static constexpr bool isWatching = std::is_same_v<Value, PtrT<Object>>;
    static constexpr bool isLink = isWatching || std::is_same_v<Value, RefT<Object>>;
};

/// What only the link fields have: nothing for plain values,
template <bool isLink, bool isWatching>
struct ZRVOM_EXPORT LinkPartT {
};

/// a signal for the links that own,
template <>
struct ZRVOM_EXPORT LinkPartT<true, false> {
    /// The linked object died, and the field reads null.
    SignalT<SigVoidData> sigLost;
};

/// and an ear at the target for the links that watch.
template <>
struct ZRVOM_EXPORT LinkPartT<true, true> : LinkPartT<true, false> {
    void watch(Object *target, Field &field) { lostWatch.watch(target, field); }

private:
    SingleLostWatch lostWatch;
};

/// A field with one value, and its two signals.
template <class Type>
class ZRVOM_EXPORT FieldBaseT : public Field, public LinkPartT<Type::isLink, Type::isWatching> {
public:
    using Traits = Type;
    using Value = typename Type::Value;

    struct SigCanSetData : SigVoidData {
        Value const *value; ///< About to be stored. Not owned.
    };
    struct SigSetData : SigVoidData {
        Value const *old; ///< The value before; the field has the new one. Not owned.
    };

    int getType() const override { return Type::code; }
    void copyValue(Field const &other) override
    {
        auto const *const same = dynamic_cast<FieldBaseT const *>(&other);
        if (!same)
            throw ErrorTypeMismatch(*this);
        set(same->get());
    }
    /// Called with the old value after a value was stored and before sigSet.
    virtual void onSet(Value const &old) = 0;

    Value const &get() const { return value; }

    /// Whether the value may be stored: asks the listeners of sigCanSet.
    bool canSet(Value const &newValue)
    {
        try {
            emitCanSet(newValue);
            return true;
        } catch (ZR::Error const &) {
            return false;
        }
    }

    /// Emits sigCanSet, whose listeners refuse by raising an Error, which passes on to the caller
    /// and leaves the value. Then stores the value, calls onSet and emits sigSet, also for an equal
    /// value. Ends early if a listener destroys the field.
    void set(Value newValue)
    {
        const PtrT<Field> self(*this);
        emitCanSet(newValue);
        if (!self)
            return;
        const Value old = std::exchange(value, std::move(newValue));
        watchTarget();
        onSet(old);
        if (!self)
            return;
        SigSetData data;
        data.old = &old;
        sigSet.emit(data);
    }

protected:
    FieldBaseT(Object &newOwner, char const *fieldName, unsigned initialFlags, Value startValue)
        : Field(newOwner, fieldName, initialFlags)
        , value(std::move(startValue))
    {
        watchTarget();
    }
    FieldBaseT(Object &newOwner, FieldBaseT const &other)
        : Field(newOwner, other)
        , value(other.value)
    {
        watchTarget();
    }

private:
    void emitCanSet(Value const &newValue)
    {
        SigCanSetData data;
        data.value = &newValue;
        sigCanSet.emit(data);
    }

    void watchTarget()
    {
        if constexpr (Type::isWatching)
            this->watch(value.get(), *this);
    }

    Value value;

public:
    /// Before a value is stored; a listener refuses it by raising an Error.
    SignalT<SigCanSetData> sigCanSet;
    /// After a value was stored.
    SignalT<SigSetData> sigSet;
};

/// A field with one value.
template <class Type>
class ZRVOM_EXPORT FieldT : public FieldBaseT<Type> {
public:
    using Value = typename Type::Value;

    FieldT(Object &newOwner, char const *fieldName, unsigned initialFlags = 0,
           Value startValue = {})
        : FieldBaseT<Type>(newOwner, fieldName, initialFlags, std::move(startValue))
    {
    }
    FieldT(Object &newOwner, FieldT const &other)
        : FieldBaseT<Type>(newOwner, other)
    {
    }

    PtrT<Field> clone(Object &newOwner) const override { return cloneField(*this, newOwner); }
    void onSet(Value const &) override {}
};

using FieldInt = FieldT<FieldTypeT<2, int, int, int, int>>;
using FieldReal = FieldT<FieldTypeT<3, double, double &, double const &, double>>;
using FieldString =
    FieldT<FieldTypeT<4, std::string, std::string &, std::string const &, std::string>>;
using FieldPtr =
    FieldT<FieldTypeT<5, PtrT<Object>, PtrT<Object> &, PtrT<Object> const &, PtrT<Object>>>;
using FieldRef =
    FieldT<FieldTypeT<6, RefT<Object>, RefT<Object> &, RefT<Object> const &, RefT<Object>>>;

extern template class FieldT<FieldTypeT<2, int, int, int, int>>;
extern template class FieldT<FieldTypeT<3, double, double &, double const &, double>>;
extern template class FieldT<
    FieldTypeT<4, std::string, std::string &, std::string const &, std::string>>;
extern template class FieldT<
    FieldTypeT<5, PtrT<Object>, PtrT<Object> &, PtrT<Object> const &, PtrT<Object>>>;
extern template class FieldT<
    FieldTypeT<6, RefT<Object>, RefT<Object> &, RefT<Object> const &, RefT<Object>>>;

} // namespace ZR::VOM

#pragma pop_macro("emit")
