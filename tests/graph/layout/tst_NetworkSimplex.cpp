#include "support/LiteralNetworkSimplex.h"
#include "support/NumberedGraph.h"
#include "zrVOMGUI/graph/layout/NetworkSimplex.h"

#include <QTest>

#include <algorithm>
#include <numeric>
#include <sstream>

using ZR::VOM::GUI::Graph::LiteralNetworkSimplex;
using ZR::VOM::GUI::Graph::NetworkSimplex;

namespace {

struct Edge {
    unsigned tail, head;
    std::uint16_t weight = 1;
    std::uint16_t minLength = 1;
};

struct Problem {
    unsigned numVertices = 0;
    std::vector<Edge> edges;
};

std::string describe(Problem const &problem)
{
    std::ostringstream text;
    text << problem.numVertices << " vertices:";
    for (Edge const &e : problem.edges)
        text << ' ' << e.tail << '>' << e.head << " w" << e.weight << " l" << e.minLength;
    return text.str();
}

template <class Simplex>
Simplex build(Problem const &problem)
{
    Simplex simplex;
    for (unsigned i = 0; i < problem.numVertices; ++i)
        simplex.addVertex();
    for (Edge const &e : problem.edges)
        simplex.addEdge(e.tail, e.head, e.weight, e.minLength);
    return simplex;
}

/// The ranks above the lowest one.
template <class Simplex>
std::vector<int> ranksOf(Simplex const &simplex, Problem const &problem)
{
    const int lowest = simplex.lowestRank();
    std::vector<int> ranks;
    for (unsigned v = 0; v < problem.numVertices; ++v)
        ranks.push_back(simplex.rank(v) - lowest);
    return ranks;
}

std::vector<int> solve(Problem const &problem)
{
    auto simplex = build<NetworkSimplex>(problem);
    simplex.solve();
    return ranksOf(simplex, problem);
}

LiteralNetworkSimplex solveLiterally(Problem const &problem)
{
    auto simplex = build<LiteralNetworkSimplex>(problem);
    simplex.solve();
    return simplex;
}

long long costOf(Problem const &problem, std::vector<int> const &ranks)
{
    long long sum = 0;
    for (Edge const &e : problem.edges)
        sum += static_cast<long long>(e.weight) * (ranks[e.head] - ranks[e.tail]);
    return sum;
}

bool isFeasible(Problem const &problem, std::vector<int> const &ranks)
{
    return std::all_of(problem.edges.begin(), problem.edges.end(),
                       [&](Edge const &e) { return ranks[e.head] - ranks[e.tail] >= e.minLength; });
}

Problem rankProblem(NumberedGraph const &graph)
{
    Problem problem;
    problem.numVertices = graph.numNodes;
    for (auto const &[tail, head] : graph.links)
        problem.edges.push_back({tail, head});
    return problem;
}

/// An acyclic graph with edges of any weight and length, some of them parallel.
Problem weightedProblem(unsigned numVertices, std::mt19937 &generator)
{
    NumberedGraph graph = randomDag(numVertices, drawBelow(generator, 2 * numVertices), generator);
    const std::size_t numDistinct = graph.links.size();
    for (unsigned i = drawBelow(generator, 4); i > 0 && numDistinct > 0; --i)
        graph.links.push_back(
            graph.links[drawBelow(generator, static_cast<unsigned>(numDistinct))]);
    Problem problem = rankProblem(graph);
    for (Edge &e : problem.edges) {
        e.weight = static_cast<std::uint16_t>(drawBelow(generator, 6));
        e.minLength = static_cast<std::uint16_t>(drawBelow(generator, 8));
    }
    return problem;
}

/// What coordinate assignment hands over: numbered nodes in layers, a vertex with two edges for
/// each link, and edges of weight 0 between neighbours.
Problem coordinateProblem(unsigned numLayers, unsigned maxWidth, std::mt19937 &generator)
{
    std::vector<unsigned> sizes(numLayers);
    for (unsigned &size : sizes)
        size = 1 + drawBelow(generator, maxWidth);
    Problem problem;
    problem.numVertices = std::accumulate(sizes.begin(), sizes.end(), 0u);
    std::vector<unsigned> numbers(problem.numVertices);
    std::iota(numbers.begin(), numbers.end(), 0u);
    for (std::size_t i = numbers.size(); i > 1; --i)
        std::swap(numbers[i - 1], numbers[drawBelow(generator, static_cast<unsigned>(i))]);
    std::vector<std::vector<unsigned>> layers;
    auto next = numbers.begin();
    for (unsigned size : sizes) {
        layers.emplace_back(next, next + size);
        next += size;
    }

    const auto any = [&](std::vector<unsigned> const &layer) {
        return layer[drawBelow(generator, static_cast<unsigned>(layer.size()))];
    };
    std::vector<NumberedGraph::Link> links;
    for (std::size_t l = 0; l + 1 < layers.size(); ++l) {
        for (unsigned from : layers[l])
            links.emplace_back(from, any(layers[l + 1]));
        for (unsigned to : layers[l + 1])
            links.emplace_back(any(layers[l]), to);
        // One component: the simplex may not be handed more.
        links.emplace_back(layers[l].front(), layers[l + 1].front());
    }
    std::sort(links.begin(), links.end());
    links.erase(std::unique(links.begin(), links.end()), links.end());
    for (auto const &[from, to] : links) {
        const unsigned auxiliary = problem.numVertices++;
        problem.edges.push_back({auxiliary, from, 1, 0});
        problem.edges.push_back({auxiliary, to, 1, 0});
    }

    std::vector<unsigned> widths(numbers.size());
    for (unsigned &width : widths)
        width = drawBelow(generator, 3) == 0 ? 0 : 30 + drawBelow(generator, 90);
    for (auto const &layer : layers)
        for (std::size_t i = 1; i < layer.size(); ++i)
            problem.edges.push_back(
                {layer[i - 1], layer[i], 0,
                 static_cast<std::uint16_t>((widths[layer[i - 1]] + widths[layer[i]]) / 2 + 8)});
    return problem;
}

Problem randomProblem(QString const &kind, bool large, std::mt19937 &generator)
{
    const auto size = [&](unsigned small, unsigned big) {
        return large ? big + drawBelow(generator, big) : 1 + drawBelow(generator, small);
    };
    if (kind == "sparse ranks") {
        const unsigned n = size(18, 200);
        return rankProblem(randomDag(n, n / 2, generator));
    }
    if (kind == "dense ranks") {
        const unsigned n = size(12, 60);
        return rankProblem(randomDag(n, 3 * n, generator));
    }
    if (kind == "weights and lengths")
        return weightedProblem(size(14, 150), generator);
    return coordinateProblem(size(6, 20), large ? 20 : 5, generator);
}

void addKinds()
{
    QTest::addColumn<QString>("kind");
    for (char const *kind : {"sparse ranks", "dense ranks", "weights and lengths", "coordinates"})
        QTest::newRow(kind) << kind;
}

/// Whether update() is about to move the whole tree instead of one side.
bool movesTheWholeTree(LiteralNetworkSimplex const &simplex,
                       LiteralNetworkSimplex::Pivot const &pivot)
{
    if (simplex.slack(pivot.entering) <= 0)
        return false;
    const auto numTreeEdges = [&](unsigned v) {
        return simplex.vertices[v].treeIn.size() + simplex.vertices[v].treeOut.size();
    };
    const auto isRoot = [&](unsigned v) { return simplex.vertices[v].parentEdge == simplex.none; };
    const unsigned tail = simplex.edges[pivot.leaving].tail;
    const unsigned head = simplex.edges[pivot.leaving].head;
    if (numTreeEdges(tail) == 1)
        return isRoot(tail);
    return numTreeEdges(head) == 1 && isRoot(head);
}

} // namespace

