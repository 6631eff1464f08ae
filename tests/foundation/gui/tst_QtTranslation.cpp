#include "zrVOMGUI/foundation/gui/QtTranslation.h"
#include "zrVOMGUI/foundation/util/text.h"

#include <QCoreApplication>
#include <QTest>
#include <QTranslator>

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>

using ZR::getLocText;
using ZR::GUI::installQtTranslation;

class tst_QtTranslation : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void keyedTextIsLookedUpByItsKey();
    void textWithoutKeyIsLookedUpWhole();
    void unknownTextReadsAsWithoutTranslation_data();
    void unknownTextReadsAsWithoutTranslation();
    void translationReadsInUtf8();
    void emptyTranslationReadsEmpty();
    void contextsAreKeptApart();
    void laterCallPutsAnotherContextInPlace();
    void eachTextIsAskedForOnce();
    void languageChangeRenewsTheTexts();
    void unknownTextIsFoundAfterLanguageChange();
    void pointersStayValidOverLanguageChange();
    void translationEndsWithTheApplication();
    void nextApplicationCanTranslateAgain();
    void nothingHappensWithoutAnApplication();

private:
    void startApplication();

    std::unique_ptr<QCoreApplication> app;
};

namespace {

/// A translation table by context and source.
class Table : public QTranslator {
public:
    Table(std::initializer_list<std::pair<std::string const, QString>> entries)
        : texts(entries)
    {
        QCoreApplication::installTranslator(this);
    }

    bool isEmpty() const override { return false; }

    QString translate(char const *context, char const *source, char const *, int) const override
    {
        ++numAsked;
        const auto found = texts.find(std::string(context) + '/' + source);
        return found == texts.end() ? QString() : found->second;
    }

    mutable int numAsked = 0;

private:
    std::map<std::string, QString> texts;
};

QString locText(char const *text)
{
    return QString::fromUtf8(getLocText(text));
}

} // namespace

void tst_QtTranslation::init()
{
    startApplication();
}

void tst_QtTranslation::cleanup()
{
    app.reset();
}

void tst_QtTranslation::startApplication()
{
    static int argc = 1;
    static char name[] = "tst_QtTranslation";
    static char *argv[] = {name, nullptr};
    app = std::make_unique<QCoreApplication>(argc, argv);
}

void tst_QtTranslation::keyedTextIsLookedUpByItsKey()
{
    const Table table{{"zrVOMGUI/ZR::Size", "%1 Bytes, %2 mal"}, {"zrVOMGUI/size", "wrong"}};
    installQtTranslation();
    QCOMPARE(locText("[ZR::Size]size"), QString("%1 Bytes, %2 mal"));
}

void tst_QtTranslation::textWithoutKeyIsLookedUpWhole()
{
    const Table table{{"zrVOMGUI/size", "Größe"}, {"zrVOMGUI/[unended key", "Klammer"}};
    installQtTranslation();
    QCOMPARE(locText("size"), QString("Größe"));
    QCOMPARE(locText("[unended key"), QString("Klammer"));
}

void tst_QtTranslation::unknownTextReadsAsWithoutTranslation_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("keyed") << QByteArray("[ZR::Unknown]default");
    QTest::newRow("keyed, nothing behind the key") << QByteArray("[ZR::Unknown]");
    QTest::newRow("empty key") << QByteArray("[]default");
    QTest::newRow("no key") << QByteArray("default");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("key that never ends") << QByteArray("[default");
    QTest::newRow("key behind the text") << QByteArray("default[ZR::Size]");
}

void tst_QtTranslation::unknownTextReadsAsWithoutTranslation()
{
    QFETCH(QByteArray, text);
    const std::string plain = getLocText(text);
    const Table table{{"zrVOMGUI/ZR::Size", "Größe"}, {"zrVOMGUI/", "the table's head"}};

    installQtTranslation();

    QCOMPARE(std::string(getLocText(text)), plain);
}

