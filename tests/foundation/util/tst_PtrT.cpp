#include "foundation/Probe.h"
#include "zrVOMGUI/foundation/util/Class.h"

#include <QTest>

#include <map>
#include <memory>
#include <random>
#include <set>
#include <type_traits>
#include <vector>

using namespace ZR;
using foundation_test::Probe;

namespace {

class Base : public Class {};
class Derived : public Base {};
class Other : public Class {};

static_assert(sizeof(PtrT<Class>) == 3 * sizeof(void *),
              "A target, and two neighbours in its list.");
static_assert(sizeof(PtrT<Class>) == sizeof(RefT<Class>));
static_assert(std::is_base_of_v<Ptr, PtrT<Class>>);
static_assert(!std::is_constructible_v<Ptr>, "Only PtrT and RefT make pointers.");
static_assert(!std::is_polymorphic_v<PtrT<Class>>);
static_assert(std::is_copy_constructible_v<PtrT<Class>> && std::is_copy_assignable_v<PtrT<Class>>);
// Lists of pointers grow by moving.
static_assert(std::is_nothrow_move_constructible_v<PtrT<Class>>);
static_assert(std::is_nothrow_move_assignable_v<PtrT<Class>>);
static_assert(std::is_convertible_v<PtrT<Derived>, PtrT<Base>>);
static_assert(!std::is_convertible_v<PtrT<Base>, PtrT<Derived>>);
static_assert(!std::is_convertible_v<PtrT<Other>, PtrT<Base>>);
static_assert(!std::is_convertible_v<PtrT<Class>, bool>, "No pointer is taken for a number.");

} // namespace

class tst_PtrT : public QObject {
    Q_OBJECT

private slots:
    void defaultPointerReadsNull();
    void nullArgumentsReadNull();
    void readsItsTarget();
    void doesNotKeepItsTargetAlive();
    void allPointersReadNullAfterDeath();

    void relinkedPointerLeavesTheOldTarget();
    void settingToTheSameTargetKeepsIt();
    void assignmentOfNullUnlinks();
    void resetUnlinks();
    void resetOfNullDoesNothing();
    void selfAssignmentKeepsTheTarget();
    void selfMoveKeepsTheTarget();
    void copyWatchesByItself();
    void movedFromPointerReadsNull();
    void moveReplacesTheOldTarget();
    void moveOfNullReadsNull();
    void baseIsWatchedThroughADerivedPointer();
    void watcherOfAReferenceReadsItsTarget();

    void middleOfTheListMayLeave_data();
    void middleOfTheListMayLeave();
    void listStaysWholeInAnyOrder_data();
    void listStaysWholeInAnyOrder();
    void pointersInAGrowingVectorStayLinked();

    void orderIsThatOfTheAddresses();
    void equalityIsThatOfTheTargets();
    void pointersAreMapKeys();
    void pointerAndReferenceAreOneKey();

    void stackObjectIsWatched();
    void memberObjectIsWatched();
    void secondBaseIsWatched();
    void pointerMayLieInItsTarget();
    void checkedCastAnswersNullForAnotherClass();
    void copiedObjectHasItsOwnWatchers();
    void assignedObjectKeepsItsWatchers();
};

void tst_PtrT::defaultPointerReadsNull()
{
    const PtrT<Class> ptr;
    QVERIFY(ptr.get() == nullptr);
    QVERIFY(!ptr);
    QVERIFY(ptr == nullptr);
    QVERIFY(!(ptr != nullptr));
}

void tst_PtrT::nullArgumentsReadNull()
{
    Base *const noObject = nullptr;
    QVERIFY(!PtrT<Base>(noObject));
    QVERIFY(!PtrT<Base>(nullptr));
    QVERIFY(!PtrT<Base>(RefT<Derived>()));
    QVERIFY(!PtrT<Base>(PtrT<Derived>()));
}

void tst_PtrT::readsItsTarget()
{
    int destructions = 0;
    Probe probe(destructions);
    probe.value = 5;
    const PtrT<Probe> ptr(probe);
    QCOMPARE(ptr.get(), &probe);
    QCOMPARE(&*ptr, &probe);
    QCOMPARE(ptr->value, 5);
    QVERIFY(ptr);
    QVERIFY(ptr != nullptr);
    Ptr const &base = ptr;
    QCOMPARE(base.get(), static_cast<Class *>(&probe));
}

