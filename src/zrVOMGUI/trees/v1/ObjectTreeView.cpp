#include "zrVOMGUI/trees/v1/ObjectTreeView.h"

#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/util/LockBool.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPointer>
#include <QTimer>

#include <set>
#include <utility>

namespace ZR::VOM::GUI::V1 {

ObjectTreeView::ObjectTreeView(RefT<Exporter> const &exporter, RefT<Xml::Importer> const &importer,
                               QWidget *parent)
    : TreeView(parent)
    , treeModel(exporter, importer)
{
    QItemSelectionModel *const before = selectionModel();
    QTreeView::setModel(&treeModel);
    delete before;
    showTop();
    connect(&treeModel, &QAbstractItemModel::modelReset, this, &ObjectTreeView::showTop);
    connect(&treeModel, &QAbstractItemModel::dataChanged, this, &ObjectTreeView::onRowChanged);
    updateConnection = treeModel.sigUpdate.connect(*this, &ObjectTreeView::onObjTreeModelSigUpdate);
}

ObjectTreeView::ObjectTreeView(QWidget *parent)
    : ObjectTreeView({}, {}, parent)
{
}

ObjectTreeView::~ObjectTreeView()
{
    updateConnection.disconnect();
    const LockBool lock(inPaint); // A dying view has no news of its selection.
    QItemSelectionModel *const before = selectionModel();
    QTreeView::setModel(nullptr);
    // A host may have set one of its own through a base class.
    if (before && before->parent() == this)
        delete before;
}

/// For whoever has the view as a QTreeView only; see the class comment.
void ObjectTreeView::setModel(QAbstractItemModel *other)
{
    QTreeView::setModel(other);
}

void ObjectTreeView::setSelectionModel(QItemSelectionModel *other)
{
    if (other)
        QTreeView::setSelectionModel(other);
}

QModelIndex ObjectTreeView::getTop() const
{
    return treeModel.index(0, 0, QModelIndex());
}

/// The model's top is the invisible root of what is shown. A reset makes all indexes invalid.
void ObjectTreeView::showTop()
{
    if (model() == &treeModel)
        setRootIndex(getTop());
}

void ObjectTreeView::clear()
{
    treeModel.clear();
}

void ObjectTreeView::update(ObjectRow *row)
{
    if (row)
        TreeView::update(treeModel.getIndex(row));
}

/// KEPT: a view asks for its own repaint, which Qt gives to the frame alone. Hosts that paint round
/// the rows ask for that; a change of the rows asks for itself.
void ObjectTreeView::requestUpdate()
{
    if (!updateRequested)
        QWidget::update();
}

void ObjectTreeView::onObjTreeModelSigUpdate(SigVoidData const &)
{
    if (inPaint)
        askedInPaint = true;
    if (std::exchange(updateRequested, true))
        return;
    viewport()->update();
}

/// A row that has lost its children and has some again isn't fetched, while for Qt it may be open
/// still.
void ObjectTreeView::onRowChanged(QModelIndex const &index)
{
    if (model() != &treeModel || !isExpanded(index) || !treeModel.canFetchMore(index))
        return;
    toFetch.emplace_back(index);
    if (!inPaint)
        onObjTreeModelSigUpdate({});
}

namespace {

/// A widget that asks in vain to be painted.
class NoUpdates {
public:
    explicit NoUpdates(QWidget &silenced)
        : widget(silenced)
    {
        // Not setUpdatesEnabled(), which asks for an update itself in the end.
        widget.setAttribute(Qt::WA_UpdatesDisabled);
    }
    ~NoUpdates()
    {
        widget.setAttribute(Qt::WA_UpdatesDisabled, false);
        if (isDisabledByOthers())
            disable();
        else
            enableChildren();
    }
    NoUpdates(NoUpdates const &) = delete;
    NoUpdates &operator=(NoUpdates const &) = delete;

private:
    bool isDisabledByOthers() const
    {
        QWidget const *const parent = widget.parentWidget();
        return widget.testAttribute(Qt::WA_ForceUpdatesDisabled) ||
               (parent && !parent->updatesEnabled());
    }
    /// As Qt would have done it while this attribute kept it from doing so: with all below.
    void disable()
    {
        const bool isOwnWish = widget.testAttribute(Qt::WA_ForceUpdatesDisabled);
        widget.setUpdatesEnabled(false);
        widget.setAttribute(Qt::WA_ForceUpdatesDisabled, isOwnWish);
    }
    /// Those made meanwhile, as index widgets and editors, have inherited the attribute.
    void enableChildren()
    {
        for (QObject *const object : widget.children()) {
            auto *const child = qobject_cast<QWidget *>(object);
            if (child && !child->isWindow() && !child->testAttribute(Qt::WA_ForceUpdatesDisabled))
                child->setUpdatesEnabled(true);
        }
    }

