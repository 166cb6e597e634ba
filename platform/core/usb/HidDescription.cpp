#include "usb/HidDescription.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <libudev.h>

#include "foundation/DurableFile.h"
#include "usb/ReportDescriptor.h"

namespace vantro {
namespace {

/// No attribute is larger: the kernel hands them out by the page.
constexpr std::size_t attributeSizeLimit = 4096;
constexpr unsigned int usbBus = 3;

template <class Number>
std::optional<Number> number(std::string_view digits, int base)
{
    Number value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
    if (digits.empty() || error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

/// Fills in vendor and product from a HID_ID property, BUS:VENDOR:PRODUCT in hexadecimal. False for another bus.
bool readHidId(std::string_view property, HidInterface& interface)
{
    const auto first = property.find(':');
    const auto second = property.find(':', first + 1);
    if (first == std::string_view::npos || second == std::string_view::npos)
        return false;
    const auto bus = number<unsigned int>(property.substr(0, first), 16);
    const auto vendor = number<std::uint16_t>(property.substr(first + 1, second - first - 1), 16);
    const auto product = number<std::uint16_t>(property.substr(second + 1), 16);
    if (bus != usbBus || !vendor || !product)
        return false;
    interface.vendorId = *vendor;
    interface.productId = *product;
    return true;
}

/// What lies above an interface's syspath, DEVICE/DEVICE:1.N/BUS:VENDOR:PRODUCT.ID/hidraw/hidrawN. libudev's own search
/// for it would open every folder on the way.
std::filesystem::path hidAbove(const std::filesystem::path& sysPath)
{
    return sysPath.parent_path().parent_path();
}

/// Where a program plays the device (uhid), there is no USB device: then what is nearest.
std::filesystem::path usbDeviceAbove(const std::filesystem::path& sysPath)
{
    const auto usbInterface = hidAbove(sysPath).parent_path();
    return usbInterface.filename().string().find(':') != std::string::npos ? usbInterface.parent_path()
                                                                           : hidAbove(sysPath);
}

/// One of a device's properties, which its file "uevent" has as lines KEY=value; empty when it is not there.
std::string_view propertyOf(std::string_view uevent, std::string_view key)
{
    while (!uevent.empty()) {
        const auto line = uevent.substr(0, uevent.find('\n'));
        uevent.remove_prefix(std::min(line.size() + 1, uevent.size()));
        if (line.starts_with(key) && line.substr(key.size()).starts_with('='))
            return line.substr(key.size() + 1);
    }
    return {};
}

/// False when the interface has gone meanwhile.
bool readDescriptor(const std::string& hidPath, HidInterface& interface)
{
    std::error_code error;
    const auto bytes = readFile(hidPath + "/report_descriptor", attributeSizeLimit, error);
    if (error == std::errc::no_such_file_or_directory || error == std::errc::no_such_device)
        return false;
    const auto descriptor = bytes ? parseReportDescriptor(*bytes) : std::nullopt;
    if (descriptor) {
        interface.usagePage = descriptor->usagePage;
        interface.usage = descriptor->usage;
        interface.maximumInputReportSize = descriptor->maximumInputReportSize;
    }
    return true;
}

} // namespace

std::optional<HidInterface> interfaceOf(udev_device* device)
{
    HidInterface interface;
    interface.sysPath = textOrEmpty(udev_device_get_syspath(device));
    interface.deviceNode = textOrEmpty(udev_device_get_devnode(device));
    const std::string hidPath = hidAbove(interface.sysPath);
    std::error_code ignored;
    const std::string hid = readFile(hidPath + "/uevent", attributeSizeLimit, ignored).value_or("");
    if (interface.deviceNode.empty() || !readHidId(propertyOf(hid, "HID_ID"), interface) ||
        !readDescriptor(hidPath, interface))
        return std::nullopt;
    interface.name = propertyOf(hid, "HID_NAME");
    const auto initialised = textOrEmpty(udev_device_get_property_value(device, "USEC_INITIALIZED"));
    interface.initialised = std::chrono::microseconds(number<std::int64_t>(initialised, 10).value_or(0));

    interface.usbDevicePath = usbDeviceAbove(interface.sysPath);
    const std::string line = readFile(interface.usbDevicePath + "/devnum", attributeSizeLimit, ignored).value_or("");
    interface.usbDeviceNumber = number<unsigned int>(std::string_view(line).substr(0, line.find('\n')), 10).value_or(0);
    return interface;
}

HidKind kindOf(const HidInterface& interface)
{
    const std::string place = hidAbove(interface.sysPath).parent_path().filename();
    return {interface.vendorId, interface.productId, place.substr(place.find(':') + 1)};
}

std::optional<HidInterface> goneInterfaceOf(udev_device* device)
{
    HidInterface interface;
    interface.sysPath = textOrEmpty(udev_device_get_syspath(device));
    if (!readHidId(hidAbove(interface.sysPath).stem().string(), interface))
        return std::nullopt;
    interface.usbDevicePath = usbDeviceAbove(interface.sysPath);
    return interface;
}

bool isAnotherPlug(const HidInterface& known, const HidInterface& found)
{
    const auto differ = [](auto left, auto right) { return left != 0 && right != 0 && left != right; };
    return differ(known.usbDeviceNumber, found.usbDeviceNumber) ||
           differ(known.initialised.count(), found.initialised.count()) || differ(known.vendorId, found.vendorId) ||
           differ(known.productId, found.productId);
}

} // namespace vantro
