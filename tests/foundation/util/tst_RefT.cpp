#include "foundation/Probe.h"
#include "zrVOMGUI/foundation/util/Class.h"

#include <QTest>

#include <memory>
#include <stdexcept>
#include <type_traits>
#include <vector>

using namespace ZR;
using foundation_test::Probe;

namespace {

/// Owns another object.
class Link : public Class {
public:
    explicit Link(RefT<Link> const &nextLink = {})
        : next(nextLink)
    {
    }

    RefT<Link> next;
};

class Reset : public Ref {
public:
    using Ref::reset;
    using Ref::set;
};

static_assert(sizeof(RefT<Class>) == sizeof(PtrT<Class>));
static_assert(std::is_base_of_v<Ref, RefT<Class>> && std::is_base_of_v<Ptr, Ref>);
static_assert(!std::is_constructible_v<Ref>, "Only RefT makes references.");
static_assert(std::is_copy_constructible_v<RefT<Class>> && std::is_copy_assignable_v<RefT<Class>>);
// Lists of references grow by moving.
static_assert(std::is_nothrow_move_constructible_v<RefT<Class>>);
static_assert(std::is_nothrow_move_assignable_v<RefT<Class>>);
static_assert(std::is_convertible_v<RefT<Probe>, RefT<Class>>);
static_assert(!std::is_convertible_v<RefT<Class>, RefT<Probe>>);
static_assert(std::is_convertible_v<PtrT<Probe>, RefT<Class>>);
static_assert(!std::is_convertible_v<PtrT<Class>, RefT<Probe>>);

} // namespace

class tst_RefT : public QObject {
    Q_OBJECT

private slots:
    void init() { destructions = 0; }

    void defaultReferenceReadsNull();
    void lastReferenceDestroys();
    void resetReadsNullThroughPtr();
    void baseSetAndResetCount();
    void copyKeepsAlive();
    void assignmentReleasesTheOldTarget();
    void assignmentOfTheSameTargetKeepsIt();
    void selfAssignmentKeepsTheTarget();
    void selfMoveKeepsTheTarget();
    void moveHandsOverAndLeavesNull();
    void moveAssignmentReleasesTheOldTarget();
    void referenceFromAWatcherOwns();
    void referenceFromAPlainPointerOwns();
    void referenceThroughABaseDestroysTheWhole();
    void secondBaseIsOwned();
    void objectWithoutReferenceLivesOn();
    void objectWithoutReferenceMayBeDeletedByHand();

    void stepAlongAChainKeepsTheRest();
    void moveAlongAChainKeepsTheRest();
    void longChainIsDestroyedWithoutDeepRecursion();
    void wideTreeBelowADeepChainIsDestroyed();

    void stackObjectIsNotOwned();
    void memberObjectIsNotOwned();
    void memberOfAHeapObjectIsNotOwned();
    void memberOfTheOldTargetReadsNull();
    void arrayElementIsNotOwned();
    void movedReferenceToAStackObjectReadsNullAfterDeath();

    void objectCreatedAsAConstructorArgumentIsOwned();
    void manyNestedConstructorArgumentsAreOwned();
    void throwingConstructorLeavesNothing();
    void throwingConstructorArgumentLeavesNothing();
    void memberInThePlaceOfAFailedObjectIsNotOwned();
    void referenceTakenInTheConstructorOwns();

private:
    int destructions = 0;
};

void tst_RefT::defaultReferenceReadsNull()
{
    const RefT<Probe> ref;
    QVERIFY(!ref);
    QVERIFY(ref.get() == nullptr);
    Probe *const noObject = nullptr;
    QVERIFY(!RefT<Probe>(nullptr));
    QVERIFY(!RefT<Probe>(noObject));
    QVERIFY(!RefT<Class>(PtrT<Probe>()));
    QVERIFY(!RefT<Class>(RefT<Probe>()));
}

void tst_RefT::lastReferenceDestroys()
{
    {
        const RefT<Probe> first(new Probe(destructions));
        {
            const RefT<Probe> second(first);
        }
        QCOMPARE(destructions, 0);
    }
    QCOMPARE(destructions, 1);
}

