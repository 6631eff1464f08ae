#pragma once

#include "PackageModel.h"

#include "zrVOMGUI/foundation/vom/XmlExporter.h"
#include "zrVOMGUI/foundation/vom/XmlImporter.h"

namespace Explorer {

/// Reads objects of the model's classes, from a clipboard or a file.
ZR::RefT<ZR::VOM::XmlImporter> makeImporter();

/// The whole model as an XML document. Empty, with the reasons in `errors`, when it can't be
/// written.
std::string saveModel(PackageModel const &model, std::vector<std::string> &errors);

/// The archive in an XML document. Null, with the reasons in `errors`, when it isn't one.
ZR::RefT<Archive> openModel(std::string const &xml, std::vector<std::string> &errors);

} // namespace Explorer
