// Which edge enters the tree of the network simplex.

#include "zrVOMGUI/graph/layout/NetworkSimplex.h"

namespace ZR::VOM::GUI::Graph {

// The two directions of a search through the subtree below the leaving edge. `along` are the edges
// that may leave the subtree, or tree edges that the walk goes along; `against` are the tree edges
// that it goes against afterwards.

/// The leaving edge's head is below: edges that run out of the subtree are looked for.
struct NetworkSimplex::OutSide {
    NetworkSimplex const &s;
    Incidence const &along() const { return s.outEdges; }
    Incidence const &alongFromRest() const { return s.inEdges; }
    VertexId near(EdgeId e) const { return s.edges[e].tail; }
    VertexId nearOfTreeEdge(EdgeId e) const { return s.tree.tail(e); }
    int slack(VertexId v, Incident const &e) const { return s.slack(v, e.far, e.minLength); }
    int slackFromRest(VertexId v, Incident const &e) const
    {
        return s.slack(e.far, v, e.minLength);
    }
    EdgeId firstAgainst(VertexId v) const { return s.tree.firstIn(v); }
    EdgeId nextAgainst(EdgeId e) const { return s.tree.nextIn(e); }
};

/// The leaving edge's tail is below: edges that run into the subtree are looked for.
struct NetworkSimplex::InSide {
    NetworkSimplex const &s;
    Incidence const &along() const { return s.inEdges; }
    Incidence const &alongFromRest() const { return s.outEdges; }
    VertexId near(EdgeId e) const { return s.edges[e].head; }
    VertexId nearOfTreeEdge(EdgeId e) const { return s.tree.head(e); }
    int slack(VertexId v, Incident const &e) const { return s.slack(e.far, v, e.minLength); }
    int slackFromRest(VertexId v, Incident const &e) const
    {
        return s.slack(v, e.far, e.minLength);
    }
    EdgeId firstAgainst(VertexId v) const { return s.tree.firstOut(v); }
    EdgeId nextAgainst(EdgeId e) const { return s.tree.nextOut(e); }
};

/// The edge of least slack among those that join the two sides of the tree in the direction
/// opposite to the leaving edge; the first met of equal ones.
NetworkSimplex::Candidate NetworkSimplex::enterEdge(Cut const &cut)
{
    const auto enter = [&](auto const &side) {
        return cut.subtreeIsSmall ? searchSubtree(side, cut, 0) : searchRest(side, cut, true);
    };
    return cut.childIsHead ? enter(OutSide{*this}) : enter(InSide{*this});
}

/// An edge of least slack among those, or of a slack of at most 1, whichever comes first.
NetworkSimplex::Candidate NetworkSimplex::leastSlack(Cut const &cut)
{
    const auto find = [&](auto const &side) {
        return cut.subtreeIsSmall ? searchSubtree(side, cut, 1) : searchRest(side, cut, false);
    };
    return cut.childIsHead ? find(OutSide{*this}) : find(InSide{*this});
}

/// Walks through the subtree in the order that decides between equal slacks. Ends at the first
/// slack that is good enough: none is lower than 0, and the walk meets the first one first.
template <class Side>
NetworkSimplex::Candidate NetworkSimplex::searchSubtree(Side const &side, Cut const &cut,
                                                        int goodEnough)
{
    inside += 2;
    outside += 2;
    Candidate best{std::numeric_limits<int>::max(), none};

    VertexId *lastSeen = smallSide.data();
    const auto enter = [&](VertexId v) {
        tree.mark(v) = inside;
        *lastSeen++ = v;
    };
    // Answers whether the edge, which isn't in the tree, is good enough to end the walk.
    const auto look = [&](VertexId v, Incident const &e) {
        if (isBelow(e.far, cut.child))
            return false;
        const int edgeSlack = side.slack(v, e);
        if (edgeSlack >= best.slack && best.edge != none)
            return false;
        best = {edgeSlack, e.edge};
        return edgeSlack <= goodEnough;
    };
    // A leaf of the tree is looked at in passing: it has nothing below it.
    const auto lookAtLeaf = [&](VertexId leaf) {
        enter(leaf);
        for (Incident const &e : side.along().at(leaf))
            if (e.edge != tree.parentEdge(leaf) && look(leaf, e))
                return true;
        return false;
    };
    std::size_t depth = 0;
    Visit *visit = path.data();
    // Field by field: a whole Visit would be built elsewhere and copied, at twice the cost of a
    // step.
    const auto begin = [&](VertexId v) {
        enter(v);
        const auto along = side.along().at(v);
        visit->vertex = v;
        visit->against = none;
        visit->nextAlong = along.first;
        visit->endAlong = along.last;
    };
    begin(cut.child);
    for (;;) {
        const VertexId v = visit->vertex;
        const EdgeId parentEdge = tree.parentEdge(v);
        VertexId child = none;
        for (; child == none && visit->nextAlong != visit->endAlong; ++visit->nextAlong) {
            Incident const &e = *visit->nextAlong;
            if (tree.parentEdge(e.far) != e.edge) {
                if (e.edge != parentEdge && look(v, e))
                    return best;
            } else if (tree.size(e.far) != 1) {
                child = e.far;
            } else if (lookAtLeaf(e.far)) {
                return best;
            }
        }
        while (child == none) {
            const EdgeId e =
                visit->against == none ? side.firstAgainst(v) : side.nextAgainst(visit->against);
            if (e == none)
                break;
            visit->against = e;
            if (e == parentEdge)
                continue;
            const VertexId below = side.nearOfTreeEdge(e);
            if (tree.size(below) != 1)
                child = below;
            else if (lookAtLeaf(below))
                return best;
        }
        if (child != none) {
            if (++depth == path.size())
                path.resize(2 * depth);
            visit = &path[depth];
            begin(child);
        } else if (depth == 0) {
            break;
        } else {
            visit = &path[--depth];
        }
    }
    smallSideSize = static_cast<unsigned>(lastSeen - smallSide.data());
    return best;
}

/// Looks at the cut from the other side, when that is the smaller one. Which of equal slacks the
/// walk through the subtree would have met first is found out afterwards.
template <class Side>
NetworkSimplex::Candidate NetworkSimplex::searchRest(Side const &side, Cut const &cut,
                                                     bool wantsFirst)
{
    collectRest(cut);
    ties.clear();
    int best = std::numeric_limits<int>::max();
    for (unsigned i = 0; i < smallSideSize; ++i) {
        const VertexId v = smallSide[i];
        for (Incident const &e : side.alongFromRest().at(v)) {
            // Tree edges other than the leaving one don't cross, and that one crosses the other
            // way.
            if (tree.mark(e.far) == outside)
                continue;
            const int edgeSlack = side.slackFromRest(v, e);
            if (edgeSlack < best) {
                best = edgeSlack;
                ties.clear();
            }
            if (edgeSlack == best)
                ties.push_back(e.edge);
        }
    }
    if (ties.empty())
        return {best, none};
    return {best, wantsFirst && ties.size() > 1 ? firstMet(side, cut, ties) : ties.front()};
}

/// Collects and marks the vertices that aren't in the subtree: those on the way from the cut up to
/// the root, and then all that hangs below them elsewhere.
void NetworkSimplex::collectRest(Cut const &cut)
{
    inside += 2;
    outside += 2;
    smallSideSize = 0;
    const auto enter = [this](VertexId v) {
        tree.mark(v) = outside;
        smallSide[smallSideSize++] = v;
    };
    const auto enterChildren = [&](VertexId v, EdgeId except) {
        const EdgeId parentEdge = tree.parentEdge(v);
        for (EdgeId e = tree.firstOut(v); e != none; e = tree.nextOut(e))
            if (e != parentEdge && e != except)
                enter(tree.head(e));
        for (EdgeId e = tree.firstIn(v); e != none; e = tree.nextIn(e))
            if (e != parentEdge && e != except)
                enter(tree.tail(e));
    };
    for (VertexId v = cut.parent; v != none; v = tree.parent(v))
        enter(v);
    const unsigned pathSize = smallSideSize;
    EdgeId alongPath = cut.edge;
    for (unsigned i = 0; i < pathSize; ++i) {
        enterChildren(smallSide[i], alongPath);
        alongPath = tree.parentEdge(smallSide[i]);
    }
    for (unsigned i = pathSize; i < smallSideSize; ++i)
        enterChildren(smallSide[i], none);
}

/// The one of several edges that the walk through the subtree would meet first.
///
/// At each vertex on the way from a candidate up to the root of the subtree, the branch that the
/// walk would take first is kept. From the root, these branches lead to the answer.
template <class Side>
NetworkSimplex::EdgeId NetworkSimplex::firstMet(Side const &side, Cut const &cut,
                                                std::vector<EdgeId> const &candidates)
{
    ++branchSearch;
    for (EdgeId candidate : candidates) {
        VertexId v = side.near(candidate);
        for (EdgeId edge = candidate;; edge = tree.parentEdge(v), v = tree.parent(v)) {
            const bool isAgainst = side.near(edge) != v;
            const Branch branch(branchSearch, isAgainst, isAgainst ? tree.age(edge) : edge, edge);
            Branch &first = firstBranch[v];
            const bool isNew = first.search != branchSearch;
            if (isNew || branch.comesBefore(first))
                first = branch;
            if (!isNew || v == cut.child)
                break;
        }
    }
    VertexId v = cut.child;
    while (tree.contains(firstBranch[v].edge))
        v = otherEnd(firstBranch[v].edge, v);
    return firstBranch[v].edge;
}

/// As isBelow(), for a vertex of which this search doesn't know the side. What is found out on the
/// way is kept for the same search.
bool NetworkSimplex::climbsTo(VertexId subtreeRoot, VertexId vertex)
{
    VertexId known = vertex;
    bool below = false;
    for (;; known = tree.parent(known)) {
        const unsigned mark = tree.mark(known);
        if (mark == inside || mark == outside) {
            below = mark == inside;
            break;
        }
        if (tree.size(known) >= tree.size(subtreeRoot))
            break;
    }
    for (VertexId v = vertex; v != known; v = tree.parent(v))
        tree.mark(v) = below ? inside : outside;
    return below;
}

} // namespace ZR::VOM::GUI::Graph
