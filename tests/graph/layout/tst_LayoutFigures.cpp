#include "graph/layout/Places.h"

#include <cstdlib>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Links = std::vector<NumberedGraph::Link>;

namespace {

/// What a drawing shows, found out from the targets of all nodes.
class Picture {
public:
    explicit Picture(ViewGraph const &graph)
    {
        for (unsigned from = 0; from < graph.numNodes(); ++from) {
            for (unsigned to = 0; to < graph.numNodes(); ++to) {
                if (from == to || graph.count(from, to) == 0)
                    continue;
                QPoint start = targetOf(graph, from);
                for (auto const &station : graph.chain(from, to)) {
                    addPiece(start, QPoint(station->toX, station->toY));
                    start = QPoint(station->toX, station->toY);
                    ++numStations;
                }
                addPiece(start, targetOf(graph, to));
            }
        }
    }

    /// By a look at every two pieces.
    unsigned crossings() const
    {
        unsigned found = 0;
        for (Piece const &a : pieces)
            for (Piece const &b : pieces)
                found += a.upper.y() == b.upper.y() && a.lower.y() == b.lower.y() &&
                         a.upper.x() < b.upper.x() && a.lower.x() > b.lower.x();
        return found;
    }

    double length() const
    {
        double sum = 0;
        for (Piece const &piece : pieces)
            sum += std::abs(piece.upper.x() - piece.lower.x());
        return sum;
    }

    unsigned numStations = 0;

private:
    struct Piece {
        QPoint upper, lower;
    };

    void addPiece(QPoint a, QPoint b)
    {
        pieces.push_back(a.y() < b.y() ? Piece{a, b} : Piece{b, a});
    }

    std::vector<Piece> pieces; // Of links, from one layer to the next.
};

} // namespace

/// What a layout tells of itself.
class tst_LayoutFigures : public QObject {
    Q_OBJECT

private slots:
    void figuresCount_data();
    void figuresCount();
    void figuresCountTheWholeDrawing();
    void figuresOfTheLastLayoutOnly();
    void sizeOfTheDrawingIsThatOfItsComponents();
    void crossingsAndLengthAreThoseOfThePicture();
};

void tst_LayoutFigures::figuresCount_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<Links>("links");
    QTest::addColumn<unsigned>("components");
    QTest::addColumn<unsigned>("splitNodes");
    QTest::addColumn<unsigned>("layers");
    QTest::addColumn<unsigned>("crossings");
    QTest::newRow("one node") << 1u << Links{} << 1u << 0u << 1u << 0u;
    QTest::newRow("unlinked nodes") << 5u << Links{} << 5u << 0u << 1u << 0u;
    QTest::newRow("self-link") << 1u << Links{{0, 0}} << 1u << 0u << 1u << 0u;
    QTest::newRow("parallel links are one") << 2u << Links{{0, 1}, {0, 1}} << 1u << 0u << 2u << 0u;
    QTest::newRow("longest component tells the layers")
        << 6u << Links{{0, 1}, {2, 3}, {3, 4}, {4, 5}} << 2u << 0u << 4u << 0u;
    QTest::newRow("links over one and two layers")
        << 4u << Links{{0, 1}, {1, 2}, {2, 3}, {0, 2}, {0, 3}} << 1u << 3u << 4u << 0u;
    QTest::newRow("three by three")
        << 6u << Links{{0, 3}, {0, 4}, {0, 5}, {1, 3}, {1, 4}, {1, 5}, {2, 3}, {2, 4}, {2, 5}} << 1u
        << 0u << 2u << 9u;
    QTest::newRow("crossings of two components")
        << 8u << Links{{0, 2}, {0, 3}, {1, 2}, {1, 3}, {4, 6}, {4, 7}, {5, 6}, {5, 7}} << 2u << 0u
        << 2u << 2u;
    QTest::newRow("turned link over a layer")
        << 3u << Links{{0, 1}, {1, 2}, {2, 0}} << 1u << 1u << 3u << 0u;
}

