#include "PackageModel.h"

#include <QTest>

#include <fstream>
#include <iterator>
#include <set>

using namespace Explorer;
using ZR::cast;
using ZR::PtrT;
using ZR::RefT;
using ZR::VOM::FieldInt;
using ZR::VOM::FieldPtr;
using ZR::VOM::FieldReal;
using ZR::VOM::FieldRef;
using ZR::VOM::FieldString;
using ZR::VOM::MFieldPtr;
using ZR::VOM::MFieldRef;
using ZR::VOM::Object;

namespace {

PackageModel modelOf(std::string const &stanzas)
{
    return PackageModel(readStatus(stanzas));
}

std::string stanza(std::string const &name, std::string const &lines = "")
{
    return "Package: " + name + "\nStatus: install ok installed\n" + lines + "\n";
}

template <class Items>
QString names(Items const &items)
{
    QStringList list;
    for (auto const &item : items)
        list << QString::fromStdString(cast<Item>(item)->getName());
    return list.join(' ');
}

template <class FieldType>
FieldType &field(RefT<Object> const &object, char const *name)
{
    return *cast<FieldType>(object->findField(name));
}

QString depends(PackageModel const &model, char const *name)
{
    return names(PackageModel::getDependencies(*model.findPackage(name)));
}

} // namespace

class tst_PackageModel : public QObject {
    Q_OBJECT

private slots:
    void emptyTextGivesEmptyModel();
    void packageHasFieldsOfAllKinds();
    void priorityNamesAreNumbers_data();
    void priorityNamesAreNumbers();
    void dependencies_data();
    void dependencies();
    void dependentsAreThoseThatNeedIt();
    void dependentsFollowTheModel();
    void oneMaintainerServesManyPackages();
    void packageWithoutMaintainerHasNone();
    void sectionsOwnTheirPackages();
    void packagesOwnTheirDetails();
    void objectsHoldEverythingOnce();
    void removedFieldsDoNoHarm();
    void clonesAreOfTheSameClass();
    void everyClassIsAnItem();
    void shippedExtractIsSound();
};

void tst_PackageModel::emptyTextGivesEmptyModel()
{
    const PackageModel model = modelOf("");
    QVERIFY(model.getObjects().empty());
    QVERIFY(!model.findPackage(""));
}

void tst_PackageModel::packageHasFieldsOfAllKinds()
{
    const PackageModel model =
        modelOf(stanza("bash", "Version: 5.2\nInstalled-Size: 7164\nPriority: required\n"
                               "Section: shells\nMaintainer: Somebody <s@x>\nDepends: dash\n"
                               "Description: a shell\n") +
                stanza("dash", "Section: shells\n"));
    const RefT<Object> bash = model.findPackage("bash");
    QVERIFY(bash);
    QCOMPARE(field<FieldString>(bash, "name").get(), std::string("bash"));
    QCOMPARE(field<FieldString>(bash, "version").get(), std::string("5.2"));
    QCOMPARE(field<FieldString>(bash, "summary").get(), std::string("a shell"));
    QCOMPARE(field<FieldReal>(bash, "size").get(), 7164.0);
    QCOMPARE(field<FieldInt>(bash, "priority").get(), int(Required));
    QCOMPARE(field<MFieldPtr>(bash, "depends").getNum(), std::size_t(1));
    QCOMPARE(field<MFieldPtr>(bash, "depends").get(0).get(),
             static_cast<Object *>(model.findPackage("dash").get()));
    QCOMPARE(cast<Maintainer>(field<FieldPtr>(bash, "maintainer").get())->getName(),
             std::string("Somebody"));
    QCOMPARE(cast<Details>(field<FieldRef>(bash, "details").get())->getName(),
             std::string("a shell"));
    QCOMPARE(names(model.getSections()), QString("shells"));
    QCOMPARE(names(field<MFieldRef>(model.getSections()[0], "packages").getAll()),
             QString("bash dash"));
}

void tst_PackageModel::priorityNamesAreNumbers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("priority");
    QTest::newRow("required") << "required" << 1;
    QTest::newRow("important") << "important" << 2;
    QTest::newRow("standard") << "standard" << 3;
    QTest::newRow("optional") << "optional" << 4;
    QTest::newRow("extra") << "extra" << 5;
    QTest::newRow("none") << "" << 0;
    QTest::newRow("unheard of") << "urgent" << 0;
}

