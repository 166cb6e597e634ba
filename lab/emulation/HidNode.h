#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "emulation/TokenBed.h"

namespace vantro::lab {

/// One emulated HID interface with its hidraw node: there from construction to destruction. What a program that has the
/// node open asks of it later fails with ENODEV. Any thread, one at a time.
class HidNode
{
  public:
    struct Description
    {
        /// The USB device's path in sysfs.
        std::string usbPath;
        /// The USB device's name in its bus, for example "1-1".
        std::string usbName;
        std::uint16_t vendorId = 0;
        std::uint16_t productId = 0;
        std::string productName;
        unsigned int interfaceNumber = 0;
        /// bInterfaceSubClass and bInterfaceProtocol: 1/1 is a boot keyboard.
        unsigned int subClass = 0;
        unsigned int protocol = 0;
        std::vector<std::uint8_t> reportDescriptor;
        /// How long each transfer of a feature report takes.
        std::chrono::milliseconds transferTime{0};
    };

    /// Gets or sets a feature report in place, without its report id; false where the device has no such report.
    /// Called on the emulation's thread.
    using FeatureHandler = std::function<bool(bool isWrite, std::span<std::uint8_t> report)>;

    HidNode(TokenBed& bed, const Description& description, FeatureHandler handler);
    ~HidNode();
    HidNode(const HidNode&) = delete;
    HidNode& operator=(const HidNode&) = delete;

    /// For example /dev/hidraw0.
    [[nodiscard]] const std::string& deviceNode() const { return deviceNode_; }

  private:
    class Requests;

    TokenBed& bed_;
    unsigned int number_;
    std::string deviceNode_;
    std::string interfacePath_;
    std::string hidPath_;
    std::string hidrawPath_;
    std::unique_ptr<Requests> requests_;
};

} // namespace vantro::lab
