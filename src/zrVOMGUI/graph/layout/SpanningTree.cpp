#include "zrVOMGUI/graph/layout/SpanningTree.h"

#include <cassert>
#include <utility>

namespace ZR::VOM::GUI::Graph {

SpanningTree::SpanningTree(unsigned numVertices, unsigned numEdges,
                           std::vector<Edge> const &treeEdges)
    : vertices(numVertices)
    , nextOf(numVertices)
    , placeOfEdge(numEdges, none)
{
    assert(treeEdges.size() + 1 == numVertices && "The graph isn't connected.");
    places.reserve(treeEdges.size());
    for (Edge const &edge : treeEdges) {
        placeOfEdge[edge.id] = numPlaces();
        places.push_back({edge.id, nextAge++});
    }
    root(treeEdges);
}

/// Finds all parents and sizes, and lays the thread.
void SpanningTree::root(std::vector<Edge> const &treeEdges)
{
    struct Neighbour {
        unsigned edge, vertex;
    };
    std::vector<unsigned> beginOf(vertices.size() + 1, 0);
    for (Edge const &edge : treeEdges)
        for (unsigned end : edge.ends)
            ++beginOf[end];
    for (std::size_t v = 1; v < beginOf.size(); ++v)
        beginOf[v] += beginOf[v - 1];
    std::vector<Neighbour> neighbours(2 * treeEdges.size());
    for (Edge const &edge : treeEdges)
        for (int i : {0, 1})
            neighbours[--beginOf[edge.ends[i]]] = {edge.id, edge.ends[1 - i]};

    std::vector<unsigned> open{0};
    unsigned previous = 0;
    while (!open.empty()) {
        const unsigned v = open.back();
        open.pop_back();
        link(previous, v);
        previous = v;
        for (unsigned n = beginOf[v]; n < beginOf[v + 1]; ++n) {
            const auto [edge, vertex] = neighbours[n];
            if (edge == parentEdge(v))
                continue;
            vertices[vertex].parent = v;
            vertices[vertex].parentEdge = edge;
            open.push_back(vertex);
        }
    }
    link(previous, 0);

    for (unsigned v = 0; v < numVertices(); ++v)
        vertices[v].last = v;
    for (unsigned v = vertices[0].previous; v != 0; v = vertices[v].previous) {
        Vertex &above = vertices[parent(v)];
        above.subtreeSize += size(v);
        if (above.last == parent(v)) // Its last child comes first here.
            above.last = vertices[v].last;
    }
}

void SpanningTree::exchange(Exchange const &exchange)
{
    const auto [leaving, child, entering, lower, upper] = exchange;
    const unsigned ancestor = commonAncestor(parent(child), upper);
    resizeUpTo(parent(child), ancestor, 0u - size(child));
    resizeUpTo(upper, ancestor, size(child));

    takeOutOfThread(child);
    const unsigned last = turnThread(lower, child);
    turnPath(exchange, last);
    putIntoThread(lower, last, upper);

    placeOfEdge[entering] = std::exchange(placeOfEdge[leaving], none);
    places[placeOfEdge[entering]] = {entering, nextAge++};
}

/// Turns the path from the new end up to the old root of the subtree upside down.
void SpanningTree::turnPath(Exchange const &exchange, unsigned last)
{
    const unsigned movedSize = size(exchange.child);
    unsigned newParent = exchange.upper, newParentEdge = exchange.entering;
    unsigned sizeBelow = 0; // Of what hung below v on the path.
    unsigned v = exchange.lower;
    for (bool done = false; !done;) {
        done = v == exchange.child;
        Vertex &vertex = vertices[v];
        const unsigned above = std::exchange(vertex.parent, newParent);
        newParent = v;
        newParentEdge = std::exchange(vertex.parentEdge, newParentEdge);
        sizeBelow = std::exchange(vertex.subtreeSize, movedSize - sizeBelow);
        vertex.last = last;
        v = above;
    }
}

void SpanningTree::link(unsigned vertex, unsigned next)
{
    nextOf[vertex] = next;
    vertices[next].previous = vertex;
}

void SpanningTree::takeOutOfThread(unsigned subtree)
{
    const unsigned before = vertices[subtree].previous;
    replaceLast(parent(subtree), vertices[subtree].last, before);
    link(before, nextOutside(subtree));
}

/// Changes the order of a subtree that was taken out to the preorder from another one of its
/// vertices, and returns the last one. Parents and last vertices are still the old ones.
unsigned SpanningTree::turnThread(unsigned lower, unsigned subtree)
{
    unsigned last = vertices[lower].last;
    // What comes before and behind the old subtree of `below`.
    unsigned before = vertices[lower].previous, behind = nextOf[last];
    for (unsigned below = lower; below != subtree;) {
        const unsigned above = parent(below);
        const unsigned end = vertices[above].last;
        const bool endsWithBelow = end == vertices[below].last;
        const unsigned beforeAbove = vertices[above].previous;
        const unsigned behindAbove = endsWithBelow ? behind : nextOf[end];
        link(last, above);
        if (!endsWithBelow)
            link(before, behind);
        last = endsWithBelow ? before : end;
        before = beforeAbove;
        behind = behindAbove;
        below = above;
    }
    return last;
}

/// Puts a stretch that was taken out behind the vertex that it hangs below now.
void SpanningTree::putIntoThread(unsigned first, unsigned last, unsigned above)
{
    const unsigned behind = nextOf[above];
    const bool wasLeaf = vertices[above].last == above;
    link(above, first);
    link(last, behind);
    if (wasLeaf)
        replaceLast(above, above, last);
}

/// Where a vertex and its ancestors have this last vertex of their subtrees, gives them another
/// one.
void SpanningTree::replaceLast(unsigned from, unsigned oldLast, unsigned newLast)
{
    for (unsigned v = from; v != none && vertices[v].last == oldLast; v = parent(v))
        vertices[v].last = newLast;
}

void SpanningTree::resizeUpTo(unsigned from, unsigned ancestor, unsigned growth)
{
    for (unsigned v = from; v != ancestor; v = parent(v))
        vertices[v].subtreeSize += growth;
}

} // namespace ZR::VOM::GUI::Graph
