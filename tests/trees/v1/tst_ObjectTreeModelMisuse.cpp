#include "support/RandomModel.h"
#include "trees/v1/ModelScene.h"

#include <functional>
#include <stdexcept>

Q_DECLARE_METATYPE(std::function<void(model_test::Scene &)>)

using namespace model_test;

namespace {

using Deed = std::function<void(Scene &)>;

/// Does a deed at the first of a kind of signal, and lets the model follow.
struct Meddler {
    Meddler(Scene &meddledScene, std::string const &at, Deed newDeed)
        : scene(meddledScene)
        , deed(std::move(newDeed))
    {
        using Model = QAbstractItemModel;
        ObjectTreeModel &model = *scene.model;
        const auto run = [this] { meddle(); };
        if (at == "dataChanged")
            QObject::connect(&model, &Model::dataChanged, &context, run);
        else if (at == "rowsAboutToBeInserted")
            QObject::connect(&model, &Model::rowsAboutToBeInserted, &context, run);
        else if (at == "rowsInserted")
            QObject::connect(&model, &Model::rowsInserted, &context, run);
        else if (at == "rowsAboutToBeRemoved")
            QObject::connect(&model, &Model::rowsAboutToBeRemoved, &context, run);
        else if (at == "rowsRemoved")
            QObject::connect(&model, &Model::rowsRemoved, &context, run);
        else if (at == "rowsAboutToBeMoved")
            QObject::connect(&model, &Model::rowsAboutToBeMoved, &context, run);
        else if (at == "rowsMoved")
            QObject::connect(&model, &Model::rowsMoved, &context, run);
        else if (at == "sigRowsAdded")
            model.sigRowsAdded.connect([this](auto const &) { meddle(); });
        else if (at == "sigRowsRemoved")
            model.sigRowsRemoved.connect([this](auto const &) { meddle(); });
        else if (at == "sigUpdate")
            model.sigUpdate.connect([this](auto const &) { meddle(); });
    }

    bool hasMeddled = false;

private:
    void meddle()
    {
        if (!std::exchange(hasMeddled, true))
            deed(scene);
    }

    Scene &scene;
    const Deed deed;
    QObject context;
};

/// Changes that bring every kind of signal.
void editAll(Scene &scene)
{
    // A slot may drop any of them.
    const RefT<MFieldRef> ownList(scene.own());
    const RefT<MFieldPtr> allList(scene.all());
    const RefT<FieldPtr> nextLink(scene.next());
    const RefT<Object> last = scene.e();
    const Things own = ownList->getAll();
    ownList->replace(0, 2, {own[1], makeThing("x"), own[0]});
    allList->replace(0, allList->getNum(), {PtrT<Object>(last)});
    nextLink->set(PtrT<Object>(last));
}

/// Until nothing is marked; false if that has no end.
bool settle(ObjectTreeModel &model)
{
    bool isMarked = false;
    auto connection = model.sigUpdate.connect([&](auto const &) { isMarked = true; });
    for (int i = 0; i < 10; ++i) {
        isMarked = false;
        model.update();
        if (!isMarked)
            break;
    }
    connection.disconnect();
    return !isMarked;
}

} // namespace

/// Slots that do what they shouldn't, and things that go when they shouldn't.
class tst_ObjectTreeModelMisuse : public QObject {
    Q_OBJECT

private slots:
    void slotsMayDoAnything_data();
    void slotsMayDoAnything();
    void slotsMayDestroyTheModel_data();
    void slotsMayDestroyTheModel();
    void slotThatEditsForEverEnds();
    void synchronousUpdateIsAllowed();
    void synchronousUpdateHasAnEnd_data();
    void synchronousUpdateHasAnEnd();
    void marksInsideTheNewsOfMarksAreTold();
    void busyRowIsMarkedOnceItIsDone();
    void marksBetweenTwoSignalsAreToldAfterThem();
    void updateInsideUpdateReturns();
    void listenersThatRaiseAreReported();
    void everythingDiesBetweenMarkAndUpdate();
    void updateBeforeAFieldHasGone();
    void rowsMayLeaveWhileAllFollow_data();
    void rowsMayLeaveWhileAllFollow();
    void objectsOutliveTheModel();
    void deepTreesComeAndGo();
    void fieldsThatLieAreLeftOut();
    void randomSlots_data();
    void randomSlots();
};

