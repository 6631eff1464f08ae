#include "PackageXml.h"

#include <QTest>

using namespace Explorer;
using ZR::cast;
using ZR::RefT;
using ZR::VOM::FieldPtr;
using ZR::VOM::FieldRef;

namespace {

constexpr char status[] = "Package: a\nStatus: install ok installed\nSection: s\nMaintainer: m\n"
                          "Version: 1\nInstalled-Size: 7\nDepends: b\nDescription: about a\n\n"
                          "Package: b\nStatus: install ok installed\nSection: t\nMaintainer: m\n\n";

template <class Items>
QString names(Items const &items)
{
    QStringList list;
    for (auto const &item : items)
        list << QString::fromStdString(cast<Item>(item)->getName());
    return list.join(' ');
}

} // namespace

/// Whole models as XML, and objects that come from elsewhere.
class tst_PackageXml : public QObject {
    Q_OBJECT

private slots:
    void savedModelOpensAsItWas();
    void otherDocumentsAreRefused_data();
    void otherDocumentsAreRefused();
    void adoptedObjectsAreOwnedAndFound();
};

void tst_PackageXml::savedModelOpensAsItWas()
{
    const PackageModel model(readStatus(status));
    std::vector<std::string> errors;
    const std::string xml = saveModel(model, errors);
    const RefT<Archive> archive = openModel(xml, errors);
    QVERIFY(errors.empty());
    QVERIFY(archive);
    const PackageModel opened(archive);
    QCOMPARE(names(opened.getPackages()), QString("a b"));
    QCOMPARE(names(opened.getSections()), QString("s t"));
    QCOMPARE(names(opened.getMaintainers()), QString("m"));
    const RefT<Package> package = opened.findPackage("a");
    QCOMPARE(names(PackageModel::getDependencies(*package)), QString("b"));
    QCOMPARE(cast<FieldPtr>(package->findField("maintainer"))->get().get(),
             static_cast<ZR::VOM::Object *>(opened.getMaintainers().front().get()));
    QCOMPARE(names(Objects{cast<FieldRef>(package->findField("details"))->get()}),
             QString("about a"));
    QCOMPARE(opened.getObjects().size(), model.getObjects().size());
    QCOMPARE(saveModel(opened, errors), xml);
}

void tst_PackageXml::otherDocumentsAreRefused_data()
{
    QTest::addColumn<QString>("xml");
    QTest::newRow("nothing") << "";
    QTest::newRow("no XML") << "packages";
    QTest::newRow("no model") << "<html/>";
    QTest::newRow("another root")
        << R"(<model version="1"><object id="1" class="Section"/></model>)";
}

void tst_PackageXml::otherDocumentsAreRefused()
{
    QFETCH(QString, xml);
    std::vector<std::string> errors;
    QVERIFY(!openModel(xml.toStdString(), errors));
    QVERIFY(!errors.empty());
}

void tst_PackageXml::adoptedObjectsAreOwnedAndFound()
{
    PackageModel model(readStatus(status));
    PackageRecord record;
    record.name = "new";
    for (char const *name : {"c", "d"}) {
        record.name = name;
        model.adopt({RefT<ZR::VOM::Object>(new Package(record, {})), {}});
    }
    model.adopt(
        {RefT<ZR::VOM::Object>(new Section("u", {})), RefT<ZR::VOM::Object>(new Maintainer("n"))});
    QCOMPARE(names(model.getPackages()), QString("a b c d"));
    QCOMPARE(names(model.getSections()), QString("s t pasted u"));
    QCOMPARE(names(model.getMaintainers()), QString("m n"));
    QVERIFY(model.findPackage("d"));
    const PackageModel again(model.getArchive());
    QCOMPARE(names(again.getPackages()), QString("a b c d"));
}

QTEST_GUILESS_MAIN(tst_PackageXml)
#include "tst_PackageXml.moc"
