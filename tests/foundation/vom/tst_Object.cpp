#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/Object.h"

#include <QTest>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

class Animal : public Object {
public:
    Animal()
        : Object(0)
    {
        addField<FieldString>(*this, "name", "nameless");
    }
    Animal(Animal const &other)
        : Object(other)
    {
    }

    ClassInfo const &getClassInfo() const override { return classInfo; }
    RefT<Object> clone() override { return new Animal(*this); }
    static ClassInfo const classInfo;
};
ClassInfo const Animal::classInfo = {&Object::classInfo, "Animal"};

class Cat : public Animal {
public:
    ClassInfo const &getClassInfo() const override { return classInfo; }
    static ClassInfo const classInfo;
};
ClassInfo const Cat::classInfo = {&Animal::classInfo, "Cat"};

std::string namesOf(Object const &object)
{
    std::string names;
    for (std::size_t i = 0; i < object.getNumFields(); ++i)
        names += object.getField(i)->name + ' ';
    return names;
}

static_assert(std::is_base_of_v<Class, Object> && std::is_base_of_v<Flags, Object>);
static_assert(std::is_copy_constructible_v<Object>);
static_assert(!std::is_copy_assignable_v<Object>);
static_assert(std::is_constructible_v<Object, unsigned>);
static_assert(!std::is_convertible_v<unsigned, Object>);
static_assert(std::is_aggregate_v<ClassInfo> && sizeof(ClassInfo) == 2 * sizeof(void *));
static_assert(std::is_base_of_v<SigVoidData, SigAddFieldData>);
static_assert(std::is_base_of_v<SigVoidData, SigRemoveFieldData>);
static_assert(std::is_same_v<decltype(SigAddFieldData::index), std::size_t>);
static_assert(std::is_same_v<decltype(SigRemoveFieldData::field), RefT<Field> const *>);

} // namespace

class tst_Object : public QObject {
    Q_OBJECT

private slots:
    void classIsOfItsOwnTypeAndOfItsBases_data();
    void classIsOfItsOwnTypeAndOfItsBases();
    void chainOfClassesEndsAtObject();
    void objectCarriesItsFlags();
    void objectIsNotSharableByDefault();

    void fieldsKeepTheOrderOfAdding();
    void absentFieldHasAnIndexPastTheEnd_data();
    void absentFieldHasAnIndexPastTheEnd();
    void firstOfEqualNamesIsFound();
    void getFieldRefusesAnIndexPastTheEnd();
    void findFieldWatchesAndDoesNotOwn();
    void derivedSearchForAFieldCounts();

    void addFieldAnswersTheField();
    void sigAddFieldTellsThePositionAfterwards();
    void fieldAddedByAListenerIsAnnounced();
    void exceptionOfASigAddFieldListenerPassesOn();

    void removeFieldTakesItOut();
    void sigRemoveFieldComesBefore();
    void removedFieldIsDestroyed();
    void removedFieldKeptByAReferenceHasNoOwner();
    void foreignFieldIsNotRemoved();
    void unregisteredFieldIsNotRemoved();
    void removedFieldIsNotRemovedAgain();
    void listenerMayRemoveTheSameField();
    void listenerMayRemoveAnotherField();
    void listenerMayDestroyTheObject();
    void refusedRemovalLeavesTheField();

    void copyHasItsOwnFields();
    void copyHasNoListeners();
    void cloneIsOfTheSameClass();
    void cloneOfAPlainObjectHasItsFields();

    void dyingObjectReadsItsFieldsInSigDelete();
    void fieldsOfADeadObjectHaveNoOwner();
    void fieldsOfADyingObjectEmitSigDelete();
    void stackObjectOwnsItsFields();
    void longOwningChainIsDestroyed();
};

void tst_Object::classIsOfItsOwnTypeAndOfItsBases_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isAnimal");
    QTest::addColumn<bool>("isCat");
    QTest::newRow("top of the chain") << "ZR::VOM::Object" << true << true;
    QTest::newRow("class between") << "Animal" << true << true;
    QTest::newRow("most derived class") << "Cat" << false << true;
    QTest::newRow("unknown name") << "Dog" << false << false;
    QTest::newRow("beginning of a name") << "Ani" << false << false;
    QTest::newRow("name and more") << "Animals" << false << false;
    QTest::newRow("other letter case") << "animal" << false << false;
    QTest::newRow("empty name") << "" << false << false;
}

void tst_Object::classIsOfItsOwnTypeAndOfItsBases()
{
    QFETCH(QString, name);
    QTEST(Animal().getClassInfo().isType(name.toStdString()), "isAnimal");
    QTEST(Cat().getClassInfo().isType(name.toStdString()), "isCat");
}

