#include "Project.h"

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/Copy.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"

#include <QTest>

using namespace ZR::VOM;
using Example::Objects;
using Example::Person;
using Example::Task;
using ZR::cast;
using ZR::PtrT;
using ZR::RefT;

/// The code of docs/model.md, and what the page says of it.
class tst_ModelPage : public QObject {
    Q_OBJECT

private slots:
    void bareObjectTakesFields();
    void allSevenKinds();
    void fieldIsFoundByName();
    void listTellsEveryChangeAsOne();
    void listenerLeavesWithItsConnection();
    void lastReferenceDestroys();
    void dyingObjectIsStillWhole();
    void deadTargetReadsNull();
    void listKeepsPlacesOfTheDead();
    void refusedValueIsNotStored();
    void copyRefusesLikeItsOriginal();
    void valueCanBeTriedFirst();
    void copyIsWholeAndApart();
    void contextRemembersItsCopies();
    void sharableObjectsAreShared();
    void modelComesBackFromXml();
    void refusedDocumentLeavesNothing();
    void documentIsAsThePageShows();
};

namespace {

std::string nameOf(Object const &object)
{
    return cast<FieldString>(object.findField("name"))->get();
}

//! [sharable]
/// A unit of measure. Copies of what refers to it refer to the same one.
class Unit : public Object {
public:
    ClassInfo const &getClassInfo() const override { return classInfo; }
    RefT<Object> clone() override { return new Unit(*this); }
    bool isSharable() const override { return true; }

    inline static ClassInfo const classInfo = {&Object::classInfo, "Unit"};
};
//! [sharable]

} // namespace

