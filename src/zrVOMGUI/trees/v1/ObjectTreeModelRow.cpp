// What all rows do: marks, changes of children, positions.

#include "zrVOMGUI/trees/v1/private/ModelChange.h"
#include "zrVOMGUI/trees/v1/private/ModelRows.h"

#include <algorithm>
#include <deque>

namespace ZR::VOM::GUI::V1 {

ObjectTreeModel::Row::Row(ObjectTreeModel &newModel, PtrT<Row> const &newParent, Kind newKind)
    : model(&newModel)
    , parent(newParent)
    , kind(newKind)
{
    // Most rows are made at rising addresses.
    model->liveRows.insert(model->liveRows.end(), this);
}

ObjectTreeModel::Row::~Row()
{
    if (model)
        model->liveRows.erase(this);
}

QVariant ObjectTreeModel::Row::decoration() const
{
    return {};
}

std::string ObjectTreeModel::Row::tooltip() const
{
    return {};
}

void ObjectTreeModel::Row::requestUpdate(unsigned bits)
{
    // Any update would pass a busy row over, and leave the mark.
    if (busy && (bits & self))
        isMarkedWhileBusy = true;
    else if (mark(bits))
        model->tellMarks();
}

/// Whether it is the first mark of all.
bool ObjectTreeModel::Row::mark(unsigned bits)
{
    for (Row *row = this; row && row->model; row = row->parent.get()) {
        const bool isFirst = row->pending == 0;
        row->pending |= bits;
        if (!isFirst)
            return false;
        if (row->kind == top)
            return true;
        bits = below;
    }
    return false;
}

/// No signal from here, in the middle of functions: the end of runUpdate() tells.
void ObjectTreeModel::Row::setIdle()
{
    busy = false;
    if (std::exchange(isMarkedWhileBusy, false) && mark(self))
        model->isUntold = true;
}

void ObjectTreeModel::Row::runUpdate(bool fetch)
{
    if (isGone())
        return;
    if (busy || model->changesUnderWay != 0) {
        requestUpdate(self);
        return;
    }
    const QPointer<ObjectTreeModel> updated(model);
    const RefT<Row> held(*this);
    // Nothing is left to do for the mark; those above it keep what was told from being told again.
    if (pending & self)
        pending = (pending & ~self) | below;
    update(fetch);
    // Last of all: a slot may destroy the model.
    if (updated)
        updated->finishChange();
}

/// Makes the rows on the way of a path that may make them.
void ObjectTreeModel::Row::fetchFor(bool create)
{
    if (create && !isFetched())
        runUpdate(true);
}

PtrT<ObjectTreeModel::Row> ObjectTreeModel::Row::childAt(std::size_t position) const
{
    return position < children.size() ? PtrT<Row>(children[position]) : PtrT<Row>();
}

std::size_t ObjectTreeModel::Row::positionOf(Row const *child) const
{
    const std::size_t num = children.size();
    if (!child || num == 0)
        return num;
    const std::size_t guess = std::min(child->lastPosition, num - 1);
    for (std::size_t distance = 0; distance <= guess || guess + distance < num; ++distance) {
        for (const std::size_t position : {guess + distance, guess - distance}) {
            if (position < num && children[position] == child) {
                child->lastPosition = position;
                return position;
            }
        }
    }
    return num;
}

void ObjectTreeModel::Row::emitDataChanged()
{
    if (isGone())
        return;
    const QModelIndex index = model->getIndex(*this);
    if (index.isValid())
        Q_EMIT model->dataChanged(index, index);
}

void ObjectTreeModel::Row::setChildCount(std::size_t num)
{
    if (isGone())
        return;
    if (children.empty()) {
        if (childCount != num) {
            childCount = num;
            emitDataChanged();
        }
    } else if (num < children.size()) {
        removeChildren(num);
    }
}

void ObjectTreeModel::Row::insertRows(std::size_t pos, std::vector<RefT<Row>> const &rows)
{
    Change change(*model);
    const int first = static_cast<int>(pos);
    model->beginInsertRows(model->getIndex(*this), first,
                           first + static_cast<int>(rows.size()) - 1);
    std::vector<Row *> inserted;
    inserted.reserve(rows.size());
    for (RefT<Row> const &row : rows) {
        row->selfRef = row;
        inserted.push_back(row.get());
    }
    children.insert(children.begin() + first, inserted.begin(), inserted.end());
    childCount = children.size();
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i]->lastPosition = pos + i;
    ++numChanges;
    change.end();
    model->endInsertRows();

