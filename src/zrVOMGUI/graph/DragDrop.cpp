// Objects leave the view by a drag, and a drop shows objects that the view knows, with what lies on
// the routes to what is shown already. Neither changes the model.

#include "zrVOMGUI/foundation/gui/GuardedDrag.h"
#include "zrVOMGUI/foundation/gui/QtVersion.h"
#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/layout/Components.h"
#include "zrVOMGUI/graph/layout/Routes.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/presentation/ItemLabel.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPixmap>
#include <QScrollBar>

#include <algorithm>
#include <functional>
#include <memory>

namespace ZR::VOM::GUI {

namespace {

constexpr std::size_t maxPixmapRows = 16;

} // namespace

/// The offered objects that have a node, in the order in which they are offered. Only references of
/// this process can.
std::vector<RefT<VOM::Object>> ObjectGraphView::getDropObjs(QMimeData const &mimeData) const
{
    std::vector<RefT<Object>> objs;
    getFromMimeData(mimeData, objs);
    const auto isUnknown = [this](RefT<Object> const &obj) { return !obj || !findNode(obj); };
    objs.erase(std::remove_if(objs.begin(), objs.end(), isUnknown), objs.end());
    return objs;
}

/// Wherever the pointer is, and whatever keys are held: a drop has one meaning.
void ObjectGraphView::acceptKnown(QDropEvent &event) const
{
    if (!event.mimeData() || getDropObjs(*event.mimeData()).empty()) {
        event.ignore();
        return;
    }
    event.setDropAction(Qt::LinkAction);
    event.accept();
}

void ObjectGraphView::dragEnterEvent(QDragEnterEvent *event)
{
    acceptKnown(*event);
}

void ObjectGraphView::dragMoveEvent(QDragMoveEvent *event)
{
    acceptKnown(*event);
}

/// KEPT: a drop that shows something neither accepts the event nor changes its action. Both stay as
/// the last move left them, and hosts that forward events rely on their own.
void ObjectGraphView::dropEvent(QDropEvent *event)
{
    const std::vector<RefT<Object>> objs =
        event->mimeData() ? getDropObjs(*event->mimeData()) : std::vector<RefT<Object>>();
    if (objs.empty()) {
        event->ignore();
        return;
    }
    const AddedNodes added = add(objs, true);
    std::vector<RefT<Object>> shown;
    if (!added.hidden.empty()) {
        shown = showRoutesTo(added.hidden, contentPos(ZR::GUI::dropPos(*event)));
        layout(*added.hidden.begin());
        selCursor = 0;
    }
    std::vector<RefT<Object>> dropped;
    for (auto const *found : {&added.hidden, &added.visible})
        for (RefT<Node> const &node : *found)
            dropped.emplace_back(node->obj);
    setSel(dropped);
    showSel();

    // A listener may destroy the view.
    const PtrT<ObjectGraphView> self(this);
    emitSigInsertNode(shown);
    if (self)
        emitSigSel("ZR::VOM::GUI::ObjectGraphView::dropEvent");
}

/// Makes the dropped nodes visible, and all nodes on routes from each visible component, and from
/// the dropped ones, to any of them. They set out from where they were dropped. Returns their
/// objects.
std::vector<RefT<VOM::Object>> ObjectGraphView::showRoutesTo(std::set<RefT<Node>> const &dropped,
                                                             QPoint const &from)
{
    std::set<RefT<Node>> starts = findVisibleComponents();
    starts.insert(dropped.begin(), dropped.end());
    std::set<RefT<Node>> route;
    Graph::findAllRoutes(starts, dropped, route);

    std::vector<RefT<Object>> shown;
    for (RefT<Node> const &node : route) {
        if (!storeVisible(*node, true))
            continue;
        shown.emplace_back(node->obj);
        refreshPending = true;
        place(node, from.x(), from.y());
    }
    return shown;
}

/// The node of the lowest address of each.
std::set<RefT<Graph::Node>> ObjectGraphView::findVisibleComponents() const
{
    std::vector<Node *> visibleNodes;
    for (auto const &[obj, slot] : nodes)
        if (slot.node->visible)
            visibleNodes.push_back(slot.node.get());
    std::sort(visibleNodes.begin(), visibleNodes.end(), std::less<Node *>());
    std::set<RefT<Node>> representatives;
    for (std::vector<Node *> const &component : Graph::findComponents(visibleNodes))
        representatives.insert(RefT<Node>(component.front()));
    return representatives;
}

/// Drags the selected nodes' objects, after having selected the pressed one. Returns when the drag
/// is over; until then timers run, the model may change, and the view may be destroyed.
void ObjectGraphView::startDrag()
{
    if (drag->isRunning())
        return;
    // KEPT: sigSel isn't emitted when a drag selects the pressed node. Hosts answer sigSel with
    // other widgets, and a drag isn't the moment for that.
    if (!pressNode->selected)
        setSel({RefT<Object>(pressNode->obj)});

    const PtrT<ObjectGraphView> self(this);
    std::unique_ptr<QMimeData> offer = offerSelection();
    if (!self)
        return;
    const QPixmap pixmap = makeDragPixmap();
    if (!self)
        return;

    drag->exec(*this, {std::move(offer), pixmap, {}},
               Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::LinkAction);
}

/// Takes the selected objects and their copies, and makes the data that leads to them. Null when
/// the view is gone: exporters, and objects that are copied or that die, are the host's.
std::unique_ptr<QMimeData> ObjectGraphView::offerSelection()
{
    const PtrT<ObjectGraphView> self(this);
    std::vector<RefT<Object>> objs = getSel(), copies;
    const bool areCopied = tryCatch("ZR::VOM::GUI::ObjectGraphView::startDrag",
                                    [&] { copies = Copy::Context().copy(objs); });
    if (!self)
        return {};
    // KEPT: objects and copies stay until the next drag replaces them, or the view dies: a receiver
    // may work on them when the drag is long over.
    dragObjs.swap(objs);
    dragCopies.swap(copies);
    objs.clear();
    copies.clear();
    if (!self)
        return {};
    std::unique_ptr<QMimeData> offer(
        createMimeData(xmlExporter, &dragObjs, areCopied ? &dragCopies : nullptr));
    if (!self)
        return {};
    return offer;
}

/// KEPT: of more than 16 objects the first 16 are shown, and no mark of the rest, so that the
/// picture hides no target from the user.
QPixmap ObjectGraphView::makeDragPixmap()
{
    const auto end =
        dragObjs.begin() + static_cast<std::ptrdiff_t>(std::min(dragObjs.size(), maxPixmapRows));
    const std::vector<RefT<Object>> rows(dragObjs.begin(), end);
    return makeItemListPixmap(*this, rows, objIconDB, fieldName, typeName, margin, iconSize);
}

} // namespace ZR::VOM::GUI
