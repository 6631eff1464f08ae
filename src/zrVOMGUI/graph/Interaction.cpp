// The mouse and the keyboard: what lies under the pointer, selecting, arrows that reveal
// neighbours, tooltips, and where a drag begins. Nodes aren't dragged about: layout and the host
// place them.

#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <tuple>

namespace ZR::VOM::GUI {

namespace {

/// Of `length` pixels that lie half before 0 and half behind, the larger half behind.
bool isWithinHalves(std::int64_t offset, int length)
{
    return offset >= -(length / 2) && offset < length - length / 2;
}

bool isWithin(std::int64_t offset, int begin, int length)
{
    return offset >= begin && offset < std::int64_t(begin) + length;
}

int boundedSum(int a, int b)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<std::int64_t>(std::int64_t(a) + b, Limits::min(), Limits::max()));
}

} // namespace

/// Events that a host forwards or makes may lie anywhere.
QPoint ObjectGraphView::contentPos(QPoint const &viewportPos) const
{
    return {boundedSum(viewportPos.x(), horizontalScrollBar()->value()),
            boundedSum(viewportPos.y(), verticalScrollBar()->value())};
}

/// KEPT: the bands over and under a box aren't part of it, but for the arrows that are painted
/// there: users click between boxes to deselect, and bands take much of the room between layers.
ObjectGraphView::Hit ObjectGraphView::hitTest(Node const &node, QPoint const &pos) const
{
    if (!node.visible)
        return HitNone;
    const std::int64_t dx = std::int64_t(pos.x()) - node.x;
    const std::int64_t dy = std::int64_t(pos.y()) - node.y;
    if (!isWithinHalves(dx, node.width) || !isWithinHalves(dy, node.height))
        return HitNone;
    if (isWithinHalves(dy, node.height - 2 * iconSize))
        return HitNode;
    if (isWithin(dx, node.arrowX, iconSize)) {
        if (node.hiddenIn && isWithin(dy, node.topY, iconSize))
            return HitIn;
        if (node.hiddenOut && isWithin(dy, node.bottomY, iconSize))
            return HitOut;
    }
    return HitNone;
}

/// KEPT: where boxes overlap, the one of the lowest object address is found, whichever is painted
/// on top. Hosts tell such nodes apart by their selection, which has followed addresses ever since.
std::pair<RefT<Graph::Node>, ObjectGraphView::Hit> ObjectGraphView::find(QPoint const &pos) const
{
    for (auto const &[obj, slot] : nodes)
        if (const Hit hit = hitTest(*slot.node, pos); hit != HitNone)
            return {slot.node, hit};
    return {RefT<Node>(), HitNone};
}

std::pair<RefT<Graph::Node>, ObjectGraphView::Hit> ObjectGraphView::find(int x, int y) const
{
    return find(QPoint(x, y));
}

void ObjectGraphView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint pos = contentPos(event->pos());
    pressX = pos.x();
    pressY = pos.y();
    std::tie(pressNode, pressHit) = find(pos);
}

void ObjectGraphView::mouseReleaseEvent(QMouseEvent *event)
{
    const auto [node, hit] = find(contentPos(event->pos()));
    if (event->button() == Qt::LeftButton)
        click(node, hit, event->modifiers() & Qt::ControlModifier);
    else if (event->button() == Qt::RightButton)
        askForMenu(node, hit, event->pos());
}

void ObjectGraphView::click(RefT<Node> const &node, Hit hit, bool keepsOthers)
{
    constexpr char where[] = "ZR::VOM::GUI::ObjectGraphView::mouseReleaseEvent";
    switch (hit) {
    case HitNone:
        setSel({});
        emitSigSel(where);
        break;
    case HitNode:
        if (!keepsOthers)
            setSel({});
        node->selected = !node->selected;
        refresh(false);
        emitSigSel(where);
        break;
    case HitIn:
        showLinkedIn(node);
        break;
    case HitOut:
        showLinkedOut(node);
        break;
    }
}

/// KEPT: a right click that selects emits no sigSel: hosts read the selection when they make the
/// menu, and would otherwise do so twice.
void ObjectGraphView::askForMenu(RefT<Node> const &node, Hit hit, QPoint const &viewportPos)
{
    if (hit == HitNode && !node->selected)
        setSel({RefT<Object>(node->obj)});
    SigPopupMenuData sigData;
    sigData.x = viewportPos.x();
    sigData.y = viewportPos.y();
    sigPopupMenu.emitCatching(sigData, "ZR::VOM::GUI::ObjectGraphView::mouseReleaseEvent");
}

/// KEPT: only a left press changes what is dragged, and a release doesn't forget it. Moving with
/// any button held drags the node of the last left press, measured from there: hosts start drags by
/// other buttons in this way.
void ObjectGraphView::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = contentPos(event->pos());
    if (event->buttons() != Qt::NoButton && pressNode && pressHit == HitNode) {
        const std::int64_t distance =
            std::abs(std::int64_t(pressX) - pos.x()) + std::abs(std::int64_t(pressY) - pos.y());
        if (distance >= QApplication::startDragDistance())
            startDrag();
        return;
    }
    if (tooltip.get())
        updateTooltip(pos);
}

void ObjectGraphView::updateTooltip(QPoint const &pos)
{
    const auto [node, hit] = find(pos);
    QString text;
    if (hit == HitNode && node->obj)
        if (auto const field = cast<FieldString>(node->obj->findField(fieldTooltip)))
            text = QString::fromStdString(field->get());
    if (text != toolTip())
        setToolTip(text);
}

/// KEPT: A without Control ends here, neither accepted nor ignored, while all other keys are the
/// scroll area's: hosts that give the letter a meaning filter it before.
void ObjectGraphView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_A) {
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    if (!(event->modifiers() & Qt::ControlModifier))
        return;
    const bool clears = event->modifiers() & Qt::ShiftModifier;
    setSel(clears ? std::vector<RefT<Object>>() : getVisibleObjs());
    refresh(false);
    event->accept();
    emitSigSel("ZR::VOM::GUI::ObjectGraphView::keyPressEvent");
}

} // namespace ZR::VOM::GUI
