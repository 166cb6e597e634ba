#include "foundation/DispatchQueue.h"

#include <semaphore.h>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vantro::tests {
namespace {

/// A queue whose main thread is the test's, with a bare event loop.
class DispatchQueueTest : public testing::Test
{
  protected:
    DispatchQueueTest() { ::sem_init(&wakes, 0, 0); }

    void attach()
    {
        queue.attach([this] { ::sem_post(&wakes); });
    }

    DispatchQueue queue;
    /// The wake-ups that have not been waited for.
    sem_t wakes = {};
};

TEST_F(DispatchQueueTest, SyncOnTheMainThreadRunsAtOnce)
{
    attach();
    bool hasRun = false;
    queue.sync([&] { queue.sync([&] { hasRun = true; }); });
    EXPECT_TRUE(hasRun);
    EXPECT_NE(::sem_trywait(&wakes), 0);
}

TEST_F(DispatchQueueTest, SyncFromAThreadReturnsWhenTheMainThreadHasFinished)
{
    attach();
    std::vector<std::string> order;
    std::thread::id ranOn;
    std::thread other([&] {
        EXPECT_FALSE(queue.isMainThread());
        queue.sync([&] {
            ranOn = std::this_thread::get_id();
            order.emplace_back("work");
        });
        order.emplace_back("returned");
    });
    ::sem_wait(&wakes);
    queue.runPending();
    other.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_EQ(order, (std::vector<std::string>{"work", "returned"}));
}

TEST_F(DispatchQueueTest, RunsInOrderAlsoInANestedLoop)
{
    attach();
    std::string order;
    queue.async([&] {
        order += "(";
        queue.async([&] { order += "c"; });
        queue.runPending();
        order += ")";
    });
    queue.async([&] { order += "b"; });
    EXPECT_EQ(order, "");
    queue.runPending();
    EXPECT_EQ(order, "(bc)");
}

TEST_F(DispatchQueueTest, AttachingWakesForWhatWasQueuedBefore)
{
    bool hasRun = false;
    queue.async([&] { hasRun = true; });
    attach();
    EXPECT_EQ(::sem_trywait(&wakes), 0);
    queue.runPending();
    EXPECT_TRUE(hasRun);
}

TEST_F(DispatchQueueTest, ClosingReleasesASyncThatWaits)
{
    attach();
    bool hasRun = false;
    std::thread other([&] { queue.sync([&] { hasRun = true; }); });
    ::sem_wait(&wakes);
    queue.close();
    other.join();
    std::thread late([&] { queue.sync([&] { hasRun = true; }); });
    late.join();
    queue.async([&] { hasRun = true; });
    queue.runPending();
    EXPECT_FALSE(hasRun);
}

TEST_F(DispatchQueueTest, ClosingLetsASyncThatRunsFinish)
{
    attach();
    bool hasFinished = false;
    std::thread other([&] {
        queue.sync([&] {
            queue.close();
            std::this_thread::yield();
            hasFinished = true;
        });
        EXPECT_TRUE(hasFinished);
    });
    ::sem_wait(&wakes);
    queue.runPending();
    other.join();
}

TEST_F(DispatchQueueTest, OrdersManyThreads)
{
    attach();
    constexpr int threadCount = 4;
    constexpr int rounds = 250;
    int sum = 0;
    int finished = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                queue.async([&] { ++sum; });
                queue.sync([&] { ++sum; });
            }
            queue.async([&] { ++finished; });
        });
    }
    while (finished < threadCount) {
        ::sem_wait(&wakes);
        queue.runPending();
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(sum, 2 * threadCount * rounds);
}

} // namespace
} // namespace vantro::tests
