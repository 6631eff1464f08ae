#include "support/LayoutOracle.h"

#include "support/GraphViewAccess.h"
#include "support/LiteralLayout.h"

#include <QScrollBar>

#include <algorithm>
#include <sstream>
#include <string>

namespace ZR::VOM::GUI::Graph {

namespace {

std::uintptr_t addressOf(Node const &node)
{
    return reinterpret_cast<std::uintptr_t>(&node);
}

std::vector<Node *> chainBetween(Node &from, Node &to)
{
    std::vector<Node *> chain;
    const auto link = from.linkedOut.find(PtrT<Node>(to));
    if (link != from.linkedOut.end())
        forEachIntermediate(link->second, [&](Node &node) { chain.push_back(&node); });
    return chain;
}

} // namespace

LayoutOracle::LayoutOracle(ObjectGraphView &graphView)
    : view(graphView)
    , left(view.horizontalScrollBar()->value())
    , top(view.verticalScrollBar()->value())
    , width(view.width())
    , height(view.height())
{
    for (RefT<Node> const &node : GraphViewAccess::nodes(view)) {
        NodeBefore before{node,        node->x,   node->y,   node->fromX,
                          node->fromY, node->toX, node->toY, {}};
        for (auto const &[far, entry] : node->linkedOut)
            before.links.push_back({far.get(), entry.count});
        nodes.push_back(before);
    }
}

/// The literal layout of the nodes as they stood, and its comparison with the view.
class LayoutOracle::Comparison {
public:
    explicit Comparison(LayoutOracle const &layoutOracle)
        : oracle(layoutOracle)
    {
        ObjectGraphView &view = oracle.view;
        graph.xSpacing = GraphViewAccess::xSpacing(view);
        graph.ySpacing = GraphViewAccess::ySpacing(view);
        graph.intermediateHeight =
            GraphViewAccess::iconSize(view) +
            2 * (GraphViewAccess::iconSize(view) + GraphViewAccess::margin(view));
        graph.addressOf = [this](Literal::Node const &from, Literal::Node const &to,
                                 unsigned index) { return intermediateAddress(from, to, index); };
        copyNodes();
        copyLinks();
    }

    std::string run(RefT<Node> const &anchor)
    {
        const Literal::Figures figures = Literal::layout(graph, findAnchors(anchor));
        compareFigures(figures);
        for (std::size_t i = 0; i < oracle.nodes.size(); ++i) {
            const std::string name = "node " + std::to_string(i);
            comparePlaces(name, *oracle.nodes[i].node, graph.nodes[i]);
            compareLinks(name, *oracle.nodes[i].node, graph.nodes[i]);
        }
        return result;
    }

private:
    void copyNodes()
    {
        for (NodeBefore const &before : oracle.nodes) {
            Node &node = *before.node;
            Literal::Node &copy = graph.addNode(addressOf(node), node.width, node.height);
            copy.visible = node.visible;
            copy.x = before.x;
            copy.y = before.y;
            copy.fromX = before.fromX;
            copy.fromY = before.fromY;
            copy.toX = before.toX;
            copy.toY = before.toY;
            copies[&node] = &copy;
            originals[&copy] = &node;
        }
    }

    void copyLinks()
    {
        for (NodeBefore const &before : oracle.nodes)
            for (LinkBefore const &link : before.links)
                graph.link(*copies.at(before.node.get()), *copies.at(link.to), link.count);
    }

    /// Chains stand in the direction that the model gave the link, which the layout may have
    /// turned.
    std::uintptr_t intermediateAddress(Literal::Node const &from, Literal::Node const &to,
                                       unsigned index)
    {
        Node &a = *originals.at(&from);
        Node &b = *originals.at(&to);
        std::vector<Node *> chain = chainBetween(a, b);
        if (chain.empty()) {
            chain = chainBetween(b, a);
            std::reverse(chain.begin(), chain.end());
        }
        if (index < chain.size())
            return addressOf(*chain[index]);
        note("a chain of the view", "too short");
        return ++missingAddress;
    }

