#include "bus/RequestRunner.h"

#include <utility>

namespace vantro::service {
namespace {

constexpr auto grace = std::chrono::milliseconds(500);

} // namespace

RequestRunner::RequestRunner(std::size_t threadLimit)
    : threadLimit_(threadLimit), watchdog_([this] { watchDeadlines(); })
{
}

RequestRunner::~RequestRunner()
{
    stop_.request_stop();
    // Whoever is about to wait has seen that, or waits by then.
    std::unique_lock(mutex_).unlock();
    requested_.notify_all();
    threads_.clear();
}

bool RequestRunner::run(Limit::Clock::duration duration, Work work, Expired expired)
{
    {
        const std::lock_guard lock(mutex_);
        if (waiting_.size() >= idleThreads_) {
            if (threads_.size() >= threadLimit_)
                return false;
            threads_.emplace_back([this] { serve(); });
        }
        Request request{std::move(work), {Limit::Clock::now() + duration, stop_.get_token()}, ++lastNumber_};
        const auto expiry = request.limit.deadline + grace;
        deadlines_.emplace(std::pair(expiry, request.number), std::move(expired));
        waiting_.push_back(std::move(request));
        if (expiry < nextLook_) {
            nextLook_ = expiry;
            deadlinesChanged_.notify_one();
        }
    }
    // Without the lock, which the woken thread takes first of all.
    requested_.notify_one();
    return true;
}

void RequestRunner::serve()
{
    std::unique_lock lock(mutex_);
    while (true) {
        ++idleThreads_;
        requested_.wait(lock, [this] { return stop_.stop_requested() || !waiting_.empty(); });
        --idleThreads_;
        if (stop_.stop_requested())
            return;
        Request request = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        request.work(request.limit);
        lock.lock();
        auto deadline = deadlines_.extract({request.limit.deadline + grace, request.number});
        // What a request holds on to may take locks of its own when it goes.
        lock.unlock();
        deadline = {};
        request = {};
        lock.lock();
    }
}

void RequestRunner::watchDeadlines()
{
    const auto stop = stop_.get_token();
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        if (!deadlines_.empty() && deadlines_.begin()->first.first <= Limit::Clock::now()) {
            auto deadline = deadlines_.extract(deadlines_.begin());
            lock.unlock();
            deadline.mapped()();
            deadline = {};
            lock.lock();
            continue;
        }
        nextLook_ = deadlines_.empty() ? Limit::Clock::time_point::max() : deadlines_.begin()->first.first;
        const auto look = nextLook_;
        const auto isEarlier = [this, look] { return nextLook_ < look; };
        // Waiting until the end of all time overflows in the library.
        if (look == Limit::Clock::time_point::max())
            deadlinesChanged_.wait(lock, stop, isEarlier);
        else
            deadlinesChanged_.wait_until(lock, stop, look, isEarlier);
    }
}

} // namespace vantro::service
