#include "support/XmlModel.h"

#include "support/QtStrings.h"

#include <QTest>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <set>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

/// Writes and reads back; fails the test unless there is no error.
RefT<Object> roundTrip(RefT<Object> const &root)
{
    XmlErrors errors;
    const std::string text = toXml(root, errors.manager);
    const RefT<Object> copy = fromXml(text, xmlRegistry(), errors.manager);
    if (errors.count() != 0)
        qWarning("%s\n%s", errors.text().c_str(), text.c_str());
    // The second document must be the first, byte for byte.
    return toXml(copy, errors.manager) == text && errors.count() == 0 ? copy : RefT<Object>();
}

template <class FieldType, class Value>
Value afterRoundTrip(Value const &value)
{
    const RefT<Object> root = makeThing("root");
    addField<FieldType>(*root, "value", value);
    const RefT<Object> copy = roundTrip(root);
    return copy ? fieldOf<FieldType>(copy, "value").get() : Value{};
}

double realOf(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

/// What a model is after it was written to XML and read back.
class tst_XmlRoundTrip : public QObject {
    Q_OBJECT

private slots:
    void exampleDocumentReadsAsItShould();

    void intSurvives_data();
    void intSurvives();
    void realSurvivesBitForBit_data();
    void realSurvivesBitForBit();
    void stringSurvivesByteForByte_data();
    void stringSurvivesByteForByte();
};

void tst_XmlRoundTrip::exampleDocumentReadsAsItShould()
{
    const RefT<Object> root(new Fixed), part = makeThing("a < b & c");
    part->setFlags(5);
    fieldOf<FieldRef>(root, "ref").set(part);
    fieldOf<FieldPtr>(root, "ptr").set(part);
    setLinks<MFieldPtr>(root, "ptrs", {part, nullptr, root});
    fieldOf<FieldString>(root, "string").set(std::string("a\0b", 3));
    XmlErrors errors;
    QCOMPARE(toXml(root, errors.manager), std::string(R"(<?xml version="1.0" encoding="UTF-8"?>
<model version="1">
 <object id="1" class="Fixed">
  <int name="int">7</int>
  <real name="real">0.5</real>
  <string name="string" encoding="base64">YQBi</string>
  <ptr name="ptr">2</ptr>
  <ref name="ref">2</ref>
  <ptrs name="ptrs">2 - 1</ptrs>
  <refs name="refs"></refs>
 </object>
 <object id="2" class="Thing" flags="5">
  <string name="name">a &lt; b &amp; c</string>
 </object>
</model>
)"));
    QCOMPARE(errors.text(), std::string());
    const RefT<Object> copy = roundTrip(root);
    QVERIFY(copy);
    QCOMPARE(modelText(copy), modelText(root));
}

void tst_XmlRoundTrip::intSurvives_data()
{
    QTest::addColumn<int>("value");
    for (const int value :
         {0, 1, -1, 1000000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        QTest::addRow("%d", value) << value;
}

void tst_XmlRoundTrip::intSurvives()
{
    QFETCH(int, value);
    QCOMPARE(afterRoundTrip<FieldInt>(value), value);
}

void tst_XmlRoundTrip::realSurvivesBitForBit_data()
{
    using Limits = std::numeric_limits<double>;
    QTest::addColumn<double>("value");
    QTest::newRow("0") << 0.0;
    QTest::newRow("-0") << -0.0;
    QTest::newRow("0.1") << 0.1;
    QTest::newRow("1/3") << 1.0 / 3;
    QTest::newRow("largest") << Limits::max();
    QTest::newRow("smallest normal") << Limits::min();
    QTest::newRow("smallest") << Limits::denorm_min();
    QTest::newRow("inf") << Limits::infinity();
    QTest::newRow("-inf") << -Limits::infinity();
    QTest::newRow("nan") << realOf(0x7ff8000000000000);
    QTest::newRow("-nan") << realOf(0xfff8000000000000);
    QTest::newRow("nan with a payload") << realOf(0x7ff8000000c0ffee);
    QTest::newRow("signalling nan") << realOf(0x7ff0000000000001);
    QTest::newRow("all bits") << realOf(0xffffffffffffffff);
}

void tst_XmlRoundTrip::realSurvivesBitForBit()
{
    QFETCH(double, value);
    const double copy = afterRoundTrip<FieldReal>(value);
    QCOMPARE(QByteArray(reinterpret_cast<char const *>(&copy), sizeof copy).toHex(),
             QByteArray(reinterpret_cast<char const *>(&value), sizeof value).toHex());
}

void tst_XmlRoundTrip::stringSurvivesByteForByte_data()
{
    QTest::addColumn<std::string>("value");
    QTest::newRow("empty") << std::string();
    QTest::newRow("one blank") << std::string(" ");
    QTest::newRow("blanks around") << std::string("  a  ");
    QTest::newRow("only line feeds") << std::string("\n\n");
    QTest::newRow("tab") << std::string("\ta\t");
    QTest::newRow("CR LF") << std::string("a\r\nb\rc");
    QTest::newRow("markup") << std::string("<a b=\"c\" d='e'>&amp;]]></a><!-- -->");
    QTest::newRow("NUL alone") << std::string("\0", 1);
    QTest::newRow("NUL at the end") << std::string("a\0", 2);
    QTest::newRow("controls") << std::string("\x01\x08\x0b\x1f\x7f");
    QTest::newRow("Umlaut") << std::string("Gr\xC3\xBC\xC3\x9F"
                                           "e");
    QTest::newRow("beyond 16 bits") << std::string("\xF0\x9F\x98\x80");
    QTest::newRow("byte order mark") << std::string("\xEF\xBB\xBFtext");
    QTest::newRow("U+FFFD") << std::string("\xEF\xBF\xBD");
    QTest::newRow("U+FFFE") << std::string("\xEF\xBF\xBE");
    QTest::newRow("U+FFFF") << std::string("a\xEF\xBF\xBF");
    QTest::newRow("U+85 and U+2028") << std::string("\xC2\x85\xE2\x80\xA8");
    QTest::newRow("last code point") << std::string("\xF4\x8F\xBF\xBF");
    QTest::newRow("invalid UTF-8") << std::string("\xFF\xFE");
    QTest::newRow("cut UTF-8") << std::string("a\xC3");
    QTest::newRow("overlong UTF-8") << std::string("\xC0\x80");
    QTest::newRow("surrogate in UTF-8") << std::string("\xED\xA0\x80");
    QTest::newRow("what looks like base64") << std::string("YQBi");
    QTest::newRow("enormous") << std::string(20000000, 'x');
    QTest::newRow("enormous and binary") << std::string(10000000, '\x01');
}

void tst_XmlRoundTrip::stringSurvivesByteForByte()
{
    QFETCH(std::string, value);
    QVERIFY(afterRoundTrip<FieldString>(value) == value);
}

QTEST_APPLESS_MAIN(tst_XmlRoundTrip)

#include "tst_XmlRoundTrip.moc"
