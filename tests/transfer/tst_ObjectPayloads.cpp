#include "NameLists.h"
#include "Payloads.h"

#include "support/QtStrings.h"

#include "zrVOMGUI/transfer/MimeData.h"

#include <QMimeData>
#include <QRegularExpression>
#include <QTest>

#include <cstring>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Model = VOM::Object;

Q_DECLARE_METATYPE(Fault)

class tst_ObjectPayloads : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void offersInOrder_data();
    void offersInOrder();
    void addsToOtherFormats();
    void referencesNameProcessAndList();
    void referencesReadTheListsOfNow();
    void copiesAreReadByTheirOwnReader();
    void readingTheNamedListItselfKeepsIt();
    void deathsWhileReadingMayChangeTheList();
    void foreignReferencesAreRefused_data();
    void foreignReferencesAreRefused();

    void xmlDescribesTheObjectsAndNotTheCopies();
    void exporterAndImporterHearTheirTitles();
    void failedExportsOfferReferencesAlone_data();
    void failedExportsOfferReferencesAlone();
    void exportersMayLetEverythingGo();
    void xmlReadsAsNewObjects();
    void emptyXmlIsNone();
    void failedImportsLeaveTheObjects_data();
    void failedImportsLeaveTheObjects();
    void importersMayChangeTheMimeData();

private:
    void addFaults();

    ErrorSink formerSink;
    QStringList reports;
};

namespace {

const char ref[] = "ZR::VOM::Object::Ref";
const char copyRef[] = "ZR::VOM::Object::Copy::Ref";
const char xml[] = "ZR::VOM::Object::XML";

RefT<VOM::Exporter> nameExporter(Fault fault = Fault::None)
{
    return {new NameExporter(fault)};
}

/// The bytes of a reference.
QByteArray reference(qint64 processId, void const *list, unsigned reserved = 0)
{
    QByteArray bytes(16, '\0');
    const auto id = static_cast<qint32>(processId);
    std::memcpy(bytes.data(), &id, 4);
    std::memcpy(bytes.data() + 4, &reserved, 4);
    std::memcpy(bytes.data() + 8, &list, 8);
    return bytes;
}

QByteArray ownReference(Things const &list)
{
    return reference(QCoreApplication::applicationPid(), &list);
}

} // namespace

void tst_ObjectPayloads::init()
{
    reports.clear();
    formerSink = setErrorSink([this](std::string const &where, std::string const &what) {
        reports << QString::fromStdString(where + ": " + what);
    });
}

void tst_ObjectPayloads::cleanup()
{
    setErrorSink(formerSink);
}

void tst_ObjectPayloads::offersInOrder_data()
{
    QTest::addColumn<bool>("exporting");
    QTest::addColumn<bool>("copies");
    QTest::addColumn<QStringList>("types");
    QTest::newRow("objects") << false << false << QStringList{ref};
    QTest::newRow("objects and copies") << false << true << QStringList{ref, copyRef};
    QTest::newRow("objects and XML") << true << false << QStringList{ref, xml};
    QTest::newRow("all") << true << true << QStringList{ref, copyRef, xml};
}

void tst_ObjectPayloads::offersInOrder()
{
    QFETCH(bool, exporting);
    QFETCH(bool, copies);
    QFETCH(QStringList, types);
    const Things objs = makeThings("ab"), copyObjs = makeThings("cd");
    const RefT<VOM::Exporter> exporter = exporting ? nameExporter() : RefT<VOM::Exporter>();
    const MimeData data(createMimeData(exporter, &objs, copies ? &copyObjs : nullptr));
    QCOMPARE(data->formats(), types);
    QVERIFY(!data->hasText());
}

void tst_ObjectPayloads::addsToOtherFormats()
{
    const Things objs;
    const MimeData data = plainText("two things");
    addFormats(*data, nullptr, &objs, nullptr);
    QCOMPARE(data->formats(), (QStringList{"text/plain", ref}));
    QCOMPARE(data->text(), "two things");
}

