#pragma once

// Not for hosts.

#include "zrVOMGUI/foundation/gui/GuardedDrag.h"
#include "zrVOMGUI/foundation/gui/TreeRow.h"
#include "zrVOMGUI/foundation/gui/private/TreeHooks.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPointer>
#include <QRect>

#include <optional>
#include <unordered_map>

class QAccessibleInterface;
class QStyleOptionViewItem;

namespace ZR::GUI {

class TreeEditor;
class TreeEngine;

/// Watches a row and reads null after its death.
class TreeRowWatch {
public:
    explicit TreeRowWatch(TreeEngine &treeEngine, TreeRow *watched = nullptr);
    ~TreeRowWatch();
    TreeRowWatch(TreeRowWatch const &) = delete;
    TreeRowWatch &operator=(TreeRowWatch const &) = delete;

    TreeRowWatch &operator=(TreeRow *watched)
    {
        row = watched;
        return *this;
    }
    operator TreeRow *() const { return row; }
    TreeRow *operator->() const { return row; }

private:
    friend class TreeEngine;
    TreeEngine &engine;
    TreeRow *row;
    TreeRowWatch *prev, *next; // All watches of one engine.
};

/// Layout, painting, selection, keyboard, mouse, editing and dragging of a tree of rows in a scroll
/// area: all that the generations of tree views have in common.
///
/// Knows rows by address and never owns one. Its view holds one reference and so does each row, so
/// that rows may outlive their view; without a view every operation does nothing. Whoever calls in
/// from outside holds a Ref meanwhile, since host code may destroy the view.
///
/// Lines are numbered over all that is open, from 0, and all have one height. No operation walks
/// over siblings to find a line or a row.
class TreeEngine {
public:
    /// What keeps an engine alive while its functions run.
    class Ref {
    public:
        explicit Ref(TreeEngine &treeEngine)
            : engine(treeEngine)
        {
            engine.ref();
        }
        ~Ref() { engine.unref(); }
        Ref(Ref const &) = delete;
        Ref &operator=(Ref const &) = delete;
        TreeEngine *operator->() const { return &engine; }
        TreeEngine &get() const { return engine; }

    private:
        TreeEngine &engine;
    };

    struct DropPlace {
        TreeRow *row;      // Null where no row takes anything.
        std::size_t index; // Before this child of it, or npos: onto the row itself.
        QRect indicator;   // In the viewport.
    };

    TreeEngine(QAbstractScrollArea &view, std::unique_ptr<TreeHooks> viewHooks);
    TreeEngine(TreeEngine const &) = delete;
    TreeEngine &operator=(TreeEngine const &) = delete;
    void ref() { ++refs; }
    void unref();

    // The view's life.
    void setRoot(TreeRow *newRoot);
    bool isRoot(TreeRow const &row) const { return root == &row; }
    TreeRow *getRoot() const { return root; }
    QAbstractScrollArea *getView() const { return view; }
    /// The view dies.
    void leaveView();
    /// Rows that die as soon as no onUpdate() runs, which may be that of one of them.
    void bury(std::shared_ptr<void> rows);
    bool isUpdating() const { return updating > 0; }

    // Told by rows.
    void list(TreeRow &row, TreeRow::Listed where);
    void unlist(TreeRow &row);
    void unpark();
    void adopt(TreeRow &row);
    void forget(TreeRow &row);
    void requestLayout();
    void marked();
    void linesChanged();
    void lookChanged();
    void textChanged(TreeRow &row);
    void openChanged(TreeRow &row);

