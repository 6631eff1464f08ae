#pragma once

#include <cstddef>
#include <cstring>

/// The number of a virtual operation in the table of its class. Of a destructor's two entries the
/// first has the number of the operation before plus one.
template <class Pointer>
std::ptrdiff_t slotOf(Pointer pointer)
{
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &pointer, sizeof offset);
    return offset / std::ptrdiff_t(sizeof(void *));
}
