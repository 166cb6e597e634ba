#include "foundation/ProcessLock.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/LastError.h"

// Debian 12's header declares its functions for C alone.
extern "C" {
#include <sys/pidfd.h>
}

namespace vantro {
namespace {

constexpr mode_t lockFileMode = 0666;
/// A lock that is refused and held by nobody again and again is none to be relied on.
constexpr int attemptsMade = 100;

struct flock wholeFile()
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

ProcessLock::ProcessLock(const std::filesystem::path& file)
    : file_(::open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, lockFileMode))
{
    if (file_) {
        failure_ = take();
        return;
    }
    const auto error = lastError();
    if (::faccessat(AT_FDCWD, file.parent_path().c_str(), W_OK | X_OK, AT_EACCESS) == 0)
        failure_ = error;
}

std::error_code ProcessLock::take()
{
    struct stat status = {};
    if (::fstat(file_.get(), &status) != 0)
        return lastError();
    if (!S_ISREG(status.st_mode))
        return std::make_error_code(std::errc::not_supported);
    // Whatever the umask. Only the file's owner can, and has done so then.
    [[maybe_unused]] const int changed = ::fchmod(file_.get(), lockFileMode);
    for (int attempt = 0; attempt < attemptsMade; ++attempt) {
        struct flock lock = wholeFile();
        if (::fcntl(file_.get(), F_SETLK, &lock) == 0)
            return {};
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN && errno != EACCES)
            return lastError();
        holder_ = blockingProcess();
        // None any more: it has ended between the two calls.
        if (holder_)
            return {};
    }
    return std::make_error_code(std::errc::resource_unavailable_try_again);
}

std::optional<pid_t> ProcessLock::blockingProcess() const
{
    struct flock lock = wholeFile();
    // A file system that can't say gives no reason to believe that nobody holds it.
    if (::fcntl(file_.get(), F_GETLK, &lock) != 0)
        return 0;
    if (lock.l_type == F_UNLCK)
        return std::nullopt;
    return std::max<pid_t>(lock.l_pid, 0);
}

std::optional<uid_t> ProcessLock::holder() const
{
    struct stat status = {};
    if (holder_.value_or(0) == 0 || ::stat(("/proc/" + std::to_string(*holder_)).c_str(), &status) != 0)
        return std::nullopt;
    return status.st_uid;
}

bool ProcessLock::signalHolder(int signal) const
{
    if (holder_.value_or(0) == 0)
        return false;
    const FileDescriptor process(::pidfd_open(*holder_, 0));
    // Asked again once the number can't come to mean another process.
    return process && blockingProcess() == holder_ && ::pidfd_send_signal(process.get(), signal, nullptr, 0) == 0;
}

} // namespace vantro
