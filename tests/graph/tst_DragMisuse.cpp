#include "support/DragModel.h"
#include "support/DragScene.h"
#include "support/QtStrings.h"
#include "support/ViewCheck.h"
#include "support/ViewProbe.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using Access = GraphViewAccess;

// While a drag begins, and while it runs, anything may happen to the model, to the view and to what
// is dragged.

namespace {

/// a > b > c > d, and e; a, b and c are shown, a and b selected.
struct Scene : DragScene {
    explicit Scene(RefT<VOM::Exporter> const &exporter = {})
        : DragScene(makeAll<Copied>("abcde"), "abc", exporter)
    {
        for (char from : {'a', 'b', 'c'})
            setLink((*this)[from], "next", (*this)[char(from + 1)]);
        view->addOutLinkField("", "next");
        view->setSel(these("ab"));
    }
};

using Deed = std::function<void(Scene &)>;

/// Calls a function when it is copied.
class Acting : public Thing {
public:
    RefT<VOM::Object> clone() override
    {
        act();
        return new Thing;
    }
    std::function<void()> act;
};

/// Takes drags and calls a function in the middle of the drop.
class Taker : public QWidget {
public:
    Taker(QWidget *window, std::function<void(QDropEvent &)> function)
        : QWidget(window)
        , act(std::move(function))
    {
        setAcceptDrops(true);
        setGeometry(110, 0, 110, 300);
        show();
    }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent *event) override { act(*event); }

private:
    const std::function<void(QDropEvent &)> act;
};

} // namespace

Q_DECLARE_METATYPE(Deed)

class tst_DragMisuse : public QObject {
    Q_OBJECT

private slots:
    void dragGoesOnWhateverHappens_data();
    void dragGoesOnWhateverHappens();
    void draggedObjectsLiveOn();
    void forgottenObjectsAreRefusedByTheView();
    void secondMoveBeginsNoSecondDrag();
    void otherViewBeginsNoSecondDrag();

    void viewMayDieWhileItDrags();
    void viewMayDieAsAWindow();
    void viewMayDieInItsOwnDrop_data();
    void viewMayDieInItsOwnDrop();
    void viewMayDieInTheDropOnAnother();
    void viewMayDieInTheExporter();
    void viewMayDieWhileObjectsAreCopied();
    void viewMayDieWithWhatWasDraggedBefore();
    void viewMayDieAfterItsDrag();

    void objectsMayGoWhileOthersAreCopied();
    void exporterMayChangeTheView();
    void exporterMayDrag();
    void iconsMayBeReplacedWhileThePictureIsMade();
    void iconsMayThrowWhileThePictureIsMade();
};

void tst_DragMisuse::dragGoesOnWhateverHappens_data()
{
    QTest::addColumn<Deed>("deed");
    const auto addRow = [](char const *row, Deed const &deed) { QTest::newRow(row) << deed; };
    addRow("links change", [](Scene &s) {
        setLink(s['a'], "next", s['e']);
        setLink(s['e'], "next", s['b']);
        s.view->viewport()->grab();
    });
    addRow("names change", [](Scene &s) { fieldOf<VOM::FieldString>(s['a'], "name").set("z"); });
    addRow("fields go", [](Scene &s) {
        for (char letter : {'a', 'b'})
            VOM::removeField(*s[letter], *s[letter]->findField("next"));
    });
    addRow("others die", [](Scene &s) {
        s['c'].reset();
        s['d'].reset();
    });
    addRow("the dragged ones lose their host", [](Scene &s) {
        s['a'].reset();
        s['b'].reset();
    });
    addRow("the pressed node is removed", [](Scene &s) { s.view->remove(s.these("a")); });
    addRow("the pressed node is hidden", [](Scene &s) { s.view->setVisible(s.these("a"), false); });
    addRow("all is cleared", [](Scene &s) { s.view->clear(); });
    addRow("all is cleared and comes again", [](Scene &s) {
        s.view->clear();
        s.view->add(s.things, false);
        s.view->setVisible(s.things, true);
    });
    addRow("nodes move", [](Scene &s) {
        s.view->animDuration.set(2);
        s.view->setVisible(s.these("de"), true);
        tick(Access::animTimer(*s.view));
        s.view->viewport()->grab();
        finishAnimation(*s.view);
    });
    addRow("the timers fire", [](Scene &s) {
        s.view->animDuration.set(0.05);
        s.view->layout();
        QVERIFY(QTest::qWaitFor([&] { return !Access::animTimer(*s.view).isActive(); }));
    });
    addRow("all is laid out", [](Scene &s) {
        s.view->layout();
        s.view->viewport()->grab();
    });
    addRow("the selection changes", [](Scene &s) { s.view->setSel(s.these("c")); });
    addRow("the view is hidden", [](Scene &s) { s.view->hide(); });
    addRow("the view goes to another window", [](Scene &s) {
        s.view->setParent(nullptr);
        s.view->show();
        QApplication::processEvents();
    });
    addRow("the view takes no drops", [](Scene &s) { s.view->setAcceptDrops(false); });
    addRow("another node is pressed and moved", [](Scene &s) {
        s.press(s.pointOf('c'));
        s.move(s.pointOf('c') + QPoint(50, 0));
    });
}

