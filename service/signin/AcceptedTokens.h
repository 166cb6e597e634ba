#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>

#include <sys/types.h>

#include "LoggerManager/Logger.h"
#include "foundation/TrustedFile.h"

namespace vantro::service {

/// The token with which an account was last accepted.
struct AcceptedToken
{
    std::uint64_t serial = 0;
    /// Whether it was plugged in when that was last known.
    bool isPluggedIn = true;
};

/// Which token opened which account, kept in a folder of its own so that a service that is started again knows it: a
/// file for each account, by its user id. The folder is emptied by a start of the machine, where nobody is signed in.
/// What can't be read or written is in the log. One thread at a time.
class AcceptedTokens
{
  public:
    /// Makes the folder where it is missing.
    AcceptedTokens(std::filesystem::path folder, const Logger& logger);

    [[nodiscard]] std::map<uid_t, AcceptedToken> read() const;
    void write(uid_t user, const AcceptedToken& token) const;

  private:
    [[nodiscard]] std::optional<AcceptedToken> readFile(const std::filesystem::path& path) const;
    void report(const FileFailure& failure, const char* function) const;

    std::filesystem::path folder_;
    Logger logger_;
};

} // namespace vantro::service
