#include "foundation/Probe.h"
#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/util/Object.h"

#include <QTest>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;
using foundation_test::Probe;

namespace {

/// Notes the order of its destruction's steps.
class Recorder : public Class {
public:
    explicit Recorder(std::string &destination)
        : steps(destination)
    {
    }
    ~Recorder() override { steps += "~"; }

private:
    std::string &steps;
};

/// Lets its slots read its members also when no reference owns it.
class Announcer : public Class {
public:
    ~Announcer() override { announceDelete(); }

    std::string text = "a text that lies on the heap and not in the object";
};

static_assert(std::has_virtual_destructor_v<Class>);
static_assert(!std::is_constructible_v<Class>, "A root to derive from.");
static_assert(!std::is_copy_constructible_v<Class::LockPtr>);
static_assert(!std::is_convertible_v<unsigned, Flags>);
static_assert(std::is_base_of_v<Class, Object> && std::is_default_constructible_v<Object>);
static_assert(sizeof(Class) <= 5 * sizeof(void *), "Models hold millions of objects.");

} // namespace

class tst_Class : public QObject {
    Q_OBJECT

private slots:
    void init() { destructions = 0; }

    void sigDeleteComesBeforeAnyDestructor();
    void sigDeleteIsEmittedOnce();
    void pointersReadTheObjectInSigDelete();
    void stackObjectEmitsSigDelete();
    void handDeletedObjectEmitsSigDelete();
    void objectInGivenMemoryIsOwnedByNoReference();
    void stackObjectThatAnnouncesIsReadable();
    void sigDeleteDataCarriesWhatWasConnected();
    void memberOfADyingObjectEmitsItsOwnSigDelete();

    void referenceTakenInSigDeleteDoesNotReviveNorDestroyTwice();
    void referenceKeptFromSigDeleteReadsNull();
    void referenceMovedOutOfSigDeleteReadsNull();
    void watcherTakenInSigDeleteReadsNull();
    void referenceTakenInTheDestructorReadsNull();
    void referenceToAStackObjectKeptFromSigDeleteReadsNull();

    void slotThatThrowsIsReportedAndTheOthersAreCalled();
    void slotMayDisconnectItself();
    void slotMayDropTheLastReferenceToAnother();
    void slotMayDestroyTheHolderOfTheLastReference();
    void slotMayConnectFurtherSlots();
    void slotsDoNotOutliveTheObject();

    void lockMayBeTakenAgainByItsThread();
    void pointersMayBeSetUnderTheLock();
    void flagsAreAWord();

private:
    int destructions = 0;
};

void tst_Class::sigDeleteComesBeforeAnyDestructor()
{
    std::string steps;
    RefT<Recorder> object(new Recorder(steps));
    object->sigDelete.connect([&](SigVoidData const &) { steps += "sig"; });
    object.reset();
    QCOMPARE(steps, std::string("sig~"));
}

void tst_Class::sigDeleteIsEmittedOnce()
{
    int calls = 0;
    RefT<Announcer> object(new Announcer);
    object->sigDelete.connect([&](SigVoidData const &) { ++calls; });
    object.reset();
    QCOMPARE(calls, 1);
    {
        Announcer onStack;
        onStack.sigDelete.connect([&](SigVoidData const &) { ++calls; });
    }
    QCOMPARE(calls, 2);
}

void tst_Class::pointersReadTheObjectInSigDelete()
{
    RefT<Probe> object(new Probe(destructions));
    object->value = 5;
    const PtrT<Probe> watcher(object);
    int value = 0;
    object->sigDelete.connect([&](SigVoidData const &) { value = watcher ? watcher->value : -1; });
    object.reset();
    QCOMPARE(value, 5);
    QVERIFY(!watcher);
}

void tst_Class::stackObjectEmitsSigDelete()
{
    int calls = 0;
    PtrT<Class> watcher;
    bool wasReadable = false;
    {
        Probe object(destructions);
        watcher = PtrT<Class>(object);
        object.sigDelete.connect([&](SigVoidData const &) {
            ++calls;
            wasReadable = watcher != nullptr;
        });
    }
    QCOMPARE(calls, 1);
    QVERIFY(wasReadable);
    QVERIFY(!watcher);
}

void tst_Class::handDeletedObjectEmitsSigDelete()
{
    int calls = 0;
    auto *const object = new Probe(destructions);
    object->sigDelete.connect([&](SigVoidData const &) { ++calls; });
    delete object;
    QCOMPARE(calls, 1);
    QCOMPARE(destructions, 1);
}

