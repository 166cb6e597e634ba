#include "emulation/Preload.h"

#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h> // IWYU pragma: keep (with ThreadSanitizer)
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/LastError.h"

#if defined(__SANITIZE_THREAD__)
// umockdev and GLib are not instrumented, so ThreadSanitizer doesn't see how they hand their own memory from thread to
// thread. libudev draws the seed of its hash tables without a lock, which umockdev's sending shares with whoever
// listens in the same process. Qt and nss_wrapper, which programs with tokens use as well, lock in ways that it doesn't
// see either; frames of theirs are all that is left out, not what they call.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "race:libumockdev.so\n"
           "race:libglib-2.0.so\n"
           "race_top:getrandom\n"
           "race_top:getpwent\n"
           "race:libQt6Core.so\n"
           "race:libQt6Gui.so\n"
           "race:libQt6Widgets.so\n"
           "race:libnss_wrapper.so\n"
           "mutex:libnss_wrapper.so\n";
}

// To tell whether a finding is left out, the sanitizer reads the programs' symbols while it holds a lock of the dynamic
// linker. umockdev looks up the C library's function at the first call of each that it stands in front of, which waits
// for another of these locks: with a dlopen() on a second thread neither would get on. So each is called once before.
[[gnu::constructor]] static void lookUpWhatASymbolReaderCalls()
{
    struct stat status = {};
    char byte = 0;
    const char* const itself = "/proc/self/exe";
    const int file = ::open(itself, O_RDONLY | O_CLOEXEC);
    const bool isReady = ::lstat(itself, &status) == 0 && ::readlink(itself, &byte, 1) == 1 &&
                         ::read(file, &byte, 1) == 1 && ::close(file) == 0;
    if (!isReady)
        std::abort();
}
#endif

namespace vantro::lab {

namespace {

constexpr auto preloadVariable = "LD_PRELOAD";
constexpr auto umockdevLibrary = "libumockdev-preload.so.0";

/// The paths of the sanitizer runtimes that the program is linked with; each insists on being loaded first.
std::vector<std::string> sanitizerRuntimes()
{
    std::vector<std::string> runtimes;
    dl_iterate_phdr(
        [](dl_phdr_info* library, std::size_t, void* found) {
            const std::string_view path = library->dlpi_name;
            if (path.find("/libasan.so") != path.npos || path.find("/libtsan.so") != path.npos) {
                static_cast<std::vector<std::string>*>(found)->emplace_back(path);
            }
            return 0;
        },
        &runtimes);
    return runtimes;
}

/// What is set while there are threads of the emulation, which read the environment with most of their calls. To change
/// a variable leaves the environment's array where it is; to add one may free it. The values are those that count
/// without.
constexpr std::pair<const char*, const char*> changedLater[] = {
    {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/dbus/system_bus_socket"}, {"LANGUAGE", ""}};

std::string inheritedPreload()
{
    const char* const value = std::getenv(preloadVariable);
    return value != nullptr ? value : "";
}

} // namespace

bool isUnderPreload()
{
    return inheritedPreload().find(LAB_NETLINK_NAMES_LIBRARY) != std::string::npos;
}

void reexecuteUnderPreload(char** argv, const std::vector<std::string>& furtherLibraries)
{
    if (isUnderPreload()) {
        return;
    }
    std::vector<std::string> libraries = sanitizerRuntimes();
    libraries.emplace_back(LAB_NETLINK_NAMES_LIBRARY);
    libraries.emplace_back(umockdevLibrary);
    libraries.insert(libraries.end(), furtherLibraries.begin(), furtherLibraries.end());
    if (std::string inherited = inheritedPreload(); !inherited.empty()) {
        libraries.push_back(std::move(inherited));
    }
    std::string preload;
    for (const std::string& library : libraries) {
        preload += (preload.empty() ? "" : ":") + library;
    }
    ::setenv(preloadVariable, preload.c_str(), 1);
    for (const auto& [name, value] : changedLater) {
        ::setenv(name, value, 0);
    }
    ::execv("/proc/self/exe", argv);
    throw std::system_error(lastError(), "start over under the emulation's libraries");
}

} // namespace vantro::lab
