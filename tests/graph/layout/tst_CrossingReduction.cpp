#include "support/LayoutOracle.h"
#include "support/LiteralLayout.h"
#include "support/ViewGraph.h"
#include "zrVOMGUI/graph/layout/CrossingReduction.h"

#include <QTest>

#include <algorithm>
#include <cstdlib>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Graph::CrossingReduction;
using Graph::Hierarchy;
using Graph::LayoutOracle;
using Links = std::vector<NumberedGraph::Link>;

namespace {

/// Numbered nodes in layers, and links between adjacent layers.
struct LayeredGraph {
    CrossingReduction::Layers layers;
    std::vector<Hierarchy::Link> links;
    unsigned numNodes = 0;
};

LayeredGraph withSizes(std::vector<unsigned> const &sizes)
{
    LayeredGraph graph;
    for (unsigned size : sizes) {
        graph.layers.emplace_back();
        while (graph.layers.back().size() < size)
            graph.layers.back().push_back(graph.numNodes++);
    }
    return graph;
}

/// Links that are there by chance of 1 in `rarity`; nodes without links on a side are common.
LayeredGraph randomLayers(unsigned numLayers, unsigned maxSize, unsigned rarity,
                          std::mt19937 &generator)
{
    std::vector<unsigned> sizes;
    for (unsigned i = 0; i < numLayers; ++i)
        sizes.push_back(1 + drawBelow(generator, maxSize));
    LayeredGraph graph = withSizes(sizes);
    for (std::size_t i = 1; i < graph.layers.size(); ++i)
        for (unsigned from : graph.layers[i - 1])
            for (unsigned to : graph.layers[i])
                if (drawBelow(generator, rarity) == 0)
                    graph.links.push_back({from, to});
    std::sort(graph.links.begin(), graph.links.end());
    return graph;
}

unsigned countByPairs(LayeredGraph const &graph)
{
    std::vector<int> layerOf(graph.numNodes), order(graph.numNodes);
    for (std::size_t i = 0; i < graph.layers.size(); ++i) {
        for (std::size_t j = 0; j < graph.layers[i].size(); ++j) {
            layerOf[graph.layers[i][j]] = static_cast<int>(i);
            order[graph.layers[i][j]] = static_cast<int>(j);
        }
    }
    unsigned count = 0;
    for (auto const &a : graph.links)
        for (auto const &b : graph.links)
            if (layerOf[a.from] == layerOf[b.from] && order[a.from] < order[b.from] &&
                order[a.to] > order[b.to])
                ++count;
    return count;
}

/// What the literal layout makes of the layers, in place; answers the number of crossings left.
unsigned orderLiterally(LayeredGraph &graph)
{
    Graph::Literal::Graph literal;
    Graph::Literal::NodeSet nodes;
    for (unsigned i = 0; i < graph.numNodes; ++i)
        nodes.insert(&literal.addNode(i, 0, 0));
    for (auto const &link : graph.links)
        literal.link(literal.nodes[link.from], literal.nodes[link.to], 1);
    for (std::size_t i = 0; i < graph.layers.size(); ++i)
        for (unsigned node : graph.layers[i])
            literal.nodes[node].rank = static_cast<int>(i);
    Graph::Literal::Hierarchy hierarchy(literal);
    hierarchy.fillLayers(nodes, static_cast<int>(graph.layers.size()) - 1);
    hierarchy.orderLayers(nodes);
    for (std::size_t i = 0; i < graph.layers.size(); ++i)
        std::transform(
            hierarchy.layers[i].begin(), hierarchy.layers[i].end(), graph.layers[i].begin(),
            [](Graph::Literal::Node const *node) { return static_cast<unsigned>(node->address); });
    return hierarchy.countCrossings();
}

unsigned order(LayeredGraph &graph)
{
    return CrossingReduction(graph.numNodes, graph.links, graph.layers).run();
}

/// The number of pairs of pieces of links that cross in the view's drawing of one component.
unsigned countInDrawing(ViewGraph const &graph)
{
    struct Piece {
        int top, x0, x1; // From upper to lower end.
    };
    std::vector<Piece> pieces;
    const auto add = [&](Graph::Node const &a, Graph::Node const &b) {
        const bool down = a.toY < b.toY;
        pieces.push_back({std::min(a.toY, b.toY), down ? a.toX : b.toX, down ? b.toX : a.toX});
    };
    for (unsigned i = 0; i < graph.numNodes(); ++i) {
        for (auto const &[far, entry] : graph.node(i).linkedOut) {
            Graph::Node const *last = &graph.node(i);
            Graph::forEachIntermediate(entry, [&](Graph::Node const &station) {
                add(*last, station);
                last = &station;
            });
            if (far.get() != last)
                add(*last, *far);
        }
    }
    unsigned count = 0;
    for (Piece const &a : pieces)
        for (Piece const &b : pieces)
            if (a.top == b.top && a.x0 < b.x0 && a.x1 > b.x1)
                ++count;
    return count;
}

} // namespace

