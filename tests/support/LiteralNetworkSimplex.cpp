#include "support/LiteralNetworkSimplex.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace ZR::VOM::GUI::Graph {

namespace {

/// A binary min-heap in an array, which compares slacks alone.
class SlackHeap {
public:
    struct Item {
        int slack;
        unsigned edge;
    };

    bool empty() const { return items.empty(); }

    void push(Item item)
    {
        std::size_t i = items.size();
        items.push_back(item);
        while (i > 0 && items[(i - 1) / 2].slack > items[i].slack) {
            std::swap(items[(i - 1) / 2], items[i]);
            i = (i - 1) / 2;
        }
    }

    Item pop()
    {
        const Item top = items[0];
        items[0] = items.back();
        items.pop_back();
        for (std::size_t i = 0;;) {
            std::size_t least = i;
            for (std::size_t child : {2 * i + 1, 2 * i + 2})
                if (child < items.size() && items[child].slack < items[least].slack)
                    least = child;
            if (least == i)
                return top;
            std::swap(items[i], items[least]);
            i = least;
        }
    }

private:
    std::vector<Item> items;
};

class RingBuffer {
public:
    explicit RingBuffer(std::size_t capacity)
        : places(capacity)
    {
    }

    bool empty() const { return count == 0; }

    void push(unsigned value)
    {
        if (count == places.size())
            throw std::length_error("Ring buffer full!");
        places[writeIndex] = value;
        writeIndex = (writeIndex + 1) % places.size();
        ++count;
    }

    unsigned pop()
    {
        if (count == 0)
            throw std::length_error("Ring buffer empty!");
        const unsigned value = places[readIndex];
        readIndex = (readIndex + 1) % places.size();
        --count;
        return value;
    }

private:
    std::vector<unsigned> places;
    std::size_t count = 0, readIndex = 0, writeIndex = 0;
};

} // namespace

/// What one search for an entering edge knows.
struct LiteralNetworkSimplex::Search {
    unsigned low, lim; // Of the subtree that the edge is to leave.
    EdgeId best = none;
    int bestSlack = std::numeric_limits<int>::max();

    bool isInside(Vertex const &vertex) const { return low <= vertex.lim && vertex.lim <= lim; }
    void offer(EdgeId edge, int slack)
    {
        if (slack < bestSlack || best == none) {
            best = edge;
            bestSlack = slack;
        }
    }
};

LiteralNetworkSimplex::VertexId LiteralNetworkSimplex::addVertex()
{
    Vertex vertex;
    vertex.index = static_cast<unsigned>(vertices.size());
    vertices.push_back(vertex);
    return vertex.index;
}

LiteralNetworkSimplex::EdgeId LiteralNetworkSimplex::addEdge(VertexId tail, VertexId head,
                                                             std::uint16_t weight,
                                                             std::uint16_t minLength)
{
    Edge edge;
    edge.id = static_cast<unsigned>(edges.size());
    edge.tail = tail;
    edge.head = head;
    edge.weight = weight;
    edge.minLength = minLength;
    edges.push_back(edge);
    vertices[tail].outEdges.push_back(edge.id);
    vertices[head].inEdges.push_back(edge.id);
    return edge.id;
}

void LiteralNetworkSimplex::solve()
{
    initRanks();
    feasibleTree();
    for (;;) {
        const EdgeId leaving = leaveEdge();
        if (leaving == none)
            break;
        const EdgeId entering = enterEdge(leaving);
        pivots.push_back({leaving, entering});
        update(leaving, entering);
    }
    balance();
}

int LiteralNetworkSimplex::lowestRank() const
{
    int lowest = std::numeric_limits<int>::max();
    for (Vertex const &vertex : vertices)
        lowest = std::min(lowest, vertex.rank);
    return lowest;
}

int LiteralNetworkSimplex::slack(EdgeId edge) const
{
    Edge const &e = edges[edge];
    return vertices[e.head].rank - vertices[e.tail].rank - e.minLength;
}

long long LiteralNetworkSimplex::cost() const
{
    long long sum = 0;
    for (Edge const &e : edges)
        sum += static_cast<long long>(e.weight) * (vertices[e.head].rank - vertices[e.tail].rank);
    return sum;
}

int LiteralNetworkSimplex::floodedCutValue(EdgeId treeEdge) const
{
    std::vector<bool> onTailSide(vertices.size(), false);
    onTailSide[edges[treeEdge].tail] = true;
    for (bool grown = true; grown;) {
        grown = false;
        for (EdgeId id : treeEdges) {
            Edge const &e = edges[id];
            if (id != treeEdge && onTailSide[e.tail] != onTailSide[e.head]) {
                onTailSide[e.tail] = onTailSide[e.head] = true;
                grown = true;
            }
        }
    }
    int sum = 0;
    for (Edge const &e : edges)
        if (onTailSide[e.tail] != onTailSide[e.head])
            sum += onTailSide[e.tail] ? e.weight : -e.weight;
    return sum;
}

