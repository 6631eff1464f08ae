#include "support/QtStrings.h"
#include "support/Things.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QPainter>
#include <QTest>

#include <functional>
#include <memory>
#include <stdexcept>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldPtr;
using VOM::FieldString;
using Access = GraphViewAccess;

// A host may do anything in a listener of the view's signals, or of the model's.

namespace {

/// What a host may be told of, and how to bring it about. The view has a > b > c, all visible, and
/// a and b selected; d and e are added and hidden, d is selected.
struct Occasion {
    char const *name;
    char const *where; // Under which a listener's exception is reported.
    std::function<void(ObjectGraphView &, std::function<void()>)> connect;
    std::function<void(ObjectGraphView &, Things &)> trigger;
};

std::vector<Occasion> const &occasions()
{
    static constexpr char insertWhere[] = "ZR::VOM::GUI::ObjectGraphView::emitSigInsertNode";
    static constexpr char removeWhere[] = "ZR::VOM::GUI::ObjectGraphView::emitSigRemoveNode";
    static constexpr char selWhere[] = "ZR::VOM::GUI::ObjectGraphView::setVisible";
    using View = ObjectGraphView;
    using Act = std::function<void()>;
    const auto onInsert = [](View &view, Act act) {
        view.sigInsertNode.connect([act](auto const &) { act(); });
    };
    const auto onRemove = [](View &view, Act act) {
        view.sigRemoveNode.connect([act](auto const &) { act(); });
    };
    const auto onSel = [](View &view, Act act) {
        view.sigSel.connect([act](auto const &) { act(); });
    };
    const auto show = [](View &view, Things &things) { view.setVisible({things[3]}, true); };
    const auto hide = [](View &view, Things &things) {
        view.setVisible({things[1], things[0]}, false);
    };
    const auto remove = [](View &view, Things &things) { view.remove({things[0], things[1]}); };
    static std::vector<Occasion> const all = {
        {"insert by setVisible", insertWhere, onInsert, show},
        {"remove by setVisible", removeWhere, onRemove, hide},
        {"remove by remove", removeWhere, onRemove, remove},
        {"selection shown", selWhere, onSel, show},
        {"selection hidden", selWhere, onSel, hide},
    };
    return all;
}

/// What a listener does to the view.
struct Deed {
    char const *name;
    std::function<void(ObjectGraphView &, Things &)> act;
};

std::vector<Deed> const &deeds()
{
    using View = ObjectGraphView;
    static std::vector<Deed> const all = {
        {"clear", [](View &view, Things &) { view.clear(); }},
        {"remove all", [](View &view, Things &things) { view.remove(things); }},
        {"hide all", [](View &view, Things &things) { view.setVisible(things, false); }},
        {"show all", [](View &view, Things &things) { view.setVisible(things, true); }},
        {"select all", [](View &view, Things &things) { view.setSel(things); }},
        {"layout", [](View &view, Things &) { view.layout(); }},
        {"show the selection", [](View &view, Things &) { view.showSel(); }},
        {"add",
         [](View &view, Things &things) {
             things.push_back(makeThing("z"));
             view.add({things.back()}, true);
         }},
        {"kill all objects", [](View &, Things &things) { things.clear(); }},
        {"change links",
         [](View &, Things &things) {
             setLink(things[0], "next", things[2]);
             setLink(things[1], "next", things[1]);
             VOM::removeField(*things[2], *things[2]->findField("name"));
         }},
        {"change rules",
         [](View &view, Things &) {
             view.removeOutLinkField("", "next");
             view.addInLinkField("Thing", "next");
         }},
        {"change labels",
         [](View &view, Things &) {
             view.setFieldName("name");
             view.setTypeName(false);
             view.setObjIconDB({});
         }},
        {"switch refresh off", [](View &view, Things &) { view.setRefresh(false); }},
        {"move nodes",
         [](View &view, Things &things) {
             view.setPos(things[0], 5, 5, false);
             view.setPos(things[1], 7, 7, true);
         }},
    };
    return all;
}

struct Scene {
    Scene()
        : things(makeThings("abcde"))
        , view(std::make_unique<ObjectGraphView>())
    {
        view->addOutLinkField("", "next");
        setLink(things[0], "next", things[1]);
        setLink(things[1], "next", things[2]);
        setLink(things[3], "next", things[0]);
        view->add(things, false);
        view->setVisible({things[0], things[1], things[2]}, true);
        view->setSel({things[0], things[1], things[3]});
    }
    Things things;
    std::unique_ptr<ObjectGraphView> view;
};

/// Whether a view can be used on: paints, lays out, and agrees with itself.
void verifyUsable(ObjectGraphView &view, Things const &things)
{
    view.viewport()->grab();
    finishAnimation(view);
    view.setVisible(things, true);
    view.layout();
    view.viewport()->grab();
    QVERIFY2(dumpLinks(view).find('!') == std::string::npos, dumpLinks(view).c_str());
    QVERIFY2(dumpNodes(view).find("(dead)") == std::string::npos, dumpNodes(view).c_str());
}

} // namespace

