#include "usbip/UsbToken.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <linux/hid.h>
#include <linux/usb/ch9.h>

namespace vantro::lab::usbip {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr unsigned int keyboardInterface = 0;
constexpr unsigned int fidoInterface = 1;
constexpr unsigned int interfaceCount = 2;

/// What USB leaves to the class of HID devices.
constexpr std::uint8_t hidDescriptor = 0x21;
constexpr std::uint8_t hidReportDescriptor = 0x22;
constexpr std::uint8_t inputReport = 1;
constexpr std::uint8_t featureReport = 3;

constexpr std::uint8_t controlPacketSize = 64;
constexpr std::uint8_t keyboardReportSize = 8;
constexpr std::uint8_t longestText = 126;

// The numbers of the texts; 0 is the list of languages.
constexpr std::uint8_t manufacturerText = 1;
constexpr std::uint8_t productText = 2;

constexpr std::uint8_t low(unsigned int number)
{
    return static_cast<std::uint8_t>(number & 0xffU);
}

constexpr std::uint8_t high(unsigned int number)
{
    return static_cast<std::uint8_t>(number >> 8U & 0xffU);
}

Bytes text(std::string_view ascii)
{
    ascii = ascii.substr(0, longestText);
    Bytes bytes{static_cast<std::uint8_t>(2 + 2 * ascii.size()), USB_DT_STRING};
    for (const char letter : ascii) {
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(letter), 0});
    }
    return bytes;
}

Bytes interruptEndpoint(std::uint8_t address, std::uint16_t size)
{
    constexpr std::uint8_t milliseconds = 10;
    return {USB_DT_ENDPOINT_SIZE, USB_DT_ENDPOINT, address, USB_ENDPOINT_XFER_INT, low(size), high(size), milliseconds};
}

void append(Bytes& bytes, const Bytes& more)
{
    std::copy(more.begin(), more.end(), std::back_inserter(bytes));
}

} // namespace

bool UsbToken::isFeatureReport(const Setup& setup)
{
    return (setup.requestType & USB_TYPE_MASK) == USB_TYPE_CLASS &&
           (setup.request == HID_REQ_GET_REPORT || setup.request == HID_REQ_SET_REPORT) &&
           high(setup.value) == featureReport;
}

std::optional<Bytes> UsbToken::control(const Setup& setup, std::span<const std::uint8_t> data)
{
    if ((setup.requestType & USB_TYPE_MASK) == USB_TYPE_CLASS) {
        return classRequest(setup, data);
    }
    if ((setup.requestType & USB_TYPE_MASK) != USB_TYPE_STANDARD) {
        return std::nullopt;
    }
    switch (setup.request) {
    case USB_REQ_GET_DESCRIPTOR:
        return descriptor(setup);
    case USB_REQ_GET_CONFIGURATION:
        return Bytes{chosenConfiguration_};
    case USB_REQ_SET_CONFIGURATION:
        chosenConfiguration_ = low(setup.value);
        return Bytes{};
    case USB_REQ_GET_STATUS:
        return Bytes{0, 0};
    case USB_REQ_GET_INTERFACE:
        return Bytes{0};
    case USB_REQ_SET_INTERFACE:
    case USB_REQ_CLEAR_FEATURE:
    case USB_REQ_SET_FEATURE:
        return Bytes{};
    default:
        return std::nullopt;
    }
}

