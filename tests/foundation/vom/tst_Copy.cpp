#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/foundation/vom/MField.h"

#include <QTest>

#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;
using Refs = std::vector<RefT<Object>>;
using Ptrs = std::vector<PtrT<Object>>;

namespace {

/// An object of the tests' model: a name, and links of all four kinds.
class Item : public Object {
public:
    explicit Item(char const *name)
        : Object(0)
    {
        addField<FieldString>(*this, "name", name);
        addField<FieldPtr>(*this, "seen");
        addField<FieldRef>(*this, "part");
        addField<MFieldPtr>(*this, "allSeen");
        addField<MFieldRef>(*this, "parts");
    }
    Item(Item const &other) = default;

    RefT<Object> clone() override
    {
        return cloning ? cloning(*this) : RefT<Object>(new Item(*this));
    }
    bool isSharable() const override { return sharable; }

    FieldString &name() const { return static_cast<FieldString &>(*getField(0)); }
    FieldPtr &seen() const { return static_cast<FieldPtr &>(*getField(1)); }
    FieldRef &part() const { return static_cast<FieldRef &>(*getField(2)); }
    MFieldPtr &allSeen() const { return static_cast<MFieldPtr &>(*getField(3)); }
    MFieldRef &parts() const { return static_cast<MFieldRef &>(*getField(4)); }

    bool sharable = false;
    std::function<RefT<Object>(Item &)> cloning;
};

RefT<Item> newItem(char const *name)
{
    return RefT<Item>(new Item(name));
}

Item &item(Ptr const &object)
{
    return *cast<Item>(object);
}

/// "a(seen part [allSeen] [parts])" for an item, and the same for what it owns, at the first time.
class Dump {
public:
    std::string operator()(Ptr const &object)
    {
        if (!object)
            return "-";
        Item &dumped = item(object);
        if (++numDumped[&dumped] > 1)
            return nameOf(object);
        std::string text = nameOf(object) + '(' + nameOf(dumped.seen().get()) + ' ' +
                           (*this)(dumped.part().get()) + " [";
        for (PtrT<Object> const &seen : dumped.allSeen().getAll())
            text += nameOf(seen) + ' ';
        text += "] [";
        for (RefT<Object> const &part : dumped.parts().getAll())
            text += (*this)(part) + ' ';
        return text + "])";
    }

    static std::string nameOf(Ptr const &object)
    {
        return object ? item(object).name().get() : "-";
    }

private:
    std::map<Object *, int> numDumped;
};

std::string dump(Ptr const &object)
{
    return Dump()(object);
}

/// Copies, and gives the copies' names a stroke.
Refs copyOf(Refs const &originals)
{
    Copy::Context context;
    Refs copies = context.copy(originals);
    std::vector<RefT<Object>> open(copies);
    std::map<Object *, bool> seen;
    while (!open.empty()) {
        const RefT<Object> next = open.back();
        open.pop_back();
        if (!next || item(next).sharable || std::exchange(seen[next.get()], true))
            continue;
        item(next).name().set(item(next).name().get() + '\'');
        open.push_back(item(next).part().get());
        for (RefT<Object> const &part : item(next).parts().getAll())
            open.push_back(part);
    }
    return copies;
}

static_assert(std::is_default_constructible_v<Copy::Context>);
static_assert(!std::is_copy_constructible_v<Copy::Context>);

} // namespace

class tst_Copy : public QObject {
    Q_OBJECT

private slots:
    void nothingCopiesAsNothing();
    void nullCopiesAsNull();
    void copiesStandInTheOrderOfTheOriginals();
    void plainValuesAreCopied();
    void copyIsOfTheSameClass();

    void owningLinksAreFollowed();
    void nullLinksStayNull();
    void watchingLinkOutsideTheSetPointsAtTheOriginal();
    void watchingLinkInsideTheSetPointsAtTheCopy();
    void watchingLinkIsNotFollowed();
    void watchingLinksBetweenCopiedRootsPointAtTheCopies();
    void objectOwnedTwiceIsCopiedOnce();
    void objectGivenTwiceIsCopiedOnce();
    void ownedObjectThatIsGivenTooIsCopiedOnce();
    void cycleOfOwnersIsCopiedAsItIs();
    void objectThatOwnsItselfIsCopiedAsItIs();
    void opaqueFieldsAreCopiedByTheirClone();

    void sharableObjectIsShared();
    void sharableRootIsShared();
    void whatASharableObjectOwnsIsNotCopied();

    void secondCallGivesTheSameCopies();
    void anotherContextGivesOtherCopies();
    void longChainIsCopiedWithoutDeepRecursion();
    void wideListIsCopied();