class tst_CrossingReduction : public QObject {
    Q_OBJECT

private slots:
    void layers_data();
    void layers();
    void unlinkedNodeMovesLeft();
    void orderWithoutCrossingsStaysAsItIs();
    void linkOfManyReferencesCrossesOnce();
    void unavoidableCrossingsStay_data();
    void unavoidableCrossingsStay();
    void generatorIsRestartedForEachLayout();
    void generatorIsRestartedForEachComponent();
    void unavoidableCrossingsTakeAllPasses();
    void countEqualsThatByPairs();
    void randomLayersEqualTheLiteralOnes_data();
    void randomLayersEqualTheLiteralOnes();
    void layerWiderThanOneDrawEqualsTheLiteralOne();
    void figuresTellWhatTheDrawingShows_data();
    void figuresTellWhatTheDrawingShows();
};

void tst_CrossingReduction::layers_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<Links>("links");
    QTest::addColumn<QString>("layers");
    const auto row = [](char const *name, unsigned numNodes, Links const &links,
                        QString const &layers) {
        QTest::newRow(name) << numNodes << links << layers;
    };
    row("one node", 1, {}, "0");
    row("tree in the order of its nodes", 6, {{0, 1}, {0, 2}, {1, 3}, {1, 4}, {2, 5}},
        "0|1 2|3 4 5");
    row("children come under their parents", 6, {{0, 1}, {0, 2}, {2, 3}, {1, 4}, {1, 5}},
        "0|1 2|4 5 3");
    row("first layer keeps its order on the way down", 4, {{0, 3}, {1, 2}, {1, 3}}, "0 1|3 2");
    row("way up clears what the way down left", 7, {{0, 4}, {1, 4}, {3, 4}, {0, 5}, {1, 6}, {2, 6}},
        "0 3 1 2|5 4 6");
}

void tst_CrossingReduction::layers()
{
    QFETCH(unsigned, numNodes);
    QFETCH(Links, links);
    QFETCH(QString, layers);
    ViewGraph graph(numNodes, links);
    LayoutOracle oracle(graph.view);
    graph.show();
    QCOMPARE(oracle.difference(graph.ref(numNodes - 1)), QString());
    QCOMPARE(graph.layers(), layers);
}

/// KEPT in crossing reduction.
///
///     0 1        0 1
///      x          x         4 has no neighbour above. It stands at the right end,
///     2 3 4  ->  3 4 2      and goes to the left of 2 when 2 goes under 1.
///      \|/        \|/
///       5          5
void tst_CrossingReduction::unlinkedNodeMovesLeft()
{
    ViewGraph rightmost(6, {{0, 3}, {1, 2}, {2, 5}, {3, 5}, {4, 5}});
    rightmost.show();
    QCOMPARE(rightmost.layers(), QString("0 1|3 4 2|5"));

    // Its key is equal to that of the node under 0: then the order before decides.
    ViewGraph leftmost(6, {{0, 4}, {1, 3}, {2, 5}, {3, 5}, {4, 5}});
    leftmost.show();
    QCOMPARE(leftmost.layers(), QString("0 1|2 4 3|5"));
}

