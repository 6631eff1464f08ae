#include "support/ErrorReports.h"
#include "support/Things.h"
#include "zrVOMGUI/widgets/FieldWidgets.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <type_traits>

using namespace ZR::VOM;
using namespace ZR::VOM::GUI;
using ZR::PtrT;
using ZR::RefT;
using ObjPtrs = std::vector<PtrT<Object>>;
using Manager = FieldManagerT<FieldReal>;

static_assert(!std::is_default_constructible_v<ObjsManager>, "only as a base");
static_assert(!std::is_destructible_v<ObjsManager>, "only as a base");
static_assert(!std::is_copy_assignable_v<Manager>, "a list isn't handed on by assignment");
static_assert(std::is_same_v<Manager::Value, double>, "");

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

RefT<Object> makeSized(double size)
{
    RefT<Object> object(new Thing);
    addField<FieldReal>(*object, "size", size);
    return object;
}

Things makeSizeds(std::initializer_list<double> sizes)
{
    Things objects;
    for (double size : sizes)
        objects.push_back(makeSized(size));
    return objects;
}

FieldReal &sizeOf(RefT<Object> const &object)
{
    return fieldOf<FieldReal>(object, "size");
}

ObjPtrs watched(Things const &objects)
{
    return {objects.begin(), objects.end()};
}

/// Raises an error wherever the value is set.
void refuse(RefT<Object> const &object)
{
    sizeOf(object).sigCanSet.connect([](auto const &) { throw ZR::Error("no"); });
}

/// Tells each update as "COUNT VALUE", with a tilde where it is mixed.
class Log {
public:
    explicit Log(Manager &manager)
    {
        manager.sigModify.connect([this](auto const &found) {
            texts << QString("%1%2 %3")
                         .arg(found.mixed ? "~" : "")
                         .arg(found.count)
                         .arg(*found.value);
        });
    }
    QString take() { return std::exchange(texts, {}).join(", "); }

private:
    QStringList texts;
};

/// What an update finds, by looking at one object after the other.
QString lookAtAll(ObjPtrs const &list)
{
    unsigned count = 0;
    bool mixed = false;
    double value = 0;
    for (PtrT<Object> const &object : list) {
        auto *const field = object ? ZR::cast<FieldReal>(object->findField("size")) : nullptr;
        if (!field)
            continue;
        if (count++ == 0)
            value = field->get();
        else if (field->get() != value)
            mixed = true;
    }
    return QString("%1%2 %3").arg(mixed ? "~" : "").arg(count).arg(value);
}

/// Counts how often values are compared.
struct Counted {
    int number = 0;
    bool operator==(Counted const &other) const
    {
        ++numComparisons;
        return number == other.number;
    }
    static inline std::size_t numComparisons = 0;
};
using FieldCounted = FieldT<FieldTypeT<99, Counted, Counted &, Counted const &, Counted>>;

/// A manager of the field "size" on objects, bound, with its log.
struct Bound {
    explicit Bound(Things const &objects)
    {
        manager.setObjs(watched(objects));
        manager.setField("size");
        manager.bindObjs();
        log.take();
    }

    Manager manager;
    Log log{manager};
};

/// What is called on an ObjsManager.
class ListUser : public ObjsManager {
public:
    ListUser() = default;
    explicit ListUser(ObjPtrs &objs)
        : ObjsManager(objs)
    {
    }
    explicit ListUser(ObjsManager &other)
        : ObjsManager(other)
    {
    }
    int numTold = 0;

protected:
    void onSetObjs() override { ++numTold; }
};

} // namespace

class tst_FieldManager : public QObject {
    Q_OBJECT

private slots:
    void ownListIsReplaced();
    void ownListTakesItself();
    void outsideListIsntChangedByManagers();
    void sharedListIsOne();
    void sharedListOutlivesItsFirstManager();
    void sharedOutsideListIsTheSame();

    void newManagerIsntBoundAndFindsNothing();
    void updateTellsOfAgreement_data();
    void updateTellsOfAgreement();
    void unboundManagerFindsNothing();
    void bindingWaitsForListAndName();
    void bindingTwiceDoesNothing();
    void fieldOfAnotherClassCountsAsAbsent();
    void firstFieldOfTheNameCounts();
    void sameObjectTwiceCountsTwice();
    void nullEntriesAreAbsent();

    void eachChangeIsOneUpdate();
    void unrelatedChangesAreNoUpdate();
    void removedAndAddedFieldsAreFollowed();
    void addedFieldOfAnotherClassIsWaitedOut();
    void randomChangesGiveWhatALookAtAllGives_data();
    void randomChangesGiveWhatALookAtAllGives();

    void setIsOneUpdate();
    void setLeavesLackingObjectsAlone();
    void setCreatesOnDemand();
    void objectWithAnotherClassOfFieldGetsOneMore();
    void setWithoutNameCreatesNothing();
    void refusedValuesStayAndTheOthersAreSet();
    void refusedCreationsDontStopTheOthers();
    void valueOfOneOfTheFieldsCanBeSet();

    void newNameIsFollowed();
    void sameNameDoesNothing();
    void newListIsFollowed();
    void unboundManagerIsToldOfListsSilently();

    void deadObjectIsAbsentAtTheNextUpdate();
    void deadObjectKeepsItsPlaceInTheCount();
    void keptFieldOfADeadObjectIsAbsent();
    void unheardRemovalIsAbsentAtTheNextUpdate();
    void keptFieldIsAbsentAtTheNextChange_data();
    void keptFieldIsAbsentAtTheNextChange();
    void additionThatWentUnheardIsFound_data();
    void additionThatWentUnheardIsFound();
    void unheardAdditionBeforeAnotherOneIsTold();
    void refusedRemovalLeavesTheField();
    void fieldThatIsLeavingIsntTakenAgain();
    void fieldThatLeavesAfterAnotherIsntTakenAgain_data();
    void fieldThatLeavesAfterAnotherIsntTakenAgain();
    void unheardAdditionAfterARemovalIsFoundByTheNext();
    void unheardAdditionDuringARemovalIsSetAndNotMadeAgain();
    void leavingFieldOfANewBindingIsForgotten();
    void refusedCreationsDontPileUp();
    void objectGetsNoMoreThanOneFieldOnDemand();
    void dyingObjectIsAbsentOnceItIsDead();
    void listChangedWithoutAWordIsSafe();
    void foreignListThatShrinksIsSafe();

    void changeInsideAnUpdateStartsNone();
    void valueSetInsideAnUpdateOfItsFieldCounts();
    void listenerMaySetInsideAnUpdate();
    void throwingListenerIsReported();
    void fieldRemovedAsSoonAsItIsAddedIsForgotten();
    void allFieldsMayGoInTheUpdateOfANewOne();
    void fieldThatIsPutBackInsideAnUpdateIsFollowed();
    void setInsideASetIsOneUpdate();
    void setInsideAnUpdateTellsAtOnce();
    void randomListenersLeaveWhatALookAtAllGives_data();
    void randomListenersLeaveWhatALookAtAllGives();
    void destroyedManagerHearsNothing();
    void listenerMayDestroyTheManager_data();
    void listenerMayDestroyTheManager();
    void listenerMayRebindTheManager_data();
    void listenerMayRebindTheManager();