void tst_ObjectPayloads::referencesNameProcessAndList()
{
    const Things objs, copyObjs;
    const MimeData data(createMimeData(nullptr, &objs, &copyObjs));
    QCOMPARE(data->data(ref).toHex(), ownReference(objs).toHex());
    QCOMPARE(data->data(copyRef).toHex(), ownReference(copyObjs).toHex());
}

void tst_ObjectPayloads::referencesReadTheListsOfNow()
{
    Things objs = makeThings("ab");
    const MimeData data(createMimeData(nullptr, &objs, nullptr));
    objs.push_back(makeThing("c"));
    objs.emplace_back();
    Things read = makeThings("x");
    QVERIFY(getFromMimeData(*data, read));
    QVERIFY(read == objs);
    objs.clear();
    QCOMPARE(namesOf(read), "a b c null ");
}

void tst_ObjectPayloads::copiesAreReadByTheirOwnReader()
{
    const Things objs = makeThings("a"), copyObjs = makeThings("b");
    const MimeData both(createMimeData(nullptr, &objs, &copyObjs));
    Things read;
    QVERIFY(getFromMimeData(*both, read));
    QVERIFY(read == objs);
    QVERIFY(getCopyFromMimeData(*both, read));
    QVERIFY(read == copyObjs);

    QVERIFY(!getCopyFromMimeData(*payload(ref, ownReference(objs)), read));
    QVERIFY(!getFromMimeData(*payload(copyRef, ownReference(copyObjs)), read));
    QVERIFY(read == copyObjs);
}

void tst_ObjectPayloads::readingTheNamedListItselfKeepsIt()
{
    Things objs = makeThings("ab");
    const Things before = objs;
    const MimeData data(createMimeData(nullptr, &objs, nullptr));
    QVERIFY(getFromMimeData(*data, objs));
    QVERIFY(objs == before);
}

void tst_ObjectPayloads::deathsWhileReadingMayChangeTheList()
{
    Things objs = makeThings("ab");
    const MimeData data(createMimeData(nullptr, &objs, nullptr));
    Things read = makeThings("x");
    bool died = false;
    read.front()->sigDelete.connect([&](SigVoidData const &) {
        died = true;
        objs.clear();
        read.clear();
    });
    QVERIFY(getFromMimeData(*data, read));
    QVERIFY(died);
    QVERIFY(objs.empty());
    QVERIFY(read.empty());
}

void tst_ObjectPayloads::foreignReferencesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    static const Things list = makeThings("a");
    const qint64 own = QCoreApplication::applicationPid();
    const QByteArray good = ownReference(list);
    QTest::newRow("another process") << reference(own + 1, &list);
    QTest::newRow("no process") << reference(0, &list);
    QTest::newRow("the process in other bytes") << reference(own << 8, &list);
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("the process alone") << good.left(4);
    QTest::newRow("15 bytes") << good.left(15);
    QTest::newRow("17 bytes") << good + '\0';
    QTest::newRow("two references") << good + good;
    QTest::newRow("a reference to nothing") << reference(own, nullptr);
}

void tst_ObjectPayloads::foreignReferencesAreRefused()
{
    QFETCH(QByteArray, bytes);
    const Things before = makeThings("x");
    Things read = before;
    QVERIFY(!getFromMimeData(*payload(ref, bytes), read));
    QVERIFY(!getCopyFromMimeData(*payload(copyRef, bytes), read));
    QVERIFY(read == before);
    QCOMPARE(reports, QStringList());
}

void tst_ObjectPayloads::xmlDescribesTheObjectsAndNotTheCopies()
{
    const Things objs = makeThings("ab"), copyObjs = makeThings("cd");
    const MimeData data(createMimeData(nameExporter(), &objs, &copyObjs));
    QCOMPARE(data->data(xml), "Clipboard a b ");
}

void tst_ObjectPayloads::exporterAndImporterHearTheirTitles()
{
    const RefT<NameExporter> exporter(new NameExporter);
    const Things objs;
    const MimeData data(createMimeData(exporter, &objs, nullptr));
    QCOMPARE(exporter->title, "");
    NameImporter importer;
    Things read;
    QVERIFY(getFromMimeData(*data, importer, read));
    QCOMPARE(importer.title, "[Clipboard]");
}