void tst_ObjectTreeModelMisuse::slotsMayDoAnything_data()
{
    QTest::addColumn<std::string>("at");
    QTest::addColumn<Deed>("deed");
    std::pair<char const *, Deed> const deeds[] = {
        {"edits the list",
         [](Scene &s) { s.own().replace(0, s.own().getNum(), makeThings("uvw")); }},
        {"empties the lists",
         [](Scene &s) {
             s.own().replace(0, s.own().getNum(), {});
             s.all().replace(0, s.all().getNum(), {});
         }},
        {"removes fields",
         [](Scene &s) {
             while (s.a()->getNumFields() > 1)
                 removeField(*s.a(), *s.a()->getField(1));
         }},
        {"adds a field", [](Scene &s) { addField<MFieldRef>(*s.a(), "more", makeThings("mn")); }},
        {"drops values",
         [](Scene &s) {
             for (std::size_t i = 1; i < s.things.size(); ++i)
                 s.things[i].reset();
         }},
        {"drops all", [](Scene &s) { s.things.clear(); }},
        {"clears", [](Scene &s) { s.model->clear(); }},
        {"clears and shows",
         [](Scene &s) {
             s.model->clear();
             s.show();
         }},
        {"adds a top row", [](Scene &s) { s.model->addRow(PtrT<Object>(s.things.back()), 0); }},
        {"hides fields", [](Scene &s) { s.model->hideFields(true); }},
        {"filters", [](Scene &s) { s.model->addAcceptedField("", "own"); }},
        {"fetches", [](Scene &s) { GUI::fetchRows(*s.model, s.top(), 5); }},
        {"fetches again",
         [](Scene &s) {
             for (QModelIndex const &index : {s.top(), s.at({0}), s.at({0, 3}), QModelIndex()})
                 s.model->fetchMore(index);
         }},
        {"updates", [](Scene &s) { s.model->update(); }},
        {"makes an index", [](Scene &s) { s.model->makeIndex(s.path("own", 0), true); }},
    };
    for (char const *at : {"dataChanged", "rowsAboutToBeInserted", "rowsInserted",
                           "rowsAboutToBeRemoved", "rowsRemoved", "rowsAboutToBeMoved", "rowsMoved",
                           "sigRowsAdded", "sigRowsRemoved", "sigUpdate"})
        for (auto const &[name, deed] : deeds)
            QTest::addRow("%s %s", at, name) << std::string(at) << deed;
}

void tst_ObjectTreeModelMisuse::slotsMayDoAnything()
{
    QFETCH(std::string, at);
    QFETCH(Deed, deed);
    Scene scene;
    const RefT<Object> keeper = scene.e();
    scene.showFetched(4);
    Meddler meddler(scene, at, deed);
    editAll(scene);
    QVERIFY(settle(*scene.model));
    QVERIFY(meddler.hasMeddled);
    QVERIFY(settle(*scene.model));

    // What it shows now is what a new model shows.
    std::vector<PtrT<Object>> tops;
    for (int row = 0; row < scene.model->rowCount(scene.top()); ++row)
        tops.push_back(scene.model->getObjRow(scene.at({row})).obj);
    Scene fresh;
    fresh.model->hideFields(scene.model->isHideFields());
    if (QByteArray(QTest::currentDataTag()).contains("filters"))
        fresh.model->addAcceptedField("", "own");
    fresh.model->addRows(tops, 0);
    for (Scene *const each : {&scene, &fresh})
        GUI::fetchRows(*each->model, each->top(), 3);
    QCOMPARE(scene.dump(3), fresh.dump(3));
}

void tst_ObjectTreeModelMisuse::slotsMayDestroyTheModel_data()
{
    QTest::addColumn<std::string>("at");
    for (char const *at : {"dataChanged", "rowsInserted", "rowsRemoved", "rowsMoved",
                           "sigRowsAdded", "sigRowsRemoved", "sigUpdate"})
        QTest::addRow("%s", at) << std::string(at);
}