void tst_Object::chainOfClassesEndsAtObject()
{
    std::string names;
    for (ClassInfo const *info = &Cat().getClassInfo(); info; info = info->base)
        names += std::string(info->name) + ' ';
    QCOMPARE(names, std::string("Cat Animal ZR::VOM::Object "));
    QCOMPARE(&Object(0).getClassInfo(), &Object::classInfo);
    QVERIFY(Object::classInfo.base == nullptr);
}

void tst_Object::objectCarriesItsFlags()
{
    Object object(5);
    QCOMPARE(object.getFlags(), 5u);
    QCOMPARE(Object(object).getFlags(), 5u);
    object.setFlags(2);
    QCOMPARE(object.getFlags(), 2u);
}

void tst_Object::objectIsNotSharableByDefault()
{
    QVERIFY(!Object(0).isSharable());
}

void tst_Object::fieldsKeepTheOrderOfAdding()
{
    Object object(0);
    QCOMPARE(object.getNumFields(), std::size_t(0));
    addField<FieldInt>(object, "b");
    addField<FieldString>(object, "a");
    addField<MFieldRef>(object, "c");
    QCOMPARE(object.getNumFields(), std::size_t(3));
    QCOMPARE(namesOf(object), std::string("b a c "));
    QCOMPARE(object.findFieldIndex("b"), std::size_t(0));
    QCOMPARE(object.findFieldIndex("a"), std::size_t(1));
    QCOMPARE(object.findFieldIndex("c"), std::size_t(2));
}

void tst_Object::absentFieldHasAnIndexPastTheEnd_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown name") << "size";
    QTest::newRow("empty name") << "";
    QTest::newRow("beginning of a name") << "nam";
    QTest::newRow("other letter case") << "Name";
}

void tst_Object::absentFieldHasAnIndexPastTheEnd()
{
    QFETCH(QString, name);
    Animal animal;
    QVERIFY(animal.findFieldIndex(name.toStdString()) >= animal.getNumFields());
    QVERIFY(!animal.findField(name.toStdString()));
    const Object empty(0);
    QVERIFY(empty.findFieldIndex(name.toStdString()) >= empty.getNumFields());
}

void tst_Object::firstOfEqualNamesIsFound()
{
    Object object(0);
    Field const &first = addField<FieldInt>(object, "size", 1);
    addField<FieldInt>(object, "size", 2);
    QCOMPARE(object.findFieldIndex("size"), std::size_t(0));
    QCOMPARE(object.findField("size").get(), &first);
}

void tst_Object::getFieldRefusesAnIndexPastTheEnd()
{
    const Animal animal;
    QCOMPARE(animal.getField(0)->name, std::string("name"));
    QVERIFY_EXCEPTION_THROWN(animal.getField(1), std::out_of_range);
    QVERIFY_EXCEPTION_THROWN(animal.getField(std::size_t(-1)), std::out_of_range);
}

void tst_Object::findFieldWatchesAndDoesNotOwn()
{
    RefT<Animal> animal(new Animal);
    const PtrT<Field> field = animal->findField("name");
    QVERIFY(field);
    animal.reset();
    QVERIFY(!field);
}

void tst_Object::derivedSearchForAFieldCounts()
{
    struct Aliased : Animal {
        std::size_t findFieldIndex(std::string const &name) const override
        {
            return name == "nowhere" ? 1000
                                     : Animal::findFieldIndex(name == "alias" ? "name" : name);
        }
    } object;
    QCOMPARE(object.findField("alias").get(), object.getField(0).get());
    QVERIFY(!object.findField("nowhere"));
}

void tst_Object::addFieldAnswersTheField()
{
    Object object(0);
    FieldString &field = addField<FieldString>(object, "name", "value");
    QCOMPARE(field.get(), std::string("value"));
    QCOMPARE(field.owner, &object);
    QCOMPARE(object.getField(0).get(), static_cast<Field *>(&field));
}

void tst_Object::sigAddFieldTellsThePositionAfterwards()
{
    Animal animal;
    std::vector<std::size_t> seen;
    animal.sigAddField.connect([&](SigAddFieldData const &data) {
        seen = {data.index, animal.getNumFields()};
        QCOMPARE(animal.getField(data.index)->name, std::string("size"));
        QCOMPARE(animal.getField(data.index)->owner, static_cast<Object *>(&animal));
    });
    addField<FieldInt>(animal, "size");
    QCOMPARE(seen, (std::vector<std::size_t>{1, 2}));
}

