#include "zrVOMGUI/foundation/util/Matrix4x4T.h"
#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"
#include "zrVOMGUI/transfer/Clipboard.h"
#include "zrVOMGUI/transfer/ClipboardObject.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace ZR::VOM;
using ZR::PtrT;
using ZR::RefT;

/// Holds the examples of docs/wire-formats.md against what the library writes and reads.
class tst_WireFormatsPage : public QObject {
    Q_OBJECT

private slots:
    void everyTypeIsThere();
    void valuesAreWrittenAsShown_data();
    void valuesAreWrittenAsShown();
    void allTypesOfAValueAreShown_data();
    void allTypesOfAValueAreShown();
    void matrixGoesRowByRow();
    void arraysAreReadAsShown();
    void referenceIsReadAsShown();
    void documentIsWrittenAsShown();
    void documentIsReadAsShown();
    void idsStandInLinesAsTold();
    void numbersAreReadAsShown_data();
    void numbersAreReadAsShown();
};

namespace {

QString page()
{
    QFile file(ZRVOMGUI_SOURCE_DIR "/docs/wire-formats.md");
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// A line of the table of examples.
struct Example {
    QString value, type;
    QByteArray payload;
    QString text;
};

QString withoutMarks(QString cell)
{
    return cell.trimmed().remove('`');
}

QList<Example> examples()
{
    QList<Example> found;
    for (QString const &line : page().split('\n')) {
        const QStringList cells = line.split('|');
        if (cells.size() != 6 || !cells[2].contains("ZR::"))
            continue;
        found.append({cells[1].trimmed(), withoutMarks(cells[2]),
                      QByteArray::fromHex(withoutMarks(cells[3]).toLatin1()),
                      withoutMarks(cells[4]).replace("\\n", "\n")});
    }
    return found;
}

/// Puts what the page calls `value` on the clipboard.
QMimeData const *copied(QString const &value)
{
    namespace Clipboard = GUI::Clipboard;
    const ZR::Bool truths[] = {true, false};
    const int integers[] = {1, 2, 300};
    const double half = 0.5;
    const std::string strings[] = {"a", "", "\xC3\xA4"};
    if (value == "true")
        Clipboard::copy(ZR::Bool(true));
    else if (value == "-2")
        Clipboard::copy(-2);
    else if (value == "1.5")
        Clipboard::copy(1.5);
    else if (value == "true, false")
        Clipboard::copy(2, truths);
    else if (value == "1, 2, 300")
        Clipboard::copy(3, integers);
    else if (value == "no integers")
        Clipboard::copy(0, integers);
    else if (value == "0.5")
        Clipboard::copy(1, &half);
    else if (value == QString::fromUtf8("\"a\", \"\", \"\xC3\xA4\""))
        Clipboard::copy(3, strings);
    else
        QGuiApplication::clipboard()->clear();
    return QGuiApplication::clipboard()->mimeData();
}

/// The house of the page, on a clipboard.
RefT<Object> makeHouse()
{
    const RefT<Object> house(new Object), roof(new Object), front(new Object), back(new Object);
    addField<FieldString>(*house, "name", "house & garden");
    addField<FieldInt>(*house, "rooms", 5);
    addField<FieldReal>(*house, "area", 120.5);
    addField<FieldString>(*house, "key", std::string("\xFF\0\x01", 3));
    addField<FieldRef>(*house, "roof", roof);
    addField<MFieldRef>(*house, "doors", MFieldRef::Values{front, back});
    addField<FieldPtr>(*house, "entrance", front);
    addField<MFieldPtr>(*house, "locked", MFieldPtr::Values{back, PtrT<Object>()});
    back->setFlags(1);
    return new Clipboard({house});
}

QString shownDocument()
{
    static const QRegularExpression block("^```xml\\n(.*?)^```$",
                                          QRegularExpression::MultilineOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    return block.match(page()).captured(1);
}

} // namespace

void tst_WireFormatsPage::everyTypeIsThere()
{
    namespace Type = GUI::MimeType;
    const QString text = page();
    for (char const *type :
         {Type::boolean, Type::integer, Type::real, Type::booleans, Type::integers, Type::reals,
          Type::strings, Type::matrix, Type::objects, Type::objectCopies, Type::objectsXml})
        QVERIFY2(text.contains(QString("| `%1` |").arg(type)), type);
}

void tst_WireFormatsPage::valuesAreWrittenAsShown_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");
    for (Example const &example : examples())
        QTest::newRow(qPrintable(example.value + " as " + example.type))
            << example.value << example.type << example.payload << example.text;
}

void tst_WireFormatsPage::valuesAreWrittenAsShown()
{
    QFETCH(QString, value);
    QFETCH(QString, type);
    QFETCH(QByteArray, payload);
    QFETCH(QString, text);
    QMimeData const *const data = copied(value);
    QVERIFY(data->hasFormat(type));
    QCOMPARE(data->data(type).toHex(), payload.toHex());
    QCOMPARE(data->text(), text);
}

void tst_WireFormatsPage::allTypesOfAValueAreShown_data()
{
    QTest::addColumn<QString>("value");
    for (Example const &example : examples())
        if (!example.type.contains(QRegularExpression("\\[\\d+\\]")))
            QTest::newRow(qPrintable(example.value)) << example.value;
}

void tst_WireFormatsPage::allTypesOfAValueAreShown()
{
    QFETCH(QString, value);
    QStringList shown;
    for (Example const &example : examples())
        if (example.value == value)
            shown << example.type;
    QStringList formats = copied(value)->formats();
    formats.removeAll("text/plain");
    QCOMPARE(formats, shown);
}

void tst_WireFormatsPage::matrixGoesRowByRow()
{
    ZR::Matrix4x4D matrix;
    matrix(0, 1) = 0.5;
    GUI::Clipboard::copyMat(matrix);
    QMimeData const *const data = QGuiApplication::clipboard()->mimeData();
    QByteArray expected;
    for (double value : {1.0, 0.5, 0., 0., 0., 1., 0., 0., 0., 0., 1., 0., 0., 0., 0., 1.})
        expected.append(reinterpret_cast<char const *>(&value), sizeof value);
    QCOMPARE(data->data(GUI::MimeType::matrix).toHex(), expected.toHex());
    QCOMPARE(data->text(), "Mat4x4( 1, 0.5, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1)");
}

void tst_WireFormatsPage::arraysAreReadAsShown()
{
    QMimeData data;
    for (Example const &example : examples())
        if (!example.payload.isEmpty())
            data.setData(example.type, example.payload);
    std::vector<int> integers;
    std::vector<double> reals;
    std::vector<std::string> strings;
    QVERIFY(GUI::getFromMimeData(data, integers));
    QVERIFY(GUI::getFromMimeData(data, reals));
    QVERIFY(GUI::getFromMimeData(data, strings));
    QCOMPARE(integers, (std::vector<int>{1, 2, 300}));
    QCOMPARE(reals, std::vector<double>{0.5});
    QCOMPARE(strings, (std::vector<std::string>{"a", "", "\xC3\xA4"}));
}

void tst_WireFormatsPage::referenceIsReadAsShown()
{
    static const QRegularExpression shown(
        "process (\\d+) at the address 0x([0-9A-F]{16}) is\\s+`([0-9A-F ]+)`");
    const QRegularExpressionMatch match = shown.match(page());
    QVERIFY(match.hasMatch());
    QByteArray bytes = QByteArray::fromHex(match.captured(3).toLatin1());
    QCOMPARE(bytes.size(), 16);
    QCOMPARE(bytes.mid(0, 8), QByteArray::fromHex("6712000000000000"));
    QCOMPARE(match.captured(1), QString::number(0x1267));
    QByteArray address = bytes.mid(8);
    std::reverse(address.begin(), address.end());
    QCOMPARE(address.toHex().toUpper(), match.captured(2).toLatin1());

    // The same for this process, which is what its reader takes.
    const std::vector<RefT<Object>> list = {new Object};
    const auto put = [&bytes](int offset, quint64 number, int size) {
        for (int i = 0; i < size; ++i)
            bytes[offset + i] = static_cast<char>(number >> (8 * i));
    };
    put(0, static_cast<quint64>(QCoreApplication::applicationPid()), 4);
    put(8, reinterpret_cast<quintptr>(&list), 8);
    QMimeData data;
    data.setData(GUI::MimeType::objects, bytes);
    std::vector<RefT<Object>> read;
    QVERIFY(GUI::getFromMimeData(data, read));
    QVERIFY(read == list);
    const std::unique_ptr<QMimeData> written(GUI::createMimeData({}, &list, nullptr));
    QCOMPARE(written->data(GUI::MimeType::objects).toHex(), bytes.toHex());
}

void tst_WireFormatsPage::documentIsWrittenAsShown()
{
    ZR::Log log;
    ZR::ErrorManager errors(log);
    QCOMPARE(QString::fromStdString(toXml(makeHouse(), errors)), shownDocument());
}

void tst_WireFormatsPage::documentIsReadAsShown()
{
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Object>(ClassRegistry::Fields::Open);
    XmlImporter importer(registry);
    QMimeData data;
    data.setData(GUI::MimeType::objectsXml, shownDocument().toUtf8());
    std::vector<RefT<Object>> objects;
    QVERIFY(GUI::getFromMimeData(data, importer, objects));
    QCOMPARE(objects.size(), std::size_t(1));
    ZR::Log log;
    ZR::ErrorManager errors(log);
    const RefT<Object> again(new Clipboard(objects));
    QCOMPARE(QString::fromStdString(toXml(again, errors)), shownDocument());
}

void tst_WireFormatsPage::idsStandInLinesAsTold()
{
    static const QRegularExpression told("a line feed after each (\\d+)");
    const int idsPerLine = told.match(page()).captured(1).toInt();
    const RefT<Object> owner(new Object);
    MFieldRef::Values parts;
    for (int i = 0; i < 2 * idsPerLine + 1; ++i)
        parts.emplace_back(new Object);
    addField<MFieldRef>(*owner, "parts", parts);
    ZR::Log log;
    ZR::ErrorManager errors(log);
    static const QRegularExpression list("<refs name=\"parts\">([^<]*)</refs>");
    const QString ids = list.match(QString::fromStdString(toXml(owner, errors))).captured(1);
    QList<int> lengths;
    for (QString const &line : ids.split('\n'))
        lengths << static_cast<int>(line.split(' ').size());
    QCOMPARE(lengths, (QList<int>{idsPerLine, idsPerLine, 1}));
}

void tst_WireFormatsPage::numbersAreReadAsShown_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("isRead");
    static const QRegularExpression row("^\\| (`[^|]+) \\| ([^|]+) \\| ([^|]+) \\|$",
                                        QRegularExpression::MultilineOption);
    static const QRegularExpression code("`([^`]+)`");
    const QString table = page().section("| Number | Read | Refused |", 1);
    QRegularExpressionMatchIterator match = row.globalMatch(table);
    while (match.hasNext()) {
        const QRegularExpressionMatch cells = match.next();
        for (QString const &place : withoutMarks(cells.captured(1)).split(", ")) {
            for (int cell : {2, 3}) {
                QRegularExpressionMatchIterator number = code.globalMatch(cells.captured(cell));
                while (number.hasNext()) {
                    const QString text = number.next().captured(1);
                    QTest::addRow("%s: %s", qPrintable(place), qPrintable(text))
                        << place << text << (cell == 2);
                }
            }
        }
    }
}

