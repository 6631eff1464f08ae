#include "support/Things.h"
#include "zrVOMGUI/transfer/canDrop.h"

#include <QTest>

#include <stdexcept>

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;

namespace {

constexpr std::size_t beyond = 100;

std::vector<Qt::DropAction> const actions = {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction,
                                             Qt::IgnoreAction, Qt::TargetMoveAction};

RefT<Field> fieldNamed(RefT<Object> const &object, char const *name)
{
    return RefT<Field>(object->findField(name));
}

} // namespace

class tst_canDrop : public QObject {
    Q_OBJECT

private slots:
    void init();
    void emptyReferenceRefusesEveryAction();
    void valuesRefuseObjects();
    void singleLinkTakesOneObjectUnderEveryAction_data();
    void singleLinkTakesOneObjectUnderEveryAction();
    void singleLinkAsksItsListeners_data();
    void singleLinkAsksItsListeners();
    void listDecidesByTheAction_data();
    void listDecidesByTheAction();
    void listIsAskedForAnInsertionWithinItsEnds_data();
    void listIsAskedForAnInsertionWithinItsEnds();
    void moveIsRefusedBeyondTheEndAndIntoItself();
    void noObjectsAreLeftToTheList();
    void otherExceptionsRefuseAndAreReported();

private:
    bool takes(char const *name, Things const &objs, Qt::DropAction action = Qt::CopyAction,
               std::size_t index = 0)
    {
        return GUI::canDrop(action, objs, fieldNamed(house, name), index);
    }

    RefT<Object> house;
    Things things;
};

void tst_canDrop::init()
{
    things = makeThings("abc");
    house = makeThing("house");
    addField<FieldInt>(*house, "number", 1);
    addField<FieldReal>(*house, "size", 1.0);
    addField<FieldPtr>(*house, "watched");
    addField<FieldRef>(*house, "owned");
    addField<MFieldPtr>(*house, "watchedList", std::vector<PtrT<Object>>{things[2]});
    addField<MFieldRef>(*house, "ownedList", Things{things[2]});
}

void tst_canDrop::emptyReferenceRefusesEveryAction()
{
    for (Qt::DropAction action : actions)
        QVERIFY(!GUI::canDrop(action, {things[0]}, {}, 0));
}

void tst_canDrop::valuesRefuseObjects()
{
    for (char const *name : {"number", "size", "name"})
        QVERIFY2(!takes(name, {things[0]}), name);
}

void tst_canDrop::singleLinkTakesOneObjectUnderEveryAction_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("watching") << QByteArray("watched");
    QTest::newRow("owning") << QByteArray("owned");
}

void tst_canDrop::singleLinkTakesOneObjectUnderEveryAction()
{
    QFETCH(QByteArray, field);
    for (Qt::DropAction action : actions) {
        QVERIFY(takes(field, {things[0]}, action, beyond));
        QVERIFY(!takes(field, {things[0], things[1]}, action));
        QVERIFY(!takes(field, {}, action));
    }
    QVERIFY(!fieldOf<FieldRef>(house, "owned").get());
}

void tst_canDrop::singleLinkAsksItsListeners_data()
{
    singleLinkTakesOneObjectUnderEveryAction_data();
}

void tst_canDrop::singleLinkAsksItsListeners()
{
    QFETCH(QByteArray, field);
    const auto refuseA = [&](auto const &sigData) {
        if (sigData.value->get() == things[0].get())
            throw ErrorField(*house->findField("name"), "not a");
    };
    fieldOf<FieldPtr>(house, "watched").sigCanSet.connect(refuseA);
    fieldOf<FieldRef>(house, "owned").sigCanSet.connect(refuseA);
    QVERIFY(!takes(field, {things[0]}));
    QVERIFY(takes(field, {things[1]}));
}

void tst_canDrop::listDecidesByTheAction_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<int>("action");
    QTest::addColumn<bool>("takesIt");
    for (char const *field : {"watchedList", "ownedList"}) {
        const auto row = [&](char const *name, Qt::DropAction action, bool takesIt) {
            QTest::addRow("%s, %s", field, name) << QByteArray(field) << int(action) << takesIt;
        };
        row("copy", Qt::CopyAction, true);
        row("move", Qt::MoveAction, true);
        row("link", Qt::LinkAction, true);
        row("ignore", Qt::IgnoreAction, false);
        row("target move", Qt::TargetMoveAction, false);
    }
}

void tst_canDrop::listDecidesByTheAction()
{
    QFETCH(QByteArray, field);
    QFETCH(int, action);
    QTEST(takes(field, {things[0], things[1]}, Qt::DropAction(action), 1), "takesIt");
}

void tst_canDrop::listIsAskedForAnInsertionWithinItsEnds_data()
{
    QTest::addColumn<std::size_t>("index");
    QTest::addColumn<std::size_t>("asked");
    QTest::newRow("before the first") << std::size_t(0) << std::size_t(0);
    QTest::newRow("behind the last") << std::size_t(1) << std::size_t(1);
    QTest::newRow("beyond the end") << beyond << std::size_t(1);
    QTest::newRow("no position") << std::size_t(-1) << std::size_t(1);
}

void tst_canDrop::listIsAskedForAnInsertionWithinItsEnds()
{
    QFETCH(std::size_t, index);
    std::size_t askedIndex = beyond, numRemoved = beyond, numValues = 0;
    fieldOf<MFieldPtr>(house, "watchedList").sigCanReplace.connect([&](auto const &sigData) {
        askedIndex = sigData.index;
        numRemoved = sigData.numRemoved;
        numValues = sigData.values->size();
    });
    for (Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction}) {
        QVERIFY(takes("watchedList", {things[0], things[1]}, action, index));
        QTEST(askedIndex, "asked");
        QCOMPARE(numRemoved, std::size_t(0));
        QCOMPARE(numValues, std::size_t(2));
    }
}

void tst_canDrop::moveIsRefusedBeyondTheEndAndIntoItself()
{
    QVERIFY(takes("ownedList", {things[0]}, Qt::MoveAction, 1));
    QVERIFY(!takes("ownedList", {things[0]}, Qt::MoveAction, 2));
    QVERIFY(!takes("ownedList", {house}, Qt::MoveAction, 0));
    QVERIFY(takes("ownedList", {house}, Qt::LinkAction, 0));
}

void tst_canDrop::noObjectsAreLeftToTheList()
{
    QVERIFY(takes("ownedList", {}));
    fieldOf<MFieldRef>(house, "ownedList").sigCanReplace.connect([&](auto const &) {
        throw ErrorField(*house->findField("name"), "no");
    });
    QVERIFY(!takes("ownedList", {}));
}

void tst_canDrop::otherExceptionsRefuseAndAreReported()
{
    QString report;
    const auto before = ZR::setErrorSink([&](std::string const &where, std::string const &what) {
        report = QString::fromStdString(where + ": " + what);
    });
    fieldOf<FieldPtr>(house, "watched").sigCanSet.connect([](auto const &) {
        throw std::runtime_error("broken");
    });
    const bool takesIt = takes("watched", {things[0]});
    ZR::setErrorSink(before);
    QVERIFY(!takesIt);
    QCOMPARE(report, QString("ZR::VOM::GUI::canDrop: broken"));
}

QTEST_MAIN(tst_canDrop)
#include "tst_canDrop.moc"
