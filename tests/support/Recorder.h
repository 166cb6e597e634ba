#pragma once

#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

#include "support/WaitUntil.h"

namespace vantro::tests {

/// What happens, in order, whichever thread it happens on. Any thread.
template <class Event>
class Recorder
{
  public:
    void add(Event event)
    {
        const std::lock_guard lock(mutex_);
        events_.push_back(std::move(event));
    }
    [[nodiscard]] std::vector<Event> all() const
    {
        const std::lock_guard lock(mutex_);
        return events_;
    }
    /// Whether as many have happened by now or soon.
    [[nodiscard]] bool reaches(std::size_t count) const
    {
        return waitUntil([&] { return all().size() >= count; });
    }

  private:
    mutable std::mutex mutex_;
    std::vector<Event> events_;
};

} // namespace vantro::tests
