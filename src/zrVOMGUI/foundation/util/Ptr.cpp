#include "zrVOMGUI/foundation/util/Ptr.h"

#include "zrVOMGUI/foundation/util/Class.h"

namespace ZR {

void Ptr::link(Class &newTarget)
{
    if (get() == &newTarget)
        return;
    unlink();
    target.exchange(&newTarget);
    Class::LockPtr lock(newTarget);
    Ptr *const first = newTarget.watchers.load();
    next.exchange(first);
    if (first)
        first->prev.exchange(this);
    newTarget.watchers.exchange(this);
    prev.exchange(nullptr);
}

void Ptr::unlink()
{
    if (Class *const oldTarget = get())
        unlinkFrom(*oldTarget);
}

void Ptr::unlinkFrom(Class &oldTarget)
{
    Class::LockPtr lock(oldTarget);
    // The target may have died on another thread before the lock was taken.
    if (get() != &oldTarget)
        return;
    Ptr *const before = prev.exchange(nullptr);
    Ptr *const after = next.exchange(nullptr);
    if (after)
        after->prev.exchange(before);
    if (before)
        before->next.exchange(after);
    else if (oldTarget.watchers.load() == this)
        oldTarget.watchers.exchange(after);
    target.exchange(nullptr);
}

void Ptr::takePlaceOf(Ptr &other)
{
    Class *const newTarget = other.get();
    if (!newTarget)
        return;
    Class::LockPtr lock(*newTarget);
    if (other.get() != newTarget)
        return;
    Ptr *const before = other.prev.exchange(nullptr);
    Ptr *const after = other.next.exchange(nullptr);
    target.exchange(newTarget);
    prev.exchange(before);
    next.exchange(after);
    if (after)
        after->prev.exchange(this);
    if (before)
        before->next.exchange(this);
    else
        newTarget->watchers.exchange(this);
    other.target.exchange(nullptr);
}

void Ptr::copyFrom(Ptr const &other)
{
    if (Class *const newTarget = other.get())
        link(*newTarget);
    else
        unlink();
}

void Ref::copyFrom(Ref const &other)
{
    if (Class *const newTarget = other.get())
        set(*newTarget);
    else
        reset();
}

void Ref::set(Class &newTarget)
{
    Class *const oldTarget = get();
    if (oldTarget == &newTarget)
        return;
    // The new target first: releasing the old one may run any code.
    if (newTarget.retain()) {
        reset();
        target.exchange(&newTarget);
    } else {
        // What goes now may contain the new target.
        Ref watcher;
        watcher.link(newTarget);
        reset();
        takePlaceOf(watcher);
    }
}

void Ref::reset()
{
    Class *const oldTarget = get();
    if (!oldTarget)
        return;
    if (oldTarget->ownedByRefs()) {
        target.exchange(nullptr);
        oldTarget->release();
    } else {
        unlink();
    }
}

void Ref::take(Ref &other) noexcept
{
    Class *const newTarget = other.get();
    if (!newTarget)
        return;
    if (newTarget->ownedByRefs())
        target.exchange(other.target.exchange(nullptr));
    else
        takePlaceOf(other);
}

} // namespace ZR
