#pragma once

#include "zrVOMGUI/foundation/gui/export.h"
#include "zrVOMGUI/foundation/util/export.h"

#include <QIcon>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZR::GUI {

class TreeEngine;
class TreeBranch;

/// What the rows of both generations of tree views have in common: one line with an icon and a
/// text, and child rows below it.
///
/// Rows are asked late. A model handler only marks a row; onUpdate() comes with the view's next
/// layout, once for however many marks. A row that is out of sight isn't asked at all until it
/// comes into sight, unless it is open or hidden: then its children are needed to know where
/// everything else stands. Parents are asked before their children.
///
/// A hidden row has no line of its own. Its children stand in its place, one level further out,
/// whether it is open or not.
///
/// Derive from TreeViewRow or V2::TreeView::Row. GUI thread only.
class ZRGUI_EXPORT TreeRow {
public:
    static constexpr std::size_t npos = std::size_t(-1);

    TreeRow(TreeRow const &) = delete;
    TreeRow &operator=(TreeRow const &) = delete;
    virtual ~TreeRow();

protected:
    /// Brings the row up to date; called before it is laid out. With wanted false for nothing but
    /// what the row itself shows and the number of its children. With wanted true also the children
    /// may be made; a row that is neither open nor hidden needs none, unless they are hidden and
    /// theirs stand in their place.
    ///
    /// May destroy rows and the view; but not the view while a paint that was forced by grab(),
    /// render() or repaint() asks for it, since Qt goes on with the widget that it paints. What the
    /// event loop paints was asked for before. An exception goes to the error sink.
    virtual void onUpdate(bool wanted);

public:
    /// Opening asks for the children, see onUpdate(). Rows of a closed row live on.
    void setOpen(bool newOpen);
    bool isOpen() const { return open; }
    void setHidden(bool newHidden);
    bool isHidden() const { return hidden; }

    /// Asks for a new onUpdate().
    void invalidateLayout();

    QString const &getText() const { return rowText; }
    QIcon const &getIcon() const { return rowIcon; }

    /// As told by setNumChildRows() or setChildRows(), whichever was last.
    std::size_t getNumChildRows() const { return numChildren; }
    /// How many children exist by now.
    std::size_t getNumMadeChildRows() const;
    /// The position among the parent's children; npos for a row that isn't among them.
    std::size_t getPos() const { return attached ? rowIndex : npos; }

protected:
    /// Without an engine the parent's; none for a root that is made before its view.
    TreeRow(TreeEngine *viewEngine, TreeRow *parentRow);

    void invalidateIconLayout();
    void invalidateTextLayout();

    /// The text in UTF-8. Line breaks are shown as blanks.
    void setText(std::string const &newText);
    void setIcon(QIcon const &newIcon);
    /// Tells the count without making the rows. Rows that exist stay.
    void setNumChildRows(std::size_t num);

    /// Whether the row belongs to a view that isn't being torn down.
    bool isViewAlive() const;
    TreeRow *getParentRow() const { return rowParent; }
    TreeRow *getMadeChild(std::size_t pos) const;

    /// The children, which have no position from then on.
    std::vector<TreeRow *> takeChildren();
    /// Whether a row can be a child of this one: it lies in no other row, belongs to the same view
    /// and isn't this row or an ancestor of it.
    bool canAdopt(TreeRow &child) const;
    /// What is left over of rows that were children: dies at once or, while any onUpdate() runs,
    /// which may be that of one of them, after it.
    template <class Handle>
    void drop(std::vector<Handle> &&rows);
    /// The new children in place of none. Each canAdopt(), and none is there twice.
    void putChildren(std::vector<TreeRow *> &&children);

private:
    friend class TreeEngine;

    enum class Listed : std::uint8_t { Nowhere, Loose, Due, Parked };

    ZR_LOCAL bool isAnyUpdating() const;
    ZR_LOCAL void bury(std::shared_ptr<void> rows);
    ZR_LOCAL void mark(bool structure);
    ZR_LOCAL void attach(TreeEngine &viewEngine);
    ZR_LOCAL void adopted(TreeRow &newParent, std::size_t pos);
    ZR_LOCAL bool isRoot() const;
    bool isExpanding() const { return open || hidden || isRoot(); }
    ZR_LOCAL std::size_t getLinesBelow() const;
    ZR_LOCAL std::size_t getLines() const;
    ZR_LOCAL void addLines(std::ptrdiff_t change);
    ZR_LOCAL void addOwnLines(std::ptrdiff_t change);

    TreeEngine *engine;                 // Counted: it lives as long as any of its rows.
    TreeRow *rowParent;                 // Null when it died before this row.
    std::unique_ptr<TreeBranch> branch; // The children; null while there are none.
    std::size_t numChildren = 0;
    QString rowText;
    QIcon rowIcon;
    std::uint32_t rowIndex = 0;   // In the parent, while attached.
    std::uint32_t listIndex = 0;  // In the engine's list named by `listed`.
    std::uint32_t selIndex = 0;   // In the engine's selection, while selected.
    std::uint32_t updatePass = 0; // The layout that called onUpdate() last.
    Listed listed = Listed::Nowhere;
    bool attached : 1;
    bool open : 1;
    bool hidden : 1;
    bool stale : 1; // Wants an onUpdate().
    bool selected : 1;
    bool hasLoose : 1; // A row was made for this parent and may not be among its children yet.
};

template <class T>
bool isLastOwner(std::shared_ptr<T> const &row)
{
    return row.use_count() == 1;
}

template <class T>
bool isLastOwner(std::unique_ptr<T> const &)
{
    return true;
}

/// Destroys rows and all below them without recursion; what others still own stays whole.
template <class Handle>
void destroyRows(std::vector<Handle> &&rows)
{
    std::vector<Handle> dying(std::move(rows));
    while (!dying.empty()) {
        const Handle row = std::move(dying.back());
        dying.pop_back();
        if (!row || !isLastOwner(row))
            continue;
        for (Handle &child : row->releaseChildRows())
            dying.push_back(std::move(child));
    }
}

template <class Handle>
void TreeRow::drop(std::vector<Handle> &&rows)
{
    if (!rows.empty() && isAnyUpdating())
        bury(std::make_shared<std::vector<Handle>>(std::move(rows)));
    else
        destroyRows(std::move(rows));
}

} // namespace ZR::GUI
