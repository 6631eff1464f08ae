#pragma once

// Not for hosts: what leaves the tree by a drag, and where a drop may land. The host carries drops
// out.

#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/canDrop.h"
#include "zrVOMGUI/trees/private/ObjectTreeRowsT.h"
#include "zrVOMGUI/trees/private/tryEmit.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPointer>

#include <optional>

namespace ZR::VOM::GUI::Trees {

template <class View, class RowTraits>
struct ObjectTreeT<View, RowTraits>::DropData {
    Qt::DropAction action = Qt::IgnoreAction;
    std::vector<RefT<Object>> objs, copyObjs;
    bool fromXml = false;
    Path rowPath{PtrT<Object>()};
    std::size_t rowIndex = Row::npos;
    Path path{PtrT<Object>()};
    std::size_t index = Row::npos;
};

template <class View, class RowTraits>
ObjectTreeT<View, RowTraits>::SigDropData::SigDropData(DropData const &dropped)
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

template <class View, class RowTraits>
QMimeData *ObjectTreeT<View, RowTraits>::makeMimeData(std::vector<RowHandle> const &rows)
{
    std::vector<RefT<Object>> objs;
    for (RowHandle const &row : rows)
        if (Object *const obj = getRowObj(row))
            objs.emplace_back(*obj);
    // KEPT: copies are made at every start of a drag, whether or not it ends in a copy, and kept
    // with the originals until the next. Receivers find both by address, also after the drop.
    std::vector<RefT<Object>> copies;
    const QPointer<QObject const> alive(this);
    tryCatch(where<Traits>("makeMimeData"), [&] { copies = Copy::Context().copy(objs); });
    if (!alive)
        return nullptr;
    // What was dragged last dies when all is done: listeners may do anything then.
    dragObjs.swap(objs);
    dragCopyObjs.swap(copies);
    return createMimeData(xmlExporter, &dragObjs, &dragCopyObjs);
}

/// KEPT: a drag in motion is judged by the action that it proposes, and the drop by the one that
/// was agreed upon. Hosts change the latter while the drag moves.
template <class View, class RowTraits>
bool ObjectTreeT<View, RowTraits>::onCanDrop(QDropEvent &event, typename Traits::RowArgument row,
                                             std::size_t index)
{
    DropData dropData;
    return findDropField(dropData, event, event.proposedAction(), row, index);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::onDrop(QDropEvent &event, typename Traits::RowArgument row,
                                          std::size_t index)
{
    DropData dropData;
    if (!findDropField(dropData, event, event.dropAction(), row, index)) {
        // Nobody is told, so that a sender must not take it for moved.
        event.ignore();
        return;
    }
    SigDropData sigData(dropData);
    tryEmit(self().sigDrop, sigData, where<Traits>("onDrop").c_str());
}

/// Finds the field that would take the drop; false when there is none.
template <class View, class RowTraits>
bool ObjectTreeT<View, RowTraits>::findDropField(DropData &dropData, QDropEvent const &event,
                                                 Qt::DropAction action, RowHandle row,
                                                 std::size_t index)
{
    if (!event.mimeData() || action == Qt::IgnoreAction)
        return false;
    if (plain(row) == &root() && index < root().getNumMadeChildRows()) {
        row = root().getChildRow(index);
        index = Row::npos;
    }
    if (!makeDropData(dropData, *event.mimeData(), action, row, index))
        return false;
    if (!getRowField(row))
        return findFieldOfObject(dropData, getRowObj(row));
    dropData.path = dropData.rowPath;
    return canDrop(dropData);
}

/// While fields are hidden, an object's row stands for the first of its fields that takes the drop.
template <class View, class RowTraits>
bool ObjectTreeT<View, RowTraits>::findFieldOfObject(DropData &dropData, Object *obj)
{
    const PtrT<Object> target(obj);
    const QPointer<QObject const> alive(this);
    dropData.index = Row::npos;
    for (std::size_t i = 0; alive && target && i < target->getNumFields(); ++i) {
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
/// hidden; anywhere else the answer is false. An importer is the host's, and may let the row die.
template <class View, class RowTraits>
bool ObjectTreeT<View, RowTraits>::makeDropData(DropData &dropData, QMimeData const &mime,
                                                Qt::DropAction action,
                                                typename Traits::RowArgument row,
                                                std::size_t index) const
{
    const QPointer<QObject const> alive(this);
    std::optional<RowWatch> watch;
    if (auto *const voidRow = dynamic_cast<VoidRow *>(plain(row)))
        watch.emplace(*voidRow);
    dropData.action = action;
    const bool hasObjs = getFromMimeData(mime, dropData.objs);
    const bool hasCopies = getCopyFromMimeData(mime, dropData.copyObjs);
    if (!hasObjs && !hasCopies && xmlImporter) {
        dropData.fromXml = getFromMimeData(mime, *xmlImporter, dropData.objs);
        if (!dropData.fromXml || !alive || (watch && watch->isGone()))
            return false;
    }
    dropData.rowIndex = dropData.index = index;
    if constexpr (Traits::tracesDrops)
        Traits::traceDrop(row, index);
    if (!getRowField(row) && !(hideFields && getRowObj(row)))
        return false;
    dropData.rowPath = getRowPath(row);
    return true;
}

/// False when a listener has destroyed the view.
template <class View, class RowTraits>
bool ObjectTreeT<View, RowTraits>::canDrop(DropData const &dropData)
{
    const QPointer<QObject const> alive(this);
    if (self().sigCanDrop.hasSlots()) {
        bool result = false;
        SigCanDropData sigData(dropData, &result);
        tryEmit(self().sigCanDrop, sigData, where<Traits>("canDrop").c_str());
        return result && alive;
    }
    if (dropData.path.getType() != Path::Field)
        return false;
    const bool result = GUI::canDrop(dropData.action, dropData.objs,
                                     RefT<Field>(dropData.path.getLast().field), dropData.index);
    return result && alive;
}

} // namespace ZR::VOM::GUI::Trees
