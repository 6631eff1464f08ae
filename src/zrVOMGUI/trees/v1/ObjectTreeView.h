#pragma once

#include "zrVOMGUI/foundation/gui/v1/TreeView.h"
#include "zrVOMGUI/trees/v1/ObjectTreeModel.h"

#include <QPersistentModelIndex>

#include <set>
#include <string>
#include <vector>

class QDropEvent;

namespace ZR::VOM::GUI::V1 {

/// Objects, and what they link to, as a QTreeView over an ObjectTreeModel, which it owns.
///
/// Changes of the objects only ask for a repaint, however many they are; the rows follow on the way
/// into the next paint, and a branch that is open shows what it has by then. A hidden view does
/// nothing. A selection that changes with the rows is told after that paint, from the event loop.
///
/// A drag over the view does what the keyboard says: Shift moves, Control copies, Alt links, where
/// the model allows it; all else does defaultDropAction(), which Qt has as IgnoreAction until the
/// host sets another. As in any QTreeView, the host enables drags and drops.
///
/// The view is bound to its model for life. Where setModel() is reached through a base class, it
/// shows the other model, and what is particular to this view has no visible effect from then on;
/// that of a null pointer shows nothing. A null selection model is passed over.
///
/// A listener may destroy the view in sigDoubleClick, in sigClear, and where one of the operations
/// here makes or selects rows. Signals that come from within Qt's handling of an event, a paint
/// among them, or from its layout, as in showSel(), are followed by Qt's own use of the view: take
/// deleteLater() there.
///
/// What is a plain value is also a Qt property, for forms and style sheets.
///
/// Nothing here owns the objects. GUI thread only. Texts are UTF-8.
class ZRVOMGUI_EXPORT ObjectTreeView : public ZR::GUI::V1::TreeView {
    Q_OBJECT
    Q_PROPERTY(QString fieldName READ readFieldName WRITE writeFieldName)
    Q_PROPERTY(QString fieldTooltip READ readFieldTooltip WRITE writeFieldTooltip)
    Q_PROPERTY(bool typeName READ isTypeName WRITE setTypeName)
    Q_PROPERTY(bool hideFields READ isHideFields WRITE hideFields)
    Q_PROPERTY(Qt::DropActions dropActions READ getDropActions WRITE setDropActions)

public:
    using Object = VOM::Object;
    using ObjRow = ObjectTreeModel::ObjRow;
    using ObjectRow = ObjectTreeModel::ObjectRow;
    using SigObjRowData = ObjectTreeModel::SigObjRowData;
    using SigDropData = ObjectTreeModel::SigDropData;
    using SigCanDropData = ObjectTreeModel::SigCanDropData;

    struct SigDoubleClickData : SigVoidData {
        QPoint const *pos = nullptr; ///< In the viewport. Not owned.
    };

    /// `exporter` writes the XML of drags, `importer` reads that of drops from elsewhere; either
    /// may be empty.
    explicit ObjectTreeView(RefT<Exporter> const &exporter = {},
                            RefT<Xml::Importer> const &importer = {}, QWidget *parent = nullptr);
    /// As forms make it.
    explicit ObjectTreeView(QWidget *parent);
    ~ObjectTreeView() override;

    /// \name What the model shows; see there
    /// @{
    RefT<Exporter> const &getXmlExporter() const { return treeModel.getXmlExporter(); }
    RefT<Xml::Importer> const &getXmlImporter() const { return treeModel.getXmlImporter(); }
    RefT<ObjectIconDB> const &getObjIconDB() const { return treeModel.getObjIconDB(); }
    void setObjIconDB(RefT<ObjectIconDB> const &db) { treeModel.setObjIconDB(db); }
    std::string const &getFieldName() const { return treeModel.getFieldName(); }
    void setFieldName(std::string const &name) { treeModel.setFieldName(name); }
    bool isTypeName() const { return treeModel.isTypeName(); }
    void setTypeName(bool on) { treeModel.setTypeName(on); }
    std::string const &getFieldTooltip() const { return treeModel.getFieldTooltip(); }
    void setFieldTooltip(std::string const &name) { treeModel.setFieldTooltip(name); }
    bool isHideFields() const { return treeModel.isHideFields(); }
    void hideFields(bool on) { treeModel.hideFields(on); }
    void addAcceptedField(std::string const &className, std::string const &fieldName)
    {
        treeModel.addAcceptedField(className, fieldName);
    }
    void removeAcceptedField(std::string const &className, std::string const &fieldName)
    {
        treeModel.removeAcceptedField(className, fieldName);
    }
    void clearAcceptedFields() { treeModel.clearAcceptedFields(); }
    bool isAccepted(PtrT<Field> const &field) const { return treeModel.isAccepted(field); }
    Qt::DropActions getDropActions() const { return treeModel.getDropActions(); }
    void setDropActions(Qt::DropActions actions) { treeModel.setDropActions(actions); }
    void addMimeType(std::string const &type) { treeModel.addMimeType(type); }
    void removeMimeType(std::string const &type) { treeModel.removeMimeType(type); }
    void clearMimeTypes() { treeModel.clearMimeTypes(); }
    /// @}

