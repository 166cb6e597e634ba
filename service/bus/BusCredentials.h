#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "LoggerManager/Logger.h"
#include "bus/Authorisation.h"

namespace vantro::service {

/// The bus's own object, named as D-Bus has it everywhere; its interface has the name of the bus.
namespace bus_daemon {
inline constexpr const char* name = "org.freedesktop.DBus";
inline constexpr const char* path = "/org/freedesktop/DBus";
} // namespace bus_daemon

/// Asks the bus who stands behind a sender. The bus takes a connection's user and groups when it is made and gives no
/// unique name twice, so that an answer holds for good. Any thread.
class BusCredentials
{
  public:
    explicit BusCredentials(const Logger& logger) : logger_(logger.inFile("BusCredentials")) {}

    /// What is known without asking.
    [[nodiscard]] std::optional<Caller> knownCaller(const std::string& sender) const;

    /// Nothing when the bus can't or won't say; the reason is in the log. Blocks up to a second and a half.
    [[nodiscard]] std::optional<Caller> callerOf(const std::string& sender);

  private:
    const Logger logger_;
    mutable std::mutex mutex_;
    std::map<std::string, Caller, std::less<>> known_;
};

} // namespace vantro::service
