#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "LoggerManager/Logger.h"
#include "VantroStandaloneSetting/PamSetting.h"
#include "service/PamFile.h"

namespace vantro::service {

/// Writes and removes the login add-on's entries in the three PAM services that are its own to change. Whatever is
/// refused leaves the file untouched and is in the log. Any thread; one change at a time.
class PamStore
{
  public:
    struct Folders
    {
        std::filesystem::path services;
        std::filesystem::path modules;
        /// Where the text that was there before a change is kept, under the service's name; made when missing.
        std::filesystem::path backup;
    };

    PamStore(Folders folders, const Logger& logger);

    /// Both take an archived PamSetting and answer whether the file holds, or does not hold, its entry afterwards. The
    /// file must exist: the services are not this program's to make.
    [[nodiscard]] bool save(const ArchiveData& setting);
    [[nodiscard]] bool remove(const ArchiveData& setting);

  private:
    [[nodiscard]] bool change(const ArchiveData& archive, std::string_view function, bool isSaving);
    /// Nothing when the change is made; what is in its way otherwise.
    [[nodiscard]] std::optional<std::string> changeFailure(const PamSetting& setting, bool isSaving) const;
    [[nodiscard]] std::optional<std::string> jumpFailure(const PamFile& file, const PamSetting& setting) const;
    [[nodiscard]] std::optional<std::string> keep(const std::string& name, const std::string& text) const;
    [[nodiscard]] std::map<std::string, PamFile> readServices() const;

    const Folders folders_;
    const Logger logger_;
    std::mutex mutex_;
};

} // namespace vantro::service
