#include "zrVOMGUI/graph/layout/SpanningTree.h"

#include <cassert>
#include <utility>

namespace ZR::VOM::GUI::Graph {

SpanningTree::SpanningTree(unsigned numVertices, unsigned numEdges)
    : vertices(numVertices)
    , edges(numEdges)
{
    edgeOfPlace.reserve(numVertices);
}

void SpanningTree::append(unsigned edge, Ends ends)
{
    edges[edge].place = static_cast<unsigned>(edgeOfPlace.size());
    edgeOfPlace.push_back(edge);
    enterLists(edge, ends);
}

std::vector<unsigned> SpanningTree::root()
{
    assert(edgeOfPlace.size() + 1 == vertices.size() && "The graph isn't connected.");
    std::vector<unsigned> order;
    order.reserve(vertices.size());
    order.push_back(0);
    for (std::size_t i = 0; i < order.size(); ++i) {
        const unsigned v = order[i];
        const auto adopt = [&](unsigned edge, unsigned child) {
            if (edge == vertices[v].parentEdge)
                return;
            vertices[child].parent = v;
            vertices[child].parentEdge = edge;
            order.push_back(child);
        };
        for (unsigned e = firstOut(v); e != none; e = nextOut(e))
            adopt(e, head(e));
        for (unsigned e = firstIn(v); e != none; e = nextIn(e))
            adopt(e, tail(e));
    }
    for (std::size_t i = order.size(); i-- > 1;)
        vertices[vertices[order[i]].parent].size += vertices[order[i]].size;
    return order;
}

void SpanningTree::exchange(unsigned leaving, unsigned entering, Ends enteringEnds, unsigned lower)
{
    const Ends leavingEnds = edges[leaving].ends;
    const bool tailWasBelow = parentEdge(leavingEnds.tail) == leaving;
    const unsigned oldRoot = tailWasBelow ? leavingEnds.tail : leavingEnds.head;
    const unsigned oldParent = tailWasBelow ? leavingEnds.head : leavingEnds.tail;
    const unsigned upper = lower == enteringEnds.tail ? enteringEnds.head : enteringEnds.tail;
    const unsigned movedSize = size(oldRoot);
    const unsigned ancestor = commonAncestor(oldParent, upper);
    resizeUpTo(oldParent, ancestor, 0u - movedSize);
    resizeUpTo(upper, ancestor, movedSize);

    // Turns the path from the new end up to the old root of the subtree upside down.
    unsigned v = lower;
    unsigned newParent = upper, newParentEdge = entering;
    unsigned sizeBelow = 0; // Of what hung below v on the path.
    for (bool done = false; !done;) {
        done = v == oldRoot;
        Vertex &vertex = vertices[v];
        const unsigned next = std::exchange(vertex.parent, newParent);
        newParent = v;
        newParentEdge = std::exchange(vertex.parentEdge, newParentEdge);
        sizeBelow = std::exchange(vertex.size, movedSize - sizeBelow);
        v = next;
    }

    edges[entering].place = std::exchange(edges[leaving].place, none);
    edgeOfPlace[edges[entering].place] = entering;
    leaveLists(leaving);
    enterLists(entering, enteringEnds);
}

bool SpanningTree::isLeaf(unsigned vertex) const
{
    List const &in = vertices[vertex].in;
    List const &out = vertices[vertex].out;
    return in.first == in.last && out.first == out.last && (in.first == none || out.first == none);
}

void SpanningTree::resizeUpTo(unsigned from, unsigned ancestor, unsigned growth)
{
    for (unsigned v = from; v != ancestor; v = vertices[v].parent)
        vertices[v].size += growth;
}

void SpanningTree::enterLists(unsigned edge, Ends ends)
{
    edges[edge].ends = ends;
    edges[edge].age = nextAge++;
    pushBack<&Edge::out>(vertices[ends.tail].out, edge);
    pushBack<&Edge::in>(vertices[ends.head].in, edge);
}

void SpanningTree::leaveLists(unsigned edge)
{
    erase<&Edge::out>(vertices[tail(edge)].out, edge);
    erase<&Edge::in>(vertices[head(edge)].in, edge);
}

template <SpanningTree::Neighbours SpanningTree::Edge::*side>
void SpanningTree::pushBack(List &list, unsigned edge)
{
    Neighbours &own = edges[edge].*side;
    own.previous = list.last;
    own.next = none;
    if (list.last == none)
        list.first = edge;
    else
        (edges[list.last].*side).next = edge;
    list.last = edge;
}

template <SpanningTree::Neighbours SpanningTree::Edge::*side>
void SpanningTree::erase(List &list, unsigned edge)
{
    const Neighbours own = edges[edge].*side;
    if (own.previous == none)
        list.first = own.next;
    else
        (edges[own.previous].*side).next = own.next;
    if (own.next == none)
        list.last = own.previous;
    else
        (edges[own.next].*side).previous = own.previous;
}

} // namespace ZR::VOM::GUI::Graph
