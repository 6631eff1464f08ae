#include "support/DragModel.h"
#include "support/DragScene.h"
#include "support/QtStrings.h"
#include "support/ViewCheck.h"
#include "support/ViewProbe.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>

#include <algorithm>
#include <functional>
#include <stdexcept>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;

namespace {

/// "objects", "copies" and "xml", in the order in which they are offered.
std::string formatsOf(QMimeData const &data)
{
    std::string text;
    for (QString const &format : data.formats())
        text +=
            (text.empty() ? "" : " ") + (format == MimeType::objects        ? "objects"
                                         : format == MimeType::objectCopies ? "copies"
                                         : format == MimeType::objectsXml   ? "xml"
                                                                            : format.toStdString());
    return text;
}

/// Takes any drag of objects, for an action.
class Taker : public QWidget {
public:
    Taker(QWidget *window, Qt::DropAction taken)
        : QWidget(window)
        , action(taken)
    {
        setAcceptDrops(true);
        setGeometry(110, 0, 110, 300);
        show();
    }
    std::string objs, copies;
    Qt::DropAction dropped = Qt::IgnoreAction;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { take(*event); }
    void dragMoveEvent(QDragMoveEvent *event) override { take(*event); }
    void dropEvent(QDropEvent *event) override
    {
        take(*event);
        dropped = event->dropAction();
        objs = namesInOrder(objsOf(*event->mimeData()));
        copies = namesInOrder(copiesOf(*event->mimeData()));
    }

private:
    void take(QDropEvent &event) const
    {
        event.setDropAction(action);
        event.accept();
    }
    const Qt::DropAction action;
};

} // namespace

class tst_Drag : public QObject {
    Q_OBJECT

private slots:
    void unselectedNodeIsSelectedInSilence();
    void selectedNodeDragsAllThatIsSelected();
    void objectsAreInTheOrderOfTheirAddresses();
    void hiddenNodeDragsNothing();
    void hiddenSelectedNodeDragsTheOthers();

    void formatsAreInOrder_data();
    void formatsAreInOrder();
    void xmlTellsOfTheObjects();
    void copiesAreNewObjects();
    void copiesLinkToEachOther();
    void objectsThatCannotBeCopiedAreOfferedAlone();
    void offeredOnesStayUntilTheNextDrag();
    void offeredOnesDieWithTheView();
    void allActionsAreOfferedAndLinkIsProposed();
    void pictureGoesWithTheDrag();
    void nextDragCanBeginAtOnce();

    void dropOnTheViewItselfKeepsTheSelection();
    void dropOnAnotherViewShows();
    void othersTakeByCopyOrMove_data();
    void othersTakeByCopyOrMove();
};

/// KEPT: a drag that selects tells nobody.
void tst_Drag::unselectedNodeIsSelectedInSilence()
{
    DragScene scene("abc", "abc");
    scene.view->setSel(scene.these("ac"));
    SignalNotes notes(*scene.view);
    std::string dragged;
    QVERIFY(scene.drag('b', [&] { dragged = namesInOrder(objsOf(scene.offered())); }));
    QCOMPARE(dragged, "b"s);
    QCOMPARE(dumpNodes(*scene.view), "a+ b+* c+"s);
    QCOMPARE(notes.take(), ""s);
}

void tst_Drag::selectedNodeDragsAllThatIsSelected()
{
    DragScene scene("abcd", "abc");
    scene.view->setSel(scene.these("acd"));
    SignalNotes notes(*scene.view);
    std::string dragged;
    QVERIFY(scene.drag('a', [&] { dragged = namesOf(objsOf(scene.offered())); }));
    QCOMPARE(dragged, "a c"s);
    QCOMPARE(dumpNodes(*scene.view), "a+* b+ c+* d*"s);
    QCOMPARE(notes.take(), ""s);
}

void tst_Drag::objectsAreInTheOrderOfTheirAddresses()
{
    DragScene scene("abcdef", "abc");
    Things all = scene.these("fedcba");
    scene.view->setVisible(all, true);
    scene.view->setSel(all);
    Things dragged;
    QVERIFY(scene.drag('a', [&] { dragged = objsOf(scene.offered()); }));
    std::sort(all.begin(), all.end());
    QVERIFY(dragged == all);
}

