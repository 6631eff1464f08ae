#include "NameLists.h"
#include "Payloads.h"

#include "support/QtStrings.h"

#include "zrVOMGUI/foundation/util/Matrix4x4T.h"
#include "zrVOMGUI/transfer/Clipboard.h"
#include "zrVOMGUI/transfer/MimeData.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

#include <cstring>

using namespace ZR;
namespace Board = ZR::VOM::GUI::Clipboard;
using Strings = std::vector<std::string>;

using Action = std::function<void()>;
Q_DECLARE_METATYPE(Action)
Q_DECLARE_METATYPE(Strings)

class tst_Clipboard : public QObject {
    Q_OBJECT

private slots:
    void init();

    void copiesHaveTheWritersFormats_data();
    void copiesHaveTheWritersFormats();
    void arraysThatAreTooLargeLeaveTheClipboardEmpty();
    void copiesArePastedAgain();
    void textsOfCopiesArePasted_data();
    void textsOfCopiesArePasted();
    void textsArePastedUpToAZeroCharacter();

    void emptyClipboardsLeaveTheValues();
    void otherFormatsLeaveTheValues();
    void digitsAreNotPastedAsNumbers();
    void payloadsOfAnotherSizeReplaceAsManyBytes_data();
    void payloadsOfAnotherSizeReplaceAsManyBytes();
    void arraysOfEverySizeArePasted_data();
    void arraysOfEverySizeArePasted();
    void stringsArePastedAsEmptyOnesByTheSize_data();
    void stringsArePastedAsEmptyOnesByTheSize();
    void stringsAreReadFromTheClipboardsData();

    void objectsArePastedByReferenceAndAsXml();
    void referenceAndXmlDontStandInForEachOther();
    void copiesByReferenceAreNotPasted();
    void failedExportersLeaveTheReference();
};

namespace {

QClipboard &system()
{
    return *QGuiApplication::clipboard();
}

void put(char const *type, QByteArray const &bytes)
{
    system().setMimeData(payload(type, bytes).release());
}

template <class T>
T pasted(T value = T())
{
    if (!Board::paste(value))
        throw std::runtime_error("Nothing was pasted.");
    return value;
}

template <class T>
bool leaves(T const &before)
{
    T value = before;
    return !Board::paste(value) && value == before;
}

/// Whether no paste finds anything, or changes anything.
bool nothingIsPasted()
{
    const Things before = makeThings("x");
    Things objects = before;
    NameImporter importer;
    return leaves(Bool(true)) && leaves(7) && leaves(0.5) && leaves(std::string("kept")) &&
           leaves(std::vector<Bool>{true}) && leaves(std::vector<int>{7}) &&
           leaves(std::vector<double>{0.5}) && leaves(Strings{"kept"}) &&
           !Board::pasteObjs(objects) && !Board::pasteObjs(objects, importer) && objects == before;
}

} // namespace

void tst_Clipboard::init()
{
    system().clear();
}

void tst_Clipboard::copiesHaveTheWritersFormats_data()
{
    QTest::addColumn<Action>("copy");
    QTest::addColumn<QString>("offered");
    const auto row = [](char const *name, Action const &copy, QStringList const &lines) {
        QTest::newRow(name) << copy << lines.join('\n');
    };
    static const Bool truths[] = {true, false};
    static const int ints[] = {1, 2};
    static const double reals[] = {0.5};
    static const std::string strings[] = {"a", "b"};

    row("a truth value", [] { Board::copy(Bool(true)); }, {"ZR::VOM::bool 01", "text \"true\""});
    row("an int", [] { Board::copy(42); }, {"ZR::VOM::int 2a000000", "text \"42\""});
    row("a real", [] { Board::copy(0.5); }, {"ZR::VOM::real 000000000000e03f", "text \"0.5\""});
    row("a string", [] { Board::copy(std::string("word")); }, {"text \"word\""});
    row("truth values", [] { Board::copy(2, truths); },
        {"ZR::VOM::bool[] 0100", "ZR::VOM::bool[2] 0100", "text \"true, false\""});
    row("ints", [] { Board::copy(2, ints); },
        {"ZR::VOM::int[] 0100000002000000", "ZR::VOM::int[2] 0100000002000000", "text \"1, 2\""});
    row("reals", [] { Board::copy(1, reals); },
        {"ZR::VOM::real[] 000000000000e03f", "ZR::VOM::real[1] 000000000000e03f", "text \"0.5\""});
    row("strings", [] { Board::copy(2, strings); },
        {"ZR::VOM::string[] 01610162", "ZR::VOM::string[2] 01610162", "text \"a\nb\n\""});
    row("a matrix", [] { Board::copyMat(Matrix4x4D(std::array<double, 16>())); },
        {"ZR::Matrix4x4D " + QString(256, '0'),
         "text \"Mat4x4( 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)\""});
}

