#include "IconDBModel.h"

#include "zrVOMGUI/foundation/vom/MField.h"

#include <QTest>

#include <limits>

using VOM::FieldReal;
using VOM::FieldString;

static_assert(
    std::is_same_v<decltype(std::declval<ObjectFieldIntIconDB const &>().getField()), std::string>);
static_assert(std::is_base_of_v<ObjectFieldIconDBT<FieldInt>, ObjectFieldIntIconDB>);

namespace {

/// A field that answers the type code of integers and is none.
class OddField : public VOM::Field {
public:
    explicit OddField(Model &newOwner, char const *fieldName, unsigned initialFlags)
        : Field(newOwner, fieldName, initialFlags)
    {
    }
    PtrT<Field> clone(Model &) const override { return nullptr; }
    int getType() const override { return 2; }
    void copyValue(Field const &) override {}
};

} // namespace

class tst_ObjectFieldIconDB : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void fieldIconsBeginEmpty();
    void fieldIcons_data();
    void fieldIcons();
    void emptyReferenceAsksTheChainForFields();
    void emptyFieldNameLooksNothingUp();
    void emptyFieldNameIgnoresUnnamedField();
    void fieldIsLookedUpOnce();
    void foundFieldIconAsksNoChain();
    void oddFieldOfIntegerCodeCountsAsNone();
    void valueLooksUpExactlyAndAsksNoChain();
    void lastOfEqualValuesInTheListWins();
    void fieldAddReplaces();
    void fieldClearKeepsNameAndNext();
    void newValueGetsNewIcon();

    void maskedValueChooses_data();
    void maskedValueChooses();
    void defaultMaskCountsAllBits();
    void keepsOneLookUpWithTheMaskedValue();
    void maskedRuleAsksTheChainOnce();
    void maskLeavesPlainLookUpAlone();

private:
    QIcon red, green, blue;
    RefT<Model> house;
};

void tst_ObjectFieldIconDB::initTestCase()
{
    red = makeIcon(Qt::red);
    green = makeIcon(Qt::green);
    blue = makeIcon(Qt::blue);
    house = new House;
}

void tst_ObjectFieldIconDB::fieldIconsBeginEmpty()
{
    const ObjectFieldIconDBT<FieldInt> plain;
    QVERIFY(plain.get().empty());
    QCOMPARE(plain.getField(), std::string());
    const ObjectFieldIntIconDB masked;
    QVERIFY(masked.get().empty());
    QCOMPARE(masked.getField(), std::string());
    QCOMPARE(masked.getMask(), -1);
    QCOMPARE(unsigned(masked.getMask()), 0xFFFFFFFFu);
}

void tst_ObjectFieldIconDB::fieldIcons_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");
    QTest::newRow("value with an entry") << "state"
                                         << "red";
    QTest::newRow("value without an entry") << "other"
                                            << "chain";
    QTest::newRow("value with a null icon") << "void"
                                            << "chain";
    QTest::newRow("no such field") << "missing"
                                   << "chain";
    QTest::newRow("string of that name") << "text"
                                         << "chain";
    QTest::newRow("real of that name") << "real"
                                       << "chain";
    QTest::newRow("list of that name") << "list"
                                       << "chain";
    QTest::newRow("no name given") << ""
                                   << "chain";
    QTest::newRow("first of two fields of one name decides") << "twice"
                                                             << "red";
    QTest::newRow("names are exact") << "State"
                                     << "chain";
}

void tst_ObjectFieldIconDB::fieldIcons()
{
    QFETCH(QString, field);
    QFETCH(QString, expected);

    const RefT<Model> object(new House);
    VOM::addField<FieldInt>(*object, "state", 3);
    VOM::addField<FieldInt>(*object, "other", 4);
    VOM::addField<FieldInt>(*object, "void", 5);
    VOM::addField<FieldString>(*object, "text", "3");
    VOM::addField<FieldReal>(*object, "real", 3.0);
    VOM::addField<VOM::MFieldPtr>(*object, "list");
    VOM::addField<FieldInt>(*object, "twice", 3);
    VOM::addField<FieldString>(*object, "twice", "3");

    const ObjectFieldIconDBT<FieldInt>::Icons icons = {{3, red}, {0, green}, {5, QIcon()}};
    ObjectFieldIconDBT<FieldInt> plain(icons);
    ObjectFieldIntIconDB masked(icons);
    for (ObjectFieldIconDBT<FieldInt> *const db :
         {&plain, static_cast<decltype(&plain)>(&masked)}) {
        db->setField(field.toStdString());
        QCOMPARE(db->getField(), field.toStdString());
        const QIcon alone = db->find(object);
        const RefT<CountingIconDB> last(new CountingIconDB(blue));
        db->setObjIconDB(last);
        const QIcon chained = db->find(object);
        if (expected == "red") {
            QVERIFY(same(alone, red));
            QVERIFY(same(chained, red));
            QCOMPARE(last->numAsked, 0);
        } else {
            QVERIFY(alone.isNull());
            QVERIFY(same(chained, blue));
            QCOMPARE(last->numAsked, 1);
        }
    }
}

