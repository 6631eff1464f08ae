#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

class tst_Documents : public QObject {
    Q_OBJECT

private slots:
    void deadLinksAreFound();
    void linksLeadSomewhere_data();
    void linksLeadSomewhere();
    void headingsHaveTheAnchorsOfGitHub_data();
    void headingsHaveTheAnchorsOfGitHub();
    void everyPictureIsShown();
    void regionsAreFound();
    void shownCodeIsCompiled_data();
    void shownCodeIsCompiled();
    void markedRegionsAreShown();
    void shownSourcesAreBuilt();
    void readmeShowsTheMinimalHost();
    void minimalHostIsShort();
    void commandsAreFound();
    void commandsAreThere_data();
    void commandsAreThere();
    void readmeNamesEveryExample();
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

// What GitHub makes of a heading, to link to it.
QString anchorOf(QString heading)
{
    static const QRegularExpression link("\\[([^\\]]*)\\]\\([^)]*\\)");
    static const QRegularExpression lost("[^\\w\\- ]",
                                         QRegularExpression::UseUnicodePropertiesOption);
    return heading.replace(link, "\\1").toLower().remove(lost).replace(' ', '-');
}

QSet<QString> anchorsOf(QString page)
{
    static const QRegularExpression heading("^#+ +(.*?) *$", QRegularExpression::MultilineOption);
    page.remove(fencedCode);
    QSet<QString> anchors;
    QMap<QString, int> numOfAName;
    QRegularExpressionMatchIterator match = heading.globalMatch(page);
    while (match.hasNext()) {
        const QString anchor = anchorOf(match.next().captured(1));
        const int numBefore = numOfAName[anchor]++;
        anchors << (numBefore == 0 ? anchor : QString("%1-%2").arg(anchor).arg(numBefore));
    }
    return anchors;
}

// The targets of a page's links and pictures that name no file, or no heading of a page; `folder`
// is where the page lies.
QStringList deadLinks(QString const &page, QDir const &folder)
{
    static const QRegularExpression inlineCode("`[^`\\n]*`");
    static const QRegularExpression link("\\]\\(([^)#\\s]*)(?:#([^)\\s]*))?[^)]*\\)");
    QString text = page;
    text.remove(fencedCode).remove(inlineCode);
    QStringList dead;
    QRegularExpressionMatchIterator match = link.globalMatch(text);
    while (match.hasNext()) {
        const QRegularExpressionMatch found = match.next();
        const QString target = found.captured(1), anchor = found.captured(2);
        if (target.contains("://"))
            continue;
        const QString path = folder.filePath(target);
        const bool isPage = target.isEmpty() || target.endsWith(".md");
        if (!QFile::exists(path))
            dead << target;
        else if (isPage && !anchor.isEmpty() &&
                 !anchorsOf(target.isEmpty() ? page : read(path)).contains(anchor))
            dead << target + '#' + anchor;
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

// The files of sources whose code pages may show.
QStringList shownFiles(QStringList const &patterns)
{
    QStringList files;
    for (char const *folder : {"examples", "tests/docs"}) {
        QDirIterator iterator(root.filePath(folder), patterns, QDir::Files,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext())
            files << iterator.next();
    }
    return files;
}

QStringList shownSources()
{
    QStringList sources;
    for (QString const &file : shownFiles({"*.h", "*.cpp"}))
        sources << read(file);
    return sources;
}

QStringList pagesWithCode()
{
    QStringList pages = {"README.md"};
    for (QString const &page : QDir(root.filePath("docs")).entryList({"*.md"}, QDir::Files))
        pages << "docs/" + page;
    return pages;
}

// The commands that a page names: `./run minimal` as {"run", "minimal"}, and each of those that it
// goes on with, such as in "`./run graph`, `tree` and `slot`".
QList<QStringList> commandsOf(QString const &page)
{
    static const QRegularExpression command("(?:`|^)\\./(run|test)\\b *([^`#\\n]*)",
                                            QRegularExpression::MultilineOption);
    static const QRegularExpression next("\\G`(?:,|,?\\s+and|,?\\s+or)\\s+`([\\w-]+)(?=`)");
    QList<QStringList> commands;
    QRegularExpressionMatchIterator match = command.globalMatch(page);
    while (match.hasNext()) {
        QRegularExpressionMatch found = match.next();
        const QString script = found.captured(1);
        const QStringList words = found.captured(2).simplified().split(' ');
        commands << (QStringList(script) + words);
        while (words.size() == 1) {
            found = next.match(page, found.capturedEnd());
            if (!found.hasMatch())
                break;
            commands << QStringList{script, found.captured(1)};
        }
    }
    return commands;
}

// What ./run and ./test say of themselves.
QString helpOf(QString const &script)
{
    QProcess process;
    process.start(root.filePath(script), {"--help"});
    return process.waitForFinished() ? QString::fromUtf8(process.readAll()) : QString();
}

bool isExample(QString const &name)
{
    return !name.isEmpty() && QFile::exists(root.filePath("examples/" + name + "/main.cpp"));
}

} // namespace

void tst_Documents::deadLinksAreFound()
{
    const QString page = "[there](README.md), [a part of it](README.md#forms) and [gone](GONE.md)\n"
                         "![no picture](docs/none.png) [elsewhere](https://example.org/none)\n"
                         "[within this page](#within), [not there](#nowhere) `[](code)`\n"
                         "[its part](docs/model.md#xml), [none of it](docs/model.md#no-part)\n"
                         "### Within\n"
                         "```cpp\n"
                         "auto f = [](auto x) { return x; };\n"
                         "```\n"
                         "[after the code](src/gone#part)\n";
    QCOMPARE(deadLinks(page, root), (QStringList{"GONE.md", "docs/none.png", "#nowhere",
                                                 "docs/model.md#no-part", "src/gone"}));
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

void tst_Documents::headingsHaveTheAnchorsOfGitHub_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("anchors");
    const auto row = [](char const *name, char const *page, QStringList const &anchors) {
        QTest::newRow(name) << QString::fromUtf8(page) << anchors;
    };
    row("words", "# Install and link\n", {"install-and-link"});
    row("signs and code", "## `V1::ObjectTreeView` (the *first*), or_so\n",
        {"v1objecttreeview-the-first-or_so"});
    row("a dash keeps its blanks", "## What - and why\n", {"what---and-why"});
    row("letters of all languages", "## F\u00FCr \u00C4pfel\n",
        {QString::fromUtf8("f\u00FCr-\u00E4pfel")});
    row("a link", "## See [the page](there.md#part)\n", {"see-the-page"});
    row("the same again", "# Part\n## Part\n# Part\n", {"part", "part-1", "part-2"});
    row("none in code", "```sh\n# a comment\n```\n", {});
}

void tst_Documents::headingsHaveTheAnchorsOfGitHub()
{
    QFETCH(QString, page);
    QFETCH(QStringList, anchors);
    QStringList found = anchorsOf(page).values();
    found.sort();
    QCOMPARE(found, anchors);
}

void tst_Documents::everyPictureIsShown()
{
    QString pages;
    for (QString const &page : pagesWithCode())
        pages += read(page);
    for (QString const &picture : QDir(root.filePath("docs/pictures")).entryList(QDir::Files))
        QVERIFY2(pages.contains("pictures/" + picture + ')'), qPrintable(picture));
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

void tst_Documents::shownSourcesAreBuilt()
{
    for (QString const &file : shownFiles({"*.cpp"})) {
        const QFileInfo source(file);
        // The build finds the examples by themselves.
        if (source.fileName() == "main.cpp" && isExample(source.dir().dirName()))
            continue;
        const QRegularExpression name("\\b" + source.completeBaseName() + "\\b");
        QVERIFY2(read(source.dir().filePath("CMakeLists.txt")).contains(name), qPrintable(file));
    }
}

void tst_Documents::readmeShowsTheMinimalHost()
{
    QCOMPARE(codeOf(read("README.md")), QStringList(read("examples/minimal/main.cpp")));
}

void tst_Documents::minimalHostIsShort()
{
    QVERIFY(read("examples/minimal/main.cpp").count('\n') < 40);
}

void tst_Documents::commandsAreFound()
{
    const QString page = "Call `./run graph`, `tree-v1` and `slot`, or\n"
                         "`./run bench layout FILE...`, and `not` that.\n"
                         "```sh\n"
                         "./test      # all\n"
                         "./test --quick\n"
                         "```\n"
                         "See `./running` and `a/run`.\n";
    QCOMPARE(commandsOf(page), (QList<QStringList>{{"run", "graph"},
                                                   {"run", "tree-v1"},
                                                   {"run", "slot"},
                                                   {"run", "bench", "layout", "FILE..."},
                                                   {"test", ""},
                                                   {"test", "--quick"}}));
}

void tst_Documents::commandsAreThere_data()
{
    QTest::addColumn<QStringList>("command");
    for (QString const &page : pagesWithCode())
        for (QStringList const &command : commandsOf(read(page)))
            QTest::addRow("%s: %s", qPrintable(page), qPrintable(command.join(' ').trimmed()))
                << command;
}

void tst_Documents::commandsAreThere()
{
    QFETCH(QStringList, command);
    const QString script = command[0], first = command[1], second = command.value(2);
    QVERIFY(QFileInfo(root.filePath(script)).isExecutable());
    const QString help = helpOf(script);
    QVERIFY(!help.isEmpty());
    if (script == "run" && isExample(first))
        return;
    const QRegularExpression told("^\\./" + script + ' ' + QRegularExpression::escape(first) +
                                      "(?![\\w-])",
                                  QRegularExpression::MultilineOption);
    QVERIFY2(first.isEmpty() || help.contains(told), qPrintable(help));
    if (first == "bench" || first == "fuzz")
        QVERIFY(QFile::exists(root.filePath(first + '/' + second + ".cpp")));
}

void tst_Documents::readmeNamesEveryExample()
{
    const QList<QStringList> commands = commandsOf(read("README.md"));
    for (QString const &name :
         QDir(root.filePath("examples")).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        if (isExample(name) && name != "explorer") // Which ./run opens by itself.
            QVERIFY2(commands.contains(QStringList{"run", name}), qPrintable(name));
}

QTEST_GUILESS_MAIN(tst_Documents)

#include "tst_Documents.moc"