void tst_QtTranslation::translationReadsInUtf8()
{
    const Table table{{"zrVOMGUI/größe", "尺寸 \U0001F4E6"}};
    installQtTranslation();
    QCOMPARE(std::string(getLocText("[größe]size")), std::string("尺寸 \U0001F4E6"));
}

void tst_QtTranslation::emptyTranslationReadsEmpty()
{
    const Table table{{"zrVOMGUI/ZR::Size", QString("")}};
    installQtTranslation();
    QCOMPARE(locText("[ZR::Size]size"), QString(""));
}

void tst_QtTranslation::contextsAreKeptApart()
{
    const Table table{{"host/ZR::Size", "Größe"}};
    installQtTranslation();
    QCOMPARE(locText("[ZR::Size]size"), QString("size"));
}

void tst_QtTranslation::laterCallPutsAnotherContextInPlace()
{
    const Table table{{"zrVOMGUI/ZR::Size", "Größe"}, {"host/ZR::Size", "Umfang"}};
    installQtTranslation();
    QCOMPARE(locText("[ZR::Size]size"), QString("Größe"));
    installQtTranslation("host");
    QCOMPARE(locText("[ZR::Size]size"), QString("Umfang"));
}

void tst_QtTranslation::eachTextIsAskedForOnce()
{
    const Table table{{"zrVOMGUI/ZR::Size", "Größe"}};
    installQtTranslation();
    char const *const first = getLocText("[ZR::Size]size");
    getLocText("[ZR::Unknown]default");
    const int asked = table.numAsked;

    const std::string sameText = "[ZR::Size]size";
    QCOMPARE(static_cast<void const *>(getLocText(sameText.c_str())),
             static_cast<void const *>(first));
    getLocText("[ZR::Unknown]default");

    QCOMPARE(table.numAsked, asked);
}

void tst_QtTranslation::languageChangeRenewsTheTexts()
{
    const Table german{{"zrVOMGUI/ZR::Size", "Größe"}};
    installQtTranslation();
    QCOMPARE(locText("[ZR::Size]size"), QString("Größe"));
    {
        const Table french{{"zrVOMGUI/ZR::Size", "taille"}};
        QCOMPARE(locText("[ZR::Size]size"), QString("taille"));
    }
    QCOMPARE(locText("[ZR::Size]size"), QString("Größe"));
}

void tst_QtTranslation::unknownTextIsFoundAfterLanguageChange()
{
    installQtTranslation();
    QCOMPARE(locText("[ZR::Size]size"), QString("size"));
    const Table table{{"zrVOMGUI/ZR::Size", "Größe"}};
    QCOMPARE(locText("[ZR::Size]size"), QString("Größe"));
}

void tst_QtTranslation::pointersStayValidOverLanguageChange()
{
    char const *german = nullptr;
    {
        const Table table{{"zrVOMGUI/ZR::Size", "a text too long for a string's own buffer"}};
        installQtTranslation();
        german = getLocText("[ZR::Size]size");
    }
    const Table table{{"zrVOMGUI/ZR::Size", "taille"}};
    QCOMPARE(locText("[ZR::Size]size"), QString("taille"));
    app.reset();
    QCOMPARE(std::string(german), std::string("a text too long for a string's own buffer"));
}

void tst_QtTranslation::translationEndsWithTheApplication()
{
    {
        const Table table{{"zrVOMGUI/a", "b"}};
        installQtTranslation();
        QCOMPARE(locText("[a]default"), QString("b"));
        app.reset();
    }
    QCOMPARE(locText("[a]default"), QString("default"));
}

void tst_QtTranslation::nextApplicationCanTranslateAgain()
{
    installQtTranslation();
    app.reset();
    startApplication();
    installQtTranslation();
    const Table table{{"zrVOMGUI/a", "b"}};
    QCOMPARE(locText("[a]default"), QString("b"));
}

void tst_QtTranslation::nothingHappensWithoutAnApplication()
{
    app.reset();
    installQtTranslation();
    QCOMPARE(locText("[a]default"), QString("default"));
}

QTEST_APPLESS_MAIN(tst_QtTranslation)

#include "tst_QtTranslation.moc"
