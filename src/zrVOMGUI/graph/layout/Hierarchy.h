#pragma once

// Not for hosts: the layered drawing of one component.

#include "zrVOMGUI/graph/LayoutFigures.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// What the engine needs to know of the widget: the gaps between boxes in pixels, and how a node is
/// measured.
struct Geometry {
    int xSpacing;
    int ySpacing;
    std::function<void(Node &)> measure;
};

/// The layered drawing of one connected component, alive only during its layout.
///
/// The stages follow Gansner, Koutsofios, North and Vo, A Technique for Drawing Directed Graphs
/// (IEEE TSE 19(3), 1993): cycles are broken, nodes are ranked, long links are split, layers are
/// ordered, and coordinates are assigned. Each stage tells its departures where it is written.
///
/// All iteration orders descend from the nodes' addresses: two layouts of one graph agree, while the
/// same graph built again may come out differently.
class Hierarchy {
public:
    using NodeSet = std::set<RefT<Node>>;
    using LinkKey = std::pair<RefT<Node>, RefT<Node>>;
    /// Links in their current direction, with their multiplicity, by from node and then to node.
    using Links = std::map<LinkKey, unsigned>;

    Hierarchy(Geometry const &nodeGeometry, LayoutFigures &layoutFigures);

    /// The component of `representative`, ranked, its long links split and its layers filled. The
    /// set includes the intermediate nodes; it is empty when the representative isn't visible.
    NodeSet assignRanks(RefT<Node> const &representative);

    /// Permutes each layer so that few links cross.
    void orderLayers(NodeSet const &nodes);

    /// Gives every node its place, local to the component, and returns the bound.
    Bounds assignCoordinates(NodeSet const &nodes);

    /// Turns back the links that cycle breaking turned. Answers whether there was any.
    bool revertLinks();

private:
    friend struct HierarchyAccess; // The tests' view of the single stages.

    // Cycle breaking.
    void breakCycles(NodeSet const &nodes);
    void numberDepthFirst(Node &start, NodeSet const &nodes, unsigned &enter, unsigned &leave);
    void reverseBackLinks();

    // Ranking.
    void solveRanks(NodeSet const &nodes);
    static int normalizeRanks(NodeSet const &nodes);

    // Long links.
    void splitLongLinks(NodeSet &nodes);
    void fillLayers(NodeSet const &nodes, int span);

    // Crossing reduction.
    unsigned countCrossings() const;
    unsigned countCrossings(std::size_t layer) const;
    unsigned sweepDown();
    unsigned sweepUp();
    void orderByMedians(std::vector<RefT<Node>> &layer, Direction side);
    void sortLayers();
    void shuffleLayers();

    // Coordinate assignment.
    void solveX(NodeSet const &nodes);
    void assignY();
    Bounds bound() const;
    double horizontalLength() const;

    Geometry const &geometry;
    LayoutFigures &figures;
    std::vector<std::vector<RefT<Node>>> layers; // One for each rank, from left to right.
    Links links;
    Links reversedLinks; // Turned by cycle breaking, keyed in their reversed direction.
};

} // namespace ZR::VOM::GUI::Graph
