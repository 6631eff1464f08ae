#include "Houses.h"

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/presentation/ItemLabel.h"

#include <QFont>
#include <QFontMetrics>
#include <QRegularExpression>
#include <QTest>

#include <locale>

using namespace ZR::VOM::GUI;
using VOM::FieldInt;

namespace {

int listWidth(RefT<Model> const &object)
{
    return layoutItemList({object}, "name", false, false, QFont(), 0, 0, 0).width();
}

} // namespace

class tst_ItemLabel : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void formats_data();
    void formats();
    void labels_data();
    void labels();
    void emptyReferenceHasEmptyLabel();
    void classNameIsTheMostDerived();
    void nameIsTakenAsItStands_data();
    void nameIsTakenAsItStands();
    void brokenUtf8StaysInTheLabel();
    void fieldOfAnotherObjectMayNameIt();
    void fieldNameHandsTheFieldBack();
    void fieldNameClearsTheFieldFirst_data();
    void fieldNameClearsTheFieldFirst();
    void fieldOfAnotherTypeCountsAsNone();
    void emptyFieldNameLooksNothingUp();
    void fieldIsLookedUpOnce();
    void labelFollowsTheField();
    void addressHasNoGroupsOfDigits();
    void translationMovesTheParts();
    void translationOfOneRowLeavesTheOthers();
};

void tst_ItemLabel::cleanup()
{
    setTextTranslation({});
}

void tst_ItemLabel::formats_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](char const *format, char const *text) {
        QTest::newRow(text) << QByteArray(format) << QByteArray(text);
    };
    row(_ObjectItemLabelAddress_1, "[ZR::VOM::GUI::ObjectItemLabelAddress_1]@%1");
    row(_ObjectItemLabelType_1, "[ZR::VOM::GUI::ObjectItemLabelType_1]%1");
    row(_ObjectItemLabelType_1_Address_2, "[ZR::VOM::GUI::ObjectItemLabelType_1_Address_2]%1 @%2");
    row(_ObjectItemLabelName_1, "[ZR::VOM::GUI::ObjectItemLabelName_1]'%1'");
    row(_ObjectItemLabelAddress_1_Name_2,
        "[ZR::VOM::GUI::ObjectItemLabelAddress_1_Name_2]'%2' @%1");
    row(_ObjectItemLabelType_1_Name_2, "[ZR::VOM::GUI::ObjectItemLabelType_1_Name_2]%1 '%2'");
    row(_ObjectItemLabelType_1_Address_2_Name_3,
        "[ZR::VOM::GUI::ObjectItemLabelType_1_Address_2_Name_3]%1 '%3' @%2");
}

void tst_ItemLabel::formats()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, text);
    QCOMPARE(format, text);
}

void tst_ItemLabel::labels_data()
{
    QTest::addColumn<bool>("name");
    QTest::addColumn<bool>("typeName");
    QTest::addColumn<bool>("address");
    QTest::addColumn<QString>("expected"); // With A for the address.
    QTest::newRow("nothing") << false << false << false << "";
    QTest::newRow("address") << false << false << true << "@A";
    QTest::newRow("type") << false << true << false << "Estate::House";
    QTest::newRow("type, address") << false << true << true << "Estate::House @A";
    QTest::newRow("name") << true << false << false << "'villa'";
    QTest::newRow("name, address") << true << false << true << "'villa' @A";
    QTest::newRow("name, type") << true << true << false << "Estate::House 'villa'";
    QTest::newRow("name, type, address") << true << true << true << "Estate::House 'villa' @A";
}

void tst_ItemLabel::labels()
{
    QFETCH(bool, name);
    QFETCH(bool, typeName);
    QFETCH(bool, address);
    QFETCH(QString, expected);

    const RefT<Model> object = named("villa");
    expected.replace(QRegularExpression("A$"), QString::fromStdString(streamed(object)));
    const RefT<FieldString> field = name ? cast<FieldString>(object->findField("name")) : nullptr;
    QCOMPARE(QString::fromStdString(getItemLabel(object, field, typeName, address)), expected);
    const std::string fieldName = name ? "name" : "";
    QCOMPARE(QString::fromStdString(getItemLabel(object, fieldName, typeName, address)), expected);
}

void tst_ItemLabel::emptyReferenceHasEmptyLabel()
{
    const RefT<Model> object = named("villa");
    RefT<FieldString> field = cast<FieldString>(object->findField("name"));
    QCOMPARE(getItemLabel(nullptr, field, true, true), std::string());
    QCOMPARE(getItemLabel(nullptr, "name", true, true), std::string());
}

void tst_ItemLabel::classNameIsTheMostDerived()
{
    const RefT<Model> plain(new Model), derived(new House);
    QCOMPARE(getItemLabel(plain, "", true, false), std::string("ZR::VOM::Object"));
    QCOMPARE(getItemLabel(derived, "", true, false), std::string("Estate::House"));
}

void tst_ItemLabel::nameIsTakenAsItStands_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << "";
    QTest::newRow("placeholders") << "100%1 %2 %3";
    QTest::newRow("percent at the end") << "100%";
    QTest::newRow("key in brackets") << "[key]text";
    QTest::newRow("quote") << "O'Brien";
    QTest::newRow("beyond Latin") << QString::fromUtf8("дом \xf0\x9f\x8f\xa0");
    QTest::newRow("line feed") << "two\nlines";
    QTest::newRow("long") << QString(100000, 'x');
}

