#pragma once

#include "zrVOMGUI/graph/ObjectGraphView.h"
#include "zrVOMGUI/graph/private/Node.h"

#include <map>
#include <vector>

namespace ZR::VOM::GUI::Graph {

/// Holds a layout of the library against the literal one.
///
///     LayoutOracle oracle(view);           // takes down how things stand
///     view.layout();
///     QCOMPARE(oracle.difference(), QString());
///
/// The literal layout gets the addresses of the library's intermediate nodes: these are part of the
/// order from which the layout's choices descend, and differ from run to run.
class LayoutOracle {
public:
    explicit LayoutOracle(ObjectGraphView &graphView);

    /// The first difference between how the view stands now and what the literal layout makes of
    /// what was taken down; empty when there is none. `anchor` is the node that the layout held in
    /// place, if one was given; which nodes are visible is taken from the view now.
    QString difference(RefT<Node> const &anchor = {}) const;

private:
    struct LinkBefore {
        Node *to;
        unsigned count;
    };
    struct NodeBefore {
        RefT<Node> node;
        int x, y, fromX, fromY, toX, toY;
        std::vector<LinkBefore> links;
    };
    class Comparison;

    ObjectGraphView &view;
    std::vector<NodeBefore> nodes;
    int left, top, width, height; // What the user could see.
};

} // namespace ZR::VOM::GUI::Graph