void LiteralNetworkSimplex::initRanks()
{
    RingBuffer ready(vertices.size());
    std::vector<std::size_t> remaining(vertices.size());
    for (Vertex const &v : vertices) {
        remaining[v.index] = v.inEdges.size();
        if (remaining[v.index] == 0)
            ready.push(v.index);
    }
    while (!ready.empty()) {
        Vertex &v = vertices[ready.pop()];
        v.rank = 0;
        for (EdgeId e : v.inEdges) {
            const int least = edges[e].minLength + vertices[edges[e].tail].rank;
            if (least > v.rank)
                v.rank = least;
        }
        for (EdgeId e : v.outEdges) {
            const VertexId head = edges[e].head;
            if (--remaining[head] == 0)
                ready.push(head);
        }
    }
}

void LiteralNetworkSimplex::feasibleTree()
{
    SlackHeap heap;
    std::vector<bool> inTree(vertices.size(), false);
    for (Edge const &e : edges) {
        if (slack(e.id) == 0) {
            heap.push({0, e.id});
            break;
        }
    }
    const auto pushEdgesOf = [&](Vertex const &v) {
        for (EdgeId e : v.outEdges)
            if (!isInTree(e))
                heap.push({slack(e), e});
        for (EdgeId e : v.inEdges)
            if (!isInTree(e))
                heap.push({slack(e), e});
    };
    while (!heap.empty()) {
        const SlackHeap::Item item = heap.pop();
        Edge &e = edges[item.edge];
        if (inTree[e.tail] && inTree[e.head])
            continue;
        if (inTree[e.tail])
            vertices[e.head].rank -= item.slack;
        else
            vertices[e.tail].rank += item.slack;
        e.treeIndex = static_cast<unsigned>(treeEdges.size());
        treeEdges.push_back(e.id);
        vertices[e.tail].treeOut.push_back(e.id);
        vertices[e.head].treeIn.push_back(e.id);
        if (!inTree[e.tail])
            pushEdgesOf(vertices[e.tail]);
        if (!inTree[e.head])
            pushEdgesOf(vertices[e.head]);
        inTree[e.tail] = true;
        inTree[e.head] = true;
    }
    setRange(0, none, 1);
    setCutValues(0, none);
}

unsigned LiteralNetworkSimplex::setRange(VertexId v, EdgeId parent, unsigned low)
{
    vertices[v].parentEdge = parent;
    vertices[v].low = low;
    unsigned n = low;
    for (EdgeId e : vertices[v].treeOut)
        if (e != parent)
            n = setRange(edges[e].head, e, n) + 1;
    for (EdgeId e : vertices[v].treeIn)
        if (e != parent)
            n = setRange(edges[e].tail, e, n) + 1;
    vertices[v].lim = n;
    return n;
}

void LiteralNetworkSimplex::setCutValues(VertexId v, EdgeId parent)
{
    for (EdgeId e : vertices[v].treeOut)
        if (e != parent)
            setCutValues(edges[e].head, e);
    for (EdgeId e : vertices[v].treeIn)
        if (e != parent)
            setCutValues(edges[e].tail, e);
    if (parent != none)
        computeCutValue(parent);
}

void LiteralNetworkSimplex::computeCutValue(EdgeId edge)
{
    const bool childIsHead = vertices[edges[edge].tail].parentEdge != edge;
    Vertex const &child = vertices[childIsHead ? edges[edge].head : edges[edge].tail];
    int sum = 0;
    const auto add = [&](EdgeId id) {
        Edge const &f = edges[id];
        const VertexId other = f.tail == child.index ? f.head : f.tail;
        const bool same = (childIsHead ? f.tail : f.head) == child.index;
        const unsigned lim = vertices[other].lim;
        const bool isInside = child.low <= lim && lim <= child.lim;
        if (isInside) {
            const int term = (isInTree(id) ? f.cutValue : 0) - f.weight;
            sum += same ? term : -term;
        } else {
            sum += same ? -f.weight : f.weight;
        }
    };
    for (EdgeId f : child.outEdges)
        add(f);
    for (EdgeId f : child.inEdges)
        add(f);
    edges[edge].cutValue = sum;
}

LiteralNetworkSimplex::EdgeId LiteralNetworkSimplex::leaveEdge()
{
    EdgeId candidate = none;
    const auto look = [&] {
        const EdgeId e = treeEdges[searchCursor];
        if (edges[e].cutValue < 0 &&
            (candidate == none || edges[e].cutValue < edges[candidate].cutValue))
            candidate = e;
    };
    const unsigned start = searchCursor;
    for (; searchCursor < treeEdges.size(); ++searchCursor)
        look();
    if (start != 0)
        for (searchCursor = 0; searchCursor < start; ++searchCursor)
            look();
    return candidate;
}

LiteralNetworkSimplex::EdgeId LiteralNetworkSimplex::enterEdge(EdgeId leaving) const
{
    const VertexId tail = edges[leaving].tail;
    const VertexId head = edges[leaving].head;
    const bool headIsBelow = vertices[tail].lim >= vertices[head].lim;
    const VertexId root = headIsBelow ? head : tail;
    Search search;
    search.low = vertices[root].low;
    search.lim = vertices[root].lim;
    if (headIsBelow)
        searchOut(root, search);
    else
        searchIn(root, search);
    return search.best;
}

