#include "zrVOMGUI/foundation/vom/Error.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/MField.h"

#include <QTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

/// Notes onSet.
class NotingField : public FieldInt {
public:
    NotingField(Object &newOwner, char const *fieldName, unsigned flags, std::string &destination)
        : FieldInt(newOwner, fieldName, flags, 1)
        , steps(destination)
    {
    }
    void onSet(int const &old) override
    {
        steps += "onSet(" + std::to_string(old) + "->" + std::to_string(get()) + ") ";
        // It may destroy this field.
        const std::function<void()> running = act;
        if (running)
            running();
    }

    std::string &steps;
    std::function<void()> act;
};

/// Sets its value in its constructor, when no object owns it yet.
class EagerField : public FieldString {
public:
    EagerField(Object &newOwner, char const *fieldName, unsigned flags)
        : FieldString(newOwner, fieldName, flags)
    {
        set("set early");
    }
};

/// A field of a class of its own that bears the code of integers.
class ForeignField : public Field {
public:
    ForeignField(Object &newOwner, char const *fieldName, unsigned flags)
        : Field(newOwner, fieldName, flags)
    {
    }
    PtrT<Field> clone(Object &) const override { return {}; }
    int getType() const override { return 2; }
    void copyValue(Field const &) override {}
};

template <class Expected, class FieldType>
constexpr bool holds = std::is_same_v<typename FieldType::Value, Expected>;
static_assert(holds<int, FieldInt> && holds<double, FieldReal> && holds<std::string, FieldString>);
static_assert(holds<PtrT<Object>, FieldPtr> && holds<RefT<Object>, FieldRef>);
static_assert(std::is_same_v<FieldInt, FieldT<FieldTypeT<2, int, int, int, int>>>);
static_assert(
    std::is_same_v<FieldReal, FieldT<FieldTypeT<3, double, double &, double const &, double>>>);
static_assert(std::is_base_of_v<FieldBaseT<FieldRef::Traits>, FieldRef>);
static_assert(std::is_base_of_v<Class, Field> && std::is_base_of_v<Flags, Field>);
static_assert(std::is_constructible_v<FieldRef, Object &, char const *, unsigned>);
static_assert(std::is_constructible_v<FieldRef, Object &, FieldRef const &>);
static_assert(!std::is_copy_constructible_v<FieldInt>, "A field is copied for an owner.");
static_assert(std::is_same_v<decltype(FieldPtr::sigLost), SignalT<SigVoidData>>);
static_assert(std::is_same_v<decltype(FieldRef::sigLost), SignalT<SigVoidData>>);
static_assert(std::is_same_v<decltype(FieldRef::SigSetData::old), RefT<Object> const *>);
static_assert(std::is_same_v<decltype(FieldRef::SigCanSetData::value), RefT<Object> const *>);

static_assert(std::is_base_of_v<ZR::Error, VOM::Error>);
static_assert(std::is_base_of_v<VOM::Error, ErrorField>);
static_assert(std::is_base_of_v<ErrorField, ErrorTypeMismatch>);
static_assert(std::is_copy_constructible_v<VOM::Error>);
static_assert(std::is_copy_constructible_v<ErrorField>);
static_assert(std::is_copy_constructible_v<ErrorTypeMismatch>);
static_assert(std::is_constructible_v<ErrorTypeMismatch, Field const &>);

} // namespace

class tst_FieldT : public QObject {
    Q_OBJECT

private slots:
    void typeCodes();
    void fieldKnowsNameOwnerAndFlags();
    void nameOutlivesItsArgument();
    void missingNameIsEmpty();
    void startValues();

    void setGoesStepByStep();
    void canSetDataPointsToTheNewValue();
    void equalValueIsAnnouncedToo();
    void setStoresEachType();
    void oldValueStaysReadableDuringSigSet();
    void setInsideSigSetIsTheLastWord();

    void refusalLeavesTheValue();
    void canSetAsksTheListeners();
    void canSetChangesNothing();
    void canSetOfAFieldWithoutListenersIsTrue();
    void canSetPassesOnWhatIsNoRefusal();
    void laterListenersAreNotAskedAfterARefusal();

    void fieldRemovedInSigCanSetEndsQuietly();
    void fieldKeptByAReferenceIsSetAlthoughRemoved();
    void fieldRemovedInOnSetEndsQuietly();
    void fieldRemovedInSigSetEndsQuietly();
    void objectDestroyedInSigSetEndsQuietly();
    void fieldMaySetItselfInItsConstructor();

