#include "support/GraphMoments.h"
#include "support/QtStrings.h"
#include "support/ViewCheck.h"
#include "support/ViewProbe.h"
#include "support/dump.h"

#include <QTest>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

using namespace std::string_literals;
using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::FieldString;
using Scene = MisuseScene;

// Whatever happens at whatever moment, the view stays whole and can be used on.

namespace {

/// What happens to the view or to the model.
struct Calamity {
    char const *name;
    void (*act)(Scene &);
    bool destroysView = false;
};

void removeAllFields(Scene &scene)
{
    for (RefT<VOM::Object> const &thing : Things(scene.things))
        while (thing && thing->getNumFields() > 1)
            VOM::removeField(*thing, *thing->getField(1)); // The name stays.
}

std::vector<Calamity> const &calamities()
{
    static std::vector<Calamity> const all = {
        {"a dies", [](Scene &s) { s['a'].reset(); }},
        {"b dies", [](Scene &s) { s['b'].reset(); }},
        {"an owner dies with what it owns",
         [](Scene &s) {
             s['e'].reset();
             s['d'].reset();
         }},
        {"the last object dies", [](Scene &s) { s.things.pop_back(); }},
        {"all objects die",
         [](Scene &s) {
             s.things.clear();
             s.things.resize(6);
         }},
        {"all but one die",
         [](Scene &s) {
             for (char letter : {'f', 'e', 'd', 'b', 'a'})
                 s[letter].reset();
         }},
        {"link fields go",
         [](Scene &s) {
             for (char letter : {'a', 'd'})
                 for (char const *name : {"next", "list", "own"})
                     if (s[letter] && s[letter]->findField(name))
                         VOM::removeField(*s[letter], *s[letter]->findField(name));
         }},
        {"all fields go", removeAllFields},
        {"labels change",
         [](Scene &s) {
             for (RefT<VOM::Object> const &thing : Things(s.things))
                 if (thing && thing->findField("label"))
                     fieldOf<FieldString>(thing, "label").set("another");
         }},
        {"links go round",
         [](Scene &s) {
             for (char from : {'a', 'c', 'd', 'e', 'f'})
                 for (char to : {from, 'a', 'e'})
                     if (s[from])
                         setLink(s[from], "next", s[to]);
         }},
        {"a list grows",
         [](Scene &s) {
             if (s['c'])
                 setLinks(s['c'], "list", Things(300, s['d']));
             if (s['a'])
                 setLinks(s['a'], "list", Things(300, s['c']));
         }},
        {"the view is cleared", [](Scene &s) { s.view->clear(); }},
        {"all objects are removed", [](Scene &s) { s.view->remove(s.things); }},
        {"all nodes are hidden", [](Scene &s) { s.view->setVisible(s.things, false); }},
        {"all nodes are shown", [](Scene &s) { s.view->setVisible(s.things, true); }},
        {"the selection changes",
         [](Scene &s) {
             s.view->setSel({s['c'], {}, s['c']});
             s.view->showSel();
         }},
        {"layouts",
         [](Scene &s) {
             s.view->layout();
             s.view->layout();
         }},
        {"many objects come",
         [](Scene &s) {
             for (int i = 0; i < 50; ++i) {
                 s.things.push_back(makeThing("n" + std::to_string(i)));
                 setLink(s.things.back(), "next", s.things[std::size_t(i)]);
             }
             s.view->add(Things(s.things), true);
             s.view->setVisible(Things(s.things), true);
         }},
        {"rules are turned round",
         [](Scene &s) {
             s.view->removeOutLinkField("", "next");
             s.view->addInLinkField("Thing", "next");
             s.view->addInLinkField("", "list");
             s.view->removeInLinkField("", "own");
         }},
        {"labels and icons come from elsewhere",
         [](Scene &s) {
             s.icons.reset();
             s.view->setObjIconDB(new ObjectClassIconDB);
             s.view->setFieldName("name");
             s.view->setTypeName(false);
         }},
        {"repaints are held back", [](Scene &s) { s.view->setRefresh(false); }},
        {"nodes are put far away",
         [](Scene &s) {
             s.view->setPos(s['a'], std::numeric_limits<int>::max(), -5, false);
             s.view->setPos(s['c'], 0, std::numeric_limits<int>::min(), true);
         }},
        {"the widget loses its size", [](Scene &s) { s.view->resize(0, 0); }},
        {"the widget is shown and hidden",
         [](Scene &s) {
             s.view->show();
             QCoreApplication::processEvents();
             s.view->hide();
         }},
        {"the widget grows", [](Scene &s) { s.view->resize(900, 700); }},
        {"the font grows", [](Scene &s) { s.view->setFont(QFont("DejaVu Sans", 40)); }},
        {"a paint", [](Scene &s) { s.paint(); }},
        {"time passes", [](Scene &s) { s.advance(0.1); }},
        {"animations end", [](Scene &s) { s.advance(99); }},
        {"no time for animations", [](Scene &s) { s.view->animDuration.set(-1); }},
        {"events are processed",
         [](Scene &s) {
             s.view->show();
             s.view->layout();
             QTest::qWait(1);
         }},
        {"an exception", [](Scene &) { throw std::runtime_error("of the host"); }},
        {"an exception of another kind", [](Scene &) { throw 5; }},
        {"the view is destroyed", [](Scene &s) { s.view.reset(); }, true},
        {"view and model are destroyed",
         [](Scene &s) {
             s.view.reset();
             s.things.clear();
             s.things.resize(6);
         },
         true},
        {"model and view are destroyed",
         [](Scene &s) {
             s.things.clear();
             s.things.resize(6);
             s.view.reset();
         },
         true},
    };
    return all;
}

void withRulesOf(ObjectGraphView &other, ObjectGraphView const &view)
{
    for (auto const &[className, names] : view.getOutLinkFields())
        for (std::string const &name : names)
            other.addOutLinkField(className, name);
    for (auto const &[className, names] : view.getInLinkFields())
        for (std::string const &name : names)
            other.addInLinkField(className, name);
}

/// Goes on to use the view, to the point where it must show just what a new one does.
void verifyUsable(Scene &scene)
{
    ObjectGraphView &view = *scene.view;
    QCOMPARE(faultsOf(view), ""s);
    scene.paint();
    QCOMPARE(faultsAtRest(view), ""s);
    view.setRefresh(true);
    view.animDuration.set(2);
    scene.things.push_back(makeThing("z"));
    view.add(scene.things, true); // Rebuilds links.
    ObjectGraphView fresh;
    withRulesOf(fresh, view);
    fresh.add(view.getObjs(), false);
    QCOMPARE(dumpLinks(view), dumpLinks(fresh));
    view.setVisible(scene.things, true);
    scene.advance(0.5);
    scene.paint();
    QCOMPARE(faultsOf(view), ""s);
    QCOMPARE(faultsAtRest(view), ""s);
    const auto notNull = [](RefT<VOM::Object> const &thing) { return bool(thing); };
    QCOMPARE(view.getVisibleObjs().size(),
             std::size_t(std::count_if(scene.things.begin(), scene.things.end(), notNull)));
}

} // namespace

