#include "support/ErrorReports.h"
#include "trees/DroppedObject.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"
#include "zrVOMGUI/trees/v2/ObjectTreeView.h"

#include <QDropEvent>
#include <QMimeData>

#include <iostream>
#include <sstream>
#include <stdexcept>

using namespace tree_test;

namespace {

using View2 = GUI::V2::ObjectTreeView;
using Scene2 = SceneT<View2>;

/// What goes to the standard output meanwhile.
class Output {
public:
    Output()
        : before(std::cout.rdbuf(text.rdbuf()))
    {
    }
    ~Output() { std::cout.rdbuf(before); }
    Output(Output const &) = delete;
    Output &operator=(Output const &) = delete;

    std::string take()
    {
        const std::string taken = text.str();
        text.str({});
        return taken;
    }

private:
    std::ostringstream text;
    std::streambuf *const before;
};

constexpr auto noPosition = static_cast<std::size_t>(-1);

} // namespace

/// Drags over the second generation, and the trace that they leave.
class tst_ObjectTreeView2Drops : public QObject {
    Q_OBJECT

private slots:
    void traceNamesTheKindOfRow_data();
    void traceNamesTheKindOfRow();
    void traceShowsThePositionAsAnInt_data();
    void traceShowsThePositionAsAnInt();
    void traceShowsTheTextAsLatin1();
    void traceIsWrittenByDropsToo();
    void traceFollowsThePayload();
    void topPositionTracesTheLowerRow();
    void reportsBearTheNameOfTheGeneration();
    void hiddenFieldsLetObjectRowsTakeDrops();
};

void tst_ObjectTreeView2Drops::traceNamesTheKindOfRow_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<std::string>("trace");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("no row") << "none" << std::string("  No row.\n") << false;
    QTest::newRow("row of a field")
        << "field" << std::string("  Row 'own'[-1]\n  FieldRow\n") << true;
    QTest::newRow("row of an object")
        << "object" << std::string("  Row ''a''[-1]\n  ObjectRow\n") << false;
    QTest::newRow("row of an empty link") << "void" << std::string("  Row 'void'[-1]\n") << false;
    QTest::newRow("root") << "root" << std::string("  Row ''[-1]\n") << false;
}

/// KEPT: hosts read the trace, word for word.
void tst_ObjectTreeView2Drops::traceNamesTheKindOfRow()
{
    QFETCH(QString, row);
    QFETCH(std::string, trace);
    QFETCH(bool, allowed);
    Scene2 scene;
    scene.show();
    fieldOf<FieldPtr>(scene.a(), "next").set({});
    scene.dump();
    DroppedObject dropped(scene);
    View2::Row *const object = scene.row(scene.path());
    View2::Row *const target = row == "none"     ? nullptr
                               : row == "field"  ? scene.row(scene.path("own"))
                               : row == "object" ? object
                               : row == "void"   ? scene.row(scene.path("next", 0))
                                                 : object->getParent();
    Output output;
    QCOMPARE(scene.view->onCanDrop(dropped.event, target, noPosition), allowed);
    QCOMPARE(output.take(), trace);
}

void tst_ObjectTreeView2Drops::traceShowsThePositionAsAnInt_data()
{
    QTest::addColumn<quint64>("position");
    QTest::addColumn<std::string>("shown");
    QTest::newRow("first") << quint64(0) << std::string("0");
    QTest::newRow("third") << quint64(2) << std::string("2");
    QTest::newRow("none") << ~quint64(0) << std::string("-1");
    QTest::newRow("32 bits and more") << (quint64(1) << 32) + 7 << std::string("7");
    QTest::newRow("sign of an int") << (quint64(1) << 31) << std::string("-2147483648");
}

void tst_ObjectTreeView2Drops::traceShowsThePositionAsAnInt()
{
    QFETCH(quint64, position);
    QFETCH(std::string, shown);
    Scene2 scene;
    scene.show();
    DroppedObject dropped(scene);
    View2::Row *const row = scene.row(scene.path("own"));
    Output output;
    scene.view->onCanDrop(dropped.event, row, position);
    QCOMPARE(output.take(), "  Row 'own'[" + shown + "]\n  FieldRow\n");
}

