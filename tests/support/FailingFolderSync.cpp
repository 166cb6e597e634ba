#include "support/FailingFolderSync.h"

#include <atomic>
#include <cerrno>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
std::atomic<bool> isFailing = false;
std::atomic<int> syncedFiles = 0;
} // namespace

/// In place of the C library's.
extern "C" int fsync(int descriptor)
{
    struct stat status = {};
    const bool isFolder = ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
    if (isFailing && isFolder) {
        errno = EIO;
        return -1;
    }
    syncedFiles += isFolder ? 0 : 1;
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

namespace vantro::tests {

FailingFolderSync::FailingFolderSync()
{
    isFailing = true;
    ::syncedFiles = 0;
}

FailingFolderSync::~FailingFolderSync()
{
    isFailing = false;
}

int FailingFolderSync::syncedFiles()
{
    return ::syncedFiles;
}

} // namespace vantro::tests
