#include "zrVOMGUI/foundation/util/Log.h"

#include <QTest>

#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;

static_assert(std::has_virtual_destructor_v<Log> && std::has_virtual_destructor_v<Progress>);
static_assert(std::is_constructible_v<ErrorManager, Log &>);
static_assert(std::is_constructible_v<Progress, std::string const &, bool>);

class tst_Log : public QObject {
    Q_OBJECT

private slots:
    void logStartsEmpty();
    void logKeepsTheOrder();
    void managerStartsWithoutErrors();
    void managerCountsAndLogsEachError();
    void managersOfOneLogCountApart();
    void derivedLogHearsOfErrors();
    void progressKeepsItsTitle();
    void progressGoesOn();
    void derivedProgressCanEndTheWork();
};

void tst_Log::logStartsEmpty()
{
    QVERIFY(Log().getMessages().empty());
}

void tst_Log::logKeepsTheOrder()
{
    Log log;
    log.add("b");
    log.add("");
    log.add("a");
    QCOMPARE(log.getMessages(), (std::vector<std::string>{"b", "", "a"}));
}

void tst_Log::managerStartsWithoutErrors()
{
    Log log;
    const ErrorManager manager(log);
    QCOMPARE(manager.errorCount, 0u);
    QVERIFY(log.getMessages().empty());
}

void tst_Log::managerCountsAndLogsEachError()
{
    Log log;
    ErrorManager manager(log);
    manager.report("first");
    QCOMPARE(manager.errorCount, 1u);
    manager.report("second");
    QCOMPARE(manager.errorCount, 2u);
    QCOMPARE(log.getMessages(), (std::vector<std::string>{"first", "second"}));
}

void tst_Log::managersOfOneLogCountApart()
{
    Log log;
    ErrorManager first(log), second(log);
    first.report("x");
    QCOMPARE(first.errorCount, 1u);
    QCOMPARE(second.errorCount, 0u);
}

void tst_Log::derivedLogHearsOfErrors()
{
    struct Shouting : Log {
        void add(std::string const &message) override { Log::add(message + "!"); }
    } log;
    ErrorManager manager(log);
    manager.report("help");
    QCOMPARE(log.getMessages(), (std::vector<std::string>{"help!"}));
}

void tst_Log::progressKeepsItsTitle()
{
    const Progress progress("copying", true);
    QCOMPARE(progress.getTitle(), std::string("copying"));
    QVERIFY(progress.isCancellable());
    QVERIFY(!Progress("", false).isCancellable());
}

void tst_Log::progressGoesOn()
{
    Progress progress("", false);
    QVERIFY(progress.setDone(0));
    QVERIFY(progress.setDone(1));
}

void tst_Log::derivedProgressCanEndTheWork()
{
    struct Impatient : Progress {
        using Progress::Progress;
        bool setDone(double part) override { return part < 0.5; }
    } impatient("", true);
    Progress &progress = impatient;
    QVERIFY(progress.setDone(0.25));
    QVERIFY(!progress.setDone(0.5));
}

QTEST_APPLESS_MAIN(tst_Log)

#include "tst_Log.moc"
