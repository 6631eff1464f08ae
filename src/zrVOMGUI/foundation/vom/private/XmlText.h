#pragma once

#include "zrVOMGUI/foundation/vom/private/fieldTypes.h"

#include <cstdint>
#include <string>
#include <string_view>

// The words of the documents that XmlExporter writes and XmlImporter reads.
//
//     <model version="1">
//       <object id="1" class="Package">
//         <string name="name">zlib</string>
//         <int name="priority">5</int>
//         <ref name="details">2</ref>
//         <ptrs name="depends">3 - 4</ptrs>
//       </object>
//       ...
//     </model>

namespace ZR::VOM::Xml::Text {

constexpr char model[] = "model";
constexpr char version[] = "version";
constexpr char currentVersion[] = "1";
constexpr char object[] = "object";
constexpr char id[] = "id";
constexpr char className[] = "class";
constexpr char classEncoding[] = "classEncoding";
constexpr char name[] = "name";
constexpr char nameEncoding[] = "nameEncoding";
constexpr char flags[] = "flags";
constexpr char encoding[] = "encoding";
constexpr char base64[] = "base64";
constexpr char null[] = "-"; ///< An entry of a list that links to nothing.

/// The element that holds a field of this type code; null for any other code.
char const *elementOf(int type);
/// The type code of the fields that this element holds; 0 for any other element.
int typeOf(std::string const &element);

/// Whether an XML document can hold these bytes as they are: UTF-8 without what XML forbids, and
/// without CR, which readers turn into LF.
bool isPlain(std::string const &bytes);

std::string fromReal(double value);
/// These take blanks around the value and answer false for what isn't one, or not in range.
bool toInt(std::string_view text, int &value);
bool toUnsigned(std::string_view text, unsigned &value);
bool toId(std::string_view text, std::uint64_t &value);
bool toReal(std::string_view text, double &value);

/// The next piece of `rest` between blanks, which is taken from it; empty at the end.
std::string_view takeWord(std::string_view &rest);

} // namespace ZR::VOM::Xml::Text
