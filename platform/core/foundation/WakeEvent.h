#pragma once

#include "foundation/FileDescriptor.h"

namespace vantro {

/// A descriptor that poll(2) finds readable from the first wake() until the next clear(): what one thread ends the wait
/// of another with.
class WakeEvent
{
  public:
    /// Throws std::system_error when the process has no file descriptors left.
    WakeEvent();

    /// For poll(2), POLLIN; owned by this.
    [[nodiscard]] int fileDescriptor() const { return descriptor_.get(); }

    /// Any thread, and a signal handler that keeps errno.
    void wake() const;
    void clear() const;

    /// Whether somebody has called wake() since the last clear().
    [[nodiscard]] bool isAwake() const;

  private:
    FileDescriptor descriptor_;
};

} // namespace vantro
