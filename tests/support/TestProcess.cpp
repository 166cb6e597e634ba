#include "support/TestProcess.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>

/// OpenSSL keeps a state for each thread that goes with the thread, and the emulation's threads run to the end.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier): the sanitizer's name
{
    return "leak:CRYPTO_zalloc\n";
}
#endif

namespace vantro::tests {
namespace {

/// Names the folder in memory, for the program as it has started over.
constexpr auto memoryVariable = "VANTRO_TESTS_MEMORY";

} // namespace

void keepTemporaryFilesInMemory()
{
    std::string folder = (std::filesystem::temp_directory_path() / "vantro-memory-XXXXXX").string();
    if (::unshare(CLONE_NEWNS) != 0 || ::mkdtemp(folder.data()) == nullptr)
        return;
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        ::mount("tmpfs", folder.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, nullptr) == 0) {
        ::setenv("TMPDIR", folder.c_str(), 1);
        ::setenv(memoryVariable, folder.c_str(), 1);
    } else {
        ::rmdir(folder.c_str());
    }
}

void endTests(int result)
{
#if defined(__SANITIZE_ADDRESS__)
    if (__lsan_do_recoverable_leak_check() != 0 && result == EXIT_SUCCESS)
        result = EXIT_FAILURE;
#endif
    if (const char* const folder = std::getenv(memoryVariable)) {
        ::umount2(folder, MNT_DETACH);
        ::rmdir(folder);
    }
    std::fflush(nullptr);
    std::quick_exit(result);
}

} // namespace vantro::tests
