#include "support/LiteralLayout.h"

#include "support/LiteralNetworkSimplex.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace ZR::VOM::GUI::Graph::Literal {

bool ByAddress::operator()(Node const *a, Node const *b) const
{
    return a->address < b->address;
}

// Links.

Node &Graph::addNode(std::uintptr_t address, int width, int height)
{
    Node &node = nodes.emplace_back();
    node.address = address;
    node.width = width;
    node.height = height;
    return node;
}

Chain Graph::chainOf(LinkEntry const &entry)
{
    Chain chain;
    for (Node *node = entry.split; node; node = node->linkedOut.begin()->second.split)
        chain.push_back(node);
    return chain;
}

Node &Graph::neighbour(LinkMap::value_type const &link)
{
    return link.second.split ? *link.second.split : *link.first;
}

void Graph::link(Node &from, Node &to, unsigned count)
{
    from.linkedOut[&to].count += count;
    to.linkedIn[&from].count += count;
    for (Node *node : chainOf(from.linkedOut[&to])) {
        node->linkedIn.begin()->second.count += count;
        node->linkedOut.begin()->second.count += count;
    }
}

void Graph::unlink(Node &from, Node &to, unsigned count)
{
    LinkEntry &out = from.linkedOut.at(&to);
    out.count -= count;
    to.linkedIn.at(&from).count -= count;
    const Chain chain = chainOf(out);
    if (out.count != 0) {
        for (Node *node : chain) {
            node->linkedIn.begin()->second.count -= count;
            node->linkedOut.begin()->second.count -= count;
        }
        return;
    }
    for (Node *node : chain) {
        node->linkedIn.clear();
        node->linkedOut.clear();
    }
    from.linkedOut.erase(&to);
    to.linkedIn.erase(&from);
}

Chain Graph::split(Node &from, Node &to, unsigned count)
{
    Chain chain;
    if (count == 0)
        return chain;
    const auto out = from.linkedOut.find(&to);
    const auto in = to.linkedIn.find(&from);
    if (out == from.linkedOut.end() || in == to.linkedIn.end())
        return chain;
    const unsigned m = out->second.count;
    const std::uint32_t d = count + 2;
    for (std::uint32_t i = 1; i <= count; ++i) {
        const auto at = [&](int start, int end) {
            const auto s = static_cast<std::uint32_t>(start);
            const auto e = static_cast<std::uint32_t>(end);
            return static_cast<int>(((d - i) * s + i * e) / d);
        };
        Node &node = intermediateNodes.emplace_back();
        node.address =
            addressOf ? addressOf(from, to, i - 1)
                      : std::numeric_limits<std::uintptr_t>::max() / 2 + intermediateNodes.size();
        node.height = intermediateHeight;
        node.fromX = at(from.fromX, to.fromX);
        node.fromY = at(from.fromY, to.fromY);
        node.toX = at(from.toX, to.toX);
        node.toY = at(from.toY, to.toY);
        node.x = at(from.x, from.y);
        node.y = at(to.x, to.y);
        chain.push_back(&node);
    }
    for (std::size_t k = 1; k < chain.size(); ++k) {
        chain[k - 1]->linkedOut[&to] = {chain[k], m};
        chain[k]->linkedIn[&from] = {chain[k - 1], m};
    }
    out->second.split = chain.front();
    chain.front()->linkedIn[&from] = {nullptr, m};
    in->second.split = chain.back();
    chain.back()->linkedOut[&to] = {nullptr, m};
    return chain;
}

void Graph::unsplit(Node &from, Node &to)
{
    const auto out = from.linkedOut.find(&to);
    const auto in = to.linkedIn.find(&from);
    if (out == from.linkedOut.end() || in == to.linkedIn.end())
        return;
    for (Node *node : chainOf(out->second)) {
        node->linkedOut.clear();
        node->linkedIn.clear();
    }
    in->second.split = nullptr;
    out->second.split = nullptr;
}

void Graph::unsplitNode(Node &node)
{
    for (auto const &[far, entry] : node.linkedOut)
        if (entry.split)
            unsplit(node, *far);
    for (auto const &[far, entry] : node.linkedIn)
        if (entry.split)
            unsplit(*far, node);
}

void Graph::revertLink(Node &from, Node &to)
{
    const auto out = from.linkedOut.find(&to);
    const auto in = to.linkedIn.find(&from);
    const unsigned count = in->second.count;
    for (Node *node : chainOf(out->second))
        std::swap(node->linkedIn, node->linkedOut);
    from.linkedIn.insert({&to, {out->second.split, count}});
    from.linkedOut.erase(out);
    to.linkedOut.insert({&from, {in->second.split, count}});
    to.linkedIn.erase(in);
}

// Components.

