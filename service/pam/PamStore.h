#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "LoggerManager/Logger.h"
#include "RequestFailure.h"
#include "VantroStandalonePam/PamServices.h"
#include "VantroStandaloneSetting/PamSetting.h"
#include "foundation/Outcome.h"
#include "foundation/TrustedFile.h"
#include "tokens/RegisteredKeys.h"

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
        std::filesystem::path vendorServices = pamVendorServicesFolder;
    };

    /// `registeredKeys` must outlive this.
    PamStore(Folders folders, const RegisteredKeys& registeredKeys, const Logger& logger);

    /// Removes what kills have left of changes and of their backups.
    void removeUnfinished();

    /// Makes the PAM service hold the entry of an archived PamSetting: in the interface auth, required or optional. The
    /// file must exist: the services are not this program's to make. Nothing when it is done.
    ///
    /// A required entry locks out everybody whom it can't let in, so it is written only while all three services could
    /// be made to have one, the module could be loaded, and a registered token opens an account. An optional entry
    /// takes the place of the one that is there whatever else is wrong, so that a demand can always be taken back; it
    /// is left out of a file that has none and where it would move a jump's target.
    [[nodiscard]] std::optional<RequestFailure> save(const ArchiveData& setting);

    /// Takes the entry out; nothing when the file does not hold one afterwards.
    [[nodiscard]] std::optional<RequestFailure> remove(const ArchiveData& setting);

  private:
    enum class Request
    {
        Save,
        Remove
    };

    /// Whether it can only take a demand back.
    [[nodiscard]] static bool isRelaxing(const PamSetting& setting, Request request);

    /// A PAM service's file, and the text that a request makes of it.
    struct Change
    {
        std::filesystem::path path;
        TrustedFile found;
        std::string text;
    };

    // These look, and change no file.

    /// The change that the request comes to, or why it can't be done.
    [[nodiscard]] Outcome<Change, RequestFailure> prepare(const PamSetting& setting, Request request) const;
    /// Says why nobody may be made to show a token; nothing when everybody may.
    [[nodiscard]] std::optional<RequestFailure> demandFailure(const PamSetting& setting) const;
    /// Says why a text that has the entry can't be put in the place: some service jumps over it, or nobody knows.
    [[nodiscard]] std::optional<RequestFailure> jumpFailure(const PamSetting& setting, const std::string& text) const;

    // These write. Each says why it did not.

    /// Does what is asked, and logs it under the name of the `function`.
    [[nodiscard]] std::optional<RequestFailure> carryOut(const ArchiveData& archive, std::string_view function,
                                                         Request request);
    [[nodiscard]] std::optional<RequestFailure> apply(const PamSetting& setting, Request request);
    /// Writes the text that is to be replaced into the backup folder.
    [[nodiscard]] std::optional<RequestFailure> writeBackup(const Change& change);

    const Folders folders_;
    const RegisteredKeys& registeredKeys_;
    const Logger logger_;
    std::mutex mutex_;
};

} // namespace vantro::service
