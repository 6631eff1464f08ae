#include "zrVOMGUI/graph/layout/NetworkSimplex.h"

#include <algorithm>
#include <cassert>

namespace ZR::VOM::GUI::Graph {

NetworkSimplex::EdgeId NetworkSimplex::addEdge(VertexId tail, VertexId head, std::uint16_t weight,
                                               std::uint16_t minLength)
{
    graph.edges.push_back({tail, head, weight, minLength});
    return static_cast<EdgeId>(graph.edges.size() - 1);
}

void NetworkSimplex::solve()
{
    if (graph.vertexCount == 0)
        return;
    graph.buildIncidence();
    initRanks();
    const std::vector<EdgeId> treeEdges = growTree();
    renumberVertices(treeEdges);
    SpanningTree tree = plantTree(treeEdges);
    setCutValues(tree);
    pivotToOptimum(tree);
    balance(tree);
}

int NetworkSimplex::lowestRank() const
{
    return *std::min_element(ranks.begin(), ranks.end());
}

/// Computes the cut values from the leaves up.
///
/// The cut of a vertex's parent edge is crossed by the edges that cross the cuts of its children's,
/// and by its own, except for those that end in the subtree from both ends: so each edge counts at
/// its ends and is taken out again at their common ancestor.
void NetworkSimplex::setCutValues(SpanningTree const &tree)
{
    // The weight that runs out of each subtree less the weight that runs into it.
    std::vector<int> netOut(graph.vertexCount, 0);
    for (auto const &edge : graph.edges) {
        netOut[edge.tail] += edge.weight;
        netOut[edge.head] -= edge.weight;
    }
    cutValues.assign(graph.edges.size(), 0);
    std::vector<int> valueOfPlace(tree.numPlaces());
    for (VertexId v = tree.previous(0); v != 0; v = tree.previous(v)) {
        const EdgeId e = tree.parentEdge(v);
        cutValues[e] = graph.edges[e].tail == v ? netOut[v] : -netOut[v];
        valueOfPlace[tree.place(e)] = cutValues[e];
        netOut[tree.parent(v)] += netOut[v];
    }
    cutValueIndex.assign(valueOfPlace);
}

namespace {

/// Whether the published step would move the root where that is a leaf, and all other vertices with
/// it.
///
/// KEPT: nothing moves against anything then, and the entering edge keeps its slack, so that the
/// solution may cost more than it had to. Drawings depend on these ranks.
bool movesWholeTree(TreeCut const &cut, SpanningTree const &tree)
{
    const bool rootIsLeaf = tree.size(cut.child) + 1 == tree.numVertices();
    if (cut.parent != 0 || !rootIsLeaf)
        return false;
    const bool childIsLeaf = tree.size(cut.child) == 1;
    return cut.childIsHead || !childIsLeaf;
}

} // namespace

/// Exchanges tree edges as long as one has a negative cut value: the first of the most negative
/// one, in the order of tree places.
void NetworkSimplex::pivotToOptimum(SpanningTree &tree)
{
    CutSearch search(graph, tree, ranks);
    for (unsigned place; (place = cutValueIndex.findLowest()) != CutValueIndex::none; ++pivots) {
        const TreeCut cut(graph, tree, tree.edgeAt(place));
        const CutSearch::Candidate entering = search.firstOfLeastSlack(cut);
        assert(entering.edge != none && "A negative cut value has an edge that crosses back.");
        if (entering.slack > 0 && !movesWholeTree(cut, tree))
            search.stretch(entering.slack);

        const auto [tail, head, weight, minLength] = graph.edges[entering.edge];
        const VertexId ancestor = tree.commonAncestor(tail, head);
        const int cutValue = cutValues[cut.edge];
        addAlongPath(tree, tail, ancestor, cutValue, true);
        addAlongPath(tree, head, ancestor, cutValue, false);
        cutValues[entering.edge] = -cutValue;
        cutValues[cut.edge] = 0;
        cutValueIndex.set(place, -cutValue);
        const VertexId lower = cut.childIsHead ? tail : head;
        tree.exchange({cut.edge, cut.child, entering.edge, lower, tail ^ head ^ lower});
        search.exchanged(entering.edge);
    }
    search.settleRanks();
}

/// Adds to the cut values on the tree path from a vertex up to an ancestor.
void NetworkSimplex::addAlongPath(SpanningTree const &tree, VertexId from, VertexId ancestor,
                                  int cutValue, bool direction)
{
    for (VertexId v = from; v != ancestor; v = tree.parent(v)) {
        const EdgeId e = tree.parentEdge(v);
        cutValues[e] += (v == graph.edges[e].tail) == direction ? cutValue : -cutValue;
        cutValueIndex.set(tree.place(e), cutValues[e]);
    }
}

namespace {

/// A tree that doesn't change any more. Its preorder is an array, of which a subtree is a stretch,
/// and the rest is one round the end.
class SettledTree {
public:
    struct Side {
        bool isSubtree;
        unsigned begin, num; // In the preorder.
    };

