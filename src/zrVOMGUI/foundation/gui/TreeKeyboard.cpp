// What keys do.

#include "zrVOMGUI/foundation/gui/private/TreeBranch.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace ZR::GUI {

namespace {

/// A tree over a graph has no end where the graph has circles.
constexpr std::size_t maxOpenedAtOnce = 1000;

} // namespace

bool TreeEngine::keyPress(QKeyEvent &event)
{
    if (!settle())
        return true;
    if (moveKey(event) || branchKey(event) || actionKey(event))
        return true;
    const Qt::KeyboardModifiers others = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (event.modifiers() & others || event.text().isEmpty() || !event.text().at(0).isPrint())
        return false;
    search(event.text());
    return true;
}

/// Up and down by lines and pages.
bool TreeEngine::moveKey(QKeyEvent &event)
{
    const std::size_t num = getNumLines();
    TreeRow *const from = shownCurrent();
    const std::size_t line = from ? lineOf(*from) : TreeRow::npos;
    const std::size_t page = std::size_t(std::max(1, view->viewport()->height() / rowHeight - 1));
    std::size_t to = 0;
    switch (event.key()) {
    case Qt::Key_Up:
        to = !from ? num - 1 : line - std::min<std::size_t>(line, 1);
        break;
    case Qt::Key_Down:
        to = !from ? 0 : line + 1;
        break;
    case Qt::Key_PageUp:
        to = !from ? 0 : line - std::min(line, page);
        break;
    case Qt::Key_PageDown:
        to = !from ? num - 1 : line + page;
        break;
    case Qt::Key_Home:
        to = 0;
        break;
    case Qt::Key_End:
        to = num - 1;
        break;
    default:
        return false;
    }
    if (!num)
        return true;
    moveTo(*rowAtLine(std::min(to, num - 1)), event.modifiers());
    settle();
    return true;
}

/// Closing, opening, and going to the parent or the first child. The arrow keys point along the
/// reading direction.
bool TreeEngine::branchKey(QKeyEvent &event)
{
    int key = event.key();
    if (key != Qt::Key_Left && key != Qt::Key_Right && key != Qt::Key_Plus &&
        key != Qt::Key_Minus && key != Qt::Key_Asterisk)
        return false;
    // A text being typed may hold these characters.
    if (event.text().size() == 1 && event.text().at(0).isPrint() && !searched.isEmpty() &&
        !searchTime.hasExpired(QApplication::keyboardInputInterval()))
        return false;
    TreeRow *const row = shownCurrent();
    if (!row)
        return true;
    if (view->isRightToLeft() && (key == Qt::Key_Left || key == Qt::Key_Right))
        key = key == Qt::Key_Left ? Qt::Key_Right : Qt::Key_Left;
    const bool isOpened = row->open && hasChildren(*row);
    if (key == Qt::Key_Asterisk) {
        openAll(*row);
    } else if (key == Qt::Key_Plus || (key == Qt::Key_Right && !isOpened)) {
        if (hasChildren(*row))
            toggle(*row, true);
    } else if (key == Qt::Key_Minus || (key == Qt::Key_Left && isOpened)) {
        toggle(*row, false);
    } else if (key == Qt::Key_Left) {
        if (TreeRow *const above = shownParent(*row))
            moveTo(*above, event.modifiers() & ~Qt::KeypadModifier);
    } else if (TreeRow *const child = rowAtLine(lineOf(*row) + 1)) {
        if (isBelow(*child, *row))
            moveTo(*child, event.modifiers() & ~Qt::KeypadModifier);
    }
    settle();
    return true;
}

bool TreeEngine::actionKey(QKeyEvent &event)
{
    TreeRow *const row = shownCurrent();
    const bool control = event.modifiers() & Qt::ControlModifier;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        hooks->onConfirm();
        return true;
    case Qt::Key_F2:
        if (row)
            hooks->onEditRow(*row);
        return true;
    case Qt::Key_A:
        if (!control)
            return false;
        if (getNumLines())
            selectRange(*rowAtLine(0), *rowAtLine(getNumLines() - 1));
        return true;
    case Qt::Key_Space:
        if (!control && !searched.isEmpty() &&
            !searchTime.hasExpired(QApplication::keyboardInputInterval()))
            return false;
        if (row && event.modifiers() & Qt::ShiftModifier) {
            moveTo(*row, event.modifiers());
        } else if (row) {
            setSelected(*row, !control || !row->selected);
            anchor = row;
        }
        return true;
    default:
        return false;
    }
}

/// The whole branch, level by level, each row as the one before it has made its children.
void TreeEngine::openAll(TreeRow &top)
{
    std::vector<std::unique_ptr<TreeRowWatch>> rows;
    rows.push_back(std::make_unique<TreeRowWatch>(*this, &top));
    std::size_t opened = 0;
    std::vector<std::unique_ptr<TreeRowWatch>> below;
    while (!rows.empty() && opened < maxOpenedAtOnce) {
        for (auto const &row : rows) {
            if (*row && (*row)->stale && !updateRow(**row, true))
                return;
            if (*row && hasChildren(**row) && opened < maxOpenedAtOnce) {
                (*row)->setOpen(true);
                ++opened;
            }
        }
        if (!settle())
            return;
        below.clear();
        for (auto const &row : rows) {
            if (!*row || !(*row)->branch || !(*row)->isExpanding())
                continue;
            for (TreeRow *const child : (*row)->branch->rows) {
                if (below.size() >= maxOpenedAtOnce)
                    break;
                below.push_back(std::make_unique<TreeRowWatch>(*this, child));
            }
        }
        rows.swap(below);
    }
}

/// The next row whose text begins with what was typed, round the end. One letter again and again
/// goes through all rows that begin with it.
void TreeEngine::search(QString const &typed)
{
    const bool goesOn =
        !searched.isEmpty() && !searchTime.hasExpired(QApplication::keyboardInputInterval());
    searchTime.start();
    searched = goesOn ? searched + typed : typed;
    const bool isRepeat = searched.count(searched.at(0)) == searched.size();
    const QString wanted = isRepeat ? searched.left(1) : searched;
    const std::size_t num = getNumLines();
    TreeRow *const from = shownCurrent();
    // A text that grows may still fit where it was found.
    const bool stays = !isRepeat && searched.size() > 1;
    std::size_t line = from ? lineOf(*from) + (stays ? 0 : 1) : 0;
    for (std::size_t i = 0; i < num && i < getNumLines(); ++i, ++line) {
        TreeRow *const row = rowAtLine(line % getNumLines());
        const TreeRowWatch watch(*this, row);
        if (!updateRow(*row, false))
            return;
        if (watch && row->rowText.startsWith(wanted, Qt::CaseInsensitive)) {
            moveTo(*row, Qt::NoModifier);
            settle();
            return;
        }
    }
}

} // namespace ZR::GUI
