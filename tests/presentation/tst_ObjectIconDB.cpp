#include "IconDBModel.h"

#include <QTest>

#include <stdexcept>

static_assert(std::is_same_v<decltype(std::declval<ObjectIconDB const &>().getObjIconDB()),
                             RefT<ObjectIconDB> const &>);
static_assert(std::has_virtual_destructor_v<ObjectIconDB>);

namespace {

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