    void otherFieldClassesWork();
    void manyObjectsTakeOneUpdate();
    void manyChangesTakeFewComparisons_data();
    void manyChangesTakeFewComparisons();
    void manyUnrelatedChangesTakeNoTime();
};

// The list.

void tst_FieldManager::ownListIsReplaced()
{
    const Things things = makeThings("ab");
    ListUser user;
    QVERIFY(user.getObjs().empty());
    user.setObjs(watched(things));
    QCOMPARE(user.getObjs().size(), std::size_t(2));
    QVERIFY(user.getObjs()[1] == things[1]);
    QCOMPARE(user.numTold, 1);
}

void tst_FieldManager::ownListTakesItself()
{
    const Things things = makeThings("ab");
    ListUser user;
    user.setObjs(watched(things));
    user.setObjs(user.getObjs());
    QCOMPARE(user.getObjs().size(), std::size_t(2));
    QCOMPARE(user.numTold, 2);
}

void tst_FieldManager::outsideListIsntChangedByManagers()
{
    const Things things = makeThings("ab");
    ObjPtrs list = watched(things);
    ListUser user(list);
    user.setObjs({});
    QCOMPARE(list.size(), std::size_t(2));
    QCOMPARE(&user.getObjs(), &list);
    QCOMPARE(user.numTold, 1);
}

void tst_FieldManager::sharedListIsOne()
{
    const Things things = makeThings("ab");
    ListUser first;
    ListUser second(static_cast<ObjsManager &>(first));
    first.setObjs(watched(things));
    QCOMPARE(&second.getObjs(), &first.getObjs());
    QCOMPARE(second.numTold, 0);
    second.setObjs({});
    QCOMPARE(first.getObjs().size(), std::size_t(2));
    QCOMPARE(second.numTold, 1);
}

void tst_FieldManager::sharedListOutlivesItsFirstManager()
{
    const Things things = makeSizeds({1, 1});
    auto first = std::make_unique<Manager>();
    first->setObjs(watched(things));
    Manager second(*first);
    second.setField("size");
    Log log(second);
    second.bindObjs();
    first.reset();
    QCOMPARE(log.take(), QString("2 1"));
    second.set(3, true);
    QCOMPARE(log.take(), QString("2 3"));
    second.setObjs({});
    QCOMPARE(second.getObjs().size(), std::size_t(2));
}

void tst_FieldManager::sharedOutsideListIsTheSame()
{
    ObjPtrs list;
    auto first = std::make_unique<ListUser>(list);
    const ListUser second(static_cast<ObjsManager &>(*first));
    first.reset();
    QCOMPARE(&second.getObjs(), &list);
}

// Reading.

void tst_FieldManager::newManagerIsntBoundAndFindsNothing()
{
    Manager manager;
    Log log(manager);
    QVERIFY(!manager.isBound());
    QCOMPARE(manager.getField(), std::string());
    QCOMPARE(manager.getFieldCount(), std::size_t(0));
    manager.update();
    QCOMPARE(log.take(), QString("0 0"));
}

void tst_FieldManager::updateTellsOfAgreement_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<QString>("told");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("one") << QVector<double>{5} << "1 5";
    QTest::newRow("equal ones") << QVector<double>{5, 5, 5} << "3 5";
    QTest::newRow("the first differs") << QVector<double>{4, 5, 5} << "~3 4";
    QTest::newRow("the last differs") << QVector<double>{5, 5, 4} << "~3 5";
    QTest::newRow("both zeros agree") << QVector<double>{0.0, -0.0} << "2 0";
    QTest::newRow("infinities agree") << QVector<double>{infinity, infinity} << "2 inf";
    QTest::newRow("infinities of two signs") << QVector<double>{infinity, -infinity} << "~2 inf";
    QTest::newRow("a single NaN agrees with itself") << QVector<double>{notANumber} << "1 nan";
    QTest::newRow("two NaN are mixed") << QVector<double>{notANumber, notANumber} << "~2 nan";
    QTest::newRow("a NaN at the end is mixed") << QVector<double>{5, notANumber} << "~2 5";
    QTest::newRow("a NaN in the middle is mixed") << QVector<double>{5, notANumber, 5} << "~3 5";
}

void tst_FieldManager::updateTellsOfAgreement()
{
    QFETCH(QVector<double>, values);
    QFETCH(QString, told);
    Things objects;
    for (double value : values)
        objects.push_back(makeSized(value));
    Bound bound(objects);
    bound.manager.update();
    QCOMPARE(bound.log.take(), told);
}

void tst_FieldManager::unboundManagerFindsNothing()
{
    Bound bound(makeSizeds({5}));
    bound.manager.unbindObjs();
    QCOMPARE(bound.log.take(), QString("0 0"));
    QVERIFY(!bound.manager.isBound());
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(0));
    bound.manager.unbindObjs();
    QCOMPARE(bound.log.take(), QString());
}

void tst_FieldManager::bindingWaitsForListAndName()
{
    const Things objects = makeSizeds({5});
    Manager manager;
    Log log(manager);
    manager.bindObjs();
    QVERIFY(manager.isBound());
    QCOMPARE(log.take(), QString("0 0"));
    manager.setField("size");
    QCOMPARE(log.take(), QString("0 0"));
    manager.setObjs(watched(objects));
    QCOMPARE(log.take(), QString("1 5"));
    sizeOf(objects[0]).set(6);
    QCOMPARE(log.take(), QString("1 6"));
    manager.setField("");
    QCOMPARE(log.take(), QString("0 0"));
    sizeOf(objects[0]).set(7);
    QCOMPARE(log.take(), QString());
}

void tst_FieldManager::bindingTwiceDoesNothing()
{
    const Things objects = makeSizeds({5});
    Bound bound(objects);
    bound.manager.bindObjs();
    QCOMPARE(bound.log.take(), QString());
    sizeOf(objects[0]).set(6);
    QCOMPARE(bound.log.take(), QString("1 6"));
}

void tst_FieldManager::fieldOfAnotherClassCountsAsAbsent()
{
    Things objects = makeSizeds({5});
    objects.push_back(makeThing("named"));
    addField<FieldInt>(*objects[1], "size", 5);
    Bound bound(objects);
    bound.manager.update();
    QCOMPARE(bound.log.take(), QString("1 5"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));
}

void tst_FieldManager::firstFieldOfTheNameCounts()
{
    const Things objects = makeSizeds({5});
    FieldReal &second = addField<FieldReal>(*objects[0], "size", 6.0);
    Bound bound(objects);
    second.set(7);
    bound.manager.update();
    QCOMPARE(bound.log.take(), QString("1 5"));
}

