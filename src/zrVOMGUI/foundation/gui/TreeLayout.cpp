// Where everything stands, and who is asked when.

#include "zrVOMGUI/foundation/gui/private/TreeBranch.h"
#include "zrVOMGUI/foundation/gui/private/TreeEditor.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"
#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/LockBool.h"

#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <climits>
#include <utility>

namespace ZR::GUI {

namespace {

/// Rounds of one layout in which only scroll bars come and go, which changes what is in sight.
constexpr int maxRounds = 4;

} // namespace

/// A layout has two steps. First come the rows whose children decide where others stand, wherever
/// they are; then those in sight. A row is asked once in one layout, so that rows which
/// mark themselves while they are asked wait for the next.
bool TreeEngine::settle()
{
    if (!view)
        return false;
    if (settling || updating || !layoutStale)
        return true;
    layoutStale = false;
    {
        const LockBool lock(settling);
        ++pass;
        again = false;
        measure();
        for (int round = 0; round < maxRounds; ++round) {
            const std::size_t updatesBefore = numUpdates;
            if (!updateStructure())
                return false;
            if (linesStale) {
                linesStale = false;
                updateScrollBars();
            }
            if (!updateShown())
                return false;
            if (!linesStale && due.empty())
                break;
            // Each row is updated once, so that only rounds without updates need a limit.
            if (numUpdates != updatesBefore)
                round = 0;
        }
    }
    if (again) {
        unpark();
        requestLayout();
    }
    return true;
}

/// Calls onUpdate(). False when the view is gone. A row that was only asked for its look is asked
/// again when it comes into sight, since it may have children to make.
bool TreeEngine::updateRow(TreeRow &row, bool wanted)
{
    if (!row.stale || (wanted && row.updatePass == pass))
        return view != nullptr;
    if (wanted) {
        row.stale = false;
        row.updatePass = pass;
        unlist(row);
    }
    ++numUpdates;
    ++updating;
    tryCatch("ZR::GUI::TreeRow::onUpdate", [&] { row.onUpdate(wanted); });
    if (!--updating)
        std::exchange(buried, {}).clear();
    return view != nullptr;
}

/// The outermost ancestor that waits for an update, or the row itself. A row whose parent is out of
/// date may stand for something that is gone.
TreeRow *TreeEngine::topStale(TreeRow &row)
{
    TreeRow *top = &row;
    for (TreeRow *above = row.rowParent; above; above = above->rowParent)
        if (above->stale && above->isExpanding())
            top = above;
    return top;
}

/// Whether the row has a line, or stands in place of one: so do hidden rows of a closed row that
/// has a line itself.
bool TreeEngine::isReached(TreeRow const &row) const
{
    bool inside = !row.hidden;
    TreeRow const *last = &row;
    for (TreeRow const *above = row.rowParent; above; above = above->rowParent) {
        if (!last->attached)
            return false;
        last = above;
        if (above == root || above->hidden)
            continue;
        if (inside && !above->open)
            return false;
        inside = true;
    }
    return last == root;
}

bool TreeEngine::updateStructure()
{
    bool alive = true;
    while (alive && !due.empty()) {
        TreeRow &row = *due.back();
        if (!row.stale || !row.isExpanding()) {
            unlist(row);
            continue;
        }
        TreeRow &top = *topStale(row);
        if (!isReached(row) || top.updatePass == pass)
            list(row, TreeRow::Listed::Parked);
        else
            alive = updateRow(top, true);
    }
    return alive;
}

bool TreeEngine::updateShown()
{
    const auto [first, last] = shownLines();
    int width = widthStale ? 0 : contentWidth;
    for (std::size_t line = first; line < last; ++line) {
        TreeRow *const row = rowAtLine(line);
        if (!row)
            break;
        const TreeRowWatch watch(*this, row);
        if (!updateRow(*row, true) || (!due.empty() && !updateStructure()))
            return false;
        if (linesStale)
            return true; // Other rows are in sight now; the next round begins again.
        if (watch)
            width = std::max(width, (levelOf(*row) + 1) * indent + itemWidth(*row));
    }
    widthStale = false;
    if (std::exchange(contentWidth, width) != width)
        updateScrollBars();
    return true;
}

/// The first line in sight, and the one behind the last.
std::pair<std::size_t, std::size_t> TreeEngine::shownLines()
{
    const int top = view->verticalScrollBar()->value();
    const int bottom = top + view->viewport()->height();
    return {std::size_t(top / rowHeight),
            std::min(getNumLines(), std::size_t(bottom / rowHeight) + 1)};
}

std::size_t TreeEngine::getNumLines()
{
    return root ? root->getLinesBelow() : 0;
}

TreeRow *TreeEngine::rowAtLine(std::size_t line) const
{
    if (!root || line >= root->getLinesBelow())
        return nullptr;
    TreeRow *row = root;
    for (;;) {
        const auto [pos, rest] = row->branch->find(line);
        row = row->branch->rows[pos];
        line = rest;
        if (row->hidden)
            continue;
        if (!line)
            return row;
        --line;
    }
}

std::size_t TreeEngine::lineOf(TreeRow const &row) const
{
    if (!root || &row == root || row.hidden)
        return TreeRow::npos;
    std::size_t line = 0;
    for (TreeRow const *at = &row; at != root; at = at->rowParent) {
        if (!at->attached)
            return TreeRow::npos;
        TreeRow const &above = *at->rowParent;
        if (!above.isExpanding())
            return TreeRow::npos;
        line += above.branch->before(at->rowIndex);
        if (&above != root && !above.hidden)
            ++line;
    }
    return line;
}

bool TreeEngine::isInTree(TreeRow const &row) const
{
    TreeRow const *at = &row;
    while (at->attached)
        at = at->rowParent;
    return at == root;
}

TreeRow *TreeEngine::shownParent(TreeRow const &row)
{
    TreeRow *above = row.rowParent;
    while (above && above->hidden && !above->isRoot())
        above = above->rowParent;
    return above && !above->isRoot() ? above : nullptr;
}

int TreeEngine::levelOf(TreeRow const &row) const
{
    int level = 0;
    for (TreeRow const *above = row.rowParent; above && above != root; above = above->rowParent)
        if (!above->hidden)
            ++level;
    return level;
}

/// Children that are hidden and have none to stand in their place don't count.
bool TreeEngine::hasChildren(TreeRow const &row) const
{
    return row.numChildren && (!row.branch || row.branch->getTotal());
}

void TreeEngine::measure()
{
    if (!metricsStale)
        return;
    metricsStale = false;
    QStyleOptionViewItem option = makeOption();
    option.features |= QStyleOptionViewItem::HasDisplay | QStyleOptionViewItem::HasDecoration;
    option.text = QStringLiteral("Xg");
    QStyle const &style = *view->style();
    rowHeight = std::max(
        1, style.sizeFromContents(QStyle::CT_ItemViewItem, &option, QSize(), view).height());
    indent = std::max(1, style.pixelMetric(QStyle::PM_TreeViewIndentation, nullptr, view));
    linesStale = widthStale = true;
}

int TreeEngine::getRowHeight()
{
    if (view)
        measure();
    return rowHeight;
}

int TreeEngine::itemWidth(TreeRow const &row)
{
    QStyleOptionViewItem option = makeOption();
    initItem(option, row);
    return view->style()->sizeFromContents(QStyle::CT_ItemViewItem, &option, QSize(), view).width();
}

/// Only what has been in sight is measured: the width grows as the user scrolls.
void TreeEngine::updateScrollBars()
{
    const QSize size = view->viewport()->size();
    const auto height = std::min<long long>(INT_MAX, (long long)(getNumLines()) * rowHeight);
    QScrollBar &vertical = *view->verticalScrollBar();
    vertical.setSingleStep(rowHeight);
    vertical.setPageStep(size.height());
    vertical.setRange(0, std::max(0, int(height) - size.height()));
    QScrollBar &horizontal = *view->horizontalScrollBar();
    horizontal.setSingleStep(indent);
    horizontal.setPageStep(size.width());
    horizontal.setRange(0, isElided() ? 0 : std::max(0, contentWidth - size.width()));
}

/// What is too wide can't be scrolled to.
bool TreeEngine::isElided() const
{
    return view->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff;
}

TreeRow *TreeEngine::findRow(QPoint const &content)
{
    if (!settle() || content.y() < 0)
        return nullptr;
    return rowAtLine(std::size_t(content.y() / rowHeight));
}

TreeRow *TreeEngine::rowAtView(QPoint const &pos)
{
    if (!view || pos.y() < 0)
        return nullptr;
    return rowAtLine(std::size_t((pos.y() + view->verticalScrollBar()->value()) / rowHeight));
}

QRect TreeEngine::lineRect(std::size_t line)
{
    const long long top = (long long)(line)*rowHeight - view->verticalScrollBar()->value();
    const int y = int(std::clamp<long long>(top, INT_MIN / 2, INT_MAX / 2));
    return {0, y, view->viewport()->width(), rowHeight};
}

/// What lies left of the first level's expanders, in reading direction.
int TreeEngine::contentLeft() const
{
    return -view->horizontalScrollBar()->value();
}

QRect TreeEngine::expanderRect(int level, std::size_t line)
{
    const QRect whole = lineRect(line);
    const QRect rect(contentLeft() + level * indent, whole.y(), indent, rowHeight);
    return QStyle::visualRect(view->layoutDirection(), whole, rect);
}

QRect TreeEngine::itemRect(TreeRow const &row, std::size_t line)
{
    const QRect whole = lineRect(line);
    const int left = contentLeft() + (levelOf(row) + 1) * indent;
    const int right = contentLeft() + std::max(isElided() ? 0 : contentWidth, whole.width());
    const QRect rect(left, whole.y(), std::max(0, right - left), rowHeight);
    return QStyle::visualRect(view->layoutDirection(), whole, rect);
}

void TreeEngine::scrollTo(TreeRow &row)
{
    const std::size_t line = lineOf(row);
    if (!view || line == TreeRow::npos)
        return;
    const QRect rect = lineRect(line);
    QScrollBar &vertical = *view->verticalScrollBar();
    const int height = view->viewport()->height();
    if (rect.top() < 0)
        vertical.setValue(vertical.value() + rect.top());
    else if (rect.bottom() >= height)
        vertical.setValue(vertical.value() + std::min(rect.top(), rect.bottom() + 1 - height));
    scrollSideways(row);
}

/// Only when the row begins out of sight, so that a long text doesn't move the tree about under the
/// mouse.
void TreeEngine::scrollSideways(TreeRow const &row)
{
    QScrollBar &horizontal = *view->horizontalScrollBar();
    const int begin = levelOf(row) * indent, end = begin + indent + itemWidth(row);
    const int width = view->viewport()->width(), value = horizontal.value();
    if (end > contentWidth) {
        contentWidth = end;
        updateScrollBars();
    }
    const int textBegin = begin + 2 * indent;
    if (begin < value)
        horizontal.setValue(begin);
    else if (textBegin > value + width)
        horizontal.setValue(std::min(begin, end - width));
}

} // namespace ZR::GUI