void tst_ObjectFieldIconDB::emptyReferenceAsksTheChainForFields()
{
    ObjectFieldIconDBT<FieldInt> plain({{0, red}});
    ObjectFieldIntIconDB masked({{0, red}});
    plain.setField("state");
    masked.setField("state");
    QVERIFY(plain.find(nullptr).isNull());
    QVERIFY(masked.find(nullptr).isNull());
    const RefT<ObjectIconDB> last(new CountingIconDB(blue));
    plain.setObjIconDB(last);
    masked.setObjIconDB(last);
    QVERIFY(same(plain.find(nullptr), blue));
    QVERIFY(same(masked.find(nullptr), blue));
}

void tst_ObjectFieldIconDB::emptyFieldNameLooksNothingUp()
{
    const RefT<Building> object(new Building);
    ObjectFieldIconDBT<FieldInt>({{0, red}}).find(object);
    ObjectFieldIntIconDB({{0, red}}).find(object);
    QCOMPARE(object->numLookUps, 0);
}

void tst_ObjectFieldIconDB::emptyFieldNameIgnoresUnnamedField()
{
    const RefT<Model> object = withInt("", 1);
    QVERIFY(ObjectFieldIconDBT<FieldInt>({{1, red}}).find(object).isNull());
    QVERIFY(ObjectFieldIntIconDB({{1, red}}).find(object).isNull());
}

void tst_ObjectFieldIconDB::fieldIsLookedUpOnce()
{
    const RefT<Building> object(new Building);
    VOM::addField<FieldInt>(*object, "state", 7);
    ObjectFieldIntIconDB db({{1, red}});
    db.setField("state");
    object->numLookUps = 0;
    db.find(object);
    QCOMPARE(object->numLookUps, 1);
}

void tst_ObjectFieldIconDB::foundFieldIconAsksNoChain()
{
    ObjectFieldIntIconDB db({{1, red}});
    db.setField("state");
    const RefT<CountingIconDB> last(new CountingIconDB(blue));
    db.setObjIconDB(last);
    QVERIFY(same(db.find(withInt("state", 1)), red));
    QCOMPARE(last->numAsked, 0);
}

void tst_ObjectFieldIconDB::oddFieldOfIntegerCodeCountsAsNone()
{
    const RefT<Model> object(new Building);
    VOM::addField<OddField>(*object, "state");
    ObjectFieldIntIconDB db({{0, red}});
    db.setField("state");
    QVERIFY(db.find(object).isNull());
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(object), blue));
}

void tst_ObjectFieldIconDB::valueLooksUpExactlyAndAsksNoChain()
{
    ObjectFieldIntIconDB db({{-1, red}, {std::numeric_limits<int>::min(), green}});
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(-1), red));
    QVERIFY(same(db.find(std::numeric_limits<int>::min()), green));
    QVERIFY(db.find(0).isNull());
    QVERIFY(db.find(1).isNull());
}

void tst_ObjectFieldIconDB::lastOfEqualValuesInTheListWins()
{
    const ObjectFieldIntIconDB db({{1, red}, {2, blue}, {1, green}});
    QCOMPARE(db.get().size(), std::size_t(2));
    QVERIFY(same(db.find(1), green));
    QVERIFY(same(db.find(2), blue));
}

void tst_ObjectFieldIconDB::fieldAddReplaces()
{
    ObjectFieldIntIconDB db({{1, red}});
    db.add(1, green);
    db.add(2, blue);
    QVERIFY(same(db.find(1), green));
    QVERIFY(same(db.find(2), blue));
    db.add(1, QIcon());
    QVERIFY(db.find(1).isNull());
}

