#pragma once

// Not for hosts: the integer solver of both layers and x coordinates.

#include "zrVOMGUI/graph/layout/CutSearch.h"
#include "zrVOMGUI/graph/layout/CutValueIndex.h"
#include "zrVOMGUI/graph/layout/FlatGraph.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Gives each vertex an integer rank so that every edge has rank(head) - rank(tail) of at least its
/// minimum length, and the sum of weight times length over all edges is as small as possible.
///
/// The network simplex method of Gansner, Koutsofios, North and Vo, A Technique for Drawing
/// Directed Graphs (IEEE TSE 19(3), 1993). Departs from it in that
/// - the start tree is grown from the first tight edge by a binary heap of edge slacks, not by
///   repeated tight-tree search and shifting;
/// - the leaving edge is the one of the most negative cut value in the whole tree, and the first in
///   the order of places of equal ones; neither the search nor the iterations have a limit;
/// - the entering edge is the one of least slack, the first of equal ones that a walk through the
///   subtree below the leaving edge meets, which goes along the tree edges of the searched
///   direction in the order of all edges, and then against them in the order of their entry;
/// - of the balancing steps only the left-right one exists. It runs for layers too, and nodes are
///   not balanced across layers.
///
/// These choices decide the drawing and are kept to the letter. What a pivot costs isn't: there are
/// no postorder numbers to renew (see SpanningTree), the most negative cut value is at hand (see
/// CutValueIndex), of the two sides of the tree the smaller one is searched and moved, and less
/// than that where a cut is next to the one before (see CutSearch).
///
/// Built vertex by vertex and edge by edge, solved once, and then read.
/// \pre The graph is connected and has no directed cycle.
class NetworkSimplex {
public:
    using VertexId = FlatGraph::VertexId;
    using EdgeId = FlatGraph::EdgeId;
    static constexpr unsigned none = FlatGraph::none;

    /// Makes room for edges, where their number is known.
    void reserve(std::size_t numEdges) { graph.edges.reserve(numEdges); }
    /// Ids run from 0.
    VertexId addVertex() { return graph.vertexCount++; }
    /// Ids run from 0. Tail and head differ.
    EdgeId addEdge(VertexId tail, VertexId head, std::uint16_t weight, std::uint16_t minLength);

    void solve();

    /// The solution. May be negative: only differences mean anything.
    int rank(VertexId vertex) const { return ranks[numberOf[vertex]]; }
    int lowestRank() const;
    unsigned numPivots() const { return pivots; }

private:
    using Incident = FlatGraph::Incident;
    using Candidate = CutSearch::Candidate;
    class SlackHeap;
    class RingBuffer;

    int slack(EdgeId edge) const
    {
        const auto [tail, head, weight, minLength] = graph.edges[edge];
        return ranks[head] - ranks[tail] - minLength;
    }

    void initRanks();
    std::vector<EdgeId> growTree();
    void renumberVertices(std::vector<EdgeId> const &treeEdges);
    SpanningTree plantTree(std::vector<EdgeId> const &treeEdges) const;
    void setCutValues(SpanningTree const &tree);
    void pivotToOptimum(SpanningTree &tree);
    void addAlongPath(SpanningTree const &tree, VertexId from, VertexId ancestor, int cutValue,
                      bool direction);
    void balance(SpanningTree const &tree);

    FlatGraph graph;
    std::vector<VertexId>
        numberOf; // The solver's own number of each vertex, since renumberVertices().
    std::vector<int> ranks;
    /// Of a tree edge: what the sum of weighted lengths would gain or lose for each unit by which
    /// the edge is stretched, that is the weight of the edges that run from the tail's side of the
    /// tree to the head's side, less the weight of those that run back.
    std::vector<int> cutValues;
    CutValueIndex cutValueIndex; // By place in the tree.
    unsigned pivots = 0;
};

} // namespace ZR::VOM::GUI::Graph
