#pragma once

#include "zrVOMGUI/foundation/util/export.h"

#include <functional>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace ZR {

/// The translated form of a text.
///
/// A text may begin with a key in square brackets, by which a translation is found. Without a
/// translation it reads as what stands behind the key; a text without a key reads as itself, and
/// null as the empty text. The result lives as long as `text` and the installed translation.
ZRUTIL_EXPORT char const *getLocText(char const *text);

/// Takes a text, with its key, and returns the translation, or null when there is none. What it
/// returns must stay valid until another translation is installed.
using TextTranslation = std::function<char const *(char const *text)>;

/// Installs a translation for all texts; an empty one takes it away again.
ZRUTIL_EXPORT void setTextTranslation(TextTranslation translation);

/// Replaces %1, %2 and so on in `format` by the arguments. A number without an argument stays as it
/// is, and so does a percent sign without a number.
ZRUTIL_EXPORT std::string _compose(char const *format, unsigned count, char const *const *args);

/// The same for values of any type that goes into a stream. The user's locale plays no part.
template <class... Args>
std::enable_if_t<!(std::is_convertible_v<Args const &, char const *const *> || ...), std::string>
_compose(char const *format, Args const &...args)
{
    [[maybe_unused]] const auto toText = [](auto const &value) {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value;
        return stream.str();
    };
    const std::vector<std::string> texts{toText(args)...};
    std::vector<char const *> pointers;
    pointers.reserve(texts.size());
    for (std::string const &text : texts)
        pointers.push_back(text.c_str());
    return _compose(format, static_cast<unsigned>(pointers.size()), pointers.data());
}

/// The value in the given base, from 2 to 36, with small letters. Another base gives an empty text.
ZRUTIL_EXPORT std::string intToStr(int value, unsigned base);

/// The value with `precision` significant digits, of which zeros at the end are left out, or with
/// `precision` digits after the point if `fixed`. With precision 0 the shortest text that reads
/// back to the same value, which has no exponent if `fixed`. Precisions above 1,100 count as that:
/// a double has no digits there. What is no number reads "inf", "-inf", "nan" or "-nan".
ZRUTIL_EXPORT std::string doubleToStr(double value, unsigned precision, bool fixed);

/// The smallest power of two not below `value`. 1 for 0, and 0 for a value above 2^31, which has
/// none.
ZRUTIL_EXPORT unsigned ceilPow2(unsigned value);

/// Appends the pieces of `text` to `out`. A separator ends a piece; a piece after the last
/// separator counts only if it isn't empty.
ZRUTIL_EXPORT void strTok(std::string const &text, char separator, std::vector<std::string> &out);

/// Whether the zero-terminated text is valid UTF-8: no overlong forms, no surrogates, nothing above
/// U+10FFFF. Otherwise `errorPos` is the first byte of the first sequence that isn't.
ZRUTIL_EXPORT bool validateUtf8(char const *text, char const *&errorPos);

} // namespace ZR