    /// \name Top rows
    /// @{
    std::size_t addRow(PtrT<Object> const &obj, std::size_t index)
    {
        return treeModel.addRow(obj, index);
    }
    std::size_t addRow(FieldPtr &field, std::size_t index)
    {
        return treeModel.addRow(field, index);
    }
    std::size_t addRow(FieldRef &field, std::size_t index)
    {
        return treeModel.addRow(field, index);
    }
    std::size_t addRow(MFieldPtr &field, std::size_t index)
    {
        return treeModel.addRow(field, index);
    }
    std::size_t addRow(MFieldRef &field, std::size_t index)
    {
        return treeModel.addRow(field, index);
    }
    void addRows(std::vector<PtrT<Object>> const &objs, std::size_t index)
    {
        treeModel.addRows(objs, index);
    }
    /// Removes all.
    void clear();
    /// @}

    /// \name Rows
    /// @{
    QModelIndex makeIndex(Path const &path, bool create)
    {
        return treeModel.makeIndex(path, create);
    }
    bool getPath(QModelIndex const &index, Path &path) const
    {
        return treeModel.getPath(index, path);
    }
    ObjRow getObjRow(QModelIndex const &index) const { return treeModel.getObjRow(index); }
    using TreeView::update;
    /// Repaints a row. Null and a row that is gone are passed over.
    void update(ObjectRow *row);
    /// Asks for a repaint of the view itself, which is its frame; the rows lie in the viewport and
    /// ask for themselves. Does nothing while a repaint for the model's sake is on the way.
    void requestUpdate();
    /// @}

    /// \name Selection
    /// @{

    /// Appends the paths of the selected rows.
    void getSel(std::vector<Path> &paths) const;
    /// Selects the rows that the paths lead to, which are fetched. Paths that lead nowhere are
    /// passed over. Does nothing while the rows follow the model on the way into a paint. Where a
    /// selected row leaves outside of a paint, as by the death of a top object, sigSelChange comes
    /// in the middle of that change: what is selected from there must have its row, since none is
    /// fetched before the change is over.
    void setSel(std::vector<Path> const &paths);
    /// Scrolls to the selected rows, one after the other.
    void showSel();

    /// An empty name is passed over.
    /// KEPT: a set for the host's own use, which nothing here reads: hosts ask it in a rule of
    /// their own, and select by setSel().
    void addSelectableClass(std::string const &name);
    void removeSelectableClass(std::string const &name) { selectableClasses.erase(name); }
    void clearSelectableClasses() { selectableClasses.clear(); }
    /// @}

    /// \name Expanded rows
    /// As numbers: for each expanded row its position among its siblings, then the same for what is
    /// below it, then -1. A hint, not a contract: rows may have come and gone between.
    /// @{

    /// Appends.
    void getExpandedRows(std::vector<int> &rows) const;
    /// Expands and fetches the rows, and the top in any case. A row that isn't there is passed over
    /// with what is below it, and ends its level: its siblings are looked for among those of its
    /// parent.
    void expandRows(std::vector<int> const &rows);
    /// @}

private:
    ZR_LOCAL void onObjTreeModelSigUpdate(SigVoidData const &sigData);
    ZR_LOCAL void onRowChanged(QModelIndex const &index);
    ZR_LOCAL void followModel(QPaintEvent const &event);
    ZR_LOCAL void tellSelection();
    ZR_LOCAL void updateDropAction(QDropEvent &event) const;
    ZR_LOCAL Qt::DropAction dropActionOf(Qt::KeyboardModifiers modifiers) const;
    ZR_LOCAL void showTop();
    ZR_LOCAL QModelIndex getTop() const;

    // The settings, as Qt's properties have them.
    QString readFieldName() const { return QString::fromStdString(getFieldName()); }
    void writeFieldName(QString const &name) { setFieldName(name.toStdString()); }
    QString readFieldTooltip() const { return QString::fromStdString(getFieldTooltip()); }
    void writeFieldTooltip(QString const &name) { setFieldTooltip(name.toStdString()); }

    ObjectTreeModel treeModel;
    std::set<std::string> selectableClasses;
    bool inPaint = false; // While the rows follow the model.
    bool selChangedInPaint = false;
    bool updateRequested = false;               // A repaint is on the way.
    bool askedInPaint = false;                  // The model wants another one after this.
    std::vector<QPersistentModelIndex> toFetch; // Open rows that have children again.
    Signal::Connection updateConnection;

public:
    SignalT<SigObjRowData> &sigRowsAdded = treeModel.sigRowsAdded;     ///< See the model.
    SignalT<SigObjRowData> &sigRowsRemoved = treeModel.sigRowsRemoved; ///< See the model.
    SignalT<SigVoidData> &sigClear = treeModel.sigClear;               ///< See the model.
    /// The selection has changed, by whatever.
    SignalT<SigVoidData> sigSelChange;
    SignalT<SigCanDropData> &sigCanDrop = treeModel.sigCanDrop; ///< See the model.
    SignalT<SigDropData> &sigDrop = treeModel.sigDrop;          ///< See the model.
    /// A double click of the left button. It doesn't expand a row.
    SignalT<SigDoubleClickData> sigDoubleClick;

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void setModel(QAbstractItemModel *other) override;
    void setSelectionModel(QItemSelectionModel *other) override;

protected:
    void selectionChanged(QItemSelection const &selected,
                          QItemSelection const &deselected) override;
};

} // namespace ZR::VOM::GUI::V1
