#include "zrVOMGUI/foundation/gui/private/TreeAccessible.h"

#include "zrVOMGUI/foundation/gui/TreeArea.h"
#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"
#include "zrVOMGUI/foundation/util/text.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <utility>

namespace ZR::GUI {

/// One row, as long as it lives: the engine takes it away from the row's end on.
class TreeRowAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TreeRowAccessible(TreeEngine &treeEngine, TreeRow &shownRow)
        : engine(treeEngine)
        , row(treeEngine, &shownRow)
    {
    }

    TreeRow *rowIn(TreeEngine const &treeEngine) const
    {
        return &engine.get() == &treeEngine ? static_cast<TreeRow *>(row) : nullptr;
    }

    bool isValid() const override { return engine->getView() && row; }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override
    {
        return isValid() ? engine->getView()->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface *parent() const override
    {
        return isValid() ? QAccessible::queryAccessibleInterface(engine->getView()) : nullptr;
    }
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int indexOfChild(QAccessibleInterface const *) const override { return -1; }

    QAccessible::Role role() const override { return QAccessible::TreeItem; }
    QString text(QAccessible::Text kind) const override
    {
        TreeRow *const shown = getUpdated();
        if (!shown)
            return {};
        if (kind == QAccessible::Name)
            return shown->getText();
        if (kind == QAccessible::Description)
            return QString::fromStdString(
                _compose(getLocText("[ZR::GUI::TreeRowLevel]Level %1"), engine->levelOf(*row) + 1));
        return {};
    }
    void setText(QAccessible::Text, QString const &) override {}
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const std::size_t line = engine->lineOf(*row);
        if (line == TreeRow::npos)
            return {};
        QWidget const &viewport = *engine->getView()->viewport();
        const QRect local = engine->itemRect(*row, line);
        return {viewport.mapToGlobal(local.topLeft()), local.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!getUpdated()) {
            state.invalid = true;
            return state;
        }
        QAbstractScrollArea const &view = *engine->getView();
        state.selectable = state.focusable = state.multiSelectable = state.extSelectable = true;
        state.selected = engine->isSelected(*row);
        state.focused = engine->getCurrent() == row && view.hasFocus();
        state.expandable = engine->hasChildren(*row);
        state.expanded = state.expandable && row->isOpen();
        state.collapsed = state.expandable && !row->isOpen();
        state.disabled = !view.isEnabled();
        const std::size_t line = engine->lineOf(*row);
        state.invisible = line == TreeRow::npos || !view.isVisible();
        state.offscreen =
            line != TreeRow::npos && !engine->lineRect(line).intersects(view.viewport()->rect());
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ActionInterface)
            return static_cast<QAccessibleActionInterface *>(this);
        return nullptr;
    }
    QStringList actionNames() const override
    {
        if (!getUpdated())
            return {};
        QStringList names{setFocusAction()};
        if (engine->hasChildren(*row))
            names.prepend(toggleAction());
        return names;
    }
    void doAction(QString const &name) override
    {
        if (!isValid())
            return;
        // What follows may end the row, and this with it.
        const TreeEngine::Ref keep(engine.get());
        const TreeRowWatch watch(keep.get(), row);
        if (name == toggleAction()) {
            keep->toggle(*watch, !watch->isOpen());
        } else if (name == setFocusAction()) {
            keep->getView()->setFocus();
            if (keep->getView() && watch)
                keep->moveTo(*watch, Qt::NoModifier);
        }
    }
    QStringList keyBindingsForAction(QString const &) const override { return {}; }

private:
    /// The row, which may never have been in sight, with its look up to date. Null when it is gone,
    /// and this with it.
    TreeRow *getUpdated() const
    {
        if (!isValid())
            return nullptr;
        const TreeEngine::Ref keep(engine.get());
        const TreeRowWatch watch(keep.get(), row);
        return keep->updateRow(*watch, false) ? static_cast<TreeRow *>(watch) : nullptr;
    }

    TreeEngine::Ref engine;
    TreeRowWatch row;
};

