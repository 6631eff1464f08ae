#include "zrVOMGUI/transfer/private/StringArray.h"

#include "zrVOMGUI/foundation/util/Error.h"

#include <cstdint>

namespace ZR::VOM::GUI {
namespace {

constexpr unsigned bitsOfGroup = 7;
constexpr unsigned maxGroups = 10; // Enough for 64 bits.
constexpr unsigned char moreFollow = 0x80;

void appendLength(std::uint64_t length, std::string &out)
{
    for (; length >= moreFollow; length >>= bitsOfGroup)
        out.push_back(static_cast<char>(length | moreFollow));
    out.push_back(static_cast<char>(length));
}

std::uint64_t takeLength(char const *&cursor, char const *end)
{
    std::uint64_t length = 0;
    for (unsigned group = 0; group < maxGroups && cursor != end; ++group) {
        const auto byte = static_cast<unsigned char>(*cursor++);
        length |= std::uint64_t(byte & ~moreFollow) << (group * bitsOfGroup);
        if (!(byte & moreFollow))
            return length;
    }
    throw ErrorBinaryDecode();
}

} // namespace

bool encodeStrings(std::size_t count, std::string const *values, std::size_t maxSize,
                   std::string &out)
{
    out.clear();
    for (std::size_t i = 0; i < count; ++i) {
        appendLength(values[i].size(), out);
        if (out.size() > maxSize || values[i].size() > maxSize - out.size())
            return false;
        out += values[i];
    }
    return true;
}

void decodeStrings(QByteArray const &bytes, std::vector<std::string> &out)
{
    char const *cursor = bytes.constData();
    char const *const end = cursor + bytes.size();
    while (cursor != end) {
        const std::uint64_t length = takeLength(cursor, end);
        if (length > static_cast<std::uint64_t>(end - cursor))
            throw ErrorBinaryDecode();
        out.emplace_back(cursor, static_cast<std::size_t>(length));
        cursor += length;
    }
}

} // namespace ZR::VOM::GUI