    // Layout.
    /// Brings all that is in sight up to date. False when the view is gone afterwards.
    bool settle();
    /// The same for one row: with wanted false for its text, icon and count, wherever it is.
    bool updateRow(TreeRow &row, bool wanted);
    std::size_t getNumLines();
    TreeRow *rowAtLine(std::size_t line) const;
    /// npos when the row has no line.
    std::size_t lineOf(TreeRow const &row) const;
    bool isInTree(TreeRow const &row) const;
    /// How many rows that have a line lie above this one.
    int levelOf(TreeRow const &row) const;
    /// The nearest ancestor that isn't hidden; null at the top level.
    static TreeRow *shownParent(TreeRow const &row);
    bool hasChildren(TreeRow const &row) const;
    int getRowHeight();
    TreeRow *findRow(QPoint const &content);
    TreeRow *rowAtView(QPoint const &pos);
    /// The whole line, in the viewport's coordinates.
    QRect lineRect(std::size_t line);
    /// The part that shows icon and text, and the part of the expander.
    QRect itemRect(TreeRow const &row, std::size_t line);
    QRect expanderRect(int level, std::size_t line);
    void scrollTo(TreeRow &row);
    void metricsChanged();
    void resized();
    void scrolled();

    // Painting.
    void paint(QPaintEvent &event);
    QPixmap makeDragPixmap(std::vector<TreeRow *> const &rows);

    // Selection.
    std::vector<TreeRow *> getSel();
    void setSel(std::vector<TreeRow *> const &rows);
    bool isSelected(TreeRow const &row) const { return row.selected; }
    TreeRow *getCurrent() const;
    /// By the user: makes a row current, selects by the modifiers and scrolls to it.
    void moveTo(TreeRow &row, Qt::KeyboardModifiers modifiers);
    void selectOnly(TreeRow &row);

    // Events. Each may destroy the view.
    void mousePress(QMouseEvent &event);
    void mouseMove(QMouseEvent &event);
    void mouseRelease(QMouseEvent &event);
    void mouseDoubleClick(QMouseEvent &event);
    void hoverLeft();
    /// False when the key means nothing here.
    bool keyPress(QKeyEvent &event);
    void contextMenu(QContextMenuEvent &event);
    void focusChanged(bool in);
    void timer(QTimerEvent &event);
    void layoutRequested();
    /// The view comes into sight.
    void shown();

    // Editing.
    void edit(TreeRow &row, std::string const &text);
    /// The editor was confirmed or given up, or has lost the focus.
    void editorDone(bool confirmed);
    void placeEditor();
    void closeEditor();

    // Dragging.
    void setDropActions(Qt::DropActions actions, Qt::DropAction defaultAction);
    void addMimeType(QString const &type);
    std::vector<QString> const &getMimeTypes() const { return mimeTypes; }
    void dragEnter(QDragEnterEvent &event);
    void dragMove(QDragMoveEvent &event);
    void dragLeave();
    void drop(QDropEvent &event);

    // Accessibility.
    QAccessibleInterface *accessible(TreeRow *row);
    /// The row that it stands for; null for interfaces of others.
    TreeRow *rowOf(QAccessibleInterface const *iface) const;

    /// Opens or closes as a user does: what is closed over loses selection and current row.
    void toggle(TreeRow &row, bool newOpen);

private:
    friend class TreeRowWatch;

    ~TreeEngine() = default;

    // Layout.
    bool updateStructure();
    bool updateShown();
    void postLayout();
    bool isReached(TreeRow const &row) const;
    static TreeRow *topStale(TreeRow &row);
    void measure();
    void updateScrollBars();
    void scrollSideways(TreeRow const &row);
    int itemWidth(TreeRow const &row);
    int contentLeft() const;
    bool isElided() const;
    std::pair<std::size_t, std::size_t> shownLines();

    // Painting.
    QStyleOptionViewItem makeOption() const;
    void initItem(QStyleOptionViewItem &option, TreeRow const &row) const;
    void paintLine(QPainter &painter, TreeRow &row, std::size_t line);
    void paintBranches(QPainter &painter, TreeRow const &row, std::size_t line,
                       QStyleOptionViewItem const &option);
    void paintDropIndicator(QPainter &painter);
    TreeRow const *climb(TreeRow const &row, std::size_t &line) const;

