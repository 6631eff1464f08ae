#include "support/NumberedGraph.h"
#include "zrVOMGUI/graph/layout/SpanningTree.h"

#include <QTest>

#include <algorithm>
#include <optional>
#include <sstream>

using ZR::VOM::GUI::Graph::SpanningTree;

namespace {

constexpr unsigned none = SpanningTree::none;

struct Ends {
    unsigned tail, head;
};

/// A tree that knows nothing but the list of its edges and the order in which they came, and works
/// out all else when asked.
class NaiveTree {
public:
    NaiveTree(unsigned vertexCount, std::vector<Ends> const &graphEdges)
        : numVertices(vertexCount)
        , edges(graphEdges)
    {
    }

    void append(unsigned edge)
    {
        places.push_back(edge);
        ages.push_back(edge);
    }

    void exchange(unsigned leaving, unsigned entering)
    {
        *std::find(places.begin(), places.end(), leaving) = entering;
        ages.erase(std::find(ages.begin(), ages.end(), leaving));
        ages.push_back(entering);
    }

    bool contains(unsigned edge) const
    {
        return std::find(places.begin(), places.end(), edge) != places.end();
    }

    /// The edge on the way from each vertex to the root.
    std::vector<unsigned> parentEdges() const
    {
        std::vector<unsigned> parentEdge(numVertices, none);
        std::vector<bool> known(numVertices, false);
        known[0] = true;
        for (unsigned round = 0; round < numVertices; ++round) {
            for (unsigned edge : places) {
                const auto [tail, head] = edges[edge];
                if (known[tail] == known[head])
                    continue;
                parentEdge[known[tail] ? head : tail] = edge;
                known[tail] = known[head] = true;
            }
        }
        return parentEdge;
    }

    unsigned otherEnd(unsigned edge, unsigned vertex) const
    {
        return edges[edge].tail == vertex ? edges[edge].head : edges[edge].tail;
    }

    /// From a vertex up to the root, both included.
    std::vector<unsigned> wayUp(unsigned vertex, std::vector<unsigned> const &parentEdge) const
    {
        std::vector<unsigned> way{vertex};
        while (vertex != 0) {
            vertex = otherEnd(parentEdge[vertex], vertex);
            way.push_back(vertex);
        }
        return way;
    }

