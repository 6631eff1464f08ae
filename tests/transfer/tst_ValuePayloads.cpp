#include "Payloads.h"

#include "support/QtStrings.h"

#include "zrVOMGUI/foundation/util/Matrix4x4T.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/private/Payload.h"
#include "zrVOMGUI/transfer/private/ValueMimeData.h"

#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

using namespace ZR;
using namespace ZR::VOM::GUI;

using Maker = std::function<QMimeData *()>;
Q_DECLARE_METATYPE(Maker)

class tst_ValuePayloads : public QObject {
    Q_OBJECT

private slots:
    void bytesAndTextsAreExact_data();
    void bytesAndTextsAreExact();
    void truthValuesKeepTheirByte();
    void matricesLieInMemoryOrder();
    void stringLengthsTakeGroupsOfSevenBits_data();
    void stringLengthsTakeGroupsOfSevenBits();
    void arraysOf2GiBAreOfferedUnderNoType_data();
    void arraysOf2GiBAreOfferedUnderNoType();
};

namespace {

template <class T>
Maker value(T const &content)
{
    return [content] { return createMimeData(content); };
}

template <class T>
Maker array(std::vector<T> const &values)
{
    return [values] { return createMimeData(values.size(), values.data()); };
}

} // namespace

void tst_ValuePayloads::bytesAndTextsAreExact_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<QString>("offered");
    const auto row = [](char const *name, Maker const &make, QStringList const &lines) {
        QTest::newRow(name) << make << lines.join('\n');
    };

    row("a true", value(Bool(true)), {"ZR::VOM::bool 01", "text \"true\""});
    row("a false", value(Bool(false)), {"ZR::VOM::bool 00", "text \"false\""});
    row("an int", value(258), {"ZR::VOM::int 02010000", "text \"258\""});
    row("a negative int", value(-2), {"ZR::VOM::int feffffff", "text \"-2\""});
    row("the least int", value(std::numeric_limits<int>::min()),
        {"ZR::VOM::int 00000080", "text \"-2147483648\""});
    row("a real", value(-1.5), {"ZR::VOM::real 000000000000f8bf", "text \"-1.5\""});
    row("a real in its shortest form", value(0.1),
        {"ZR::VOM::real 9a9999999999b93f", "text \"0.1\""});
    row("an endless real", value(std::numeric_limits<double>::infinity()),
        {"ZR::VOM::real 000000000000f07f", "text \"inf\""});

    row("a string", value(std::string("gr\xc3\xbcn")), {QString::fromUtf8("text \"gr\xc3\xbcn\"")});
    row("an empty string", value(std::string()), {"text \"\""});
    row("a string up to its zero byte", value(std::string("ab\0cd", 5)), {"text \"ab\""});

    row("truth values", array(std::vector<Bool>{true, false, true}),
        {"ZR::VOM::bool[] 010001", "ZR::VOM::bool[3] 010001", "text \"true, false, true\""});
    row("ints", array(std::vector<int>{1, -1, 70000}),
        {"ZR::VOM::int[] 01000000ffffffff70110100", "ZR::VOM::int[3] 01000000ffffffff70110100",
         "text \"1, -1, 70000\""});
    row("reals", array(std::vector<double>{1, 0.25}),
        {"ZR::VOM::real[] 000000000000f03f000000000000d03f",
         "ZR::VOM::real[2] 000000000000f03f000000000000d03f", "text \"1, 0.25\""});
    row("strings", array(std::vector<std::string>{"a", "", "bc"}),
        {"ZR::VOM::string[] 016100026263", "ZR::VOM::string[3] 016100026263",
         "text \"a\n\nbc\n\""});

    row("one truth value", array(std::vector<Bool>{false}),
        {"ZR::VOM::bool[] 00", "ZR::VOM::bool[1] 00", "text \"false\""});
    row("one string", array(std::vector<std::string>{"a"}),
        {"ZR::VOM::string[] 0161", "ZR::VOM::string[1] 0161", "text \"a\n\""});
    row("an empty string in an array", array(std::vector<std::string>{""}),
        {"ZR::VOM::string[] 00", "ZR::VOM::string[1] 00", "text \"\n\""});

    row("no truth values", array(std::vector<Bool>()),
        {"ZR::VOM::bool[] ", "ZR::VOM::bool[0] ", "text \"\""});
    row("no ints", array(std::vector<int>()), {"ZR::VOM::int[] ", "ZR::VOM::int[0] ", "text \"\""});
    row("no reals", array(std::vector<double>()),
        {"ZR::VOM::real[] ", "ZR::VOM::real[0] ", "text \"\""});
    row("no strings", array(std::vector<std::string>()),
        {"ZR::VOM::string[] ", "ZR::VOM::string[0] ", "text \"\""});

    row("a string that isn't UTF-8 takes the text from all",
        array(std::vector<std::string>{"a", "\xff", "b"}),
        {"ZR::VOM::string[] 016101ff0162", "ZR::VOM::string[3] 016101ff0162"});
    row("strings up to their zero bytes in the text, whole under the types",
        array(std::vector<std::string>{std::string("a\0\xff", 3), "b"}),
        {"ZR::VOM::string[] 036100ff0162", "ZR::VOM::string[2] 036100ff0162", "text \"a\nb\n\""});
}