void tst_ObjectTreeModelMisuse::slotsMayDestroyTheModel()
{
    QFETCH(std::string, at);
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->hideFields(hideFields);
        scene.showFetched(4);
        ObjectTreeModel *const model = scene.model.get();
        Meddler meddler(scene, at, [](Scene &s) { s.model.reset(); });
        // Counts of closed rows change, too.
        fieldOf<FieldPtr>(scene.b(), "back").set({});
        addField<FieldPtr>(*scene.c(), "x");
        if (scene.model)
            editAll(scene);
        if (scene.model)
            model->update();
        QVERIFY(meddler.hasMeddled);
        QVERIFY(!scene.model);
    }
}

void tst_ObjectTreeModelMisuse::slotThatEditsForEverEnds()
{
    Scene scene;
    scene.showFetched(3);
    int numEdits = 0, numUpdates = 0;
    QObject context;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsInserted, &context, [&] {
        ++numEdits;
        scene.own().replace(0, 0, makeThings("x"));
    });
    scene.own().replace(0, 0, makeThings("y"));
    auto connection = scene.model->sigUpdate.connect([&](auto const &) { ++numUpdates; });
    scene.model->update();
    QVERIFY(numEdits > 0 && numEdits < 100);
    // The rest is for the next time.
    QCOMPARE(numUpdates, 1);
    context.disconnect();
    QObject::disconnect(scene.model.get(), nullptr, &context, nullptr);
    scene.model->update();
    QCOMPARE(numUpdates, 1);
    QCOMPARE(std::size_t(scene.model->rowCount(scene.at({0, 3}))), scene.own().getNum());
}

void tst_ObjectTreeModelMisuse::synchronousUpdateIsAllowed()
{
    Scene scene;
    scene.showFetched(3);
    scene.model->sigUpdate.connect([&](auto const &) { scene.model->update(); });
    scene.own().replace(0, 0, makeThings("x"));
    QCOMPARE(scene.model->rowCount(scene.at({0, 3})), 3);
    scene.own().replace(0, 0, makeThings("y"));
    QCOMPARE(scene.model->rowCount(scene.at({0, 3})), 4);
}

void tst_ObjectTreeModelMisuse::synchronousUpdateHasAnEnd_data()
{
    QTest::addColumn<Deed>("start");
    QTest::newRow("adding a row") << Deed([](Scene &s) { s.model->addRow({}, 0); });
    QTest::newRow("fetching") << Deed([](Scene &s) { s.model->fetchMore(s.at({0, 3})); });
    QTest::newRow("hiding fields") << Deed([](Scene &s) { s.model->hideFields(true); });
    QTest::newRow("making an index")
        << Deed([](Scene &s) { s.model->makeIndex(s.path("own", 0), true); });
    QTest::newRow("an update") << Deed([](Scene &s) {
        s.model->fetchMore(s.at({0, 3}));
        s.own().replace(0, 0, makeThings("x"));
    });
}

/// A host that updates at once, and answers each row by a change.
void tst_ObjectTreeModelMisuse::synchronousUpdateHasAnEnd()
{
    QFETCH(Deed, start);
    Scene scene;
    scene.showFetched(2);
    int numAdded = 0, depth = 0, maxDepth = 0;
    scene.model->sigUpdate.connect([&](auto const &) {
        maxDepth = std::max(maxDepth, ++depth);
        if (maxDepth < 100)
            scene.model->update();
        --depth;
    });
    scene.model->sigRowsAdded.connect([&](auto const &) {
        if (++numAdded > 200)
            return;
        scene.model->addRow(PtrT<Object>(scene.e()), 0);
        scene.own().replace(0, 0, makeThings("y"));
    });
    start(scene);
    QVERIFY(numAdded > 0 && numAdded < 200);
    // What is left comes without another call of the host's.
    QTRY_VERIFY(numAdded > 200);
    QTest::qWait(20);
    QCOMPARE(maxDepth, 1);
    Told told(*scene.model);
    scene.model->update();
    QCOMPARE(told.take(), std::string());
}

