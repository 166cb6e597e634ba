#include "usb/HIDDeviceMonitor.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <utility>

#include "foundation/LastError.h"
#include "usb/HidInterfaces.h"

namespace vantro {
namespace {

HIDDevice deviceOf(const HidInterface& interface)
{
    return {interface.sysPath, interface.vendorId, interface.productId, interface.maximumInputReportSize};
}

} // namespace

HIDDeviceMonitor::HIDDeviceMonitor(std::vector<HIDMonitorData> filter, std::size_t /*reportSize*/)
    : filter_(std::move(filter))
{
}

std::error_code HIDDeviceMonitor::start()
{
    try {
        const auto poster = [this](const NotificationName& name) {
            return [this, name](const HidInterface& interface) {
                if (isMatching(interface.vendorId, interface.productId) && !stop_.isAwake())
                    NotificationCenter::defaultCenter().post(name, deviceOf(interface));
            };
        };
        HidInterfaceWatcher watcher(poster(HIDDeviceConnected), poster(HIDDeviceDisconnected));
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
