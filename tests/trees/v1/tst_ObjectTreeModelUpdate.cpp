#include "trees/v1/ModelScene.h"

#include <functional>

Q_DECLARE_METATYPE(std::function<void(model_test::Scene &)>)

using namespace model_test;

namespace {

/// The rows of a list, and what replacing its values tells.
struct ListScene : Scene {
    explicit ListScene(std::string const &names)
        : values(makeThings(names))
    {
        own().replace(0, own().getNum(), values);
        showFetched(3);
    }

    /// What the model tells when the list becomes these. A letter that there was is that object.
    std::string become(std::string const &names)
    {
        Things wanted;
        for (char name : names)
            wanted.push_back(find(std::string(1, name)));
        own().replace(0, own().getNum(), wanted);
        Told told(*model);
        model->update();
        return told.take();
    }
    std::string names() const
    {
        std::string all;
        for (int row = 0; row < model->rowCount(at({0, 3})); ++row)
            all += textOf(at({0, 3, row})).substr(1, 1);
        return all;
    }

    Things values;

private:
    RefT<Object> find(std::string const &name)
    {
        for (RefT<Object> const &value : values)
            if (fieldOf<FieldString>(value, "name").get() == name)
                return value;
        values.push_back(makeThing(name));
        return values.back();
    }
};

} // namespace

/// What marks rows, and what an update of the marked ones does.
class tst_ObjectTreeModelUpdate : public QObject {
    Q_OBJECT

private slots:
    void marksAreToldOnce();
    void changesWaitForTheUpdate();
    void updateWithoutMarksDoesNothing();
    void requestIsTold();
    void signalsMark_data();
    void signalsMark();
    void refusedFieldDoesntMark();
    void withoutFieldNameFieldsArentWatched();
    void nameFieldIsWatched();
    void nameFieldThatComesAndGoesIsWatched();
    void otherFieldOfTheNameIsNoLabel();

    void unfetchedRowsCountOnly();
    void emptiedRowsCountAgain();
    void fieldRowsComeOneByOne();
    void fieldRowsMoveToTheirPlace();
    void fieldRowsGo();

    void singleLinkIsReplacedInFront();
    void emptySingleLinkIsVoid();
    void clearedSingleLinkDropsWhatWasBelow();
    void listChangesCostOneSignalARun_data();
    void listChangesCostOneSignalARun();
    void equalValuesHaveTheirRows();
    void equalValuesMatchInOrder();
    void removalIsToldWhileRowsAreThere();
    void subtreesGoFromTheBottom();
    void objectsThatDieBecomeVoid();
    void rowsStayRowsWhenTheyMove();
};

void tst_ObjectTreeModelUpdate::marksAreToldOnce()
{
    Scene scene;
    scene.showFetched(3);
    Told told(*scene.model);
    scene.own().replace(0, 0, makeThings("x"));
    scene.own().replace(0, 0, makeThings("y"));
    scene.next().set(PtrT<Object>(scene.d()));
    QCOMPARE(told.take(), std::string("update"));
    scene.model->update();
    told.take();
    scene.own().replace(0, 0, makeThings("z"));
    QCOMPARE(told.take(), std::string("update"));
}

void tst_ObjectTreeModelUpdate::changesWaitForTheUpdate()
{
    Scene scene;
    scene.showFetched(3);
    const std::string before = scene.dump();
    const Things held = scene.own().getAll();
    scene.own().replace(0, 1, makeThings("xy"));
    scene.next().set(PtrT<Object>(scene.d()));
    QCOMPARE(scene.dump(), before);
    scene.model->update();
    QCOMPARE(scene.dump(3), std::string("'a'+\n.part+\n..'b'+\n.next+\n..'d'\n"
                                        ".all+\n..'b'+\n..'c'\n.own+\n..'x'\n..'y'\n..'e'\n"));
}

