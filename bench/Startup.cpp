// Start-up time and memory of the settings tool: from the start of the process until its window has been painted for
// the first time, and what it then occupies of the machine's memory at rest. The floor is the same window made of bare
// Qt widgets (BareWindow.cpp).

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "Measure.h"
#include "Program.h"
#include "support/PlainBus.h"
#include "support/TemporaryPrefix.h"

namespace {

using namespace vantro;

/// After which nothing of a start is under way any more.
constexpr auto rest = std::chrono::milliseconds(300);

/// Answers the milliseconds of a start and appends the memory to `memories`.
double start(const std::string& path, std::vector<double>& memories)
{
    const auto begin = bench::Clock::now();
    bench::Program program(path, {}, FIRST_PAINT);
    program.readUntil("painted\n");
    const double milliseconds = bench::millisecondsSince(begin);
    std::this_thread::sleep_for(rest);
    memories.push_back(program.memory());
    program.kill();
    return milliseconds;
}

void measure()
{
    constexpr int rounds = 31;
    // An installation of its own, with nothing in the user's way, on a bus without a service.
    const tests::TemporaryPrefix prefix;
    const tests::PlainBus bus;
    const auto tool = prefix.path() / "bin" / "vantro-standalone";
    std::filesystem::create_directory(tool.parent_path());
    std::filesystem::copy_file(TOOL, tool);
    const auto defaults = prefix.configHome() / "vantro-standalone";
    std::filesystem::create_directories(defaults);
    tests::writeFile(defaults / "defaults.ini", "[General]\nsuppression=true\nisFirstStart=false\n");

    std::vector<double> memories;
    std::vector<double> bareMemories;
    const auto times = bench::compareInTurns(
        rounds, [&] { return start(tool, memories); }, [&] { return start(BARE_WINDOW, bareMemories); });
    bench::printRow("start until the main window's first paint", times, "ms", 1.1);
    bench::printRow("memory of the main window", {bench::lowerQuartile(memories), bench::lowerQuartile(bareMemories)},
                    "MiB", 1.1);
}

} // namespace

int main()
{
    return bench::run(measure);
}
