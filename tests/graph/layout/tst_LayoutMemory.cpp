#include "support/EngineGraph.h"

#include <QDir>
#include <QTest>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

// A sanitizer brings its own allocator, with guards around every block: what would be measured is
// that.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define COUNTS_BYTES 0
#else
#define COUNTS_BYTES 1
#endif

namespace {

std::size_t bytesInUse = 0, mostBytesInUse = 0;

} // namespace

#if COUNTS_BYTES

/// As large as the block that the heap gives, with the word that the heap keeps before it.
static std::size_t sizeOfBlock(void *block)
{
    return malloc_usable_size(block) + sizeof(std::size_t);
}

void *operator new(std::size_t size)
{
    void *const block = std::malloc(size != 0 ? size : 1);
    if (!block)
        throw std::bad_alloc();
    bytesInUse += sizeOfBlock(block);
    mostBytesInUse = std::max(mostBytesInUse, bytesInUse);
    return block;
}

void operator delete(void *block) noexcept
{
    if (!block)
        return;
    bytesInUse -= sizeOfBlock(block);
    std::free(block);
}

void operator delete(void *block, std::size_t) noexcept
{
    operator delete(block);
}

#endif

using ZR::VOM::GUI::Graph::EngineGraph;

Q_DECLARE_METATYPE(NumberedGraph)

/// How much memory a layout takes beside the nodes and links that it is made of.
class tst_LayoutMemory : public QObject {
    Q_OBJECT

private slots:
    void layoutTakesLessThanAKibibyteForEachNode_data();
    void layoutTakesLessThanAKibibyteForEachNode();
};

void tst_LayoutMemory::layoutTakesLessThanAKibibyteForEachNode_data()
{
    QTest::addColumn<NumberedGraph>("graph");
    std::mt19937 generator(1);
    QTest::newRow("chain") << chainGraph(20000);
    QTest::newRow("tree") << randomDag(5000, 0, generator);
    QTest::newRow("sparse") << randomDag(3000, 100, generator);
    QTest::newRow("some long links") << randomDag(200, 600, generator);
    QTest::newRow("many long links") << randomDag(120, 1200, generator);
    NumberedGraph cycle = chainGraph(1000);
    cycle.links.emplace_back(999, 0);
    QTest::newRow("cycle") << cycle;
    const QDir folder(ZRVOMGUI_TEST_DATA "/graphs");
    for (QString const &name : folder.entryList({"*.graph"}, QDir::Files))
        QTest::newRow(qPrintable(name)) << readGraphFile(folder.filePath(name).toStdString());
}

/// Each intermediate node counts, and takes half of it itself.
void tst_LayoutMemory::layoutTakesLessThanAKibibyteForEachNode()
{
    QFETCH(NumberedGraph, graph);
    EngineGraph engine(graph);
    const std::size_t before = bytesInUse;
    mostBytesInUse = before;
    QCOMPARE(engine.layout(), QString());
    const std::size_t numNodes = engine.numNodes() + engine.figures.splitNodes;
    const std::size_t perNode = (mostBytesInUse - before) / numNodes;
    QVERIFY2(perNode <= 1024, qPrintable(QString("%1 bytes for each node").arg(perNode)));
#if COUNTS_BYTES
    QVERIFY2(perNode > 100, "nothing was measured");
#endif
}

QTEST_MAIN(tst_LayoutMemory)
#include "tst_LayoutMemory.moc"