    void owningLinkKeepsItsObjectAlive();
    void watchingLinkDoesNot();
    void ownedObjectGoesAfterSigSet();

    void cloneHasValueNameFlagsAndOwner_data();
    void cloneHasValueNameFlagsAndOwner();
    void cloneIsAnnouncedByItsOwner();
    void copyValueCopiesEachType();
    void copyValueIsAnnouncedAndCanBeRefused();
    void copyValueOfAnotherTypeRaisesAnError();
    void copyValueOfAForeignFieldWithTheSameCodeRaisesAnError();
    void errorsNameTheField();
};

void tst_FieldT::typeCodes()
{
    Object object(0);
    QCOMPARE(addField<FieldInt>(object, "x").getType(), 2);
    QCOMPARE(addField<FieldReal>(object, "x").getType(), 3);
    QCOMPARE(addField<FieldString>(object, "x").getType(), 4);
    QCOMPARE(addField<FieldPtr>(object, "x").getType(), 5);
    QCOMPARE(addField<FieldRef>(object, "x").getType(), 6);
    QCOMPARE(addField<MFieldPtr>(object, "x").getType(), 11);
    QCOMPARE(addField<MFieldRef>(object, "x").getType(), 12);
}

void tst_FieldT::fieldKnowsNameOwnerAndFlags()
{
    Object object(0);
    const FieldInt field(object, "size", 5u, 7);
    QCOMPARE(field.name, std::string("size"));
    QCOMPARE(field.owner, &object);
    QCOMPARE(field.getFlags(), 5u);
    QCOMPARE(field.get(), 7);
    QCOMPARE(addField<FieldInt>(object, "x").getFlags(), 0u);
}

void tst_FieldT::nameOutlivesItsArgument()
{
    Object object(0);
    auto name = std::make_unique<std::string>("a name that lies on the heap and not in a string");
    const std::string expected = *name;
    FieldInt const &first = addField<FieldInt>(object, name->c_str());
    name.reset();
    FieldInt const &second = addField<FieldInt>(object, expected.c_str());
    QCOMPARE(first.name, expected);
    QCOMPARE(&first.name, &second.name);
}

void tst_FieldT::missingNameIsEmpty()
{
    Object object(0);
    QCOMPARE(addField<FieldInt>(object, nullptr).name, std::string());
}

void tst_FieldT::startValues()
{
    Object object(0);
    QCOMPARE(addField<FieldInt>(object, "x").get(), 0);
    QCOMPARE(addField<FieldReal>(object, "x").get(), 0.0);
    QCOMPARE(addField<FieldString>(object, "x").get(), std::string());
    QVERIFY(!addField<FieldPtr>(object, "x").get());
    QVERIFY(!addField<FieldRef>(object, "x").get());
    QCOMPARE(addField<FieldReal>(object, "x", 2.5).get(), 2.5);
    QCOMPARE(addField<FieldPtr>(object, "x", PtrT<Object>(object)).get().get(), &object);
}

void tst_FieldT::setGoesStepByStep()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    field.sigCanSet.connect([&](FieldInt::SigCanSetData const &data) {
        steps +=
            "can(" + std::to_string(*data.value) + " has " + std::to_string(field.get()) + ") ";
    });
    field.sigSet.connect([&](FieldInt::SigSetData const &data) {
        steps += "set(" + std::to_string(*data.old) + "->" + std::to_string(field.get()) + ")";
    });
    field.set(2);
    QCOMPARE(steps, std::string("can(2 has 1) onSet(1->2) set(1->2)"));
}

void tst_FieldT::canSetDataPointsToTheNewValue()
{
    Object object(0);
    RefT<Object> const target(new Object(0));
    auto &field = addField<FieldRef>(object, "link");
    Object const *seen = nullptr;
    field.sigCanSet.connect([&](FieldRef::SigCanSetData const &data) { seen = data.value->get(); });
    field.set(target);
    QCOMPARE(seen, static_cast<Object const *>(target.get()));
}

void tst_FieldT::equalValueIsAnnouncedToo()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    field.sigSet.connect([&](auto const &) { steps += "set"; });
    field.set(1);
    QCOMPARE(steps, std::string("onSet(1->1) set"));
}

