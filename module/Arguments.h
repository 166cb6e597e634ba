#pragma once

#include <cstdint>

#include <security/pam_modules.h>

namespace vantro::module {

/// What an administrator has written behind the module's name in a PAM service.
struct Arguments
{
    /// What a sign-in from another machine is answered, whose token nobody can ask.
    enum class Remote
    {
        Deny,
        Ignore
    };

    /// How long a token is waited for, in seconds.
    std::uint32_t waitSeconds = 30;
    Remote remote = Remote::Deny;
    /// Whether what the service answers is logged as well.
    bool isDebug = false;
};

/// Reads wait=SECONDS (0 to 120), remote=ignore and debug. What is none of these is logged and has no effect.
[[nodiscard]] Arguments argumentsOf(pam_handle_t* pam, int count, const char** arguments);

} // namespace vantro::module
