#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Object.h"
#include "zrVOMGUI/foundation/util/Prop.h"
#include "zrVOMGUI/foundation/util/Time.h"
#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/graph/LayoutFigures.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QAbstractScrollArea>
#include <QColor>
#include <QPixmap>
#include <QTimer>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class QMimeData;
class QPainter;
class QPolygon;

namespace ZR::GUI {
class GuardedDrag;
}

namespace ZR::VOM::GUI {

namespace Graph {
class Node;
class Hierarchy;
enum class Direction;
struct FieldConns;
struct LinkEntry;
} // namespace Graph

/// Objects as boxes in layers, joined by lines.
///
/// The host adds objects, names the fields that count as links, and chooses which nodes are
/// visible. From then on the view follows the model by itself: labels, links and deaths. It never
/// changes the model, and never owns it.
///
/// Every object that was added has a node, visible or not. Hidden nodes keep their links, so that
/// the view can show, by an arrow, where a neighbour is hidden.
///
/// A click selects a node alone, with Control it adds or removes the node, and on empty space it
/// clears the selection. Control+A selects all visible nodes, Control+Shift+A none. A click on an
/// arrow shows the neighbours that are hidden there. A right click asks for a context menu, of
/// which the view has none, and a move from a pressed box drags the selected objects.
///
/// GUI thread only. Coordinates are content pixels with y downward, a node's x and y its centre;
/// they may be negative. Times are seconds. Unknown objects, null references and empty lists are
/// passed over without a report.
class ZRVOMGUI_EXPORT ObjectGraphView : public QAbstractScrollArea, public ZR::Object {
    Q_OBJECT
    Q_PROPERTY(QColor colorBg0 READ colorBg0 WRITE setColorBg0)
    Q_PROPERTY(QColor colorBg1 READ colorBg1 WRITE setColorBg1)
    Q_PROPERTY(QColor colorBaseNode READ colorBaseNode WRITE setColorBaseNode)
    Q_PROPERTY(QColor colorTextNode READ colorTextNode WRITE setColorTextNode)
    Q_PROPERTY(QColor colorSelNode READ colorSelNode WRITE setColorSelNode)
    Q_PROPERTY(QColor colorRectNode READ colorRectNode WRITE setColorRectNode)
    Q_PROPERTY(QColor colorRectSelNode READ colorRectSelNode WRITE setColorRectSelNode)

public:
    using Node = Graph::Node;
    using Object = VOM::Object;

    /// What add() found: the nodes of the objects, by whether they are visible. Nodes are opaque to
    /// hosts; getObj() tells whose they are.
    struct AddedNodes {
        std::set<RefT<Node>> hidden;
        std::set<RefT<Node>> visible;
    };

    struct SigNodeData : SigVoidData {
        std::vector<RefT<Object>> const *objs; ///< The objects concerned. Not owned.
    };
    struct SigPopupMenuData : SigVoidData {
        int x, y; ///< The mouse point in viewport coordinates, without scroll.
    };
    struct SigPaintNodeIconData : SigVoidData {
        PtrT<Object> const *obj; ///< Not owned.
        QPainter *painter;       ///< On the viewport. Not owned.
        int x, y, w, h;          ///< The icon's square, in viewport coordinates.
    };

    /// `exporter` writes the XML of drag payloads; without one they carry none.
    explicit ObjectGraphView(RefT<Exporter> const &exporter = {}, QWidget *parent = nullptr);
    ~ObjectGraphView() override;

    /// \name Objects
    /// @{

    /// Makes a hidden node for each object that has none, and brings the links up to date if there
    /// was any: one call with many objects costs far less than many calls.
    ///
    /// No node becomes visible here. With `report` the result tells how each object stands, and a
    /// repaint is asked for; without it the result is empty. An object that is being destroyed is
    /// passed over.
    AddedNodes add(std::vector<RefT<Object>> const &objs, bool report);
    AddedNodes add(std::size_t n, RefT<Object> const *objs, bool report);