void tst_Object::fieldAddedByAListenerIsAnnounced()
{
    Object object(0);
    std::vector<std::size_t> indices;
    object.sigAddField.connect([&](SigAddFieldData const &data) {
        indices.push_back(data.index);
        if (object.getNumFields() < 3)
            addField<FieldInt>(object, "further");
    });
    addField<FieldInt>(object, "first");
    QCOMPARE(indices, (std::vector<std::size_t>{0, 1, 2}));
}

void tst_Object::exceptionOfASigAddFieldListenerPassesOn()
{
    Object object(0);
    object.sigAddField.connect([](SigAddFieldData const &) { throw std::runtime_error("x"); });
    QVERIFY_EXCEPTION_THROWN(addField<FieldInt>(object, "size"), std::runtime_error);
    QCOMPARE(object.getNumFields(), std::size_t(1));
}

void tst_Object::removeFieldTakesItOut()
{
    Object object(0);
    addField<FieldInt>(object, "a");
    Field &middle = addField<FieldInt>(object, "b");
    addField<FieldInt>(object, "c");
    QVERIFY(removeField(object, middle));
    QCOMPARE(namesOf(object), std::string("a c "));
}

void tst_Object::sigRemoveFieldComesBefore()
{
    Object object(0);
    addField<FieldInt>(object, "a");
    Field &field = addField<FieldInt>(object, "b", 5);
    int calls = 0;
    object.sigRemoveField.connect([&](SigRemoveFieldData const &data) {
        ++calls;
        QCOMPARE(data.field->get(), &field);
        QCOMPARE((*data.field)->owner, &object);
        QCOMPARE(object.getNumFields(), std::size_t(2));
        QCOMPARE(static_cast<FieldInt &>(field).get(), 5);
    });
    QVERIFY(removeField(object, field));
    QCOMPARE(calls, 1);
    QCOMPARE(object.getNumFields(), std::size_t(1));
}

void tst_Object::removedFieldIsDestroyed()
{
    Animal animal;
    const PtrT<Field> field = animal.findField("name");
    QVERIFY(removeField(animal, *field));
    QVERIFY(!field);
}

void tst_Object::removedFieldKeptByAReferenceHasNoOwner()
{
    Animal animal;
    const RefT<Field> field(animal.findField("name"));
    QVERIFY(removeField(animal, *field));
    QVERIFY(field);
    QVERIFY(field->owner == nullptr);
    QCOMPARE(static_cast<FieldString &>(*field).get(), std::string("nameless"));
    static_cast<FieldString &>(*field).set("free");
}

void tst_Object::foreignFieldIsNotRemoved()
{
    Animal first, second;
    int calls = 0;
    first.sigRemoveField.connect([&](auto const &) { ++calls; });
    QVERIFY(!removeField(first, *second.findField("name")));
    QCOMPARE(calls, 0);
    QCOMPARE(second.getNumFields(), std::size_t(1));
}

void tst_Object::unregisteredFieldIsNotRemoved()
{
    Animal animal;
    auto *const field = new FieldInt(animal, "size");
    const PtrT<Field> watcher(field);
    QVERIFY(!removeField(animal, *field));
    QVERIFY2(watcher, "no reference owns the field, so none may destroy it");
    delete field;
}

void tst_Object::removedFieldIsNotRemovedAgain()
{
    Animal animal;
    const RefT<Field> field(animal.findField("name"));
    QVERIFY(removeField(animal, *field));
    QVERIFY(!removeField(animal, *field));
}

void tst_Object::listenerMayRemoveTheSameField()
{
    Animal animal;
    const PtrT<Field> field = animal.findField("name");
    int calls = 0;
    animal.sigRemoveField.connect([&](SigRemoveFieldData const &data) {
        if (++calls == 1)
            QVERIFY(removeField(animal, **data.field));
    });
    QVERIFY(removeField(animal, *field));
    QCOMPARE(calls, 2);
    QVERIFY(!field);
    QCOMPARE(animal.getNumFields(), std::size_t(0));
}

void tst_Object::listenerMayRemoveAnotherField()
{
    Object object(0);
    addField<FieldInt>(object, "a");
    addField<FieldInt>(object, "b");
    Field &last = addField<FieldInt>(object, "c");
    object.sigRemoveField.connect([&](SigRemoveFieldData const &data) {
        if ((*data.field)->name == "c")
            removeField(object, *object.getField(0));
    });
    QVERIFY(removeField(object, last));
    QCOMPARE(namesOf(object), std::string("b "));
}

void tst_Object::listenerMayDestroyTheObject()
{
    RefT<Object> object(new Animal);
    const PtrT<Field> field = object->findField("name");
    object->sigRemoveField.connect([&](SigRemoveFieldData const &data) {
        object.reset();
        QVERIFY((*data.field)->owner == nullptr);
    });
    QVERIFY(removeField(*object, *field));
    QVERIFY(!object);
    QVERIFY(!field);
}

