#include "zrVOMGUI/graph/layout/Routes.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

namespace ZR::VOM::GUI::Graph {

namespace {

using NodeSet = std::set<RefT<Node>>;

/// Finds the nodes on routes without walking the routes, of which there can be more than atoms.
///
/// A *block* is a largest part of the graph that stays in one piece without any one of its nodes; a
/// single link can be one. Blocks and nodes, joined where a node is in a block, make a forest.
/// Inside a block a route can be led from any node over any second to any third. So a node is on a
/// route from a start to a target exactly when it is in one of the blocks between the two in that
/// forest.
///
/// The blocks are found by the depth-first walk of Hopcroft and Tarjan, Algorithm 447: Efficient
/// Algorithms for Graph Manipulation (CACM 16(6), 1973), with a stack of nodes instead of edges.
class RouteSearch {
public:
    /// Keeps off the nodes in `closed`, but for `start`.
    explicit RouteSearch(NodeSet const &closed, RefT<Node> const &start = {})
    {
        for (RefT<Node> const &node : closed)
            if (node && node != start)
                addPlace(*node);
        numClosed = static_cast<unsigned>(places.size());
    }

    /// Answers whether there is a route.
    bool run(NodeSet const &starts, NodeSet const &targets, NodeSet &route)
    {
        for (RefT<Node> const &start : starts)
            if (start && !isKnown(*start))
                walkComponent(*start);
        count(starts, &Counts::starts);
        count(targets, &Counts::targets);
        markStartsThatAreTargets();
        sumUp();
        markBlocksBetween();
        return collect(route);
    }

private:
    struct Counts {
        unsigned starts = 0;
        unsigned targets = 0;
    };

    /// A node's place in the order of the walk.
    struct Place {
        Node *node;
        unsigned low;  // The first place that one link leads to from the node or from below it.
        Counts counts; // Of the node itself, and later with all that hangs below it.
        bool onRoute = false;
    };

    /// The nodes of a block are its top, which the walk met first, and those in `members` from the
    /// end of the block before on.
    struct Block {
        unsigned root; // Of the component.
        unsigned top;
        std::size_t end;
    };

    /// A node on the way from the root to where the walk is.
    struct Step {
        unsigned place;
        LinkMap::iterator link; // The next one to look along,
        bool isIn;              // in linkedIn, and before that in linkedOut.
    };

    /// Node::index holds anything in a node without a place: only a place that answers counts.
    bool isKnown(Node const &node) const
    {
        return node.index < places.size() && places[node.index].node == &node;
    }

    void addPlace(Node &node)
    {
        node.index = static_cast<unsigned>(places.size());
        places.push_back({&node, node.index, {}});
    }

    void walkComponent(Node &root)
    {
        enter(root);
        while (!way.empty()) {
            Step &step = way.back();
            Node *const far = nextNeighbour(step);
            if (!far)
                leave();
            else if (!isKnown(*far))
                enter(*far);
            else if (far->index >= numClosed)
                lower(step.place, far->index);
        }
        open.clear();
    }

    void enter(Node &node)
    {
        addPlace(node);
        open.push_back(node.index);
        way.push_back({node.index, node.linkedOut.begin(), false});
    }

    /// Along links out and then along links in; null at the end.
    Node *nextNeighbour(Step &step) const
    {
        Node &node = *places[step.place].node;
        if (!step.isIn && step.link == node.linkedOut.end()) {
            step.isIn = true;
            step.link = node.linkedIn.begin();
        }
        if (step.isIn && step.link == node.linkedIn.end())
            return nullptr;
        return (step.link++)->first.get();
    }

    void lower(unsigned place, unsigned low)
    {
        places[place].low = std::min(places[place].low, low);
    }

    /// Steps back from a node that has shown all its neighbours.
    void leave()
    {
        const unsigned place = way.back().place;
        way.pop_back();
        if (way.empty())
            return;
        const unsigned before = way.back().place;
        if (places[place].low < before)
            lower(before, places[place].low);
        else
            closeBlock(before, place);
    }

    /// Nothing from `first` on reaches past `top`: what is open from `first` on is one block.
    void closeBlock(unsigned top, unsigned first)
    {
        const auto begin = std::lower_bound(open.begin(), open.end(), first);
        members.insert(members.end(), begin, open.end());
        open.erase(begin, open.end());
        blocks.push_back({way.front().place, top, members.size()});
    }

    void count(NodeSet const &nodes, unsigned Counts::*which)
    {
        for (RefT<Node> const &node : nodes)
            if (node && isKnown(*node) && node->index >= numClosed)
                ++(places[node->index].counts.*which);
    }

    void markStartsThatAreTargets()
    {
        for (Place &place : places)
            place.onRoute = place.counts.starts != 0 && place.counts.targets != 0;
    }

    /// Adds to each node's counts those below it. A block was closed after all that hangs below it.
    void sumUp()
    {
        forEachBlock([this](Block const &block, auto begin, auto end) {
            Counts &sum = places[block.top].counts;
            for (auto member = begin; member != end; ++member) {
                sum.starts += places[*member].counts.starts;
                sum.targets += places[*member].counts.targets;
            }
        });
    }

    void markBlocksBetween()
    {
        forEachBlock([this](Block const &block, auto begin, auto end) {
            const auto isBetween = [&](unsigned member) {
                return separates(places[member].counts, places[block.root].counts);
            };
            if (std::none_of(begin, end, isBetween))
                return;
            places[block.top].onRoute = true;
            for (auto member = begin; member != end; ++member)
                places[*member].onRoute = true;
        });
    }

    /// Whether a start is below a node and a target isn't, or the other way round.
    static bool separates(Counts const &below, Counts const &all)
    {
        return (below.starts != 0 && below.targets < all.targets) ||
               (below.targets != 0 && below.starts < all.starts);
    }

    template <class Use>
    void forEachBlock(Use const &use)
    {
        auto begin = members.cbegin();
        for (Block const &block : blocks) {
            const auto end = members.cbegin() + static_cast<std::ptrdiff_t>(block.end);
            use(block, begin, end);
            begin = end;
        }
    }

    /// In the order of the set, which then takes them in constant time each.
    bool collect(NodeSet &route) const
    {
        std::vector<Node *> found;
        for (Place const &place : places)
            if (place.onRoute)
                found.push_back(place.node);
        std::sort(found.begin(), found.end(), std::less<Node *>());
        auto next = route.begin();
        for (Node *node : found)
            next = std::next(route.emplace_hint(next, *node));
        return !found.empty();
    }

    std::vector<Place> places; // Closed nodes first.
    unsigned numClosed = 0;
    std::vector<Step> way;
    std::vector<unsigned> open; // In rising order: places on no closed block yet, but as its top.
    std::vector<Block> blocks;
    std::vector<unsigned> members;
};

} // namespace

bool findAllRoutes(NodeSet const &starts, NodeSet const &targets, NodeSet &route)
{
    return RouteSearch({}).run(starts, targets, route);
}

bool findAllRoutes(RefT<Node> const &node, NodeSet const &targets, NodeSet const &path,
                   NodeSet &route)
{
    return RouteSearch(path, node).run({node}, targets, route);
}

} // namespace ZR::VOM::GUI::Graph