void tst_PackageModel::priorityNamesAreNumbers()
{
    QFETCH(QString, name);
    QTEST(int(priorityOf(name.toStdString())), "priority");
}

void tst_PackageModel::dependencies_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("expected");
    QTest::newRow("installed") << "a, b"
                               << "a b";
    QTest::newRow("in the order of the list") << "b, a"
                                              << "b a";
    QTest::newRow("not installed") << "a, missing, b"
                                   << "a b";
    QTest::newRow("first alternative") << "a | b"
                                       << "a";
    QTest::newRow("second alternative where the first is missing") << "missing | b"
                                                                   << "b";
    QTest::newRow("no alternative installed") << "missing | gone"
                                              << "";
    QTest::newRow("provided") << "editor"
                              << "b";
    QTest::newRow("provided by two: the first") << "shell"
                                                << "a";
    QTest::newRow("the package itself before one that provides its name") << "c"
                                                                          << "c";
    QTest::newRow("provided alternative before an installed one") << "editor | a"
                                                                  << "b";
    QTest::newRow("named twice") << "a, b, a (>= 1)"
                                 << "a b";
    QTest::newRow("named and provided") << "b, editor"
                                        << "b";
    QTest::newRow("itself") << "x"
                            << "x";
}

void tst_PackageModel::dependencies()
{
    QFETCH(QString, list);
    const PackageModel model = modelOf(
        stanza("x", "Depends: " + list.toStdString() + "\n") + stanza("a", "Provides: shell, c\n") +
        stanza("b", "Provides: editor (= 1), shell\n") + stanza("c"));
    QTEST(depends(model, "x"), "expected");
}

void tst_PackageModel::dependentsAreThoseThatNeedIt()
{
    const PackageModel model =
        modelOf(stanza("a", "Depends: b, c\n") + stanza("b", "Depends: a\n") +
                stanza("c", "Depends: b, missing\n") + stanza("d"));
    QCOMPARE(names(model.getDependents(*model.findPackage("b"))), QString("a c"));
    QCOMPARE(names(model.getDependents(*model.findPackage("a"))), QString("b"));
    QCOMPARE(names(model.getDependents(*model.findPackage("d"))), QString());
}

void tst_PackageModel::dependentsFollowTheModel()
{
    const PackageModel model = modelOf(stanza("a", "Depends: b\n") + stanza("b"));
    model.findPackage("a")->getDepends()->replace(0, 1, {});
    QVERIFY(model.getDependents(*model.findPackage("b")).empty());
    model.findPackage("b")->getDepends()->replace(0, 0, {PtrT<Object>(), model.findPackage("a")});
    QCOMPARE(names(model.getDependents(*model.findPackage("a"))), QString("b"));
    QCOMPARE(depends(model, "b"), QString("a"));
}

void tst_PackageModel::oneMaintainerServesManyPackages()
{
    const PackageModel model =
        modelOf(stanza("a", "Maintainer: Zoe <z@x>\n") + stanza("b", "Maintainer: Ada <a@x>\n") +
                stanza("c", "Maintainer: Zoe <other@x>\n"));
    QCOMPARE(names(model.getMaintainers()), QString("Ada Zoe"));
    QCOMPARE(field<FieldPtr>(model.findPackage("a"), "maintainer").get().get(),
             field<FieldPtr>(model.findPackage("c"), "maintainer").get().get());
}

void tst_PackageModel::packageWithoutMaintainerHasNone()
{
    const PackageModel model = modelOf(stanza("a") + stanza("b", "Maintainer: <b@x>\n"));
    QVERIFY(model.getMaintainers().empty());
    QVERIFY(!field<FieldPtr>(model.findPackage("a"), "maintainer").get());
    QVERIFY(!field<FieldPtr>(model.findPackage("b"), "maintainer").get());
}

void tst_PackageModel::sectionsOwnTheirPackages()
{
    const PackageModel model =
        modelOf(stanza("a", "Section: utils\n") + stanza("b", "Section: admin\n") +
                stanza("c", "Section: utils\n") + stanza("d"));
    QCOMPARE(names(model.getSections()), QString("admin unknown utils"));
    QCOMPARE(names(field<MFieldRef>(model.getSections()[1], "packages").getAll()), QString("d"));
    QCOMPARE(names(field<MFieldRef>(model.getSections()[2], "packages").getAll()), QString("a c"));
}