    QWidget &widget;
};

} // namespace

/// Brings the rows up to date, and Qt's layout of them.
void ObjectTreeView::followModel(QPaintEvent const &event)
{
    // A listener may empty and fill open rows. One that does so each time must not hang the paint.
    constexpr int maxPasses = 4;
    const LockBool lock(inPaint);
    const auto run = [this] {
        treeModel.update();
        for (int pass = 0; pass < maxPasses && !toFetch.empty(); ++pass)
            for (QPersistentModelIndex const &row : std::exchange(toFetch, {}))
                if (row.isValid())
                    treeModel.fetchMore(row);
        if (!toFetch.empty())
            askedInPaint = true;
    };
    if (!updateRequested) {
        run();
        return;
    }
    // Qt answers each change of rows by asking for a repaint, and this is the one.
    {
        const NoUpdates silence(*viewport());
        run();
        executeDelayedItemsLayout();
    }
    // Unless it was asked for a part, or the layout made the viewport larger.
    if (!QRegion(viewport()->rect()).subtracted(event.region()).isEmpty())
        viewport()->update();
}

void ObjectTreeView::paintEvent(QPaintEvent *event)
{
    followModel(*event);
    // Before Qt paints: what changes while it asks for icons wants another paint.
    updateRequested = false;
    if (std::exchange(askedInPaint, false))
        onObjTreeModelSigUpdate({});
    if (std::exchange(selChangedInPaint, false))
        QTimer::singleShot(0, this, [this] { tellSelection(); });
    TreeView::paintEvent(event);
}

void ObjectTreeView::selectionChanged(QItemSelection const &selected,
                                      QItemSelection const &deselected)
{
    TreeView::selectionChanged(selected, deselected);
    selChangedInPaint = inPaint;
    if (!inPaint)
        tellSelection();
}

void ObjectTreeView::tellSelection()
{
    SigVoidData sigData;
    sigSelChange.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeView::selectionChanged");
}

void ObjectTreeView::getSel(std::vector<Path> &paths) const
{
    if (!selectionModel())
        return;
    const QItemSelection selection = selectionModel()->selection();
    for (QItemSelectionRange const &range : selection)
        for (int row = range.top(); row <= range.bottom(); ++row) {
            Path path{PtrT<Object>()};
            if (treeModel.getPath(treeModel.index(row, 0, range.parent()), path))
                paths.push_back(std::move(path));
        }
}

void ObjectTreeView::setSel(std::vector<Path> const &paths)
{
    if (inPaint)
        return;
    // Rows are fetched on the way, of which listeners hear.
    const QPointer<ObjectTreeView> self(this);
    QItemSelection selection;
    std::set<QModelIndex> selected;
    for (Path const &path : paths) {
        const QModelIndex index = treeModel.makeIndex(path, true);
        if (!self)
            return;
        if (index.isValid() && selected.insert(index).second)
            selection.append(QItemSelectionRange(index));
    }
    if (model() == &treeModel)
        selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void ObjectTreeView::showSel()
{
    if (!selectionModel())
        return;
    for (QModelIndex const &index : selectionModel()->selectedRows(0))
        scrollTo(index, EnsureVisible);
}

void ObjectTreeView::addSelectableClass(std::string const &name)
{
    if (!name.empty())
        selectableClasses.insert(name);
}

void ObjectTreeView::getExpandedRows(std::vector<int> &rows) const
{
    struct Level {
        QModelIndex parent;
        int next;
    };
    // An explicit stack: trees are as deep as they were expanded.
    std::vector<Level> levels{{getTop(), 0}};
    while (!levels.empty()) {
        Level &level = levels.back();
        if (level.next >= treeModel.rowCount(level.parent)) {
            levels.pop_back();
            if (!levels.empty())
                rows.push_back(-1);
            continue;
        }
        const int row = level.next++;
        const QModelIndex child = treeModel.index(row, 0, level.parent);
        if (isExpanded(child)) {
            rows.push_back(row);
            levels.push_back({child, 0});
        }
    }
}

namespace {

/// Passes over what is below a row that isn't there.
///
/// KEPT: the -1 that closes that row is left, so that it closes the level of its parent instead,
/// and the siblings behind it are looked for one level further up. Lists of expanded rows are hints
/// that hosts keep over changes, and what they expand must stay what it was.
std::size_t skipBelow(std::vector<int> const &rows, std::size_t pos)
{
    for (std::size_t depth = 0; pos < rows.size(); ++pos) {
        if (rows[pos] >= 0)
            ++depth;
        else if (depth-- == 0)
            break;
    }
    return pos;
}

} // namespace

void ObjectTreeView::expandRows(std::vector<int> const &rows)
{
    // Listeners hear of fetched rows.
    const QPointer<ObjectTreeView> self(this);
    std::vector<QPersistentModelIndex> levels;
    const auto open = [&](QModelIndex const &index) {
        const QPersistentModelIndex &opened = levels.emplace_back(index);
        treeModel.fetchMore(opened);
        if (self)
            setExpanded(opened, true);
    };
    open(getTop());
    for (std::size_t pos = 0; self && !levels.empty() && pos < rows.size();) {
        const int row = rows[pos++];
        if (row < 0) {
            levels.pop_back();
            continue;
        }
        QPersistentModelIndex const &parent = levels.back();
        const QModelIndex child =
            parent.isValid() ? treeModel.index(row, 0, parent) : QModelIndex();
        if (child.isValid())
            open(child);
        else
            pos = skipBelow(rows, pos);
    }
}

/// KEPT: Qt's handler isn't called, so that no row is expanded: hosts open what was clicked.
void ObjectTreeView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint pos = event->pos();
    SigDoubleClickData sigData;
    sigData.pos = &pos;
    sigDoubleClick.emitCatching(sigData, "ZR::VOM::GUI::V1::ObjectTreeView::mouseDoubleClickEvent");
}

/// KEPT: every drag may enter, whatever Qt decided, so that its moves are asked about.
void ObjectTreeView::dragEnterEvent(QDragEnterEvent *event)
{
    QAbstractItemView::dragEnterEvent(event);
    event->accept();
}

void ObjectTreeView::dragMoveEvent(QDragMoveEvent *event)
{
    updateDropAction(*event);
    TreeView::dragMoveEvent(event);
}

void ObjectTreeView::dropEvent(QDropEvent *event)
{
    updateDropAction(*event);
    TreeView::dropEvent(event);
}

/// KEPT: a drag in motion proposes the chosen action, while a drop keeps the default one as its
/// proposal. Whoever sent the drag reads what was done from the event's drop action.
void ObjectTreeView::updateDropAction(QDropEvent &event) const
{
    if (!event.mimeData())
        return;
    const Qt::DropAction action = dropActionOf(ZR::GUI::modifiersOf(event));
    ZR::GUI::setDefaultAction(event,
                              event.type() == QEvent::DragMove ? action : defaultDropAction());
    event.setDropAction(action);
}

/// By exactly one of three keys, where the model allows what it stands for.
Qt::DropAction ObjectTreeView::dropActionOf(Qt::KeyboardModifiers modifiers) const
{
    const std::pair<Qt::KeyboardModifier, Qt::DropAction> keys[] = {
        {Qt::ShiftModifier, Qt::MoveAction},
        {Qt::ControlModifier, Qt::CopyAction},
        {Qt::AltModifier, Qt::LinkAction},
    };
    for (auto const &[key, action] : keys)
        if (modifiers == key && treeModel.getDropActions() & action)
            return action;
    return defaultDropAction();
}

} // namespace ZR::VOM::GUI::V1
