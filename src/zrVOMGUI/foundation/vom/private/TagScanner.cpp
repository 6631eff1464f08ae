#include "zrVOMGUI/foundation/vom/private/TagScanner.h"

#include <algorithm>

namespace ZR::VOM::Xml {

void advance(Place &place, std::string_view text, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool endsLine =
            byte == '\n' || (byte == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n'));
        const bool goesOnInCharacter = (byte & 0xC0) == 0x80;
        if (endsLine)
            place = {place.line + 1, 1};
        else if (!goesOnInCharacter)
            ++place.column;
    }
}

TagScanner::TagScanner(std::string_view text, Reports &documentReports)
    : rest(text)
    , reports(documentReports)
{
    checkEncoding();
}

Place TagScanner::next()
{
    while (true) {
        skip(std::min(rest.find('<'), rest.size()));
        if (rest.empty() || !skipMarkup())
            break;
    }
    const Place start = place;
    scanAttributes();
    return start;
}

/// Of UTF-16 and UTF-32, with a mark of the byte order or without, one of the first four bytes is
/// one of these.
void TagScanner::checkEncoding()
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (startsWith(mark))
        rest.remove_prefix(mark.size());
    constexpr std::string_view foreign("\0\xFE\xFF", 3);
    if (rest.substr(0, 4).find_first_of(foreign) != std::string_view::npos)
        reports.fail(place, "the document must be in UTF-8");
}

/// Skips what begins here and is no start tag. False for a start tag.
bool TagScanner::skipMarkup()
{
    if (startsWith("<!--")) {
        skip(4);
        skipPast("-->");
    } else if (startsWith("<![CDATA[")) {
        skipPast("]]>");
    } else if (startsWith("<!")) {
        reports.fail(place, "a document type isn't accepted");
    } else if (startsWith("<?")) {
        skipPast("?>");
    } else if (startsWith("</")) {
        skipPast(">");
    } else {
        return false;
    }
    return true;
}

void TagScanner::scanAttributes()
{
    constexpr unsigned maxAttributes = 16;
    const Place start = place;
    for (unsigned numAttributes = 0; !rest.empty();) {
        skip(std::min(rest.find_first_of("=\"'>"), rest.size()));
        if (rest.empty() || rest.front() == '>')
            return;
        if (rest.front() == '=') {
            if (++numAttributes > maxAttributes)
                reports.fail(start, "an element has too many attributes");
            skip(1);
        } else {
            const std::string_view quote = rest.substr(0, 1);
            skip(1);
            skipPast(quote);
        }
    }
}

void TagScanner::skipPast(std::string_view end)
{
    const std::size_t found = rest.find(end);
    skip(found == std::string_view::npos ? rest.size() : found + end.size());
}

void TagScanner::skip(std::size_t size)
{
    advance(place, rest, size);
    rest.remove_prefix(size);
}

} // namespace ZR::VOM::Xml
