#include "zrVOMGUI/foundation/util/Error.h"

#include <QTest>

#include <functional>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;

static_assert(std::is_base_of_v<std::exception, Error>);
static_assert(std::is_base_of_v<Error, ErrorBinaryDecode>);
static_assert(std::is_copy_constructible_v<Error>);
static_assert(std::is_copy_constructible_v<ErrorBinaryDecode>);
static_assert(std::is_default_constructible_v<ErrorBinaryDecode>);

class tst_Error : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void errorTellsItsText();
    void copyTellsTheSameText();
    void malformedPayloadIsCaughtAsAnError();

    void tryCatchAnswersTrueAtANormalEnd();
    void tryCatchReportsAndAnswersFalse_data();
    void tryCatchReportsAndAnswersFalse();
    void tryCatchReportsAnEmptyFunction();
    void nestedTryCatchReportsTheInnerPlace();
    void defaultSinkWritesToTheErrorStream();
    void setErrorSinkAnswersTheSinkBefore();
    void exceptionFromTheSinkIsDropped();
    void sinkMayReplaceItself();

private:
    std::vector<std::string> reports;
};

void tst_Error::init()
{
    reports.clear();
    setErrorSink([this](std::string const &where, std::string const &what) {
        reports.push_back(where + " | " + what);
    });
}

void tst_Error::cleanup()
{
    setErrorSink({});
}

void tst_Error::errorTellsItsText()
{
    QCOMPARE(std::string(Error("too wide").what()), std::string("too wide"));
    QCOMPARE(std::string(Error().what()), std::string());
}

void tst_Error::copyTellsTheSameText()
{
    const Error error("a text that lies on the heap and not in the string");
    const Error copy(error);
    QCOMPARE(std::string(copy.what()), std::string(error.what()));
}

void tst_Error::malformedPayloadIsCaughtAsAnError()
{
    QVERIFY_EXCEPTION_THROWN(throw ErrorBinaryDecode(), Error);
    QVERIFY(*ErrorBinaryDecode().what() != '\0');
}

void tst_Error::tryCatchAnswersTrueAtANormalEnd()
{
    bool ran = false;
    QVERIFY(tryCatch("here", [&] { ran = true; }));
    QVERIFY(ran);
    QVERIFY(reports.empty());
}

void tst_Error::tryCatchReportsAndAnswersFalse_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("report");
    QTest::newRow("error of these libraries") << 0 << "ZR::f | refused";
    QTest::newRow("exception of the standard library") << 1 << "ZR::f | logic";
    QTest::newRow("what is no exception class") << 2 << "ZR::f | unknown exception";
}

void tst_Error::tryCatchReportsAndAnswersFalse()
{
    QFETCH(int, kind);
    QFETCH(QString, report);
    bool wentOn = false;
    QVERIFY(!tryCatch("ZR::f", [&] {
        if (kind == 0)
            throw Error("refused");
        if (kind == 1)
            throw std::logic_error("logic");
        if (kind == 2)
            throw 5;
        wentOn = true;
    }));
    QVERIFY(!wentOn);
    QCOMPARE(reports, std::vector<std::string>{report.toStdString()});
}

void tst_Error::tryCatchReportsAnEmptyFunction()
{
    QVERIFY(!tryCatch("here", std::function<void()>()));
    QCOMPARE(reports.size(), std::size_t(1));
}

void tst_Error::nestedTryCatchReportsTheInnerPlace()
{
    QVERIFY(tryCatch("outer", [] { tryCatch("inner", [] { throw Error("x"); }); }));
    QCOMPARE(reports, std::vector<std::string>{"inner | x"});
}

void tst_Error::defaultSinkWritesToTheErrorStream()
{
    setErrorSink({});
    std::ostringstream stream;
    std::streambuf *const before = std::cerr.rdbuf(stream.rdbuf());
    tryCatch("ZR::f", [] { throw Error("refused"); });
    std::cerr.rdbuf(before);
    QCOMPARE(stream.str(), std::string("ZR::f: refused\n"));
    QVERIFY(reports.empty());
}

void tst_Error::setErrorSinkAnswersTheSinkBefore()
{
    const ErrorSink before = setErrorSink({});
    QVERIFY(before);
    before("a", "b");
    QCOMPARE(reports, std::vector<std::string>{"a | b"});
    QVERIFY(!setErrorSink(before));
}

void tst_Error::exceptionFromTheSinkIsDropped()
{
    setErrorSink([](std::string const &, std::string const &) { throw 5; });
    QVERIFY(!tryCatch("here", [] { throw Error("x"); }));
}

void tst_Error::sinkMayReplaceItself()
{
    const std::string held(100, 'x');
    std::string seen;
    setErrorSink([&seen, held](std::string const &, std::string const &) {
        setErrorSink({});
        seen = held;
    });
    QVERIFY(!tryCatch("here", [] { throw Error("x"); }));
    QCOMPARE(seen, held);
}

QTEST_APPLESS_MAIN(tst_Error)

#include "tst_Error.moc"
