#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/vom/ClassFieldsMap.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/Path.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QAbstractItemModel>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace ZR::VOM::GUI::V1 {

/// What a row shows whose object is dead or null: its own translation key, then the default text.
ZRVOMGUI_EXPORT extern char const *const _ObjectTreeModelRowLabelObj0;

/// Objects, and what they link to, as an item model for tree views of Qt.
///
/// An object's row has a child for each accepted link field, and a field's row one for each value:
/// an object again, or nothing. In hide mode the rows of fields are left out, and the values of all
/// accepted fields stand directly below their object. Rows are made when fetchMore() asks for them;
/// until then a row knows only how many there will be.
///
/// A change of the objects only marks rows, and sigUpdate asks for an update(), which brings all
/// marked rows up to date: one signal for each run of rows that come or move together. V1's
/// ObjectTreeView calls it before it paints; another view's host calls it when sigUpdate was
/// emitted, from the event loop.
///
/// What differs from other item models:
/// - The top is a row, too. The invalid index has exactly this one child, which index() answers for
///   every row number, also for one that is negative or not below rowCount(). It makes a good root
///   index for a view. A column other than 0 has no index, there as anywhere.
/// - rowCount() tells the rows made so far, and hasChildren() whether there will be any. A branch
///   whose children have all gone counts as one that wasn't fetched: what it gets next is a number.
/// - fetchMore() of the invalid index updates the top, though canFetchMore() is false for it.
/// - The index of a row that is gone may be used like an invalid one everywhere: rows are looked up
///   by address before they are touched. The address may serve another row later.
/// - mimeTypes() is empty. A view that asks for it must be told otherwise which drags to take.
///
/// A slot may change the objects while an update runs: that marks rows again, and the update goes
/// on with them, a few times at most; sigUpdate tells of what is left. Between the two signals of
/// one insertion, move or removal nothing is done but that, and sigUpdate waits; nor does a row
/// change that is changing already: sigUpdate tells of it afterwards. A slot may destroy the model,
/// but not between those two signals, nor between those of a reset. Exceptions from slots of
/// signals here go to the error sink; those of Qt's must raise none.
///
/// Nothing here owns the objects. GUI thread only. Texts are UTF-8. The position of a row among its
/// siblings is found near where it was found last: at once, unless many siblings have come, gone or
/// moved before it since.
///
/// An update looks up each value behind the first that changed, once. Each run of rows that comes
/// or moves, and each top row that comes or goes, shifts the addresses of the siblings behind it
/// and Qt's persistent indexes among them, so that what falls into very many runs still grows with
/// the square, at a rate of some 10,000 siblings in a microsecond or two for each run.
class ZRVOMGUI_EXPORT ObjectTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    using Object = VOM::Object;
    class ZR_LOCAL Row;
    class ZR_LOCAL Root;
    class ZR_LOCAL ObjectRow;
    class ZR_LOCAL FieldRow;

    struct ObjRow {
        ObjectRow *row;   ///< Null for none. Not owned.
        PtrT<Object> obj; ///< Null for an empty link.
    };
    struct SigObjRowData : SigVoidData {
        std::vector<ObjRow> const *rows; ///< In order of their positions, or the reverse when they
                                         ///< go. Not owned.
    };
    struct SigDropData : SigVoidData {
        Qt::DropAction action;
        std::vector<RefT<Object>> const *objs;     ///< What is dropped. Not owned.
        std::vector<RefT<Object>> const *copyObjs; ///< Deep copies of it, if they came along.
        bool fromXml;                              ///< objs are new, made of XML.
        Path const *rowPath;                       ///< Of the row under the pointer,
        std::int64_t row;      ///< and the child before which is dropped; -1 is onto it.
        Path const *fieldPath; ///< Of the field that takes the drop,
        std::uint64_t index;   ///< and the position in it; beyond its end is an append.
    };
    struct SigCanDropData : SigDropData {
        bool *result; ///< False at first; a listener says whether the drop is allowed.
    };

    /// `newExporter` writes the XML of drags, `newImporter` reads that of drops from elsewhere;
    /// either may be empty.
    explicit ObjectTreeModel(RefT<Exporter> const &newExporter = {},
                             RefT<Xml::Importer> const &newImporter = {});
    ~ObjectTreeModel() override;

    /// \name What rows show
    /// @{
    RefT<Exporter> const &getXmlExporter() const { return exporter; }
    RefT<Xml::Importer> const &getXmlImporter() const { return importer; }
    /// Where rows get their icons; empty by default.
    RefT<ObjectIconDB> const &getObjIconDB() const { return objIconDB; }
    void setObjIconDB(RefT<ObjectIconDB> const &db);
    /// The name of the string field that labels objects; empty by default. Set it before rows are
    /// made: rows that exist go on watching the field of the old name.
    std::string const &getFieldName() const { return fieldName; }
    void setFieldName(std::string const &name);
    /// Whether labels show the class name; true by default.
    bool isTypeName() const { return typeName; }
    void setTypeName(bool on);
    /// The name of the string field that supplies tooltips; empty by default.
    std::string const &getFieldTooltip() const { return fieldTooltip; }
    void setFieldTooltip(std::string const &name);
    /// Whether values stand directly below their objects; false by default. All rows follow at
    /// once.
    bool isHideFields() const { return hiding; }
    void hideFields(bool on);

    /// The link fields that appear, by class name and field name; all while there is no such pair.
    /// The empty class name stands for every class, and a base class for its derived ones. All rows
    /// follow at once.
    void addAcceptedField(std::string const &className, std::string const &acceptedName);
    void removeAcceptedField(std::string const &className, std::string const &acceptedName);
    /// Rows stay as they are until something else updates them.
    void clearAcceptedFields();
    /// False for a null or dead field and for one that holds no links, whatever the filter says.
    bool isAccepted(PtrT<Field> const &field) const;
    /// @}

    /// \name Drag and drop
    /// @{

    /// What drops may do; copy, move and link by default.
    Qt::DropActions getDropActions() const { return dropActions; }
    void setDropActions(Qt::DropActions actions) { dropActions = actions; }
    /// A set for the host's own use, which nothing here reads.
    void addMimeType(std::string const &type) { ownMimeTypes.insert(type); }
    void removeMimeType(std::string const &type) { ownMimeTypes.erase(type); }
    void clearMimeTypes() { ownMimeTypes.clear(); }
    /// @}

    /// \name Top rows
    /// Positions beyond the end append. Objects and fields that die leave.
    /// @{

    /// Returns the position. A null object shows an empty link.
    std::size_t addRow(PtrT<Object> const &obj, std::size_t index);
    /// Shows a field as a top row with its values below, or in hide mode its values. In hide mode
    /// they stay as they are until something else updates the top.
    std::size_t addRow(FieldPtr &field, std::size_t index) { return addItem(field, index); }
    std::size_t addRow(FieldRef &field, std::size_t index) { return addItem(field, index); }
    std::size_t addRow(MFieldPtr &field, std::size_t index) { return addItem(field, index); }
    std::size_t addRow(MFieldRef &field, std::size_t index) { return addItem(field, index); }
    /// In order from `index` on, each row told by itself. Faster for many than addRow() for each,
    /// which compares all rows there are with all items each time.
    void addRows(std::vector<PtrT<Object>> const &objs, std::size_t index);
    /// Removes all, by a reset of the model; no sigRowsRemoved. sigClear follows. While the top
    /// rows change, or in the middle of any change, both come when that is over.
    void clear();
    /// @}

    /// \name Updates
    /// @{

    /// Brings the marked rows up to date; costs nothing when there are none.
    void update();
    /// Emits sigUpdate.
    void requestUpdate();
    /// @}

    /// \name Rows
    /// @{

    /// The row that a path leads to; invalid if there is none. With `create`, rows on the way are
    /// fetched. A path whose root has no top row gives the index of the top.
    QModelIndex makeIndex(Path const &path, bool create);
    /// The path of a row. False, with `path` without steps, for an invalid index, for the top and
    /// for a row that is gone.
    bool getPath(QModelIndex const &index, Path &path) const;
    /// Null for a row that shows no object.
    ObjRow getObjRow(QModelIndex const &index) const;
    /// Invalid for null and for a row that is gone.
    QModelIndex getIndex(ObjectRow *row) const;
    /// @}

    /// \name Item model
    /// @{
    QModelIndex index(int row, int column, QModelIndex const &parent = {}) const override;
    using QObject::parent;
    QModelIndex parent(QModelIndex const &index) const override;
    int rowCount(QModelIndex const &parent = {}) const override;
    bool hasChildren(QModelIndex const &parent = {}) const override;
    int columnCount(QModelIndex const &parent = {}) const override;
    bool canFetchMore(QModelIndex const &parent) const override;
    void fetchMore(QModelIndex const &parent) override;
    /// Text, icon and tooltip.
    QVariant data(QModelIndex const &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(QModelIndex const &index) const override;
    /// Always empty.
    QStringList mimeTypes() const override;
    /// The objects of the rows among `indexes`, and deep copies of them. The receiver must be done
    /// before the next call, or the end of the model.
    QMimeData *mimeData(QModelIndexList const &indexes) const override;
    /// Whether the drop would be announced. The column plays no part.
    bool canDropMimeData(QMimeData const *mime, Qt::DropAction action, int row, int column,
                         QModelIndex const &parent) const override;
    /// Emits sigDrop if the drop is allowed, and answers whether it did.
    bool dropMimeData(QMimeData const *mime, Qt::DropAction action, int row, int column,
                      QModelIndex const &parent) override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override { return dropActions; }
    /// @}

    SignalT<SigObjRowData> sigRowsAdded;   ///< Rows of objects have appeared.
    SignalT<SigObjRowData> sigRowsRemoved; ///< Rows of objects are about to go.
    SignalT<SigVoidData> sigClear;         ///< clear() has removed all.
    /// Objects are dropped, for the host to insert.
    SignalT<SigDropData> sigDrop;
    /// Whether a drop is allowed. While anybody listens, the listeners alone decide; else canDrop()
    /// of the transfers does.
    mutable SignalT<SigCanDropData> sigCanDrop;
    /// Some row wants an update. Not emitted again until update() was called, which a slot may do
    /// at once. What a slot's own update() leaves, or its changes mark, is told by the event loop.
    SignalT<SigVoidData> sigUpdate;

private:
    struct ZR_LOCAL DropData;
    class ZR_LOCAL Count;
    class ZR_LOCAL Change;
    class ZR_LOCAL FieldNews;

    template <class Operation>
    void relayout(Operation const &change);
    ZR_LOCAL void onRefObjIconDBSigDelete(SigVoidData const &sigData);
    std::size_t addItem(PtrT<Class> const &item, std::size_t index);
    ZR_LOCAL RefT<Row> getRow(QModelIndex const &index) const;
    ZR_LOCAL QModelIndex getIndex(Row &row) const;
    ZR_LOCAL void getPath(PtrT<Row> const &row, Path &path) const;
    ZR_LOCAL RefT<FieldRow> newRow(RefT<Field> const &field, PtrT<Row> const &parent);
    ZR_LOCAL void setLeaving(Field &field);
    ZR_LOCAL bool isLeaving(Field const &field) const;
    ZR_LOCAL void onRemovalsOver();
    ZR_LOCAL void forAllRows(RefT<Row> const &top, void (*operation)(RefT<Row> const &));
    ZR_LOCAL void updateAllRows();
    ZR_LOCAL void updateMarked();
    ZR_LOCAL void tellMarks();
    ZR_LOCAL void tellMarksLeft();
    ZR_LOCAL void finishChange();
    ZR_LOCAL bool makeDropData(DropData &drop, QMimeData const &mime, Qt::DropAction action,
                               int row, QModelIndex const &parent) const;
    ZR_LOCAL bool canDrop(DropData const &drop) const;
    ZR_LOCAL bool findDropField(DropData &drop, QMimeData const &mime, Qt::DropAction action,
                                int row, QModelIndex const &parent) const;
    ZR_LOCAL bool findFieldOfObject(DropData &drop, ObjectRow const &row) const;

    std::set<Row *> liveRows; // Every row that may be touched.
    RefT<Exporter> exporter;
    RefT<Xml::Importer> importer;
    RefT<ObjectIconDB> objIconDB;
    std::string fieldName;
    bool typeName = true;
    std::string fieldTooltip;
    ClassFieldsMap acceptedFields;
    bool hiding = false;
    Qt::DropActions dropActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    std::set<std::string> ownMimeTypes;
    RefT<Root> root;
    // What the last drag offers, by address.
    mutable std::vector<RefT<Object>> dragObjs, dragCopies;
    Signal::Connection conObjIconDB;

    // Said to go, and perhaps still in their objects.
    std::map<Field const *, PtrT<Field>> leavingFields;
    bool isUpdating = false;      // Marks are collected, and not told.
    bool isTelling = false;       // sigUpdate is being emitted for the sake of marks.
    bool isUntold = false;        // Marks were made that nobody was told of.
    bool isToldLater = false;     // The event loop will tell of marks.
    unsigned changesUnderWay = 0; // Between the first and the second signal of a change of rows.
    unsigned fieldNews = 0;       // While rows hear of a field that comes or goes.
};

} // namespace ZR::VOM::GUI::V1
