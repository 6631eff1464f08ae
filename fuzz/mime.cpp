// Arbitrary bytes under arbitrary types, for everything that reads MIME data and the clipboard.
//
// An input is a row of entries: a byte that selects the type, two bytes with the length of what
// lies under it, and that. The last entry may claim more than there is.

#include "zrVOMGUI/foundation/util/Error.h"
#include "zrVOMGUI/foundation/vom/Field.h"
#include "zrVOMGUI/foundation/vom/Importer.h"
#include "zrVOMGUI/transfer/Clipboard.h"
#include "zrVOMGUI/transfer/MimeData.h"
#include "zrVOMGUI/transfer/MimeTypes.h"

#include "require.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

using namespace ZR;
using namespace ZR::VOM::GUI;
namespace Board = ZR::VOM::GUI::Clipboard;
using Model = VOM::Object;
using Objects = std::vector<RefT<Model>>;

namespace {

/// An importer that raises, reports, or takes the text, by its first byte.
class SomeImporter : public VOM::Xml::Importer {
public:
    RefT<Context> createContext(RefT<Model> const &target) override { return {new Run(target)}; }

private:
    struct Run : Context {
        explicit Run(RefT<Model> const &importTarget)
            : target(importTarget)
        {
        }
        void import_(char const *data, int size, std::string const &, ErrorManager &errors,
                     Progress &) override
        {
            // Every byte must be there.
            const auto sum = std::count(data, data + size, 'x');
            if (data[0] == 'r')
                throw Error("refused");
            if (data[0] == 'e' || sum > 100)
                errors.report("malformed");
            if (data[0] == 'f')
                removeField(*target, *target->getField(0));
        }
        RefT<Model> target;
    };
};

/// What readers of lists find in their argument at first, to see that they leave it.
Objects const &someObjects()
{
    static const Objects objects(2, RefT<Model>(new Model));
    return objects;
}

/// The bytes that an entry claims, as far as they are there.
QByteArray takeBytes(std::uint8_t const *&cursor, std::uint8_t const *end, std::ptrdiff_t claimed)
{
    const auto size = static_cast<int>(std::min(claimed, end - cursor));
    const QByteArray bytes(reinterpret_cast<char const *>(cursor), size);
    cursor += size;
    return bytes;
}

/// Whether a reader would take the bytes for an address of this process, and look there.
bool passesAsReference(QByteArray const &bytes)
{
    const auto id = static_cast<std::int32_t>(QCoreApplication::applicationPid());
    return bytes.size() == 16 && std::memcmp(bytes.constData(), &id, sizeof id) == 0;
}

void addEntry(QMimeData &data, std::uint8_t selector, QByteArray const &bytes)
{
    static const char *const types[] = {
        MimeType::boolean,  MimeType::integer,      MimeType::real,       MimeType::booleans,
        MimeType::integers, MimeType::reals,        MimeType::strings,    MimeType::matrix,
        MimeType::objects,  MimeType::objectCopies, MimeType::objectsXml, "ZR::VOM::int[1]",
        "text/plain",       "text/uri-list",        "application/x-color"};
    constexpr std::size_t count = std::size(types);
    const std::size_t index = selector % (count + 1);
    if (index == count)
        addFormats(data, {}, &someObjects(), &someObjects());
    else if (!passesAsReference(bytes))
        data.setData(types[index], bytes);
}

std::unique_ptr<QMimeData> readInput(std::uint8_t const *cursor, std::size_t size)
{
    std::uint8_t const *const end = cursor + size;
    auto data = std::make_unique<QMimeData>();
    while (end - cursor >= 3) {
        const std::uint8_t selector = cursor[0];
        const std::ptrdiff_t claimed = cursor[1] | cursor[2] << 8;
        cursor += 3;
        addEntry(*data, selector, takeBytes(cursor, end, claimed));
    }
    return data;
}

template <class T, class Read>
void readNumbers(QMimeData const &data, char const *type, Read const &read)
{
    std::vector<T> values(3);
    const bool stored = read(values);
    require(stored == data.hasFormat(type), "an array is read if it is there");
    const auto size = static_cast<std::size_t>(data.data(type).size());
    require(values.size() == (stored ? size / sizeof(T) : 3), "an array has its values");
}

void readStrings(QMimeData const &data)
{
    std::vector<std::string> values;
    if (!getFromMimeData(data, values) || !data.hasFormat(MimeType::strings))
        return;
    const std::unique_ptr<QMimeData> written(createMimeData(values.size(), values.data()));
    std::vector<std::string> again;
    require(getFromMimeData(*written, again) && again == values, "strings are read as written");
}

template <class Read>
void readObjects(Read const &read)
{
    const Objects before{RefT<Model>(new Model)};
    Objects objects = before;
    require(read(objects) || objects == before, "what isn't read leaves the objects");
}

void readAll(QMimeData const &data)
{
    readNumbers<int>(data, MimeType::integers, [&](auto &v) { return getFromMimeData(data, v); });
    readNumbers<double>(data, MimeType::reals, [&](auto &v) { return getFromMimeData(data, v); });
    readStrings(data);
    readObjects([&](Objects &objs) { return getFromMimeData(data, objs); });
    readObjects([&](Objects &objs) { return getCopyFromMimeData(data, objs); });
    SomeImporter importer;
    readObjects([&](Objects &objs) { return getFromMimeData(data, importer, objs); });
}

template <class T>
void pasteValue(QMimeData const &data, char const *type)
{
    T value{};
    require(Board::paste(value) == !data.data(type).isEmpty(), "a value is pasted if it is there");
}

template <class T>
void pasteNumbers(QMimeData const &data, char const *type)
{
    readNumbers<T>(data, type, [](auto &values) { return Board::paste(values); });
}

void pasteAll(QMimeData const &data)
{
    pasteValue<Bool>(data, MimeType::boolean);
    pasteValue<int>(data, MimeType::integer);
    pasteValue<double>(data, MimeType::real);
    pasteNumbers<Bool>(data, MimeType::booleans);
    pasteNumbers<int>(data, MimeType::integers);
    pasteNumbers<double>(data, MimeType::reals);

    std::string text;
    require(Board::paste(text) == data.hasText(), "a text is pasted if it is there");
    std::vector<std::string> strings;
    require(Board::paste(strings) == data.hasFormat(MimeType::strings), "strings are there or not");

    readObjects([](Objects &objs) { return Board::pasteObjs(objs); });
    SomeImporter importer;
    readObjects([&](Objects &objs) { return Board::pasteObjs(objs, importer); });
}

/// The clipboard needs an application, of a platform that needs no display.
void ensureApplication()
{
    static int argc = 1;
    static char name[] = "fuzz_mime";
    static char *argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "minimal");
    static QGuiApplication application(argc, argv);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *bytes, std::size_t size)
{
    ensureApplication();
    setErrorSink([](std::string const &, std::string const &) {});

    // The watch looks at what comes next, too, as long as there are objects to hold.
    Board::copyObjs({}, someObjects());
    std::unique_ptr<QMimeData> data = readInput(bytes, size);
    readAll(*data);
    QMimeData const &given = *data;
    QGuiApplication::clipboard()->setMimeData(data.release());
    pasteAll(given);
    return 0;
}
