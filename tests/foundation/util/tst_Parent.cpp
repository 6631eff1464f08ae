#include "zrVOMGUI/foundation/util/Parent.h"

#include <QTest>

#include <memory>

using namespace ZR;

namespace {

class Door;

class House : public ParentT<House, Door> {
public:
    using ParentT::leaveChildren;
};

class Door : public ChildT<Door, House> {
public:
    explicit Door(House &house)
        : ChildT(house)
    {
    }
    House *house() const { return getLivingParent(); }
};

static_assert(sizeof(House) == sizeof(void *));
static_assert(sizeof(Door) == 3 * sizeof(void *));

} // namespace

class tst_Parent : public QObject {
    Q_OBJECT

private slots:
    void childrenReadNullAfterTheParentsDeath();
    void childrenMayDieInAnyOrder_data();
    void childrenMayDieInAnyOrder();
    void leftChildrenStayLeft();
};

void tst_Parent::childrenReadNullAfterTheParentsDeath()
{
    auto house = std::make_unique<House>();
    const Door front(*house), back(*house);
    QCOMPARE(front.house(), house.get());
    QCOMPARE(back.house(), house.get());
    house.reset();
    QVERIFY(!front.house());
    QVERIFY(!back.house());
}

void tst_Parent::childrenMayDieInAnyOrder_data()
{
    QTest::addColumn<int>("dies");
    QTest::newRow("the first") << 0;
    QTest::newRow("one in the middle") << 1;
    QTest::newRow("the last") << 2;
}

void tst_Parent::childrenMayDieInAnyOrder()
{
    QFETCH(int, dies);
    auto house = std::make_unique<House>();
    std::unique_ptr<Door> doors[3];
    for (auto &door : doors)
        door = std::make_unique<Door>(*house);
    doors[dies].reset();
    const Door late(*house);
    house.reset();
    QVERIFY(!late.house());
    for (auto const &door : doors)
        QVERIFY(!door || !door->house());
}

void tst_Parent::leftChildrenStayLeft()
{
    House house;
    const Door old(house);
    house.leaveChildren();
    QVERIFY(!old.house());
    const Door young(house);
    QCOMPARE(young.house(), &house);
    QVERIFY(!old.house());
}

QTEST_APPLESS_MAIN(tst_Parent)
#include "tst_Parent.moc"
