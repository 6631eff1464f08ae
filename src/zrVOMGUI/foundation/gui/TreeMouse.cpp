// What the mouse does.

#include "zrVOMGUI/foundation/gui/private/TreeEditor.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QTimerEvent>

namespace ZR::GUI {

void TreeEngine::mousePress(QMouseEvent &event)
{
    editTimer.stop();
    if (!settle())
        return;
    if (editor) {
        editorDone(true);
        if (!settle())
            return;
    }
    TreeRow *const row = rowAtView(event.pos());
    pressed = nullptr;
    selectAtRelease = editAfterClick = false;
    if (event.button() != Qt::LeftButton && event.button() != Qt::RightButton)
        return;
    if (!row) {
        if (!(event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)))
            clearSel();
        return;
    }
    const std::size_t line = lineOf(*row);
    if (event.button() == Qt::LeftButton && hasChildren(*row) &&
        expanderRect(levelOf(*row), line).contains(event.pos())) {
        toggle(*row, !row->open);
        return;
    }
    pressRow(*row, event);
}

/// A press on a selected row may begin a drag of all that is selected. So what it would deselect
/// waits for the release.
void TreeEngine::pressRow(TreeRow &row, QMouseEvent &event)
{
    if (event.button() == Qt::RightButton) {
        if (row.selected)
            setCurrent(&row);
        else
            selectOnly(row);
        return;
    }
    pressed = &row;
    pressPos = event.pos();
    pressModifiers = event.modifiers();
    const bool wasAlone = row.selected && selection.size() == 1;
    if (row.selected && !(pressModifiers & Qt::ShiftModifier)) {
        selectAtRelease = true;
        editAfterClick = wasAlone && &row == current && view->hasFocus() &&
                         !(pressModifiers & Qt::ControlModifier) &&
                         itemRect(row, lineOf(row)).contains(pressPos);
        setCurrent(&row);
    } else if (pressModifiers & Qt::ShiftModifier) {
        moveTo(row, pressModifiers);
    } else if (pressModifiers & Qt::ControlModifier) {
        setSelected(row, true);
        anchor = &row;
        setCurrent(&row);
    } else {
        selectOnly(row);
    }
    scrollTo(row);
}

void TreeEngine::mouseMove(QMouseEvent &event)
{
    if (!settle())
        return;
    if (!event.buttons()) {
        hoverPos = event.pos();
        setHover(rowAtView(*hoverPos));
        return;
    }
    if (!(event.buttons() & Qt::LeftButton) || !pressed ||
        (event.pos() - pressPos).manhattanLength() < QApplication::startDragDistance())
        return;
    selectAtRelease = editAfterClick = false;
    if (!pressed->selected)
        setSelected(*pressed, true);
    pressed = nullptr;
    startDrag();
}

void TreeEngine::mouseRelease(QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton || !pressed)
        return;
    TreeRow &row = *pressed;
    pressed = nullptr;
    if (!selectAtRelease || !isInTree(row))
        return;
    selectAtRelease = false;
    if (pressModifiers & Qt::ControlModifier) {
        setSelected(row, false);
        anchor = &row;
        return;
    }
    selectOnly(row);
    // The second click of a double click isn't one that edits.
    if (editAfterClick)
        editTimer.start(QApplication::doubleClickInterval(), view);
}

void TreeEngine::mouseDoubleClick(QMouseEvent &event)
{
    editTimer.stop();
    if (!settle() || event.button() != Qt::LeftButton)
        return;
    TreeRow *const row = rowAtView(event.pos());
    if (!row)
        return;
    if (hasChildren(*row) && (expanderRect(levelOf(*row), lineOf(*row)).contains(event.pos()) ||
                              !(event.modifiers() & Qt::ControlModifier)))
        toggle(*row, !row->open);
    else
        hooks->onConfirm();
}

void TreeEngine::setHover(TreeRow *row)
{
    if (hover == row)
        return;
    hover = row;
    view->viewport()->update();
}

void TreeEngine::hoverLeft()
{
    hoverPos.reset();
    if (view)
        setHover(nullptr);
}

/// By key the menu belongs below the current row.
void TreeEngine::contextMenu(QContextMenuEvent &event)
{
    editTimer.stop();
    if (!settle())
        return;
    QPoint pos = event.pos();
    TreeRow *row = rowAtView(pos);
    if (event.reason() == QContextMenuEvent::Keyboard) {
        row = shownCurrent();
        pos = view->viewport()->rect().center();
        if (row) {
            scrollTo(*row);
            if (!settle())
                return;
            row = shownCurrent();
        }
        if (row) {
            const QRect rect = itemRect(*row, lineOf(*row)) & view->viewport()->rect();
            pos = view->isRightToLeft() ? rect.bottomRight() : rect.bottomLeft();
        }
    }
    hooks->onRequestContextMenu(row, view->viewport()->mapToGlobal(pos));
}

void TreeEngine::focusChanged(bool in)
{
    if (!view)
        return;
    if (!in)
        editTimer.stop();
    view->viewport()->update();
    if (in)
        tellFocus();
}

void TreeEngine::timer(QTimerEvent &event)
{
    if (event.timerId() == editTimer.timerId()) {
        editTimer.stop();
        if (!settle())
            return;
        if (TreeRow *const row = shownCurrent())
            hooks->onEditRow(*row);
    } else if (event.timerId() == hoverOpenTimer.timerId()) {
        hoverOpenTimer.stop();
        if (hoverOpenRow)
            hoverOpenRow->setOpen(true);
        settle();
    } else if (event.timerId() == autoScrollTimer.timerId()) {
        autoScroll();
    }
}

} // namespace ZR::GUI