    const unsigned numVertices;
    std::vector<Ends> edges;      // Of the graph, by id.
    std::vector<unsigned> places; // Tree edges by place.
    std::vector<unsigned> ages;   // Tree edges in the order of their entry.
};

/// Whether the thread runs through all of a subtree before anything else.
bool subtreeIsAStretch(SpanningTree const &tree, NaiveTree const &naive,
                       std::vector<unsigned> const &parentEdge, unsigned vertex)
{
    unsigned v = vertex;
    for (unsigned i = 0; i < tree.size(vertex); ++i, v = tree.next(v)) {
        const std::vector<unsigned> way = naive.wayUp(v, parentEdge);
        if (std::find(way.begin(), way.end(), vertex) == way.end() || (i != 0 && v == vertex))
            return false;
    }
    return v == tree.nextOutside(vertex);
}

/// The first thing that the two trees don't agree on; empty when there is none.
QString difference(SpanningTree const &tree, NaiveTree const &naive)
{
    if (tree.numVertices() != naive.numVertices)
        return "number of vertices";
    if (tree.numPlaces() != naive.places.size())
        return "number of places";
    for (unsigned edge = 0; edge < naive.edges.size(); ++edge)
        if (tree.contains(edge) != naive.contains(edge))
            return QString("whether edge %1 is in the tree").arg(edge);
    for (unsigned place = 0; place < naive.places.size(); ++place)
        if (tree.place(naive.places[place]) != place || tree.edgeAt(place) != naive.places[place])
            return QString("edge at place %1").arg(place);
    for (std::size_t i = 1; i < naive.ages.size(); ++i)
        if (tree.age(naive.ages[i - 1]) >= tree.age(naive.ages[i]))
            return QString("age of edge %1").arg(naive.ages[i]);

    const std::vector<unsigned> parentEdge = naive.parentEdges();
    std::vector<unsigned> sizes(naive.numVertices, 0);
    for (unsigned v = 0; v < naive.numVertices; ++v)
        for (unsigned above : naive.wayUp(v, parentEdge))
            ++sizes[above];
    for (unsigned v = 0; v < naive.numVertices; ++v) {
        const QString name = QString(" of vertex %1").arg(v);
        if (tree.parentEdge(v) != parentEdge[v])
            return "parent edge" + name;
        if (tree.parent(v) != (v == 0 ? none : naive.otherEnd(parentEdge[v], v)))
            return "parent" + name;
        if (tree.size(v) != sizes[v])
            return "size" + name;
        if (tree.previous(tree.next(v)) != v)
            return "thread back" + name;
        if (!subtreeIsAStretch(tree, naive, parentEdge, v))
            return "thread" + name;
        for (unsigned other = 0; other < naive.numVertices; ++other) {
            const std::vector<unsigned> way = naive.wayUp(v, parentEdge);
            const std::vector<unsigned> otherWay = naive.wayUp(other, parentEdge);
            const unsigned wanted =
                *std::find_first_of(way.begin(), way.end(), otherWay.begin(), otherWay.end());
            if (tree.commonAncestor(v, other) != wanted)
                return QString("common ancestor with %1").arg(other) + name;
        }
    }
    return {};
}

/// A library tree and a naive one, on which the same is done.
struct TreePair {
    TreePair(unsigned numVertices, std::vector<Ends> const &graphEdges)
        : naive(numVertices, graphEdges)
    {
    }

    void append(unsigned edge) { naive.append(edge); }

    /// To be called when all tree edges are appended.
    void plant()
    {
        std::vector<SpanningTree::Edge> treeEdges;
        for (unsigned edge : naive.places)
            treeEdges.push_back({edge, {naive.edges[edge].tail, naive.edges[edge].head}});
        tree.emplace(naive.numVertices, static_cast<unsigned>(naive.edges.size()), treeEdges);
    }

    /// The end of an edge that lies in the subtree below a tree edge; none when both lie there, or
    /// both outside, so that the one can't replace the other.
    unsigned lowerEnd(unsigned edge, unsigned leaving) const
    {
        const std::vector<unsigned> parentEdge = naive.parentEdges();
        const auto isBelow = [&](unsigned vertex) {
            while (vertex != 0 && parentEdge[vertex] != leaving)
                vertex = naive.otherEnd(parentEdge[vertex], vertex);
            return vertex != 0;
        };
        const auto [tail, head] = naive.edges[edge];
        if (isBelow(tail) == isBelow(head))
            return none;
        return isBelow(tail) ? tail : head;
    }

    void exchange(unsigned leaving, unsigned entering)
    {
        const auto [tail, head] = naive.edges[leaving];
        const unsigned child = tree->parentEdge(tail) == leaving ? tail : head;
        const unsigned lower = lowerEnd(entering, leaving);
        tree->exchange({leaving, child, entering, lower, naive.otherEnd(entering, lower)});
        naive.exchange(leaving, entering);
    }

