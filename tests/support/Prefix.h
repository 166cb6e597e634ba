#pragma once

#include <filesystem>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {

/// A temporary folder laid out as a prefix, with an information dictionary that names the folders in it.
class Prefix
{
  public:
    /// Makes all of these folders but signedIn(), which the service makes. Throws when one can't be made.
    Prefix();

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }
    [[nodiscard]] std::filesystem::path settings() const { return folder_ / "settings"; }
    /// VantroStandaloneSetting.xml, which is not there at first.
    [[nodiscard]] std::filesystem::path settingsDocument() const;
    [[nodiscard]] std::filesystem::path records() const { return folder_ / "challenge-response"; }
    [[nodiscard]] std::filesystem::path signedIn() const { return folder_ / "signed-in"; }
    [[nodiscard]] std::filesystem::path pamServices() const { return folder_ / "pam.d"; }
    [[nodiscard]] std::filesystem::path pamModules() const { return folder_ / "security"; }

    void store(const VantroStandaloneSetting& setting) const;

  private:
    TemporaryFolder folder_;
};

} // namespace vantro::tests
