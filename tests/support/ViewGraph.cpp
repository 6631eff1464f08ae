#include "support/ViewGraph.h"

#include <QTest>

#include <algorithm>
#include <tuple>

namespace ZR::VOM::GUI {

ViewGraph::ViewGraph(unsigned numNodes, std::vector<NumberedGraph::Link> const &links)
    : model(numNodes)
{
    model.addTo(view);
    std::sort(model.objs.begin(), model.objs.end(),
              [this](RefT<VOM::Object> const &a, RefT<VOM::Object> const &b) {
                  return std::less<Node *>()(GraphViewAccess::node(view, a),
                                             GraphViewAccess::node(view, b));
              });
    for (RefT<VOM::Object> const &obj : model.objs)
        nodes.emplace_back(GraphViewAccess::node(view, obj));
    fill(links);
}

ViewGraph::ViewGraph(NumberedGraph const &graph)
    : ViewGraph(graph.numNodes, graph.links)
{
}

void ViewGraph::fill(std::vector<NumberedGraph::Link> const &links)
{
    model.fill({numNodes(), links});
}

void ViewGraph::showWithoutLayout()
{
    for (PtrT<Node> const &node : nodes)
        node->visible = true;
}

std::vector<RefT<Graph::Node>> ViewGraph::chain(unsigned from, unsigned to) const
{
    std::vector<RefT<Node>> chain;
    const auto link = node(from).linkedOut.find(nodes[to]);
    if (link != node(from).linkedOut.end())
        Graph::forEachIntermediate(link->second,
                                   [&](Node &station) { chain.emplace_back(station); });
    return chain;
}

unsigned ViewGraph::count(unsigned from, unsigned to) const
{
    const auto out = node(from).linkedOut.find(nodes[to]);
    const auto in = node(to).linkedIn.find(nodes[from]);
    const unsigned outCount = out == node(from).linkedOut.end() ? 0 : out->second.count;
    const unsigned inCount = in == node(to).linkedIn.end() ? 0 : in->second.count;
    if (outCount != inCount)
        QTest::qFail("the two ends of a link have different counts", __FILE__, __LINE__);
    return outCount;
}

void ViewGraph::setTextSize(unsigned index, int width, int height) const
{
    node(index).textWidth = width;
    node(index).textHeight = height;
    node(index).sizeDirty = false;
}

void ViewGraph::setWidth(unsigned index, int width) const
{
    const int around = 3 * GraphViewAccess::margin(view) + GraphViewAccess::iconSize(view);
    setTextSize(index, width - around, 0);
}

QString ViewGraph::layers() const
{
    using Place = std::tuple<int, bool, int, std::string>;
    std::vector<Place> places;
    const auto add = [&](Node const &placed, std::string const &name) {
        places.emplace_back(placed.toY, placed.isIntermediate(), placed.toX, name);
    };
    for (unsigned i = 0; i < numNodes(); ++i) {
        if (!node(i).visible)
            continue;
        add(node(i), std::to_string(i));
        for (auto const &[far, entry] : node(i).linkedOut)
            Graph::forEachIntermediate(entry, [&](Node const &station) { add(station, "*"); });
    }
    std::sort(places.begin(), places.end());
    std::string text;
    int layer = 0;
    for (auto const &[y, isIntermediate, x, name] : places) {
        if (!text.empty())
            text += y == layer ? ' ' : '|';
        text += name;
        layer = y;
    }
    return QString::fromStdString(text);
}

QString ViewGraph::links() const
{
    std::string text;
    for (unsigned from = 0; from < numNodes(); ++from) {
        for (unsigned to = 0; to < numNodes(); ++to) {
            const unsigned num = count(from, to);
            if (num == 0)
                continue;
            text += (text.empty() ? "" : " ") + std::to_string(from) + '>' + std::to_string(to);
            if (num > 1)
                text += 'x' + std::to_string(num);
        }
    }
    return QString::fromStdString(text);
}

} // namespace ZR::VOM::GUI
