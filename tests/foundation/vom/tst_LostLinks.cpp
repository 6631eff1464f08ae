#include "zrVOMGUI/foundation/vom/MField.h"

#include <QTest>

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;
using Ptrs = std::vector<PtrT<Object>>;

namespace {

RefT<Object> newObject()
{
    return RefT<Object>(new Object(0));
}

} // namespace

/// What a watching link tells when the object that it leads to dies.
class tst_LostLinks : public QObject {
    Q_OBJECT

private slots:
    void init() { object = newObject(); }
    void cleanup() { object.reset(); }

    void singleLinkReadsNullBeforeSigLost();
    void listEntryReadsNullAndStays();
    void listHearsOnceOfAnObjectThatStandsInItTwice();
    void everyFieldHears();
    void eldestLinkHearsFirst();
    void stackObjectIsLostToo();
    void sigLostComesAfterSigDelete();
    void lossIsNoSetting();

    void relinkedFieldHearsOnlyOfItsNewTarget();
    void setToNullAndBackHearsOnce();
    void refusedSettingKeepsTheWatch();
    void clonedFieldHears();
    void fieldWithAStartValueHears();
    void removedEntryIsNotHeardOf();
    void movedEntriesKeepTheirWatch_data();
    void movedEntriesKeepTheirWatch();
    void fieldThatIsGoneHearsNothing();
    void fieldWithoutOwnerHears();
    void selfLinkIsLostWhileItsFieldStands();

    void listenerMaySetTheField();
    void listenerMayReplaceTheEntry();
    void listenerMayRemoveItsField();
    void listenerMayRemoveAnotherFieldThatLost();
    void listenerMayDestroyAFieldThatNoReferenceOwns();
    void fieldThatNoReferenceOwnsOutlivesItsTarget();
    void listenerMayDestroyTheObjectOfItsField();
    void listenerMayDropTheLastReferenceToAnotherTarget();
    void listenerThatThrowsIsReportedAndTheOthersHear();
    void ownedTargetIsLostWhenItsOwnerDies();
    void owningLinkToAStackObjectReadsNull();
    void randomEditsKeepTheWatches_data();
    void randomEditsKeepTheWatches();

private:
    RefT<Object> object;
};

void tst_LostLinks::singleLinkReadsNullBeforeSigLost()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    int calls = 0;
    field.sigLost.connect([&](SigVoidData const &) {
        ++calls;
        QVERIFY(!field.get());
    });
    target.reset();
    QCOMPARE(calls, 1);
}

void tst_LostLinks::listEntryReadsNullAndStays()
{
    RefT<Object> target = newObject();
    const RefT<Object> other = newObject();
    auto &field = addField<MFieldPtr>(*object, "links", Ptrs{other, target, other});
    int calls = 0;
    field.sigLost.connect([&](MFieldPtr::SigLostData const &) {
        ++calls;
        QCOMPARE(field.getNum(), std::size_t(3));
        QVERIFY(!field.get(1));
        QCOMPARE(field.get(0).get(), other.get());
        QCOMPARE(field.get(2).get(), other.get());
    });
    target.reset();
    QCOMPARE(calls, 1);
}

void tst_LostLinks::listHearsOnceOfAnObjectThatStandsInItTwice()
{
    RefT<Object> target = newObject();
    const RefT<Object> other = newObject();
    auto &field = addField<MFieldPtr>(*object, "links", Ptrs{target, other, target, target});
    auto &link = addField<FieldPtr>(*object, "link", target);
    // In between, so that the list's watches don't lie in a row.
    field.replace(4, 0, {target});
    int listCalls = 0, calls = 0;
    field.sigLost.connect([&](auto const &) { ++listCalls; });
    link.sigLost.connect([&](auto const &) { ++calls; });
    target.reset();
    QCOMPARE(listCalls, 1);
    QCOMPARE(calls, 1);
    for (std::size_t i = 0; i < 5; ++i)
        QCOMPARE(bool(field.get(i)), i == 1);
}

void tst_LostLinks::everyFieldHears()
{
    RefT<Object> target = newObject();
    std::vector<RefT<Object>> owners;
    int calls = 0;
    for (int i = 0; i < 100; ++i) {
        owners.push_back(newObject());
        addField<FieldPtr>(*owners.back(), "link", target).sigLost.connect([&](auto const &) {
            ++calls;
        });
        addField<MFieldPtr>(*owners.back(), "links", Ptrs{target})
            .sigLost.connect([&](auto const &) { ++calls; });
    }
    target.reset();
    QCOMPARE(calls, 200);
}

