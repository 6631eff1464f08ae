// The life of an engine, and what rows tell it.

#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

#include "zrVOMGUI/foundation/gui/private/TreeBranch.h"
#include "zrVOMGUI/foundation/gui/private/TreeEditor.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace ZR::GUI {

TreeRowWatch::TreeRowWatch(TreeEngine &treeEngine, TreeRow *watched)
    : engine(treeEngine)
    , row(watched)
    , prev(nullptr)
    , next(engine.watches)
{
    if (next)
        next->prev = this;
    engine.watches = this;
}

TreeRowWatch::~TreeRowWatch()
{
    (prev ? prev->next : engine.watches) = next;
    if (next)
        next->prev = prev;
}

TreeEngine::TreeEngine(QAbstractScrollArea &treeView, std::unique_ptr<TreeHooks> viewHooks)
    : view(&treeView)
    , hooks(std::move(viewHooks))
    , current(*this)
    , anchor(*this)
    , hover(*this)
    , pressed(*this)
    , edited(*this)
    , hoverOpenRow(*this)
{
}

void TreeEngine::unref()
{
    if (!--refs)
        delete this;
}

void TreeEngine::setRoot(TreeRow *newRoot)
{
    root = newRoot;
    if (!root)
        return;
    if (!root->engine)
        adopt(*root);
    if (root->listed == TreeRow::Listed::Loose)
        unlist(*root);
    root->mark(true);
    linesChanged();
}

void TreeEngine::leaveView()
{
    if (!view)
        return;
    forgetAccessibles();
    drag.abandon();
    editTimer.stop();
    hoverOpenTimer.stop();
    autoScrollTimer.stop();
    view = nullptr;
    root = nullptr;
}

void TreeEngine::bury(std::shared_ptr<void> rows)
{
    buried.push_back(std::move(rows));
    if (!updating)
        std::exchange(buried, {}).clear();
}

void TreeEngine::list(TreeRow &row, TreeRow::Listed where)
{
    if (row.listed == where)
        return;
    unlist(row);
    std::vector<TreeRow *> &rows = where == TreeRow::Listed::Loose ? loose
                                   : where == TreeRow::Listed::Due ? due
                                                                   : parked;
    row.listed = where;
    row.listIndex = std::uint32_t(rows.size());
    rows.push_back(&row);
}

void TreeEngine::unlist(TreeRow &row)
{
    if (row.listed == TreeRow::Listed::Nowhere)
        return;
    std::vector<TreeRow *> &rows = row.listed == TreeRow::Listed::Loose ? loose
                                   : row.listed == TreeRow::Listed::Due ? due
                                                                        : parked;
    rows.back()->listIndex = row.listIndex;
    rows[row.listIndex] = rows.back();
    rows.pop_back();
    row.listed = TreeRow::Listed::Nowhere;
}

/// What wasn't shown may be shown now.
void TreeEngine::unpark()
{
    while (!parked.empty())
        list(*parked.back(), TreeRow::Listed::Due);
}

/// Rows that were made before there was a view to belong to.
void TreeEngine::adopt(TreeRow &row)
{
    std::vector<TreeRow *> found{&row};
    while (!found.empty()) {
        TreeRow *const next = found.back();
        found.pop_back();
        if (next->engine)
            continue;
        next->attach(*this);
        if (next->stale && next->isExpanding())
            list(*next, TreeRow::Listed::Due);
        if (next->branch)
            found.insert(found.end(), next->branch->rows.begin(), next->branch->rows.end());
    }
}

void TreeEngine::forget(TreeRow &row)
{
    forgetAccessible(&row);
    unlist(row);
    if (row.selected)
        setSelected(row, false);
    if (row.hasLoose) {
        for (TreeRow *const orphan : loose)
            if (orphan->rowParent == &row)
                orphan->rowParent = nullptr;
    }
    for (TreeRowWatch *watch = watches; watch; watch = watch->next)
        if (watch->row == &row)
            watch->row = nullptr;
    if (root == &row)
        root = nullptr;
}

/// The layout comes before the next paint, where the host's code may do more than inside of it.
void TreeEngine::requestLayout()
{
    if (!view || settling)
        return;
    // One is on its way.
    if (std::exchange(layoutStale, true) && layoutPosted)
        return;
    view->viewport()->update();
    postLayout();
}

/// A view that is hidden waits for its show.
void TreeEngine::postLayout()
{
    if (layoutPosted || !view->isVisible())
        return;
    layoutPosted = true;
    QCoreApplication::postEvent(view, new QEvent(QEvent::LayoutRequest));
}

void TreeEngine::shown()
{
    if (view && layoutStale)
        postLayout();
}

void TreeEngine::layoutRequested()
{
    layoutPosted = false;
    if (!settle())
        return;
    // The editor of a row that has gone closes here, where that may destroy the view.
    placeEditor();
    if (!view)
        return;
    tellOrder();
    tellSelection();
}

void TreeEngine::marked()
{
    again = true;
    requestLayout();
}

void TreeEngine::linesChanged()
{
    linesStale = widthStale = orderChanged = true;
    requestLayout();
}

void TreeEngine::resized()
{
    linesStale = true;
    requestLayout();
}

void TreeEngine::lookChanged()
{
    requestLayout();
}

void TreeEngine::textChanged(TreeRow &row)
{
    requestLayout();
    tellName(row);
}

void TreeEngine::metricsChanged()
{
    metricsStale = true;
    linesChanged();
}

void TreeEngine::scrolled()
{
    if (!view)
        return;
    // Qt goes on with the view: the editor of a row that has gone waits for the layout.
    if (editor && edited && lineOf(*edited) != TreeRow::npos)
        placeEditor();
    if (hoverPos)
        setHover(rowAtView(*hoverPos));
    requestLayout();
}

} // namespace ZR::GUI
