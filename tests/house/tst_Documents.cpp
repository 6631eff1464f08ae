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
    void regionsAreFound();
    void shownCodeIsCompiled_data();
    void shownCodeIsCompiled();
    void markedRegionsAreShown();
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

// A page's blocks of C++.
QStringList codeOf(QString const &page)
{
    QStringList blocks;
    QRegularExpressionMatchIterator match = fencedCode.globalMatch(page);
    while (match.hasNext()) {
        const QRegularExpressionMatch block = match.next();
        if (block.captured(1) == "cpp")
            blocks << block.captured(2);
    }
    return blocks;
}

// Without the indentation that all lines have in common.
QString dedented(QStringList lines)
{
    static const QRegularExpression text("\\S");
    int indentation = INT_MAX;
    for (QString const &line : lines)
        if (line.contains(text))
            indentation = qMin(indentation, static_cast<int>(line.indexOf(text)));
    for (QString &line : lines)
        line.remove(0, qMin(indentation, static_cast<int>(line.size()) - 1));
    return lines.join("");
}

// What stands between a pair of lines `//! [NAME]`, by name.
QMap<QString, QString> regionsOf(QString const &source)
{
    static const QRegularExpression mark("^\\s*//! \\[(\\w+)\\]$");
    QMap<QString, QStringList> open;
    QMap<QString, QString> regions;
    for (QString const &line : source.split('\n')) {
        const QRegularExpressionMatch match = mark.match(line);
        if (match.hasMatch()) {
            const QString name = match.captured(1);
            if (open.contains(name))
                regions[name] = dedented(open.take(name));
            else
                open[name] = QStringList();
            continue;
        }
        for (QStringList &lines : open)
            lines << line + '\n';
    }
    return regions;
}

// The sources whose code pages may show: the build compiles all of them.
QStringList shownSources()
{
    QStringList sources;
    for (char const *folder : {"examples", "tests/docs"}) {
        QDirIterator iterator(root.filePath(folder), {"*.h", "*.cpp"}, QDir::Files,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext())
            sources << read(iterator.next());
    }
    return sources;
}

QStringList pagesWithCode()
{
    QStringList pages = {"README.md"};
    for (QString const &page : QDir(root.filePath("docs")).entryList({"*.md"}, QDir::Files))
        pages << "docs/" + page;
    return pages;
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

void tst_Documents::regionsAreFound()
{
    const QString source = "int a;\n"
                           "    //! [outer]\n"
                           "    int b;\n"
                           "    //! [inner]\n"
                           "        int c;\n"
                           "\n"
                           "    //! [inner]\n"
                           "    //! [outer]\n"
                           "//! [unclosed]\n";
    QCOMPARE(regionsOf(source), (QMap<QString, QString>{{"outer", "int b;\n    int c;\n\n"},
                                                        {"inner", "int c;\n\n"}}));
}

void tst_Documents::shownCodeIsCompiled_data()
{
    QTest::addColumn<QString>("code");
    for (QString const &page : pagesWithCode()) {
        int number = 0;
        for (QString const &code : codeOf(read(page)))
            QTest::addRow("%s, block %d", qPrintable(page), ++number) << code;
    }
}

void tst_Documents::shownCodeIsCompiled()
{
    QFETCH(QString, code);
    for (QString const &source : shownSources())
        if (source == code || regionsOf(source).values().contains(code))
            return;
    QFAIL(qPrintable("This is no marked region of examples/ or tests/docs:\n" + code));
}

void tst_Documents::markedRegionsAreShown()
{
    QStringList shown;
    for (QString const &page : pagesWithCode())
        shown << codeOf(read(page));
    for (QString const &source : shownSources()) {
        const QMap<QString, QString> regions = regionsOf(source);
        for (QString const &name : regions.keys())
            QVERIFY2(shown.contains(regions[name]), qPrintable("no page shows " + name));
    }
}

void tst_Documents::readmeShowsTheMinimalHost()
{
    QCOMPARE(codeOf(read("README.md")), QStringList(read("examples/minimal/main.cpp")));
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
