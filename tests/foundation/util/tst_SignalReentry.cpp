#include "foundation/Probe.h"
#include "zrVOMGUI/foundation/util/Class.h"
#include "zrVOMGUI/foundation/util/Signal.h"

#include <QTest>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace ZR;
using foundation_test::Probe;

/// What slots may do to the signal that is calling them.
class tst_SignalReentry : public QObject {
    Q_OBJECT

private slots:
    void init();

    void slotThatDisconnectsItselfSkipsNothing();
    void slotThatDisconnectsItselfKeepsItsFunctionWhileItRuns();
    void lastSlotMayDisconnectItself();
    void onlySlotMayDisconnectItself();
    void disconnectedNextSlotIsNotCalled();
    void disconnectedNextSlotButOneIsNotCalled();
    void slotMayDisconnectAllAfterIt();
    void slotMayDisconnectAnEarlierOne();
    void slotMayDisconnectAll();

    void slotConnectedByASlotIsCalledInTheSameEmission();
    void slotConnectedByTheLastSlotWaitsForTheNextEmission();
    void slotThatReconnectsItselfEndlesslyIsCalledOnce();

    void innerEmissionEndsTheOuterOne();
    void innerEmissionCallsAllSlots();
    void innerEmissionMayDisconnectTheOuterSlot();
    void exceptionOfAnInnerEmissionEndsBoth();
    void caughtExceptionOfAnInnerEmissionEndsTheOuterOne();
    void signalIsReadyAfterNestedEmissions();
    void emissionOfAnotherSignalDoesNotEndThisOne();
    void signalTellsWhetherItIsEmitting();

    void slotMayDestroyTheSignal();
    void slotMayDestroyTheSignalFromAnInnerEmission();
    void slotMayDestroyTheObjectThatHoldsTheSignal();
    void connectionIsDeadInsideTheSlotThatDestroyedTheSignal();
    void functionMayDisconnectOthersWhenItGoes();
    void functionMayDestroyTheSignalWhenItGoes();
    void refGivenAtConnectOutlivesItsSlotsSelfDisconnection();

private:
    /// Connects a slot that notes its name and then does `act`.
    void add(char name, std::function<void()> act = {});
    std::string emitOnce();

    std::unique_ptr<SignalT<SigVoidData>> signal;
    std::map<char, Signal::Connection> connections;
    std::string calls;
};

void tst_SignalReentry::init()
{
    signal = std::make_unique<SignalT<SigVoidData>>();
    connections.clear();
    calls.clear();
}

void tst_SignalReentry::add(char name, std::function<void()> act)
{
    connections[name] = signal->connect([this, name, act](SigVoidData const &) {
        calls += name;
        if (act)
            act();
    });
}

std::string tst_SignalReentry::emitOnce()
{
    calls.clear();
    SigVoidData data;
    signal->emit(data);
    return calls;
}

void tst_SignalReentry::slotThatDisconnectsItselfSkipsNothing()
{
    add('a');
    add('b', [this] { connections['b'].disconnect(); });
    add('c');
    add('d');
    QCOMPARE(emitOnce(), std::string("abcd"));
    QCOMPARE(emitOnce(), std::string("acd"));
}

void tst_SignalReentry::slotThatDisconnectsItselfKeepsItsFunctionWhileItRuns()
{
    auto held = std::make_shared<std::string>("a text that lies on the heap, not in the string");
    std::string seen;
    Signal::Connection connection;
    connection = signal->connect([held, &seen, &connection](SigVoidData const &) {
        connection.disconnect();
        seen = *held;
    });
    SigVoidData data;
    signal->emit(data);
    QCOMPARE(seen, *held);
    QCOMPARE(held.use_count(), 1l);
}

void tst_SignalReentry::lastSlotMayDisconnectItself()
{
    add('a');
    add('b', [this] { connections['b'].disconnect(); });
    QCOMPARE(emitOnce(), std::string("ab"));
    QCOMPARE(emitOnce(), std::string("a"));
}

void tst_SignalReentry::onlySlotMayDisconnectItself()
{
    add('a', [this] { connections['a'].disconnect(); });
    QCOMPARE(emitOnce(), std::string("a"));
    QCOMPARE(emitOnce(), std::string());
}

void tst_SignalReentry::disconnectedNextSlotIsNotCalled()
{
    add('a', [this] { connections['b'].disconnect(); });
    add('b');
    add('c');
    QCOMPARE(emitOnce(), std::string("ac"));
}

void tst_SignalReentry::disconnectedNextSlotButOneIsNotCalled()
{
    add('a', [this] { connections['c'].disconnect(); });
    add('b');
    add('c');
    add('d');
    QCOMPARE(emitOnce(), std::string("abd"));
}