void tst_DragMisuse::dragGoesOnWhateverHappens()
{
    QFETCH(Deed, deed);
    Scene scene;
    std::size_t num = 0, numCopies = 0;
    QVERIFY(scene.drag('a', [&] {
        deed(scene);
        QVERIFY(Access::drag(*scene.view));
        num = objsOf(scene.offered()).size();
        numCopies = copiesOf(scene.offered()).size();
    }));
    QCOMPARE(num, std::size_t(2));
    QCOMPARE(numCopies, std::size_t(2));
    QVERIFY(!Access::drag(*scene.view));
    QCOMPARE(faultsOf(*scene.view), ""s);
    // And the next one.
    const RefT<VOM::Object> fresh = makeThing<Copied>("n");
    scene.view->show();
    scene.view->clear();
    scene.view->add({fresh}, false);
    scene.things = {fresh};
    scene.view->setVisible({fresh}, true);
    scene.view->viewport()->grab();
    QVERIFY(scene.drag('a'));
}

void tst_DragMisuse::draggedObjectsLiveOn()
{
    Scene scene;
    const PtrT<VOM::Object> a = scene['a'];
    std::string dragged;
    QVERIFY(scene.drag('a', [&] {
        scene['a'].reset();
        scene.view->clear();
        dragged = namesOf(objsOf(scene.offered()));
    }));
    QCOMPARE(dragged, "a b"s);
    QVERIFY(a);
}

void tst_DragMisuse::forgottenObjectsAreRefusedByTheView()
{
    Scene scene;
    bool taken = true;
    QVERIFY(scene.drag('a', [&] {
        scene.view->clear();
        taken = !Access::getDropObjs(*scene.view, scene.offered()).empty();
    }));
    QVERIFY(!taken);
}

void tst_DragMisuse::secondMoveBeginsNoSecondDrag()
{
    Scene scene;
    QPointer<QDrag> first;
    QVERIFY(scene.drag('a', [&] {
        first = Access::drag(*scene.view);
        for (int dx : {30, 60, 90})
            scene.callMove(scene.pointOf('a') + QPoint(dx, 0));
        QCOMPARE(Access::drag(*scene.view), first.data());
        QCOMPARE(scene.view->findChildren<QDrag *>().size(), 1);
        QCOMPARE(namesOf(objsOf(scene.offered())), "a b"s);
    }));
}

void tst_DragMisuse::otherViewBeginsNoSecondDrag()
{
    Scene scene, other;
    // Qt's own word on it.
    QTest::ignoreMessage(QtWarningMsg, "QDragManager::drag in possibly invalid state");
    other.press(other.pointOf('b'));
    QVERIFY(scene.drag('a', [&] {
        other.callMove(other.pointOf('b') + QPoint(50, 0));
        QVERIFY(!Access::drag(*other.view));
        QVERIFY(Access::drag(*scene.view));
        QCOMPARE(namesOf(objsOf(scene.offered())), "a b"s);
    }));
    QVERIFY(other.drag('b'));
}

