#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vantro {

/// One USB HID interface as udev's hidraw subsystem shows it, without opening its device.
struct HidInterface
{
    /// Identifies the interface for as long as it is plugged in.
    std::string sysPath;
    /// The device node, for example /dev/hidraw0; empty when the interface had gone before it could be described.
    std::string deviceNode;
    /// The USB device that the interface belongs to; the interfaces of one token share it.
    std::string usbDevicePath;
    /// The device's name for people; may be empty.
    std::string name;
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
    /// The top-level usage of the report descriptor: 0x0001/0x06 is a keyboard, 0xF1D0/0x01 a FIDO authenticator.
    std::uint16_t usagePage = 0;
    std::uint16_t usage = 0;
    /// The largest input report in bytes, without report id; 0 when the descriptor can't be read.
    std::size_t maximumInputReportSize = 0;
    /// When udev first saw the interface (monotonic clock); 0 when unknown.
    std::chrono::microseconds initialised{0};
    /// The USB device number, which the bus counts up with every plug; 0 when unknown.
    unsigned int usbDeviceNumber = 0;
};

/// Watches the HID interfaces of the machine: which are there, which came, which went. Subscribes before it
/// enumerates, so that nothing is missed in between. Each interface comes exactly once and goes exactly once, also when
/// the socket's buffer ran full and its events are lost (then it enumerates again and reports the differences). A
/// device that is gone before any of its interfaces could be described neither comes nor goes. When one could, the
/// others come and go as well, as the last of their kind was described. One thread at a time.
class HidInterfaceWatcher
{
  public:
    using Handler = std::function<void(const HidInterface&)>;

    /// Subscribes. Throws std::system_error when udev can't be reached.
    HidInterfaceWatcher(Handler onCame, Handler onWent);
    ~HidInterfaceWatcher();
    HidInterfaceWatcher(const HidInterfaceWatcher&) = delete;
    HidInterfaceWatcher& operator=(const HidInterfaceWatcher&) = delete;

    /// Reports how what is there differs from what was reported before: first those that went, then those that came,
    /// the longest there first. Needs no events, and none that is still to be read is reported twice.
    void enumerate();

    /// Readable when there are events.
    [[nodiscard]] int fileDescriptor() const;

    /// Empties the socket, so that a handler that takes its time holds up no event, and then reports what it said. Does
    /// not wait for events.
    void processEvents();

  private:
    class Udev;
    std::unique_ptr<Udev> udev_;
};

} // namespace vantro
