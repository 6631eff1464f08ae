#include "zrVOMGUI/graph/ObjectGraphView.h"

#include "zrVOMGUI/foundation/gui/GuardedDrag.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace ZR::VOM::GUI {

namespace {
constexpr int tickMilliseconds = 50;
}

ObjectGraphView::ObjectGraphView(RefT<Exporter> const &exporter, QWidget *parent)
    : QAbstractScrollArea(parent)
    , animDuration(*this, 2.0)
    , tooltip(*this, false)
    , xmlExporter(exporter)
    , iconSize(style()->pixelMetric(QStyle::PM_ListViewIconSize))
    , drag(std::make_unique<ZR::GUI::GuardedDrag>())
{
    animTimer.setInterval(tickMilliseconds);
    scrollTimer.setInterval(tickMilliseconds);
    setAcceptDrops(true);
    setupDefaultColors();
    connect(&animTimer, &QTimer::timeout, this, &ObjectGraphView::onQTimerAnimSigTimeout);
    connect(&scrollTimer, &QTimer::timeout, this, &ObjectGraphView::onScrollQTimerAnimSigTimeout);
    tooltip.sigSet.connect(*this, &ObjectGraphView::onTooltipSigSet);
    setMouseTracking(true);
    // Content x grows to the right in every language.
    horizontalScrollBar()->setLayoutDirection(Qt::LeftToRight);
}

ObjectGraphView::ObjectGraphView(QWidget *parent)
    : ObjectGraphView(RefT<Exporter>(), parent)
{
}

ObjectGraphView::~ObjectGraphView()
{
    announceDelete();
    drag->abandon();
    for (auto &[obj, slot] : nodes)
        slot.sigDeleteConn.disconnect();
    setMouseTracking(false);
    objIconDBConn.disconnect();
    refreshEnabled = false;
    while (!nodes.empty())
        eraseSlot(nodes.begin());
}

ObjectGraphView::AddedNodes ObjectGraphView::add(std::vector<RefT<Object>> const &objs, bool report)
{
    return add(objs.size(), objs.data(), report);
}

ObjectGraphView::AddedNodes ObjectGraphView::add(std::size_t n, RefT<Object> const *const objs,
                                                 bool report)
{
    // An icon database that is asked on the way may change the host's list.
    const std::vector<RefT<Object>> kept(objs, objs + n);
    AddedNodes added;
    bool created = false;
    for (RefT<Object> const &obj : kept) {
        // A dying object may have told already, and the node would stay for ever.
        if (!obj || obj->isBeingDeleted())
            continue;
        RefT<Node> node = findNode(obj);
        if (!node) {
            node = insertNode(obj);
            if (!node)
                continue;
            created = true;
        }
        if (report)
            (node->visible ? added.visible : added.hidden).insert(node);
    }
    if (created)
        updateLinks();
    if (report)
        refresh(true);
    return added;
}

/// Makes the object's node. Null when the object is gone before it is done.
RefT<Graph::Node> ObjectGraphView::insertNode(RefT<Object> const &obj)
{
    // Made before its slot: what a model's class throws leaves no slot without a node.
    const RefT<Node> node(new Node(*this, obj));
    // Nobody owns an object on the stack, which may go while its icon is asked for.
    if (!obj)
        return {};
    const auto [slot, inserted] = nodes.try_emplace(obj);
    if (inserted) {
        slot->second.sigDeleteConn =
            obj->sigDelete.connect(*this, &ObjectGraphView::onPtrClassSigDelete, PtrT<Class>(obj));
        slot->second.node = node;
    }
    return slot->second.node;
}

PtrT<VOM::Object> ObjectGraphView::getObj(RefT<Node> const &node)
{
    return node ? node->obj : PtrT<Object>();
}

void ObjectGraphView::remove(std::vector<RefT<Object>> const &objs)
{
    remove(objs.size(), objs.data());
}

void ObjectGraphView::remove(std::size_t n, RefT<Object> const *const objs)
{
    std::vector<RefT<Object>> removedVisible;
    for (std::size_t i = 0; i < n; ++i) {
        const auto slot = nodes.find(objs[i]);
        if (slot == nodes.end())
            continue;
        if (slot->second.node->visible)
            removedVisible.push_back(objs[i]);
        eraseSlot(slot);
    }
    if (!removedVisible.empty())
        refresh(true);
    emitSigRemoveNode(removedVisible);
}

void ObjectGraphView::clear()
{
    {
        const RefreshPause pause(*this);
        while (!nodes.empty())
            eraseSlot(nodes.begin());
    }
    refresh(true);
}

void ObjectGraphView::setVisible(std::vector<RefT<Object>> const &objs, bool visible)
{
    setVisible(objs.size(), objs.data(), visible);
}

void ObjectGraphView::setVisible(std::size_t n, RefT<Object> const *const objs, bool visible)
{
    std::vector<RefT<Object>> changed;
    bool selectionChanged = false;
    for (std::size_t i = 0; i < n; ++i) {
        Node *const node = findNode(objs[i]);
        if (!node || !storeVisible(*node, visible))
            continue;
        changed.push_back(objs[i]);
        selectionChanged |= node->selected;
        refreshPending = true;
    }
    if (!visible || changed.empty())
        refresh(true);
    else
        layout(RefT<Node>(findNode(changed.back())));
    if (changed.empty())
        return;

    // A listener may destroy the view.
    const PtrT<ObjectGraphView> self(this);
    if (visible)
        emitSigInsertNode(changed);
    else
        emitSigRemoveNode(changed);
    if (self && selectionChanged)
        emitSigSel("ZR::VOM::GUI::ObjectGraphView::setVisible");
}

