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
/// What is a plain value is also a Qt property of the same name, for forms and style sheets.
///
/// GUI thread only. Coordinates are content pixels with y downward, a node's x and y its centre;
/// they may be negative. Times are seconds. Unknown objects, null references and empty lists are
/// passed over without a report.
class ZRVOMGUI_EXPORT ObjectGraphView : public QAbstractScrollArea, public ZR::Object {
    Q_OBJECT
    Q_PROPERTY(QString fieldName READ readFieldName WRITE writeFieldName)
    Q_PROPERTY(bool typeName READ isTypeName WRITE setTypeName)
    Q_PROPERTY(QString fieldTooltip READ readFieldTooltip WRITE writeFieldTooltip)
    Q_PROPERTY(bool tooltip READ readTooltip WRITE writeTooltip)
    Q_PROPERTY(double animDuration READ readAnimDuration WRITE writeAnimDuration)
    // Colours that code has set go back to their defaults when the style changes, unless the
    // application has a style sheet.
    /// The background at the top, from where it goes over to colorBg1. A disabled view has the
    /// palette's window colour there.
    Q_PROPERTY(QColor colorBg0 READ colorBg0 WRITE writeColorBg0)
    /// The background at the bottom.
    Q_PROPERTY(QColor colorBg1 READ colorBg1 WRITE writeColorBg1)
    /// The inside of a box that isn't selected.
    Q_PROPERTY(QColor colorBaseNode READ colorBaseNode WRITE writeColorBaseNode)
    /// The label of every box.
    Q_PROPERTY(QColor colorTextNode READ colorTextNode WRITE writeColorTextNode)
    /// The inside of a selected box.
    Q_PROPERTY(QColor colorSelNode READ colorSelNode WRITE writeColorSelNode)
    /// The frame of a box that isn't selected.
    Q_PROPERTY(QColor colorRectNode READ colorRectNode WRITE writeColorRectNode)
    /// The frame of a selected box.
    Q_PROPERTY(QColor colorRectSelNode READ colorRectSelNode WRITE writeColorRectSelNode)

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
    /// As forms make it.
    explicit ObjectGraphView(QWidget *parent);
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
    class ZR_LOCAL RefreshPause {
    public:
        explicit RefreshPause(ObjectGraphView &pausedView);
        ~RefreshPause();
        RefreshPause(RefreshPause const &) = delete;
        RefreshPause &operator=(RefreshPause const &) = delete;

    private:
        ObjectGraphView &view;
        const bool wasEnabled;
    };

    ZR_LOCAL RefT<Node> insertNode(RefT<Object> const &obj);
    ZR_LOCAL Node *findNode(Ptr const &obj) const;
    ZR_LOCAL std::vector<RefT<Object>> collectObjs(bool (*wanted)(Node const &)) const;
    ZR_LOCAL void eraseSlot(Nodes::iterator slot);
    ZR_LOCAL void refresh(bool stale);
    ZR_LOCAL void updateViewport();
    ZR_LOCAL bool storeVisible(Node &node, bool visible);
    ZR_LOCAL void emitSigInsertNode(std::vector<RefT<Object>> const &objs);
    ZR_LOCAL void emitSigRemoveNode(std::vector<RefT<Object>> const &objs);
    ZR_LOCAL void emitSigSel(char const *where);
    ZR_LOCAL void onPtrClassSigDelete(SigVoidData const &sigData);
    ZR_LOCAL void onTooltipSigSet(PropT<bool>::SigSetData const &sigData);

    // Link tracking.
    ZR_LOCAL LinkFields &linkFields(Graph::Direction direction);
    ZR_LOCAL bool isLinkField(LinkFields const &map, PtrT<Field> const &field) const;
    ZR_LOCAL void addLinkField(Graph::Direction direction, std::string const &className,
                               std::string const &name);
    ZR_LOCAL void removeLinkField(Graph::Direction direction, std::string const &className,
                                  std::string const &name);
    ZR_LOCAL void link(Node &from, Node &to, unsigned count);
    ZR_LOCAL void unlink(Node &from, Node &to, unsigned count);
    ZR_LOCAL void linkAlong(Graph::Direction direction, Node &node, Ptr const &obj);
    ZR_LOCAL void unlinkAlong(Graph::Direction direction, Node &node, Ptr const &obj);
    ZR_LOCAL void connectField(Graph::Direction direction, Node &node, Field &field);
    template <class LinkField>
    void watchField(Graph::Direction direction, Node &node, LinkField &field);
    ZR_LOCAL void removeWatchedField(Graph::Direction direction, Node &node, Field &field);
    ZR_LOCAL void connectLinkFields(Node &node);
    ZR_LOCAL void dropLinks(Node &node);
    ZR_LOCAL void clearLinks();
    ZR_LOCAL void updateLinks();
    ZR_LOCAL void watchObject(Node &node);
    ZR_LOCAL void onObjectSigAddField(Node &node, SigAddFieldData const &sigData);
    ZR_LOCAL void onObjectSigRemoveField(Node &node, SigRemoveFieldData const &sigData);

    // Labels and icons.
    ZR_LOCAL void updateIcon(Node &node);
    ZR_LOCAL void updateLabel(Node &node, Field const *leaving = nullptr);
    ZR_LOCAL void updateLabels();
    ZR_LOCAL void onRefObjIconDBSigDelete(SigVoidData const &sigData);

