#include "zrVOMGUI/graph/layout/FlatGraph.h"

namespace ZR::VOM::GUI::Graph {

void FlatGraph::buildIncidence()
{
    outBegin.assign(static_cast<std::size_t>(vertexCount) + 1, 0);
    inBegin.assign(vertexCount, 0);
    for (Edge const &edge : edges) {
        ++inBegin[edge.tail];
        ++outBegin[edge.head + 1];
    }
    // So far the numbers of edges that leave, and that arrive at the vertex before.
    for (VertexId v = 0; v < vertexCount; ++v) {
        inBegin[v] += outBegin[v];
        outBegin[v + 1] += inBegin[v];
    }
    incidents.resize(2 * edges.size());
    std::vector<unsigned> nextOut(outBegin.begin(), outBegin.end() - 1), nextIn(inBegin);
    for (EdgeId e = 0; e < edges.size(); ++e) {
        const auto [tail, head, weight, minLength] = edges[e];
        incidents[nextOut[tail]++] = {e, head, minLength};
        incidents[nextIn[head]++] = {e, tail, minLength};
    }
}

} // namespace ZR::VOM::GUI::Graph