void tst_FieldT::setStoresEachType()
{
    Object object(0);
    const RefT<Object> target(new Object(0));
    auto &fieldInt = addField<FieldInt>(object, "i");
    fieldInt.set(-5);
    QCOMPARE(fieldInt.get(), -5);
    auto &fieldReal = addField<FieldReal>(object, "r");
    fieldReal.set(0.1);
    QCOMPARE(fieldReal.get(), 0.1);
    auto &fieldString = addField<FieldString>(object, "s");
    fieldString.set(std::string("a\0b", 3));
    QCOMPARE(fieldString.get(), std::string("a\0b", 3));
    auto &fieldPtr = addField<FieldPtr>(object, "p");
    fieldPtr.set(target);
    QCOMPARE(fieldPtr.get().get(), target.get());
    fieldPtr.set(nullptr);
    QVERIFY(!fieldPtr.get());
    auto &fieldRef = addField<FieldRef>(object, "o");
    fieldRef.set(target);
    QCOMPARE(fieldRef.get().get(), target.get());
    fieldRef.set(nullptr);
    QVERIFY(!fieldRef.get());
}

void tst_FieldT::oldValueStaysReadableDuringSigSet()
{
    Object object(0);
    auto &field = addField<FieldString>(object, "s", "a text that lies on the heap, the old one");
    std::string old;
    field.sigSet.connect([&](FieldString::SigSetData const &data) { old = *data.old; });
    field.set("new");
    QCOMPARE(old, std::string("a text that lies on the heap, the old one"));
}

void tst_FieldT::setInsideSigSetIsTheLastWord()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size", 1);
    std::vector<int> olds;
    field.sigSet.connect([&](FieldInt::SigSetData const &data) {
        olds.push_back(*data.old);
        if (field.get() > 10)
            field.set(10);
    });
    field.set(12);
    QCOMPARE(field.get(), 10);
    QCOMPARE(olds, (std::vector<int>{1, 12}));
}

void tst_FieldT::refusalLeavesTheValue()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    field.sigCanSet.connect([&](auto const &) { throw ErrorField(field, "no"); });
    field.sigSet.connect([&](auto const &) { steps += "set"; });
    QVERIFY_EXCEPTION_THROWN(field.set(5), ErrorField);
    QCOMPARE(field.get(), 1);
    QCOMPARE(steps, std::string());
}

void tst_FieldT::canSetAsksTheListeners()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size", 1);
    field.sigCanSet.connect([&](FieldInt::SigCanSetData const &data) {
        if (*data.value < 0)
            throw ErrorField(field, "below 0");
    });
    QVERIFY(field.canSet(0));
    QVERIFY(!field.canSet(-1));
}

void tst_FieldT::canSetChangesNothing()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    field.sigSet.connect([&](auto const &) { steps += "set"; });
    QVERIFY(field.canSet(5));
    QCOMPARE(field.get(), 1);
    QCOMPARE(steps, std::string());
}

void tst_FieldT::canSetOfAFieldWithoutListenersIsTrue()
{
    Object object(0);
    QVERIFY(addField<FieldPtr>(object, "x").canSet(PtrT<Object>()));
    QVERIFY(addField<FieldRef>(object, "x").canSet(RefT<Object>(new Object(0))));
    QVERIFY(addField<FieldString>(object, "x").canSet("text"));
}

void tst_FieldT::canSetPassesOnWhatIsNoRefusal()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size");
    field.sigCanSet.connect([](auto const &) { throw std::runtime_error("broken listener"); });
    QVERIFY_EXCEPTION_THROWN(field.canSet(5), std::runtime_error);
}

void tst_FieldT::laterListenersAreNotAskedAfterARefusal()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size");
    int calls = 0;
    field.sigCanSet.connect([](auto const &) { throw ZR::Error("no"); });
    field.sigCanSet.connect([&](auto const &) { ++calls; });
    QVERIFY(!field.canSet(5));
    QCOMPARE(calls, 0);
}

void tst_FieldT::fieldRemovedInSigCanSetEndsQuietly()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    const PtrT<Field> watcher(field);
    field.sigCanSet.connect([&](auto const &) { removeField(object, field); });
    field.sigSet.connect([&](auto const &) { steps += "set"; });
    field.set(5);
    QVERIFY(!watcher);
    QCOMPARE(steps, std::string());
}

void tst_FieldT::fieldKeptByAReferenceIsSetAlthoughRemoved()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    const RefT<Field> kept(field);
    field.sigCanSet.connect([&](auto const &) { removeField(object, field); });
    field.set(5);
    QCOMPARE(field.get(), 5);
    QCOMPARE(steps, std::string("onSet(1->5) "));
}

void tst_FieldT::fieldRemovedInOnSetEndsQuietly()
{
    std::string steps;
    Object object(0);
    auto &field = addField<NotingField>(object, "size", steps);
    const PtrT<Field> watcher(field);
    field.act = [&] { removeField(object, field); };
    field.sigSet.connect([&](auto const &) { steps += "set"; });
    field.set(5);
    QVERIFY(!watcher);
    QCOMPARE(steps, std::string("onSet(1->5) "));
}

