#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

#include "LoggerManager/Logger.h"
#include "Model/TokenObstacle.h"
#include "foundation/NotificationCenter.h"
#include "usb/HIDDeviceMonitor.h"

namespace vantro {

/// Posted on the monitor's thread, without an object: a token that came has been counted and its serial read.
inline const NotificationName ConnectedYubiKey = "connected_yubikey";
/// Posted on the monitor's thread, without an object: a token has been counted out.
inline const NotificationName DisconnectedYubiKey = "disconnected_yubikey";
/// Posted right after ConnectedYubiKey when two or more tokens are plugged in.
inline const NotificationName MultipleConnectedYubiKey = "multiple_connected_YubiKey";

/// How many tokens are plugged in and which one came last, kept current by the USB monitor's thread, which asks the
/// service for serials. Lives as long as the process.
class TokenPresence
{
  public:
    /// Logs by `logger`, on behalf of its owner.
    explicit TokenPresence(Logger logger);

    /// Observes the monitor and starts its thread, which uses the shared data set. Main thread, once.
    void monitorYubiKey();

    /// The number of tokens counted as plugged in. Any thread.
    [[nodiscard]] std::int64_t count() const { return count_; }

    /// The serial of the token that was counted in last; absent when unknown, and after any token has gone. Any thread.
    [[nodiscard]] std::optional<std::uint64_t> serial() const;

    /// Why none of the tokens that are plugged in can be used, and what to do; empty when one can or none is there.
    /// Posts TokenObstacleChanged when that may have changed. Main thread.
    [[nodiscard]] QString obstacleText() const;

  private:
    void onDeviceConnected(const Notification& notification);
    void onDeviceDisconnected();
    void setCount(std::int64_t count);

    const Logger logger_;
    std::atomic<std::int64_t> count_ = 0;
    /// 0, which no token has, stands for an absent serial.
    std::atomic<std::uint64_t> serial_ = 0;
    std::int64_t onDeviceDisconnectedCount_ = 0;
    TokenObstacle obstacle_;

    std::unique_ptr<HIDDeviceMonitor> monitor_;
    std::vector<Observation> observations_;
};

} // namespace vantro
