// The picture: a gradient, then every link, then every node box on top. A node is three bands: an
// empty one of the icon's height, the box, and another empty one. Links run from the top of the
// lower band of their from node to the top of the box of their to node; the bands also hold the
// arrows that tell of hidden neighbours.

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"
#include "zrVOMGUI/graph/private/PaintContext.h"

#include <QApplication>
#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>
#include <utility>

namespace ZR::VOM::GUI {

namespace {

bool hasHiddenNeighbour(Graph::LinkMap const &links)
{
    return std::any_of(links.begin(), links.end(),
                       [](auto const &link) { return !link.first->visible; });
}

/// The bound of visible nodes.
class VisibleBound {
public:
    void add(Graph::Node const &node)
    {
        if (!node.visible)
            return;
        const Graph::Bounds box = Graph::boundsOf(node);
        if (!any)
            all = box;
        any = true;
        all.left = std::min(all.left, box.left);
        all.top = std::min(all.top, box.top);
        all.right = std::max(all.right, box.right);
        all.bottom = std::max(all.bottom, box.bottom);
    }

    /// Writes the bound, and widens it by the gaps. Where no node was added, what stands in the
    /// outputs is widened, and the answer is false.
    bool write(int dx, int dy, int &left, int &top, int &right, int &bottom) const
    {
        if (any) {
            left = all.left;
            top = all.top;
            right = all.right;
            bottom = all.bottom;
        }
        left -= dx;
        top -= dy;
        right += dx;
        bottom += dy;
        return any;
    }

private:
    Graph::Bounds all{};
    bool any = false;
};

} // namespace

void ObjectGraphView::paintEvent(QPaintEvent *)
{
    if (boundsStale) {
        measureVisibleNodes();
        updateScrollbars();
        boundsStale = false;
    }
    QPainter painter(viewport());
    const PaintContext context{painter,
                               QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value()),
                               width(), height()};
    paintBackground(context);
    paintLinks(context);
    // A listener that paints over an icon may change the view: nodes come and go under way.
    std::vector<RefT<Node>> shown;
    for (auto const &[obj, slot] : nodes)
        if (slot.node->visible && !context.isOffScreen(*slot.node))
            shown.push_back(slot.node);
    for (RefT<Node> const &node : shown)
        if (node->visible)
            paintNode(context, *node);
}

void ObjectGraphView::measureVisibleNodes()
{
    for (auto const &[obj, slot] : nodes)
        if (slot.node->visible)
            updateSize(*slot.node);
}

void ObjectGraphView::paintBackground(PaintContext const &context)
{
    QLinearGradient gradient(0, 0, 0, context.height);
    gradient.setColorAt(0, isEnabled() ? bg0 : palette().color(QPalette::Window));
    gradient.setColorAt(1.0, bg1);
    context.painter.fillRect(0, 0, context.width, context.height, gradient);
}

void ObjectGraphView::paintNode(PaintContext const &context, Node &node)
{
    QPainter &painter = context.painter;
    const QPoint centre = context.centreOf(node);
    const int left = centre.x() - node.width / 2;
    const int top = centre.y() - node.height / 2;
    if (context.isOffScreen(node))
        return;

    if (node.isIntermediate()) {
        // KEPT: the line stands half a node height above the points of the links, since its offsets
        // are added to the node's top and not to its centre. Whoever paints a station by itself
        // gets the line there.
        painter.drawLine(left, top + node.topY + iconSize, left, top + node.bottomY);
        return;
    }

    node.hiddenIn = hasHiddenNeighbour(node.linkedIn);
    node.hiddenOut = hasHiddenNeighbour(node.linkedOut);
    const QRect box(left, top + iconSize, node.width, node.height - 2 * iconSize);
    painter.setPen(nodePalette.colorTextNode);
    painter.fillRect(box, node.selected ? nodePalette.colorSelNode : nodePalette.colorBaseNode);

    const QPoint icon = centre + QPoint(node.iconX, node.iconY);
    if (!context.isOffScreen(icon.x(), icon.y(), iconSize, iconSize)) {
        if (!node.watch->icon.isNull())
            node.watch->icon.paint(&painter, icon.x(), icon.y(), iconSize, iconSize,
                                   Qt::AlignCenter, QIcon::Normal, QIcon::Off);
        painter.save();
        paintNodeIcon(node.obj, painter, icon.x(), icon.y(), iconSize, iconSize);
        painter.restore();
        if (!node.watch)
            return;
    }
    const QPoint text = centre + QPoint(node.textX, node.textY);
    if (!context.isOffScreen(text.x(), text.y(), node.textWidth, node.textHeight))
        painter.drawText(text.x(), text.y(), node.textWidth, node.textHeight, 0, node.watch->label);

    if (node.hiddenIn)
        paintArrow(context, centre.x() + node.arrowX, centre.y() + node.topY + iconSize, -90);
    if (node.hiddenOut)
        paintArrow(context, centre.x() + node.arrowX + iconSize, centre.y() + node.bottomY, 90);
    painter.setPen(node.selected ? nodePalette.colorRectSelNode : nodePalette.colorRectNode);
    painter.drawRect(box);
}

