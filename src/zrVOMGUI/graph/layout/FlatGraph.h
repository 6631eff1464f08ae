#pragma once

// Not for hosts.

#include <cstdint>
#include <limits>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// A directed graph by index, as the network simplex solves it: vertices and edges count from 0,
/// and all that a walk needs of the edges at a vertex lies side by side.
class FlatGraph {
public:
    using VertexId = unsigned;
    using EdgeId = unsigned;
    static constexpr unsigned none = std::numeric_limits<unsigned>::max();

    struct Edge {
        VertexId tail, head;
        std::uint16_t weight;
        std::uint16_t minLength;
    };

    /// An edge as one of its ends sees it.
    struct Incident {
        EdgeId edge;
        VertexId far;
        int minLength;
    };

    class Incidents {
    public:
        Incidents(Incident const *first, Incident const *last)
            : from(first)
            , to(last)
        {
        }
        Incident const *begin() const { return from; }
        Incident const *end() const { return to; }
        unsigned size() const { return static_cast<unsigned>(to - from); }

    private:
        Incident const *from, *to;
    };

    /// Makes out(), in() and all() show the edges.
    void buildIncidence();

    /// The edges at a vertex, in the order of their ids: those that leave it, those that arrive,
    /// and the ones behind the others.
    Incidents out(VertexId vertex) const
    {
        return {incidents.data() + outBegin[vertex], incidents.data() + inBegin[vertex]};
    }
    Incidents in(VertexId vertex) const
    {
        return {incidents.data() + inBegin[vertex], incidents.data() + outBegin[vertex + 1]};
    }
    Incidents all(VertexId vertex) const
    {
        return {incidents.data() + outBegin[vertex], incidents.data() + outBegin[vertex + 1]};
    }

    VertexId otherEnd(EdgeId edge, VertexId vertex) const
    {
        return edges[edge].tail ^ edges[edge].head ^ vertex;
    }

    unsigned vertexCount = 0;
    std::vector<Edge> edges;

private:
    std::vector<Incident> incidents;
    std::vector<unsigned> outBegin, inBegin; // By vertex; one more at the end of the former.
};

} // namespace ZR::VOM::GUI::Graph
