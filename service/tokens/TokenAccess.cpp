#include "tokens/TokenAccess.h"

#include <algorithm>
#include <optional>

#include "tokens/OtpExchange.h"

namespace vantro::service {
namespace {

/// What one token of several may cost while another one is looked for.
constexpr auto candidateLimit = std::chrono::milliseconds(1500);

} // namespace

Outcome<TokenLease, TokenFailure> TokenAccess::acquireKnown(TokenRegistry::TokenNumber number, const Limit& limit)
{
    auto token = registry_.acquire(number, limit);
    if (!token || token->serial())
        return token;
    const auto serial = readSerial(token->deviceNode(), limit);
    if (!serial) {
        registry_.setHasFailed(number);
        return serial.failure();
    }
    token->setSerial(*serial);
    return token;
}

Outcome<std::uint64_t, TokenFailure> TokenAccess::newestSerial(const Limit& limit)
{
    const auto tokens = registry_.newestFirst();
    if (tokens.empty())
        return TokenFailure::NoToken;
    return serialOf(tokens.front(), limit);
}

Outcome<std::uint64_t, TokenFailure> TokenAccess::serialOf(TokenRegistry::TokenNumber number, const Limit& limit)
{
    if (const auto known = registry_.knownSerial(number))
        return *known;
    const auto token = acquireKnown(number, limit);
    if (!token)
        return token.failure();
    return token->serial().value_or(0);
}

Outcome<TokenLease, TokenFailure> TokenAccess::acquireWithSerial(std::uint64_t serial, const Limit& limit)
{
    auto tokens = registry_.newestFirst();
    for (const auto number : tokens)
        if (registry_.knownSerial(number) == serial)
            return registry_.acquire(number, limit);
    std::stable_partition(tokens.begin(), tokens.end(),
                          [this](TokenRegistry::TokenNumber number) { return registry_.isPromising(number); });

    std::optional<TokenFailure> failure;
    for (const auto number : tokens) {
        if (registry_.knownSerial(number))
            continue;
        if (limit.isOver())
            break;
        const Limit own = tokens.size() > 1 ? limit.within(candidateLimit) : limit;
        auto token = acquireKnown(number, own);
        if (token && token->serial() == serial)
            return token;
        if (!token)
            failure = token.failure();
    }
    if (tokens.empty())
        return TokenFailure::NoToken;
    return failure.value_or(TokenFailure::NoTokenWithSerial);
}

} // namespace vantro::service
