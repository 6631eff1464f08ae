#include "Language.h"

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/trees/ObjectTreeView.h"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace ZR::VOM;
using ZR::RefT;

/// The catalogue of the library's texts, and the explorer's switch.
class tst_Language : public QObject {
    Q_OBJECT

private slots:
    void catalogueHasEveryText_data();
    void catalogueHasEveryText();
    void catalogueHasNothingElse();
    void otherContextsAreNotItsAffair();
    void libraryReadsInGerman();
    void shownLabelsFollow();
};

namespace {

/// The library's texts: default texts by their keys.
QMap<QString, QString> libraryTexts()
{
    static const QRegularExpression text("\"\\[(ZR::[\\w:]+)\\]([^\"]*)\"");
    QMap<QString, QString> texts;
    QDirIterator iterator(ZRVOMGUI_SOURCE_DIR "/src", {"*.h", "*.cpp"}, QDir::Files,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        QFile file(iterator.next());
        file.open(QIODevice::ReadOnly);
        QRegularExpressionMatchIterator match = text.globalMatch(QString::fromUtf8(file.readAll()));
        while (match.hasNext()) {
            const QRegularExpressionMatch found = match.next();
            texts[found.captured(1)] = found.captured(2);
        }
    }
    return texts;
}

/// %1, %2 and so on, sorted.
QStringList placesIn(QString const &text)
{
    static const QRegularExpression place("%\\d+");
    QStringList places;
    QRegularExpressionMatchIterator match = place.globalMatch(text);
    while (match.hasNext())
        places << match.next().captured();
    places.sort();
    return places;
}

constexpr char germanFile[] = ZRVOMGUI_SOURCE_DIR "/examples/translations/zrVOMGUI_de.ts";

} // namespace

void tst_Language::catalogueHasEveryText_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    const QMap<QString, QString> texts = libraryTexts();
    for (QString const &key : texts.keys())
        QTest::newRow(qPrintable(key)) << key << texts[key];
}

void tst_Language::catalogueHasEveryText()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    const Explorer::Catalogue catalogue(germanFile);
    const QString german = catalogue.translate("zrVOMGUI", key.toUtf8().constData(), nullptr, -1);
    QVERIFY(!german.isEmpty());
    QCOMPARE(placesIn(german), placesIn(text));
}

void tst_Language::catalogueHasNothingElse()
{
    QFile file(germanFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    static const QRegularExpression source("<source>(.*)</source>");
    QStringList keys;
    QRegularExpressionMatchIterator match = source.globalMatch(QString::fromUtf8(file.readAll()));
    while (match.hasNext())
        keys << match.next().captured(1);
    QCOMPARE(keys, QStringList(libraryTexts().keys()));
}

void tst_Language::otherContextsAreNotItsAffair()
{
    const Explorer::Catalogue catalogue(germanFile);
    QVERIFY(catalogue.translate("other", "ZR::GUI::TreeRowLevel", nullptr, -1).isNull());
    QVERIFY(catalogue.translate("zrVOMGUI", "other", nullptr, -1).isNull());
}

void tst_Language::libraryReadsInGerman()
{
    char const *const text = "[ZR::VOM::GUI::ObjectTreeViewVoidRowLabel]void";
    Explorer::setGerman(true);
    QCOMPARE(ZR::getLocText(text), "leer");
    Explorer::setGerman(false);
    QCOMPARE(ZR::getLocText(text), "void");
}

void tst_Language::shownLabelsFollow()
{
    const RefT<Object> house(new Object);
    addField<FieldString>(*house, "name", "house");
    QWidget window;
    GUI::ObjectTreeView tree(&window);
    tree.setNameField("name");
    tree.setTypeName(false);
    tree.addRow(house, 0);
    tree.setSel({Path(*house)});
    const auto shown = [&tree] {
        tree.grab(); // Rows are made up when they come into sight.
        return tree.getSel().front()->getText();
    };
    QCOMPARE(shown(), QString("'house'"));
    Explorer::setGerman(true);
    QCOMPARE(shown(), QString::fromUtf8("\u201Ehouse\u201C"));
    Explorer::setGerman(false);
    QCOMPARE(shown(), QString("'house'"));
    QVERIFY(!tree.isTypeName());
}

QTEST_MAIN(tst_Language)

#include "tst_Language.moc"