void tst_Object::refusedRemovalLeavesTheField()
{
    Animal animal;
    animal.sigRemoveField.connect([](auto const &) { throw VOM::Error("needed"); });
    Field &field = *animal.getField(0);
    QVERIFY_EXCEPTION_THROWN(removeField(animal, field), VOM::Error);
    QCOMPARE(animal.getNumFields(), std::size_t(1));
    QCOMPARE(field.owner, static_cast<Object *>(&animal));
}

void tst_Object::copyHasItsOwnFields()
{
    Animal original;
    addField<FieldInt>(original, "size", 5);
    const Animal copy(original);
    static_cast<FieldString &>(*original.getField(0)).set("renamed");
    QCOMPARE(namesOf(copy), std::string("name size "));
    QCOMPARE(static_cast<FieldString &>(*copy.getField(0)).get(), std::string("nameless"));
    QCOMPARE(static_cast<FieldInt &>(*copy.getField(1)).get(), 5);
    QVERIFY(copy.getField(0)->owner == &copy);
}

void tst_Object::copyHasNoListeners()
{
    Animal original;
    int calls = 0;
    original.sigAddField.connect([&](auto const &) { ++calls; });
    original.sigDelete.connect([&](auto const &) { ++calls; });
    static_cast<FieldString &>(*original.getField(0)).sigSet.connect([&](auto const &) {
        ++calls;
    });
    {
        Animal copy(original);
        addField<FieldInt>(copy, "size");
        static_cast<FieldString &>(*copy.getField(0)).set("x");
    }
    QCOMPARE(calls, 0);
}

void tst_Object::cloneIsOfTheSameClass()
{
    Animal animal;
    const RefT<Object> clone = animal.clone();
    QVERIFY(cast<Animal>(clone));
    QCOMPARE(namesOf(*clone), std::string("name "));
}

void tst_Object::cloneOfAPlainObjectHasItsFields()
{
    Object object(3);
    addField<FieldReal>(object, "width", 2.5);
    const RefT<Object> clone = object.clone();
    QCOMPARE(clone->getFlags(), 3u);
    QCOMPARE(static_cast<FieldReal &>(*clone->getField(0)).get(), 2.5);
}

void tst_Object::dyingObjectReadsItsFieldsInSigDelete()
{
    std::string name;
    const auto readName = [&](SigVoidData const &data) {
        if (Object const *const object = cast<Object>(data.ptr))
            name = static_cast<FieldString &>(*object->findField("name")).get();
    };
    RefT<Object> onHeap(new Animal);
    onHeap->sigDelete.connect(readName, onHeap);
    onHeap.reset();
    QCOMPARE(name, std::string("nameless"));
    name.clear();
    {
        Animal onStack;
        onStack.sigDelete.connect(readName, PtrT<Class>(onStack));
    }
    QCOMPARE(name, std::string("nameless"));
}

void tst_Object::fieldsOfADeadObjectHaveNoOwner()
{
    RefT<Object> object(new Animal);
    const RefT<Field> field(object->getField(0));
    object.reset();
    QVERIFY(field);
    QVERIFY(field->owner == nullptr);
    QCOMPARE(field->name, std::string("name"));
}

void tst_Object::fieldsOfADyingObjectEmitSigDelete()
{
    RefT<Object> object(new Animal);
    const PtrT<Object> watcher(object);
    std::string steps;
    object->sigDelete.connect([&](auto const &) { steps += "object "; });
    object->getField(0)->sigDelete.connect(
        [&](auto const &) { steps += watcher ? "early field " : "field "; });
    object.reset();
    QCOMPARE(steps, std::string("object field "));
}

void tst_Object::stackObjectOwnsItsFields()
{
    PtrT<Field> field;
    {
        const Animal animal;
        field = PtrT<Field>(animal.getField(0));
        QVERIFY(field);
    }
    QVERIFY(!field);
}

void tst_Object::longOwningChainIsDestroyed()
{
    RefT<Object> chain;
    std::vector<PtrT<Object>> watchers;
    for (int i = 0; i < 100000; ++i) {
        RefT<Object> owner(new Object(0));
        if (i % 2 == 0)
            addField<FieldRef>(*owner, "next", chain);
        else
            addField<MFieldRef>(*owner, "all", std::vector<RefT<Object>>{chain});
        chain = std::move(owner);
        watchers.emplace_back(chain);
    }
    chain.reset();
    for (PtrT<Object> const &watcher : watchers)
        QVERIFY(!watcher);
}

QTEST_APPLESS_MAIN(tst_Object)

#include "tst_Object.moc"