void tst_ModelPage::bareObjectTakesFields()
{
    //! [bare]
    const RefT<Object> house(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldInt>(*house, "rooms", 5);
    //! [bare]
    QCOMPARE(nameOf(*house), std::string("house"));
    QCOMPARE(cast<FieldInt>(house->findField("rooms"))->get(), 5);
}

void tst_ModelPage::allSevenKinds()
{
    const RefT<Object> kim(new Person("Kim")), plan(new Task("plan")), draw(new Task("draw"));
    const RefT<Object> house(new Object);
    Object &object = *house;
    //! [kinds]
    addField<FieldInt>(object, "state", 1);
    addField<FieldReal>(object, "hours", 1.5);
    addField<FieldString>(object, "name", "draw");
    addField<FieldPtr>(object, "worker", kim);                       // Watches.
    addField<FieldRef>(object, "details", RefT<Object>(new Object)); // Owns.
    addField<MFieldPtr>(object, "needs", MFieldPtr::Values{plan});   // Watches each.
    addField<MFieldRef>(object, "parts", MFieldRef::Values{draw});   // Owns each.
    //! [kinds]
    std::vector<int> types;
    for (std::size_t i = 0; i < object.getNumFields(); ++i)
        types.push_back(object.getField(i)->getType());
    QCOMPARE(types, (std::vector<int>{2, 3, 4, 5, 6, 11, 12}));
    QCOMPARE(cast<MFieldPtr>(object.findField("needs"))->get(0).get(), plan.get());
}

void tst_ModelPage::fieldIsFoundByName()
{
    const RefT<Object> task(new Task("draw", 40));
    double heard = 0;
    //! [find]
    if (auto *const hours = cast<FieldReal>(task->findField("hours"))) {
        hours->sigSet.connect([&](FieldReal::SigSetData const &sigData) {
            heard = *sigData.old; // And hours->get() is the new one.
        });
        hours->set(hours->get() + 8);
    }
    //! [find]
    QCOMPARE(heard, 40.0);
    QCOMPARE(cast<FieldReal>(task->findField("hours"))->get(), 48.0);
    QVERIFY(!cast<FieldInt>(task->findField("hours")));
    QVERIFY(!task->findField("price"));
}

void tst_ModelPage::listTellsEveryChangeAsOne()
{
    const RefT<Object> a(new Task("a")), b(new Task("b")), c(new Task("c"));
    const RefT<Object> task(new Task("draw"));
    QStringList heard;
    auto *const list = cast<MFieldPtr>(task->findField("needs"));
    list->sigReplace.connect([&](auto const &sigData) {
        heard << QString("%1: %2 to %3")
                     .arg(sigData.index)
                     .arg(sigData.numOld)
                     .arg(sigData.end - sigData.index);
    });
    //! [list]
    list->replace(list->getNum(), 0, {a, b}); // Appends two,
    list->replace(0, 1, {});                  // removes the first,
    list->replace(0, 1, {c});                 // and puts c in the place of b.
    //! [list]
    QCOMPARE(heard, (QStringList{"0: 0 to 2", "0: 1 to 0", "0: 1 to 1"}));
    QCOMPARE(list->getNum(), std::size_t(1));
    QCOMPARE(list->get(0).get(), c.get());
    QVERIFY_EXCEPTION_THROWN(list->replace(2, 0, {a}), ErrorField);
}

void tst_ModelPage::listenerLeavesWithItsConnection()
{
    //! [connection]
    class Display {
    public:
        explicit Display(RefT<Object> const &shown)
            : object(shown)
        {
            if (auto *const name = cast<FieldString>(object->findField("name")))
                connection = name->sigSet.connect([this](auto const &) { ++numChanges; });
        }
        ~Display() { connection.disconnect(); }

        int numChanges = 0;

    private:
        PtrT<Object> object;
        ZR::Signal::Connection connection;
    };
    //! [connection]
    const RefT<Object> task(new Task("draw"));
    auto *const name = cast<FieldString>(task->findField("name"));
    {
        const Display display(task);
        name->set("paint");
        QCOMPARE(display.numChanges, 1);
        QVERIFY(name->sigSet.hasSlots());
    }
    QVERIFY(!name->sigSet.hasSlots());
}

void tst_ModelPage::lastReferenceDestroys()
{
    //! [pointers]
    RefT<Object> owner(new Task("draw")); // One reference,
    PtrT<Object> watcher(owner);          // still one,
    RefT<Object> second(watcher);         // two.
    owner.reset();                        // One again: the task lives.
    second.reset();                       // None: it is destroyed,
    bool isGone = !watcher;               // and the watcher reads null.
    //! [pointers]
    QVERIFY(isGone);
}

void tst_ModelPage::dyingObjectIsStillWhole()
{
    std::string farewell;
    RefT<Object> task(new Task("draw"));
    //! [dying]
    task->sigDelete.connect([&, watcher = PtrT<Object>(task)](auto const &) {
        farewell = nameOf(*watcher); // Pointers still read it, and its fields are there.
    });
    task.reset();
    //! [dying]
    QCOMPARE(farewell, std::string("draw"));
}

void tst_ModelPage::deadTargetReadsNull()
{
    RefT<Object> kim(new Person("Kim"));
    const RefT<Object> task(new Task("draw"));
    bool isLost = false;
    //! [lost]
    auto *const worker = cast<FieldPtr>(task->findField("worker"));
    worker->set(kim);
    worker->sigLost.connect([&](auto const &) { isLost = true; });
    kim.reset(); // Nobody else owned the person.
    //! [lost]
    QVERIFY(isLost);
    QVERIFY(!worker->get());
}

void tst_ModelPage::listKeepsPlacesOfTheDead()
{
    RefT<Object> a(new Task("a")), b(new Task("b"));
    const RefT<Object> task(new Task("draw"));
    auto *const needs = cast<MFieldPtr>(task->findField("needs"));
    needs->replace(0, 0, {a, b});
    a.reset();
    QCOMPARE(needs->getNum(), std::size_t(2));
    QVERIFY(!needs->get(0));
    QCOMPARE(needs->get(1).get(), b.get());
}

void tst_ModelPage::refusedValueIsNotStored()
{
    const RefT<Object> task(new Task("draw", 40));
    auto *const hours = cast<FieldReal>(task->findField("hours"));
    std::string reason;
    //! [refused]
    try {
        hours->set(-1);
    } catch (ZR::Error const &error) {
        reason = error.what(); // And the task takes as long as before.
    }
    //! [refused]
    QCOMPARE(reason, std::string("A task can't take less than no time."));
    QCOMPARE(hours->get(), 40.0);
}

void tst_ModelPage::copyRefusesLikeItsOriginal()
{
    const RefT<Object> copy = RefT<Object>(new Task("draw", 40))->clone();
    QVERIFY(!cast<FieldReal>(copy->findField("hours"))->canSet(-1));
}

void tst_ModelPage::valueCanBeTriedFirst()
{
    const RefT<Object> task(new Task("draw", 40));
    auto *const hours = cast<FieldReal>(task->findField("hours"));
    //! [tried]
    const bool isPossible = hours->canSet(-1); // False; nothing else happens.
    //! [tried]
    QVERIFY(!isPossible);
    QVERIFY(hours->canSet(0));
    QCOMPARE(hours->get(), 40.0);
}

void tst_ModelPage::copyIsWholeAndApart()
{
    const RefT<Object> project = Example::makeProject();
    //! [copy]
    const RefT<Object> copy = Copy::Context().copy({project}).front();
    //! [copy]
    const Objects tasks = Example::listOf(project, "tasks");
    const Objects copies = Example::listOf(copy, "tasks");
    QCOMPARE(copies.size(), tasks.size());
    QVERIFY(copies[1] != tasks[1]);
    QCOMPARE(nameOf(*copies[1]), nameOf(*tasks[1]));
    // What watched a task of the project watches its copy.
    QCOMPARE(cast<MFieldPtr>(copies[1]->findField("needs"))->get(0).get(), copies[0].get());
    // Alone, it goes on watching what isn't copied.
    const RefT<Object> alone = Copy::Context().copy({tasks[1]}).front();
    QCOMPARE(cast<MFieldPtr>(alone->findField("needs"))->get(0).get(), tasks[0].get());
}

void tst_ModelPage::contextRemembersItsCopies()
{
    const RefT<Object> task(new Task("draw"));
    Copy::Context context;
    QVERIFY(context.copy({task}) == context.copy({task}));
    QVERIFY(Copy::Context().copy({task}) != context.copy({task}));
}

void tst_ModelPage::sharableObjectsAreShared()
{
    const RefT<Object> hour(new Unit), task(new Task("draw"));
    addField<FieldRef>(*task, "unit", hour);
    const RefT<Object> copy = Copy::Context().copy({task}).front();
    QCOMPARE(cast<FieldRef>(copy->findField("unit"))->get().get(), hour.get());
}

void tst_ModelPage::modelComesBackFromXml()
{
    const RefT<Object> project = Example::makeProject();
    //! [xml]
    ZR::Log log;
    ZR::ErrorManager errors(log);
    const std::string text = toXml(project, errors);
    const RefT<Object> read = fromXml(text, Example::makeRegistry(), errors);
    if (!read)
        qWarning("%s", log.getMessages().front().c_str());
    //! [xml]
    QVERIFY(read);
    QCOMPARE(errors.errorCount, 0u);
    QVERIFY(dynamic_cast<Example::Project *>(read.get()));
    QCOMPARE(toXml(read, errors), text);
    // An object that its class made refuses as ever.
    QVERIFY(!cast<FieldReal>(Example::listOf(read, "tasks")[0]->findField("hours"))->canSet(-1));
}

void tst_ModelPage::refusedDocumentLeavesNothing()
{
    const std::string text = "<model version=\"1\"><object id=\"1\" class=\"Task\">"
                             "<real name=\"hours\">-1</real></object></model>";
    ZR::Log log;
    ZR::ErrorManager errors(log);
    QVERIFY(!fromXml(text, Example::makeRegistry(), errors));
    QCOMPARE(errors.errorCount, 1u);
}

void tst_ModelPage::documentIsAsThePageShows()
{
    //! [open]
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Object>(ClassRegistry::Fields::Open);
    //! [open]
    const RefT<Object> house(new Object), door(new Object);
    addField<FieldString>(*house, "name", "house");
    addField<FieldRef>(*house, "part", door);
    ZR::Log log;
    ZR::ErrorManager errors(log);
    const std::string text = toXml(house, errors);
    QVERIFY(fromXml(text, registry, errors));
    QVERIFY(!fromXml(text, {}, errors));
}

QTEST_GUILESS_MAIN(tst_ModelPage)

#include "tst_ModelPage.moc"
