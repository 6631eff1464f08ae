#include "foundation/Probe.h"
#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/util/Signal.h"

#include <QTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

using namespace ZR;
using foundation_test::Probe;

namespace {

struct SigTextData : SigVoidData {
    std::string text;
};

/// Holds connections of its own making, as the classes with signals do.
class Handle : public Signal::Connection {
public:
    Handle(Signal &signal, unsigned slotId)
        : Connection(signal, slotId)
    {
    }
};

class Listener {
public:
    void onText(SigTextData const &data) { heard += data.text; }

    std::string heard;
};

static_assert(sizeof(SignalT<SigVoidData>) == 2 * sizeof(void *),
              "A signal without listeners costs one pointer beside its vtable.");
static_assert(std::is_base_of_v<Signal, SignalT<SigVoidData>>);
static_assert(!std::is_copy_constructible_v<SignalT<SigVoidData>>);
static_assert(!std::is_default_constructible_v<Signal>, "Only SignalT makes signals.");
static_assert(std::has_virtual_destructor_v<Signal>);
static_assert(std::is_nothrow_destructible_v<SignalT<SigVoidData>>);

static_assert(std::is_default_constructible_v<Signal::Connection>);
static_assert(std::is_copy_constructible_v<Signal::Connection>);
static_assert(std::is_copy_assignable_v<Signal::Connection>);
static_assert(std::is_nothrow_move_constructible_v<Signal::Connection>);
static_assert(std::is_nothrow_move_assignable_v<Signal::Connection>);
static_assert(!std::is_constructible_v<Signal::Connection, Signal &, unsigned>);

} // namespace

class tst_SignalT : public QObject {
    Q_OBJECT

private slots:
    void signalTellsWhetherAnybodyListens();
    void emissionWithoutSlotsDoesNothing();
    void slotsAreCalledInTheOrderOfConnecting();
    void memberFunctionIsCalledOnItsObject();
    void dataReachesTheSlot();
    void emptyFunctionRaisesBadFunctionCall();

    void slotWithoutPointerReadsNull();
    void eachSlotGetsItsOwnPtrAndRef();
    void dataIsResetForASlotWithoutPointer();
    void memberFunctionGetsPtrAndRef();
    void ptrOfADeadObjectReadsNull();
    void signalKeepsTheRefAliveUntilDisconnection();
    void signalKeepsTheRefAliveUntilItsOwnEnd();

    void idsStartAboveZeroAndRise();
    void idOfADisconnectedSlotIsNotGivenAgain();
    void isConnectedTellsWhetherTheSlotExists();
    void disconnectingAnAbsentIdDoesNothing();

    void droppedConnectionStaysConnected();
    void disconnectEndsTheCalls();
    void disconnectOnAnEmptyHandleDoesNothing();
    void disconnectTwiceDoesNothing();
    void copyDisconnectsAndTheOtherCopyDoesNothing();
    void assignedCopyDisconnects();
    void movedFromConnectionIsEmpty();
    void reassignedConnectionLeavesTheOldSlotConnected();
    void disconnectAfterTheSignalsEndDoesNothing();
    void handleOfAnotherSignalLeavesEqualIdsAlone();
    void functionGoesWithTheDisconnection();

    void exceptionPassesOnToTheEmitter();
    void slotsBehindAnExceptionAreNotCalled();
    void signalIsReadyAfterAnException();
    void emitCatchingCallsTheSlotsBehindAnException();
};

void tst_SignalT::emissionWithoutSlotsDoesNothing()
{
    SignalT<SigTextData> signal;
    SigTextData data;
    signal.emit(data);
    QVERIFY(!signal.isConnected(0));
    QVERIFY(!signal.isConnected(1));
}

void tst_SignalT::slotsAreCalledInTheOrderOfConnecting()
{
    SignalT<SigVoidData> signal;
    std::string calls;
    for (char const *name : {"a", "b", "c"})
        signal.connect([&calls, name](SigVoidData const &) { calls += name; });
    SigVoidData data;
    signal.emit(data);
    signal.emit(data);
    QCOMPARE(calls, std::string("abcabc"));
}

void tst_SignalT::memberFunctionIsCalledOnItsObject()
{
    SignalT<SigTextData> signal;
    Listener first, second;
    signal.connect(first, &Listener::onText);
    Signal::Connection connection = signal.connect(second, &Listener::onText);
    SigTextData data;
    data.text = "x";
    signal.emit(data);
    connection.disconnect();
    signal.emit(data);
    QCOMPARE(first.heard, std::string("xx"));
    QCOMPARE(second.heard, std::string("x"));
}

