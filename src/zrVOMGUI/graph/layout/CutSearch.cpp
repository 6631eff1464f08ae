#include "zrVOMGUI/graph/layout/CutSearch.h"

#include <algorithm>
#include <cstdlib>

namespace ZR::VOM::GUI::Graph {

namespace {

/// A cut is next to another one when at most this part of its smaller side lies between them.
constexpr unsigned nearPart = 4;
/// Ranks are settled before what is missing in them could overflow.
constexpr int maxPendingShift = 1 << 29;

} // namespace

TreeCut::TreeCut(FlatGraph const &graph, SpanningTree const &tree, FlatGraph::EdgeId treeEdge)
    : edge(treeEdge)
    , childIsHead(tree.parentEdge(graph.edges[treeEdge].head) == treeEdge)
{
    child = childIsHead ? graph.edges[edge].head : graph.edges[edge].tail;
    parent = graph.otherEnd(edge, child);
}

CutSearch::CutSearch(FlatGraph const &ofGraph, SpanningTree const &ofTree,
                     std::vector<int> &ofRanks)
    : graph(ofGraph)
    , tree(ofTree)
    , ranks(ofRanks)
    , markOf(ofGraph.vertexCount, 0)
    , collected(ofGraph.vertexCount)
    , firstBranch(ofGraph.vertexCount)
{
}

CutSearch::Candidate CutSearch::firstOfLeastSlack(TreeCut const &cut)
{
    const int slack = leastSlack(cut);
    if (ties.empty())
        return {slack, none};
    return {slack, ties.size() == 1 ? ties.front() : firstMet(cut)};
}

/// Goes over to the cut. The edges of least slack are the ties afterwards.
int CutSearch::leastSlack(TreeCut const &cut)
{
    ties.clear();
    const Between between = whatIsBetween(cut);
    if (between.num == 0) {
        settleRanks();
        return searchAnew(cut);
    }
    if (!isFollowing)
        beginFollowing(willRunOut(cut, between));
    crossOver(cut, between);
    const int lowest = slacks.lowest();
    if (lowest == Tournament::absent)
        return lowest;
    slacks.appendAllLowest(ties);
    return lowest + (runsOut ? -pendingShift : pendingShift);
}

unsigned CutSearch::smallerSize(TreeCut const &cut) const
{
    return std::min(tree.size(cut.child), graph.vertexCount - tree.size(cut.child));
}

void CutSearch::stretch(int delta)
{
    // Edges looked for run from the head's side to the tail's.
    const int shift = runsOut ? delta : -delta;
    if (isFollowing) {
        pendingShift += shift;
        return;
    }
    for (unsigned i = 0; i < numCollected; ++i)
        ranks[collected[i]] += shift;
}

void CutSearch::exchanged(EdgeId entering)
{
    bridge = entering;
    if (isFollowing)
        slacks.set(entering, Tournament::absent);
}

void CutSearch::settleRanks()
{
    if (!isFollowing)
        return;
    int *const rankOf = ranks.data();
    for (VertexId v = 0; v < graph.vertexCount; ++v)
        rankOf[v] += isMarked(v) ? pendingShift : 0;
    endFollowing();
}

// Anew.

int CutSearch::searchAnew(TreeCut const &cut)
{
    ++mark;
    const unsigned subtreeSize = tree.size(cut.child);
    const bool subtreeIsSmaller = smallerSize(cut) == subtreeSize;
    if (subtreeIsSmaller)
        collect(cut.child, subtreeSize, none);
    else
        collect(tree.nextOutside(cut.child), graph.vertexCount - subtreeSize, none);
    unsigned *const marks = markOf.data();
    for (unsigned i = 0; i < numCollected; ++i)
        marks[collected[i]] = mark;
    runsOut = cut.childIsHead == subtreeIsSmaller;
    bridge = cut.edge;
    return lookAtCollected();
}

/// Collects so many vertices along the thread, without those of one subtree.
void CutSearch::collect(VertexId first, unsigned num, VertexId skippedSubtree)
{
    VertexId v = first;
    for (unsigned i = 0; i < num; ++i) {
        if (v == skippedSubtree)
            v = tree.nextOutside(v);
        collected[i] = v;
        v = tree.next(v);
    }
    numCollected = num;
}

int CutSearch::lookAtCollected()
{
    return runsOut ? lookAtCollectedAlong<true>() : lookAtCollectedAlong<false>();
}

template <bool out>
int CutSearch::lookAtCollectedAlong()
{
    int least = Tournament::absent;
    unsigned const *const marks = markOf.data();
    int const *const rankOf = ranks.data();
    const unsigned ownMark = mark;
    for (unsigned i = 0; i < numCollected; ++i) {
        const VertexId v = collected[i];
        const int rank = rankOf[v];
        for (auto const &e : out ? graph.out(v) : graph.in(v)) {
            const int length = out ? rankOf[e.far] - rank : rank - rankOf[e.far];
            const int slack = marks[e.far] == ownMark ? Tournament::absent : length - e.minLength;
            if (slack > least || slack == Tournament::absent)
                continue;
            if (slack < least)
                ties.clear();
            least = slack;
            ties.push_back(e.edge);
        }
    }
    return least;
}

// By following.

/// What lies between the present cut and another one, where they are near each other and the
/// present one can be followed to it.
CutSearch::Between CutSearch::whatIsBetween(TreeCut const &cut) const
{
    if (bridge == none || bridge == cut.edge || std::abs(pendingShift) > maxPendingShift)
        return {};
    const VertexId present = TreeCut(graph, tree, bridge).child;
    const bool isSmaller = tree.size(cut.child) < tree.size(present);
    const VertexId smaller = isSmaller ? cut.child : present;
    const VertexId larger = isSmaller ? present : cut.child;
    const unsigned ifWithin = tree.size(larger) - tree.size(smaller);
    const unsigned ifApart = graph.vertexCount - tree.size(larger) - tree.size(smaller);
    const unsigned limit = smallerSize(cut) / nearPart;
    if (ifWithin > limit && ifApart > limit)
        return {};
    Between between;
    const Kinship kin = kinship(smaller, larger, limit);
    if (kin == Kinship::Within && ifWithin <= limit)
        between = {larger, ifWithin, smaller, isSmaller ? cut.parent : cut.child};
    else if (kin == Kinship::Apart && ifApart <= limit)
        between = {tree.nextOutside(larger), ifApart, smaller, cut.parent};
    if (isFollowing && between.num != 0 && willRunOut(cut, between) != runsOut)
        return {};
    return between;
}

/// How the subtree of a vertex lies to that of another one that isn't smaller. Known after so many
/// steps up when no more vertices than that lie between the two.
CutSearch::Kinship CutSearch::kinship(VertexId smaller, VertexId larger, unsigned maxSteps) const
{
    VertexId above = smaller;
    for (unsigned step = 0; step <= maxSteps; ++step, above = tree.parent(above)) {
        if (above == larger)
            return Kinship::Within;
        if (tree.size(above) >= tree.size(larger))
            return Kinship::Apart;
    }
    return Kinship::Unknown;
}

/// Whether the edges looked for run out of the marked side once what is between has changed sides.
bool CutSearch::willRunOut(TreeCut const &cut, Between const &between) const
{
    const VertexId farEnd = graph.otherEnd(cut.edge, between.nearEnd);
    return graph.edges[cut.edge].head == (isMarked(between.nearEnd) ? farEnd : between.nearEnd);
}

/// Makes the index of what crosses the present cut, of which one side has just been collected.
void CutSearch::beginFollowing(bool outOfMarked)
{
    if (slacks.numPlaces() == 0)
        slacks.assign(graph.edges.size(), Tournament::absent);
    isFollowing = true;
    runsOut = outOfMarked;
    for (unsigned i = 0; i < numCollected; ++i) {
        const VertexId v = collected[i];
        for (auto const &e : (runsOut ? graph.out(v) : graph.in(v)))
            if (!isMarked(e.far))
                setSlack(e.edge, runsOut ? rawSlack(v, e.far, e.minLength)
                                         : rawSlack(e.far, v, e.minLength));
    }
    // It runs in this direction or in the other one, but doesn't take part.
    setSlack(bridge, Tournament::absent);
}

void CutSearch::endFollowing()
{
    for (EdgeId e : everCrossed)
        slacks.set(e, Tournament::absent);
    everCrossed.clear();
    pendingShift = 0;
    isFollowing = false;
    bridge = none;
}

/// Moves the vertices between the present cut and the new one to the other side.
void CutSearch::crossOver(TreeCut const &cut, Between const &between)
{
    const bool toMarked = !isMarked(between.nearEnd);
    collect(between.first, between.num, between.skippedSubtree);
    for (unsigned i = 0; i < numCollected; ++i) {
        const VertexId v = collected[i];
        markOf[v] = toMarked ? mark : mark - 1;
        ranks[v] += toMarked ? -pendingShift : pendingShift;
    }
    for (unsigned i = 0; i < numCollected; ++i) {
        const VertexId v = collected[i];
        for (auto const &e : graph.out(v))
            noteWhetherCrossing(e.edge, v, e.far, e.minLength);
        for (auto const &e : graph.in(v))
            noteWhetherCrossing(e.edge, e.far, v, e.minLength);
    }
    bridge = cut.edge;
}

void CutSearch::noteWhetherCrossing(EdgeId edge, VertexId tail, VertexId head, int minLength)
{
    const bool crosses = isMarked(tail) == runsOut && isMarked(head) != runsOut;
    setSlack(edge, crosses ? rawSlack(tail, head, minLength) : Tournament::absent);
}

void CutSearch::setSlack(EdgeId edge, int slack)
{
    if (slack != Tournament::absent && slacks.value(edge) == Tournament::absent)
        everCrossed.push_back(edge);
    slacks.set(edge, slack);
}

// Of several.

/// The one of the ties that the walk through the subtree would meet first.
///
/// At each vertex on the way from a tie up to the root of the subtree, the branch that the walk
/// would take first is kept. From the root, these branches lead to the answer.
CutSearch::EdgeId CutSearch::firstMet(TreeCut const &cut)
{
    const auto nearEnd = [&](EdgeId e) {
        return cut.childIsHead ? graph.edges[e].tail : graph.edges[e].head;
    };
    ++branchSearch;
    for (EdgeId tie : ties) {
        VertexId v = nearEnd(tie);
        for (EdgeId edge = tie;; edge = tree.parentEdge(v), v = tree.parent(v)) {
            const bool isAgainst = nearEnd(edge) != v;
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
        v = graph.otherEnd(firstBranch[v].edge, v);
    return firstBranch[v].edge;
}

} // namespace ZR::VOM::GUI::Graph
