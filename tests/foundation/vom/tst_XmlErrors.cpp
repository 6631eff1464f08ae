#include "support/QtStrings.h"
#include "support/XmlTarget.h"

#include <QTest>

#include <string>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

/// What an importer says of documents that are wrong, and that they do no harm.
class tst_XmlErrors : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void reportsWithLineAndColumn_data();
    void reportsWithLineAndColumn();
    void refusesMalformedXml_data();
    void refusesMalformedXml();
    void reportsUnderTheTitle();
    void reportsSeveralErrors();
    void givesUpAfterManyErrors();
    void shortensLongWordsInReports();
    void refusesAnEmptyText();
    void refusesADeadTarget();
    void refusesEveryClassWithoutARegistry();
    void columnsCountCharacters();

    void refusesAnEntityBombAtOnce();
    void refusesManyAttributesAtOnce();
    void refusesNestingWithoutEnd();
    void cutDocumentLeavesTheTarget();
    void changedByteNeverHarms();
};

void tst_XmlErrors::cleanup()
{
    QCOMPARE(Watched::numLiving, 0);
}

void tst_XmlErrors::reportsWithLineAndColumn_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<std::string>("report");
    const auto row = [](char const *name, std::string const &text, char const *report) {
        QTest::newRow(name) << text << std::string(report);
    };
    const auto field = [&](char const *name, char const *fields, char const *report) {
        row(name, document(fields), report);
    };

    field("unknown field", "<int name='int'>1</int><int name='x'>2</int>",
          "line 3, column 24: the class 'Watched' has no field 'x' left");
    field("field of another type", " <real name='int'>1</real>",
          "line 3, column 2: the field 'int' is of another type");
    field("link in place of a list", "<ref name='refs'/>",
          "line 3, column 1: the field 'refs' is of another type");
    field("watching link in place of an owning one", "<ptr name='ref'/>",
          "line 3, column 1: the field 'ref' is of another type");
    field("field that is there twice", "<int name='int'>1</int>\n\n   <int name='int'>1</int>",
          "line 5, column 4: the class 'Watched' has no field 'int' left");
    field("field without a name", "<int>1</int>",
          "line 3, column 1: the attribute 'name' is missing");
    field("name with a zero", "<int nameEncoding='base64' name='aQBu'>1</int>",
          "line 3, column 1: a name holds no zero");
    for (char const *text : {"", " ", "x", "1x", "1 2", "0x1", "1.0", "+1", "2147483648",
                             "-2147483649", "99999999999999999999999", "--1"})
        field(qPrintable(QString("no int: '%1'").arg(text)),
              ("<int name='int'>" + std::string(text) + "</int>").c_str(),
              "line 3, column 1: the value of field 'int' is none");
    for (char const *text :
         {"", "x", "1,5", "1e999", "1e", "nan:", "nan:7ff800000000000", "nan:3ff0000000000000",
          "nan:7ff8000000000000x", "-nan", "nan(1)", "0x1p3"})
        field(qPrintable(QString("no real: '%1'").arg(text)),
              ("<real name='real'>" + std::string(text) + "</real>").c_str(),
              "line 3, column 1: the value of field 'real' is none");
    field("string that is no base64", "<string name='string' encoding='base64'>a</string>",
          "line 3, column 1: this is no base64");
    for (char const *text : {"YQ=", "YR==", "YQ", "YQ==x", "Y Q=="})
        field(
            qPrintable(QString("no base64: '%1'").arg(text)),
            ("<string name='string' encoding='base64'>" + std::string(text) + "</string>").c_str(),
            "line 3, column 1: this is no base64");
    field("unknown encoding", "<string name='string' encoding='hex'>AAAA</string>",
          "line 3, column 1: the encoding 'hex' is unknown");
    field("encoded int", "<int name='int' encoding='base64'>MQ==</int>",
          "line 3, column 1: only strings have an encoding");
    field("flags that are no number", "<int name='int' flags='-1'>1</int>",
          "line 3, column 1: flags are a number");
    field("flags that are too large", "<int name='int' flags='4294967296'>1</int>",
          "line 3, column 1: flags are a number");
    field("unknown attribute", "<int name='int' color='red'>1</int>",
          "line 3, column 1: the attribute 'color' is unknown");
    field("dangling owning link", "<ref name='ref'>2</ref>",
          "line 3, column 1: no object has the id 2");
    field("dangling watching link", "<ptr name='ptr'>2</ptr>",
          "line 3, column 1: no object has the id 2");
    field("dangling entry", "<ptrs name='ptrs'>1 1 - 5</ptrs>",
          "line 3, column 1: no object has the id 5");
    field("two links in a single one", "<ref name='ref'>1 1</ref>",
          "line 3, column 1: the value of field 'ref' is none");
    field("link that is no id", "<ref name='ref'>x</ref>",
          "line 3, column 1: the value of field 'ref' is none");
    field("id that is too large", "<ptrs name='ptrs'>18446744073709551615</ptrs>",
          "line 3, column 1: the value of field 'ptrs' is none");
    field("negative id", "<ptrs name='ptrs'>1 -1</ptrs>",
          "line 3, column 1: the value of field 'ptrs' is none");
    field("unknown kind of field", "\n <bool name='int'>1</bool>",
          "line 4, column 2: a field should stand here");
    field("element in a value", "<int name='int'>\n<b/></int>",
          "line 4, column 1: no element may stand here");
    field("text in an object", "<int name='int'>1</int>x",
          "line 3, column 24: no text may stand here");
    field("object in an object", "<object id='2' class='Thing'/>",
          "line 3, column 1: a field should stand here");

    const std::string link = "<ref name='ref'>2</ref>";
    row("unknown class", document(link, "<object id='2' class='Nobody'/>"),
        "line 5, column 1: the class 'Nobody' is unknown");
    row("class of the target is another",
        "<model version='1'>\n <object id='1' class='Thing'/></model>",
        "line 2, column 2: the first object is a 'Thing' and should be a 'Watched'");
    row("unknown field of a second object",
        document(link, "<object id='2' class='Fixed'>\n<int name='x'>2</int></object>"),
        "line 6, column 1: the class 'Fixed' has no field 'x' left");
    row("id that is taken",
        document(link, "<object id='2' class='Thing'/>\n<object id='2' class='Thing'/>"),
        "line 6, column 1: the id 2 is taken");
    row("the target's id is taken", document("", "<object id='1' class='Thing'/>"),
        "line 5, column 1: the id 1 is taken");
    row("object without an id", document("", "<object class='Thing'/>"),
        "line 5, column 1: an object needs a number as its id");
    row("object without a class", document(link, "<object id='2'/>"),
        "line 5, column 1: the attribute 'class' is missing");
    row("object that nobody owns", document("", "  <object id='2' class='Thing'/>"),
        "line 5, column 3: nobody owns this object");
    row("object that is only watched",
        document("<ptr name='ptr'>2</ptr>", "<object id='2' class='Thing'/>"),
        "line 5, column 1: nobody owns this object");
    row("circle of owners that nobody owns",
        document("", "<object id='2' class='Watched'><ref name='ref'>3</ref></object>"
                     "<object id='3' class='Watched'><ref name='ref'>2</ref></object>"),
        "line 5, column 1: nobody owns this object; line 5, column 64: nobody owns this object");

    row("no object", "<model version='1'></model>", "line 1, column 28: there is no object");
    row("another root", "\n<html/>", "line 2, column 1: a model should stand here");
    row("another element", "<model version='1'><objekt/></model>",
        "line 1, column 20: an object should stand here");
    row("another version", "<model version='2'/>",
        "line 1, column 1: the model's version '2' is unknown");
    row("no version", "<model/>", "line 1, column 1: the model's version '' is unknown");
    row("name space", "<model xmlns='a' version='1'/>",
        "line 1, column 1: the attribute 'xmlns' is unknown; "
        "line 1, column 31: there is no object");
    row("document type", "<?xml version='1.0'?>\n<!DOCTYPE model>\n" + document(""),
        "line 2, column 1: a document type isn't accepted");
    row("document type with an entity",
        "<!DOCTYPE model [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" +
            document("<string name='string'>&e;</string>"),
        "line 1, column 1: a document type isn't accepted");
    row("Latin 1", "<?xml version='1.0' encoding='ISO-8859-1'?>" + document(""),
        "line 1, column 1: the document must be in UTF-8");
    row("UTF-16", std::string("<\0m\0o\0d\0e\0l\0/\0>\0", 16),
        "line 1, column 1: the document must be in UTF-8");
    row("UTF-16 with a mark", std::string("\xFE\xFF\0<\0m\0/\0>", 10),
        "line 1, column 1: the document must be in UTF-8");
}

