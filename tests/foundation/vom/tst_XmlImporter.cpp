#include "support/QtStrings.h"
#include "support/XmlTarget.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

/// How documents become objects, and what happens to those that can't.
class tst_XmlImporter : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void fillsItsTarget();
    void leavesFieldsThatTheDocumentHasNot();
    void fillsATargetOnTheStack();
    void fillsTheClipboardsKindOfTarget();
    void addsFieldsToATargetOfAnOpenClass();
    void readsAnyOrderOfObjectsAndIds();
    void takesBlanksAndRemarks();
    void oldErrorsOfTheManagerDontCount();

    void failingFactoryIsAnError_data();
    void failingFactoryIsAnError();
    void refusalByAListenerOfAnObjectIsAnError();
    void refusalByAListenerOfTheTargetIsAnError_data();
    void refusalByAListenerOfTheTargetIsAnError();
    void lateExceptionGivesTheTargetItsValuesBack();
    void refusalOfANewFieldTakesItAway();
    void fieldThatAListenerTakesAwayIsAnError();
    void circleOfOwnersGoesWithTheDocument();

    void progressRisesToTheEnd();
    void cancelledImportLeavesTheTarget();
    void exceptionOfTheProgressIsAnError();
};

void tst_XmlImporter::cleanup()
{
    Watched::onMade = nullptr;
    QCOMPARE(Watched::numLiving, 0);
}

void tst_XmlImporter::fillsItsTarget()
{
    const RefT<Object> target(new Watched);
    QCOMPARE(import_(target, richDocument()), std::string());
    const XmlModelEnd end(target);
    QCOMPARE(target->getFlags(), 7u);
    QCOMPARE(target->getField(0)->getFlags(), 1u);
    QCOMPARE(fieldOf<FieldInt>(target, "int").get(), -12);
    QCOMPARE(fieldOf<FieldReal>(target, "real").get(), 1e300);
    QCOMPARE(fieldOf<FieldString>(target, "string").get(), std::string("a < b \r <c>"));
    auto const &refs = fieldOf<MFieldRef>(target, "refs");
    QCOMPARE(refs.getNum(), std::size_t(4));
    const RefT<Object> thing = refs.get(0), watched = refs.get(2);
    QVERIFY(cast<Thing>(thing) && cast<Watched>(watched));
    QVERIFY(!refs.get(1) && refs.get(3) == thing);
    QCOMPARE(fieldOf<FieldPtr>(target, "ptr").get().get(), watched.get());
    QCOMPARE(fieldOf<FieldRef>(target, "ref").get().get(), thing.get());
    QCOMPARE(fieldOf<MFieldPtr>(target, "ptrs").get(2).get(), target.get());
    QCOMPARE(fieldOf<FieldString>(watched, "string").get(), std::string("\0\1\2", 3));
    QCOMPARE(fieldOf<FieldInt>(watched, "int").get(), 7);
    QCOMPARE(fieldOf<MFieldRef>(thing, "circle").get(0).get(), watched.get());
}

void tst_XmlImporter::leavesFieldsThatTheDocumentHasNot()
{
    const Target target;
    QCOMPARE(import_(target.object, document("<int name=\"int\">1</int>")), std::string());
    QCOMPARE(fieldOf<FieldInt>(target.object, "int").get(), 1);
    QCOMPARE(fieldOf<FieldString>(target.object, "string").get(), std::string("old"));
    QCOMPARE(fieldOf<MFieldRef>(target.object, "refs").getNum(), std::size_t(2));
}

void tst_XmlImporter::fillsATargetOnTheStack()
{
    Fixed target;
    const std::string text = "<model version='1'><object id='1' class='Fixed'>"
                             "<refs name='refs'>2 3</refs></object>"
                             "<object id='2' class='Fixed'><ref name='ref'>1</ref></object>"
                             "<object id='3' class='Thing'/></model>";
    QCOMPARE(import_(RefT<Object>(target), text), std::string());
    auto &refs = fieldOf<MFieldRef>(RefT<Object>(target), "refs");
    QCOMPARE(refs.getNum(), std::size_t(2));
    QCOMPARE(fieldOf<FieldRef>(refs.get(0), "ref").get().get(), &target);
}