void tst_FieldT::fieldRemovedInSigSetEndsQuietly()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size", 1);
    const PtrT<Field> watcher(field);
    int old = 0;
    int calls = 0;
    field.sigSet.connect([&](FieldInt::SigSetData const &data) {
        removeField(object, *object.getField(0));
        old = *data.old;
    });
    field.sigSet.connect([&](auto const &) { ++calls; });
    field.set(5);
    QVERIFY(!watcher);
    QCOMPARE(old, 1);
    QCOMPARE(calls, 0);
}

void tst_FieldT::objectDestroyedInSigSetEndsQuietly()
{
    RefT<Object> object(new Object(0));
    auto &field = addField<FieldRef>(*object, "link", RefT<Object>(new Object(0)));
    const PtrT<Object> target(field.get());
    field.sigSet.connect([&](FieldRef::SigSetData const &data) {
        object.reset();
        QVERIFY(*data.old);
    });
    field.set(nullptr);
    QVERIFY(!object);
    QVERIFY(!target);
}

void tst_FieldT::fieldMaySetItselfInItsConstructor()
{
    Object object(0);
    auto &field = addField<EagerField>(object, "text");
    QCOMPARE(field.get(), std::string("set early"));
    QCOMPARE(object.getField(0).get(), static_cast<Field *>(&field));
}

void tst_FieldT::owningLinkKeepsItsObjectAlive()
{
    Object object(0);
    RefT<Object> target(new Object(0));
    const PtrT<Object> watcher(target);
    auto &field = addField<FieldRef>(object, "link");
    field.set(target);
    target.reset();
    QVERIFY(watcher);
    field.set(nullptr);
    QVERIFY(!watcher);
}

void tst_FieldT::watchingLinkDoesNot()
{
    Object object(0);
    RefT<Object> target(new Object(0));
    auto &field = addField<FieldPtr>(object, "link", target);
    target.reset();
    QVERIFY(!field.get());
}

void tst_FieldT::ownedObjectGoesAfterSigSet()
{
    Object object(0);
    auto &field = addField<FieldRef>(object, "link", RefT<Object>(new Object(0)));
    const PtrT<Object> target(field.get());
    bool wasThere = false;
    field.sigSet.connect([&](auto const &) { wasThere = target != nullptr; });
    field.set(nullptr);
    QVERIFY(wasThere);
    QVERIFY(!target);
}

namespace {

/// The seven kinds of fields, with values.
void addAllKinds(Object &object, RefT<Object> const &target)
{
    addField<FieldInt>(object, "int", 5);
    addField<FieldReal>(object, "real", 2.5);
    addField<FieldString>(object, "string", "text");
    addField<FieldPtr>(object, "ptr", target);
    addField<FieldRef>(object, "ref", target);
    addField<MFieldPtr>(object, "ptrs", std::vector<PtrT<Object>>{target, {}, target});
    addField<MFieldRef>(object, "refs", std::vector<RefT<Object>>{target, {}, target});
}

template <class Value>
std::string text(Value const &value)
{
    std::string result;
    for (auto const &item : value)
        result += std::to_string(reinterpret_cast<std::uintptr_t>(item.get())) + ' ';
    return result;
}

/// The value of a field of any kind, as text.
std::string valueOf(Field const &field)
{
    switch (field.getType()) {
    case 2:
        return std::to_string(static_cast<FieldInt const &>(field).get());
    case 3:
        return std::to_string(static_cast<FieldReal const &>(field).get());
    case 4:
        return static_cast<FieldString const &>(field).get();
    case 5:
        return text(std::vector<PtrT<Object>>{static_cast<FieldPtr const &>(field).get()});
    case 6:
        return text(std::vector<RefT<Object>>{static_cast<FieldRef const &>(field).get()});
    case 11:
        return text(static_cast<MFieldPtr const &>(field).getAll());
    default:
        return text(static_cast<MFieldRef const &>(field).getAll());
    }
}

} // namespace

void tst_FieldT::cloneHasValueNameFlagsAndOwner_data()
{
    QTest::addColumn<int>("index");
    char const *const names[] = {"int",
                                 "real",
                                 "string",
                                 "watching link",
                                 "owning link",
                                 "list of watching links",
                                 "list of owning links"};
    for (int i = 0; i < 7; ++i)
        QTest::newRow(names[i]) << i;
}

