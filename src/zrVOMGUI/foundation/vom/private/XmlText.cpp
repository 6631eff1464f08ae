#include "zrVOMGUI/foundation/vom/private/XmlText.h"

#include "zrVOMGUI/foundation/util/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace ZR::VOM::Xml::Text {

namespace {

struct Element {
    int type;
    char const *name;
};
constexpr Element elements[] = {{2, "int"}, {3, "real"},  {4, "string"}, {5, "ptr"},
                                {6, "ref"}, {11, "ptrs"}, {12, "refs"}};

constexpr char blanks[] = " \t\r\n";
constexpr char nanPrefix[] = "nan:";
constexpr std::uint64_t plainNan = 0x7ff8000000000000;

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double realOf(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <class Value, class... Format>
bool read(std::string_view text, Value &value, Format... format)
{
    char const *const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value, format...);
    return error == std::errc() && rest == end;
}

/// A NaN with its bits, all of which a program may give a meaning to.
bool toNan(std::string_view text, double &value)
{
    constexpr std::size_t numDigits = 16, prefixLength = sizeof nanPrefix - 1;
    if (text == "nan") {
        value = realOf(plainNan);
        return true;
    }
    std::uint64_t bits = 0;
    if (text.substr(0, prefixLength) != nanPrefix || text.size() != prefixLength + numDigits ||
        !read(text.substr(prefixLength), bits, 16) || !std::isnan(realOf(bits)))
        return false;
    value = realOf(bits);
    return true;
}

std::string fromNan(std::uint64_t bits)
{
    if (bits == plainNan)
        return "nan";
    char digits[16];
    std::to_chars(digits, digits + sizeof digits, bits, 16);
    return nanPrefix + std::string(digits, sizeof digits); // All 16: the exponent is set.
}

} // namespace

char const *elementOf(int type)
{
    for (Element const &element : elements)
        if (element.type == type)
            return element.name;
    return nullptr;
}

int typeOf(std::string const &element)
{
    for (Element const &known : elements)
        if (known.name == element)
            return known.type;
    return 0;
}

bool isPlain(std::string const &bytes)
{
    const bool hasControl = std::any_of(bytes.begin(), bytes.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n';
    });
    // U+FFFE and U+FFFF.
    const bool hasNonCharacter = bytes.find("\xEF\xBF\xBE") != std::string::npos ||
                                 bytes.find("\xEF\xBF\xBF") != std::string::npos;
    // A mark of the byte order, which Qt takes away at the start of a string.
    const bool hasMark = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0;
    char const *errorPos = nullptr;
    return !hasControl && !hasNonCharacter && !hasMark && validateUtf8(bytes.c_str(), errorPos);
}

std::string fromReal(double value)
{
    return std::isnan(value) ? fromNan(bitsOf(value)) : doubleToStr(value, 0, false);
}

bool toInt(std::string_view text, int &value)
{
    return read(trimmed(text), value);
}

bool toUnsigned(std::string_view text, unsigned &value)
{
    return read(trimmed(text), value);
}

bool toId(std::string_view text, std::uint64_t &value)
{
    return read(trimmed(text), value);
}

bool toReal(std::string_view text, double &value)
{
    text = trimmed(text);
    if (toNan(text, value))
        return true;
    return read(text, value) && !std::isnan(value);
}

std::string_view takeWord(std::string_view &rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    const std::string_view word = rest.substr(0, rest.find_first_of(blanks));
    rest.remove_prefix(word.size());
    return word;
}

} // namespace ZR::VOM::Xml::Text