void tst_SignalReentry::slotMayDisconnectAllAfterIt()
{
    add('a', [this] {
        for (char name : {'b', 'c', 'd'})
            connections[name].disconnect();
    });
    add('b');
    add('c');
    add('d');
    QCOMPARE(emitOnce(), std::string("a"));
    QCOMPARE(emitOnce(), std::string("a"));
}

void tst_SignalReentry::slotMayDisconnectAnEarlierOne()
{
    add('a');
    add('b', [this] { connections['a'].disconnect(); });
    add('c');
    QCOMPARE(emitOnce(), std::string("abc"));
    QCOMPARE(emitOnce(), std::string("bc"));
}

void tst_SignalReentry::slotMayDisconnectAll()
{
    add('a');
    add('b', [this] {
        for (auto &connection : connections)
            connection.second.disconnect();
    });
    add('c');
    QCOMPARE(emitOnce(), std::string("ab"));
    QCOMPARE(emitOnce(), std::string());
}

void tst_SignalReentry::slotConnectedByASlotIsCalledInTheSameEmission()
{
    add('a', [this] {
        if (connections.count('z') == 0)
            add('z');
    });
    add('b');
    QCOMPARE(emitOnce(), std::string("abz"));
}

void tst_SignalReentry::slotConnectedByTheLastSlotWaitsForTheNextEmission()
{
    add('a', [this] {
        if (connections.count('z') == 0)
            add('z');
    });
    QCOMPARE(emitOnce(), std::string("a"));
    QCOMPARE(emitOnce(), std::string("az"));
}

void tst_SignalReentry::slotThatReconnectsItselfEndlesslyIsCalledOnce()
{
    std::function<void()> reconnect = [&] {
        connections['a'].disconnect();
        add('a', reconnect);
    };
    add('a', reconnect);
    QCOMPARE(emitOnce(), std::string("a"));
    QCOMPARE(emitOnce(), std::string("a"));
}

void tst_SignalReentry::innerEmissionEndsTheOuterOne()
{
    bool isInner = false;
    add('a');
    add('b', [&] {
        if (std::exchange(isInner, true))
            return;
        calls += '(';
        SigVoidData data;
        signal->emit(data);
        calls += ')';
    });
    add('c');
    // The later slots have had the newer data.
    QCOMPARE(emitOnce(), std::string("ab(abc)"));
}

void tst_SignalReentry::innerEmissionCallsAllSlots()
{
    int depth = 0;
    add('a', [&] {
        if (++depth > 3)
            return;
        SigVoidData data;
        signal->emit(data);
    });
    add('b');
    QCOMPARE(emitOnce(), std::string("aaaab"));
}

void tst_SignalReentry::innerEmissionMayDisconnectTheOuterSlot()
{
    auto held = std::make_shared<int>(5);
    int seen = 0;
    bool isInner = false;
    Signal::Connection outer;
    outer = signal->connect([&, held](SigVoidData const &) {
        if (isInner)
            return;
        isInner = true;
        SigVoidData data;
        signal->emit(data);
        seen = *held;
    });
    add('b', [&] { outer.disconnect(); });
    QCOMPARE(emitOnce(), std::string("b"));
    QCOMPARE(seen, 5);
    QCOMPARE(held.use_count(), 1l);
}

void tst_SignalReentry::exceptionOfAnInnerEmissionEndsBoth()
{
    bool isInner = false;
    add('a', [&] {
        if (std::exchange(isInner, true))
            throw 1;
        SigVoidData data;
        signal->emit(data);
    });
    add('b');
    QVERIFY_EXCEPTION_THROWN(emitOnce(), int);
    QCOMPARE(calls, std::string("aa"));
}

void tst_SignalReentry::caughtExceptionOfAnInnerEmissionEndsTheOuterOne()
{
    bool isInner = false;
    add('a', [&] {
        if (std::exchange(isInner, true))
            throw 1;
        try {
            SigVoidData data;
            signal->emit(data);
        } catch (int) {
            calls += '!';
        }
    });
    add('b');
    QCOMPARE(emitOnce(), std::string("aa!"));
}

void tst_SignalReentry::signalIsReadyAfterNestedEmissions()
{
    bool isInner = false;
    add('a', [&] {
        if (std::exchange(isInner, true))
            return;
        SigVoidData data;
        signal->emit(data);
    });
    add('b');
    QCOMPARE(emitOnce(), std::string("aab"));
    QCOMPARE(emitOnce(), std::string("ab"));
}

