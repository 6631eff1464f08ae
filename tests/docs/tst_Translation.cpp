#include "zrVOMGUI/foundation/gui/QtTranslation.h"
#include "zrVOMGUI/foundation/util/text.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

/// The German catalogue as docs/hosting.md tells hosts to load it.
class tst_Translation : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void everyTextIsTranslated();
    void libraryReadsInGerman();

private:
    QTemporaryDir folder;
    QTranslator translator;
};

namespace {

constexpr char catalogue[] = ZRVOMGUI_SOURCE_DIR "/examples/translations/zrVOMGUI_de.ts";

} // namespace

void tst_Translation::initTestCase()
{
    const QString compiled = folder.filePath("zrVOMGUI_de.qm");
    QProcess lrelease;
    lrelease.setProcessChannelMode(QProcess::MergedChannels);
    lrelease.start(LRELEASE, {catalogue, "-qm", compiled});
    QVERIFY(lrelease.waitForFinished());
    QVERIFY2(lrelease.exitCode() == 0, lrelease.readAll().constData());
    QVERIFY(translator.load(compiled));
}

void tst_Translation::everyTextIsTranslated()
{
    QFile file(catalogue);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QByteArray source;
    int numTexts = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("source"))
            source = xml.readElementText().toUtf8();
        if (xml.name() != QLatin1String("translation"))
            continue;
        QCOMPARE(translator.translate("zrVOMGUI", source.constData()), xml.readElementText());
        ++numTexts;
    }
    QVERIFY(!xml.hasError());
    QVERIFY(numTexts > 0);
}

void tst_Translation::libraryReadsInGerman()
{
    char const *const text = "[ZR::VOM::GUI::ObjectTreeViewVoidRowLabel]void";
    ZR::GUI::installQtTranslation();
    QCOMPARE(ZR::getLocText(text), "void");
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(ZR::getLocText(text), "leer");
    QVERIFY(QCoreApplication::removeTranslator(&translator));
    QCOMPARE(ZR::getLocText(text), "void");
}

QTEST_MAIN(tst_Translation)

#include "tst_Translation.moc"
