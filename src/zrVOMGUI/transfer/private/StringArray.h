#pragma once

#include <QByteArray>

#include <cstddef>
#include <string>
#include <vector>

namespace ZR::VOM::GUI {

/// For each string its length in bytes, as unsigned LEB128, and its bytes. False, and `out` isn't
/// to be used, when that would take more than `maxSize` bytes.
bool encodeStrings(std::size_t count, std::string const *values, std::size_t maxSize,
                   std::string &out);

/// Appends the strings that encodeStrings() wrote. Raises ErrorBinaryDecode where `bytes` end
/// inside a length or before the end of a string, and for a length of more than ten groups; `out`
/// then has the strings before that. Of ten groups the bits beyond the 64th are lost.
void decodeStrings(QByteArray const &bytes, std::vector<std::string> &out);

} // namespace ZR::VOM::GUI