void tst_DragMisuse::viewMayDieWhileItDrags()
{
    Scene scene;
    QPointer<QDrag> drag;
    QPointer<QMimeData> data;
    QVERIFY(scene.drag('a', [&] {
        drag = Access::drag(*scene.view);
        data = drag->mimeData();
        delete scene.view.data();
        // Nothing leads to the lists that went with the view.
        QVERIFY(drag && data);
        QVERIFY(data->formats().empty());
    }));
    QVERIFY(!scene.view);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!drag && !data);
}

void tst_DragMisuse::viewMayDieAsAWindow()
{
    Scene scene;
    scene.view->setParent(nullptr);
    scene.view->show();
    QApplication::processEvents();
    const QPoint a = scene.view->viewport()->mapToGlobal(scene.pointOf('a'));
    bool reached = false;
    QVERIFY(MouseDrag(a, a + QPoint(0, 100)).run([&] {
        reached = Access::drag(*scene.view);
        delete scene.view.data();
    }));
    QVERIFY(reached);
    QVERIFY(!scene.view);
}

void tst_DragMisuse::viewMayDieInItsOwnDrop_data()
{
    QTest::addColumn<bool>("atInsert");
    QTest::newRow("when nodes are shown") << true;
    QTest::newRow("when the selection is told") << false;
}

void tst_DragMisuse::viewMayDieInItsOwnDrop()
{
    QFETCH(bool, atInsert);
    Scene scene;
    const auto destroy = [&](auto const &) { delete scene.view.data(); };
    if (atInsert)
        scene.view->sigInsertNode.connect(destroy);
    else
        scene.view->sigSel.connect(destroy);
    const QPoint a = scene.view->viewport()->mapToGlobal(scene.pointOf('a'));
    // Hidden meanwhile, the drop shows it.
    QVERIFY(MouseDrag(a, a + QPoint(0, 100)).run([&] {
        scene.view->remove(scene.these("a"));
        scene.view->add(scene.these("a"), false);
    }));
    QVERIFY(!scene.view);
}

void tst_DragMisuse::viewMayDieInTheDropOnAnother()
{
    Scene scene;
    std::string before;
    bool isEmptied = false;
    Taker taker(&scene.window, [&](QDropEvent &event) {
        before = namesOf(objsOf(*event.mimeData()));
        delete scene.view.data();
        // A receiver may look again.
        isEmptied = event.mimeData()->formats().empty();
        event.acceptProposedAction();
    });
    const QPoint a = scene.view->viewport()->mapToGlobal(scene.pointOf('a'));
    QVERIFY(MouseDrag(a, a + QPoint(100, 30)).run());
    QVERIFY(!scene.view);
    QCOMPARE(before, "a b"s);
    QVERIFY(isEmptied);
}

void tst_DragMisuse::viewMayDieInTheExporter()
{
    QPointer<ObjectGraphView> view;
    Scene scene(RefT<VOM::Exporter>(new TestExporter([&](auto &, std::string &out, auto &) {
        out = "<document/>";
        delete view.data();
    })));
    view = scene.view;
    QVERIFY(!scene.drag('a'));
    QVERIFY(!scene.view);
}

void tst_DragMisuse::viewMayDieWhileObjectsAreCopied()
{
    Things things = makeAll<Acting>("abc");
    DragScene scene(things, "abc");
    for (RefT<VOM::Object> const &thing : things)
        dynamic_cast<Acting &>(*thing).act = [&] { delete scene.view.data(); };
    things.clear();
    scene.view->setSel(scene.things);
    QVERIFY(!scene.drag('a'));
    QVERIFY(!scene.view);
}

void tst_DragMisuse::viewMayDieWithWhatWasDraggedBefore()
{
    Scene scene;
    QVERIFY(scene.drag('a'));
    scene['a']->sigDelete.connect([&](auto const &) { delete scene.view.data(); });
    scene['a'].reset();
    QVERIFY(scene.view);
    scene.view->setSel({});
    QVERIFY(!scene.drag('b'));
    QVERIFY(!scene.view);
}

