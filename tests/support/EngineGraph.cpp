#include "support/EngineGraph.h"

#include "zrVOMGUI/graph/layout/Components.h"
#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <algorithm>

namespace ZR::VOM::GUI::Graph {

namespace {

constexpr int spacing = 8;
constexpr int stationHeight = 10;

/// What is wrong with one component's drawing.
class Inspection {
public:
    explicit Inspection(Hierarchy const &drawnHierarchy)
        : hierarchy(drawnHierarchy)
    {
        inspectLayers();
        inspectLinks();
    }

    void inspectPlaces(Bounds const &bounds)
    {
        int top = 0; // Of the space that the next layer has for itself.
        for (auto const &layer : hierarchy.getLayers()) {
            Node const *left = nullptr;
            int height = 0;
            for (unsigned index : layer) {
                Node const &placed = node(index);
                if (placed.y != top)
                    note("a node stands at another height than its layer", placed.rank);
                if (left)
                    inspectGap(*left, placed);
                inspectBounds(placed, bounds);
                height = std::max(height, placed.height);
                left = &placed;
            }
            top += height + spacing;
        }
    }

    QString const &getResult() const { return result; }

private:
    Node &node(unsigned index) const { return *hierarchy.getNodes()[index]; }

    void inspectLayers()
    {
        std::size_t numPlaced = 0;
        int rank = 0;
        for (auto const &layer : hierarchy.getLayers()) {
            if (layer.empty())
                note("a layer is empty", rank);
            unsigned order = 0;
            for (unsigned index : layer) {
                Node const &placed = node(index);
                if (placed.rank != rank || placed.order != order || placed.index != index)
                    note("a node isn't where its layer has it", rank);
                ++order;
            }
            numPlaced += order;
            ++rank;
        }
        if (numPlaced != hierarchy.getNodes().size())
            note("not every node is in a layer", rank);
    }

    /// Distances are kept modulo 65,536.
    void inspectGap(Node const &left, Node const &right)
    {
        if (right.x - left.x < ((left.width + right.width) / 2 + spacing) % 65536)
            note("two neighbours are too close", left.rank);
    }

    void inspectBounds(Node const &placed, Bounds const &bounds)
    {
        const Bounds box = boundsOf(placed);
        if (box.left < bounds.left || box.top < bounds.top || box.right > bounds.right ||
            box.bottom > bounds.bottom)
            note("a node is out of bounds", placed.rank);
    }

    void inspectLinks()
    {
        for (Hierarchy::Link link : hierarchy.getLinks())
            if (node(link.to).rank != node(link.from).rank + 1)
                note("a piece of a link doesn't lead to the next layer", node(link.from).rank);
    }

    void note(char const *what, int rank)
    {
        if (result.isEmpty())
            result = QString("layer %1: ").arg(rank) + what;
    }

    Hierarchy const &hierarchy;
    QString result;
};

} // namespace

EngineGraph::EngineGraph(NumberedGraph const &graph)
{
    nodes.reserve(graph.numNodes);
    for (unsigned i = 0; i < graph.numNodes; ++i)
        nodes.emplace_back(new Node(view, {}));
    std::sort(nodes.begin(), nodes.end());
    for (unsigned i = 0; i < graph.numNodes; ++i)
        setSize(i, 40, 20);
    for (auto const &[tail, head] : graph.links)
        addLink(node(tail), node(head), 1);
}

/// Chains go first: the graph's own nodes take their links along.
EngineGraph::~EngineGraph()
{
    for (RefT<Node> const &node : nodes)
        unsplitNode(*node);
}

void EngineGraph::setSize(unsigned index, int width, int height) const
{
    node(index).textWidth = width;
    node(index).textHeight = height;
}

QString EngineGraph::layout()
{
    return layout(true);
}

QString EngineGraph::layoutLayers()
{
    return layout(false);
}

QString EngineGraph::layout(bool withCoordinates)
{
    const Geometry geometry{spacing, spacing, [](Node &measured) {
                                measured.width = measured.textWidth;
                                measured.height = std::max(measured.textHeight, stationHeight);
                            }};
    figures = {};
    std::vector<Node *> visible;
    for (RefT<Node> const &node : nodes) {
        unsplitNode(*node);
        visible.push_back(node.get());
    }
    QString result;
    for (std::vector<Node *> &component : findComponents(visible)) {
        Hierarchy hierarchy(geometry, figures, std::move(component));
        hierarchy.assignRanks();
        hierarchy.orderLayers();
        Inspection inspection(hierarchy);
        if (withCoordinates)
            inspection.inspectPlaces(hierarchy.assignCoordinates());
        if (result.isEmpty())
            result = inspection.getResult();
        hierarchy.revertLinks();
        ++figures.components;
    }
    return result;
}

} // namespace ZR::VOM::GUI::Graph