void tst_LostLinks::eldestLinkHearsFirst()
{
    RefT<Object> target = newObject();
    std::string order;
    std::vector<RefT<Object>> owners;
    for (char name : {'a', 'b', 'c', 'd'}) {
        owners.push_back(newObject());
        addField<FieldPtr>(*owners.back(), "link", target)
            .sigLost.connect([&order, name](auto const &) { order += name; });
    }
    target.reset();
    QCOMPARE(order, std::string("abcd"));
}

void tst_LostLinks::stackObjectIsLostToo()
{
    auto &field = addField<FieldPtr>(*object, "link");
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    {
        Object target(0);
        field.set(PtrT<Object>(target));
        QCOMPARE(field.get().get(), &target);
    }
    QCOMPARE(calls, 1);
    QVERIFY(!field.get());
}

void tst_LostLinks::sigLostComesAfterSigDelete()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    std::string steps;
    target->sigDelete.connect([&](auto const &) { steps += field.get() ? "delete " : "?"; });
    field.sigLost.connect([&](auto const &) { steps += "lost"; });
    target.reset();
    QCOMPARE(steps, std::string("delete lost"));
}

void tst_LostLinks::lossIsNoSetting()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    auto &list = addField<MFieldPtr>(*object, "links", Ptrs{target});
    int calls = 0;
    field.sigCanSet.connect([&](auto const &) { ++calls; });
    field.sigSet.connect([&](auto const &) { ++calls; });
    list.sigCanReplace.connect([&](auto const &) { ++calls; });
    list.sigReplace.connect([&](auto const &) { ++calls; });
    target.reset();
    QCOMPARE(calls, 0);
}

void tst_LostLinks::relinkedFieldHearsOnlyOfItsNewTarget()
{
    RefT<Object> first = newObject(), second = newObject();
    auto &field = addField<FieldPtr>(*object, "link", first);
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    field.set(second);
    first.reset();
    QCOMPARE(calls, 0);
    second.reset();
    QCOMPARE(calls, 1);
}

void tst_LostLinks::setToNullAndBackHearsOnce()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    field.set(nullptr);
    field.set(target);
    field.set(target);
    target.reset();
    QCOMPARE(calls, 1);
    target = newObject();
    field.set(target);
    field.set(nullptr);
    target.reset();
    QCOMPARE(calls, 1);
}

void tst_LostLinks::refusedSettingKeepsTheWatch()
{
    RefT<Object> first = newObject(), second = newObject();
    auto &field = addField<FieldPtr>(*object, "link", first);
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    field.sigCanSet.connect([](auto const &) { throw VOM::Error("no"); });
    QVERIFY_EXCEPTION_THROWN(field.set(second), VOM::Error);
    second.reset();
    QCOMPARE(calls, 0);
    first.reset();
    QCOMPARE(calls, 1);
}

void tst_LostLinks::clonedFieldHears()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    auto &list = addField<MFieldPtr>(*object, "links", Ptrs{target});
    Object other(0);
    int calls = 0;
    static_cast<FieldPtr &>(*field.clone(other)).sigLost.connect([&](auto const &) { ++calls; });
    static_cast<MFieldPtr &>(*list.clone(other)).sigLost.connect([&](auto const &) { ++calls; });
    target.reset();
    QCOMPARE(calls, 2);
}

void tst_LostLinks::fieldWithAStartValueHears()
{
    RefT<Object> target = newObject();
    FieldPtr onStack(*object, "link", 0u, target);
    MFieldPtr listOnStack(*object, "links", 0u, {target});
    int calls = 0;
    onStack.sigLost.connect([&](auto const &) { ++calls; });
    listOnStack.sigLost.connect([&](auto const &) { ++calls; });
    target.reset();
    QCOMPARE(calls, 2);
}

void tst_LostLinks::removedEntryIsNotHeardOf()
{
    RefT<Object> target = newObject();
    auto &field = addField<MFieldPtr>(*object, "links", Ptrs{target, target});
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    field.replace(0, 2, {});
    target.reset();
    QCOMPARE(calls, 0);
}

void tst_LostLinks::movedEntriesKeepTheirWatch_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("numRemoved");
    QTest::addColumn<int>("numNew");
    QTest::newRow("by an insertion at the begin") << 0 << 0 << 1;
    QTest::newRow("by an insertion that makes the list grow") << 1 << 0 << 1000;
    QTest::newRow("by a removal at the begin") << 0 << 2 << 0;
    QTest::newRow("by more for fewer") << 1 << 1 << 3;
    QTest::newRow("by fewer for more") << 0 << 3 << 1;
    QTest::newRow("by an exchange of its neighbour") << 2 << 1 << 1;
}

