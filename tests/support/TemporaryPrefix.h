#pragma once

#include <filesystem>

#include "support/TemporaryFolder.h"

namespace vantro::tests {

/// An installation of a test's own: a temporary folder laid out as a prefix, whose information dictionary names four
/// empty folders in it. Making it makes Bundle::main() the bundle of this prefix and moves the log and the user's
/// configuration (XDG_STATE_HOME, XDG_CONFIG_HOME) into it; it must come before anything that asks for either, and
/// before the first thread. One a process: each test case runs in a process of its own.
class TemporaryPrefix
{
  public:
    /// Throws when a folder can't be made, and std::logic_error when Bundle::main() was there before.
    TemporaryPrefix();

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }
    [[nodiscard]] std::filesystem::path settingsFolder() const { return folder_ / "settings"; }
    /// VantroStandaloneSetting.xml, which is not there at first.
    [[nodiscard]] std::filesystem::path settingsDocument() const
    {
        return settingsFolder() / "VantroStandaloneSetting.xml";
    }
    [[nodiscard]] std::filesystem::path challengeResponseFolder() const { return folder_ / "challenge-response"; }
    [[nodiscard]] std::filesystem::path pamServicesFolder() const { return folder_ / "pam.d"; }
    [[nodiscard]] std::filesystem::path pamModulesFolder() const { return folder_ / "security"; }
    /// What XDG_STATE_HOME and XDG_CONFIG_HOME are set to.
    [[nodiscard]] std::filesystem::path stateHome() const { return folder_ / "state"; }
    [[nodiscard]] std::filesystem::path configHome() const { return folder_ / "config"; }

  private:
    TemporaryFolder folder_;
};

} // namespace vantro::tests
