#pragma once

// Not for hosts: the integer solver of both layers and x coordinates.

#include "zrVOMGUI/graph/layout/CutValueIndex.h"
#include "zrVOMGUI/graph/layout/SpanningTree.h"

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
/// CutValueIndex), and of the two sides of the tree the smaller one is searched and moved.
///
/// Built vertex by vertex and edge by edge, solved once, and then read.
/// \pre The graph is connected and has no directed cycle.
class NetworkSimplex {
public:
    using VertexId = unsigned;
    using EdgeId = unsigned;
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();

    /// Makes room for edges, where their number is known.
    void reserve(std::size_t numEdges) { edges.reserve(numEdges); }
    /// Ids run from 0.
    VertexId addVertex() { return vertexCount++; }
    /// Ids run from 0. Tail and head differ.
    EdgeId addEdge(VertexId tail, VertexId head, std::uint16_t weight, std::uint16_t minLength);

    void solve();

    /// The solution. May be negative: only differences mean anything.
    int rank(VertexId vertex) const { return ranks[numberOf[vertex]]; }
    int lowestRank() const;
    unsigned numPivots() const { return pivots; }

private:
    friend struct NetworkSimplexAccess; // The tests' view of tree and cut values.

    struct Edge {
        VertexId tail, head;
        std::uint16_t weight;
        std::uint16_t minLength;
    };

    /// An edge as one of its ends sees it: all that a walk needs lies side by side.
    struct Incident {
        EdgeId edge;
        VertexId far;
        int minLength;
    };
    /// The edges at each vertex on one side, in the order of their ids.
    struct Incidence {
        struct Range {
            Incident const *first, *last;
            Incident const *begin() const { return first; }
            Incident const *end() const { return last; }
        };
        Range at(VertexId vertex) const
        {
            return {all.data() + beginOf[vertex], all.data() + beginOf[vertex + 1]};
        }

        std::vector<unsigned> beginOf; // The vertex's stretch of `all`; one more at the end.
        std::vector<Incident> all;
    };

    /// One side of the tree without one edge: the subtree below it, or the rest.
    struct Cut {
        EdgeId edge;
        VertexId child;  // The edge's end in the subtree below it,
        VertexId parent; // and the other one.
        bool childIsHead;
        bool subtreeIsSmall; // Not larger than the rest.
    };

    struct Candidate {
        int slack;
        EdgeId edge;
    };

    /// A way on from a vertex in a walk through a subtree: first the edges along, by id, be they of
    /// the tree or not, and then the tree edges against, by age.
    struct Branch {
        unsigned search : 31; // In which it was stored.
        unsigned isAgainst : 1;
        unsigned key = 0;
        EdgeId edge = none;

        Branch()
            : search(0)
            , isAgainst(0)
        {
        }
        Branch(unsigned ofSearch, bool against, unsigned branchKey, EdgeId branchEdge)
            : search(ofSearch & 0x7fffffff)
            , isAgainst(against)
            , key(branchKey)
            , edge(branchEdge)
        {
        }
        bool comesBefore(Branch const &other) const
        {
            return isAgainst != other.isAgainst ? other.isAgainst : key < other.key;
        }
    };
    class SlackHeap;
    class RingBuffer;
    struct OutSide;
    struct InSide;

    int slack(VertexId tail, VertexId head, int minLength) const
    {
        return ranks[head] - ranks[tail] - minLength;
    }
    int slack(EdgeId edge) const
    {
        return slack(edges[edge].tail, edges[edge].head, edges[edge].minLength);
    }
    SpanningTree::Ends ends(EdgeId edge) const { return {edges[edge].tail, edges[edge].head}; }
    VertexId otherEnd(EdgeId edge, VertexId vertex) const
    {
        return edges[edge].tail ^ edges[edge].head ^ vertex;
    }

    void buildIncidence();
    void initRanks();
    std::vector<EdgeId> growTree();
    void renumberVertices(std::vector<EdgeId> const &treeEdges);
    void plantTree(std::vector<EdgeId> const &treeEdges);
    void setCutValues(std::vector<VertexId> const &parentsFirst);

    EdgeId leaveEdge() const;
    Cut cutAt(EdgeId edge) const;
    Candidate enterEdge(Cut const &cut);
    Candidate leastSlack(Cut const &cut);
    template <class Side>
    Candidate searchSubtree(Side const &side, Cut const &cut, int goodEnough);
    template <class Side>
    Candidate searchRest(Side const &side, Cut const &cut, bool wantsFirst);
    template <class Side>
    EdgeId firstMet(Side const &side, Cut const &cut, std::vector<EdgeId> const &candidates);
    void collectRest(Cut const &cut);
    /// Whether a vertex is in the subtree that is being searched.
    bool isBelow(VertexId vertex, VertexId subtreeRoot)
    {
        const unsigned mark = tree.mark(vertex);
        return mark == inside || (mark != outside && climbsTo(subtreeRoot, vertex));
    }
    bool climbsTo(VertexId subtreeRoot, VertexId vertex);

    void update(Cut const &cut, Candidate entering);
    bool movesWholeTree(Cut const &cut) const;
    void shiftSubtree(Cut const &cut, int delta);
    void addAlongPath(VertexId from, VertexId ancestor, int cutValue, bool direction);
    void balance();

    unsigned vertexCount = 0;
    std::vector<Edge> edges;
    std::vector<VertexId>
        numberOf; // The solver's own number of each vertex, since renumberVertices().
    std::vector<int> ranks;
    Incidence outEdges, inEdges;

    SpanningTree tree{0, 0};
    /// Of a tree edge: what the sum of weighted lengths would gain or lose for each unit by which
    /// the edge is stretched, that is the weight of the edges that run from the tail's side of the
    /// tree to the head's side, less the weight of those that run back.
    std::vector<int> cutValues;
    CutValueIndex cutValueIndex; // By place in the tree.
    unsigned pivots = 0;

    // Scratch of one search.
    struct Visit {
        VertexId vertex;
        EdgeId against;                       // The tree edge against that was taken last.
        Incident const *nextAlong, *endAlong; // What is left of its edges along.
    };
    std::vector<Visit> path;
    unsigned inside = 0, outside = 1; // Marks of vertices of which this search knows the side.
    std::vector<VertexId> smallSide;  // The vertices of the side that was walked, in front.
    unsigned smallSideSize = 0;
    std::vector<EdgeId> ties;
    std::vector<Branch> firstBranch; // By vertex.
    unsigned branchSearch = 0;
};

} // namespace ZR::VOM::GUI::Graph
