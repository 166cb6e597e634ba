#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// What several programs must agree on. A list that can't include this header (a script, a bus policy, a page) is
/// compared with it by the test Names.
namespace vantro::names {

/// The PAM services that entries are written for, in the order in which they are asked for: signing in, unlocking the
/// screen, unlocking it with the newer greeter. Each is a file of the PAM services' folder.
inline constexpr std::array<std::string_view, 3> pamServices = {"authorization", "screensaver", "screensaver_new"};

/// The login module's file in the PAM modules' folder, and its name in an entry.
inline constexpr std::string_view pamModule = "pam_vantro_standalone.so";

/// The tokens' USB vendor.
inline constexpr std::uint16_t tokenVendor = 0x1050;

/// The USB products that count as tokens: with the FIDO and OTP applications, which both need.
inline constexpr std::array<std::uint16_t, 2> tokenProducts = {0x0407, 0x0116};

} // namespace vantro::names