void tst_PackageModel::packagesOwnTheirDetails()
{
    PtrT<Object> package, details;
    {
        const PackageModel model =
            modelOf(stanza("a", "Depends: b\n") + stanza("b", "Depends: a\n"));
        package = model.findPackage("a");
        details = field<FieldRef>(model.findPackage("a"), "details").get();
        QVERIFY(details);
    }
    // Nothing in the model owns in a circle.
    QVERIFY(!package);
    QVERIFY(!details);
}

void tst_PackageModel::objectsHoldEverythingOnce()
{
    const PackageModel model = modelOf(stanza("a", "Section: s\nMaintainer: m\nDescription: d\n") +
                                       stanza("b", "Section: s\nMaintainer: m\nDescription: e\n"));
    const Objects objects = model.getObjects();
    QCOMPARE(names(objects), QString("s m a d b e"));
    QCOMPARE(std::set<RefT<Object>>(objects.begin(), objects.end()).size(), objects.size());
}

void tst_PackageModel::removedFieldsDoNoHarm()
{
    const PackageModel model = modelOf(stanza("a", "Depends: b\n") + stanza("b"));
    const RefT<Package> a = model.findPackage("a");
    for (char const *name : {"name", "depends", "details"})
        QVERIFY(ZR::VOM::removeField(*a, *a->findField(name)));
    QCOMPARE(a->getName(), std::string());
    QVERIFY(!a->getDepends());
    QVERIFY(PackageModel::getDependencies(*a).empty());
    QVERIFY(model.getDependents(*model.findPackage("b")).empty());
    QCOMPARE(model.getObjects().size(), std::size_t(1 + 2 + 1));
    QCOMPARE(model.findPackage("a").get(), a.get());
}

void tst_PackageModel::clonesAreOfTheSameClass()
{
    const PackageModel model =
        modelOf(stanza("a", "Maintainer: m\nDepends: a\nInstalled-Size: 3\n"));
    for (RefT<Object> const &object : model.getObjects()) {
        const RefT<Object> copy = object->clone();
        QCOMPARE(&copy->getClassInfo(), &object->getClassInfo());
        QCOMPARE(copy->getNumFields(), object->getNumFields());
        QCOMPARE(cast<Item>(copy)->getName(), cast<Item>(object)->getName());
    }
    QCOMPARE(field<FieldReal>(model.findPackage("a")->clone(), "size").get(), 3.0);
}

void tst_PackageModel::everyClassIsAnItem()
{
    const PackageModel model = modelOf(stanza("a", "Maintainer: m\n"));
    QStringList classes;
    for (RefT<Object> const &object : model.getObjects()) {
        QVERIFY(object->getClassInfo().isType("Item"));
        QVERIFY(object->getClassInfo().isType("ZR::VOM::Object"));
        classes << object->getClassInfo().name;
    }
    QCOMPARE(classes.join(' '), QString("Section Maintainer Package Details"));
}

void tst_PackageModel::shippedExtractIsSound()
{
    std::ifstream file(EXPLORER_DATA, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    const PackageModel model = modelOf(text);
    QCOMPARE(model.getPackages().size(), std::size_t(122));
    QVERIFY(model.getSections().size() > 5);
    QVERIFY(text.find('@') == std::string::npos);

    // The circle that the pictures show is in it.
    QVERIFY(depends(model, "libc6").split(' ').contains("libgcc-s1"));
    QVERIFY(depends(model, "libgcc-s1").split(' ').contains("libc6"));
    std::set<int> priorities;
    for (RefT<Package> const &package : model.getPackages()) {
        QVERIFY2(!field<FieldString>(package, "summary").get().empty(), package->getName().c_str());
        QVERIFY2(field<FieldReal>(package, "size").get() > 0, package->getName().c_str());
        QVERIFY2(field<FieldPtr>(package, "maintainer").get(), package->getName().c_str());
        priorities.insert(field<FieldInt>(package, "priority").get());
    }
    QVERIFY((priorities == std::set<int>{Required, Important, Standard, Optional}));
}

QTEST_GUILESS_MAIN(tst_PackageModel)
#include "tst_PackageModel.moc"