void tst_ObjectPayloads::addFaults()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QStringList>("reported");
    QTest::newRow("reports an error") << Fault::Report << QStringList();
    QTest::newRow("has no context") << Fault::NoContext << QStringList();
    QTest::newRow("raises at once") << Fault::RaiseEarly << QStringList{"no context"};
    QTest::newRow("raises an Error") << Fault::Raise << QStringList{"out of names"};
    QTest::newRow("raises a standard exception")
        << Fault::RaiseStandard << QStringList{"out of names"};
    QTest::newRow("raises a number") << Fault::RaiseNumber << QStringList{"unknown exception"};
}

void tst_ObjectPayloads::failedExportsOfferReferencesAlone_data()
{
    addFaults();
}

void tst_ObjectPayloads::failedExportsOfferReferencesAlone()
{
    QFETCH(Fault, fault);
    QFETCH(QStringList, reported);
    const Things objs = makeThings("ab"), copyObjs;
    const MimeData data(createMimeData(nameExporter(fault), &objs, &copyObjs));
    QCOMPARE(data->formats(), (QStringList{ref, copyRef}));
    Things read;
    QVERIFY(getFromMimeData(*data, read));
    QVERIFY(read == objs);
    QCOMPARE(reports,
             reported.replaceInStrings(QRegularExpression("^"), "ZR::VOM::GUI::addFormats: "));
}

void tst_ObjectPayloads::exportersMayLetEverythingGo()
{
    Things objs = makeThings("ab");
    RefT<NameExporter> exporter(new NameExporter);
    RefT<VOM::Exporter> given(exporter);
    exporter->whileExporting = [&] {
        objs.clear();
        given.reset();
    };
    PtrT<NameExporter> watched(exporter);
    exporter.reset();
    const MimeData data(createMimeData(given, &objs, nullptr));
    QCOMPARE(data->data(xml), "Clipboard a b ");
    QVERIFY(!watched);
}

void tst_ObjectPayloads::xmlReadsAsNewObjects()
{
    const Things objs = makeThings("ab");
    const MimeData data(createMimeData(nameExporter(), &objs, nullptr));
    NameImporter importer;
    Things read = makeThings("x");
    QVERIFY(getFromMimeData(*data, importer, read));
    QCOMPARE(namesOf(read), "a b ");
    QVERIFY(read[0] != objs[0]);
    QVERIFY(!importer.root); // It was there for the import alone.
}

void tst_ObjectPayloads::emptyXmlIsNone()
{
    NameImporter importer;
    const Things before = makeThings("x");
    Things read = before;
    QVERIFY(!getFromMimeData(*payload(xml, {}), importer, read));
    QVERIFY(!getFromMimeData(*payload(ref, ownReference(before)), importer, read));
    QCOMPARE(importer.title, "none");
    QVERIFY(read == before);
}

void tst_ObjectPayloads::failedImportsLeaveTheObjects_data()
{
    addFaults();
}

void tst_ObjectPayloads::failedImportsLeaveTheObjects()
{
    QFETCH(Fault, fault);
    QFETCH(QStringList, reported);
    NameImporter importer(fault);
    const Things before = makeThings("x");
    Things read = before;
    QVERIFY(!getFromMimeData(*payload(xml, "Clipboard a b "), importer, read));
    QVERIFY(read == before);
    QCOMPARE(reports,
             reported.replaceInStrings(QRegularExpression("^"), "ZR::VOM::GUI::getFromMimeData: "));
}

void tst_ObjectPayloads::importersMayChangeTheMimeData()
{
    MimeData data = payload(xml, "Clipboard a b ");
    QMimeData const &given = *data;
    NameImporter importer;
    importer.whileImporting = [&] { data.reset(); };
    Things read;
    QVERIFY(getFromMimeData(given, importer, read));
    QCOMPARE(namesOf(read), "a b ");
}

QTEST_GUILESS_MAIN(tst_ObjectPayloads)

#include "tst_ObjectPayloads.moc"
