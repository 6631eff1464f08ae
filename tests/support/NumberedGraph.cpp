#include "support/NumberedGraph.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <numeric>
#include <set>

namespace {

constexpr std::uint64_t maxNum = 100000000; // More is no graph but a slip.

/// Reads lines of two numbers, and says where they go wrong.
class PairReader {
public:
    PairReader(std::istream &inputStream, std::string const &inputName)
        : input(inputStream)
        , name(inputName)
    {
    }

    bool nextLine()
    {
        if (!std::getline(input, line))
            return false;
        ++lineNumber;
        line.erase(line.find_last_not_of(" \t\r") + 1);
        return true;
    }

    bool isBlank() const { return line.empty(); }

    NumberedGraph::Link readPair(char const *what, std::uint64_t end) const
    {
        char const *at = line.data();
        char const *const lineEnd = at + line.size();
        const unsigned first = readNumber(at, lineEnd, what, end);
        if (at == lineEnd || (*at != ' ' && *at != '\t'))
            fail(std::string("expected ") + what);
        while (at != lineEnd && (*at == ' ' || *at == '\t'))
            ++at;
        const unsigned second = readNumber(at, lineEnd, what, end);
        if (at != lineEnd)
            fail(std::string("more than ") + what);
        return {first, second};
    }

    [[noreturn]] void fail(std::string const &message) const
    {
        throw GraphFileError(name + ':' + std::to_string(lineNumber) + ": " + message);
    }

private:
    unsigned readNumber(char const *&at, char const *lineEnd, char const *what,
                        std::uint64_t end) const
    {
        std::uint64_t value = 0;
        const auto [stop, error] = std::from_chars(at, lineEnd, value);
        if (error == std::errc::invalid_argument)
            fail(std::string("expected ") + what);
        if (error != std::errc() || value >= end)
            fail(std::string(at, stop) + " is not below " + std::to_string(end));
        at = stop;
        return static_cast<unsigned>(value);
    }

    std::istream &input;
    std::string const &name;
    std::string line;
    std::size_t lineNumber = 0;
};

} // namespace

NumberedGraph readGraph(std::istream &input, std::string const &name)
{
    PairReader reader(input, name);
    if (!reader.nextLine())
        throw GraphFileError(name + ": empty");
    const auto [numNodes, numLinks] =
        reader.readPair("number of nodes and number of links", maxNum);
    NumberedGraph graph;
    graph.numNodes = numNodes;
    // The number of links isn't trusted with memory: it grows as links arrive.
    while (graph.links.size() < numLinks) {
        if (!reader.nextLine())
            reader.fail("ends after " + std::to_string(graph.links.size()) + " of " +
                        std::to_string(numLinks) + " links");
        graph.links.push_back(reader.readPair("tail and head", numNodes));
    }
    while (reader.nextLine())
        if (!reader.isBlank())
            reader.fail("more than " + std::to_string(numLinks) + " links");
    if (input.bad())
        throw GraphFileError(name + ": can't be read");
    return graph;
}

NumberedGraph readGraphFile(std::string const &path)
{
    std::ifstream input(path, std::ios::binary);
    // A folder opens, but has nothing to read.
    if (!input || (input.peek() == std::ifstream::traits_type::eof() && input.bad()))
        throw GraphFileError(path + ": can't be read");
    return readGraph(input, path);
}

unsigned drawBelow(std::mt19937 &generator, unsigned num)
{
    return static_cast<unsigned>(generator() % num);
}

void shuffleLinks(NumberedGraph &graph, std::mt19937 &generator)
{
    for (std::size_t i = graph.links.size(); i > 1; --i)
        std::swap(graph.links[i - 1], graph.links[drawBelow(generator, static_cast<unsigned>(i))]);
}

NumberedGraph chainGraph(unsigned numNodes)
{
    NumberedGraph graph;
    graph.numNodes = numNodes;
    for (unsigned i = 1; i < numNodes; ++i)
        graph.links.emplace_back(i - 1, i);
    return graph;
}

NumberedGraph randomDag(unsigned numNodes, unsigned numExtraLinks, std::mt19937 &generator)
{
    std::vector<unsigned> order(numNodes);
    std::iota(order.begin(), order.end(), 0u);
    for (std::size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[drawBelow(generator, static_cast<unsigned>(i))]);
    std::set<NumberedGraph::Link> links;
    for (unsigned i = 1; i < numNodes; ++i)
        links.emplace(order[drawBelow(generator, i)], order[i]);
    for (unsigned i = 0; i < numExtraLinks; ++i) {
        const auto [low, high] =
            std::minmax({drawBelow(generator, numNodes), drawBelow(generator, numNodes)});
        if (low != high)
            links.emplace(order[low], order[high]);
    }
    NumberedGraph graph;
    graph.numNodes = numNodes;
    graph.links.assign(links.begin(), links.end());
    shuffleLinks(graph, generator);
    return graph;
}

NumberedGraph randomGraph(unsigned numNodes, unsigned numLinks, std::mt19937 &generator)
{
    NumberedGraph graph;
    graph.numNodes = numNodes;
    for (unsigned i = 0; i < numLinks; ++i) {
        const unsigned tail = drawBelow(generator, numNodes);
        graph.links.emplace_back(tail, drawBelow(generator, numNodes));
    }
    return graph;
}
