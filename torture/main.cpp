// Has the product write the settings document, the PAM entries and the records in processes that are killed and whose
// calls fail, until the time is over, and prints what came of it.
//
//   torture [--seconds N] [--seed N]
//
// Each cycle has a seed of its own, one more than that of the cycle before. What is found names it: given again, with
// no seconds, it makes the same cycle alone; only the kills that come at a time and not at a call may come elsewhere.
// Ends with 1 where anything is wrong, or where too little was tried.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <iomanip>
#include <iostream>
#include <numeric>
#include <random>

#include <unistd.h>

#include "Cycle.h"
#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneNames.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "foundation/Text.h"
#include "support/TemporaryPrefix.h"
#include "support/TestProcess.h"

namespace vantro::torture {
namespace {

/// In so many cycles each call has failed somewhere.
constexpr std::uint64_t cyclesForAllCalls = 300;

struct Arguments
{
    std::uint64_t seconds = 120;
    std::uint64_t seed = std::random_device()();
};

std::optional<Arguments> argumentsOf(int count, char** words)
{
    Arguments arguments;
    for (int index = 1; index < count; index += 2) {
        const auto number = index + 1 < count ? parseUInt64(words[index + 1]) : std::nullopt;
        const std::string name = words[index];
        if (!number || (name != "--seconds" && name != "--seed"))
            return std::nullopt;
        (name == "--seconds" ? arguments.seconds : arguments.seed) = *number;
    }
    return arguments;
}

void print(const Table& table, std::uint64_t faults)
{
    const struct
    {
        const char* name;
        std::uint64_t count;
    } columns[] = {{"cycles", table.cycles},
                   {"kills", table.kills},
                   {"writes", table.writes},
                   {"faults", faults},
                   {"lost", table.lost},
                   {"mixed", table.mixed},
                   {"answered wrongly", table.answeredWrongly},
                   {"left behind", table.leftBehind}};
    for (const auto& column : columns)
        std::cout << std::setw(static_cast<int>(std::max<std::size_t>(std::strlen(column.name), 8)) + 2) << column.name;
    std::cout << '\n';
    for (const auto& column : columns)
        std::cout << std::setw(static_cast<int>(std::max<std::size_t>(std::strlen(column.name), 8)) + 2)
                  << column.count;
    std::cout << '\n';
}

/// Everything that a demand needs, but what the cycles make.
Folders makeFolders(const tests::TemporaryPrefix& prefix)
{
    Folders folders{{prefix.pamServices(), prefix.pamModules(), prefix.path() / "backup", prefix.path() / "vendor"},
                    prefix.records(),
                    prefix.path() / "keys.xml"};
    std::filesystem::create_directory(folders.pam.vendorServices);
    std::filesystem::copy_file(std::filesystem::path(VANTRO_LIBPAM_MODULES_FOLDER) / "pam_permit.so",
                               folders.pam.modules / names::pamModule);
    VantroStandaloneSetting setting;
    setting.masterKeySetting.masterKeys.emplace_back(recordOf(0, firstContent).serial);
    tests::writeFile(folders.keys, serialised(setting));
    return folders;
}

int run(const Arguments& arguments, Faults& faults)
{
    std::cout << "Seed " << arguments.seed << '\n' << std::flush;
    const tests::TemporaryPrefix prefix;
    const auto folders = makeFolders(prefix);
    // Whoever asks first decides where the records of the log go.
    const auto logger =
        LoggerManager::logger("VantroStandalone", LoggerManager::Destination::StandardError).inFile("torture");
    const auto document = SettingFile().url();
    Table table;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(arguments.seconds);
    do
        Cycle(folders, document, logger, faults, arguments.seed + table.cycles, table).run();
    while (std::chrono::steady_clock::now() < end);

    const auto failed = std::accumulate(table.faults.begin(), table.faults.end(), std::uint64_t{0});
    print(table, failed);
    bool isGood = table.lost + table.mixed + table.answeredWrongly + table.leftBehind == 0;
    const auto unfailed = std::find(table.faults.begin(), table.faults.end(), 0);
    if (arguments.seconds > 0 && (failed == 0 || table.kills == 0)) {
        std::cerr << "Nothing was tried: no call has failed, or no process was killed.\n";
        isGood = false;
    } else if (table.cycles >= cyclesForAllCalls && unfailed != table.faults.end()) {
        std::cerr << "Call " << unfailed - table.faults.begin() << " of the " << callCount << " has never failed.\n";
        isGood = false;
    }
    return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace vantro::torture

int main(int count, char** words)
{
    using namespace vantro;
    const auto arguments = torture::argumentsOf(count, words);
    if (!arguments) {
        std::cerr << "Usage: torture [--seconds N] [--seed N]\n";
        return EXIT_FAILURE;
    }
    auto* const faults = static_cast<torture::Faults*>(::dlsym(RTLD_DEFAULT, torture::faultsSymbol));
    if (faults == nullptr) {
        if (std::getenv("LD_PRELOAD") == nullptr && ::setenv("LD_PRELOAD", VANTRO_TORTURE_FAULTS, 1) == 0 &&
            // Once for all processes that are forked.
            ::setenv("LD_BIND_NOW", "1", 1) == 0)
            ::execv("/proc/self/exe", words);
        std::cerr << VANTRO_TORTURE_FAULTS << " can't be preloaded.\n";
        return EXIT_FAILURE;
    }
    std::signal(SIGPIPE, SIG_IGN);
    tests::keepTemporaryFilesInMemory();
    tests::endTests(torture::run(*arguments, *faults));
}
