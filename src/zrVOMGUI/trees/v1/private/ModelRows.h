#pragma once

// Not for hosts: the rows behind the indexes of V1's ObjectTreeModel.

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <type_traits>
#include <utility>

namespace ZR::VOM::GUI::V1 {

/// One row, and the rows below it.
///
/// Rows change only in setChildCount(), insertRows() and moveRows(), each of which tells views
/// before and after. A view may call back at once, and a host's slot may do anything; so a row that
/// is being brought up to date is busy, and a second update of it only marks it. After each of the
/// three a function of a row asks isGone() before it goes on.
class ObjectTreeModel::Row : public Class {
public:
    enum Kind { top, objectKind, fieldKind };

    Row(ObjectTreeModel &newModel, PtrT<Row> const &newParent, Kind newKind);
    ~Row() override;

    virtual Qt::ItemFlags flags() const = 0;
    virtual std::string text() const = 0;
    virtual QVariant decoration() const;
    virtual std::string tooltip() const;
    /// Makes the children what the objects say: their rows if the row is fetched or `fetch`, else
    /// only their number. Through runUpdate() alone.
    virtual void update(bool fetch) = 0;
    /// Where the steps of a path lead on from a row.
    struct Way {
        PtrT<Row> row;        ///< Null for nowhere.
        std::size_t pos;      ///< The step that is asked of it.
        bool isFound = false; ///< It is the row that the path leads to.
    };
    /// One row further on the way of a path whose steps from `pos` on are left.
    virtual Way find(Path const &path, std::size_t pos, bool create) = 0;
    /// From the path of the parent to that of this row, or on towards `child`, which may be null.
    virtual void getPath(Path &path, RefT<Row> const &child) = 0;

    /// Update bits of `pending`. Nobody sets `fetching`, so that rows follow without making more of
    /// them than there were; an update would heed it.
    enum : unsigned { below = 1, self = 2, fetching = 4 };
    /// Marks the row, and by `below` those above it. The first mark since the last update is told.
    /// A busy row is marked as soon as it is no longer.
    void requestUpdate(unsigned bits);
    /// update(), unless the row is busy with one, or rows are changing at this moment: then a mark.
    void runUpdate(bool fetch);
    /// After an update.
    void setIdle();
    void fetchFor(bool create);

    bool isFetched() const { return childCount != 0 && children.size() == childCount; }
    /// Whether the row was taken out of its model, or the model is gone.
    bool isGone() const { return !model; }
    /// Null when the position is beyond the rows that are made.
    PtrT<Row> childAt(std::size_t position) const;
    /// The position among the siblings; the number of siblings if it isn't among them.
    std::size_t getPosition() const;
    std::size_t positionOf(Row const *child) const;
    void emitDataChanged();

    /// Drops children from the end until there are `num`, or stores the number if none is made.
    void setChildCount(std::size_t num);
    void insertRow(std::size_t pos, RefT<Row> const &row) { insertRows(pos, {row}); }
    void insertRows(std::size_t pos, std::vector<RefT<Row>> const &rows);
    /// Moves `count` rows from `from` to before the row at `to`, which is nearer to the front.
    void moveRows(std::size_t from, std::size_t count, std::size_t to);
    /// Lets go of rows and all below them, without a signal.
    static void dismantle(std::vector<Row *> &&rows);

    ObjectTreeModel *model; // Null once the row is taken out.
    PtrT<Row> parent;
    std::size_t childCount = 0;  // How many there should be.
    std::vector<Row *> children; // Each holds itself meanwhile: addresses are shifted fast.
    unsigned pending = 0;

    const Kind kind;
    bool busy = false;
    bool isMarkedWhileBusy = false;
    unsigned numChanges = 0; // How often rows came, went or moved among the children.

private:
    friend class ObjectTreeModel;

    bool mark(unsigned bits);
    void removeChildren(std::size_t num);
    void removeLast(std::size_t num, std::vector<ObjRow> const &objRows);