void tst_XmlErrors::reportsWithLineAndColumn()
{
    QFETCH(std::string, text);
    QFETCH(std::string, report);
    const Target target;
    QCOMPARE(import_(target.object, text), report);
    QVERIFY(target.isAsItWas());
}

void tst_XmlErrors::refusesMalformedXml_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<int>("line");
    const auto row = [](char const *name, std::string const &text, int line) {
        QTest::newRow(name) << text << line;
    };
    row("plain text", "hello", 1);
    row("one letter", "<", 1);
    row("only blanks", " \n \n", 3);
    row("only a declaration", "<?xml version='1.0'?>", 1);
    row("unknown version of XML", "<?xml version='1.1'?>" + document(""), 1);
    row("wrong end tag", document("<int name='int'>1</real>"), 3);
    row("missing end tag", "<model version='1'>\n<object id='1' class='Watched'>\n", 3);
    row("second root", document("") + "\n<model version='1'/>", 6);
    row("text behind the root", document("") + "x", 5);
    row("attribute that is there twice", document("<int name='int' name='int'>1</int>"), 3);
    row("attribute without quotes", document("<int name=int>1</int>"), 3);
    row("unknown entity", document("<string name='string'>&e;</string>"), 3);
    row("open entity", document("<string name='string'>&amp</string>"), 3);
    row("forbidden character", document("<string name='string'>\x01</string>"), 3);
    row("forbidden reference", document("<string name='string'>&#1;</string>"), 3);
    row("reference to zero", document("<string name='string'>&#0;</string>"), 3);
    row("reference to a surrogate", document("<string name='string'>&#xD800;</string>"), 3);
    row("zero byte", document("<string name='string'>" + std::string(1, '\0') + "</string>"), 3);
    row("invalid UTF-8", document("<string name='string'>\xFF</string>"), 3);
    row("end of CDATA", document("<string name='string'>]]></string>"), 3);
    row("open remark", document("<!-- "), 5);
    row("open CDATA", document("<string name='string'><![CDATA["), 5);
    row("open instruction", document("<?a "), 5);
    row("open quote", document("<int name='int>1</int>"), 3);
}