void tst_FieldManager::sameObjectTwiceCountsTwice()
{
    const RefT<Object> object = makeSized(5);
    Bound bound({object, object});
    sizeOf(object).set(6);
    // Two slots, and a signal to each; the first one is told before the second has been heard.
    QCOMPARE(bound.log.take(), QString("2 6, 2 6"));
    bound.manager.set(7, false);
    QCOMPARE(bound.log.take(), QString("2 7"));
}

void tst_FieldManager::nullEntriesAreAbsent()
{
    const RefT<Object> object = makeSized(5);
    Bound bound({nullptr, object, nullptr});
    bound.manager.set(6, true);
    QCOMPARE(bound.log.take(), QString("1 6"));
}

// Following.

void tst_FieldManager::eachChangeIsOneUpdate()
{
    const Things objects = makeSizeds({5, 5, 5});
    Bound bound(objects);
    sizeOf(objects[1]).set(6);
    QCOMPARE(bound.log.take(), QString("~3 5"));
    sizeOf(objects[1]).set(5);
    QCOMPARE(bound.log.take(), QString("3 5"));
    sizeOf(objects[0]).set(8);
    QCOMPARE(bound.log.take(), QString("~3 8"));
    sizeOf(objects[0]).set(8);
    QCOMPARE(bound.log.take(), QString("~3 8"));
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString("2 5"));
    addField<FieldReal>(*objects[0], "size", 5.0);
    QCOMPARE(bound.log.take(), QString("3 5"));
}

void tst_FieldManager::unrelatedChangesAreNoUpdate()
{
    const Things objects = makeSizeds({5});
    Bound bound(objects);
    FieldReal &other = addField<FieldReal>(*objects[0], "weight", 1.0);
    other.set(2);
    removeField(*objects[0], other);
    sizeOf(makeSized(1)).set(2);
    QCOMPARE(bound.log.take(), QString());
}

void tst_FieldManager::removedAndAddedFieldsAreFollowed()
{
    const Things objects = makeSizeds({5});
    Bound bound(objects);
    const RefT<Field> old(sizeOf(objects[0]));
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString("0 0"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(0));
    ZR::cast<FieldReal>(old)->set(6);
    QCOMPARE(bound.log.take(), QString());
    FieldReal &fresh = addField<FieldReal>(*objects[0], "size", 7.0);
    QCOMPARE(bound.log.take(), QString("1 7"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));
    fresh.set(8);
    QCOMPARE(bound.log.take(), QString("1 8"));
    removeField(*objects[0], fresh);
    QCOMPARE(bound.log.take(), QString("0 0"));
    addField<FieldReal>(*objects[0], "size", 9.0);
    QCOMPARE(bound.log.take(), QString("1 9"));
}

void tst_FieldManager::addedFieldOfAnotherClassIsWaitedOut()
{
    const RefT<Object> object = makeThing("a");
    Bound bound({object});
    FieldInt &other = addField<FieldInt>(*object, "size", 5);
    QCOMPARE(bound.log.take(), QString());
    removeField(*object, other);
    QCOMPARE(bound.log.take(), QString());
    addField<FieldReal>(*object, "size", 6.0);
    QCOMPARE(bound.log.take(), QString("1 6"));
}

void tst_FieldManager::randomChangesGiveWhatALookAtAllGives_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 40; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_FieldManager::randomChangesGiveWhatALookAtAllGives()
{
    QFETCH(unsigned, seed);
    std::mt19937 generator(seed);
    const auto draw = [&](unsigned end) { return generator() % end; };
    // Odd seeds have no NaN, without which fields agree more often.
    const double values[] = {1, 1, 1, 2, seed % 2 != 0 ? 3 : notANumber};
    Things objects = makeSizeds({1, 1, 1, 1, 1, 1});
    objects.push_back(objects[2]);
    Bound bound(objects);
    const ObjPtrs list = bound.manager.getObjs();
    for (int step = 0; step < 300; ++step) {
        RefT<Object> &object = objects[draw(unsigned(objects.size()))];
        const double value = values[draw(5)];
        if (!object) {
            continue;
        } else if (draw(60) == 0) {
            object.reset();
        } else if (auto *const field = ZR::cast<FieldReal>(object->findField("size"))) {
            if (draw(4) == 0)
                removeField(*object, *field);
            else
                field->set(value);
        } else {
            addField<FieldReal>(*object, "size", value);
        }
        const QString last = bound.log.take().section(", ", -1);
        const QString expected = lookAtAll(list);
        if (!last.isEmpty())
            QVERIFY2(
                last == expected,
                qPrintable(QString("step %1: %2 instead of %3").arg(step).arg(last, expected)));
    }
}

// Setting.

void tst_FieldManager::setIsOneUpdate()
{
    const Things objects = makeSizeds({1, 2, 3});
    Bound bound(objects);
    bound.manager.set(4, false);
    QCOMPARE(bound.log.take(), QString("3 4"));
    for (RefT<Object> const &object : objects)
        QCOMPARE(sizeOf(object).get(), 4.0);
}

void tst_FieldManager::setLeavesLackingObjectsAlone()
{
    Things objects = makeSizeds({1});
    objects.push_back(makeThing("lacking"));
    Bound bound(objects);
    bound.manager.set(4, false);
    QCOMPARE(bound.log.take(), QString("1 4"));
    QVERIFY(!objects[1]->findField("size"));
}

void tst_FieldManager::setCreatesOnDemand()
{
    Things objects = makeThings("abc");
    objects[1] = makeSized(1);
    Bound bound(objects);
    bound.manager.set(4, true);
    QCOMPARE(bound.log.take(), QString("3 4"));
    for (RefT<Object> const &object : objects) {
        QCOMPARE(sizeOf(object).get(), 4.0);
        QCOMPARE(sizeOf(object).getFlags(), 0u);
        QCOMPARE(sizeOf(object).owner, object.get());
    }
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(3));
    sizeOf(objects[0]).set(5);
    QCOMPARE(bound.log.take(), QString("~3 5"));
}

void tst_FieldManager::objectWithAnotherClassOfFieldGetsOneMore()
{
    const RefT<Object> object(new Thing);
    addField<FieldInt>(*object, "size", 1);
    Bound bound({object});
    bound.manager.set(4, true);
    QCOMPARE(bound.log.take(), QString("1 4"));
    QCOMPARE(object->getNumFields(), std::size_t(2));
    QCOMPARE(fieldOf<FieldInt>(object, "size").get(), 1);
}

void tst_FieldManager::setWithoutNameCreatesNothing()
{
    const Things objects = makeThings("a");
    Manager manager;
    manager.setObjs(watched(objects));
    manager.bindObjs();
    manager.set(4, true);
    QCOMPARE(objects[0]->getNumFields(), std::size_t(1));
}

