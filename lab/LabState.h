#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "foundation/Bundle.h"
#include "foundation/FileDescriptor.h"

namespace vantro::lab {

/// Everything of the lab that outlives it: the folders that the information dictionary names, the tool's settings and
/// log, the account list, the bus's configuration. One lab at a time uses a state.
class LabState
{
  public:
    /// Uses the programs of the build tree and the folders that their information dictionary names.
    LabState();

    /// Uses `folder` alone: with copies of the programs and of their dictionary that name folders in it.
    explicit LabState(const std::filesystem::path& folder);

    /// Makes what is missing; what is there stays as it is. Throws std::runtime_error, with a text for people, when
    /// another lab uses the state or when it can't be made.
    void prepare();

    /// Removes the temporary folders that a lab which was killed has left, and notes those of this one.
    void noteTemporaryFolders(const std::vector<std::filesystem::path>& folders) const;
    void removeTemporaryFolders() const;

    /// The programs; they may not have been built.
    [[nodiscard]] std::filesystem::path tool() const { return bundle_.prefix() / "bin" / "vantro-standalone"; }
    [[nodiscard]] std::filesystem::path service() const
    {
        return bundle_.prefix() / "libexec" / "vantro-standalone-service";
    }

    [[nodiscard]] std::filesystem::path document() const;
    [[nodiscard]] std::filesystem::path pamServices() const;
    [[nodiscard]] std::filesystem::path pamModules() const;
    /// Where the service notes who was accepted with which token.
    [[nodiscard]] std::filesystem::path signedIn() const;
    [[nodiscard]] std::filesystem::path toolLog() const
    {
        return folder_ / "log" / "vantro-standalone" / "VantroStandalone.log";
    }
    [[nodiscard]] std::filesystem::path serviceLog() const { return folder_ / "log" / "service.log"; }
    [[nodiscard]] std::filesystem::path busConfiguration() const { return folder_ / "bus.conf"; }
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

    /// What the programs find in their environment beyond what the lab itself has been given.
    [[nodiscard]] std::map<std::string, std::string> environment() const;

  private:
    void takeLock();
    void makePrefix() const;
    void makeFolders() const;
    void makePamFolders() const;
    void makeDefaults() const;

    bool hasOwnPrefix_;
    std::filesystem::path folder_;
    Bundle bundle_;
    FileDescriptor lock_;
};

} // namespace vantro::lab
