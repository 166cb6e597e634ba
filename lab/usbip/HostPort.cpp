#include "usbip/HostPort.h"

#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

#include <sys/socket.h>

#include "foundation/LastError.h"

namespace vantro::lab::usbip {

namespace {

const std::string controller = "/sys/devices/platform/vhci_hcd.0/";

/// A port of the controller's slower hub into which nothing is plugged.
std::optional<unsigned int> freePort()
{
    std::ifstream status(controller + "status");
    if (!status) {
        throw std::runtime_error("there is no " + controller + ": run modprobe vhci-hcd");
    }
    constexpr unsigned int nothingPluggedIn = 4;
    std::string line;
    std::getline(status, line); // the columns' names
    std::string hub;
    unsigned int port = 0;
    unsigned int state = 0;
    while (status >> hub >> port >> state && std::getline(status, line)) {
        if (hub == "hs" && state == nothingPluggedIn) {
            return port;
        }
    }
    return std::nullopt;
}

} // namespace

FileDescriptor plugIntoHost()
{
    const auto port = freePort();
    if (!port) {
        throw std::runtime_error("no port is free");
    }
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(lastError(), "socketpair");
    }
    const FileDescriptor host(ends[0]);
    FileDescriptor device(ends[1]);
    // The device's number on the bus where it really is: first bus, second device. Nobody but the messages has it.
    constexpr std::uint32_t deviceNumber = 1U << 16U | 2U;
    constexpr unsigned int fullSpeed = 2;
    std::ofstream attach(controller + "attach");
    attach << *port << ' ' << host.get() << ' ' << deviceNumber << ' ' << fullSpeed << std::flush;
    if (!attach) {
        throw std::runtime_error("the host controller takes nothing at port " + std::to_string(*port));
    }
    return device;
}

} // namespace vantro::lab::usbip
