// Start-up time and memory of the settings tool against an empty window: from the start of the process until its window
// is shown, the two in turns, the median of all rounds.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "foundation/FileDescriptor.h"
#include "support/TemporaryPrefix.h"

namespace {

using Clock = std::chrono::steady_clock;
/// Far longer than any start takes.
constexpr int patienceMilliseconds = 30000;

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

void end(pid_t process)
{
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

/// Starts `program`, waits until it writes `marker` to standard error, and ends it; nothing when the marker doesn't
/// come.
std::optional<Measurement> measure(const char* program, std::string_view marker)
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
    pollfd wait = {reader.get(), POLLIN, 0};
    while (output.find(marker) == std::string::npos && ::poll(&wait, 1, patienceMilliseconds) > 0) {
        const ssize_t count = ::read(reader.get(), buffer, sizeof buffer);
        if (count <= 0)
            break;
        output.append(buffer, static_cast<std::size_t>(count));
    }
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
    if (output.find(marker) == std::string::npos) {
        std::fprintf(stderr, "%s has shown no window; it needs a display, as of xvfb-run. It wrote:\n%s\n", program,
                     output.c_str());
        end(process);
        return std::nullopt;
    }
    const Measurement measurement{elapsed.count(), memoryOf(process)};
    end(process);
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
    // An installation of its own, with nothing in the user's way.
    const vantro::tests::TemporaryPrefix prefix;
    const auto program = prefix.path() / "bin" / "vantro-standalone";
    std::filesystem::create_directory(program.parent_path());
    std::filesystem::copy_file(TOOL, program);
    const auto defaults = prefix.configHome() / "vantro-standalone";
    std::filesystem::create_directories(defaults);
    vantro::tests::writeFile(defaults / "defaults.ini", "[General]\nsuppression=true\nisFirstStart=false\n");
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", 1);

    std::vector<Measurement> tool;
    std::vector<Measurement> floor;
    // The first round of each only warms the caches.
    for (int round = 0; round <= rounds; ++round) {
        const auto bare = measure(EMPTY_WINDOW, "shown");
        const auto ours = bare ? measure(program.c_str(), "Finished viewDidAppear.") : std::nullopt;
        if (!ours)
            return EXIT_FAILURE;
        if (round == 0)
            continue;
        floor.push_back(*bare);
        tool.push_back(*ours);
    }
    report("start", "ms ", tool, floor, &Measurement::milliseconds);
    report("memory", "MiB", tool, floor, &Measurement::mebibytes);
    return EXIT_SUCCESS;
}
