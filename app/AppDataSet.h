#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QString>

#include "LoggerManager/Logger.h"
#include "SettingDocument.h"
#include "TokenPresence.h"
#include "VantroStandaloneXPCSupport/ServiceProxy.h"

namespace vantro {

/// What every screen shares: the log, the settings document, the privileged service's proxy, and how many tokens are
/// plugged in and which one came last. Making it is the tool's start sequence. It lives as long as the process.
class AppDataSet
{
  public:
    /// The one instance. The first call, on the main thread, runs the start sequence; a call from another thread in the
    /// meantime waits for it.
    static AppDataSet& shared();

    /// Any thread.
    const Logger logger;

    /// Main thread. Whoever changes it calls its write() before the operation ends.
    SettingDocument vantroStandaloneSetting;

    /// The proxy of the privileged service. Any thread.
    ServiceProxy& service() { return *service_; }

    /// See TokenPresence::count().
    [[nodiscard]] std::int64_t connectedYubiKeyCount() const { return tokenPresence_.count(); }

    /// See TokenPresence::serial().
    [[nodiscard]] std::optional<std::uint64_t> connectedYubiKeySerial() const { return tokenPresence_.serial(); }

    /// See TokenPresence::obstacleText().
    [[nodiscard]] QString tokenObstacleText() const { return tokenPresence_.obstacleText(); }

    AppDataSet(const AppDataSet&) = delete;
    AppDataSet& operator=(const AppDataSet&) = delete;

  private:
    AppDataSet();
    ~AppDataSet() = default;

    void loadOrCreateSetting();
    [[nodiscard]] std::unique_ptr<ServiceProxy> connectionService() const;

    std::unique_ptr<ServiceProxy> service_;
    TokenPresence tokenPresence_;
};

} // namespace vantro
