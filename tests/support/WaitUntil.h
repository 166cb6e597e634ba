#pragma once

#include <chrono>
#include <thread>

namespace vantro::tests {

/// Waits until `condition` holds, looking at it every few milliseconds; false when it does not within `limit`.
template <class Condition>
[[nodiscard]] bool waitUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20))
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace vantro::tests
