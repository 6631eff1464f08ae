#pragma once

// Not for hosts to include: what they call on ObjectTreeView and V2::ObjectTreeView.

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/Signal.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/Path.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QString>

#include <cstddef>
#include <string>
#include <vector>

class QDropEvent;
class QMimeData;
class QMouseEvent;
class QPoint;

namespace ZR::VOM::GUI::Trees {

class DetachedRows;
template <class View>
struct RowsT;
template <class View>
class VoidRowT;

/// Objects, and what they link to, as a tree of rows: what both generations of it do alike.
///
/// `View` is the generation, which derives from this and adds its signals. `RowTraits` names what
/// differs:
/// - Base, Row, RowHandle, OwnedRow and RowArgument: the tree beneath, its rows, and how these are
///   handed out, owned and taken;
/// - make(), which makes an OwnedRow of any kind;
/// - VoidRow and ObjectRow: the two rows that have operations of their own in each generation;
/// - AcceptedFields with accept(), refuse() and matches(): the filter of fields;
/// - lostRowsHavePaths, keepsTopRows, tracesDrops, hasAddress() and name: see there.
///
/// Nothing here owns the objects. GUI thread only. Texts are UTF-8.
template <class View, class RowTraits>
class ZRVOMGUI_EXPORT ObjectTreeT : public RowTraits::Base {
    struct ZR_LOCAL DropData;

public:
    using Traits = RowTraits;
    using Row = typename Traits::Row;
    using RowHandle = typename Traits::RowHandle;
    using Object = VOM::Object;

    struct SigRowMenuData : SigVoidData {
        SigRowMenuData(typename Traits::RowArgument ofRow, QPoint const &atPos)
            : row(ofRow)
            , pos(atPos)
        {
        }
        typename Traits::RowArgument row; ///< Null beside all rows.
        QPoint const &pos;                ///< On the screen.
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

    ~ObjectTreeT() override;

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
    /// Whether values stand directly below their objects; false by default.
    bool isHideFields() const { return hideFields; }
    void setHideFields(bool on);
    /// The name of the string field that names objects and can be edited; empty by default.
    std::string const &getNameField() const { return nameField; }
    void setNameField(std::string const &fieldName);
    /// The name of the string field that supplies tooltips; empty by default.
    std::string const &getTooltipField() const { return tooltipField; }
    void setTooltipField(std::string const &fieldName);

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
    Object *getRowObj(typename Traits::RowArgument row) const;
    /// Null for a row that shows no field.
    Field *getRowField(typename Traits::RowArgument row) const;
    /// Empty for no row; for one whose object or field died see lostRowsHavePaths. A row that was
    /// told of another name field gives its path even then, see setNameField().
    Path getRowPath(typename Traits::RowArgument row) const;
    using Traits::Base::getSel;
    using Traits::Base::setSel;
    /// Appends the paths of the selected rows.
    void getSel(std::vector<Path> &paths);
    /// Selects the rows that the paths lead to, which may lie inside closed ones. Paths that lead
    /// nowhere are passed over.
    void setSel(std::vector<Path> const &paths);
    /// @}

protected:
    using OwnedRow = typename Traits::OwnedRow;
    using VoidRow = typename Traits::VoidRow;
    using ObjectRow = typename Traits::ObjectRow;
    class ZR_LOCAL Root;
    class ZR_LOCAL FieldRow;
    class ZR_LOCAL FieldPtrRow;
    class ZR_LOCAL FieldRefRow;
    class ZR_LOCAL MFieldPtrRow;
    class ZR_LOCAL MFieldRefRow;

    /// `baseArguments` are those of the tree beneath.
    template <class... Arguments>
    ZR_LOCAL ObjectTreeT(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                         Arguments &&...baseArguments);

    /// \name New rows, after sigRow
    /// @{
    OwnedRow makeRow(VoidRow &parent, Object &obj);
    /// Null for a field that holds no links.
    OwnedRow makeRow(VoidRow &parent, Field &field);
    OwnedRow makeRow(VoidRow &parent);
    /// @}
    /// The row that a path leads to, null if there is none. Rows on the way are opened; they stay
    /// so when `keepOpen`.
    RowHandle makeRow(Path const &path, bool keepOpen);

    // Used while setSel() looks rows up: those found so far.
    std::vector<RowHandle> foundRows;

    /// Calls an operation of every row that exists, from the root down.
    void forEachRow(void (VoidRow::*operation)());
    /// For the destructor of the view: lets go of what may still call its rows.
    void letGo();

    void mouseMoveEvent(QMouseEvent *event) override;
    QMimeData *makeMimeData(std::vector<RowHandle> const &rows) override;
    void onRequestContextMenu(typename Traits::RowArgument row, QPoint const &pos) override;
    void onEditRow(Row &row) override;
    void onEditRowConfirm(Row &row, std::string const &text) override;
    bool onCanDrop(QDropEvent &event, typename Traits::RowArgument row, std::size_t index) override;
    void onDrop(QDropEvent &event, typename Traits::RowArgument row, std::size_t index) override;

    /// \name The settings, as the Qt properties of the generations have them
    /// @{
    QString readNameField() const { return QString::fromStdString(nameField); }
    void writeNameField(QString const &name) { setNameField(name.toStdString()); }
    QString readTooltipField() const { return QString::fromStdString(tooltipField); }
    void writeTooltipField(QString const &name) { setTooltipField(name.toStdString()); }
    /// @}

private:
    friend struct RowsT<View>;
    friend class VoidRowT<View>;

    View &self() { return static_cast<View &>(*this); }
    Root &root() { return self().getRoot(); }
    ZR_LOCAL OwnedRow announce(OwnedRow row);
    ZR_LOCAL QString tooltipAt(QPoint const &viewportPos);
    ZR_LOCAL RefT<FieldString> findNameField(Row const &row) const;
    ZR_LOCAL void onRefObjIconDBSigDelete(SigVoidData const &sigData);
    ZR_LOCAL bool findDropField(DropData &dropData, QDropEvent const &event, Qt::DropAction action,
                                RowHandle row, std::size_t index);
    ZR_LOCAL bool findFieldOfObject(DropData &dropData, Object *obj);
    ZR_LOCAL bool makeDropData(DropData &dropData, QMimeData const &mime, Qt::DropAction action,
                               typename Traits::RowArgument row, std::size_t index) const;
    ZR_LOCAL bool canDrop(DropData const &dropData);

    RefT<Exporter> xmlExporter;
    RefT<Xml::Importer> xmlImporter;
    RefT<ObjectIconDB> objIconDB;
    std::string nameField;
    bool typeName = true;
    bool hideFields = false;
    std::string tooltipField;
    typename Traits::AcceptedFields acceptedFields;
    // What the last drag offers. Kept for receivers that still work on it.
    std::vector<RefT<Object>> dragObjs, dragCopyObjs;
    Signal::Connection conObjIconDB;
    DetachedRows *detachedRows = nullptr;
};

} // namespace ZR::VOM::GUI::Trees
