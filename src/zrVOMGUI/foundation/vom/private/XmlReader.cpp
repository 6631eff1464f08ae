#include "zrVOMGUI/foundation/vom/private/XmlReader.h"

#include "zrVOMGUI/foundation/util/text.h"
#include "zrVOMGUI/foundation/vom/linkFields.h"
#include "zrVOMGUI/foundation/vom/private/TagScanner.h"
#include "zrVOMGUI/foundation/vom/private/XmlText.h"

#include <QBuffer>
#include <QXmlStreamReader>

#include <algorithm>
#include <initializer_list>

namespace ZR::VOM::Xml {

namespace {

class Reader {
public:
    Reader(char const *bytes, std::size_t size, Reports &documentReports, Ticker &workTicker)
        : reports(documentReports)
        , ticker(workTicker)
        , scanner({bytes, size}, documentReports)
        , content(QByteArray::fromRawData(bytes, static_cast<int>(size)))
        , device(&content)
        , xml(&device)
    {
        device.open(QIODevice::ReadOnly);
        xml.setNamespaceProcessing(false);
    }

    Document read()
    {
        Document document;
        readStart();
        while (nextChild()) {
            if (xml.name() != QLatin1String(Text::object))
                reports.fail(place, "an object should stand here");
            document.objects.push_back(readObject());
        }
        nextChild(); // To the end of the document; a second root is an error of XML.
        if (document.objects.empty())
            reports.fail(place, "there is no object");
        return document;
    }

private:
    void readStart()
    {
        advance();
        const QString encoding = xml.documentEncoding().toString();
        if (!encoding.isEmpty() && encoding.compare("UTF-8", Qt::CaseInsensitive) != 0)
            reports.fail(place, "the document must be in UTF-8");
        nextTag = scanner.next();
        nextChild();
        if (xml.name() != QLatin1String(Text::model))
            reports.fail(place, "a model should stand here");
        allowAttributes({Text::version});
        const std::string version = attribute(Text::version);
        if (version != Text::currentVersion)
            reports.fail(place, "the model's version " + quoted(version) + " is unknown");
    }

    ObjectRecord readObject()
    {
        ObjectRecord object;
        object.place = place;
        allowAttributes({Text::id, Text::className, Text::classEncoding, Text::flags});
        if (!Text::toId(attribute(Text::id), object.id) || object.id == noLink)
            reports.report(place, "an object needs a number as its id");
        object.className = readName(Text::className, Text::classEncoding);
        object.flags = readFlags();
        while (nextChild())
            object.fields.push_back(readField());
        return object;
    }

    FieldRecord readField()
    {
        FieldRecord field;
        field.place = place;
        field.type = Text::typeOf(xml.name().toString().toStdString());
        if (field.type == 0)
            reports.fail(place, "a field should stand here");
        allowAttributes({Text::name, Text::nameEncoding, Text::flags, Text::encoding});
        field.name = readName(Text::name, Text::nameEncoding);
        field.flags = readFlags();
        const bool isEncoded = readEncoding(Text::encoding);
        if (isEncoded && field.type != 4)
            reports.report(place, "only strings have an encoding");
        readValue(field, decoded(readText(), isEncoded, field.place));
        return field;
    }

    void readValue(FieldRecord &field, std::string &&text)
    {
        const auto read = [&](auto value, auto const &parse) {
            if (!parse(text, value))
                reports.report(field.place,
                               "the value of field " + quoted(field.name) + " is none");
            field.value = std::move(value);
        };
        if (field.type == 2)
            read(0, Text::toInt);
        else if (field.type == 3)
            read(0.0, Text::toReal);
        else if (field.type == 4)
            field.value = std::move(text);
        else
            read(Links(), isLinkListType(field.type) ? toLinks : toLink);
    }

    static bool toLinks(std::string_view text, Links &links)
    {
        for (auto word = Text::takeWord(text); !word.empty(); word = Text::takeWord(text)) {
            Link link = noLink;
            if (word != Text::null && (!Text::toId(word, link) || link == noLink))
                return false;
            links.push_back(link);
        }
        return true;
    }

    static bool toLink(std::string_view text, Links &links)
    {
        if (!toLinks(text, links) || links.size() > 1)
            return false;
        links.resize(1, noLink);
        return true;
    }

    /// Moves to the start of the next element inside this one. False at this one's end.
    bool nextChild()
    {
        while (true) {
            switch (advance()) {
            case QXmlStreamReader::StartElement:
                return true;
            case QXmlStreamReader::EndElement:
            case QXmlStreamReader::EndDocument:
                return false;
            case QXmlStreamReader::Characters:
                if (!xml.isWhitespace())
                    reports.fail(place, "no text may stand here");
                break;
            default:
                break;
            }
        }
    }

