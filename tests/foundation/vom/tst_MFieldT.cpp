#include "zrVOMGUI/foundation/vom/MField.h"

#include <QTest>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;
using Refs = std::vector<RefT<Object>>;
using Ptrs = std::vector<PtrT<Object>>;

namespace {

static_assert(std::is_base_of_v<MField, MFieldPtr> && std::is_base_of_v<Field, MField>);
static_assert(std::is_base_of_v<MFieldBaseT<MFieldRef::Traits>, MFieldRef>);
static_assert(std::is_same_v<MFieldPtr::Value, PtrT<Object>>);
static_assert(std::is_same_v<MFieldRef::Value, RefT<Object>>);
static_assert(std::is_same_v<MFieldRef::Values, Refs>);
static_assert(std::is_same_v<MFieldRef,
                             MFieldT<FieldTypeT<12, RefT<Object>, RefT<Object> &,
                                                RefT<Object> const &, std::vector<RefT<Object>>>>>);
static_assert(std::is_constructible_v<MFieldRef, Object &, char const *, unsigned, Refs const &>);
static_assert(std::is_constructible_v<MFieldRef, Object &, MFieldRef const &>);
static_assert(std::is_same_v<decltype(MFieldPtr::sigLost), SignalT<MFieldPtr::SigLostData>>);
static_assert(std::is_same_v<decltype(MFieldRef::sigLost), SignalT<MFieldRef::SigLostData>>);
static_assert(std::is_base_of_v<SigVoidData, MFieldRef::SigReplaceData>);
static_assert(std::is_base_of_v<SigVoidData, MFieldRef::SigLostData>);
static_assert(std::is_same_v<decltype(MFieldRef::SigReplaceData::index), std::size_t>);
static_assert(std::is_same_v<decltype(MFieldRef::SigReplaceData::numOld), std::size_t>);
static_assert(std::is_same_v<decltype(MFieldRef::SigReplaceData::old), RefT<Object> const *>);
static_assert(std::is_same_v<decltype(MFieldRef::SigReplaceData::end), std::size_t>);

/// Objects that are called by letters.
class Letters {
public:
    template <class Value>
    std::vector<Value> list(std::string const &names)
    {
        std::vector<Value> result;
        for (char name : names) {
            if (name == '-') {
                result.emplace_back();
                continue;
            }
            RefT<Object> &object = objects[name - 'a'];
            if (!object)
                object = RefT<Object>(new Object(0));
            result.emplace_back(object);
        }
        return result;
    }

    template <class Value>
    std::string names(Value const *values, std::size_t num) const
    {
        std::string result;
        for (std::size_t i = 0; i < num; ++i) {
            char name = '-';
            for (int letter = 0; letter < 26; ++letter)
                if (values[i] && objects[letter].get() == values[i].get())
                    name = char('a' + letter);
            result += name;
        }
        return result;
    }

    template <class ListField>
    std::string names(ListField const &field) const
    {
        return names(field.getAll().data(), field.getNum());
    }

private:
    RefT<Object> objects[26];
};

} // namespace

class tst_MFieldT : public QObject {
    Q_OBJECT

private slots:
    void listStartsEmpty();
    void listStartsWithItsStartValues();
    void getRefusesAPositionPastTheEnd();

    void replaceTellsEveryChange_data();
    void replaceTellsEveryChange();
    void replaceRefusesARangeOutsideTheList_data();
    void replaceRefusesARangeOutsideTheList();

    void canReplaceAsksTheListeners();
    void sigCanReplaceComesBefore();
    void refusalLeavesTheList();
    void rangeIsCheckedAgainAfterTheListeners();
    void canReplacePassesOnWhatIsNoRefusal();

    void replaceInsideSigReplaceIsTheLastWord();
    void removedValuesAreReadableDuringSigReplace();
    void ownedObjectsGoAfterSigReplace();
    void fieldRemovedInSigCanReplaceEndsQuietly();
    void fieldRemovedInSigReplaceEndsQuietly();
    void valuesOfTheListItselfMayBePutIn();

    void owningListKeepsItsObjectsAlive();
    void watchingListDoesNot();
    void oneObjectMayStandInTheListTwice();
    void randomReplacementsKeepTheOrder_data();
    void randomReplacementsKeepTheOrder();

private:
    template <class ListField>
    void checkReplace();
};

void tst_MFieldT::listStartsEmpty()
{
    Object object(0);
    QCOMPARE(addField<MFieldPtr>(object, "x").getNum(), std::size_t(0));
    QCOMPARE(addField<MFieldRef>(object, "x").getNum(), std::size_t(0));
}

