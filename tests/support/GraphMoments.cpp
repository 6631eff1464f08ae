#include "support/GraphMoments.h"

#include "support/ViewProbe.h"
#include "support/dump.h"

namespace ZR::VOM::GUI {

namespace {

using Scene = MisuseScene;

/// Connects `act` to a signal of the model, before the view hears it or after.
template <class ConnectAll>
void actBefore(Scene &scene, ConnectAll const &connectAll)
{
    // Who connects first is called first: the view gives its nodes up and makes new ones.
    const Things visible = scene.view->getVisibleObjs();
    scene.view->clear();
    connectAll();
    scene.view->add(scene.things, false);
    scene.view->setVisible(visible, true);
}

} // namespace

MisuseScene::MisuseScene()
    : things(makeThings("abcdef"))
    , icons(new AskingDB)
    , view(std::make_unique<ObjectGraphView>())
{
    for (RefT<VOM::Object> const &thing : things)
        VOM::addField<FieldString>(*thing, "label", nameOf(thing) + nameOf(thing));
    for (char from : {'a', 'b', 'c'})
        setLink((*this)[from], "next", (*this)[char(from + 1)]);
    setLinks((*this)['a'], "list", {(*this)['d'], (*this)['d'], {}, (*this)['c']});
    setLink((*this)['d'], "next", (*this)['a']);
    setLink<FieldRef>((*this)['d'], "own", (*this)['e']);
    setLink((*this)['e'], "next", (*this)['b']);
    view->addOutLinkField("", "next");
    view->addOutLinkField("Thing", "list");
    view->addInLinkField("", "own");
    view->setFieldName("label");
    view->setObjIconDB(icons);
    view->resize(200, 150);
    view->add(things, false);
    view->setSel({things[0], things[1], things[4], things[5]});
    view->setVisible({things[0], things[1], things[2], things[3]}, true);
    finishAnimation(*view);
    view->viewport()->grab();
}

void MisuseScene::advance(double seconds)
{
    if (view && GraphViewAccess::animTimer(*view).isActive()) {
        letPass(GraphViewAccess::animStart(*view), seconds);
        tick(GraphViewAccess::animTimer(*view));
    }
    if (view && GraphViewAccess::scrollTimer(*view).isActive()) {
        letPass(GraphViewAccess::scrollStart(*view), seconds);
        tick(GraphViewAccess::scrollTimer(*view));
    }
}

void MisuseScene::rebuildLinks()
{
    if (view)
        view->add({makeThing("y")}, false);
}

std::vector<Moment> const &moments()
{
    static std::vector<Moment> const all = {
        {"a node is shown",
         [](Scene &s, Act const &act) {
             s.view->sigInsertNode.connect([act](auto const &) { act(); });
             s.view->setVisible({s['f'], s['e']}, true);
         },
         true},
        {"nodes are hidden",
         [](Scene &s, Act const &act) {
             s.view->sigRemoveNode.connect([act](auto const &) { act(); });
             s.view->setVisible({s['b'], s['c']}, false);
         },
         true},
        {"nodes are removed",
         [](Scene &s, Act const &act) {
             s.view->sigRemoveNode.connect([act](auto const &) { act(); });
             s.view->remove({s['b'], s['c']});
         },
         true},
        {"the selection is shown",
         [](Scene &s, Act const &act) {
             s.view->sigSel.connect([act](auto const &) { act(); });
             s.view->setVisible({s['e'], s['f']}, true);
         },
         true},
        {"an icon is painted",
         [](Scene &s, Act const &act) {
             s.view->sigPaintNodeIcon.connect([act](auto const &) { act(); });
             s.paint();
         },
         false},
        {"an icon is asked for",
         [](Scene &s, Act const &act) {
             s.icons->act = act;
             s.things.push_back(makeThing("g"));
             setLink(s.things.back(), "next", s['a']);
             s.view->add(s.things, true);
         },
         false},
        {"a layout isn't painted yet",
         [](Scene &s, Act const &act) {
             s.view->setVisible({s['e']}, true);
             act();
             s.paint();
         },
         true},
        {"a hidden node isn't painted yet",
         [](Scene &s, Act const &act) {
             s.view->setVisible({s['d']}, false);
             act();
             s.paint();
         },
         true},
        {"a new link isn't painted yet",
         [](Scene &s, Act const &act) {
             setLink(s['a'], "next", s['d']);
             setLinks(s['a'], "list", {s['b'], s['f']});
             act();
             s.paint();
         },
         true},
        {"nodes are on their way",
         [](Scene &s, Act const &act) {
             s.view->setVisible({s['e'], s['f']}, true);
             s.advance(0.5);
             s.paint();
             act();
             s.paint();
             s.advance(0.5);
         },
         true},
        {"a node is moved",
         [](Scene &s, Act const &act) {
             s.view->setPos(s['b'], -500, 700, true);
             act();
             s.advance(1);
         },
         true},
        {"the view scrolls",
         [](Scene &s, Act const &act) {
             s.view->setPos(s['a'], 3000, 3000, false);
             s.paint();
             s.view->showSel();
             s.advance(0.5);
             act();
             s.advance(0.5);
             s.advance(99);
         },
         true},
        {"a link changes, unheard yet",
         [](Scene &s, Act const &act) {
             actBefore(s, [&] {
                 fieldOf<FieldPtr>(s['a'], "next").sigSet.connect([act](auto const &) { act(); });
             });
             setLink(s['a'], "next", s['c']);
         },
         true},
        {"a link has changed",
         [](Scene &s, Act const &act) {
             fieldOf<FieldPtr>(s['a'], "next").sigSet.connect([act](auto const &) { act(); });
             setLink(s['a'], "next", s['c']);
         },
         true},
        {"a list changes, unheard yet",
         [](Scene &s, Act const &act) {
             actBefore(s, [&] {
                 fieldOf<MFieldPtr>(s['a'], "list").sigReplace.connect([act](auto const &) {
                     act();
                 });
             });
             setLinks(s['a'], "list", {s['b'], s['f'], s['d']});
         },
         true},
        {"a list has changed",
         [](Scene &s, Act const &act) {
             fieldOf<MFieldPtr>(s['a'], "list").sigReplace.connect([act](auto const &) { act(); });
             setLinks(s['a'], "list", {s['b'], s['f'], s['d']});
         },
         true},
        {"a field comes, unheard yet",
         [](Scene &s, Act const &act) {
             actBefore(s, [&] { s['f']->sigAddField.connect([act](auto const &) { act(); }); });
             // Not through the helpers: the object may die.
             VOM::addField<VOM::FieldPtr>(*s['f'], "next", PtrT<VOM::Object>(s['a']));
         },
         true},
        {"a field goes, unheard yet",
         [](Scene &s, Act const &act) {
             actBefore(s, [&] { s['a']->sigRemoveField.connect([act](auto const &) { act(); }); });
             VOM::removeField(*s['a'], *s['a']->findField("list"));
             s.rebuildLinks();
         },
         true},
        {"a field goes",
         [](Scene &s, Act const &act) {
             s['a']->sigRemoveField.connect([act](auto const &) { act(); });
             VOM::removeField(*s['a'], *s['a']->findField("next"));
             s.rebuildLinks();
         },
         true},
        {"an object dies, unheard yet",
         [](Scene &s, Act const &act) {
             actBefore(s, [&] { s['b']->sigDelete.connect([act](auto const &) { act(); }); });
             s['b'].reset();
         },
         true},
        {"an object dies",
         [](Scene &s, Act const &act) {
             s['b']->sigDelete.connect([act](auto const &) { act(); });
             s['b'].reset();
         },
         true},
        {"an owner dies",
         [](Scene &s, Act const &act) {
             s['e']->sigDelete.connect([act](auto const &) { act(); });
             s['e'].reset();
             s['d'].reset();
         },
         true},
        {"a link lost its target",
         [](Scene &s, Act const &act) {
             fieldOf<FieldPtr>(s['a'], "next").sigLost.connect([act](auto const &) { act(); });
             s['b'].reset();
         },
         true},
        {"tooltips are switched",
         [](Scene &s, Act const &act) {
             s.view->tooltip.sigSet.connect([act](auto const &) { act(); });
             s.view->tooltip.set(true);
         },
         true},
        {"animations are cut short",
         [](Scene &s, Act const &act) {
             s.view->setVisible({s['e']}, true);
             s.view->animDuration.sigSet.connect([act](auto const &) { act(); });
             s.view->animDuration.set(0);
             s.advance(0);
         },
         true},
    };
    return all;
}

} // namespace ZR::VOM::GUI
