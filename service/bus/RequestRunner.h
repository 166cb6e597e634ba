#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "Limit.h"

namespace vantro::service {

/// Runs every request on a thread of its own, so that none waits for another, and watches their deadlines. Threads are
/// kept for later requests. Any thread.
class RequestRunner
{
  public:
    using Work = std::function<void(const Limit&)>;
    using Expired = std::function<void()>;

    /// Runs at most `threadLimit` requests at a time.
    explicit RequestRunner(std::size_t threadLimit);
    /// Tells what runs to stop and waits for it; what has not begun is dropped.
    ~RequestRunner();
    RequestRunner(const RequestRunner&) = delete;
    RequestRunner& operator=(const RequestRunner&) = delete;

    /// Runs `work`, which is to end by the deadline `duration` from now. When it has not (the kernel may hold up a
    /// transfer for longer) `expired` is called half a second later, while the work may still be running. False when
    /// too many requests are under way.
    [[nodiscard]] bool run(Limit::Clock::duration duration, Work work, Expired expired);

  private:
    struct Request
    {
        Work work;
        Limit limit;
        std::uint64_t number = 0;
    };
    using Deadlines = std::map<std::pair<Limit::Clock::time_point, std::uint64_t>, Expired>;

    void serve();
    void watchDeadlines();

    const std::size_t threadLimit_;
    std::stop_source stop_;
    std::mutex mutex_;
    /// Not one that knows of stop tokens: that has a lock of its own, at which whoever is woken would wait once more.
    std::condition_variable requested_;
    std::condition_variable_any deadlinesChanged_;
    std::deque<Request> waiting_;
    Deadlines deadlines_;
    /// When the watchdog looks next. Most requests are done long before; it is woken for none that ends later.
    Limit::Clock::time_point nextLook_ = Limit::Clock::time_point::max();
    std::size_t idleThreads_ = 0;
    std::uint64_t lastNumber_ = 0;
    std::vector<std::jthread> threads_;
    std::jthread watchdog_;
};

} // namespace vantro::service
