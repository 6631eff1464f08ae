#include "foundation/Probe.h"
#include "zrVOMGUI/foundation/util/Class.h"

#include <QTest>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace ZR;
using foundation_test::Probe;

namespace {

/// Runs `work` on two threads that start together, with 0 and 1.
void runOnTwoThreads(std::function<void(int)> const &work)
{
    std::atomic<int> numReady{0};
    const auto run = [&](int number) {
        ++numReady;
        while (numReady < 2)
            std::this_thread::yield();
        work(number);
    };
    std::thread other(run, 1);
    run(0);
    other.join();
}

constexpr int numRounds = 20000;

} // namespace

/// Pointers of several threads on the same targets. Under the thread sanitizer this also proves
/// that no access is left unordered.
class tst_PtrThreads : public QObject {
    Q_OBJECT

private slots:
    void twoThreadsLinkAndUnlinkOneTarget();
    void twoThreadsMovePointersOfOneTarget();
    void twoThreadsRelinkBetweenTwoTargets();
    void twoThreadsCountReferencesToOneTarget();
    void pointersOfAnotherThreadReadNullAfterDeath();
    void pointersUnlinkWhileTheirTargetDies();
    void twoThreadsCreateObjectsAtOnce();
    void lockKeepsAnotherThreadOut();
};

void tst_PtrThreads::twoThreadsLinkAndUnlinkOneTarget()
{
    int destructions = 0;
    RefT<Probe> target(new Probe(destructions));
    const PtrT<Probe> bystander(target);
    PtrT<Probe> left[2];
    Probe *const plain = target.get();
    runOnTwoThreads([&](int number) {
        for (int i = 0; i < numRounds; ++i) {
            PtrT<Probe> first(plain), second(plain), third(plain);
            second.reset();
            first = nullptr;
        }
        left[number] = PtrT<Probe>(plain);
    });
    QCOMPARE(bystander.get(), plain);
    QCOMPARE(left[0].get(), plain);
    QCOMPARE(left[1].get(), plain);
    target.reset();
    QVERIFY(!bystander && !left[0] && !left[1]);
    QCOMPARE(destructions, 1);
}

void tst_PtrThreads::twoThreadsMovePointersOfOneTarget()
{
    int destructions = 0;
    const RefT<Probe> target(new Probe(destructions));
    Probe *const plain = target.get();
    std::atomic<int> numWrong{0};
    runOnTwoThreads([&](int) {
        std::vector<PtrT<Probe>> growing;
        for (int i = 0; i < numRounds / 10; ++i)
            growing.emplace_back(plain);
        for (PtrT<Probe> const &pointer : growing)
            numWrong += pointer.get() != plain;
        while (growing.size() > 10)
            growing.erase(growing.end() - 10);
    });
    QCOMPARE(numWrong.load(), 0);
}

void tst_PtrThreads::twoThreadsRelinkBetweenTwoTargets()
{
    int destructions = 0;
    RefT<Probe> targets[2] = {new Probe(destructions), new Probe(destructions)};
    Probe *const plain[2] = {targets[0].get(), targets[1].get()};
    PtrT<Probe> pointers[2];
    runOnTwoThreads([&](int number) {
        for (int i = 0; i < numRounds; ++i)
            pointers[number] = PtrT<Probe>(plain[(i + number) % 2]);
    });
    QVERIFY(pointers[0] && pointers[1] && pointers[0] != pointers[1]);
    targets[0].reset();
    targets[1].reset();
    QVERIFY(!pointers[0] && !pointers[1]);
}

void tst_PtrThreads::twoThreadsCountReferencesToOneTarget()
{
    int destructions = 0;
    RefT<Probe> references[2];
    references[0] = RefT<Probe>(new Probe(destructions));
    references[1] = references[0];
    runOnTwoThreads([&](int number) {
        for (int i = 0; i < numRounds; ++i) {
            RefT<Probe> copy(references[number]);
            const RefT<Probe> moved(std::move(copy));
        }
        // Who goes last destroys the object.
        references[number].reset();
    });
    QCOMPARE(destructions, 1);
}

void tst_PtrThreads::pointersOfAnotherThreadReadNullAfterDeath()
{
    int destructions = 0;
    RefT<Probe> target(new Probe(destructions));
    std::vector<PtrT<Probe>> watchers;
    std::thread other([&] {
        for (int i = 0; i < 100; ++i)
            watchers.emplace_back(target);
    });
    other.join();
    target.reset();
    for (PtrT<Probe> const &watcher : watchers)
        QVERIFY(!watcher);
}

void tst_PtrThreads::pointersUnlinkWhileTheirTargetDies()
{
    int destructions = 0;
    for (int round = 0; round < 200; ++round) {
        RefT<Probe> target(new Probe(destructions));
        std::vector<PtrT<Probe>> watchers(50, PtrT<Probe>(target));
        runOnTwoThreads([&](int number) {
            if (number == 0)
                target.reset();
            else
                watchers.clear();
        });
    }
    QCOMPARE(destructions, 200);
}

void tst_PtrThreads::twoThreadsCreateObjectsAtOnce()
{
    std::atomic<int> numWrong{0};
    runOnTwoThreads([&](int) {
        int destructions = 0;
        for (int i = 0; i < numRounds / 10; ++i) {
            RefT<Probe> onHeap(new Probe(destructions));
            Probe onStack(destructions);
            RefT<Probe> toStack(onStack);
            toStack.reset();
            onHeap.reset();
        }
        numWrong += destructions != 2 * (numRounds / 10);
    });
    QCOMPARE(numWrong.load(), 0);
}

void tst_PtrThreads::lockKeepsAnotherThreadOut()
{
    int destructions = 0;
    Probe probe(destructions);
    runOnTwoThreads([&](int) {
        for (int i = 0; i < numRounds; ++i) {
            const Class::LockPtr outer(probe);
            const Class::LockPtr inner(probe);
            ++probe.value;
        }
    });
    QCOMPARE(probe.value, 2 * numRounds);
}

QTEST_APPLESS_MAIN(tst_PtrThreads)

#include "tst_PtrThreads.moc"
