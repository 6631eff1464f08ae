#include "zrVOMGUI/foundation/gui/v1/TreeView.h"

#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/util/LockBool.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace ZR::GUI::V1 {

TreeView::TreeView(QWidget *parent)
    : QTreeView(parent)
{
}

TreeView::~TreeView() = default;

void TreeView::mousePressEvent(QMouseEvent *event)
{
    pressPos = event->pos();
    QTreeView::mousePressEvent(event);
}

void TreeView::mouseMoveEvent(QMouseEvent *event)
{
    const bool canDrag = event->buttons() & Qt::LeftButton;
    askedInMove.reset();
    {
        const LockBool lock(isInMove);
        QTreeView::mouseMoveEvent(event);
    }
    // Qt's handler goes on using the view after startDrag(); here nothing follows.
    const auto actions = std::exchange(askedInMove, std::nullopt);
    if (actions && canDrag)
        runDrag(*actions);
}

void TreeView::startDrag(Qt::DropActions supportedActions)
{
    if (isInMove)
        askedInMove = supportedActions;
    else
        runDrag(supportedActions);
}

void TreeView::runDrag(Qt::DropActions actions)
{
    const QModelIndexList indexes = draggedIndexes();
    if (drag.isRunning() || indexes.isEmpty())
        return;
    const QPointer<TreeView> self(this);
    const QPointer<QAbstractItemModel> source(model());
    GuardedDrag::Load load;
    load.payload.reset(source->mimeData(indexes));
    // The model's code may have done anything.
    if (!self || !source || !load.payload)
        return;
    drawDragged(load);
    const QMetaObject::Connection watch =
        connect(source, &QObject::destroyed, this, [this] { drag.abandon(); });
    drag.exec(*this, std::move(load), actions, defaultActionOf(actions));
    disconnect(watch);
    if (self)
        viewport()->update(); // Without the mark of a place to drop at.
}

/// IgnoreAction leaves the choice to Qt.
Qt::DropAction TreeView::defaultActionOf(Qt::DropActions actions) const
{
    for (const Qt::DropAction action : {defaultDropAction(), Qt::CopyAction})
        if (actions & action)
            return action;
    return Qt::IgnoreAction;
}

bool TreeView::isDragged(QModelIndex const &index) const
{
    return index.flags() & Qt::ItemIsDragEnabled && selectionModel()->isSelected(index);
}

QModelIndexList TreeView::draggedIndexes() const
{
    if (!model() || !selectionModel())
        return {};
    QModelIndexList indexes = selectedIndexes();
    const auto isFixed = [this](QModelIndex const &index) { return !isDragged(index); };
    indexes.erase(std::remove_if(indexes.begin(), indexes.end(), isFixed), indexes.end());
    return indexes;
}

/// By the rows in the viewport, since Qt finds the place of a row among many only slowly.
QModelIndexList TreeView::draggedIndexesInSight() const
{
    QModelIndexList indexes;
    const int column = header()->logicalIndex(0);
    QModelIndex row = indexAt({columnViewportPosition(column), 0});
    for (; row.isValid() && visualRect(row).top() < viewport()->height(); row = indexBelow(row)) {
        for (int each = 0; each < model()->columnCount(row.parent()); ++each) {
            const QModelIndex index = row.sibling(row.row(), each);
            if (!isColumnHidden(each) && isDragged(index))
                indexes.append(index);
        }
    }
    return indexes;
}

/// Draws what is dragged as it is drawn in the view, with the pointer where it was pressed.
void TreeView::drawDragged(GuardedDrag::Load &load) const
{
    const QModelIndexList indexes = draggedIndexesInSight();
    QRect bounds;
    for (QModelIndex const &index : indexes)
        bounds |= visualRect(index) & viewport()->rect();
    if (bounds.isEmpty())
        return;
    load.pixmap = QPixmap(bounds.size() * devicePixelRatioF());
    load.pixmap.setDevicePixelRatio(devicePixelRatioF());
    load.pixmap.fill(Qt::transparent);
    load.hotSpot = {std::clamp(pressPos.x() - bounds.x(), 0, bounds.width() - 1),
                    std::clamp(pressPos.y() - bounds.y(), 0, bounds.height() - 1)};
    QPainter painter(&load.pixmap);
    for (QModelIndex const &index : indexes) {
        QStyleOptionViewItem option = itemOptions(*this);
        option.rect = visualRect(index).translated(-bounds.topLeft());
        option.state |= QStyle::State_Selected;
        delegateOf(*this, index)->paint(&painter, option, index);
    }
}

} // namespace ZR::GUI::V1
