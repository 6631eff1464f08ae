#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/presentation/ObjectIconDB.h"

#include <QtTest>

#include <limits>
#include <stdexcept>

using namespace ZR;
using namespace ZR::VOM::GUI;
using VOM::ClassInfo;
using VOM::FieldInt;
using VOM::FieldReal;
using VOM::FieldString;
using Model = VOM::Object;

static_assert(std::is_same_v<decltype(std::declval<ObjectIconDB const &>().getObjIconDB()),
                             RefT<ObjectIconDB> const &>);
static_assert(std::is_same_v<decltype(std::declval<ObjectClassIconDB const &>().get()),
                             std::map<std::string, QIcon> const &>);
static_assert(
    std::is_same_v<decltype(std::declval<ObjectFieldIntIconDB const &>().getField()), std::string>);
static_assert(std::is_base_of_v<ObjectFieldIconDBT<FieldInt>, ObjectFieldIntIconDB>);
static_assert(std::has_virtual_destructor_v<ObjectIconDB>);

namespace {

class Building : public Model {
public:
    VOM::ClassInfo const &getClassInfo() const override { return info; }
    std::size_t findFieldIndex(std::string const &name) const override
    {
        ++numLookUps;
        return Model::findFieldIndex(name);
    }
    static ClassInfo const info;
    mutable int numLookUps = 0;
};
ClassInfo const Building::info = {&Model::classInfo, "Building"};

class House : public Building {
public:
    VOM::ClassInfo const &getClassInfo() const override { return info; }
    static ClassInfo const info;
};
ClassInfo const House::info = {&Building::info, "House"};

/// The end of a chain: one icon for everything, and a count of how often it was asked.
class CountingIconDB : public ObjectIconDB {
public:
    explicit CountingIconDB(QIcon everythingsIcon)
        : icon(std::move(everythingsIcon))
    {
    }
    QIcon find(RefT<Model> const &) const override
    {
        ++numAsked;
        return icon;
    }
    mutable int numAsked = 0;

private:
    QIcon icon;
};

/// A rule that has no icon by itself, and counts how often it was asked.
class PassingIconDB : public ObjectIconDB {
public:
    QIcon find(RefT<Model> const &obj) const override
    {
        ++numAsked;
        return ObjectIconDB::find(obj);
    }
    mutable int numAsked = 0;
};

/// Shows an object as the object that its field "owner" links to, asking the whole chain for it.
class OwnersIconDB : public ObjectIconDB {
public:
    explicit OwnersIconDB(ObjectIconDB const &chainHead)
        : head(chainHead)
    {
    }
    QIcon find(RefT<Model> const &obj) const override
    {
        auto *const link = cast<VOM::FieldPtr>(obj->findField("owner"));
        return link ? head.find(link->get()) : QIcon();
    }

private:
    ObjectIconDB const &head;
};

class ThrowingIconDB : public ObjectIconDB {
public:
    QIcon find(RefT<Model> const &) const override { throw std::runtime_error("no icon"); }
};

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

QIcon makeIcon(QColor const &color)
{
    QPixmap pixmap(4, 4);
    pixmap.fill(color);
    return QIcon(pixmap);
}

RefT<Model> withInt(char const *name, int value)
{
    RefT<Model> object(new Building);
    VOM::addField<FieldInt>(*object, name, value);
    return object;
}

bool same(QIcon const &a, QIcon const &b)
{
    return a.cacheKey() == b.cacheKey();
}

} // namespace