Q_DECLARE_METATYPE(Problem)

class tst_NetworkSimplex : public QObject {
    Q_OBJECT

private slots:
    void givesRanks_data();
    void givesRanks();
    void singleVertexGetsRank0();
    void singleVertexIsItsOwnTree();
    void freeVertexMovesHalfOfItsWay_data();
    void freeVertexMovesHalfOfItsWay();
    void headAtTheRootMovesTheWholeTree();
    void everyGraphOfFiveVerticesReachesTheLeastSum();
    void agreesWithTheLiteralOne_data() { addKinds(); }
    void agreesWithTheLiteralOne();
    void agreesWithTheLiteralOneOnLargeGraphs_data() { addKinds(); }
    void agreesWithTheLiteralOneOnLargeGraphs();
    void literalTreeProvesTheOptimum_data() { addKinds(); }
    void literalTreeProvesTheOptimum();
    void leavingEdgeIsTheFirstOfTheMostNegative();
    void longChainNeedsNoDeepStack();
    void longWayRoundNeedsNoDeepStack();
};

void tst_NetworkSimplex::givesRanks_data()
{
    QTest::addColumn<Problem>("problem");
    QTest::addColumn<std::vector<int>>("ranks");
    const auto row = [](char const *name, unsigned numVertices, std::vector<Edge> const &edges,
                        std::vector<int> const &ranks) {
        QTest::newRow(name) << Problem{numVertices, edges} << ranks;
    };
    row("chain", 3, {{0, 1}, {1, 2}}, {0, 1, 2});
    row("chain against the numbers", 3, {{2, 1}, {1, 0}}, {2, 1, 0});
    row("diamond", 4, {{0, 1}, {0, 2}, {1, 3}, {2, 3}}, {0, 1, 1, 2});
    row("short path is stretched beside a long one", 4, {{0, 1}, {1, 2}, {2, 3}, {0, 3}},
        {0, 1, 2, 3});
    // By the longest path alone 4 would be in the first layer.
    row("source stands right above its only head", 5, {{0, 1}, {1, 2}, {2, 3}, {4, 3}},
        {0, 1, 2, 3, 2});
    row("sink stands right below its only tail", 4, {{0, 1}, {1, 2}, {0, 3}}, {0, 1, 2, 1});
    // Nothing moves sources to the layers that are still empty.
    row("layer may be crowded", 7, {{0, 1}, {1, 2}, {2, 3}, {4, 3}, {5, 3}, {6, 3}},
        {0, 1, 2, 3, 2, 2, 2});
    row("heavier edge stays short", 5, {{0, 1}, {1, 2}, {2, 3}, {0, 4, 1}, {4, 3, 2}},
        {0, 1, 2, 3, 2});
    row("minimum length 0 lets both ends stand together", 3, {{0, 1, 1, 0}, {0, 2, 1, 0}},
        {0, 0, 0});
    row("greatest minimum length", 2, {{0, 1, 1, 65535}}, {0, 65535});
    row("greatest weight", 5, {{0, 1}, {1, 2}, {2, 3}, {0, 4, 1}, {4, 3, 65535}}, {0, 1, 2, 3, 2});
    row("longer one of two parallel edges counts", 2, {{0, 1, 1, 1}, {0, 1, 1, 3}}, {0, 3});
    row("edge of weight 0 holds its length", 3, {{0, 1, 0, 5}, {2, 0, 1, 0}, {2, 1, 1, 0}},
        {0, 5, 0});
}

