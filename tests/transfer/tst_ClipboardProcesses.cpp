#include "OtherProcess.h"
#include "Payloads.h"
#include "ThingNames.h"

#include "support/QtStrings.h"
#include "support/XmlModel.h"

#include "zrVOMGUI/transfer/Clipboard.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

#include <functional>

using namespace ZR;
namespace Board = ZR::VOM::GUI::Clipboard;
using Model = VOM::Object;

using Action = std::function<void()>;
Q_DECLARE_METATYPE(Action)

/// The real clipboard, and a second process.
class tst_ClipboardProcesses : public QObject {
    Q_OBJECT

private slots:
    void init();

    void valuesArePastedElsewhere_data();
    void valuesArePastedElsewhere();
    void objectsArePastedElsewhereAsXmlAlone();
    void objectsOfAnotherProcessArePastedAsXml();
    void textsOfAnotherProcessArePasted();
    void copiesOfAnotherProcessReleaseTheObjects_data();
    void copiesOfAnotherProcessReleaseTheObjects();
    void pastesOfAnotherProcessKeepTheObjects();
    void theSelectionIsNotTouched();
};

namespace {

QClipboard &system()
{
    return *QGuiApplication::clipboard();
}

/// What a second process pastes, line by line.
QStringList pastedElsewhere()
{
    OtherProcess other("paste");
    if (!other.run() || !other.hasSucceeded())
        return {"The other process failed.", other.errors()};
    return other.output().split('\n', Qt::SkipEmptyParts);
}

} // namespace

void tst_ClipboardProcesses::init()
{
    system().clear();
}

void tst_ClipboardProcesses::valuesArePastedElsewhere_data()
{
    QTest::addColumn<Action>("copy");
    QTest::addColumn<QStringList>("pasted");
    static const std::vector<Bool> truths{true, false};
    static const std::vector<int> ints{1, -2};
    static const std::vector<double> reals{0.5, -0.25};
    static const std::vector<std::string> strings{"a", "", std::string("b\0c", 3)};
    static const std::vector<std::string> notUtf8{"\xff"};
    const auto row = [](char const *name, Action const &copy, QStringList const &pasted) {
        QTest::newRow(name) << copy << pasted;
    };

    row("a truth value", [] { Board::copy(Bool(true)); },
        {"bool true", "text true", "strings [true]"});
    row("an int", [] { Board::copy(-42); }, {"int -42", "text -42", "strings [-42]"});
    row("a real", [] { Board::copy(0.25); }, {"real 0.25", "text 0.25", "strings [0.25]"});
    row("a string", [] { Board::copy(std::string("\xe2\x82\xac")); },
        {"text %E2%82%AC", "strings [%E2%82%AC]"});
    row("truth values", [] { Board::copy(truths.size(), truths.data()); },
        {"text true%2C%20false", "bools [true false]", "strings [true%2C%20false]"});
    row("ints", [] { Board::copy(ints.size(), ints.data()); },
        {"text 1%2C%20-2", "ints [1 -2]", "strings [1%2C%20-2]"});
    row("reals", [] { Board::copy(reals.size(), reals.data()); },
        {"text 0.5%2C%20-0.25", "reals [0.5 -0.25]", "strings [0.5%2C%20-0.25]"});
    row("strings", [] { Board::copy(strings.size(), strings.data()); },
        {"text a%0A%0Ab%0A", "strings [a  b%00c]"});
    row("strings without a text", [] { Board::copy(notUtf8.size(), notUtf8.data()); },
        {"strings [%FF]"});
    row("4 MB of zero bytes",
        [] {
            system().setMimeData(payload("ZR::VOM::int[]", QByteArray(4000000, '\0')).release());
        },
        {"ints 1000000 values"});
    row("nothing", [] {}, {});
}

void tst_ClipboardProcesses::valuesArePastedElsewhere()
{
    QFETCH(Action, copy);
    QFETCH(QStringList, pasted);
    copy();
    QCOMPARE(pastedElsewhere(), pasted);
}

void tst_ClipboardProcesses::objectsArePastedElsewhereAsXmlAlone()
{
    const Things things = makeThings("ab");
    setLink(things[0], "next", things[1]);
    setLink<VOM::FieldRef>(things[1], "part", makeThing<Special>("c"));
    Board::copyObjs(RefT<VOM::Exporter>(new VOM::XmlExporter), things);
    const QByteArray xml = system().mimeData()->data("ZR::VOM::Object::XML");
    QCOMPARE(pastedElsewhere(),
             (QStringList{"objects a b ", "XML " + QString::fromLatin1(xml.toPercentEncoding())}));

    Things read;
    QVERIFY(Board::pasteObjs(read));
    QVERIFY(read == things);
}

void tst_ClipboardProcesses::objectsOfAnotherProcessArePastedAsXml()
{
    OtherProcess other("serve objects");
    QVERIFY(other.serve());
    QTRY_VERIFY(system().mimeData()->hasFormat("ZR::VOM::Object::XML"));
    QCOMPARE(system().mimeData()->data("ZR::VOM::Object::Ref").size(), 16);

    const Things before = makeThings("x");
    Things read = before;
    QVERIFY(!Board::pasteObjs(read));
    QVERIFY(read == before);
    VOM::XmlImporter importer(xmlRegistry());
    QVERIFY(Board::pasteObjs(read, importer));
    QCOMPARE(namesOf(read), "y z ");
    QVERIFY(other.stop());
}

void tst_ClipboardProcesses::textsOfAnotherProcessArePasted()
{
    OtherProcess other("serve a text");
    QVERIFY(other.serve());
    std::string text;
    QTRY_VERIFY(Board::paste(text));
    QCOMPARE(text, std::string("theirs"));
    QVERIFY(other.stop());
}

void tst_ClipboardProcesses::copiesOfAnotherProcessReleaseTheObjects_data()
{
    QTest::addColumn<QString>("deed");
    QTest::newRow("a text") << "serve a text";
    QTest::newRow("objects") << "serve objects";
}

void tst_ClipboardProcesses::copiesOfAnotherProcessReleaseTheObjects()
{
    QFETCH(QString, deed);
    Things things = makeThings("a");
    const PtrT<Model> object(things.front());
    Board::copyObjs({}, things);
    things.clear();
    QVERIFY(object);

    OtherProcess other(deed);
    QVERIFY(other.serve());
    QTRY_VERIFY(!object);
    QVERIFY(other.stop());
}

void tst_ClipboardProcesses::pastesOfAnotherProcessKeepTheObjects()
{
    Board::copyObjs({}, makeThings("a"));
    QCOMPARE(pastedElsewhere(), QStringList());
    Things read;
    QVERIFY(Board::pasteObjs(read));
    QCOMPARE(namesOf(read), "a ");
}

void tst_ClipboardProcesses::theSelectionIsNotTouched()
{
    QVERIFY(system().supportsSelection());
    system().setText("selected", QClipboard::Selection);
    Board::copy(1);
    Board::copyObjs({}, makeThings("a"));
    QCOMPARE(system().text(QClipboard::Selection), "selected");
    system().setText("selected again", QClipboard::Selection);
    std::string text;
    QVERIFY(!Board::paste(text));
    Things read;
    QVERIFY(Board::pasteObjs(read));
}

QTEST_MAIN(tst_ClipboardProcesses)

#include "tst_ClipboardProcesses.moc"
