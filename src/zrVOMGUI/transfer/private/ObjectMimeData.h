#pragma once

#include "zrVOMGUI/foundation/util/Ptr.h"

#include <string>
#include <vector>

class QMimeData;

namespace ZR::VOM {
class Exporter;
class Object;
} // namespace ZR::VOM

namespace ZR::VOM::GUI {

/// The XML of objects; empty without an exporter, and when it fails.
std::string exportXml(RefT<Exporter> const &exporter, std::vector<RefT<Object>> const &objs);

/// Offers two lists by reference, of which the second may be null, and XML unless it is empty.
void setObjectFormats(QMimeData &data, std::vector<RefT<Object>> const *objs,
                      std::vector<RefT<Object>> const *copyObjs, std::string const &xml);

/// Whether there are objects that this process offers by reference.
bool hasOwnObjects(QMimeData const &data);

} // namespace ZR::VOM::GUI