class tst_GraphSignals : public QObject {
    Q_OBJECT

private slots:
    void listenerMayThrow_data() { addOccasions(); }
    void listenerMayThrow();
    void listenerMayDestroyTheView_data() { addOccasions(); }
    void listenerMayDestroyTheView();
    void listenerMayChangeTheView_data();
    void listenerMayChangeTheView();
    void listenerOfPaintsMayChangeTheView_data();
    void listenerOfPaintsMayChangeTheView();
    void paintHookMayThrow();
    void listenersAreToldOfAllThatChanged();

    void modelListenerMayChangeTheView_data();
    void modelListenerMayChangeTheView();
    void modelListenerMayDestroyTheView_data();
    void modelListenerMayDestroyTheView();

    void iconDatabaseMayThrow();
    void iconDatabaseMayReplaceItself();
    void iconDatabaseMayAddTheObjectItself();
    void modelClassMayThrow();

private:
    void addOccasions();
};

void tst_GraphSignals::addOccasions()
{
    QTest::addColumn<int>("occasion");
    for (std::size_t i = 0; i < occasions().size(); ++i)
        QTest::newRow(occasions()[i].name) << int(i);
}

void tst_GraphSignals::listenerMayThrow()
{
    QFETCH(int, occasion);
    Occasion const &told = occasions()[std::size_t(occasion)];
    Reports reports;
    Scene scene;
    int numCalls = 0;
    told.connect(*scene.view, [] { throw std::runtime_error("first"); });
    told.connect(*scene.view, [&] { ++numCalls; });
    told.connect(*scene.view, [] { throw 5; });
    told.trigger(*scene.view, scene.things);
    QCOMPARE(numCalls, 1);
    QCOMPARE(reports.texts.size(), std::size_t(2));
    QCOMPARE(reports.texts[0], told.where + ": first"s);
    QVERIFY(reports.texts[1].find(told.where) == 0);
    verifyUsable(*scene.view, scene.things);
}

void tst_GraphSignals::listenerMayDestroyTheView()
{
    QFETCH(int, occasion);
    Occasion const &told = occasions()[std::size_t(occasion)];
    Scene scene;
    int numCalls = 0;
    told.connect(*scene.view, [&] { scene.view.reset(); });
    // Slots of a signal that is gone aren't called.
    told.connect(*scene.view, [&] { ++numCalls; });
    told.trigger(*scene.view, scene.things);
    QVERIFY(!scene.view);
    QCOMPARE(numCalls, 0);
}

void tst_GraphSignals::listenerMayChangeTheView_data()
{
    QTest::addColumn<int>("occasion");
    QTest::addColumn<int>("deed");
    for (std::size_t i = 0; i < occasions().size(); ++i)
        for (std::size_t k = 0; k < deeds().size(); ++k)
            QTest::addRow("%s, %s", occasions()[i].name, deeds()[k].name) << int(i) << int(k);
}

