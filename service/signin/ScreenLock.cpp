#include "signin/ScreenLock.h"

#include <algorithm>
#include <string>
#include <utility>

#include "tokens/TokenFailure.h"

namespace vantro::service {

ScreenLock::ScreenLock(TokenRegistry& registry, const RegisteredKeys& keys, AcceptedTokens acceptedTokens,
                       LockScreens lockScreens, const Logger& logger)
    : registry_(registry), tokens_(registry), keys_(keys), lockScreens_(std::move(lockScreens)),
      logger_(logger.inFile("ScreenLock")), acceptedTokens_(std::move(acceptedTokens))
{
    for (const auto& [user, token] : acceptedTokens_.read())
        watched_.emplace(user, Watched{token, std::nullopt});
    thread_ = std::jthread([this](const std::stop_token& stop) { watch(stop); });
}

void ScreenLock::remember(uid_t user, std::uint64_t serial, TokenRegistry::TokenNumber number)
{
    const std::lock_guard guard(mutex_);
    auto& watched = watched_[user];
    watched.token.serial = serial;
    note(user, watched, number);
    // The thread may have looked between the token's going and this.
    lockIfGone(user, watched, registry_.newestFirst());
}

void ScreenLock::watch(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        const auto seen = registry_.changes();
        const bool mayHearMore = findAgain(stop);
        lockWhereGone();
        const Limit pause{
            mayHearMore ? Limit::Clock::now() + TokenAccess::silentPause : Limit::Clock::time_point::max(), stop};
        registry_.waitForChange(seen, pause);
    }
}

bool ScreenLock::findAgain(const std::stop_token& stop)
{
    bool mayHearMore = false;
    for (const auto number : registry_.newestFirst()) {
        if (!isAnyLookedFor())
            return false;
        const auto serial = tokens_.serialOf(number, {Limit::Clock::now() + TokenAccess::serialLimit, stop});
        if (serial)
            takeUp(*serial, number);
        else
            mayHearMore |=
                serial.failure() == TokenFailure::Busy || serial.failure() == TokenFailure::NoKeyboardInterface;
    }
    return mayHearMore;
}

bool ScreenLock::isAnyLookedFor() const
{
    const std::lock_guard lock(mutex_);
    return std::any_of(watched_.begin(), watched_.end(), [](const auto& entry) { return !entry.second.number; });
}

void ScreenLock::takeUp(std::uint64_t serial, TokenRegistry::TokenNumber number)
{
    const std::lock_guard lock(mutex_);
    for (auto& [user, watched] : watched_)
        if (!watched.number && watched.token.serial == serial)
            note(user, watched, number);
}

void ScreenLock::lockWhereGone()
{
    const auto present = registry_.newestFirst();
    const std::lock_guard guard(mutex_);
    for (auto& [user, watched] : watched_)
        lockIfGone(user, watched, present);
}

void ScreenLock::lockIfGone(uid_t user, Watched& watched, const std::vector<TokenRegistry::TokenNumber>& present)
{
    const bool isThere = watched.number && std::find(present.begin(), present.end(), *watched.number) != present.end();
    if (isThere || !watched.token.isPluggedIn)
        return;
    note(user, watched, std::nullopt);
    lock(user, watched.token.serial);
}

void ScreenLock::note(uid_t user, Watched& watched, std::optional<TokenRegistry::TokenNumber> number)
{
    watched.number = number;
    watched.token.isPluggedIn = number.has_value();
    acceptedTokens_.write(user, watched.token);
}

void ScreenLock::lock(uid_t user, std::uint64_t serial) const
{
    constexpr const char* function = "lock(_:serial:)";
    const auto isWanted = keys_.locksScreens();
    if (!isWanted)
        return logger_.error("Whether the screen is to be locked is not known: " + isWanted.failure().text, function);
    if (!*isWanted)
        return;
    logger_.info("Token " + std::to_string(serial) + ", with which user id " + std::to_string(user) +
                     " was accepted, is gone: the screen is to be locked.",
                 function);
    lockScreens_(user);
}

} // namespace vantro::service
