#include "house/IncludeRules.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

class tst_Includes : public QObject {
    Q_OBJECT

private slots:
    void includesAreReadAsTheCompilerReadsThem();
    void forbiddenIncludesAreFound_data();
    void forbiddenIncludesAreFound();
    void allowedIncludesPass_data();
    void allowedIncludesPass();
    void violationNamesFileLineAndRule();
    void everyRoomOfTheSourceIsRead();
    void sourceKeepsTheRules();
};

namespace {

const QDir sourceDir(ZRVOMGUI_SOURCE_DIR "/src/zrVOMGUI");

QStringList sourceFiles()
{
    QStringList files;
    QDirIterator iterator(sourceDir.path(), {"*.h", "*.cpp"}, QDir::Files,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files << sourceDir.relativeFilePath(iterator.next());
    files.sort();
    return files;
}

QString readSource(QString const &path)
{
    QFile file(sourceDir.filePath(path));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

void tst_Includes::includesAreReadAsTheCompilerReadsThem()
{
    const QString text = "#include \"a.h\"\n"
                         "// #include <commented>\n"
                         "/* #include <blocked>\n"
                         "#include <stillBlocked> */\n"
                         "  #  include <b>  // why\n"
                         "char const *filter = \"image/*\"; char quote = '\"';\n"
                         "#include<c/d>\n"
                         "/**/ #include <e> /* */\n"
                         "#include NAMED\n"
                         "int million = 1'000'000; // '\n"
                         "#include <f>";
    QStringList found;
    for (IncludeRules::Include const &include : IncludeRules::includesOf(text))
        found << QString::number(include.line) + (include.angled ? "<" : "\"") + include.name;
    QCOMPARE(found.join(' '), QString("1\"a.h 5<b 7<c/d 8<e 9\"NAMED 11<f"));
}

void tst_Includes::forbiddenIncludesAreFound_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("include");
    QTest::addColumn<QString>("rule");
    const auto row = [](char const *claim, char const *path, char const *include,
                        char const *rule) {
        QTest::newRow(claim) << QString(path) << QString(include) << QString(rule);
    };

    row("util uses Qt", "foundation/util/text.cpp", "<QString>", "only the standard library");
    row("util uses a Qt module by name", "foundation/util/text.cpp", "<QtCore/qglobal.h>",
        "only the standard library");
    row("util knows vom", "foundation/util/Class.h", "\"zrVOMGUI/foundation/vom/Object.h\"",
        "may not know foundation/vom");
    row("util uses the system's headers", "foundation/util/Time.cpp", "<sys/time.h>",
        "nor the standard library");
    row("util uses a C header by its old name", "foundation/util/Time.cpp", "<stdint.h>",
        "nor the standard library");
    row("vom uses QtCore outside its XML files", "foundation/vom/Field.cpp", "<QString>",
        "only in its XML files");
    row("vom uses QtGui in an XML file", "foundation/vom/XmlImporter.cpp", "<QColor>",
        "no Qt module but QtCore");
    row("vom knows gui", "foundation/vom/XmlImporter.cpp", "\"zrVOMGUI/foundation/gui/Drag.h\"",
        "may not know foundation/gui");
    row("vom uses the widgets' export macro", "foundation/vom/Field.h", "\"zrVOMGUI/export.h\"",
        "may not know export");
    row("gui knows vom", "foundation/gui/TreeView.h", "\"zrVOMGUI/foundation/vom/Object.h\"",
        "may not know foundation/vom");
    row("presentation knows the graph", "presentation/ItemLabel.cpp",
        "\"zrVOMGUI/graph/ObjectGraphView.h\"", "may not know graph");
    row("presentation knows transfer", "presentation/ItemLabel.cpp",
        "\"zrVOMGUI/transfer/MimeData.h\"", "may not know transfer");
    row("transfer knows presentation", "transfer/MimeData.cpp",
        "\"zrVOMGUI/presentation/ItemLabel.h\"", "may not know presentation");
    row("graph knows trees", "graph/DragDrop.cpp", "\"zrVOMGUI/trees/v1/ObjectTreeView.h\"",
        "may not know trees");
    row("trees know widgets", "trees/v2/ObjectTreeView.cpp", "\"zrVOMGUI/widgets/ObjectView.h\"",
        "may not know widgets");
    row("widgets know the graph", "widgets/ObjectView.cpp", "<zrVOMGUI/graph/ObjectGraphView.h>",
        "may not know graph");
    row("trees know the layout engine", "trees/ObjectTreeView.cpp",
        "\"zrVOMGUI/graph/layout/Hierarchy.h\"", "may not know graph/layout");
    row("engine knows the graph's widget", "graph/layout/Ranking.cpp",
        "\"zrVOMGUI/graph/ObjectGraphView.h\"", "may not know graph");
    row("engine knows the graph's private headers", "graph/layout/Ranking.cpp",
        "\"zrVOMGUI/graph/private/Painting.h\"", "may not know graph");
    row("nodes know the graph's widget", "graph/private/Node.h",
        "\"zrVOMGUI/graph/ObjectGraphView.h\"", "may not know graph");
    row("nodes know a stage", "graph/private/NodeLinks.h", "\"zrVOMGUI/graph/layout/Hierarchy.h\"",
        "may not know graph/layout");
    row("nodes paint", "graph/private/Node.h", "<QPainter>", "no painter, event or timer");
    row("engine knows presentation", "graph/layout/Hierarchy.h",
        "\"zrVOMGUI/presentation/ItemLabel.h\"", "may not know presentation");
    row("engine uses a widget", "graph/layout/Hierarchy.h", "<QWidget>", "no widgets");
    row("engine uses a widget by module", "graph/layout/Hierarchy.h", "<QtWidgets/QFrame>",
        "no widgets");
    row("engine uses all widgets", "graph/layout/Hierarchy.h", "<QtWidgets>", "no widgets");
    row("engine paints", "graph/layout/Hierarchy.cpp", "<QPainter>", "no painter, event or timer");
    row("engine paints by the file's name", "graph/layout/Hierarchy.cpp", "<qpainter.h>",
        "no painter, event or timer");
    row("engine knows an event", "graph/layout/Hierarchy.cpp", "<QMouseEvent>",
        "no painter, event or timer");
    row("engine knows the event header", "graph/layout/Hierarchy.cpp", "<QtCore/QEvent>",
        "no painter, event or timer");
    row("engine has a timer", "graph/layout/Hierarchy.cpp", "<QBasicTimer>",
        "no painter, event or timer");
    row("engine animates", "graph/layout/Hierarchy.cpp", "<QVariantAnimation>",
        "no painter, event or timer");
    row("engine uses all of QtGui", "graph/layout/Hierarchy.cpp", "<QtGui>",
        "no painter, event or timer");
    row("solver knows nodes", "graph/layout/NetworkSimplex.cpp",
        "\"zrVOMGUI/graph/private/Node.h\"", "flat vertices and edges");
    row("solver's tree knows nodes", "graph/layout/SpanningTree.h",
        "\"zrVOMGUI/graph/private/Node.h\"", "flat vertices and edges");
    row("solver knows Qt", "graph/layout/NetworkSimplex.h", "<QVector>", "flat vertices and edges");
    row("painting knows a stage", "graph/Painting.cpp", "\"zrVOMGUI/graph/layout/Hierarchy.h\"",
        "only LayoutDriver");
    row("animation knows the solver's tree", "graph/Animation.cpp",
        "\"zrVOMGUI/graph/layout/SpanningTree.h\"", "only LayoutDriver");
    row("public header includes a private one", "graph/ObjectGraphView.h",
        "\"zrVOMGUI/graph/private/Painting.h\"", "public header");
    row("public header includes a stage", "graph/ObjectGraphView.h",
        "\"zrVOMGUI/graph/layout/Hierarchy.h\"", "public header");
    row("figures know a stage", "graph/LayoutFigures.h", "\"zrVOMGUI/graph/layout/Hierarchy.h\"",
        "may not know graph/layout");
    row("another room's private header", "trees/v2/Rows.cpp",
        "\"zrVOMGUI/presentation/private/Lookup.h\"", "its own room alone");
    row("header beside the file", "graph/Painting.cpp", "\"ObjectGraphView.h\"",
        "named from the root");
    row("header a folder up", "graph/layout/Hierarchy.cpp", "\"../export.h\"",
        "named from the root");
    row("another class's moc", "graph/Painting.cpp", "\"Animation.moc\"", "named from the root");
    row("header of an unknown room", "graph/Painting.cpp", "\"zrVOMGUI/cellar/Wine.h\"",
        "no room of that name");
    row("header named by a macro", "graph/Painting.cpp", "HEADER", "named from the root");
    row("module beyond the three", "graph/Painting.cpp", "<QtNetwork/QTcpSocket>",
        "no such header in QtCore");
    row("class beyond the three modules", "graph/Painting.cpp", "<QNoSuchClass>",
        "no such header in QtCore");
    row("private header of Qt", "graph/Painting.cpp", "<private/qwidget_p.h>", "nor Qt");
}

void tst_Includes::forbiddenIncludesAreFound()
{
    QFETCH(QString, path);
    QFETCH(QString, include);
    QFETCH(QString, rule);

    const QStringList found = IncludeRules::violations(path, "#include " + include);

    QCOMPARE(found.size(), 1);
    QVERIFY2(found.front().contains(rule), qPrintable(found.front()));
}

void tst_Includes::allowedIncludesPass_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("include");
    const auto row = [](char const *claim, char const *path, char const *include) {
        QTest::newRow(claim) << QString(path) << QString(include);
    };

    row("util uses the standard library", "foundation/util/Signal.h", "<functional>");
    row("util knows itself", "foundation/util/Signal.h", "\"zrVOMGUI/foundation/util/Ptr.h\"");
    row("vom knows util", "foundation/vom/Field.h", "\"zrVOMGUI/foundation/util/Signal.h\"");
    row("vom uses QtCore in an XML file", "foundation/vom/XmlImporter.cpp", "<QXmlStreamReader>");
    row("gui uses widgets", "foundation/gui/TreeView.h", "<QAbstractScrollArea>");
    row("presentation knows vom", "presentation/ItemLabel.h",
        "\"zrVOMGUI/foundation/vom/Object.h\"");
    row("presentation uses the export macro", "presentation/ItemLabel.h", "\"zrVOMGUI/export.h\"");
    row("graph knows presentation", "graph/Painting.cpp", "\"zrVOMGUI/presentation/ItemLabel.h\"");
    row("graph paints", "graph/Painting.cpp", "<QPainter>");
    row("graph knows the view's nodes", "graph/Painting.cpp", "\"zrVOMGUI/graph/private/Node.h\"");
    row("graph's source knows its private header", "graph/Painting.cpp",
        "\"zrVOMGUI/graph/private/Painting.h\"");
    row("private header knows a private header", "graph/private/Painting.h",
        "\"zrVOMGUI/graph/private/Geometry.h\"");
    row("driver knows a stage", "graph/LayoutDriver.cpp", "\"zrVOMGUI/graph/layout/Hierarchy.h\"");
    row("view searches components", "graph/DragDrop.cpp", "\"zrVOMGUI/graph/layout/Components.h\"");
    row("view searches routes", "graph/DragDrop.cpp", "\"zrVOMGUI/graph/layout/Routes.h\"");
    row("engine knows the view's nodes", "graph/layout/Ranking.cpp",
        "\"zrVOMGUI/graph/private/Node.h\"");
    row("engine's header knows the view's nodes", "graph/layout/Hierarchy.h",
        "\"zrVOMGUI/graph/private/Node.h\"");
    row("engine writes a layout's figures", "graph/layout/Hierarchy.h",
        "\"zrVOMGUI/graph/LayoutFigures.h\"");
    row("view tells a layout's figures", "graph/ObjectGraphView.h",
        "\"zrVOMGUI/graph/LayoutFigures.h\"");
    row("links know nodes", "graph/private/NodeLinks.h", "\"zrVOMGUI/graph/private/Node.h\"");
    row("engine knows the model", "graph/layout/Hierarchy.h",
        "\"zrVOMGUI/foundation/vom/Object.h\"");
    row("engine has pictures and text", "graph/layout/Hierarchy.h", "<QPixmap>");
    row("solver knows itself", "graph/layout/NetworkSimplex.cpp",
        "\"zrVOMGUI/graph/layout/NetworkSimplex.h\"");
    row("solver knows its tree", "graph/layout/CutSearch.cpp",
        "\"zrVOMGUI/graph/layout/SpanningTree.h\"");
    row("solver's index knows arithmetic", "graph/layout/CutValueIndex.cpp",
        "\"zrVOMGUI/foundation/util/text.h\"");
    row("file includes its own moc", "trees/v1/ObjectTreeModel.cpp", "\"ObjectTreeModel.moc\"");
    row("trees know transfer in angle brackets", "trees/v1/ObjectTreeModel.cpp",
        "<zrVOMGUI/transfer/MimeData.h>");
}

void tst_Includes::allowedIncludesPass()
{
    QFETCH(QString, path);
    QFETCH(QString, include);

    QCOMPARE(IncludeRules::violations(path, "#include " + include), QStringList());
}

void tst_Includes::violationNamesFileLineAndRule()
{
    QCOMPARE(
        IncludeRules::violations("foundation/util/text.h",
                                 "#pragma once\n\n#include <string>\n#include <QString>\n"),
        QStringList{"foundation/util/text.h:4: includes QString: foundation/util includes only "
                    "the standard library"});
    QCOMPARE(IncludeRules::violations("cellar/Wine.h", ""),
             QStringList{"cellar/Wine.h:1: lies in no room that the rules know"});
}

void tst_Includes::everyRoomOfTheSourceIsRead()
{
    const QString files = sourceFiles().join('\n');
    for (char const *file : {"foundation/util/Class.h", "foundation/vom/Object.cpp",
                             "foundation/gui/QtTranslation.cpp", "presentation/ItemLabel.cpp",
                             "graph/ObjectGraphView.h", "graph/layout/NetworkSimplex.cpp"})
        QVERIFY2(files.contains(file), file);
}

void tst_Includes::sourceKeepsTheRules()
{
    QStringList found;
    for (QString const &path : sourceFiles())
        found << IncludeRules::violations(path, readSource(path));
    QVERIFY2(found.isEmpty(), qPrintable('\n' + found.join('\n')));
}

QTEST_GUILESS_MAIN(tst_Includes)

#include "tst_Includes.moc"
