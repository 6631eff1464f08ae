#pragma once

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/Ptr.h"
#include "zrVOMGUI/foundation/util/export.h"

#include <functional>
#include <map>
#include <type_traits>
#include <utility>

// A host may have included Qt first, whose keywords are macros.
#pragma push_macro("emit")
#undef emit
#pragma push_macro("slots")
#undef slots

namespace ZR {

/// Base of all signal data.
///
/// Before each slot is called, the signal fills in what that slot was connected with.
struct ZRUTIL_EXPORT SigVoidData {
    PtrT<Class> ptr;
    RefT<Class> ref;
};

/// Non-template base of all signals. Belongs to one thread.
class ZRUTIL_EXPORT Signal {
public:
    class Connection;

    virtual ~Signal() = default;
    /// Whether a slot of that id exists.
    virtual bool isConnected(unsigned id) = 0;
    /// Does nothing when there is no such slot. A slot may disconnect any slot, itself included,
    /// while the signal is being emitted.
    virtual void disconnect(unsigned id) = 0;

protected:
    Signal() = default;

    /// What a Connection and a running emission still find when the signal is gone.
    struct ZRUTIL_EXPORT Anchor {
        explicit Anchor(Signal &owner)
            : signal(&owner)
        {
        }
        virtual ~Anchor() = default;
        Anchor(Anchor const &) = delete;
        Anchor &operator=(Anchor const &) = delete;

        Signal *signal; ///< Null once the signal is destroyed. Not owned.
        unsigned numHolders = 0;
    };

    /// Keeps an Anchor alive, at the size of one pointer.
    class ZRUTIL_EXPORT AnchorHolder {
    public:
        AnchorHolder() = default;
        explicit AnchorHolder(Anchor *held);
        AnchorHolder(AnchorHolder const &other);
        AnchorHolder(AnchorHolder &&other) noexcept
            : anchor(std::exchange(other.anchor, nullptr))
        {
        }
        AnchorHolder &operator=(AnchorHolder other) noexcept
        {
            std::swap(anchor, other.anchor);
            return *this;
        }
        ~AnchorHolder();
        Anchor *get() const { return anchor; }

    private:
        Anchor *anchor = nullptr;
    };

    AnchorHolder anchor; ///< Empty as long as nobody has connected.

private:
    Signal(Signal const &) = delete;
    Signal &operator=(Signal const &) = delete;
};

/// A handle to one slot of one signal.
///
/// KEPT: destroying a Connection doesn't disconnect. A slot whose handle is dropped stays connected
/// for the life of the signal, which serves callers that keep no handle. Others keep it beside the
/// pointer it belongs to, and disconnect by hand.
class ZRUTIL_EXPORT Signal::Connection {
public:
    Connection() = default;

    /// Does nothing on an empty handle, a slot already gone or a signal already destroyed.
    void disconnect();

protected:
    Connection(Signal &signal, unsigned slotId);

private:
    template <class Data>
    friend class SignalT;

    AnchorHolder anchor;
    unsigned id = 0;
};

/// A table of callbacks, called in the order in which they were connected.
///
/// Costs one pointer beside the vtable until somebody connects: models hold millions of signals.
///
/// Re-entry is the normal case. During an emission a slot may
/// - connect: the new slot is called by this emission too, unless the last slot is already running;
/// - disconnect any slot: a slot not yet called isn't called any more;
/// - emit the same signal. KEPT: the outer emission ends when the inner one is done, since both
///   share the cursor, which serves the later slots: they have had the newer data;
/// - destroy the signal: the emission ends without touching it again;
/// - throw: the exception passes on to the emitter, and the signal is ready for the next emission.
template <class Data>
class ZRUTIL_EXPORT SignalT : public Signal {
public:
    using Function = std::function<void(Data const &)>;

    SignalT() = default;
    ~SignalT() override { abandonTable(); }

    /// `ptr` and `ref` are handed to the slot in the data's members of these names.
    Connection connect(Function function, PtrT<Class> const &ptr = {}, RefT<Class> const &ref = {})
    {
        Table &slotTable = ensureTable();
        const unsigned id = ++slotTable.lastId;
        slotTable.slots.emplace_hint(slotTable.slots.end(), id,
                                     Slot{ptr, ref, std::move(function)});
        return Connection(*this, id);
    }

