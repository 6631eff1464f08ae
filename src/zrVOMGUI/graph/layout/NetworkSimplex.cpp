#include "zrVOMGUI/graph/layout/NetworkSimplex.h"

#include <algorithm>
#include <cassert>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace ZR::VOM::GUI::Graph {

/// A binary min-heap by slack alone: equal slacks come out in the order that the sifting gives.
class NetworkSimplex::SlackHeap {
public:
    bool empty() const { return heap.empty(); }

    void push(Candidate candidate)
    {
        std::size_t place = heap.size();
        heap.push_back(candidate);
        while (place != 0) {
            const std::size_t parent = (place - 1) / 2;
            if (heap[parent].slack <= candidate.slack)
                break;
            heap[place] = heap[parent];
            place = parent;
        }
        heap[place] = candidate;
    }

    Candidate pop()
    {
        const Candidate top = heap.front();
        const Candidate last = heap.back();
        heap.pop_back();
        if (!heap.empty())
            siftDown(last);
        return top;
    }

private:
    void siftDown(Candidate candidate)
    {
        std::size_t place = 0;
        for (;;) {
            std::size_t child = 2 * place + 1;
            if (child >= heap.size())
                break;
            if (child + 1 < heap.size() && heap[child + 1].slack < heap[child].slack)
                ++child;
            if (heap[child].slack >= candidate.slack)
                break;
            heap[place] = heap[child];
            place = child;
        }
        heap[place] = candidate;
    }

    std::vector<Candidate> heap;
};

/// A queue of a fixed number of places.
class NetworkSimplex::RingBuffer {
public:
    explicit RingBuffer(std::size_t capacity) : places(capacity) {}

    bool empty() const { return count == 0; }

    void push(VertexId vertex)
    {
        if (count == places.size())
            throw std::length_error("Ring buffer full!");
        places[writeIndex] = vertex;
        writeIndex = (writeIndex + 1) % places.size();
        ++count;
    }

    VertexId pop()
    {
        if (count == 0)
            throw std::length_error("Ring buffer empty!");
        const VertexId vertex = places[readIndex];
        readIndex = (readIndex + 1) % places.size();
        --count;
        return vertex;
    }

private:
    std::vector<VertexId> places;
    std::size_t count = 0, readIndex = 0, writeIndex = 0;
};

NetworkSimplex::VertexId NetworkSimplex::addVertex()
{
    vertices.emplace_back();
    return static_cast<VertexId>(vertices.size() - 1);
}

NetworkSimplex::EdgeId NetworkSimplex::addEdge(VertexId tail, VertexId head, std::uint16_t weight,
                                               std::uint16_t minLength)
{
    const auto id = static_cast<EdgeId>(edges.size());
    Edge edge;
    edge.tail = tail;
    edge.head = head;
    edge.weight = weight;
    edge.minLength = minLength;
    edges.push_back(edge);
    vertices[tail].outEdges.push_back(id);
    vertices[head].inEdges.push_back(id);
    return id;
}

void NetworkSimplex::solve()
{
    if (vertices.empty())
        return;
    initRanks();
    feasibleTree();
    for (EdgeId leaving = leaveEdge(); leaving != none; leaving = leaveEdge())
        update(leaving, enterEdge(leaving));
    balance();
}

int NetworkSimplex::lowestRank() const
{
    int lowest = std::numeric_limits<int>::max();
    for (Vertex const &vertex : vertices)
        lowest = std::min(lowest, vertex.rank);
    return lowest;
}

int NetworkSimplex::slack(Edge const &edge) const
{
    return vertices[edge.head].rank - vertices[edge.tail].rank - edge.minLength;
}

NetworkSimplex::VertexId NetworkSimplex::otherEnd(EdgeId edge, VertexId vertex) const
{
    return edges[edge].tail == vertex ? edges[edge].head : edges[edge].tail;
}

bool NetworkSimplex::isInSubtree(VertexId vertex, VertexId root) const
{
    const unsigned lim = vertices[vertex].lim;
    return vertices[root].low <= lim && lim <= vertices[root].lim;
}

bool NetworkSimplex::tailIsChild(Edge const &edge) const
{
    return vertices[edge.tail].lim < vertices[edge.head].lim;
}