class tst_ObjectIconDB : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void chainIsEmptyAtFirst();
    void noNextGivesNullIcon();
    void baseAsksNextVirtually();
    void nextCanBeReplacedAndDropped();
    void chainKeepsItsDatabasesAlive();
    void deathIsAnnouncedToHolders();

    void classIconsBeginEmpty();
    void classOfTheObjectWins();
    void baseClassServesDerivedOne();
    void farBaseClassServes();
    void infoWithoutBasesLooksUpItsOwnName();
    void infoDoesntAskTheChain();
    void classWithoutEntryGetsTheChainsIcon();
    void nullEntryStopsTheWalkAndAsksTheChain();
    void emptyReferenceAsksTheChainForClasses();
    void classAddReplaces();
    void classClearKeepsNext();
    void foundIconSharesItsData();

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

    void ruleByValueStandsInFrontOfRuleByClass();

    void circleOfTwoEnds();
    void databaseChainedToItselfEnds();
    void circleBehindTheHeadEnds();
    void circleStillAnswersByItsRules();
    void circleEndsForEmptyReference();
    void ruleMayAskTheHeadForAnotherObject();
    void ruleThatAsksInACircleOfObjectsEnds();
    void exceptionInARuleLeavesTheChainReady();

private:
    QIcon red, green, blue;
    RefT<Model> house;
};

void tst_ObjectIconDB::initTestCase()
{
    red = makeIcon(Qt::red);
    green = makeIcon(Qt::green);
    blue = makeIcon(Qt::blue);
    house = new House;
}

void tst_ObjectIconDB::chainIsEmptyAtFirst()
{
    QVERIFY(!ObjectIconDB().getObjIconDB());
    QVERIFY(!ObjectClassIconDB().getObjIconDB());
    QVERIFY(!ObjectFieldIntIconDB().getObjIconDB());
}

void tst_ObjectIconDB::noNextGivesNullIcon()
{
    QVERIFY(ObjectIconDB().find(house).isNull());
    QVERIFY(ObjectIconDB().find(nullptr).isNull());
    QVERIFY(ObjectClassIconDB().find(house).isNull());
    QVERIFY(ObjectFieldIntIconDB().find(house).isNull());
}

void tst_ObjectIconDB::baseAsksNextVirtually()
{
    ObjectIconDB first, second;
    const RefT<CountingIconDB> last(new CountingIconDB(red));
    second.setObjIconDB(last);
    first.setObjIconDB(second);
    QVERIFY(same(first.find(house), red));
    QCOMPARE(last->numAsked, 1);
}

void tst_ObjectIconDB::nextCanBeReplacedAndDropped()
{
    ObjectIconDB db;
    const RefT<ObjectIconDB> a(new CountingIconDB(red)), b(new CountingIconDB(green));
    db.setObjIconDB(a);
    db.setObjIconDB(b);
    QCOMPARE(db.getObjIconDB().get(), b.get());
    QVERIFY(same(db.find(house), green));
    db.setObjIconDB(nullptr);
    QVERIFY(!db.getObjIconDB());
    QVERIFY(db.find(house).isNull());
}

void tst_ObjectIconDB::chainKeepsItsDatabasesAlive()
{
    ObjectIconDB db;
    RefT<ObjectIconDB> middle(new ObjectIconDB);
    middle->setObjIconDB(new CountingIconDB(red));
    const PtrT<ObjectIconDB> watcher(middle);
    db.setObjIconDB(middle);
    middle.reset();
    QVERIFY(same(db.find(house), red));

    // The reference that is given lives in the database that goes.
    db.setObjIconDB(db.getObjIconDB()->getObjIconDB());
    QVERIFY(!watcher);
    QVERIFY(same(db.find(house), red));
}

void tst_ObjectIconDB::deathIsAnnouncedToHolders()
{
    RefT<ObjectIconDB> db(new ObjectClassIconDB);
    int numDeaths = 0;
    db->sigDelete.connect([&](SigVoidData const &) { ++numDeaths; });
    db.reset();
    QCOMPARE(numDeaths, 1);
}

void tst_ObjectIconDB::classIconsBeginEmpty()
{
    QVERIFY(ObjectClassIconDB().get().empty());
}

void tst_ObjectIconDB::classOfTheObjectWins()
{
    ObjectClassIconDB db;
    db.add("Building", red);
    db.add("House", green);
    db.add("ZR::VOM::Object", blue);
    QVERIFY(same(db.find(house), green));
    QVERIFY(same(db.find(new Building), red));
    QVERIFY(same(db.find(new Model), blue));
}

