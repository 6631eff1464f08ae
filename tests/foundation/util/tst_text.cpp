#include "zrVOMGUI/foundation/util/text.h"

#include <QTest>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <string>
#include <vector>

using namespace ZR;

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(std::vector<std::string>)

class tst_text : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { setTextTranslation({}); }

    void textWithoutTranslation_data();
    void textWithoutTranslation();
    void translationTakesThePlaceOfTheText();
    void textUnknownToTheTranslationReadsAsWithout();
    void emptyTranslationTakesItAway();

    void composeReplacesTheNumbers_data();
    void composeReplacesTheNumbers();
    void composeWritesValuesThroughAStream();
    void composeTakesAnArrayOfTexts();
    void composeHeedsNoLocale();

    void intInABase_data();
    void intInABase();
    void doubleAsText_data();
    void doubleAsText();
    void shortestTextReadsBack_data();
    void shortestTextReadsBack();
    void randomDoublesReadBack();
    void hugePrecisionCountsAsTheMostThereIs();
    void powerOfTwo_data();
    void powerOfTwo();
    void pieces_data();
    void pieces();
    void piecesAreAppended();
    void linesReadBackAsTheyWereWritten();
    void utf8_data();
    void utf8();
    void everyCodePointIsValidButSurrogates();
};

void tst_text::textWithoutTranslation_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("read");
    const auto row = [](char const *name, char const *text, char const *read) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(read);
    };
    row("no key", "void", "void");
    row("empty", "", "");
    row("key and text", "[ZR::VOM::GUI::ObjectTreeViewVoidRowLabel]void", "void");
    row("only a key", "[key]", "");
    row("empty key", "[]void", "void");
    row("only the first key counts", "[a][b]c", "[b]c");
    row("key that never ends", "[void", "[void");
    row("key behind the text", "void[key]", "void[key]");
    row("blank before the key", " [key]void", " [key]void");
    row("closing bracket alone", "]void", "]void");
}

void tst_text::textWithoutTranslation()
{
    QFETCH(QByteArray, text);
    QTEST(QByteArray(getLocText(text.constData())), "read");
}

void tst_text::translationTakesThePlaceOfTheText()
{
    std::string asked;
    setTextTranslation([&](char const *text) {
        asked = text;
        return "leer";
    });
    QCOMPARE(QByteArray(getLocText("[key]void")), QByteArray("leer"));
    QCOMPARE(asked, std::string("[key]void"));
    QCOMPARE(QByteArray(getLocText("void")), QByteArray("leer"));
}

void tst_text::textUnknownToTheTranslationReadsAsWithout()
{
    setTextTranslation([](char const *) -> char const * { return nullptr; });
    QCOMPARE(QByteArray(getLocText("[key]void")), QByteArray("void"));
    QCOMPARE(QByteArray(getLocText("void")), QByteArray("void"));
    QCOMPARE(QByteArray(getLocText(nullptr)), QByteArray(""));
}

void tst_text::emptyTranslationTakesItAway()
{
    setTextTranslation([](char const *) { return "leer"; });
    setTextTranslation({});
    QCOMPARE(QByteArray(getLocText("[key]void")), QByteArray("void"));
}

