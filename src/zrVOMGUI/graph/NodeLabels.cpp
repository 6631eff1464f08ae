// The icon and the line of text of each node, and how they follow the model.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/presentation/ItemLabel.h"

namespace ZR::VOM::GUI {

namespace {

QString labelText(std::string const &label)
{
    constexpr int maxLength = 1 << 16;
    QString text = QString::fromStdString(label);
    if (text.size() > maxLength)
        text.truncate(text.at(maxLength - 1).isHighSurrogate() ? maxLength - 1 : maxLength);
    return text;
}

/// The field that look-ups by name find when the first one of that name has left, if it is a text.
RefT<FieldString> nextFieldOfThatName(VOM::Object const &object, Field const &leaving)
{
    for (std::size_t i = 0; i < object.getNumFields(); ++i) {
        RefT<Field> const &field = object.getField(i);
        if (field.get() != &leaving && field->name == leaving.name)
            return cast<FieldString>(field);
    }
    return {};
}

} // namespace

void ObjectGraphView::setObjIconDB(RefT<ObjectIconDB> const &db)
{
    objIconDBConn.disconnect();
    objIconDB = db;
    if (objIconDB)
        objIconDBConn =
            objIconDB->sigDelete.connect(*this, &ObjectGraphView::onRefObjIconDBSigDelete);
    refresh(false);
}

void ObjectGraphView::onRefObjIconDBSigDelete(SigVoidData const &)
{
    setObjIconDB({});
}

void ObjectGraphView::setFieldName(std::string const &name)
{
    if (fieldName == name)
        return;
    fieldName = name;
    updateLabels();
}

void ObjectGraphView::setTypeName(bool on)
{
    if (typeName == on)
        return;
    typeName = on;
    updateLabels();
}

void ObjectGraphView::setFieldTooltip(std::string const &name)
{
    fieldTooltip = name;
}

void ObjectGraphView::updateLabels()
{
    for (auto const &[obj, slot] : nodes)
        updateLabel(*slot.node);
    refresh(false);
}

void ObjectGraphView::updateIcon(Node &node)
{
    if (!node.watch || !objIconDB)
        return;
    const RefT<ObjectIconDB> db = objIconDB; // It may have itself replaced while it is asked.
    tryCatch("ZR::VOM::GUI::ObjectGraphView::updateIcon",
             [&] { node.watch->icon = db->find(node.obj); });
}

/// `leaving` is a field that is about to go, and no longer gives a label.
void ObjectGraphView::updateLabel(Node &node, Field const *leaving)
{
    if (node.watch) {
        Graph::ObjectWatch &watch = *node.watch;
        std::string label;
        if (watch.nameField && watch.nameField->name == fieldName) {
            label = getItemLabel(node.obj, fieldName, typeName, false);
        } else {
            watch.nameFieldConn.disconnect();
            RefT<FieldString> nameField;
            label = getItemLabel(node.obj, fieldName, typeName, false, nameField);
            if (nameField && nameField.get() == leaving) {
                nameField = nextFieldOfThatName(*node.obj, *leaving);
                label = getItemLabel(node.obj, nameField, typeName, false);
            }
            watch.nameField = nameField;
            if (nameField)
                watch.nameFieldConn =
                    nameField->sigSet.connect([this, &node](FieldString::SigSetData const &) {
                        updateLabel(node);
                        refresh(false);
                    });
        }
        watch.label = labelText(label);
    }
    node.sizeDirty = true;
    if (node.visible)
        boundsStale = true;
}

} // namespace ZR::VOM::GUI
