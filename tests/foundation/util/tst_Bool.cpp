#include "zrVOMGUI/foundation/util/Bool.h"

#include <QTest>

#include <cstring>
#include <type_traits>
#include <vector>

using ZR::Bool;

static_assert(sizeof(Bool) == 1);
static_assert(std::is_trivially_copyable_v<Bool>);

class tst_Bool : public QObject {
    Q_OBJECT
private slots:
    void isFalseAtFirst();
    void convertsBothWays();
    void everyByteIsAValue_data();
    void everyByteIsAValue();
    void writesTrueAsOne();
    void listsAreContiguous();
};

void tst_Bool::isFalseAtFirst()
{
    QVERIFY(!Bool());
}

void tst_Bool::convertsBothWays()
{
    const Bool yes = true;
    const Bool no = false;
    QVERIFY(yes);
    QVERIFY(!no);
    QVERIFY(yes != no);
}

void tst_Bool::everyByteIsAValue_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<bool>("expected");
    QTest::newRow("0 is false") << 0 << false;
    QTest::newRow("1 is true") << 1 << true;
    QTest::newRow("2 is true") << 2 << true;
    QTest::newRow("255 is true") << 255 << true;
}

void tst_Bool::everyByteIsAValue()
{
    QFETCH(int, byte);
    QFETCH(bool, expected);
    const auto raw = static_cast<unsigned char>(byte);
    Bool value;
    std::memcpy(&value, &raw, 1);
    QCOMPARE(bool(value), expected);
}

void tst_Bool::writesTrueAsOne()
{
    const Bool value = true;
    unsigned char raw = 0;
    std::memcpy(&raw, &value, 1);
    QCOMPARE(int(raw), 1);
}

void tst_Bool::listsAreContiguous()
{
    const std::vector<Bool> list{true, false, true};
    unsigned char raw[3];
    std::memcpy(raw, list.data(), 3);
    QCOMPARE(int(raw[0]), 1);
    QCOMPARE(int(raw[1]), 0);
    QCOMPARE(int(raw[2]), 1);
}

QTEST_APPLESS_MAIN(tst_Bool)
#include "tst_Bool.moc"