void tst_XmlErrors::refusesMalformedXml()
{
    QFETCH(std::string, text);
    QFETCH(int, line);
    const Target target;
    const std::string report = import_(target.object, text);
    const std::string place = "line " + std::to_string(line) + ", column ";
    QVERIFY2(report.compare(0, place.size(), place) == 0, report.c_str());
    QVERIFY(target.isAsItWas());
}

void tst_XmlErrors::reportsUnderTheTitle()
{
    const RefT<Object> target(new Watched);
    QCOMPARE(
        import_(target, document("<int name='x'>1</int>"), watchedRegistry(), "[Clipboard]"),
        std::string("[Clipboard]: line 3, column 1: the class 'Watched' has no field 'x' left"));
}

void tst_XmlErrors::reportsSeveralErrors()
{
    const RefT<Object> target(new Watched);
    QCOMPARE(import_(target, document("<int name='int'>x</int>\n<real name='real'>y</real>")),
             std::string("line 3, column 1: the value of field 'int' is none; "
                         "line 4, column 1: the value of field 'real' is none"));
}

void tst_XmlErrors::givesUpAfterManyErrors()
{
    std::string fields;
    for (int i = 0; i < 1000; ++i)
        fields += "<int name='int'>x</int>\n";
    XmlErrors errors;
    QVERIFY(!fromXml(document(fields), watchedRegistry(), errors.manager));
    QCOMPARE(errors.count(), 100u);
}

void tst_XmlErrors::shortensLongWordsInReports()
{
    const RefT<Object> target(new Watched);
    std::string umlauts;
    for (int i = 0; i < 1000; ++i)
        umlauts += "\xC3\xBC";
    const std::string report = import_(target, document("<int name='x" + umlauts + "'>1</int>"));
    QCOMPARE(report, "line 3, column 1: the class 'Watched' has no field 'x" +
                         umlauts.substr(0, 78) + "...' left");
}

