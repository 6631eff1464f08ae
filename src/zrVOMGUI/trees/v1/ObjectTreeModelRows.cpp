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
    const auto offset = static_cast<std::ptrdiff_t>(index);
    items.insert(items.begin() + offset, newItems.begin(), newItems.end());
    std::vector<Signal::Connection> connections;
    connections.reserve(newItems.size());
    for (PtrT<Class> const &item : newItems)
        connections.push_back(item ? item->sigDelete.connect(*this, &Root::onItemDelete, item)
                                   : Signal::Connection());
    itemConnections.insert(itemConnections.begin() + offset, connections.begin(),
                           connections.end());
    runUpdate(false);
    return index;
}

void ObjectTreeModel::Root::onItemDelete(SigVoidData const &sigData)
{
    const auto item = std::find(items.begin(), items.end(), sigData.ptr);
    if (item == items.end())
        return;
    const auto connection = itemConnections.begin() + (item - items.begin());
    connection->disconnect();
    itemConnections.erase(connection);
    items.erase(item);
    runUpdate(false);
}

void ObjectTreeModel::Root::disconnectItems()
{
    for (Signal::Connection &connection : itemConnections)
        connection.disconnect();
}

/// KEPT: in hide mode nobody watches the fields that are top items: their values appear as of the
/// last update of the top. Hosts that put fields there show field rows.
void ObjectTreeModel::Root::update(bool)
{
    const BusyRow busyRow(*this);
    Wanted wanted;
    std::vector<PtrT<Object>> values;
    if (model->hiding) {
        for (PtrT<Class> const &item : items) {
            auto *const listed = cast<Field>(item);
            if (listed)
                wanted.addValues(*listed);
            else
                wanted.entries.push_back({item.get(), false});
            for (std::size_t i = 0, num = listed ? countLinks(*listed) : 1; i < num; ++i)
                values.push_back(listed ? linkAt(*listed, i) : PtrT<Object>(cast<Object>(item)));
        }
        wanted.make = [this, &values](std::size_t i) {
            return RefT<Row>(new ObjectRow(*model, PtrT<Row>(*this), values[i]));
        };
    } else {
        wanted.inRuns = false;
        wanted.entries.reserve(items.size());
        for (PtrT<Class> const &item : items)
            wanted.entries.push_back({item.get(), cast<Field>(item) != nullptr});
        wanted.make = [this](std::size_t i) -> RefT<Row> {
            if (i >= items.size())
                return {};
            if (auto *const listed = cast<Field>(items[i]))
                return model->newRow(RefT<Field>(*listed), PtrT<Row>(*this));
            return new ObjectRow(*model, PtrT<Row>(*this), cast<Object>(items[i]));
        };
    }
    if (syncChildren(*this, wanted))
        setChildCount(wanted.entries.size());
}

/// KEPT: what leads nowhere leads to the top. A path without a root is how views reach it. One that
/// ends at an object leads to the row of its root, whatever its steps: hosts ask in this way for the
/// object that they put there.
PtrT<ObjectTreeModel::Row> ObjectTreeModel::Root::find(Path const &path, std::size_t, bool create)
{
    for (RefT<Row> const &child : children) {
        if (child->kind == objectKind) {
            auto const &shown = static_cast<ObjectRow &>(*child).object;
            if (shown && shown == path.getRoot())
                return path.getType() == Path::Object ? PtrT<Row>(child)
                                                      : child->find(path, 0, create);
        } else if (path.getType() != Path::Object) {
            const PtrT<Field> shown = static_cast<FieldRow &>(*child).getField();
            if (shown && shown == path.get(0).field)
                return child->find(path, 0, create);
        }
    }
    return PtrT<Row>(*this);
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
    itemConnections.clear();
    if (busy || model->changesUnderWay != 0) {
        requestUpdate(self);
        return;
    }
    const RefT<Row> held(*this);
    model->beginResetModel();
    if (isGone())
        return;
    childCount = 0;
    dismantle(std::exchange(children, {}));
    ++numChanges;
    model->endResetModel();
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
    wanted.inRuns = false;
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
    const Change news(*model, &ObjectTreeModel::fieldNews);
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
    const Change news(*model, &ObjectTreeModel::fieldNews);
    model->setLeaving(*removed);
    if (isLabel(*removed)) {
        conLabel.disconnect();
        emitDataChanged();
    }
    if (!isGone() && (isInside || model->isAccepted(PtrT<Field>(removed))))
        requestUpdate(self);
}

PtrT<ObjectTreeModel::Row> ObjectTreeModel::ObjectRow::find(Path const &path, std::size_t pos,
                                                            bool create)
{
    if (pos >= path.getNum())
        return path.getType() == Path::Value ? PtrT<Row>(*this) : PtrT<Row>();
    Path::Entry const &entry = path.get(pos);
    if (!model->isAccepted(entry.field))
        return {};
    const RefT<Row> held(*this);
    fetchFor(create);
    if (isGone())
        return {};
    std::size_t position = 0;
    for (PtrT<Field> const &shown : acceptedFields()) {
        if (shown != entry.field) {
            position += model->hiding ? countLinks(*shown) : 0;
            continue;
        }
        if (!model->hiding)
            break;
        const PtrT<Row> child =
            entry.index < countLinks(*shown) ? childAt(position + entry.index) : PtrT<Row>();
        return child ? child->find(path, pos + 1, create) : PtrT<Row>();
    }
    for (RefT<Row> const &child : children)
        if (child->kind == fieldKind && static_cast<FieldRow &>(*child).getField() == entry.field)
            return child->find(path, pos, create);
    return {};
}

void ObjectTreeModel::ObjectRow::getPath(Path &path, RefT<Row> const &child)
{
    if (parent)
        parent->getPath(path, RefT<Row>(*this));
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

PtrT<ObjectTreeModel::Row> ObjectTreeModel::FieldRow::find(Path const &path, std::size_t pos,
                                                           bool create)
{
    if (pos >= path.getNum())
        return {};
    Path::Entry const &entry = path.get(pos);
    const bool isLast = pos + 1 == path.getNum();
    if (!entry.field || entry.field != getField())
        return {};
    if (isLast && path.getType() != Path::Value)
        return path.getType() == Path::Field ? PtrT<Row>(*this) : PtrT<Row>();
    const RefT<Row> held(*this);
    fetchFor(create);
    const PtrT<Row> child = childAt(entry.index);
    return isLast || !child ? child : child->find(path, pos + 1, create);
}

} // namespace ZR::VOM::GUI::V1