void tst_text::composeReplacesTheNumbers_data()
{
    QTest::addColumn<std::string>("format");
    QTest::addColumn<std::vector<std::string>>("args");
    QTest::addColumn<std::string>("text");
    using Args = std::vector<std::string>;
    const auto row = [](char const *name, std::string format, Args args, std::string text) {
        QTest::newRow(name) << format << args << text;
    };
    row("no number", "void", {"a"}, "void");
    row("empty format", "", {"a"}, "");
    row("one argument", "ZR::VOM::int[%1]", {"3"}, "ZR::VOM::int[3]");
    row("arguments in another order", "%2 (%1)", {"a", "b"}, "b (a)");
    row("argument taken twice", "%1%1", {"ab"}, "abab");
    row("argument not taken", "%2", {"a", "b"}, "b");
    row("empty argument", "[%1]", {""}, "[]");
    row("number in an argument stays", "%1 %2", {"%2", "x"}, "%2 x");
    row("number without an argument", "%1 %2", {"a"}, "a %2");
    row("number zero", "%0", {"a"}, "%0");
    row("no arguments", "%1", {}, "%1");
    row("percent sign at the end", "5%", {"a"}, "5%");
    row("percent sign before a letter", "%a %1", {"x"}, "%a x");
    row("two percent signs", "%%1", {"x"}, "%x");
    row("ten arguments", "%10%1", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "j"}, "j1");
    row("number above the arguments", "%10", {"a"}, "%10");
    row("number beyond all bounds", "%99999999999999999999999", {"a"}, "%99999999999999999999999");
    row("leading zero", "%01", {"a"}, "a");
    row("UTF-8", "\xc3\xa4 %1 \xe2\x82\xac", {"\xc3\xbc"}, "\xc3\xa4 \xc3\xbc \xe2\x82\xac");
}

void tst_text::composeReplacesTheNumbers()
{
    QFETCH(std::string, format);
    QFETCH(std::vector<std::string>, args);
    std::vector<char const *> pointers;
    for (std::string const &arg : args)
        pointers.push_back(arg.c_str());
    const auto count = static_cast<unsigned>(args.size());
    QTEST(_compose(format.c_str(), count, pointers.data()), "text");
}

void tst_text::composeWritesValuesThroughAStream()
{
    QCOMPARE(_compose("%1 %2 %3 %4", 5, 2.5, "text", std::string("string")),
             std::string("5 2.5 text string"));
    QCOMPARE(_compose("%1", 'c'), std::string("c"));
    QCOMPARE(_compose("%1"), std::string("%1"));
}

void tst_text::composeTakesAnArrayOfTexts()
{
    char const *args[] = {"a", "b"};
    QCOMPARE(_compose("%2%1", 2, args), std::string("ba"));
    char const *const constArgs[] = {"a", "b"};
    QCOMPARE(_compose("%2%1", 2u, constArgs), std::string("ba"));
}

void tst_text::composeHeedsNoLocale()
{
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
    const std::string text = _compose("%1 %2", 1000000, 2.5);
    std::locale::global(before);
    QCOMPARE(text, std::string("1000000 2.5"));
}

void tst_text::intInABase_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<unsigned>("base");
    QTest::addColumn<std::string>("text");
    QTest::newRow("zero") << 0 << 10u << std::string("0");
    QTest::newRow("positive") << 120 << 10u << std::string("120");
    QTest::newRow("negative") << -120 << 10u << std::string("-120");
    QTest::newRow("largest") << INT_MAX << 10u << std::string("2147483647");
    QTest::newRow("lowest") << INT_MIN << 10u << std::string("-2147483648");
    QTest::newRow("base 16 in small letters") << 0xbeef << 16u << std::string("beef");
    QTest::newRow("base 16, negative") << -255 << 16u << std::string("-ff");
    QTest::newRow("base 2") << 5 << 2u << std::string("101");
    QTest::newRow("lowest in base 2") << INT_MIN << 2u << "-1" + std::string(31, '0');
    QTest::newRow("base 36") << 35 << 36u << std::string("z");
    QTest::newRow("base 0 gives nothing") << 5 << 0u << std::string();
    QTest::newRow("base 1 gives nothing") << 5 << 1u << std::string();
    QTest::newRow("base 37 gives nothing") << 5 << 37u << std::string();
    QTest::newRow("base beyond int gives nothing") << 5 << UINT_MAX << std::string();
}

void tst_text::intInABase()
{
    QFETCH(int, value);
    QFETCH(unsigned, base);
    QTEST(intToStr(value, base), "text");
}