void tst_PtrT::doesNotKeepItsTargetAlive()
{
    int destructions = 0;
    RefT<Probe> owner(new Probe(destructions));
    const PtrT<Probe> ptr(owner);
    owner.reset();
    QCOMPARE(destructions, 1);
    QVERIFY(!ptr);
}

void tst_PtrT::allPointersReadNullAfterDeath()
{
    RefT<Base> owner(new Base);
    const std::vector<PtrT<Base>> watchers(100, PtrT<Base>(owner));
    owner.reset();
    for (PtrT<Base> const &watcher : watchers)
        QVERIFY(!watcher);
}

void tst_PtrT::relinkedPointerLeavesTheOldTarget()
{
    RefT<Base> first(new Base);
    const RefT<Base> second(new Base);
    PtrT<Base> ptr(first);
    ptr = PtrT<Base>(second);
    QCOMPARE(ptr.get(), second.get());
    first.reset();
    QCOMPARE(ptr.get(), second.get());
}

void tst_PtrT::settingToTheSameTargetKeepsIt()
{
    RefT<Base> owner(new Base);
    const PtrT<Base> other(owner);
    PtrT<Base> ptr(owner);
    ptr = other;
    QCOMPARE(ptr.get(), owner.get());
    owner.reset();
    QVERIFY(!ptr);
    QVERIFY(!other);
}

void tst_PtrT::assignmentOfNullUnlinks()
{
    RefT<Base> owner(new Base);
    PtrT<Base> ptr(owner);
    ptr = nullptr;
    QVERIFY(!ptr);
    const PtrT<Base> null;
    ptr = owner;
    ptr = null;
    QVERIFY(!ptr);
    owner.reset();
}

void tst_PtrT::resetUnlinks()
{
    RefT<Base> owner(new Base);
    PtrT<Base> first(owner), second(owner);
    first.reset();
    QVERIFY(!first);
    QCOMPARE(second.get(), owner.get());
    owner.reset();
    QVERIFY(!second);
}

void tst_PtrT::resetOfNullDoesNothing()
{
    PtrT<Base> ptr;
    ptr.reset();
    ptr.reset();
    QVERIFY(!ptr);
}

void tst_PtrT::selfAssignmentKeepsTheTarget()
{
    RefT<Base> owner(new Base);
    PtrT<Base> ptr(owner);
    PtrT<Base> const &self = ptr;
    ptr = self;
    QCOMPARE(ptr.get(), owner.get());
    owner.reset();
    QVERIFY(!ptr);
}

void tst_PtrT::selfMoveKeepsTheTarget()
{
    RefT<Base> owner(new Base);
    PtrT<Base> ptr(owner);
    PtrT<Base> &self = ptr;
    ptr = std::move(self);
    QCOMPARE(ptr.get(), owner.get());
    owner.reset();
    QVERIFY(!ptr);
}

void tst_PtrT::copyWatchesByItself()
{
    RefT<Base> owner(new Base);
    auto original = std::make_unique<PtrT<Base>>(owner);
    const PtrT<Base> copy(*original);
    original.reset();
    QCOMPARE(copy.get(), owner.get());
    owner.reset();
    QVERIFY(!copy);
}

void tst_PtrT::movedFromPointerReadsNull()
{
    RefT<Base> owner(new Base);
    PtrT<Base> original(owner);
    const PtrT<Base> moved(std::move(original));
    QVERIFY(!original);
    QCOMPARE(moved.get(), owner.get());
    original = owner;
    owner.reset();
    QVERIFY(!moved);
    QVERIFY(!original);
}

void tst_PtrT::moveReplacesTheOldTarget()
{
    RefT<Base> first(new Base), second(new Base);
    PtrT<Base> from(first), to(second);
    to = std::move(from);
    QVERIFY(!from);
    second.reset();
    QCOMPARE(to.get(), first.get());
    first.reset();
    QVERIFY(!to);
}