std::set<Node *, ByAddress> findIsolatedVisibleGraphs(NodeSet &nodes)
{
    NodeSet result;
    while (!nodes.empty()) {
        Node *const node = *nodes.begin();
        result.insert(node);
        nodes.erase(node);
        removeLinkedNodes(*node, nodes);
    }
    return result;
}

void removeLinkedNodes(Node &node, NodeSet &nodes)
{
    for (auto const &[far, entry] : node.linkedOut)
        if (nodes.erase(far) != 0)
            removeLinkedNodes(*far, nodes);
    for (auto const &[far, entry] : node.linkedIn)
        if (nodes.erase(far) != 0)
            removeLinkedNodes(*far, nodes);
}

void findIsolatedVisibleGraph(Node &node, NodeSet &found)
{
    for (auto const &[far, entry] : node.linkedOut)
        if (far->visible && found.insert(far).second)
            findIsolatedVisibleGraph(*far, found);
    for (auto const &[far, entry] : node.linkedIn)
        if (far->visible && found.insert(far).second)
            findIsolatedVisibleGraph(*far, found);
}

// Ranks.

bool Hierarchy::isBefore(std::pair<Node *, Node *> const &a, std::pair<Node *, Node *> const &b)
{
    if (a.first->address != b.first->address)
        return a.first->address < b.first->address;
    return a.second->address < b.second->address;
}

NodeSet Hierarchy::assignRanks(Node &representative)
{
    NodeSet nodes;
    if (!representative.visible)
        return nodes;
    nodes.insert(&representative);
    findIsolatedVisibleGraph(representative, nodes);
    breakCycles(nodes);
    for (Node *node : nodes)
        node->rank = std::numeric_limits<int>::min();
    solveRanks(nodes);
    int lowest = std::numeric_limits<int>::max();
    int highest = std::numeric_limits<int>::min();
    for (Node *node : nodes) {
        lowest = std::min(lowest, node->rank);
        highest = std::max(highest, node->rank);
    }
    for (Node *node : nodes)
        node->rank -= lowest;
    splitLongLinks(nodes);
    fillLayers(nodes, highest - lowest);
    return nodes;
}

void Hierarchy::breakCycles(NodeSet const &nodes)
{
    for (Node *node : nodes)
        node->dfsEnter = node->dfsLeave = 0;
    unsigned enter = 0, leave = 0;
    for (Node *node : nodes)
        if (node->dfsEnter == 0)
            numberDepthFirst(*node, nodes, enter, leave);
    for (auto link = links.begin(); link != links.end();) {
        Node &a = *link->first.first;
        Node &b = *link->first.second;
        const unsigned c = link->second;
        if (&a == &b || a.dfsEnter < b.dfsEnter || a.dfsLeave > b.dfsLeave) {
            ++link;
            continue;
        }
        graph.unlink(a, b, c);
        graph.link(b, a, c);
        const auto [reversed, inserted] = links.insert({{&b, &a}, c});
        if (!inserted)
            reversed->second += c;
        reversedLinks.insert({{&b, &a}, c});
        link = links.erase(link);
    }
}

void Hierarchy::numberDepthFirst(Node &node, NodeSet const &nodes, unsigned &enter, unsigned &leave)
{
    node.dfsEnter = ++enter;
    for (auto const &[far, entry] : node.linkedOut) {
        if (nodes.count(far) == 0)
            continue;
        links.insert({{&node, far}, entry.count});
        if (far->dfsEnter == 0)
            numberDepthFirst(*far, nodes, enter, leave);
    }
    node.dfsLeave = ++leave;
}

void Hierarchy::solveRanks(NodeSet const &nodes)
{
    LiteralNetworkSimplex simplex;
    std::map<Node *, unsigned, ByAddress> vertexOf;
    for (Node *node : nodes)
        vertexOf[node] = simplex.addVertex();
    for (auto const &[key, count] : links)
        if (key.first != key.second)
            simplex.addEdge(vertexOf.at(key.first), vertexOf.at(key.second), 1, 1);
    simplex.solve();
    for (Node *node : nodes)
        node->rank = simplex.rank(vertexOf.at(node));
}

void Hierarchy::splitLongLinks(NodeSet &nodes)
{
    for (auto link = links.begin(); link != links.end();) {
        Node &a = *link->first.first;
        Node &b = *link->first.second;
        const unsigned m = link->second;
        const int d = b.rank - a.rank;
        if (d < 2) {
            ++link;
            continue;
        }
        int r = a.rank;
        Node *prev = &a;
        for (Node *c : graph.split(a, b, static_cast<unsigned>(d - 1))) {
            nodes.insert(c);
            c->rank = ++r;
            links.insert({{prev, c}, m});
            prev = c;
        }
        links.insert({{prev, &b}, m});
        link = links.erase(link);
    }
}