void tst_DragMisuse::viewMayDieAfterItsDrag()
{
    Scene scene;
    QVERIFY(scene.drag('a'));
    // Qt deletes the QDrag later.
    delete scene.view.data();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_DragMisuse::objectsMayGoWhileOthersAreCopied()
{
    DragScene scene(makeAll<Acting>("abc"), "abc");
    for (RefT<VOM::Object> const &thing : scene.things)
        dynamic_cast<Acting &>(*thing).act = [&] {
            scene.view->remove(scene.view->getObjs());
            std::fill(scene.things.begin(), scene.things.end(), RefT<VOM::Object>());
        };
    scene.view->setSel(scene.things);
    const QPoint from = scene.pointOf('a');
    scene.press(from);
    std::string dragged;
    std::size_t numCopies = 0;
    QVERIFY(scene.dragOn(from + QPoint(20, 0), [&] {
        dragged = namesOf(objsOf(scene.offered()));
        numCopies = copiesOf(scene.offered()).size();
    }));
    QCOMPARE(dragged, "a b c"s);
    QCOMPARE(numCopies, std::size_t(3));
}

void tst_DragMisuse::exporterMayChangeTheView()
{
    QPointer<ObjectGraphView> view;
    Scene scene(RefT<VOM::Exporter>(
        new TestExporter([&](auto &, std::string &, auto &) { view->clear(); })));
    view = scene.view;
    std::string dragged;
    QVERIFY(scene.drag('a', [&] { dragged = namesOf(objsOf(scene.offered())); }));
    QCOMPARE(dragged, "a b"s);
}

void tst_DragMisuse::exporterMayDrag()
{
    std::function<void()> act;
    Scene scene(RefT<VOM::Exporter>(new TestExporter([&](auto &, std::string &, auto &) {
        if (const auto once = std::exchange(act, {}))
            once();
    })));
    bool inner = false;
    std::string dragged, copied;
    QObject context;
    act = [&] {
        inner = scene.drag('c');
        // For the outer one, which begins now.
        QTimer::singleShot(0, &context, [&] {
            dragged = namesOf(objsOf(scene.offered()));
            copied = namesOf(copiesOf(scene.offered()));
            QDrag::cancel();
        });
    };
    const QPoint from = scene.pointOf('a');
    scene.press(from);
    scene.move(from + QPoint(20, 0));
    QVERIFY(inner);
    // The lists are the inner one's, both of them.
    QCOMPARE(dragged, "c"s);
    QCOMPARE(copied, "c"s);
}

void tst_DragMisuse::iconsMayBeReplacedWhileThePictureIsMade()
{
    class ReplacingDB : public ObjectIconDB {
    public:
        explicit ReplacingDB(ObjectGraphView &owner)
            : view(owner)
        {
        }
        QIcon find(RefT<VOM::Object> const &obj) const override
        {
            view.setObjIconDB({});
            return ObjectIconDB::find(obj);
        }

    private:
        ObjectGraphView &view;
    };
    Scene scene;
    scene.view->setObjIconDB(RefT<ObjectIconDB>(new ReplacingDB(*scene.view)));
    QVERIFY(scene.drag('a'));
    QVERIFY(!scene.view->getObjIconDB());
}

void tst_DragMisuse::iconsMayThrowWhileThePictureIsMade()
{
    class ThrowingDB : public ObjectIconDB {
    public:
        QIcon find(RefT<VOM::Object> const &) const override
        {
            throw std::runtime_error("no icon");
        }
    };
    Scene scene;
    scene.view->setObjIconDB(RefT<ObjectIconDB>(new ThrowingDB));
    Reports reports;
    QVERIFY(scene.drag('a'));
    QCOMPARE(reports.texts,
             (std::vector<std::string>{"ZR::VOM::GUI::makeItemListPixmap: no icon"}));
}

QTEST_MAIN(tst_DragMisuse)
#include "tst_DragMisuse.moc"
