#include "support/XmlModel.h"

#include "support/QtStrings.h"

#include <QElapsedTimer>
#include <QTest>

#include <limits>
#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

template <class FieldType, class Value>
Value afterRoundTrip(Value const &value)
{
    const RefT<Object> root = makeThing("root");
    addField<FieldType>(*root, "value", value);
    const RefT<Object> copy = xmlRoundTrip(root);
    return copy ? fieldOf<FieldType>(copy, "value").get() : Value{};
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
    void everyCodePointSurvives();

    void nullLinksSurvive();
    void objectOwnedTwiceIsWrittenOnce();
    void watchingLinkInsideTheDocumentLeadsToTheCopy();
    void watchingLinkThatLeavesTheDocumentReadsNull();
    void entryThatLeavesTheDocumentKeepsThePlacesOfTheOthers();
    void circleOfOwnersSurvives();
    void selfReferencesSurvive();

    void flagsSurvive();
    void namesSurvive_data();
    void namesSurvive();
    void fieldsOfOneNameSurvive();
    void classIsThatOfTheObject();
    void addedFieldsStandBehindThoseOfTheClass();
    void fieldThatIsNoneOfTheSevenKindsIsLeftOut();
    void plainObjectsSurvive();
    void objectOnTheStackIsWritten();

    void chainOfOwnersNeedsNoNesting();
    void enormousListSurvives();
    void manyFieldsSurviveInAnyOrder();
    void timeGrowsWithTheModel();
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
  <refs name="refs"/>
 </object>
 <object id="2" class="Thing" flags="5">
  <string name="name">a &lt; b &amp; c</string>
 </object>
</model>
)"));
    QCOMPARE(errors.text(), std::string());
    const RefT<Object> copy = xmlRoundTrip(root);
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
    QTest::newRow("nan") << realOfBits(0x7ff8000000000000);
    QTest::newRow("-nan") << realOfBits(0xfff8000000000000);
    QTest::newRow("nan with a payload") << realOfBits(0x7ff8000000c0ffee);
    QTest::newRow("signalling nan") << realOfBits(0x7ff0000000000001);
    QTest::newRow("all bits") << realOfBits(0xffffffffffffffff);
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

void tst_XmlRoundTrip::everyCodePointSurvives()
{
    std::u32string codes;
    for (char32_t code = 0; code <= 0x10FFFF; ++code)
        if (code < 0xD800 || code > 0xDFFF)
            codes += code;
    // A few at a time: one that XML can't hold makes the others go in another way.
    for (std::size_t i = 0; i < codes.size(); i += 4096) {
        const std::string text = QString::fromStdU32String(codes.substr(i, 4096)).toStdString();
        QVERIFY(afterRoundTrip<FieldString>(text) == text);
        QVERIFY(afterRoundTrip<FieldString>('x' + text) == 'x' + text);
    }
}

void tst_XmlRoundTrip::nullLinksSurvive()
{
    const RefT<Object> root(new Fixed);
    setLinks<MFieldPtr>(root, "ptrs", {nullptr});
    setLinks<MFieldRef>(root, "refs", {nullptr, nullptr, nullptr});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    QCOMPARE(modelText(copy), modelText(root));
    QCOMPARE(fieldOf<MFieldRef>(copy, "refs").getNum(), std::size_t(3));
}

void tst_XmlRoundTrip::objectOwnedTwiceIsWrittenOnce()
{
    const RefT<Object> root(new Fixed), shared = makeThing("shared");
    setLink<FieldRef>(root, "ref", shared);
    setLinks<MFieldRef>(root, "refs", {shared, makeThing("other"), shared});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    Object *const sharedCopy = fieldOf<FieldRef>(copy, "ref").get().get();
    QCOMPARE(fieldOf<MFieldRef>(copy, "refs").get(0).get(), sharedCopy);
    QCOMPARE(fieldOf<MFieldRef>(copy, "refs").get(2).get(), sharedCopy);
    QVERIFY(fieldOf<MFieldRef>(copy, "refs").get(1).get() != sharedCopy);
    XmlErrors errors;
    QCOMPARE(QByteArray::fromStdString(toXml(root, errors.manager)).count("<object "), 3);
}

