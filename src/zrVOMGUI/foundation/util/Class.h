#pragma once

#include "zrVOMGUI/foundation/util/Ptr.h"
#include "zrVOMGUI/foundation/util/Signal.h"
#include "zrVOMGUI/foundation/util/export.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace ZR {

struct PtrLock;

/// Root of everything that can be pointed at.
///
/// Objects created with new are destroyed by their last RefT. Objects on the stack, or inside
/// another object, can be pointed at all the same: a RefT to one owns nothing.
///
/// A class that has this as its second base must not have a first base that holds further objects
/// of this kind by value: created with new, the one that is constructed first counts as the whole.
class ZRUTIL_EXPORT Class {
public:
    virtual ~Class();

    static void *operator new(std::size_t size);
    static void operator delete(void *memory);

    /// Into memory of the caller's, where references own nothing.
    static void *operator new(std::size_t, void *place) noexcept { return place; }
    static void operator delete(void *, void *) noexcept {}

    /// Scoped lock on the list of pointers that watch one object, to be held for a few instructions
    /// only. A thread that holds it may take it again, and set pointers to the object.
    class ZRUTIL_EXPORT LockPtr {
    public:
        explicit LockPtr(Class &object);
        ~LockPtr();
        LockPtr(LockPtr const &) = delete;
        LockPtr &operator=(LockPtr const &) = delete;

    private:
        PtrLock &lock;
    };

private:
    friend class Ptr;
    friend class Ref;

    std::atomic<Ptr *> watchers{
        nullptr}; // Head of an intrusive list through all watching pointers.

public:
    /// Emitted once, when the object is being destroyed and every pointer still reads it.
    ///
    /// When the last RefT goes, that is before any destructor of the object runs. For an object
    /// destroyed in another way, it is when the destructor of the first class runs that calls
    /// announceDelete(). A slot may take and drop references: they neither revive the object nor
    /// destroy it twice. A slot that throws is reported, and the others are called all the same.
    SignalT<SigVoidData> sigDelete;

    /// Whether sigDelete is being emitted or was: whoever connects to it now may not be called.
    bool isBeingDeleted() const { return (state.load(std::memory_order_relaxed) & dying) != 0; }

protected:
    Class();
    Class(Class const &)
        : Class()
    {
    }
    Class &operator=(Class const &) { return *this; }

    /// Emits sigDelete unless that is done. For the first line of a destructor whose class wants
    /// its members readable in the slots of an object that isn't owned by references.
    void announceDelete() noexcept;

    /// Lets every watching pointer read null. For a destructor that must act after that.
    void forgetWatchers() noexcept;

private:
    // One word: the number of references, and two bits above it.
    static constexpr std::uint32_t onHeap = 1u << 31; // Created by our operator new.
    static constexpr std::uint32_t dying = 1u << 30;  // sigDelete was emitted or is being emitted.
    static constexpr std::uint32_t countMask = dying - 1;

    bool ownedByRefs() const { return isOwnedByRefs(state.load(std::memory_order_relaxed)); }
    static bool isOwnedByRefs(std::uint32_t value) { return (value & (onHeap | dying)) == onHeap; }

    /// Counts a reference, or answers false when references don't own this object.
    ZR_LOCAL bool retain();
    ZR_LOCAL void release();
    ZR_LOCAL void destroy();

    std::atomic<std::uint32_t> state;
};

/// A word of flags. What a bit means is the derived class's affair.
class Flags {
public:
    explicit Flags(unsigned initialFlags = 0)
        : word(initialFlags)
    {
    }

    unsigned getFlags() const { return word; }
    void setFlags(unsigned newFlags) { word = newFlags; }

private:
    unsigned word;
};

} // namespace ZR
