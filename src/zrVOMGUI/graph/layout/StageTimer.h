#pragma once

// Not for hosts.

#include <chrono>

namespace ZR::VOM::GUI::Graph {

/// Adds the time of its life, in seconds, to a sum.
class StageTimer {
public:
    explicit StageTimer(double &timeSum)
        : sum(timeSum)
        , start(Clock::now())
    {
    }
    ~StageTimer() { sum += std::chrono::duration<double>(Clock::now() - start).count(); }
    StageTimer(StageTimer const &) = delete;
    StageTimer &operator=(StageTimer const &) = delete;

private:
    using Clock = std::chrono::steady_clock;
    double &sum;
    const Clock::time_point start;
};

} // namespace ZR::VOM::GUI::Graph
