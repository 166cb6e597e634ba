#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>

#include "LoggerManager/Logger.h"
#include "foundation/Outcome.h"
#include "foundation/TrustedFile.h"
#include "tokens/ChallengeRecord.h"

namespace vantro::service {

/// The challenge-response files, one a token, named by its serial. Reads and writes only in a folder that nobody else
/// can reach into (folderFailure, mode 0700), and only regular files of its own with mode 0600. Any thread.
class RecordStore
{
  public:
    RecordStore(std::filesystem::path folder, const Logger& logger)
        : folder_(std::move(folder)), logger_(logger.inFile("RecordStore"))
    {
    }

    /// Says why the folder can't be used; nothing when it can.
    [[nodiscard]] std::optional<FileFailure> folderFailure() const;

    /// Says why a record of this token could not be written; nothing when it could.
    [[nodiscard]] std::optional<FileFailure> writeFailure(std::uint64_t serial) const;

    /// Removes what kills have left of records that were being written.
    void removeUnfinished();

    /// Creates the record or puts it in the place of the one that is there.
    [[nodiscard]] std::optional<FileFailure> write(const ChallengeRecord& record);

    /// Puts `renewed` in the place of `known`. False when the file does not hold `known` any more: it was removed or
    /// made anew meanwhile, and stays as it is.
    [[nodiscard]] Outcome<bool, FileFailure> renew(const ChallengeRecord& known, const ChallengeRecord& renewed);

    [[nodiscard]] Outcome<ChallengeRecord, FileFailure> read(std::uint64_t serial) const;

    /// False when there was none.
    [[nodiscard]] Outcome<bool, FileFailure> remove(std::uint64_t serial);

  private:
    [[nodiscard]] std::filesystem::path fileOf(std::uint64_t serial) const;
    [[nodiscard]] std::optional<FileFailure> replace(const ChallengeRecord& record) const;

    const std::filesystem::path folder_;
    const Logger logger_;
    std::mutex mutex_;
};

} // namespace vantro::service