void tst_GraphSignals::listenerMayChangeTheView()
{
    QFETCH(int, occasion);
    QFETCH(int, deed);
    Occasion const &told = occasions()[std::size_t(occasion)];
    Scene scene;
    bool done = false;
    told.connect(*scene.view, [&] {
        if (!std::exchange(done, true))
            deeds()[std::size_t(deed)].act(*scene.view, scene.things);
    });
    told.trigger(*scene.view, scene.things);
    QVERIFY(done);
    verifyUsable(*scene.view, scene.things);
}

void tst_GraphSignals::listenerOfPaintsMayChangeTheView_data()
{
    QTest::addColumn<int>("deed");
    QTest::addColumn<bool>("hook");
    for (std::size_t k = 0; k < deeds().size(); ++k) {
        QTest::addRow("listener, %s", deeds()[k].name) << int(k) << false;
        QTest::addRow("hook, %s", deeds()[k].name) << int(k) << true;
    }
}

void tst_GraphSignals::listenerOfPaintsMayChangeTheView()
{
    QFETCH(int, deed);
    QFETCH(bool, hook);
    class HookedView : public ObjectGraphView {
    public:
        std::function<void()> act;

    protected:
        void onPaintNodeIcon(PtrT<Object> const &, QPainter &, int, int, int, int) override
        {
            if (act)
                act();
        }
    };
    HookedView view;
    view.addOutLinkField("", "next");
    Things things = makeThings("abcde");
    setLink(things[0], "next", things[1]);
    setLink(things[1], "next", things[2]);
    view.add(things, false);
    view.resize(400, 400);
    view.setVisible({things[0], things[1], things[2]}, true);
    finishAnimation(view);
    int numPainted = 0;
    const auto act = [&] {
        if (++numPainted == 1)
            deeds()[std::size_t(deed)].act(view, things);
    };
    if (hook)
        view.act = act;
    else
        view.sigPaintNodeIcon.connect([&](auto const &) { act(); });
    view.viewport()->grab();
    QVERIFY(numPainted >= 1);
    verifyUsable(view, things);
}

void tst_GraphSignals::paintHookMayThrow()
{
    class ThrowingView : public ObjectGraphView {
    protected:
        void onPaintNodeIcon(PtrT<Object> const &, QPainter &painter, int, int, int, int) override
        {
            painter.setPen(Qt::red);
            throw std::runtime_error("hook");
        }
    };
    Reports reports;
    ThrowingView view;
    const Things a = makeThings("a");
    view.add(a, false);
    view.setVisible(a, true);
    int numPainted = 0;
    view.sigPaintNodeIcon.connect([](auto const &) { throw std::runtime_error("listener"); });
    view.sigPaintNodeIcon.connect([&](auto const &) { ++numPainted; });
    view.resize(300, 300);
    view.viewport()->grab();
    QCOMPARE(numPainted, 1);
    QCOMPARE(reports.texts,
             (std::vector<std::string>{"ZR::VOM::GUI::ObjectGraphView::paintNodeIcon: hook",
                                       "ZR::VOM::GUI::ObjectGraphView::paintNodeIcon: listener"}));
}

void tst_GraphSignals::listenersAreToldOfAllThatChanged()
{
    Scene scene;
    std::string told;
    // The first listener takes away what the second one is told of.
    scene.view->sigRemoveNode.connect([&](auto const &) {
        scene.view->clear();
        scene.things.clear();
    });
    scene.view->sigRemoveNode.connect([&](auto const &data) { told = namesInOrder(*data.objs); });
    scene.view->setVisible(Things(scene.things), false);
    QCOMPARE(told, "a b c"s);
}