void tst_MFieldT::listStartsWithItsStartValues()
{
    Letters letters;
    Object object(0);
    const MFieldRef refs(object, "refs", 3u, letters.list<RefT<Object>>("ab-a"));
    QCOMPARE(letters.names(refs), std::string("ab-a"));
    QCOMPARE(refs.getFlags(), 3u);
    const MFieldPtr ptrs(object, "ptrs", 0u, letters.list<PtrT<Object>>("b-"));
    QCOMPARE(letters.names(ptrs), std::string("b-"));
}

void tst_MFieldT::getRefusesAPositionPastTheEnd()
{
    Letters letters;
    Object object(0);
    const MFieldRef field(object, "x", 0u, letters.list<RefT<Object>>("ab"));
    QVERIFY(field.get(1));
    QVERIFY_EXCEPTION_THROWN(field.get(2), std::out_of_range);
    QVERIFY_EXCEPTION_THROWN(field.get(std::size_t(-1)), std::out_of_range);
}

void tst_MFieldT::replaceTellsEveryChange_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("numRemoved");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("told"); // index numOld old end
    const auto row = [](char const *name, char const *before, int index, int numRemoved,
                        char const *values, char const *after, char const *told) {
        QTest::newRow(name) << before << index << numRemoved << values << after << told;
    };
    row("insertion into an empty list", "", 0, 0, "ab", "ab", "0 0  2");
    row("insertion at the begin", "ab", 0, 0, "xy", "xyab", "0 0  2");
    row("insertion between", "ab", 1, 0, "x", "axb", "1 0  2");
    row("insertion at the end", "ab", 2, 0, "xy", "abxy", "2 0  4");
    row("removal at the begin", "abc", 0, 2, "", "c", "0 2 ab 0");
    row("removal between", "abc", 1, 1, "", "ac", "1 1 b 1");
    row("removal at the end", "abc", 1, 2, "", "a", "1 2 bc 1");
    row("removal of all", "abc", 0, 3, "", "", "0 3 abc 0");
    row("as many for as many", "abcd", 1, 2, "xy", "axyd", "1 2 bc 3");
    row("more for fewer", "abcd", 1, 1, "xyz", "axyzcd", "1 1 b 4");
    row("fewer for more", "abcd", 0, 3, "x", "xd", "0 3 abc 1");
    row("all for all", "abc", 0, 3, "xy", "xy", "0 3 abc 2");
    row("more at the end", "abc", 2, 1, "xyz", "abxyz", "2 1 c 5");
    row("nothing for nothing", "ab", 1, 0, "", "ab", "1 0  1");
    row("nothing for nothing at the end", "ab", 2, 0, "", "ab", "2 0  2");
    row("nothing for nothing in an empty list", "", 0, 0, "", "", "0 0  0");
    row("null among the new", "ab", 1, 1, "-x", "a-x", "1 1 b 3");
    row("null among the old", "a-b", 0, 2, "x", "xb", "0 2 a- 1");
    row("the same in its place", "abc", 1, 1, "b", "abc", "1 1 b 2");
    row("two exchanged", "ab", 0, 2, "ba", "ba", "0 2 ab 2");
    row("object twice", "ab", 2, 0, "a", "aba", "2 0  3");
}

template <class ListField>
void tst_MFieldT::checkReplace()
{
    QFETCH(QString, before);
    QFETCH(int, index);
    QFETCH(int, numRemoved);
    QFETCH(QString, values);
    QFETCH(QString, after);
    using Value = typename ListField::Value;
    Letters letters;
    Object object(0);
    auto &field = addField<ListField>(object, "x", letters.list<Value>(before.toStdString()));
    std::string told;
    int calls = 0;
    field.sigReplace.connect([&](typename ListField::SigReplaceData const &data) {
        ++calls;
        told = std::to_string(data.index) + ' ' + std::to_string(data.numOld) + ' ' +
               letters.names(data.old, data.numOld) + ' ' + std::to_string(data.end);
        QCOMPARE(letters.names(field), after.toStdString());
    });
    const auto newValues = letters.list<Value>(values.toStdString());
    QVERIFY(field.canReplace(std::size_t(index), std::size_t(numRemoved), newValues));
    QCOMPARE(calls, 0);
    field.replace(std::size_t(index), std::size_t(numRemoved), newValues);
    QCOMPARE(calls, 1);
    QCOMPARE(letters.names(field), after.toStdString());
    QTEST(QString::fromStdString(told), "told");
}

void tst_MFieldT::replaceTellsEveryChange()
{
    checkReplace<MFieldRef>();
    checkReplace<MFieldPtr>();
}