void tst_PtrT::moveOfNullReadsNull()
{
    const RefT<Base> owner(new Base);
    PtrT<Base> from, to(owner);
    to = std::move(from);
    QVERIFY(!to);
    const PtrT<Base> fresh(std::move(from));
    QVERIFY(!fresh);
}

void tst_PtrT::baseIsWatchedThroughADerivedPointer()
{
    RefT<Derived> owner(new Derived);
    const PtrT<Derived> derived(owner);
    const PtrT<Base> base(derived);
    PtrT<Class> root;
    root = derived;
    QCOMPARE(base.get(), static_cast<Base *>(owner.get()));
    QCOMPARE(root.get(), static_cast<Class *>(owner.get()));
    owner.reset();
    QVERIFY(!base);
    QVERIFY(!root);
}

void tst_PtrT::watcherOfAReferenceReadsItsTarget()
{
    const RefT<Derived> owner(new Derived);
    PtrT<Base> ptr = owner;
    QCOMPARE(ptr.get(), static_cast<Base *>(owner.get()));
    ptr = RefT<Derived>(new Derived);
    QVERIFY2(!ptr, "the only reference was a temporary");
}

void tst_PtrT::middleOfTheListMayLeave_data()
{
    QTest::addColumn<int>("leaving");
    QTest::newRow("youngest link, the head") << 4;
    QTest::newRow("one between") << 2;
    QTest::newRow("eldest link, the tail") << 0;
}

void tst_PtrT::middleOfTheListMayLeave()
{
    QFETCH(int, leaving);
    RefT<Base> owner(new Base);
    PtrT<Base> watchers[5];
    for (PtrT<Base> &watcher : watchers)
        watcher = owner;
    watchers[leaving].reset();
    for (int i = 0; i < 5; ++i)
        QCOMPARE(watchers[i].get(), i == leaving ? nullptr : owner.get());
    owner.reset();
    for (PtrT<Base> const &watcher : watchers)
        QVERIFY(!watcher);
}

void tst_PtrT::listStaysWholeInAnyOrder_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// Random links, moves and deaths, compared with plain pointers after each step.
void tst_PtrT::listStaysWholeInAnyOrder()
{
    QFETCH(unsigned, seed);
    std::mt19937 gen(seed);
    const auto below = [&](std::size_t n) { return gen() % n; };
    RefT<Base> owners[4];
    PtrT<Base> watchers[12];
    Base *expected[12] = {};
    for (int step = 0; step < 2000; ++step) {
        const std::size_t i = below(12), j = below(12), k = below(4);
        switch (below(6)) {
        case 0:
            watchers[i] = owners[k];
            expected[i] = owners[k].get();
            break;
        case 1:
            watchers[i] = watchers[j];
            expected[i] = expected[j];
            break;
        case 2:
            watchers[i] = std::move(watchers[j]);
            expected[i] = expected[j];
            if (i != j)
                expected[j] = nullptr;
            break;
        case 3:
            watchers[i].reset();
            expected[i] = nullptr;
            break;
        case 4:
            for (Base *&target : expected)
                target = target == owners[k].get() ? nullptr : target;
            owners[k].reset();
            break;
        default:
            if (!owners[k])
                owners[k] = RefT<Base>(new Base);
        }
        for (std::size_t w = 0; w < 12; ++w)
            QCOMPARE(watchers[w].get(), expected[w]);
    }
}

void tst_PtrT::pointersInAGrowingVectorStayLinked()
{
    RefT<Base> owner(new Base);
    std::vector<PtrT<Base>> watchers;
    for (int i = 0; i < 1000; ++i)
        watchers.emplace_back(owner);
    watchers.erase(watchers.begin() + 10, watchers.begin() + 500);
    for (PtrT<Base> const &watcher : watchers)
        QCOMPARE(watcher.get(), owner.get());
    owner.reset();
    for (PtrT<Base> const &watcher : watchers)
        QVERIFY(!watcher);
}

void tst_PtrT::orderIsThatOfTheAddresses()
{
    Base objects[2];
    const PtrT<Base> low(objects[0]), high(objects[1]);
    const PtrT<Base> null;
    QVERIFY(low < high);
    QVERIFY(!(high < low));
    QVERIFY(!(low < low));
    QVERIFY(null < low);
    QVERIFY(!(low < null));
    QVERIFY(!(null < null));
}

