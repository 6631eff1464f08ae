#pragma once

// Not for hosts: the widget around the rows. Drags and drops are in ObjectTreeDragDropT.h.

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/trees/private/ObjectTreeRowsT.h"
#include "zrVOMGUI/trees/private/UpdatePause.h"

#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>

#include <utility>

namespace ZR::VOM::GUI::Trees {

template <class View, class RowTraits>
template <class... Arguments>
ObjectTreeT<View, RowTraits>::ObjectTreeT(RefT<Exporter> const &exporter,
                                          RefT<Xml::Importer> const &importer,
                                          Arguments &&...baseArguments)
    : Traits::Base(std::forward<Arguments>(baseArguments)...)
    , xmlExporter(exporter)
    , xmlImporter(importer)
{
    this->setDropActions(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
    for (char const *type : {MimeType::objects, MimeType::objectCopies, MimeType::objectsXml})
        this->addMimeType(type);
}

template <class View, class RowTraits>
ObjectTreeT<View, RowTraits>::~ObjectTreeT() = default;

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::letGo()
{
    conObjIconDB.disconnect();
    // Objects that die with them reach rows of the view.
    dragObjs.clear();
    dragCopyObjs.clear();
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::forEachRow(void (VoidRow::*operation)())
{
    const UpdatePause pause(*this);
    std::vector<ZR::GUI::TreeRow *> open{&root()};
    DetachedRows::collectAll(detachedRows, open);
    while (!open.empty()) {
        auto &row = static_cast<VoidRow &>(*open.back());
        open.pop_back();
        (row.*operation)();
        for (std::size_t i = row.getNumMadeChildRows(); i-- != 0;)
            if (VoidRow *const child = row.getVoidChild(i))
                open.push_back(child);
    }
}

/// KEPT: no row is touched. A tooltip is looked up as the mouse moves, and one that is shown stays
/// until then: setting the field for many views costs nothing.
template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::setTooltipField(std::string const &fieldName)
{
    tooltipField = fieldName;
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::setObjIconDB(RefT<ObjectIconDB> const &db)
{
    conObjIconDB.disconnect();
    // Rows only note that their icon is to be asked for.
    forEachRow(&VoidRow::onObjIconDBChanged);
    objIconDB = db;
    if (objIconDB)
        conObjIconDB = objIconDB->sigDelete.connect(*this, &ObjectTreeT::onRefObjIconDBSigDelete);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::onRefObjIconDBSigDelete(SigVoidData const &)
{
    setObjIconDB({});
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::setTypeName(bool on)
{
    if (std::exchange(typeName, on) != on)
        forEachRow(&VoidRow::onTypeNameChanged);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::setHideFields(bool on)
{
    if (std::exchange(hideFields, on) != on)
        forEachRow(&VoidRow::onHideFieldsChanged);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::setNameField(std::string const &fieldName)
{
    if (nameField == fieldName)
        return;
    nameField = fieldName;
    forEachRow(&VoidRow::onNameFieldChanged);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::addAcceptedField(std::string const &className,
                                                    std::string const &fieldName)
{
    if (Traits::accept(acceptedFields, className, fieldName))
        forEachRow(&VoidRow::onAcceptedFieldsChanged);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::removeAcceptedField(std::string const &className,
                                                       std::string const &fieldName)
{
    if (Traits::refuse(acceptedFields, className, fieldName))
        forEachRow(&VoidRow::onAcceptedFieldsChanged);
}

/// KEPT: no row is told. Hosts clear the filter to fill it anew, and the tree changes once, by what
/// they add.
template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::clearAcceptedFields()
{
    acceptedFields.clear();
}

template <class View, class RowTraits>
bool ObjectTreeT<View, RowTraits>::isAccepted(Field &field) const
{
    return isLinkType(field.getType()) &&
           (acceptedFields.empty() || Traits::matches(acceptedFields, field));
}

template <class View, class RowTraits>
std::size_t ObjectTreeT<View, RowTraits>::addRow(RefT<Object> const &object, std::size_t pos)
{
    return root().addItem(object.get(), pos);
}

template <class View, class RowTraits>
std::size_t ObjectTreeT<View, RowTraits>::addRow(MFieldRef &field, std::size_t pos)
{
    return root().addItem(&field, pos);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::addRows(std::vector<PtrT<Object>> const &objs, std::size_t pos)
{
    root().addItems(objs, pos);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::removeRow(std::size_t pos)
{
    root().removeItem(pos);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::clear()
{
    const UpdatePause pause(*this);
    root().clearItems();
    SigVoidData sigData;
    self().sigClear.emitCatching(sigData, where<Traits>("clear").c_str());
}

template <class View, class RowTraits>
auto ObjectTreeT<View, RowTraits>::getRowObj(typename Traits::RowArgument row) const -> Object *
{
    auto const *const objectRow = dynamic_cast<ObjectRow const *>(plain(row));
    return objectRow ? objectRow->getObj() : nullptr;
}

template <class View, class RowTraits>
Field *ObjectTreeT<View, RowTraits>::getRowField(typename Traits::RowArgument row) const
{
    auto const *const fieldRow = dynamic_cast<typename RowsT<View>::FieldRow const *>(plain(row));
    return fieldRow ? fieldRow->getField() : nullptr;
}

template <class View, class RowTraits>
Path ObjectTreeT<View, RowTraits>::getRowPath(typename Traits::RowArgument row) const
{
    auto *const voidRow = dynamic_cast<VoidRow *>(plain(row));
    return voidRow ? voidRow->getPath() : Path(PtrT<Object>());
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::getSel(std::vector<Path> &paths)
{
    for (RowHandle const &row : Traits::Base::getSel())
        paths.push_back(getRowPath(row));
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::setSel(std::vector<Path> const &paths)
{
    const QPointer<QObject> alive(this);
    // A host that is told of a row may select others, whose rows come after ours then.
    const std::size_t start = foundRows.size();
    for (Path const &path : paths) {
        RowHandle row = makeRow(path, false);
        if (!alive)
            return;
        foundRows.push_back(std::move(row));
    }
    const auto first = foundRows.begin() + static_cast<std::ptrdiff_t>(start);
    const std::vector<RowHandle> rows(first, foundRows.end());
    foundRows.erase(first, foundRows.end());
    Traits::Base::setSel(rows);
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() == Qt::NoButton) {
        // Rows may be made before one is found.
        const QPointer<QObject> alive(this);
        const QString text = tooltipAt(event->pos());
        if (!alive)
            return;
        if (text != this->toolTip())
            this->setToolTip(text);
    }
    Traits::Base::mouseMoveEvent(event);
}

template <class View, class RowTraits>
QString ObjectTreeT<View, RowTraits>::tooltipAt(QPoint const &viewportPos)
{
    if (tooltipField.empty())
        return {};
    const QPoint scroll(this->horizontalScrollBar()->value(), this->verticalScrollBar()->value());
    const QPointer<QObject> alive(this);
    const RowHandle row = this->findRow(viewportPos + scroll);
    if (!alive)
        return {};
    const RefT<Object> obj(getRowObj(row));
    auto const *const field = obj ? cast<FieldString>(obj->findField(tooltipField)) : nullptr;
    return field ? QString::fromStdString(field->get()) : QString();
}

template <class View, class RowTraits>
RefT<FieldString> ObjectTreeT<View, RowTraits>::findNameField(Row const &row) const
{
    auto const *const objectRow = dynamic_cast<ObjectRow const *>(&row);
    if (!objectRow || !objectRow->getObj() || nameField.empty())
        return {};
    return RefT<FieldString>(cast<FieldString>(objectRow->getObj()->findField(nameField)));
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::onEditRow(Row &row)
{
    if (const RefT<FieldString> name = findNameField(row))
        this->editRow(static_cast<VoidRow &>(row).getHandle(), name->get());
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::onEditRowConfirm(Row &row, std::string const &text)
{
    const RefT<FieldString> name = findNameField(row);
    if (!name)
        return;
    const QPointer<QObject> alive(this);
    const typename VoidRow::Watch watch(static_cast<VoidRow &>(row));
    // Keeps the row, where handles do.
    [[maybe_unused]] const RowHandle held = static_cast<VoidRow &>(row).getHandle();
    try {
        name->set(text);
    } catch (ZR::Error const &error) {
        // Whoever listens to the field may have let the row die.
        if (!alive || watch.isGone())
            return;
        SigEditRowErrorData sigData(row, text, error);
        self().sigEditRowError.emitCatching(sigData, where<Traits>("onEditRowConfirm").c_str());
    } catch (...) {
        // KEPT: what isn't an error of the model goes without a word. Listeners of the signal show
        // the reason to the user, and such an exception has none to show.
    }
}

template <class View, class RowTraits>
void ObjectTreeT<View, RowTraits>::onRequestContextMenu(typename Traits::RowArgument row,
                                                        QPoint const &pos)
{
    SigRowMenuData sigData(row, pos);
    self().sigRowMenu.emitCatching(sigData, where<Traits>("onRequestContextMenu").c_str());
}

} // namespace ZR::VOM::GUI::Trees