void tst_XmlRoundTrip::watchingLinkInsideTheDocumentLeadsToTheCopy()
{
    const RefT<Object> root(new Fixed), part(new Fixed);
    setLink<FieldRef>(root, "ref", part);
    setLink<FieldPtr>(part, "ptr", root);
    setLinks<MFieldPtr>(root, "ptrs", {part, root, part});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    const RefT<Object> partCopy = fieldOf<FieldRef>(copy, "ref").get();
    QCOMPARE(fieldOf<FieldPtr>(partCopy, "ptr").get().get(), copy.get());
    QCOMPARE(fieldOf<MFieldPtr>(copy, "ptrs").get(2).get(), partCopy.get());
    QCOMPARE(modelText(copy), modelText(root));
}

void tst_XmlRoundTrip::watchingLinkThatLeavesTheDocumentReadsNull()
{
    const RefT<Object> root(new Fixed), outside = makeThing("outside");
    setLink<FieldPtr>(root, "ptr", outside);
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    QVERIFY(!fieldOf<FieldPtr>(copy, "ptr").get());
    XmlErrors errors;
    const std::string text = toXml(root, errors.manager);
    QVERIFY2(text.find("<ptr name=\"ptr\"/>") != std::string::npos, text.c_str());
    QVERIFY(text.find("outside") == std::string::npos);
}

void tst_XmlRoundTrip::entryThatLeavesTheDocumentKeepsThePlacesOfTheOthers()
{
    const RefT<Object> root(new Fixed), part = makeThing("part"), outside = makeThing("outside");
    setLinks<MFieldRef>(root, "refs", {part});
    setLinks<MFieldPtr>(root, "ptrs", {outside, part, outside, root, nullptr});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    auto const &links = fieldOf<MFieldPtr>(copy, "ptrs");
    QCOMPARE(links.getNum(), std::size_t(5));
    QVERIFY(!links.get(0) && !links.get(2) && !links.get(4));
    QCOMPARE(links.get(1).get(), fieldOf<MFieldRef>(copy, "refs").get(0).get());
    QCOMPARE(links.get(3).get(), copy.get());
}

void tst_XmlRoundTrip::circleOfOwnersSurvives()
{
    const RefT<Object> a(new Fixed), b(new Fixed);
    const XmlModelEnd end(a);
    setLink<FieldRef>(a, "ref", b);
    setLinks<MFieldRef>(b, "refs", {a, b});
    const RefT<Object> copy = xmlRoundTrip(a);
    QVERIFY(copy);
    const XmlModelEnd copyEnd(copy);
    QCOMPARE(modelText(copy), modelText(a));
}

void tst_XmlRoundTrip::selfReferencesSurvive()
{
    const RefT<Object> root(new Fixed);
    const XmlModelEnd end(root);
    setLink<FieldPtr>(root, "ptr", root);
    setLink<FieldRef>(root, "ref", root);
    setLinks<MFieldPtr>(root, "ptrs", {root, root});
    setLinks<MFieldRef>(root, "refs", {root, root});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    const XmlModelEnd copyEnd(copy);
    QCOMPARE(modelText(copy), modelText(root));
}

void tst_XmlRoundTrip::flagsSurvive()
{
    const RefT<Object> root(new Fixed);
    root->setFlags(0xFFFFFFFF);
    root->getField(0)->setFlags(1);
    root->getField(6)->setFlags(2);
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    QCOMPARE(copy->getFlags(), 0xFFFFFFFFu);
    QCOMPARE(copy->getField(0)->getFlags(), 1u);
    QCOMPARE(copy->getField(1)->getFlags(), 0u);
    QCOMPARE(copy->getField(6)->getFlags(), 2u);
}

