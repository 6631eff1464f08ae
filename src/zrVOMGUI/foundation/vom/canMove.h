#pragma once

#include "zrVOMGUI/foundation/vom/MField.h"
#include "zrVOMGUI/foundation/vom/export.h"

#include <cstddef>
#include <vector>

namespace ZR::VOM {

/// Whether objects that are in the model already may be moved to position `index` of a list: not
/// into one of themselves or into anything that they own, directly or not, and only if the list may
/// take them (see canReplace()).
ZRVOM_EXPORT bool canMove(std::vector<RefT<Object>> const &objs, MFieldRef &field,
                          std::size_t index);
ZRVOM_EXPORT bool canMove(std::vector<RefT<Object>> const &objs, MFieldPtr &field,
                          std::size_t index);

} // namespace ZR::VOM