/// By the event loop, so that there is an end.
void tst_ObjectTreeModelMisuse::marksInsideTheNewsOfMarksAreTold()
{
    Scene scene;
    scene.showFetched(3);
    int numUpdates = 0;
    scene.model->sigUpdate.connect([&](auto const &) {
        scene.model->update();
        if (++numUpdates <= 10)
            scene.own().replace(0, 0, makeThings("x"));
    });
    scene.own().replace(0, 0, makeThings("x"));
    QCOMPARE(numUpdates, 1);
    QTRY_COMPARE(numUpdates, 11);
    QCOMPARE(scene.model->rowCount(scene.at({0, 3})), 13);
}

/// An update that comes before leaves nothing that would have to be told again and again.
void tst_ObjectTreeModelMisuse::busyRowIsMarkedOnceItIsDone()
{
    Scene scene;
    int numUpdates = 0, numInSlot = -1;
    scene.model->sigUpdate.connect([&](auto const &) { ++numUpdates; });
    scene.model->sigRowsAdded.connect([&](auto const &) {
        if (numInSlot >= 0)
            return;
        scene.model->addRow(PtrT<Object>(scene.b()), 1);
        for (int i = 0; i < 10; ++i)
            scene.model->update();
        numInSlot = numUpdates;
    });
    scene.show();
    QCOMPARE(numInSlot, 0);
    QCOMPARE(numUpdates, 1);
    scene.model->update();
    QCOMPARE(numUpdates, 1);
    QCOMPARE(scene.dump(1), std::string("'a'+\n'b'+\n"));
}

void tst_ObjectTreeModelMisuse::marksBetweenTwoSignalsAreToldAfterThem()
{
    Scene scene;
    scene.showFetched(3);
    int numUpdates = 0, numInSlot = -1;
    scene.model->sigUpdate.connect([&](auto const &) { ++numUpdates; });
    QObject context;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsAboutToBeInserted, &context, [&] {
        if (numInSlot >= 0)
            return;
        scene.next().set(PtrT<Object>(scene.d()));
        for (int i = 0; i < 10; ++i)
            scene.model->update();
        numInSlot = numUpdates;
    });
    scene.model->addRow(PtrT<Object>(scene.b()), 1);
    QCOMPARE(numInSlot, 0);
    QCOMPARE(numUpdates, 1);
    scene.model->update();
    QCOMPARE(numUpdates, 1);
    QCOMPARE(scene.dump(scene.at({0, 1})), std::string("'d'\n"));
}

void tst_ObjectTreeModelMisuse::updateInsideUpdateReturns()
{
    Scene scene;
    scene.showFetched(3);
    QObject context;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsInserted, &context,
                     [&] { scene.model->update(); });
    scene.own().replace(0, 0, makeThings("x"));
    scene.all().replace(0, 0, {PtrT<Object>(scene.e())});
    scene.model->update();
    QCOMPARE(scene.model->rowCount(scene.at({0, 3})), 3);
    QCOMPARE(scene.model->rowCount(scene.at({0, 2})), 3);
}

void tst_ObjectTreeModelMisuse::listenersThatRaiseAreReported()
{
    Scene scene;
    scene.showFetched(3);
    const auto raise = [](auto const &) { throw std::runtime_error("no"); };
    scene.model->sigRowsAdded.connect(raise);
    scene.model->sigRowsRemoved.connect(raise);
    scene.model->sigUpdate.connect(raise);
    scene.model->sigClear.connect(raise);
    const GUI::Reports reports;
    const std::string where = "ZR::VOM::GUI::V1::ObjectTreeModel::";
    scene.own().replace(0, 1, makeThings("x"));
    scene.model->update();
    scene.model->clear();
    QCOMPARE(reports.texts,
             (std::vector<std::string>{where + "requestUpdate: no", where + "insertRows: no",
                                       where + "setChildCount: no", where + "clear: no"}));
    QCOMPARE(scene.dump(), std::string());
}

void tst_ObjectTreeModelMisuse::everythingDiesBetweenMarkAndUpdate()
{
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->hideFields(hideFields);
        const RefT<Object> top = makeThing("top");
        addField<FieldPtr>(*top, "a", PtrT<Object>(scene.a()));
        scene.model->addRow(PtrT<Object>(top), 0);
        GUI::fetchRows(*scene.model, scene.top(), 6);
        editAll(scene);
        removeField(*scene.a(), scene.all());
        scene.things.clear();
        // Rows of dead fields and objects are asked before they are updated.
        QVERIFY(!scene.dump().empty());
        scene.model->update();
        QCOMPARE(scene.dump(),
                 std::string(hideFields ? "'top'+\n.void\n" : "'top'+\n.a+\n..void\n"));
    }
}

