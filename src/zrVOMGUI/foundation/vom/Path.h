#pragma once

#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <cstddef>
#include <vector>

namespace ZR::VOM {

/// A chain that starts at a root object and descends through fields and values.
///
///     Path path(root);           // Object: root
///     path.pushField(list);      // Field:  root / list
///     path.pushValue(list, 2);   // Value:  root / list[2]
///     path.pushField(name);      // Field:  root / list[2] / name
///     path.pop();                // Object: root / list[2], from which the step descended
///
/// Owns nothing: a step whose field died, or a root that did, reads null. A copy is independent.
class ZRVOM_EXPORT Path {
public:
    // Object and Field mean these values inside this class; the classes are VOM::Object and
    // VOM::Field.
    enum Type {
        Object = 0, ///< Ends at an object: it has no step, or its last step is a value that led on.
        Field = 1,  ///< Ends at a field.
        Value = 2,  ///< Ends at one value of its last field.
    };

    struct Entry {
        PtrT<VOM::Field> field;
        std::size_t index = 0; ///< Position in a list field; 0 for a single value.
    };

    explicit Path(PtrT<VOM::Object> const &rootObject);
    explicit Path(VOM::Object const &rootObject);

    /// Descends into a field.
    void pushField(VOM::Field &field);
    /// Descends to the single value of a field. A path that ends at this very field ends at its
    /// value then, without a further step.
    void pushValue(VOM::Field &field);
    /// Descends to one value of a list, likewise.
    void pushValue(MField &field, std::size_t index);
    /// Drops the last step; does nothing without one. The path ends then at the object from which
    /// that step descended.
    void pop();
    /// Drops all steps; the root stays.
    void clear();

    /// Number of steps. A field and a value of it are one step.
    std::size_t getNum() const { return entries.size(); }
    /// Raises std::out_of_range for an index not below getNum().
    Entry const &get(std::size_t index) const { return entries.at(index); }
    /// Raises std::out_of_range when there is no step.
    Entry const &getLast() const { return entries.at(entries.size() - 1); }
    Type getType() const { return type; }
    PtrT<VOM::Object> const &getRoot() const { return root; }
    /// The object that the path leads to: the root if there is no step, else what the last step's
    /// value links to at this time. Null when it leads to none: it ends at a field or at a plain
    /// value, the link is null, or the position has left the list.
    PtrT<VOM::Object> getObj() const;

private:
    ZR_LOCAL void push(VOM::Field &field, std::size_t index, Type newType);

    PtrT<VOM::Object> root;
    std::vector<Entry> entries;
    Type type = Object;
};

} // namespace ZR::VOM