void tst_Class::objectInGivenMemoryIsOwnedByNoReference()
{
    alignas(Probe) std::byte memory[sizeof(Probe)];
    Probe *const placed = new (memory) Probe(destructions);
    QCOMPARE(static_cast<void *>(placed), static_cast<void *>(memory));
    RefT<Probe>(placed).reset();
    QCOMPARE(destructions, 0);
    placed->~Probe();
    QCOMPARE(destructions, 1);
}

void tst_Class::stackObjectThatAnnouncesIsReadable()
{
    std::string read;
    PtrT<Class> watcher;
    {
        Announcer object;
        watcher = PtrT<Class>(object);
        object.sigDelete.connect([&](SigVoidData const &) {
            Announcer const *const announcer = cast<Announcer>(watcher);
            read = announcer ? announcer->text : std::string();
        });
    }
    QCOMPARE(read, std::string("a text that lies on the heap and not in the object"));
}

void tst_Class::sigDeleteDataCarriesWhatWasConnected()
{
    RefT<Probe> object(new Probe(destructions));
    object->value = 5;
    int value = 0;
    object->sigDelete.connect(
        [&](SigVoidData const &data) {
            Probe const *const probe = cast<Probe>(data.ptr);
            value = probe ? probe->value : -1;
        },
        object);
    object.reset();
    QCOMPARE(value, 5);
}

void tst_Class::memberOfADyingObjectEmitsItsOwnSigDelete()
{
    struct Holder : Class {
        explicit Holder(int &destructions)
            : member(destructions)
        {
        }
        Probe member;
    };
    int calls = 0;
    RefT<Holder> holder(new Holder(destructions));
    holder->member.sigDelete.connect([&](SigVoidData const &) { ++calls; });
    holder.reset();
    QCOMPARE(calls, 1);
}

void tst_Class::referenceTakenInSigDeleteDoesNotReviveNorDestroyTwice()
{
    int calls = 0;
    RefT<Probe> object(new Probe(destructions));
    const PtrT<Probe> watcher(object);
    object->sigDelete.connect([&](SigVoidData const &) {
        ++calls;
        RefT<Probe> first(watcher);
        RefT<Probe> second(first);
        first.reset();
        second = RefT<Probe>(watcher);
        QVERIFY(second);
    });
    object.reset();
    QCOMPARE(calls, 1);
    QCOMPARE(destructions, 1);
}

void tst_Class::referenceKeptFromSigDeleteReadsNull()
{
    RefT<Probe> object(new Probe(destructions)), kept;
    const PtrT<Probe> watcher(object);
    object->sigDelete.connect([&](SigVoidData const &) { kept = RefT<Probe>(watcher); });
    object.reset();
    QCOMPARE(destructions, 1);
    QVERIFY(!kept);
    kept.reset();
}

void tst_Class::referenceMovedOutOfSigDeleteReadsNull()
{
    RefT<Probe> object(new Probe(destructions)), kept(new Probe(destructions));
    const PtrT<Probe> watcher(object);
    object->sigDelete.connect([&](SigVoidData const &) {
        RefT<Probe> taken(watcher);
        kept = std::move(taken);
        QVERIFY(!taken);
        QVERIFY(kept);
    });
    object.reset();
    QCOMPARE(destructions, 2);
    QVERIFY(!kept);
}

void tst_Class::watcherTakenInSigDeleteReadsNull()
{
    RefT<Probe> object(new Probe(destructions));
    Probe *const plain = object.get();
    PtrT<Probe> taken;
    object->sigDelete.connect([&](SigVoidData const &) { taken = PtrT<Probe>(plain); });
    object.reset();
    QVERIFY(!taken);
}

void tst_Class::referenceTakenInTheDestructorReadsNull()
{
    struct Clinging : Probe {
        Clinging(int &destructions, RefT<Clinging> &destination)
            : Probe(destructions)
            , kept(destination)
        {
        }
        ~Clinging() override
        {
            const RefT<Clinging> dropped(this);
            kept = RefT<Clinging>(this);
        }
        RefT<Clinging> &kept;
    };
    RefT<Clinging> kept;
    RefT<Clinging> object(new Clinging(destructions, kept));
    object.reset();
    QCOMPARE(destructions, 1);
    QVERIFY(!kept);
}