void tst_Drag::hiddenNodeDragsNothing()
{
    const RefT<VOM::Exporter> exporter(new VOM::XmlExporter);
    DragScene scene(makeAll<Copied>("ab"), "ab", exporter);
    const QPoint from = scene.pointOf('a');
    scene.view->setSel(scene.these("b"));
    scene.press(from);
    scene.view->setVisible(scene.these("a"), false);
    std::size_t num = 99, numCopies = 99;
    bool hasPicture = true;
    QVERIFY(scene.dragOn(from + QPoint(20, 0), [&] {
        num = objsOf(scene.offered()).size();
        numCopies = copiesOf(scene.offered()).size();
        hasPicture = !Access::drag(*scene.view)->pixmap().isNull();
    }));
    QCOMPARE(num, std::size_t(0));
    QCOMPARE(numCopies, std::size_t(0));
    QVERIFY(!hasPicture);
    QCOMPARE(dumpNodes(*scene.view), "a* b+"s);
}

void tst_Drag::hiddenSelectedNodeDragsTheOthers()
{
    DragScene scene("ab", "ab");
    const QPoint from = scene.pointOf('a');
    scene.view->setSel(scene.these("ab"));
    scene.press(from);
    scene.view->setVisible(scene.these("a"), false);
    std::string dragged;
    QVERIFY(
        scene.dragOn(from + QPoint(20, 0), [&] { dragged = namesOf(objsOf(scene.offered())); }));
    QCOMPARE(dragged, "b"s);
}

using MakeExporter = std::function<RefT<VOM::Exporter>()>;
Q_DECLARE_METATYPE(MakeExporter)

void tst_Drag::formatsAreInOrder_data()
{
    QTest::addColumn<MakeExporter>("make");
    QTest::addColumn<std::string>("formats");
    const auto addRow = [](char const *row, char const *formats, MakeExporter const &make) {
        QTest::newRow(row) << make << std::string(formats);
    };
    addRow("no exporter", "objects copies", [] { return RefT<VOM::Exporter>(); });
    addRow("the library's own exporter", "objects copies xml",
           [] { return RefT<VOM::Exporter>(new VOM::XmlExporter); });
    const auto addWriter = [&](char const *row, char const *formats,
                               TestExporter::Write const &write) {
        addRow(row, formats, [write] { return RefT<VOM::Exporter>(new TestExporter(write)); });
    };
    addWriter("exporter that writes nothing", "objects copies", [](auto &, auto &, auto &) {});
    addWriter("exporter that reports an error", "objects copies",
              [](auto &, std::string &out, ErrorManager &errors) {
                  out = "<half/>";
                  errors.report("can't");
              });
    addWriter("exporter that throws", "objects copies", [](auto &, std::string &out, auto &) {
        out = "<half/>";
        throw std::runtime_error("can't");
    });
}

void tst_Drag::formatsAreInOrder()
{
    QFETCH(MakeExporter, make);
    QFETCH(std::string, formats);
    Reports reports; // What is thrown is reported, and not to the terminal.
    DragScene scene(makeAll<Copied>("a"), "a", make());
    std::string found;
    QVERIFY(scene.drag('a', [&] { found = formatsOf(scene.offered()); }));
    QCOMPARE(found, formats);
    QCOMPARE(reports.texts.size(),
             std::size_t(QTest::currentDataTag() == "exporter that throws"s ? 1 : 0));
}

void tst_Drag::xmlTellsOfTheObjects()
{
    std::string written;
    const RefT<VOM::Exporter> exporter(
        new TestExporter([&](VOM::Clipboard const &root, std::string &out, auto &) {
            written = namesOf(root.getObjects());
            out = "<document/>";
        }));
    DragScene scene(makeAll<Copied>("abc"), "abc", exporter);
    scene.view->setSel(scene.these("ac"));
    QByteArray offered;
    QVERIFY(scene.drag('a', [&] { offered = scene.offered().data(MimeType::objectsXml); }));
    QCOMPARE(offered, QByteArray("<document/>"));
    QCOMPARE(written, "a c"s);
}