    void originalsStayAsTheyAre();
    void copiesOutliveTheContext();
    void stackObjectIsCopied();
    void placeOfADeadStackObjectIsNotMistakenForIt();
    void exceptionFromACloneForgetsTheRun();
    void nullFromACloneCopiesAsNull();
};

void tst_Copy::nothingCopiesAsNothing()
{
    QVERIFY(Copy::Context().copy({}).empty());
}

void tst_Copy::nullCopiesAsNull()
{
    const RefT<Item> a = newItem("a");
    const Refs copies = copyOf({nullptr, a, nullptr});
    QCOMPARE(copies.size(), std::size_t(3));
    QVERIFY(!copies[0]);
    QCOMPARE(dump(copies[1]), std::string("a'(- - [] [])"));
    QVERIFY(!copies[2]);
}

void tst_Copy::copiesStandInTheOrderOfTheOriginals()
{
    const RefT<Item> a = newItem("a"), b = newItem("b"), c = newItem("c");
    std::string names;
    for (RefT<Object> const &copy : copyOf({b, c, a}))
        names += Dump::nameOf(copy);
    QCOMPARE(names, std::string("b'c'a'"));
}

void tst_Copy::plainValuesAreCopied()
{
    Object original(5);
    addField<FieldInt>(original, "int", -7);
    addField<FieldReal>(original, "real", 0.1);
    addField<FieldString>(original, "string", "text");
    const RefT<Object> copy = Copy::Context().copy({RefT<Object>(original)}).at(0);
    QVERIFY(copy.get() != &original);
    QCOMPARE(copy->getFlags(), 5u);
    QCOMPARE(static_cast<FieldInt &>(*copy->getField(0)).get(), -7);
    QCOMPARE(static_cast<FieldReal &>(*copy->getField(1)).get(), 0.1);
    QCOMPARE(static_cast<FieldString &>(*copy->getField(2)).get(), std::string("text"));
}

void tst_Copy::copyIsOfTheSameClass()
{
    const RefT<Item> a = newItem("a");
    QVERIFY(cast<Item>(Copy::Context().copy({a}).at(0)));
}

void tst_Copy::owningLinksAreFollowed()
{
    const RefT<Item> a = newItem("a"), b = newItem("b"), c = newItem("c"), d = newItem("d");
    a->part().set(b);
    a->parts().replace(0, 0, {c});
    c->part().set(d);
    QCOMPARE(dump(copyOf({a})[0]),
             std::string("a'(- b'(- - [] []) [] [c'(- d'(- - [] []) [] []) ])"));
}

void tst_Copy::nullLinksStayNull()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->parts().replace(0, 0, {nullptr, b, nullptr});
    a->allSeen().replace(0, 0, {nullptr, b});
    QCOMPARE(dump(copyOf({a})[0]), std::string("a'(- - [- b' ] [- b'(- - [] []) - ])"));
}

void tst_Copy::watchingLinkOutsideTheSetPointsAtTheOriginal()
{
    const RefT<Item> a = newItem("a"), outside = newItem("outside");
    a->seen().set(outside);
    a->allSeen().replace(0, 0, {outside, outside});
    QCOMPARE(dump(copyOf({a})[0]), std::string("a'(outside - [outside outside ] [])"));
}

void tst_Copy::watchingLinkInsideTheSetPointsAtTheCopy()
{
    const RefT<Item> a = newItem("a"), b = newItem("b"), c = newItem("c");
    a->parts().replace(0, 0, {b, c});
    a->seen().set(b);
    b->allSeen().replace(0, 0, {a, b, c});
    c->seen().set(a);
    QCOMPARE(dump(copyOf({a})[0]),
             std::string("a'(b' - [] [b'(- - [a' b' c' ] []) c'(a' - [] []) ])"));
}

void tst_Copy::watchingLinkIsNotFollowed()
{
    const RefT<Item> a = newItem("a"), outside = newItem("outside");
    a->seen().set(outside);
    int numClones = 0;
    outside->cloning = [&](Item &cloned) {
        ++numClones;
        return RefT<Object>(new Item(cloned));
    };
    copyOf({a});
    QCOMPARE(numClones, 0);
}

void tst_Copy::watchingLinksBetweenCopiedRootsPointAtTheCopies()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->seen().set(b);
    b->seen().set(a);
    const Refs copies = copyOf({a, b});
    QCOMPARE(dump(copies[0]), std::string("a'(b' - [] [])"));
    QCOMPARE(dump(copies[1]), std::string("b'(a' - [] [])"));
    QCOMPARE(item(copies[0]).seen().get().get(), copies[1].get());
}

