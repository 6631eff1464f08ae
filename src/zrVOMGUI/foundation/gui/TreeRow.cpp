#include "zrVOMGUI/foundation/gui/TreeRow.h"

#include "zrVOMGUI/foundation/gui/private/TreeBranch.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

namespace ZR::GUI {

TreeRow::TreeRow(TreeEngine *viewEngine, TreeRow *parentRow)
    : engine(nullptr)
    , rowParent(parentRow)
    , attached(false)
    , open(false)
    , hidden(false)
    , stale(true)
    , selected(false)
    , hasLoose(false)
{
    if (!viewEngine && rowParent)
        viewEngine = rowParent->engine;
    if (viewEngine)
        attach(*viewEngine);
    if (engine && rowParent) {
        rowParent->hasLoose = true;
        engine->list(*this, Listed::Loose);
    }
}

TreeRow::~TreeRow()
{
    if (branch)
        takeChildren();
    if (engine) {
        engine->forget(*this);
        engine->unref();
    }
}

void TreeRow::onUpdate(bool) {}

bool TreeRow::isViewAlive() const
{
    return engine && engine->getView();
}

bool TreeRow::isAnyUpdating() const
{
    return engine && engine->isUpdating();
}

void TreeRow::bury(std::shared_ptr<void> rows)
{
    engine->bury(std::move(rows));
}

bool TreeRow::isRoot() const
{
    return engine && engine->isRoot(*this);
}

void TreeRow::attach(TreeEngine &viewEngine)
{
    engine = &viewEngine;
    engine->ref();
}

/// A row that is closed and out of sight only remembers; it is asked when it comes into sight.
void TreeRow::mark(bool structure)
{
    stale = true;
    if (!engine || !(attached || isRoot()))
        return;
    if (structure && isExpanding())
        engine->list(*this, Listed::Due);
    engine->marked();
}

void TreeRow::invalidateLayout()
{
    mark(true);
}

void TreeRow::invalidateIconLayout()
{
    mark(false);
}

void TreeRow::invalidateTextLayout()
{
    mark(false);
}

void TreeRow::setOpen(bool newOpen)
{
    if (open == newOpen)
        return;
    const std::size_t linesBefore = getLines();
    open = newOpen;
    addOwnLines(std::ptrdiff_t(getLines()) - std::ptrdiff_t(linesBefore));
    if (open && engine)
        engine->unpark();
    mark(open);
    if (engine)
        engine->openChanged(*this);
}

void TreeRow::setHidden(bool newHidden)
{
    if (hidden == newHidden)
        return;
    const std::size_t linesBefore = getLines();
    hidden = newHidden;
    addOwnLines(std::ptrdiff_t(getLines()) - std::ptrdiff_t(linesBefore));
    if (engine)
        engine->unpark();
    mark(true);
}

void TreeRow::setText(std::string const &newText)
{
    const QString converted = QString::fromUtf8(newText.data(), int(newText.size()));
    if (converted == rowText)
        return;
    rowText = converted;
    if (engine)
        engine->textChanged(*this);
}

void TreeRow::setIcon(QIcon const &newIcon)
{
    rowIcon = newIcon;
    if (engine)
        engine->lookChanged();
}

void TreeRow::setNumChildRows(std::size_t num)
{
    if (numChildren == num)
        return;
    numChildren = num;
    if (engine)
        engine->lookChanged();
}

std::size_t TreeRow::getNumMadeChildRows() const
{
    return branch ? branch->rows.size() : 0;
}

TreeRow *TreeRow::getMadeChild(std::size_t pos) const
{
    return pos < getNumMadeChildRows() ? branch->rows[pos] : nullptr;
}

std::size_t TreeRow::getLinesBelow() const
{
    return branch ? branch->getTotal() : 0;
}

/// Its own, and those below it that are shown as long as it is.
std::size_t TreeRow::getLines() const
{
    return (hidden ? 0 : 1) + (isExpanding() ? getLinesBelow() : 0);
}

/// This row takes `change` lines more in its parent. Inside of a closed row that moves nothing.
void TreeRow::addOwnLines(std::ptrdiff_t change)
{
    TreeRow *row = this;
    while (change && row->attached) {
        TreeRow *const above = row->rowParent;
        above->branch->add(row->rowIndex, change);
        if (!above->isExpanding())
            return;
        row = above;
    }
    if (change && row->isRoot())
        engine->linesChanged();
}

/// All children together take `change` lines more.
void TreeRow::addLines(std::ptrdiff_t change)
{
    if (isExpanding())
        addOwnLines(change);
}

std::vector<TreeRow *> TreeRow::takeChildren()
{
    if (!branch)
        return {};
    const std::ptrdiff_t lines = std::ptrdiff_t(getLinesBelow());
    const std::unique_ptr<TreeBranch> taken = std::move(branch);
    addLines(-lines);
    for (TreeRow *const child : taken->rows) {
        child->attached = false;
        child->rowParent = nullptr;
    }
    return taken->rows;
}

bool TreeRow::canAdopt(TreeRow &child) const
{
    if (child.attached || child.isRoot() || (child.engine && child.engine != engine))
        return false;
    // The way up may be long, and new rows are many.
    if (!child.branch && !child.hasLoose)
        return &child != this;
    for (TreeRow const *row = this; row; row = row->rowParent)
        if (row == &child)
            return false;
    return true;
}

void TreeRow::adopted(TreeRow &newParent, std::size_t pos)
{
    attached = true;
    rowParent = &newParent;
    rowIndex = std::uint32_t(pos);
    if (!engine && newParent.engine)
        newParent.engine->adopt(*this);
    if (!engine)
        return;
    if (listed == Listed::Loose)
        engine->unlist(*this);
    if (stale && isExpanding())
        engine->list(*this, Listed::Due);
}

void TreeRow::putChildren(std::vector<TreeRow *> &&children)
{
    numChildren = children.size();
    if (engine)
        engine->lookChanged();
    if (children.empty())
        return;
    branch = std::make_unique<TreeBranch>(std::move(children));
    for (std::size_t pos = 0; pos < branch->rows.size(); ++pos) {
        TreeRow &child = *branch->rows[pos];
        child.adopted(*this, pos);
        branch->add(pos, std::ptrdiff_t(child.getLines()) - 1);
    }
    if (engine)
        engine->unpark();
    addLines(std::ptrdiff_t(getLinesBelow()));
}

} // namespace ZR::GUI
