#pragma once

#include "zrVOMGUI/foundation/util/Class.h"

namespace foundation_test {

/// An object that counts its destructions.
class Probe : public ZR::Class {
public:
    explicit Probe(int &destructions)
        : numDestructions(destructions)
    {
    }
    ~Probe() override { ++numDestructions; }

    int value = 0;

private:
    int &numDestructions;
};

} // namespace foundation_test
