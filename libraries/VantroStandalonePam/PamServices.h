#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

#include "VantroStandalonePam/PamFile.h"

namespace vantro {

/// Far beyond any service; libpam has no such limit.
inline constexpr std::size_t pamServiceSizeLimit = std::size_t{1024} * 1024;

/// Where libpam looks for a program's service that the PAM services' folder does not have.
inline constexpr const char* pamVendorServicesFolder = "/usr/lib/pam.d";

/// The PAM services of the machine as libpam finds them. Reads each file once, when it is asked for. One thread.
class PamServices
{
  public:
    /// Programs' services lie in `folder`, and where it has none of a name, in `vendorFolder`.
    PamServices(std::filesystem::path folder, std::filesystem::path vendorFolder)
        : folder_(std::move(folder)), vendorFolder_(std::move(vendorFolder))
    {
    }

    /// The file behind the path, links followed: the same object for the same file. Null where libpam finds none.
    [[nodiscard]] const PamFile* at(const std::filesystem::path& path);

    /// From here on the path's file has this text. Only before its file was asked for. Where it can't be found out at
    /// the moment which file that is, none can be read from here on.
    void assume(const std::filesystem::path& path, std::string text);

    struct Service
    {
        std::filesystem::path path;
        const PamFile* file = nullptr;
    };
    using ServicesByName = std::map<std::string, Service>;

    /// All services that a program may sign somebody in with. Where a folder can't be read to its end, it counts as a
    /// service that can't be read.
    [[nodiscard]] ServicesByName all();

  private:
    void addServicesOf(const std::filesystem::path& folder, ServicesByName& services);

    const std::filesystem::path folder_;
    const std::filesystem::path vendorFolder_;
    /// By their paths without links.
    std::map<std::filesystem::path, PamFile> files_;
    const PamFile unreadable_ = PamFile::unreadable();
    bool isAssumptionLost_ = false;
};

} // namespace vantro