    /// The object of a node; null once it is gone.
    static PtrT<Object> getObj(RefT<Node> const &node);

    /// Forgets the objects. sigRemoveNode follows with those that were visible, if any; sigSel
    /// doesn't. An object that dies is forgotten without any signal.
    void remove(std::vector<RefT<Object>> const &objs);
    void remove(std::size_t n, RefT<Object> const *objs);

    /// Forgets all objects. No signal follows, not even sigSel.
    void clear();

    /// Shows or hides the nodes of these objects. Showing lays out anew, with the node of the last
    /// object that changed held in place. sigInsertNode or sigRemoveNode follows with the objects
    /// that changed, if any, and sigSel if a selected one did.
    void setVisible(std::vector<RefT<Object>> const &objs, bool visible);
    void setVisible(std::size_t n, RefT<Object> const *objs, bool visible);
    /// Shows or hides the widget itself.
    void setVisible(bool visible) override;

    /// All objects with a node, in address order.
    std::vector<RefT<Object>> getObjs() const;
    /// The objects whose nodes are visible, in address order.
    std::vector<RefT<Object>> getVisibleObjs() const;
    /// False for an object without a node, too.
    bool isVisible(PtrT<Object> const &obj) const;
    using QWidget::isVisible;
    using QWidget::move;

    /// @}
    /// \name Layout and positions
    /// @{

    /// Lays all visible nodes out, with those that the user can see held in place on average. Every
    /// node starts to move to its new place; see animDuration.
    ///
    /// Of two objects that link to each other, one link is merged into the other, until links are
    /// next rebuilt. Calls std::srand(0) for each component, here and wherever nodes are shown.
    void layout();
    /// What the last layout made. All zero before the first.
    LayoutFigures const &getLayoutFigures() const { return layoutFigures; }

    /// The current centre of the object's node, also of a hidden one. False when it has none.
    bool getPos(PtrT<Object> const &obj, int &x, int &y) const;
    /// The farthest that setPos() places a node from the origin, on either side of it: what is
    /// worked out from positions then stays an int.
    static constexpr int maxPos = 1 << 28;
    /// Moves the node of an object, at once or by animation, until the next layout. False when it
    /// has none. Asks for no repaint by itself; an animation does as it moves. Takes coordinates
    /// beyond maxPos as maxPos.
    bool setPos(PtrT<Object> const &obj, int x, int y, bool animated);

    /// @}
    /// \name Selection
    /// @{

    /// Selects the nodes of these objects and no others. sigSel isn't emitted.
    void setSel(std::vector<RefT<Object>> const &objs);
    /// The objects whose nodes are selected and visible, in address order.
    std::vector<RefT<Object>> getSel() const;
    /// Scrolls to selected nodes that are out of sight, one screenful for each call.
    void showSel();

    /// @}
    /// \name Link fields
    /// Which fields make links, by class name and field name. The empty class name stands for every
    /// class, and a base class for its derived ones. A list field that is added to an object links
    /// only from the next add() that makes a node on; a single link does at once. A link of an out
    /// field runs from the field's object to the linked one, a link of an in field the other way.
    /// An empty field name is ignored.
    /// @{
    using LinkFields = std::map<std::string, std::set<std::string>>;

    void addOutLinkField(std::string const &className, std::string const &fieldName);
    void removeOutLinkField(std::string const &className, std::string const &fieldName);
    void addInLinkField(std::string const &className, std::string const &fieldName);
    void removeInLinkField(std::string const &className, std::string const &fieldName);
    bool isOutLinkField(RefT<Field> const &field) const;
    bool isInLinkField(RefT<Field> const &field) const;
    LinkFields const &getOutLinkFields() const { return outLinkFields; }
    LinkFields const &getInLinkFields() const { return inLinkFields; }
    /// @}

    /// \name Labels and icons
    /// A label is cut after 65,536 characters, so that painting stays quick.
    /// @{

