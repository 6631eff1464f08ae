#pragma once

// Not for hosts.

#include "zrVOMGUI/graph/layout/FlatGraph.h"
#include "zrVOMGUI/graph/layout/SpanningTree.h"
#include "zrVOMGUI/graph/layout/Tournament.h"

#include <vector>

namespace ZR::VOM::GUI::Graph {

/// A cut of the network simplex's tree: the subtree below one edge, and the rest.
struct TreeCut {
    TreeCut(FlatGraph const &graph, SpanningTree const &tree, FlatGraph::EdgeId treeEdge);

    FlatGraph::EdgeId edge;
    FlatGraph::VertexId child, parent; // The edge's ends, in the subtree and outside.
    bool childIsHead; // The edges against this one run out of the subtree; else into it.
};

/// Finds the edges of least slack across a cut of the network simplex's tree, and moves one side
/// of the cut.
///
/// A tree without one of its edges falls into two sides. The edges asked for join them in the
/// direction opposite to that edge. There are two ways to them:
/// - anew: the smaller side is collected and each edge at its vertices looked at;
/// - by following: one cut is often next to the one before, with few vertices between them. Only
///   these change sides then, and only their edges start or cease to cross. The slacks of all
///   crossing edges change by the same amount when a side moves, so that their order stays, and
///   neither they nor the ranks of the side have to be touched.
///
/// Both give the same answers.
class CutSearch {
public:
    using VertexId = FlatGraph::VertexId;
    using EdgeId = FlatGraph::EdgeId;
    static constexpr unsigned none = FlatGraph::none;

    struct Candidate {
        int slack;
        EdgeId edge; // none when no edge crosses.
    };

    /// Works on these for as long as it lives. Ranks are its own business until settleRanks().
    CutSearch(FlatGraph const &graph, SpanningTree const &tree, std::vector<int> &ranks);

    /// The edge of least slack; of several, the one that a walk through the subtree meets first
    /// which goes from its root along the edges of the searched direction by id, and then against
    /// tree edges by age.
    Candidate firstOfLeastSlack(TreeCut const &cut);

    /// Stretches the edge of the cut asked about last by `delta`, with all that hangs on it.
    void stretch(int delta);
    /// Says that `entering` has taken the place of the edge of the cut asked about last.
    void exchanged(EdgeId entering);
    /// Brings all ranks up to date. Only their differences mean anything.
    void settleRanks();

private:
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

    enum class Kinship { Within, Apart, Unknown };
    /// The vertices between the present cut and another one: so many along the thread, without
    /// those of one subtree.
    struct Between {
        VertexId first = none;
        unsigned num = 0;
        VertexId skippedSubtree = none;
        VertexId nearEnd = none; // Of the other cut's edge, which is one of them.
    };

    unsigned smallerSize(TreeCut const &cut) const;
    bool isMarked(VertexId vertex) const { return markOf[vertex] == mark; }
    /// With the ranks as they stand, settled or not.
    int rawSlack(VertexId tail, VertexId head, int minLength) const
    {
        return ranks[head] - ranks[tail] - minLength;
    }

    int leastSlack(TreeCut const &cut);

    int searchAnew(TreeCut const &cut);
    void collect(VertexId first, unsigned num, VertexId skippedSubtree);
    int lookAtCollected();
    template <bool out>
    int lookAtCollectedAlong();

    Between whatIsBetween(TreeCut const &cut) const;
    Kinship kinship(VertexId smaller, VertexId larger, unsigned maxSteps) const;
    bool willRunOut(TreeCut const &cut, Between const &between) const;
    void beginFollowing(bool outOfMarked);
    void crossOver(TreeCut const &cut, Between const &between);
    void noteWhetherCrossing(EdgeId edge, VertexId tail, VertexId head, int minLength);
    void setSlack(EdgeId edge, int slack);
    void endFollowing();

    EdgeId firstMet(TreeCut const &cut);

    FlatGraph const &graph;
    SpanningTree const &tree;
    std::vector<int> &ranks;

    // One side of the cut asked about last is marked.
    std::vector<unsigned> markOf;
    unsigned mark = 1;
    bool runsOut = false; // Whether the edges looked for run out of the marked side, or into it.
    EdgeId bridge = none; // The tree edge between the sides; none when marks mean nothing.
    std::vector<EdgeId> ties; // All edges of least slack.

    // The marked side after a search anew; when following, the vertices that changed sides last.
    std::vector<VertexId> collected;
    unsigned numCollected = 0;

    bool isFollowing = false;
    int pendingShift = 0;            // What is missing in the ranks of the marked side.
    Tournament slacks;               // Raw, of the crossing edges, by edge. Made when first needed.
    std::vector<EdgeId> everCrossed; // What slacks may hold.

    std::vector<Branch> firstBranch; // By vertex.
    unsigned branchSearch = 0;
};

} // namespace ZR::VOM::GUI::Graph
