#include "service/TokenAccess.h"

#include <optional>

#include "service/OtpExchange.h"

namespace vantro::service {
namespace {

/// What one token of several may cost while another one is looked for.
constexpr auto candidateLimit = std::chrono::milliseconds(1500);

Outcome<std::uint64_t, TokenFailure> serialOf(TokenLease& token, const Limit& limit)
{
    if (const auto known = token.serial())
        return *known;
    const auto serial = readSerial(token.deviceNode(), limit);
    if (!serial)
        return serial.failure();
    token.setSerial(*serial);
    return std::uint64_t{*serial};
}

} // namespace

Outcome<std::uint64_t, TokenFailure> TokenAccess::newestSerial(const Limit& limit)
{
    const auto tokens = registry_.newestFirst();
    if (tokens.empty())
        return TokenFailure::NoToken;
    if (const auto known = registry_.knownSerial(tokens.front()))
        return *known;
    auto token = registry_.acquire(tokens.front(), limit);
    if (!token)
        return token.failure();
    return serialOf(*token, limit);
}

Outcome<TokenLease, TokenFailure> TokenAccess::acquireWithSerial(std::uint64_t serial, const Limit& limit)
{
    const auto tokens = registry_.newestFirst();
    for (const auto number : tokens)
        if (registry_.knownSerial(number) == serial)
            return registry_.acquire(number, limit);

    std::optional<TokenFailure> failure;
    for (const auto number : tokens) {
        if (registry_.knownSerial(number))
            continue;
        const Limit own = tokens.size() > 1 ? limit.within(candidateLimit) : limit;
        auto token = registry_.acquire(number, own);
        const auto found = token ? serialOf(*token, own) : token.failure();
        if (found && *found == serial)
            return token;
        if (!found)
            failure = found.failure();
    }
    if (tokens.empty())
        return TokenFailure::NoToken;
    return failure.value_or(TokenFailure::NoTokenWithSerial);
}

} // namespace vantro::service