void tst_Copy::objectOwnedTwiceIsCopiedOnce()
{
    const RefT<Item> a = newItem("a"), b = newItem("b"), shared = newItem("s");
    a->part().set(shared);
    a->parts().replace(0, 0, {shared, b, shared});
    b->part().set(shared);
    const RefT<Object> copy = copyOf({a})[0];
    QCOMPARE(dump(copy), std::string("a'(- s'(- - [] []) [] [s' b'(- s' [] []) s' ])"));
    Object *const sharedCopy = item(copy).part().get().get();
    QCOMPARE(item(copy).parts().get(0).get(), sharedCopy);
    QCOMPARE(item(copy).parts().get(2).get(), sharedCopy);
    QCOMPARE(item(item(copy).parts().get(1)).part().get().get(), sharedCopy);
}

void tst_Copy::objectGivenTwiceIsCopiedOnce()
{
    const RefT<Item> a = newItem("a");
    const Refs copies = copyOf({a, a});
    QVERIFY(copies[0] != RefT<Object>(a));
    QCOMPARE(copies[0].get(), copies[1].get());
}

void tst_Copy::ownedObjectThatIsGivenTooIsCopiedOnce()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->part().set(b);
    const Refs copies = copyOf({b, a});
    QCOMPARE(item(copies[1]).part().get().get(), copies[0].get());
}

void tst_Copy::cycleOfOwnersIsCopiedAsItIs()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->part().set(b);
    b->parts().replace(0, 0, {a});
    const RefT<Object> copy = copyOf({a})[0];
    QCOMPARE(dump(copy), std::string("a'(- b'(- - [] [a' ]) [] [])"));
    QCOMPARE(item(item(copy).part().get()).parts().get(0).get(), copy.get());
    // Cycles of owners don't end by themselves.
    a->part().set(nullptr);
    item(copy).part().set(nullptr);
}

void tst_Copy::objectThatOwnsItselfIsCopiedAsItIs()
{
    const RefT<Item> a = newItem("a");
    a->part().set(a);
    const RefT<Object> copy = copyOf({a})[0];
    QCOMPARE(item(copy).part().get().get(), copy.get());
    a->part().set(nullptr);
    item(copy).part().set(nullptr);
}

void tst_Copy::opaqueFieldsAreCopiedByTheirClone()
{
    struct OpaqueField : Field {
        OpaqueField(Object &newOwner, char const *fieldName, unsigned flags, int number)
            : Field(newOwner, fieldName, flags)
            , value(number)
        {
        }
        PtrT<Field> clone(Object &newOwner) const override
        {
            return addField<OpaqueField>(newOwner, "opaque", value + 1);
        }
        int getType() const override { return 6; }
        void copyValue(Field const &) override {}
        int value;
    };
    const RefT<Object> original(new Object(0));
    addField<OpaqueField>(*original, "opaque", 5);
    const RefT<Object> copy = Copy::Context().copy({original}).at(0);
    QCOMPARE(static_cast<OpaqueField &>(*copy->getField(0)).value, 6);
}

void tst_Copy::sharableObjectIsShared()
{
    const RefT<Item> a = newItem("a"), shared = newItem("s");
    shared->sharable = true;
    a->part().set(shared);
    a->parts().replace(0, 0, {shared});
    a->seen().set(shared);
    QCOMPARE(dump(copyOf({a})[0]), std::string("a'(s s(- - [] []) [] [s ])"));
}

void tst_Copy::sharableRootIsShared()
{
    const RefT<Item> shared = newItem("s");
    shared->sharable = true;
    Copy::Context context;
    QCOMPARE(context.copy({shared})[0].get(), static_cast<Object *>(shared.get()));
    QCOMPARE(context.copy({shared})[0].get(), static_cast<Object *>(shared.get()));
}

void tst_Copy::whatASharableObjectOwnsIsNotCopied()
{
    const RefT<Item> a = newItem("a"), shared = newItem("s"), part = newItem("p");
    shared->sharable = true;
    shared->part().set(part);
    shared->seen().set(a);
    a->part().set(shared);
    a->seen().set(part);
    QCOMPARE(dump(copyOf({a})[0]), std::string("a'(p s(a p(- - [] []) [] []) [] [])"));
}

void tst_Copy::secondCallGivesTheSameCopies()
{
    const RefT<Item> a = newItem("a"), b = newItem("b"), c = newItem("c");
    a->part().set(b);
    c->part().set(b);
    c->seen().set(a);
    Copy::Context context;
    const RefT<Object> copyOfA = context.copy({a})[0];
    const Refs second = context.copy({b, c, a});
    QCOMPARE(second[0].get(), item(copyOfA).part().get().get());
    QCOMPARE(second[2].get(), copyOfA.get());
    QCOMPARE(item(second[1]).part().get().get(), second[0].get());
    QCOMPARE(item(second[1]).seen().get().get(), copyOfA.get());
}

