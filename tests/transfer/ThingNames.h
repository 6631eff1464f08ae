#pragma once

#include "support/Things.h"

#include <string>

/// The names of the things, each with a blank behind it.
inline std::string namesOf(Things const &things)
{
    std::string names;
    for (ZR::RefT<ZR::VOM::Object> const &thing : things)
        names += thing ? fieldOf<ZR::VOM::FieldString>(thing, "name").get() + ' ' : "null ";
    return names;
}