    /// Where nodes get their icons; empty by default. Nodes that exist keep the icon they have. A
    /// database may change the view while it is asked, but must not destroy it.
    RefT<ObjectIconDB> const &getObjIconDB() const { return objIconDB; }
    void setObjIconDB(RefT<ObjectIconDB> const &db);
    /// The name of the string field that labels nodes; empty by default.
    std::string const &getFieldName() const { return fieldName; }
    void setFieldName(std::string const &name);
    /// Whether labels show the class name; true by default.
    bool isTypeName() const { return typeName; }
    void setTypeName(bool on);
    /// The name of the string field that supplies tooltips; empty by default.
    std::string const &getFieldTooltip() const { return fieldTooltip; }
    void setFieldTooltip(std::string const &name);

    /// @}
    /// \name Refresh
    /// @{

    bool canRefresh() const { return refreshEnabled; }
    /// Switches repaint requests on or off and returns how it was. A request made while they were
    /// off is carried out when they are switched on.
    bool setRefresh(bool on);

    /// @}

    PropT<double> animDuration; ///< Seconds of every animation, used within 0 to 60; 2 by default.
    PropT<bool> tooltip;        ///< Whether nodes have tooltips; false by default.

    /// The user changed the selection, or setVisible() showed or hid a selected node.
    SignalT<SigVoidData> sigSel;
    /// A context menu is asked for.
    SignalT<SigPopupMenuData> sigPopupMenu;
    SignalT<SigNodeData> sigInsertNode; ///< Nodes became visible.
    SignalT<SigNodeData> sigRemoveNode; ///< Nodes stopped being visible.
    /// A node's icon was painted; a listener may paint over it, and change what it likes of the
    /// painter's state. It may also change the view, but must not destroy it.
    SignalT<SigPaintNodeIconData> sigPaintNodeIcon;

protected:
    struct NodePalette {
        QColor colorBaseNode, colorTextNode, colorSelNode, colorRectNode, colorRectSelNode;
    };
    NodePalette const &getNodePalette() const { return nodePalette; }

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

    /// Makes `count` intermediate nodes on a link and returns them from the `from` side to the `to`
    /// side; empty when `count` is 0 or the link doesn't exist.
    std::vector<RefT<Node>> split(Node &from, Node &to, unsigned count);
    /// Makes the link direct. Does nothing when it doesn't exist.
    void unsplit(Node &from, Node &to);

    /// Calls onPaintNodeIcon(), then emits sigPaintNodeIcon.
    void paintNodeIcon(PtrT<Object> const &obj, QPainter &painter, int x, int y, int w, int h);
    /// Called after a node's icon was painted, also when there is none. Does nothing by default.
    /// May do what a listener of sigPaintNodeIcon may.
    virtual void onPaintNodeIcon(PtrT<Object> const &obj, QPainter &painter, int x, int y, int w,
                                 int h);

private:
    friend class Graph::Node;
    friend struct GraphViewAccess; // The tests' view of what lies below.

    struct NodeSlot {
        Signal::Connection sigDeleteConn;
        RefT<Node> node; // The sole long-term owner.
    };
    /// By address, which also look-ups by any other pointer to the object can do.
    struct ByAddress {
        using is_transparent = void;
        bool operator()(Ptr const &a, Ptr const &b) const { return a < b; }
    };
    using Nodes = std::map<PtrT<Object>, NodeSlot, ByAddress>;

    /// Holds back repaints while many links change.
    class RefreshPause {
    public:
        explicit RefreshPause(ObjectGraphView &pausedView);
        ~RefreshPause();
        RefreshPause(RefreshPause const &) = delete;
        RefreshPause &operator=(RefreshPause const &) = delete;

    private:
        ObjectGraphView &view;
        const bool wasEnabled;
    };

