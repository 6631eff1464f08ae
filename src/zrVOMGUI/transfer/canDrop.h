#pragma once

#include "zrVOMGUI/export.h"
#include "zrVOMGUI/foundation/util/Ptr.h"

#include <Qt>

#include <cstddef>
#include <vector>

namespace ZR::VOM {
class Field;
class Object;
} // namespace ZR::VOM

namespace ZR::VOM::GUI {

/// Whether objects may land in a field: the one rule of all trees. Changes nothing.
///
/// A single link takes exactly one object, under every action, if its listeners let it. A list
/// takes what is copied or linked if its listeners let it be inserted before position `index`, or
/// at the end if there is no such position. It takes what is moved as canMove() says; a position
/// beyond its end is refused then. Every other action, every other field and an empty reference
/// refuse. A listener that raises anything but a ZR::Error refuses, too, and is reported to the
/// error sink.
ZRVOMGUI_EXPORT bool canDrop(Qt::DropAction action, std::vector<RefT<Object>> const &objs,
                             RefT<Field> const &field, std::size_t index);

} // namespace ZR::VOM::GUI