    std::optional<SpanningTree> tree;
    NaiveTree naive;
};

/// A connected graph's edges, some of them parallel, in any order and direction.
std::vector<Ends> drawEdges(unsigned numVertices, unsigned numMore, std::mt19937 &generator)
{
    NumberedGraph graph = randomDag(numVertices, numMore, generator);
    if (!graph.links.empty())
        graph.links.push_back(graph.links.front());
    std::vector<Ends> edges;
    for (auto const &[tail, head] : graph.links)
        edges.push_back(drawBelow(generator, 2) == 0 ? Ends{tail, head} : Ends{head, tail});
    return edges;
}

/// Takes in the edges that join what wasn't joined, in order.
void grow(TreePair &trees)
{
    std::vector<unsigned> piece(trees.naive.numVertices);
    for (unsigned v = 0; v < piece.size(); ++v)
        piece[v] = v;
    for (unsigned edge = 0; edge < trees.naive.edges.size(); ++edge) {
        const unsigned kept = piece[trees.naive.edges[edge].tail];
        const unsigned joined = piece[trees.naive.edges[edge].head];
        if (kept == joined)
            continue;
        std::replace(piece.begin(), piece.end(), joined, kept);
        trees.append(edge);
    }
}

} // namespace

/// The solver's tree against one that works everything out anew.
class tst_SpanningTree : public QObject {
    Q_OBJECT

private slots:
    void singleVertexIsATree();
    void rootingFindsParentsAndSizes();
    void exchangeTurnsThePathUpsideDown();
    void exchangeOfParallelEdgesKeepsTheShape();
    void exchangeTakesThePlaceAndIsTheYoungest();
    void exchangeNextToTheRoot();
    void threadRunsThroughSubtreesOneByOne();
    void randomExchangesEqualTheNaiveOnes_data();
    void randomExchangesEqualTheNaiveOnes();
};

void tst_SpanningTree::singleVertexIsATree()
{
    TreePair trees(1, {});
    trees.plant();
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QCOMPARE(trees.tree->parent(0), none);
    QCOMPARE(trees.tree->parentEdge(0), none);
    QCOMPARE(trees.tree->size(0), 1u);
}

//      0
//     / v
//    v   2
//    1   ^
//       3 > 4
void tst_SpanningTree::rootingFindsParentsAndSizes()
{
    TreePair trees(5, {{3, 2}, {3, 4}, {0, 1}, {0, 2}, {1, 4}});
    for (unsigned edge : {1u, 0u, 3u, 2u})
        trees.append(edge);
    trees.plant();
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QCOMPARE(trees.tree->parent(4), 3u);
    QCOMPARE(trees.tree->size(2), 3u);
    QCOMPARE(trees.tree->commonAncestor(1, 4), 0u);
    QVERIFY(!trees.tree->contains(4));
}

// A path 0 > 1 > 2 > 3 > 4, of which 1 > 2 gives way to 0 > 4: 2 is now at the lower end.
void tst_SpanningTree::exchangeTurnsThePathUpsideDown()
{
    TreePair trees(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {0, 4}});
    for (unsigned edge : {0u, 1u, 2u, 3u})
        trees.append(edge);
    trees.plant();
    trees.exchange(1, 4);
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QCOMPARE(trees.tree->parent(4), 0u);
    QCOMPARE(trees.tree->parent(2), 3u);
    QCOMPARE(trees.tree->size(4), 3u);
    QCOMPARE(trees.tree->size(2), 1u);
    QCOMPARE(trees.tree->size(1), 1u);
}

void tst_SpanningTree::exchangeOfParallelEdgesKeepsTheShape()
{
    TreePair trees(3, {{0, 1}, {1, 2}, {1, 0}});
    trees.append(0);
    trees.append(1);
    trees.plant();
    trees.exchange(0, 2);
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QCOMPARE(trees.tree->parent(1), 0u);
    QCOMPARE(trees.tree->parentEdge(1), 2u);
    QCOMPARE(trees.tree->size(1), 2u);
}

void tst_SpanningTree::exchangeTakesThePlaceAndIsTheYoungest()
{
    TreePair trees(4, {{0, 1}, {0, 2}, {0, 3}, {0, 1}});
    for (unsigned edge : {0u, 1u, 2u})
        trees.append(edge);
    trees.plant();
    trees.exchange(0, 3);
    QCOMPARE(trees.tree->place(3), 0u);
    QCOMPARE(trees.tree->edgeAt(0), 3u);
    QVERIFY(trees.tree->age(3) > trees.tree->age(2));
    // Back again: what was first before is last now.
    trees.exchange(3, 0);
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QVERIFY(trees.tree->age(0) > trees.tree->age(2));
}

