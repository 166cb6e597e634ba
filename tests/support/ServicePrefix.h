#pragma once

#include <filesystem>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {

/// A prefix of its own with the privileged service, an information dictionary and the folders that it names, the way a
/// package lays them out.
class ServicePrefix
{
  public:
    ServicePrefix();

    [[nodiscard]] const std::filesystem::path& path() const { return temporary_.path(); }
    [[nodiscard]] std::filesystem::path program() const { return path() / "libexec" / "vantro-standalone-service"; }
    [[nodiscard]] std::filesystem::path settings() const { return path() / "state" / "settings"; }
    [[nodiscard]] std::filesystem::path records() const { return path() / "state" / "challenge-response"; }
    /// Made by the service.
    [[nodiscard]] std::filesystem::path signedIn() const { return path() / "state" / "signed-in"; }
    [[nodiscard]] std::filesystem::path pamServices() const { return path() / "pam.d"; }
    [[nodiscard]] std::filesystem::path pamModules() const { return path() / "security"; }

    void store(const VantroStandaloneSetting& setting) const;
    /// Puts a file into the modules' folder that libpam could load.
    void installModule() const;
    /// Fulfils all that a mandatory entry asks for: the module, and a master key with a record.
    void makeDemandable() const;

  private:
    TemporaryFolder temporary_;
};

} // namespace vantro::tests