void tst_ObjectFieldIconDB::fieldClearKeepsNameAndNext()
{
    ObjectFieldIntIconDB db({{1, red}});
    db.setField("state");
    db.setMask(0x0F);
    db.setObjIconDB(new CountingIconDB(blue));
    db.clear();
    QVERIFY(db.get().empty());
    QCOMPARE(db.getField(), std::string("state"));
    QCOMPARE(db.getMask(), 0x0F);
    QVERIFY(same(db.find(withInt("state", 1)), blue));
    db.add(1, green);
    QVERIFY(same(db.find(withInt("state", 1)), green));
}

void tst_ObjectFieldIconDB::newValueGetsNewIcon()
{
    const RefT<Model> object = withInt("state", 1);
    ObjectFieldIntIconDB db({{1, red}, {2, green}});
    db.setField("state");
    QVERIFY(same(db.find(object), red));
    cast<FieldInt>(object->findField("state"))->set(2);
    QVERIFY(same(db.find(object), green));
    VOM::removeField(*object, *object->findField("state"));
    QVERIFY(db.find(object).isNull());
}

void tst_ObjectFieldIconDB::maskedValueChooses_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("found");
    QTest::newRow("the bits alone") << 0x0F << 3 << true;
    QTest::newRow("one bit outside the mask") << 0x0F << 19 << true;
    QTest::newRow("all bits outside the mask") << 0x0F << 0xF3 << true;
    QTest::newRow("negative value with the bits") << 0x0F << -13 << true;
    QTest::newRow("other bits") << 0x0F << 4 << false;
    QTest::newRow("more bits inside the mask") << 0x0F << 7 << false;
    QTest::newRow("mask without one of the bits") << 0x01 << 3 << false;
    QTest::newRow("empty mask leaves 0") << 0 << 3 << false;
    QTest::newRow("sign bit counts") << -1 << (3 | std::numeric_limits<int>::min()) << false;
    QTest::newRow("sign bit masked away")
        << std::numeric_limits<int>::max() << (3 | std::numeric_limits<int>::min()) << true;
}

void tst_ObjectFieldIconDB::maskedValueChooses()
{
    QFETCH(int, mask);
    QFETCH(int, value);
    QFETCH(bool, found);
    ObjectFieldIntIconDB db({{3, red}});
    db.setField("state");
    db.setMask(mask);
    QCOMPARE(db.getMask(), mask);
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(withInt("state", value)), found ? red : blue));
}

void tst_ObjectFieldIconDB::defaultMaskCountsAllBits()
{
    const ObjectFieldIconDBT<FieldInt>::Icons icons = {
        {0, red}, {-1, green}, {std::numeric_limits<int>::min(), blue}, {0x10000, red}};
    ObjectFieldIconDBT<FieldInt> plain(icons);
    ObjectFieldIntIconDB masked(icons);
    plain.setField("state");
    masked.setField("state");
    for (const int value : {0, 1, -1, -2, 0x10000, 0x10001, std::numeric_limits<int>::min(),
                            std::numeric_limits<int>::max()}) {
        const RefT<Model> object = withInt("state", value);
        QCOMPARE(masked.find(object).cacheKey(), plain.find(object).cacheKey());
    }
}

void tst_ObjectFieldIconDB::keepsOneLookUpWithTheMaskedValue()
{
    ObjectFieldIntIconDB db({{19, red}});
    db.setField("state");
    db.setMask(0x0F);
    QVERIFY(db.find(withInt("state", 19)).isNull());
    db.add(3, green);
    QVERIFY(same(db.find(withInt("state", 19)), green));
}

void tst_ObjectFieldIconDB::maskedRuleAsksTheChainOnce()
{
    ObjectFieldIntIconDB db({{19, red}});
    db.setField("state");
    db.setMask(0x0F);
    const RefT<CountingIconDB> last(new CountingIconDB(QIcon()));
    db.setObjIconDB(last);
    QVERIFY(db.find(withInt("state", 19)).isNull());
    QCOMPARE(last->numAsked, 1);
}

void tst_ObjectFieldIconDB::maskLeavesPlainLookUpAlone()
{
    ObjectFieldIntIconDB db({{19, red}});
    db.setMask(0x0F);
    QVERIFY(same(db.find(19), red));
    QVERIFY(db.find(3).isNull());
}

QTEST_MAIN(tst_ObjectFieldIconDB)
#include "tst_ObjectFieldIconDB.moc"
