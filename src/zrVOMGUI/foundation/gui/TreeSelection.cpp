// What is selected, and the row that keys go to.

#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include <algorithm>

namespace ZR::GUI {

/// Whether that was a change.
bool TreeEngine::setSelected(TreeRow &row, bool selected)
{
    if (row.selected == selected)
        return false;
    row.selected = selected;
    if (selected) {
        row.selIndex = std::uint32_t(selection.size());
        selection.push_back(&row);
    } else {
        selection.back()->selIndex = row.selIndex;
        selection[row.selIndex] = selection.back();
        selection.pop_back();
    }
    selChanged = true;
    lookChanged();
    return true;
}

void TreeEngine::clearSel()
{
    while (!selection.empty())
        setSelected(*selection.back(), false);
}

bool TreeEngine::isBelow(TreeRow const &row, TreeRow const &ancestor) const
{
    TreeRow const *above = row.rowParent;
    while (above && above != &ancestor)
        above = above->rowParent;
    return above != nullptr;
}

/// In the order of the tree, parents first. \pre Both are in it.
bool TreeEngine::isBefore(TreeRow const &left, TreeRow const &right) const
{
    if (left.rowParent == right.rowParent)
        return left.rowIndex < right.rowIndex;
    const auto depthOf = [](TreeRow const *row) {
        std::size_t depth = 0;
        for (; row->rowParent; row = row->rowParent)
            ++depth;
        return depth;
    };
    std::size_t leftDepth = depthOf(&left), rightDepth = depthOf(&right);
    TreeRow const *l = &left, *r = &right;
    const bool leftIsOutside = leftDepth < rightDepth;
    for (; leftDepth > rightDepth; --leftDepth)
        l = l->rowParent;
    for (; rightDepth > leftDepth; --rightDepth)
        r = r->rowParent;
    if (l == r)
        return leftIsOutside;
    while (l->rowParent != r->rowParent) {
        l = l->rowParent;
        r = r->rowParent;
    }
    return l->rowIndex < r->rowIndex;
}

std::vector<TreeRow *> TreeEngine::getSel()
{
    std::vector<TreeRow *> rows;
    if (!view)
        return rows;
    for (TreeRow *const row : selection)
        if (isInTree(*row))
            rows.push_back(row);
    std::sort(rows.begin(), rows.end(),
              [this](TreeRow *left, TreeRow *right) { return isBefore(*left, *right); });
    return rows;
}

void TreeEngine::setSel(std::vector<TreeRow *> const &rows)
{
    clearSel();
    for (TreeRow *const row : rows)
        if (row && row->engine == this && row->attached && isInTree(*row))
            setSelected(*row, true);
}

TreeRow *TreeEngine::getCurrent() const
{
    return view && current && isInTree(*current) ? static_cast<TreeRow *>(current) : nullptr;
}

/// The current row, or what has a line in its place: the innermost ancestor that has one.
TreeRow *TreeEngine::shownCurrent() const
{
    TreeRow *row = getCurrent();
    while (row && row != root && lineOf(*row) == TreeRow::npos)
        row = row->rowParent;
    return row == root ? nullptr : row;
}

void TreeEngine::setCurrent(TreeRow *row)
{
    if (current == row)
        return;
    current = row;
    view->viewport()->update();
    tellFocus();
}

void TreeEngine::selectOnly(TreeRow &row)
{
    clearSel();
    setSelected(row, true);
    anchor = &row;
    setCurrent(&row);
}

/// All lines from one row to the other, which both have one.
void TreeEngine::selectRange(TreeRow &from, TreeRow &to)
{
    std::size_t first = lineOf(from), last = lineOf(to);
    if (first == TreeRow::npos || last == TreeRow::npos)
        return;
    if (first > last)
        std::swap(first, last);
    for (std::size_t line = first; line <= last; ++line)
        setSelected(*rowAtLine(line), true);
}

void TreeEngine::moveTo(TreeRow &row, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ShiftModifier) {
        if (!anchor || lineOf(*anchor) == TreeRow::npos)
            anchor = shownCurrent() ? shownCurrent() : &row;
        if (!(modifiers & Qt::ControlModifier))
            clearSel();
        selectRange(*anchor, row);
        setCurrent(&row);
    } else if (modifiers & Qt::ControlModifier) {
        setCurrent(&row);
    } else {
        selectOnly(row);
    }
    scrollTo(row);
}

/// As the user sees it: what goes out of sight isn't selected any more.
void TreeEngine::toggle(TreeRow &row, bool newOpen)
{
    if (!newOpen) {
        const std::vector<TreeRow *> before = selection;
        bool lost = false;
        for (TreeRow *const selected : before)
            if (isBelow(*selected, row))
                lost |= setSelected(*selected, false);
        if (lost && selection.empty())
            setSelected(row, true);
        if (current && isBelow(*current, row))
            setCurrent(&row);
        if (anchor && isBelow(*anchor, row))
            anchor = &row;
    }
    row.setOpen(newOpen);
}

} // namespace ZR::GUI
