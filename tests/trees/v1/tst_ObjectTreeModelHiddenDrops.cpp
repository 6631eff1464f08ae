#include "trees/v1/ModelDropScene.h"

#include <limits>

using namespace model_test;

/// Drops between the values of an object, while the fields are hidden.
class tst_ObjectTreeModelHiddenDrops : public QObject {
    Q_OBJECT

private slots:
    void hiddenFieldsNeedTheHost();
    void hiddenPlacesBecomeFields_data();
    void hiddenPlacesBecomeFields();
    void hiddenOntoTriesEachField();
    void hiddenRefusedFieldsAreLeftOut();
    void fieldsWithoutRowsTakeNone();
    void hostMayDestroyWhatItIsAsked();
};

namespace {

/// Says that it holds a link.
class Liar : public FieldInt {
public:
    using FieldInt::FieldInt;
    int getType() const override { return 5; }
};

} // namespace

void tst_ObjectTreeModelHiddenDrops::hiddenFieldsNeedTheHost()
{
    DropScene scene;
    scene.model->hideFields(true);
    const Payload payload(makeThings("x"));
    QVERIFY(!scene.canDrop(payload.mime.get(), scene.at({0}), 5));
    QVERIFY(!scene.drop(payload.mime.get(), scene.at({0}), 5));
    QVERIFY(scene.drops.empty());
    scene.askHost("own");
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0}), 5));
    QCOMPARE(scene.drops.at(0).place(), std::string("a 5: a/own 1"));
}

void tst_ObjectTreeModelHiddenDrops::hiddenPlacesBecomeFields_data()
{
    // The values: part 0, next 1, all 2 and 3, own 4 and 5.
    QTest::addColumn<int>("row");
    QTest::addColumn<std::string>("allowed");
    QTest::addColumn<std::string>("asked");
    const auto row = [](char const *name, int at, char const *allowed, char const *asked) {
        QTest::newRow(name) << at << std::string(allowed) << std::string(asked);
    };
    row("before all", 0, "part", "a 0: a/part 0; ");
    row("before all, refused", 0, "", "a 0: a/part 0; ");
    row("seam, end of the first", 1, "part", "a 1: a/part 1; ");
    row("seam, start of the second", 1, "next", "a 1: a/part 1; a 1: a/next 0; ");
    row("seam of a link and a list", 2, "all", "a 2: a/next 1; a 2: a/all 0; ");
    row("inside a list", 3, "all", "a 3: a/all 1; ");
    row("inside a list, refused", 3, "own", "a 3: a/all 1; ");
    row("seam of two lists", 4, "own", "a 4: a/all 2; a 4: a/own 0; ");
    row("behind all", 6, "own", "a 6: a/own 2; ");
    row("beyond all", 7, "own", "");
}

void tst_ObjectTreeModelHiddenDrops::hiddenPlacesBecomeFields()
{
    QFETCH(int, row);
    QFETCH(std::string, allowed);
    QFETCH(std::string, asked);
    DropScene scene;
    scene.model->hideFields(true);
    scene.askHost(allowed);
    const Payload payload(makeThings("x"));
    const auto take = [&] {
        std::string all;
        for (std::string const &question : std::exchange(scene.asked, {}))
            all += question + "; ";
        return all;
    };
    const bool isAllowed =
        !allowed.empty() && asked.find("a/" + allowed + ' ') != std::string::npos;
    QCOMPARE(scene.canDrop(payload.mime.get(), scene.at({0}), row), isAllowed);
    QCOMPARE(take(), asked);
    QCOMPARE(scene.drop(payload.mime.get(), scene.at({0}), row), isAllowed);
    QCOMPARE(take(), asked);
    QCOMPARE(scene.drops.size(), std::size_t(isAllowed));
    if (isAllowed)
        QCOMPARE(scene.drops[0].fieldPath, "a/" + allowed);
}

void tst_ObjectTreeModelHiddenDrops::hiddenOntoTriesEachField()
{
    DropScene scene;
    scene.model->hideFields(true);
    scene.askHost("all");
    const Payload payload(makeThings("x"));
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0}), -1));
    QCOMPARE(scene.asked,
             (std::vector<std::string>{"a -1: a/part -1", "a -1: a/next -1", "a -1: a/all -1"}));
    QCOMPARE(scene.drops.at(0).index, std::numeric_limits<std::uint64_t>::max());
}

void tst_ObjectTreeModelHiddenDrops::hiddenRefusedFieldsAreLeftOut()
{
    DropScene scene;
    scene.model->addAcceptedField("", "all");
    scene.model->addAcceptedField("", "own");
    scene.model->hideFields(true);
    scene.askHost("own");
    const Payload payload(makeThings("x"));
    QVERIFY(scene.drop(payload.mime.get(), scene.at({0}), 3));
    QCOMPARE(scene.asked, std::vector<std::string>{"a 3: a/own 1"});
}

void tst_ObjectTreeModelHiddenDrops::fieldsWithoutRowsTakeNone()
{
    const RefT<Object> thing = makeThing("t");
    addField<Liar>(*thing, "liar");
    addField<FieldPtr>(*thing, "link");
    DropScene scene;
    scene.model->addRow(PtrT<Object>(thing), 0);
    scene.model->hideFields(true);
    scene.askHost("");
    const Payload payload(makeThings("x"));
    QVERIFY(!scene.canDrop(payload.mime.get(), scene.at({0}), -1));
    QCOMPARE(scene.asked, std::vector<std::string>{"t -1: t/link -1"});
}

void tst_ObjectTreeModelHiddenDrops::hostMayDestroyWhatItIsAsked()
{
    DropScene scene;
    scene.model->hideFields(true);
    const Payload payload(makeThings("x"));
    int numAsked = 0;
    scene.model->sigCanDrop.connect([&](auto const &) {
        ++numAsked;
        scene.a().reset();
        scene.model->update();
    });
    QVERIFY(!scene.canDrop(payload.mime.get(), scene.at({0}), -1));
    QCOMPARE(numAsked, 1);
    QCOMPARE(scene.dump(), std::string());
}

QTEST_GUILESS_MAIN(tst_ObjectTreeModelHiddenDrops)
#include "tst_ObjectTreeModelHiddenDrops.moc"
