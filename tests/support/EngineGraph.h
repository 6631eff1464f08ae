#pragma once

#include "support/NumberedGraph.h"
#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/layout/Hierarchy.h"

#include <QString>

#include <vector>

namespace ZR::VOM::GUI::Graph {

/// A graph of nodes without a model, which the engine lays out without a widget: for graphs of
/// a size at which the model would take most of the time.
class EngineGraph {
public:
    /// All nodes are 40 wide and 20 high.
    explicit EngineGraph(NumberedGraph const &graph);
    ~EngineGraph();
    EngineGraph(EngineGraph const &) = delete;
    EngineGraph &operator=(EngineGraph const &) = delete;

    void setSize(unsigned node, int width, int height) const;
    /// Lays out all components, each from 0 on. Returns what is wrong with the drawing; empty when
    /// all is well.
    QString layout();
    /// Goes no further than to the order of layers: for shapes of which the coordinates take time
    /// by the square of the size.
    QString layoutLayers();

    Node &node(unsigned index) const { return *nodes[index]; }
    unsigned numNodes() const { return static_cast<unsigned>(nodes.size()); }

    LayoutFigures figures; ///< Of the last layout.

private:
    QString layout(bool withCoordinates);

    ObjectGraphView view;          // Nodes can't be without one.
    std::vector<RefT<Node>> nodes; // In address order.
};

} // namespace ZR::VOM::GUI::Graph
