#include "zrVOMGUI/foundation/util/LockBool.h"

#include <QTest>

#include <stdexcept>
#include <type_traits>

using ZR::LockBool;

static_assert(!std::is_copy_constructible_v<LockBool> && !std::is_copy_assignable_v<LockBool>);
static_assert(!std::is_constructible_v<LockBool, bool>, "A temporary can't be guarded.");

class tst_LockBool : public QObject {
    Q_OBJECT

private slots:
    void flagIsSetWhileTheGuardLives();
    void flagIsClearedByAnException();
    void guardStopsReentry();
    void innerGuardClearsTheFlagOfTheOuter();
};

void tst_LockBool::flagIsSetWhileTheGuardLives()
{
    bool flag = false;
    {
        const LockBool lock(flag);
        QVERIFY(flag);
    }
    QVERIFY(!flag);
}

void tst_LockBool::flagIsClearedByAnException()
{
    bool flag = false;
    const auto raise = [&] {
        const LockBool lock(flag);
        throw std::runtime_error("inside");
    };
    QVERIFY_EXCEPTION_THROWN(raise(), std::runtime_error);
    QVERIFY(!flag);
}

void tst_LockBool::guardStopsReentry()
{
    struct Worker {
        void work()
        {
            if (isWorking)
                return;
            const LockBool lock(isWorking);
            ++numWorked;
            work();
        }
        bool isWorking = false;
        int numWorked = 0;
    } worker;
    worker.work();
    QCOMPARE(worker.numWorked, 1);
    worker.work();
    QCOMPARE(worker.numWorked, 2);
}

// The destructor writes false and not what was there before: guards don't nest.
void tst_LockBool::innerGuardClearsTheFlagOfTheOuter()
{
    bool flag = false;
    const LockBool outer(flag);
    {
        const LockBool inner(flag);
    }
    QVERIFY(!flag);
}

QTEST_APPLESS_MAIN(tst_LockBool)

#include "tst_LockBool.moc"
