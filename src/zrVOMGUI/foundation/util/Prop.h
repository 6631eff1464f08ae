#pragma once

#include "zrVOMGUI/foundation/util/Object.h"
#include "zrVOMGUI/foundation/util/Signal.h"

// A host may have included Qt first, whose keywords are macros.
#pragma push_macro("emit")
#undef emit

namespace ZR {

/// Base of properties: a value of an Object that announces its changes.
class ZRUTIL_EXPORT Prop {
protected:
    explicit Prop(Object &propertyOwner)
        : owner(propertyOwner)
    {
    }
    virtual ~Prop() = default;

public:
    Prop(Prop const &) = delete;
    Prop &operator=(Prop const &) = delete;

    Object &getOwner() const { return owner; }

private:
    Object &owner;
};

/// A property with a value of type T.
template <class T>
class ZRUTIL_EXPORT PropT : public Prop {
public:
    struct SigCanSetData : SigVoidData {
        T const *value; ///< About to be stored. Not owned.
    };
    struct SigSetData : SigVoidData {
        T const *old; ///< The value before; the property has the new one. Not owned.
    };

    PropT(Object &propertyOwner, T startValue)
        : Prop(propertyOwner)
        , value(startValue)
    {
    }
    ~PropT() override = default;

    T const &get() const { return value; }

    /// Emits sigCanSet, whose listeners refuse by raising an Error, which passes on to the caller
    /// and leaves the value; then stores the value and emits sigSet, also for an equal value. Ends
    /// early if a listener destroys the owner.
    void set(T newValue)
    {
        const PtrT<Object> livingOwner(getOwner());
        SigCanSetData canSetData;
        canSetData.value = &newValue;
        sigCanSet.emit(canSetData);
        if (!livingOwner)
            return;
        const T old = std::exchange(value, newValue);
        SigSetData setData;
        setData.old = &old;
        sigSet.emit(setData);
    }

private:
    T value;

public:
    SignalT<SigCanSetData> sigCanSet;
    SignalT<SigSetData> sigSet;
};

} // namespace ZR

#pragma pop_macro("emit")