    // Layout.
    ZR_LOCAL void layout(RefT<Node> const &anchor);
    ZR_LOCAL std::vector<RefT<Node>> findAnchors(RefT<Node> const &anchor) const;
    ZR_LOCAL std::vector<Node *> beginLayout();
    ZR_LOCAL void layoutComponents(std::vector<Node *> visibleNodes);
    ZR_LOCAL void commitLayout(std::int64_t dx, std::int64_t dy);
    ZR_LOCAL void startAnimation();
    ZR_LOCAL void place(RefT<Node> const &node, int x, int y);
    ZR_LOCAL void move(RefT<Node> const &node, int x, int y);
    ZR_LOCAL void updateSize(Node &node);

    // Revealing neighbours.
    struct Row;
    ZR_LOCAL void showLinkedIn(RefT<Node> const &node);
    ZR_LOCAL void showLinkedOut(RefT<Node> const &node);
    ZR_LOCAL Row measureRow(Node &node, Graph::Direction direction);
    ZR_LOCAL void showRow(Row const &row, std::int64_t left, std::int64_t y);
    ZR_LOCAL void scrollTo(std::vector<RefT<Node>> const &boundNodes);

    // Interaction.
    enum Hit {
        HitNone, // No node is there.
        HitNode, // Its box.
        HitIn,   // Its upper arrow.
        HitOut   // Its lower arrow.
    };
    ZR_LOCAL QPoint contentPos(QPoint const &viewportPos) const;
    ZR_LOCAL Hit hitTest(Node const &node, QPoint const &pos) const;
    ZR_LOCAL std::pair<RefT<Node>, Hit> find(QPoint const &pos) const;
    ZR_LOCAL std::pair<RefT<Node>, Hit> find(int x, int y) const;
    ZR_LOCAL void click(RefT<Node> const &node, Hit hit, bool keepsOthers);
    ZR_LOCAL void askForMenu(RefT<Node> const &node, Hit hit, QPoint const &viewportPos);
    ZR_LOCAL void updateTooltip(QPoint const &pos);

    // Drag and drop.
    ZR_LOCAL std::vector<RefT<Object>> getDropObjs(QMimeData const &mimeData) const;
    ZR_LOCAL void acceptKnown(QDropEvent &event) const;
    ZR_LOCAL std::vector<RefT<Object>> showRoutesTo(std::set<RefT<Node>> const &dropped,
                                                    QPoint const &from);
    ZR_LOCAL std::set<RefT<Node>> findVisibleComponents() const;
    ZR_LOCAL void startDrag();
    ZR_LOCAL std::unique_ptr<QMimeData> offerSelection();
    ZR_LOCAL QPixmap makeDragPixmap();

    // Painting.
    struct PaintContext;
    ZR_LOCAL void setupDefaultColors();
    ZR_LOCAL void setupDefaultNodePaletteColors();
    ZR_LOCAL void updateScrollbars();
    ZR_LOCAL bool getVisibleBound(std::vector<RefT<Node>> const &boundNodes, int &left, int &top,
                                  int &right, int &bottom) const;
    ZR_LOCAL bool getVisibleBound(int &left, int &top, int &right, int &bottom) const;
    ZR_LOCAL void measureVisibleNodes();
    ZR_LOCAL void paintBackground(PaintContext const &context);
    ZR_LOCAL void paintLinks(PaintContext const &context);
    ZR_LOCAL void layRoute(PaintContext const &context, Node const &node, Node const &far,
                           Graph::LinkEntry const &entry, QPolygon &route) const;
    ZR_LOCAL void paintNode(PaintContext const &context, Node &node);
    ZR_LOCAL void paintArrow(PaintContext const &context, int x, int y, double degrees);

    // Animation.
    ZR_LOCAL double animPeriod() const;
    ZR_LOCAL void startScrolling(int x, int y);
    ZR_LOCAL void onQTimerAnimSigTimeout();
    ZR_LOCAL void onScrollQTimerAnimSigTimeout();

    // The settings, as Qt's properties have them. A refusal goes to the error sink.
    QString readFieldName() const { return QString::fromStdString(fieldName); }
    void writeFieldName(QString const &name) { setFieldName(name.toStdString()); }
    QString readFieldTooltip() const { return QString::fromStdString(fieldTooltip); }
    void writeFieldTooltip(QString const &name) { setFieldTooltip(name.toStdString()); }
    bool readTooltip() const { return tooltip.get(); }
    ZR_LOCAL void writeTooltip(bool on);
    double readAnimDuration() const { return animDuration.get(); }
    ZR_LOCAL void writeAnimDuration(double seconds);
    QColor colorBg0() const { return bg0; }
    QColor colorBg1() const { return bg1; }
    QColor colorBaseNode() const { return nodePalette.colorBaseNode; }
    QColor colorTextNode() const { return nodePalette.colorTextNode; }
    QColor colorSelNode() const { return nodePalette.colorSelNode; }
    QColor colorRectNode() const { return nodePalette.colorRectNode; }
    QColor colorRectSelNode() const { return nodePalette.colorRectSelNode; }
    void writeColorBg0(QColor const &color) { setColor(bg0, color); }
    void writeColorBg1(QColor const &color) { setColor(bg1, color); }
    void writeColorBaseNode(QColor const &color) { setColor(nodePalette.colorBaseNode, color); }
    void writeColorTextNode(QColor const &color) { setColor(nodePalette.colorTextNode, color); }
    void writeColorSelNode(QColor const &color) { setColor(nodePalette.colorSelNode, color); }
    void writeColorRectNode(QColor const &color) { setColor(nodePalette.colorRectNode, color); }
    void writeColorRectSelNode(QColor const &color)
    {
        setColor(nodePalette.colorRectSelNode, color);
    }
    ZR_LOCAL void setColor(QColor &stored, QColor const &color);

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