void tst_ValuePayloads::bytesAndTextsAreExact()
{
    QFETCH(Maker, make);
    QFETCH(QString, offered);
    QCOMPARE(dump(*MimeData(make())), offered);
}

void tst_ValuePayloads::truthValuesKeepTheirByte()
{
    Bool odd;
    const unsigned char byte = 0xa5;
    std::memcpy(static_cast<void *>(&odd), &byte, 1);
    QCOMPARE(dump(*MimeData(createMimeData(odd))), "ZR::VOM::bool a5\ntext \"true\"");
    QCOMPARE(dump(*MimeData(createMimeData(1, &odd))),
             "ZR::VOM::bool[] a5\nZR::VOM::bool[1] a5\ntext \"true\"");
}

void tst_ValuePayloads::matricesLieInMemoryOrder()
{
    Matrix4x4D matrix;
    for (int i = 0; i < 16; ++i)
        matrix.data()[i] = i * 0.5;
    const MimeData data(createMimeData(matrix));
    QCOMPARE(data->formats(), (QStringList{"ZR::Matrix4x4D", "text/plain"}));
    const QByteArray bytes = data->data("ZR::Matrix4x4D");
    QCOMPARE(bytes, QByteArray(reinterpret_cast<char const *>(matrix.data()), 128));
    QCOMPARE(bytes.mid(8, 8).toHex(), "000000000000e03f");
    QCOMPARE(data->text(),
             "Mat4x4( 0, 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 4.5, 5, 5.5, 6, 6.5, 7, 7.5)");
}

void tst_ValuePayloads::stringLengthsTakeGroupsOfSevenBits_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("prefix");
    QTest::newRow("nothing") << 0 << QByteArray("00");
    QTest::newRow("1") << 1 << QByteArray("01");
    QTest::newRow("the most of one group") << 127 << QByteArray("7f");
    QTest::newRow("the least of two groups") << 128 << QByteArray("8001");
    QTest::newRow("300") << 300 << QByteArray("ac02");
    QTest::newRow("the most of two groups") << 16383 << QByteArray("ff7f");
    QTest::newRow("the least of three groups") << 16384 << QByteArray("808001");
}

void tst_ValuePayloads::stringLengthsTakeGroupsOfSevenBits()
{
    QFETCH(int, length);
    QFETCH(QByteArray, prefix);
    const std::string text(static_cast<std::size_t>(length), 'x');
    const MimeData data(createMimeData(1, &text));
    QCOMPARE(data->data("ZR::VOM::string[]"),
             QByteArray::fromHex(prefix) + QByteArray(length, 'x'));
    std::vector<std::string> read;
    QVERIFY(getFromMimeData(*data, read));
    QCOMPARE(read, std::vector<std::string>{text});
}

void tst_ValuePayloads::arraysOf2GiBAreOfferedUnderNoType_data()
{
    // The counts are claims: none of these values is there, and none is looked at.
    static const Bool truth = true;
    static const int integer = 1;
    static const double real = 1;
    const std::size_t all = std::numeric_limits<std::size_t>::max();
    const std::size_t most = std::size_t(1) << 31;

    QTest::addColumn<Maker>("make");
    const auto row = [](char const *name, std::size_t count, auto const *values) {
        QTest::newRow(name) << Maker([=] { return createMimeData(count, values); });
    };
    row("truth values of 2 GiB", most, &truth);
    row("ints of 2 GiB", most / 4, &integer);
    row("reals of 2 GiB", most / 8, &real);
    row("truth values a little beyond what Qt holds", maxPayload + 1, &truth);
    row("ints whose size overflows to a small one", all / 4 + 2, &integer);
    row("reals whose size overflows to a small one", all / 8 + 2, &real);
    row("as many truth values as can be said", all, &truth);
}

void tst_ValuePayloads::arraysOf2GiBAreOfferedUnderNoType()
{
    QFETCH(Maker, make);
    QCOMPARE(dump(*MimeData(make())), "");
}

QTEST_GUILESS_MAIN(tst_ValuePayloads)

#include "tst_ValuePayloads.moc"
