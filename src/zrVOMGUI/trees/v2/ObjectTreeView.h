#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/gui/v2/TreeView.h"
#include "zrVOMGUI/trees/ObjectTreeT.h"

#include <map>
#include <memory>
#include <set>
#include <string>

namespace ZR::VOM::GUI::V2 {

class ZRVOMGUI_EXPORT ObjectTreeView;

/// What is particular to the second generation; see Trees::ObjectTreeT.
struct ZRVOMGUI_EXPORT ObjectTreeTraits {
    using Base = ZR::GUI::V2::TreeView;
    using Row = Base::Row;
    using RowHandle = Row *;
    using OwnedRow = std::unique_ptr<Row>;
    using RowArgument = Row *;
    class ZR_LOCAL VoidRow;
    class ZR_LOCAL ObjectRow;
    template <class AnyRow, class... Arguments>
    static OwnedRow make(Arguments &&...arguments);

    /// Field names by class name. The empty class name is any class, and an empty set all link
    /// fields of its class.
    using AcceptedFields = std::map<std::string, std::set<std::string>>;
    /// Both answer whether the filter changed.
    static bool accept(AcceptedFields &accepted, std::string const &className,
                       std::string const &fieldName);
    static bool refuse(AcceptedFields &accepted, std::string const &className,
                       std::string const &fieldName);
    /// Whether any of the field's class, its bases and the empty class name accepts it: none of
    /// them can refuse what another one accepts.
    static bool matches(AcceptedFields const &accepted, Field &field);

    /// KEPT: a row whose object or field died still says where it stood. Hosts that are told of a
    /// death look up where it happened.
    static constexpr bool lostRowsHavePaths = true;
    /// KEPT: each change of the top rows makes all of them anew, closed. Hosts set this tree up
    /// once for a list of objects, and rely on a fresh look when they give it another one.
    static constexpr bool keepsTopRows = false;
    /// KEPT: each drag over the tree tells the standard output where it is. Hosts read that trace.
    static constexpr bool tracesDrops = true;
    static void traceDrop(Row const *row, std::size_t index);
    static bool hasAddress(ObjectTreeView const &) { return false; }
    static constexpr char const *name = "ZR::VOM::GUI::V2::ObjectTreeView";
};

/// Objects, and what they link to, as a tree of rows, the second generation.
///
/// As the ObjectTreeView without generation, with these differences:
/// - Rows are handed out as plain pointers. They are valid until their parent is rebuilt, which
///   happens in any layout after the model changed.
/// - Labels show no addresses.
/// - Adding or removing a top row closes all of them.
/// - A row whose object or field is lost still has a path.
/// - Drags over the tree write a trace to std::cout.
/// What is a plain value is also a Qt property of the same name, for forms and style sheets.
class ZRVOMGUI_EXPORT ObjectTreeView : public Trees::ObjectTreeT<ObjectTreeView, ObjectTreeTraits> {
    Q_OBJECT
    Q_PROPERTY(QString nameField READ readNameField WRITE writeNameField)
    Q_PROPERTY(QString tooltipField READ readTooltipField WRITE writeTooltipField)
    Q_PROPERTY(bool typeName READ isTypeName WRITE setTypeName)
    Q_PROPERTY(bool hideFields READ isHideFields WRITE setHideFields)

public:
    explicit ObjectTreeView(QWidget *parent = nullptr);
    /// `exporter` writes the XML of drags, `importer` reads that of drops from elsewhere; either
    /// may be empty.
    ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                   QWidget *parent = nullptr);
    ~ObjectTreeView() override;

    /// The path of the current row.
    Path getCurrent() const;

    /// \name Signals
    /// A listener may do anything, also destroy the view.
    /// @{

    /// A row was made. It isn't among its parent's children yet, so that its path isn't known, and
    /// an object's has no text.
    SignalT<SigRowData> sigRow;
    SignalT<SigRowMenuData> sigRowMenu; ///< A context menu is asked for.
    SignalT<SigVoidData> sigClear;      ///< clear() has run.
    /// An edited name was refused.
    SignalT<SigEditRowErrorData> sigEditRowError;
    /// Objects are dropped, for the host to insert.
    SignalT<SigDropData> sigDrop;
    /// Whether a drop is allowed. While anybody listens, the listeners alone decide; else canDrop()
    /// does.
    SignalT<SigCanDropData> sigCanDrop;
    /// @}

protected:
    void onDeleteRow(Row &row) override;

private:
    friend class Trees::ObjectTreeT<ObjectTreeView, ObjectTreeTraits>;
    ZR_LOCAL Root &getRoot();
};

} // namespace ZR::VOM::GUI::V2
