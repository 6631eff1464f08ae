#pragma once

#include <iosfwd>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// A directed graph of nodes 0 to numNodes - 1, as graph files hold it. Parallel links and links
/// from a node to itself are allowed.
struct NumberedGraph {
    using Link = std::pair<unsigned, unsigned>; // From tail to head.

    unsigned numNodes = 0;
    std::vector<Link> links;
};

/// A graph file can't be read, or isn't one. The text names file and line.
class GraphFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a graph: a first line "n m", then m lines "tail head", of plain decimal numbers. Blanks at
/// the end of a line, and blank lines at the end of the file, are passed over. Throws
/// GraphFileError, which calls the input by `name`.
NumberedGraph readGraph(std::istream &input, std::string const &name);
NumberedGraph readGraphFile(std::string const &path);

/// \name Made graphs
/// The same generator state gives the same graph on every machine.
/// @{

/// A number from 0 to num - 1.
unsigned drawBelow(std::mt19937 &generator, unsigned num);
void shuffleLinks(NumberedGraph &graph, std::mt19937 &generator);

/// 0 -> 1 -> 2 ...
NumberedGraph chainGraph(unsigned numNodes);
/// Connected and without a cycle, without parallel links. The numbers say nothing about the order.
NumberedGraph randomDag(unsigned numNodes, unsigned numExtraLinks, std::mt19937 &generator);
/// Any links: cycles, opposed pairs, parallel links, self-links, several components.
NumberedGraph randomGraph(unsigned numNodes, unsigned numLinks, std::mt19937 &generator);
/// @}
