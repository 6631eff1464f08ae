#pragma once

/// The types under which objects and values travel, by clipboard and by drag and drop.
///
/// A type of an array has a second, sized form, made of the template with the number of elements:
/// three integers are offered as "ZR::VOM::int[]" and as "ZR::VOM::int[3]". No reader here looks at
/// the sized ones; they are for others, who want to know before they read.
namespace ZR::VOM::GUI::MimeType {

inline constexpr char boolean[] = "ZR::VOM::bool"; ///< 1 byte, that of a ZR::Bool.
inline constexpr char integer[] = "ZR::VOM::int";  ///< 4 bytes: a signed integer.
inline constexpr char real[] = "ZR::VOM::real";    ///< 8 bytes: a double.

inline constexpr char booleans[] = "ZR::VOM::bool[]"; ///< 1 byte each.
inline constexpr char sizedBooleans[] = "ZR::VOM::bool[%1]";
inline constexpr char integers[] = "ZR::VOM::int[]"; ///< 4 bytes each.
inline constexpr char sizedIntegers[] = "ZR::VOM::int[%1]";
inline constexpr char reals[] = "ZR::VOM::real[]"; ///< 8 bytes each.
inline constexpr char sizedReals[] = "ZR::VOM::real[%1]";
/// For each string its length in bytes, as unsigned LEB128, and its bytes.
inline constexpr char strings[] = "ZR::VOM::string[]";
inline constexpr char sizedStrings[] = "ZR::VOM::string[%1]";

inline constexpr char matrix[] = "ZR::Matrix4x4D"; ///< 128 bytes: 16 doubles, row by row.

/// A reference: 4 bytes process id, 4 bytes without meaning, and the 8 bytes of the address of a
/// `std::vector<RefT<Object>>` in that process, which the writer keeps alive.
inline constexpr char objects[] = "ZR::VOM::Object::Ref";
/// The same, to a list of copies.
inline constexpr char objectCopies[] = "ZR::VOM::Object::Copy::Ref";
/// What an Exporter writes for a ZR::VOM::Clipboard with the objects.
inline constexpr char objectsXml[] = "ZR::VOM::Object::XML";

} // namespace ZR::VOM::GUI::MimeType
