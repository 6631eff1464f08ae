#include "IconDBModel.h"

#include <QTest>

static_assert(std::is_same_v<decltype(std::declval<ObjectClassIconDB const &>().get()),
                             std::map<std::string, QIcon> const &>);

class tst_ObjectClassIconDB : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

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

private:
    QIcon red, green, blue;
    RefT<Model> house;
};

void tst_ObjectClassIconDB::initTestCase()
{
    red = makeIcon(Qt::red);
    green = makeIcon(Qt::green);
    blue = makeIcon(Qt::blue);
    house = new House;
}

void tst_ObjectClassIconDB::classIconsBeginEmpty()
{
    QVERIFY(ObjectClassIconDB().get().empty());
}

void tst_ObjectClassIconDB::classOfTheObjectWins()
{
    ObjectClassIconDB db;
    db.add("Building", red);
    db.add("House", green);
    db.add("ZR::VOM::Object", blue);
    QVERIFY(same(db.find(house), green));
    QVERIFY(same(db.find(new Building), red));
    QVERIFY(same(db.find(new Model), blue));
}

void tst_ObjectClassIconDB::baseClassServesDerivedOne()
{
    ObjectClassIconDB db;
    db.add("Building", red);
    QVERIFY(same(db.find(house), red));
    QVERIFY(db.find(new Model).isNull());
}

void tst_ObjectClassIconDB::farBaseClassServes()
{
    ObjectClassIconDB db;
    db.add("ZR::VOM::Object", blue);
    QVERIFY(same(db.find(house), blue));
    QVERIFY(same(db.find(House::info, true), blue));
}

void tst_ObjectClassIconDB::infoWithoutBasesLooksUpItsOwnName()
{
    ObjectClassIconDB db;
    db.add("Building", red);
    QVERIFY(db.find(House::info, false).isNull());
    QVERIFY(same(db.find(House::info, true), red));
    QVERIFY(same(db.find(Building::info, false), red));
}

void tst_ObjectClassIconDB::infoDoesntAskTheChain()
{
    ObjectClassIconDB db;
    const RefT<CountingIconDB> last(new CountingIconDB(blue));
    db.setObjIconDB(last);
    QVERIFY(db.find(House::info, true).isNull());
    QVERIFY(db.find(House::info, false).isNull());
    QCOMPARE(last->numAsked, 0);
}

void tst_ObjectClassIconDB::classWithoutEntryGetsTheChainsIcon()
{
    ObjectClassIconDB db;
    db.add("Castle", red);
    const RefT<CountingIconDB> last(new CountingIconDB(blue));
    db.setObjIconDB(last);
    QVERIFY(same(db.find(house), blue));
    QCOMPARE(last->numAsked, 1);
}

void tst_ObjectClassIconDB::nullEntryStopsTheWalkAndAsksTheChain()
{
    ObjectClassIconDB db;
    db.add("House", QIcon());
    db.add("Building", red);
    QVERIFY(db.find(House::info, true).isNull());
    QVERIFY(db.find(house).isNull());
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(house), blue));
}

void tst_ObjectClassIconDB::emptyReferenceAsksTheChainForClasses()
{
    ObjectClassIconDB db;
    db.add("", red);
    db.add("ZR::VOM::Object", green);
    QVERIFY(db.find(nullptr).isNull());
    db.setObjIconDB(new CountingIconDB(blue));
    QVERIFY(same(db.find(nullptr), blue));
}

void tst_ObjectClassIconDB::classAddReplaces()
{
    ObjectClassIconDB db;
    db.add("House", red);
    db.add("House", green);
    QCOMPARE(db.get().size(), std::size_t(1));
    QVERIFY(same(db.get().at("House"), green));
    QVERIFY(same(db.find(house), green));
}

void tst_ObjectClassIconDB::classClearKeepsNext()
{
    ObjectClassIconDB db;
    db.add("House", red);
    db.setObjIconDB(new CountingIconDB(blue));
    db.clear();
    QVERIFY(db.get().empty());
    QVERIFY(same(db.find(house), blue));
}

void tst_ObjectClassIconDB::foundIconSharesItsData()
{
    ObjectClassIconDB db;
    db.add("House", red);
    const QIcon found = db.find(house);
    db.clear();
    QVERIFY(same(found, red));
}

QTEST_MAIN(tst_ObjectClassIconDB)
#include "tst_ObjectClassIconDB.moc"