    // Selection.
    bool setSelected(TreeRow &row, bool selected);
    void clearSel();
    void selectRange(TreeRow &from, TreeRow &to);
    void setCurrent(TreeRow *row);
    TreeRow *shownCurrent() const;
    bool isBelow(TreeRow const &row, TreeRow const &ancestor) const;
    bool isBefore(TreeRow const &left, TreeRow const &right) const;

    // Keyboard.
    bool moveKey(QKeyEvent &event);
    bool branchKey(QKeyEvent &event);
    bool actionKey(QKeyEvent &event);
    void openAll(TreeRow &row);
    void search(QString const &typed);

    // Mouse.
    void pressRow(TreeRow &row, QMouseEvent &event);
    void setHover(TreeRow *row);

    // Dragging.
    void startDrag();
    bool takesTypes(QDropEvent const &event) const;
    DropPlace placeAt(QPoint const &pos);
    bool chooseAction(QDropEvent &event) const;
    /// Where the host takes the drop; no row where it doesn't, or the view is gone.
    DropPlace askDrop(QDropEvent &event, QPoint const &pos);
    static void leaveHidden(DropPlace &place);
    void watchHover();
    void setDropPlace(DropPlace const &place);
    QPoint edgeSteps() const;
    void autoScroll();

    // Accessibility.
    void forgetAccessible(TreeRow *row);
    void forgetAccessibles();
    void tellFocus();
    void tellName(TreeRow &row);
    void tellOrder();
    void tellSelection();

    std::size_t refs = 1;
    QAbstractScrollArea *view;
    std::unique_ptr<TreeHooks> hooks;
    TreeRow *root = nullptr; // Never has a line. Owned by the view.
    TreeRowWatch *watches = nullptr;

    // Rows that lie in no tree yet; that want an onUpdate() before anything can be laid out; that
    // would but aren't shown.
    std::vector<TreeRow *> loose, due, parked;
    std::vector<TreeRow *> selection;
    std::vector<std::shared_ptr<void>> buried;
    int updating = 0;           // Calls of onUpdate() that run.
    std::size_t numUpdates = 0; // All that ever ran.
    bool settling = false, layoutPosted = false;
    bool again = false; // A row was marked while the layout ran.
    bool layoutStale = true, linesStale = true, widthStale = true, metricsStale = true;
    std::uint32_t pass = 0;

    int rowHeight = 1, indent = 20, contentWidth = 0;

    TreeRowWatch current, anchor, hover;
    std::optional<QPoint> hoverPos; // Of the pointer in the viewport, while it is over it.

    std::unordered_map<TreeRow *, unsigned int> accessibles; // Identifiers of their interfaces.
    bool selChanged = false, orderChanged = false;           // And not yet told.

    // From a press on.
    TreeRowWatch pressed;
    QPoint pressPos;
    bool selectAtRelease = false, editAfterClick = false;
    Qt::KeyboardModifiers pressModifiers;

    QString searched;
    QElapsedTimer searchTime;

    TreeRowWatch edited;
    QPointer<TreeEditor> editor;
    QBasicTimer editTimer;

    // A drag that began here; one over this view.
    GuardedDrag drag;
    Qt::DropActions dropActions = Qt::CopyAction;
    Qt::DropAction defaultDropAction = Qt::CopyAction;
    std::vector<QString> mimeTypes;
    QRect dropIndicator;
    QPoint dragPos;
    // Of the last move of a drag over this view, to ask again after scrolling under it.
    QPointer<QMimeData const> dragPayload;
    Qt::DropActions dragActions;
    Qt::MouseButtons dragButtons;
    Qt::KeyboardModifiers dragModifiers;
    TreeRowWatch hoverOpenRow;
    QBasicTimer hoverOpenTimer, autoScrollTimer;
};

} // namespace ZR::GUI