void tst_Clipboard::copiesHaveTheWritersFormats()
{
    QFETCH(Action, copy);
    QFETCH(QString, offered);
    copy();
    QCOMPARE(dump(*system().mimeData()), offered);
}

void tst_Clipboard::arraysThatAreTooLargeLeaveTheClipboardEmpty()
{
    const int one = 1;
    Board::copy(42);
    Board::copy(std::size_t(1) << 29, &one);
    QVERIFY(nothingIsPasted());
}

void tst_Clipboard::copiesArePastedAgain()
{
    const std::vector<Bool> truths{true, false};
    const std::vector<int> ints{1, -2};
    const std::vector<double> reals{0.5, -0.25};

    Board::copy(Bool(true));
    QCOMPARE(pasted<Bool>(), Bool(true));
    Board::copy(-42);
    QCOMPARE(pasted<int>(), -42);
    Board::copy(0.1);
    QCOMPARE(pasted<double>(), 0.1);
    Board::copy(std::string("gr\xc3\xbcn"));
    QCOMPARE(pasted<std::string>(), std::string("gr\xc3\xbcn"));
    Board::copy(truths.size(), truths.data());
    QCOMPARE(pasted<std::vector<Bool>>(), truths);
    Board::copy(ints.size(), ints.data());
    QCOMPARE(pasted<std::vector<int>>(), ints);
    Board::copy(reals.size(), reals.data());
    QCOMPARE(pasted<std::vector<double>>(), reals);
}

void tst_Clipboard::textsOfCopiesArePasted_data()
{
    QTest::addColumn<Action>("copy");
    QTest::addColumn<std::string>("text");
    static const int ints[] = {1, 2};
    static const std::string strings[] = {"a", "b"};
    const auto row = [](char const *name, Action const &copy, std::string const &text) {
        QTest::newRow(name) << copy << text;
    };
    row(
        "a truth value", [] { Board::copy(Bool(false)); }, "false");
    row(
        "an int", [] { Board::copy(42); }, "42");
    row(
        "a real", [] { Board::copy(0.5); }, "0.5");
    row(
        "a string", [] { Board::copy(std::string("word")); }, "word");
    row(
        "an empty string", [] { Board::copy(std::string()); }, "");
    row(
        "ints", [] { Board::copy(2, ints); }, "1, 2");
    row(
        "strings", [] { Board::copy(2, strings); }, "a\nb\n");
    row(
        "a text of another program", [] { system().setText("theirs"); }, "theirs");
}

void tst_Clipboard::textsOfCopiesArePasted()
{
    QFETCH(Action, copy);
    QFETCH(std::string, text);
    copy();
    QCOMPARE(pasted<std::string>("gone"), text);
}

void tst_Clipboard::textsArePastedUpToAZeroCharacter()
{
    system().setText(QString::fromUtf8("ab\0cd", 5));
    QCOMPARE(pasted<std::string>(), std::string("ab"));
}

void tst_Clipboard::emptyClipboardsLeaveTheValues()
{
    QVERIFY(nothingIsPasted());
}

void tst_Clipboard::otherFormatsLeaveTheValues()
{
    put("application/x-other", QByteArray(64, '\1'));
    QVERIFY(nothingIsPasted());
    Board::copyMat(Matrix4x4D());
    QVERIFY(leaves(std::vector<double>{0.5}));
    QVERIFY(leaves(0.5));
}

void tst_Clipboard::digitsAreNotPastedAsNumbers()
{
    system().setText("42");
    QVERIFY(leaves(7));
    QVERIFY(leaves(0.5));
    QVERIFY(leaves(std::vector<int>{7}));
    QVERIFY(leaves(Strings{"kept"}));
    system().setText("true");
    QVERIFY(leaves(Bool(false)));
}

void tst_Clipboard::payloadsOfAnotherSizeReplaceAsManyBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("stored");
    QTest::addColumn<int>("asInt"); // Begins as 0x11111111.
    QTest::newRow("nothing") << QByteArray() << false << 0x11111111;
    QTest::newRow("1 byte") << QByteArray("\xab", 1) << true << 0x111111ab;
    QTest::newRow("3 bytes") << QByteArray("\xab\xcd\x0f", 3) << true << 0x110fcdab;
    QTest::newRow("4 bytes") << QByteArray("\1\0\0\0", 4) << true << 1;
    QTest::newRow("5 bytes") << QByteArray("\1\0\0\0\xff", 5) << true << 1;
    QTest::newRow("a million bytes") << QByteArray(1000000, '\2') << true << 0x02020202;
}

