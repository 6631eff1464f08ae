#include "zrVOMGUI/graph/layout/NetworkSimplex.h"

#include <algorithm>
#include <cassert>

namespace ZR::VOM::GUI::Graph {

NetworkSimplex::EdgeId NetworkSimplex::addEdge(VertexId tail, VertexId head, std::uint16_t weight,
                                               std::uint16_t minLength)
{
    edges.push_back({tail, head, weight, minLength});
    return static_cast<EdgeId>(edges.size() - 1);
}

void NetworkSimplex::solve()
{
    if (vertexCount == 0)
        return;
    buildIncidence();
    initRanks();
    const std::vector<EdgeId> treeEdges = growTree();
    renumberVertices(treeEdges);
    plantTree(treeEdges);
    for (EdgeId leaving = leaveEdge(); leaving != none; leaving = leaveEdge()) {
        const Cut cut = cutAt(leaving);
        update(cut, enterEdge(cut));
        ++pivots;
    }
    balance();
}

int NetworkSimplex::lowestRank() const
{
    return *std::min_element(ranks.begin(), ranks.end());
}

void NetworkSimplex::buildIncidence()
{
    const auto build = [this](Incidence &incidence, VertexId Edge::*near, VertexId Edge::*far) {
        auto &beginOf = incidence.beginOf;
        beginOf.assign(static_cast<std::size_t>(vertexCount) + 1, 0);
        for (Edge const &edge : edges)
            ++beginOf[edge.*near + 1];
        for (std::size_t v = 0; v < vertexCount; ++v)
            beginOf[v + 1] += beginOf[v];
        incidence.all.resize(edges.size());
        std::vector<unsigned> next(beginOf.begin(), beginOf.end() - 1);
        for (EdgeId e = 0; e < edges.size(); ++e)
            incidence.all[next[edges[e].*near]++] = {e, edges[e].*far, edges[e].minLength};
    };
    build(outEdges, &Edge::tail, &Edge::head);
    build(inEdges, &Edge::head, &Edge::tail);
}

/// Computes the cut values from the leaves up.
///
/// The cut of a vertex's parent edge is crossed by the edges that cross the cuts of its children's,
/// and by its own, except for those that end in the subtree from both ends: so each edge counts at
/// its ends and is taken out again at their common ancestor.
void NetworkSimplex::setCutValues(std::vector<VertexId> const &parentsFirst)
{
    // The weight that runs out of each subtree less the weight that runs into it.
    std::vector<int> netOut(vertexCount, 0);
    for (Edge const &edge : edges) {
        netOut[edge.tail] += edge.weight;
        netOut[edge.head] -= edge.weight;
    }
    cutValues.assign(edges.size(), 0);
    std::vector<int> valueOfPlace(tree.allEdges().size());
    for (std::size_t i = parentsFirst.size(); i-- > 1;) {
        const VertexId v = parentsFirst[i];
        const EdgeId e = tree.parentEdge(v);
        cutValues[e] = edges[e].tail == v ? netOut[v] : -netOut[v];
        valueOfPlace[tree.place(e)] = cutValues[e];
        netOut[tree.parent(v)] += netOut[v];
    }
    cutValueIndex.assign(valueOfPlace);
}

/// The first of the most negative cut values, in the order of tree places.
NetworkSimplex::EdgeId NetworkSimplex::leaveEdge() const
{
    const unsigned place = cutValueIndex.findLowest();
    return place == CutValueIndex::none ? none : tree.edgeAt(place);
}

NetworkSimplex::Cut NetworkSimplex::cutAt(EdgeId edge) const
{
    Cut cut;
    cut.edge = edge;
    cut.childIsHead = tree.parentEdge(edges[edge].head) == edge;
    cut.child = cut.childIsHead ? edges[edge].head : edges[edge].tail;
    cut.parent = cut.childIsHead ? edges[edge].tail : edges[edge].head;
    cut.subtreeIsSmall = tree.size(cut.child) <= vertexCount - tree.size(cut.child);
    return cut;
}

void NetworkSimplex::update(Cut const &cut, Candidate entering)
{
    assert(entering.edge != none && "A negative cut value has an edge that crosses back.");
    if (entering.slack > 0 && !movesWholeTree(cut))
        shiftSubtree(cut, entering.slack);

    const auto [tail, head] = ends(entering.edge);
    const VertexId ancestor = tree.commonAncestor(tail, head);
    const int cutValue = cutValues[cut.edge];
    addAlongPath(tail, ancestor, cutValue, true);
    addAlongPath(head, ancestor, cutValue, false);
    cutValues[entering.edge] = -cutValue;
    cutValues[cut.edge] = 0;
    tree.exchange(cut.edge, entering.edge, ends(entering.edge), cut.childIsHead ? tail : head);
    cutValueIndex.set(tree.place(entering.edge), -cutValue);
}

/// Whether the published step would move the root where that is a leaf, and all other vertices with
/// it.
///
/// KEPT: nothing moves against anything then, and the entering edge keeps its slack, so that the
/// solution may cost more than it had to. Drawings depend on these ranks.
bool NetworkSimplex::movesWholeTree(Cut const &cut) const
{
    const auto [tail, head] = ends(cut.edge);
    return tree.isLeaf(tail) ? tail == 0 : head == 0 && tree.isLeaf(head);
}

/// Stretches the edge of the cut by `delta`. Only differences of ranks mean anything, so that the
/// smaller side moves, whichever it is.
void NetworkSimplex::shiftSubtree(Cut const &cut, int delta)
{
    const int shift = cut.childIsHead == cut.subtreeIsSmall ? delta : -delta;
    for (unsigned i = 0; i < smallSideSize; ++i)
        ranks[smallSide[i]] += shift;
}

/// Adds to the cut values on the tree path from a vertex up to an ancestor.
void NetworkSimplex::addAlongPath(VertexId from, VertexId ancestor, int cutValue, bool direction)
{
    for (VertexId v = from; v != ancestor; v = tree.parent(v)) {
        const EdgeId e = tree.parentEdge(v);
        cutValues[e] += (v == tree.tail(e)) == direction ? cutValue : -cutValue;
        cutValueIndex.set(tree.place(e), cutValues[e]);
    }
}

/// Spreads slack over edges of cut value 0, which costs nothing: each side goes half of the way
/// that it could. The tree stays as it is.
void NetworkSimplex::balance()
{
    for (EdgeId e : tree.allEdges()) {
        if (cutValues[e] != 0)
            continue;
        const Cut cut = cutAt(e);
        const Candidate found = leastSlack(cut);
        if (found.edge != none && found.slack > 1)
            shiftSubtree(cut, found.slack / 2);
    }
}

} // namespace ZR::VOM::GUI::Graph
