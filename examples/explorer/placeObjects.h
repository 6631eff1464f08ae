#pragma once

#include "PackageModel.h"

#include <cstddef>

namespace Explorer {

/// Inserts objects before a position of a list, which is the end if it lies beyond, or puts the
/// first into a single link. Raises an Error when the model refuses.
void placeObjects(ZR::VOM::Field &field, std::size_t index, Objects const &objects);

/// The same, and takes the objects from where they were: from other places of that list, or from
/// the sections that owned them when the field owns what it holds.
void moveObjects(PackageModel const &model, ZR::VOM::Field &field, std::size_t index,
                 Objects const &objects);

} // namespace Explorer
