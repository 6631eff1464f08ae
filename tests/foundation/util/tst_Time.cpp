#include "zrVOMGUI/foundation/util/Time.h"

#include <QTest>

#include <cstddef>
#include <thread>
#include <type_traits>

using ZR::Time;

static_assert(sizeof(Time) == 8 && offsetof(Time, sec) == 0 && offsetof(Time, nsec) == 4);
static_assert(std::is_same_v<decltype(Time::sec), std::int32_t>);
static_assert(std::is_same_v<decltype(Time::nsec), std::int32_t>);
static_assert(Time::Now == Time::ArgNow(0));

class tst_Time : public QObject {
    Q_OBJECT

private slots:
    void defaultTimeIsZero();
    void differenceIsASpan_data();
    void differenceIsASpan();
    void spanOfOneNanosecondIsNotLost();
    void clockNeverGoesBack();
    void clockRunsInSeconds();
};

void tst_Time::defaultTimeIsZero()
{
    const Time time;
    QCOMPARE(time.sec, 0);
    QCOMPARE(time.nsec, 0);
    QCOMPARE(time.seconds(), 0.0);
}

namespace {

Time makeTime(int sec, int nsec)
{
    Time time;
    time.sec = sec;
    time.nsec = nsec;
    return time;
}

} // namespace

void tst_Time::differenceIsASpan_data()
{
    QTest::addColumn<int>("sec");
    QTest::addColumn<int>("nsec");
    QTest::addColumn<int>("earlierSec");
    QTest::addColumn<int>("earlierNsec");
    QTest::addColumn<int>("spanSec");
    QTest::addColumn<int>("spanNsec");
    QTest::addColumn<double>("seconds");
    QTest::newRow("equal times") << 5 << 7 << 5 << 7 << 0 << 0 << 0.0;
    QTest::newRow("whole seconds") << 5 << 7 << 3 << 7 << 2 << 0 << 2.0;
    QTest::newRow("without a borrow") << 5 << 500000000 << 3 << 250000000 << 2 << 250000000 << 2.25;
    QTest::newRow("with a borrow") << 5 << 250000000 << 3 << 500000000 << 1 << 750000000 << 1.75;
    QTest::newRow("borrow of one nanosecond") << 1 << 0 << 0 << 1 << 0 << 999999999 << 0.999999999;
    QTest::newRow("earlier time taken from")
        << 3 << 0 << 3 << 250000000 << -1 << 750000000 << -0.25;
}

void tst_Time::differenceIsASpan()
{
    QFETCH(int, sec);
    QFETCH(int, nsec);
    QFETCH(int, earlierSec);
    QFETCH(int, earlierNsec);
    const Time span = makeTime(sec, nsec) - makeTime(earlierSec, earlierNsec);
    QTEST(int(span.sec), "spanSec");
    QTEST(int(span.nsec), "spanNsec");
    QTEST(span.seconds(), "seconds");
    QTEST(span.nsec * 1e-9 + span.sec, "seconds");
}

void tst_Time::spanOfOneNanosecondIsNotLost()
{
    const Time span = makeTime(2000000000, 2) - makeTime(2000000000, 1);
    QCOMPARE(span.seconds(), 1e-9);
}

void tst_Time::clockNeverGoesBack()
{
    Time before(Time::Now);
    for (int i = 0; i < 1000; ++i) {
        const Time now(Time::Now);
        QVERIFY(now.nsec >= 0 && now.nsec < 1000000000);
        QVERIFY((now - before).seconds() >= 0);
        before = now;
    }
}

void tst_Time::clockRunsInSeconds()
{
    const Time begin(Time::Now);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const double span = (Time(Time::Now) - begin).seconds();
    QVERIFY(span >= 0.02);
    QVERIFY(span < 60);
}

QTEST_APPLESS_MAIN(tst_Time)

#include "tst_Time.moc"