    /// What stands in this element, which holds nothing but text, and moves to its end.
    std::string readText()
    {
        QString text;
        while (true) {
            switch (advance()) {
            case QXmlStreamReader::EndElement:
                return text.toStdString();
            case QXmlStreamReader::StartElement:
                reports.fail(place, "no element may stand here");
            case QXmlStreamReader::Characters:
                text += xml.text();
                break;
            default:
                break;
            }
        }
    }

    QXmlStreamReader::TokenType advance()
    {
        place = here();
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (xml.hasError())
            failAsReader();
        if (token == QXmlStreamReader::StartElement) {
            place = nextTag;
            nextTag = scanner.next();
        }
        ticker.tick(static_cast<double>(xml.characterOffset()) / (content.size() + 1.0) / 2);
        return token;
    }

    /// The XML reader has stopped. Of text that isn't UTF-8, or ends too early, it doesn't tell
    /// where that is.
    [[noreturn]] void failAsReader()
    {
        const std::string text = content.toStdString();
        char const *invalid = nullptr;
        std::size_t offset = text.size();
        const bool isUtf8 = validateUtf8(text.c_str(), invalid);
        if (!isUtf8)
            offset = static_cast<std::size_t>(invalid - text.c_str());
        else if (xml.error() != QXmlStreamReader::PrematureEndOfDocumentError)
            reports.fail(here(), xml.errorString().toStdString());
        Place stop;
        Xml::advance(stop, text, offset);
        reports.fail(stop, isUtf8 ? "the document ends too early" : "this is no UTF-8");
    }

    Place here() const { return {xml.lineNumber(), xml.columnNumber() + 1}; }

    void allowAttributes(std::initializer_list<char const *> allowed)
    {
        for (QXmlStreamAttribute const &given : xml.attributes()) {
            const auto isGiven = [&](char const *name) {
                return given.qualifiedName() == QLatin1String(name);
            };
            if (std::none_of(allowed.begin(), allowed.end(), isGiven))
                reports.report(place, "the attribute " +
                                          quoted(given.qualifiedName().toString().toStdString()) +
                                          " is unknown");
        }
    }

    std::string attribute(char const *name) const
    {
        return xml.attributes().value(QLatin1String(name)).toString().toStdString();
    }

    /// Names are zero-terminated in the model.
    std::string readName(char const *nameAttribute, char const *encodingAttribute)
    {
        if (!xml.attributes().hasAttribute(QLatin1String(nameAttribute)))
            reports.report(place, "the attribute " + quoted(nameAttribute) + " is missing");
        std::string name =
            decoded(attribute(nameAttribute), readEncoding(encodingAttribute), place);
        if (name.find('\0') != std::string::npos)
            reports.report(place, "a name holds no zero");
        return name;
    }

    unsigned readFlags()
    {
        unsigned flags = 0;
        if (xml.attributes().hasAttribute(QLatin1String(Text::flags)) &&
            !Text::toUnsigned(attribute(Text::flags), flags))
            reports.report(place, "flags are a number");
        return flags;
    }

    bool readEncoding(char const *name)
    {
        if (!xml.attributes().hasAttribute(QLatin1String(name)))
            return false;
        if (attribute(name) != Text::base64)
            reports.report(place, "the encoding " + quoted(attribute(name)) + " is unknown");
        return true;
    }

    std::string decoded(std::string &&text, bool isEncoded, Place at)
    {
        if (!isEncoded)
            return std::move(text);
        const QByteArray encoded =
            QByteArray::fromRawData(text.data(), static_cast<int>(text.size())).trimmed();
        const QByteArray bytes = QByteArray::fromBase64(encoded);
        // Qt reads past what is no base64, or not the whole of it.
        if (bytes.toBase64() != encoded)
            reports.report(at, "this is no base64");
        return bytes.toStdString();
    }

    Reports &reports;
    Ticker &ticker;
    TagScanner scanner;
    QByteArray content; // Not a copy.
    QBuffer device;
    QXmlStreamReader xml;
    Place place;   // Where the current token begins.
    Place nextTag; // Where the next start tag begins.
};

} // namespace

Document readDocument(char const *bytes, std::size_t size, Reports &reports, Ticker &ticker)
{
    return Reader(bytes, size, reports, ticker).read();
}

} // namespace ZR::VOM::Xml