void tst_MFieldT::replaceRefusesARangeOutsideTheList_data()
{
    QTest::addColumn<quint64>("index");
    QTest::addColumn<quint64>("numRemoved");
    const quint64 huge = ~quint64(0);
    QTest::newRow("position past the end") << quint64(3) << quint64(0);
    QTest::newRow("one too many at the end") << quint64(2) << quint64(1);
    QTest::newRow("one too many from the begin") << quint64(0) << quint64(3);
    QTest::newRow("huge position") << huge << quint64(0);
    QTest::newRow("huge number") << quint64(0) << huge;
    QTest::newRow("sum that runs over") << quint64(1) << huge;
    QTest::newRow("both huge") << huge << huge;
}

void tst_MFieldT::replaceRefusesARangeOutsideTheList()
{
    QFETCH(quint64, index);
    QFETCH(quint64, numRemoved);
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("ab"));
    int calls = 0;
    field.sigCanReplace.connect([&](auto const &) { ++calls; });
    field.sigReplace.connect([&](auto const &) { ++calls; });
    for (char const *values : {"", "x"}) {
        const auto newValues = letters.list<RefT<Object>>(values);
        QVERIFY(!field.canReplace(index, numRemoved, newValues));
        QVERIFY_EXCEPTION_THROWN(field.replace(index, numRemoved, newValues), ErrorField);
    }
    QCOMPARE(letters.names(field), std::string("ab"));
    QCOMPARE(calls, 0);
}

void tst_MFieldT::canReplaceAsksTheListeners()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("ab"));
    std::string asked;
    field.sigCanReplace.connect([&](MFieldRef::SigCanReplaceData const &data) {
        asked += std::to_string(data.index) + ' ' + std::to_string(data.numRemoved) + ' ' +
                 letters.names(data.values->data(), data.values->size()) + '|';
        if (data.values->size() > 1)
            throw VOM::Error("one by one");
    });
    QVERIFY(field.canReplace(1, 1, letters.list<RefT<Object>>("x")));
    QVERIFY(!field.canReplace(0, 0, letters.list<RefT<Object>>("xy")));
    QCOMPARE(asked, std::string("1 1 x|0 0 xy|"));
    QCOMPARE(letters.names(field), std::string("ab"));
}

void tst_MFieldT::sigCanReplaceComesBefore()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldPtr>(object, "x", letters.list<PtrT<Object>>("ab"));
    std::string steps;
    field.sigCanReplace.connect([&](auto const &) { steps += "can " + letters.names(field); });
    field.sigReplace.connect([&](auto const &) { steps += " replace " + letters.names(field); });
    field.replace(0, 1, letters.list<PtrT<Object>>("xy"));
    QCOMPARE(steps, std::string("can ab replace xyb"));
}

void tst_MFieldT::refusalLeavesTheList()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("ab"));
    int calls = 0;
    field.sigCanReplace.connect([](auto const &) { throw ZR::Error("no"); });
    field.sigReplace.connect([&](auto const &) { ++calls; });
    QVERIFY_EXCEPTION_THROWN(field.replace(0, 2, {}), ZR::Error);
    QCOMPARE(letters.names(field), std::string("ab"));
    QCOMPARE(calls, 0);
}

void tst_MFieldT::rangeIsCheckedAgainAfterTheListeners()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("abc"));
    bool isInner = false;
    field.sigCanReplace.connect([&](auto const &) {
        if (!std::exchange(isInner, true))
            field.replace(0, 2, {});
    });
    QVERIFY_EXCEPTION_THROWN(field.replace(1, 2, letters.list<RefT<Object>>("x")), ErrorField);
    QCOMPARE(letters.names(field), std::string("c"));
}

void tst_MFieldT::canReplacePassesOnWhatIsNoRefusal()
{
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x");
    field.sigCanReplace.connect([](auto const &) { throw std::runtime_error("broken listener"); });
    QVERIFY_EXCEPTION_THROWN(field.canReplace(0, 0, {}), std::runtime_error);
}

void tst_MFieldT::replaceInsideSigReplaceIsTheLastWord()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("abc"));
    std::string olds;
    field.sigReplace.connect([&](MFieldRef::SigReplaceData const &data) {
        if (field.getNum() > 1)
            field.replace(0, field.getNum() - 1, {});
        olds += letters.names(data.old, data.numOld) + '|';
    });
    field.replace(0, 1, letters.list<RefT<Object>>("xy"));
    QCOMPARE(letters.names(field), std::string("c"));
    QCOMPARE(olds, std::string("xyb|a|"));
}