void tst_XmlImporter::fillsTheClipboardsKindOfTarget()
{
    // A class that the registry doesn't know, with a list that takes up what is read.
    class Holder : public Object {
    public:
        Holder() { addField<MFieldRef>(*this, "objects"); }
        ClassInfo const &getClassInfo() const override { return info; }
        ClassInfo const info = {&Object::classInfo, "Holder"};
    };
    std::string text;
    XmlErrors errors;
    {
        Holder holder;
        fieldOf<MFieldRef>(RefT<Object>(holder), "objects").replace(0, 0, makeThings("abc"));
        text = toXml(RefT<Object>(holder), errors.manager);
    }
    Holder holder;
    QCOMPARE(import_(RefT<Object>(holder), text), std::string());
    auto &objects = fieldOf<MFieldRef>(RefT<Object>(holder), "objects");
    QCOMPARE(objects.getNum(), std::size_t(3));
    QCOMPARE(fieldOf<FieldString>(objects.get(2), "name").get(), std::string("c"));
}

void tst_XmlImporter::addsFieldsToATargetOfAnOpenClass()
{
    const RefT<Object> target = makeThing("old");
    QCOMPARE(import_(target, "<model version='1'><object id='1' class='Thing'>"
                             "<int name='new' flags='4'>5</int><string name='name'>b</string>"
                             "</object></model>"),
             std::string());
    QCOMPARE(target->getNumFields(), std::size_t(2));
    QCOMPARE(fieldOf<FieldString>(target, "name").get(), std::string("b"));
    QCOMPARE(fieldOf<FieldInt>(target, "new").get(), 5);
    QCOMPARE(fieldOf<FieldInt>(target, "new").getFlags(), 4u);
}

void tst_XmlImporter::readsAnyOrderOfObjectsAndIds()
{
    const RefT<Object> target(new Watched);
    QCOMPARE(import_(target, document("<refs name='refs'>18446744073709551614 0</refs>",
                                      "<object id='0' class='Special'/>"
                                      "<object id='18446744073709551614' class='Thing'/>")),
             std::string());
    QVERIFY(cast<Special>(fieldOf<MFieldRef>(target, "refs").get(1)));
}

void tst_XmlImporter::takesBlanksAndRemarks()
{
    const RefT<Object> target(new Watched);
    QCOMPARE(import_(target, "\xEF\xBB\xBF<?xml version='1.0'?><!-- < --><?a <model> ?>\r\n" +
                                 document("<int\n name = 'int' >\n 5<!-- > -->0\t</int ><!-- ' -->"
                                          "<real name='real'> -0.25 </real>"
                                          "<refs name='refs'>\r\n\t2\n-</refs>",
                                          "<object id=' 2 ' class='Thing'></object>") +
                                 "\n<!-- end -->\n"),
             std::string());
    QCOMPARE(fieldOf<FieldInt>(target, "int").get(), 50);
    QCOMPARE(fieldOf<FieldReal>(target, "real").get(), -0.25);
    QCOMPARE(fieldOf<MFieldRef>(target, "refs").getNum(), std::size_t(2));
}

void tst_XmlImporter::oldErrorsOfTheManagerDontCount()
{
    XmlErrors errors;
    errors.manager.report("something else");
    QVERIFY(fromXml("<model version='1'><object id='1' class='Thing'/></model>", xmlRegistry(),
                    errors.manager));
    QCOMPARE(errors.count(), 1u);
}

using Factory = ClassRegistry::Factory;
Q_DECLARE_METATYPE(Factory)

void tst_XmlImporter::failingFactoryIsAnError_data()
{
    QTest::addColumn<Factory>("factory");
    QTest::addColumn<std::string>("report");
    const std::string where = "line 6, column 1: the factory of class 'Strange' ";
    QTest::newRow("raises an Error")
        << Factory([]() -> RefT<Object> { throw ZR::Error("not today"); })
        << where + "failed: not today";
    QTest::newRow("raises what is no exception")
        << Factory([]() -> RefT<Object> { throw 5; }) << where + "failed: an unknown exception";
    QTest::newRow("makes nothing")
        << Factory([] { return RefT<Object>(); }) << where + "has made no object";
    QTest::newRow("makes the same again") << Factory([same = makeThing("same")] { return same; })
                                          << where + "has made the same object again";
}

