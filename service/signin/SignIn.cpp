#include "signin/SignIn.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "VantroStandaloneNames.h"
#include "VantroStandaloneXPCSupport/FailureReason.h"
#include "foundation/Identity.h"

namespace vantro::service {
namespace {

constexpr const char* function = "authenticate(_:)";

/// Whether the token is not to blame: what its record says is not known.
bool isUnreadable(const RequestFailure& failure)
{
    constexpr std::array reasons = {failure_reason::noRecord,         failure_reason::recordUnusable,
                                    failure_reason::recordsFolder,    failure_reason::tokenBusy,
                                    failure_reason::deviceNotAllowed, failure_reason::internal};
    return std::find(reasons.begin(), reasons.end(), failure.reason) != reasons.end();
}

} // namespace

SignIn::SignIn(TokenRegistry& registry, ChallengeResponse& challengeResponse, const RegisteredKeys& keys,
               ScreenLock& screenLock, const Logger& logger)
    : registry_(registry), tokens_(registry), challengeResponse_(challengeResponse), keys_(keys),
      screenLock_(screenLock), logger_(logger.inFile("SignIn"))
{
}

void SignIn::authenticate(const std::string& account, Limit::Clock::duration wait, const Limit& limit, const Ask& ask,
                          const Reply& reply)
{
    const auto end = [this, &account, &reply](Outcome outcome) {
        logger_.info(account + ": " + std::string(wordOf(outcome)) + ".", function);
        reply(outcome);
    };
    const auto user = userId(account);
    if (!user)
        return end(Outcome::UnknownAccount);
    const auto openers = keys_.openersOf(account);
    if (!openers) {
        logger_.error(openers.failure().text, function);
        return end(Outcome::Unavailable);
    }
    if (!openers->has_value())
        return end(Outcome::NotDemanded);
    // Nothing that is plugged in can help.
    if ((*openers)->empty())
        return end(Outcome::NoToken);

    const Limit waiting = limit.within(wait);
    bool isAsked = false;
    while (true) {
        const auto seen = registry_.changes();
        const auto look = askTokens(**openers, limit, ask, [&](std::uint64_t serial, TokenNumber token) {
            screenLock_.remember(*user, serial, token);
            end(Outcome::Accepted);
        });
        if (look.hasAccepted)
            return;
        if (look.hasRefused || look.hasUnreadable)
            return end(look.hasUnreadable ? Outcome::Unavailable : Outcome::Refused);
        if (waiting.isOver())
            return end(Outcome::NoToken);
        if (!std::exchange(isAsked, true))
            ask(Wanted::PlugIn);
        registry_.waitForChange(seen, look.hasSilent ? waiting.within(TokenAccess::silentPause) : waiting);
    }
}

SignIn::Look SignIn::askTokens(const std::vector<std::uint64_t>& openers, const Limit& limit, const Ask& ask,
                               const Accept& accept)
{
    Look look;
    for (const auto number : registry_.newestFirst()) {
        const auto serial = tokens_.serialOf(number, limit.within(TokenAccess::serialLimit));
        if (!serial) {
            look.hasSilent = true;
            continue;
        }
        if (!std::binary_search(openers.begin(), openers.end(), *serial))
            continue;
        std::optional<RequestFailure> failure;
        challengeResponse_.validate(
            *serial, limit, [&ask] { ask(Wanted::Touch); },
            [&](const std::optional<RequestFailure>& result) {
                failure = result;
                if (!result)
                    accept(*serial, number);
            });
        if (!failure) {
            look.hasAccepted = true;
            return look;
        }
        // One that was pulled out meanwhile is not there.
        if (failure->reason == failure_reason::tokenGone || failure->reason == failure_reason::noToken ||
            failure->reason == failure_reason::noTokenWithSerial)
            continue;
        (isUnreadable(*failure) ? look.hasUnreadable : look.hasRefused) = true;
    }
    return look;
}

std::string_view wordOf(SignIn::Outcome outcome)
{
    switch (outcome) {
    case SignIn::Outcome::Accepted:
        return names::sign_in::accepted;
    case SignIn::Outcome::NotDemanded:
        return names::sign_in::notDemanded;
    case SignIn::Outcome::NoToken:
        return names::sign_in::noToken;
    case SignIn::Outcome::Refused:
        return names::sign_in::refused;
    case SignIn::Outcome::UnknownAccount:
        return names::sign_in::unknownAccount;
    case SignIn::Outcome::Unavailable:
        break;
    }
    return names::sign_in::unavailable;
}

std::string_view wordOf(SignIn::Wanted wanted)
{
    return wanted == SignIn::Wanted::Touch ? names::sign_in::touch : names::sign_in::plugIn;
}

} // namespace vantro::service