void tst_FieldManager::refusedValuesStayAndTheOthersAreSet()
{
    const Things objects = makeSizeds({1, 2, 3});
    refuse(objects[1]);
    const Reports reports;
    Bound bound(objects);
    bound.manager.set(4, false);
    QCOMPARE(bound.log.take(), QString("~3 4"));
    QCOMPARE(sizeOf(objects[1]).get(), 2.0);
    QCOMPARE(sizeOf(objects[2]).get(), 4.0);
    QVERIFY(reports.texts.empty());
    sizeOf(objects[2]).sigSet.connect([](auto const &) { throw 1; });
    bound.manager.set(2, false);
    QCOMPARE(bound.log.take(), QString("3 2"));
    QVERIFY(reports.texts.empty());
}

void tst_FieldManager::refusedCreationsDontStopTheOthers()
{
    const Things objects = makeThings("ab");
    objects[0]->sigAddField.connect([](auto const &) { throw ZR::Error("no"); });
    Bound bound(objects);
    bound.manager.set(4, true);
    QCOMPARE(sizeOf(objects[1]).get(), 4.0);
}

void tst_FieldManager::valueOfOneOfTheFieldsCanBeSet()
{
    const Things objects = makeSizeds({1, 2, 3});
    Bound bound(objects);
    sizeOf(objects[0]).sigSet.connect([&](auto const &) { sizeOf(objects[1]).set(9); });
    bound.manager.set(sizeOf(objects[1]).get(), false);
    QCOMPARE(bound.log.take(), QString("3 2"));
}

// Other names and lists.

void tst_FieldManager::newNameIsFollowed()
{
    const Things objects = makeSizeds({1});
    FieldReal &weight = addField<FieldReal>(*objects[0], "weight", 2.0);
    Bound bound(objects);
    bound.manager.setField("weight");
    QCOMPARE(bound.log.take(), QString("1 2"));
    sizeOf(objects[0]).set(3);
    QCOMPARE(bound.log.take(), QString());
    weight.set(4);
    QCOMPARE(bound.log.take(), QString("1 4"));
}

void tst_FieldManager::sameNameDoesNothing()
{
    Bound bound(makeSizeds({1}));
    bound.manager.setField("size");
    QCOMPARE(bound.log.take(), QString());
}

void tst_FieldManager::newListIsFollowed()
{
    const Things old = makeSizeds({1}), fresh = makeSizeds({2, 2});
    Bound bound(old);
    bound.manager.setObjs(watched(fresh));
    QCOMPARE(bound.log.take(), QString("2 2"));
    sizeOf(old[0]).set(3);
    removeField(*old[0], sizeOf(old[0]));
    QCOMPARE(bound.log.take(), QString());
    sizeOf(fresh[1]).set(3);
    QCOMPARE(bound.log.take(), QString("~2 2"));
    bound.manager.setObjs({});
    QCOMPARE(bound.log.take(), QString("0 0"));
    QVERIFY(bound.manager.isBound());
}

void tst_FieldManager::unboundManagerIsToldOfListsSilently()
{
    Manager manager;
    Log log(manager);
    manager.setField("size");
    log.take();
    manager.setObjs(watched(makeSizeds({1})));
    QCOMPARE(log.take(), QString());
    QVERIFY(!manager.isBound());
}

// What dies.

void tst_FieldManager::deadObjectIsAbsentAtTheNextUpdate()
{
    Things objects = makeSizeds({1, 1, 2});
    Bound bound(objects);
    objects[2].reset();
    QCOMPARE(bound.log.take(), QString());
    bound.manager.update();
    QCOMPARE(bound.log.take(), QString("2 1"));
    objects[0].reset();
    sizeOf(objects[1]).set(4);
    QCOMPARE(bound.log.take(), QString("1 4"));
    bound.manager.set(5, true);
    QCOMPARE(bound.log.take(), QString("1 5"));
}

void tst_FieldManager::deadObjectKeepsItsPlaceInTheCount()
{
    Things objects = makeSizeds({1, 1});
    Bound bound(objects);
    objects[0].reset();
    bound.manager.update();
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(2));
    removeField(*objects[1], sizeOf(objects[1]));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));
    bound.manager.setObjs(watched(objects));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(0));
}

void tst_FieldManager::keptFieldOfADeadObjectIsAbsent()
{
    Things objects = makeSizeds({1, 2});
    const RefT<Field> kept(sizeOf(objects[0]));
    Bound bound(objects);
    objects[0].reset();
    bound.manager.update();
    QCOMPARE(bound.log.take(), QString("1 2"));
    bound.manager.set(3, true);
    QCOMPARE(ZR::cast<FieldReal>(kept)->get(), 1.0);
    bound.log.take();
    ZR::cast<FieldReal>(kept)->set(5);
    QCOMPARE(bound.log.take(), QString("1 3"));
}

void tst_FieldManager::unheardRemovalIsAbsentAtTheNextUpdate()
{
    const Things objects = makeSizeds({1, 2});
    FieldReal &weight = addField<FieldReal>(*objects[0], "weight", 3.0);
    bool isFirst = true;
    // The outer emission ends with the inner one.
    objects[0]->sigRemoveField.connect([&](auto const &) {
        if (std::exchange(isFirst, false))
            removeField(*objects[0], weight);
    });
    Bound bound(objects);
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString());
    sizeOf(objects[1]).set(4);
    QCOMPARE(bound.log.take(), QString("1 4"));
}

void tst_FieldManager::keptFieldIsAbsentAtTheNextChange_data()
{
    QTest::addColumn<QString>("what");
    for (char const *what : {"object dies", "removal goes unheard"})
        QTest::newRow(what) << what;
}

void tst_FieldManager::keptFieldIsAbsentAtTheNextChange()
{
    QFETCH(QString, what);
    Things objects = makeSizeds({1, 2});
    const RefT<Field> kept(sizeOf(objects[0]));
    FieldReal &weight = addField<FieldReal>(*objects[0], "weight", 3.0);
    bool isFirst = true;
    // The outer emission ends with the inner one.
    objects[0]->sigRemoveField.connect([&](auto const &) {
        if (std::exchange(isFirst, false)) {
            removeField(*objects[0], weight);
            sizeOf(objects[1]).set(3);
        }
    });
    Bound bound(objects);
    if (what == "object dies")
        objects[0].reset();
    else
        removeField(*objects[0], *kept);
    bound.log.take();
    sizeOf(objects[1]).set(4);
    QCOMPARE(bound.log.take(), QString("1 4"));
    ZR::cast<FieldReal>(kept)->set(9);
    bound.log.take();
    sizeOf(objects[1]).set(5);
    QCOMPARE(bound.log.take(), QString("1 5"));
    if (objects[0]) {
        addField<FieldReal>(*objects[0], "size", 5.0);
        QCOMPARE(bound.log.take(), QString("2 5"));
        QCOMPARE(bound.manager.getFieldCount(), std::size_t(2));
    }
}

void tst_FieldManager::additionThatWentUnheardIsFound_data()
{
    QTest::addColumn<bool>("bySetting");
    QTest::newRow("by an update") << false;
    QTest::newRow("by setting") << true;
}

