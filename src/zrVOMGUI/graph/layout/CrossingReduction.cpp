// Permutes each layer so that few links cross.
//
// The median heuristic of Gansner, Koutsofios, North and Vo (1993), with layered sweeps in alternating
// direction, and crossings counted by the accumulator tree of Barth, Jünger and Mutzel, Simple and
// Efficient Bilayer Cross Counting (GD 2002). Departs from the published method in that
// - there is no adjacent-exchange (transpose) step;
// - the median of an even number of neighbours is the plain sum of the two middle ones, with no
//   weighting by the spread on each side;
// - a node with no neighbour on the sweep's side doesn't keep its place, but gets key 0;
// - restarts from a random permutation replace the search over different initial orders;
// - each link counts once, whatever its multiplicity.

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/graph/layout/Hierarchy.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"

#include <algorithm>
#include <cstdlib>

namespace ZR::VOM::GUI::Graph {

namespace {

constexpr int maxRestarts = 10;
constexpr int maxStale = 5;

/// Calls `use` with the order of each visible neighbour on one side, in map order. A self-link leads
/// to no other layer, and is passed over.
template <class Use>
void forEachNeighbourOrder(Node &node, Direction side, Use &&use)
{
    for (auto const &link : node.links(side)) {
        Node const &far = neighbour(link);
        if (far.visible && &far != &node)
            use(far.order);
    }
}

/// Twice the median of the neighbours' orders.
///
/// KEPT: a node with no neighbour on the sweep's side gets key 0 and moves to the left end instead of
/// holding its place. Layer order is part of the view's contract.
int medianKey(Node &node, Direction side)
{
    std::vector<unsigned> orders;
    forEachNeighbourOrder(node, side, [&](unsigned order) { orders.push_back(order); });
    if (orders.empty())
        return 0;
    std::sort(orders.begin(), orders.end());
    const std::size_t middle = orders.size() / 2;
    if (orders.size() % 2 == 1)
        return static_cast<int>(2 * orders[middle]);
    return static_cast<int>(orders[middle - 1] + orders[middle]);
}

/// A uniform draw from 0 to num - 1, of 15 random bits at a time.
unsigned drawUniform(unsigned num)
{
    constexpr unsigned bits = 15;
    constexpr unsigned mask = (1u << bits) - 1;
    for (;;) {
        unsigned value = 0, range = 0;
        do {
            value = value << bits | (static_cast<unsigned>(std::rand()) & mask);
            range = range << bits | mask;
        } while (range < num - 1);
        const bool isBiased = range / num <= value / num && range % num != num - 1;
        if (!isBiased)
            return value % num;
    }
}

void shuffle(std::vector<RefT<Node>> &layer)
{
    for (std::size_t i = 1; i < layer.size(); ++i)
        std::swap(layer[i], layer[drawUniform(static_cast<unsigned>(i + 1))]);
}

void numberOrders(std::vector<RefT<Node>> const &layer)
{
    unsigned order = 0;
    for (RefT<Node> const &node : layer)
        node->order = order++;
}

/// The best order of all layers that was seen so far.
class BestOrder {
public:
    explicit BestOrder(Hierarchy::NodeSet const &componentNodes) : nodes(componentNodes) { save(); }

    void save()
    {
        orders.clear();
        for (RefT<Node> const &node : nodes)
            orders.push_back(node->order);
    }
    void restore() const
    {
        auto order = orders.begin();
        for (RefT<Node> const &node : nodes)
            node->order = *order++;
    }

private:
    Hierarchy::NodeSet const &nodes;
    std::vector<unsigned> orders; // In the order of the set.
};

} // namespace

void Hierarchy::orderLayers(NodeSet const &nodes)
{
    const StageTimer timer(figures.orderTime);
    BestOrder bestOrder(nodes);
    sortLayers();
    unsigned best = countCrossings();
    unsigned previous = best;
    // Restarted for each component, so that the same input gives the same order.
    std::srand(0);
    for (int restart = 0; restart < maxRestarts && best != 0; ++restart) {
        if (restart != 0)
            shuffleLayers();
        int stale = 0;
        const auto judge = [&](unsigned crossings) {
            if (crossings >= previous) {
                ++stale;
            } else if (crossings < best) {
                bestOrder.save();
                best = crossings;
                stale = 0;
            }
            previous = crossings;
        };
        do {
            judge(sweepDown());
            judge(sweepUp());
        } while (stale < maxStale && best != 0);
    }
    bestOrder.restore();
    sortLayers();
    figures.crossings += best;
}

unsigned Hierarchy::sweepDown()
{
    for (auto &layer : layers)
        orderByMedians(layer, Direction::In);
    return countCrossings();
}

unsigned Hierarchy::sweepUp()
{
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
        orderByMedians(*layer, Direction::Out);
    return countCrossings();
}

/// Orders a layer by the medians of its nodes' neighbours; equal medians keep their order.
void Hierarchy::orderByMedians(std::vector<RefT<Node>> &layer, Direction side)
{
    std::vector<std::pair<int, RefT<Node>>> keyed;
    keyed.reserve(layer.size());
    for (RefT<Node> const &node : layer)
        keyed.emplace_back(medianKey(*node, side), node);
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](auto const &a, auto const &b) { return a.first < b.first; });
    std::transform(keyed.begin(), keyed.end(), layer.begin(),
                   [](auto const &pair) { return pair.second; });
    numberOrders(layer);
}

void Hierarchy::sortLayers()
{
    for (auto &layer : layers)
        std::sort(layer.begin(), layer.end(), [](RefT<Node> const &a, RefT<Node> const &b) {
            return a->order < b->order;
        });
}

void Hierarchy::shuffleLayers()
{
    for (auto &layer : layers) {
        shuffle(layer);
        numberOrders(layer);
    }
}

unsigned Hierarchy::countCrossings() const
{
    unsigned crossings = 0;
    for (std::size_t i = 0; i + 1 < layers.size(); ++i)
        crossings += countCrossings(i);
    return crossings;
}

/// Number of crossings between `layer` and the layer after it, O(e log n) for e links and a later
/// layer of n nodes.
/// \pre Links join adjacent layers; Node::order runs from 0 in each layer.
unsigned Hierarchy::countCrossings(std::size_t layer) const
{
    const auto numLeaves = static_cast<std::size_t>(
        ceilPow2(static_cast<unsigned>(layers[layer + 1].size())));
    const std::size_t base = numLeaves - 1;
    std::vector<unsigned> accumulator(2 * numLeaves - 1, 0);
    std::vector<unsigned> orders;
    unsigned crossings = 0;
    for (RefT<Node> const &node : layers[layer]) {
        orders.clear();
        forEachNeighbourOrder(*node, Direction::Out,
                              [&](unsigned order) { orders.push_back(order); });
        std::sort(orders.begin(), orders.end());
        for (unsigned order : orders) {
            std::size_t index = order + base;
            ++accumulator[index];
            while (index != 0) {
                if (index % 2 == 1)
                    crossings += accumulator[index + 1];
                index = (index - 1) / 2;
                ++accumulator[index];
            }
        }
    }
    return crossings;
}

} // namespace ZR::VOM::GUI::Graph
