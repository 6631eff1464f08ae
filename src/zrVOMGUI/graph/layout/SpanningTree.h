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
/// ancestor and to refute most claims of descent at once, and an exchange changes them on two paths
/// only, while postorder numbers change in whole subtrees.
class SpanningTree {
public:
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();

    struct Ends {
        unsigned tail, head;
    };

    /// An empty tree.
    SpanningTree(unsigned numVertices, unsigned numEdges);

    /// Takes an edge in. For growing the tree, before root().
    void append(unsigned edge, Ends ends);
    /// Finds parents and sizes, once the tree spans the graph. Returns the vertices, each behind
    /// its parent.
    std::vector<unsigned> root();

    /// Puts `entering` in the place of `leaving`. The new edge joins the two sides that the old one
    /// joined; its end in the subtree below the old one is `lower`.
    void exchange(unsigned leaving, unsigned entering, Ends enteringEnds, unsigned lower);

    unsigned numVertices() const { return static_cast<unsigned>(vertices.size()); }
    unsigned parent(unsigned vertex) const { return vertices[vertex].parent; }
    unsigned parentEdge(unsigned vertex) const { return vertices[vertex].parentEdge; }
    unsigned size(unsigned vertex) const { return vertices[vertex].size; }
    bool contains(unsigned edge) const { return edges[edge].place != none; }
    /// When the edge entered, compared with others: lists of tree edges are in this order.
    unsigned age(unsigned edge) const { return edges[edge].age; }
    /// The edge's place in the list of all tree edges; an entering edge takes that of the leaving
    /// one.
    unsigned place(unsigned edge) const { return edges[edge].place; }
    unsigned edgeAt(unsigned place) const { return edgeOfPlace[place]; }
    std::vector<unsigned> const &allEdges() const { return edgeOfPlace; }

    /// The ends of a tree edge.
    unsigned tail(unsigned edge) const { return edges[edge].ends.tail; }
    unsigned head(unsigned edge) const { return edges[edge].ends.head; }
    /// The tree edges that arrive at or leave from a vertex, oldest first.
    unsigned firstIn(unsigned vertex) const { return vertices[vertex].in.first; }
    unsigned nextIn(unsigned edge) const { return edges[edge].in.next; }
    unsigned firstOut(unsigned vertex) const { return vertices[vertex].out.first; }
    unsigned nextOut(unsigned edge) const { return edges[edge].out.next; }
    /// Whether the vertex has one tree edge at most.
    bool isLeaf(unsigned vertex) const;

    /// A place for a walk to note something at a vertex it looks at anyway.
    unsigned &mark(unsigned vertex) { return vertices[vertex].mark; }

    unsigned commonAncestor(unsigned a, unsigned b) const
    {
        while (a != b) {
            if (vertices[a].size <= vertices[b].size)
                a = vertices[a].parent;
            else
                b = vertices[b].parent;
        }
        return a;
    }

private:
    struct List {
        unsigned first = none, last = none;
    };
    struct Neighbours {
        unsigned previous = none, next = none;
    };
    struct Vertex {
        unsigned parent = none;
        unsigned parentEdge = none;
        unsigned size = 1;
        unsigned mark = none;
        List in, out;
    };
    struct Edge {
        Ends ends{none, none};
        unsigned place = none;
        unsigned age = 0;
        Neighbours in, out;
    };

    void enterLists(unsigned edge, Ends ends);
    void leaveLists(unsigned edge);
    template <Neighbours Edge::*side>
    void pushBack(List &list, unsigned edge);
    template <Neighbours Edge::*side>
    void erase(List &list, unsigned edge);
    void resizeUpTo(unsigned from, unsigned ancestor, unsigned growth);

    std::vector<Vertex> vertices;
    std::vector<Edge> edges;
    std::vector<unsigned> edgeOfPlace;
    unsigned nextAge = 0;
};

} // namespace ZR::VOM::GUI::Graph