/// Ranks by the longest path from the sources.
void NetworkSimplex::initRanks()
{
    RingBuffer ready(vertices.size());
    std::vector<std::size_t> numOpenIn(vertices.size());
    for (VertexId v = 0; v < vertices.size(); ++v) {
        numOpenIn[v] = vertices[v].inEdges.size();
        if (numOpenIn[v] == 0)
            ready.push(v);
    }
    while (!ready.empty()) {
        Vertex &vertex = vertices[ready.pop()];
        vertex.rank = 0;
        for (EdgeId e : vertex.inEdges)
            vertex.rank =
                std::max(vertex.rank, edges[e].minLength + vertices[edges[e].tail].rank);
        for (EdgeId e : vertex.outEdges)
            if (--numOpenIn[edges[e].head] == 0)
                ready.push(edges[e].head);
    }
}

/// Grows a spanning tree of tight edges from the first tight edge, always by the edge of least slack.
void NetworkSimplex::feasibleTree()
{
    SlackHeap heap;
    std::vector<bool> inTree(vertices.size(), false);
    const auto firstTight = std::find_if(edges.begin(), edges.end(),
                                         [this](Edge const &edge) { return slack(edge) == 0; });
    if (firstTight != edges.end())
        heap.push({0, static_cast<EdgeId>(firstTight - edges.begin())});
    while (!heap.empty()) {
        // The slack was right when pushed and still is: the end outside the tree hasn't moved since.
        const auto [edgeSlack, e] = heap.pop();
        const VertexId tail = edges[e].tail;
        const VertexId head = edges[e].head;
        if (inTree[tail] && inTree[head])
            continue;
        if (inTree[tail])
            vertices[head].rank -= edgeSlack;
        else
            vertices[tail].rank += edgeSlack;
        addTreeEdge(e);
        if (!inTree[tail])
            pushNonTreeEdges(heap, tail);
        if (!inTree[head])
            pushNonTreeEdges(heap, head);
        inTree[tail] = inTree[head] = true;
    }
    setRange(0, none, 1);
    setCutValues();
}

void NetworkSimplex::pushNonTreeEdges(SlackHeap &heap, VertexId vertex) const
{
    for (auto const *list : {&vertices[vertex].outEdges, &vertices[vertex].inEdges})
        for (EdgeId e : *list)
            if (edges[e].treeIndex == none)
                heap.push({slack(edges[e]), e});
}

void NetworkSimplex::addTreeEdge(EdgeId edge)
{
    edges[edge].treeIndex = static_cast<unsigned>(treeEdges.size());
    treeEdges.push_back(edge);
    vertices[edges[edge].tail].treeOut.push_back(edge);
    vertices[edges[edge].head].treeIn.push_back(edge);
}

/// Numbers the subtree of `root`, whose parent edge is `parent`, from `low` on. A loop over an
/// explicit stack, as all walks here: the depth follows the longest path of the graph.
void NetworkSimplex::setRange(VertexId root, EdgeId parent, unsigned low)
{
    struct Visit {
        VertexId vertex;
        std::size_t nextEdge; // Over treeOut and then treeIn.
    };
    std::vector<Visit> path;
    unsigned next = low;
    const auto begin = [&](VertexId v, EdgeId parentEdge) {
        vertices[v].parentEdge = parentEdge;
        vertices[v].low = next;
        path.push_back({v, 0});
    };
    begin(root, parent);
    while (!path.empty()) {
        Visit &visit = path.back();
        Vertex &vertex = vertices[visit.vertex];
        const std::size_t numOut = vertex.treeOut.size();
        if (visit.nextEdge == numOut + vertex.treeIn.size()) {
            vertex.lim = next++;
            path.pop_back();
            continue;
        }
        const std::size_t i = visit.nextEdge++;
        const EdgeId e = i < numOut ? vertex.treeOut[i] : vertex.treeIn[i - numOut];
        if (e != vertex.parentEdge)
            begin(otherEnd(e, visit.vertex), e);
    }
}

/// Computes every cut value after those of the edges below it: children come before their parents in
/// the order of lim.
void NetworkSimplex::setCutValues()
{
    std::vector<VertexId> byLim(vertices.size());
    for (VertexId v = 0; v < vertices.size(); ++v)
        byLim[vertices[v].lim - 1] = v;
    for (VertexId v : byLim)
        if (vertices[v].parentEdge != none)
            computeCutValue(vertices[v].parentEdge);
}

