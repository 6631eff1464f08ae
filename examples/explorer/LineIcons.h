#pragma once

#include "zrVOMGUI/presentation/ObjectIconDB.h"

namespace Explorer {

/// The icons of another database at two thirds of the size that is asked for, centred at the top:
/// for lists whose rows are as high as their text.
ZR::RefT<ZR::VOM::GUI::ObjectIconDB>
makeLineIconDB(ZR::RefT<ZR::VOM::GUI::ObjectIconDB> const &largeIcons);

} // namespace Explorer
