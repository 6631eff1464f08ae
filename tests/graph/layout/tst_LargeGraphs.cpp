#include "graph/layout/Places.h"
#include "support/EngineGraph.h"

#include <numeric>

using namespace ZR::VOM::GUI;
using Graph::EngineGraph;

namespace {

/// A hub, node 0, to which the first nodes link, and which links to the others.
NumberedGraph starGraph(unsigned numNodes, unsigned numInto)
{
    NumberedGraph graph;
    graph.numNodes = numNodes;
    for (unsigned i = 1; i < numNodes; ++i)
        graph.links.push_back(i <= numInto ? NumberedGraph::Link(i, 0) : NumberedGraph::Link(0, i));
    return graph;
}

NumberedGraph completeBipartiteGraph(unsigned numTails, unsigned numHeads)
{
    NumberedGraph graph;
    graph.numNodes = numTails + numHeads;
    for (unsigned tail = 0; tail < numTails; ++tail)
        for (unsigned head = 0; head < numHeads; ++head)
            graph.links.emplace_back(tail, numTails + head);
    return graph;
}

NumberedGraph cycleGraph(unsigned numNodes)
{
    NumberedGraph graph = chainGraph(numNodes);
    graph.links.emplace_back(numNodes - 1, 0);
    return graph;
}

/// One component: a hub that links to a few nodes, and these to all others; now and then two to the
/// same one, so that crossings can't be avoided.
NumberedGraph wideGraph(unsigned numNodes, unsigned numCrossed, std::mt19937 &generator)
{
    constexpr unsigned numUpper = 50;
    NumberedGraph graph = starGraph(1 + numUpper, 0);
    graph.numNodes = numNodes;
    for (unsigned i = 1 + numUpper; i < numNodes; ++i)
        for (unsigned j = 0; j < (i % (numNodes / numCrossed) == 0 ? 2 : 1); ++j)
            graph.links.emplace_back(1 + drawBelow(generator, numUpper), i);
    return graph;
}

NumberedGraph renumbered(NumberedGraph graph, std::mt19937 &generator)
{
    std::vector<unsigned> number(graph.numNodes);
    std::iota(number.begin(), number.end(), 0u);
    for (unsigned i = graph.numNodes; i > 1; --i)
        std::swap(number[i - 1], number[drawBelow(generator, i)]);
    for (auto &[tail, head] : graph.links) {
        tail = number[tail];
        head = number[head];
    }
    return graph;
}

} // namespace

/// Graphs of extreme sizes and shapes: each lays out, and what comes out is a drawing.
///
/// Where coordinates take time by the square of the size, the whole layout is made of a smaller
/// graph of the same shape.
class tst_LargeGraphs : public QObject {
    Q_OBJECT

private slots:
    void chain();
    void chainInNoOrder();
    void chainOfSelfLinks();
    void wideStar_data();
    void wideStar();
    void star_data();
    void star();
    void longCycle();
    void cycle();
    void completeBipartite();
    void wideLayer();
    void layer();
    void manyReferences();
    void manyComponents();
};

void tst_LargeGraphs::chain()
{
    constexpr unsigned n = 1000000;
    EngineGraph graph(chainGraph(n));
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.layers, n);
    QCOMPARE(graph.figures.length, 0.0);
}

/// So that walks meet it anywhere but at its ends.
void tst_LargeGraphs::chainInNoOrder()
{
    constexpr unsigned n = 200000;
    std::mt19937 generator(1);
    EngineGraph graph(renumbered(chainGraph(n), generator));
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.layers, n);
    QCOMPARE(graph.figures.length, 0.0);
}

void tst_LargeGraphs::chainOfSelfLinks()
{
    constexpr unsigned n = 50000;
    NumberedGraph chain = chainGraph(n);
    for (unsigned i = 0; i < n; ++i)
        chain.links.emplace_back(i, i);
    EngineGraph graph(chain);
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.layers, n);
    QCOMPARE(graph.figures.splitNodes, 0u);
}

void tst_LargeGraphs::wideStar_data()
{
    QTest::addColumn<unsigned>("numInto");
    QTest::addColumn<unsigned>("layers");
    QTest::newRow("all links leave") << 0u << 2u;
    QTest::newRow("all links arrive") << 200000u << 2u;
    QTest::newRow("half of them arrive") << 100000u << 3u;
}

void tst_LargeGraphs::wideStar()
{
    QFETCH(unsigned, numInto);
    EngineGraph graph(starGraph(200001, numInto));
    QCOMPARE(graph.layoutLayers(), QString());
    QTEST(graph.figures.layers, "layers");
    QCOMPARE(graph.figures.crossings, 0u);
}