/// From the edges at the child's end alone, given the cut values of the tree edges below it.
void NetworkSimplex::computeCutValue(EdgeId edge)
{
    const bool childIsHead = vertices[edges[edge].tail].parentEdge != edge;
    const VertexId child = childIsHead ? edges[edge].head : edges[edge].tail;
    int sum = 0;
    for (auto const *list : {&vertices[child].outEdges, &vertices[child].inEdges}) {
        for (EdgeId id : *list) {
            Edge const &f = edges[id];
            const bool same = (childIsHead ? f.tail : f.head) == child;
            int term;
            if (isInSubtree(otherEnd(id, child), child)) {
                term = (f.treeIndex != none ? f.cutValue : 0) - f.weight;
                sum += same ? term : -term;
            } else {
                term = f.weight;
                sum += same ? -term : term;
            }
        }
    }
    edges[edge].cutValue = sum;
}

/// The first of the most negative cut values, in the order of treeEdges from the second call on.
NetworkSimplex::EdgeId NetworkSimplex::leaveEdge()
{
    EdgeId best = none;
    const auto scan = [&](unsigned end) {
        for (; searchCursor < end; ++searchCursor) {
            const EdgeId e = treeEdges[searchCursor];
            if (edges[e].cutValue < 0 && (best == none || edges[e].cutValue < edges[best].cutValue))
                best = e;
        }
    };
    const unsigned start = searchCursor;
    scan(static_cast<unsigned>(treeEdges.size()));
    if (start != 0) {
        searchCursor = 0;
        scan(start);
    }
    return best;
}

/// The edge of least slack among those that join the two sides of the tree in the direction opposite
/// to the leaving edge; the first found of equal ones.
NetworkSimplex::EdgeId NetworkSimplex::enterEdge(EdgeId leaving) const
{
    Edge const &edge = edges[leaving];
    return tailIsChild(edge) ? searchIn(edge.tail) : searchOut(edge.head);
}

NetworkSimplex::EdgeId NetworkSimplex::searchOut(VertexId root) const
{
    struct Out {
        static std::vector<EdgeId> const &crossing(Vertex const &v) { return v.outEdges; }
        static std::vector<EdgeId> const &treeBack(Vertex const &v) { return v.treeIn; }
        static VertexId far(Edge const &e) { return e.head; }
        static VertexId back(Edge const &e) { return e.tail; }
    };
    return search(root, Out());
}

NetworkSimplex::EdgeId NetworkSimplex::searchIn(VertexId root) const
{
    struct In {
        static std::vector<EdgeId> const &crossing(Vertex const &v) { return v.inEdges; }
        static std::vector<EdgeId> const &treeBack(Vertex const &v) { return v.treeOut; }
        static VertexId far(Edge const &e) { return e.tail; }
        static VertexId back(Edge const &e) { return e.head; }
    };
    return search(root, In());
}

/// Looks through the subtree of `root` for the edge of least slack that leaves it on one side. A
/// slack of 0 ends the walk over tree edges against that side, but not the one along it.
template <class Side>
NetworkSimplex::EdgeId NetworkSimplex::search(VertexId root, Side const &side) const
{
    struct Visit {
        VertexId vertex;
        std::size_t nextEdge; // Over the crossing edges and then the tree edges back.
    };
    EdgeId best = none;
    int bestSlack = std::numeric_limits<int>::max();
    std::vector<Visit> path{{root, 0}};
    while (!path.empty()) {
        Visit &visit = path.back();
        Vertex const &vertex = vertices[visit.vertex];
        auto const &crossing = side.crossing(vertex);
        auto const &treeBack = side.treeBack(vertex);
        const std::size_t i = visit.nextEdge++;
        if (i < crossing.size()) {
            const EdgeId e = crossing[i];
            const VertexId far = side.far(edges[e]);
            if (edges[e].treeIndex != none) {
                if (vertices[far].lim < vertex.lim)
                    path.push_back({far, 0});
            } else if (!isInSubtree(far, root)) {
                const int edgeSlack = slack(edges[e]);
                if (edgeSlack < bestSlack || best == none) {
                    best = e;
                    bestSlack = edgeSlack;
                }
            }
        } else if (i < crossing.size() + treeBack.size() && bestSlack >= 1) {
            const VertexId back = side.back(edges[treeBack[i - crossing.size()]]);
            if (vertices[back].lim < vertex.lim)
                path.push_back({back, 0});
        } else {
            path.pop_back();
        }
    }
    return best;
}

