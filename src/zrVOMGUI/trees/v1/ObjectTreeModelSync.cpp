// How the children of a row become the wanted ones.

#include "zrVOMGUI/trees/v1/private/ModelRows.h"

#include <algorithm>
#include <unordered_map>

namespace ZR::VOM::GUI::V1 {

std::size_t countLinks(Field &field)
{
    std::size_t num = 0;
    visitLinkField(field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>)
            num = links.getNum();
        else
            num = 1;
    });
    return num;
}

PtrT<Object> linkAt(Field &field, std::size_t index)
{
    PtrT<Object> link;
    visitLinkField(field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>) {
            if (index < links.getNum())
                link = links.get(index);
        } else if (index == 0) {
            link = links.get();
        }
    });
    return link;
}

Wanted::Entry Wanted::of(ObjectTreeModel::Row &row)
{
    if (row.kind == ObjectTreeModel::Row::fieldKind)
        return {static_cast<ObjectTreeModel::FieldRow &>(row).getField().get(), true};
    return {static_cast<ObjectTreeModel::ObjectRow &>(row).object.get(), false};
}

void Wanted::addValues(Field &field)
{
    visitLinkField(field, [&](auto &links) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(links)>>) {
            for (auto const &value : links.getAll())
                entries.push_back({value.get(), false});
        } else {
            entries.push_back({links.get().get(), false});
        }
    });
}

bool standsFor(Wanted::Entry const &row, Wanted::Entry const &wanted)
{
    return row.target == wanted.target && row.isField == wanted.isField &&
           (row.target || !row.isField);
}

namespace {

using Row = ObjectTreeModel::Row;
using Entry = Wanted::Entry;

struct EntryHash {
    std::size_t operator()(Entry const &entry) const
    {
        return std::hash<Class const *>()(entry.target);
    }
};
struct EntryEqual {
    bool operator()(Entry const &a, Entry const &b) const { return standsFor(a, b); }
};

/// The children behind those that are in their place: the old rows, less those taken out. They keep
/// their order, since rows are inserted and moved in front of them only.
class OldRows {
public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    OldRows(Row const &row, std::size_t begin)
    {
        const std::size_t num = row.children.size() - begin;
        entries.reserve(num);
        for (std::size_t i = 0; i < num; ++i)
            entries.push_back(Wanted::of(*row.children[begin + i]));
        isTaken.resize(num);
        nextLeft.resize(num);
        nextEqual.resize(num, none);
        numTaken.resize(num + 1);
        first.reserve(num);
        for (std::size_t i = num; i-- != 0;) {
            nextLeft[i] = i + 1 < num ? i + 1 : none;
            const auto [place, isNew] = first.emplace(entries[i], i);
            if (!isNew)
                nextEqual[i] = std::exchange(place->second, i);
        }
    }

    /// The first one that stands for what is wanted; none if there is none.
    std::size_t find(Entry const &wanted)
    {
        const auto place = first.find(wanted);
        if (place == first.end())
            return none;
        while (place->second != none && isTaken[place->second])
            place->second = nextEqual[place->second];
        return place->second;
    }

    bool is(std::size_t old, Entry const &wanted) const
    {
        return old != none && standsFor(entries[old], wanted);
    }

    /// The one behind another that isn't taken.
    std::size_t next(std::size_t old)
    {
        std::size_t after = nextLeft[old];
        while (after != none && isTaken[after]) {
            // Half of the way is spared next time.
            nextLeft[old] = nextLeft[after];
            old = after;
            after = nextLeft[after];
        }
        return after;
    }

    /// How many are before one.
    std::size_t numBefore(std::size_t old) const
    {
        std::size_t taken = 0;
        for (std::size_t i = old; i != 0; i &= i - 1)
            taken += numTaken[i];
        return old - taken;
    }

    void take(std::size_t old)
    {
        isTaken[old] = true;
        for (std::size_t i = old + 1; i < numTaken.size(); i += i & (~i + 1))
            ++numTaken[i];
    }

private:
    std::vector<Entry> entries;
    std::vector<bool> isTaken;
    std::vector<std::size_t> nextLeft;
    std::vector<std::size_t> nextEqual; // The next one that stands for the same.
    std::vector<std::size_t> numTaken;  // A Fenwick tree.
    std::unordered_map<Entry, std::size_t, EntryHash, EntryEqual> first;
};

class ChildSync {
public:
    ChildSync(Row &syncedRow, Wanted const &wantedRows)
        : row(syncedRow)
        , wanted(wantedRows)
    {
    }

    bool run()
    {
        if (!skipSettled())
            return false;
        if (pos == wanted.entries.size())
            return true;
        OldRows old(row, pos);
        while (pos < wanted.entries.size()) {
            const std::size_t found = old.find(wanted.entries[pos]);
            if (!(found == OldRows::none ? insertRun(old) : moveRun(old, found)))
                return false;
        }
        return true;
    }

private:
    /// Most changes leave a long beginning as it is.
    bool skipSettled()
    {
        std::size_t end = 0;
        const std::size_t num = std::min(row.children.size(), wanted.entries.size());
        while (end < num && standsFor(Wanted::of(*row.children[end]), wanted.entries[end]))
            ++end;
        return settle(end);
    }

    bool insertRun(OldRows &old)
    {
        std::size_t end = pos + 1;
        while (wanted.insertsRuns && end < wanted.entries.size() &&
               old.find(wanted.entries[end]) == OldRows::none)
            ++end;
        std::vector<RefT<Row>> made;
        made.reserve(end - pos);
        for (std::size_t i = pos; i < end; ++i) {
            RefT<Row> newRow = wanted.make(i);
            if (!newRow || !standsFor(Wanted::of(*newRow), wanted.entries[i])) {
                row.requestUpdate(Row::self);
                return false;
            }
            made.push_back(std::move(newRow));
        }
        row.insertRows(pos, made);
        for (RefT<Row> const &newRow : made)
            newRow->runUpdate(false);
        pos = end;
        return !row.isGone();
    }

    bool moveRun(OldRows &old, std::size_t found)
    {
        const std::size_t from = pos + old.numBefore(found);
        std::size_t end = pos + 1;
        std::size_t last = found;
        old.take(found);
        while (wanted.movesRuns && end < wanted.entries.size()) {
            last = old.next(last);
            if (!old.is(last, wanted.entries[end]))
                break;
            old.take(last);
            ++end;
        }
        row.moveRows(from, end - pos, pos);
        return !row.isGone() && settle(end);
    }

    /// Goes on behind rows that stay. What stands for an empty link now may have had an object.
    bool settle(std::size_t end)
    {
        for (; pos < end; ++pos) {
            Row &child = *row.children[pos];
            if (child.kind == Row::objectKind)
                static_cast<ObjectTreeModel::ObjectRow &>(child).forgetDeadObject();
            if (row.isGone())
                return false;
        }
        return true;
    }

    Row &row;
    Wanted const &wanted;
    std::size_t pos = 0; // The children before it are the wanted ones.
};

} // namespace

bool syncChildren(ObjectTreeModel::Row &row, Wanted const &wanted)
{
    return ChildSync(row, wanted).run();
}

} // namespace ZR::VOM::GUI::V1