void tst_LostLinks::movedEntriesKeepTheirWatch()
{
    QFETCH(int, index);
    QFETCH(int, numRemoved);
    QFETCH(int, numNew);
    RefT<Object> target = newObject(), gone = newObject(), fresh = newObject();
    auto &field = addField<MFieldPtr>(*object, "links", Ptrs{gone, gone, gone, target, target});
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    field.replace(std::size_t(index), std::size_t(numRemoved), Ptrs(std::size_t(numNew), fresh));
    target.reset();
    QCOMPARE(calls, 1);
    QVERIFY(!field.get(field.getNum() - 1));
    QVERIFY(!field.get(field.getNum() - 2));
    gone.reset();
    QCOMPARE(calls, numRemoved == 3 ? 1 : 2);
    fresh.reset();
    QCOMPARE(calls, (numRemoved == 3 ? 1 : 2) + (numNew > 0 ? 1 : 0));
}

void tst_LostLinks::fieldThatIsGoneHearsNothing()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    auto &list = addField<MFieldPtr>(*object, "links", Ptrs{target, target});
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    list.sigLost.connect([&](auto const &) { ++calls; });
    removeField(*object, field);
    object.reset();
    target.reset();
    QCOMPARE(calls, 0);
}

void tst_LostLinks::fieldWithoutOwnerHears()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    const RefT<Field> kept(field);
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    removeField(*object, field);
    target.reset();
    QCOMPARE(calls, 1);
}

void tst_LostLinks::selfLinkIsLostWhileItsFieldStands()
{
    RefT<Object> self = newObject();
    auto &field = addField<FieldPtr>(*self, "self", self);
    auto &list = addField<MFieldPtr>(*self, "selves", Ptrs{self, self});
    int calls = 0;
    field.sigLost.connect([&](auto const &) { ++calls; });
    list.sigLost.connect([&](auto const &) { ++calls; });
    self.reset();
    // The fields of a dying object go after its links were lost.
    QCOMPARE(calls, 2);
}

void tst_LostLinks::listenerMaySetTheField()
{
    RefT<Object> target = newObject();
    const RefT<Object> next = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    field.sigLost.connect([&](auto const &) { field.set(next); });
    target.reset();
    QCOMPARE(field.get().get(), next.get());
}

void tst_LostLinks::listenerMayReplaceTheEntry()
{
    RefT<Object> target = newObject();
    const RefT<Object> other = newObject();
    auto &field = addField<MFieldPtr>(*object, "links", Ptrs{target, other, target});
    int calls = 0;
    field.sigLost.connect([&](auto const &) {
        ++calls;
        for (std::size_t i = field.getNum(); i-- > 0;)
            if (!field.get(i))
                field.replace(i, 1, {});
    });
    target.reset();
    QCOMPARE(calls, 1);
    QCOMPARE(field.getNum(), std::size_t(1));
    QCOMPARE(field.get(0).get(), other.get());
}

void tst_LostLinks::listenerMayRemoveItsField()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    const PtrT<Field> watcher(field);
    field.sigLost.connect([&](auto const &) { removeField(*object, field); });
    target.reset();
    QVERIFY(!watcher);
}

void tst_LostLinks::listenerMayRemoveAnotherFieldThatLost()
{
    RefT<Object> target = newObject();
    auto &first = addField<FieldPtr>(*object, "a", target);
    auto &second = addField<FieldPtr>(*object, "b", target);
    std::string calls;
    first.sigLost.connect([&](auto const &) {
        calls += 'a';
        removeField(*object, second);
    });
    second.sigLost.connect([&](auto const &) { calls += 'b'; });
    target.reset();
    QCOMPARE(calls, std::string("a"));
    QCOMPARE(object->getNumFields(), std::size_t(1));
}

void tst_LostLinks::listenerMayDestroyAFieldThatNoReferenceOwns()
{
    RefT<Object> target = newObject();
    auto &first = addField<FieldPtr>(*object, "a", target);
    auto second = std::make_unique<FieldPtr>(*object, "b", 0u, target);
    int calls = 0;
    first.sigLost.connect([&](auto const &) { second.reset(); });
    second->sigLost.connect([&](auto const &) { ++calls; });
    FieldPtr onStack(*object, "c", 0u, target);
    onStack.sigLost.connect([&](auto const &) { ++calls; });
    target.reset();
    QVERIFY(!second);
    QCOMPARE(calls, 1);
}

void tst_LostLinks::fieldThatNoReferenceOwnsOutlivesItsTarget()
{
    RefT<Object> target = newObject();
    const auto field = std::make_unique<FieldPtr>(*object, "a", 0u, target);
    int calls = 0;
    field->sigLost.connect([&](auto const &) { ++calls; });
    target.reset();
    QCOMPARE(calls, 1);
    QVERIFY(!field->get());
}

