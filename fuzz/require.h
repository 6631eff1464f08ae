#pragma once

#include <cstdlib>
#include <iostream>

/// Ends the program with a fault, which the fuzzer keeps the input of, unless `holds`.
inline void require(bool holds, char const *what)
{
    if (holds)
        return;
    std::cerr << "Doesn't hold: " << what << std::endl;
    std::abort();
}