class tst_GraphMisuse : public QObject {
    Q_OBJECT

private slots:
    void anythingMayHappenAtAnyMoment_data();
    void anythingMayHappenAtAnyMoment();
    void otherViewMayBeDestroyedAtAnyMoment_data();
    void otherViewMayBeDestroyedAtAnyMoment();
    void viewMayBeUsedWhileItGoes_data();
    void viewMayBeUsedWhileItGoes();
    void objectOnTheStackMayGoWhileItsIconIsAskedFor();
};

void tst_GraphMisuse::anythingMayHappenAtAnyMoment_data()
{
    QTest::addColumn<int>("moment");
    QTest::addColumn<int>("calamity");
    for (std::size_t i = 0; i < moments().size(); ++i)
        for (std::size_t k = 0; k < calamities().size(); ++k)
            if (moments()[i].mayDestroyView || !calamities()[k].destroysView)
                QTest::addRow("%s: %s", moments()[i].name, calamities()[k].name)
                    << int(i) << int(k);
}

void tst_GraphMisuse::anythingMayHappenAtAnyMoment()
{
    QFETCH(int, moment);
    QFETCH(int, calamity);
    Reports reports;
    Scene scene;
    bool done = false;
    const Act once = [&] {
        if (!std::exchange(done, true))
            calamities()[std::size_t(calamity)].act(scene);
    };
    // What a listener of the model throws passes on to whoever changes the model.
    try {
        moments()[std::size_t(moment)].bring(scene, once);
    } catch (std::runtime_error const &) {
    } catch (int) {
    }
    QVERIFY(done);
    if (scene.view)
        verifyUsable(scene);
}

