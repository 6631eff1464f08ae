#pragma once

// What every tree does alike, as claims over a scene of any of them. A scene has, beside the
// objects and paths that TreeScene.h and v1/ViewScene.h tell of,
// - View, and view, the tree;
// - emptyLabel, the text of an empty link;
// - add(), tops by objects, and accepts();
// - dumpRows(): the lines in sight with a dot for each line above it that it belongs to;
// - close(), hasRow(), hasIcon() and label(), by paths;
// - setNameField(), setHideFields();
// - dragged(): what a drag of rows carries;
// - canDrop() and drop() of a payload, onto a row or before one of its children.

#include "support/Things.h"
#include "zrVOMGUI/foundation/vom/Path.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QMimeData>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace tree_test {

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;

struct Claim {
    char const *name;
    void (*check)();
};

template <class Scene>
struct SharedBehaviourT {
    static constexpr auto onto = static_cast<std::size_t>(-1);

    static std::vector<Claim> claims()
    {
        return {
            {"new view shows class names and all links", newView},
            {"objects and fields alternate", alternation},
            {"closed rows show nothing below", closing},
            {"empty link shows one row", emptyLink},
            {"empty list shows none", emptyList},
            {"positions beyond the end append", positions},
            {"list is a top row with its values below", listOnTop},
            {"dead top objects leave", deadTops},
            {"dead values leave an empty row", deadValues},
            {"list follows insertion, removal and change", listEdits},
            {"moved values stay open", moves},
            {"same object twice has two rows", twice},
            {"single link follows its value", singleLink},
            {"field that comes and goes is followed", fieldsComeAndGo},
            {"labels follow the name field", names},
            {"class names can be left out", classNames},
            {"icons come from the database", icons},
            {"filter counts classes, bases and the empty name", filter},
            {"filter never accepts plain values", filterOfValues},
            {"cleared filter touches no row", clearedFilter},
            {"hidden fields let values take their place", hiddenFields},
            {"selection is paths, in closed rows, too", selection},
            {"selection is appended, and unknown paths passed over", selectionOfUnknown},
            {"paths that lead nowhere have no row", lostPaths},
            {"clear removes all and tells once", clearing},
            {"drag carries objects and their copies", dragPayload},
            {"field takes what the rule lets it", dropRule},
            {"list takes at its position", dropPosition},
            {"object refuses while its fields show", dropOnObject},
            {"listeners alone decide", dropListeners},
            {"payload of nothing known drops nothing into a link", dropOfNothing},
            {"drop changes nothing by itself", dropChangesNothing},
        };
    }

private:
    static std::string all() { return "'a' .part .next .all .own"; }

    static void newView()
    {
        typename Scene::View view;
        QVERIFY(view.isTypeName());
        QVERIFY(!view.isHideFields());
        Scene scene;
        for (char const *name : {"part", "next", "all", "own"})
            QVERIFY(scene.accepts(scene.field(name)));
    }

    static void alternation()
    {
        Scene scene;
        scene.show();
        QCOMPARE(scene.dumpRows(), std::string("'a'"));
        scene.open(scene.path());
        QCOMPARE(scene.dumpRows(), all());
        for (char const *name : {"part", "next", "all", "own"})
            scene.open(scene.path(name));
        QCOMPARE(scene.dumpRows(),
                 std::string("'a' .part ..'b' .next ..'c' .all ..'b' ..'c' .own ..'d' ..'e'"));
    }

