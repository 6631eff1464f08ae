#include "support/NumberedGraph.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <sstream>

using Links = std::vector<NumberedGraph::Link>;

namespace {

NumberedGraph read(QByteArray const &text)
{
    std::istringstream input(text.toStdString());
    return readGraph(input, "input");
}

} // namespace

class tst_NumberedGraph : public QObject {
    Q_OBJECT

private slots:
    void readsGraphs_data();
    void readsGraphs();
    void refusesWhatIsNoGraph_data();
    void refusesWhatIsNoGraph();
    void refusesWhatCantBeOpened();
    void readsTheFilesOfTheRepository_data();
    void readsTheFilesOfTheRepository();
    void randomDagIsConnectedAndHasNoCycle();
};

void tst_NumberedGraph::readsGraphs_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<unsigned>("numNodes");
    QTest::addColumn<Links>("links");
    QTest::newRow("no nodes") << QByteArray("0 0\n") << 0u << Links{};
    QTest::newRow("nodes without links") << QByteArray("3 0\n") << 3u << Links{};
    QTest::newRow("links") << QByteArray("3 2\n0 1\n2 1\n") << 3u << Links{{0, 1}, {2, 1}};
    QTest::newRow("parallel links and a self-link")
        << QByteArray("2 3\n0 1\n0 1\n1 1\n") << 2u << Links{{0, 1}, {0, 1}, {1, 1}};
    QTest::newRow("no line feed at the end") << QByteArray("2 1\n1 0") << 2u << Links{{1, 0}};
    QTest::newRow("carriage returns, tabs and blanks")
        << QByteArray("2 1 \r\n1\t 0\t\r\n\r\n \n") << 2u << Links{{1, 0}};
    QTest::newRow("leading zeros") << QByteArray("012 1\n007 010\n") << 12u << Links{{7, 10}};
}

void tst_NumberedGraph::readsGraphs()
{
    QFETCH(QByteArray, text);
    QFETCH(unsigned, numNodes);
    QFETCH(Links, links);
    const NumberedGraph graph = read(text);
    QCOMPARE(graph.numNodes, numNodes);
    QVERIFY(graph.links == links);
}

void tst_NumberedGraph::refusesWhatIsNoGraph_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const auto row = [](char const *name, QByteArray const &text, char const *message) {
        QTest::newRow(name) << text << QString(message);
    };
    row("nothing", "", "input: empty");
    row("blank line", "\n", "input:1: expected number of nodes and number of links");
    row("one number", "3\n", "input:1: expected number of nodes and number of links");
    row("three numbers", "3 0 0\n", "input:1: more than number of nodes and number of links");
    row("words", "three links\n", "input:1: expected number of nodes and number of links");
    row("leading blank", " 3 0\n", "input:1: expected number of nodes and number of links");
    row("negative number of nodes", "-3 0\n",
        "input:1: expected number of nodes and number of links");
    row("plus sign", "+3 0\n", "input:1: expected number of nodes and number of links");
    row("fraction", "3.5 0\n", "input:1: expected number of nodes and number of links");
    row("too many nodes", "100000000 0\n", "input:1: 100000000 is not below 100000000");
    row("more than a number can hold", "2 99999999999999999999999\n",
        "input:1: 99999999999999999999999 is not below 100000000");
    row("too few links", "3 2\n0 1\n", "input:2: ends after 1 of 2 links");
    row("no links at all", "3 99999999\n", "input:1: ends after 0 of 99999999 links");
    row("too many links", "3 1\n0 1\n1 2\n", "input:3: more than 1 links");
    row("blank line among links", "3 2\n0 1\n\n1 2\n", "input:3: expected tail and head");
    row("tail out of range", "3 1\n3 1\n", "input:2: 3 is not below 3");
    row("head out of range", "3 1\n1 3\n", "input:2: 3 is not below 3");
    row("link in a graph without nodes", "0 1\n0 0\n", "input:2: 0 is not below 0");
    row("negative head", "3 1\n1 -1\n", "input:2: expected tail and head");
    row("half a link", "3 1\n1\n", "input:2: expected tail and head");
    row("link of three", "3 1\n1 2 0\n", "input:2: more than tail and head");
    row("comma", "3 1\n1,2\n", "input:2: expected tail and head");
    row("zero byte", QByteArray("3 1\n1\0 2\n", 9), "input:2: expected tail and head");
}

void tst_NumberedGraph::refusesWhatIsNoGraph()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    try {
        read(text);
        QFAIL("was read");
    } catch (GraphFileError const &error) {
        QCOMPARE(QString(error.what()), message);
    }
}

void tst_NumberedGraph::refusesWhatCantBeOpened()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const std::string missing = folder.filePath("missing.graph").toStdString();
    for (std::string const &path : {missing, folder.path().toStdString(), std::string()}) {
        try {
            readGraphFile(path);
            QFAIL("was read");
        } catch (GraphFileError const &error) {
            QCOMPARE(std::string(error.what()), path + ": can't be read");
        }
    }
}

void tst_NumberedGraph::readsTheFilesOfTheRepository_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(ZRVOMGUI_TEST_DATA "/graphs");
    const QStringList files = folder.entryList({"*.graph"}, QDir::Files);
    QVERIFY(files.size() >= 12);
    for (QString const &file : files)
        QTest::newRow(qPrintable(file)) << folder.filePath(file);
}

void tst_NumberedGraph::readsTheFilesOfTheRepository()
{
    QFETCH(QString, path);
    const NumberedGraph graph = readGraphFile(path.toStdString());
    QVERIFY(graph.numNodes >= 10);
    QVERIFY(graph.links.size() + 1 >= graph.numNodes);
}

void tst_NumberedGraph::randomDagIsConnectedAndHasNoCycle()
{
    for (unsigned seed = 1; seed <= 100; ++seed) {
        std::mt19937 generator(seed);
        const unsigned numNodes = 1 + drawBelow(generator, 20);
        const NumberedGraph graph = randomDag(numNodes, drawBelow(generator, 30), generator);
        std::vector<unsigned> longest(numNodes, 0), group(numNodes);
        for (unsigned i = 0; i < numNodes; ++i)
            group[i] = i;
        // In as many rounds as there are nodes the longest paths and the groups settle.
        for (unsigned round = 0; round <= numNodes; ++round) {
            for (auto const &[tail, head] : graph.links) {
                longest[head] = std::max(longest[head], longest[tail] + 1);
                group[tail] = group[head] = std::min(group[tail], group[head]);
            }
        }
        for (unsigned i = 0; i < numNodes; ++i) {
            QVERIFY(longest[i] < numNodes);
            QCOMPARE(group[i], 0u);
        }
    }
}

QTEST_GUILESS_MAIN(tst_NumberedGraph)
#include "tst_NumberedGraph.moc"
