#pragma once

#include <filesystem>

#include "support/Prefix.h"

namespace vantro::tests {

/// The prefix of this process: making it makes Bundle::main() the bundle of this prefix and moves the log and the
/// user's configuration (XDG_STATE_HOME, XDG_CONFIG_HOME) into it; it must come before anything that asks for either,
/// and before the first thread. One a process: each test case runs in a process of its own.
class TemporaryPrefix : public Prefix
{
  public:
    /// Throws std::logic_error when Bundle::main() was there before.
    TemporaryPrefix();

    /// What XDG_CONFIG_HOME is set to.
    [[nodiscard]] std::filesystem::path configHome() const { return path() / "config"; }
};

} // namespace vantro::tests