void tst_LargeGraphs::star_data()
{
    QTest::addColumn<unsigned>("numLinks");
    QTest::addColumn<unsigned>("numInto");
    QTest::newRow("all links leave") << 5000u << 0u;
    QTest::newRow("all links arrive") << 5000u << 5000u;
    QTest::newRow("half of them arrive") << 5000u << 2500u;
    QTest::newRow("200,000 links") << 200000u << 0u;
}

/// The hub stands over the middle.
void tst_LargeGraphs::star()
{
    QFETCH(unsigned, numLinks);
    QFETCH(unsigned, numInto);
    EngineGraph graph(starGraph(numLinks + 1, numInto));
    QCOMPARE(graph.layout(), QString());
    const unsigned arm = std::max(numInto, numLinks - numInto);
    const int width = static_cast<int>(arm - 1) * (40 + gap);
    QVERIFY(std::abs(graph.node(0).x - width / 2) <= (40 + gap) / 2);
}

void tst_LargeGraphs::longCycle()
{
    constexpr unsigned n = 100000;
    EngineGraph graph(cycleGraph(n));
    QCOMPARE(graph.layoutLayers(), QString());
    QCOMPARE(graph.figures.layers, n);
    QCOMPARE(graph.figures.splitNodes, n - 2);
    QCOMPARE(graph.figures.crossings, 0u);
    // Once more, which has to undo the long chain.
    QCOMPARE(graph.layoutLayers(), QString());
    QCOMPARE(graph.figures.splitNodes, n - 2);
}

/// In layers of two, but for the first and the last.
void tst_LargeGraphs::cycle()
{
    constexpr unsigned n = 4000;
    EngineGraph graph(cycleGraph(n));
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.length, 2.0 * (40 / 2 + gap));
}

void tst_LargeGraphs::completeBipartite()
{
    constexpr unsigned n = 300;
    constexpr unsigned numPairs = n * (n - 1) / 2;
    EngineGraph graph(completeBipartiteGraph(n, n));
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.crossings, numPairs * numPairs);
}

void tst_LargeGraphs::wideLayer()
{
    std::mt19937 generator(1);
    EngineGraph graph(wideGraph(100000, 200, generator));
    QCOMPARE(graph.layoutLayers(), QString());
    QCOMPARE(graph.figures.layers, 3u);
    QVERIFY(graph.figures.crossings > 0);
}

void tst_LargeGraphs::layer()
{
    std::mt19937 generator(1);
    EngineGraph graph(wideGraph(4000, 1000, generator));
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.layers, 3u);
}

/// They make one link.
void tst_LargeGraphs::manyReferences()
{
    NumberedGraph pair;
    pair.numNodes = 2;
    pair.links.assign(300000, NumberedGraph::Link(0, 1));
    EngineGraph graph(pair);
    QCOMPARE(graph.layout(), QString());
    QCOMPARE(graph.figures.layers, 2u);
    QCOMPARE(graph.figures.crossings, 0u);
    QCOMPARE(graph.node(0).linkedOut.begin()->second.count, 300000u);
}

/// Each a chain of one to five nodes, in a row.
void tst_LargeGraphs::manyComponents()
{
    constexpr unsigned numComponents = 10000;
    NumberedGraph chains;
    std::vector<unsigned> firstOf; // And one more at the end.
    for (unsigned i = 0; i < numComponents; ++i) {
        firstOf.push_back(chains.numNodes);
        for (unsigned length = 1; length <= i % 5; ++length)
            chains.links.emplace_back(chains.numNodes + length - 1, chains.numNodes + length);
        chains.numNodes += 1 + i % 5;
    }
    firstOf.push_back(chains.numNodes);
    ViewGraph graph(chains);
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        graph.setWidth(i, 30);
    showOutOfSight(graph);
    graph.view.layout();
    QCOMPARE(graph.view.getLayoutFigures().components, numComponents);
    QCOMPARE(graph.view.getLayoutFigures().layers, 5u);
    const int height = graph.node(0).height;
    for (unsigned i = 0; i < numComponents; ++i) {
        for (unsigned node = firstOf[i]; node < firstOf[i + 1]; ++node) {
            const int layer = static_cast<int>(node - firstOf[i]);
            QCOMPARE(leftOf(graph.node(node)), gap + static_cast<int>(i) * (30 + 1 + gap));
            QCOMPARE(topOf(graph.node(node)), layer * (height + gap));
        }
    }
}

QTEST_MAIN(tst_LargeGraphs)
#include "tst_LargeGraphs.moc"