void tst_ObjectTreeModelMisuse::updateBeforeAFieldHasGone()
{
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->addAcceptedField("", "next");
        scene.model->addAcceptedField("", "own");
        scene.model->hideFields(hideFields);
        scene.showFetched(3);
        scene.a()->sigRemoveField.connect([&](auto const &) { scene.model->update(); });
        const RefT<Field> own(scene.own());
        removeField(*scene.a(), *own);
        const std::string rest = hideFields ? "'a'+\n.'c'\n" : "'a'+\n.next+\n..'c'\n";
        QCOMPARE(scene.dump(), rest);
        scene.model->update();
        QCOMPARE(scene.dump(), rest);
        addField<MFieldRef>(*scene.a(), "own", Things{});
        scene.model->update();
        QCOMPARE(scene.dump(), hideFields ? rest : rest + ".own\n");
    }
}

void tst_ObjectTreeModelMisuse::rowsMayLeaveWhileAllFollow_data()
{
    QTest::addColumn<Deed>("setting");
    QTest::addColumn<std::string>("rows");
    QTest::newRow("hide fields") << Deed([](Scene &s) { s.model->hideFields(true); })
                                 << std::string("'p'+\n.'p'+\n.'q'+\n'q'+\n.'p'+\n.'q'+\n");
    QTest::newRow("accept one more")
        << Deed([](Scene &s) { s.model->addAcceptedField("", "more"); })
        << std::string("'p'+\n.more+\n'q'+\n.more+\n");
}

/// An earlier sibling of rows that are still to follow.
void tst_ObjectTreeModelMisuse::rowsMayLeaveWhileAllFollow()
{
    QFETCH(Deed, setting);
    QFETCH(std::string, rows);
    Scene scene;
    RefT<Object> first = makeThing("z");
    const Things both = makeThings("pq");
    for (RefT<Object> const &each : both) {
        addField<MFieldPtr>(*each, "list", MFieldPtr::Values{both[0], both[1]});
        if (QByteArray(QTest::currentDataTag()) == "accept one more")
            addField<MFieldPtr>(*each, "more", MFieldPtr::Values{both[0], both[1]});
    }
    scene.model->addRows({PtrT<Object>(first), PtrT<Object>(both[0]), PtrT<Object>(both[1])}, 0);
    GUI::fetchRows(*scene.model, scene.top(), 2);
    const auto kill = [&] { first.reset(); };
    QObject context;
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsInserted, &context, kill);
    QObject::connect(scene.model.get(), &QAbstractItemModel::rowsRemoved, &context, kill);
    setting(scene);
    scene.model->update();
    QVERIFY(!first);
    QCOMPARE(scene.dump(2), rows);
}

void tst_ObjectTreeModelMisuse::objectsOutliveTheModel()
{
    Scene scene;
    scene.model->hideFields(true);
    scene.showFetched(4);
    scene.model.reset();
    editAll(scene);
    fieldOf<FieldString>(scene.a(), "name").set("A");
    addField<FieldPtr>(*scene.a(), "x");
    removeField(*scene.a(), scene.own());
    scene.things.clear();
}

void tst_ObjectTreeModelMisuse::deepTreesComeAndGo()
{
    constexpr int depth = 100000;
    Things chain;
    chain.push_back(makeThing("0"));
    for (int i = 1; i < depth; ++i) {
        chain.push_back(makeThing("n"));
        addField<FieldPtr>(*chain[chain.size() - 2], "next", PtrT<Object>(chain.back()));
    }
    ObjectTreeModel model;
    model.hideFields(true);
    const auto open = [&] {
        model.addRow(PtrT<Object>(chain[0]), 0);
        QModelIndex index = model.index(0, 0, model.index(0, 0));
        int num = 1;
        for (; model.canFetchMore(index); ++num) {
            model.fetchMore(index);
            index = model.index(0, 0, index);
        }
        return num;
    };
    QCOMPARE(open(), depth);
    // The last one's mark travels all the way.
    int numUpdates = 0;
    model.sigUpdate.connect([&](auto const &) { ++numUpdates; });
    fieldOf<FieldPtr>(chain[depth - 2], "next").set({});
    QCOMPARE(numUpdates, 1);
    model.update();
    model.addAcceptedField("", "next");
    // Taken down from the bottom, reset, and destroyed.
    fieldOf<FieldPtr>(chain[0], "next").set({});
    model.update();
    model.clear();
    fieldOf<FieldPtr>(chain[0], "next").set(PtrT<Object>(chain[1]));
    QCOMPARE(open(), depth);
    model.clear();
    QCOMPARE(open(), depth);
}