void tst_XmlRoundTrip::namesSurvive_data()
{
    QTest::addColumn<std::string>("name");
    QTest::newRow("empty") << std::string();
    QTest::newRow("blanks") << std::string("  a\t\nb  ");
    QTest::newRow("quotes and markup") << std::string("\"'<&>");
    QTest::newRow("CR") << std::string("a\r\nb");
    QTest::newRow("control") << std::string("\x01");
    QTest::newRow("invalid UTF-8") << std::string("\xFF");
    QTest::newRow("long") << std::string(100000, 'n');
}

void tst_XmlRoundTrip::namesSurvive()
{
    QFETCH(std::string, name);
    static std::string className;
    className = name;
    class Named : public Object {
    public:
        ClassInfo const &getClassInfo() const override
        {
            static ClassInfo info = {&Object::classInfo, nullptr};
            info.name = className.c_str();
            return info;
        }
    };
    const RefT<ClassRegistry> registry(new ClassRegistry);
    QVERIFY(registry->add<Named>(ClassRegistry::Fields::Open));
    const RefT<Object> root(new Named);
    addField<FieldInt>(*root, name.c_str(), 5);
    XmlErrors errors;
    const RefT<Object> copy = fromXml(toXml(root, errors.manager), registry, errors.manager);
    QCOMPARE(errors.text(), std::string());
    QVERIFY(cast<Named>(copy));
    QCOMPARE(modelText(copy), modelText(root));
}

void tst_XmlRoundTrip::fieldsOfOneNameSurvive()
{
    const RefT<Object> root(new Thing);
    addField<FieldInt>(*root, "a", 1);
    addField<FieldInt>(*root, "b", 2);
    addField<FieldInt>(*root, "a", 3);
    addField<FieldString>(*root, "a", "4");
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    QCOMPARE(modelText(copy), modelText(root));
}

void tst_XmlRoundTrip::classIsThatOfTheObject()
{
    const RefT<Object> root = makeThing<Special>("special");
    setLinks<MFieldRef>(root, "parts", {makeThing("thing"), RefT<Object>(new Fixed)});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(cast<Special>(copy));
    auto const &parts = fieldOf<MFieldRef>(copy, "parts");
    QVERIFY(cast<Thing>(parts.get(0)) && !cast<Special>(parts.get(0)));
    QVERIFY(cast<Fixed>(parts.get(1)));
}

void tst_XmlRoundTrip::addedFieldsStandBehindThoseOfTheClass()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Fixed>(ClassRegistry::Fields::Open);
    const RefT<Object> root(new Fixed);
    addField<FieldString>(*root, "added", "value");
    addField<MFieldRef>(*root, "addedToo", Things{root});
    const XmlModelEnd end(root);
    XmlErrors errors;
    const RefT<Object> copy = fromXml(toXml(root, errors.manager), registry, errors.manager);
    QCOMPARE(errors.text(), std::string());
    const XmlModelEnd copyEnd(copy);
    QCOMPARE(modelText(copy), modelText(root));
}

void tst_XmlRoundTrip::fieldThatIsNoneOfTheSevenKindsIsLeftOut()
{
    class Opaque : public Field {
    public:
        Opaque(Object &newOwner, char const *fieldName, unsigned, int code)
            : Field(newOwner, fieldName, 0)
            , typeCode(code)
        {
        }
        PtrT<Field> clone(Object &) const override { return {}; }
        int getType() const override { return typeCode; }
        void copyValue(Field const &) override {}

    private:
        int typeCode;
    };
    const RefT<Object> root = makeThing("root");
    addField<Opaque>(*root, "opaque", 77);
    addField<Opaque>(*root, "claims to be a list", 12);
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    QCOMPARE(modelText(copy), modelText(makeThing("root")));
}

