#include "foundation/NotificationCenter.h"

#include <atomic>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

namespace vantro::tests {
namespace {

const NotificationName name = "Name";

TEST(NotificationCenter, CallsInOrderOnThePostingThreadBeforePostReturns)
{
    NotificationCenter center;
    std::string calls;
    std::thread::id calledOn;
    const auto first = center.addObserver(name, [&](const Notification& notification) {
        calls += "1" + notification.name + std::any_cast<std::string>(notification.object);
        calledOn = std::this_thread::get_id();
    });
    const auto foreign = center.addObserver("Other", [&](const Notification&) { calls += "!"; });
    const auto second = center.addObserver(name, [&](const Notification&) { calls += "2"; });

    std::thread poster([&] {
        center.post(name, std::string("x"));
        EXPECT_EQ(calls, "1Namex2");
        EXPECT_EQ(calledOn, std::this_thread::get_id());
    });
    poster.join();
    center.post("Nobody");
    EXPECT_EQ(calls, "1Namex2");
}

TEST(NotificationCenter, ObserversChangeInsideACall)
{
    NotificationCenter center;
    std::string calls;
    Observation self;
    Observation ended;
    std::optional<Observation> destroyed;
    Observation added;
    const auto ending = center.addObserver(name, [&](const Notification&) {
        calls += "e";
        ended.end();
        destroyed.reset();
    });
    self = center.addObserver(name, [&](const Notification&) {
        calls += "s";
        self.end();
        calls += "S";
    });
    ended = center.addObserver(name, [&](const Notification&) { calls += "!"; });
    destroyed.emplace(center.addObserver(name, [&](const Notification&) { calls += "!"; }));
    const auto adding = center.addObserver(name, [&](const Notification&) {
        calls += "a";
        added = center.addObserver(name, [&](const Notification&) { calls += "n"; });
        center.post("Inner");
    });
    const auto inner = center.addObserver("Inner", [&](const Notification&) { calls += "i"; });

    center.post(name);
    EXPECT_EQ(calls, "esSai");
    calls.clear();
    center.post(name);
    EXPECT_EQ(calls, "eai") << "the observer of the first round has been replaced, the new one waits for the next post";
}

TEST(NotificationCenter, AnObserverThatEndedInItsCallIsNotCalledByAPostInsideIt)
{
    NotificationCenter center;
    int calls = 0;
    Observation self = center.addObserver(name, [&](const Notification&) {
        self.end();
        if (++calls == 1)
            center.post(name);
    });
    center.post(name);
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, AnObservationMovesAndEndsWithItsOwner)
{
    NotificationCenter center;
    int calls = 0;
    const auto captured = std::make_shared<int>();
    {
        Observation outer;
        {
            auto observation = center.addObserver(name, [&, captured](const Notification&) { ++calls; });
            outer = std::move(observation);
        }
        center.post(name);
        EXPECT_EQ(calls, 1);
        const Observation inner = std::move(outer);
        outer.end(); // NOLINT(bugprone-use-after-move): what it was moved to must not end
        center.post(name);
        EXPECT_EQ(calls, 2);
    }
    center.post(name);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(captured.use_count(), 1) << "an ended observation keeps nothing alive";
}

TEST(NotificationCenter, ThreadsPostWhileObserversComeAndGo)
{
    NotificationCenter center;
    constexpr int posters = 4;
    constexpr int rounds = 500;
    std::atomic<int> steady = 0;
    std::atomic<bool> isPosting = true;
    const auto observation = center.addObserver(name, [&](const Notification&) { ++steady; });

    std::vector<std::thread> threads;
    for (int number = 0; number < 2; ++number) {
        threads.emplace_back([&] {
            while (isPosting) {
                const auto calls = std::make_shared<std::atomic<int>>(0);
                const auto passing = center.addObserver(name, [calls](const Notification&) { ++*calls; });
                while (isPosting && *calls == 0)
                    std::this_thread::yield();
            }
        });
    }
    std::vector<std::thread> postingThreads;
    for (int number = 0; number < posters; ++number) {
        postingThreads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round)
                center.post(name);
        });
    }
    for (auto& thread : postingThreads)
        thread.join();
    isPosting = false;
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(steady, posters * rounds);
}

} // namespace
} // namespace vantro::tests