void tst_Copy::anotherContextGivesOtherCopies()
{
    const RefT<Item> a = newItem("a");
    QVERIFY(copyOf({a})[0] != copyOf({a})[0]);
}

void tst_Copy::longChainIsCopiedWithoutDeepRecursion()
{
    constexpr int length = 100000;
    RefT<Object> chain;
    for (int i = 0; i < length; ++i) {
        RefT<Object> owner(new Object(0));
        addField<FieldRef>(*owner, "part", chain);
        chain = std::move(owner);
    }
    RefT<Object> copy = Copy::Context().copy({chain}).at(0);
    int copied = 0;
    for (RefT<Object> link = copy; link; link = static_cast<FieldRef &>(*link->getField(0)).get())
        ++copied;
    QCOMPARE(copied, length);
}

void tst_Copy::wideListIsCopied()
{
    constexpr std::size_t width = 20000;
    const RefT<Item> a = newItem("a");
    Refs parts;
    for (std::size_t i = 0; i < width; ++i)
        parts.push_back(newItem("part"));
    a->parts().replace(0, 0, parts);
    a->allSeen().replace(0, 0, Ptrs(parts.begin(), parts.end()));
    const RefT<Object> copy = Copy::Context().copy({a}).at(0);
    QCOMPARE(item(copy).parts().getNum(), width);
    for (std::size_t i = 0; i < width; ++i) {
        QVERIFY(item(copy).parts().get(i) != parts[i]);
        QVERIFY(item(copy).parts().get(i) == item(copy).allSeen().get(i));
    }
}

void tst_Copy::originalsStayAsTheyAre()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->parts().replace(0, 0, {b});
    a->allSeen().replace(0, 0, {a, b});
    const std::string before = dump(a);
    int calls = 0;
    a->parts().sigReplace.connect([&](auto const &) { ++calls; });
    a->allSeen().sigReplace.connect([&](auto const &) { ++calls; });
    a->sigAddField.connect([&](auto const &) { ++calls; });
    copyOf({a});
    QCOMPARE(dump(a), before);
    QCOMPARE(calls, 0);
}

void tst_Copy::copiesOutliveTheContext()
{
    RefT<Item> a = newItem("a"), b = newItem("b");
    a->part().set(b);
    auto context = std::make_unique<Copy::Context>();
    const RefT<Object> copy = context->copy({a})[0];
    context.reset();
    a.reset();
    b.reset();
    QCOMPARE(dump(copy), std::string("a(- b(- - [] []) [] [])"));
}

void tst_Copy::stackObjectIsCopied()
{
    Item original("a");
    const RefT<Item> part = newItem("p");
    original.part().set(part);
    original.seen().set(PtrT<Object>(original));
    QCOMPARE(dump(copyOf({RefT<Object>(original)})[0]), std::string("a'(a' p'(- - [] []) [] [])"));
}

void tst_Copy::placeOfADeadStackObjectIsNotMistakenForIt()
{
    Copy::Context context;
    alignas(Item) unsigned char place[sizeof(Item)];
    Refs copies;
    for (char const *name : {"a", "b"}) {
        Item *const created = ::new (static_cast<void *>(place)) Item(name);
        copies.push_back(context.copy({RefT<Object>(*created)})[0]);
        created->~Item();
    }
    QCOMPARE(dump(copies[0]), std::string("a(- - [] [])"));
    QCOMPARE(dump(copies[1]), std::string("b(- - [] [])"));
}

void tst_Copy::exceptionFromACloneForgetsTheRun()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->part().set(b);
    b->cloning = [](Item &) -> RefT<Object> { throw std::runtime_error("not now"); };
    Copy::Context context;
    QVERIFY_EXCEPTION_THROWN(context.copy({a}), std::runtime_error);
    b->cloning = nullptr;
    const RefT<Object> copy = context.copy({a})[0];
    // Of the run that failed, a's copy would still own the original of b.
    QVERIFY(item(copy).part().get() != RefT<Object>(b));
    QCOMPARE(dump(copy), std::string("a(- b(- - [] []) [] [])"));
}

void tst_Copy::nullFromACloneCopiesAsNull()
{
    const RefT<Item> a = newItem("a"), b = newItem("b");
    a->part().set(b);
    a->parts().replace(0, 0, {b});
    b->cloning = [](Item &) { return RefT<Object>(); };
    QCOMPARE(dump(copyOf({a})[0]), std::string("a'(- - [] [- ])"));
}

QTEST_APPLESS_MAIN(tst_Copy)

#include "tst_Copy.moc"
