#include "zrVOMGUI/foundation/vom/linkFields.h"

#include <QTest>

#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

/// Bears a code of its choice, and is none of the seven kinds.
class OpaqueField : public Field {
public:
    OpaqueField(Object &newOwner, char const *fieldName, unsigned flags, int typeCode)
        : Field(newOwner, fieldName, flags)
        , code(typeCode)
    {
    }
    PtrT<Field> clone(Object &) const override { return {}; }
    int getType() const override { return code; }
    void copyValue(Field const &) override {}

private:
    int code;
};

struct KindName {
    std::string operator()(FieldPtr &) const { return "watching link"; }
    std::string operator()(FieldRef &) const { return "owning link"; }
    std::string operator()(MFieldPtr &) const { return "watching list"; }
    std::string operator()(MFieldRef &) const { return "owning list"; }
};

std::string kindOf(Field &field)
{
    std::string kind = "none";
    const bool wasCalled =
        visitLinkField(field, [&](auto &linkField) { kind = KindName()(linkField); });
    return wasCalled == (kind != "none") ? kind : "answer and call differ";
}

std::size_t numLinks(Field &field)
{
    std::size_t num = 0;
    forEachLink(field, [&](RefT<Object> const &link) { num += link ? 1 : 1000; });
    return num;
}

} // namespace

class tst_linkFields : public QObject {
    Q_OBJECT

private slots:
    void visitorGetsTheFieldAsWhatItIs();
    void plainFieldsHoldNoLinks();
    void opaqueFieldIsPassedOver_data();
    void opaqueFieldIsPassedOver();
    void typeCodes_data();
    void typeCodes();
    void forEachLinkPassesOverNull();
    void forEachLinkKeepsTheOrder();
    void listMayShrinkWhileItIsWalked();
};

void tst_linkFields::visitorGetsTheFieldAsWhatItIs()
{
    Object object(0);
    QCOMPARE(kindOf(addField<FieldPtr>(object, "x")), std::string("watching link"));
    QCOMPARE(kindOf(addField<FieldRef>(object, "x")), std::string("owning link"));
    QCOMPARE(kindOf(addField<MFieldPtr>(object, "x")), std::string("watching list"));
    QCOMPARE(kindOf(addField<MFieldRef>(object, "x")), std::string("owning list"));
}

void tst_linkFields::plainFieldsHoldNoLinks()
{
    Object object(0);
    QCOMPARE(kindOf(addField<FieldInt>(object, "x")), std::string("none"));
    QCOMPARE(kindOf(addField<FieldReal>(object, "x")), std::string("none"));
    QCOMPARE(kindOf(addField<FieldString>(object, "x")), std::string("none"));
}

void tst_linkFields::opaqueFieldIsPassedOver_data()
{
    QTest::addColumn<int>("code");
    for (int code : {0, 1, 2, 5, 6, 7, 11, 12, 13, -1})
        QTest::addRow("code %d", code) << code;
}

void tst_linkFields::opaqueFieldIsPassedOver()
{
    QFETCH(int, code);
    Object object(0);
    auto &field = addField<OpaqueField>(object, "x", code);
    QCOMPARE(kindOf(field), std::string("none"));
    QCOMPARE(numLinks(field), std::size_t(0));
}

void tst_linkFields::typeCodes_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("kinds");
    QTest::newRow("unknown") << 0 << "";
    QTest::newRow("int") << 2 << "";
    QTest::newRow("real") << 3 << "";
    QTest::newRow("string") << 4 << "";
    QTest::newRow("watching link") << 5 << "link";
    QTest::newRow("owning link") << 6 << "link owning";
    QTest::newRow("watching list") << 11 << "link list";
    QTest::newRow("owning list") << 12 << "link list owning";
}

void tst_linkFields::typeCodes()
{
    QFETCH(int, code);
    QStringList kinds;
    if (isLinkType(code))
        kinds << "link";
    if (isLinkListType(code))
        kinds << "list";
    if (isOwningLinkType(code))
        kinds << "owning";
    QTEST(kinds.join(' '), "kinds");
}

void tst_linkFields::forEachLinkPassesOverNull()
{
    const RefT<Object> target(new Object(0));
    Object object(0);
    QCOMPARE(numLinks(addField<FieldPtr>(object, "x")), std::size_t(0));
    QCOMPARE(numLinks(addField<FieldRef>(object, "x")), std::size_t(0));
    QCOMPARE(numLinks(addField<FieldPtr>(object, "x", target)), std::size_t(1));
    QCOMPARE(numLinks(addField<FieldRef>(object, "x", target)), std::size_t(1));
    QCOMPARE(
        numLinks(addField<MFieldPtr>(object, "x", std::vector<PtrT<Object>>{target, {}, target})),
        std::size_t(2));
    QCOMPARE(numLinks(addField<MFieldRef>(object, "x", std::vector<RefT<Object>>{{}, target, {}})),
             std::size_t(1));
}

void tst_linkFields::forEachLinkKeepsTheOrder()
{
    std::vector<RefT<Object>> targets;
    for (unsigned i = 0; i < 5; ++i)
        targets.emplace_back(new Object(i));
    Object object(0);
    std::string order;
    forEachLink(addField<MFieldRef>(object, "x", targets),
                [&](RefT<Object> const &link) { order += std::to_string(link->getFlags()); });
    QCOMPARE(order, std::string("01234"));
}

void tst_linkFields::listMayShrinkWhileItIsWalked()
{
    Object object(0);
    std::vector<RefT<Object>> targets;
    for (unsigned i = 0; i < 5; ++i)
        targets.emplace_back(new Object(i));
    auto &field = addField<MFieldRef>(object, "x", targets);
    targets.clear();
    int calls = 0;
    forEachLink(field, [&](RefT<Object> const &link) {
        ++calls;
        field.replace(0, field.getNum(), {});
        QVERIFY(link);
    });
    QCOMPARE(calls, 1);
}

QTEST_APPLESS_MAIN(tst_linkFields)

#include "tst_linkFields.moc"
