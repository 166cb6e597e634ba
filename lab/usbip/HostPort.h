#pragma once

#include "foundation/FileDescriptor.h"

namespace vantro::lab::usbip {

/// Plugs a device of full speed into a free port of this machine's virtual USB host controller; needs root and the
/// module vhci-hcd. Answers the device's end of the stream over which the controller talks to it; closing it pulls it
/// out. Throws std::runtime_error where there is no controller or no port is free.
[[nodiscard]] FileDescriptor plugIntoHost();

} // namespace vantro::lab::usbip
