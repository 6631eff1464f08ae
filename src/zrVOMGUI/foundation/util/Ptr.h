#pragma once

#include "zrVOMGUI/foundation/util/export.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace ZR {

class Class;

/// What a PtrT and a RefT have in common: a target that they read, and a place in the list of those
/// who must hear that it is gone.
///
/// Pointers may be linked to and unlinked from one target by several threads at once; reading one
/// and the same pointer while another thread sets it is the caller's affair.
class ZRUTIL_EXPORT Ptr {
public:
    /// The target, or null: never set, reset, or the target is gone.
    Class *get() const { return target.load(std::memory_order_acquire); }
    explicit operator bool() const { return get() != nullptr; }

protected:
    Ptr() = default;
    ~Ptr() = default;

    void link(Class &newTarget);
    void unlink();
    void copyFrom(Ptr const &other);
    /// Takes the place of `other` in its target's list; `other` reads null afterwards.
    void takePlaceOf(Ptr &other);

    std::atomic<Class *> target{nullptr};
    std::atomic<Ptr *> prev{nullptr};
    std::atomic<Ptr *> next{nullptr};

private:
    friend class Class;

    ZR_LOCAL void unlinkFrom(Class &oldTarget);

    Ptr(Ptr const &) = delete;
    Ptr &operator=(Ptr const &) = delete;
};

// The order is that of the targets' addresses: arbitrary, but stable for one run.
inline bool operator==(Ptr const &a, Ptr const &b)
{
    return a.get() == b.get();
}
inline bool operator!=(Ptr const &a, Ptr const &b)
{
    return a.get() != b.get();
}
inline bool operator<(Ptr const &a, Ptr const &b)
{
    return std::less<Class *>()(a.get(), b.get());
}
inline bool operator==(Ptr const &a, std::nullptr_t)
{
    return a.get() == nullptr;
}
inline bool operator!=(Ptr const &a, std::nullptr_t)
{
    return a.get() != nullptr;
}

/// Non-template base of the owning reference.
///
/// The last reference to go destroys its target, if that was created with new. A reference to an
/// object on the stack, or one taken while its target is being destroyed, owns nothing: it reads
/// null once the target is gone, as a watching pointer does.
class ZRUTIL_EXPORT Ref : public Ptr {
protected:
    Ref() = default;
    ~Ref() { reset(); }

    void set(Class &newTarget);
    void reset();
    void copyFrom(Ref const &other);
    void take(Ref &other) noexcept;
};

template <class T>
class ZRUTIL_EXPORT RefT;

/// Watching pointer: doesn't keep its target alive, and reads null once the target is gone.
///
///     RefT<Object> owner(new Object);  // 1 reference
///     PtrT<Object> watcher(owner);     // still 1
///     owner.reset();                   // destroyed
///     watcher.get();                   // null
template <class T>
class ZRUTIL_EXPORT PtrT : public Ptr {
public:
    PtrT() = default;
    PtrT(std::nullptr_t) {}
    PtrT(T *object) { set(object); }
    PtrT(T &object) { link(object); }
    PtrT(PtrT const &other)
        : Ptr()
    {
        copyFrom(other);
    }
    PtrT(PtrT &&other) noexcept { takePlaceOf(other); }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    PtrT(PtrT<U> const &other)
    {
        set(other.get());
    }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    PtrT(RefT<U> const &other)
    {
        set(other.get());
    }
    ~PtrT() { unlink(); }

    PtrT &operator=(PtrT const &other)
    {
        copyFrom(other);
        return *this;
    }
    PtrT &operator=(PtrT &&other) noexcept
    {
        if (this != &other) {
            unlink();
            takePlaceOf(other);
        }
        return *this;
    }

    T *get() const { return static_cast<T *>(Ptr::get()); }
    T &operator*() const { return *get(); }
    T *operator->() const { return get(); }

    void reset() { unlink(); }

private:
    void set(T *object)
    {
        if (object)
            link(*object);
        else
            unlink();
    }
};

/// Owning reference: as long as one is there, its target lives.
template <class T>
class ZRUTIL_EXPORT RefT : public Ref {
public:
    RefT() = default;
    RefT(std::nullptr_t) {}
    RefT(T *object) { set(object); }
    RefT(T &object) { Ref::set(object); }
    RefT(RefT const &other)
        : Ref()
    {
        copyFrom(other);
    }
    RefT(RefT &&other) noexcept { take(other); }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    RefT(RefT<U> const &other)
    {
        set(other.get());
    }
    template <class U, class = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    RefT(PtrT<U> const &other)
    {
        set(other.get());
    }

    RefT &operator=(RefT const &other)
    {
        copyFrom(other);
        return *this;
    }
    RefT &operator=(RefT &&other) noexcept
    {
        if (this != &other) {
            // The old target may own `other`: it goes last.
            RefT old(std::move(*this));
            take(other);
        }
        return *this;
    }

    T *get() const { return static_cast<T *>(Ptr::get()); }
    T &operator*() const { return *get(); }
    T *operator->() const { return get(); }

    void reset() { Ref::reset(); }

private:
    void set(T *object)
    {
        if (object)
            Ref::set(*object);
        else
            Ref::reset();
    }
};

/// The target as a T, or null when there is none or it is no T.
template <class T>
T *cast(Ptr const &ptr)
{
    return dynamic_cast<T *>(ptr.get());
}

} // namespace ZR
