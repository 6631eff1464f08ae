#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/gui/TreeView.h"
#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/ClassFieldsMap.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/Path.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZR::VOM::GUI {

namespace Trees {
class DetachedRows;
template <class View>
struct RowsT;
} // namespace Trees

/// What a row of an empty link shows: its own translation key, then the default text.
ZRVOMGUI_EXPORT extern char const *const _ObjectTreeViewVoidRowLabel;

/// Objects, and what they link to, as a tree of rows.
///
/// An object's row has a child for each of its link fields, and a field's row one for each value:
/// an object again, or nothing. Rows are made when they are opened and follow the model from then
/// on; a closed row costs its count of children. The host says which fields appear, and may hide
/// the level of fields, so that values stand directly below their objects.
///
/// The view changes the model in one place only: it stores an edited name in the name field. Drops
/// are carried out by the host, which hears of them by sigDrop.
///
/// Nothing here owns the objects. GUI thread only. Texts are UTF-8.
class ZRVOMGUI_EXPORT ObjectTreeView : public ZR::GUI::TreeView {
    Q_OBJECT

    struct DropData;

public:
    using Row = ZR::GUI::TreeViewRow;
    using RowHandle = std::shared_ptr<Row>;
    using Object = VOM::Object;

    struct SigRowMenuData : SigVoidData {
        SigRowMenuData(RowHandle const &ofRow, QPoint const &atPos)
            : row(ofRow)
            , pos(atPos)
        {
        }
        RowHandle const &row; ///< Null beside all rows.
        QPoint const &pos;    ///< On the screen.
    };
    struct SigEditRowErrorData : SigVoidData {
        SigEditRowErrorData(Row &ofRow, std::string const &newText, ZR::Error const &raised)
            : row(ofRow)
            , text(newText)
            , error(raised)
        {
        }
        Row &row;
        std::string const &text; ///< What was refused.
        ZR::Error const &error;
    };
    struct SigDropData : SigVoidData {
        explicit SigDropData(DropData const &dropped);
        Qt::DropAction action;
        std::vector<RefT<Object>> const &objs;     ///< What is dropped.
        std::vector<RefT<Object>> const &copyObjs; ///< Deep copies of it, if they came along.
        bool fromXml;                              ///< objs are new, made of XML.
        Path const &rowPath;                       ///< Of the row under the pointer,
        std::size_t rowIndex; ///< and the child before which is dropped; size_t(-1) is onto it.
        Path const &path;     ///< Of the field that takes the drop,
        std::size_t index;    ///< and the position in it; size_t(-1) is its end.
    };
    struct SigCanDropData : SigDropData {
        SigCanDropData(DropData const &dropped, bool *answer)
            : SigDropData(dropped)
            , result(answer)
        {
        }
        bool *result; ///< False at first; a listener says whether the drop is allowed.
    };

    explicit ObjectTreeView(QWidget *parent = nullptr);
    /// `exporter` writes the XML of drags, `importer` reads that of drops from elsewhere; either
    /// may be empty.
    ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                   QWidget *parent = nullptr);
    ~ObjectTreeView() override;

    /// \name What rows show
    /// @{
    RefT<Exporter> const &getXmlExporter() const { return xmlExporter; }
    RefT<Xml::Importer> const &getXmlImporter() const { return xmlImporter; }
    /// Where rows get their icons; empty by default.
    RefT<ObjectIconDB> const &getObjIconDB() const { return objIconDB; }
    void setObjIconDB(RefT<ObjectIconDB> const &db);
    /// Whether labels show the class name; true by default.
    bool isTypeName() const { return typeName; }
    void setTypeName(bool on);
    /// Whether labels show the address in memory; false by default.
    bool isAddress() const { return address; }
    void setAddress(bool on);
    /// Whether values stand directly below their objects; false by default.
    bool isHideFields() const { return hideFields; }
    void setHideFields(bool on);
    /// The name of the string field that names objects and can be edited; empty by default.
    std::string const &getNameField() const { return nameField; }
    void setNameField(std::string const &name);
    /// The name of the string field that supplies tooltips; empty by default.
    std::string const &getTooltipField() const { return tooltipField; }
    void setTooltipField(std::string const &name);

    /// The link fields that appear, by class name and field name; all while there is no such pair.
    /// The empty class name stands for every class, and a base class for its derived ones.
    void addAcceptedField(std::string const &className, std::string const &fieldName);
    void removeAcceptedField(std::string const &className, std::string const &fieldName);
    /// Rows stay as they are until something else changes them.
    void clearAcceptedFields();
    /// False for a field that holds no links, whatever the filter says.
    bool isAccepted(Field &field) const;
    /// @}

    /// \name Top rows
    /// Positions beyond the end append. Objects and fields that die leave.
    /// @{

    /// Returns the position. An empty reference shows an empty link.
    std::size_t addRow(RefT<Object> const &object, std::size_t pos);
    /// Shows a list as a top row with its values below.
    std::size_t addRow(MFieldRef &field, std::size_t pos);
    /// In order from `pos` on.
    void addRows(std::vector<PtrT<Object>> const &objs, std::size_t pos);
    /// Does nothing for a position that isn't there.
    void removeRow(std::size_t pos);
    /// Removes all. sigClear follows.
    void clear();
    /// @}

    /// \name Rows and selection
    /// @{

    /// Null for a row that shows no object.
    Object *getRowObj(RowHandle const &row) const;
    /// Null for a row that shows no field.
    Field *getRowField(RowHandle const &row) const;
    /// Empty for no row, and for one whose object or field died. A row that was told of another
    /// name field gives its path even then, see setNameField().
    Path getRowPath(RowHandle const &row) const;
    /// The path of the current row.
    Path getCurrent();
    using TreeView::getSel;
    using TreeView::setSel;
    /// Appends the paths of the selected rows.
    void getSel(std::vector<Path> &paths);
    /// Selects the rows that the paths lead to, which may lie inside closed ones. Paths that lead
    /// nowhere are passed over.
    void setSel(std::vector<Path> const &paths);
    /// @}

