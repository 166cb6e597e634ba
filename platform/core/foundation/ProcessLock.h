#pragma once

#include <filesystem>
#include <optional>
#include <system_error>

#include <sys/types.h>

#include "foundation/FileDescriptor.h"

namespace vantro {

/// A lock that one process at a time has, by a file that stands for what it guards. The kernel keeps it and takes it
/// back when the process ends, however it ends; the file stays. A process opens a lock file once and closes it never:
/// the kernel drops the lock with the first descriptor of the file that is closed. Any thread.
class ProcessLock
{
  public:
    /// Tries to take the lock, and makes the file where it is missing: empty, mode 666, so that every account that
    /// enters the folder can take it.
    explicit ProcessLock(const std::filesystem::path& file);

    /// Whether another process has the lock. False as well where no file can be made in the folder: who can't write to
    /// it can't overwrite what is in it either.
    [[nodiscard]] bool isHeldByAnother() const { return holder_.has_value(); }

    /// Why it can't be said whether another process has the lock: something else stands under the file's name, the file
    /// can't be opened by this account, which may write to its folder all the same, or the file system has no locks.
    [[nodiscard]] std::error_code failure() const { return failure_; }

    /// The user id of the process that has the lock; nothing when there is none or it can't be seen from here.
    [[nodiscard]] std::optional<uid_t> holder() const;

    /// Sends a signal to the process that has the lock, unless that has lost it meanwhile or may not be signalled.
    /// Answers whether it was sent.
    bool signalHolder(int signal) const;

  private:
    /// The process that keeps us from the lock; 0 where the kernel can't name it here, nothing where nobody does.
    [[nodiscard]] std::optional<pid_t> blockingProcess() const;

    [[nodiscard]] std::error_code take();

    FileDescriptor file_;
    std::optional<pid_t> holder_;
    std::error_code failure_;
};

} // namespace vantro