std::optional<Bytes> UsbToken::descriptor(const Setup& setup) const
{
    switch (high(setup.value)) {
    case USB_DT_DEVICE:
        return deviceDescriptor();
    case USB_DT_CONFIG:
        return configuration();
    case USB_DT_STRING: {
        constexpr std::uint8_t englishLow = 0x09;
        constexpr std::uint8_t englishHigh = 0x04;
        switch (low(setup.value)) {
        case 0:
            return Bytes{4, USB_DT_STRING, englishLow, englishHigh};
        case manufacturerText:
            return text(tokenManufacturer);
        case productText:
            return text(tokenProduct);
        default:
            return std::nullopt;
        }
    }
    case hidReportDescriptor:
        if (setup.index < interfaceCount) {
            return reportDescriptor(setup.index);
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

Bytes UsbToken::deviceDescriptor() const
{
    constexpr std::uint16_t usbRelease = 0x0200;
    constexpr std::uint8_t configurations = 1;
    return {USB_DT_DEVICE_SIZE,
            USB_DT_DEVICE,
            low(usbRelease),
            high(usbRelease),
            0, // class, subclass and protocol are the interfaces'
            0,
            0,
            controlPacketSize,
            low(profile_.vendorId),
            high(profile_.vendorId),
            low(profile_.productId),
            high(profile_.productId),
            low(tokenRelease),
            high(tokenRelease),
            manufacturerText,
            productText,
            0, // no serial number
            configurations};
}

Bytes UsbToken::configuration() const
{
    constexpr std::uint8_t thirtyMilliamperes = 15;
    Bytes interfaces;
    for (unsigned int number = 0; number < interfaceCount; ++number) {
        const bool isKeyboard = number == keyboardInterface;
        const std::uint8_t boot = isKeyboard ? 1 : 0;
        const std::uint8_t endpoints = isKeyboard ? 1 : 2;
        append(interfaces,
               {USB_DT_INTERFACE_SIZE, USB_DT_INTERFACE, low(number), 0, endpoints, USB_CLASS_HID, boot, boot, 0});
        const std::size_t size = reportDescriptor(number).size();
        append(interfaces, {9, hidDescriptor, 0x10, 0x01, 0, 1, hidReportDescriptor,
                            low(static_cast<unsigned int>(size)), high(static_cast<unsigned int>(size))});
        const std::uint16_t reportSize = isKeyboard ? keyboardReportSize : profile_.fidoReportSize;
        const auto address = static_cast<std::uint8_t>(number + 1);
        append(interfaces, interruptEndpoint(USB_DIR_IN | address, reportSize));
        if (!isKeyboard) {
            append(interfaces, interruptEndpoint(USB_DIR_OUT | address, reportSize));
        }
    }
    const auto total = static_cast<unsigned int>(USB_DT_CONFIG_SIZE + interfaces.size());
    Bytes bytes{USB_DT_CONFIG_SIZE, USB_DT_CONFIG,     low(total), high(total), interfaceCount, 1, 0,
                USB_CONFIG_ATT_ONE, thirtyMilliamperes};
    append(bytes, interfaces);
    return bytes;
}

Bytes UsbToken::reportDescriptor(unsigned int interface) const
{
    return interface == fidoInterface ? fidoReportDescriptor(profile_.fidoReportSize) : keyboardReportDescriptor();
}

std::optional<Bytes> UsbToken::classRequest(const Setup& setup, std::span<const std::uint8_t> data)
{
    if (setup.request == HID_REQ_SET_IDLE || setup.request == HID_REQ_SET_PROTOCOL) {
        return Bytes{};
    }
    if (isFeatureReport(setup)) {
        OtpApplication::Report report{};
        if (setup.index != keyboardInterface || setup.length != report.size()) {
            return std::nullopt;
        }
        const auto now = OtpApplication::Clock::now();
        if (setup.request == HID_REQ_GET_REPORT) {
            report = otp_.read(now);
            return Bytes(report.begin(), report.end());
        }
        if (data.size() != report.size()) {
            return std::nullopt;
        }
        std::copy(data.begin(), data.end(), report.begin());
        otp_.write(report, now);
        return Bytes{};
    }
    // The keyboard's lights, and what it types, which is nothing.
    if (setup.request == HID_REQ_SET_REPORT) {
        return Bytes{};
    }
    if (setup.request == HID_REQ_GET_REPORT && high(setup.value) == inputReport) {
        return Bytes(setup.index == keyboardInterface ? keyboardReportSize : profile_.fidoReportSize);
    }
    return std::nullopt;
}

} // namespace vantro::lab::usbip