void tst_XmlErrors::refusesAnEmptyText()
{
    const Target target;
    QVERIFY(!import_(target.object, "").empty());
    XmlErrors errors;
    Progress progress("", false);
    const auto context = XmlImporter(xmlRegistry()).createContext(target.object);
    context->import_(nullptr, 0, "", errors.manager, progress);
    context->import_(nullptr, -5, "", errors.manager, progress);
    QCOMPARE(errors.count(), 2u);
    QVERIFY(target.isAsItWas());
}

void tst_XmlErrors::refusesADeadTarget()
{
    RefT<Importer::Context> context;
    {
        Fixed target;
        context = XmlImporter(xmlRegistry()).createContext(RefT<Object>(target));
    }
    XmlErrors errors;
    Progress progress("", false);
    context->import_("<a/>", 4, "title", errors.manager, progress);
    QCOMPARE(errors.text(), std::string("title: no object to fill"));
}

void tst_XmlErrors::refusesEveryClassWithoutARegistry()
{
    XmlErrors errors;
    QVERIFY(!fromXml("<model version='1'><object id='1' class='Thing'/></model>", nullptr,
                     errors.manager));
    QCOMPARE(errors.text(), std::string("line 1, column 20: the class 'Thing' is unknown"));
}

void tst_XmlErrors::columnsCountCharacters()
{
    const RefT<Object> target(new Watched);
    QCOMPARE(import_(target, document("<string name='string'>\xC3\xBC\xF0\x9F\x98\x80\r</string>"
                                      "\r\n<!-- \xC3\xBC --><int name='x'>1</int>")),
             std::string("line 5, column 11: the class 'Watched' has no field 'x' left"));
}

void tst_XmlErrors::refusesAnEntityBombAtOnce()
{
    std::string text = "<!DOCTYPE model [<!ENTITY a0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        const std::string inner = "&a" + std::to_string(i - 1) + ";";
        text += "<!ENTITY a" + std::to_string(i) + " '" + inner + inner + "'>";
    }
    const Target target;
    QCOMPARE(import_(target.object, text + "]>" + document("<string name='string'>&a29;</string>")),
             std::string("line 1, column 1: a document type isn't accepted"));
    QVERIFY(target.isAsItWas());
}

void tst_XmlErrors::refusesManyAttributesAtOnce()
{
    // A reader compares each with each.
    std::string attributes;
    for (int i = 0; i < 1000000; ++i)
        attributes += " a" + std::to_string(i) + "='>'";
    const Target target;
    QCOMPARE(import_(target.object, document("<int" + attributes + ">1</int>")),
             std::string("line 3, column 1: an element has too many attributes"));
    QVERIFY(target.isAsItWas());
}

void tst_XmlErrors::refusesNestingWithoutEnd()
{
    std::string deep;
    for (int i = 0; i < 1000000; ++i)
        deep += "<object id='1' class='Watched'>";
    const Target target;
    QCOMPARE(import_(target.object, "<model version='1'>" + deep),
             std::string("line 1, column 51: a field should stand here"));
    QCOMPARE(import_(target.object, deep),
             std::string("line 1, column 1: a model should stand here"));
    QVERIFY(target.isAsItWas());
}

void tst_XmlErrors::cutDocumentLeavesTheTarget()
{
    const std::string text = richDocument();
    const Target target;
    // The line feed behind the last tag may be missing.
    for (std::size_t size = 0; size + 1 < text.size(); ++size) {
        QVERIFY2(!import_(target.object, text.substr(0, size)).empty(),
                 text.substr(0, size).c_str());
        QVERIFY2(target.isAsItWas(), text.substr(0, size).c_str());
    }
}

void tst_XmlErrors::changedByteNeverHarms()
{
    const std::string text = richDocument();
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (const char byte : {'\0', '<', '>', '"', '&', '1', '-', 'x', '\xFF'}) {
            std::string changed = text;
            changed[i] = byte;
            {
                const Target target;
                if (import_(target.object, changed).empty())
                    XmlModelEnd::letGo(target.object);
                else
                    QVERIFY2(target.isAsItWas(), changed.c_str());
            }
            QCOMPARE(Watched::numLiving, 0);
        }
    }
}

QTEST_APPLESS_MAIN(tst_XmlErrors)

#include "tst_XmlErrors.moc"