void tst_ObjectTreeModelUpdate::updateWithoutMarksDoesNothing()
{
    Scene scene;
    scene.showFetched(3);
    Told told(*scene.model);
    scene.model->update();
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelUpdate::requestIsTold()
{
    ObjectTreeModel model;
    Told told(model);
    model.requestUpdate();
    model.requestUpdate();
    QCOMPARE(told.take(), std::string("update, update"));
}

void tst_ObjectTreeModelUpdate::signalsMark_data()
{
    using Deed = std::function<void(Scene &)>;
    QTest::addColumn<Deed>("deed");
    QTest::newRow("watching link set") << Deed([](Scene &s) { s.next().set(PtrT<Object>(s.d())); });
    QTest::newRow("watching link set to the same")
        << Deed([](Scene &s) { s.next().set(PtrT<Object>(s.c())); });
    QTest::newRow("owning link set") << Deed([](Scene &s) { s.part().set(s.d()); });
    QTest::newRow("watching link lost") << Deed([](Scene &s) {
        s.all().replace(0, 2, {});
        s.model->update();
        s.c().reset();
    });
    QTest::newRow("watching list replaced") << Deed([](Scene &s) { s.all().replace(0, 1, {}); });
    QTest::newRow("watching list lost") << Deed([](Scene &s) {
        s.next().set({});
        s.model->update();
        s.c().reset();
    });
    QTest::newRow("owning list replaced") << Deed([](Scene &s) { s.own().replace(0, 1, {}); });
    QTest::newRow("accepted field added")
        << Deed([](Scene &s) { addField<FieldPtr>(*s.a(), "x"); });
    QTest::newRow("accepted field removed") << Deed([](Scene &s) { removeField(*s.a(), s.own()); });
}

void tst_ObjectTreeModelUpdate::signalsMark()
{
    QFETCH(std::function<void(Scene &)>, deed);
    Scene scene;
    scene.showFetched(3);
    int numUpdates = 0;
    scene.model->sigUpdate.connect([&](auto const &) { ++numUpdates; });
    deed(scene);
    QVERIFY(numUpdates != 0);
    scene.model->update();
    Scene fresh;
    fresh.model->addRow(PtrT<Object>(scene.a()), 0);
    GUI::fetchRows(*scene.model, scene.top(), 3);
    GUI::fetchRows(*fresh.model, fresh.top(), 3);
    QCOMPARE(scene.dump(), fresh.dump());
}

void tst_ObjectTreeModelUpdate::refusedFieldDoesntMark()
{
    Scene scene;
    scene.model->addAcceptedField("", "own");
    scene.showFetched(2);
    Told told(*scene.model);
    FieldPtr &other = addField<FieldPtr>(*scene.a(), "other");
    addField<FieldInt>(*scene.a(), "own", 1);
    removeField(*scene.a(), other);
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelUpdate::withoutFieldNameFieldsArentWatched()
{
    Scene scene;
    scene.model->setFieldName("");
    scene.model->setTypeName(true);
    scene.showFetched(2);
    Told told(*scene.model);
    addField<FieldPtr>(*scene.a(), "x");
    removeField(*scene.a(), scene.own());
    fieldOf<FieldString>(scene.a(), "name").set("A");
    QCOMPARE(told.take(), std::string());
    scene.model->fetchMore(scene.at({0}));
    QCOMPARE(scene.dump(), std::string("Thing+\n.part+\n.next+\n.all+\n.x+\n"));
}

void tst_ObjectTreeModelUpdate::nameFieldIsWatched()
{
    Scene scene;
    scene.show();
    Told told(*scene.model);
    fieldOf<FieldString>(scene.a(), "name").set("A");
    QCOMPARE(told.take(), std::string("changed 'A'"));
}

void tst_ObjectTreeModelUpdate::nameFieldThatComesAndGoesIsWatched()
{
    Scene scene;
    const RefT<Object> bare(new Thing);
    scene.model->addRow(PtrT<Object>(bare), 0);
    Told told(*scene.model);
    FieldString &name = addField<FieldString>(*bare, "name", "x");
    QCOMPARE(told.take(), std::string("changed 'x'"));
    name.set("y");
    QCOMPARE(told.take(), std::string("changed 'y'"));
    const RefT<FieldString> held(name);
    removeField(*bare, name);
    // It goes after its row was told to look again.
    QCOMPARE(told.take(), std::string("changed 'y'"));
    name.set("z");
    QCOMPARE(told.take(), std::string());
    QCOMPARE(textOf(scene.at({0})), std::string());
}

void tst_ObjectTreeModelUpdate::otherFieldOfTheNameIsNoLabel()
{
    Scene scene;
    const RefT<Object> bare(new Thing);
    scene.model->addRow(PtrT<Object>(bare), 0);
    Told told(*scene.model);
    FieldInt &name = addField<FieldInt>(*bare, "name", 1);
    name.set(2);
    removeField(*bare, name);
    QCOMPARE(told.take(), std::string());
}

void tst_ObjectTreeModelUpdate::unfetchedRowsCountOnly()
{
    Scene scene;
    scene.show();
    GUI::fetchRows(*scene.model, scene.top(), 2);
    Told told(*scene.model);
    scene.own().replace(0, 0, makeThings("xyz"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, changed own"));
    QCOMPARE(scene.model->rowCount(scene.at({0, 3})), 0);
    scene.own().replace(0, 1, makeThings("n"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update"));
}

void tst_ObjectTreeModelUpdate::emptiedRowsCountAgain()
{
    Scene scene;
    scene.showFetched(3);
    scene.own().replace(0, 2, {});
    scene.model->update();
    QVERIFY(!scene.model->hasChildren(scene.at({0, 3})));
    Told told(*scene.model);
    scene.own().replace(0, 0, makeThings("x"));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, changed own"));
    QVERIFY(scene.model->canFetchMore(scene.at({0, 3})));
}

void tst_ObjectTreeModelUpdate::fieldRowsComeOneByOne()
{
    Scene scene;
    scene.showFetched(2);
    Told told(*scene.model);
    addField<MFieldRef>(*scene.a(), "x", Things{});
    addField<FieldPtr>(*scene.a(), "y");
    told.take();
    scene.model->update();
    QCOMPARE(told.take(), std::string("insert 'a' 4, insert 'a' 5, changed y"));
}

/// Each by itself, while the row of the field that has gone is left behind them.
void tst_ObjectTreeModelUpdate::fieldRowsMoveToTheirPlace()
{
    Scene scene;
    scene.showFetched(3);
    const QPersistentModelIndex own = scene.at({0, 3});
    const Things held = scene.own().getAll();
    Told told(*scene.model);
    removeField(*scene.a(), scene.part());
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, move 'a' 1 to 0, move 'a' 2 to 1, move 'a' 3 to 2, "
                                      "changed 'b', removed b, remove  0, remove 'a' 3"));
    QCOMPARE(own.row(), 2);
    QCOMPARE(scene.dump(3), std::string("'a'+\n.next+\n..'c'\n.all+\n..'b'+\n..'c'\n"
                                        ".own+\n..'d'\n..'e'\n"));
}

void tst_ObjectTreeModelUpdate::fieldRowsGo()
{
    Scene scene;
    scene.showFetched(3);
    Told told(*scene.model);
    const Things held = scene.own().getAll();
    removeField(*scene.a(), scene.own());
    told.take();
    scene.model->update();
    // The row of the field, which has no name any more, loses its children first.
    QCOMPARE(told.take(), std::string("removed e d, remove  0-1, remove 'a' 3"));
}

void tst_ObjectTreeModelUpdate::singleLinkIsReplacedInFront()
{
    Scene scene;
    scene.showFetched(3);
    Told told(*scene.model);
    scene.next().set(PtrT<Object>(scene.b()));
    scene.model->update();
    QCOMPARE(told.take(),
             std::string("update, insert next 0, added b, changed 'b', removed c, remove next 1"));
    scene.next().set(PtrT<Object>(scene.b()));
    scene.model->update();
    QCOMPARE(told.take(), std::string("update"));
}

void tst_ObjectTreeModelUpdate::emptySingleLinkIsVoid()
{
    Scene scene;
    scene.next().set({});
    scene.showFetched(3);
    QCOMPARE(scene.dump(scene.at({0, 1})), std::string("void\n"));
}

void tst_ObjectTreeModelUpdate::clearedSingleLinkDropsWhatWasBelow()
{
    Scene scene;
    scene.showFetched(4);
    scene.all().replace(0, 2, {});
    scene.model->update();
    Told told(*scene.model);
    scene.b().reset();
    scene.part().set({});
    scene.model->update();
    QCOMPARE(told.take(), std::string("update, changed , remove void 0"));
    QCOMPARE(scene.dump(scene.at({0, 0})), std::string("void\n"));
}

void tst_ObjectTreeModelUpdate::listChangesCostOneSignalARun_data()
{
    QTest::addColumn<std::string>("before");
    QTest::addColumn<std::string>("after");
    QTest::addColumn<std::string>("told");
    const auto row = [](char const *name, char const *before, char const *after, char const *told) {
        QTest::newRow(name) << std::string(before) << std::string(after) << std::string(told);
    };
    row("nothing", "1234", "1234", "");
    row("run in front", "1234", "xyz1234", "insert own 0-2, added x y z");
    row("run in the middle", "1234", "12xyz34", "insert own 2-4, added x y z");
    row("run at the end", "1234", "1234xyz", "insert own 4-6, added x y z");
    row("two runs", "1234", "x12yz34", "insert own 0, added x, insert own 3-4, added y z");
    row("replaced run", "12345", "1xy45",
        "insert own 1-2, added x y, move own 5-6 to 3, removed 3 2, remove own 5-6");
    row("run taken out", "123456", "1256", "move own 4-5 to 2, removed 4 3, remove own 4-5");
    row("end taken out", "1234", "12", "removed 4 3, remove own 2-3");
    row("run to the front", "123456", "451236", "move own 3-4 to 0");
    row("run to the end", "123456", "134562", "move own 2-5 to 1");
    row("reversed", "1234", "4321", "move own 3 to 0, move own 3 to 1, move own 3 to 2");
    row("all new", "12", "xyz", "insert own 0-2, added x y z, removed 2 1, remove own 3-4");
    row("run longer than what was left before", "12345678", "83456712",
        "move own 7 to 0, move own 3-7 to 1");
}

void tst_ObjectTreeModelUpdate::listChangesCostOneSignalARun()
{
    QFETCH(std::string, before);
    QFETCH(std::string, after);
    ListScene scene(before);
    QTEST(scene.become(after), "told");
    QCOMPARE(scene.names(), after);
}

void tst_ObjectTreeModelUpdate::equalValuesHaveTheirRows()
{
    ListScene scene("1");
    QCOMPARE(scene.become("11"), std::string("insert own 1, added 1"));
    QCOMPARE(scene.names(), std::string("11"));
    QVERIFY(scene.model->getObjRow(scene.at({0, 3, 0})).row !=
            scene.model->getObjRow(scene.at({0, 3, 1})).row);
}

void tst_ObjectTreeModelUpdate::equalValuesMatchInOrder()
{
    ListScene scene("1");
    scene.become("1213");
    const auto row = [&](int position) {
        return scene.model->getObjRow(scene.at({0, 3, position})).row;
    };
    auto *const first = row(0), *const second = row(2);
    QCOMPARE(scene.become("2311"), std::string("move own 1 to 0, move own 3 to 1"));
    QCOMPARE(row(2), first);
    QCOMPARE(row(3), second);
}

/// Before Qt hears of it, so that rows can be asked still.
void tst_ObjectTreeModelUpdate::removalIsToldWhileRowsAreThere()
{
    ListScene scene("1234");
    std::string asked, order;
    scene.model->sigRowsRemoved.connect([&](auto const &sigData) {
        order += 'o';
        for (auto const &row : *sigData.rows) {
            const QModelIndex index = scene.model->getIndex(row.row);
            Path path{PtrT<Object>()};
            asked += textOf(index) + (scene.model->getPath(index, path) ? textOf(path) : "") + ' ';
        }
    });
    QObject context;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsAboutToBeRemoved, &context,
                     [&] { order += 'q'; });
    QCOMPARE(scene.become("12"), std::string("removed 4 3, remove own 2-3"));
    QCOMPARE(asked, std::string("'4'a/own[3] '3'a/own[2] "));
    QCOMPARE(order, std::string("oq"));
}

void tst_ObjectTreeModelUpdate::subtreesGoFromTheBottom()
{
    Scene scene;
    scene.showFetched(6);
    Told told(*scene.model);
    scene.all().replace(0, 1, {});
    scene.model->update();
    QCOMPARE(
        told.take(),
        std::string("update, changed all, move all 1 to 0, changed own, changed all, changed next, "
                    "changed part, remove 'a' 0-3, removed a, remove back 0, remove 'b' 0, "
                    "removed b, remove all 1"));
}

void tst_ObjectTreeModelUpdate::objectsThatDieBecomeVoid()
{
    Scene scene;
    scene.showFetched(4);
    Told told(*scene.model);
    scene.part().set({});
    scene.b().reset();
    scene.model->update();
    QCOMPARE(scene.dump(3), std::string("'a'+\n.part+\n..void\n.next+\n..'c'\n"
                                        ".all+\n..void\n..'c'\n.own+\n..'d'\n..'e'\n"));
    QVERIFY(told.take().find("added") == std::string::npos);
}

void tst_ObjectTreeModelUpdate::rowsStayRowsWhenTheyMove()
{
    ListScene scene("1234");
    const QPersistentModelIndex four = scene.at({0, 3, 3});
    QCOMPARE(scene.become("4x123"), std::string("move own 3 to 0, insert own 1, added x"));
    QCOMPARE(four.row(), 0);
    QCOMPARE(four, QPersistentModelIndex(scene.at({0, 3, 0})));
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelUpdate)
#include "tst_ObjectTreeModelUpdate.moc"