/// A sweep would bring 4 to the left of 3.
void tst_CrossingReduction::orderWithoutCrossingsStaysAsItIs()
{
    ViewGraph graph(6, {{0, 2}, {1, 3}, {2, 5}, {3, 5}, {4, 5}});
    graph.show();
    QCOMPARE(graph.layers(), QString("0 1|2 3 4|5"));
    QCOMPARE(graph.view.getLayoutFigures().crossings, 0u);
}

void tst_CrossingReduction::linkOfManyReferencesCrossesOnce()
{
    Links links;
    for (int i = 0; i < 5; ++i)
        for (NumberedGraph::Link link : Links{{0, 2}, {0, 3}, {1, 2}, {1, 3}})
            links.push_back(link);
    ViewGraph graph(4, links);
    graph.show();
    QCOMPARE(graph.links(), QString("0>2x5 0>3x5 1>2x5 1>3x5"));
    QCOMPARE(graph.view.getLayoutFigures().crossings, 1u);
}

void tst_CrossingReduction::unavoidableCrossingsStay_data()
{
    QTest::addColumn<unsigned>("numAbove");
    QTest::addColumn<unsigned>("numBelow");
    QTest::addColumn<unsigned>("crossings");
    QTest::newRow("2 on 2") << 2u << 2u << 1u;
    QTest::newRow("2 on 3") << 2u << 3u << 3u;
    QTest::newRow("3 on 3") << 3u << 3u << 9u;
    QTest::newRow("4 on 5") << 4u << 5u << 60u;
}

void tst_CrossingReduction::unavoidableCrossingsStay()
{
    QFETCH(unsigned, numAbove);
    QFETCH(unsigned, numBelow);
    QFETCH(unsigned, crossings);
    Links links;
    for (unsigned from = 0; from < numAbove; ++from)
        for (unsigned to = 0; to < numBelow; ++to)
            links.emplace_back(from, numAbove + to);
    ViewGraph graph(numAbove + numBelow, links);
    LayoutOracle oracle(graph.view);
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().crossings, crossings);
    QCOMPARE(countInDrawing(graph), crossings);
    QCOMPARE(oracle.difference(graph.ref(numAbove + numBelow - 1)), QString());
}

void tst_CrossingReduction::generatorIsRestartedForEachLayout()
{
    std::srand(0);
    const int first = std::rand();
    ViewGraph graph(1);
    std::srand(77);
    graph.show();
    QCOMPARE(std::rand(), first);
}

void tst_CrossingReduction::generatorIsRestartedForEachComponent()
{
    const Links crossed{{0, 3}, {0, 4}, {0, 5}, {1, 3}, {1, 4}, {1, 5}, {2, 3}, {2, 4}, {2, 5}};
    ViewGraph one(6, crossed);
    one.show();
    const int afterOne = std::rand();

    Links twice = crossed;
    for (auto const &[from, to] : crossed)
        twice.emplace_back(from + 6, to + 6);
    ViewGraph two(12, twice);
    two.show();
    QCOMPARE(two.view.getLayoutFigures().components, 2u);
    QCOMPARE(std::rand(), afterOne);
}

/// As many numbers are drawn as for the nine permutations of all layers after the first pass.
void tst_CrossingReduction::unavoidableCrossingsTakeAllPasses()
{
    LayeredGraph graph = withSizes({3, 2});
    for (unsigned from : graph.layers[0])
        for (unsigned to : graph.layers[1])
            graph.links.push_back({from, to});
    QCOMPARE(order(graph), 3u);
    const int next = std::rand();

    // A draw of 1 in 2 takes one number. One in 3 takes one too, and another each time it meets
    // 32766 or 32767, of which there is none here.
    std::srand(0);
    for (int pass = 1; pass < 10; ++pass)
        for (int draw = 0; draw < 3; ++draw)
            QVERIFY((std::rand() & 32767) < 32766);
    QCOMPARE(next, std::rand());
}