    mutable std::size_t lastPosition = 0; // Where to begin to look.
    RefT<Row> selfRef;                    // While it is a child.
};

/// Number of values of a link field; 0 for other fields.
std::size_t countLinks(Field &field);
/// One value of a link field; null beyond its end and for other fields.
PtrT<Object> linkAt(Field &field, std::size_t index);

/// Holds a row and keeps others from updating it.
class BusyRow {
public:
    explicit BusyRow(ObjectTreeModel::Row &busyRow)
        : row(busyRow)
        , before(std::exchange(busyRow.busy, true))
    {
    }
    ~BusyRow()
    {
        if (!before)
            row->setIdle();
    }
    BusyRow(BusyRow const &) = delete;
    BusyRow &operator=(BusyRow const &) = delete;

private:
    const RefT<ObjectTreeModel::Row> row;
    const bool before;
};

/// What the children of a row shall stand for.
struct Wanted {
    struct Entry {
        Class const *target; // An address to compare, not to be touched.
        bool isField;
    };
    static Entry of(ObjectTreeModel::Row &row);
    void addValues(Field &field);

    std::vector<Entry> entries;
    /// A row for an entry; null if what the row stands for has changed meanwhile.
    std::function<RefT<ObjectTreeModel::Row>(std::size_t)> make;
    bool insertsRuns = true; // Rows come together, or each by itself,
    bool movesRuns = true;   // and move so.
};

/// The row of a field that died stands for nothing that could be wanted; that of an object that
/// died stands for an empty link.
bool standsFor(Wanted::Entry const &row, Wanted::Entry const &wanted);

/// Makes the first children of a row the wanted ones. Rows that stand for what is wanted stay, or
/// move to their place, the first of equal ones first; the others are left behind the wanted.
/// False if the row went under way, or what it stands for changed: then it is marked anew.
bool syncChildren(ObjectTreeModel::Row &row, Wanted const &wanted);

/// The invisible top: objects and fields that the host put there.
class ObjectTreeModel::Root : public Row {
public:
    explicit Root(ObjectTreeModel &newModel);
    ~Root() override;

    Qt::ItemFlags flags() const override { return Qt::NoItemFlags; }
    std::string text() const override { return {}; }
    void update(bool fetch) override;
    Way find(Path const &path, std::size_t pos, bool create) override;
    void getPath(Path &path, RefT<Row> const &child) override;
    virtual void clear();
    /// Does what clear() had to leave, unless rows are changing still.
    void runClear();

    /// Puts items before a position, or at the end, and returns where they are.
    std::size_t addItems(std::vector<PtrT<Class>> const &newItems, std::size_t index);

private:
    struct Item {
        PtrT<Class> target; // Null for an empty link. Not owned.
        bool isField;
        Signal::Connection conDelete;
        std::size_t numRows = 0; // As of the last update.
    };

    Wanted::Entry entryOf(Item const &item) const;
    Wanted wantedItems();
    Wanted wantedValues();
    void onItemsChanged();
    void onItemDelete(Item &item);
    std::size_t firstRowOf(std::size_t position) const;
    void takeOut(std::size_t first, std::size_t count);
    void disconnectItems();

    std::deque<std::unique_ptr<Item>> items; // Those in front often die first.
    std::size_t numFields = 0;               // Among the items.

    bool isClearWanted = false;
    bool isInStep = true;    // The children are the rows of the items, in their order.
    bool isRowForRow = true; // One for each, as of the last update.
};

/// One object, or an empty link.
class ObjectTreeModel::ObjectRow : public Row {
public:
    ObjectRow(ObjectTreeModel &newModel, PtrT<Row> const &newParent, PtrT<Object> const &newObject);
    ~ObjectRow() override;

    Qt::ItemFlags flags() const override;
    std::string text() const override;
    QVariant decoration() const override;
    std::string tooltip() const override;
    void update(bool fetch) override;
    Way find(Path const &path, std::size_t pos, bool create) override;
    void getPath(Path &path, RefT<Row> const &child) override;

