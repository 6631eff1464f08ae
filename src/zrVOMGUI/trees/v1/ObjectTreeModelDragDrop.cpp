// What a drag from the model carries, and where a drop may land. The host carries drops out.

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/canDrop.h"
#include "zrVOMGUI/trees/v1/private/ModelRows.h"

#include <QMimeData>
#include <QPointer>
#include <QStringList>

namespace ZR::VOM::GUI::V1 {

struct ObjectTreeModel::DropData {
    Qt::DropAction action = Qt::IgnoreAction;
    std::vector<RefT<Object>> objs, copyObjs;
    bool fromXml = false;
    Path rowPath{PtrT<Object>()};
    std::int64_t row = -1;
    Path fieldPath{PtrT<Object>()};
    std::uint64_t index = 0;

    void tell(SigDropData &sigData) const
    {
        sigData.action = action;
        sigData.objs = &objs;
        sigData.copyObjs = &copyObjs;
        sigData.fromXml = fromXml;
        sigData.rowPath = &rowPath;
        sigData.row = row;
        sigData.fieldPath = &fieldPath;
        sigData.index = index;
    }
};

/// KEPT: the set of types isn't told. Hosts keep their own types there, and views that ask for this
/// list decide by canDropMimeData() alone.
QStringList ObjectTreeModel::mimeTypes() const
{
    return {};
}

Qt::DropActions ObjectTreeModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

/// KEPT: copies are made at every start of a drag, whether or not it ends in a copy, and a row
/// whose object is gone is carried as nothing: receivers find both lists by address, and count on a
/// place for each row.
QMimeData *ObjectTreeModel::mimeData(QModelIndexList const &indexes) const
{
    std::vector<RefT<Object>> objs;
    for (QModelIndex const &index : indexes)
        if (const ObjRow objRow = getObjRow(index); objRow.row)
            objs.emplace_back(objRow.obj);
    std::vector<RefT<Object>> copies;
    tryCatch("ZR::VOM::GUI::V1::ObjectTreeModel::mimeData",
             [&] { copies = Copy::Context().copy(objs); });
    dragObjs = std::move(objs);
    dragCopies = std::move(copies);
    return createMimeData(exporter, &dragObjs, &dragCopies);
}

bool ObjectTreeModel::canDropMimeData(QMimeData const *mime, Qt::DropAction action, int row, int,
                                      QModelIndex const &parentIndex) const
{
    DropData drop;
    return mime && findDropField(drop, *mime, action, row, parentIndex);
}

bool ObjectTreeModel::dropMimeData(QMimeData const *mime, Qt::DropAction action, int row, int,
                                   QModelIndex const &parentIndex)
{
    DropData drop;
    if (!mime || !findDropField(drop, *mime, action, row, parentIndex))
        return false;
    SigDropData sigData;
    drop.tell(sigData);
    sigDrop.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeModel::dropMimeData");
    return true;
}

/// Finds the field that would take the drop; false when there is none.
bool ObjectTreeModel::findDropField(DropData &drop, QMimeData const &mime, Qt::DropAction action,
                                    int row, QModelIndex const &parentIndex) const
{
    if (!makeDropData(drop, mime, action, row, parentIndex))
        return false;
    const RefT<Row> target = getRow(parentIndex);
    if (!target)
        return false;
    if (target->kind == Row::objectKind)
        return findFieldOfObject(drop, static_cast<ObjectRow &>(*target));
    drop.fieldPath = drop.rowPath;
    return canDrop(drop);
}

/// While fields are hidden, a place among the values of an object is one in some field's list. At
/// the seam of two fields the end of the first is tried before the start of the second. A drop onto
/// the object goes to the end of the first field that takes it.
bool ObjectTreeModel::findFieldOfObject(DropData &drop, ObjectRow const &row) const
{
    const QPointer<ObjectTreeModel const> self(this);
    std::int64_t begin = 0; // Of the field's values among all.
    for (PtrT<Field> const &field : row.acceptedFields()) {
        if (!self)
            return false;
        // A listener may have removed it.
        if (!field || field->owner != row.object.get())
            continue;
        drop.fieldPath = drop.rowPath;
        drop.fieldPath.pushField(*field);
        if (drop.row < 0) {
            drop.index = static_cast<std::uint64_t>(drop.row);
            if (canDrop(drop))
                return true;
            continue;
        }
        if (drop.row < begin)
            return false;
        const auto num = static_cast<std::int64_t>(countLinks(*field));
        const std::int64_t place = drop.row - begin;
        drop.index = static_cast<std::uint64_t>(place);
        if (place <= num && canDrop(drop))
            return true;
        begin += num;
    }
    return false;
}

/// Reads the payload. Drops land on rows of fields, and on those of objects while fields are
/// hidden; anywhere else the answer is false. An importer is the host's, and may destroy the model.
bool ObjectTreeModel::makeDropData(DropData &drop, QMimeData const &mime, Qt::DropAction action,
                                   int row, QModelIndex const &parentIndex) const
{
    const QPointer<ObjectTreeModel const> self(this);
    drop.action = action;
    const bool hasObjs = getFromMimeData(mime, drop.objs);
    const bool hasCopies = getCopyFromMimeData(mime, drop.copyObjs);
    if (!hasObjs && !hasCopies && importer) {
        drop.fromXml = getFromMimeData(mime, *importer, drop.objs);
        if (!drop.fromXml || !self)
            return false;
    }
    drop.row = row;
    drop.index = static_cast<std::uint64_t>(drop.row);
    const RefT<Row> target = getRow(parentIndex);
    if (!target)
        return false;
    const bool takesDrops =
        target->kind == Row::fieldKind || (target->kind == Row::objectKind && hiding);
    if (takesDrops)
        getPath(PtrT<Row>(target), drop.rowPath);
    return takesDrops;
}

/// KEPT: without a listener, only rows of fields take drops, not those of objects in hide mode,
/// though the field is found. A host that hides fields says itself what goes where. False when a
/// listener has destroyed the model.
bool ObjectTreeModel::canDrop(DropData const &drop) const
{
    if (sigCanDrop.hasSlots()) {
        bool result = false;
        SigCanDropData sigData;
        drop.tell(sigData);
        sigData.result = &result;
        const QPointer<ObjectTreeModel const> self(this);
        sigCanDrop.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeModel::canDrop");
        return result && self;
    }
    if (drop.rowPath.getType() != Path::Field)
        return false;
    return GUI::canDrop(drop.action, drop.objs, RefT<Field>(drop.fieldPath.getLast().field),
                        drop.index);
}

} // namespace ZR::VOM::GUI::V1
