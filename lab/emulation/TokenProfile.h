#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "VantroStandaloneNames.h"
#include "emulation/OtpApplication.h"

namespace vantro::lab {

/// The HID interfaces of a token.
enum class TokenInterface
{
    keyboard,
    fido
};

/// What a virtual token is like. With another vendor, product or report size it is a foreign device.
struct TokenProfile
{
    /// Serial number, slots and the time to an answer.
    OtpProfile otp;
    std::uint16_t vendorId = names::tokenVendor;
    std::uint16_t productId = names::tokenProducts[0];
    /// The FIDO interface's input report in bytes.
    std::uint16_t fidoReportSize = 64;
    /// The interfaces that plugIn() brings, in this order; a hidraw node gets its number when it comes.
    std::vector<TokenInterface> interfaces{TokenInterface::keyboard, TokenInterface::fido};
    /// How long each transfer of a feature report takes: a slow bus, where OtpProfile::replyDelay is a slow
    /// token.
    std::chrono::milliseconds transferTime{0};
};

/// What a virtual token says of itself where a program asks for words, and its release as USB has it (bcdDevice).
inline constexpr const char* tokenManufacturer = "Token Lab";
inline constexpr const char* tokenProduct = "Virtual token";
inline constexpr std::uint16_t tokenRelease = 0x0543;

/// The report descriptor of the keyboard's interface: a boot keyboard with the 8-byte feature report of the OTP
/// application.
[[nodiscard]] std::vector<std::uint8_t> keyboardReportDescriptor();

/// The report descriptor of the FIDO interface; `reportSize` is that of its reports, in bytes.
[[nodiscard]] std::vector<std::uint8_t> fidoReportDescriptor(std::uint16_t reportSize);

} // namespace vantro::lab