void tst_NetworkSimplex::givesRanks()
{
    QFETCH(Problem, problem);
    QFETCH(std::vector<int>, ranks);
    QCOMPARE(solve(problem), ranks);
    QCOMPARE(ranksOf(solveLiterally(problem), problem), ranks);
}

void tst_NetworkSimplex::singleVertexGetsRank0()
{
    NetworkSimplex simplex;
    QCOMPARE(simplex.addVertex(), 0u);
    simplex.solve();
    QCOMPARE(simplex.rank(0), 0);
    QCOMPARE(simplex.lowestRank(), 0);
}

void tst_NetworkSimplex::singleVertexIsItsOwnTree()
{
    LiteralNetworkSimplex simplex = solveLiterally({1, {}});
    QCOMPARE(simplex.vertices[0].low, 1u);
    QCOMPARE(simplex.vertices[0].lim, 1u);
    QCOMPARE(simplex.vertices[0].parentEdge, simplex.none);
    QCOMPARE(simplex.leaveEdge(), simplex.none);
}

void tst_NetworkSimplex::freeVertexMovesHalfOfItsWay_data()
{
    QTest::addColumn<unsigned>("chainLength");
    QTest::addColumn<int>("rank");
    QTest::newRow("no way to go") << 2u << 1;
    QTest::newRow("a way of 1 is none") << 3u << 1;
    QTest::newRow("a way of 2") << 4u << 2;
    QTest::newRow("a way of 3 is halved downwards") << 5u << 2;
    QTest::newRow("a way of 8") << 10u << 5;
}

/// A vertex between the ends of a chain may stand anywhere at equal cost:
///
///     0 -> 1 -> ... -> end
///     0 -> free -----> end
void tst_NetworkSimplex::freeVertexMovesHalfOfItsWay()
{
    QFETCH(unsigned, chainLength);
    QFETCH(int, rank);
    Problem problem = rankProblem(chainGraph(chainLength + 1));
    const unsigned free = problem.numVertices++;
    problem.edges.push_back({0, free});
    problem.edges.push_back({free, chainLength});
    QCOMPARE(solve(problem)[free], rank);
}

