#include "trees/CallingIconDB.h"
#include "trees/Generations.h"

#include <QElapsedTimer>

#include <map>
#include <utility>

using namespace tree_test;

/// Hosts that act while rows are rebuilt, and what dies meanwhile, in both generations.
class tst_TreeRebuilds : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data() { addGenerations(); }

    void dyingRowMayDestroyTheView_data() { addChanges(); }
    void dyingRowMayDestroyTheView();
    void dyingRowMayChangeSettings_data() { addChanges(); }
    void dyingRowMayChangeSettings();
    void lastReferenceOfAListMayDestroyTheView_data();
    void lastReferenceOfAListMayDestroyTheView();
    void lastReferenceOfALabelMayDestroyTheView();
    void newFieldIsFoundAmongThoseThatMoved_data();
    void newFieldIsFoundAmongThoseThatMoved();
    void pathFindsItsTopAmongThoseThatMoved();
    void topsMayChangeWhileTheyAreShown_data();
    void topsMayChangeWhileTheyAreShown();
    void listMayChangeWhileItIsShown();
    void manyTopsAreRemovedOneByOne();
    void manyTopsAreAddedBeforeMany();
    void manyTopsMayBeTouchedByAListener();

private:
    static void addChanges();
};

void tst_TreeRebuilds::addChanges()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<bool>("byPath");
    for (char const *change : {"field", "single link", "emptied link", "list", "tops"}) {
        QTest::addRow("%s, by a path", change) << change << true;
        QTest::addRow("%s, by a layout", change) << change << false;
    }
}

namespace {

/// Opens all of a's rows, and lets one or two of them die with the next rebuild, in which new ones
/// are made.
template <class Scene>
void letRowsDie(Scene &scene, QString const &change)
{
    scene.show();
    scene.view->addRow(scene.c(), 1);
    scene.open(scene.path());
    for (char const *name : {"part", "own"})
        scene.open(scene.path(name));
    scene.dump();
    if (change == "field") {
        removeField(*scene.a(), scene.field("next"));
        addField<FieldPtr>(*scene.a(), "more");
        removeField(*scene.a(), scene.field("all"));
        addField<FieldPtr>(*scene.a(), "most");
    } else if (change == "single link") {
        fieldOf<FieldRef>(scene.a(), "part").set(scene.c());
    } else if (change == "emptied link") {
        fieldOf<FieldRef>(scene.a(), "part").set({});
    } else if (change == "list") {
        scene.own().replace(0, 2, {makeThing("x"), makeThing("y")});
    } else {
        scene.view->addRow(scene.b(), 0);
        scene.view->removeRow(2);
        scene.view->addRow(scene.d(), 2);
    }
}

/// Rebuilds what letRowsDie() has changed.
template <class Scene>
void rebuild(Scene &scene, bool byPath)
{
    if (!byPath) {
        scene.view->findRow({5, 5});
        return;
    }
    // Each ends where all of the rows above it are made.
    const Path paths[] = {scene.path("own", 0), scene.path("part", 0)};
    for (Path const &path : paths)
        if (scene.view)
            scene.row(path);
}

} // namespace

void tst_TreeRebuilds::dyingRowMayDestroyTheView()
{
    QFETCH(QString, change);
    QFETCH(bool, byPath);
    withScene([&](auto &scene) {
        letRowsDie(scene, change);
        scene.view->onDelete = [&] { scene.view.reset(); };
        rebuild(scene, byPath);
        QVERIFY(!scene.view);
    });
}

void tst_TreeRebuilds::dyingRowMayChangeSettings()
{
    QFETCH(QString, change);
    QFETCH(bool, byPath);
    withScene([&](auto &scene) {
        letRowsDie(scene, change);
        int numDeaths = 0;
        scene.view->onDelete = [&] {
            ++numDeaths;
            scene.view->setTypeName(!scene.view->isTypeName());
        };
        rebuild(scene, byPath);
        QVERIFY(numDeaths != 0);
        scene.view->onDelete = nullptr;
        scene.view->setTypeName(false);
        const std::string shown = scene.dump();
        QVERIFY2(shown.find("'a'") != std::string::npos, shown.c_str());
        QVERIFY2(shown.find("Thing") == std::string::npos, shown.c_str());
    });
}

