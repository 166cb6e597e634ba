#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <sdbus-c++/sdbus-c++.h>

#include "LoggerManager/Logger.h"
#include "service/Authorisation.h"

namespace vantro::service {

/// Asks the bus who stands behind a sender. The bus takes a connection's user and groups when it is made and gives no
/// unique name twice, so that an answer holds for good. Has a connection of its own, since a call that waits for its
/// answer would keep the requests of the connection that it is made on waiting too. Any thread.
class BusCredentials
{
  public:
    /// Throws sdbus::Error without a bus.
    explicit BusCredentials(const Logger& logger);

    /// Nothing when the bus can't or won't say; the reason is in the log.
    [[nodiscard]] std::optional<Caller> callerOf(const std::string& sender);

  private:
    [[nodiscard]] std::optional<Caller> ask(const std::string& sender);

    const Logger logger_;
    std::mutex mutex_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IProxy> bus_;
    std::map<std::string, Caller, std::less<>> known_;
};

} // namespace vantro::service
