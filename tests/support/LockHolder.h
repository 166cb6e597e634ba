#pragma once

#include <filesystem>
#include <optional>

#include <sys/types.h>

namespace vantro::tests {

/// Another process that has a ProcessLock, until a signal or this object's end ends it.
class LockHolder
{
  public:
    /// Returns when the other process has the lock. It runs as `user`, which takes root.
    explicit LockHolder(const std::filesystem::path& file, std::optional<uid_t> user = std::nullopt);
    ~LockHolder();
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;

    /// The signal that ended it; 0 for any other end.
    int waitForEnd();

  private:
    pid_t process_ = -1;
};

} // namespace vantro::tests