void tst_RefT::resetReadsNullThroughPtr()
{
    RefT<Probe> ref(new Probe(destructions));
    Ptr const &base = ref;
    QVERIFY(base.get() != nullptr);
    ref.reset();
    QVERIFY(base.get() == nullptr);
    QCOMPARE(destructions, 1);
    ref.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::baseSetAndResetCount()
{
    auto *const probe = new Probe(destructions);
    Reset first, second;
    first.set(*probe);
    first.set(*probe);
    second.set(*probe);
    first.reset();
    QVERIFY(first.get() == nullptr);
    QCOMPARE(destructions, 0);
    second.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::copyKeepsAlive()
{
    RefT<Probe> first(new Probe(destructions));
    const RefT<Probe> second(first);
    first.reset();
    QCOMPARE(destructions, 0);
    second->value = 5;
    QCOMPARE((*second).value, 5);
}

void tst_RefT::assignmentReleasesTheOldTarget()
{
    RefT<Probe> ref(new Probe(destructions));
    const RefT<Probe> other(new Probe(destructions));
    ref = other;
    QCOMPARE(destructions, 1);
    QCOMPARE(ref.get(), other.get());
    ref = nullptr;
    QCOMPARE(destructions, 1);
    QVERIFY(!ref);
}

void tst_RefT::assignmentOfTheSameTargetKeepsIt()
{
    RefT<Probe> ref(new Probe(destructions));
    const PtrT<Probe> watcher(ref);
    ref = RefT<Probe>(watcher);
    QCOMPARE(destructions, 0);
    ref.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::selfAssignmentKeepsTheTarget()
{
    RefT<Probe> ref(new Probe(destructions));
    RefT<Probe> const &self = ref;
    ref = self;
    QVERIFY(ref);
    QCOMPARE(destructions, 0);
}

void tst_RefT::selfMoveKeepsTheTarget()
{
    RefT<Probe> ref(new Probe(destructions));
    RefT<Probe> &self = ref;
    ref = std::move(self);
    QVERIFY(ref);
    QCOMPARE(destructions, 0);
}

void tst_RefT::moveHandsOverAndLeavesNull()
{
    RefT<Probe> from(new Probe(destructions));
    RefT<Probe> to(std::move(from));
    QVERIFY(!from);
    QVERIFY(to);
    from.reset();
    QCOMPARE(destructions, 0);
    to.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::moveAssignmentReleasesTheOldTarget()
{
    RefT<Probe> from(new Probe(destructions)), to(new Probe(destructions));
    Probe *const moved = from.get();
    to = std::move(from);
    QCOMPARE(destructions, 1);
    QCOMPARE(to.get(), moved);
    QVERIFY(!from);
    to = RefT<Probe>();
    QCOMPARE(destructions, 2);
}

void tst_RefT::referenceFromAWatcherOwns()
{
    RefT<Probe> first(new Probe(destructions));
    const PtrT<Probe> watcher(first);
    {
        const RefT<Class> second = watcher;
        first.reset();
        QCOMPARE(destructions, 0);
        QVERIFY(watcher);
    }
    QCOMPARE(destructions, 1);
    QVERIFY(!watcher);
}

void tst_RefT::referenceFromAPlainPointerOwns()
{
    auto *const probe = new Probe(destructions);
    RefT<Probe> first(probe);
    RefT<Probe> second(*probe);
    first.reset();
    QCOMPARE(destructions, 0);
    second.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::referenceThroughABaseDestroysTheWhole()
{
    RefT<Class> ref(new Probe(destructions));
    ref.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::secondBaseIsOwned()
{
    struct First {
        virtual ~First() = default;
        char text[40] = "first";
    };
    struct Widget : First, Probe {
        using Probe::Probe;
    };
    RefT<Widget> whole(new Widget(destructions));
    RefT<Probe> part(whole);
    whole.reset();
    QCOMPARE(destructions, 0);
    part.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::objectWithoutReferenceLivesOn()
{
    auto *const probe = new Probe(destructions);
    const PtrT<Probe> watcher(probe);
    QVERIFY(watcher);
    QCOMPARE(destructions, 0);
    const RefT<Probe> ref(probe);
}

void tst_RefT::objectWithoutReferenceMayBeDeletedByHand()
{
    auto *const probe = new Probe(destructions);
    const PtrT<Probe> watcher(probe);
    delete probe;
    QCOMPARE(destructions, 1);
    QVERIFY(!watcher);
}

void tst_RefT::stepAlongAChainKeepsTheRest()
{
    RefT<Link> link(new Link(RefT<Link>(new Link(RefT<Link>(new Link)))));
    const PtrT<Link> first(link), second(link->next), third(link->next->next);
    // What is assigned lies in the object that goes.
    link = link->next;
    QVERIFY(!first);
    QCOMPARE(link.get(), second.get());
    link = link->next;
    QVERIFY(!second);
    QCOMPARE(link.get(), third.get());
    link = link->next;
    QVERIFY(!third);
    QVERIFY(!link);
}

void tst_RefT::moveAlongAChainKeepsTheRest()
{
    RefT<Link> link(new Link(RefT<Link>(new Link)));
    const PtrT<Link> first(link), second(link->next);
    link = std::move(link->next);
    QVERIFY(!first);
    QCOMPARE(link.get(), second.get());
}

void tst_RefT::longChainIsDestroyedWithoutDeepRecursion()
{
    RefT<Link> link;
    std::vector<PtrT<Link>> watchers;
    for (int i = 0; i < 1000000; ++i) {
        link = RefT<Link>(new Link(link));
        if (i % 1000 == 0)
            watchers.emplace_back(link);
    }
    link.reset();
    for (PtrT<Link> const &watcher : watchers)
        QVERIFY(!watcher);
}

void tst_RefT::wideTreeBelowADeepChainIsDestroyed()
{
    struct Branch : Probe {
        using Probe::Probe;
        std::vector<RefT<Branch>> children;
    };
    RefT<Branch> root(new Branch(destructions));
    Branch *deepest = root.get();
    for (int i = 0; i < 150; ++i) {
        for (int leaf = 0; leaf < 10; ++leaf)
            deepest->children.emplace_back(new Branch(destructions));
        deepest = deepest->children.back().get();
    }
    root.reset();
    QCOMPARE(destructions, 1501);
}

void tst_RefT::stackObjectIsNotOwned()
{
    RefT<Probe> ref;
    {
        Probe probe(destructions);
        ref = RefT<Probe>(probe);
        const RefT<Probe> copy(ref);
        RefT<Probe> dropped(probe);
        dropped.reset();
        QCOMPARE(destructions, 0);
        QCOMPARE(ref.get(), &probe);
    }
    QCOMPARE(destructions, 1);
    QVERIFY(!ref);
}

void tst_RefT::memberObjectIsNotOwned()
{
    struct Holder {
        explicit Holder(int &destructions)
            : member(destructions)
        {
        }
        Probe member;
    };
    RefT<Probe> ref;
    {
        const auto holder = std::make_unique<Holder>(destructions);
        ref = RefT<Probe>(holder->member);
        QVERIFY(ref);
    }
    QCOMPARE(destructions, 1);
    QVERIFY(!ref);
}

void tst_RefT::memberOfAHeapObjectIsNotOwned()
{
    struct Holder : Class {
        explicit Holder(int &destructions)
            : member(destructions)
        {
        }
        Probe member;
    };
    RefT<Holder> holder(new Holder(destructions));
    RefT<Probe> member(holder->member);
    member.reset();
    QCOMPARE(destructions, 0);
    member = RefT<Probe>(holder->member);
    holder.reset();
    QCOMPARE(destructions, 1);
    QVERIFY(!member);
}

void tst_RefT::memberOfTheOldTargetReadsNull()
{
    struct Holder : Class {
        explicit Holder(int &destructions)
            : member(destructions)
        {
        }
        Probe member;
    };
    RefT<Class> ref(new Holder(destructions));
    ref = RefT<Class>(static_cast<Holder *>(ref.get())->member);
    QCOMPARE(destructions, 1);
    QVERIFY(!ref);

    Reset plain;
    auto *const holder = new Holder(destructions);
    plain.set(*holder);
    plain.set(holder->member);
    QCOMPARE(destructions, 2);
    QVERIFY(!plain);
}

void tst_RefT::arrayElementIsNotOwned()
{
    std::vector<RefT<Link>> refs;
    {
        const std::unique_ptr<Link[]> links(new Link[3]);
        for (int i = 0; i < 3; ++i)
            refs.emplace_back(links[i]);
        refs.erase(refs.begin());
        QVERIFY(refs[0] && refs[1]);
    }
    QVERIFY(!refs[0] && !refs[1]);
}

void tst_RefT::movedReferenceToAStackObjectReadsNullAfterDeath()
{
    RefT<Probe> to;
    {
        Probe probe(destructions);
        RefT<Probe> from(probe);
        RefT<Probe> between(std::move(from));
        QVERIFY(!from);
        to = std::move(between);
        QVERIFY(!between);
        QCOMPARE(to.get(), &probe);
    }
    QVERIFY(!to);
}

void tst_RefT::objectCreatedAsAConstructorArgumentIsOwned()
{
    RefT<Link> outer(new Link(new Link(new Link)));
    const PtrT<Link> first(outer), second(outer->next), third(outer->next->next);
    outer.reset();
    QVERIFY(!first && !second && !third);
}

namespace {

struct Nest : Probe {
    Nest(int &destructions, int depth)
        : Probe(destructions)
        , inner(depth > 0 ? new Nest(destructions, depth - 1) : nullptr)
    {
    }
    RefT<Nest> inner;
};

struct NestInArgument : Probe {
    NestInArgument(int &destructions, NestInArgument *innerNest)
        : Probe(destructions)
        , inner(innerNest)
    {
    }
    static NestInArgument *create(int &destructions, int depth)
    {
        return depth > 0 ? new NestInArgument(destructions, create(destructions, depth - 1))
                         : nullptr;
    }
    RefT<NestInArgument> inner;
};

} // namespace

void tst_RefT::manyNestedConstructorArgumentsAreOwned()
{
    RefT<Nest> nest(new Nest(destructions, 100));
    nest.reset();
    QCOMPARE(destructions, 101);

    // No more blocks than this may be waiting for their objects at once.
    destructions = 0;
    RefT<NestInArgument> argument(NestInArgument::create(destructions, 32));
    argument.reset();
    QCOMPARE(destructions, 32);
}

void tst_RefT::throwingConstructorLeavesNothing()
{
    struct Thrower : Probe {
        Thrower(int &destructions, PtrT<Thrower> &watcher)
            : Probe(destructions)
        {
            watcher = PtrT<Thrower>(this);
            throw std::runtime_error("constructor");
        }
    };
    PtrT<Thrower> watcher;
    QVERIFY_EXCEPTION_THROWN(new Thrower(destructions, watcher), std::runtime_error);
    QCOMPARE(destructions, 1);
    QVERIFY(!watcher);
}

namespace {

int raise()
{
    throw std::runtime_error("argument");
}

struct Numbered : Probe {
    Numbered(int &destructions, int number)
        : Probe(destructions)
    {
        value = number;
    }
};

} // namespace

void tst_RefT::throwingConstructorArgumentLeavesNothing()
{
    QVERIFY_EXCEPTION_THROWN(new Numbered(destructions, raise()), std::runtime_error);
    QCOMPARE(destructions, 0);
    RefT<Probe> next(new Numbered(destructions, 5));
    QCOMPARE(next->value, 5);
    next.reset();
    QCOMPARE(destructions, 1);
}

void tst_RefT::memberInThePlaceOfAFailedObjectIsNotOwned()
{
    struct Holder {
        explicit Holder(int &destructions)
            : member(destructions)
        {
        }
        Probe member;
    };
    static_assert(sizeof(Holder) == sizeof(Numbered), "Both fit into the same memory.");
    for (int i = 0; i < 10; ++i) {
        QVERIFY_EXCEPTION_THROWN(new Numbered(destructions, raise()), std::runtime_error);
        const auto holder = std::make_unique<Holder>(destructions);
        RefT<Probe> ref(holder->member);
        ref.reset();
        QCOMPARE(destructions, i);
    }
}

void tst_RefT::referenceTakenInTheConstructorOwns()
{
    struct Registered : Probe {
        Registered(int &destructions, RefT<Registered> &registry)
            : Probe(destructions)
        {
            registry = RefT<Registered>(this);
        }
    };
    RefT<Registered> registry;
    auto *const created = new Registered(destructions, registry);
    QCOMPARE(registry.get(), created);
    registry.reset();
    QCOMPARE(destructions, 1);
}

QTEST_APPLESS_MAIN(tst_RefT)

#include "tst_RefT.moc"