/// The tree. What lies in closed rows is none of its children.
class TreeAreaAccessible final : public QAccessibleWidget {
public:
    explicit TreeAreaAccessible(TreeArea *area)
        : QAccessibleWidget(area, QAccessible::Tree)
        , engine(area->getEngine())
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiSelectable = state.extSelectable = true;
        return state;
    }
    int childCount() const override { return settled() ? int(engine->getNumLines()) : 0; }
    QAccessibleInterface *child(int index) const override
    {
        return settled() && index >= 0 ? engine->accessible(engine->rowAtLine(std::size_t(index)))
                                       : nullptr;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        if (!settled())
            return nullptr;
        QWidget const &viewport = *engine->getView()->viewport();
        const QPoint pos = viewport.mapFromGlobal(QPoint(x, y));
        return viewport.rect().contains(pos) ? engine->accessible(engine->rowAtView(pos)) : nullptr;
    }
    int indexOfChild(QAccessibleInterface const *iface) const override
    {
        TreeRow *const row = settled() ? engine->rowOf(iface) : nullptr;
        const std::size_t line = row ? engine->lineOf(*row) : TreeRow::npos;
        return line == TreeRow::npos ? -1 : int(line);
    }
    QAccessibleInterface *focusChild() const override
    {
        TreeRow *const row = settled() ? engine->getCurrent() : nullptr;
        return row && engine->getView()->hasFocus() ? engine->accessible(row) : nullptr;
    }

private:
    bool settled() const { return engine->settle(); }

    TreeEngine::Ref engine;
};

namespace {

QAccessibleInterface *makeTreeAccessible(QString const &className, QObject *object)
{
    auto *const area = qobject_cast<TreeArea *>(object);
    return area && className == QLatin1String(TreeArea::staticMetaObject.className())
               ? new TreeAreaAccessible(area)
               : nullptr;
}

} // namespace

void installTreeAccessibility()
{
    static const bool installed = (QAccessible::installFactory(makeTreeAccessible), true);
    static_cast<void>(installed);
}

/// Made when it is asked for the first time, and the same from then on.
QAccessibleInterface *TreeEngine::accessible(TreeRow *row)
{
    if (!row)
        return nullptr;
    const auto found = accessibles.find(row);
    if (found != accessibles.end())
        return QAccessible::accessibleInterface(found->second);
    auto *const made = new TreeRowAccessible(*this, *row);
    accessibles.emplace(row, QAccessible::registerAccessibleInterface(made));
    return made;
}

TreeRow *TreeEngine::rowOf(QAccessibleInterface const *iface) const
{
    auto const *const row = dynamic_cast<TreeRowAccessible const *>(iface);
    return row ? row->rowIn(*this) : nullptr;
}

void TreeEngine::forgetAccessible(TreeRow *row)
{
    const auto found = accessibles.find(row);
    if (found == accessibles.end())
        return;
    const unsigned int id = found->second;
    accessibles.erase(found);
    QAccessible::deleteAccessibleInterface(id);
}

void TreeEngine::forgetAccessibles()
{
    for (auto const &[row, id] : std::exchange(accessibles, {}))
        QAccessible::deleteAccessibleInterface(id);
}

void TreeEngine::tellFocus()
{
    TreeRow *const row = getCurrent();
    if (!row || !QAccessible::isActive() || !view->hasFocus())
        return;
    QAccessibleEvent event(accessible(row), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void TreeEngine::openChanged(TreeRow &row)
{
    if (!view || !QAccessible::isActive() || lineOf(row) == TreeRow::npos)
        return;
    QAccessible::State changed;
    changed.expanded = changed.collapsed = true;
    QAccessibleStateChangeEvent event(accessible(&row), changed);
    QAccessible::updateAccessibility(&event);
}

/// Only of rows that somebody has asked about.
void TreeEngine::tellName(TreeRow &row)
{
    if (!view || !QAccessible::isActive() || !accessibles.count(&row))
        return;
    QAccessibleEvent event(accessible(&row), QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

/// Once for however many rows came or went.
void TreeEngine::tellOrder()
{
    if (!std::exchange(orderChanged, false) || !view || !QAccessible::isActive())
        return;
    QAccessibleEvent event(view, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

/// Once for however many rows were selected or deselected.
void TreeEngine::tellSelection()
{
    if (!std::exchange(selChanged, false) || !view || !QAccessible::isActive())
        return;
    QAccessibleEvent event(view, QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&event);
}

} // namespace ZR::GUI
