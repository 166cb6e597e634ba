#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "LoggerManager/Logger.h"
#include "Model/TokenObstacle.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "VantroStandaloneXPCSupport/ServiceProxy.h"
#include "foundation/NotificationCenter.h"
#include "usb/HIDDeviceMonitor.h"

namespace vantro {

/// Posted on the monitor's thread, without an object: a token that came has been counted and its serial read.
inline const NotificationName ConnectedYubiKey = "connected_yubikey";
/// Posted on the monitor's thread, without an object: a token has been counted out.
inline const NotificationName DisconnectedYubiKey = "disconnected_yubikey";
/// Posted right after ConnectedYubiKey when two or more tokens are plugged in.
inline const NotificationName MultipleConnectedYubiKey = "multiple_connected_YubiKey";

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
    VantroStandaloneSetting vantroStandaloneSetting;

    /// The proxy of the privileged service. Any thread.
    ServiceProxy& service() { return *service_; }

    /// The number of tokens counted as plugged in; written by the monitor's thread alone. Any thread.
    [[nodiscard]] std::int64_t connectedYubiKeyCount() const { return connectedYubiKeyCount_; }

    /// The serial of the token that was counted in last; absent when unknown, and after any token has gone. Written by
    /// the monitor's thread alone. Any thread.
    [[nodiscard]] std::optional<std::uint64_t> connectedYubiKeySerial() const;

    /// Why none of the tokens that are plugged in can be used; set by the monitor's thread alone.
    TokenObstacle tokenObstacle;

    AppDataSet(const AppDataSet&) = delete;
    AppDataSet& operator=(const AppDataSet&) = delete;

  private:
    AppDataSet();
    ~AppDataSet() = default;

    void loadOrCreateSetting();
    void openUpFilePermissions() const;
    [[nodiscard]] std::unique_ptr<ServiceProxy> connectionService() const;
    void monitorYubiKey();

    void onDeviceConnected(const Notification& notification);
    void onDeviceDisconnected();
    void setConnectedYubiKeyCount(std::int64_t count);

    std::unique_ptr<ServiceProxy> service_;
    std::atomic<std::int64_t> connectedYubiKeyCount_ = 0;
    /// 0, which no token has, stands for an absent serial.
    std::atomic<std::uint64_t> connectedYubiKeySerial_ = 0;
    std::int64_t onDeviceDisconnectedCount_ = 0;

    std::unique_ptr<HIDDeviceMonitor> monitor_;
    std::vector<Observation> observations_;
};

} // namespace vantro
