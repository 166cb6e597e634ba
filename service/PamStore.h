#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "LoggerManager/Logger.h"
#include "VantroStandaloneSetting/PamSetting.h"
#include "service/Outcome.h"
#include "service/PamFile.h"
#include "service/RegisteredKeys.h"
#include "service/RequestFailure.h"
#include "service/TrustedFile.h"

namespace vantro::service {

/// Writes and removes the login add-on's entries in the three PAM services that are its own to change. Whatever is
/// refused leaves the file untouched and is in the log. Any thread; one change at a time.
///
/// A mandatory entry is all or nothing: it is refused while it would be refused in any of the three services, while no
/// registered token opens an account, and while libpam could not load the module. An optional one may always take the
/// place of the entry that stands, since the number of the stack's modules stays: a demand can always be taken back.
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

    /// `keys` must outlive this.
    PamStore(Folders folders, const RegisteredKeys& keys, const Logger& logger);

    /// Both take an archived PamSetting and make the file hold, or not hold, its entry; nothing is answered when it
    /// does. The file must exist: the services are not this program's to make.
    [[nodiscard]] std::optional<RequestFailure> save(const ArchiveData& setting);
    [[nodiscard]] std::optional<RequestFailure> remove(const ArchiveData& setting);

  private:
    enum class Action
    {
        Save,
        Remove
    };
    /// What a change makes of a service's file.
    struct Plan
    {
        std::filesystem::path path;
        TrustedFile before;
        std::string after;
        /// An optional entry comes in the place of the one that stands: to be done even where nothing can be kept.
        bool takesDemandBack = false;
    };

    [[nodiscard]] std::optional<RequestFailure> change(const ArchiveData& archive, Action action);
    [[nodiscard]] std::optional<RequestFailure> demandFailure(const PamSetting& setting) const;
    [[nodiscard]] Outcome<Plan, RequestFailure> plan(const PamSetting& setting, Action action) const;
    [[nodiscard]] std::optional<RequestFailure> carryOut(const Plan& plan) const;
    [[nodiscard]] std::optional<RequestFailure> jumpFailure(const PamFile& file, const PamSetting& setting) const;
    [[nodiscard]] std::optional<RequestFailure> keep(const Plan& plan) const;
    [[nodiscard]] std::map<std::string, PamFile> readServices() const;

    const Folders folders_;
    const RegisteredKeys& keys_;
    const Logger logger_;
    std::mutex mutex_;
};

} // namespace vantro::service
