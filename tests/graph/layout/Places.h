#pragma once

// Where nodes stand and where they go, for tests of the layout.

#include "support/ViewGraph.h"

#include <QPoint>
#include <QRect>
#include <QScrollBar>
#include <QTest>

namespace ZR::VOM::GUI {

constexpr int gap = 8; // The view's xSpacing and ySpacing.

inline int leftOf(Graph::Node const &node)
{
    return node.toX - node.width / 2;
}

inline int topOf(Graph::Node const &node)
{
    return node.toY - node.height / 2;
}

inline void place(ViewGraph &graph, unsigned node, int x, int y)
{
    QVERIFY(graph.view.setPos(graph.obj(node), x, y, false));
}

inline QPoint posOf(ViewGraph const &graph, unsigned node)
{
    return {graph.node(node).x, graph.node(node).y};
}

inline QPoint targetOf(ViewGraph const &graph, unsigned node)
{
    return {graph.node(node).toX, graph.node(node).toY};
}

/// Lets the view look at a part of its content, without a paint.
inline void lookAt(ViewGraph &graph, QRect const &part)
{
    graph.view.resize(part.size());
    graph.view.horizontalScrollBar()->setRange(-100000, 100000);
    graph.view.horizontalScrollBar()->setValue(part.left());
    graph.view.verticalScrollBar()->setRange(-100000, 100000);
    graph.view.verticalScrollBar()->setValue(part.top());
}

/// Makes all nodes visible where the user can't see them, so that the next layout has no anchor.
inline void showOutOfSight(ViewGraph &graph)
{
    graph.showWithoutLayout();
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        place(graph, i, 100000, 100000);
}

} // namespace ZR::VOM::GUI