void tst_ItemLabel::nameIsTakenAsItStands()
{
    QFETCH(QString, name);
    const RefT<Model> object = named(name.toStdString());
    QCOMPARE(QString::fromStdString(getItemLabel(object, "name", true, false)),
             "Estate::House '" + name + "'");
}

void tst_ItemLabel::brokenUtf8StaysInTheLabel()
{
    const RefT<Model> object = named("caf\xe9 \xf0\x9f");
    QCOMPARE(getItemLabel(object, "name", false, false), std::string("'caf\xe9 \xf0\x9f'"));
    QVERIFY(listWidth(object) > listWidth(named("caf")));
}

void tst_ItemLabel::fieldOfAnotherObjectMayNameIt()
{
    const RefT<Model> object(new House), other = named("castle");
    const RefT<FieldString> field = cast<FieldString>(other->findField("name"));
    QCOMPARE(getItemLabel(object, field, false, false), std::string("'castle'"));
}

void tst_ItemLabel::fieldNameHandsTheFieldBack()
{
    const RefT<Model> object = named("villa");
    RefT<FieldString> field;
    QCOMPARE(getItemLabel(object, "name", false, false, field), std::string("'villa'"));
    QCOMPARE(static_cast<VOM::Field *>(field.get()), object->findField("name").get());
}

void tst_ItemLabel::fieldNameClearsTheFieldFirst_data()
{
    QTest::addColumn<bool>("withObject");
    QTest::addColumn<QString>("fieldName");
    QTest::newRow("no object") << false << "name";
    QTest::newRow("no field name") << true << "";
    QTest::newRow("no such field") << true << "title";
    QTest::newRow("integer of that name") << true << "floors";
}

void tst_ItemLabel::fieldNameClearsTheFieldFirst()
{
    QFETCH(bool, withObject);
    QFETCH(QString, fieldName);
    const RefT<Model> object = named("villa"), other = named("castle");
    VOM::addField<FieldInt>(*object, "floors", 2);
    RefT<FieldString> field = cast<FieldString>(other->findField("name"));
    const std::string label = getItemLabel(withObject ? object : RefT<Model>(),
                                           fieldName.toStdString(), false, false, field);
    QVERIFY(!field);
    QCOMPARE(label, std::string());
}

void tst_ItemLabel::fieldOfAnotherTypeCountsAsNone()
{
    const RefT<Model> object(new House);
    VOM::addField<FieldInt>(*object, "name", 7);
    QCOMPARE(getItemLabel(object, "name", false, false), std::string());
    QCOMPARE(getItemLabel(object, "name", true, false), std::string("Estate::House"));
    QCOMPARE(getItemLabel(object, "name", true, true), "Estate::House @" + streamed(object));
}

void tst_ItemLabel::emptyFieldNameLooksNothingUp()
{
    const RefT<House> object(new House);
    VOM::addField<FieldString>(*object, "", "unnamed");
    object->numLookUps = 0;
    QCOMPARE(getItemLabel(object, "", true, false), std::string("Estate::House"));
    QCOMPARE(object->numLookUps, 0);
    layoutItemList({object}, "", true, false, QFont(), 1, 1, 16);
    QCOMPARE(object->numLookUps, 0);
}

void tst_ItemLabel::fieldIsLookedUpOnce()
{
    const RefT<House> object(new House);
    VOM::addField<FieldString>(*object, "name", "villa");
    object->numLookUps = 0;
    getItemLabel(object, "name", true, true);
    QCOMPARE(object->numLookUps, 1);
}

void tst_ItemLabel::labelFollowsTheField()
{
    const RefT<Model> object = named("villa");
    RefT<FieldString> field;
    getItemLabel(object, "name", false, false, field);
    field->set("ruin");
    QCOMPARE(getItemLabel(object, field, false, false), std::string("'ruin'"));
    QCOMPARE(getItemLabel(object, "name", false, false), std::string("'ruin'"));
}

void tst_ItemLabel::addressHasNoGroupsOfDigits()
{
    struct Grouping : std::numpunct<char> {
        std::string do_grouping() const override { return "\1"; }
        char do_thousands_sep() const override { return '_'; }
    };
    const RefT<Model> object(new House);
    const std::string expected = "@" + streamed(object);
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    const std::string label = getItemLabel(object, "", false, true);
    std::locale::global(before);
    QCOMPARE(label, expected);
}

void tst_ItemLabel::translationMovesTheParts()
{
    const RefT<Model> object = named("villa");
    setTextTranslation([](char const *text) {
        return text == std::string(_ObjectItemLabelType_1_Address_2_Name_3) ? "%3 = %2 (%1)"
                                                                            : nullptr;
    });
    QCOMPARE(getItemLabel(object, "name", true, true),
             "villa = " + streamed(object) + " (Estate::House)");
}

void tst_ItemLabel::translationOfOneRowLeavesTheOthers()
{
    setTextTranslation([](char const *text) {
        return text == std::string(_ObjectItemLabelName_1) ? "<%1>" : nullptr;
    });
    for (std::string const name : {"villa", "castle", ""})
        QCOMPARE(getItemLabel(named(name), "name", false, false), "<" + name + ">");
    QCOMPARE(getItemLabel(named("villa"), "name", true, false),
             std::string("Estate::House 'villa'"));
    const QRect bound = QFontMetrics(QFont()).boundingRect("<villa>");
    QCOMPARE(listWidth(named("villa")), bound.width() - bound.left());
}

QTEST_MAIN(tst_ItemLabel)
#include "tst_ItemLabel.moc"
