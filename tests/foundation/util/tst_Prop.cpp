#include "zrVOMGUI/foundation/util/Prop.h"

#include <QTest>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;

namespace {

/// An owner of properties, as a widget is one.
class Owner : public Object {
public:
    PropT<bool> visible{*this, true};
    PropT<double> width{*this, 1.5};
};

static_assert(std::is_base_of_v<Prop, PropT<bool>>);
static_assert(!std::is_copy_constructible_v<PropT<double>>, "A property belongs to its owner.");
static_assert(std::has_virtual_destructor_v<Prop>);
static_assert(std::is_base_of_v<SigVoidData, PropT<bool>::SigSetData>);
static_assert(std::is_base_of_v<SigVoidData, PropT<bool>::SigCanSetData>);

} // namespace

class tst_Prop : public QObject {
    Q_OBJECT

private slots:
    void propertyStartsWithItsStartValue();
    void propertyKnowsItsOwner();
    void setStoresTheValue();
    void sigCanSetComesBeforeTheValueIsStored();
    void sigSetComesAfterTheValueIsStored();
    void equalValueIsAnnouncedToo();
    void listenerRefusesByAnError();
    void setInsideSigSetIsTheLastWord();
    void setEndsWhenAListenerOfSigCanSetDestroysTheOwner();
    void setEndsWhenAListenerOfSigSetDestroysTheOwner();
};

void tst_Prop::propertyStartsWithItsStartValue()
{
    const Owner owner;
    QCOMPARE(owner.visible.get(), true);
    QCOMPARE(owner.width.get(), 1.5);
}

void tst_Prop::propertyKnowsItsOwner()
{
    Owner owner;
    QCOMPARE(&owner.width.getOwner(), static_cast<Object *>(&owner));
}

void tst_Prop::setStoresTheValue()
{
    Owner owner;
    owner.visible.set(false);
    owner.width.set(-2.25);
    QCOMPARE(owner.visible.get(), false);
    QCOMPARE(owner.width.get(), -2.25);
}

void tst_Prop::sigCanSetComesBeforeTheValueIsStored()
{
    Owner owner;
    std::vector<double> seen;
    owner.width.sigCanSet.connect([&](PropT<double>::SigCanSetData const &data) {
        seen = {owner.width.get(), *data.value};
    });
    owner.width.set(3);
    QCOMPARE(seen, (std::vector<double>{1.5, 3}));
}

void tst_Prop::sigSetComesAfterTheValueIsStored()
{
    Owner owner;
    std::vector<double> seen;
    owner.width.sigSet.connect([&](PropT<double>::SigSetData const &data) {
        seen = {owner.width.get(), *data.old};
    });
    owner.width.set(3);
    QCOMPARE(seen, (std::vector<double>{3, 1.5}));
}

void tst_Prop::equalValueIsAnnouncedToo()
{
    Owner owner;
    std::string calls;
    owner.visible.sigCanSet.connect([&](auto const &) { calls += "can "; });
    owner.visible.sigSet.connect([&](auto const &data) { calls += *data.old ? "set" : "-"; });
    owner.visible.set(true);
    QCOMPARE(calls, std::string("can set"));
}

void tst_Prop::listenerRefusesByAnError()
{
    Owner owner;
    int calls = 0;
    owner.width.sigCanSet.connect([](PropT<double>::SigCanSetData const &data) {
        if (*data.value < 0)
            throw Error("a width below 0");
    });
    owner.width.sigSet.connect([&](auto const &) { ++calls; });
    QVERIFY_EXCEPTION_THROWN(owner.width.set(-1), Error);
    QCOMPARE(owner.width.get(), 1.5);
    QCOMPARE(calls, 0);
    owner.width.set(2);
    QCOMPARE(owner.width.get(), 2.0);
    QCOMPARE(calls, 1);
}

void tst_Prop::setInsideSigSetIsTheLastWord()
{
    Owner owner;
    std::vector<double> olds;
    owner.width.sigSet.connect([&](PropT<double>::SigSetData const &data) {
        olds.push_back(*data.old);
        if (owner.width.get() > 10)
            owner.width.set(10);
    });
    owner.width.set(12);
    QCOMPARE(owner.width.get(), 10.0);
    QCOMPARE(olds, (std::vector<double>{1.5, 12}));
}

void tst_Prop::setEndsWhenAListenerOfSigCanSetDestroysTheOwner()
{
    RefT<Owner> owner(new Owner);
    int calls = 0;
    owner->width.sigCanSet.connect([&](auto const &) { owner.reset(); });
    owner->width.sigCanSet.connect([&](auto const &) { ++calls; });
    owner->width.sigSet.connect([&](auto const &) { ++calls; });
    owner->width.set(3);
    QVERIFY(!owner);
    QCOMPARE(calls, 0);
}

void tst_Prop::setEndsWhenAListenerOfSigSetDestroysTheOwner()
{
    RefT<Owner> owner(new Owner);
    double old = 0;
    owner->width.sigSet.connect([&](PropT<double>::SigSetData const &data) {
        owner.reset();
        old = *data.old;
    });
    owner->width.set(3);
    QVERIFY(!owner);
    QCOMPARE(old, 1.5);
}

QTEST_APPLESS_MAIN(tst_Prop)

#include "tst_Prop.moc"
