#include "foundation/ReplyCell.h"

#include <functional>
#include <thread>

#include <gtest/gtest.h>

namespace vantro::tests {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// Far longer than anything here takes: a wait that comes near it has not been woken.
constexpr auto never = 60s;

TEST(ReplyCell, AReplyWakesEveryKindOfWait)
{
    using Wait = std::function<std::optional<int>(const ReplyCell<int>&)>;
    for (const Wait& wait : {Wait([](const auto& cell) { return cell.waitFor(never); }),
                             Wait([](const auto& cell) { return cell.waitForReplyOrFailure(never); }),
                             Wait([](const auto& cell) { return cell.waitForReplyOrFailure(); })}) {
        const ReplyCell<int> cell;
        std::thread replying([sender = cell.sender()] { sender(7); });
        const auto start = steady_clock::now();
        EXPECT_EQ(wait(cell), 7);
        EXPECT_LT(steady_clock::now() - start, never / 2);
        replying.join();
        EXPECT_EQ(wait(cell), 7) << "the reply stays";
    }
}

TEST(ReplyCell, AFailureWakesOnlyWhoAsksForIt)
{
    const ReplyCell<int> cell;
    std::function<void(int)> block = cell.sender();
    std::thread failing([copy = std::move(block)]() mutable { copy = nullptr; });
    const auto start = steady_clock::now();
    EXPECT_EQ(cell.waitForReplyOrFailure(never), std::nullopt);
    EXPECT_EQ(cell.waitForReplyOrFailure(), std::nullopt);
    EXPECT_LT(steady_clock::now() - start, never / 2);
    failing.join();

    constexpr auto limit = 80ms;
    const auto silentStart = steady_clock::now();
    EXPECT_EQ(cell.waitFor(limit), std::nullopt);
    EXPECT_GE(steady_clock::now() - silentStart, limit);
}

TEST(ReplyCell, ARequestFailsWithTheLastCopyOfItsBlock)
{
    const ReplyCell<int> cell;
    auto first = std::make_optional(cell.sender());
    const auto second = std::make_optional(*first);
    first.reset();
    constexpr auto limit = 20ms;
    const auto start = steady_clock::now();
    EXPECT_EQ(cell.waitForReplyOrFailure(limit), std::nullopt);
    EXPECT_GE(steady_clock::now() - start, limit);
    (*second)(3);
    EXPECT_EQ(cell.waitForReplyOrFailure(limit), 3);
}

TEST(ReplyCell, ALateReplyFindsNobodyAndDoesNoHarm)
{
    std::optional<ReplyCell<int>> cell(std::in_place);
    const auto sender = cell->sender();
    EXPECT_EQ(cell->waitFor(1ms), std::nullopt);
    sender(1);
    EXPECT_EQ(cell->waitFor(1ms), 1);
    cell.reset();
    sender(2);
}

} // namespace
} // namespace vantro::tests
