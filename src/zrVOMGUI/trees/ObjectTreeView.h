#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/gui/TreeView.h"
#include "zrVOMGUI/foundation/vom/ClassFieldsMap.h"
#include "zrVOMGUI/trees/ObjectTreeT.h"

#include <memory>
#include <string>
#include <vector>

namespace ZR::VOM::GUI {

class ZRVOMGUI_EXPORT ObjectTreeView;

/// What a row of an empty link shows: its own translation key, then the default text.
ZRVOMGUI_EXPORT extern char const *const _ObjectTreeViewVoidRowLabel;

/// What is particular to the first generation; see Trees::ObjectTreeT.
struct ZRVOMGUI_EXPORT ObjectTreeTraits {
    using Base = ZR::GUI::TreeView;
    using Row = ZR::GUI::TreeViewRow;
    using RowHandle = std::shared_ptr<Row>;
    using OwnedRow = RowHandle;
    using RowArgument = RowHandle const &;
    class ZR_LOCAL VoidRow;
    class ZR_LOCAL ObjectRow;
    template <class AnyRow, class... Arguments>
    static OwnedRow make(Arguments &&...arguments);

    using AcceptedFields = ClassFieldsMap;
    /// Both answer whether the filter changed.
    static bool accept(AcceptedFields &accepted, std::string const &className,
                       std::string const &fieldName);
    static bool refuse(AcceptedFields &accepted, std::string const &className,
                       std::string const &fieldName);
    static bool matches(AcceptedFields const &accepted, Field &field);

    static constexpr bool lostRowsHavePaths = false; ///< Paths of what died are empty.
    static constexpr bool keepsTopRows = true;       ///< Top rows stay open while others change.
    static constexpr bool tracesDrops = false;
    static bool hasAddress(ObjectTreeView const &view);
    static constexpr char const *name = "ZR::VOM::GUI::ObjectTreeView";
};

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
/// What is a plain value is also a Qt property of the same name, for forms and style sheets.
///
/// Nothing here owns the objects. GUI thread only. Texts are UTF-8.
class ZRVOMGUI_EXPORT ObjectTreeView : public Trees::ObjectTreeT<ObjectTreeView, ObjectTreeTraits> {
    Q_OBJECT
    Q_PROPERTY(QString nameField READ readNameField WRITE writeNameField)
    Q_PROPERTY(QString tooltipField READ readTooltipField WRITE writeTooltipField)
    Q_PROPERTY(bool typeName READ isTypeName WRITE setTypeName)
    Q_PROPERTY(bool address READ isAddress WRITE setAddress)
    Q_PROPERTY(bool hideFields READ isHideFields WRITE setHideFields)

public:
    explicit ObjectTreeView(QWidget *parent = nullptr);
    /// `exporter` writes the XML of drags, `importer` reads that of drops from elsewhere; either
    /// may be empty.
    ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                   QWidget *parent = nullptr);
    ~ObjectTreeView() override;

    /// Whether labels show the address in memory; false by default.
    bool isAddress() const { return address; }
    void setAddress(bool on);
    /// The path of the current row.
    Path getCurrent();

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

private:
    friend class Trees::ObjectTreeT<ObjectTreeView, ObjectTreeTraits>;
    ZR_LOCAL Root &getRoot();

    bool address = false;
};

} // namespace ZR::VOM::GUI
