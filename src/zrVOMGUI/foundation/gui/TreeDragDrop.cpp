// Rows leave by a drag, and what comes is offered to the host, with the place where it would land.

#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/gui/private/TreeBranch.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QPixmap>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace ZR::GUI {

namespace {

// Milliseconds.
constexpr int hoverOpenDelay = 700;
constexpr int autoScrollInterval = 50;

// The share of a row's height at its upper and lower edge that means before and after it.
constexpr int edgeShare = 4;

constexpr int lineThickness = 2;

/// How far to scroll for a drag at `pos` of a view of that size.
int edgeStep(int pos, int size, int edge, int step)
{
    if (pos < edge)
        return -step;
    return pos >= size - edge ? step : 0;
}

} // namespace

void TreeEngine::setDropActions(Qt::DropActions actions, Qt::DropAction defaultAction)
{
    dropActions = actions;
    defaultDropAction = defaultAction;
}

void TreeEngine::addMimeType(QString const &type)
{
    if (std::find(mimeTypes.begin(), mimeTypes.end(), type) == mimeTypes.end())
        mimeTypes.push_back(type);
}

/// Returns when the drag is over; until then timers run, rows may die, and so may the view.
void TreeEngine::startDrag()
{
    const std::vector<TreeRow *> rows = getSel();
    if (drag.isRunning() || rows.empty() || !dropActions)
        return;
    // Host code may destroy rows while it makes the payload, so that the picture comes first.
    GuardedDrag::Load load;
    load.pixmap = makeDragPixmap(rows);
    load.hotSpot = {-QApplication::startDragDistance(), 0};
    load.payload.reset(hooks->makeMimeData(rows));
    if (!view || !load.payload)
        return;
    drag.exec(*view, std::move(load), dropActions, defaultDropAction);
    dragLeave();
}

bool TreeEngine::takesTypes(QDropEvent const &event) const
{
    QMimeData const *const mimeData = event.mimeData();
    return mimeData && std::any_of(mimeTypes.begin(), mimeTypes.end(),
                                   [&](QString const &type) { return mimeData->hasFormat(type); });
}

/// The proposed action where this view allows it, else its default, else any that both allow.
bool TreeEngine::chooseAction(QDropEvent &event) const
{
    const Qt::DropActions possible = event.possibleActions() & dropActions;
    for (const Qt::DropAction action : {event.proposedAction(), defaultDropAction, Qt::CopyAction,
                                        Qt::MoveAction, Qt::LinkAction}) {
        if (action != Qt::IgnoreAction && possible & action) {
            event.setDropAction(action);
            return true;
        }
    }
    return false;
}

TreeEngine::DropPlace TreeEngine::placeAt(QPoint const &pos)
{
    if (!root)
        return {nullptr, TreeRow::npos, {}};
    TreeRow *const row = rowAtView(pos);
    const QRect viewport = view->viewport()->rect();
    if (!row) {
        const QRect end = lineRect(getNumLines());
        return {root,
                root->getNumMadeChildRows(),
                {viewport.left(), std::min(end.top(), viewport.bottom() - 1), viewport.width(), 0}};
    }
    const std::size_t line = lineOf(*row);
    const QRect rect = itemRect(*row, line);
    const int edge = rowHeight / edgeShare;
    QRect between = rect;
    between.setHeight(0);
    if (pos.y() < rect.top() + edge)
        return {row->rowParent, row->rowIndex, between};
    if (pos.y() > rect.bottom() - edge) {
        between.moveTop(rect.bottom() + 1 - lineThickness);
        if (row->open && row->getLinesBelow())
            return {row, 0, between};
        return {row->rowParent, std::size_t(row->rowIndex) + 1, between};
    }
    return {row, TreeRow::npos, rect};
}

/// A hidden row can't be seen to take anything: what would lie in it lies before or behind it in
/// its parent.
void TreeEngine::leaveHidden(DropPlace &place)
{
    while (place.row && place.row->hidden && !place.row->isRoot()) {
        place.index = place.row->rowIndex;
        place.row = place.row->rowParent;
    }
}

