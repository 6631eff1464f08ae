// What leaves the tree by a drag, and where a drop may land. The host carries drops out.

#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/canDrop.h"
#include "zrVOMGUI/trees/private/ObjectTreeRows.h"
#include "zrVOMGUI/trees/private/tryEmit.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPointer>

namespace ZR::VOM::GUI {

namespace {
constexpr auto noPosition = static_cast<std::size_t>(-1);
}

struct ObjectTreeView::DropData {
    Qt::DropAction action = Qt::IgnoreAction;
    std::vector<RefT<Object>> objs, copyObjs;
    bool fromXml = false;
    Path rowPath{PtrT<Object>()};
    std::size_t rowIndex = noPosition;
    Path path{PtrT<Object>()};
    std::size_t index = noPosition;
};

ObjectTreeView::SigDropData::SigDropData(DropData const &dropped)
    : action(dropped.action)
    , objs(dropped.objs)
    , copyObjs(dropped.copyObjs)
    , fromXml(dropped.fromXml)
    , rowPath(dropped.rowPath)
    , rowIndex(dropped.rowIndex)
    , path(dropped.path)
    , index(dropped.index)
{
}

QMimeData *ObjectTreeView::makeMimeData(std::vector<RowHandle> const &rows)
{
    std::vector<RefT<Object>> objs;
    for (RowHandle const &row : rows)
        if (Object *const obj = getRowObj(row))
            objs.emplace_back(*obj);
    // KEPT: copies are made at every start of a drag, whether or not it ends in a copy, and kept
    // with the originals until the next. Receivers find both by address, also after the drop.
    std::vector<RefT<Object>> copies;
    tryCatch("ZR::VOM::GUI::ObjectTreeView::makeMimeData",
             [&] { copies = Copy::Context().copy(objs); });
    dragObjs = std::move(objs);
    dragCopyObjs = std::move(copies);
    return createMimeData(xmlExporter, &dragObjs, &dragCopyObjs);
}

/// KEPT: a drag in motion is judged by the action that it proposes, and the drop by the one that
/// was agreed upon. Hosts change the latter while the drag moves.
bool ObjectTreeView::onCanDrop(QDropEvent &event, RowHandle const &row, std::size_t index)
{
    DropData dropData;
    return findDropField(dropData, event, event.proposedAction(), row, index);
}

void ObjectTreeView::onDrop(QDropEvent &event, RowHandle const &row, std::size_t index)
{
    DropData dropData;
    if (!findDropField(dropData, event, event.dropAction(), row, index))
        return;
    SigDropData sigData(dropData);
    Trees::tryEmit(sigDrop, sigData, "ZR::VOM::GUI::ObjectTreeView::onDrop");
}

/// Finds the field that would take the drop; false when there is none.
bool ObjectTreeView::findDropField(DropData &dropData, QDropEvent const &event,
                                   Qt::DropAction action, RowHandle const &row, std::size_t index)
{
    if (!event.mimeData() || action == Qt::IgnoreAction)
        return false;
    RowHandle target = row;
    if (target == root && index < root->getNumMadeChildRows()) {
        target = root->getChildRow(index);
        index = noPosition;
    }
    if (!makeDropData(dropData, *event.mimeData(), action, target, index))
        return false;
    if (getRowField(target)) {
        dropData.path = dropData.rowPath;
        return canDrop(dropData);
    }
    return findFieldOfObject(dropData, getRowObj(target));
}

/// While fields are hidden, an object's row stands for the first of its fields that takes the drop.
bool ObjectTreeView::findFieldOfObject(DropData &dropData, Object *obj)
{
    const PtrT<Object> target(obj);
    const QPointer<ObjectTreeView> self(this);
    dropData.index = noPosition;
    for (std::size_t i = 0; self && target && i < target->getNumFields(); ++i) {
        Field &field = *target->getField(i);
        if (!isAccepted(field))
            continue;
        dropData.path = dropData.rowPath;
        dropData.path.pushField(field);
        if (canDrop(dropData))
            return true;
    }
    return false;
}

/// Reads the payload. Drops land on rows of fields, and on those of objects while fields are
/// hidden; anywhere else the answer is false.
bool ObjectTreeView::makeDropData(DropData &dropData, QMimeData const &mime, Qt::DropAction action,
                                  RowHandle const &row, std::size_t index) const
{
    dropData.action = action;
    const bool hasObjs = getFromMimeData(mime, dropData.objs);
    const bool hasCopies = getCopyFromMimeData(mime, dropData.copyObjs);
    if (!hasObjs && !hasCopies && xmlImporter) {
        dropData.fromXml = getFromMimeData(mime, *xmlImporter, dropData.objs);
        if (!dropData.fromXml)
            return false;
    }
    dropData.rowIndex = dropData.index = index;
    if (!getRowField(row) && !(hideFields && getRowObj(row)))
        return false;
    dropData.rowPath = getRowPath(row);
    return true;
}

/// False when a listener has destroyed the view.
bool ObjectTreeView::canDrop(DropData const &dropData)
{
    if (sigCanDrop.hasSlots()) {
        bool result = false;
        SigCanDropData sigData(dropData, &result);
        const QPointer<ObjectTreeView> self(this);
        Trees::tryEmit(sigCanDrop, sigData, "ZR::VOM::GUI::ObjectTreeView::canDrop");
        return result && self;
    }
    if (dropData.path.getType() != Path::Field)
        return false;
    return GUI::canDrop(dropData.action, dropData.objs, RefT<Field>(dropData.path.getLast().field),
                        dropData.index);
}

} // namespace ZR::VOM::GUI
