#pragma once

#include "zrVOMGUI/foundation/vom/private/Document.h"

#include <cstddef>

namespace ZR::VOM::Xml {

/// Reads a document of XmlExporter. Reports what is wrong with its form, its values and its words,
/// and gives up on anything that isn't expected where it stands: how deep elements may be nested is
/// known, and nothing is read to find their end.
Document readDocument(char const *bytes, std::size_t size, Reports &reports, Ticker &ticker);

} // namespace ZR::VOM::Xml