protected:
    class VoidRow;
    class Root;
    class ObjectRow;
    class FieldRow;
    class FieldPtrRow;
    class FieldRefRow;
    class MFieldPtrRow;
    class MFieldRefRow;

    /// \name New rows, after sigRow
    /// @{
    RowHandle makeRow(VoidRow &parent, Object &obj);
    /// Null for a field that holds no links.
    RowHandle makeRow(VoidRow &parent, Field &field);
    RowHandle makeRow(VoidRow &parent);
    /// @}
    /// The row that a path leads to, null if there is none. Rows on the way are opened; they stay
    /// so when `keepOpen`.
    RowHandle makeRow(Path const &path, bool keepOpen);

    void mouseMoveEvent(QMouseEvent *event) override;
    QMimeData *makeMimeData(std::vector<RowHandle> const &rows) override;
    void onRequestContextMenu(RowHandle const &row, QPoint const &pos) override;
    void onEditRow(Row &row) override;
    void onEditRowConfirm(Row &row, std::string const &text) override;
    bool onCanDrop(QDropEvent &event, RowHandle const &row, std::size_t index) override;
    void onDrop(QDropEvent &event, RowHandle const &row, std::size_t index) override;

private:
    template <class View>
    friend struct Trees::RowsT;

    // What the shared rows want to know of this generation.
    using OwnedRow = RowHandle;
    using ParentRow = RowHandle;
    static constexpr bool lostRowsHavePaths = false;
    static constexpr bool keepsTopRows = true;
    static bool hasAddress(ObjectTreeView const &view) { return view.address; }

    std::shared_ptr<Root> makeRoot();
    RowHandle announce(RowHandle const &row);
    void forEachRow(void (VoidRow::*operation)());
    QString tooltipAt(QPoint const &viewportPos);
    RefT<FieldString> findNameField(Row const &row) const;
    void onRefObjIconDBSigDelete(SigVoidData const &sigData);
    bool findDropField(DropData &dropData, QDropEvent const &event, Qt::DropAction action,
                       RowHandle const &row, std::size_t index);
    bool findFieldOfObject(DropData &dropData, Object *obj);
    bool makeDropData(DropData &dropData, QMimeData const &mime, Qt::DropAction action,
                      RowHandle const &row, std::size_t index) const;
    bool canDrop(DropData const &dropData);

    RefT<Exporter> xmlExporter;
    RefT<Xml::Importer> xmlImporter;
    RefT<ObjectIconDB> objIconDB;
    std::string nameField;
    bool typeName = true;
    bool address = false;
    bool hideFields = false;
    std::string tooltipField;
    ClassFieldsMap acceptedFields;
    // What the last drag offers. Kept for receivers that still work on it.
    std::vector<RefT<Object>> dragObjs, dragCopyObjs;
    Signal::Connection conObjIconDB;
    std::shared_ptr<Root> root;
    Trees::DetachedRows *detachedRows = nullptr;

public:
    /// \name Signals
    /// A listener may do anything, also destroy the view.
    /// @{

    /// A row was made. It isn't among its parent's children yet, so that its path isn't known, and
    /// an object's has no text.
    SignalT<SigRowData> sigRow;
    SignalT<SigVoidData> sigClear;      ///< clear() has run.
    SignalT<SigRowMenuData> sigRowMenu; ///< A context menu is asked for.
    /// An edited name was refused.
    SignalT<SigEditRowErrorData> sigEditRowError;
    /// Objects are dropped, for the host to insert.
    SignalT<SigDropData> sigDrop;
    /// Whether a drop is allowed. While anybody listens, the listeners alone decide; else canDrop()
    /// does.
    SignalT<SigCanDropData> sigCanDrop;
    /// @}
};

} // namespace ZR::VOM::GUI