/// The style's arrow to the right, turned about its corner at (x, y).
void ObjectGraphView::paintArrow(PaintContext const &context, int x, int y, double degrees)
{
    QPainter &painter = context.painter;
    painter.save();
    painter.setTransform(QTransform().translate(x, y).rotate(degrees), true);
    QStyleOption option(1, QStyleOption::SO_Default);
    option.initFrom(this);
    option.rect.setCoords(0, 0, iconSize - 1, iconSize - 1);
    option.state = QStyle::State_Children;
    style()->drawPrimitive(QStyle::PE_IndicatorArrowRight, &option, &painter);
    painter.restore();
}

void ObjectGraphView::paintNodeIcon(PtrT<Object> const &obj, QPainter &painter, int x, int y, int w,
                                    int h)
{
    constexpr char where[] = "ZR::VOM::GUI::ObjectGraphView::paintNodeIcon";
    tryCatch(where, [&] { onPaintNodeIcon(obj, painter, x, y, w, h); });
    SigPaintNodeIconData sigData;
    sigData.obj = &obj;
    sigData.painter = &painter;
    sigData.x = x;
    sigData.y = y;
    sigData.w = w;
    sigData.h = h;
    sigPaintNodeIcon.emitCatching(sigData, where);
}

void ObjectGraphView::onPaintNodeIcon(PtrT<Object> const &, QPainter &, int, int, int, int) {}

bool ObjectGraphView::getVisibleBound(int &left, int &top, int &right, int &bottom) const
{
    VisibleBound bound;
    for (auto const &[obj, slot] : nodes)
        bound.add(*slot.node);
    return bound.write(xSpacing, ySpacing, left, top, right, bottom);
}

bool ObjectGraphView::getVisibleBound(std::vector<RefT<Node>> const &boundNodes, int &left,
                                      int &top, int &right, int &bottom) const
{
    VisibleBound bound;
    for (RefT<Node> const &node : boundNodes)
        if (node)
            bound.add(*node);
    return bound.write(xSpacing, ySpacing, left, top, right, bottom);
}

void ObjectGraphView::updateScrollbars()
{
    int left = 0, top = 0, right = 0, bottom = 0;
    getVisibleBound(left, top, right, bottom);
    int w = width();
    int h = height();
    // Each bar takes room that may call for the other one; the second turn settles both.
    for (int turn = 0; turn < 2; ++turn) {
        if (right - left > w)
            h = height() - horizontalScrollBar()->height();
        if (bottom - top > h)
            w = width() - verticalScrollBar()->width();
    }
    horizontalScrollBar()->setRange(left, right - w);
    horizontalScrollBar()->setPageStep(w);
    verticalScrollBar()->setRange(top, bottom - h);
    verticalScrollBar()->setPageStep(h);
}

void ObjectGraphView::resizeEvent(QResizeEvent *)
{
    updateScrollbars();
}

void ObjectGraphView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::StyleChange) {
        // With a style sheet its values stand; without one the defaults come back.
        if (qApp->styleSheet().isEmpty())
            setupDefaultColors();
        return;
    }
    if (event->type() == QEvent::FontChange) {
        for (auto const &[obj, slot] : nodes)
            slot.node->sizeDirty = true;
        refresh(true);
    }
    QFrame::changeEvent(event);
}

void ObjectGraphView::setupDefaultColors()
{
    bg0 = QColor(QRgb(0xfff8c8));
    bg1 = QColor(QRgb(0xffffff));
    setupDefaultNodePaletteColors();
}

void ObjectGraphView::setupDefaultNodePaletteColors()
{
    nodePalette.colorBaseNode = QColor(QRgb(0xffffff));
    nodePalette.colorTextNode = QColor(QRgb(0x000000));
    nodePalette.colorSelNode = QColor(QRgb(0xc0e0ff));
    nodePalette.colorRectNode = QColor(QRgb(0x000000));
    nodePalette.colorRectSelNode = QColor(QRgb(0x000000));
}

} // namespace ZR::VOM::GUI
