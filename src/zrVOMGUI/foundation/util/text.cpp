#include "zrVOMGUI/foundation/util/text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <utility>

namespace ZR {

namespace {

TextTranslation &installedTranslation()
{
    static TextTranslation translation;
    return translation;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The number of bytes of the valid sequence that begins here, or 0.
unsigned sequenceLength(unsigned char const *bytes)
{
    if (bytes[0] < 0x80)
        return 1;
    unsigned length, value, lowest;
    if ((bytes[0] & 0xe0) == 0xc0) {
        length = 2;
        value = bytes[0] & 0x1f;
        lowest = 0x80;
    } else if ((bytes[0] & 0xf0) == 0xe0) {
        length = 3;
        value = bytes[0] & 0x0f;
        lowest = 0x800;
    } else if ((bytes[0] & 0xf8) == 0xf0) {
        length = 4;
        value = bytes[0] & 0x07;
        lowest = 0x10000;
    } else {
        return 0;
    }
    // The terminating zero is no continuation, so that nothing behind it is read.
    for (unsigned i = 1; i < length; ++i) {
        if ((bytes[i] & 0xc0) != 0x80)
            return 0;
        value = value << 6 | (bytes[i] & 0x3fu);
    }
    const bool isSurrogate = value >= 0xd800 && value <= 0xdfff;
    return value < lowest || value > 0x10ffff || isSurrogate ? 0 : length;
}

} // namespace

char const *getLocText(char const *text)
{
    if (!text)
        return "";
    if (installedTranslation())
        if (char const *const translated = installedTranslation()(text))
            return translated;
    char const *const keyEnd = text[0] == '[' ? std::strchr(text, ']') : nullptr;
    return keyEnd ? keyEnd + 1 : text;
}

void setTextTranslation(TextTranslation translation)
{
    installedTranslation() = std::move(translation);
}

std::string _compose(char const *format, unsigned count, char const *const *args)
{
    std::string text;
    while (*format) {
        if (*format != '%' || !isDigit(format[1])) {
            text += *format++;
            continue;
        }
        char const *const begin = format++;
        unsigned number = 0;
        for (; isDigit(*format) && number <= count; ++format)
            number = number * 10 + static_cast<unsigned>(*format - '0');
        if (number >= 1 && number <= count)
            text += args[number - 1];
        else
            text.append(begin, format);
    }
    return text;
}

std::string intToStr(int value, unsigned base)
{
    if (base < 2 || base > 36)
        return {};
    char digits[34]; // A sign, and as many digits as base 2 needs.
    const auto end = std::to_chars(digits, digits + sizeof(digits), value, static_cast<int>(base));
    return std::string(digits, end.ptr);
}

std::string doubleToStr(double value, unsigned precision, bool fixed)
{
    // A sign, 309 digits, the point and the digits behind it; fewer than 400 make the shortest
    // text.
    constexpr unsigned maxPrecision = 1100;
    char text[312 + maxPrecision];
    char *const end = text + sizeof(text);
    const int digits = static_cast<int>(std::min(precision, maxPrecision));
    std::to_chars_result result;
    if (digits == 0)
        result = fixed ? std::to_chars(text, end, value, std::chars_format::fixed)
                       : std::to_chars(text, end, value);
    else
        result =
            std::to_chars(text, end, value,
                          fixed ? std::chars_format::fixed : std::chars_format::general, digits);
    return std::string(text, result.ptr);
}

unsigned ceilPow2(unsigned value)
{
    unsigned power = 1;
    while (power != 0 && power < value)
        power *= 2;
    return power;
}

void strTok(std::string const &text, char separator, std::vector<std::string> &out)
{
    std::size_t begin = 0;
    for (std::size_t end; (end = text.find(separator, begin)) != std::string::npos; begin = end + 1)
        out.push_back(text.substr(begin, end - begin));
    if (begin < text.size())
        out.push_back(text.substr(begin));
}

bool validateUtf8(char const *text, char const *&errorPos)
{
    while (*text) {
        const unsigned length = sequenceLength(reinterpret_cast<unsigned char const *>(text));
        if (length == 0) {
            errorPos = text;
            return false;
        }
        text += length;
    }
    return true;
}

} // namespace ZR
