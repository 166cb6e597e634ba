#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Limit.h"
#include "LoggerManager/Logger.h"
#include "signin/ScreenLock.h"
#include "tokens/ChallengeResponse.h"
#include "tokens/RegisteredKeys.h"
#include "tokens/TokenAccess.h"
#include "tokens/TokenRegistry.h"

namespace vantro::service {

/// Decides whether an account may sign in: by the settings document, the tokens that are plugged in, and their records.
/// What can't be read keeps everybody out. Any thread; blocks.
class SignIn
{
  public:
    enum class Outcome
    {
        Accepted,
        NotDemanded,
        NoToken,
        Refused,
        UnknownAccount,
        Unavailable
    };

    /// What somebody is to do so that it goes on.
    enum class Wanted
    {
        PlugIn,
        Touch
    };

    using Ask = std::function<void(Wanted)>;
    /// Called once, where the token is accepted before its record is renewed.
    using Reply = std::function<void(Outcome)>;

    /// What it is given must outlive this.
    SignIn(TokenRegistry& registry, ChallengeResponse& challengeResponse, const RegisteredKeys& keys,
           ScreenLock& screenLock, const Logger& logger);

    /// Asks the tokens of the account and the master keys, the newest first, until one passes its record; where none is
    /// plugged in, waits for one for `wait`, and all in all no longer than the limit.
    void authenticate(const std::string& account, Limit::Clock::duration wait, const Limit& limit, const Ask& ask,
                      const Reply& reply);

  private:
    using TokenNumber = TokenRegistry::TokenNumber;
    using Accept = std::function<void(std::uint64_t serial, TokenNumber token)>;

    /// What came of the tokens that are plugged in.
    struct Look
    {
        bool hasAccepted = false;
        bool hasRefused = false;
        bool hasUnreadable = false;
        /// There is a token that did not tell its serial, and may when it is asked again.
        bool hasSilent = false;
    };
    [[nodiscard]] Look askTokens(const std::vector<std::uint64_t>& openers, const Limit& limit, const Ask& ask,
                                 const Accept& accept);

    TokenRegistry& registry_;
    TokenAccess tokens_;
    ChallengeResponse& challengeResponse_;
    const RegisteredKeys& keys_;
    ScreenLock& screenLock_;
    const Logger logger_;
};

/// The word for the caller.
[[nodiscard]] std::string_view wordOf(SignIn::Outcome outcome);
[[nodiscard]] std::string_view wordOf(SignIn::Wanted wanted);

} // namespace vantro::service
