#pragma once

// Not for hosts.

#include <limits>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// A spanning tree of a graph's edges, rooted at vertex 0, that can exchange an edge at a cost of
/// the tree paths concerned.
///
/// Keeps for each vertex its parent and the size of its subtree, in place of postorder numbers:
/// sizes grow strictly from a vertex to its ancestors, which is enough to find a last common
/// ancestor, and an exchange changes them on two paths only, while postorder numbers change in
/// whole subtrees. A thread runs through all vertices in preorder and from the last one back to the
/// root, so that the vertices of a subtree, and those of the rest, are a stretch of it. An exchange
/// changes it at the vertices of the path that it turns upside down.
class SpanningTree {
public:
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();

    /// An edge and its ends, in any order.
    struct Edge {
        unsigned id;
        unsigned ends[2];
    };
    /// The exchange of a tree edge for another edge that joins the two sides which the old one
    /// joined: each edge with its end in the subtree below the old one, and the new edge's other
    /// end.
    struct Exchange {
        unsigned leaving, child;
        unsigned entering, lower, upper;
    };

    /// The tree of these edges, which are all that it takes, in the order of their entry. Edges of
    /// the graph have ids below numEdges.
    SpanningTree(unsigned numVertices, unsigned numEdges, std::vector<Edge> const &treeEdges);

    void exchange(Exchange const &exchange);

    unsigned numVertices() const { return static_cast<unsigned>(vertices.size()); }
    unsigned parent(unsigned vertex) const { return vertices[vertex].parent; }
    unsigned parentEdge(unsigned vertex) const { return vertices[vertex].parentEdge; }
    /// The number of vertices in the subtree, the vertex among them.
    unsigned size(unsigned vertex) const { return vertices[vertex].subtreeSize; }
    /// The vertex behind another one in preorder; the root behind the last one of all.
    unsigned next(unsigned vertex) const { return nextOf[vertex]; }
    unsigned previous(unsigned vertex) const { return vertices[vertex].previous; }
    /// The vertex behind the whole subtree of another one.
    unsigned nextOutside(unsigned vertex) const { return nextOf[vertices[vertex].last]; }
    bool contains(unsigned edge) const { return placeOfEdge[edge] != none; }
    /// When a tree edge entered, compared with others.
    unsigned age(unsigned edge) const { return places[placeOfEdge[edge]].age; }
    /// The edge's place in the list of all tree edges; an entering edge takes that of the leaving
    /// one.
    unsigned place(unsigned edge) const { return placeOfEdge[edge]; }
    unsigned edgeAt(unsigned place) const { return places[place].edge; }
    unsigned numPlaces() const { return static_cast<unsigned>(places.size()); }

    unsigned commonAncestor(unsigned a, unsigned b) const
    {
        while (a != b) {
            if (size(a) <= size(b))
                a = parent(a);
            else
                b = parent(b);
        }
        return a;
    }

private:
    struct Vertex {
        unsigned parent = none;
        unsigned parentEdge = none;
        unsigned subtreeSize = 1;
        unsigned last = 0; // Of the subtree, in preorder.
        unsigned previous = 0;
    };
    struct Place {
        unsigned edge;
        unsigned age;
    };

    void root(std::vector<Edge> const &treeEdges);
    void link(unsigned vertex, unsigned next);
    void takeOutOfThread(unsigned subtree);
    unsigned turnThread(unsigned lower, unsigned subtree);
    void putIntoThread(unsigned first, unsigned last, unsigned above);
    void replaceLast(unsigned from, unsigned oldLast, unsigned newLast);
    void turnPath(Exchange const &exchange, unsigned last);
    void resizeUpTo(unsigned from, unsigned ancestor, unsigned growth);

    std::vector<Vertex> vertices;
    std::vector<unsigned> nextOf; // By vertex; a walk along the thread looks at nothing else.
    std::vector<unsigned> placeOfEdge;
    std::vector<Place> places;
    unsigned nextAge = 0;
};

} // namespace ZR::VOM::GUI::Graph
