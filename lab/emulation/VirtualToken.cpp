#include "emulation/VirtualToken.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vantro::lab {

namespace {

std::string hexadecimal(unsigned int number)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%04x", number);
    return buffer;
}

} // namespace

VirtualToken::VirtualToken(TokenBed& bed, TokenProfile profile)
    : bed_(bed), profile_(std::move(profile)), otp_(profile_.otp)
{
}

VirtualToken::~VirtualToken()
{
    unplug();
}

void VirtualToken::plugInDevice()
{
    if (!usbPath_.empty()) {
        return;
    }
    const unsigned int deviceNumber = bed_.nextNumber();
    usbName_ = "1-" + std::to_string(deviceNumber);
    char product[32];
    std::snprintf(product, sizeof product, "%x/%x/543", profile_.vendorId, profile_.productId);
    char node[32];
    std::snprintf(node, sizeof node, "/dev/bus/usb/001/%03u", deviceNumber);
    usbPath_ = bed_.addDevice("usb", usbName_, "",
                              {{"idVendor", hexadecimal(profile_.vendorId)},
                               {"idProduct", hexadecimal(profile_.productId)},
                               {"bcdDevice", hexadecimal(tokenRelease)},
                               {"busnum", "1"},
                               {"devnum", std::to_string(deviceNumber)},
                               {"manufacturer", tokenManufacturer},
                               {"product", tokenProduct}},
                              {{"DEVTYPE", "usb_device"},
                               {"DRIVER", "usb"},
                               {"PRODUCT", product},
                               {"TYPE", "0/0/0"},
                               {"BUSNUM", "001"},
                               {"DEVNUM", std::to_string(deviceNumber)},
                               {"DEVNAME", node}});
}

void VirtualToken::plugIn()
{
    for (const TokenInterface interface : profile_.interfaces) {
        plugIn(interface);
    }
}

void VirtualToken::plugIn(TokenInterface interface)
{
    const std::lock_guard lock(plugMutex_);
    const bool isKeyboard = interface == TokenInterface::keyboard;
    std::unique_ptr<HidNode>& node = isKeyboard ? keyboard_ : fido_;
    if (node) {
        return;
    }
    plugInDevice();
    HidNode::Description description;
    description.usbPath = usbPath_;
    description.usbName = usbName_;
    description.vendorId = profile_.vendorId;
    description.productId = profile_.productId;
    description.productName = std::string(tokenManufacturer) + " " + tokenProduct;
    description.transferTime = profile_.transferTime;
    if (isKeyboard) {
        description.subClass = 1;
        description.protocol = 1;
        description.reportDescriptor = keyboardReportDescriptor();
    } else {
        description.interfaceNumber = 1;
        description.reportDescriptor = fidoReportDescriptor(profile_.fidoReportSize);
    }
    node =
        std::make_unique<HidNode>(bed_, description, [this, isKeyboard](bool isWrite, std::span<std::uint8_t> report) {
            return isKeyboard && exchange(isWrite, report);
        });
}

bool VirtualToken::exchange(bool isWrite, std::span<std::uint8_t> report)
{
    OtpApplication::Report bytes{};
    if (report.size() != bytes.size()) {
        return false;
    }
    const std::lock_guard lock(otpMutex_);
    const auto now = OtpApplication::Clock::now();
    if (isWrite) {
        std::copy(report.begin(), report.end(), bytes.begin());
        otp_.write(bytes, now);
    } else {
        bytes = otp_.read(now);
        std::copy(bytes.begin(), bytes.end(), report.begin());
    }
    return true;
}

void VirtualToken::unplug()
{
    const std::lock_guard lock(plugMutex_);
    keyboard_.reset();
    fido_.reset();
    if (!usbPath_.empty()) {
        bed_.removeDevice(usbPath_);
        usbPath_.clear();
    }
    const std::lock_guard otpLock(otpMutex_);
    otp_ = OtpApplication(profile_.otp);
}

bool VirtualToken::isPluggedIn() const
{
    const std::lock_guard lock(plugMutex_);
    return !usbPath_.empty();
}

void VirtualToken::touch()
{
    const std::lock_guard lock(otpMutex_);
    otp_.touch(OtpApplication::Clock::now());
}

bool VirtualToken::isWaitingForTouch() const
{
    const std::lock_guard lock(otpMutex_);
    return otp_.isWaitingForTouch(OtpApplication::Clock::now());
}

std::string VirtualToken::deviceNode(TokenInterface interface) const
{
    const std::lock_guard lock(plugMutex_);
    const std::unique_ptr<HidNode>& node = interface == TokenInterface::keyboard ? keyboard_ : fido_;
    return node ? node->deviceNode() : std::string();
}

} // namespace vantro::lab