void tst_FieldT::cloneHasValueNameFlagsAndOwner()
{
    QFETCH(int, index);
    Object first(0), second(0);
    const RefT<Object> target(new Object(0));
    addAllKinds(first, target);
    Field &original = *first.getField(std::size_t(index));
    original.setFlags(9);

    const PtrT<Field> clone = original.clone(second);

    QVERIFY(clone);
    QCOMPARE(second.getNumFields(), std::size_t(1));
    QCOMPARE(second.getField(0).get(), clone.get());
    QCOMPARE(clone->owner, &second);
    QCOMPARE(clone->name, original.name);
    QCOMPARE(clone->getFlags(), 9u);
    QCOMPARE(clone->getType(), original.getType());
    QCOMPARE(valueOf(*clone), valueOf(original));
    QVERIFY(!valueOf(original).empty());
}

void tst_FieldT::cloneIsAnnouncedByItsOwner()
{
    Object first(0), second(0);
    FieldInt const &original = addField<FieldInt>(first, "size", 5);
    std::vector<std::size_t> indices;
    second.sigAddField.connect([&](SigAddFieldData const &data) { indices.push_back(data.index); });
    original.clone(second);
    original.clone(second);
    QCOMPARE(indices, (std::vector<std::size_t>{0, 1}));
}

void tst_FieldT::copyValueCopiesEachType()
{
    Object full(0), empty(0);
    const RefT<Object> target(new Object(0));
    addAllKinds(full, target);
    addField<FieldInt>(empty, "int");
    addField<FieldReal>(empty, "real");
    addField<FieldString>(empty, "string");
    addField<FieldPtr>(empty, "ptr");
    addField<FieldRef>(empty, "ref");
    addField<MFieldPtr>(empty, "ptrs", std::vector<PtrT<Object>>(5));
    addField<MFieldRef>(empty, "refs");
    for (std::size_t i = 0; i < 7; ++i) {
        QVERIFY(valueOf(*empty.getField(i)) != valueOf(*full.getField(i)));
        empty.getField(i)->copyValue(*full.getField(i));
        QCOMPARE(valueOf(*empty.getField(i)), valueOf(*full.getField(i)));
        full.getField(i)->copyValue(*full.getField(i));
        QCOMPARE(valueOf(*empty.getField(i)), valueOf(*full.getField(i)));
    }
}

void tst_FieldT::copyValueIsAnnouncedAndCanBeRefused()
{
    Object object(0);
    auto &from = addField<FieldInt>(object, "a", 5);
    auto &to = addField<FieldInt>(object, "b", 1);
    std::vector<int> olds;
    to.sigSet.connect([&](FieldInt::SigSetData const &data) { olds.push_back(*data.old); });
    to.copyValue(from);
    QCOMPARE(olds, std::vector<int>{1});
    to.sigCanSet.connect([](auto const &) { throw VOM::Error("no"); });
    from.set(6);
    QVERIFY_EXCEPTION_THROWN(to.copyValue(from), VOM::Error);
    QCOMPARE(to.get(), 5);
}

void tst_FieldT::copyValueOfAnotherTypeRaisesAnError()
{
    Object object(0);
    const RefT<Object> target(new Object(0));
    addAllKinds(object, target);
    for (std::size_t to = 0; to < 7; ++to) {
        const std::string before = valueOf(*object.getField(to));
        for (std::size_t from = 0; from < 7; ++from) {
            if (from == to)
                continue;
            QVERIFY_EXCEPTION_THROWN(object.getField(to)->copyValue(*object.getField(from)),
                                     ErrorTypeMismatch);
            QCOMPARE(valueOf(*object.getField(to)), before);
        }
    }
}

void tst_FieldT::copyValueOfAForeignFieldWithTheSameCodeRaisesAnError()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size", 5);
    auto &foreign = addField<ForeignField>(object, "foreign");
    QVERIFY_EXCEPTION_THROWN(field.copyValue(foreign), ErrorTypeMismatch);
    QCOMPARE(field.get(), 5);
}

void tst_FieldT::errorsNameTheField()
{
    Object object(0);
    auto &field = addField<FieldInt>(object, "size");
    const ErrorTypeMismatch error(field);
    const ErrorTypeMismatch copy(error);
    QVERIFY(std::string(copy.what()).find("size") != std::string::npos);
    QCOMPARE(std::string(ErrorField(field, "too big").what()),
             std::string("field 'size': too big"));
}

QTEST_APPLESS_MAIN(tst_FieldT)

#include "tst_FieldT.moc"