    std::vector<ObjRow> added;
    for (RefT<Row> const &row : rows)
        if (row->kind == objectKind)
            added.push_back(static_cast<ObjectRow &>(*row).getObjRow());
    if (isGone() || added.empty())
        return;
    SigObjRowData sigData;
    sigData.rows = &added;
    model->sigRowsAdded.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeModel::insertRows");
}

void ObjectTreeModel::Row::moveRows(std::size_t from, std::size_t count, std::size_t to)
{
    if (from == to || count == 0)
        return;
    Change change(*model);
    const QModelIndex index = model->getIndex(*this);
    const int first = static_cast<int>(from);
    const int last = static_cast<int>(from + count) - 1;
    const int before = static_cast<int>(to);
    if (!model->beginMoveRows(index, first, last, index, before))
        return;
    const auto begin = children.begin();
    std::rotate(begin + before, begin + first, begin + last + 1);
    // The others are no further away than these are many.
    const bool isMoveOfFew = count <= from - to;
    const std::size_t fewBegin = isMoveOfFew ? to : to + count;
    const std::size_t fewEnd = isMoveOfFew ? to + count : from + count;
    for (std::size_t i = fewBegin; i < fewEnd; ++i)
        children[i]->lastPosition = i;
    ++numChanges;
    change.end();
    model->endMoveRows();
}

namespace {

/// Children that are to go, while those below them go first.
struct Removal {
    Removal(ObjectTreeModel::Row &fromRow, std::size_t newSize)
        : busy(fromRow)
        , row(fromRow)
        , num(newSize)
        , next(fromRow.children.size())
    {
    }

    const BusyRow busy;
    ObjectTreeModel::Row &row;
    const std::size_t num; // Of children that stay.
    std::size_t next;      // Those from here on have nothing below them any more.
    std::vector<ObjectTreeModel::ObjRow> objRows;
};

} // namespace

/// Takes the subtrees down from the bottom, the last child first.
void ObjectTreeModel::Row::removeChildren(std::size_t num)
{
    // An explicit stack: trees are as deep as the user has opened them.
    std::deque<Removal> removals;
    removals.emplace_back(*this, num);
    while (!removals.empty()) {
        Removal &removal = removals.back();
        // Busy rows go only all at once, with their model or by its reset.
        if (removal.row.isGone())
            return;
        if (removal.next == removal.num) {
            removal.row.removeLast(removal.num, removal.objRows);
            removals.pop_back();
            continue;
        }
        const RefT<Row> child = removal.row.children[--removal.next];
        if (child->kind == objectKind)
            removal.objRows.push_back(static_cast<ObjectRow &>(*child).getObjRow());
        if (child->children.empty())
            child->setChildCount(0);
        else
            removals.emplace_back(*child, 0);
    }
}

void ObjectTreeModel::Row::removeLast(std::size_t num, std::vector<ObjRow> const &objRows)
{
    if (!objRows.empty()) {
        SigObjRowData sigData;
        sigData.rows = &objRows;
        model->sigRowsRemoved.emitCatching(sigData,
                                           "ZR::VOM::GUI::V1::ObjectTreeModel::setChildCount");
        if (isGone())
            return;
    }
    Change change(*model);
    const auto first = children.begin() + static_cast<std::ptrdiff_t>(num);
    model->beginRemoveRows(model->getIndex(*this), static_cast<int>(num),
                           static_cast<int>(children.size()) - 1);
    std::vector<Row *> removed(first, children.end());
    children.erase(first, children.end());
    childCount = children.size();
    dismantle(std::move(removed));
    ++numChanges;
    change.end();
    model->endRemoveRows();
}

void ObjectTreeModel::Row::dismantle(std::vector<Row *> &&rows)
{
    std::vector<Row *> taken = std::move(rows);
    while (!taken.empty()) {
        const RefT<Row> row(*taken.back());
        taken.pop_back();
        row->selfRef.reset();
        if (row->model)
            row->model->liveRows.erase(row.get());
        row->model = nullptr;
        taken.insert(taken.end(), row->children.begin(), row->children.end());
        row->children.clear();
    }
}

} // namespace ZR::VOM::GUI::V1
