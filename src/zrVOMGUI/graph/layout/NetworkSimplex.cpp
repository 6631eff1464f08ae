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
    CutSearch search(graph, tree, ranks);
    pivotToOptimum(tree, search);
    balance(tree, search);
    search.settleRanks();
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
bool movesWholeTree(CutSearch::Cut const &cut, SpanningTree const &tree)
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
void NetworkSimplex::pivotToOptimum(SpanningTree &tree, CutSearch &search)
{
    for (unsigned place; (place = cutValueIndex.findLowest()) != CutValueIndex::none; ++pivots) {
        const Cut cut = search.cutAt(tree.edgeAt(place));
        const Candidate entering = search.firstOfLeastSlack(cut);
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

/// Spreads slack over edges of cut value 0, which costs nothing: each side goes half of the way
/// that it could. The tree stays as it is.
void NetworkSimplex::balance(SpanningTree const &tree, CutSearch &search) const
{
    for (unsigned place = 0; place < tree.numPlaces(); ++place) {
        const EdgeId e = tree.edgeAt(place);
        if (cutValues[e] != 0)
            continue;
        const Candidate found = search.anyOfLeastSlack(search.cutAt(e));
        if (found.edge != none && found.slack > 1)
            search.stretch(found.slack / 2);
    }
}

} // namespace ZR::VOM::GUI::Graph
