#include "zrVOMGUI/graph/layout/CrossingReduction.h"

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/graph/layout/StageTimer.h"

#include <algorithm>
#include <cstdlib>

namespace ZR::VOM::GUI::Graph {

namespace {

constexpr int maxPasses = 10; // Over all orders to begin with: the first one, and random ones.
constexpr int maxStale = 5;

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

} // namespace

void Hierarchy::orderLayers()
{
    const StageTimer timer(figures.orderTime);
    figures.crossings +=
        CrossingReduction(static_cast<unsigned>(nodes.size()), links, layers).run();
    for (auto const &layer : layers) {
        unsigned order = 0;
        for (unsigned index : layer)
            nodes[index]->order = order++;
    }
}

CrossingReduction::CrossingReduction(unsigned numNodes, std::vector<Hierarchy::Link> const &links,
                                     Layers &orderedLayers)
    : layers(orderedLayers)
    , order(numNodes)
    , filled(numNodes)
{
    buildSide(before, links, &Hierarchy::Link::to, &Hierarchy::Link::from);
    buildSide(behind, links, &Hierarchy::Link::from, &Hierarchy::Link::to);
    for (auto const &layer : layers)
        numberOrders(layer);
}

void CrossingReduction::buildSide(Side &side, std::vector<Hierarchy::Link> const &links,
                                  unsigned Hierarchy::Link::*near, unsigned Hierarchy::Link::*far)
{
    side.begin.assign(order.size() + 1, 0);
    for (Hierarchy::Link const &link : links)
        ++side.begin[link.*near + 1];
    for (std::size_t i = 1; i < side.begin.size(); ++i)
        side.begin[i] += side.begin[i - 1];
    side.far.resize(links.size());
    side.orders.resize(links.size());
    std::copy(side.begin.begin(), side.begin.end() - 1, filled.begin());
    for (Hierarchy::Link const &link : links)
        side.far[filled[link.*near]++] = link.*far;
}

unsigned CrossingReduction::run()
{
    unsigned best = countCrossings();
    unsigned previous = best;
    std::vector<unsigned> bestOrder = order;
    // Restarted for each component, so that the same input gives the same order.
    std::srand(0);
    for (int pass = 0; pass < maxPasses && best != 0; ++pass) {
        if (pass != 0)
            shuffleLayers();
        int stale = 0;
        const auto judge = [&](unsigned crossings) {
            if (crossings >= previous) {
                ++stale;
            } else if (crossings < best) {
                bestOrder = order;
                best = crossings;
                stale = 0;
            }
            previous = crossings;
        };
        std::vector<unsigned> orderBefore;
        unsigned afterDown = 0, afterUp = 0;
        do {
            // An order that comes back brings the same sweeps again: their counts are known.
            if (orderBefore != order) {
                orderBefore = order;
                afterDown = sweepDown();
                judge(afterDown);
                afterUp = sweepUp();
                judge(afterUp);
            } else {
                judge(afterDown);
                judge(afterUp);
            }
        } while (stale < maxStale && best != 0);
    }
    restore(bestOrder);
    return best;
}

unsigned CrossingReduction::countCrossings()
{
    unsigned crossings = 0;
    for (std::size_t i = 1; i < layers.size(); ++i) {
        collectOrders(layers[i - 1], behind, before);
        crossings += countCrossings(layers[i], layers[i - 1].size(), before);
    }
    return crossings;
}

/// Orders each layer by the one before it. The first one has none, so that all its keys are 0 and
/// it stays as it is.
unsigned CrossingReduction::sweepDown()
{
    unsigned crossings = 0;
    for (std::size_t i = 1; i < layers.size(); ++i) {
        collectOrders(layers[i - 1], behind, before);
        orderByMedians(layers[i], layers[i - 1].size(), before);
        crossings += countCrossings(layers[i], layers[i - 1].size(), before);
    }
    return crossings;
}

unsigned CrossingReduction::sweepUp()
{
    unsigned crossings = 0;
    for (std::size_t i = layers.size() - 1; i-- > 0;) {
        collectOrders(layers[i + 1], before, behind);
        orderByMedians(layers[i], layers[i + 1].size(), behind);
        crossings += countCrossings(layers[i], layers[i + 1].size(), behind);
    }
    return crossings;
}

/// Enters the places of one layer's nodes with their neighbours in the next. Walking the layer from
/// left to right gives each neighbour its list in rising order.
void CrossingReduction::collectOrders(std::vector<unsigned> const &fixedLayer, Side const &towards,
                                      Side &back)
{
    for (unsigned node : fixedLayer)
        for (unsigned i = towards.begin[node]; i < towards.begin[node + 1]; ++i)
            filled[towards.far[i]] = back.begin[towards.far[i]];
    for (unsigned node : fixedLayer)
        for (unsigned i = towards.begin[node]; i < towards.begin[node + 1]; ++i)
            back.orders[filled[towards.far[i]]++] = order[node];
}

/// Twice the median of the neighbours' orders.
///
/// KEPT: a node with no neighbour on the sweep's side gets key 0 and moves to the left end instead
/// of holding its place. Users know their drawings by the order of layers.
int CrossingReduction::medianKey(unsigned node, Side const &side) const
{
    const unsigned begin = side.begin[node];
    const unsigned num = side.begin[node + 1] - begin;
    if (num == 0)
        return 0;
    unsigned const *const orders = &side.orders[begin];
    return static_cast<int>(orders[(num - 1) / 2] + orders[num / 2]);
}

/// Equal medians keep their order: a counting sort, whose keys are below twice the size of the
/// fixed layer.
void CrossingReduction::orderByMedians(std::vector<unsigned> &layer, std::size_t numFixed,
                                       Side const &side)
{
    keys.clear();
    for (unsigned node : layer)
        keys.push_back(medianKey(node, side));
    if (std::is_sorted(keys.begin(), keys.end()))
        return;
    numBelow.assign(2 * numFixed, 0);
    for (int key : keys)
        ++numBelow[static_cast<std::size_t>(key) + 1];
    for (std::size_t i = 1; i < numBelow.size(); ++i)
        numBelow[i] += numBelow[i - 1];
    reordered.resize(layer.size());
    for (std::size_t i = 0; i < layer.size(); ++i)
        reordered[numBelow[static_cast<std::size_t>(keys[i])]++] = layer[i];
    layer.swap(reordered);
    numberOrders(layer);
}

/// Number of crossings between a layer and a fixed one beside it, O(e log n) for e links between
/// them and a fixed layer of n nodes. \pre The orders on that side are collected.
unsigned CrossingReduction::countCrossings(std::vector<unsigned> const &layer, std::size_t numFixed,
                                           Side const &side)
{
    const std::size_t numLeaves = ceilPow2(static_cast<unsigned>(numFixed));
    const std::size_t base = numLeaves - 1;
    accumulator.assign(2 * numLeaves - 1, 0);
    unsigned crossings = 0;
    for (unsigned node : layer) {
        for (unsigned i = side.begin[node]; i < side.begin[node + 1]; ++i) {
            std::size_t index = side.orders[i] + base;
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

void CrossingReduction::shuffleLayers()
{
    for (auto &layer : layers) {
        for (std::size_t i = 1; i < layer.size(); ++i)
            std::swap(layer[i], layer[drawUniform(static_cast<unsigned>(i + 1))]);
        numberOrders(layer);
    }
}

void CrossingReduction::numberOrders(std::vector<unsigned> const &layer)
{
    unsigned next = 0;
    for (unsigned node : layer)
        order[node] = next++;
}

void CrossingReduction::restore(std::vector<unsigned> const &savedOrder)
{
    order = savedOrder;
    for (auto &layer : layers)
        std::sort(layer.begin(), layer.end(),
                  [&](unsigned a, unsigned b) { return order[a] < order[b]; });
}

} // namespace ZR::VOM::GUI::Graph