void tst_Drag::copiesAreNewObjects()
{
    DragScene scene(makeAll<Copied>("ab"), "ab");
    scene.view->setSel(scene.these("ab"));
    Things objs, copies;
    QVERIFY(scene.drag('a', [&] {
        objs = objsOf(scene.offered());
        copies = copiesOf(scene.offered());
    }));
    QCOMPARE(namesInOrder(copies), namesInOrder(objs));
    for (RefT<VOM::Object> const &copy : copies) {
        QVERIFY(std::find(objs.begin(), objs.end(), copy) == objs.end());
        QVERIFY(!Access::node(*scene.view, copy));
    }
}

void tst_Drag::copiesLinkToEachOther()
{
    DragScene scene(makeAll<Copied>("abc"), "ab");
    setLink(scene['a'], "next", scene['b']);
    setLink(scene['b'], "next", scene['c']);
    scene.view->setSel(scene.these("ab"));
    Things copies;
    QVERIFY(scene.drag('a', [&] { copies = copiesOf(scene.offered()); }));
    QCOMPARE(copies.size(), std::size_t(2));
    if (nameOf(copies[0]) == "b")
        std::swap(copies[0], copies[1]);
    QVERIFY(fieldOf<VOM::FieldPtr>(copies[0], "next").get() == copies[1]);
    QVERIFY(fieldOf<VOM::FieldPtr>(copies[1], "next").get() == scene['c']);
}

void tst_Drag::objectsThatCannotBeCopiedAreOfferedAlone()
{
    const RefT<VOM::Exporter> exporter(new VOM::XmlExporter);
    Things things = makeAll<Copied>("ab");
    things.push_back(makeThing<Uncopied>("c"));
    DragScene scene(things, "abc", exporter);
    QVERIFY(scene.drag('a'));
    QCOMPARE(namesOf(Access::dragCopies(*scene.view)), "a"s);
    scene.view->setSel(things);
    Reports reports;
    std::string formats, dragged;
    QVERIFY(scene.drag('c', [&] {
        formats = formatsOf(scene.offered());
        dragged = namesOf(objsOf(scene.offered()));
    }));
    QCOMPARE(formats, "objects xml"s);
    QCOMPARE(dragged, "a b c"s);
    QCOMPARE(reports.texts, (std::vector<std::string>{
                                "ZR::VOM::GUI::ObjectGraphView::startDrag: not to be copied"}));
    // Those of the drag before are gone as well.
    QVERIFY(Access::dragCopies(*scene.view).empty());
}

/// KEPT: receivers may work on them when the drag is over.
void tst_Drag::offeredOnesStayUntilTheNextDrag()
{
    DragScene scene(makeAll<Copied>("ab"), "ab");
    QVERIFY(scene.drag('a'));
    const PtrT<VOM::Object> obj = scene['a'];
    const PtrT<VOM::Object> copy = Access::dragCopies(*scene.view).front();
    QApplication::processEvents();
    QCOMPARE(nameOf(copy), "a"s);
    scene['a'].reset();
    QVERIFY(obj);
    // The model's object goes on to be known to the view as long as it lives.
    QCOMPARE(dumpNodes(*scene.view), "a+* b+"s);
    QVERIFY(scene.drag('b', [&] { QVERIFY(!obj && !copy); }));
    QCOMPARE(dumpNodes(*scene.view), "b+*"s);
}

void tst_Drag::offeredOnesDieWithTheView()
{
    DragScene scene(makeAll<Copied>("ab"), "ab");
    QVERIFY(scene.drag('a'));
    const PtrT<VOM::Object> obj = scene['a'];
    const PtrT<VOM::Object> copy = Access::dragCopies(*scene.view).front();
    scene['a'].reset();
    QVERIFY(obj && copy);
    delete scene.view.data();
    QVERIFY(!obj && !copy);
}

