#pragma once

// Not for hosts: the integer solver of both layers and x coordinates.

#include <cstdint>
#include <limits>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Gives each vertex an integer rank so that every edge has rank(head) - rank(tail) of at least its
/// minimum length, and the sum of weight times length over all edges is as small as possible.
///
/// The network simplex method of Gansner, Koutsofios, North and Vo, A Technique for Drawing Directed
/// Graphs (IEEE TSE 19(3), 1993). Departs from it in that
/// - the start tree is grown from the first tight edge by a binary heap of edge slacks, not by
///   repeated tight-tree search and shifting;
/// - the leaving edge is the one of the most negative cut value in the whole tree, with no limit on
///   the search, nor on the number of iterations;
/// - of the balancing steps only the left-right one exists, and it runs for layers too; nodes aren't
///   balanced across layers.
///
/// Built vertex by vertex and edge by edge, solved once, and then read.
/// \pre The graph is connected and has no directed cycle.
class NetworkSimplex {
public:
    using VertexId = unsigned;
    using EdgeId = unsigned;
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();

    /// Ids run from 0.
    VertexId addVertex();
    /// Ids run from 0. Tail and head differ.
    EdgeId addEdge(VertexId tail, VertexId head, std::uint16_t weight, std::uint16_t minLength);

    void solve();

    /// The solution. May be negative: only differences mean anything.
    int rank(VertexId vertex) const { return vertices[vertex].rank; }
    int lowestRank() const;

private:
    friend struct NetworkSimplexAccess; // The tests' view of tree and cut values.

    struct Vertex {
        std::vector<EdgeId> inEdges, outEdges; // In order of creation.
        std::vector<EdgeId> treeIn, treeOut;   // Those of them that are in the tree.
        int rank = std::numeric_limits<int>::min();
        EdgeId parentEdge = none; // Tree edge towards the root.
        unsigned lim = 0;         // Postorder number.
        unsigned low = 0;         // Lowest lim in the vertex's subtree.
    };

    struct Edge {
        VertexId tail, head;
        unsigned treeIndex = none; // Position in treeEdges.
        std::uint16_t weight;
        std::uint16_t minLength;
        /// Of a tree edge: what the sum of weighted lengths would gain or lose for each unit by which
        /// the edge is stretched, that is the weight of the edges that run from the tail's side of
        /// the tree to the head's side, less the weight of those that run back.
        int cutValue = 0;
    };

    struct Candidate {
        int slack;
        EdgeId edge;
    };
    class SlackHeap;
    class RingBuffer;

    int slack(Edge const &edge) const;
    VertexId otherEnd(EdgeId edge, VertexId vertex) const;
    bool isInSubtree(VertexId vertex, VertexId root) const;
    bool tailIsChild(Edge const &edge) const;

    void initRanks();
    void feasibleTree();
    void pushNonTreeEdges(SlackHeap &heap, VertexId vertex) const;
    void addTreeEdge(EdgeId edge);
    void setRange(VertexId root, EdgeId parent, unsigned low);
    void setCutValues();
    void computeCutValue(EdgeId edge);

    EdgeId leaveEdge();
    EdgeId enterEdge(EdgeId leaving) const;
    EdgeId searchOut(VertexId root) const;
    EdgeId searchIn(VertexId root) const;
    template <class Side>
    EdgeId search(VertexId root, Side const &side) const;

    void update(EdgeId leaving, EdgeId entering);
    void makeTight(EdgeId leaving, int delta);
    void rerank(VertexId root, int delta);
    VertexId treeUpdate(VertexId from, VertexId to, int cutValue, bool direction);
    void exchangeTreeEdges(EdgeId leaving, EdgeId entering);
    void balance();

    std::vector<Vertex> vertices;
    std::vector<Edge> edges;
    std::vector<EdgeId> treeEdges;
    unsigned searchCursor = 0; // Where leaveEdge() begins.
};

} // namespace ZR::VOM::GUI::Graph
