// The kinds of rows.

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/presentation/ItemLabel.h"
#include "zrVOMGUI/trees/v1/private/ModelChange.h"
#include "zrVOMGUI/trees/v1/private/ModelRows.h"

#include <QIcon>
#include <QVariant>

#include <algorithm>

namespace ZR::VOM::GUI::V1 {

char const *const _ObjectTreeModelRowLabelObj0 = "[ZR::VOM::GUI::ObjectTreeModelRowLabelObj0]void";

ObjectTreeModel::Root::Root(ObjectTreeModel &newModel)
    : Row(newModel, {}, top)
{
}

ObjectTreeModel::Root::~Root()
{
    disconnectItems();
}

std::size_t ObjectTreeModel::Root::addItems(std::vector<PtrT<Class>> const &newItems,
                                            std::size_t index)
{
    index = std::min(index, items.size());
    std::vector<std::unique_ptr<Item>> added;
    added.reserve(newItems.size());
    for (PtrT<Class> const &target : newItems) {
        Item &item = *added.emplace_back(
            new Item{target, cast<Field>(target) != nullptr, Signal::Connection(), 0});
        numFields += item.isField;
        if (target)
            item.conDelete = target->sigDelete.connect(
                [this, &item](SigVoidData const &) { onItemDelete(item); });
    }
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(index),
                 std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
    onItemsChanged();
    return index;
}

/// Where an update is refused, rows and items part until the next one.
void ObjectTreeModel::Root::onItemsChanged()
{
    isInStep = false;
    runUpdate(false);
}

/// Items often die together, so one that dies costs no look at what the others stand for. Values of
/// fields that stand among the rows in hide mode follow with the next update of the marked rows.
void ObjectTreeModel::Root::onItemDelete(Item &item)
{
    const auto place = std::find_if(items.begin(), items.end(),
                                    [&](auto const &other) { return other.get() == &item; });
    if (place == items.end())
        return;
    const bool isKnown = isInStep && !isGone() && !busy && model->changesUnderWay == 0;
    const std::size_t first =
        isKnown ? firstRowOf(static_cast<std::size_t>(place - items.begin())) : 0;
    const std::unique_ptr<Item> dead = std::move(*place);
    items.erase(place);
    numFields -= dead->isField;
    dead->conDelete.disconnect();
    if (isKnown)
        takeOut(first, dead->numRows);
    else
        onItemsChanged();
}

/// \pre isInStep.
std::size_t ObjectTreeModel::Root::firstRowOf(std::size_t position) const
{
    if (isRowForRow)
        return position;
    std::size_t first = 0;
    for (std::size_t i = 0; i < position; ++i)
        first += items[i]->numRows;
    return first;
}

/// The rows behind them move to their place, so that those go that are last.
void ObjectTreeModel::Root::takeOut(std::size_t first, std::size_t count)
{
    {
        const BusyRow busyRow(*this);
        const std::size_t end = first + count;
        moveRows(end, children.size() - end, first);
        if (!isGone())
            setChildCount(children.size() - count);
        if (!isRowForRow)
            requestUpdate(self);
    }
    if (!isGone())
        model->finishChange();
}

void ObjectTreeModel::Root::disconnectItems()
{
    for (auto const &item : items)
        item->conDelete.disconnect();
}

Wanted::Entry ObjectTreeModel::Root::entryOf(Item const &item) const
{
    return {item.target.get(), item.isField && item.target};
}

/// KEPT: in hide mode nobody watches the fields that are top items: their values appear as of the
/// last update of the top. Hosts that put fields there show field rows.
void ObjectTreeModel::Root::update(bool)
{
    // Rows that are to go by a reset must not go one by one before.
    runClear();
    if (isGone())
        return;
    const BusyRow busyRow(*this);
    isRowForRow = !model->hiding || numFields == 0;
    isInStep = true; // Unless items change meanwhile.
    const Wanted wanted = model->hiding ? wantedValues() : wantedItems();
    if (syncChildren(*this, wanted))
        setChildCount(wanted.entries.size());
    else
        isInStep = false;
}

/// Rows come one by one, as if each item had been added by itself.
Wanted ObjectTreeModel::Root::wantedItems()
{
    Wanted wanted;
    wanted.insertsRuns = false;
    wanted.entries.reserve(items.size());
    for (auto const &item : items) {
        wanted.entries.push_back(entryOf(*item));
        item->numRows = 1;
    }
    wanted.make = [this](std::size_t i) -> RefT<Row> {
        if (i >= items.size())
            return {};
        PtrT<Class> const &target = items[i]->target;
        if (auto *const listed = items[i]->isField ? cast<Field>(target) : nullptr)
            return model->newRow(RefT<Field>(*listed), PtrT<Row>(*this));
        return new ObjectRow(*model, PtrT<Row>(*this), cast<Object>(target));
    };
    return wanted;
}

/// One by one, too.
Wanted ObjectTreeModel::Root::wantedValues()
{
    Wanted wanted;
    wanted.insertsRuns = false;
    std::vector<PtrT<Object>> values;
    for (auto const &item : items) {
        auto *const listed = item->isField ? cast<Field>(item->target) : nullptr;
        if (listed)
            wanted.addValues(*listed);
        else
            wanted.entries.push_back(entryOf(*item));
        item->numRows = listed ? countLinks(*listed) : 1;
        for (std::size_t i = 0; i < item->numRows; ++i)
            values.push_back(listed ? linkAt(*listed, i)
                                    : PtrT<Object>(cast<Object>(item->target)));
    }
    wanted.make = [this, shown = std::move(values)](std::size_t i) {
        return RefT<Row>(new ObjectRow(*model, PtrT<Row>(*this), shown[i]));
    };
    return wanted;
}

/// KEPT: what leads nowhere leads to the top. A path without a root is how views reach it. One that
/// ends at an object leads to the row of its root, whatever its steps: hosts ask in this way for
/// the object that they put there.
ObjectTreeModel::Row::Way ObjectTreeModel::Root::find(Path const &path, std::size_t, bool)
{
    for (Row *const child : children) {
        if (child->kind == objectKind) {
            auto const &shown = static_cast<ObjectRow &>(*child).object;
            if (shown && shown == path.getRoot())
                return {PtrT<Row>(child), 0, path.getType() == Path::Object};
        } else if (path.getType() != Path::Object) {
            const PtrT<Field> shown = static_cast<FieldRow &>(*child).getField();
            if (shown && shown == path.get(0).field)
                return {PtrT<Row>(child), 0};
        }
    }
    return {PtrT<Row>(*this), 0, true};
}

void ObjectTreeModel::Root::getPath(Path &path, RefT<Row> const &child)
{
    if (!child)
        return;
    if (child->kind == objectKind) {
        path = Path(static_cast<ObjectRow &>(*child).object);
        return;
    }
    const PtrT<Field> listed = static_cast<FieldRow &>(*child).getField();
    path = Path(PtrT<Object>(listed ? listed->owner : nullptr));
}

void ObjectTreeModel::Root::clear()
{
    disconnectItems();
    items.clear();
    numFields = 0;
    isInStep = false;
    isClearWanted = true;
    runClear();
}

void ObjectTreeModel::Root::runClear()
{
    if (!isClearWanted || busy || model->changesUnderWay != 0)
        return;
    isClearWanted = false;
    const RefT<Row> held(*this);
    Change change(*model);
    model->beginResetModel();
    childCount = 0;
    dismantle(std::exchange(children, {}));
    ++numChanges;
    isInStep = items.empty();
    change.end();
    model->endResetModel();
    if (isGone())
        return;
    SigVoidData sigData;
    model->sigClear.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeModel::clear");
}

ObjectTreeModel::ObjectRow::ObjectRow(ObjectTreeModel &newModel, PtrT<Row> const &newParent,
                                      PtrT<Object> const &newObject)
    : Row(newModel, newParent, objectKind)
    , object(newObject)
{
    watchFields();
}

ObjectTreeModel::ObjectRow::~ObjectRow()
{
    for (Signal::Connection *connection : {&conAddField, &conRemoveField, &conLabel})
        connection->disconnect();
    watchLinks({});
}

Qt::ItemFlags ObjectTreeModel::ObjectRow::flags() const
{
    const Qt::ItemFlags always = Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsEnabled;
    return model->hiding ? always | Qt::ItemIsDropEnabled : always;
}

std::string ObjectTreeModel::ObjectRow::text() const
{
    if (!object)
        return getLocText(_ObjectTreeModelRowLabelObj0);
    return getItemLabel(RefT<Object>(object), model->fieldName, model->typeName, false);
}

QVariant ObjectTreeModel::ObjectRow::decoration() const
{
    if (!object || !model->objIconDB)
        return {};
    // A host's database may do anything, also to this row.
    const RefT<Object> held(object);
    const RefT<ObjectIconDB> db = model->objIconDB;
    QIcon icon;
    tryCatch("ZR::VOM::GUI::V1::ObjectTreeModel::data", [&] { icon = db->find(held); });
    return icon;
}

std::string ObjectTreeModel::ObjectRow::tooltip() const
{
    if (model->fieldTooltip.empty() || !object)
        return {};
    auto const *const tip = cast<FieldString>(object->findField(model->fieldTooltip));
    return tip ? tip->get() : std::string();
}

ObjectTreeModel::ObjRow ObjectTreeModel::ObjectRow::getObjRow()
{
    return {this, object};
}

void ObjectTreeModel::ObjectRow::update(bool fetch)
{
    const Fields fields = acceptedFields();
    watchLinks(model->hiding ? fields : Fields());
    if (fetch || isFetched()) {
        const BusyRow busyRow(*this);
        const Wanted wanted = model->hiding ? wantedValues(fields) : wantedFields(fields);
        if (syncChildren(*this, wanted))
            setChildCount(wanted.entries.size());
    } else if (model->hiding) {
        std::size_t num = 0;
        for (PtrT<Field> const &shown : fields)
            num += countLinks(*shown);
        setChildCount(num);
    } else {
        setChildCount(fields.size());
    }
}

void ObjectTreeModel::ObjectRow::forgetDeadObject()
{
    if (!object && childCount != 0)
        runUpdate(false);
}

ObjectTreeModel::ObjectRow::Fields ObjectTreeModel::ObjectRow::acceptedFields() const
{
    Fields fields;
    for (std::size_t i = 0; object && i < object->getNumFields(); ++i) {
        const PtrT<Field> other(object->getField(i));
        // Also what isn't what its type code says has no row.
        if (!model->isLeaving(*other) && model->isAccepted(other) &&
            visitLinkField(*other, [](auto &) {}))
            fields.push_back(other);
    }
    return fields;
}

Wanted ObjectTreeModel::ObjectRow::wantedFields(Fields const &fields)
{
    Wanted wanted;
    wanted.insertsRuns = wanted.movesRuns = false;
    wanted.entries.reserve(fields.size());
    for (PtrT<Field> const &shown : fields)
        wanted.entries.push_back({shown.get(), true});
    wanted.make = [this, &fields](std::size_t i) -> RefT<Row> {
        return model->newRow(RefT<Field>(fields[i]), PtrT<Row>(*this));
    };
    return wanted;
}

Wanted ObjectTreeModel::ObjectRow::wantedValues(Fields const &fields)
{
    Wanted wanted;
    std::vector<std::size_t> ends; // Of each field's values.
    for (PtrT<Field> const &shown : fields) {
        wanted.addValues(*shown);
        ends.push_back(wanted.entries.size());
    }
    wanted.make = [this, &fields, ends](std::size_t i) -> RefT<Row> {
        const auto end = std::upper_bound(ends.begin(), ends.end(), i);
        const auto which = static_cast<std::size_t>(end - ends.begin());
        const std::size_t begin = which == 0 ? 0 : ends[which - 1];
        if (!fields[which])
            return {};
        return new ObjectRow(*model, PtrT<Row>(*this), linkAt(*fields[which], i - begin));
    };
    return wanted;
}

/// Watches the values of these fields, and no others.
void ObjectTreeModel::ObjectRow::watchLinks(Fields const &fields)
{
    std::map<Field const *, Links> watched;
    for (PtrT<Field> const &shown : fields) {
        const auto old = linkFields.find(shown.get());
        // A new field may have the address of one that died.
        if (old != linkFields.end() && old->second.field)
            watched.insert(linkFields.extract(old));
        else
            watch(watched[shown.get()] = {shown, {}, {}});
    }
    linkFields.swap(watched);
    for (auto &[address, links] : watched) {
        links.conChange.disconnect();
        links.conLost.disconnect();
    }
}

void ObjectTreeModel::ObjectRow::watch(Links &links)
{
    const auto mark = [this](auto const &) { requestUpdate(self); };
    visitLinkField(*links.field, [&](auto &shown) {
        if constexpr (std::is_base_of_v<MField, std::decay_t<decltype(shown)>>)
            links.conChange = shown.sigReplace.connect(mark);
        else
            links.conChange = shown.sigSet.connect([this, &shown](auto const &sigData) {
                if (*sigData.old != shown.get())
                    requestUpdate(self);
            });
        links.conLost = shown.sigLost.connect(mark);
    });
}

/// KEPT: without a field name nobody watches fields come and go. Large models without names pay for
/// no connection, and such a row meets a new field when something else updates it.
void ObjectTreeModel::ObjectRow::watchFields()
{
    if (!object || model->fieldName.empty())
        return;
    conAddField = object->sigAddField.connect(*this, &ObjectRow::onAddField);
    conRemoveField = object->sigRemoveField.connect(*this, &ObjectRow::onRemoveField);
    watchLabel();
}

void ObjectTreeModel::ObjectRow::watchLabel()
{
    conLabel.disconnect();
    if (auto *const label = cast<FieldString>(object->findField(model->fieldName)))
        conLabel = label->sigSet.connect([this](auto const &) { emitDataChanged(); });
}

bool ObjectTreeModel::ObjectRow::isLabel(Field &other) const
{
    return other.name == model->fieldName && dynamic_cast<FieldString *>(&other);
}

void ObjectTreeModel::ObjectRow::onAddField(SigAddFieldData const &sigData)
{
    // A listener before this one may have removed it again.
    if (isGone() || !object || sigData.index >= object->getNumFields())
        return;
    const RefT<Row> held(*this);
    const RefT<Field> added = object->getField(sigData.index);
    // News inside news of another field end those, and rows behind this one miss them.
    const bool isInside = model->fieldNews != 0;
    const FieldNews news(*model);
    model->leavingFields.erase(added.get());
    if (isLabel(*added)) {
        emitDataChanged();
        if (!isGone() && object)
            watchLabel();
    }
    if (!isGone() && (isInside || model->isAccepted(PtrT<Field>(added))))
        requestUpdate(self);
}

void ObjectTreeModel::ObjectRow::onRemoveField(SigRemoveFieldData const &sigData)
{
    if (isGone())
        return;
    const RefT<Row> held(*this);
    const RefT<Field> removed = *sigData.field;
    const bool isInside = model->fieldNews != 0;
    const FieldNews news(*model);
    model->setLeaving(*removed);
    if (isLabel(*removed)) {
        conLabel.disconnect();
        emitDataChanged();
    }
    if (!isGone() && (isInside || model->isAccepted(PtrT<Field>(removed))))
        requestUpdate(self);
}

/// The position of a field's value among all of them, which beyond the field's end is that of a
/// value of the next ones; the number of children beyond the end of all.
std::size_t ObjectTreeModel::ObjectRow::positionOfValue(Path::Entry const &value) const
{
    const std::size_t num = children.size();
    std::size_t begin = 0;
    for (PtrT<Field> const &shown : acceptedFields()) {
        if (shown == value.field)
            return begin <= num ? begin + std::min(value.index, num - begin) : num;
        begin += countLinks(*shown);
    }
    return num;
}

ObjectTreeModel::Row::Way ObjectTreeModel::ObjectRow::find(Path const &path, std::size_t pos,
                                                           bool create)
{
    if (pos >= path.getNum())
        return {path.getType() == Path::Value ? PtrT<Row>(*this) : PtrT<Row>(), pos, true};
    Path::Entry const &entry = path.get(pos);
    if (!model->isAccepted(entry.field))
        return {};
    fetchFor(create);
    if (isGone())
        return {};
    if (model->hiding)
        return {childAt(positionOfValue(entry)), pos + 1};
    for (Row *const child : children)
        if (child->kind == fieldKind && static_cast<FieldRow &>(*child).getField() == entry.field)
            return {PtrT<Row>(child), pos};
    return {};
}

void ObjectTreeModel::ObjectRow::getPath(Path &path, RefT<Row> const &child)
{
    if (!child || child->kind != objectKind || !model->hiding)
        return;
    std::size_t position = positionOf(child.get());
    for (PtrT<Field> const &shown : acceptedFields()) {
        const std::size_t num = countLinks(*shown);
        if (position >= num) {
            position -= num;
            continue;
        }
        if (auto *const list = cast<MField>(shown))
            path.pushValue(*list, position);
        else
            path.pushValue(*shown);
        return;
    }
}

Qt::ItemFlags ObjectTreeModel::FieldRow::flags() const
{
    return Qt::ItemIsSelectable | Qt::ItemIsDropEnabled | Qt::ItemIsEnabled;
}

std::string ObjectTreeModel::FieldRow::text() const
{
    const PtrT<Field> shown = const_cast<FieldRow *>(this)->getField();
    return shown ? shown->name : std::string();
}

ObjectTreeModel::Row::Way ObjectTreeModel::FieldRow::find(Path const &path, std::size_t pos,
                                                          bool create)
{
    if (pos >= path.getNum())
        return {};
    Path::Entry const &entry = path.get(pos);
    const bool isLast = pos + 1 == path.getNum();
    if (!entry.field || entry.field != getField())
        return {};
    if (isLast && path.getType() != Path::Value)
        return {path.getType() == Path::Field ? PtrT<Row>(*this) : PtrT<Row>(), pos, true};
    fetchFor(create);
    return {childAt(entry.index), pos + 1, isLast};
}

} // namespace ZR::VOM::GUI::V1