void tst_ObjectTreeView2Drops::traceShowsTheTextAsLatin1()
{
    Scene2 scene;
    fieldOf<FieldString>(scene.a(), "name").set("Größe");
    scene.show();
    scene.dump();
    DroppedObject dropped(scene);
    View2::Row *const row = scene.row(scene.path());
    Output output;
    scene.view->onCanDrop(dropped.event, row, 0);
    QCOMPARE(output.take(), std::string("  Row ''Gr\xf6\xdf"
                                        "e''[0]\n  ObjectRow\n"));
}

void tst_ObjectTreeView2Drops::traceIsWrittenByDropsToo()
{
    Scene2 scene;
    scene.show();
    DroppedObject dropped(scene);
    int numDrops = 0;
    scene.view->sigDrop.connect([&](auto const &) { ++numDrops; });
    View2::Row *const row = scene.row(scene.path("own"));
    Output output;
    scene.view->onDrop(dropped.event, row, 1);
    QCOMPARE(output.take(), std::string("  Row 'own'[1]\n  FieldRow\n"));
    QCOMPARE(numDrops, 1);
}

void tst_ObjectTreeView2Drops::traceFollowsThePayload()
{
    Scene2 scene({}, RefT<Xml::Importer>(new XmlImporter({})));
    scene.show();
    View2::Row *const row = scene.row(scene.path("own"));
    Output output;
    QMimeData broken;
    broken.setData(GUI::MimeType::objectsXml, "<model");
    for (QMimeData const *mime :
         {static_cast<QMimeData const *>(nullptr), static_cast<QMimeData const *>(&broken)}) {
        QDropEvent event(QPointF(1, 1), Qt::CopyAction, mime, Qt::LeftButton, {});
        QVERIFY(!scene.view->onCanDrop(event, row, 0));
        QCOMPARE(output.take(), std::string());
    }
}

void tst_ObjectTreeView2Drops::topPositionTracesTheLowerRow()
{
    Scene2 scene;
    scene.view->addRow(scene.own(), 0);
    scene.show();
    scene.dump();
    DroppedObject dropped(scene);
    View2::Row *const root = scene.row(scene.path())->getParent();
    Output output;
    QVERIFY(scene.view->onCanDrop(dropped.event, root, 1));
    QCOMPARE(output.take(), std::string("  Row 'own'[-1]\n  FieldRow\n"));
    QVERIFY(!scene.view->onCanDrop(dropped.event, root, 2));
    QCOMPARE(output.take(), std::string("  Row ''[2]\n"));
}

void tst_ObjectTreeView2Drops::reportsBearTheNameOfTheGeneration()
{
    Scene2 scene;
    scene.show();
    GUI::Reports reports;
    scene.view->sigCanDrop.connect([](auto const &sigData) {
        *sigData.result = true;
        throw std::runtime_error("broken");
    });
    scene.view->sigDrop.connect([](auto const &) { throw std::runtime_error("broken, too"); });
    DroppedObject dropped(scene);
    View2::Row *const row = scene.row(scene.path("own"));
    const Output output;
    scene.view->onDrop(dropped.event, row, 0);
    QCOMPARE(reports.texts,
             (std::vector<std::string>{"ZR::VOM::GUI::V2::ObjectTreeView::canDrop: broken",
                                       "ZR::VOM::GUI::V2::ObjectTreeView::onDrop: broken, too"}));
}

void tst_ObjectTreeView2Drops::hiddenFieldsLetObjectRowsTakeDrops()
{
    Scene2 scene;
    scene.view->setHideFields(true);
    scene.show();
    scene.dump();
    DroppedObject dropped(scene);
    Field const *field = nullptr;
    scene.view->sigDrop.connect(
        [&](auto const &sigData) { field = sigData.path.getLast().field.get(); });
    View2::Row *const row = scene.row(scene.path());
    Output output;
    scene.view->onDrop(dropped.event, row, noPosition);
    QCOMPARE(field, &scene.field("part"));
    QCOMPARE(output.take(), std::string("  Row ''a''[-1]\n  ObjectRow\n"));
}

QTEST_MAIN(tst_ObjectTreeView2Drops)
#include "tst_ObjectTreeView2Drops.moc"