void tst_WireFormatsPage::numbersAreReadAsShown()
{
    QFETCH(QString, place);
    QFETCH(QString, number);
    QFETCH(bool, isRead);
    const QMap<QString, QString> documents{
        {"int", "<object id='1' class='ZR::VOM::Object'><int name='x'>%1</int></object>"},
        {"real", "<object id='1' class='ZR::VOM::Object'><real name='x'>%1</real></object>"},
        {"id", "<object id='%1' class='ZR::VOM::Object'/>"},
        {"flags", "<object id='1' class='ZR::VOM::Object' flags='%1'/>"},
        {"links", "<object id='1' class='ZR::VOM::Object'><ref name='x'>%1</ref></object>"
                  "<object id='7' class='ZR::VOM::Object'/>"},
    };
    QVERIFY2(documents.contains(place), "a new row of the table?");
    const RefT<ClassRegistry> registry(new ClassRegistry);
    registry->add<Object>(ClassRegistry::Fields::Open);
    for (QString const &text : {number, " \t\r\n" + number + " \t\r\n"}) {
        const QString document = "<model version='1'>" + documents[place].arg(text) + "</model>";
        ZR::Log log;
        ZR::ErrorManager errors(log);
        QCOMPARE(bool(fromXml(document.toStdString(), registry, errors)), isRead);
    }
}

QTEST_MAIN(tst_WireFormatsPage)

#include "tst_WireFormatsPage.moc"