void Hierarchy::fillLayers(NodeSet const &nodes, int span)
{
    layers.assign(static_cast<std::size_t>(span) + 1, {});
    for (Node *node : nodes) {
        auto &layer = layers[static_cast<std::size_t>(node->rank)];
        node->order = static_cast<unsigned>(layer.size());
        layer.push_back(node);
    }
}

// Orders.

void Hierarchy::orderLayers(NodeSet const &nodes)
{
    std::map<Node *, unsigned, ByAddress> saved;
    const auto save = [&] {
        for (Node *node : nodes)
            saved[node] = node->order;
    };
    save();
    sortLayers();
    const unsigned total = countCrossings();
    unsigned best = total;
    unsigned prev = total;
    std::srand(0);
    for (int restart = 0; restart <= 9 && best != 0; ++restart) {
        if (restart != 0)
            shuffleLayers();
        int stale = 0;
        do {
            for (const bool down : {true, false}) {
                const unsigned c = down ? sweepDown() : sweepUp();
                if (c < prev) {
                    if (c < best) {
                        save();
                        best = c;
                        stale = 0;
                    }
                } else {
                    ++stale;
                }
                prev = c;
            }
        } while (stale < 5 && best != 0);
    }
    for (Node *node : nodes)
        node->order = saved.at(node);
    sortLayers();
}

void Hierarchy::sortLayers()
{
    for (auto &layer : layers)
        std::sort(layer.begin(), layer.end(),
                  [](Node const *a, Node const *b) { return a->order < b->order; });
}

unsigned Hierarchy::sweepDown()
{
    for (std::size_t i = 0; i < layers.size(); ++i)
        orderByMedians(layers[i], &Node::linkedIn);
    sortLayers();
    return countCrossings();
}

unsigned Hierarchy::sweepUp()
{
    for (std::size_t i = layers.size(); i-- > 0;)
        orderByMedians(layers[i], &Node::linkedOut);
    sortLayers();
    return countCrossings();
}

void Hierarchy::orderByMedians(std::vector<Node *> &layer, LinkMap Node::*side)
{
    std::multimap<int, Node *> keyed;
    for (Node *node : layer) {
        std::vector<unsigned> orders;
        for (auto const &link : node->*side)
            if (Graph::neighbour(link).visible && &Graph::neighbour(link) != node)
                orders.push_back(Graph::neighbour(link).order);
        std::sort(orders.begin(), orders.end());
        const std::size_t n = orders.size();
        int key = 0;
        if (n % 2 == 1)
            key = static_cast<int>(2 * orders[n / 2]);
        else if (n != 0)
            key = static_cast<int>(orders[n / 2 - 1] + orders[n / 2]);
        keyed.insert({key, node});
    }
    layer.clear();
    for (auto const &[key, node] : keyed) {
        node->order = static_cast<unsigned>(layer.size());
        layer.push_back(node);
    }
}

unsigned Hierarchy::countCrossings() const
{
    unsigned total = 0;
    for (unsigned i = 0; i + 1 < layers.size(); ++i)
        total += countCrossings(i);
    return total;
}

unsigned Hierarchy::countCrossings(unsigned layer) const
{
    const std::size_t n = layers[layer + 1].size();
    std::size_t first = 1;
    while (first < n)
        first *= 2;
    std::vector<unsigned> sums(2 * first - 1, 0);
    const std::size_t base = first - 1;
    unsigned crossings = 0;
    for (Node *u : layers[layer]) {
        std::map<unsigned, Node *> byOrder;
        for (auto const &link : u->linkedOut)
            if (Graph::neighbour(link).visible && &Graph::neighbour(link) != u)
                byOrder.insert({Graph::neighbour(link).order, &Graph::neighbour(link)});
        for (auto const &[p, far] : byOrder) {
            std::size_t index = p + base;
            ++sums[index];
            while (index != 0) {
                if (index % 2 == 1)
                    crossings += sums[index + 1];
                index = (index - 1) / 2;
                ++sums[index];
            }
        }
    }
    return crossings;
}

void Hierarchy::shuffleLayers()
{
    const auto draw = [](unsigned k) {
        for (;;) {
            unsigned value = 0, range = 0;
            do {
                value = (value << 15) | (static_cast<unsigned>(std::rand()) & 32767u);
                range = (range << 15) | 32767u;
            } while (range < k - 1);
            if (range / k <= value / k && range % k != k - 1)
                continue;
            return value % k;
        }
    };
    for (auto &layer : layers) {
        for (std::size_t i = 1; i < layer.size(); ++i)
            std::swap(layer[i], layer[draw(static_cast<unsigned>(i + 1))]);
        for (std::size_t i = 0; i < layer.size(); ++i)
            layer[i]->order = static_cast<unsigned>(i);
    }
}

