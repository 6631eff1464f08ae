#pragma once

#include "zrVOMGUI/foundation/util/export.h"

#include <cstdint>

namespace ZR {

/// A point or span of time.
struct ZRUTIL_EXPORT Time {
    enum ArgNow { Now = 0 };

    Time() = default;
    /// Reads a clock that never goes back.
    explicit Time(ArgNow);

    /// The span from `earlier` to this; `nsec` of the result is from 0 to 999,999,999.
    Time operator-(Time const &earlier) const;

    double seconds() const { return nsec * 1e-9 + sec; }

    std::int32_t sec = 0;  ///< Seconds.
    std::int32_t nsec = 0; ///< Nanoseconds.
};

} // namespace ZR
