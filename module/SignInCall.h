#pragma once

#include <cstdint>

#include "Conversation.h"

namespace vantro::module {

/// What became of one question to the service.
enum class Outcome
{
    Accepted,
    NotDemanded,
    NoToken,
    Refused,
    UnknownAccount,
    /// Also where there is no bus, no service or no answer that is known here.
    Unavailable,
    /// The program ended the conversation.
    Cancelled
};

/// Asks the service whether the account may sign in, and tells what the service wants meanwhile. On a connection of its
/// own, which ends with the call; blocks for at most `waitSeconds` and twenty seconds more.
[[nodiscard]] Outcome askService(const char* account, std::uint32_t waitSeconds, const Conversation& conversation);

} // namespace vantro::module