namespace {

/// Changes of the model that the view hears of.
std::vector<Deed> const &modelChanges()
{
    using View = ObjectGraphView;
    static std::vector<Deed> const all = {
        {"a link is set", [](View &, Things &things) { setLink(things[0], "next", things[2]); }},
        {"a list is replaced",
         [](View &, Things &things) {
             setLinks(things[0], "list", {things[1], things[2]});
         }},
        {"a name is set",
         [](View &, Things &things) { fieldOf<FieldString>(things[0], "name").set("renamed"); }},
        {"a field comes",
         [](View &, Things &things) {
             VOM::addField<FieldPtr>(*things[0], "other", PtrT<VOM::Object>(things[1]));
         }},
        {"a field goes",
         [](View &, Things &things) {
             VOM::removeField(*things[0], *things[0]->findField("next"));
         }},
        {"the name goes",
         [](View &, Things &things) {
             VOM::removeField(*things[0], *things[0]->findField("name"));
         }},
        {"an object dies", [](View &, Things &things) { things[0].reset(); }},
    };
    return all;
}

/// Connects to everything that the first object tells.
void listenToModel(RefT<VOM::Object> const &obj, std::function<void()> const &act)
{
    fieldOf<FieldPtr>(obj, "next").sigSet.connect([act](auto const &) { act(); });
    fieldOf<VOM::MFieldPtr>(obj, "list").sigReplace.connect([act](auto const &) { act(); });
    fieldOf<FieldString>(obj, "name").sigSet.connect([act](auto const &) { act(); });
    obj->sigAddField.connect([act](auto const &) { act(); });
    obj->sigRemoveField.connect([act](auto const &) { act(); });
    obj->sigDelete.connect([act](auto const &) { act(); });
}

/// A view that follows links, lists and names; `first` connects to the model before the view does.
struct ModelScene {
    explicit ModelScene(std::function<void()> const &first, std::function<void()> const &last)
        : things(makeThings("abcd"))
        , view(std::make_unique<ObjectGraphView>())
    {
        setLink(things[0], "next", things[1]);
        setLinks(things[0], "list", {things[3]});
        setLink(things[1], "next", things[0]);
        listenToModel(things[0], first);
        view->setFieldName("name");
        view->addOutLinkField("", "next");
        view->addOutLinkField("", "list");
        view->addInLinkField("", "other");
        view->add(things, false);
        view->setVisible({things[0], things[1]}, true);
        listenToModel(things[0], last);
    }
    Things things;
    std::unique_ptr<ObjectGraphView> view;
};

void addModelRows()
{
    QTest::addColumn<int>("change");
    QTest::addColumn<int>("deed");
    QTest::addColumn<bool>("before");
    for (std::size_t i = 0; i < modelChanges().size(); ++i)
        for (std::size_t k = 0; k < deeds().size(); ++k)
            // A listener that changes what it listens to has its own test.
            for (bool before : {false, true})
                if (deeds()[k].name != "change links"s)
                    QTest::addRow("%s, %s %s the view heard", modelChanges()[i].name,
                                  deeds()[k].name, before ? "before" : "after")
                        << int(i) << int(k) << before;
}

} // namespace

void tst_GraphSignals::modelListenerMayChangeTheView_data()
{
    addModelRows();
}

void tst_GraphSignals::modelListenerMayChangeTheView()
{
    QFETCH(int, change);
    QFETCH(int, deed);
    QFETCH(bool, before);
    ModelScene *scene = nullptr;
    bool done = false;
    const auto act = [&] {
        if (scene && !std::exchange(done, true))
            deeds()[std::size_t(deed)].act(*scene->view, scene->things);
    };
    const auto none = [] {};
    ModelScene made(before ? act : std::function<void()>(none),
                    before ? std::function<void()>(none) : act);
    scene = &made;
    modelChanges()[std::size_t(change)].act(*made.view, made.things);
    QVERIFY(done);
    scene = nullptr;
    made.things.erase(std::remove(made.things.begin(), made.things.end(), nullptr),
                      made.things.end());
    verifyUsable(*made.view, made.things);
}