void tst_XmlImporter::failingFactoryIsAnError()
{
    QFETCH(Factory, factory);
    QFETCH(std::string, report);
    const RefT<ClassRegistry> registry = watchedRegistry();
    registry->add("Strange", factory);
    const Target target;
    const std::string reported =
        import_(target.object,
                document("<refs name='refs'>2 3</refs>", "<object id='2' class='Strange'/>\n"
                                                         "<object id='3' class='Strange'/>"),
                registry);
    QVERIFY2(reported.find(report) != std::string::npos, reported.c_str());
    QVERIFY(target.isAsItWas());
}

void tst_XmlImporter::refusalByAListenerOfAnObjectIsAnError()
{
    const Target target;
    Watched::onMade = [](Watched &made) {
        dynamic_cast<FieldInt &>(*made.findField("int")).sigCanSet.connect([](auto const &) {
            throw ZR::Error("odd");
        });
        dynamic_cast<MFieldRef &>(*made.findField("refs")).sigCanReplace.connect([](auto const &) {
            throw std::runtime_error("even");
        });
    };
    QCOMPARE(import_(target.object,
                     document("<ref name='ref'>2</ref>",
                              "<object id='2' class='Watched'><ref name='ref'>2</ref>\n"
                              "<int name='int'>5</int>\n<refs name='refs'>2 2</refs></object>")),
             std::string("line 6, column 1: odd; line 7, column 1: even"));
    QVERIFY(target.isAsItWas());
}

void tst_XmlImporter::refusalByAListenerOfTheTargetIsAnError_data()
{
    QTest::addColumn<bool>("isError");
    QTest::newRow("an Error") << true;
    QTest::newRow("another exception") << false;
}

void tst_XmlImporter::refusalByAListenerOfTheTargetIsAnError()
{
    QFETCH(bool, isError);
    const Target target;
    int numChanges = 0;
    fieldOf<FieldInt>(target.object, "int").sigSet.connect([&](auto const &) { ++numChanges; });
    fieldOf<MFieldRef>(target.object, "refs").sigCanReplace.connect([&](auto const &) {
        if (isError)
            throw ZR::Error("no");
        throw std::runtime_error("not so");
    });
    const std::string fields = "<int name='int'>5</int>\n<refs name='refs'>2</refs>";
    QCOMPARE(import_(target.object, document(fields, "<object id='2' class='Watched'/>")),
             std::string(isError ? "line 4, column 1: field 'refs': the value is refused"
                                 : "line 4, column 1: not so"));
    QVERIFY(target.isAsItWas());
    // It is asked before anything is changed.
    QCOMPARE(numChanges, 0);
}

void tst_XmlImporter::lateExceptionGivesTheTargetItsValuesBack()
{
    const Target target;
    fieldOf<MFieldRef>(target.object, "refs").sigReplace.connect([](auto const &) {
        throw std::runtime_error("too late");
    });
    const std::string report = import_(target.object, richDocument());
    QVERIFY2(report.find("too late") != std::string::npos, report.c_str());
    // The list tells of its old values, too, and its listener raises again.
    QVERIFY2(report.find("the target can't be restored: too late") != std::string::npos,
             report.c_str());
    QVERIFY(target.isAsItWas());
}

void tst_XmlImporter::refusalOfANewFieldTakesItAway()
{
    const RefT<Object> target = makeThing("old");
    target->sigAddField.connect([](auto const &) { throw ZR::Error("no more"); });
    QCOMPARE(import_(target, "<model version='1'><object id='1' class='Thing' flags='1'>\n"
                             "<string name='name'>new</string>"
                             "<int name='new'>5</int></object></model>"),
             std::string("line 2, column 33: no more"));
    QCOMPARE(modelText(target), modelText(makeThing("old")));
}

