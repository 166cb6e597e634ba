#pragma once

#include <chrono>
#include <functional>
#include <vector>

/// What every measurement goes through: rounds in turns, of which the lower quartile counts, since whatever else the
/// machine does only ever adds to a time; and rows as lines of values between tabs, which tools/bench makes a table of.
namespace vantro::bench {

using Clock = std::chrono::steady_clock;

/// Milliseconds from `start` until now.
[[nodiscard]] inline double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// How many milliseconds `work` takes.
template <class Work>
[[nodiscard]] double millisecondsOf(const Work& work)
{
    const auto start = Clock::now();
    work();
    return millisecondsSince(start);
}

/// Takes one measurement.
using Measure = std::function<double()>;

/// The value that a quarter of the values, of which there must be one at least, are below.
[[nodiscard]] double lowerQuartile(std::vector<double> values);

/// The lower quartile of `rounds` measurements, after one that only warms the caches.
[[nodiscard]] double measureRounds(int rounds, const Measure& measure);

/// What the same work took, in the same unit.
struct Comparison
{
    double ours = 0;
    /// The least that any program would need for it.
    double floor = 0;
};

/// Measures both in turns, so that whatever else the machine does slows down both; a first round of each only warms the
/// caches.
[[nodiscard]] Comparison compareInTurns(int rounds, const Measure& ours, const Measure& floor);

/// Prints a row: what, ours, floor, unit, ratio, goal, and whether the ratio is within the goal.
void printRow(const char* what, const Comparison& comparison, const char* unit, double goal);

/// Prints one measurement of something that grows: what, with how many, and the milliseconds.
void printGrowth(const char* what, std::size_t count, double milliseconds);

/// For main(): the exit code of `measurements`, which tell what can't be measured by an exception.
[[nodiscard]] int run(const std::function<void()>& measurements);

} // namespace vantro::bench
