#include "Measure.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace vantro::bench {

double lowerQuartile(std::vector<double> values)
{
    const auto quartile = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 4);
    std::nth_element(values.begin(), quartile, values.end());
    return *quartile;
}

double measureRounds(int rounds, const Measure& measure)
{
    static_cast<void>(measure());
    std::vector<double> values(static_cast<std::size_t>(rounds));
    std::generate(values.begin(), values.end(), measure);
    return lowerQuartile(values);
}

Comparison compareInTurns(int rounds, const Measure& ours, const Measure& floor)
{
    static_cast<void>(ours());
    static_cast<void>(floor());
    std::vector<double> valuesOfOurs(static_cast<std::size_t>(rounds));
    std::vector<double> valuesOfFloor(valuesOfOurs.size());
    for (std::size_t round = 0; round < valuesOfOurs.size(); ++round) {
        valuesOfOurs[round] = ours();
        valuesOfFloor[round] = floor();
    }
    return {lowerQuartile(valuesOfOurs), lowerQuartile(valuesOfFloor)};
}

void printRow(const char* what, const Comparison& comparison, const char* unit, double goal)
{
    const double ratio = comparison.ours / comparison.floor;
    std::printf("%s\t%.2f\t%.2f\t%s\t%.2f\t%.1f\t%s\n", what, comparison.ours, comparison.floor, unit, ratio, goal,
                ratio <= goal ? "ok" : "misses");
    std::fflush(stdout);
}

void printGrowth(const char* what, std::size_t count, double milliseconds)
{
    std::printf("%s\t%zu\t%.2f\n", what, count, milliseconds);
    std::fflush(stdout);
}

int run(const std::function<void()>& measurements)
{
    try {
        measurements();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "This can't be measured: %s\n", error.what());
        return EXIT_FAILURE;
    }
}

} // namespace vantro::bench
