// Where the network simplex starts from: first ranks, and a spanning tree of tight edges.

#include "zrVOMGUI/graph/layout/NetworkSimplex.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>

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
    explicit RingBuffer(std::size_t capacity)
        : places(capacity)
    {
    }

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

/// Ranks by the longest path from the sources.
void NetworkSimplex::initRanks()
{
    ranks.assign(graph.vertexCount, std::numeric_limits<int>::min());
    RingBuffer ready(graph.vertexCount);
    std::vector<unsigned> numOpenIn(graph.vertexCount);
    for (VertexId v = 0; v < graph.vertexCount; ++v) {
        numOpenIn[v] = graph.in(v).size();
        if (numOpenIn[v] == 0)
            ready.push(v);
    }
    while (!ready.empty()) {
        const VertexId v = ready.pop();
        int rank = 0;
        for (Incident const &in : graph.in(v))
            rank = std::max(rank, in.minLength + ranks[in.far]);
        ranks[v] = rank;
        for (Incident const &out : graph.out(v))
            if (--numOpenIn[out.far] == 0)
                ready.push(out.far);
    }
}

/// Grows a spanning tree of tight edges from the first tight edge, always by the edge of least
/// slack. Returns its edges in the order of their entry.
std::vector<NetworkSimplex::EdgeId> NetworkSimplex::growTree()
{
    std::vector<EdgeId> treeEdges;
    treeEdges.reserve(graph.vertexCount);
    SlackHeap heap;
    std::vector<bool> inTree(graph.vertexCount, false);
    std::vector<bool> isTreeEdge(graph.edges.size(), false);
    const auto pushNonTreeEdges = [&](VertexId vertex) {
        for (Incident const &incident : graph.all(vertex))
            if (!isTreeEdge[incident.edge])
                heap.push({slack(incident.edge), incident.edge});
    };
    for (EdgeId e = 0; e < graph.edges.size() && heap.empty(); ++e)
        if (slack(e) == 0)
            heap.push({0, e});
    while (!heap.empty()) {
        // The slack was right when pushed and still is: the end outside the tree hasn't moved
        // since.
        const auto [edgeSlack, e] = heap.pop();
        const auto [tail, head, weight, minLength] = graph.edges[e];
        if (inTree[tail] && inTree[head])
            continue;
        if (inTree[tail])
            ranks[head] -= edgeSlack;
        else
            ranks[tail] += edgeSlack;
        treeEdges.push_back(e);
        isTreeEdge[e] = true;
        if (!inTree[tail])
            pushNonTreeEdges(tail);
        if (!inTree[head])
            pushNonTreeEdges(head);
        inTree[tail] = inTree[head] = true;
    }
    return treeEdges;
}

/// Numbers the vertices as a walk through the tree meets them, so that what later walks look at
/// lies close together. No choice depends on these numbers but that of the root, which stays 0.
void NetworkSimplex::renumberVertices(std::vector<EdgeId> const &treeEdges)
{
    std::vector<unsigned> beginOf(static_cast<std::size_t>(graph.vertexCount) + 1, 0);
    for (EdgeId e : treeEdges) {
        ++beginOf[graph.edges[e].tail];
        ++beginOf[graph.edges[e].head];
    }
    for (std::size_t v = 1; v <= graph.vertexCount; ++v)
        beginOf[v] += beginOf[v - 1];
    std::vector<VertexId> neighbours(2 * treeEdges.size());
    for (EdgeId e : treeEdges) {
        neighbours[--beginOf[graph.edges[e].tail]] = graph.edges[e].head;
        neighbours[--beginOf[graph.edges[e].head]] = graph.edges[e].tail;
    }

    numberOf.assign(graph.vertexCount, none);
    std::vector<int> newRanks(graph.vertexCount);
    std::vector<VertexId> open{0};
    VertexId next = 0;
    while (!open.empty()) {
        const VertexId v = open.back();
        open.pop_back();
        newRanks[next] = ranks[v];
        numberOf[v] = next++;
        for (unsigned i = beginOf[v]; i < beginOf[v + 1]; ++i)
            if (numberOf[neighbours[i]] == none)
                open.push_back(neighbours[i]);
    }
    assert(next == graph.vertexCount && "The graph isn't connected.");
    ranks = std::move(newRanks);
    for (auto &edge : graph.edges) {
        edge.tail = numberOf[edge.tail];
        edge.head = numberOf[edge.head];
    }
    graph.buildIncidence();
}

SpanningTree NetworkSimplex::plantTree(std::vector<EdgeId> const &treeEdges) const
{
    std::vector<SpanningTree::Edge> withEnds;
    withEnds.reserve(treeEdges.size());
    for (EdgeId e : treeEdges)
        withEnds.push_back({e, {graph.edges[e].tail, graph.edges[e].head}});
    return SpanningTree(graph.vertexCount, static_cast<unsigned>(graph.edges.size()), withEnds);
}

} // namespace ZR::VOM::GUI::Graph
