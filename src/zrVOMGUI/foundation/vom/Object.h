#pragma once

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ZR::VOM {

class Field;
class LostWatch;

/// What a class of the model is called and what it derives from.
struct ZRVOM_EXPORT ClassInfo {
    ClassInfo const *base; ///< The direct base class; null at the top of the chain.
    char const *name;      ///< Zero-terminated. Not owned.

    /// Whether this class or any of its bases bears that name.
    bool isType(std::string const &typeName) const;
};

/// A field was added.
struct SigAddFieldData : SigVoidData {
    std::size_t index; ///< Its position in the owner.
};

/// A field is about to go.
struct SigRemoveFieldData : SigVoidData {
    RefT<Field> const *field; ///< Still in its owner. Not owned.
};

/// Base class of every model object: an ordered list of named fields.
///
/// Derive from it, give the class a ClassInfo whose `base` is this one's, and override
/// getClassInfo() and clone(). Fields belong to their object; names should be unique in it, and
/// where they aren't, the first one is found.
class ZRVOM_EXPORT Object : public Class, public Flags {
public:
    explicit Object(unsigned initialFlags = 0);
    /// Copies the flags and the fields with their values; listeners stay with `other`.
    Object(Object const &other);
    ~Object() override;

    virtual ClassInfo const &getClassInfo() const;
    virtual RefT<Object> clone();
    /// The position of the first field of that name; getNumFields() or above when there is none.
    virtual std::size_t findFieldIndex(std::string const &name) const;
    /// Whether a deep copy shares this object instead of copying it. False by default.
    virtual bool isSharable() const;

    static ClassInfo const classInfo;

    std::size_t getNumFields() const { return fields.size(); }
    /// Raises std::out_of_range for an index not below getNumFields().
    RefT<Field> const &getField(std::size_t index) const { return fields.at(index); }
    /// The first field of that name; null when absent.
    PtrT<Field> findField(std::string const &name) const;

    /// After a field has been added.
    SignalT<SigAddFieldData> sigAddField;
    /// Before a field goes.
    SignalT<SigRemoveFieldData> sigRemoveField;

private:
    friend class Field;
    friend class LostWatch;
    friend ZRVOM_EXPORT bool removeField(Object &object, Field &field);

    Object &operator=(Object const &) = delete;

    ZR_LOCAL void enterField(Field &field);
    ZR_LOCAL void announceLost() noexcept;

    std::vector<RefT<Field>> fields;
    LostWatch *lostWatches = nullptr; // Head of a list of the links that must hear of the death.
};

/// Takes `field` out of `object` and emits sigRemoveField before. False, and nothing happens, when
/// it isn't one of the object's fields. An exception from a listener passes on, and the field
/// stays.
ZRVOM_EXPORT bool removeField(Object &object, Field &field);

} // namespace ZR::VOM
