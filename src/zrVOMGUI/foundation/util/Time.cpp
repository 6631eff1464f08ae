#include "zrVOMGUI/foundation/util/Time.h"

#include <chrono>

namespace ZR {

namespace {
constexpr std::int32_t nsecPerSec = 1000000000;
}

Time::Time(ArgNow)
{
    using namespace std::chrono;
    const auto sinceStart = duration_cast<nanoseconds>(steady_clock::now().time_since_epoch());
    sec = static_cast<std::int32_t>(sinceStart.count() / nsecPerSec);
    nsec = static_cast<std::int32_t>(sinceStart.count() % nsecPerSec);
}

Time Time::operator-(Time const &earlier) const
{
    const bool borrow = nsec < earlier.nsec;
    Time span;
    span.sec = sec - earlier.sec - (borrow ? 1 : 0);
    span.nsec = nsec - earlier.nsec + (borrow ? nsecPerSec : 0);
    return span;
}

} // namespace ZR