void tst_LayoutFigures::figuresCount()
{
    QFETCH(unsigned, numNodes);
    QFETCH(Links, links);
    ViewGraph graph(numNodes, links);
    graph.show();
    LayoutFigures const &figures = graph.view.getLayoutFigures();
    QCOMPARE(figures.nodes, numNodes);
    QTEST(figures.components, "components");
    QTEST(figures.splitNodes, "splitNodes");
    QTEST(figures.layers, "layers");
    QTEST(figures.crossings, "crossings");
}

void tst_LayoutFigures::figuresCountTheWholeDrawing()
{
    // A triangle with a long link, a pair, one node alone, and a hidden one.
    ViewGraph graph(7, {{0, 1}, {1, 2}, {0, 2}, {3, 4}, {6, 6}});
    graph.view.setVisible(
        {graph.obj(0), graph.obj(1), graph.obj(2), graph.obj(3), graph.obj(4), graph.obj(5)}, true);
    LayoutFigures const &figures = graph.view.getLayoutFigures();
    QCOMPARE(figures.nodes, 6u);
    QCOMPARE(figures.splitNodes, 1u);
    QCOMPARE(figures.components, 3u);
    QCOMPARE(figures.layers, 3u);
    QCOMPARE(figures.crossings, 0u);
    QCOMPARE(figures.height, 3 * graph.node(0).height + 2 * gap);
    for (double time : {figures.cyclesTime, figures.ranksTime, figures.splitTime, figures.orderTime,
                        figures.coordsTime})
        QVERIFY(time >= 0 && time < 60);
    QVERIFY(figures.ranksTime > 0);
    QVERIFY(figures.coordsTime > 0);
}

void tst_LayoutFigures::figuresOfTheLastLayoutOnly()
{
    ViewGraph graph(4, {{0, 1}, {1, 2}, {0, 2}});
    graph.show();
    QCOMPARE(graph.view.getLayoutFigures().splitNodes, 1u);
    graph.hide(1);
    graph.view.layout();
    LayoutFigures const &figures = graph.view.getLayoutFigures();
    QCOMPARE(figures.nodes, 3u);
    QCOMPARE(figures.splitNodes, 0u);
    QCOMPARE(figures.layers, 2u);
    for (unsigned node : {0u, 2u, 3u})
        graph.hide(node);
    graph.view.layout();
    QCOMPARE(figures.nodes, 0u);
    QCOMPARE(figures.components, 0u);
    QCOMPARE(figures.layers, 0u);
    QCOMPARE(figures.height, 0);
}

void tst_LayoutFigures::sizeOfTheDrawingIsThatOfItsComponents()
{
    ViewGraph graph(3, {{0, 1}});
    showOutOfSight(graph);
    graph.setWidth(0, 40);
    graph.setWidth(1, 60);
    graph.setTextSize(2, 10, 100);
    graph.view.layout();
    LayoutFigures const &figures = graph.view.getLayoutFigures();
    const int height = graph.node(0).height;
    QCOMPARE(figures.width, 60 + 1 + gap + graph.node(2).width);
    QCOMPARE(figures.height, height + gap + height);
    QVERIFY(figures.height > graph.node(2).height);
}

void tst_LayoutFigures::crossingsAndLengthAreThoseOfThePicture()
{
    unsigned numCrossings = 0, numStations = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::mt19937 generator(seed);
        ViewGraph graph(randomGraph(16, 8 + seed, generator));
        showOutOfSight(graph);
        graph.view.layout();
        const Picture picture(graph);
        LayoutFigures const &figures = graph.view.getLayoutFigures();
        QCOMPARE(figures.crossings, picture.crossings());
        QCOMPARE(figures.length, picture.length());
        QCOMPARE(figures.splitNodes, picture.numStations);
        numCrossings += figures.crossings;
        numStations += figures.splitNodes;
    }
    QVERIFY(numCrossings > 100);
    QVERIFY(numStations > 100);
}

QTEST_MAIN(tst_LayoutFigures)
#include "tst_LayoutFigures.moc"
