#include "Payloads.h"

#include "support/QtStrings.h"

#include "zrVOMGUI/transfer/MimeData.h"

#include <QTest>

#include <stdexcept>

using namespace ZR::VOM::GUI;

using Strings = std::vector<std::string>;
Q_DECLARE_METATYPE(Strings)

class tst_ValueReaders : public QObject {
    Q_OBJECT

private slots:
    void absentTypesLeaveTheValues();
    void numbersOfEverySizeAreRead_data();
    void numbersOfEverySizeAreRead();
    void emptyPayloadsAreEmptyLists();
    void sizedTypesAreNotRead();
    void whatIsWrittenIsRead();
    void stringPayloadsAreDecoded_data();
    void stringPayloadsAreDecoded();
    void malformedStringsKeepThoseBefore_data();
    void malformedStringsKeepThoseBefore();
    void textsAreReadAsLines_data();
    void textsAreReadAsLines();
    void textsThatWereWrittenAreReadBack();
    void stringsUnderTheTypeGoBeforeTheText();
};

namespace {

template <class T>
std::vector<T> readAll(QMimeData const &data)
{
    std::vector<T> values{T()};
    if (!getFromMimeData(data, values))
        throw std::runtime_error("Nothing was read.");
    return values;
}

QByteArray hex(char const *digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

void tst_ValueReaders::absentTypesLeaveTheValues()
{
    const MimeData other = payload("application/x-other", "0123456789abcdef");
    std::vector<int> ints{1, 2};
    QVERIFY(!getFromMimeData(*other, ints));
    QCOMPARE(ints, (std::vector<int>{1, 2}));
    std::vector<double> reals{0.5};
    QVERIFY(!getFromMimeData(*other, reals));
    QCOMPARE(reals, (std::vector<double>{0.5}));
    Strings strings{"kept"};
    QVERIFY(!getFromMimeData(*other, strings));
    QCOMPARE(strings, Strings{"kept"});
}

void tst_ValueReaders::numbersOfEverySizeAreRead_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("ints");
    QTest::addColumn<int>("reals");
    QTest::newRow("nothing") << 0 << 0 << 0;
    QTest::newRow("one byte") << 1 << 0 << 0;
    QTest::newRow("one byte less than an int") << 3 << 0 << 0;
    QTest::newRow("an int") << 4 << 1 << 0;
    QTest::newRow("an int and a half") << 6 << 1 << 0;
    QTest::newRow("one byte less than a real") << 7 << 1 << 0;
    QTest::newRow("a real") << 8 << 2 << 1;
    QTest::newRow("a real and a half") << 12 << 3 << 1;
    QTest::newRow("many and a byte") << 8000001 << 2000000 << 1000000;
}

void tst_ValueReaders::numbersOfEverySizeAreRead()
{
    QFETCH(int, size);
    QFETCH(int, ints);
    QFETCH(int, reals);
    const QByteArray bytes(size, '\1');
    QCOMPARE(readAll<int>(*payload("ZR::VOM::int[]", bytes)),
             std::vector<int>(static_cast<std::size_t>(ints), 0x01010101));
    const auto readReals = readAll<double>(*payload("ZR::VOM::real[]", bytes));
    QCOMPARE(readReals.size(), static_cast<std::size_t>(reals));
    for (double real : readReals)
        QCOMPARE(QByteArray(reinterpret_cast<char const *>(&real), 8), QByteArray(8, '\1'));
}

void tst_ValueReaders::emptyPayloadsAreEmptyLists()
{
    std::vector<int> ints{1};
    QVERIFY(getFromMimeData(*payload("ZR::VOM::int[]", {}), ints));
    QVERIFY(ints.empty());
    std::vector<double> reals{1};
    QVERIFY(getFromMimeData(*payload("ZR::VOM::real[]", {}), reals));
    QVERIFY(reals.empty());
    Strings strings{"gone"};
    QVERIFY(getFromMimeData(*payload("ZR::VOM::string[]", {}), strings));
    QVERIFY(strings.empty());
}

void tst_ValueReaders::sizedTypesAreNotRead()
{
    std::vector<int> ints;
    QVERIFY(!getFromMimeData(*payload("ZR::VOM::int[1]", hex("01000000")), ints));
    Strings strings;
    QVERIFY(!getFromMimeData(*payload("ZR::VOM::string[1]", hex("0161")), strings));
}

void tst_ValueReaders::whatIsWrittenIsRead()
{
    const std::vector<int> ints{0, -1, 2147483647, -2147483647 - 1};
    QCOMPARE(readAll<int>(*MimeData(createMimeData(ints.size(), ints.data()))), ints);
    const std::vector<double> reals{-0.0, 1e300, 5e-324};
    QCOMPARE(readAll<double>(*MimeData(createMimeData(reals.size(), reals.data()))), reals);
    const Strings strings{"", std::string("a\0b", 3), "\xff\n\r", std::string(70000, 'x')};
    QCOMPARE(readAll<std::string>(*MimeData(createMimeData(strings.size(), strings.data()))),
             strings);
}

void tst_ValueReaders::stringPayloadsAreDecoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Strings>("strings");
    QTest::newRow("a length of more groups than it needs") << hex("81800061") << Strings{"a"};
    QTest::newRow("ten groups of nothing") << hex("80808080808080808000") << Strings{""};
    QTest::newRow("ten groups of a length") << hex("818080808080808080006102"
                                                   "6263")
                                            << Strings{"a", "bc"};
    QTest::newRow("bits beyond the 64th are lost") << hex("818080808080808080"
                                                          "7e"
                                                          "61")
                                                   << Strings{"a"};
    QTest::newRow("127 bytes") << hex("7f") + QByteArray(127, 'x')
                               << Strings{std::string(127, 'x')};
    QTest::newRow("128 bytes") << hex("8001") + QByteArray(128, 'x')
                               << Strings{std::string(128, 'x')};
    QTest::newRow("300 bytes") << hex("ac02") + QByteArray(300, 'x')
                               << Strings{std::string(300, 'x')};
    QTest::newRow("empty strings alone") << hex("000000") << Strings{"", "", ""};
}

