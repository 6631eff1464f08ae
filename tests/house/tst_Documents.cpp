#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

class tst_Documents : public QObject {
    Q_OBJECT

private slots:
    void deadLinksAreFound();
    void linksLeadSomewhere_data();
    void linksLeadSomewhere();
    void readmeShowsTheMinimalHost();
    void readmesCommandsAreThere_data();
    void readmesCommandsAreThere();
};

namespace {

const QDir root(ZRVOMGUI_SOURCE_DIR);

QString read(QString const &path)
{
    QFile file(root.filePath(path));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

const QRegularExpression fencedCode("^```(\\w*)\\n(.*?)^```$",
                                    QRegularExpression::MultilineOption |
                                        QRegularExpression::DotMatchesEverythingOption);

// The targets of a page's links and pictures that name no file; `folder` is where the page lies.
QStringList deadLinks(QString page, QDir const &folder)
{
    static const QRegularExpression inlineCode("`[^`\\n]*`");
    static const QRegularExpression link("\\]\\(([^)#\\s]+)[^)]*\\)");
    page.remove(fencedCode).remove(inlineCode);
    QStringList dead;
    QRegularExpressionMatchIterator match = link.globalMatch(page);
    while (match.hasNext()) {
        const QString target = match.next().captured(1);
        if (!target.contains("://") && !QFile::exists(folder.filePath(target)))
            dead << target;
    }
    return dead;
}

} // namespace

void tst_Documents::deadLinksAreFound()
{
    const QString page =
        "[there](README.md), [a part of it](README.md#building) and [gone](GONE.md)\n"
        "![no picture](docs/none.png) [elsewhere](https://example.org/none)\n"
        "[within this page](#here) `[](code)`\n"
        "```cpp\n"
        "auto f = [](auto x) { return x; };\n"
        "```\n"
        "[after the code](src/gone#part)\n";
    QCOMPARE(deadLinks(page, root), (QStringList{"GONE.md", "docs/none.png", "src/gone"}));
    QCOMPARE(deadLinks("[there](../README.md)", QDir(root.filePath("docs"))), QStringList());
}

void tst_Documents::linksLeadSomewhere_data()
{
    QTest::addColumn<QString>("page");
    QStringList pages = root.entryList({"*.md"}, QDir::Files);
    for (char const *folder : {"docs", "examples", "bench", "tests"}) {
        QDirIterator iterator(root.filePath(folder), {"*.md"}, QDir::Files,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext())
            pages << root.relativeFilePath(iterator.next());
    }
    for (QString const &page : pages)
        QTest::newRow(qPrintable(page)) << page;
}

void tst_Documents::linksLeadSomewhere()
{
    QFETCH(QString, page);
    const QDir folder = QFileInfo(root.filePath(page)).dir();
    QCOMPARE(deadLinks(read(page), folder).join(' '), QString());
}

void tst_Documents::readmeShowsTheMinimalHost()
{
    QString shown;
    QRegularExpressionMatchIterator match = fencedCode.globalMatch(read("README.md"));
    while (match.hasNext()) {
        const QRegularExpressionMatch block = match.next();
        if (block.captured(1) == "cpp")
            shown += block.captured(2);
    }
    QVERIFY(!shown.isEmpty());
    QCOMPARE(shown, read("examples/minimal/main.cpp"));
}

void tst_Documents::readmesCommandsAreThere_data()
{
    QTest::addColumn<QString>("command");
    static const QRegularExpression command("^(\\./\\S+)", QRegularExpression::MultilineOption);
    QRegularExpressionMatchIterator match = command.globalMatch(read("README.md"));
    while (match.hasNext()) {
        const QString name = match.next().captured(1);
        QTest::newRow(qPrintable(name)) << name;
    }
}

void tst_Documents::readmesCommandsAreThere()
{
    QFETCH(QString, command);
    QVERIFY(QFileInfo(root.filePath(command)).isExecutable());
}

QTEST_GUILESS_MAIN(tst_Documents)

#include "tst_Documents.moc"
