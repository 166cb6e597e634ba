#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>
#include <vector>

#include "foundation/NotificationCenter.h"
#include "foundation/WakeEvent.h"

namespace vantro {

/// One line of a monitor's filter.
struct HIDMonitorData
{
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
};

/// One matched HID interface.
struct HIDDevice
{
    /// Identifies the interface for as long as it is plugged in.
    std::string id;
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
    /// The largest input report in bytes.
    std::size_t reportSize = 0;
};

/// Posted by a monitor for each matching interface that came; the object is an HIDDevice.
inline const NotificationName HIDDeviceConnected = "HIDDeviceConnected";
/// Posted by a monitor for each matching interface that went; the object is an HIDDevice.
inline const NotificationName HIDDeviceDisconnected = "HIDDeviceDisconnected";

/// Watches the HID interfaces of the devices of a filter, whatever their report size, and posts their coming and going
/// on the default notification centre. Interfaces that are there before the start come first.
class HIDDeviceMonitor
{
  public:
    /// `reportSize` in bytes is what the observers tell a device by; it filters nothing, but stands for the unknown
    /// size of an interface that was pulled out before it could be described, once for each device. Throws
    /// std::system_error when the process has no file descriptors left.
    HIDDeviceMonitor(std::vector<HIDMonitorData> filter, std::size_t reportSize);

    /// Runs the monitoring loop on the calling thread, where it posts from, until stop(). Answers no error then, and
    /// what ended the loop otherwise (a machine without udev), for the caller to log.
    std::error_code start();

    /// Ends the loop after the post that is under way. Any thread; start() afterwards returns at once.
    void stop();

  private:
    [[nodiscard]] bool isMatching(std::uint16_t vendorId, std::uint16_t productId) const;

    const std::vector<HIDMonitorData> filter_;
    const std::size_t reportSize_;
    WakeEvent stop_;
};

} // namespace vantro