void tst_LostLinks::listenerMayDestroyTheObjectOfItsField()
{
    RefT<Object> target = newObject();
    auto &field = addField<FieldPtr>(*object, "link", target);
    field.sigLost.connect([&](auto const &) { object.reset(); });
    target.reset();
    QVERIFY(!object);
}

void tst_LostLinks::listenerMayDropTheLastReferenceToAnotherTarget()
{
    RefT<Object> first = newObject(), second = newObject();
    auto &toFirst = addField<FieldPtr>(*object, "a", first);
    auto &toSecond = addField<FieldPtr>(*object, "b", second);
    std::string calls;
    toFirst.sigLost.connect([&](auto const &) {
        calls += 'a';
        second.reset();
        calls += '.';
    });
    toSecond.sigLost.connect([&](auto const &) { calls += 'b'; });
    first.reset();
    QCOMPARE(calls, std::string("ab."));
}

void tst_LostLinks::listenerThatThrowsIsReportedAndTheOthersHear()
{
    std::string reports;
    const ErrorSink before = setErrorSink(
        [&](std::string const &where, std::string const &what) { reports += where + ": " + what; });
    RefT<Object> target = newObject();
    auto &first = addField<FieldPtr>(*object, "a", target);
    auto &second = addField<MFieldPtr>(*object, "b", Ptrs{target});
    int calls = 0;
    first.sigLost.connect([](auto const &) { throw std::runtime_error("listener"); });
    first.sigLost.connect([&](auto const &) { ++calls; });
    second.sigLost.connect([&](auto const &) { ++calls; });
    target.reset();
    setErrorSink(before);
    QCOMPARE(calls, 2);
    QCOMPARE(reports, std::string("ZR::VOM::Object::sigLost: listener"));
}

void tst_LostLinks::ownedTargetIsLostWhenItsOwnerDies()
{
    RefT<Object> owner = newObject();
    auto &owning = addField<FieldRef>(*owner, "part", newObject());
    auto &watching = addField<FieldPtr>(*object, "link", owning.get());
    int calls = 0;
    watching.sigLost.connect([&](auto const &) { ++calls; });
    owner.reset();
    QCOMPARE(calls, 1);
    QVERIFY(!watching.get());
}

void tst_LostLinks::owningLinkToAStackObjectReadsNull()
{
    auto &field = addField<FieldRef>(*object, "part");
    auto &list = addField<MFieldRef>(*object, "parts");
    {
        Object target(0);
        field.set(RefT<Object>(target));
        list.replace(0, 0, {RefT<Object>(target)});
        QCOMPARE(field.get().get(), &target);
    }
    QVERIFY(!field.get());
    QCOMPARE(list.getNum(), std::size_t(1));
    QVERIFY(!list.get(0));
}

void tst_LostLinks::randomEditsKeepTheWatches_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// Random edits of three lists and deaths of eight targets: each list hears of a death exactly if
// the target stands in it.
void tst_LostLinks::randomEditsKeepTheWatches()
{
    QFETCH(unsigned, seed);
    std::mt19937 gen(seed);
    const auto below = [&](std::size_t n) { return gen() % n; };
    RefT<Object> targets[8];
    MFieldPtr *lists[3];
    int heard[3] = {};
    for (int i = 0; i < 3; ++i) {
        lists[i] = &addField<MFieldPtr>(*object, "links");
        lists[i]->sigLost.connect([&heard, i](auto const &) { ++heard[i]; });
    }
    for (int step = 0; step < 3000; ++step) {
        RefT<Object> &target = targets[below(8)];
        if (below(4) == 0 && target) {
            int expected[3];
            for (int i = 0; i < 3; ++i) {
                const Ptrs &all = lists[i]->getAll();
                const bool isIn = std::any_of(all.begin(), all.end(),
                                              [&](auto const &entry) { return entry == target; });
                expected[i] = heard[i] + (isIn ? 1 : 0);
            }
            target.reset();
            for (int i = 0; i < 3; ++i)
                QCOMPARE(heard[i], expected[i]);
        } else {
            if (!target)
                target = newObject();
            MFieldPtr &list = *lists[below(3)];
            const std::size_t index = below(list.getNum() + 1);
            const std::size_t num = below(std::min<std::size_t>(list.getNum() - index, 5) + 1);
            list.replace(index, num, Ptrs(below(5), target));
        }
    }
}

QTEST_APPLESS_MAIN(tst_LostLinks)

#include "tst_LostLinks.moc"