void tst_SignalReentry::emissionOfAnotherSignalDoesNotEndThisOne()
{
    SignalT<SigVoidData> other;
    other.connect([this](SigVoidData const &) { calls += 'o'; });
    add('a', [&] {
        SigVoidData data;
        other.emit(data);
    });
    add('b');
    QCOMPARE(emitOnce(), std::string("aob"));
}

void tst_SignalReentry::signalTellsWhetherItIsEmitting()
{
    QVERIFY(!signal->isEmitting());
    std::vector<bool> told;
    const auto tell = [&] { told.push_back(signal->isEmitting()); };
    bool isFirst = true;
    add('a', [&] {
        tell();
        if (!std::exchange(isFirst, false))
            return;
        SigVoidData data;
        signal->emit(data);
        // The outer emission has no more slots to call, and isn't back yet.
        tell();
        connections['a'].disconnect();
        tell();
        throw 1;
    });
    SigVoidData data;
    QVERIFY_EXCEPTION_THROWN(signal->emit(data), int);
    QCOMPARE(told, (std::vector<bool>{true, true, true, true}));
    QVERIFY(!signal->isEmitting());
}

void tst_SignalReentry::slotMayDestroyTheSignal()
{
    auto held = std::make_shared<int>(5);
    add('a');
    signal->connect([&, held](SigVoidData const &) {
        calls += 'b';
        signal.reset();
        // This function lives on, and so does what it holds.
        calls += std::to_string(*held);
    });
    add('c');
    QCOMPARE(emitOnce(), std::string("ab5"));
    QCOMPARE(held.use_count(), 1l);
}

void tst_SignalReentry::slotMayDestroyTheSignalFromAnInnerEmission()
{
    bool isInner = false;
    add('a', [&] {
        if (std::exchange(isInner, true))
            return;
        SigVoidData data;
        signal->emit(data);
        calls += '.';
    });
    add('b', [&] { signal.reset(); });
    add('c');
    QCOMPARE(emitOnce(), std::string("aab."));
}

void tst_SignalReentry::slotMayDestroyTheObjectThatHoldsTheSignal()
{
    struct Owner : Class {
        SignalT<SigVoidData> sig;
    };
    RefT<Owner> owner(new Owner);
    const PtrT<Owner> watcher(owner);
    bool wasCalled = false;
    owner->sig.connect([&](SigVoidData const &) { owner.reset(); });
    owner->sig.connect([&](SigVoidData const &) { wasCalled = true; });
    SigVoidData data;
    owner->sig.emit(data);
    QVERIFY(!watcher);
    QVERIFY(!wasCalled);
}

void tst_SignalReentry::connectionIsDeadInsideTheSlotThatDestroyedTheSignal()
{
    add('a', [&] {
        signal.reset();
        connections['a'].disconnect();
        connections['b'].disconnect();
    });
    add('b');
    QCOMPARE(emitOnce(), std::string("a"));
}

namespace {

/// Does something when the last copy of a function goes that holds it.
struct AtEnd {
    explicit AtEnd(std::function<void()> atEnd)
        : act(std::move(atEnd))
    {
    }
    ~AtEnd() { act(); }
    AtEnd(AtEnd const &) = delete;

    std::function<void()> act;
};

} // namespace

void tst_SignalReentry::functionMayDisconnectOthersWhenItGoes()
{
    add('a');
    auto atEnd = std::make_shared<AtEnd>([this] { connections['c'].disconnect(); });
    Signal::Connection b = signal->connect([atEnd](SigVoidData const &) {});
    add('c');
    add('d');
    atEnd.reset();
    b.disconnect();
    QCOMPARE(emitOnce(), std::string("ad"));
}

void tst_SignalReentry::functionMayDestroyTheSignalWhenItGoes()
{
    auto atEnd = std::make_shared<AtEnd>([this] { signal.reset(); });
    Signal::Connection a;
    a = signal->connect([this, atEnd, &a](SigVoidData const &) {
        calls += 'a';
        a.disconnect();
    });
    add('b');
    atEnd.reset();
    QCOMPARE(emitOnce(), std::string("ab"));
    QVERIFY(!signal);
}

void tst_SignalReentry::refGivenAtConnectOutlivesItsSlotsSelfDisconnection()
{
    int destructions = 0;
    Signal::Connection connection;
    connection = signal->connect(
        [&](SigVoidData const &data) {
            connection.disconnect();
            calls += data.ref && destructions == 0 ? 'a' : '-';
        },
        {}, RefT<Class>(new Probe(destructions)));
    QCOMPARE(emitOnce(), std::string("a"));
    QCOMPARE(destructions, 1);
}

QTEST_APPLESS_MAIN(tst_SignalReentry)

#include "tst_SignalReentry.moc"