void tst_FieldManager::additionThatWentUnheardIsFound()
{
    QFETCH(bool, bySetting);
    const Things objects = makeThings("a");
    objects[0]->sigAddField.connect([](auto const &) { throw ZR::Error("no"); });
    Bound bound(objects);
    QVERIFY_EXCEPTION_THROWN(addField<FieldReal>(*objects[0], "size", 3.0), ZR::Error);
    QCOMPARE(bound.log.take(), QString());
    if (bySetting)
        bound.manager.set(4, false);
    else
        bound.manager.update();
    QCOMPARE(bound.log.take(), QString(bySetting ? "1 4" : "1 3"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));
    sizeOf(objects[0]).set(5);
    QCOMPARE(bound.log.take(), QString("1 5"));
}

void tst_FieldManager::unheardAdditionBeforeAnotherOneIsTold()
{
    const Things objects = makeThings("a");
    bool isFirst = true;
    // The outer emission ends with the inner one.
    objects[0]->sigAddField.connect([&](auto const &) {
        if (std::exchange(isFirst, false))
            addField<FieldReal>(*objects[0], "weight", 1.0);
    });
    Bound bound(objects);
    addField<FieldReal>(*objects[0], "size", 3.0);
    QCOMPARE(bound.log.take(), QString("1 3"));
    bound.manager.set(4, true);
    QCOMPARE(bound.log.take(), QString("1 4"));
    QCOMPARE(objects[0]->getNumFields(), std::size_t(3));
}

void tst_FieldManager::refusedRemovalLeavesTheField()
{
    for (bool bySetting : {false, true}) {
        const Things objects = makeSizeds({1, 2});
        Bound bound(objects);
        objects[0]->sigRemoveField.connect([](auto const &) { throw ZR::Error("stay"); });
        QVERIFY_EXCEPTION_THROWN(removeField(*objects[0], sizeOf(objects[0])), ZR::Error);
        QCOMPARE(bound.log.take(), QString("1 2"));
        if (bySetting)
            bound.manager.set(2, true);
        else
            sizeOf(objects[1]).set(2);
        QCOMPARE(bound.log.take(), QString(bySetting ? "2 2" : "~2 1"));
        sizeOf(objects[0]).set(3);
        QCOMPARE(bound.log.take(), QString("~2 3"));
        QCOMPARE(objects[0]->getNumFields(), std::size_t(1));
    }
}

void tst_FieldManager::fieldThatIsLeavingIsntTakenAgain()
{
    const Things objects = makeSizeds({1, 2});
    Bound bound(objects);
    objects[0]->sigRemoveField.connect([&](auto const &) {
        bound.manager.update();
        sizeOf(objects[1]).set(3);
        addField<FieldReal>(*objects[0], "weight", 1.0);
    });
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString("1 2, 1 2, 1 3"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));
}

void tst_FieldManager::fieldThatLeavesAfterAnotherIsntTakenAgain_data()
{
    QTest::addColumn<bool>("updates");
    QTest::newRow("and nobody asks") << false;
    QTest::newRow("and a host asks meanwhile") << true;
}

void tst_FieldManager::fieldThatLeavesAfterAnotherIsntTakenAgain()
{
    QFETCH(bool, updates);
    const Things objects = makeSizeds({1});
    FieldReal &weight = addField<FieldReal>(*objects[0], "weight", 1.0);
    Bound bound(objects);
    removeField(*objects[0], weight);
    if (updates)
        objects[0]->sigRemoveField.connect([&](auto const &) { bound.manager.update(); });
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString(updates ? "0 0, 0 0" : "0 0"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(0));
}

void tst_FieldManager::unheardAdditionAfterARemovalIsFoundByTheNext()
{
    const Things objects = makeSizeds({1});
    bool isFirst = true;
    // The outer emission ends with the inner one.
    objects[0]->sigAddField.connect([&](auto const &) {
        if (std::exchange(isFirst, false))
            addField<FieldReal>(*objects[0], "weight", 1.0);
    });
    Bound bound(objects);
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString("0 0"));
    addField<FieldReal>(*objects[0], "size", 3.0);
    QCOMPARE(bound.log.take(), QString("1 3"));
}

void tst_FieldManager::unheardAdditionDuringARemovalIsSetAndNotMadeAgain()
{
    const Things objects = makeSizeds({1});
    FieldReal &weight = addField<FieldReal>(*objects[0], "weight", 1.0);
    objects[0]->sigAddField.connect([](auto const &) { throw ZR::Error("no"); });
    Bound bound(objects);
    bool isFirst = true;
    objects[0]->sigRemoveField.connect([&](auto const &) {
        if (!std::exchange(isFirst, false))
            return;
        removeField(*objects[0], sizeOf(objects[0]));
        QVERIFY_EXCEPTION_THROWN(addField<FieldReal>(*objects[0], "size", 2.0), ZR::Error);
        bound.manager.set(3, true);
    });
    removeField(*objects[0], weight);
    QCOMPARE(bound.log.take(), QString("0 0, 1 3"));
    QCOMPARE(objects[0]->getNumFields(), std::size_t(1));
    QCOMPARE(sizeOf(objects[0]).get(), 3.0);
}

/// It is bound too late to hear that the field goes.
void tst_FieldManager::leavingFieldOfANewBindingIsForgotten()
{
    const Things objects = makeSizeds({1, 2});
    const RefT<Field> kept(sizeOf(objects[0]));
    Bound bound({});
    objects[0]->sigRemoveField.connect(
        [&](auto const &) { bound.manager.setObjs(watched(objects)); });
    removeField(*objects[0], *kept);
    bound.log.take();
    sizeOf(objects[1]).set(3);
    QCOMPARE(bound.log.take(), QString("1 3"));
}

void tst_FieldManager::refusedCreationsDontPileUp()
{
    const Things objects = makeThings("a");
    objects[0]->sigAddField.connect([](auto const &) { throw ZR::Error("no"); });
    Bound bound(objects);
    for (int i = 0; i < 3; ++i) {
        bound.manager.set(i, true);
        QCOMPARE(bound.log.take(), QString("1 %1").arg(i));
    }
    QCOMPARE(objects[0]->getNumFields(), std::size_t(2));
}

void tst_FieldManager::objectGetsNoMoreThanOneFieldOnDemand()
{
    const RefT<Object> object(new Thing);
    addField<FieldInt>(*object, "size", 1);
    Bound bound({object});
    for (int i = 1; i <= 3; ++i) {
        bound.manager.set(i, true);
        QCOMPARE(bound.log.take(), QString("1 %1").arg(i));
        bound.manager.unbindObjs();
        bound.manager.bindObjs();
        // The first one of the name is of another class.
        QCOMPARE(bound.log.take(), QString("0 0, 0 0"));
    }
    QCOMPARE(object->getNumFields(), std::size_t(2));
}

