#include "zrVOMGUI/foundation/vom/XmlExporter.h"

#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/foundation/vom/private/Reports.h"
#include "zrVOMGUI/foundation/vom/private/XmlText.h"

#include <QIODevice>
#include <QXmlStreamWriter>

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace ZR::VOM {

namespace {

using namespace Xml;

/// Appends to a string what is written to it.
class StringDevice : public QIODevice {
public:
    explicit StringDevice(std::string &target)
        : text(target)
    {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(char const *written, qint64 size) override
    {
        text.append(written, static_cast<std::size_t>(size));
        return size;
    }

private:
    std::string &text;
};

/// The objects of a document, in the order in which owners name them, and their numbers.
class Contents {
public:
    // A list and no recursion: the depth follows the model.
    explicit Contents(RefT<Object> const &root)
    {
        enter(root);
        for (std::size_t i = 0; i < objects.size(); ++i) {
            const RefT<Object> owner = objects[i];
            for (std::size_t f = 0; f < owner->getNumFields(); ++f) {
                Field &field = *owner->getField(f);
                if (isOwningLinkType(field.getType()))
                    forEachLink(field, [this](RefT<Object> const &owned) { enter(owned); });
            }
        }
    }

    std::vector<RefT<Object>> const &all() const { return objects; }

    /// What links to an object are written as.
    std::string idOf(Object const *object) const
    {
        const auto found = numbers.find(object);
        return found == numbers.end() ? Text::null : std::to_string(found->second);
    }

private:
    void enter(RefT<Object> const &object)
    {
        if (numbers.try_emplace(object.get(), objects.size() + 1).second)
            objects.push_back(object);
    }

    std::vector<RefT<Object>> objects;
    std::unordered_map<Object const *, std::size_t> numbers; // From 1.
};

/// Writes one document.
class Writer {
public:
    Writer(std::string &out, Reports &documentReports, Ticker &workTicker)
        : reports(documentReports)
        , ticker(workTicker)
        , device(out)
        , xml(&device)
    {
        xml.setAutoFormatting(true);
        xml.setAutoFormattingIndent(1);
    }

    void write(RefT<Object> const &root)
    {
        const Contents contents(root);
        xml.writeStartDocument();
        xml.writeStartElement(Text::model);
        xml.writeAttribute(Text::version, Text::currentVersion);
        const double numObjects = static_cast<double>(contents.all().size());
        double numWritten = 0;
        for (RefT<Object> const &object : contents.all()) {
            ticker.tick(numWritten++ / numObjects);
            writeObject(*object, contents);
        }
        xml.writeEndDocument();
        ticker.tell(1);
    }

private:
    void writeObject(Object &object, Contents const &contents)
    {
        xml.writeStartElement(Text::object);
        xml.writeAttribute(Text::id, QString::fromStdString(contents.idOf(&object)));
        writeName(Text::className, Text::classEncoding, object.getClassInfo().name);
        writeFlags(object);
        for (std::size_t i = 0; i < object.getNumFields(); ++i) {
            Field &field = *object.getField(i);
            visitField(field, [&](auto const &typed) { writeField(typed, contents); });
        }
        xml.writeEndElement();
    }

    template <class FieldType>
    void writeField(FieldType const &field, Contents const &contents)
    {
        using Traits = typename FieldType::Traits;
        xml.writeStartElement(Text::elementOf(Traits::code));
        writeName(Text::name, Text::nameEncoding, field.name);
        writeFlags(field);
        if constexpr (isListField<FieldType>)
            writeLinks(field, contents);
        else if constexpr (Traits::isLink)
            writeLink(field, contents);
        else
            writeValue(field.get());
        xml.writeEndElement();
    }

    void writeValue(int value) { xml.writeCharacters(QString::number(value)); }
    void writeValue(double value)
    {
        xml.writeCharacters(QString::fromStdString(Text::fromReal(value)));
    }
    void writeValue(std::string const &value)
    {
        const bool isPlain = Text::isPlain(value);
        if (!isPlain)
            xml.writeAttribute(Text::encoding, Text::base64);
        xml.writeCharacters(toXmlText(value, isPlain));
    }

    template <class LinkField>
    void writeLink(LinkField const &field, Contents const &contents)
    {
        const std::string id = contents.idOf(field.get().get());
        if (id != Text::null)
            xml.writeCharacters(QString::fromStdString(id));
    }

    template <class LinkList>
    void writeLinks(LinkList const &field, Contents const &contents)
    {
        constexpr std::size_t linksPerLine = 16;
        QString line;
        for (std::size_t i = 0; i < field.getNum(); ++i) {
            const bool startsLine = i > 0 && i % linksPerLine == 0;
            if (startsLine) {
                xml.writeCharacters(line);
                line.clear();
            }
            if (i > 0)
                line += startsLine ? '\n' : ' ';
            line += QString::fromStdString(contents.idOf(field.get(i).get()));
        }
        if (!line.isEmpty())
            xml.writeCharacters(line);
    }

    void writeName(char const *attribute, char const *encodingAttribute, std::string const &name)
    {
        const bool isPlain = Text::isPlain(name);
        if (!isPlain)
            xml.writeAttribute(encodingAttribute, Text::base64);
        xml.writeAttribute(attribute, toXmlText(name, isPlain));
    }

    void writeFlags(Flags const &flags)
    {
        if (flags.getFlags() != 0)
            xml.writeAttribute(Text::flags, QString::number(flags.getFlags()));
    }

    QString toXmlText(std::string const &bytes, bool isPlain)
    {
        constexpr std::size_t maxSize = std::size_t(1) << 29; // What Qt's strings can take.
        if (bytes.size() > maxSize)
            reports.fail("a string is too long");
        const int size = static_cast<int>(bytes.size());
        if (isPlain)
            return QString::fromUtf8(bytes.data(), size);
        return QString::fromLatin1(QByteArray::fromRawData(bytes.data(), size).toBase64());
    }

    Reports &reports;
    Ticker &ticker;
    StringDevice device;
    QXmlStreamWriter xml;
};

class ExportContext : public Exporter::Context {
public:
    explicit ExportContext(RefT<Object> const &exported)
        : object(exported)
    {
    }

    void export_(std::string &out, std::string const &title, ErrorManager &errors,
                 Progress &progress) override
    {
        const std::size_t oldSize = out.size();
        Reports reports(errors, title);
        const bool isWhole = reports.guard([&] {
            if (!object)
                reports.fail("no object to write");
            Ticker ticker(progress, reports);
            Writer(out, reports, ticker).write(object);
        });
        if (!isWhole)
            out.resize(oldSize);
    }

private:
    RefT<Object> object;
};

} // namespace

XmlExporter::~XmlExporter() = default;

RefT<Exporter::Context> XmlExporter::createContext(RefT<Object> const &object)
{
    return new ExportContext(object);
}

std::string toXml(RefT<Object> const &object, ErrorManager &errors)
{
    std::string text;
    Progress progress("", false);
    ExportContext(object).export_(text, "", errors, progress);
    return text;
}

} // namespace ZR::VOM