TreeEngine::DropPlace TreeEngine::askDrop(QDropEvent &event, QPoint const &pos)
{
    const DropPlace nowhere{nullptr, TreeRow::npos, {}};
    if (!settle() || !takesTypes(event) || !chooseAction(event))
        return nowhere;
    DropPlace place = placeAt(pos);
    leaveHidden(place);
    if (!place.row)
        return nowhere;
    const TreeRowWatch row(*this, place.row), under(*this, rowAtView(pos));
    if (hooks->onCanDrop(event, place.row, place.index))
        return view && row ? place : nowhere;
    if (!view || !under || place.index == TreeRow::npos)
        return nowhere;
    const std::size_t line = lineOf(*under);
    if (line == TreeRow::npos)
        return nowhere;
    place = {under, TreeRow::npos, itemRect(*under, line)};
    return hooks->onCanDrop(event, place.row, place.index) && view && under ? place : nowhere;
}

void TreeEngine::setDropPlace(DropPlace const &place)
{
    if (dropIndicator == place.indicator)
        return;
    dropIndicator = place.indicator;
    view->viewport()->update();
}

/// Whether it can be dropped anywhere is asked with the moves that follow.
void TreeEngine::dragEnter(QDragEnterEvent &event)
{
    if (takesTypes(event) && chooseAction(event))
        event.accept();
    else
        event.ignore();
}

void TreeEngine::dragMove(QDragMoveEvent &event)
{
    event.ignore();
    dragPos = dropPos(event);
    dragPayload = event.mimeData();
    dragActions = event.possibleActions();
    dragButtons = buttonsOf(event);
    dragModifiers = modifiersOf(event);
    const DropPlace place = askDrop(event, dragPos);
    if (!view)
        return;
    setDropPlace(place);
    event.setAccepted(place.row != nullptr);

    watchHover();
    if (edgeSteps().isNull())
        autoScrollTimer.stop();
    else if (!autoScrollTimer.isActive())
        autoScrollTimer.start(autoScrollInterval, view);
}

/// Counts the time anew when another row comes to lie under the drag.
void TreeEngine::watchHover()
{
    TreeRow *const row = rowAtView(dragPos);
    if (row == hoverOpenRow && !(row && row->open))
        return;
    hoverOpenRow = row;
    hoverOpenTimer.stop();
    if (row && !row->open && hasChildren(*row))
        hoverOpenTimer.start(hoverOpenDelay, view);
}

void TreeEngine::dragLeave()
{
    hoverOpenRow = nullptr;
    hoverOpenTimer.stop();
    autoScrollTimer.stop();
    if (view)
        setDropPlace({nullptr, TreeRow::npos, {}});
}

void TreeEngine::drop(QDropEvent &event)
{
    dragLeave();
    const Qt::DropAction action = event.dropAction();
    event.ignore();
    const DropPlace place = askDrop(event, dropPos(event));
    if (!place.row)
        return;
    // What was agreed upon while it moved; asking may have proposed another one.
    if (action != Qt::IgnoreAction && dropActions & action)
        event.setDropAction(action);
    event.accept();
    hooks->onDrop(event, place.row, place.index);
}

/// How far the bars are to move for the drag, in reading direction and down.
QPoint TreeEngine::edgeSteps() const
{
    const QSize size = view->viewport()->size();
    const int x = view->isRightToLeft() ? size.width() - 1 - dragPos.x() : dragPos.x();
    return {edgeStep(x, size.width(), rowHeight, indent),
            edgeStep(dragPos.y(), size.height(), rowHeight, rowHeight)};
}

/// One line or level at a time, while the drag stays at the edge. A drag that rests sends no moves,
/// so that the host is asked about the row that has come under it.
void TreeEngine::autoScroll()
{
    QScrollBar &across = *view->horizontalScrollBar(), &down = *view->verticalScrollBar();
    const QPoint before(across.value(), down.value()), steps = edgeSteps();
    across.setValue(before.x() + steps.x());
    down.setValue(before.y() + steps.y());
    if (QPoint(across.value(), down.value()) == before)
        return;
    DropPlace place{nullptr, TreeRow::npos, {}};
    if (dragPayload) {
        QDragMoveEvent rested(dragPos, dragActions, dragPayload, dragButtons, dragModifiers);
        place = askDrop(rested, dragPos);
    }
    if (!settle())
        return;
    setDropPlace(place);
    watchHover();
}

} // namespace ZR::GUI