void tst_TreeRebuilds::lastReferenceOfAListMayDestroyTheView_data()
{
    QTest::addColumn<bool>("comesFirst");
    QTest::newRow("of a value before others") << true;
    QTest::newRow("of the last value") << false;
}

void tst_TreeRebuilds::lastReferenceOfAListMayDestroyTheView()
{
    QFETCH(bool, comesFirst);
    withScene([&](auto &scene) {
        if (comesFirst)
            scene.all().replace(0, 2, {PtrT<Object>(scene.c()), PtrT<Object>(scene.b())});
        scene.show();
        scene.open(scene.path());
        scene.dump();
        destroyViewWith(scene, scene.c());
        scene.view->sigRow.connect([&](auto const &) { scene.things[2] = {}; });
        if (!comesFirst)
            scene.all().replace(0, 1, {});
        scene.open(scene.path("all"));
        scene.row(scene.path("all", 0));
        QVERIFY(!scene.view);
    });
}

void tst_TreeRebuilds::lastReferenceOfALabelMayDestroyTheView()
{
    withScene([](auto &scene) {
        const RefT<CallingIconDB> icons(new CallingIconDB);
        scene.view->setObjIconDB(icons);
        scene.view->addRow(scene.c(), 0);
        destroyViewWith(scene, scene.c());
        icons->onFind = [&] { scene.things[2] = {}; };
        scene.view->findRow({5, 5});
        QVERIFY(!scene.view);
    });
}

void tst_TreeRebuilds::newFieldIsFoundAmongThoseThatMoved_data()
{
    QTest::addColumn<QString>("removed");
    QTest::addColumn<std::string>("added");
    QTest::addColumn<std::string>("expected");
    const auto add = [](char const *name, QString const &removed, std::string const &added,
                        std::string const &expected) {
        QTest::newRow(name) << removed << added << expected;
    };
    add("behind one that left", "part", "late", "'a' .next .all .own .late");
    add("and left itself", "late", "late", "'a' .part .next .all .own");
    add("the name, behind the one that left", "name", "name", "'new' .part .next .all .own");
}

void tst_TreeRebuilds::newFieldIsFoundAmongThoseThatMoved()
{
    QFETCH(QString, removed);
    QFETCH(std::string, added);
    QFETCH(std::string, expected);
    withScene([&](auto &scene) {
        // Before the row listens.
        scene.a()->sigAddField.connect([&](auto const &) {
            removeField(*scene.a(), scene.field(removed.toStdString().c_str()));
        });
        scene.show();
        scene.open(scene.path());
        scene.dump();
        if (added == "name")
            addField<FieldString>(*scene.a(), added.c_str(), "new");
        else
            addField<FieldPtr>(*scene.a(), added.c_str());
        QCOMPARE(scene.dump(), expected);
    });
}

void tst_TreeRebuilds::pathFindsItsTopAmongThoseThatMoved()
{
    withScene([](auto &scene) {
        scene.view->addRows({scene.a(), scene.c()}, 0);
        bool isTold = false;
        scene.view->sigRow.connect([&](auto const &) {
            if (!std::exchange(isTold, true))
                scene.view->addRow(scene.b(), 0);
        });
        const auto row = scene.row(scene.path());
        QVERIFY(isTold && row);
        QCOMPARE(scene.view->getRowObj(row), scene.a().get());
        QCOMPARE(scene.dump(), std::string("'b' 'a' 'c'"));
    });
}

void tst_TreeRebuilds::topsMayChangeWhileTheyAreShown_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<bool>("looks");
    QTest::addColumn<std::string>("expected");
    std::map<char const *, char const *> const changes = {
        {"clears", ""},
        {"removes one", "'a' 'c' 'd'"},
        {"removes one of two", "'a' 'b' 'c'"},
        {"adds one", "'e' 'a' 'b' 'c' 'd'"},
        {"moves one", "'a' 'c' 'd' 'b'"},
        {"lets one die", "'a' 'b' 'd'"},
        {"removes one that dies then", "'a' 'b' 'd'"},
        {"clears, and one dies", ""},
    };
    for (auto const &[change, expected] : changes) {
        QTest::addRow("%s", change) << change << false << std::string(expected);
        QTest::addRow("%s, and asks for a row", change) << change << true << std::string(expected);
    }
}