void tst_text::doubleAsText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<unsigned>("precision");
    QTest::addColumn<bool>("fixed");
    QTest::addColumn<std::string>("text");
    const auto row = [](char const *name, double value, unsigned precision, bool fixed,
                        std::string const &text) {
        QTest::newRow(name) << value << precision << fixed << text;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    row("shortest of a tenth", 0.1, 0, false, "0.1");
    row("shortest of a sum that isn't 0.3", 0.1 + 0.2, 0, false, "0.30000000000000004");
    row("shortest of a whole number", 4, 0, false, "4");
    row("shortest of zero", 0, 0, false, "0");
    row("shortest of negative zero", -0.0, 0, false, "-0");
    row("shortest takes the exponent where it is shorter", 1e5, 0, false, "1e+05");
    row("shortest keeps the digits where the exponent isn't", 1e4, 0, false, "10000");
    row("shortest of a large number", 1e300, 0, false, "1e+300");
    row("shortest of a small number", 1.5e-10, 0, false, "1.5e-10");
    row("shortest of infinity", infinity, 0, false, "inf");
    row("shortest of negative infinity", -infinity, 0, false, "-inf");
    row("fixed infinity", infinity, 2, true, "inf");
    row("three significant digits", 3.14159, 3, false, "3.14");
    row("significant digits leave out zeros at the end", 2.5, 6, false, "2.5");
    row("significant digits round", 2.71828, 2, false, "2.7");
    row("few significant digits take the exponent", 123456, 3, false, "1.23e+05");
    row("two digits after the point", 3.14159, 2, true, "3.14");
    row("digits after the point keep zeros", 2, 3, true, "2.000");
    row("digits after the point round", 0.999, 2, true, "1.00");
    row("digits after the point of a large number", 1e22, 1, true, "10000000000000000000000.0");
    row("negative, fixed", -0.5, 1, true, "-0.5");
    row("fixed without precision is the shortest without exponent", 1e5, 0, true, "100000");
    row("fixed without precision, small", 1.5e-7, 0, true, "0.00000015");
}

void tst_text::doubleAsText()
{
    QFETCH(double, value);
    QFETCH(unsigned, precision);
    QFETCH(bool, fixed);
    QTEST(doubleToStr(value, precision, fixed), "text");
}

void tst_text::shortestTextReadsBack_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("a third") << 1.0 / 3;
    QTest::newRow("largest") << DBL_MAX;
    QTest::newRow("lowest") << -DBL_MAX;
    QTest::newRow("smallest normal") << DBL_MIN;
    QTest::newRow("smallest of all") << std::numeric_limits<double>::denorm_min();
    QTest::newRow("just above one") << 1 + DBL_EPSILON;
    QTest::newRow("just below one") << 1 - DBL_EPSILON / 2;
    QTest::newRow("largest of the whole numbers in a row") << 9007199254740993.0;
}

void tst_text::shortestTextReadsBack()
{
    QFETCH(double, value);
    for (bool fixed : {false, true}) {
        const std::string text = doubleToStr(value, 0, fixed);
        QVERIFY2(std::strtod(text.c_str(), nullptr) == value, text.c_str());
        QVERIFY2(!fixed || text.find('e') == std::string::npos, text.c_str());
    }
}

void tst_text::randomDoublesReadBack()
{
    std::mt19937_64 gen(1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = gen();
        double value;
        std::memcpy(&value, &bits, sizeof(value));
        if (!std::isfinite(value))
            continue;
        const std::string text = doubleToStr(value, 0, false);
        QVERIFY2(std::strtod(text.c_str(), nullptr) == value, text.c_str());
        QVERIFY2(text.size() <= 24, text.c_str());
    }
}

void tst_text::hugePrecisionCountsAsTheMostThereIs()
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    const std::string text = doubleToStr(-tiny, UINT_MAX, true);
    QCOMPARE(text.size(), std::string("-0.").size() + 1100);
    // All of its 1,074 digits are there, so that exactly zeros are left out.
    QCOMPARE(text.find_last_not_of('0'), std::string("-0.").size() + 1073);
    QCOMPARE(doubleToStr(DBL_MAX, UINT_MAX, true).size(), std::size_t(309 + 1 + 1100));
    QCOMPARE(doubleToStr(0.5, UINT_MAX, false), std::string("0.5"));
}