/// The root stays the root, though all of its edges are exchanged.
void tst_SpanningTree::exchangeNextToTheRoot()
{
    TreePair trees(3, {{1, 0}, {2, 1}, {0, 2}});
    trees.append(0);
    trees.append(1);
    trees.plant();
    trees.exchange(0, 2);
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QCOMPARE(trees.tree->parent(0), none);
    QCOMPARE(trees.tree->size(0), 3u);
    QCOMPARE(trees.tree->parent(2), 0u);
    QCOMPARE(trees.tree->parent(1), 2u);
}

//      0
//     / v
//    v   2
//    1   v
//        3
// The edge to 2 gives way to one from 1: what ended the thread goes on doing so, below another one.
void tst_SpanningTree::threadRunsThroughSubtreesOneByOne()
{
    TreePair trees(4, {{0, 1}, {0, 2}, {2, 3}, {1, 3}});
    for (unsigned edge : {0u, 1u, 2u})
        trees.append(edge);
    trees.plant();
    QCOMPARE(trees.tree->nextOutside(0), 0u);
    QCOMPARE(trees.tree->next(2), 3u);
    trees.exchange(1, 3);
    QCOMPARE(difference(*trees.tree, trees.naive), QString());
    QCOMPARE(trees.tree->next(1), 3u);
    QCOMPARE(trees.tree->next(3), 2u);
    QCOMPARE(trees.tree->nextOutside(1), 0u);
}

void tst_SpanningTree::randomExchangesEqualTheNaiveOnes_data()
{
    QTest::addColumn<unsigned>("numVertices");
    QTest::addColumn<unsigned>("numMoreEdges");
    QTest::addColumn<unsigned>("numSteps");
    QTest::newRow("two vertices") << 2u << 3u << 40u;
    QTest::newRow("three vertices") << 3u << 6u << 40u;
    QTest::newRow("nearly a tree") << 14u << 2u << 400u;
    QTest::newRow("sparse") << 12u << 12u << 400u;
    QTest::newRow("dense") << 9u << 60u << 80u;
    QTest::newRow("larger") << 30u << 40u << 150u;
}

void tst_SpanningTree::randomExchangesEqualTheNaiveOnes()
{
    QFETCH(unsigned, numVertices);
    QFETCH(unsigned, numMoreEdges);
    QFETCH(unsigned, numSteps);
    unsigned numExchanges = 0;
    for (unsigned seed = 1; seed <= 15; ++seed) {
        std::mt19937 generator(seed);
        TreePair trees(numVertices, drawEdges(numVertices, numMoreEdges, generator));
        grow(trees);
        trees.plant();
        QCOMPARE(difference(*trees.tree, trees.naive), QString());
        for (unsigned step = 0; step < numSteps; ++step) {
            auto const &places = trees.naive.places;
            const auto numEdges = static_cast<unsigned>(trees.naive.edges.size());
            const unsigned entering = drawBelow(generator, numEdges);
            const unsigned leaving =
                places[drawBelow(generator, static_cast<unsigned>(places.size()))];
            if (trees.naive.contains(entering) || trees.lowerEnd(entering, leaving) == none)
                continue;
            trees.exchange(leaving, entering);
            ++numExchanges;
            const QString found = difference(*trees.tree, trees.naive);
            QVERIFY2(found.isEmpty(),
                     qPrintable(QString("seed %1, step %2: ").arg(seed).arg(step) + found));
        }
    }
    QVERIFY2(numExchanges >= 100, "the programs exchange too little");
}

QTEST_GUILESS_MAIN(tst_SpanningTree)
#include "tst_SpanningTree.moc"