void tst_GraphSignals::modelListenerMayDestroyTheView_data()
{
    QTest::addColumn<int>("change");
    QTest::addColumn<bool>("before");
    for (std::size_t i = 0; i < modelChanges().size(); ++i)
        for (bool before : {false, true})
            QTest::addRow("%s, %s the view heard", modelChanges()[i].name,
                          before ? "before" : "after")
                << int(i) << before;
}

void tst_GraphSignals::modelListenerMayDestroyTheView()
{
    QFETCH(int, change);
    QFETCH(bool, before);
    ModelScene *scene = nullptr;
    const auto act = [&] {
        if (scene)
            scene->view.reset();
    };
    const auto none = [] {};
    ModelScene made(before ? act : std::function<void()>(none),
                    before ? std::function<void()>(none) : act);
    scene = &made;
    modelChanges()[std::size_t(change)].act(*made.view, made.things);
    QVERIFY(!made.view);
    scene = nullptr;
}

void tst_GraphSignals::iconDatabaseMayThrow()
{
    class ThrowingDB : public ObjectIconDB {
    public:
        QIcon find(RefT<VOM::Object> const &) const override
        {
            throw std::runtime_error("no icon");
        }
    };
    Reports reports;
    ObjectGraphView view;
    view.setObjIconDB(new ThrowingDB);
    const Things ab = makeThings("ab");
    view.add(ab, false);
    QCOMPARE(dumpNodes(view), "a b"s);
    QCOMPARE(reports.texts,
             std::vector<std::string>(2, "ZR::VOM::GUI::ObjectGraphView::updateIcon: no icon"));
    verifyUsable(view, ab);
}

void tst_GraphSignals::iconDatabaseMayReplaceItself()
{
    class LeavingDB : public ObjectIconDB {
    public:
        explicit LeavingDB(ObjectGraphView &owner)
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
    ObjectGraphView view;
    view.setObjIconDB(new LeavingDB(view));
    const Things ab = makeThings("ab");
    view.add(ab, false);
    QVERIFY(!view.getObjIconDB());
    verifyUsable(view, ab);
}

void tst_GraphSignals::iconDatabaseMayAddTheObjectItself()
{
    class AddingDB : public ObjectIconDB {
    public:
        explicit AddingDB(ObjectGraphView &owner)
            : view(owner)
        {
        }
        QIcon find(RefT<VOM::Object> const &obj) const override
        {
            if (!std::exchange(asked, true))
                added = view.add({obj}, true);
            return {};
        }
        mutable ObjectGraphView::AddedNodes added;

    private:
        ObjectGraphView &view;
        mutable bool asked = false;
    };
    ObjectGraphView view;
    view.addOutLinkField("", "next");
    const RefT<AddingDB> db(new AddingDB(view));
    view.setObjIconDB(db);
    Things ab = makeThings("ab");
    setLink(ab[0], "next", ab[1]);
    view.add(ab, false);
    QCOMPARE(dumpLinks(view), "a>b"s);
    // The node that was there first stays.
    QCOMPARE(db->added.hidden.begin()->get(), Access::node(view, ab[0]));
    setLink(ab[0], "next", ab[0]);
    QCOMPARE(dumpLinks(view), "a>a"s);
    verifyUsable(view, ab);
    ab.clear();
    QCOMPARE(dumpNodes(view), ""s);
}

void tst_GraphSignals::modelClassMayThrow()
{
    class ThrowingThing : public Thing {
    public:
        VOM::ClassInfo const &getClassInfo() const override
        {
            if (throws)
                throw std::runtime_error("no class");
            return Thing::getClassInfo();
        }
        bool throws = true;
    };
    ObjectGraphView view;
    const RefT<ThrowingThing> bad(new ThrowingThing);
    const Things a = makeThings("a");
    QVERIFY_EXCEPTION_THROWN(view.add({a[0], bad}, true), std::runtime_error);
    verifyUsable(view, a);
    bad->throws = false;
    view.add({a[0], bad}, true);
    QCOMPARE(dumpNodes(view), "Thing a+"s);
}

QTEST_MAIN(tst_GraphSignals)
#include "tst_GraphSignals.moc"
