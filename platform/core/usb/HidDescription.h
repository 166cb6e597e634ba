#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "usb/HidInterfaces.h"

struct udev_device;

namespace vantro {

/// A text of libudev's, which is null where there is none.
[[nodiscard]] inline std::string_view textOrEmpty(const char* text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

/// Describes a device of the hidraw subsystem from its files, without opening its node. Nothing for one that is no USB
/// HID interface or has gone already. Any thread; so are the others here.
[[nodiscard]] std::optional<HidInterface> interfaceOf(udev_device* device);

/// What the path of an interface that has gone still says about it; nothing for no USB HID interface.
[[nodiscard]] std::optional<HidInterface> goneInterfaceOf(udev_device* device);

/// What tells an interface apart from the others of its model: vendor, product, and its place in the device.
using HidKind = std::tuple<std::uint16_t, std::uint16_t, std::string>;
[[nodiscard]] HidKind kindOf(const HidInterface& interface);

/// Whether two descriptions under one syspath are of two plugs. What one of them does not know tells nothing.
[[nodiscard]] bool isAnotherPlug(const HidInterface& known, const HidInterface& found);

} // namespace vantro
