// Start-up time and memory of the settings tool against an empty window: from the start of the process until its window
// is shown, the two in turns, the median of all rounds.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "foundation/FileDescriptor.h"
#include "support/TemporaryFolder.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Measurement
{
    double milliseconds = 0;
    double mebibytes = 0;
};

/// The proportional share of the process's memory.
double memoryOf(pid_t process)
{
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string word; rollup >> word;) {
        if (word != "Pss:")
            continue;
        double kibibytes = 0;
        rollup >> kibibytes;
        return kibibytes / 1024;
    }
    return 0;
}

/// Starts `program`, waits until it writes `marker` to standard error, and ends it.
Measurement measure(const char* program, std::string_view marker)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        std::abort();
    const vantro::FileDescriptor reader(ends[0]);
    vantro::FileDescriptor writer(ends[1]);

    const auto start = Clock::now();
    const pid_t process = ::fork();
    if (process == 0) {
        ::dup2(writer.get(), STDERR_FILENO);
        ::execl(program, program, nullptr);
        ::_exit(EXIT_FAILURE);
    }
    writer.close();

    std::string output;
    char buffer[4096];
    while (output.find(marker) == std::string::npos) {
        const ssize_t count = ::read(reader.get(), buffer, sizeof buffer);
        if (count <= 0)
            break;
        output.append(buffer, static_cast<std::size_t>(count));
    }
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
    if (output.find(marker) == std::string::npos) {
        std::fprintf(stderr, "%s ended before its window was shown:\n%s\n", program, output.c_str());
        std::exit(EXIT_FAILURE);
    }
    const Measurement measurement{elapsed.count(), memoryOf(process)};
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
    return measurement;
}

double median(std::vector<Measurement> all, double Measurement::*member)
{
    std::nth_element(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2), all.end(),
                     [member](const auto& left, const auto& right) { return left.*member < right.*member; });
    return all[all.size() / 2].*member;
}

void report(const char* what, const char* unit, const std::vector<Measurement>& tool,
            const std::vector<Measurement>& floor, double Measurement::*member)
{
    const double ours = median(tool, member);
    const double bare = median(floor, member);
    std::printf("%-10s tool %8.1f %s   empty window %8.1f %s   ratio %.2f\n", what, ours, unit, bare, unit,
                ours / bare);
}

} // namespace

int main()
{
    constexpr int rounds = 21;
    const vantro::tests::TemporaryFolder home;
    ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
    ::setenv("XDG_STATE_HOME", home.path().c_str(), 1);
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    std::filesystem::create_directories(home / "vantro-standalone");
    vantro::tests::writeFile(home / "vantro-standalone/defaults.ini",
                             "[General]\nsuppression=true\nisFirstStart=false\n");

    std::vector<Measurement> tool;
    std::vector<Measurement> floor;
    // The first round of each only warms the caches.
    for (int round = 0; round <= rounds; ++round) {
        const Measurement bare = measure(EMPTY_WINDOW, "shown");
        const Measurement ours = measure(TOOL, "Finished viewDidAppear.");
        if (round == 0)
            continue;
        floor.push_back(bare);
        tool.push_back(ours);
    }
    report("start", "ms ", tool, floor, &Measurement::milliseconds);
    report("memory", "MiB", tool, floor, &Measurement::mebibytes);
    return EXIT_SUCCESS;
}