void NetworkSimplex::update(EdgeId leaving, EdgeId entering)
{
    const int delta = slack(edges[entering]);
    if (delta > 0)
        makeTight(leaving, delta);

    const int cutValue = edges[leaving].cutValue;
    const VertexId tail = edges[entering].tail;
    const VertexId head = edges[entering].head;
    const VertexId ancestor = treeUpdate(tail, head, cutValue, true);
    if (treeUpdate(head, tail, cutValue, false) != ancestor) {
        std::cerr << "DEBUG: ZR::GUI::ObjectGraphView::Hierarchy::NetworkSimplex::update():\n"
                  << "  mismatched last common ancestor treeupdate\n";
    }
    edges[entering].cutValue = -cutValue;
    edges[leaving].cutValue = 0;
    exchangeTreeEdges(leaving, entering);
    setRange(ancestor, vertices[ancestor].parentEdge, vertices[ancestor].low);
}

/// Shifts one side of the tree by `delta`: a single vertex where one end of the leaving edge has no
/// other tree edge, else the side below the edge.
void NetworkSimplex::makeTight(EdgeId leaving, int delta)
{
    Edge const &edge = edges[leaving];
    const auto numTreeEdges = [this](VertexId v) {
        return vertices[v].treeIn.size() + vertices[v].treeOut.size();
    };
    if (numTreeEdges(edge.tail) == 1)
        rerank(edge.tail, delta);
    else if (numTreeEdges(edge.head) == 1 || !tailIsChild(edge))
        rerank(edge.head, -delta);
    else
        rerank(edge.tail, delta);
}

/// Subtracts `delta` from the ranks of the subtree of `root`.
void NetworkSimplex::rerank(VertexId root, int delta)
{
    std::vector<VertexId> open{root};
    while (!open.empty()) {
        const VertexId v = open.back();
        open.pop_back();
        Vertex &vertex = vertices[v];
        vertex.rank -= delta;
        for (auto const *list : {&vertex.treeOut, &vertex.treeIn})
            for (EdgeId e : *list)
                if (e != vertex.parentEdge)
                    open.push_back(otherEnd(e, v));
    }
}

/// Adds to the cut values on the tree path from `from` up to the last common ancestor with `to`, and
/// returns that ancestor.
NetworkSimplex::VertexId NetworkSimplex::treeUpdate(VertexId from, VertexId to, int cutValue,
                                                    bool direction)
{
    VertexId v = from;
    while (!isInSubtree(to, v)) {
        Edge &edge = edges[vertices[v].parentEdge];
        const bool adds = v == edge.tail ? direction : !direction;
        edge.cutValue += adds ? cutValue : -cutValue;
        v = tailIsChild(edge) ? edge.head : edge.tail;
    }
    return v;
}

void NetworkSimplex::exchangeTreeEdges(EdgeId leaving, EdgeId entering)
{
    Edge &out = edges[leaving];
    Edge &in = edges[entering];
    in.treeIndex = std::exchange(out.treeIndex, none);
    treeEdges[in.treeIndex] = entering;
    const auto erase = [](std::vector<EdgeId> &list, EdgeId edge) {
        list.erase(std::find(list.begin(), list.end(), edge));
    };
    erase(vertices[out.tail].treeOut, leaving);
    erase(vertices[out.head].treeIn, leaving);
    vertices[in.tail].treeOut.push_back(entering);
    vertices[in.head].treeIn.push_back(entering);
}

/// Spreads slack over edges of cut value 0, which costs nothing: each side goes half of the way that
/// it could. The tree stays as it is.
void NetworkSimplex::balance()
{
    for (EdgeId e : treeEdges) {
        Edge const &edge = edges[e];
        if (edge.cutValue != 0)
            continue;
        const EdgeId found = enterEdge(e);
        if (found == none)
            continue;
        const int delta = slack(edges[found]);
        if (delta <= 1)
            continue;
        if (tailIsChild(edge))
            rerank(edge.tail, delta / 2);
        else
            rerank(edge.head, -(delta / 2));
    }
}

} // namespace ZR::VOM::GUI::Graph