void tst_TreeRebuilds::topsMayChangeWhileTheyAreShown()
{
    QFETCH(QString, change);
    QFETCH(bool, looks);
    QFETCH(std::string, expected);
    withScene([&](auto &scene) {
        auto &view = *scene.view;
        view.addRows({scene.a(), scene.b(), scene.c(), scene.d()}, 0);
        if (change == "removes one of two") {
            view.removeRow(3);
            view.addRow(scene.b(), 3);
        }
        std::map<QString, std::function<void()>> const changes = {
            {"clears", [&] { view.clear(); }},
            {"removes one", [&] { view.removeRow(1); }},
            {"removes one of two", [&] { view.removeRow(3); }},
            {"adds one", [&] { view.addRow(scene.e(), 0); }},
            {"moves one",
             [&] {
                 view.removeRow(1);
                 view.addRow(scene.b(), 9);
             }},
            {"lets one die", [&] { scene.things[2] = {}; }},
            {"removes one that dies then",
             [&] {
                 view.removeRow(2);
                 scene.things[2] = {};
             }},
            {"clears, and one dies",
             [&] {
                 view.clear();
                 scene.things[2] = {};
             }},
        };
        bool isTold = false;
        view.sigRow.connect([&](auto const &) {
            if (std::exchange(isTold, true))
                return;
            changes.at(change)();
            if (looks)
                scene.row(scene.path());
        });
        view.findRow({5, 5});
        QVERIFY(isTold);
        scene.dump();
        QCOMPARE(scene.dump(), expected);
    });
}

void tst_TreeRebuilds::listMayChangeWhileItIsShown()
{
    withScene([](auto &scene) {
        scene.view->addAcceptedField("", "own");
        scene.show();
        scene.open(scene.path());
        scene.open(scene.path("own"));
        scene.dump();
        scene.own().replace(0, 0, {makeThing("x")});
        bool isTold = false;
        scene.view->sigRow.connect([&](auto const &) {
            if (std::exchange(isTold, true))
                return;
            scene.own().replace(0, 1, {makeThing("y"), makeThing("z")});
            scene.row(scene.path("own", 1));
        });
        scene.dump();
        QVERIFY(isTold);
        QCOMPARE(scene.dump(), std::string("'a' .own ..'y' ..'z' ..'d' ..'e'"));
    });
}

namespace {

constexpr int manySeconds = 20; // A multiple of what these take, and a fraction of what they did.

/// Objects without fields.
Things makeMany(std::size_t num)
{
    Things things;
    while (things.size() < num)
        things.emplace_back(new Thing);
    return things;
}

std::vector<PtrT<Object>> pointersTo(Things const &things)
{
    return {things.begin(), things.end()};
}

} // namespace

void tst_TreeRebuilds::manyTopsAreRemovedOneByOne()
{
    const Things many = makeMany(200000);
    withScene([&](auto &scene) {
        QElapsedTimer timer;
        timer.start();
        scene.view->addRows(pointersTo(many), 0);
        scene.view->addRow(scene.a(), many.size());
        for (std::size_t i = 0; i < many.size(); ++i)
            scene.view->removeRow(0);
        QVERIFY(timer.elapsed() < manySeconds * 1000);
        QCOMPARE(scene.dump(), std::string("'a'"));
    });
}

void tst_TreeRebuilds::manyTopsAreAddedBeforeMany()
{
    const Things many = makeMany(200000);
    withScene([&](auto &scene) {
        QElapsedTimer timer;
        timer.start();
        scene.view->addRows(pointersTo(many), 0);
        scene.view->addRows(pointersTo(many), 1000);
        QVERIFY(timer.elapsed() < manySeconds * 1000);
        scene.view->clear();
        scene.show();
        QCOMPARE(scene.dump(), std::string("'a'"));
    });
}

void tst_TreeRebuilds::manyTopsMayBeTouchedByAListener()
{
    const Things many = makeMany(400000);
    withScene([&](auto &scene) {
        scene.view->addRows(pointersTo(many), 0);
        bool isTold = false;
        scene.view->sigRow.connect([&](auto const &) {
            if (!std::exchange(isTold, true))
                scene.view->addRow(scene.a(), 0);
        });
        QElapsedTimer timer;
        timer.start();
        scene.view->findRow({5, 5});
        QVERIFY(timer.elapsed() < manySeconds * 1000);
        QVERIFY(isTold);
    });
}

QTEST_MAIN(tst_TreeRebuilds)
#include "tst_TreeRebuilds.moc"
