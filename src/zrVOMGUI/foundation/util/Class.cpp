#include "zrVOMGUI/foundation/util/Class.h"

#include <cassert>
#include <cstdint>
#include <functional>
#include <new>
#include <thread>
#include <vector>

namespace ZR {

// Locks are shared by address and not kept in the objects: a pointer may find out that its target
// died while it waited, and must be able to look without touching the dead object.
//
// A lock knows its thread, which may take it again. Otherwise a thread that holds the lock of one
// object would wait for itself as soon as it points to another one that shares the lock.
struct alignas(64) PtrLock {
    std::atomic<void const *> holder{nullptr}; // What only one thread can name; null when free.
    unsigned depth = 0;                        // The holder's.
};

namespace {

PtrLock &lockOf(Class const &object)
{
    static PtrLock locks[256];
    const std::uint64_t address = reinterpret_cast<std::uintptr_t>(&object);
    return locks[(address >> 4) * 0x9e3779b97f4a7c15u >> 56];
}

thread_local const char thisThread = 0;

// Memory that operator new gave out and whose object hasn't begun its life. A constructor that
// finds itself in such a block knows that it is on the heap. More than one block is open while
// arguments of a constructor create further objects.
struct OpenBlocks {
    static constexpr unsigned maxNum = 32;
    char const *begin[maxNum];
    std::size_t size[maxNum];
    unsigned num;

    void open(void *memory, std::size_t blockSize)
    {
        // Past the limit the outermost block is forgotten; its object leaks rather than dying
        // early.
        if (num == maxNum)
            erase(0);
        begin[num] = static_cast<char const *>(memory);
        size[num] = blockSize;
        ++num;
    }

    /// Whether `object` is the first to claim an open block.
    bool claim(void const *object)
    {
        const auto address = static_cast<char const *>(object);
        for (unsigned i = num; i-- > 0;) {
            const std::less_equal<char const *> notAfter;
            if (notAfter(begin[i], address) && !notAfter(begin[i] + size[i], address)) {
                erase(i);
                return true;
            }
        }
        return false;
    }

    void close(void const *memory)
    {
        for (unsigned i = num; i-- > 0;)
            if (begin[i] == memory)
                erase(i);
    }

    void erase(unsigned index)
    {
        --num;
        for (unsigned i = index; i < num; ++i) {
            begin[i] = begin[i + 1];
            size[i] = size[i + 1];
        }
    }
};
thread_local OpenBlocks openBlocks;

} // namespace

void *Class::operator new(std::size_t size)
{
    void *const memory = ::operator new(size);
    openBlocks.open(memory, size);
    return memory;
}

void Class::operator delete(void *memory)
{
    openBlocks.close(memory);
    ::operator delete(memory);
}

Class::Class()
    : state(openBlocks.claim(this) ? onHeap : 0)
{
}

Class::~Class()
{
    announceDelete();
    forgetWatchers();
}

Class::LockPtr::LockPtr(Class &object)
    : lock(lockOf(object))
{
    void const *holder = lock.holder.load(std::memory_order_relaxed);
    while (holder != &thisThread) {
        holder = nullptr;
        if (lock.holder.compare_exchange_weak(holder, &thisThread, std::memory_order_acquire))
            break;
        if (holder)
            std::this_thread::yield();
    }
    ++lock.depth;
}

Class::LockPtr::~LockPtr()
{
    if (--lock.depth == 0)
        lock.holder.store(nullptr, std::memory_order_release);
}

void Class::announceDelete() noexcept
{
    const std::uint32_t before = state.fetch_or(dying);
    if (before & dying)
        return;
    assert((!(before & onHeap) || (before & countMask) == 0) &&
           "Destroyed by hand while references to it are left.");
    SigVoidData data;
    sigDelete.emitCatching(data, "ZR::Class::sigDelete");
}

void Class::forgetWatchers() noexcept
{
    LockPtr lock(*this);
    while (Ptr *const watcher = watchers.load()) {
        watchers.exchange(watcher->next.load());
        watcher->prev.exchange(nullptr);
        watcher->next.exchange(nullptr);
        watcher->target.exchange(nullptr);
    }
}

bool Class::retain()
{
    if (!ownedByRefs())
        return false;
    state.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void Class::release()
{
    const std::uint32_t before = state.fetch_sub(1, std::memory_order_acq_rel);
    assert((before & countMask) != 0);
    if ((before & countMask) == 1) {
        announceDelete();
        destroy();
    }
}

// An object that goes may hold the last reference to the next one, and so on: a long chain must not
// take stack for each of its objects. Past a depth that stacks bear, objects wait for their turn.
void Class::destroy()
{
    constexpr unsigned maxDepth = 100;
    thread_local unsigned depth = 0;
    thread_local std::vector<Class *> *waiting = nullptr;

    if (depth == maxDepth) {
        waiting->push_back(this);
        return;
    }
    std::vector<Class *> waitingBelow;
    if (++depth == maxDepth)
        waiting = &waitingBelow;
    delete this;
    while (!waitingBelow.empty()) {
        Class *const next = waitingBelow.back();
        waitingBelow.pop_back();
        delete next;
    }
    --depth;
}

} // namespace ZR
