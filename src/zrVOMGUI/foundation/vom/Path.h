#pragma once

#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <cstddef>
#include <vector>

namespace ZR::VOM {

/// A chain that starts at a root object and descends through fields and values.
///
/// Owns nothing: a step whose field died, or a root that did, reads null.
class ZRVOM_EXPORT Path {
public:
    enum class Type {
        Object = 0, ///< Ends at an object: its last step is a value that leads to one, or it has none.
        Field = 1,  ///< Ends at a field.
        Value = 2,  ///< Ends at one value of its last field.
    };

    struct Entry {
        PtrT<Field> field;
        std::size_t index = 0; ///< Position in a list field; 0 for a single value.
    };

    explicit Path(PtrT<Object> const &rootObject);
    explicit Path(Object const &rootObject);

    /// Descends into a field.
    void pushField(Field &field);
    /// Descends to the single value of a field.
    void pushValue(Field &field);
    /// Descends to one value of a list.
    void pushValue(MField &field, std::size_t index);
    /// Drops the last step; does nothing without one.
    void pop();
    /// Drops all steps; the root stays.
    void clear();

    /// Number of steps. A field and a value of it are one step.
    std::size_t getNum() const { return entries.size(); }
    /// \pre index is below getNum().
    Entry const &get(std::size_t index) const { return entries[index]; }
    /// \pre getNum() isn't 0.
    Entry const &getLast() const { return entries.back(); }
    Type getType() const;
    PtrT<Object> const &getRoot() const { return root; }
    /// The object that the path leads to; null when it leads to none.
    PtrT<Object> getObj() const;

private:
    void push(Field &field, std::size_t index, bool isValue);

    PtrT<Object> root;
    std::vector<Entry> entries;
    bool endsAtField = false;
};

} // namespace ZR::VOM
