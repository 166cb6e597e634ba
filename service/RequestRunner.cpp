#include "service/RequestRunner.h"

#include <utility>

namespace vantro::service {
namespace {

constexpr std::size_t threadLimit = 32;
constexpr auto grace = std::chrono::milliseconds(500);

} // namespace

RequestRunner::RequestRunner() : watchdog_([this] { watchDeadlines(); }) {}

RequestRunner::~RequestRunner()
{
    stop_.request_stop();
    threads_.clear();
}

bool RequestRunner::run(Limit::Clock::duration duration, Work work, Expired expired)
{
    const std::lock_guard lock(mutex_);
    if (waiting_.size() >= idleThreads_) {
        if (threads_.size() >= threadLimit)
            return false;
        threads_.emplace_back([this] { serve(); });
    }
    Request request{std::move(work), {Limit::Clock::now() + duration, stop_.get_token()}, ++lastNumber_};
    deadlines_.emplace(std::pair(request.limit.deadline + grace, request.number), std::move(expired));
    waiting_.push_back(std::move(request));
    requested_.notify_one();
    deadlinesChanged_.notify_one();
    return true;
}

void RequestRunner::serve()
{
    std::unique_lock lock(mutex_);
    while (true) {
        ++idleThreads_;
        const bool hasWork = requested_.wait(lock, stop_.get_token(), [this] { return !waiting_.empty(); });
        --idleThreads_;
        if (!hasWork || stop_.stop_requested())
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
        if (deadlines_.empty()) {
            deadlinesChanged_.wait(lock, stop, [this] { return !deadlines_.empty(); });
            continue;
        }
        const auto first = deadlines_.begin()->first;
        deadlinesChanged_.wait_until(lock, stop, first.first, [this, first] {
            return deadlines_.empty() || deadlines_.begin()->first != first;
        });
        if (deadlines_.empty() || deadlines_.begin()->first != first || Limit::Clock::now() < first.first)
            continue;
        auto deadline = deadlines_.extract(deadlines_.begin());
        lock.unlock();
        deadline.mapped()();
        deadline = {};
        lock.lock();
    }
}

} // namespace vantro::service