void tst_SignalT::dataReachesTheSlot()
{
    SignalT<SigTextData> signal;
    SigTextData const *seen = nullptr;
    signal.connect([&](SigTextData const &data) { seen = &data; });
    SigTextData data;
    signal.emit(data);
    QCOMPARE(seen, &data);
}

void tst_SignalT::emptyFunctionRaisesBadFunctionCall()
{
    SignalT<SigVoidData> signal;
    Signal::Connection connection = signal.connect(SignalT<SigVoidData>::Function());
    int calls = 0;
    signal.connect([&](SigVoidData const &) { ++calls; });
    SigVoidData data;
    QVERIFY_EXCEPTION_THROWN(signal.emit(data), std::bad_function_call);
    QCOMPARE(calls, 0);
    connection.disconnect();
    signal.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::slotWithoutPointerReadsNull()
{
    SignalT<SigVoidData> signal;
    bool wasNull = false;
    signal.connect([&](SigVoidData const &data) { wasNull = !data.ptr && !data.ref; });
    SigVoidData data;
    signal.emit(data);
    QVERIFY(wasNull);
}

void tst_SignalT::eachSlotGetsItsOwnPtrAndRef()
{
    int destructions = 0;
    const RefT<Probe> a(new Probe(destructions)), b(new Probe(destructions));
    SignalT<SigVoidData> signal;
    std::vector<Class *> ptrs, refs;
    const auto note = [&](SigVoidData const &data) {
        ptrs.push_back(data.ptr.get());
        refs.push_back(data.ref.get());
    };
    signal.connect(note, a);
    signal.connect(note, b, a);
    signal.connect(note, {}, b);
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(ptrs, (std::vector<Class *>{a.get(), b.get(), nullptr}));
    QCOMPARE(refs, (std::vector<Class *>{nullptr, a.get(), b.get()}));
}

void tst_SignalT::dataIsResetForASlotWithoutPointer()
{
    int destructions = 0;
    const RefT<Probe> a(new Probe(destructions));
    SignalT<SigVoidData> signal;
    bool wasNull = false;
    signal.connect([](SigVoidData const &) {}, a, a);
    signal.connect([&](SigVoidData const &data) { wasNull = !data.ptr && !data.ref; });
    SigVoidData data;
    data.ptr = a;
    data.ref = a;
    signal.emit(data);
    QVERIFY(wasNull);
}

void tst_SignalT::memberFunctionGetsPtrAndRef()
{
    struct Receiver {
        void onSignal(SigVoidData const &data)
        {
            ptr = data.ptr.get();
            ref = data.ref.get();
        }
        Class *ptr = nullptr;
        Class *ref = nullptr;
    } receiver;
    int destructions = 0;
    const RefT<Probe> a(new Probe(destructions)), b(new Probe(destructions));
    SignalT<SigVoidData> signal;
    signal.connect(receiver, &Receiver::onSignal, a, b);
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(receiver.ptr, static_cast<Class *>(a.get()));
    QCOMPARE(receiver.ref, static_cast<Class *>(b.get()));
}

void tst_SignalT::ptrOfADeadObjectReadsNull()
{
    int destructions = 0;
    RefT<Probe> object(new Probe(destructions));
    SignalT<SigVoidData> signal;
    int calls = 0;
    bool wasNull = false;
    signal.connect(
        [&](SigVoidData const &data) {
            ++calls;
            wasNull = !data.ptr;
        },
        object);
    object.reset();
    QCOMPARE(destructions, 1);
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, 1);
    QVERIFY(wasNull);
}

void tst_SignalT::signalKeepsTheRefAliveUntilDisconnection()
{
    int destructions = 0;
    RefT<Probe> object(new Probe(destructions));
    SignalT<SigVoidData> signal;
    Signal::Connection connection = signal.connect([](SigVoidData const &) {}, {}, object);
    object.reset();
    QCOMPARE(destructions, 0);
    connection.disconnect();
    QCOMPARE(destructions, 1);
}

void tst_SignalT::signalKeepsTheRefAliveUntilItsOwnEnd()
{
    int destructions = 0;
    RefT<Probe> object(new Probe(destructions));
    auto signal = std::make_unique<SignalT<SigVoidData>>();
    const Signal::Connection connection = signal->connect([](SigVoidData const &) {}, {}, object);
    object.reset();
    QCOMPARE(destructions, 0);
    signal.reset();
    QCOMPARE(destructions, 1);
}

