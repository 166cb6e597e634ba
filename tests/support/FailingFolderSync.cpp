#include "support/FailingFolderSync.h"

#include <atomic>
#include <cerrno>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
std::atomic<bool> isFailing = false;
} // namespace

/// In place of the C library's.
extern "C" int fsync(int descriptor)
{
    struct stat status = {};
    if (isFailing && ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

namespace vantro::tests {

FailingFolderSync::FailingFolderSync()
{
    isFailing = true;
}

FailingFolderSync::~FailingFolderSync()
{
    isFailing = false;
}

} // namespace vantro::tests
