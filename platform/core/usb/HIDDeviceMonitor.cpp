#include "usb/HIDDeviceMonitor.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <set>
#include <string>
#include <utility>

#include "foundation/LastError.h"
#include "usb/HidInterfaces.h"

namespace vantro {
HIDDeviceMonitor::HIDDeviceMonitor(std::vector<HIDMonitorData> filter, std::size_t reportSize)
    : filter_(std::move(filter)), reportSize_(reportSize)
{
}

std::error_code HIDDeviceMonitor::start()
{
    try {
        const auto post = [this](const NotificationName& name, const HidInterface& interface, std::size_t size) {
            if (isMatching(interface.vendorId, interface.productId) && !stop_.isAwake())
                NotificationCenter::defaultCenter().post(
                    name, HIDDevice{interface.sysPath, interface.vendorId, interface.productId, size});
        };
        // The devices of which an interface with the size has come. One that goes with two interfaces but came without
        // it would be counted out and never in.
        std::set<std::string> complete;
        HidInterfaceWatcher watcher(
            [&](const HidInterface& interface) {
                const bool isUnknown = interface.deviceNode.empty() && interface.maximumInputReportSize == 0;
                const bool isGuessed = isUnknown && !complete.contains(interface.usbDevicePath);
                const std::size_t size = isGuessed ? reportSize_ : interface.maximumInputReportSize;
                if (size == reportSize_)
                    complete.insert(interface.usbDevicePath);
                post(HIDDeviceConnected, interface, size);
            },
            [&](const HidInterface& interface) {
                complete.erase(interface.usbDevicePath);
                post(HIDDeviceDisconnected, interface, interface.maximumInputReportSize);
            });
        watcher.enumerate();
        while (!stop_.isAwake()) {
            watcher.processEvents();
            pollfd waits[] = {{watcher.fileDescriptor(), POLLIN, 0}, {stop_.fileDescriptor(), POLLIN, 0}};
            if (::poll(waits, std::size(waits), -1) < 0 && errno != EINTR)
                return lastError();
            if ((waits[0].revents & (POLLHUP | POLLNVAL)) != 0)
                return std::make_error_code(std::errc::not_connected);
        }
        return {};
    } catch (const std::system_error& error) {
        return error.code();
    }
}

void HIDDeviceMonitor::stop()
{
    stop_.wake();
}

bool HIDDeviceMonitor::isMatching(std::uint16_t vendorId, std::uint16_t productId) const
{
    return std::any_of(filter_.begin(), filter_.end(), [vendorId, productId](const HIDMonitorData& entry) {
        return entry.vendorId == vendorId && entry.productId == productId;
    });
}

} // namespace vantro
