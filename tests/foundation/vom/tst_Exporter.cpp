#include "zrVOMGUI/foundation/vom/Exporter.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/Importer.h"

#include <QTest>

#include <string>
#include <type_traits>

using namespace ZR;
using namespace ZR::VOM;
using Object = VOM::Object;

namespace {

/// Writes the value of an object's first field, and the title.
class TextExporter : public Exporter {
public:
    RefT<Context> createContext(RefT<Object> const &object) override
    {
        return new TextContext(object);
    }

private:
    class TextContext : public Context {
    public:
        explicit TextContext(RefT<Object> const &exported)
            : object(exported)
        {
        }
        void export_(std::string &out, std::string const &title, ErrorManager &errors,
                     Progress &progress) override
        {
            if (object->getNumFields() == 0)
                errors.report("nothing to write");
            else
                out += title + ':' + static_cast<FieldString &>(*object->getField(0)).get();
            progress.setDone(1);
        }

    private:
        RefT<Object> object;
    };
};

/// Reads the value of an object's first field.
class TextImporter : public Xml::Importer {
public:
    RefT<Context> createContext(RefT<Object> const &target) override
    {
        return new TextContext(target);
    }

private:
    class TextContext : public Context {
    public:
        explicit TextContext(RefT<Object> const &filled)
            : target(filled)
        {
        }
        void import_(char const *data, int size, std::string const &title, ErrorManager &errors,
                     Progress &) override
        {
            if (size == 0)
                errors.report(title + ": empty");
            else
                static_cast<FieldString &>(*target->getField(0))
                    .set(std::string(data, std::size_t(size)));
        }

    private:
        RefT<Object> target;
    };
};

static_assert(std::is_base_of_v<Class, Exporter> && std::is_base_of_v<Class, Exporter::Context>);
static_assert(std::is_base_of_v<Class, Importer> && std::is_base_of_v<Class, Importer::Context>);
static_assert(std::is_base_of_v<VOM::Importer, Xml::Importer>);
static_assert(std::is_same_v<Xml::Importer::Context, VOM::Importer::Context>);
static_assert(std::is_abstract_v<Exporter> && std::is_abstract_v<Exporter::Context>);
static_assert(std::is_abstract_v<Xml::Importer> && std::is_abstract_v<Importer::Context>);

} // namespace

/// The shape that hosts fill: both are reached through their abstract classes.
class tst_Exporter : public QObject {
    Q_OBJECT

private slots:
    void hostsExporterWritesAnObjectOnTheStack();
    void hostsExporterReportsErrors();
    void hostsImporterFillsItsTarget();
    void hostsImporterReportsErrorsUnderTheTitle();
};

void tst_Exporter::hostsExporterWritesAnObjectOnTheStack()
{
    const RefT<Exporter> exporter(new TextExporter);
    Object object(0);
    addField<FieldString>(object, "text", "value");
    Log log;
    ErrorManager errors(log);
    Progress progress("", false);
    std::string out = "before ";
    exporter->createContext(RefT<Object>(object))->export_(out, "title", errors, progress);
    QCOMPARE(out, std::string("before title:value"));
    QCOMPARE(errors.errorCount, 0u);
}

void tst_Exporter::hostsExporterReportsErrors()
{
    const RefT<Exporter> exporter(new TextExporter);
    Log log;
    ErrorManager errors(log);
    Progress progress("", false);
    std::string out;
    const RefT<Object> empty(new Object(0));
    exporter->createContext(empty)->export_(out, "", errors, progress);
    QCOMPARE(errors.errorCount, 1u);
}

void tst_Exporter::hostsImporterFillsItsTarget()
{
    const RefT<Xml::Importer> importer(new TextImporter);
    Object target(0);
    auto &field = addField<FieldString>(target, "text");
    Log log;
    ErrorManager errors(log);
    Progress progress("", false);
    importer->createContext(RefT<Object>(target))
        ->import_("value and more", 5, "[Clipboard]", errors, progress);
    QCOMPARE(field.get(), std::string("value"));
}

void tst_Exporter::hostsImporterReportsErrorsUnderTheTitle()
{
    const RefT<Xml::Importer> importer(new TextImporter);
    const RefT<Object> target(new Object(0));
    Log log;
    ErrorManager errors(log);
    Progress progress("", false);
    importer->createContext(target)->import_("", 0, "[Clipboard]", errors, progress);
    QCOMPARE(errors.errorCount, 1u);
    QCOMPARE(log.getMessages().at(0), std::string("[Clipboard]: empty"));
}

QTEST_APPLESS_MAIN(tst_Exporter)

#include "tst_Exporter.moc"