void tst_SignalT::idsStartAboveZeroAndRise()
{
    SignalT<SigVoidData> signal;
    for (int i = 0; i < 3; ++i)
        signal.connect([](SigVoidData const &) {});
    QVERIFY(!signal.isConnected(0));
    QVERIFY(signal.isConnected(1));
    QVERIFY(signal.isConnected(2));
    QVERIFY(signal.isConnected(3));
    QVERIFY(!signal.isConnected(4));
}

void tst_SignalT::idOfADisconnectedSlotIsNotGivenAgain()
{
    SignalT<SigVoidData> signal;
    Signal::Connection last = signal.connect([](SigVoidData const &) {});
    last.disconnect();
    signal.connect([](SigVoidData const &) {});
    QVERIFY(!signal.isConnected(1));
    QVERIFY(signal.isConnected(2));
}

void tst_SignalT::isConnectedTellsWhetherTheSlotExists()
{
    SignalT<SigVoidData> signal;
    Signal::Connection connection = signal.connect([](SigVoidData const &) {});
    QVERIFY(signal.isConnected(1));
    connection.disconnect();
    QVERIFY(!signal.isConnected(1));
}

void tst_SignalT::disconnectingAnAbsentIdDoesNothing()
{
    SignalT<SigVoidData> signal;
    signal.disconnect(1);
    int calls = 0;
    signal.connect([&](SigVoidData const &) { ++calls; });
    signal.disconnect(0);
    signal.disconnect(2);
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, 1);
    signal.disconnect(1);
    signal.disconnect(1);
    signal.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::droppedConnectionStaysConnected()
{
    SignalT<SigVoidData> signal;
    int calls = 0;
    {
        const Signal::Connection dropped = signal.connect([&](SigVoidData const &) { ++calls; });
    }
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::disconnectEndsTheCalls()
{
    SignalT<SigVoidData> signal;
    std::string calls;
    signal.connect([&](SigVoidData const &) { calls += 'a'; });
    Signal::Connection b = signal.connect([&](SigVoidData const &) { calls += 'b'; });
    signal.connect([&](SigVoidData const &) { calls += 'c'; });
    b.disconnect();
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, std::string("ac"));
}

void tst_SignalT::disconnectOnAnEmptyHandleDoesNothing()
{
    Signal::Connection empty;
    empty.disconnect();
    Signal::Connection copy = empty;
    copy.disconnect();

    // A signal that nobody has connected to has no table, nor has a handle to it.
    SignalT<SigVoidData> signal;
    Handle unconnected(signal, 1);
    unconnected.disconnect();
}

void tst_SignalT::disconnectTwiceDoesNothing()
{
    SignalT<SigVoidData> signal;
    int calls = 0;
    Signal::Connection first = signal.connect([](SigVoidData const &) {});
    signal.connect([&](SigVoidData const &) { ++calls; });
    first.disconnect();
    first.disconnect();
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::copyDisconnectsAndTheOtherCopyDoesNothing()
{
    SignalT<SigVoidData> signal;
    std::string calls;
    Signal::Connection a = signal.connect([&](SigVoidData const &) { calls += 'a'; });
    signal.connect([&](SigVoidData const &) { calls += 'b'; });
    Signal::Connection copy = a;
    copy.disconnect();
    a.disconnect();
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, std::string("b"));
}