// Coordinates.

Box Hierarchy::assignCoordinates(NodeSet const &nodes)
{
    LiteralNetworkSimplex simplex;
    std::map<Node *, unsigned, ByAddress> vertexOf;
    for (Node *node : nodes)
        vertexOf[node] = simplex.addVertex();
    for (auto const &[key, count] : links) {
        if (key.first == key.second)
            continue;
        const unsigned n = simplex.addVertex();
        simplex.addEdge(n, vertexOf.at(key.first), 1, 0);
        simplex.addEdge(n, vertexOf.at(key.second), 1, 0);
    }
    for (auto const &layer : layers) {
        Node *p = nullptr;
        for (Node *node : layer) {
            if (p) {
                const int distance = (node->width + p->width) / 2 + graph.xSpacing;
                simplex.addEdge(vertexOf.at(p), vertexOf.at(node), 0,
                                static_cast<std::uint16_t>(distance));
            }
            p = node;
        }
    }
    simplex.solve();
    for (Node *node : nodes)
        node->x = simplex.rank(vertexOf.at(node)) - simplex.lowestRank();

    int y = 0;
    for (auto const &layer : layers) {
        int height = 0;
        for (Node *node : layer) {
            height = std::max(height, node->height);
            node->y = y;
        }
        y += graph.ySpacing + height;
    }

    Box bound{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
    for (auto const &layer : layers) {
        for (Node const *node : layer) {
            const int l = node->x - node->width / 2;
            const int t = node->y - node->height / 2;
            bound.left = std::min(bound.left, l);
            bound.right = std::max(bound.right, l + node->width);
            bound.top = std::min(bound.top, t);
            bound.bottom = std::max(bound.bottom, t + node->height);
        }
    }
    return bound;
}

void Hierarchy::revertLinks()
{
    for (auto const &[key, count] : reversedLinks)
        graph.revertLink(*key.first, *key.second);
    reversedLinks.clear();
}

double Hierarchy::length() const
{
    double sum = 0;
    for (auto const &[key, count] : links)
        sum += std::abs(key.first->x - key.second->x);
    return sum;
}

// The whole.

namespace {

struct Mean {
    int x, y;
};

Mean meanOf(std::vector<Node *> const &nodes)
{
    int sumX = 0, sumY = 0;
    for (Node const *node : nodes) {
        sumX += node->x;
        sumY += node->y;
    }
    const int n = static_cast<int>(nodes.size());
    return n == 0 ? Mean{0, 0} : Mean{sumX / n, sumY / n};
}

void commit(Node &node, int dx, int dy)
{
    node.x += dx;
    node.y += dy;
    node.toX = node.x;
    node.x = node.fromX;
    node.toY = node.y;
    node.y = node.fromY;
}

} // namespace

Figures layout(Graph &graph, std::vector<Node *> const &anchors)
{
    Figures figures;
    const Mean before = meanOf(anchors);
    NodeSet visible;
    for (Node &node : graph.nodes) {
        if (!node.visible)
            continue;
        node.fromX = node.x;
        node.fromY = node.y;
        graph.unsplitNode(node);
        visible.insert(&node);
    }
    const std::size_t numReal = visible.size();
    const NodeSet representatives = findIsolatedVisibleGraphs(visible);
    if (representatives.empty())
        return figures;
    std::size_t numAll = 0;
    int cursor = 0;
    for (Node *representative : representatives) {
        Hierarchy hierarchy(graph);
        const NodeSet nodes = hierarchy.assignRanks(*representative);
        hierarchy.orderLayers(nodes);
        const Box bound = hierarchy.assignCoordinates(nodes);
        const int dx = cursor - bound.left + graph.xSpacing;
        const int dy = -bound.top;
        for (Node *node : nodes) {
            node->x += dx;
            node->y += dy;
        }
        cursor = cursor + 1 + (bound.right - bound.left) + graph.xSpacing;
        figures.layers = std::max(figures.layers, static_cast<unsigned>(hierarchy.layers.size()));
        figures.crossings += hierarchy.countCrossings();
        figures.length += hierarchy.length();
        numAll += nodes.size();
        hierarchy.revertLinks();
    }
    figures.components = static_cast<unsigned>(representatives.size());
    figures.splitNodes = static_cast<unsigned>(numAll - numReal);
    const Mean after = meanOf(anchors);
    const int dx = before.x - after.x;
    const int dy = before.y - after.y;
    for (Node &node : graph.nodes) {
        if (!node.visible)
            continue;
        commit(node, dx, dy);
        for (auto const &[far, entry] : node.linkedOut)
            for (Node *station : Graph::chainOf(entry))
                commit(*station, dx, dy);
    }
    return figures;
}

} // namespace ZR::VOM::GUI::Graph::Literal