void tst_Clipboard::payloadsOfAnotherSizeReplaceAsManyBytes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, stored);
    QFETCH(int, asInt);
    put("ZR::VOM::int", bytes);
    int integer = 0x11111111;
    QCOMPARE(Board::paste(integer), stored);
    QCOMPARE(integer, asInt);

    put("ZR::VOM::real", bytes);
    const double before = 0.1;
    double real = before;
    QCOMPARE(Board::paste(real), stored);
    QByteArray expected(reinterpret_cast<char const *>(&before), sizeof before);
    expected.replace(0, qMin(bytes.size(), 8), bytes.left(8));
    QCOMPARE(QByteArray(reinterpret_cast<char const *>(&real), sizeof real), expected);

    put("ZR::VOM::bool", bytes);
    Bool truth = false;
    QCOMPARE(Board::paste(truth), stored);
    QCOMPARE(truth, Bool(stored));
}

void tst_Clipboard::arraysOfEverySizeArePasted_data()
{
    QTest::addColumn<int>("size");
    for (int size : {0, 1, 3, 4, 6, 7, 8, 15, 16, 17, 1000001})
        QTest::addRow("%d bytes", size) << size;
}

void tst_Clipboard::arraysOfEverySizeArePasted()
{
    QFETCH(int, size);
    const auto count = static_cast<std::size_t>(size);
    const QByteArray bytes(size, '\1');
    put("ZR::VOM::bool[]", bytes);
    QCOMPARE(pasted(std::vector<Bool>(3)), std::vector<Bool>(count, true));
    put("ZR::VOM::int[]", bytes);
    QCOMPARE(pasted(std::vector<int>(3)), std::vector<int>(count / 4, 0x01010101));
    put("ZR::VOM::real[]", bytes);
    double ones = 0;
    std::memset(&ones, 1, sizeof ones);
    QCOMPARE(pasted(std::vector<double>(3)), std::vector<double>(count / 8, ones));
}

void tst_Clipboard::stringsArePastedAsEmptyOnesByTheSize_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("count");
    QTest::newRow("an empty payload") << 0 << 0;
    QTest::newRow("one byte less than an element") << 31 << 0;
    QTest::newRow("an element") << 32 << 1;
    QTest::newRow("one byte less than two") << 63 << 1;
    QTest::newRow("two elements") << 64 << 2;
    QTest::newRow("many") << 3200031 << 100000;
}

void tst_Clipboard::stringsArePastedAsEmptyOnesByTheSize()
{
    QFETCH(int, size);
    QFETCH(int, count);
    put("ZR::VOM::string[]", QByteArray(size, '\x7f'));
    QCOMPARE(pasted(Strings{"gone", "gone"}), Strings(static_cast<std::size_t>(count)));
}

void tst_Clipboard::stringsAreReadFromTheClipboardsData()
{
    const Strings strings{"a", std::string("b\0c", 3)};
    Board::copy(strings.size(), strings.data());
    Strings read;
    QVERIFY(VOM::GUI::getFromMimeData(*system().mimeData(), read));
    QCOMPARE(read, strings);
}

void tst_Clipboard::objectsArePastedByReferenceAndAsXml()
{
    const Things things = makeThings("ab");
    Board::copyObjs(RefT<VOM::Exporter>(new NameExporter), things);
    QCOMPARE(system().mimeData()->formats(),
             (QStringList{"ZR::VOM::Object::Ref", "ZR::VOM::Object::XML"}));

    Things read = makeThings("x");
    QVERIFY(Board::pasteObjs(read));
    QVERIFY(read == things);
    NameImporter importer;
    QVERIFY(Board::pasteObjs(read, importer));
    QCOMPARE(namesOf(read), "a b ");
    QVERIFY(read[0] != things[0]);
}

void tst_Clipboard::referenceAndXmlDontStandInForEachOther()
{
    const Things before = makeThings("x");
    Things read = before;
    NameImporter importer;
    Board::copyObjs({}, makeThings("ab"));
    QVERIFY(!Board::pasteObjs(read, importer));
    put("ZR::VOM::Object::XML", "Clipboard a b ");
    QVERIFY(!Board::pasteObjs(read));
    QVERIFY(read == before);
    QVERIFY(Board::pasteObjs(read, importer));
}

void tst_Clipboard::copiesByReferenceAreNotPasted()
{
    const Things objs = makeThings("a"), copyObjs = makeThings("b");
    const MimeData both(VOM::GUI::createMimeData({}, &objs, &copyObjs));
    put("ZR::VOM::Object::Copy::Ref", both->data("ZR::VOM::Object::Copy::Ref"));
    QVERIFY(nothingIsPasted());
}

void tst_Clipboard::failedExportersLeaveTheReference()
{
    const Things things = makeThings("ab");
    Board::copyObjs(RefT<VOM::Exporter>(new NameExporter(Fault::Report)), things);
    QCOMPARE(system().mimeData()->formats(), QStringList{"ZR::VOM::Object::Ref"});
    Things read;
    QVERIFY(Board::pasteObjs(read));
    QVERIFY(read == things);
}

QTEST_MAIN(tst_Clipboard)

#include "tst_Clipboard.moc"