void tst_ObjectIconDB::baseClassServesDerivedOne()
{
    ObjectClassIconDB db;
    db.add("Building", red);
    QVERIFY(same(db.find(house), red));
    QVERIFY(db.find(new Model).isNull());
}

void tst_ObjectIconDB::farBaseClassServes()
{
    ObjectClassIconDB db;
    db.add("ZR::VOM::Object", blue);
    QVERIFY(same(db.find(house), blue));
    QVERIFY(same(db.find(House::info, true), blue));
}

void tst_ObjectIconDB::infoWithoutBasesLooksUpItsOwnName()
{
    ObjectClassIconDB db;
    db.add("Building", red);
    QVERIFY(db.find(House::info, false).isNull());
    QVERIFY(same(db.find(House::info, true), red));
    QVERIFY(same(db.find(Building::info, false), red));
}

void tst_ObjectIconDB::infoDoesntAskTheChain()
{
    ObjectClassIconDB db;
    const RefT<CountingIconDB> last(new CountingIconDB(blue));
    db.setObjIconDB(last);
    QVERIFY(db.find(House::info, true).isNull());
    QVERIFY(db.find(House::info, false).isNull());
    QCOMPARE(last->numAsked, 0);
}

void tst_ObjectIconDB::classWithoutEntryGetsTheChainsIcon()
{
    ObjectClassIconDB db;
    db.add("Castle", red);
    const RefT<CountingIconDB> last(new CountingIconDB(blue));
    db.setObjIconDB(last);
    QVERIFY(same(db.find(house), blue));
    QCOMPARE(last->numAsked, 1);
}

void tst_ObjectIconDB::nullEntryStopsTheWalkAndAsksTheChain()
{
    ObjectClassIconDB db;
    db.add("House", QIcon());
    db.add("Building", red);
    QVERIFY(db.find(House::info, true).isNull());
    QVERIFY(db.find(house).isNull());
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(house), blue));
}

void tst_ObjectIconDB::emptyReferenceAsksTheChainForClasses()
{
    ObjectClassIconDB db;
    db.add("", red);
    db.add("ZR::VOM::Object", green);
    QVERIFY(db.find(nullptr).isNull());
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(nullptr), blue));
}

void tst_ObjectIconDB::classAddReplaces()
{
    ObjectClassIconDB db;
    db.add("House", red);
    db.add("House", green);
    QCOMPARE(db.get().size(), std::size_t(1));
    QVERIFY(same(db.get().at("House"), green));
    QVERIFY(same(db.find(house), green));
}

void tst_ObjectIconDB::classClearKeepsNext()
{
    ObjectClassIconDB db;
    db.add("House", red);
    db.setObjIconDB(new CountingIconDB(blue));
    db.clear();
    QVERIFY(db.get().empty());
    QVERIFY(same(db.find(house), blue));
}

void tst_ObjectIconDB::foundIconSharesItsData()
{
    ObjectClassIconDB db;
    db.add("House", red);
    const QIcon found = db.find(house);
    db.clear();
    QVERIFY(same(found, red));
}

void tst_ObjectIconDB::fieldIconsBeginEmpty()
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

void tst_ObjectIconDB::fieldIcons_data()
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

void tst_ObjectIconDB::fieldIcons()
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

void tst_ObjectIconDB::emptyReferenceAsksTheChainForFields()
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

void tst_ObjectIconDB::emptyFieldNameLooksNothingUp()
{
    const RefT<Building> object(new Building);
    ObjectFieldIconDBT<FieldInt>({{0, red}}).find(object);
    ObjectFieldIntIconDB({{0, red}}).find(object);
    QCOMPARE(object->numLookUps, 0);
}

void tst_ObjectIconDB::emptyFieldNameIgnoresUnnamedField()
{
    const RefT<Model> object = withInt("", 1);
    QVERIFY(ObjectFieldIconDBT<FieldInt>({{1, red}}).find(object).isNull());
    QVERIFY(ObjectFieldIntIconDB({{1, red}}).find(object).isNull());
}