namespace {

/// Says that it holds a link.
class Liar : public FieldInt {
public:
    using FieldInt::FieldInt;
    int getType() const override { return 5; }
};

} // namespace

void tst_ObjectTreeModelMisuse::fieldsThatLieAreLeftOut()
{
    const RefT<Object> thing = makeThing("t");
    addField<Liar>(*thing, "liar");
    addField<FieldPtr>(*thing, "link");
    for (bool hideFields : {false, true}) {
        Scene scene;
        scene.model->hideFields(hideFields);
        scene.model->addRow(PtrT<Object>(thing), 0);
        GUI::fetchRows(*scene.model, scene.top(), 2);
        QCOMPARE(scene.dump(), std::string(hideFields ? "'t'+\n.void\n" : "'t'+\n.link+\n"));
    }
}

void tst_ObjectTreeModelMisuse::randomSlots_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 40; ++seed)
        QTest::addRow("%u", seed) << seed;
}

/// Every signal of the model may lead to an edit, a fetch or a change of settings.
void tst_ObjectTreeModelMisuse::randomSlots()
{
    QFETCH(unsigned, seed);
    RandomModel objects(seed);
    const Things tops{objects.objs[0], objects.objs[1]};
    const auto makeModel = [&] {
        auto model = std::make_unique<ObjectTreeModel>();
        model->setFieldName("name");
        model->addRows({tops.begin(), tops.end()}, 0);
        return model;
    };
    const auto model = makeModel();
    int budget = 0;
    const auto meddle = [&] {
        if (budget <= 0 || objects.below(3) != 0)
            return;
        --budget;
        switch (objects.below(8)) {
        case 0:
            model->hideFields(!model->isHideFields());
            break;
        case 1:
            GUI::fetchRows(*model, model->index(0, 0), 3);
            break;
        case 2:
            model->update();
            break;
        case 3:
            model->clear();
            model->addRows({tops.begin(), tops.end()}, 0);
            break;
        default:
            objects.edit();
        }
    };
    QObject context;
    using Model = QAbstractItemModel;
    const auto connect = [&](auto qtSignal) {
        QObject::connect(model.get(), qtSignal, &context, meddle);
    };
    connect(&Model::dataChanged);
    connect(&Model::rowsInserted);
    connect(&Model::rowsRemoved);
    connect(&Model::rowsMoved);
    connect(&Model::rowsAboutToBeInserted);
    connect(&Model::rowsAboutToBeRemoved);
    connect(&Model::rowsAboutToBeMoved);
    model->sigRowsAdded.connect([&](auto const &) { meddle(); });
    model->sigRowsRemoved.connect([&](auto const &) { meddle(); });
    model->sigUpdate.connect([&](auto const &) { meddle(); });
    const auto dump = [](ObjectTreeModel &dumped) {
        GUI::fetchRows(dumped, dumped.index(0, 0), 4);
        return GUI::dumpRows(dumped, dumped.index(0, 0), 4);
    };
    for (int step = 0; step < 30; ++step) {
        budget = 5;
        objects.edit();
        GUI::fetchRows(*model, model->index(0, 0), 4);
        model->update();
        budget = 0;
        QVERIFY(settle(*model));
        const auto fresh = makeModel();
        fresh->hideFields(model->isHideFields());
        const std::string is = dump(*model), shouldBe = dump(*fresh);
        QVERIFY2(is == shouldBe, (is + "instead of\n" + shouldBe).c_str());
    }
    context.disconnect();
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelMisuse)
#include "tst_ObjectTreeModelMisuse.moc"
