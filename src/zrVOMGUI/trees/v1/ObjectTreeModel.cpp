#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include "zrVOMGUI/trees/v1/private/ModelRows.h"

#include <QPointer>
#include <QTimer>

#include <vector>

namespace ZR::VOM::GUI::V1 {

ObjectTreeModel::ObjectTreeModel(RefT<Exporter> const &newExporter,
                                 RefT<Xml::Importer> const &newImporter)
    : exporter(newExporter)
    , importer(newImporter)
{
    beginResetModel();
    root = new Root(*this);
    endResetModel();
}

ObjectTreeModel::~ObjectTreeModel()
{
    conObjIconDB.disconnect();
    // Functions of rows that are under way hold their rows.
    liveRows.clear();
    Row::dismantle({root.get()});
}

template <class Operation>
void ObjectTreeModel::relayout(Operation const &change)
{
    const QPointer<ObjectTreeModel> self(this);
    Q_EMIT layoutAboutToBeChanged();
    if (!self)
        return;
    change();
    Q_EMIT layoutChanged();
}

/// KEPT: also the same database again lays the rows out. Hosts tell in this way that it has other
/// icons now.
void ObjectTreeModel::setObjIconDB(RefT<ObjectIconDB> const &db)
{
    const RefT<ObjectIconDB> newDB = db;
    relayout([&] {
        conObjIconDB.disconnect();
        objIconDB = newDB;
        if (objIconDB)
            conObjIconDB =
                objIconDB->sigDelete.connect(*this, &ObjectTreeModel::onRefObjIconDBSigDelete);
    });
}

void ObjectTreeModel::onRefObjIconDBSigDelete(SigVoidData const &)
{
    setObjIconDB({});
}

/// KEPT: rows that exist go on watching the field of the old name. Hosts set the name before they
/// add rows, and pay for no second walk over them.
void ObjectTreeModel::setFieldName(std::string const &name)
{
    if (fieldName != name)
        relayout([&] { fieldName = name; });
}

void ObjectTreeModel::setTypeName(bool on)
{
    if (typeName != on)
        relayout([&] { typeName = on; });
}

void ObjectTreeModel::setFieldTooltip(std::string const &name)
{
    if (fieldTooltip != name)
        relayout([&] { fieldTooltip = name; });
}

void ObjectTreeModel::hideFields(bool on)
{
    if (std::exchange(hiding, on) != on)
        updateAllRows();
}

void ObjectTreeModel::addAcceptedField(std::string const &className,
                                       std::string const &acceptedName)
{
    if (acceptedFields.add(className, acceptedName))
        updateAllRows();
}

void ObjectTreeModel::removeAcceptedField(std::string const &className,
                                          std::string const &acceptedName)
{
    if (acceptedFields.remove(className, acceptedName))
        updateAllRows();
}

/// KEPT: no row is updated. Hosts clear the filter to fill it anew, and rows change once, by what
/// they add.
void ObjectTreeModel::clearAcceptedFields()
{
    acceptedFields.clear();
}

bool ObjectTreeModel::isAccepted(PtrT<Field> const &field) const
{
    return field && isLinkType(field->getType()) &&
           (acceptedFields.empty() || acceptedFields.matches(*field));
}

/// A removal is told before the field has gone, and a listener may refuse it. An update that comes
/// between shows the field no more; what is still there once the removal is over comes back.
void ObjectTreeModel::setLeaving(Field &field)
{
    if (leavingFields.empty())
        QMetaObject::invokeMethod(this, &ObjectTreeModel::onRemovalsOver, Qt::QueuedConnection);
    leavingFields[&field] = field;
}

bool ObjectTreeModel::isLeaving(Field const &field) const
{
    // Another field may have the address of one that died.
    const auto place = leavingFields.find(&field);
    return place != leavingFields.end() && place->second;
}

void ObjectTreeModel::onRemovalsOver()
{
    std::set<Object const *> refusers;
    for (auto const &[address, field] : std::exchange(leavingFields, {}))
        if (field && field->owner)
            refusers.insert(field->owner);
    if (refusers.empty())
        return;
    std::vector<RefT<Row>> rows;
    for (Row *const row : liveRows)
        if (row->kind == Row::objectKind &&
            refusers.count(static_cast<ObjectRow *>(row)->object.get()))
            rows.emplace_back(*row);
    for (RefT<Row> const &row : rows)
        row->requestUpdate(Row::self);
}

void ObjectTreeModel::updateAllRows()
{
    forAllRows(RefT<Row>(root), [](RefT<Row> const &row) { row->runUpdate(false); });
}

/// Parents first. The operation may change rows.
void ObjectTreeModel::forAllRows(RefT<Row> const &top, void (*operation)(RefT<Row> const &))
{
    // An explicit stack: trees are as deep as the user has opened them. It holds all children that
    // a row has at this time, since a slot may take out some of them.
    std::vector<RefT<Row>> rows{top};
    while (!rows.empty()) {
        const RefT<Row> row = std::move(rows.back());
        rows.pop_back();
        operation(row);
        rows.insert(rows.end(), row->children.rbegin(), row->children.rend());
    }
}

std::size_t ObjectTreeModel::addItem(PtrT<Class> const &item, std::size_t index)
{
    return root->addItems({item}, index);
}

std::size_t ObjectTreeModel::addRow(PtrT<Object> const &obj, std::size_t index)
{
    return addItem(PtrT<Class>(obj), index);
}

void ObjectTreeModel::addRows(std::vector<PtrT<Object>> const &objs, std::size_t index)
{
    // All items, and then one update, which inserts the same rows one by one.
    root->addItems({objs.begin(), objs.end()}, index);
}

void ObjectTreeModel::clear()
{
    root->clear();
}

void ObjectTreeModel::update()
{
    // Slots may mark rows again. One that does so each time must not keep this from ending.
    constexpr int maxPasses = 4;
    if (isUpdating)
        return;
    if (changesUnderWay != 0) {
        isUntold = true;
        return;
    }
    const QPointer<ObjectTreeModel> self(this);
    isUpdating = true;
    for (int pass = 0; self && pass < maxPasses && root->pending != 0; ++pass)
        updateMarked();
    if (!self)
        return;
    isUpdating = false;
    if (root->pending != 0)
        tellMarks();
}

/// Updates the rows that are marked, parents first. Marks of this time go into the next pass, if
/// they come upon a row that was passed already.
void ObjectTreeModel::updateMarked()
{
    struct Visit {
        RefT<Row> row;
        unsigned numChanges;
        std::size_t next;
    };
    std::vector<Visit> visits;
    const auto visit = [&visits](RefT<Row> const &row) {
        const unsigned bits = std::exchange(row->pending, 0);
        if (bits & Row::self)
            row->runUpdate(bits & Row::fetching);
        if (bits & Row::below)
            visits.push_back({row, row->numChanges, 0});
    };
    visit(RefT<Row>(root));
    while (!visits.empty()) {
        Visit &top = visits.back();
        std::vector<Row *> const &siblings = top.row->children;
        while (top.next < siblings.size() && siblings[top.next]->pending == 0)
            ++top.next;
        if (top.next < siblings.size()) {
            visit(RefT<Row>(siblings[top.next++]));
            continue;
        }
        // A slot that changed the rows here may have moved marked ones to where none is looked for.
        if (top.row->numChanges != top.numChanges)
            top.row->requestUpdate(Row::below);
        visits.pop_back();
    }
}

/// Asks for an update, where one would do something.
void ObjectTreeModel::tellMarks()
{
    if (isUpdating)
        return;
    isUntold = changesUnderWay != 0;
    if (isUntold)
        return;
    if (isTelling) {
        // From here a listener that updates at once, and marks rows each time, would have no end.
        // Nor would posted events, which are all handled in one turn of the event loop.
        if (!std::exchange(isToldLater, true))
            QTimer::singleShot(1, this, &ObjectTreeModel::tellMarksLeft);
        return;
    }
    const QPointer<ObjectTreeModel> self(this);
    isTelling = true;
    requestUpdate();
    if (self)
        isTelling = false;
}

/// From the event loop. It may be that of a dialog which a listener has opened.
void ObjectTreeModel::tellMarksLeft()
{
    isToldLater = false;
    if (root->pending == 0)
        return;
    const QPointer<ObjectTreeModel> self(this);
    const bool before = std::exchange(isTelling, false);
    tellMarks();
    if (self)
        isTelling = before;
}

/// After a change of rows: what had to wait for its end.
void ObjectTreeModel::finishChange()
{
    const QPointer<ObjectTreeModel> self(this);
    root->runClear();
    if (self && isUntold && root->pending != 0)
        tellMarks();
}

void ObjectTreeModel::requestUpdate()
{
    SigVoidData sigData;
    sigUpdate.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeModel::requestUpdate");
}

QModelIndex ObjectTreeModel::makeIndex(Path const &path, bool create)
{
    RefT<Row> row(root);
    for (Row::Way way{PtrT<Row>(row), 0}; row && !way.isFound; row = way.row)
        way = row->find(path, way.pos, create);
    return row && !row->isGone() ? getIndex(*row) : QModelIndex();
}

bool ObjectTreeModel::getPath(QModelIndex const &index, Path &path) const
{
    path.clear();
    const RefT<Row> row = getRow(index);
    if (!row || row == root)
        return false;
    getPath(PtrT<Row>(row), path);
    return true;
}

void ObjectTreeModel::getPath(PtrT<Row> const &row, Path &path) const
{
    std::vector<RefT<Row>> way;
    for (Row *at = row.get(); at; at = at->parent.get())
        way.emplace_back(*at);
    for (std::size_t i = way.size(); i-- != 0;)
        way[i]->getPath(path, i == 0 ? RefT<Row>() : way[i - 1]);
}

ObjectTreeModel::ObjRow ObjectTreeModel::getObjRow(QModelIndex const &index) const
{
    const RefT<Row> row = getRow(index);
    if (!row || row->kind != Row::objectKind)
        return {nullptr, {}};
    return static_cast<ObjectRow &>(*row).getObjRow();
}

QModelIndex ObjectTreeModel::getIndex(ObjectRow *row) const
{
    return row && liveRows.count(row) != 0 ? getIndex(static_cast<Row &>(*row)) : QModelIndex();
}

QModelIndex ObjectTreeModel::getIndex(Row &row) const
{
    if (&row == root.get())
        return createIndex(0, 0, &row);
    const Row *const parentRow = row.parent.get();
    const std::size_t position = parentRow ? parentRow->positionOf(&row) : 0;
    if (!parentRow || position >= parentRow->children.size())
        return {};
    return createIndex(static_cast<int>(position), 0, &row);
}

RefT<ObjectTreeModel::Row> ObjectTreeModel::getRow(QModelIndex const &index) const
{
    if (index.model() != this)
        return {};
    // The address may be that of a row that is gone: it is looked up before it is touched.
    auto *const row = static_cast<Row *>(index.internalPointer());
    return liveRows.count(row) != 0 ? RefT<Row>(row) : RefT<Row>();
}

RefT<ObjectTreeModel::FieldRow> ObjectTreeModel::newRow(RefT<Field> const &field,
                                                        PtrT<Row> const &parentRow)
{
    RefT<FieldRow> row;
    if (field)
        visitLinkField(*field, [&](auto &links) {
            row = new LinkRow<std::decay_t<decltype(links)>>(*this, parentRow, links);
        });
    return row;
}

/// KEPT: without a parent every row number gives the top, which views take as their root index.
QModelIndex ObjectTreeModel::index(int row, int column, QModelIndex const &parentIndex) const
{
    if (column != 0)
        return {};
    if (!parentIndex.isValid())
        return createIndex(0, 0, root.get());
    const RefT<Row> parentRow = getRow(parentIndex);
    if (!parentRow || row < 0 || static_cast<std::size_t>(row) >= parentRow->children.size())
        return {};
    Row &child = *parentRow->children[static_cast<std::size_t>(row)];
    child.lastPosition = static_cast<std::size_t>(row);
    return createIndex(row, 0, &child);
}

QModelIndex ObjectTreeModel::parent(QModelIndex const &index) const
{
    const RefT<Row> row = getRow(index);
    Row *const parentRow = row ? row->parent.get() : nullptr;
    return parentRow ? getIndex(*parentRow) : QModelIndex();
}

int ObjectTreeModel::rowCount(QModelIndex const &parentIndex) const
{
    if (!parentIndex.isValid())
        return 1;
    const RefT<Row> row = getRow(parentIndex);
    return row ? static_cast<int>(row->children.size()) : 0;
}

bool ObjectTreeModel::hasChildren(QModelIndex const &parentIndex) const
{
    if (!parentIndex.isValid())
        return true;
    const RefT<Row> row = getRow(parentIndex);
    return row && row->childCount != 0;
}

int ObjectTreeModel::columnCount(QModelIndex const &) const
{
    return 1;
}

bool ObjectTreeModel::canFetchMore(QModelIndex const &parentIndex) const
{
    const RefT<Row> row = getRow(parentIndex);
    return row && row->childCount != 0 && !row->isFetched();
}

void ObjectTreeModel::fetchMore(QModelIndex const &parentIndex)
{
    if (!parentIndex.isValid())
        RefT<Row>(root)->runUpdate(false);
    else if (const RefT<Row> row = getRow(parentIndex))
        row->runUpdate(true);
}

QVariant ObjectTreeModel::data(QModelIndex const &index, int role) const
{
    const RefT<Row> row = getRow(index);
    if (!row)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromStdString(row->text());
    case Qt::DecorationRole:
        return row->decoration();
    case Qt::ToolTipRole:
        return QString::fromStdString(row->tooltip());
    default:
        return {};
    }
}

Qt::ItemFlags ObjectTreeModel::flags(QModelIndex const &index) const
{
    const RefT<Row> row = getRow(index);
    return row ? row->flags() : Qt::ItemFlags(Qt::NoItemFlags);
}

} // namespace ZR::VOM::GUI::V1
