#include "zrVOMGUI/trees/ObjectTreeView.h"

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/trees/private/ObjectTreeRows.h"

#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>

namespace ZR::VOM::GUI {

char const *const _ObjectTreeViewVoidRowLabel = "[ZR::VOM::GUI::ObjectTreeViewVoidRowLabel]void";

namespace {

/// Holds repaints back while many rows change. A view whose updates are off keeps them off.
class UpdatePause {
public:
    explicit UpdatePause(QWidget &pausedWidget)
        : widget(&pausedWidget)
        , wasEnabled(pausedWidget.updatesEnabled())
    {
        if (wasEnabled)
            widget->setUpdatesEnabled(false);
    }
    ~UpdatePause()
    {
        if (widget && wasEnabled)
            widget->setUpdatesEnabled(true);
    }
    UpdatePause(UpdatePause const &) = delete;
    UpdatePause &operator=(UpdatePause const &) = delete;

private:
    const QPointer<QWidget> widget;
    const bool wasEnabled;
};

} // namespace

ObjectTreeView::ObjectTreeView(QWidget *parent)
    : ObjectTreeView({}, {}, parent)
{
}

ObjectTreeView::ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                               QWidget *parent)
    : TreeView(parent)
    , xmlExporter(exporter)
    , xmlImporter(importer)
    , root(makeRoot())
{
    setRoot(RowHandle(root));
    setDropActions(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
    for (char const *type : {MimeType::objects, MimeType::objectCopies, MimeType::objectsXml})
        addMimeType(type);
}

ObjectTreeView::~ObjectTreeView()
{
    conObjIconDB.disconnect();
}

/// Calls an operation of every row that exists, from the root down.
void ObjectTreeView::forEachRow(void (VoidRow::*operation)())
{
    const UpdatePause pause(*this);
    std::vector<ZR::GUI::TreeRow *> open{root.get()};
    Trees::DetachedRows::collectAll(detachedRows, open);
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
void ObjectTreeView::setTooltipField(std::string const &name)
{
    tooltipField = name;
}

void ObjectTreeView::setObjIconDB(RefT<ObjectIconDB> const &db)
{
    conObjIconDB.disconnect();
    // Rows only note that their icon is to be asked for.
    forEachRow(&VoidRow::onObjIconDBChanged);
    objIconDB = db;
    if (objIconDB)
        conObjIconDB =
            objIconDB->sigDelete.connect(*this, &ObjectTreeView::onRefObjIconDBSigDelete);
}

void ObjectTreeView::onRefObjIconDBSigDelete(SigVoidData const &)
{
    setObjIconDB({});
}

void ObjectTreeView::setTypeName(bool on)
{
    if (std::exchange(typeName, on) != on)
        forEachRow(&VoidRow::onTypeNameChanged);
}

void ObjectTreeView::setAddress(bool on)
{
    if (std::exchange(address, on) != on)
        forEachRow(&VoidRow::onAddressChanged);
}

void ObjectTreeView::setHideFields(bool on)
{
    if (std::exchange(hideFields, on) != on)
        forEachRow(&VoidRow::onHideFieldsChanged);
}

void ObjectTreeView::setNameField(std::string const &name)
{
    if (nameField == name)
        return;
    nameField = name;
    forEachRow(&VoidRow::onNameFieldChanged);
}

void ObjectTreeView::addAcceptedField(std::string const &className, std::string const &fieldName)
{
    if (acceptedFields.add(className, fieldName))
        forEachRow(&VoidRow::onAcceptedFieldsChanged);
}

void ObjectTreeView::removeAcceptedField(std::string const &className, std::string const &fieldName)
{
    if (acceptedFields.remove(className, fieldName))
        forEachRow(&VoidRow::onAcceptedFieldsChanged);
}

/// KEPT: no row is told. Hosts clear the filter to fill it anew, and the tree changes once, by what
/// they add.
void ObjectTreeView::clearAcceptedFields()
{
    acceptedFields.clear();
}

bool ObjectTreeView::isAccepted(Field &field) const
{
    return isLinkType(field.getType()) && (acceptedFields.empty() || acceptedFields.matches(field));
}

std::size_t ObjectTreeView::addRow(RefT<Object> const &object, std::size_t pos)
{
    return root->addItem(object.get(), pos);
}

std::size_t ObjectTreeView::addRow(MFieldRef &field, std::size_t pos)
{
    return root->addItem(&field, pos);
}

void ObjectTreeView::addRows(std::vector<PtrT<Object>> const &objs, std::size_t pos)
{
    for (PtrT<Object> const &obj : objs)
        pos = root->addItem(obj.get(), pos) + 1;
}

void ObjectTreeView::removeRow(std::size_t pos)
{
    if (pos < root->getNumItems())
        root->removeItem(pos);
}

void ObjectTreeView::clear()
{
    const UpdatePause pause(*this);
    root->clearItems();
    SigVoidData sigData;
    sigClear.emitCatching(sigData, "ZR::VOM::GUI::ObjectTreeView::clear");
}

VOM::Object *ObjectTreeView::getRowObj(RowHandle const &row) const
{
    auto const *const objectRow = dynamic_cast<ObjectRow const *>(row.get());
    return objectRow ? objectRow->getObj() : nullptr;
}

Field *ObjectTreeView::getRowField(RowHandle const &row) const
{
    auto const *const fieldRow =
        dynamic_cast<Trees::RowsT<ObjectTreeView>::FieldRow const *>(row.get());
    return fieldRow ? fieldRow->getField() : nullptr;
}

Path ObjectTreeView::getRowPath(RowHandle const &row) const
{
    auto *const voidRow = dynamic_cast<VoidRow *>(row.get());
    return voidRow ? voidRow->getPath() : Path(PtrT<Object>());
}

Path ObjectTreeView::getCurrent()
{
    return getRowPath(getCurrentRow());
}

void ObjectTreeView::getSel(std::vector<Path> &paths)
{
    for (RowHandle const &row : TreeView::getSel())
        paths.push_back(getRowPath(row));
}

void ObjectTreeView::setSel(std::vector<Path> const &paths)
{
    // Rows are made on the way, of which listeners hear.
    const QPointer<ObjectTreeView> self(this);
    std::vector<RowHandle> rows;
    for (Path const &path : paths) {
        RowHandle row = makeRow(path, false);
        if (!self)
            return;
        if (row)
            rows.push_back(std::move(row));
    }
    TreeView::setSel(rows);
}

ObjectTreeView::RowHandle ObjectTreeView::makeRow(Path const &path, bool keepOpen)
{
    return root->makeRow(path, keepOpen);
}

void ObjectTreeView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() == Qt::NoButton) {
        // Rows may be made before one is found.
        const QPointer<ObjectTreeView> self(this);
        const QString text = tooltipAt(event->pos());
        if (!self)
            return;
        if (text != toolTip())
            setToolTip(text);
    }
    TreeView::mouseMoveEvent(event);
}