void tst_SignalT::assignedCopyDisconnects()
{
    SignalT<SigVoidData> signal;
    int calls = 0;
    Signal::Connection assigned;
    {
        const Signal::Connection original = signal.connect([&](SigVoidData const &) { ++calls; });
        assigned = original;
    }
    Signal::Connection const &self = assigned;
    assigned = self;
    SigVoidData data;
    signal.emit(data);
    assigned.disconnect();
    signal.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::movedFromConnectionIsEmpty()
{
    SignalT<SigVoidData> signal;
    int calls = 0;
    Signal::Connection original = signal.connect([&](SigVoidData const &) { ++calls; });
    Signal::Connection moved = std::move(original);
    original.disconnect();
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, 1);
    Signal::Connection movedAgain;
    movedAgain = std::move(moved);
    movedAgain.disconnect();
    signal.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::reassignedConnectionLeavesTheOldSlotConnected()
{
    SignalT<SigVoidData> signal;
    std::string calls;
    Signal::Connection connection = signal.connect([&](SigVoidData const &) { calls += 'a'; });
    connection = signal.connect([&](SigVoidData const &) { calls += 'b'; });
    connection.disconnect();
    SigVoidData data;
    signal.emit(data);
    QCOMPARE(calls, std::string("a"));
}

void tst_SignalT::disconnectAfterTheSignalsEndDoesNothing()
{
    auto signal = std::make_unique<SignalT<SigVoidData>>();
    Signal::Connection connection = signal->connect([](SigVoidData const &) {});
    Signal::Connection copy = connection;
    signal.reset();
    connection.disconnect();
    const Signal::Connection laterCopy = copy;
    copy.disconnect();
}

void tst_SignalT::handleOfAnotherSignalLeavesEqualIdsAlone()
{
    SignalT<SigVoidData> first, second;
    int calls = 0;
    Signal::Connection connection = first.connect([](SigVoidData const &) {});
    second.connect([&](SigVoidData const &) { ++calls; });
    connection.disconnect();
    SigVoidData data;
    second.emit(data);
    QCOMPARE(calls, 1);
}

void tst_SignalT::functionGoesWithTheDisconnection()
{
    SignalT<SigVoidData> signal;
    auto held = std::make_shared<int>(0);
    Signal::Connection connection = signal.connect([held](SigVoidData const &) {});
    QCOMPARE(held.use_count(), 2l);
    connection.disconnect();
    QCOMPARE(held.use_count(), 1l);
}

void tst_SignalT::exceptionPassesOnToTheEmitter()
{
    SignalT<SigVoidData> signal;
    signal.connect([](SigVoidData const &) { throw std::runtime_error("slot"); });
    SigVoidData data;
    QVERIFY_EXCEPTION_THROWN(signal.emit(data), std::runtime_error);
}

void tst_SignalT::slotsBehindAnExceptionAreNotCalled()
{
    SignalT<SigVoidData> signal;
    std::string calls;
    signal.connect([&](SigVoidData const &) { calls += 'a'; });
    signal.connect([](SigVoidData const &) { throw 1; });
    signal.connect([&](SigVoidData const &) { calls += 'c'; });
    SigVoidData data;
    QVERIFY_EXCEPTION_THROWN(signal.emit(data), int);
    QCOMPARE(calls, std::string("a"));
}

void tst_SignalT::signalIsReadyAfterAnException()
{
    SignalT<SigVoidData> signal;
    std::string calls;
    bool mustThrow = true;
    signal.connect([&](SigVoidData const &) { calls += 'a'; });
    Signal::Connection thrower = signal.connect([&](SigVoidData const &) {
        thrower.disconnect();
        if (mustThrow)
            throw 1;
    });
    Signal::Connection next = signal.connect([&](SigVoidData const &) { calls += 'c'; });
    SigVoidData data;
    QVERIFY_EXCEPTION_THROWN(signal.emit(data), int);
    // Were the cursor still at c, this would disturb nothing but the next emission.
    next.disconnect();
    signal.connect([&](SigVoidData const &) { calls += 'd'; });
    calls.clear();
    signal.emit(data);
    QCOMPARE(calls, std::string("ad"));
}

void tst_SignalT::emitCatchingCallsTheSlotsBehindAnException()
{
    std::string reports;
    const ErrorSink before = setErrorSink(
        [&](std::string const &where, std::string const &what) { reports += where + '=' + what; });
    SignalT<SigVoidData> signal;
    int calls = 0;
    signal.connect([](SigVoidData const &) { throw std::runtime_error("slot"); });
    signal.connect([&](SigVoidData const &) { ++calls; });
    SigVoidData data;
    signal.emitCatching(data, "here");
    setErrorSink(before);
    QCOMPARE(calls, 1);
    QCOMPARE(reports, std::string("here=slot"));
}

void tst_SignalT::signalTellsWhetherAnybodyListens()
{
    ZR::SignalT<ZR::SigVoidData> signal;
    QVERIFY(!signal.hasSlots());
    auto connection = signal.connect([](ZR::SigVoidData const &) {});
    QVERIFY(signal.hasSlots());
    connection.disconnect();
    QVERIFY(!signal.hasSlots());
}

QTEST_APPLESS_MAIN(tst_SignalT)

#include "tst_SignalT.moc"