void tst_ValueReaders::stringPayloadsAreDecoded()
{
    QFETCH(QByteArray, bytes);
    QFETCH(Strings, strings);
    QCOMPARE(readAll<std::string>(*payload("ZR::VOM::string[]", bytes)), strings);
}

void tst_ValueReaders::malformedStringsKeepThoseBefore_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Strings>("before");
    QTest::newRow("ends inside the first length") << hex("80") << Strings();
    QTest::newRow("ends inside a later length") << hex("0161ff") << Strings{"a"};
    QTest::newRow("ends after nine groups") << hex("016180808080808080"
                                                   "8080")
                                            << Strings{"a"};
    QTest::newRow("ends before the string") << hex("01") << Strings();
    QTest::newRow("ends inside the string") << hex("0161"
                                                   "036263")
                                            << Strings{"a"};
    QTest::newRow("one byte too few for 128") << hex("8001") + QByteArray(127, 'x') << Strings();
    QTest::newRow("a tenth group that goes on") << hex("0161"
                                                       "80808080808080808080"
                                                       "00")
                                                << Strings{"a"};
    QTest::newRow("eleven groups and a string") << hex("8180808080808080808000"
                                                       "61")
                                                << Strings();
    QTest::newRow("a length of 2 GiB") << hex("0161"
                                              "8080808008"
                                              "61")
                                       << Strings{"a"};
    QTest::newRow("a length of 2^63") << hex("0161"
                                             "80808080808080808001"
                                             "61")
                                      << Strings{"a"};
    QTest::newRow("the longest length") << hex("0161"
                                               "ffffffffffffffffff01"
                                               "61")
                                        << Strings{"a"};
}

void tst_ValueReaders::malformedStringsKeepThoseBefore()
{
    QFETCH(QByteArray, bytes);
    QFETCH(Strings, before);
    MimeData data = payload("ZR::VOM::string[]", bytes);
    data->setText("no way out");
    Strings strings{"gone"};
    QVERIFY(!getFromMimeData(*data, strings));
    QCOMPARE(strings, before);
}

void tst_ValueReaders::textsAreReadAsLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Strings>("strings");
    QTest::newRow("nothing") << "" << Strings();
    QTest::newRow("one line without an end") << "a" << Strings{"a"};
    QTest::newRow("one line") << "a\n" << Strings{"a"};
    QTest::newRow("an empty line") << "\n" << Strings{""};
    QTest::newRow("an empty line between") << "a\n\nb" << Strings{"a", "", "b"};
    QTest::newRow("line ends of DOS") << "a\r\nb\r\n" << Strings{"a", "b"};
    QTest::newRow("only one carriage return goes") << "a\r\r\n\r\n" << Strings{"a\r", ""};
    QTest::newRow("carriage returns elsewhere stay") << "\ra\rb\n" << Strings{"\ra\rb"};
    QTest::newRow("a carriage return at the very end") << "a\nb\r" << Strings{"a", "b"};
    QTest::newRow("up to a zero character")
        << QString::fromUtf8("a\nb\0c\nd", 7) << Strings{"a", "b"};
    QTest::newRow("not ASCII") << QString(QChar(0x20ac)) << Strings{"\xe2\x82\xac"};
}

void tst_ValueReaders::textsAreReadAsLines()
{
    QFETCH(QString, text);
    QFETCH(Strings, strings);
    QCOMPARE(readAll<std::string>(*plainText(text)), strings);
}

void tst_ValueReaders::textsThatWereWrittenAreReadBack()
{
    const Strings strings{"a", "", "\xe2\x82\xac", ""};
    const MimeData data(createMimeData(strings.size(), strings.data()));
    QCOMPARE(readAll<std::string>(*plainText(data->text())), strings);
}

void tst_ValueReaders::stringsUnderTheTypeGoBeforeTheText()
{
    MimeData data = payload("ZR::VOM::string[]", hex("0161"));
    data->setText("b");
    QCOMPARE(readAll<std::string>(*data), Strings{"a"});
}

QTEST_GUILESS_MAIN(tst_ValueReaders)

#include "tst_ValueReaders.moc"