    RefT<Node> insertNode(RefT<Object> const &obj);
    Node *findNode(Ptr const &obj) const;
    std::vector<RefT<Object>> collectObjs(bool (*wanted)(Node const &)) const;
    void eraseSlot(Nodes::iterator slot);
    void refresh(bool stale);
    void updateViewport();
    bool storeVisible(Node &node, bool visible);
    void emitSigInsertNode(std::vector<RefT<Object>> const &objs);
    void emitSigRemoveNode(std::vector<RefT<Object>> const &objs);
    void emitSigSel(char const *where);
    void onPtrClassSigDelete(SigVoidData const &sigData);
    void onTooltipSigSet(PropT<bool>::SigSetData const &sigData);

    // Link tracking.
    LinkFields &linkFields(Graph::Direction direction);
    bool isLinkField(LinkFields const &map, PtrT<Field> const &field) const;
    void addLinkField(Graph::Direction direction, std::string const &className,
                      std::string const &name);
    void removeLinkField(Graph::Direction direction, std::string const &className,
                         std::string const &name);
    void link(Node &from, Node &to, unsigned count);
    void unlink(Node &from, Node &to, unsigned count);
    void linkAlong(Graph::Direction direction, Node &node, Ptr const &obj);
    void unlinkAlong(Graph::Direction direction, Node &node, Ptr const &obj);
    void connectField(Graph::Direction direction, Node &node, Field &field);
    template <class LinkField>
    void watchField(Graph::Direction direction, Node &node, LinkField &field);
    void removeWatchedField(Graph::Direction direction, Node &node, Field &field);
    void connectLinkFields(Node &node);
    void dropLinks(Node &node);
    void clearLinks();
    void updateLinks();
    void watchObject(Node &node);
    void onObjectSigAddField(Node &node, SigAddFieldData const &sigData);
    void onObjectSigRemoveField(Node &node, SigRemoveFieldData const &sigData);

    // Labels and icons.
    void updateIcon(Node &node);
    void updateLabel(Node &node, Field const *leaving = nullptr);
    void updateLabels();
    void onRefObjIconDBSigDelete(SigVoidData const &sigData);

    // Layout.
    void layout(RefT<Node> const &anchor);
    std::vector<RefT<Node>> findAnchors(RefT<Node> const &anchor) const;
    std::vector<Node *> beginLayout();
    void layoutComponents(std::vector<Node *> visibleNodes);
    void commitLayout(std::int64_t dx, std::int64_t dy);
    void startAnimation();
    void place(RefT<Node> const &node, int x, int y);
    void move(RefT<Node> const &node, int x, int y);
    void updateSize(Node &node);

    // Revealing neighbours.
    struct Row;
    void showLinkedIn(RefT<Node> const &node);
    void showLinkedOut(RefT<Node> const &node);
    Row measureRow(Node &node, Graph::Direction direction);
    void showRow(Row const &row, std::int64_t left, std::int64_t y);
    void scrollTo(std::vector<RefT<Node>> const &boundNodes);

    // Interaction.
    enum Hit {
        HitNone, // No node is there.
        HitNode, // Its box.
        HitIn,   // Its upper arrow.
        HitOut   // Its lower arrow.
    };
    QPoint contentPos(QPoint const &viewportPos) const;
    Hit hitTest(Node const &node, QPoint const &pos) const;
    std::pair<RefT<Node>, Hit> find(QPoint const &pos) const;
    std::pair<RefT<Node>, Hit> find(int x, int y) const;
    void click(RefT<Node> const &node, Hit hit, bool keepsOthers);
    void askForMenu(RefT<Node> const &node, Hit hit, QPoint const &viewportPos);
    void updateTooltip(QPoint const &pos);

    // Drag and drop.
    std::vector<RefT<Object>> getDropObjs(QMimeData const &mimeData) const;
    void acceptKnown(QDropEvent &event) const;
    std::vector<RefT<Object>> showRoutesTo(std::set<RefT<Node>> const &dropped, QPoint const &from);
    std::set<RefT<Node>> findVisibleComponents() const;
    void startDrag();
    std::unique_ptr<QMimeData> offerSelection();
    QPixmap makeDragPixmap();