/// The root's only tree edge leaves the tree and the root is its head: the side that is shifted is
/// the root's subtree, which is the whole tree. No vertex moves against another, and the sum stays
/// one above the least.
void tst_NetworkSimplex::headAtTheRootMovesTheWholeTree()
{
    const Problem problem{6, {{0, 2}, {0, 4}, {1, 4}, {3, 0}, {3, 5}, {4, 2}, {5, 1}}};
    const std::vector<int> ranks = solve(problem);
    QCOMPARE(ranks, (std::vector<int>{1, 2, 4, 0, 3, 1}));
    QCOMPARE(costOf(problem, ranks), 10);
    const std::vector<int> better{2, 2, 4, 0, 3, 1};
    QVERIFY(isFeasible(problem, better));
    QCOMPARE(costOf(problem, better), 9);
}

/// All acyclic graphs of five vertices, in all numberings, against the best of all rankings.
void tst_NetworkSimplex::everyGraphOfFiveVerticesReachesTheLeastSum()
{
    constexpr unsigned n = 5;
    std::vector<NumberedGraph::Link> pairs;
    for (unsigned i = 0; i < n; ++i)
        for (unsigned j = i + 1; j < n; ++j)
            pairs.emplace_back(i, j);
    std::vector<std::vector<int>> rankings;
    for (unsigned code = 0; code < n * n * n * n * n; ++code) {
        std::vector<int> ranks;
        for (unsigned rest = code, i = 0; i < n; ++i, rest /= n)
            ranks.push_back(static_cast<int>(rest % n));
        rankings.push_back(ranks);
    }
    const auto isConnected = [](Problem const &problem) {
        unsigned reached = 1;
        for (unsigned round = 0; round < n; ++round)
            for (Edge const &e : problem.edges)
                if ((reached >> e.tail | reached >> e.head) & 1)
                    reached |= 1u << e.tail | 1u << e.head;
        return reached == (1u << n) - 1;
    };
    for (unsigned subset = 0; subset < 1u << pairs.size(); ++subset) {
        Problem problem;
        problem.numVertices = n;
        for (std::size_t i = 0; i < pairs.size(); ++i)
            if (subset >> i & 1)
                problem.edges.push_back({pairs[i].first, pairs[i].second});
        if (!isConnected(problem))
            continue;
        long long least = std::numeric_limits<long long>::max();
        for (auto const &ranks : rankings)
            if (isFeasible(problem, ranks))
                least = std::min(least, costOf(problem, ranks));

        std::vector<unsigned> numbers(n);
        std::iota(numbers.begin(), numbers.end(), 0u);
        do {
            Problem numbered = problem;
            for (Edge &e : numbered.edges) {
                e.tail = numbers[e.tail];
                e.head = numbers[e.head];
            }
            const std::vector<int> ranks = solve(numbered);
            if (!isFeasible(numbered, ranks) || costOf(numbered, ranks) != least)
                QFAIL(describe(numbered).c_str());
        } while (std::next_permutation(numbers.begin(), numbers.end()));
    }
}

namespace {

/// Solves random problems in both ways. Answers how often the literal one exchanged tree edges.
std::size_t compareOnRandom(QString const &kind, unsigned numProblems, bool large)
{
    std::size_t numPivots = 0;
    for (unsigned seed = 1; seed <= numProblems; ++seed) {
        std::mt19937 generator(seed);
        const Problem problem = randomProblem(kind, large, generator);
        const LiteralNetworkSimplex literal = solveLiterally(problem);
        numPivots += literal.numPivots();
        const std::vector<int> ranks = solve(problem);
        if (ranks != ranksOf(literal, problem) || costOf(problem, ranks) != literal.cost() ||
            !isFeasible(problem, ranks)) {
            const std::string text = "seed " + std::to_string(seed) + ", " + describe(problem);
            QTest::qFail(text.c_str(), __FILE__, __LINE__);
            break;
        }
    }
    return numPivots;
}

} // namespace

void tst_NetworkSimplex::agreesWithTheLiteralOne()
{
    QFETCH(QString, kind);
    const std::size_t numPivots = compareOnRandom(kind, 5000, false);
    QVERIFY2(numPivots > 300, "too few graphs need the main loop");
}