void tst_ObjectIconDB::fieldIsLookedUpOnce()
{
    const RefT<Building> object(new Building);
    VOM::addField<FieldInt>(*object, "state", 7);
    ObjectFieldIntIconDB db({{1, red}});
    db.setField("state");
    object->numLookUps = 0;
    db.find(object);
    QCOMPARE(object->numLookUps, 1);
}

void tst_ObjectIconDB::foundFieldIconAsksNoChain()
{
    ObjectFieldIntIconDB db({{1, red}});
    db.setField("state");
    const RefT<CountingIconDB> last(new CountingIconDB(blue));
    db.setObjIconDB(last);
    QVERIFY(same(db.find(withInt("state", 1)), red));
    QCOMPARE(last->numAsked, 0);
}

void tst_ObjectIconDB::oddFieldOfIntegerCodeCountsAsNone()
{
    const RefT<Model> object(new Building);
    VOM::addField<OddField>(*object, "state");
    ObjectFieldIntIconDB db({{0, red}});
    db.setField("state");
    QVERIFY(db.find(object).isNull());
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(object), blue));
}

void tst_ObjectIconDB::valueLooksUpExactlyAndAsksNoChain()
{
    ObjectFieldIntIconDB db({{-1, red}, {std::numeric_limits<int>::min(), green}});
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(-1), red));
    QVERIFY(same(db.find(std::numeric_limits<int>::min()), green));
    QVERIFY(db.find(0).isNull());
    QVERIFY(db.find(1).isNull());
}

void tst_ObjectIconDB::lastOfEqualValuesInTheListWins()
{
    const ObjectFieldIntIconDB db({{1, red}, {2, blue}, {1, green}});
    QCOMPARE(db.get().size(), std::size_t(2));
    QVERIFY(same(db.find(1), green));
    QVERIFY(same(db.find(2), blue));
}

void tst_ObjectIconDB::fieldAddReplaces()
{
    ObjectFieldIntIconDB db({{1, red}});
    db.add(1, green);
    db.add(2, blue);
    QVERIFY(same(db.find(1), green));
    QVERIFY(same(db.find(2), blue));
    db.add(1, QIcon());
    QVERIFY(db.find(1).isNull());
}

void tst_ObjectIconDB::fieldClearKeepsNameAndNext()
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

void tst_ObjectIconDB::newValueGetsNewIcon()
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

void tst_ObjectIconDB::maskedValueChooses_data()
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

void tst_ObjectIconDB::maskedValueChooses()
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

void tst_ObjectIconDB::defaultMaskCountsAllBits()
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

void tst_ObjectIconDB::keepsOneLookUpWithTheMaskedValue()
{
    ObjectFieldIntIconDB db({{19, red}});
    db.setField("state");
    db.setMask(0x0F);
    QVERIFY(db.find(withInt("state", 19)).isNull());
    db.add(3, green);
    QVERIFY(same(db.find(withInt("state", 19)), green));
}

void tst_ObjectIconDB::maskedRuleAsksTheChainOnce()
{
    ObjectFieldIntIconDB db({{19, red}});
    db.setField("state");
    db.setMask(0x0F);
    const RefT<CountingIconDB> last(new CountingIconDB(QIcon()));
    db.setObjIconDB(last);
    QVERIFY(db.find(withInt("state", 19)).isNull());
    QCOMPARE(last->numAsked, 1);
}

void tst_ObjectIconDB::maskLeavesPlainLookUpAlone()
{
    ObjectFieldIntIconDB db({{19, red}});
    db.setMask(0x0F);
    QVERIFY(same(db.find(19), red));
    QVERIFY(db.find(3).isNull());
}