    /// `object` isn't owned or watched: disconnect before it goes.
    template <class Receiver, class Member,
              class = std::enable_if_t<std::is_member_function_pointer_v<Member>>>
    Connection connect(Receiver &object, Member member, PtrT<Class> const &ptr = {},
                       RefT<Class> const &ref = {})
    {
        return connect(
            Function([receiver = &object, member](Data const &data) { (receiver->*member)(data); }),
            ptr, ref);
    }

    /// Calls every slot with `data`.
    void emit(Data &data)
    {
        run(data, [](Function const &function, Data const &slotData) { function(slotData); });
    }

    /// As emit(), for places that no exception may leave, such as destructors: a slot that throws
    /// is reported under `where`, and the slots after it are called all the same.
    void emitCatching(Data &data, char const *where) noexcept
    {
        run(data, [where](Function const &function, Data const &slotData) {
            try {
                function(slotData);
            } catch (...) {
                reportCaughtException(where);
            }
        });
    }

    /// Whether anybody listens.
    bool hasSlots() const
    {
        Table const *const table = getTable();
        return table && !table->slots.empty();
    }

    /// Whether an emission runs, also one that was ended by an inner one and isn't back yet.
    bool isEmitting() const
    {
        Table const *const table = getTable();
        return table && table->depth != 0;
    }

    bool isConnected(unsigned id) override
    {
        Table const *const table = getTable();
        return table && table->slots.count(id) != 0;
    }

    void disconnect(unsigned id) override
    {
        Table *const table = getTable();
        if (!table)
            return;
        const auto slot = table->slots.find(id);
        if (slot == table->slots.end())
            return;
        if (slot == table->cursor)
            ++table->cursor;
        // The slot may be the one that runs: its function lives until the emission is over. What it
        // holds may disconnect or emit in turn when it goes, so it goes after the table is whole.
        auto node = table->slots.extract(slot);
        if (table->depth != 0)
            table->retired.insert(std::move(node));
    }

private:
    struct Slot {
        PtrT<Class> ptr;
        RefT<Class> ref;
        Function function;
    };
    using Slots = std::map<unsigned, Slot>;

    struct Table : Anchor {
        explicit Table(Signal &owner)
            : Anchor(owner)
            , cursor(slots.end())
        {
        }

        Slots slots; // In rising id order, which is the order of connecting.
        typename Slots::iterator cursor;
        unsigned depth = 0;
        unsigned lastId = 0;
        Slots retired; // Disconnected while an emission runs.
    };

    /// One running emission; leaves the table ready for the next one however it ends.
    class Emission {
    public:
        explicit Emission(Table &slotTable)
            : holder(&slotTable)
            , table(slotTable)
        {
            ++table.depth;
            table.cursor = table.slots.begin();
        }
        ~Emission()
        {
            table.cursor = table.slots.end();
            if (--table.depth == 0) {
                // What a slot holds may emit or disconnect when it goes: the table is whole by
                // then.
                Slots retired;
                retired.swap(table.retired);
            }
        }
        Emission(Emission const &) = delete;
        Emission &operator=(Emission const &) = delete;

    private:
        AnchorHolder holder;
        Table &table;
    };

    template <class Call>
    void run(Data &data, Call const &call)
    {
        Table *const table = getTable();
        if (!table || table->slots.empty())
            return;
        const Emission emission(*table);
        while (table->cursor != table->slots.end()) {
            Slot const &slot = table->cursor->second;
            ++table->cursor;
            data.ptr = slot.ptr;
            data.ref = slot.ref;
            call(slot.function, data);
        }
    }

    Table *getTable() const { return static_cast<Table *>(anchor.get()); }

    Table &ensureTable()
    {
        if (!anchor.get())
            anchor = AnchorHolder(new Table(*this));
        return *getTable();
    }

    void abandonTable()
    {
        Table *const table = getTable();
        if (!table)
            return;
        table->signal = nullptr;
        // Keeps the functions of emissions that still run until they are over.
        const Emission emission(*table);
        table->cursor = table->slots.end();
        table->retired.merge(table->slots);
    }
};

} // namespace ZR

#pragma pop_macro("emit")
#pragma pop_macro("slots")
