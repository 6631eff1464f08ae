#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Outcome {
    int exitCode = -1;
    QStringList output; // Lines.
    QString errors;
};

Outcome run(QStringList const &arguments)
{
    QProcess process;
    process.start(ZRVOMGUI_BENCH_LAYOUT, arguments);
    if (!process.waitForFinished(100000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    Outcome outcome;
    outcome.exitCode = process.exitCode();
    outcome.output =
        QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    outcome.errors = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

QString dataFile(QString const &name)
{
    return QDir(ZRVOMGUI_TEST_DATA "/graphs").filePath(name);
}

const QString header =
    "graph,nodes,links,split_nodes,layers,crossings,length,width,height,cycles_ms,ranks_ms,"
    "split_ms,order_ms,coords_ms,total_ms,cpu_ms,peak_kib";

} // namespace

class tst_LayoutBench : public QObject {
    Q_OBJECT

private slots:
    void csvHasOneRowForEachGraph();
    void rowTellsCountsAndTimes();
    void graphOfNothingHasARow();
    void tableForPeopleHasTheSameColumns();
    void malformedFileIsToldAndTheOthersAreDone();
    void wrongArgumentsAreTold_data();
    void wrongArgumentsAreTold();

private:
    QString write(QString const &name, QByteArray const &text) const;

    QTemporaryDir folder;
};

QString tst_LayoutBench::write(QString const &name, QByteArray const &text) const
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return {};
    return file.fileName();
}

void tst_LayoutBench::csvHasOneRowForEachGraph()
{
    const Outcome outcome = run({"--csv", "--repeat", "2", dataFile("py-010.graph"),
                                 dataFile("deb-017.graph"), dataFile("py-010.graph")});
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.output.size(), 4);
    QCOMPARE(outcome.output[0], header);
    QVERIFY(outcome.output[1].startsWith("py-010,17,54,"));
    QVERIFY(outcome.output[2].startsWith("deb-017,16,54,"));
    QVERIFY(outcome.output[3].startsWith("py-010,17,54,"));
    for (QString const &row : outcome.output)
        QCOMPARE(row.count(','), header.count(','));
}

void tst_LayoutBench::rowTellsCountsAndTimes()
{
    // A long link beside a chain; two crossing pairs; a self-link and a parallel link.
    const QString file = write("made.graph", "8 10\n0 1\n1 2\n2 3\n0 3\n"
                                             "4 6\n4 7\n5 6\n5 7\n5 7\n4 4\n");
    const Outcome outcome = run({"--csv", "--repeat", "3", file});
    QCOMPARE(outcome.exitCode, 0);
    const QStringList names = header.split(',');
    const QStringList values = outcome.output.value(1).split(',');
    QCOMPARE(values.size(), names.size());
    const auto value = [&](char const *name) { return values[names.indexOf(name)].toDouble(); };
    QCOMPARE(values[0], QString("made"));
    QCOMPARE(value("nodes"), 8.0);
    QCOMPARE(value("links"), 10.0);
    QCOMPARE(value("split_nodes"), 2.0);
    QCOMPARE(value("layers"), 4.0);
    QCOMPARE(value("crossings"), 1.0);
    QVERIFY(value("length") > 0);
    QVERIFY(value("width") > 0);
    QVERIFY(value("height") > 0);
    QVERIFY(value("total_ms") > 0);
    QVERIFY(value("cpu_ms") > 0);
    QVERIFY(value("ranks_ms") > 0);
    QVERIFY(value("coords_ms") > 0);
    QVERIFY(value("peak_kib") >= 0);
}

void tst_LayoutBench::graphOfNothingHasARow()
{
    const Outcome outcome = run({"--csv", write("none.graph", "0 0\n")});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(outcome.output.value(1).startsWith("none,0,0,0,0,0,0,0,0,"));
}

void tst_LayoutBench::tableForPeopleHasTheSameColumns()
{
    const Outcome outcome = run({"--repeat", "1", dataFile("py-005.graph")});
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.output.size(), 2);
    const QStringList names = outcome.output[0].split(' ', Qt::SkipEmptyParts);
    const QStringList values = outcome.output[1].split(' ', Qt::SkipEmptyParts);
    QCOMPARE(names.size(), header.split(',').size());
    QCOMPARE(values.size(), names.size());
    QCOMPARE(outcome.output[0].size(), outcome.output[1].size());
    QCOMPARE(values.mid(0, 3), (QStringList{"py-005", "19", "34"}));
}

void tst_LayoutBench::malformedFileIsToldAndTheOthersAreDone()
{
    const QString malformed = write("malformed.graph", "3 1\n0 5\n");
    const QString missing = folder.filePath("missing.graph");
    const Outcome outcome =
        run({"--csv", "--repeat", "1", malformed, dataFile("py-005.graph"), missing});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.output.size(), 2);
    QVERIFY(outcome.output[1].startsWith("py-005,"));
    QVERIFY2(outcome.errors.contains(malformed + ":2: 5 is not below 3"),
             qPrintable(outcome.errors));
    QVERIFY2(outcome.errors.contains(missing + ": can't be read"), qPrintable(outcome.errors));
}

void tst_LayoutBench::wrongArgumentsAreTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString file = dataFile("py-005.graph");
    QTest::newRow("nothing") << QStringList{};
    QTest::newRow("no file") << QStringList{"--csv"};
    QTest::newRow("unknown option") << QStringList{"--fast", file};
    QTest::newRow("no number of repeats") << QStringList{file, "--repeat"};
    QTest::newRow("zero repeats") << QStringList{"--repeat", "0", file};
    QTest::newRow("repeats in words") << QStringList{"--repeat", "often", file};
}

void tst_LayoutBench::wrongArgumentsAreTold()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY(outcome.output.isEmpty());
    QVERIFY(outcome.errors.contains("usage:"));
}

QTEST_GUILESS_MAIN(tst_LayoutBench)
#include "tst_LayoutBench.moc"