void tst_MFieldT::removedValuesAreReadableDuringSigReplace()
{
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", Refs{RefT<Object>(new Object(7))});
    unsigned flags = 0;
    field.sigReplace.connect(
        [&](MFieldRef::SigReplaceData const &data) { flags = data.old[0]->getFlags(); });
    field.replace(0, 1, {});
    QCOMPARE(flags, 7u);
}

void tst_MFieldT::ownedObjectsGoAfterSigReplace()
{
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", Refs{RefT<Object>(new Object(0))});
    const PtrT<Object> target(field.get(0));
    bool wasThere = false;
    field.sigReplace.connect([&](auto const &) { wasThere = target != nullptr; });
    field.replace(0, 1, {});
    QVERIFY(wasThere);
    QVERIFY(!target);
}

void tst_MFieldT::fieldRemovedInSigCanReplaceEndsQuietly()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("ab"));
    const PtrT<Field> watcher(field);
    int calls = 0;
    field.sigCanReplace.connect([&](auto const &) { removeField(object, field); });
    field.sigReplace.connect([&](auto const &) { ++calls; });
    field.replace(0, 1, {});
    QVERIFY(!watcher);
    QCOMPARE(calls, 0);
}

void tst_MFieldT::fieldRemovedInSigReplaceEndsQuietly()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldPtr>(object, "x", letters.list<PtrT<Object>>("ab"));
    const PtrT<Field> watcher(field);
    std::string olds;
    field.sigReplace.connect([&](MFieldPtr::SigReplaceData const &data) {
        removeField(object, field);
        olds += letters.names(data.old, data.numOld);
    });
    field.sigReplace.connect([&](auto const &) { olds += "second listener"; });
    field.replace(0, 2, letters.list<PtrT<Object>>("x"));
    QVERIFY(!watcher);
    QCOMPARE(olds, std::string("ab"));
}

void tst_MFieldT::valuesOfTheListItselfMayBePutIn()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x", letters.list<RefT<Object>>("abc"));
    field.replace(0, 3, field.getAll());
    QCOMPARE(letters.names(field), std::string("abc"));
    field.replace(3, 0, field.getAll());
    QCOMPARE(letters.names(field), std::string("abcabc"));
}

void tst_MFieldT::owningListKeepsItsObjectsAlive()
{
    Object object(0);
    auto &field = addField<MFieldRef>(object, "x");
    RefT<Object> target(new Object(0));
    const PtrT<Object> watcher(target);
    field.replace(0, 0, {target, target});
    target.reset();
    field.replace(0, 1, {});
    QVERIFY(watcher);
    field.replace(0, 1, {});
    QVERIFY(!watcher);
}

void tst_MFieldT::watchingListDoesNot()
{
    Object object(0);
    auto &field = addField<MFieldPtr>(object, "x");
    RefT<Object> target(new Object(0));
    field.replace(0, 0, {target});
    target.reset();
    QCOMPARE(field.getNum(), std::size_t(1));
    QVERIFY(!field.get(0));
}

void tst_MFieldT::oneObjectMayStandInTheListTwice()
{
    Letters letters;
    Object object(0);
    auto &field = addField<MFieldPtr>(object, "x", letters.list<PtrT<Object>>("aba"));
    field.replace(0, 1, {});
    QCOMPARE(letters.names(field), std::string("ba"));
}

void tst_MFieldT::randomReplacementsKeepTheOrder_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

// Both kinds of lists beside a plain text that is edited in the same way.
void tst_MFieldT::randomReplacementsKeepTheOrder()
{
    QFETCH(unsigned, seed);
    std::mt19937 gen(seed);
    const auto below = [&](std::size_t n) { return gen() % n; };
    Letters letters;
    Object object(0);
    auto &refs = addField<MFieldRef>(object, "refs");
    auto &ptrs = addField<MFieldPtr>(object, "ptrs");
    std::string expected;
    for (int step = 0; step < 1000; ++step) {
        const std::size_t index = below(expected.size() + 1);
        const std::size_t numRemoved = below(std::min<std::size_t>(expected.size() - index, 6) + 1);
        std::string values(below(6), '-');
        for (char &value : values)
            value = below(10) == 0 ? '-' : char('a' + below(26));
        expected.replace(index, numRemoved, values);
        refs.replace(index, numRemoved, letters.list<RefT<Object>>(values));
        ptrs.replace(index, numRemoved, letters.list<PtrT<Object>>(values));
        QCOMPARE(letters.names(refs), expected);
        QCOMPARE(letters.names(ptrs), expected);
    }
}

QTEST_APPLESS_MAIN(tst_MFieldT)

#include "tst_MFieldT.moc"
