#include "support/ViewGraph.h"
#include "zrVOMGUI/graph/layout/Components.h"

#include <QTest>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Links = std::vector<NumberedGraph::Link>;

namespace {

/// The components of the visible nodes, as text such as "0 2|1".
QString components(ViewGraph const &graph)
{
    std::vector<Graph::Node *> visible;
    for (unsigned i = 0; i < graph.numNodes(); ++i)
        if (graph.node(i).visible)
            visible.push_back(&graph.node(i));
    QStringList all;
    for (auto const &component : Graph::findComponents(visible)) {
        QStringList names;
        for (Graph::Node const *node : component)
            for (unsigned i = 0; i < graph.numNodes(); ++i)
                if (&graph.node(i) == node)
                    names << QString::number(i);
        all << names.join(' ');
    }
    return all.join('|');
}

} // namespace

class tst_Components : public QObject {
    Q_OBJECT

private slots:
    void components_data();
    void components();
    void hiddenNodesSeparateComponents();
    void directionOfLinksDoesntMatter();
    void longChainNeedsNoDeepStack();
};

void tst_Components::components_data()
{
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<Links>("links");
    QTest::addColumn<QString>("wanted");
    QTest::newRow("no node") << 0u << Links{} << "";
    QTest::newRow("one node") << 1u << Links{} << "0";
    QTest::newRow("unlinked nodes are one each") << 3u << Links{} << "0|1|2";
    QTest::newRow("node with itself") << 2u << Links{{1, 1}} << "0|1";
    QTest::newRow("first node of each decides the order")
        << 6u << Links{{5, 0}, {4, 1}, {2, 4}} << "0 5|1 2 4|3";
    QTest::newRow("cycle") << 4u << Links{{1, 2}, {2, 3}, {3, 1}} << "0|1 2 3";
    QTest::newRow("opposed pair") << 3u << Links{{0, 2}, {2, 0}} << "0 2|1";
    QTest::newRow("met from two sides") << 5u << Links{{4, 2}, {0, 2}, {3, 4}} << "0 2 3 4|1";
}

void tst_Components::components()
{
    QFETCH(unsigned, numNodes);
    QFETCH(Links, links);
    QFETCH(QString, wanted);
    ViewGraph graph(numNodes, links);
    graph.showWithoutLayout();
    QCOMPARE(::components(graph), wanted);
    // It may be asked again.
    QCOMPARE(::components(graph), wanted);
}

void tst_Components::hiddenNodesSeparateComponents()
{
    ViewGraph graph(5, {{0, 1}, {1, 2}, {2, 3}, {3, 4}});
    graph.showWithoutLayout();
    QCOMPARE(::components(graph), QString("0 1 2 3 4"));
    graph.node(2).visible = false;
    QCOMPARE(::components(graph), QString("0 1|3 4"));
    graph.node(0).visible = false;
    QCOMPARE(::components(graph), QString("1|3 4"));
}

void tst_Components::directionOfLinksDoesntMatter()
{
    for (unsigned directions = 0; directions < 8; ++directions) {
        Links links;
        for (unsigned i = 0; i < 3; ++i)
            links.emplace_back(directions >> i & 1 ? NumberedGraph::Link(i, i + 1)
                                                   : NumberedGraph::Link(i + 1, i));
        ViewGraph graph(5, links);
        graph.showWithoutLayout();
        QCOMPARE(::components(graph), QString("0 1 2 3|4"));
    }
}

void tst_Components::longChainNeedsNoDeepStack()
{
    constexpr unsigned n = 200000;
    ViewGraph graph(chainGraph(n));
    graph.showWithoutLayout();
    std::vector<Graph::Node *> nodes;
    for (unsigned i = 0; i < n; ++i)
        nodes.push_back(&graph.node(i));
    const auto all = Graph::findComponents(nodes);
    QCOMPARE(all.size(), std::size_t(1));
    QVERIFY(all.front() == nodes);
}

QTEST_MAIN(tst_Components)
#include "tst_Components.moc"
