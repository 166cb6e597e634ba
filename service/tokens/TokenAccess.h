#pragma once

#include <chrono>
#include <cstdint>

#include "Limit.h"
#include "foundation/Outcome.h"
#include "tokens/TokenFailure.h"
#include "tokens/TokenRegistry.h"

namespace vantro::service {

/// Finds tokens by what people know of them. A token is asked for its serial once a plug. Any thread; blocks.
class TokenAccess
{
  public:
    /// What one token may take to tell its serial while others may be the ones that are looked for.
    static constexpr auto serialLimit = std::chrono::milliseconds(1500);
    /// How soon a token is asked again that was busy, or just coming, when it did not tell its serial.
    static constexpr auto silentPause = std::chrono::milliseconds(500);

    explicit TokenAccess(TokenRegistry& registry) : registry_(registry) {}

    /// The serial of the token that was plugged in last.
    [[nodiscard]] Outcome<std::uint64_t, TokenFailure> newestSerial(const Limit& limit);

    /// The serial of one token.
    [[nodiscard]] Outcome<std::uint64_t, TokenFailure> serialOf(TokenRegistry::TokenNumber number, const Limit& limit);

    /// The token that has the serial, whichever of those that are plugged in it is. A token that keeps its serial to
    /// itself is passed over, and from then on asked after all others.
    [[nodiscard]] Outcome<TokenLease, TokenFailure> acquireWithSerial(std::uint64_t serial, const Limit& limit);

  private:
    [[nodiscard]] Outcome<TokenLease, TokenFailure> acquireKnown(TokenRegistry::TokenNumber number, const Limit& limit);

    TokenRegistry& registry_;
};

} // namespace vantro::service
