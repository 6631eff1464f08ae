#include "support/NumberedGraph.h"
#include "zrVOMGUI/graph/layout/CutSearch.h"

#include <QTest>

#include <algorithm>
#include <limits>

using ZR::VOM::GUI::Graph::CutSearch;
using ZR::VOM::GUI::Graph::FlatGraph;
using ZR::VOM::GUI::Graph::SpanningTree;
using ZR::VOM::GUI::Graph::TreeCut;
using Candidate = CutSearch::Candidate;

namespace {

constexpr unsigned none = CutSearch::none;

/// A connected graph in which vertices with near numbers are joined, so that its trees are deep and
/// have many cuts next to each other.
FlatGraph drawGraph(unsigned numVertices, std::mt19937 &generator)
{
    FlatGraph graph;
    graph.vertexCount = numVertices;
    const auto add = [&](unsigned a, unsigned b) {
        if (drawBelow(generator, 2) == 0)
            std::swap(a, b);
        graph.edges.push_back({a, b, 1, static_cast<std::uint16_t>(drawBelow(generator, 3))});
    };
    for (unsigned v = 1; v < numVertices; ++v)
        add(v, v - 1 - drawBelow(generator, std::min(v, 3u)));
    for (unsigned i = 0; i < numVertices; ++i) {
        const unsigned a = drawBelow(generator, numVertices), b = drawBelow(generator, numVertices);
        if (a != b)
            add(a, b);
    }
    graph.buildIncidence();
    return graph;
}

/// Knows the graph, the edges of the tree by age, and ranks; works out all else by walks through
/// everything.
class NaiveSearch {
public:
    NaiveSearch(FlatGraph const &ofGraph, std::vector<int> const &startRanks)
        : graph(ofGraph)
        , ranks(startRanks)
    {
        for (unsigned v = 1; v < graph.vertexCount; ++v)
            treeEdges.push_back(v - 1);
    }

    bool isTreeEdge(unsigned edge) const
    {
        return std::find(treeEdges.begin(), treeEdges.end(), edge) != treeEdges.end();
    }

    int slack(unsigned edge) const
    {
        const auto [tail, head, weight, minLength] = graph.edges[edge];
        return ranks[head] - ranks[tail] - minLength;
    }

    /// What is on the same side as a vertex when the tree loses an edge.
    std::vector<bool> side(unsigned vertex, unsigned lostEdge) const
    {
        std::vector<bool> on(graph.vertexCount, false);
        on[vertex] = true;
        for (bool grown = true; grown;) {
            grown = false;
            for (unsigned e : treeEdges) {
                const auto [tail, head, weight, minLength] = graph.edges[e];
                if (e == lostEdge || on[tail] == on[head])
                    continue;
                on[tail] = on[head] = true;
                grown = true;
            }
        }
        return on;
    }

    Candidate firstOfLeastSlack(TreeCut const &cut)
    {
        below = side(cut.child, cut.edge);
        best = {std::numeric_limits<int>::max(), none};
        walk(cut.child, cut.edge, cut.childIsHead);
        return best;
    }

    void stretch(unsigned edge, int delta)
    {
        const std::vector<bool> moves = side(graph.edges[edge].head, edge);
        for (unsigned v = 0; v < graph.vertexCount; ++v)
            ranks[v] += moves[v] ? delta : 0;
    }

    void exchange(unsigned leaving, unsigned entering)
    {
        treeEdges.erase(std::find(treeEdges.begin(), treeEdges.end(), leaving));
        treeEdges.push_back(entering);
    }

    FlatGraph const &graph;
    std::vector<int> ranks;
    std::vector<unsigned> treeEdges; // By age.

private:
    /// Along the edges at the vertex first, and then against its tree edges. The whole subtree is
    /// walked, since no slack ends it that could still be undercut.
    void walk(unsigned vertex, unsigned from, bool out)
    {
        for (unsigned e = 0; e < graph.edges.size(); ++e) {
            const auto [tail, head, weight, minLength] = graph.edges[e];
            if ((out ? tail : head) != vertex || e == from)
                continue;
            const unsigned far = out ? head : tail;
            if (isTreeEdge(e))
                walk(far, e, out);
            else if (!below[far] && slack(e) < best.slack)
                best = {slack(e), e};
        }
        const std::vector<unsigned> byAge = treeEdges;
        for (unsigned e : byAge) {
            const auto [tail, head, weight, minLength] = graph.edges[e];
            if ((out ? head : tail) == vertex && e != from)
                walk(out ? tail : head, e, out);
        }
    }

    std::vector<bool> below;
    Candidate best{0, none};
};

/// The same tree, searched in both ways.
struct SearchPair {
    SearchPair(unsigned numVertices, std::mt19937 &generator)
        : graph(drawGraph(numVertices, generator))
        , ranks(drawRanks(numVertices, generator))
        , naive(graph, ranks)
        , tree(numVertices, static_cast<unsigned>(graph.edges.size()), withEnds())
        , search(graph, tree, ranks)
    {
    }

    static std::vector<int> drawRanks(unsigned num, std::mt19937 &generator)
    {
        std::vector<int> drawn(num);
        for (int &rank : drawn)
            rank = static_cast<int>(drawBelow(generator, 12));
        return drawn;
    }