void tst_FieldManager::dyingObjectIsAbsentOnceItIsDead()
{
    Things objects = makeSizeds({1, 2});
    Bound bound({});
    objects[0]->sigDelete.connect([&](auto const &) {
        bound.manager.setObjs({objects[1], objects[0]});
    });
    const PtrT<Object> dying(objects[0]);
    objects[0]->sigDelete.connect([&, dying](auto const &) {
        bound.manager.setObjs({PtrT<Object>(objects[1]), dying});
        QCOMPARE(bound.manager.getObjs().size(), std::size_t(2));
    });
    objects[0].reset();
    bound.log.take();
    bound.manager.update();
    QCOMPARE(bound.log.take(), QString("1 2"));
    sizeOf(objects[1]).set(3);
    QCOMPARE(bound.log.take(), QString("1 3"));
}

void tst_FieldManager::listChangedWithoutAWordIsSafe()
{
    const Things objects = makeThings("ab"), others = makeThings("cd");
    ObjPtrs list = watched(objects);
    Manager manager(list);
    manager.setField("size");
    manager.bindObjs();
    Log log(manager);
    list = {others[0], others[1], objects[0]};
    // Only objects that the manager knows at their places are changed.
    manager.set(4, true);
    QCOMPARE(log.take(), QString("0 0"));
    QVERIFY(!others[0]->findField("size"));
    QVERIFY(!objects[0]->findField("size"));
    addField<FieldReal>(*objects[0], "size", 5.0);
    QCOMPARE(log.take(), QString("1 5"));
    manager.setObjs({});
    QCOMPARE(log.take(), QString("1 5"));
    manager.set(6, true);
    QCOMPARE(log.take(), QString("3 6"));
}

void tst_FieldManager::foreignListThatShrinksIsSafe()
{
    Things objects = makeThings("ab");
    ObjPtrs list = watched(objects);
    Manager manager(list);
    manager.setField("size");
    manager.bindObjs();
    list.clear();
    list.shrink_to_fit();
    Log log(manager);
    manager.set(4, true);
    QCOMPARE(log.take(), QString("0 0"));
    addField<FieldReal>(*objects[1], "size", 5.0);
    QCOMPARE(log.take(), QString("1 5"));
    removeField(*objects[1], sizeOf(objects[1]));
    QCOMPARE(log.take(), QString("0 0"));
}

// Listeners.

void tst_FieldManager::changeInsideAnUpdateStartsNone()
{
    const Things objects = makeSizeds({1, 1});
    Bound bound(objects);
    bool isFirst = true;
    bound.manager.sigModify.connect([&](auto const &) {
        if (std::exchange(isFirst, false)) {
            sizeOf(objects[1]).set(3);
            bound.manager.update();
        }
    });
    sizeOf(objects[0]).set(3);
    QCOMPARE(bound.log.take(), QString("~2 3"));
    sizeOf(objects[0]).set(3);
    QCOMPARE(bound.log.take(), QString("2 3"));
}

void tst_FieldManager::valueSetInsideAnUpdateOfItsFieldCounts()
{
    Things objects = makeSizeds({1});
    objects.push_back(makeThing("lacking"));
    Bound bound(objects);
    bound.manager.sigModify.connect([&](auto const &found) {
        if (found.count == 2 && !found.mixed)
            sizeOf(objects[1]).set(2);
    });
    addField<FieldReal>(*objects[1], "size", 1.0);
    QCOMPARE(bound.log.take(), QString("2 1"));
    sizeOf(objects[0]).set(1);
    QCOMPARE(bound.log.take(), QString("~2 1"));
}

void tst_FieldManager::listenerMaySetInsideAnUpdate()
{
    const Things objects = makeSizeds({1, 1});
    Bound bound(objects);
    // Keeps values at 10 and below.
    bound.manager.sigModify.connect([&](auto const &found) {
        if (*found.value > 10)
            bound.manager.set(10, false);
    });
    bound.manager.set(12, false);
    QCOMPARE(bound.log.take(), QString("2 12, 2 10"));
    QCOMPARE(sizeOf(objects[1]).get(), 10.0);
}

void tst_FieldManager::throwingListenerIsReported()
{
    const Things objects = makeSizeds({1});
    const Reports reports;
    Manager manager;
    manager.setObjs(watched(objects));
    manager.setField("size");
    manager.bindObjs();
    manager.sigModify.connect([](auto const &) { throw ZR::Error("oops"); });
    Log log(manager);
    sizeOf(objects[0]).set(2);
    QCOMPARE(log.take(), QString("1 2"));
    QCOMPARE(reports.texts, std::vector<std::string>{"ZR::VOM::GUI::FieldManagerT::update: oops"});
    sizeOf(objects[0]).set(3);
    QCOMPARE(log.take(), QString("1 3"));
}

