#include "zrVOMGUI/foundation/gui/private/TreeEngine.h"

namespace ZR::GUI {

void TreeEngine::tellFocus() {}

void TreeEngine::openChanged(TreeRow &) {}

} // namespace ZR::GUI
