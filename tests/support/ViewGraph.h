#pragma once

#include "support/GraphModel.h"
#include "support/GraphViewAccess.h"
#include "support/NumberedGraph.h"

namespace ZR::VOM::GUI {

/// A view on a made graph. Its nodes are numbered in the order of their addresses, from which all
/// choices of the layout descend: equal graphs are laid out equally.
class ViewGraph {
public:
    using Node = Graph::Node;

    /// All nodes hidden. The links are given from tail to head.
    explicit ViewGraph(unsigned numNodes, std::vector<NumberedGraph::Link> const &links = {});
    explicit ViewGraph(NumberedGraph const &graph);

    void fill(std::vector<NumberedGraph::Link> const &links);
    /// Makes all nodes visible, which lays them out.
    void show() { view.setVisible(model.objs, true); }
    void show(unsigned node) { view.setVisible({obj(node)}, true); }
    void hide(unsigned node) { view.setVisible({obj(node)}, false); }
    /// Makes all nodes visible and leaves them where they are.
    void showWithoutLayout();

    RefT<VOM::Object> const &obj(unsigned node) const { return model.objs[node]; }
    Node &node(unsigned index) const { return *nodes[index]; }
    RefT<Node> ref(unsigned index) const { return RefT<Node>(node(index)); }
    unsigned numNodes() const { return static_cast<unsigned>(nodes.size()); }
    /// The chain of a link, from its from end; empty when it is direct or isn't there.
    std::vector<RefT<Node>> chain(unsigned from, unsigned to) const;
    /// How many references the link stands for; 0 when there is none. Fails the running test when
    /// its two ends disagree.
    unsigned count(unsigned from, unsigned to) const;
    /// Lets the node measure as if its label had this size.
    void setTextSize(unsigned node, int width, int height) const;
    /// Lets the node have this width and the least height.
    void setWidth(unsigned node, int width) const;

    /// Where the last layout put the nodes of a single component, as text such as "0 1|2 *|3": from
    /// layer to layer, and from left to right. Intermediate nodes are stars at the end of their
    /// layer: their own places hang on their addresses.
    QString layers() const;
    /// All links as text, such as "0>1 0>2x3": from, to and the number of references.
    QString links() const;

    GraphModel model;
    ObjectGraphView view; // After the model: its nodes go first.

private:
    std::vector<PtrT<Node>> nodes;
};

} // namespace ZR::VOM::GUI
