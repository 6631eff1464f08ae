#pragma once

// Not for hosts: the graph's own view data.

#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/vom/Field.h"

#include <QIcon>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>

namespace ZR::VOM::GUI {

class ObjectGraphView;

namespace Graph {

class Node;

/// Which way a link field's links run: from the field's object to the linked one, or back.
enum class Direction { Out, In };

/// One end of a link.
struct LinkEntry {
    RefT<Node> split;   ///< First intermediate node of a split link; null when the link is direct.
    unsigned count = 0; ///< How many references of the model the link stands for.
};

/// The ends of a node's links in one direction, by the node at the far end, in address order.
using LinkMap = std::map<PtrT<Node>, LinkEntry>;

/// A link field being watched.
struct FieldConns {
    PtrT<Field> field;
    Signal::Connection setConn;
    Signal::Connection lostConn;
};

/// By the field's address, which stays in order when a field dies unheard.
using WatchedFields = std::map<Field const *, FieldConns>;

/// What a node with an object keeps about it. Intermediate nodes have none.
struct ObjectWatch {
    PtrT<FieldString> nameField; ///< Gave the label; null if none.
    Signal::Connection addFieldConn, removeFieldConn;
    Signal::Connection nameFieldConn;
    WatchedFields inFields, outFields;
    QIcon icon;
    QString label;
};

/// A box of the graph, or one of the invisible stations that a long link passes through.
///
/// Coordinates are content pixels, y downward; x and y are the node's centre, and the offsets are
/// relative to it. Real nodes are owned by the view, intermediate ones by the link they are on.
class Node : public Class {
public:
    /// An intermediate node when `object` is empty: visible from birth. A node with an object is
    /// born hidden.
    Node(ObjectGraphView &owner, RefT<Object> const &object);
    ~Node() override;

    /// Ends the node's part in the graph, even if somebody still holds it: it drops its links and
    /// what it watches, is hidden, and doesn't need the view any more.
    void leaveGraph();

    bool isIntermediate() const { return !watch; }
    LinkMap &links(Direction direction)
    {
        return direction == Direction::Out ? linkedOut : linkedIn;
    }

    ObjectGraphView *const view; // Not owned, never null.
    LinkMap linkedIn, linkedOut;
    PtrT<Object> obj;

    int x = 0, y = 0;
    int width = 0, height = 0; // The bands over and under the box included; 0 until measured.
    int fromX = 0, fromY = 0;  // Where the animation starts,
    int toX = 0, toY = 0;      // and where it ends.

    // Offsets of what is painted, and the measured label.
    int iconX = 0, iconY = 0;
    int textX = 0, textY = 0;
    int textWidth = 0, textHeight = 0;
    int arrowX = 0;
    int topY = 0, bottomY = 0;

    bool visible;
    bool selected = false;
    bool hiddenIn = false, hiddenOut = false; // Some neighbour isn't visible; worked out at paint.
    bool sizeDirty = false;

    // Used during a layout or a search; stale between them.
    unsigned dfsEnter = 0, dfsLeave = 0;
    int rank = 0;
    unsigned order = 0;
    unsigned index = 0; // Of its component, and then its own in the component or the search.

    std::unique_ptr<ObjectWatch> watch;
};

/// No coordinate of a drawing is farther from 0 than this: what is worked out from two of them
/// stays an int. Drawings that would reach farther are pressed together at their far end.
constexpr int maxCoordinate = (1 << 30) - (1 << 26);

/// The nearest coordinate that a drawing may have.
inline int toCoordinate(std::int64_t value)
{
    return static_cast<int>(std::clamp<std::int64_t>(value, -maxCoordinate, maxCoordinate));
}

/// The rectangle that a node takes, bands included: right and bottom are left and top plus the
/// size.
struct Bounds {
    int left, top, right, bottom;
};
Bounds boundsOf(Node const &node);

/// Where the next piece of a link leads along one of its ends: to an intermediate node, or straight
/// to the far end.
inline Node &neighbour(LinkMap::value_type const &link)
{
    return link.second.split ? *link.second.split : *link.first;
}

/// Calls `use` with each intermediate node of the link, from the side of `entry`'s owner, which is
/// the link's from node.
template <class Use>
void forEachIntermediate(LinkEntry const &entry, Use &&use)
{
    for (Node *node = entry.split.get(); node;) {
        Node *const next =
            node->linkedOut.empty() ? nullptr : node->linkedOut.begin()->second.split.get();
        use(*node);
        node = next;
    }
}

/// A key for look-ups by the node itself.
inline PtrT<Node> keyOf(Node &node)
{
    return PtrT<Node>(node);
}

} // namespace Graph

} // namespace ZR::VOM::GUI
