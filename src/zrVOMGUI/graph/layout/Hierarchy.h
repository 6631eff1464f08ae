#pragma once

// Not for hosts: the layered drawing of one component.

#include "zrVOMGUI/graph/LayoutFigures.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <cstdint>
#include <functional>
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
/// Inside, nodes are numbers, their places in the component in address order, and links are pairs
/// of them in rising order; so all iteration orders descend from the nodes' addresses. Two layouts
/// of one graph agree, while the same graph built again may come out differently.
class Hierarchy {
public:
    /// `component`: all nodes of one connected component, in address order. They and the arguments
    /// must outlive the hierarchy.
    Hierarchy(Geometry const &nodeGeometry, LayoutFigures &layoutFigures,
              std::vector<Node *> component);

    /// Ranks the nodes, splits long links and fills the layers. From then on getNodes() includes
    /// the intermediate nodes.
    void assignRanks();

    /// Permutes each layer so that few links cross.
    void orderLayers();

    /// Gives every node its place, local to the component, and returns the bound.
    Bounds assignCoordinates();

    /// Turns back the links that cycle breaking turned. Answers whether there was any.
    bool revertLinks();

    /// In address order.
    std::vector<Node *> const &getNodes() const { return nodes; }
    /// The nodes of each rank, by number, from left to right.
    std::vector<std::vector<unsigned>> const &getLayers() const { return layers; }

    /// A link by the numbers of its nodes, in its direction during the layout. Self-links have no
    /// part in it.
    struct Link {
        unsigned from, to;

        bool operator<(Link const &other) const
        {
            return from != other.from ? from < other.from : to < other.to;
        }
        bool operator==(Link const &other) const { return from == other.from && to == other.to; }
    };
    /// In rising order; after assignRanks() of the unit pieces.
    std::vector<Link> const &getLinks() const { return links; }

private:
    void numberNodes();

    // Cycle breaking.
    void breakCycles();
    void collectLinks();
    void numberDepthFirst();
    void reverseBackLinks();

    // Ranking.
    void solveRanks();
    int normalizeRanks();

    // Long links.
    void splitLongLinks();
    void collectUnitLinks();
    void fillLayers(int span);

    // Coordinate assignment.
    void solveX();
    std::uint16_t distance(unsigned left, unsigned right) const;
    int shrinkFactor() const;
    void assignY();
    Bounds bound() const;
    double horizontalLength() const;

    Geometry const &geometry;
    LayoutFigures &figures;
    std::vector<Node *> nodes; // In address order; Node::index is the place in it. Not owned.
    std::vector<Link> links;
    std::vector<std::pair<Node *, Node *>> reversedLinks; // In their reversed direction.
    std::vector<std::vector<unsigned>> layers;
};

} // namespace ZR::VOM::GUI::Graph