void tst_GraphMisuse::otherViewMayBeDestroyedAtAnyMoment_data()
{
    QTest::addColumn<int>("moment");
    QTest::addColumn<bool>("elder");
    for (std::size_t i = 0; i < moments().size(); ++i)
        for (bool elder : {true, false})
            QTest::addRow("%s, the %s view goes", moments()[i].name, elder ? "elder" : "younger")
                << int(i) << elder;
}

/// Three views of one model: they hear of a change one after the other.
void tst_GraphMisuse::otherViewMayBeDestroyedAtAnyMoment()
{
    QFETCH(int, moment);
    QFETCH(bool, elder);
    Scene scene;
    auto other = std::make_unique<ObjectGraphView>();
    ObjectGraphView third;
    for (ObjectGraphView *view : {other.get(), &third}) {
        withRulesOf(*view, *scene.view);
        view->resize(200, 150);
        view->add(scene.things, false);
        view->setSel(scene.things);
        view->setVisible(scene.view->getVisibleObjs(), true);
        finishAnimation(*view);
    }
    if (elder) {
        std::swap(scene.view, other);
        scene.view->setObjIconDB(scene.icons);
    }

    moments()[std::size_t(moment)].bring(scene, [&] { other.reset(); });
    QVERIFY(!other);
    QCOMPARE(faultsAtRest(third), ""s);
    third.viewport()->grab();
    verifyUsable(scene);
    QCOMPARE(faultsAtRest(third), ""s);
}

void tst_GraphMisuse::viewMayBeUsedWhileItGoes_data()
{
    QTest::addColumn<int>("calamity");
    for (std::size_t k = 0; k < calamities().size(); ++k)
        if (!calamities()[k].destroysView)
            QTest::newRow(calamities()[k].name) << int(k);
}

void tst_GraphMisuse::viewMayBeUsedWhileItGoes()
{
    QFETCH(int, calamity);
    Reports reports;
    Scene scene;
    scene.view->setVisible({scene['e']}, true);
    bool done = false;
    // Its owner doesn't name it any more, and takes it for gone.
    auto *const view = scene.view.release();
    view->sigDelete.connect([&](auto const &) {
        scene.view.reset(view);
        done = true;
        try {
            calamities()[std::size_t(calamity)].act(scene);
        } catch (...) {
            scene.view.release();
            throw;
        }
        scene.view.release();
    });
    delete view;
    QVERIFY(done);
    // The model tells nobody any more.
    removeAllFields(scene);
    scene.things.clear();
}

void tst_GraphMisuse::objectOnTheStackMayGoWhileItsIconIsAskedFor()
{
    Scene scene;
    std::optional<Thing> thing(std::in_place);
    scene.icons->act = [&] { thing.reset(); };
    const ObjectGraphView::AddedNodes added =
        scene.view->add({RefT<VOM::Object>(*thing), scene['a']}, true);
    QVERIFY(!thing);
    QVERIFY(added.hidden.empty());
    QCOMPARE(added.visible.size(), std::size_t(1));
    verifyUsable(scene);
}

QTEST_MAIN(tst_GraphMisuse)
#include "tst_GraphMisuse.moc"
