#include "support/QtStrings.h"
#include "support/XmlModel.h"

#include "zrVOMGUI/transfer/MimeData.h"

#include <QMimeData>
#include <QTest>

#include <memory>
#include <string>

using namespace ZR;
using namespace ZR::VOM::GUI;
using Model = VOM::Object;

/// The library's own exporter and importer behind the payloads of objects.
class tst_XmlPayloads : public QObject {
    Q_OBJECT

private slots:
    void objectsCrossWithWhatTheyOwn();
    void linkBetweenTheObjectsStaysOne();
    void foreignTextLeavesTheObjects();

private:
    const RefT<VOM::Exporter> exporter{new VOM::XmlExporter};
    const RefT<VOM::Xml::Importer> importer{new VOM::XmlImporter(xmlRegistry())};
};

void tst_XmlPayloads::objectsCrossWithWhatTheyOwn()
{
    const Things objects{makeThing("a"), nullptr, RefT<Model>(new Fixed)};
    setLinks<VOM::MFieldRef>(objects[0], "parts", makeThings("xyz"));
    const std::unique_ptr<QMimeData> data(createMimeData(exporter, &objects, nullptr));
    Things read;
    QVERIFY(getFromMimeData(*data, *importer, read));
    QCOMPARE(read.size(), std::size_t(3));
    QVERIFY(read[0] != objects[0]);
    QCOMPARE(modelText(read[0]), modelText(objects[0]));
    QVERIFY(!read[1]);
    QCOMPARE(modelText(read[2]), modelText(objects[2]));
}

void tst_XmlPayloads::linkBetweenTheObjectsStaysOne()
{
    const RefT<Model> outside = makeThing("outside");
    const Things objects = makeThings("ab");
    setLinks(objects[0], "seen", {objects[1], outside});
    const std::unique_ptr<QMimeData> data(createMimeData(exporter, &objects, nullptr));
    Things read;
    QVERIFY(getFromMimeData(*data, *importer, read));
    auto const &seen = fieldOf<VOM::MFieldPtr>(read.at(0), "seen");
    QCOMPARE(seen.get(0).get(), read.at(1).get());
    QVERIFY(!seen.get(1));
}

void tst_XmlPayloads::foreignTextLeavesTheObjects()
{
    QMimeData data;
    data.setData("ZR::VOM::Object::XML",
                 "<model version='1'><object id='1' class='Thing'/></model>");
    Things read = makeThings("a");
    const Things before = read;
    QVERIFY(!getFromMimeData(data, *importer, read));
    QVERIFY(read == before);
}

QTEST_MAIN(tst_XmlPayloads)

#include "tst_XmlPayloads.moc"