void tst_XmlImporter::fieldThatAListenerTakesAwayIsAnError()
{
    Watched::onMade = [](Watched &made) {
        PtrT<Object> object(made);
        dynamic_cast<FieldInt &>(*made.findField("int")).sigSet.connect([object](auto const &) {
            removeField(*object, *object->findField("real"));
        });
    };
    const RefT<Object> target(new Fixed);
    QCOMPARE(import_(target,
                     "<model version='1'><object id='1' class='Fixed'>"
                     "<ref name='ref'>2</ref></object>\n<object id='2' class='Watched'>"
                     "<int name='int'>1</int>\n<real name='real'>1</real></object></model>"),
             std::string("line 3, column 1: field 'real': a listener took it away"));
    const RefT<Object> thing(new Thing);
    thing->sigAddField.connect([thing = thing.get()](SigAddFieldData const &data) {
        removeField(*thing, *thing->getField(data.index));
    });
    QCOMPARE(import_(thing, "<model version='1'><object id='1' class='Thing'>"
                            "<int name='a'>1</int></object></model>"),
             std::string("line 1, column 49: field 'a': a listener took it away"));
    QCOMPARE(thing->getNumFields(), std::size_t(0));
}

void tst_XmlImporter::circleOfOwnersGoesWithTheDocument()
{
    // One of the two refuses to let go of the other.
    Watched::onMade = [](Watched &made) {
        dynamic_cast<FieldRef &>(*made.findField("ref"))
            .sigCanSet.connect([](FieldRef::SigCanSetData const &data) {
                if (!*data.value)
                    throw ZR::Error("mine");
            });
        dynamic_cast<FieldInt &>(*made.findField("int")).sigCanSet.connect([](auto const &) {
            throw ZR::Error("late");
        });
    };
    {
        const RefT<Object> target(new Fixed);
        QCOMPARE(import_(target, "<model version='1'><object id='1' class='Fixed'>"
                                 "<ref name='ref'>2</ref></object>\n"
                                 "<object id='2' class='Watched'><ref name='ref'>3</ref></object>\n"
                                 "<object id='3' class='Watched'><ref name='ref'>2</ref>"
                                 "<refs name='refs'>3 2</refs><int name='int'>1</int>"
                                 "</object></model>"),
                 std::string("line 3, column 83: late"));
    }
    QCOMPARE(Watched::numLiving, 0);
}

namespace {

class Steps : public Progress {
public:
    explicit Steps(std::function<bool(double)> reaction)
        : Progress("", true)
        , react(std::move(reaction))
    {
    }
    bool setDone(double part) override
    {
        parts.push_back(part);
        return react(part);
    }

    std::vector<double> parts;

private:
    std::function<bool(double)> react;
};

std::string manyObjects()
{
    std::string links, objects;
    for (int i = 2; i < 5000; ++i) {
        links += std::to_string(i) + ' ';
        objects += "<object id='" + std::to_string(i) + "' class='Thing'/>\n";
    }
    return document("<int name='int'>1</int><refs name='refs'>" + links + "</refs>", objects);
}

std::string importUnder(Progress &progress, RefT<Object> const &target)
{
    const std::string text = manyObjects();
    XmlErrors errors;
    XmlImporter(watchedRegistry())
        .createContext(target)
        ->import_(text.data(), int(text.size()), "", errors.manager, progress);
    return errors.text();
}

} // namespace

void tst_XmlImporter::progressRisesToTheEnd()
{
    const Target target;
    Steps steps([](double) { return true; });
    QCOMPARE(importUnder(steps, target.object), std::string());
    QVERIFY(steps.parts.size() > 10);
    QVERIFY(std::is_sorted(steps.parts.begin(), steps.parts.end()));
    QVERIFY(steps.parts.front() >= 0 && steps.parts.front() < 0.3);
    QCOMPARE(steps.parts.back(), 1.0);
}

void tst_XmlImporter::cancelledImportLeavesTheTarget()
{
    for (const double end : {0.0, 0.4, 0.6, 0.9, 1.0}) {
        const Target target;
        Steps steps([end](double part) { return part < end; });
        QCOMPARE(importUnder(steps, target.object), std::string("cancelled"));
        QVERIFY(target.isAsItWas());
    }
}

void tst_XmlImporter::exceptionOfTheProgressIsAnError()
{
    const Target target;
    Steps steps([](double part) -> bool {
        if (part > 0.7)
            throw std::runtime_error("no window");
        return true;
    });
    QCOMPARE(importUnder(steps, target.object), std::string("no window"));
    QVERIFY(target.isAsItWas());
}

QTEST_APPLESS_MAIN(tst_XmlImporter)

#include "tst_XmlImporter.moc"