void tst_Drag::allActionsAreOfferedAndLinkIsProposed()
{
    DragScene scene("a", "a");
    Qt::DropActions actions;
    Qt::DropAction proposed = Qt::IgnoreAction;
    QVERIFY(scene.drag('a', [&] {
        actions = Access::drag(*scene.view)->supportedActions();
        proposed = Access::drag(*scene.view)->defaultAction();
        QCOMPARE(Access::drag(*scene.view)->source(), scene.view.data());
    }));
    QCOMPARE(actions, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction);
    QCOMPARE(proposed, Qt::LinkAction);
}

void tst_Drag::pictureGoesWithTheDrag()
{
    DragScene scene("a", "a");
    QImage picture;
    QVERIFY(scene.drag('a', [&] {
        picture = Access::drag(*scene.view)->pixmap().toImage();
        QCOMPARE(picture, Access::makeDragPixmap(*scene.view).toImage());
    }));
    QVERIFY(!picture.isNull());
}

void tst_Drag::nextDragCanBeginAtOnce()
{
    DragScene scene("ab", "ab");
    for (char letter : {'a', 'b', 'a'})
        QVERIFY(scene.drag(letter));
    // Nothing of them stays.
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(scene.view->findChildren<QDrag *>().empty());
}

void tst_Drag::dropOnTheViewItselfKeepsTheSelection()
{
    DragScene scene("abc", "ab");
    scene.view->setSel(scene.these("ab"));
    SignalNotes notes(*scene.view);
    const QPoint a = scene.view->viewport()->mapToGlobal(scene.pointOf('a'));
    const QPoint before = scene.pointOf('b');
    scene.view->setPos(scene['b'], 55, 1000, false);
    QVERIFY(MouseDrag(a, a + QPoint(0, 150)).run());
    QCOMPARE(dumpNodes(*scene.view), "a+* b+* c"s);
    QCOMPARE(notes.take(), "sel"s);
    QVERIFY(scene.pointOf('b') != before);
    QVERIFY(Access::scrollTimer(*scene.view).isActive());
    QVERIFY(Access::scrollTo(*scene.view).y() > 600);
    QCOMPARE(faultsOf(*scene.view), ""s);
}

void tst_Drag::dropOnAnotherViewShows()
{
    DragScene scene("abcd", "a");
    setLink(scene['b'], "next", scene['c']);
    setLink(scene['c'], "next", scene['a']);
    ObjectGraphView other({}, &scene.window);
    other.setGeometry(110, 0, 110, 300);
    other.addOutLinkField("", "next");
    other.add(scene.these("abc"), false);
    other.setVisible(scene.these("b"), true);
    other.show();
    SignalNotes notes(*scene.view), otherNotes(other);
    const QPoint a = scene.view->viewport()->mapToGlobal(scene.pointOf('a'));
    QVERIFY(MouseDrag(a, a + QPoint(110, 30)).run());
    QCOMPARE(dumpNodes(other), "a+* b+ c+"s);
    QCOMPARE(dumpNodes(*scene.view), "a+* b c d"s);
    QCOMPARE(notes.take(), ""s);
    QVERIFY(otherNotes.take().find("; sel") != std::string::npos);
}

void tst_Drag::othersTakeByCopyOrMove_data()
{
    QTest::addColumn<Qt::DropAction>("action");
    QTest::newRow("copy") << Qt::CopyAction;
    QTest::newRow("move") << Qt::MoveAction;
    QTest::newRow("link") << Qt::LinkAction;
}

void tst_Drag::othersTakeByCopyOrMove()
{
    QFETCH(Qt::DropAction, action);
    DragScene scene(makeAll<Copied>("ab"), "ab");
    Taker taker(&scene.window, action);
    const QPoint a = scene.view->viewport()->mapToGlobal(scene.pointOf('a'));
    QVERIFY(MouseDrag(a, a + QPoint(100, 30)).run());
    QCOMPARE(taker.dropped, action);
    QCOMPARE(taker.objs, "a"s);
    QCOMPARE(taker.copies, "a"s);
    // Whoever takes it moves it, if at all.
    QCOMPARE(dumpNodes(*scene.view), "a+* b+"s);
}

QTEST_MAIN(tst_Drag)
#include "tst_Drag.moc"