void tst_ObjectIconDB::ruleByValueStandsInFrontOfRuleByClass()
{
    const RefT<ObjectClassIconDB> byClass(new ObjectClassIconDB);
    byClass->add("Building", green);
    byClass->setObjIconDB(new CountingIconDB(blue));
    ObjectFieldIntIconDB byState({{1, red}});
    byState.setField("state");
    byState.setObjIconDB(byClass);
    QVERIFY(same(byState.find(withInt("state", 1)), red));
    QVERIFY(same(byState.find(withInt("state", 2)), green));
    QVERIFY(same(byState.find(house), green));
    QVERIFY(same(byState.find(new Model), blue));
}

void tst_ObjectIconDB::circleOfTwoEnds()
{
    PassingIconDB a, b;
    a.setObjIconDB(b);
    b.setObjIconDB(a);
    QVERIFY(a.find(house).isNull());
    QVERIFY(b.find(house).isNull());
    // Where it comes round the rule is asked once more, and nothing is passed on.
    QCOMPARE(a.numAsked, 3);
    QCOMPARE(b.numAsked, 3);
}

void tst_ObjectIconDB::databaseChainedToItselfEnds()
{
    ObjectClassIconDB db;
    db.setObjIconDB(db);
    QVERIFY(db.find(house).isNull());
    db.add("House", red);
    QVERIFY(same(db.find(house), red));
}

void tst_ObjectIconDB::circleBehindTheHeadEnds()
{
    ObjectIconDB head;
    ObjectClassIconDB a;
    ObjectFieldIntIconDB b;
    head.setObjIconDB(a);
    a.setObjIconDB(b);
    b.setObjIconDB(a);
    QVERIFY(head.find(house).isNull());
}

void tst_ObjectIconDB::circleStillAnswersByItsRules()
{
    ObjectClassIconDB a;
    ObjectFieldIntIconDB b({{1, green}});
    b.setField("state");
    a.add("House", red);
    a.setObjIconDB(b);
    b.setObjIconDB(a);
    const RefT<Model> object = withInt("state", 1);
    for (int round = 0; round < 2; ++round) {
        QVERIFY(same(a.find(house), red));
        QVERIFY(same(b.find(house), red));
        QVERIFY(same(a.find(object), green));
        QVERIFY(a.find(new Model).isNull());
    }
    // Cut, the chain is sound again.
    b.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(a.find(new Model), blue));
}

void tst_ObjectIconDB::circleEndsForEmptyReference()
{
    ObjectClassIconDB a;
    ObjectFieldIntIconDB b;
    a.setObjIconDB(b);
    b.setObjIconDB(a);
    QVERIFY(a.find(nullptr).isNull());
}

void tst_ObjectIconDB::ruleMayAskTheHeadForAnotherObject()
{
    const RefT<Model> room(new Model), cupboard(new Model), shelf(new Model);
    VOM::addField<VOM::FieldPtr>(*shelf, "owner", cupboard);
    VOM::addField<VOM::FieldPtr>(*cupboard, "owner", room);
    VOM::addField<VOM::FieldPtr>(*room, "owner", house);
    ObjectClassIconDB head;
    head.setObjIconDB(new OwnersIconDB(head));
    QVERIFY(head.find(shelf).isNull());
    head.add("House", red);
    QVERIFY(same(head.find(shelf), red));
}

void tst_ObjectIconDB::ruleThatAsksInACircleOfObjectsEnds()
{
    const RefT<Model> a(new Model), b(new Model);
    VOM::addField<VOM::FieldPtr>(*a, "owner", b);
    VOM::addField<VOM::FieldPtr>(*b, "owner", a);
    ObjectIconDB head;
    head.setObjIconDB(new OwnersIconDB(head));
    QVERIFY(head.find(a).isNull());
}

void tst_ObjectIconDB::exceptionInARuleLeavesTheChainReady()
{
    ObjectIconDB head;
    head.setObjIconDB(new ThrowingIconDB);
    QVERIFY_EXCEPTION_THROWN(head.find(house), std::runtime_error);
    head.setObjIconDB(new CountingIconDB(red));
    QVERIFY(same(head.find(house), red));
}

QTEST_MAIN(tst_ObjectIconDB)
#include "tst_ObjectIconDB.moc"