    std::vector<SpanningTree::Edge> withEnds() const
    {
        std::vector<SpanningTree::Edge> edges;
        for (unsigned e : naive.treeEdges)
            edges.push_back({e, {graph.edges[e].tail, graph.edges[e].head}});
        return edges;
    }

    /// Empty when both give the same answer.
    QString askBoth(unsigned edge)
    {
        const TreeCut cut(graph, tree, edge);
        asked = edge;
        answer = search.firstOfLeastSlack(cut);
        const Candidate wanted = naive.firstOfLeastSlack(cut);
        if (answer.edge == wanted.edge && answer.slack == wanted.slack)
            return {};
        return QString("edge %1 of slack %2 in place of edge %3 of slack %4")
            .arg(answer.edge)
            .arg(answer.slack)
            .arg(wanted.edge)
            .arg(wanted.slack);
    }

    void stretch(int delta)
    {
        search.stretch(delta);
        naive.stretch(asked, delta);
    }

    void exchange()
    {
        const TreeCut cut(graph, tree, asked);
        const auto [tail, head, weight, minLength] = graph.edges[answer.edge];
        const unsigned lower = cut.childIsHead ? tail : head;
        tree.exchange({cut.edge, cut.child, answer.edge, lower, tail ^ head ^ lower});
        search.exchanged(answer.edge);
        naive.exchange(cut.edge, answer.edge);
    }

    bool ranksDifferByTheSame()
    {
        search.settleRanks();
        for (unsigned v = 0; v < graph.vertexCount; ++v)
            if (ranks[v] - ranks[0] != naive.ranks[v] - naive.ranks[0])
                return false;
        return true;
    }

    FlatGraph graph;
    std::vector<int> ranks;
    NaiveSearch naive;
    SpanningTree tree;
    CutSearch search;
    unsigned asked = none;
    Candidate answer{0, none};
};

} // namespace

/// The search across cuts of the tree against walks through everything.
class tst_CutSearch : public QObject {
    Q_OBJECT

private slots:
    void cutsNextToEachOther_data();
    void cutsNextToEachOther();
    void edgeThatNothingCrossesBackHasNoCandidate();
};

void tst_CutSearch::cutsNextToEachOther_data()
{
    QTest::addColumn<unsigned>("numVertices");
    QTest::addColumn<unsigned>("oneInSoManyIsFar");
    QTest::addColumn<bool>("exchanges");
    for (unsigned numVertices : {2u, 5u, 12u, 40u, 90u}) {
        for (bool exchanges : {false, true}) {
            QTest::addRow("%u vertices, %s, near", numVertices,
                          exchanges ? "exchanges" : "one tree")
                << numVertices << 20u << exchanges;
            QTest::addRow("%u vertices, %s, anywhere", numVertices,
                          exchanges ? "exchanges" : "one tree")
                << numVertices << 1u << exchanges;
        }
    }
}

/// Cuts are asked about in the order of places, of which neighbours lie near each other, now and
/// then with a jump; stretched by any amount; and exchanged.
void tst_CutSearch::cutsNextToEachOther()
{
    QFETCH(unsigned, numVertices);
    QFETCH(unsigned, oneInSoManyIsFar);
    QFETCH(bool, exchanges);
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 generator(seed);
        SearchPair searches(numVertices, generator);
        unsigned place = 0;
        for (unsigned step = 0; step < 120; ++step) {
            const QString name = QString("seed %1, step %2: ").arg(seed).arg(step);
            const QString difference = searches.askBoth(searches.tree.edgeAt(place));
            QVERIFY2(difference.isEmpty(), qPrintable(name + difference));
            if (drawBelow(generator, 2) == 0)
                searches.stretch(static_cast<int>(drawBelow(generator, 5)));
            if (exchanges && searches.answer.edge != none && drawBelow(generator, 2) == 0)
                searches.exchange();
            if (step % 40 == 39)
                QVERIFY2(searches.ranksDifferByTheSame(), qPrintable(name));
            const unsigned numPlaces = searches.tree.numPlaces();
            place = drawBelow(generator, oneInSoManyIsFar) == 0 ? drawBelow(generator, numPlaces)
                                                                : (place + 1) % numPlaces;
        }
    }
}

void tst_CutSearch::edgeThatNothingCrossesBackHasNoCandidate()
{
    FlatGraph graph;
    graph.vertexCount = 3;
    graph.edges = {{0, 1, 1, 0}, {1, 2, 1, 0}, {0, 2, 1, 0}};
    graph.buildIncidence();
    SpanningTree tree(3, 3, {{0, {0, 1}}, {1, {1, 2}}});
    std::vector<int> ranks{0, 0, 0};
    CutSearch search(graph, tree, ranks);
    QCOMPARE(search.firstOfLeastSlack(TreeCut(graph, tree, 0)).edge, none);
    QCOMPARE(search.firstOfLeastSlack(TreeCut(graph, tree, 1)).edge, none);
}

QTEST_GUILESS_MAIN(tst_CutSearch)
#include "tst_CutSearch.moc"