void LiteralNetworkSimplex::searchOut(VertexId v, Search &search) const
{
    for (EdgeId f : vertices[v].outEdges) {
        Vertex const &head = vertices[edges[f].head];
        if (!isInTree(f)) {
            if (!search.isInside(head))
                search.offer(f, slack(f));
        } else if (head.lim < vertices[v].lim) {
            searchOut(head.index, search);
        }
    }
    for (EdgeId f : vertices[v].treeIn) {
        if (search.bestSlack < 1)
            break;
        Vertex const &tail = vertices[edges[f].tail];
        if (tail.lim < vertices[v].lim)
            searchOut(tail.index, search);
    }
}

void LiteralNetworkSimplex::searchIn(VertexId v, Search &search) const
{
    for (EdgeId f : vertices[v].inEdges) {
        Vertex const &tail = vertices[edges[f].tail];
        if (!isInTree(f)) {
            if (!search.isInside(tail))
                search.offer(f, slack(f));
        } else if (tail.lim < vertices[v].lim) {
            searchIn(tail.index, search);
        }
    }
    for (EdgeId f : vertices[v].treeOut) {
        if (search.bestSlack < 1)
            break;
        Vertex const &head = vertices[edges[f].head];
        if (head.lim < vertices[v].lim)
            searchIn(head.index, search);
    }
}

void LiteralNetworkSimplex::update(EdgeId leaving, EdgeId entering)
{
    Edge &e = edges[leaving];
    Edge &f = edges[entering];
    const int delta = slack(entering);
    if (delta > 0) {
        const auto numTreeEdges = [this](VertexId v) {
            return vertices[v].treeIn.size() + vertices[v].treeOut.size();
        };
        if (numTreeEdges(e.tail) == 1)
            rerank(e.tail, delta);
        else if (numTreeEdges(e.head) == 1 || vertices[e.tail].lim >= vertices[e.head].lim)
            rerank(e.head, -delta);
        else
            rerank(e.tail, delta);
    }
    const int cutValue = e.cutValue;
    const VertexId a = treeUpdate(f.tail, f.head, cutValue, true);
    const VertexId b = treeUpdate(f.head, f.tail, cutValue, false);
    if (a != b) {
        std::cerr << "DEBUG: ZR::GUI::ObjectGraphView::Hierarchy::NetworkSimplex::update():\n"
                     "  mismatched last common ancestor treeupdate\n";
    }
    f.cutValue = -cutValue;
    e.cutValue = 0;
    exchangeTreeEdges(leaving, entering);
    setRange(a, vertices[a].parentEdge, vertices[a].low);
}

void LiteralNetworkSimplex::rerank(VertexId v, int delta)
{
    vertices[v].rank -= delta;
    for (EdgeId e : vertices[v].treeOut)
        if (e != vertices[v].parentEdge)
            rerank(edges[e].head, delta);
    for (EdgeId e : vertices[v].treeIn)
        if (e != vertices[v].parentEdge)
            rerank(edges[e].tail, delta);
}

LiteralNetworkSimplex::VertexId LiteralNetworkSimplex::treeUpdate(VertexId v, VertexId w,
                                                                  int cutValue, bool direction)
{
    while (vertices[w].lim < vertices[v].low || vertices[v].lim < vertices[w].lim) {
        Edge &g = edges[vertices[v].parentEdge];
        const bool adds = v == g.tail ? direction : !direction;
        if (adds)
            g.cutValue += cutValue;
        else
            g.cutValue -= cutValue;
        v = vertices[g.tail].lim > vertices[g.head].lim ? g.tail : g.head;
    }
    return v;
}

void LiteralNetworkSimplex::exchangeTreeEdges(EdgeId leaving, EdgeId entering)
{
    Edge &e = edges[leaving];
    Edge &f = edges[entering];
    f.treeIndex = e.treeIndex;
    treeEdges[f.treeIndex] = entering;
    e.treeIndex = none;
    const auto eraseFrom = [leaving](std::vector<EdgeId> &list) {
        list.erase(std::find(list.begin(), list.end(), leaving));
    };
    eraseFrom(vertices[e.tail].treeOut);
    eraseFrom(vertices[e.head].treeIn);
    vertices[f.tail].treeOut.push_back(entering);
    vertices[f.head].treeIn.push_back(entering);
}

void LiteralNetworkSimplex::balance()
{
    for (EdgeId id : treeEdges) {
        Edge const &e = edges[id];
        if (e.cutValue != 0)
            continue;
        const EdgeId found = enterEdge(id);
        if (found == none)
            continue;
        const int delta = slack(found);
        if (delta <= 1)
            continue;
        const int half = delta / 2;
        if (vertices[e.tail].lim >= vertices[e.head].lim)
            rerank(e.head, -half);
        else
            rerank(e.tail, half);
    }
}

} // namespace ZR::VOM::GUI::Graph