void tst_PtrT::equalityIsThatOfTheTargets()
{
    const RefT<Derived> owner(new Derived);
    const PtrT<Base> base(owner);
    const PtrT<Derived> derived(owner);
    const PtrT<Base> null;
    QVERIFY(base == derived);
    QVERIFY(base == owner);
    QVERIFY(!(base != derived));
    QVERIFY(base != null);
    QVERIFY(null == PtrT<Base>());
}

void tst_PtrT::pointersAreMapKeys()
{
    std::vector<RefT<Base>> owners;
    std::map<PtrT<Base>, std::size_t> places;
    for (std::size_t i = 0; i < 100; ++i) {
        owners.emplace_back(new Base);
        places[owners.back()] = i;
    }
    for (std::size_t i = 0; i < 100; ++i)
        QCOMPARE(places.at(owners[i]), i);
    Class *before = nullptr;
    for (auto const &[key, place] : places) {
        QVERIFY(before < key.get());
        before = key.get();
    }
    QVERIFY(places.find(PtrT<Base>()) == places.end());
}

void tst_PtrT::pointerAndReferenceAreOneKey()
{
    const RefT<Base> owner(new Base);
    std::set<PtrT<Base>, std::less<>> keys{owner};
    QVERIFY(keys.count(owner) == 1);
}

void tst_PtrT::stackObjectIsWatched()
{
    PtrT<Base> ptr;
    {
        Base object;
        ptr = PtrT<Base>(object);
        QCOMPARE(ptr.get(), &object);
    }
    QVERIFY(!ptr);
}

void tst_PtrT::memberObjectIsWatched()
{
    struct Holder {
        int before = 0;
        Base member;
    };
    PtrT<Base> ptr;
    {
        const auto holder = std::make_unique<Holder>();
        ptr = PtrT<Base>(holder->member);
        QCOMPARE(ptr.get(), &holder->member);
    }
    QVERIFY(!ptr);
}

void tst_PtrT::secondBaseIsWatched()
{
    struct First {
        virtual ~First() = default;
        int number = 5;
    };
    struct Widget : First, Base {};
    RefT<Widget> owner(new Widget);
    const PtrT<Widget> ptr(owner);
    const PtrT<Base> base(ptr);
    QCOMPARE(ptr->number, 5);
    QVERIFY(static_cast<void *>(ptr.get()) != static_cast<void *>(base.get()));
    QCOMPARE(cast<Widget>(base), owner.get());
    owner.reset();
    QVERIFY(!ptr);
    QVERIFY(!base);
}

void tst_PtrT::pointerMayLieInItsTarget()
{
    struct Narcissus : Class {
        Narcissus()
            : self(this)
        {
        }
        PtrT<Narcissus> self;
    };
    RefT<Narcissus> owner(new Narcissus);
    QCOMPARE(owner->self.get(), owner.get());
    owner.reset();
    Narcissus onStack;
    QCOMPARE(onStack.self.get(), &onStack);
}

void tst_PtrT::checkedCastAnswersNullForAnotherClass()
{
    const RefT<Derived> owner(new Derived);
    const PtrT<Class> ptr(owner);
    QCOMPARE(cast<Base>(ptr), static_cast<Base *>(owner.get()));
    QCOMPARE(cast<Derived>(owner), owner.get());
    QVERIFY(cast<Other>(ptr) == nullptr);
    QVERIFY(cast<Base>(PtrT<Class>()) == nullptr);
}

void tst_PtrT::copiedObjectHasItsOwnWatchers()
{
    RefT<Base> original(new Base);
    const PtrT<Base> watcher(original);
    const RefT<Base> copy(new Base(*original));
    QCOMPARE(watcher.get(), original.get());
    original.reset();
    QVERIFY(!watcher);
    QVERIFY(copy);
}

void tst_PtrT::assignedObjectKeepsItsWatchers()
{
    Base first, second;
    const PtrT<Base> toFirst(first), toSecond(second);
    first = second;
    QCOMPARE(toFirst.get(), &first);
    QCOMPARE(toSecond.get(), &second);
}

QTEST_APPLESS_MAIN(tst_PtrT)

#include "tst_PtrT.moc"