void tst_Class::referenceToAStackObjectKeptFromSigDeleteReadsNull()
{
    RefT<Probe> kept;
    {
        Probe object(destructions);
        object.sigDelete.connect([&](SigVoidData const &) { kept = RefT<Probe>(object); });
    }
    QCOMPARE(destructions, 1);
    QVERIFY(!kept);
}

void tst_Class::slotThatThrowsIsReportedAndTheOthersAreCalled()
{
    std::vector<std::string> reports;
    const ErrorSink before = setErrorSink([&](std::string const &where, std::string const &what) {
        reports.push_back(where + ": " + what);
    });
    int calls = 0;
    RefT<Probe> object(new Probe(destructions));
    object->sigDelete.connect([](SigVoidData const &) { throw std::runtime_error("first"); });
    object->sigDelete.connect([](SigVoidData const &) { throw 5; });
    object->sigDelete.connect([&](SigVoidData const &) { ++calls; });
    object.reset();
    setErrorSink(before);
    QCOMPARE(calls, 1);
    QCOMPARE(destructions, 1);
    QCOMPARE(reports, (std::vector<std::string>{"ZR::Class::sigDelete: first",
                                                "ZR::Class::sigDelete: unknown exception"}));
}

void tst_Class::slotMayDisconnectItself()
{
    int calls = 0;
    RefT<Probe> object(new Probe(destructions));
    Signal::Connection connection = object->sigDelete.connect([&](SigVoidData const &) {
        connection.disconnect();
        ++calls;
    });
    object->sigDelete.connect([&](SigVoidData const &) { ++calls; });
    object.reset();
    QCOMPARE(calls, 2);
}

void tst_Class::slotMayDropTheLastReferenceToAnother()
{
    RefT<Probe> first(new Probe(destructions)), second(new Probe(destructions));
    first->sigDelete.connect([&](SigVoidData const &) {
        second.reset();
        QCOMPARE(destructions, 1);
    });
    first.reset();
    QCOMPARE(destructions, 2);
}

void tst_Class::slotMayDestroyTheHolderOfTheLastReference()
{
    auto holder = std::make_unique<RefT<Probe>>(new Probe(destructions));
    (*holder)->sigDelete.connect([&](SigVoidData const &) { holder.reset(); });
    RefT<Probe> moved(std::move(*holder));
    moved.reset();
    QCOMPARE(destructions, 1);
    QVERIFY(!holder);
}

void tst_Class::slotMayConnectFurtherSlots()
{
    int calls = 0;
    RefT<Probe> object(new Probe(destructions));
    Probe *const plain = object.get();
    object->sigDelete.connect([&, plain](SigVoidData const &) {
        plain->sigDelete.connect([&](SigVoidData const &) { calls += 10; });
    });
    object->sigDelete.connect([&](SigVoidData const &) { ++calls; });
    object.reset();
    QCOMPARE(calls, 11);
}

void tst_Class::slotsDoNotOutliveTheObject()
{
    auto held = std::make_shared<int>(0);
    RefT<Probe> object(new Probe(destructions));
    const Signal::Connection connection = object->sigDelete.connect([held](SigVoidData const &) {});
    object.reset();
    QCOMPARE(held.use_count(), 1l);
}

void tst_Class::lockMayBeTakenAgainByItsThread()
{
    Probe probe(destructions);
    {
        const Class::LockPtr outer(probe);
        const Class::LockPtr inner(probe);
    }
    const PtrT<Probe> watcher(probe);
    QVERIFY(watcher);
}

void tst_Class::pointersMayBeSetUnderTheLock()
{
    // So many that some share a lock.
    std::vector<std::unique_ptr<Probe>> probes;
    for (int i = 0; i < 1000; ++i)
        probes.push_back(std::make_unique<Probe>(destructions));
    PtrT<Probe> watcher;
    const Class::LockPtr lock(*probes.front());
    for (std::unique_ptr<Probe> const &probe : probes) {
        watcher = PtrT<Probe>(probe.get());
        QCOMPARE(watcher.get(), probe.get());
    }
    watcher = PtrT<Probe>(probes.front().get());
    QVERIFY(watcher);
}

void tst_Class::flagsAreAWord()
{
    Flags flags(5);
    QCOMPARE(flags.getFlags(), 5u);
    flags.setFlags(~0u);
    QCOMPARE(flags.getFlags(), ~0u);
    QCOMPARE(Flags().getFlags(), 0u);
}

QTEST_APPLESS_MAIN(tst_Class)

#include "tst_Class.moc"