    static void closing()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        scene.dumpRows();
        scene.close(scene.path("own"));
        QCOMPARE(scene.dumpRows(), all());
        scene.close(scene.path());
        QCOMPARE(scene.dumpRows(), std::string("'a'"));
    }

    static void emptyLink()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("next"));
        fieldOf<FieldPtr>(scene.a(), "next").set({});
        QCOMPARE(scene.dumpRows(), "'a' .part .next .." + scene.emptyLabel() + " .all .own");
    }

    static void emptyList()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        const Things own = scene.own().getAll();
        scene.own().replace(0, 2, {});
        QCOMPARE(scene.dumpRows(), all());
        // It stays open.
        scene.own().replace(0, 0, own);
        QCOMPARE(scene.dumpRows(), all() + " ..'d' ..'e'");
    }

    static void positions()
    {
        Scene scene;
        QCOMPARE(scene.add(scene.a(), 9), std::size_t(0));
        QCOMPARE(scene.add(scene.b(), 0), std::size_t(0));
        QCOMPARE(scene.add(scene.c(), onto), std::size_t(2));
        scene.view->addRows({scene.d(), scene.e()}, 1);
        QCOMPARE(scene.dumpRows(), std::string("'b' 'd' 'e' 'a' 'c'"));
    }

    static void listOnTop()
    {
        Scene scene;
        QCOMPARE(scene.view->addRow(scene.own(), 7), std::size_t(0));
        QCOMPARE(scene.dumpRows(), std::string("own"));
    }

    static void deadTops()
    {
        Scene scene;
        RefT<Object> f = makeThing("f");
        scene.view->addRows({scene.a(), f, scene.b()}, 0);
        QCOMPARE(scene.dumpRows(), std::string("'a' 'f' 'b'"));
        f = {};
        QCOMPARE(scene.dumpRows(), std::string("'a' 'b'"));
    }

    static void deadValues()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("all"));
        scene.dumpRows();
        // Nobody else owns "c".
        scene.things[2] = {};
        QCOMPARE(scene.dumpRows(), "'a' .part .next .all ..'b' .." + scene.emptyLabel() + " .own");
    }

    static void listEdits()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        scene.dumpRows();
        scene.own().replace(1, 0, {makeThing("x"), makeThing("y")});
        QCOMPARE(scene.dumpRows(), all() + " ..'d' ..'x' ..'y' ..'e'");
        scene.own().replace(0, 2, {});
        QCOMPARE(scene.dumpRows(), all() + " ..'y' ..'e'");
        scene.own().replace(1, 1, {makeThing("z")});
        QCOMPARE(scene.dumpRows(), all() + " ..'y' ..'z'");
    }

    static void moves()
    {
        Scene scene;
        addField<FieldPtr>(*scene.e(), "more");
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        scene.open(scene.path("own", 1));
        QCOMPARE(scene.dumpRows(), all() + " ..'d' ..'e' ...more");
        scene.own().replace(0, 2, {scene.e(), scene.d()});
        QCOMPARE(scene.dumpRows(), all() + " ..'e' ...more ..'d'");
    }

    static void twice()
    {
        Scene scene;
        addField<FieldPtr>(*scene.b(), "more");
        scene.all().replace(0, 2, {scene.b(), scene.b()});
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("all"));
        scene.open(scene.path("all", 0));
        QCOMPARE(scene.dumpRows(), std::string("'a' .part .next .all ..'b' ...more ..'b' .own"));
        scene.all().replace(1, 1, {});
        QCOMPARE(scene.dumpRows(), std::string("'a' .part .next .all ..'b' ...more .own"));
    }

    static void singleLink()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("next"));
        scene.dumpRows();
        fieldOf<FieldPtr>(scene.a(), "next").set(scene.d());
        QCOMPARE(scene.dumpRows(), std::string("'a' .part .next ..'d' .all .own"));
    }

    static void fieldsComeAndGo()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        addField<FieldPtr>(*scene.a(), "late");
        QCOMPARE(scene.dumpRows(), all() + " .late");
        removeField(*scene.a(), scene.field("late"));
        QCOMPARE(scene.dumpRows(), all());
    }

    static void names()
    {
        Scene scene;
        scene.show();
        scene.dumpRows();
        fieldOf<FieldString>(scene.a(), "name").set("new");
        QCOMPARE(scene.dumpRows(), std::string("'new'"));
    }

    static void classNames()
    {
        Scene scene;
        scene.show();
        scene.view->setTypeName(true);
        QCOMPARE(scene.dumpRows(), std::string("Thing 'a'"));
        scene.view->setTypeName(false);
        QCOMPARE(scene.dumpRows(), std::string("'a'"));
    }

    class RedIconDB : public GUI::ObjectIconDB {
    public:
        QIcon find(RefT<Object> const &) const override
        {
            QPixmap pixmap(8, 8);
            pixmap.fill(Qt::red);
            return pixmap;
        }
    };

    static void icons()
    {
        Scene scene;
        scene.show();
        scene.dumpRows();
        QVERIFY(!scene.hasIcon(scene.path()));
        RefT<GUI::ObjectIconDB> icons(new RedIconDB);
        scene.view->setObjIconDB(icons);
        scene.dumpRows();
        QVERIFY(scene.hasIcon(scene.path()));
        QVERIFY(!scene.hasIcon(scene.path("own")));
        scene.view->setObjIconDB({});
        scene.dumpRows();
        QVERIFY(!scene.hasIcon(scene.path()));
    }

    static void filter()
    {
        Scene scene;
        const RefT<Object> special = makeThing<Special>("s");
        Field &part = addField<FieldPtr>(*special, "part");
        Field &next = addField<FieldPtr>(*special, "next");
        scene.view->addAcceptedField("Thing", "part");
        QVERIFY(scene.accepts(part) && scene.accepts(scene.field("part")));
        QVERIFY(!scene.accepts(next));
        scene.view->addAcceptedField("Special", "next");
        QVERIFY(scene.accepts(next) && scene.accepts(part));
        QVERIFY(!scene.accepts(scene.field("next")));
        scene.show();
        scene.open(scene.path());
        QCOMPARE(scene.dumpRows(), std::string("'a' .part"));
        scene.view->addAcceptedField("", "own");
        QCOMPARE(scene.dumpRows(), std::string("'a' .part .own"));
        scene.view->removeAcceptedField("Thing", "part");
        QCOMPARE(scene.dumpRows(), std::string("'a' .own"));
    }

    static void filterOfValues()
    {
        Scene scene;
        QVERIFY(!scene.accepts(scene.field("name")));
        scene.view->addAcceptedField("", "name");
        QVERIFY(!scene.accepts(scene.field("name")));
        scene.show();
        scene.open(scene.path());
        QCOMPARE(scene.dumpRows(), std::string("'a'"));
    }

    static void clearedFilter()
    {
        Scene scene;
        scene.view->addAcceptedField("", "part");
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        scene.view->clearAcceptedFields();
        QVERIFY(scene.accepts(scene.field("own")));
        QCOMPARE(scene.dumpRows(), std::string("'a' .part"));
    }

    static void hiddenFields()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        scene.setHideFields(true);
        scene.open(scene.path());
        QCOMPARE(scene.dumpRows(), std::string("'a' .'b' .'c' .'b' .'c' .'d' .'e'"));
        scene.own().replace(0, 1, {});
        QCOMPARE(scene.dumpRows(), std::string("'a' .'b' .'c' .'b' .'c' .'e'"));
        scene.setHideFields(false);
        scene.open(scene.path());
        QCOMPARE(scene.dumpRows(), all());
    }

    static std::vector<Path> selectionOf(Scene &scene)
    {
        std::vector<Path> paths;
        scene.view->getSel(paths);
        return paths;
    }

    static void selection()
    {
        Scene scene;
        scene.show();
        scene.dumpRows();
        for (Path const &path : {scene.path(), scene.path("own"), scene.path("own", 1),
                                 scene.path("next"), scene.path("next", 0)}) {
            scene.view->setSel({path});
            const std::vector<Path> selected = selectionOf(scene);
            QCOMPARE(selected.size(), std::size_t(1));
            QCOMPARE(selected[0].getType(), path.getType());
            QCOMPARE(selected[0].getRoot().get(), path.getRoot().get());
            QCOMPARE(selected[0].getNum(), path.getNum());
            if (path.getNum() != 0) {
                QCOMPARE(selected[0].getLast().field.get(), path.getLast().field.get());
                QCOMPARE(selected[0].getLast().index, path.getLast().index);
            }
        }
        QCOMPARE(scene.dumpRows(), std::string("'a'"));
        scene.view->setSel(std::vector<Path>());
        QVERIFY(selectionOf(scene).empty());
    }

    static void selectionOfUnknown()
    {
        Scene scene, other;
        scene.show();
        scene.dumpRows();
        scene.view->setSel({scene.path("own", 9), other.path(), scene.path("own")});
        std::vector<Path> paths{scene.path()};
        scene.view->getSel(paths);
        QCOMPARE(paths.size(), std::size_t(2));
        QCOMPARE(paths[1].getLast().field.get(), &scene.field("own"));
    }

    static void lostPaths()
    {
        Scene scene;
        scene.show();
        scene.dumpRows();
        QVERIFY(scene.hasRow(scene.path("own", 1)));
        QVERIFY(!scene.hasRow(scene.path("own", 2)));
        Path name = scene.path();
        name.pushField(scene.field("name"));
        QVERIFY(!scene.hasRow(name));
    }

    static void clearing()
    {
        Scene scene;
        int num = 0;
        scene.view->sigClear.connect([&](auto const &) { ++num; });
        scene.view->addRows({scene.a(), scene.b()}, 0);
        scene.open(scene.path());
        scene.dumpRows();
        scene.view->clear();
        QCOMPARE(num, 1);
        QCOMPARE(scene.dumpRows(), std::string());
        scene.show();
        QCOMPARE(scene.dumpRows(), std::string("'a'"));
    }

    static void dragPayload()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        const std::unique_ptr<QMimeData> mime = scene.dragged(
            {scene.path("own", 1), scene.path("own"), scene.path(), scene.path("next", 0)});
        QVERIFY(mime);
        Things objs, copies;
        QVERIFY(GUI::getFromMimeData(*mime, objs));
        QCOMPARE(objs, (Things{scene.e(), scene.a(), scene.c()}));
        QVERIFY(GUI::getCopyFromMimeData(*mime, copies));
        QCOMPARE(copies.size(), std::size_t(3));
        QVERIFY(copies[0] && copies[0] != scene.e());
    }

    /// A payload, and the list that it names.
    struct Payload {
        explicit Payload(Things const &dropped)
            : objs(dropped)
            , mime(GUI::createMimeData({}, &objs, nullptr))
        {
        }
        Things objs;
        std::unique_ptr<QMimeData> mime;
    };

    /// What listeners are told of drops.
    struct Told {
        explicit Told(Scene &scene)
        {
            scene.view->sigDrop.connect([this](auto const &sigData) {
                ++num;
                action = sigData.action;
                index = std::size_t(sigData.index);
                path = Scene::fieldPathOf(sigData);
                objs = Scene::objsOf(sigData);
            });
        }
        int num = 0;
        Qt::DropAction action = Qt::IgnoreAction;
        std::size_t index = 0;
        Path path{PtrT<Object>()};
        Things objs;
    };

    static void dropRule()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        const Payload one({scene.e()}), two({scene.d(), scene.e()}), parent({scene.a()});
        QVERIFY(scene.canDrop(*one.mime, scene.path("part"), onto, Qt::CopyAction));
        QVERIFY(!scene.canDrop(*two.mime, scene.path("part"), onto, Qt::CopyAction));
        QVERIFY(scene.canDrop(*two.mime, scene.path("all"), onto, Qt::LinkAction));
        QVERIFY(!scene.canDrop(*parent.mime, scene.path("own"), 0, Qt::MoveAction));
        Told told(scene);
        scene.drop(*one.mime, scene.path("part"), onto, Qt::LinkAction);
        QCOMPARE(told.num, 1);
        QCOMPARE(told.action, Qt::LinkAction);
        QCOMPARE(told.objs, one.objs);
        QCOMPARE(told.path.getLast().field.get(), &scene.field("part"));
    }

    static void dropPosition()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        scene.dumpRows();
        const Payload payload({scene.b()});
        Told told(scene);
        scene.drop(*payload.mime, scene.path("own"), 1, Qt::CopyAction);
        QCOMPARE(told.index, std::size_t(1));
        scene.drop(*payload.mime, scene.path("own"), onto, Qt::CopyAction);
        QVERIFY(told.index >= 2);
        QCOMPARE(told.num, 2);
    }

    static void dropOnObject()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        const Payload payload({scene.e()});
        Told told(scene);
        QVERIFY(!scene.canDrop(*payload.mime, scene.path(), onto, Qt::CopyAction));
        scene.drop(*payload.mime, scene.path(), onto, Qt::CopyAction);
        QCOMPARE(told.num, 0);
    }

    static void dropListeners()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        bool answer = false;
        scene.view->sigCanDrop.connect([&](auto const &sigData) {
            if (answer)
                *sigData.result = true;
        });
        const Payload two({scene.d(), scene.e()});
        QVERIFY(!scene.canDrop(*two.mime, scene.path("own"), onto, Qt::CopyAction));
        answer = true;
        QVERIFY(scene.canDrop(*two.mime, scene.path("part"), onto, Qt::CopyAction));
    }

    static void dropOfNothing()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.dumpRows();
        QMimeData mime;
        mime.setText("nothing of ours");
        QVERIFY(!scene.canDrop(mime, scene.path("part"), onto, Qt::CopyAction));
    }

    static void dropChangesNothing()
    {
        Scene scene;
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        scene.dumpRows();
        scene.drop(*Payload({scene.b()}).mime, scene.path("own"), 0, Qt::CopyAction);
        QCOMPARE(scene.dumpRows(), all() + " ..'d' ..'e'");
        QCOMPARE(scene.own().getNum(), std::size_t(2));
    }
};

} // namespace tree_test
