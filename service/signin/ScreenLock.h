#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <sys/types.h>

#include "Limit.h"
#include "LoggerManager/Logger.h"
#include "signin/AcceptedTokens.h"
#include "tokens/RegisteredKeys.h"
#include "tokens/TokenAccess.h"
#include "tokens/TokenRegistry.h"

namespace vantro::service {

/// Locks an account's screens when the token with which it was last accepted is pulled out, while the settings document
/// says so. A token that is plugged in again at once has been pulled out all the same. Follows the tokens on a thread
/// of its own, and also those that went while the service did not run.
class ScreenLock
{
  public:
    /// Asks for the account's screens to be locked; must not block. On any thread.
    using LockScreens = std::function<void(uid_t user)>;

    /// The registry and the keys must outlive this.
    ScreenLock(TokenRegistry& registry, const RegisteredKeys& keys, AcceptedTokens acceptedTokens,
               LockScreens lockScreens, const Logger& logger);

    /// Notes that the account was accepted with the token, which may have been pulled out by now. Any thread.
    void remember(uid_t user, std::uint64_t serial, TokenRegistry::TokenNumber number);

  private:
    struct Watched
    {
        AcceptedToken token;
        /// Absent while it is gone, and for one of an earlier run of the service until it is found.
        std::optional<TokenRegistry::TokenNumber> number;
    };

    void watch(const std::stop_token& stop);
    /// Takes up tokens that are back. Answers whether there is one that may tell its serial later.
    bool findAgain(const std::stop_token& stop);
    [[nodiscard]] bool isAnyLookedFor() const;
    void takeUp(std::uint64_t serial, TokenRegistry::TokenNumber number);
    void lockWhereGone();
    // With the mutex held.
    void lockIfGone(uid_t user, Watched& watched, const std::vector<TokenRegistry::TokenNumber>& present);
    void note(uid_t user, Watched& watched, std::optional<TokenRegistry::TokenNumber> number);
    void lock(uid_t user, std::uint64_t serial) const;

    TokenRegistry& registry_;
    TokenAccess tokens_;
    const RegisteredKeys& keys_;
    const LockScreens lockScreens_;
    const Logger logger_;
    mutable std::mutex mutex_;
    const AcceptedTokens acceptedTokens_;
    std::map<uid_t, Watched> watched_;
    std::jthread thread_;
};

} // namespace vantro::service
