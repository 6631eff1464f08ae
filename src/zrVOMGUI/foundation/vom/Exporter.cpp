#include "zrVOMGUI/foundation/vom/Exporter.h"

#include "zrVOMGUI/foundation/vom/Importer.h"

namespace ZR::VOM {

Exporter::~Exporter() = default;
Exporter::Context::~Context() = default;

Importer::~Importer() = default;
Importer::Context::~Context() = default;

namespace Xml {
Importer::~Importer() = default;
} // namespace Xml

} // namespace ZR::VOM
