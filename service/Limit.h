#pragma once

#include <algorithm>
#include <chrono>
#include <stop_token>

namespace vantro::service {

/// How long a request may take: until its deadline, or until the service is told to end.
struct Limit
{
    using Clock = std::chrono::steady_clock;

    Clock::time_point deadline;
    std::stop_token stop;

    [[nodiscard]] bool isOver() const { return stop.stop_requested() || Clock::now() >= deadline; }

    /// The same limit, but no longer than `duration` from now.
    [[nodiscard]] Limit within(Clock::duration duration) const
    {
        return {std::min(deadline, Clock::now() + duration), stop};
    }
};

} // namespace vantro::service