void tst_CrossingReduction::countEqualsThatByPairs()
{
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        std::mt19937 generator(seed);
        LayeredGraph graph = randomLayers(1 + seed % 5, 9, 1 + seed % 4, generator);
        for (auto &layer : graph.layers)
            std::shuffle(layer.begin(), layer.end(), generator);
        CrossingReduction reduction(graph.numNodes, graph.links, graph.layers);
        const QByteArray text = "seed " + QByteArray::number(seed);
        QVERIFY2(reduction.countCrossings() == countByPairs(graph), text);
        const unsigned left = reduction.run();
        QVERIFY2(left == countByPairs(graph), text);
        QVERIFY2(reduction.countCrossings() == left, text);
    }
}

void tst_CrossingReduction::randomLayersEqualTheLiteralOnes_data()
{
    QTest::addColumn<unsigned>("numLayers");
    QTest::addColumn<unsigned>("maxSize");
    QTest::addColumn<unsigned>("rarity");
    QTest::addColumn<unsigned>("numGraphs");
    QTest::newRow("one layer") << 1u << 8u << 1u << 20u;
    QTest::newRow("few links") << 4u << 6u << 4u << 500u;
    QTest::newRow("half of all links") << 4u << 6u << 2u << 500u;
    QTest::newRow("all links") << 3u << 5u << 1u << 50u;
    QTest::newRow("many layers") << 20u << 5u << 3u << 100u;
    QTest::newRow("wide layers") << 3u << 60u << 20u << 20u;
}

void tst_CrossingReduction::randomLayersEqualTheLiteralOnes()
{
    QFETCH(unsigned, numLayers);
    QFETCH(unsigned, maxSize);
    QFETCH(unsigned, rarity);
    QFETCH(unsigned, numGraphs);
    for (unsigned seed = 1; seed <= numGraphs; ++seed) {
        std::mt19937 generator(seed);
        LayeredGraph graph = randomLayers(numLayers, maxSize, rarity, generator);
        LayeredGraph literal = graph;
        const unsigned crossings = order(graph);
        const int next = std::rand();
        const QByteArray text = "seed " + QByteArray::number(seed);
        QVERIFY2(crossings == orderLiterally(literal), text);
        QVERIFY2(next == std::rand(), text);
        QVERIFY2(graph.layers == literal.layers, text);
    }
}

/// A place among more than 2^15 takes two draws of 15 bits each.
void tst_CrossingReduction::layerWiderThanOneDrawEqualsTheLiteralOne()
{
    LayeredGraph graph = withSizes({2, 40000});
    for (unsigned from : graph.layers[0])
        for (unsigned i = 0; i < 4; ++i)
            graph.links.push_back({from, graph.layers[1][i]});
    LayeredGraph literal = graph;
    const unsigned crossings = order(graph);
    const int next = std::rand();
    QCOMPARE(crossings, 6u);
    QCOMPARE(orderLiterally(literal), crossings);
    QCOMPARE(std::rand(), next);
    QVERIFY(graph.layers == literal.layers);
}

void tst_CrossingReduction::figuresTellWhatTheDrawingShows_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<unsigned>("numExtraLinks");
    QTest::newRow("nearly a tree") << 30u << 6u;
    QTest::newRow("tangled") << 25u << 40u;
}

void tst_CrossingReduction::figuresTellWhatTheDrawingShows()
{
    QFETCH(unsigned, numNodes);
    QFETCH(unsigned, numExtraLinks);
    for (unsigned seed = 1; seed <= 15; ++seed) {
        std::mt19937 generator(seed);
        NumberedGraph made = randomDag(numNodes, numExtraLinks, generator);
        // Some links lead back, so that they are turned for the layout.
        for (int i = 0; i < 3; ++i) {
            auto const &link = made.links[drawBelow(generator, numNodes - 1)];
            made.links.emplace_back(link.second, link.first);
        }
        ViewGraph graph(made);
        graph.show();
        QCOMPARE(graph.view.getLayoutFigures().crossings, countInDrawing(graph));
    }
}

QTEST_MAIN(tst_CrossingReduction)
#include "tst_CrossingReduction.moc"
