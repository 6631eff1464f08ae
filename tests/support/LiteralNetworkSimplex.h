#pragma once

#include <cstdint>
#include <limits>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// The network simplex as one writes it down: full scans, recursive walks, nothing kept from one
/// pivot to the next but the tree. The library's solver must agree with it vertex by vertex.
///
/// Takes time and stack as it likes; for graphs of some thousand vertices at most. Everything is
/// public, so that a test can look at the tree, or run a single step.
class LiteralNetworkSimplex {
public:
    using VertexId = unsigned;
    using EdgeId = unsigned;
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();

    struct Vertex {
        unsigned index;
        std::vector<EdgeId> inEdges, outEdges; // In order of creation.
        std::vector<EdgeId> treeIn, treeOut;
        int rank = std::numeric_limits<int>::min();
        EdgeId parentEdge = none; // Tree edge towards the root.
        unsigned lim = 0;         // Postorder number.
        unsigned low = 0;         // Lowest lim in the vertex's subtree.
    };

    struct Edge {
        unsigned id;
        VertexId tail, head;
        unsigned treeIndex = none; // Position in treeEdges.
        std::uint16_t weight;
        std::uint16_t minLength;
        int cutValue = 0;
    };

    /// One exchange of the main loop.
    struct Pivot {
        EdgeId leaving, entering;
    };

    VertexId addVertex();
    EdgeId addEdge(VertexId tail, VertexId head, std::uint16_t weight, std::uint16_t minLength);
    void solve();
    int rank(VertexId vertex) const { return vertices[vertex].rank; }
    int lowestRank() const;

    std::size_t numPivots() const { return pivots.size(); }
    int slack(EdgeId edge) const;
    bool isInTree(EdgeId edge) const { return edges[edge].treeIndex != none; }
    /// Sum of weight times length over all edges, which is what is made as small as possible.
    long long cost() const;
    /// The cut value of a tree edge, from nothing but the tree: by flooding the two sides.
    int floodedCutValue(EdgeId treeEdge) const;

    // The stages, in calling order.
    void initRanks();
    void feasibleTree();
    EdgeId leaveEdge();
    EdgeId enterEdge(EdgeId leaving) const;
    void update(EdgeId leaving, EdgeId entering);
    void balance();

    std::vector<Vertex> vertices;
    std::vector<Edge> edges;
    std::vector<EdgeId> treeEdges;
    unsigned searchCursor = 0;
    std::vector<Pivot> pivots;

private:
    struct Search;

    unsigned setRange(VertexId v, EdgeId parent, unsigned low);
    void setCutValues(VertexId v, EdgeId parent);
    void computeCutValue(EdgeId edge);
    void searchOut(VertexId v, Search &search) const;
    void searchIn(VertexId v, Search &search) const;
    void rerank(VertexId v, int delta);
    VertexId treeUpdate(VertexId v, VertexId w, int cutValue, bool direction);
    void exchangeTreeEdges(EdgeId leaving, EdgeId entering);
};

} // namespace ZR::VOM::GUI::Graph