void tst_text::powerOfTwo_data()
{
    QTest::addColumn<unsigned>("value");
    QTest::addColumn<unsigned>("power");
    QTest::newRow("0") << 0u << 1u;
    QTest::newRow("1") << 1u << 1u;
    QTest::newRow("2") << 2u << 2u;
    QTest::newRow("3") << 3u << 4u;
    QTest::newRow("4") << 4u << 4u;
    QTest::newRow("5") << 5u << 8u;
    QTest::newRow("1,000") << 1000u << 1024u;
    QTest::newRow("2^31 - 1") << 0x7fffffffu << 0x80000000u;
    QTest::newRow("2^31") << 0x80000000u << 0x80000000u;
    QTest::newRow("2^31 + 1 has none") << 0x80000001u << 0u;
    QTest::newRow("largest has none") << UINT_MAX << 0u;
}

void tst_text::powerOfTwo()
{
    QFETCH(unsigned, value);
    QTEST(ceilPow2(value), "power");
}

void tst_text::pieces_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::vector<std::string>>("pieces");
    using Pieces = std::vector<std::string>;
    QTest::newRow("empty text") << std::string() << Pieces{};
    QTest::newRow("no separator") << std::string("abc") << Pieces{"abc"};
    QTest::newRow("separator between") << std::string("a,b") << Pieces{"a", "b"};
    QTest::newRow("separator at the end ends the piece") << std::string("a,b,") << Pieces{"a", "b"};
    QTest::newRow("separator alone ends an empty piece") << std::string(",") << Pieces{""};
    QTest::newRow("two separators") << std::string(",,") << Pieces{"", ""};
    QTest::newRow("separator at the begin") << std::string(",a") << Pieces{"", "a"};
    QTest::newRow("empty piece between") << std::string("a,,b") << Pieces{"a", "", "b"};
    QTest::newRow("empty piece at the end") << std::string("a,,") << Pieces{"a", ""};
    QTest::newRow("other characters stay") << std::string("a;b\r,c") << Pieces{"a;b\r", "c"};
    QTest::newRow("zero inside the text")
        << std::string("a\0b,c", 5) << Pieces{std::string("a\0b", 3), "c"};
}

void tst_text::pieces()
{
    QFETCH(std::string, text);
    std::vector<std::string> out;
    strTok(text, ',', out);
    QTEST(out, "pieces");
}

void tst_text::piecesAreAppended()
{
    std::vector<std::string> out{"before"};
    strTok("a b", ' ', out);
    QCOMPARE(out, (std::vector<std::string>{"before", "a", "b"}));
}

void tst_text::linesReadBackAsTheyWereWritten()
{
    for (std::vector<std::string> const &strings : {std::vector<std::string>{},
                                                    {"a"},
                                                    {""},
                                                    {"", ""},
                                                    {"a", ""},
                                                    {"", "a"},
                                                    {"a", "", "b"}}) {
        std::string text;
        for (std::string const &string : strings)
            text += string + '\n';
        std::vector<std::string> out;
        strTok(text, '\n', out);
        QCOMPARE(out, strings);
    }
}