void tst_XmlRoundTrip::plainObjectsSurvive()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Object>(ClassRegistry::Fields::Open);
    const RefT<Object> house(new Object), door(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldRef>(*house, "part", door);
    addField<FieldString>(*door, "name", "door");
    XmlErrors errors;
    const RefT<Object> copy = fromXml(toXml(house, errors.manager), registry, errors.manager);
    QCOMPARE(errors.text(), std::string());
    QCOMPARE(modelText(copy), modelText(house));
}

void tst_XmlRoundTrip::objectOnTheStackIsWritten()
{
    const RefT<Object> part = makeThing("part");
    std::string text;
    XmlErrors errors;
    {
        Fixed onStack;
        fieldOf<FieldRef>(onStack, "ref").set(part);
        text = toXml(RefT<Object>(onStack), errors.manager);
    }
    const RefT<Object> copy = fromXml(text, xmlRegistry(), errors.manager);
    QCOMPARE(errors.text(), std::string());
    QCOMPARE(fieldOf<FieldString>(fieldOf<FieldRef>(copy, "ref").get(), "name").get(),
             std::string("part"));
}

void tst_XmlRoundTrip::chainOfOwnersNeedsNoNesting()
{
    constexpr int length = 100000;
    RefT<Object> chain;
    for (int i = 0; i < length; ++i) {
        RefT<Object> owner = makeThing("link");
        setLink<FieldRef>(owner, "next", chain);
        chain = std::move(owner);
    }
    const RefT<Object> copy = xmlRoundTrip(chain);
    QVERIFY(copy);
    int copied = 0;
    for (RefT<Object> link = copy; link; link = fieldOf<FieldRef>(link, "next").get())
        ++copied;
    QCOMPARE(copied, length);
}

void tst_XmlRoundTrip::enormousListSurvives()
{
    constexpr std::size_t length = 1000000;
    const RefT<Object> root(new Fixed), part = makeThing("part");
    setLink<FieldRef>(root, "ref", part);
    setLinks<MFieldPtr>(root, "ptrs", Things(length, part));
    fieldOf<MFieldPtr>(root, "ptrs").replace(length - 2, 1, {nullptr});
    const RefT<Object> copy = xmlRoundTrip(root);
    QVERIFY(copy);
    QVERIFY(modelText(copy) == modelText(root));
}

void tst_XmlRoundTrip::manyFieldsSurviveInAnyOrder()
{
    // A class whose objects have many fields, and a document that has them the other way round.
    constexpr int numFields = 50000;
    class Many : public Thing {
    public:
        Many()
        {
            for (int i = 0; i < numFields; ++i)
                addField<FieldInt>(*this, std::to_string(i).c_str(), i);
        }
    };
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Many>();
    const RefT<Object> reversed(new Thing);
    for (int i = numFields; i-- > 0;)
        addField<FieldInt>(*reversed, std::to_string(i).c_str(), -i);
    XmlErrors errors;
    const RefT<Object> copy = fromXml(toXml(reversed, errors.manager), registry, errors.manager);
    QCOMPARE(errors.text(), std::string());
    QCOMPARE(copy->getNumFields(), std::size_t(numFields));
    for (int i = 0; i < numFields; ++i)
        QCOMPARE(static_cast<FieldInt &>(*copy->getField(std::size_t(i))).get(), -i);
}

void tst_XmlRoundTrip::timeGrowsWithTheModel()
{
    const auto timeOf = [](int numObjects) {
        Things parts;
        for (int i = 0; i < numObjects; ++i)
            parts.push_back(makeThing("part"));
        const RefT<Object> root(new Fixed);
        setLinks<MFieldRef>(root, "refs", parts);
        setLinks<MFieldPtr>(root, "ptrs", parts);
        QElapsedTimer timer;
        timer.start();
        xmlRoundTrip(root);
        return timer.nsecsElapsed();
    };
    timeOf(5000);
    // Of sixteen times the size, sixteen times the time; were it its square, 256 times.
    QVERIFY(timeOf(80000) < 80 * timeOf(5000));
}

QTEST_APPLESS_MAIN(tst_XmlRoundTrip)

#include "tst_XmlRoundTrip.moc"
