#include "zrVOMGUI/foundation/vom/ClassFieldsMap.h"
#include "zrVOMGUI/foundation/vom/Field.h"

#include <QTest>

#include <string>
#include <type_traits>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

class Animal : public Object {
public:
    Animal()
        : Object(0)
    {
        addField<FieldString>(*this, "name");
    }
    ClassInfo const &getClassInfo() const override { return classInfo; }
    static ClassInfo const classInfo;
};
ClassInfo const Animal::classInfo = {&Object::classInfo, "Animal"};

class Cat : public Animal {
public:
    ClassInfo const &getClassInfo() const override { return classInfo; }
    static ClassInfo const classInfo;
};
ClassInfo const Cat::classInfo = {&Animal::classInfo, "Cat"};

static_assert(std::is_default_constructible_v<ClassFieldsMap>);
static_assert(std::is_copy_constructible_v<ClassFieldsMap>);

} // namespace

class tst_ClassFieldsMap : public QObject {
    Q_OBJECT

private slots:
    void mapStartsEmptyAndMatchesNothing();
    void addAnswersWhetherTheMapChanged();
    void removeAnswersWhetherTheMapChanged();
    void mapIsEmptyAfterItsLastPair();
    void clearTakesAll();
    void matches_data();
    void matches();
    void fieldWithoutOwnerMatchesByTheEmptyClassNameAlone();
    void copyIsIndependent();
};

void tst_ClassFieldsMap::mapStartsEmptyAndMatchesNothing()
{
    const ClassFieldsMap map;
    Animal animal;
    QVERIFY(map.empty());
    QVERIFY(!map.matches(*animal.getField(0)));
}

void tst_ClassFieldsMap::addAnswersWhetherTheMapChanged()
{
    ClassFieldsMap map;
    QVERIFY(map.add("Cat", "name"));
    QVERIFY(!map.empty());
    QVERIFY(!map.add("Cat", "name"));
    QVERIFY(map.add("Cat", "size"));
    QVERIFY(map.add("Dog", "name"));
    QVERIFY(map.add("", ""));
    QVERIFY(!map.add("", ""));
}

void tst_ClassFieldsMap::removeAnswersWhetherTheMapChanged()
{
    ClassFieldsMap map;
    QVERIFY(!map.remove("Cat", "name"));
    map.add("Cat", "name");
    QVERIFY(!map.remove("Cat", "size"));
    QVERIFY(!map.remove("Dog", "name"));
    QVERIFY(map.remove("Cat", "name"));
    QVERIFY(!map.remove("Cat", "name"));
    QVERIFY(map.add("Cat", "name"));
}

void tst_ClassFieldsMap::mapIsEmptyAfterItsLastPair()
{
    ClassFieldsMap map;
    map.add("Cat", "name");
    map.add("Cat", "size");
    map.remove("Cat", "name");
    QVERIFY(!map.empty());
    map.remove("Cat", "size");
    QVERIFY(map.empty());
}

void tst_ClassFieldsMap::clearTakesAll()
{
    ClassFieldsMap map;
    map.add("Cat", "name");
    map.add("", "name");
    map.clear();
    QVERIFY(map.empty());
    Cat cat;
    QVERIFY(!map.matches(*cat.getField(0)));
    map.clear();
    QVERIFY(map.empty());
}

void tst_ClassFieldsMap::matches_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("fieldName");
    QTest::addColumn<bool>("ofAnimal");
    QTest::addColumn<bool>("ofCat");
    QTest::newRow("class itself") << "Cat"
                                  << "name" << false << true;
    QTest::newRow("base class") << "Animal"
                                << "name" << true << true;
    QTest::newRow("top of the chain") << "ZR::VOM::Object"
                                      << "name" << true << true;
    QTest::newRow("any class") << ""
                               << "name" << true << true;
    QTest::newRow("another class") << "Dog"
                                   << "name" << false << false;
    QTest::newRow("another field") << "Cat"
                                   << "size" << false << false;
    QTest::newRow("any class, another field") << ""
                                              << "size" << false << false;
    QTest::newRow("empty field name stands for itself") << "Cat"
                                                        << "" << false << false;
    QTest::newRow("any class, empty field name") << ""
                                                 << "" << false << false;
    QTest::newRow("other letter case") << "cat"
                                       << "Name" << false << false;
}

void tst_ClassFieldsMap::matches()
{
    QFETCH(QString, className);
    QFETCH(QString, fieldName);
    ClassFieldsMap map;
    map.add(className.toStdString(), fieldName.toStdString());
    map.add("Bird", "name");
    Animal animal;
    Cat cat;
    QTEST(map.matches(*animal.getField(0)), "ofAnimal");
    QTEST(map.matches(*cat.getField(0)), "ofCat");
}

void tst_ClassFieldsMap::fieldWithoutOwnerMatchesByTheEmptyClassNameAlone()
{
    Cat cat;
    const RefT<Field> field(cat.getField(0));
    ClassFieldsMap map;
    map.add("Cat", "name");
    QVERIFY(map.matches(*field));
    removeField(cat, *field);
    QVERIFY(!map.matches(*field));
    map.add("", "name");
    QVERIFY(map.matches(*field));
}

void tst_ClassFieldsMap::copyIsIndependent()
{
    ClassFieldsMap map;
    map.add("Cat", "name");
    const ClassFieldsMap copy(map);
    map.clear();
    Cat cat;
    QVERIFY(copy.matches(*cat.getField(0)));
}

QTEST_APPLESS_MAIN(tst_ClassFieldsMap)

#include "tst_ClassFieldsMap.moc"