void tst_NetworkSimplex::agreesWithTheLiteralOneOnLargeGraphs()
{
    QFETCH(QString, kind);
    const std::size_t numPivots = compareOnRandom(kind, 10, true);
    QVERIFY2(numPivots > 100, "too few graphs need the main loop");
}

void tst_NetworkSimplex::literalTreeProvesTheOptimum()
{
    QFETCH(QString, kind);
    for (unsigned seed = 1; seed <= 500; ++seed) {
        std::mt19937 generator(seed);
        const Problem problem = randomProblem(kind, false, generator);
        auto simplex = build<LiteralNetworkSimplex>(problem);
        simplex.initRanks();
        simplex.feasibleTree();
        bool isTight = true;
        for (auto e = simplex.leaveEdge(); e != simplex.none; e = simplex.leaveEdge()) {
            const LiteralNetworkSimplex::Pivot pivot{e, simplex.enterEdge(e)};
            isTight = isTight && !movesTheWholeTree(simplex, pivot);
            simplex.update(pivot.leaving, pivot.entering);
        }

        const std::string text = "seed " + std::to_string(seed) + ", " + describe(problem);
        QCOMPARE(simplex.treeEdges.size() + 1, simplex.vertices.size());
        for (auto e : simplex.treeEdges) {
            QVERIFY2(simplex.edges[e].cutValue == simplex.floodedCutValue(e), text.c_str());
            QVERIFY2(simplex.edges[e].cutValue >= 0, text.c_str());
            QVERIFY2(simplex.slack(e) == 0 || !isTight, text.c_str());
        }
        const long long cost = simplex.cost();
        simplex.balance();
        QVERIFY2(simplex.cost() == cost, text.c_str());
        for (auto const &e : simplex.edges)
            QVERIFY2(simplex.slack(e.id) >= 0, text.c_str());
    }
}

/// Two edges of equal cut value: the one that entered the tree first leaves it.
void tst_NetworkSimplex::leavingEdgeIsTheFirstOfTheMostNegative()
{
    //   0 -> 1 -> 2 -> 3, with two sources 4 and 5 that hang on 3 by two edges each.
    const Problem problem{6, {{0, 1}, {1, 2}, {2, 3}, {0, 4}, {4, 3, 3}, {0, 5}, {5, 3, 3}}};
    auto simplex = build<LiteralNetworkSimplex>(problem);
    simplex.initRanks();
    simplex.feasibleTree();
    QCOMPARE(simplex.edges[3].cutValue, -2);
    QCOMPARE(simplex.edges[5].cutValue, -2);
    QVERIFY(simplex.edges[3].treeIndex < simplex.edges[5].treeIndex);
    QCOMPARE(simplex.leaveEdge(), 3u);
    QCOMPARE(simplex.searchCursor, 5u);
    QCOMPARE(simplex.leaveEdge(), 3u);
    QCOMPARE(solve(problem), (std::vector<int>{0, 1, 2, 3, 2, 2}));
}

void tst_NetworkSimplex::longChainNeedsNoDeepStack()
{
    constexpr unsigned n = 300000;
    const std::vector<int> ranks = solve(rankProblem(chainGraph(n)));
    QCOMPARE(ranks.front(), 0);
    QCOMPARE(ranks.back(), static_cast<int>(n) - 1);
}

/// Two chains between the same ends, the shorter one pulled down by a heavy last edge: the main
/// loop and its walks meet a tree as deep as the graph.
void tst_NetworkSimplex::longWayRoundNeedsNoDeepStack()
{
    constexpr unsigned n = 150000;
    Problem problem = rankProblem(chainGraph(n));
    unsigned last = 0;
    for (unsigned i = 0; i < n - 10; ++i) {
        problem.edges.push_back({last, problem.numVertices, std::uint16_t(i == 0 ? 1 : 2), 1});
        last = problem.numVertices++;
    }
    problem.edges.push_back({last, n - 1, 5, 1});
    const std::vector<int> ranks = solve(problem);
    QCOMPARE(ranks[n - 1], static_cast<int>(n) - 1);
    QCOMPARE(ranks[last], static_cast<int>(n) - 2);
    QVERIFY(isFeasible(problem, ranks));
}

QTEST_APPLESS_MAIN(tst_NetworkSimplex)
#include "tst_NetworkSimplex.moc"