void ObjectGraphView::setVisible(bool visible)
{
    QAbstractScrollArea::setVisible(visible);
}

/// Stores whether the node is visible, and answers whether that changed.
bool ObjectGraphView::storeVisible(Node &node, bool visible)
{
    if (node.visible == visible)
        return false;
    node.visible = visible;
    if (visible) {
        if (node.sizeDirty)
            boundsStale = true;
    } else {
        Graph::unsplitNode(node);
    }
    return true;
}

std::vector<RefT<VOM::Object>> ObjectGraphView::getObjs() const
{
    return collectObjs([](Node const &) { return true; });
}

std::vector<RefT<VOM::Object>> ObjectGraphView::getVisibleObjs() const
{
    return collectObjs([](Node const &node) { return node.visible; });
}

std::vector<RefT<VOM::Object>> ObjectGraphView::collectObjs(bool (*wanted)(Node const &)) const
{
    std::vector<RefT<Object>> objs;
    for (auto const &[obj, slot] : nodes)
        if (wanted(*slot.node))
            objs.emplace_back(obj);
    return objs;
}

bool ObjectGraphView::isVisible(PtrT<Object> const &obj) const
{
    Node const *const node = findNode(obj);
    return node && node->visible;
}

bool ObjectGraphView::getPos(PtrT<Object> const &obj, int &x, int &y) const
{
    Node const *const node = findNode(obj);
    if (!node)
        return false;
    x = node->x;
    y = node->y;
    return true;
}

bool ObjectGraphView::setPos(PtrT<Object> const &obj, int x, int y, bool animated)
{
    const RefT<Node> node = findNode(obj);
    if (!node)
        return false;
    x = std::clamp(x, -maxPos, maxPos);
    y = std::clamp(y, -maxPos, maxPos);
    if (animated)
        move(node, x, y);
    else
        place(node, x, y);
    return true;
}

ObjectGraphView::Node *ObjectGraphView::findNode(Ptr const &obj) const
{
    const auto slot = nodes.find(obj);
    return slot == nodes.end() ? nullptr : slot->second.node.get();
}

void ObjectGraphView::eraseSlot(Nodes::iterator slot)
{
    slot->second.sigDeleteConn.disconnect();
    // Out of the map first: the node's end reaches its neighbours.
    const RefT<Node> node = std::move(slot->second.node);
    nodes.erase(slot);
    if (pressNode == node)
        pressNode = {};
    node->leaveGraph();
}

bool ObjectGraphView::setRefresh(bool on)
{
    const bool before = std::exchange(refreshEnabled, on);
    if (on && refreshPending)
        updateViewport();
    return before;
}

void ObjectGraphView::refresh(bool stale)
{
    if (stale)
        boundsStale = true;
    if (refreshEnabled)
        updateViewport();
    else
        refreshPending = true;
}

void ObjectGraphView::updateViewport()
{
    viewport()->update();
    refreshPending = false;
}

ObjectGraphView::RefreshPause::RefreshPause(ObjectGraphView &pausedView)
    : view(pausedView)
    , wasEnabled(std::exchange(pausedView.refreshEnabled, false))
{
}

ObjectGraphView::RefreshPause::~RefreshPause()
{
    view.setRefresh(wasEnabled);
}

void ObjectGraphView::emitSigInsertNode(std::vector<RefT<Object>> const &objs)
{
    if (objs.empty())
        return;
    SigNodeData sigData;
    sigData.objs = &objs;
    sigInsertNode.emitCatching(sigData, "ZR::VOM::GUI::ObjectGraphView::emitSigInsertNode");
}

void ObjectGraphView::emitSigRemoveNode(std::vector<RefT<Object>> const &objs)
{
    if (objs.empty())
        return;
    SigNodeData sigData;
    sigData.objs = &objs;
    sigRemoveNode.emitCatching(sigData, "ZR::VOM::GUI::ObjectGraphView::emitSigRemoveNode");
}

void ObjectGraphView::emitSigSel(char const *where)
{
    SigVoidData sigData;
    sigSel.emitCatching(sigData, where);
}

void ObjectGraphView::onPtrClassSigDelete(SigVoidData const &sigData)
{
    const auto slot = nodes.find(sigData.ptr);
    if (slot != nodes.end())
        eraseSlot(slot);
}

void ObjectGraphView::onTooltipSigSet(PropT<bool>::SigSetData const &)
{
    if (!tooltip.get())
        setToolTip(QString());
    update();
}

void ObjectGraphView::writeTooltip(bool on)
{
    tryCatch("ZR::VOM::GUI::ObjectGraphView::tooltip", [&] { tooltip.set(on); });
}

void ObjectGraphView::writeAnimDuration(double seconds)
{
    tryCatch("ZR::VOM::GUI::ObjectGraphView::animDuration", [&] { animDuration.set(seconds); });
}

void ObjectGraphView::setColor(QColor &stored, QColor const &color)
{
    stored = color;
    refresh(false);
}

std::vector<RefT<Graph::Node>> ObjectGraphView::split(Node &from, Node &to, unsigned count)
{
    return Graph::splitLink(from, to, count);
}

void ObjectGraphView::unsplit(Node &from, Node &to)
{
    Graph::unsplitLink(from, to);
}

} // namespace ZR::VOM::GUI