    using Fields = std::vector<PtrT<Field>>;
    /// The fields that are shown, in their order. None when the object is gone.
    Fields acceptedFields() const;
    ObjRow getObjRow();
    /// Drops what is left below a row whose object is gone.
    void forgetDeadObject();

    const PtrT<Object> object;

private:
    struct Links {
        PtrT<Field> field;
        Signal::Connection conChange, conLost;
    };

    Wanted wantedFields(Fields const &fields);
    Wanted wantedValues(Fields const &fields);
    void watchLinks(Fields const &fields);
    void watch(Links &links);
    void watchFields();
    void watchLabel();
    std::size_t positionOfValue(Path::Entry const &value) const;
    void onAddField(SigAddFieldData const &sigData);
    void onRemoveField(SigRemoveFieldData const &sigData);
    bool isLabel(Field &other) const;

    Signal::Connection conAddField, conRemoveField, conLabel;
    std::map<Field const *, Links> linkFields; // In hide mode.
};

/// One link field.
class ObjectTreeModel::FieldRow : public Row {
public:
    using Row::Row;

    Qt::ItemFlags flags() const override;
    std::string text() const override;
    Way find(Path const &path, std::size_t pos, bool create) override;
    /// Null once the field is gone.
    virtual PtrT<Field> getField() = 0;
};

/// A link field of one of the four kinds.
template <class FieldType>
class LinkRow : public ObjectTreeModel::FieldRow {
public:
    static constexpr bool isList = std::is_base_of_v<MField, FieldType>;

    LinkRow(ObjectTreeModel &newModel, PtrT<Row> const &newParent, FieldType &newField)
        : FieldRow(newModel, newParent, Row::fieldKind)
        , links(newField)
    {
        const auto mark = [this](auto const &) { requestUpdate(self); };
        if constexpr (isList)
            conChange = newField.sigReplace.connect(mark);
        else
            conChange = newField.sigSet.connect(mark);
        conLost = newField.sigLost.connect(mark);
    }
    ~LinkRow() override
    {
        conChange.disconnect();
        conLost.disconnect();
    }

    PtrT<Field> getField() override { return links; }

    void update(bool fetch) override
    {
        if constexpr (isList)
            updateList(fetch);
        else
            updateSingle(fetch);
    }

    void getPath(Path &path, RefT<Row> const &child) override
    {
        if (!links)
            return;
        if (!child)
            path.pushField(*links);
        else if constexpr (isList)
            path.pushValue(*links, positionOf(child.get()));
        else
            path.pushValue(*links);
    }

private:
    using ObjectRow = ObjectTreeModel::ObjectRow;

    void updateSingle(bool fetch)
    {
        if (links && (fetch || isFetched())) {
            const BusyRow busyRow(*this);
            const PtrT<Row> first = childAt(0);
            auto *const shown = static_cast<ObjectRow *>(first.get());
            const PtrT<Object> value(links->get());
            if (!shown || shown->object != value) {
                const RefT<Row> row(new ObjectRow(*model, PtrT<Row>(*this), value));
                insertRow(0, row);
                row->runUpdate(false);
            } else {
                shown->forgetDeadObject();
            }
        }
        if (!isGone())
            setChildCount(links ? 1 : 0);
    }

    void updateList(bool fetch)
    {
        if (!links) {
            setChildCount(0);
        } else if (!fetch && !isFetched()) {
            setChildCount(links->getNum());
        } else {
            const BusyRow busyRow(*this);
            const Wanted wanted = wantedValues();
            if (syncChildren(*this, wanted))
                setChildCount(wanted.entries.size());
        }
    }

    Wanted wantedValues()
    {
        Wanted wanted;
        wanted.addValues(*links);
        wanted.make = [this](std::size_t i) -> RefT<Row> {
            return links ? new ObjectRow(*model, PtrT<Row>(*this), linkAt(*links, i)) : nullptr;
        };
        return wanted;
    }

    const PtrT<FieldType> links;
    Signal::Connection conChange, conLost;
};

} // namespace ZR::VOM::GUI::V1