    explicit SettledTree(SpanningTree const &ofTree)
        : tree(ofTree)
        , order(ofTree.numVertices())
        , positionOf(ofTree.numVertices())
    {
        unsigned v = 0;
        for (unsigned position = 0; position < order.size(); ++position, v = tree.next(v)) {
            order[position] = v;
            positionOf[v] = position;
        }
    }

    bool isBelow(unsigned vertex, unsigned ancestor) const
    {
        return positionOf[vertex] - positionOf[ancestor] < tree.size(ancestor);
    }

    Side smallerSide(TreeCut const &cut) const
    {
        const unsigned size = tree.size(cut.child), begin = positionOf[cut.child];
        if (size <= tree.numVertices() - size)
            return {true, begin, size};
        return {false, begin + size, tree.numVertices() - size};
    }

    unsigned vertex(Side const &side, unsigned i) const
    {
        const std::size_t position = std::size_t{side.begin} + i;
        return order[position < order.size() ? position : position - order.size()];
    }

private:
    SpanningTree const &tree;
    std::vector<unsigned> order, positionOf;
};

/// The least slack of the edges across a cut that run against its edge, or one of at most 1,
/// whichever is found first.
int slackBack(FlatGraph const &graph, std::vector<int> const &ranks, SettledTree const &tree,
              TreeCut const &cut, SettledTree::Side const &side)
{
    const bool runsOut = cut.childIsHead == side.isSubtree;
    int least = std::numeric_limits<int>::max();
    for (unsigned i = 0; i < side.num; ++i) {
        const unsigned v = tree.vertex(side, i);
        for (auto const &e : runsOut ? graph.out(v) : graph.in(v)) {
            if (tree.isBelow(e.far, cut.child) == side.isSubtree)
                continue;
            const int length = runsOut ? ranks[e.far] - ranks[v] : ranks[v] - ranks[e.far];
            least = std::min(least, length - e.minLength);
            if (least <= 1)
                return least;
        }
    }
    return least;
}

} // namespace

/// Spreads slack over edges of cut value 0, which costs nothing: each side goes half of the way
/// that it could. The tree stays as it is.
void NetworkSimplex::balance(SpanningTree const &tree)
{
    const SettledTree settled(tree);
    for (unsigned place = 0; place < tree.numPlaces(); ++place) {
        const EdgeId e = tree.edgeAt(place);
        if (cutValues[e] != 0)
            continue;
        const TreeCut cut(graph, tree, e);
        const SettledTree::Side side = settled.smallerSide(cut);
        const int slack = slackBack(graph, ranks, settled, cut, side);
        if (slack <= 1 || slack == std::numeric_limits<int>::max())
            continue;
        const int shift = cut.childIsHead == side.isSubtree ? slack / 2 : -(slack / 2);
        for (unsigned i = 0; i < side.num; ++i)
            ranks[settled.vertex(side, i)] += shift;
    }
}

} // namespace ZR::VOM::GUI::Graph