QString ObjectTreeView::tooltipAt(QPoint const &viewportPos)
{
    if (tooltipField.empty())
        return {};
    const QPoint scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const QPointer<ObjectTreeView> self(this);
    const RowHandle row = findRow(viewportPos + scroll);
    if (!self)
        return {};
    const RefT<Object> obj(getRowObj(row));
    auto const *const field = obj ? cast<FieldString>(obj->findField(tooltipField)) : nullptr;
    return field ? QString::fromStdString(field->get()) : QString();
}

RefT<FieldString> ObjectTreeView::findNameField(Row const &row) const
{
    auto const *const objectRow = dynamic_cast<ObjectRow const *>(&row);
    if (!objectRow || !objectRow->getObj() || nameField.empty())
        return {};
    return RefT<FieldString>(cast<FieldString>(objectRow->getObj()->findField(nameField)));
}

void ObjectTreeView::onEditRow(Row &row)
{
    if (const RefT<FieldString> name = findNameField(row))
        editRow(row.shared_from_this(), name->get());
}

void ObjectTreeView::onEditRowConfirm(Row &row, std::string const &text)
{
    const RefT<FieldString> name = findNameField(row);
    if (!name)
        return;
    const RowHandle held = row.shared_from_this();
    const QPointer<ObjectTreeView> self(this);
    try {
        name->set(text);
    } catch (ZR::Error const &error) {
        if (!self)
            return;
        SigEditRowErrorData sigData(row, text, error);
        sigEditRowError.emitCatching(sigData, "ZR::VOM::GUI::ObjectTreeView::onEditRowConfirm");
    } catch (...) {
        // KEPT: what isn't an error of the model goes without a word. Listeners of the signal show
        // the reason to the user, and such an exception has none to show.
    }
}

void ObjectTreeView::onRequestContextMenu(RowHandle const &row, QPoint const &pos)
{
    SigRowMenuData sigData(row, pos);
    sigRowMenu.emitCatching(sigData, "ZR::VOM::GUI::ObjectTreeView::onRequestContextMenu");
}

} // namespace ZR::VOM::GUI
