#pragma once

#include <climits>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// A whole layout as one writes it down: ordered sets and maps, recursive walks, one stage after
/// the other, on a graph of its own. The library's layout must agree with it node by node.
///
/// All orders of a layout descend from the addresses of the nodes, intermediate ones included, so
/// the addresses are given from outside: those of the library's own nodes, or any numbers.
///
/// Takes time and stack as it likes; for graphs of some thousand nodes at most. Everything is
/// public, so that a test can run a single stage.
namespace Literal {

struct Node;

struct ByAddress {
    bool operator()(Node const *a, Node const *b) const;
};

struct LinkEntry {
    Node *split = nullptr; // Next hop of a split link; null when the link is direct.
    unsigned count = 0;
};

using LinkMap = std::map<Node *, LinkEntry, ByAddress>;
using NodeSet = std::set<Node *, ByAddress>;
using Chain = std::vector<Node *>;

struct Node {
    std::uintptr_t address;
    LinkMap linkedIn, linkedOut;
    bool visible = true;
    int x = 0, y = 0;
    int fromX = 0, fromY = 0;
    int toX = 0, toY = 0;
    int width = 0, height = 0;
    unsigned dfsEnter = 0, dfsLeave = 0;
    int rank = 0;
    unsigned order = 0;
};

struct Box {
    int left, top, right, bottom;
};

/// The address of intermediate node `index` of a link, counted from 0 at the side of `from`.
using AddressOf = std::function<std::uintptr_t(Node const &from, Node const &to, unsigned index)>;

/// Nodes and links, and what is done to single links.
class Graph {
public:
    Node &addNode(std::uintptr_t address, int width, int height);
    void link(Node &from, Node &to, unsigned count);
    void unlink(Node &from, Node &to, unsigned count);
    Chain split(Node &from, Node &to, unsigned count);
    void unsplit(Node &from, Node &to);
    void unsplitNode(Node &node);
    void revertLink(Node &from, Node &to);

    static Chain chainOf(LinkEntry const &entry);
    /// What a node's link leads to next.
    static Node &neighbour(LinkMap::value_type const &link);

    std::deque<Node> nodes; // Real nodes, in order of creation; unmoved by growth.
    int xSpacing = 8, ySpacing = 8;
    int intermediateHeight = 0;
    AddressOf addressOf; // Rising numbers above all others, if empty.

private:
    std::deque<Node> intermediateNodes;
};

/// The layered drawing of one component.
class Hierarchy {
public:
    explicit Hierarchy(Graph &layoutGraph)
        : graph(layoutGraph)
    {
    }

    NodeSet assignRanks(Node &representative);
    void breakCycles(NodeSet const &nodes);
    void numberDepthFirst(Node &node, NodeSet const &nodes, unsigned &enter, unsigned &leave);
    void solveRanks(NodeSet const &nodes);
    void splitLongLinks(NodeSet &nodes);
    void fillLayers(NodeSet const &nodes, int span);

    void orderLayers(NodeSet const &nodes);
    void sortLayers();
    unsigned countCrossings(unsigned layer) const;
    unsigned countCrossings() const;
    unsigned sweepDown();
    unsigned sweepUp();
    void shuffleLayers();

    Box assignCoordinates(NodeSet const &nodes);
    void revertLinks();

    double length() const;

    using Links =
        std::map<std::pair<Node *, Node *>, unsigned,
                 bool (*)(std::pair<Node *, Node *> const &, std::pair<Node *, Node *> const &)>;
    static bool isBefore(std::pair<Node *, Node *> const &a, std::pair<Node *, Node *> const &b);

    Graph &graph;
    std::vector<std::vector<Node *>> layers;
    Links links{&isBefore}, reversedLinks{&isBefore};

private:
    void orderByMedians(std::vector<Node *> &layer, LinkMap Node::*side);
};

std::set<Node *, ByAddress> findIsolatedVisibleGraphs(NodeSet &nodes);
void removeLinkedNodes(Node &node, NodeSet &nodes);
void findIsolatedVisibleGraph(Node &node, NodeSet &found);

/// What the whole layout amounted to.
struct Figures {
    unsigned components = 0;
    unsigned splitNodes = 0;
    unsigned layers = 0;
    unsigned crossings = 0;
    double length = 0;
};

/// Lays out all visible nodes; the anchors keep their mean position.
Figures layout(Graph &graph, std::vector<Node *> const &anchors);

} // namespace Literal

} // namespace ZR::VOM::GUI::Graph