void tst_FieldManager::fieldRemovedAsSoonAsItIsAddedIsForgotten()
{
    const Things objects = makeThings("a");
    Bound bound(objects);
    bool isFirst = true;
    bound.manager.sigModify.connect([&](auto const &found) {
        if (found.count == 1 && std::exchange(isFirst, false)) {
            removeField(*objects[0], sizeOf(objects[0]));
            bound.manager.set(5, false);
        }
    });
    addField<FieldReal>(*objects[0], "size", 2.0);
    QCOMPARE(bound.log.take(), QString("1 2, 0 0, 0 0"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(0));
    addField<FieldReal>(*objects[0], "size", 3.0);
    QCOMPARE(bound.log.take(), QString("1 3"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));

    // Before the manager hears of it.
    const Things others = makeThings("b");
    others[0]->sigAddField.connect(
        [&](auto const &) { removeField(*others[0], *others[0]->findField("size")); });
    bound.manager.setObjs(watched(others));
    bound.log.take();
    addField<FieldReal>(*others[0], "size", 2.0);
    QCOMPARE(bound.log.take(), QString());
}

void tst_FieldManager::allFieldsMayGoInTheUpdateOfANewOne()
{
    const Things objects = {makeSized(1), makeThing("lacking")};
    Bound bound(objects);
    bound.manager.sigModify.connect([&](auto const &found) {
        if (found.count != 2)
            return;
        removeField(*objects[1], sizeOf(objects[1]));
        removeField(*objects[0], sizeOf(objects[0]));
    });
    addField<FieldReal>(*objects[1], "size", 2.0);
    QCOMPARE(bound.log.take(), QString("~2 1, 0 0"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(0));
    addField<FieldReal>(*objects[0], "size", 3.0);
    QCOMPARE(bound.log.take(), QString("1 3"));
}

void tst_FieldManager::fieldThatIsPutBackInsideAnUpdateIsFollowed()
{
    const Things objects = makeSizeds({1});
    Bound bound(objects);
    bool isFirst = true;
    bound.manager.sigModify.connect([&](auto const &found) {
        if (found.count == 0 && std::exchange(isFirst, false))
            addField<FieldReal>(*objects[0], "size", 7.0);
    });
    removeField(*objects[0], sizeOf(objects[0]));
    QCOMPARE(bound.log.take(), QString("0 0, 1 7"));
    QCOMPARE(bound.manager.getFieldCount(), std::size_t(1));
    // One of two fields of the name is gone.
    sizeOf(objects[0]).set(8);
    QCOMPARE(bound.log.take(), QString("1 8"));
    QCOMPARE(objects[0]->getNumFields(), std::size_t(1));
}

void tst_FieldManager::setInsideASetIsOneUpdate()
{
    const Things objects = makeSizeds({1, 1, 1, 1});
    Bound bound(objects);
    sizeOf(objects[0]).sigSet.connect([&](auto const &) {
        if (sizeOf(objects[0]).get() > 10)
            bound.manager.set(10, false);
    });
    bound.manager.set(12, false);
    QCOMPARE(bound.log.take(), QString("~4 10"));
    QCOMPARE(sizeOf(objects[3]).get(), 12.0);
    sizeOf(objects[1]).set(10);
    QCOMPARE(bound.log.take(), QString("~4 10"));
}

// Unlike update(), which does nothing there.
void tst_FieldManager::setInsideAnUpdateTellsAtOnce()
{
    const Things objects = makeSizeds({1});
    Bound bound(objects);
    QString toldMeanwhile;
    bound.manager.sigModify.connect([&](auto const &found) {
        if (*found.value != 2)
            return;
        bound.log.take();
        bound.manager.update();
        bound.manager.set(3, false);
        toldMeanwhile = bound.log.take();
    });
    sizeOf(objects[0]).set(2);
    QCOMPARE(toldMeanwhile, QString("1 3"));
}

namespace {

/// Changes objects at random, also from inside the signals of what it does.
class Crowd {
public:
    explicit Crowd(unsigned seed)
        : generator(seed)
    {
        // Before the manager's own slots.
        for (RefT<Object> const &object : objects) {
            object->sigAddField.connect([this](auto const &) { meddle(); });
            object->sigRemoveField.connect([this](auto const &) { meddle(); });
        }
        bound = std::make_unique<Bound>(objects);
        bound->manager.sigModify.connect([this](auto const &) { meddle(); });
        // And behind them, as long as no field comes back.
        for (RefT<Object> const &object : objects)
            object->sigRemoveField.connect([this](auto const &) { meddle(); });
    }

    void act()
    {
        const std::size_t i = draw(objects.size());
        const RefT<Object> object = objects[i];
        const double value = double(draw(3));
        if (!object)
            return;
        auto *const field = ZR::cast<FieldReal>(object->findField("size"));
        switch (draw(7)) {
        case 0:
            return bound->manager.update();
        case 1:
            return bound->manager.set(value, draw(2) != 0);
        case 2:
            if (draw(20) == 0)
                objects[i] = {};
            return;
        case 3:
            if (RefT<Field> const other = object->findField("weight"))
                removeField(*object, *other);
            else
                addField<FieldReal>(*object, "weight", value);
            return;
        case 4:
            if (field)
                removeField(*object, *field);
            return;
        default:
            if (field)
                return field->set(value);
            addField<FieldReal>(*object, "size", value);
            if (auto *const added = ZR::cast<FieldReal>(object->findField("size")))
                added->sigSet.connect([this](auto const &) { meddle(); });
        }
    }

    bool hasTwins() const
    {
        return std::any_of(objects.begin(), objects.end(), [](RefT<Object> const &object) {
            std::size_t numSizes = 0;
            for (std::size_t i = 0; object && i < object->getNumFields(); ++i)
                numSizes += object->getField(i)->name == "size";
            return numSizes > 1;
        });
    }

    Things objects = {makeSized(1), makeSized(1), makeSized(2), makeThing("a"), makeThing("b")};
    const ObjPtrs list = watched(objects);
    std::unique_ptr<Bound> bound;

private:
    std::size_t draw(std::size_t end) { return generator() % end; }
    void meddle()
    {
        if (depth > 3 || draw(3) != 0)
            return;
        ++depth;
        try {
            act();
        } catch (ZR::Error const &) {
            ++numRefused;
        }
        --depth;
        if (draw(10) == 0)
            throw ZR::Error("no");
    }

    std::mt19937 generator;
    int depth = 0;
    int numRefused = 0;
};

} // namespace

void tst_FieldManager::randomListenersLeaveWhatALookAtAllGives_data()
{
    randomChangesGiveWhatALookAtAllGives_data();
}

void tst_FieldManager::randomListenersLeaveWhatALookAtAllGives()
{
    QFETCH(unsigned, seed);
    const Reports reports; // Takes what listeners of the manager raise.
    Crowd crowd(seed);
    int numSteps = 0;
    for (int step = 0; step < 300; ++step) {
        try {
            crowd.act();
        } catch (ZR::Error const &error) {
            QCOMPARE(error.what(), "no");
        }
        // Of two fields of one name, that counts which was there when the other wasn't: one was
        // made while the other was to go.
        if (crowd.hasTwins())
            break;
        ++numSteps;
        crowd.bound->log.take();
        const QString expected = lookAtAll(crowd.list);
        crowd.bound->manager.update();
        const QString told = crowd.bound->log.take().section(", ", 0, 0);
        QVERIFY2(told == expected,
                 qPrintable(QString("step %1: %2 instead of %3").arg(step).arg(told, expected)));
    }
    QVERIFY(numSteps > 20);
}

void tst_FieldManager::destroyedManagerHearsNothing()
{
    const Things objects = {makeSized(1), makeThing("lacking")};
    auto bound = std::make_unique<Bound>(objects);
    bound.reset();
    QVERIFY(!sizeOf(objects[0]).sigSet.hasSlots());
    QVERIFY(!objects[0]->sigRemoveField.hasSlots());
    QVERIFY(!sizeOf(objects[0]).sigDelete.hasSlots());
    QVERIFY(!objects[1]->sigAddField.hasSlots());
}

namespace {

/// Ways into the manager, to be tried with listeners that do away with what runs.
void addActions()
{
    QTest::addColumn<QString>("action");
    for (char const *action : {"update", "set", "create", "a value", "add a field",
                               "remove a field", "setObjs", "setField", "unbind", "bind"})
        QTest::newRow(action) << action;
}

void act(QString const &action, Manager &manager, Things const &objects)
{
    if (action == "update")
        manager.update();
    else if (action == "set")
        manager.set(4, false);
    else if (action == "create")
        manager.set(4, true);
    else if (action == "a value")
        sizeOf(objects[0]).set(5);
    else if (action == "add a field")
        addField<FieldReal>(*objects[1], "size", 2.0);
    else if (action == "remove a field")
        removeField(*objects[0], sizeOf(objects[0]));
    else if (action == "setObjs")
        manager.setObjs({objects[0]});
    else if (action == "setField")
        manager.setField("weight");
    else if (action == "unbind")
        manager.unbindObjs();
    else if (action == "bind") {
        manager.unbindObjs();
        manager.bindObjs();
    }
}

} // namespace

void tst_FieldManager::listenerMayDestroyTheManager_data()
{
    addActions();
}

void tst_FieldManager::listenerMayDestroyTheManager()
{
    QFETCH(QString, action);
    {
        // In the manager's own signal.
        const Things objects = {makeSized(1), makeThing("lacking")};
        auto bound = std::make_unique<Bound>(objects);
        Manager &manager = bound->manager;
        if (action == "bind")
            manager.unbindObjs();
        int numUpdates = 0;
        manager.sigModify.connect([&](auto const &) {
            ++numUpdates;
            bound.reset();
        });
        if (action == "bind")
            manager.bindObjs();
        else
            act(action, manager, objects);
        QCOMPARE(numUpdates, 1);
        QVERIFY(!bound);
        QVERIFY(!objects[0]->sigRemoveField.hasSlots());
    }
    {
        // In the model's signals, on both sides of the manager's own slot.
        const Things objects = {makeSized(1), makeThing("lacking")};
        std::unique_ptr<Bound> bound;
        const auto destroy = [&](auto const &) { bound.reset(); };
        sizeOf(objects[0]).sigSet.connect(destroy);
        objects[0]->sigRemoveField.connect(destroy);
        objects[1]->sigAddField.connect(destroy);
        bound = std::make_unique<Bound>(objects);
        act(action, bound->manager, objects);
        bound.reset();
        for (RefT<Object> const &object : objects)
            if (const PtrT<Field> size = object->findField("size"))
                QVERIFY(!size->sigDelete.hasSlots());
    }
}

void tst_FieldManager::listenerMayRebindTheManager_data()
{
    addActions();
}

void tst_FieldManager::listenerMayRebindTheManager()
{
    QFETCH(QString, action);
    const Things objects = {makeSized(1), makeThing("lacking")}, others = makeSizeds({7, 7, 7});
    Bound bound(objects);
    bool isFirst = true;
    const auto rebind = [&](auto const &) {
        if (std::exchange(isFirst, false)) {
            bound.manager.setObjs(watched(others));
            bound.manager.setField("size");
        }
    };
    bound.manager.sigModify.connect(rebind);
    sizeOf(objects[0]).sigSet.connect(rebind);
    act(action, bound.manager, objects);
    bound.manager.setObjs(watched(others));
    bound.manager.setField("size");
    bound.manager.bindObjs();
    bound.log.take();
    bound.manager.update();
    QCOMPARE(bound.log.take(), QString("3 7"));
    sizeOf(others[2]).set(8);
    QCOMPARE(bound.log.take(), QString("~3 7"));
    QVERIFY(!objects[0]->sigRemoveField.hasSlots());
    QVERIFY(!objects[1]->sigAddField.hasSlots());
    bound.manager.setObjs({});
    QVERIFY(!others[0]->sigRemoveField.hasSlots());
}

// Other values, and many.

void tst_FieldManager::otherFieldClassesWork()
{
    const Things objects = makeThings("ab");
    FieldManagerT<FieldString> manager;
    manager.setObjs(watched(objects));
    manager.setField("name");
    QStringList told;
    manager.sigModify.connect([&](auto const &found) {
        told << QString("%1 %2").arg(found.count).arg(QString::fromStdString(*found.value));
    });
    manager.bindObjs();
    manager.set("c", false);
    QCOMPARE(told, (QStringList{"2 a", "2 c"}));
}

void tst_FieldManager::manyObjectsTakeOneUpdate()
{
    constexpr unsigned num = 100000;
    Things objects;
    for (unsigned i = 0; i < num; ++i)
        objects.push_back(makeSized(i));
    for (unsigned i = 0; i < num; i += 1000)
        refuse(objects[i]);
    Bound bound(objects);
    Bound neighbour(objects);
    bound.manager.set(0.5, false);
    QCOMPARE(bound.log.take(), QString("~100000 0"));
    unsigned numSet = 0;
    for (RefT<Object> const &object : objects)
        numSet += sizeOf(object).get() == 0.5;
    QCOMPARE(numSet, num - num / 1000);
    QCOMPARE(neighbour.log.take().count(','), int(numSet) - 1);
}

void tst_FieldManager::manyChangesTakeFewComparisons_data()
{
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("change");
    for (char const *order : {"from the first on", "from the last on", "at random"})
        for (char const *change :
             {"set", "set apart", "set and set back", "set the first", "remove and add", "die"})
            QTest::addRow("%s %s", change, order) << order << change;
}

void tst_FieldManager::manyChangesTakeFewComparisons()
{
    QFETCH(QString, order);
    QFETCH(QString, change);
    constexpr int num = 3000;
    Things objects;
    std::vector<std::size_t> places;
    for (int i = 0; i < num; ++i) {
        objects.emplace_back(new Thing);
        addField<FieldCounted>(*objects.back(), "size", Counted{});
        places.push_back(std::size_t(i));
    }
    if (order == "from the last on")
        std::reverse(places.begin(), places.end());
    else if (order == "at random")
        std::shuffle(places.begin(), places.end(), std::mt19937(1));
    FieldManagerT<FieldCounted> manager;
    manager.setObjs(watched(objects));
    manager.setField("size");
    manager.bindObjs();
    int numUpdates = 0;
    manager.sigModify.connect([&](auto const &) { ++numUpdates; });
    Counted::numComparisons = 0;
    const auto fieldAt = [&](std::size_t i) -> FieldCounted & {
        return fieldOf<FieldCounted>(objects[i], "size");
    };
    if (change == "remove and add")
        for (std::size_t i : places)
            removeField(*objects[i], fieldAt(i));
    for (std::size_t i : places) {
        if (change == "set")
            fieldAt(i).set({1});
        else if (change == "set apart")
            fieldAt(i).set({int(i) + 1});
        else if (change == "set and set back")
            fieldAt(i).set({1}), fieldAt(i).set({0});
        else if (change == "set the first")
            fieldAt(0).set({int(i) % 2});
        else if (change == "remove and add")
            addField<FieldCounted>(*objects[i], "size", Counted{2});
        else
            objects[i].reset();
    }
    QCOMPARE(numUpdates, change == "die" ? 0 : change.contains(" and ") ? 2 * num : num);
    QVERIFY2(Counted::numComparisons < 20 * num,
             qPrintable(QString::number(Counted::numComparisons)));
}

void tst_FieldManager::manyUnrelatedChangesTakeNoTime()
{
    constexpr int num = 300000;
    const Things objects = {makeSized(1), makeThing("lacking")};
    Bound bound(objects);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < num; ++i)
        for (RefT<Object> const &object : objects)
            removeField(*object, addField<FieldReal>(*object, "weight", 1.0));
    // A fraction of what it takes to go through all removals with each addition.
    constexpr qint64 enough = 10000; // Milliseconds.
    QVERIFY2(timer.elapsed() < enough, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(bound.log.take(), QString());
}

QTEST_MAIN(tst_FieldManager)
#include "tst_FieldManager.moc"
