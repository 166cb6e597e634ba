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

/// The service on the system bus: its name, which is also its interface's, and its one object.
inline constexpr const char* service = "com.vantro.Standalone1";
inline constexpr const char* serviceObject = "/com/vantro/Standalone1";

/// What the login module asks of the service.
namespace sign_in {
inline constexpr const char* interface = "com.vantro.Standalone1.SignIn";

/// Authenticate(s account, u waitSeconds) → s: whether the account may sign in, as one of the words below.
inline constexpr const char* authenticate = "Authenticate";
/// A token passed its record in this very call.
inline constexpr const char* accepted = "accepted";
/// Nobody is asked for a token.
inline constexpr const char* notDemanded = "not-demanded";
/// None that may open the account was plugged in within the wait.
inline constexpr const char* noToken = "no-token";
/// There was one, and it did not pass its record.
inline constexpr const char* refused = "refused";
inline constexpr const char* unknownAccount = "unknown-account";
/// The document or a record can't be read; the service's log has the reason.
inline constexpr const char* unavailable = "unavailable";

/// The signal Wanted(s what), to the caller alone while its call runs: what somebody is to do.
inline constexpr const char* wanted = "Wanted";
inline constexpr const char* plugIn = "plug-in";
inline constexpr const char* touch = "touch";
} // namespace sign_in

} // namespace vantro::names