void tst_text::utf8_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("errorPos"); // -1 when valid.
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("ASCII") << QByteArray("abc \x01\x7f") << -1;
    QTest::newRow("first of two bytes") << QByteArray("\xc2\x80") << -1;
    QTest::newRow("last of two bytes") << QByteArray("\xdf\xbf") << -1;
    QTest::newRow("first of three bytes") << QByteArray("\xe0\xa0\x80") << -1;
    QTest::newRow("last before the surrogates") << QByteArray("\xed\x9f\xbf") << -1;
    QTest::newRow("first behind the surrogates") << QByteArray("\xee\x80\x80") << -1;
    QTest::newRow("last of three bytes") << QByteArray("\xef\xbf\xbf") << -1;
    QTest::newRow("first of four bytes") << QByteArray("\xf0\x90\x80\x80") << -1;
    QTest::newRow("last of all") << QByteArray("\xf4\x8f\xbf\xbf") << -1;
    QTest::newRow("mixed") << QByteArray("a\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80z") << -1;

    QTest::newRow("continuation alone") << QByteArray("ab\x80") << 2;
    QTest::newRow("last continuation byte alone") << QByteArray("\xbf") << 0;
    QTest::newRow("overlong slash in two bytes") << QByteArray("a\xc0\xaf") << 1;
    QTest::newRow("overlong end of ASCII") << QByteArray("\xc1\xbf") << 0;
    QTest::newRow("overlong in three bytes") << QByteArray("\xe0\x9f\xbf") << 0;
    QTest::newRow("overlong in four bytes") << QByteArray("\xf0\x8f\xbf\xbf") << 0;
    QTest::newRow("overlong zero") << QByteArray("\xc0\x80") << 0;
    QTest::newRow("first surrogate") << QByteArray("a\xed\xa0\x80") << 1;
    QTest::newRow("last surrogate") << QByteArray("\xed\xbf\xbf") << 0;
    QTest::newRow("pair of surrogates") << QByteArray("\xed\xa0\xbd\xed\xb8\x80") << 0;
    QTest::newRow("above U+10FFFF") << QByteArray("\xf4\x90\x80\x80") << 0;
    QTest::newRow("lead byte F5") << QByteArray("abc\xf5\x80\x80\x80") << 3;
    QTest::newRow("five bytes") << QByteArray("\xf8\x88\x80\x80\x80") << 0;
    QTest::newRow("byte FE") << QByteArray("\xfe") << 0;
    QTest::newRow("byte FF") << QByteArray("\xff") << 0;
    QTest::newRow("truncated two bytes") << QByteArray("a\xc3") << 1;
    QTest::newRow("truncated three bytes after one") << QByteArray("\xe2") << 0;
    QTest::newRow("truncated three bytes after two") << QByteArray("\xe2\x82") << 0;
    QTest::newRow("truncated four bytes after three") << QByteArray("ab\xf0\x9f\x98") << 2;
    QTest::newRow("cut short by a letter") << QByteArray("\xe2\x82z") << 0;
    QTest::newRow("cut short by a lead byte") << QByteArray("\xc3\xc3\xa4") << 0;
    QTest::newRow("only the first error counts") << QByteArray("\xc3\xa4\xff\xfe") << 2;
}

void tst_text::utf8()
{
    QFETCH(QByteArray, text);
    QFETCH(int, errorPos);
    // Exactly as long as the text, so that a reader past its end is caught.
    const std::vector<char> bytes(text.constData(), text.constData() + text.size() + 1);
    char const *error = nullptr;
    QCOMPARE(validateUtf8(bytes.data(), error), errorPos < 0);
    if (errorPos >= 0)
        QCOMPARE(error - bytes.data(), std::ptrdiff_t(errorPos));
}

void tst_text::everyCodePointIsValidButSurrogates()
{
    for (unsigned code = 1; code <= 0x10ffff; ++code) {
        char bytes[5] = {};
        if (code < 0x80) {
            bytes[0] = char(code);
        } else if (code < 0x800) {
            bytes[0] = char(0xc0 | code >> 6);
            bytes[1] = char(0x80 | (code & 0x3f));
        } else if (code < 0x10000) {
            bytes[0] = char(0xe0 | code >> 12);
            bytes[1] = char(0x80 | (code >> 6 & 0x3f));
            bytes[2] = char(0x80 | (code & 0x3f));
        } else {
            bytes[0] = char(0xf0 | code >> 18);
            bytes[1] = char(0x80 | (code >> 12 & 0x3f));
            bytes[2] = char(0x80 | (code >> 6 & 0x3f));
            bytes[3] = char(0x80 | (code & 0x3f));
        }
        char const *error = nullptr;
        const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
        if (validateUtf8(bytes, error) == isSurrogate)
            QFAIL(qPrintable(QString::number(code, 16)));
    }
}

QTEST_APPLESS_MAIN(tst_text)

#include "tst_text.moc"
