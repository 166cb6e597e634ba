#include "foundation/DispatchQueue.h"

#include <utility>

namespace vantro {

DispatchQueue& DispatchQueue::main()
{
    // Never destroyed: threads that outlive main() may still hand work over.
    static auto* const queue = new DispatchQueue;
    return *queue;
}

void DispatchQueue::attach(Work wake)
{
    Work wakeNow;
    {
        const std::lock_guard lock(mutex_);
        mainThread_ = std::this_thread::get_id();
        wake_ = std::move(wake);
        if (!pending_.empty())
            wakeNow = wake_;
    }
    if (wakeNow)
        wakeNow();
}

void DispatchQueue::async(Work work)
{
    Work wake;
    {
        const std::lock_guard lock(mutex_);
        if (isClosed_)
            return;
        pending_.push_back(std::move(work));
        wake = wake_;
    }
    if (wake)
        wake();
}

void DispatchQueue::sync(const Work& work)
{
    if (isMainThread()) {
        work();
        return;
    }

    // The work is run by reference: this frame outlives it, or the queue was closed and the work never starts.
    enum class Progress
    {
        Waiting,
        Running,
        Done,
        GivenUp
    };
    const auto progress = std::make_shared<Progress>(Progress::Waiting);
    async([this, progress, &work] {
        {
            const std::lock_guard lock(mutex_);
            if (*progress == Progress::GivenUp)
                return;
            *progress = Progress::Running;
        }
        work();
        const std::lock_guard lock(mutex_);
        *progress = Progress::Done;
        finished_.notify_all();
    });

    std::unique_lock lock(mutex_);
    finished_.wait(lock, [&] { return *progress == Progress::Done || (isClosed_ && *progress == Progress::Waiting); });
    if (*progress == Progress::Waiting)
        *progress = Progress::GivenUp;
}

DispatchQueue::Work DispatchQueue::takeFirst()
{
    const std::lock_guard lock(mutex_);
    if (pending_.empty() || suspensions_ > 0)
        return {};
    Work first = std::move(pending_.front());
    pending_.pop_front();
    return first;
}

void DispatchQueue::runPending()
{
    while (const Work work = takeFirst())
        work();
}

void DispatchQueue::suspend()
{
    const std::lock_guard lock(mutex_);
    ++suspensions_;
}

void DispatchQueue::resume()
{
    Work wake;
    {
        const std::lock_guard lock(mutex_);
        if (--suspensions_ == 0 && !pending_.empty())
            wake = wake_;
    }
    if (wake)
        wake();
}

void DispatchQueue::close()
{
    std::deque<Work> dropped;
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
    dropped.swap(pending_);
    finished_.notify_all();
}

bool DispatchQueue::isMainThread() const
{
    const std::lock_guard lock(mutex_);
    return std::this_thread::get_id() == mainThread_;
}

} // namespace vantro
