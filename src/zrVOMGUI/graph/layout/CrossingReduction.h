#pragma once

// Not for hosts.

#include "zrVOMGUI/graph/layout/Hierarchy.h"

#include <cstdint>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Permutes each layer so that few links cross.
///
/// The median heuristic of Gansner, Koutsofios, North and Vo (1993), with layered sweeps in
/// alternating direction, and crossings counted by the accumulator tree of Barth, Jünger and
/// Mutzel, Simple and Efficient Bilayer Cross Counting (GD 2002). Departs from the published method
/// in that
/// - there is no adjacent-exchange (transpose) step;
/// - the median of an even number of neighbours is the plain sum of the two middle ones, with no
///   weighting by the spread on each side;
/// - a node with no neighbour on the sweep's side doesn't keep its place, but gets key 0;
/// - restarts from a random permutation replace the search over different initial orders;
/// - each link counts once, whatever its multiplicity.
///
/// A sweep costs O(n + e log n). It gives each node the orders of its neighbours as the layer
/// before lies there, which is in rising order, so that a median is read off and the crossings are
/// counted from the same lists.
class CrossingReduction {
public:
    using Layers = std::vector<std::vector<unsigned>>;

    /// Links join adjacent layers and run from the lower to the higher one, in rising order. Both
    /// are numbers of nodes below `numNodes`; each node is in one layer.
    CrossingReduction(unsigned numNodes, std::vector<Hierarchy::Link> const &links, Layers &layers);

    /// Reorders the layers, and returns the number of crossings that are left. Restarts the
    /// process's random generator, so that the same input gives the same order.
    unsigned run();

    /// Crossings between adjacent layers as they lie.
    unsigned countCrossings();

private:
    /// The neighbours of each node on one side: those before it, or those behind it.
    struct Side {
        std::vector<unsigned> begin;  // Of the node's stretch; one more at the end.
        std::vector<unsigned> far;    // Neighbours, in no particular order.
        std::vector<unsigned> orders; // Their places, in rising order, as of the last visit.
    };

    void buildSide(Side &side, std::vector<Hierarchy::Link> const &links,
                   unsigned Hierarchy::Link::*near, unsigned Hierarchy::Link::*far);
    unsigned sweepDown();
    unsigned sweepUp();
    void collectOrders(std::vector<unsigned> const &fixedLayer, Side const &towards, Side &back);
    void orderByMedians(std::vector<unsigned> &layer, std::size_t numFixed, Side const &side);
    int medianKey(unsigned node, Side const &side) const;
    unsigned countCrossings(std::vector<unsigned> const &layer, std::size_t numFixed,
                            Side const &side);
    void shuffleLayers();
    void numberOrders(std::vector<unsigned> const &layer);
    void restore(std::vector<unsigned> const &savedOrder);

    Layers &layers;
    Side before, behind;
    std::vector<unsigned> order; // Of each node, in its layer.

    // Scratch.
    std::vector<unsigned> filled;
    std::vector<int> keys;
    std::vector<unsigned> numBelow;
    std::vector<unsigned> reordered;
    std::vector<unsigned> accumulator;
};

} // namespace ZR::VOM::GUI::Graph
