#include "zrVOMGUI/foundation/vom/ClassRegistry.h"

#include "support/Things.h"

#include <QTest>

#include <string>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

class tst_ClassRegistry : public QObject {
    Q_OBJECT

private slots:
    void knowsNothingAtFirst();
    void registersAClassUnderTheNameOfItsClassInfo();
    void registersAFactoryUnderAnyName();
    void refusesANameThatIsTaken();
    void refusesAnEmptyFactory();
    void classesAreFixedUnlessSaidOtherwise();
    void removedClassIsUnknown();
    void factoryMayChangeTheRegistry();
};

void tst_ClassRegistry::knowsNothingAtFirst()
{
    const ClassRegistry registry;
    QVERIFY(!registry.isKnown("Thing"));
    QVERIFY(!registry.isOpen("Thing"));
    QVERIFY(!registry.create("Thing"));
    QVERIFY(!registry.isKnown(Object::classInfo.name));
}

void tst_ClassRegistry::registersAClassUnderTheNameOfItsClassInfo()
{
    ClassRegistry registry;
    QVERIFY(registry.add<Special>());
    QVERIFY(registry.isKnown("Special"));
    QVERIFY(!registry.isKnown("Thing"));
    const RefT<Object> object = registry.create("Special");
    QVERIFY(cast<Special>(object));
    QVERIFY(registry.create("Special") != object);
}

void tst_ClassRegistry::registersAFactoryUnderAnyName()
{
    ClassRegistry registry;
    QVERIFY(registry.add("", [] { return makeThing("a"); }));
    QVERIFY(cast<Thing>(registry.create("")));
}

void tst_ClassRegistry::refusesANameThatIsTaken()
{
    ClassRegistry registry;
    QVERIFY(registry.add<Thing>());
    QVERIFY(!registry.add(
        "Thing", [] { return makeThing<Special>("a"); }, ClassRegistry::Fields::Open));
    QVERIFY(!cast<Special>(registry.create("Thing")));
    QVERIFY(!registry.isOpen("Thing"));
}

void tst_ClassRegistry::refusesAnEmptyFactory()
{
    ClassRegistry registry;
    QVERIFY(!registry.add("Thing", nullptr));
    QVERIFY(!registry.isKnown("Thing"));
}

void tst_ClassRegistry::classesAreFixedUnlessSaidOtherwise()
{
    ClassRegistry registry;
    registry.add<Thing>();
    registry.add<Special>(ClassRegistry::Fields::Open);
    QVERIFY(!registry.isOpen("Thing"));
    QVERIFY(registry.isOpen("Special"));
}

void tst_ClassRegistry::removedClassIsUnknown()
{
    ClassRegistry registry;
    registry.add<Thing>();
    QVERIFY(registry.remove("Thing"));
    QVERIFY(!registry.remove("Thing"));
    QVERIFY(!registry.isKnown("Thing"));
}

void tst_ClassRegistry::factoryMayChangeTheRegistry()
{
    ClassRegistry registry;
    const std::string name = "a name that is too long to lie inside of a string";
    registry.add(name, [&registry, name] {
        registry.remove(name);
        return makeThing(name);
    });
    QVERIFY(registry.create(name));
    QVERIFY(!registry.isKnown(name));
}

QTEST_APPLESS_MAIN(tst_ClassRegistry)

#include "tst_ClassRegistry.moc"
