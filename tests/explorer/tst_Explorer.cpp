#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

class tst_Explorer : public QObject {
    Q_OBJECT

private slots:
    void shootsEveryPicture();
    void picturesAreTheSameEachTime();
    void pagesShowPicturesOfIt();
    void folderIsMadeIfNeedBe();
    void folderThatCannotBeIsAnError();
    void noDisplayIsSaid();
    void helpNeedsNoDisplay();
    void oddArgumentsAreErrors_data();
    void oddArgumentsAreErrors();
};

namespace {

const QStringList pictures = {"drag-pixmap.png",
                              "form-dark.png",
                              "form-empty.png",
                              "form-mixed-dark.png",
                              "form-mixed.png",
                              "form-right-to-left.png",
                              "form-scale2.png",
                              "form.png",
                              "graph-back-links.png",
                              "graph-dark.png",
                              "graph-disabled.png",
                              "graph-drop.png",
                              "graph-revealed.png",
                              "graph-row.png",
                              "graph-scale2.png",
                              "graph-selection.png",
                              "graph-start.png",
                              "tree-dark.png",
                              "tree-drop.png",
                              "tree-editing.png",
                              "tree-hidden-fields.png",
                              "tree-right-to-left.png",
                              "tree-scale2.png",
                              "tree.png",
                              "trees-dark.png",
                              "trees-hidden-fields.png",
                              "trees.png",
                              "window.png"};

struct Run {
    int exitCode;
    QString out, err;
};

/// Runs the explorer with no display and no platform named.
Run run(QStringList const &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (char const *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(name);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(EXPLORER_PROGRAM, arguments);
    if (!process.waitForFinished(100000))
        process.kill();
    const int exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {exitCode, process.readAllStandardOutput(), process.readAllStandardError()};
}

/// How many colours there are along a coarse grid.
int countColors(QImage const &image)
{
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); y += 2)
        for (int x = 0; x < image.width(); x += 2)
            colors.insert(image.pixel(x, y));
    return colors.size();
}

} // namespace

void tst_Explorer::shootsEveryPicture()
{
    const QTemporaryDir folder;
    const Run result = run({"--shoot", folder.path()});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files, QDir::Name), pictures);
    for (QString const &name : pictures) {
        QVERIFY2(result.out.contains(name), qPrintable(name));
        const QImage image(folder.filePath(name));
        const int least = name.startsWith("drag") ? 40 : 160;
        QVERIFY2(image.width() > least && image.height() > least, qPrintable(name));
        QVERIFY2(countColors(image) > 20, qPrintable(name));
    }
    const QImage once(folder.filePath("graph-start.png"));
    QCOMPARE(QImage(folder.filePath("graph-scale2.png")).size(), once.size() * 2);
    QCOMPARE(QImage(folder.filePath("graph-dark.png")).size(), once.size());
    QVERIFY(qGray(QImage(folder.filePath("graph-dark.png")).pixel(1, 1)) < 80);
    QVERIFY(QImage(folder.filePath("graph-disabled.png")) != once);
}

void tst_Explorer::picturesAreTheSameEachTime()
{
    const QTemporaryDir one, two;
    QCOMPARE(run({"--shoot", one.path()}).exitCode, 0);
    QCOMPARE(run({"--shoot", two.path()}).exitCode, 0);
    // Ties in a layout are broken by address: only what comes first has the same ones for certain.
    for (char const *name : {"graph-start.png", "graph-dark.png", "graph-disabled.png"})
        QVERIFY2(QImage(one.filePath(name)) == QImage(two.filePath(name)), name);
}

void tst_Explorer::pagesShowPicturesOfIt()
{
    // Those of the examples have a test of their own. What these show isn't compared: ties in a
    // layout would have to be the same on all machines.
    for (QString const &name : QDir(DOCS_PICTURES).entryList({"*.png"}, QDir::Files))
        QVERIFY2(name.startsWith("example-") || pictures.contains(name), qPrintable(name));
}

void tst_Explorer::folderIsMadeIfNeedBe()
{
    const QTemporaryDir folder;
    QCOMPARE(run({"--shoot", folder.filePath("a/b")}).exitCode, 0);
    QVERIFY(QFile::exists(folder.filePath("a/b/graph-start.png")));
}

void tst_Explorer::folderThatCannotBeIsAnError()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Run result = run({"--shoot", folder.filePath("file/below")});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.err.contains("file/below"), qPrintable(result.err));
}

void tst_Explorer::noDisplayIsSaid()
{
    const Run result = run({});
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.err.contains("no display"), qPrintable(result.err));
    QCOMPARE(result.out, QString());
}

void tst_Explorer::helpNeedsNoDisplay()
{
    const Run result = run({"--help"});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.out.contains("--shoot"));
}

void tst_Explorer::oddArgumentsAreErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown option") << QStringList{"--nonsense"};
    QTest::newRow("no folder") << QStringList{"--shoot"};
    QTest::newRow("empty folder") << QStringList{"--shoot", ""};
    QTest::newRow("two models") << QStringList{"one.xml", "two.xml"};
    QTest::newRow("a model and a database") << QStringList{"--status", "s", "one.xml"};
}

void tst_Explorer::oddArgumentsAreErrors()
{
    QFETCH(QStringList, arguments);
    const Run result = run(arguments);
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.err.startsWith("explorer: "));
}

QTEST_GUILESS_MAIN(tst_Explorer)
#include "tst_Explorer.moc"
