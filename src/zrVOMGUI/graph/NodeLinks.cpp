#include "zrVOMGUI/graph/private/NodeLinks.h"

#include <cstdint>
#include <utility>

namespace ZR::VOM::GUI::Graph {

namespace {

/// The two ends of one link.
struct LinkEnds {
    LinkMap::iterator out; // In the from node.
    LinkMap::iterator in;  // In the to node.
    bool exists;
};

LinkEnds findLink(Node &from, Node &to)
{
    LinkEnds ends;
    ends.out = from.linkedOut.find(keyOf(to));
    ends.in = to.linkedIn.find(keyOf(from));
    ends.exists = ends.out != from.linkedOut.end() && ends.in != to.linkedIn.end();
    return ends;
}

/// A point `step` of `numSteps` of the way from `from` to `to`.
///
/// KEPT: the division is unsigned, so that negative coordinates give a very large result, and an
/// intermediate node flies in from far away. The start of the animation shows it, and hosts count
/// on it.
int stationAt(int from, int to, unsigned step, unsigned numSteps)
{
    const auto start = static_cast<std::uint32_t>(from);
    const auto end = static_cast<std::uint32_t>(to);
    return static_cast<int>(((numSteps - step) * start + step * end) / numSteps);
}

/// KEPT: the divisor is the number of nodes plus 2, so that the chain stops short of `to` and the
/// last piece is twice as long as the others; and the current position mixes x with y. Only the
/// start of the animation shows it: the coordinate stage overwrites the current position.
void placeOnLink(Node &node, Node const &from, Node const &to, unsigned index, unsigned count)
{
    const unsigned numSteps = count + 2;
    node.fromX = stationAt(from.fromX, to.fromX, index, numSteps);
    node.fromY = stationAt(from.fromY, to.fromY, index, numSteps);
    node.toX = stationAt(from.toX, to.toX, index, numSteps);
    node.toY = stationAt(from.toY, to.toY, index, numSteps);
    node.x = stationAt(from.x, from.y, index, numSteps);
    node.y = stationAt(to.x, to.y, index, numSteps);
}

/// Leaves a chain that nobody links to any more.
void dissolve(std::vector<RefT<Node>> const &chain)
{
    for (RefT<Node> const &node : chain) {
        node->linkedIn.clear();
        node->linkedOut.clear();
    }
}

} // namespace

std::vector<RefT<Node>> chainOf(LinkEntry const &entry)
{
    std::vector<RefT<Node>> chain;
    forEachIntermediate(entry, [&](Node &node) { chain.emplace_back(node); });
    return chain;
}

void addLink(Node &from, Node &to, unsigned count)
{
    LinkEntry &out = from.linkedOut[keyOf(to)];
    out.count += count;
    to.linkedIn[keyOf(from)].count += count;
    forEachIntermediate(out, [&](Node &node) {
        node.linkedIn.begin()->second.count += count;
        node.linkedOut.begin()->second.count += count;
    });
}

void dropLink(Node &from, Node &to, unsigned count)
{
    const LinkEnds ends = findLink(from, to);
    if (!ends.exists)
        return;
    LinkEntry &out = ends.out->second;
    if (count < out.count) {
        out.count -= count;
        ends.in->second.count -= count;
        forEachIntermediate(out, [&](Node &node) {
            node.linkedIn.begin()->second.count -= count;
            node.linkedOut.begin()->second.count -= count;
        });
        return;
    }
    const std::vector<RefT<Node>> chain = chainOf(out);
    dissolve(chain);
    from.linkedOut.erase(ends.out);
    to.linkedIn.erase(ends.in);
}

std::vector<RefT<Node>> splitLink(Node &from, Node &to, unsigned count)
{
    std::vector<RefT<Node>> chain;
    if (count == 0)
        return chain;
    const LinkEnds ends = findLink(from, to);
    if (!ends.exists)
        return chain;
    unsplitLink(from, to);
    chain.reserve(count);
    for (unsigned i = 1; i <= count; ++i) {
        chain.emplace_back(new Node(*from.view, {}));
        placeOnLink(*chain.back(), from, to, i, count);
    }

    const unsigned multiplicity = ends.out->second.count;
    for (std::size_t i = 1; i < chain.size(); ++i) {
        chain[i - 1]->linkedOut.emplace(keyOf(to), LinkEntry{chain[i], multiplicity});
        chain[i]->linkedIn.emplace(keyOf(from), LinkEntry{chain[i - 1], multiplicity});
    }
    ends.out->second.split = chain.front();
    chain.front()->linkedIn.emplace(keyOf(from), LinkEntry{{}, multiplicity});
    ends.in->second.split = chain.back();
    chain.back()->linkedOut.emplace(keyOf(to), LinkEntry{{}, multiplicity});
    return chain;
}

void unsplitLink(Node &from, Node &to)
{
    const LinkEnds ends = findLink(from, to);
    if (!ends.exists)
        return;
    dissolve(chainOf(ends.out->second));
    ends.in->second.split.reset();
    ends.out->second.split.reset();
}

void unsplitNode(Node &node)
{
    for (auto const &[far, entry] : node.linkedOut)
        if (entry.split)
            unsplitLink(node, *far);
    for (auto const &[far, entry] : node.linkedIn)
        if (entry.split)
            unsplitLink(*far, node);
}

void revertLink(Node &from, Node &to)
{
    const LinkEnds ends = findLink(from, to);
    if (!ends.exists)
        return;
    const unsigned count = ends.in->second.count;
    for (RefT<Node> const &node : chainOf(ends.out->second))
        node->linkedIn.swap(node->linkedOut);
    from.linkedIn.emplace(keyOf(to), LinkEntry{ends.out->second.split, count});
    to.linkedOut.emplace(keyOf(from), LinkEntry{ends.in->second.split, count});
    from.linkedOut.erase(ends.out);
    to.linkedIn.erase(ends.in);
}

} // namespace ZR::VOM::GUI::Graph