    // Painting.
    struct PaintContext;
    void setupDefaultColors();
    void setupDefaultNodePaletteColors();
    void updateScrollbars();
    bool getVisibleBound(std::vector<RefT<Node>> const &boundNodes, int &left, int &top, int &right,
                         int &bottom) const;
    bool getVisibleBound(int &left, int &top, int &right, int &bottom) const;
    void measureVisibleNodes();
    void paintBackground(PaintContext const &context);
    void paintLinks(PaintContext const &context);
    void layRoute(PaintContext const &context, Node const &node, Node const &far,
                  Graph::LinkEntry const &entry, QPolygon &route) const;
    void paintNode(PaintContext const &context, Node &node);
    void paintArrow(PaintContext const &context, int x, int y, double degrees);

    // Animation.
    double animPeriod() const;
    void startScrolling(int x, int y);
    void onQTimerAnimSigTimeout();
    void onScrollQTimerAnimSigTimeout();

    QColor colorBg0() const { return bg0; }
    QColor colorBg1() const { return bg1; }
    QColor colorBaseNode() const { return nodePalette.colorBaseNode; }
    QColor colorTextNode() const { return nodePalette.colorTextNode; }
    QColor colorSelNode() const { return nodePalette.colorSelNode; }
    QColor colorRectNode() const { return nodePalette.colorRectNode; }
    QColor colorRectSelNode() const { return nodePalette.colorRectSelNode; }
    void setColorBg0(QColor const &color) { setColor(bg0, color); }
    void setColorBg1(QColor const &color) { setColor(bg1, color); }
    void setColorBaseNode(QColor const &color) { setColor(nodePalette.colorBaseNode, color); }
    void setColorTextNode(QColor const &color) { setColor(nodePalette.colorTextNode, color); }
    void setColorSelNode(QColor const &color) { setColor(nodePalette.colorSelNode, color); }
    void setColorRectNode(QColor const &color) { setColor(nodePalette.colorRectNode, color); }
    void setColorRectSelNode(QColor const &color) { setColor(nodePalette.colorRectSelNode, color); }
    void setColor(QColor &stored, QColor const &color);

    RefT<Exporter> xmlExporter;
    LinkFields outLinkFields, inLinkFields;
    Nodes nodes; // In address order, from which all orders of the layout descend.

    // How nodes look.
    NodePalette nodePalette;
    QColor bg0, bg1; // Top and bottom of the background.
    RefT<ObjectIconDB> objIconDB;
    Signal::Connection objIconDBConn; // To its sigDelete.
    std::string fieldName;
    bool typeName = true;
    std::string fieldTooltip;
    const int iconSize; // Edge of an icon, and of the bands over and under a node's box.
    const int margin = 2;
    const int xSpacing = 8, ySpacing = 8;

    bool boundsStale = false;    // Sizes and the scroll range are to be redone at the next paint.
    bool refreshPending = false; // A viewport update was withheld.
    bool refreshEnabled = true;
    std::size_t selCursor = 0; // Where the next showSel() begins, in the sorted selection.

    QTimer animTimer; // Moves nodes.
    Time animStart;
    QTimer scrollTimer; // Moves the scroll bars.
    Time scrollStart;
    int scrollFromX = 0, scrollFromY = 0, scrollToX = 0, scrollToY = 0;

    LayoutFigures layoutFigures;

    // The last left press, in content coordinates.
    RefT<Node> pressNode;
    Hit pressHit = HitNone;
    int pressX = 0, pressY = 0;

    // What the last drag offers. Kept for receivers that still work on it.
    std::vector<RefT<Object>> dragObjs, dragCopies;
    const std::unique_ptr<ZR::GUI::GuardedDrag> drag;
};

} // namespace ZR::VOM::GUI
