#pragma once

#include <string_view>

#include "VantroStandaloneXPCSupport/FailureReason.h"

namespace vantro::service {

/// Why a token did not do what was asked of it.
enum class TokenFailure
{
    NoToken,
    NoTokenWithSerial,
    NoKeyboardInterface,
    Busy,
    Gone,
    NotAllowed,
    TransferFailed,
    /// It did not take the command.
    NotReady,
    NoAnswer,
    SlotNotProgrammed,
    TouchMissing,
    BadAnswer
};

/// For the log: what happened, and what to do where somebody can do something.
[[nodiscard]] constexpr std::string_view textOf(TokenFailure failure)
{
    switch (failure) {
    case TokenFailure::NoToken:
        return "No token is plugged in.";
    case TokenFailure::NoTokenWithSerial:
        return "No plugged-in token has this serial.";
    case TokenFailure::NoKeyboardInterface:
        return "The token's keyboard interface did not appear; its OTP application may be switched off.";
    case TokenFailure::Busy:
        return "The token is busy with another request.";
    case TokenFailure::Gone:
        return "The token was unplugged.";
    case TokenFailure::NotAllowed:
        return "The token's device can't be opened: permission denied.";
    case TokenFailure::TransferFailed:
        return "A report could not be exchanged with the token.";
    case TokenFailure::NotReady:
        return "The token did not take the command in time.";
    case TokenFailure::NoAnswer:
        return "The token gave no answer in time.";
    case TokenFailure::SlotNotProgrammed:
        return "No slot of the token is programmed for challenge-response.";
    case TokenFailure::TouchMissing:
        return "The token was not touched in time.";
    case TokenFailure::BadAnswer:
        return "The token's answer is damaged.";
    }
    return "Unknown failure.";
}

/// For the caller.
[[nodiscard]] constexpr std::string_view reasonOf(TokenFailure failure)
{
    switch (failure) {
    case TokenFailure::NoToken:
        return failure_reason::noToken;
    case TokenFailure::NoTokenWithSerial:
        return failure_reason::noTokenWithSerial;
    case TokenFailure::NoKeyboardInterface:
        return failure_reason::noKeyboardInterface;
    case TokenFailure::Busy:
        return failure_reason::tokenBusy;
    case TokenFailure::Gone:
        return failure_reason::tokenGone;
    case TokenFailure::NotAllowed:
        return failure_reason::deviceNotAllowed;
    case TokenFailure::TransferFailed:
        return failure_reason::transferFailed;
    case TokenFailure::NotReady:
    case TokenFailure::NoAnswer:
        return failure_reason::noAnswer;
    case TokenFailure::SlotNotProgrammed:
        return failure_reason::slotNotProgrammed;
    case TokenFailure::TouchMissing:
        return failure_reason::notTouched;
    case TokenFailure::BadAnswer:
        return failure_reason::badAnswer;
    }
    return failure_reason::internal;
}

} // namespace vantro::service
