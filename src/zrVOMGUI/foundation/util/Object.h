#pragma once

#include "zrVOMGUI/foundation/util/Class.h"

namespace ZR {

/// Owner of properties. A widget that has some derives from it as a second base.
class ZRUTIL_EXPORT Object : public Class {
public:
    Object() = default;
    ~Object() override = default;
};

} // namespace ZR