    std::vector<Literal::Node *> findAnchors(RefT<Node> const &anchor)
    {
        if (anchor)
            return {copies.at(anchor.get())};
        std::vector<Literal::Node *> anchors;
        for (Literal::Node &node : graph.nodes)
            if (node.visible && oracle.left <= node.x && node.x < oracle.left + oracle.width &&
                oracle.top <= node.y && node.y < oracle.top + oracle.height)
                anchors.push_back(&node);
        return anchors;
    }

    void compareFigures(Literal::Figures const &wanted)
    {
        LayoutFigures const &figures = oracle.view.getLayoutFigures();
        compare("number of components", figures.components, wanted.components);
        compare("number of intermediate nodes", figures.splitNodes, wanted.splitNodes);
        compare("number of layers", figures.layers, wanted.layers);
        compare("number of crossings", figures.crossings, wanted.crossings);
        compare("length", figures.length, wanted.length);
    }

    void comparePlaces(std::string const &name, Node const &node, Literal::Node const &wanted)
    {
        compare(name + ": x", node.x, wanted.x);
        compare(name + ": y", node.y, wanted.y);
        compare(name + ": fromX", node.fromX, wanted.fromX);
        compare(name + ": fromY", node.fromY, wanted.fromY);
        compare(name + ": toX", node.toX, wanted.toX);
        compare(name + ": toY", node.toY, wanted.toY);
    }

    void compareLinks(std::string const &name, Node const &node, Literal::Node const &wanted)
    {
        compare(name + ": number of links to it", node.linkedIn.size(), wanted.linkedIn.size());
        compare(name + ": number of links", node.linkedOut.size(), wanted.linkedOut.size());
        for (auto const &[far, entry] : node.linkedOut) {
            const auto found = wanted.linkedOut.find(copies.at(far.get()));
            if (found == wanted.linkedOut.end()) {
                note(name, "has a link too many");
                continue;
            }
            compare(name + ": count of a link", entry.count, found->second.count);
            compareFarEnd(name, node, *far, entry);
            std::size_t i = 0;
            const Literal::Chain chain = Literal::Graph::chainOf(found->second);
            forEachIntermediate(entry, [&](Node &station) {
                if (i < chain.size())
                    comparePlaces(name + ", intermediate node " + std::to_string(i), station,
                                  *chain[i]);
                ++i;
            });
            compare(name + ": length of a chain", i, chain.size());
        }
    }

    /// The far end of a link must say the same, and hold the chain by its last node.
    void compareFarEnd(std::string const &name, Node const &node, Node const &far,
                       LinkEntry const &entry)
    {
        const auto found = std::find_if(far.linkedIn.begin(), far.linkedIn.end(),
                                        [&](auto const &in) { return in.first.get() == &node; });
        if (found == far.linkedIn.end()) {
            note(name, "has a link that its far end doesn't know");
            return;
        }
        Node const *last = nullptr;
        forEachIntermediate(entry, [&](Node const &station) { last = &station; });
        compare(name + ": count at the far end", found->second.count, entry.count);
        compare(name + ": chain at the far end",
                static_cast<Node const *>(found->second.split.get()), last);
    }

    template <class Value>
    void compare(std::string const &what, Value actual, Value wanted)
    {
        if (actual == wanted || !result.empty())
            return;
        std::ostringstream text;
        text << "is " << actual << ", not " << wanted;
        note(what, text.str());
    }

    void note(std::string const &what, std::string const &text)
    {
        if (result.empty())
            result = what + ' ' + text;
    }

    LayoutOracle const &oracle;
    Literal::Graph graph;
    std::map<Node *, Literal::Node *> copies;
    std::map<Literal::Node const *, Node *> originals;
    std::uintptr_t missingAddress = 0;
    std::string result;
};

QString LayoutOracle::difference(RefT<Node> const &anchor) const
{
    return QString::fromStdString(Comparison(*this).run(anchor));
}

} // namespace ZR::VOM::GUI::Graph
