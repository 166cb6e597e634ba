#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace vantro {

/// The main queue: work that other threads hand to the main thread. The queue itself is ours, behind a mutex; the
/// toolkit's event loop is only woken and then calls runPending(). The process has one, which lives as long as it does.
class DispatchQueue
{
  public:
    using Work = std::function<void()>;

    /// The main queue. The first call, from any thread, makes it.
    static DispatchQueue& main();

    /// Names the calling thread the main thread and sets what wakes its event loop; `wake` is called on any thread,
    /// and at once when work is queued already.
    void attach(Work wake);

    /// Queues `work` and returns at once. Any thread, also the main thread.
    void async(Work work);

    /// Runs `work` on the main thread and returns when it has finished. Any thread; on the main thread itself the work
    /// runs at once. Once the queue is closed the work is dropped and the call returns.
    void sync(const Work& work);

    /// Main thread: runs what is queued, in order. Re-entrant, since work may run a nested event loop; what is queued
    /// meanwhile runs there.
    void runPending();

    /// Main thread: lets what is queued wait until as many calls of resume() have followed.
    void suspend();
    void resume();

    /// Drops what is queued and everything that comes later, and releases every sync() whose work has not begun.
    void close();

    [[nodiscard]] bool isMainThread() const;

  private:
    std::function<void()> takeFirst();

    mutable std::mutex mutex_;
    std::condition_variable finished_;
    std::deque<Work> pending_;
    Work wake_;
    std::thread::id mainThread_;
    int suspensions_ = 0;
    bool isClosed_ = false;
};

} // namespace vantro
