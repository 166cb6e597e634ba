#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tokens/OtpExchange.h"

namespace vantro::service {

using Response = decltype(SlotAnswer::response);

/// A random challenge; nothing when the system has no random numbers.
[[nodiscard]] std::optional<Challenge> makeChallenge();

/// What a challenge-response file holds: a challenge and what tells the right response from any other, without the
/// response itself. The file is text, one "NAME VALUE" a line in this order, bytes in lower-case hexadecimal:
///
///     vantro-challenge-response 1     the format and its version
///     serial 12345678                 the token, as in the file's name
///     slot 2                          the slot that answers, 1 or 2
///     challenge 63 bytes              padded with one byte that differs from the last when it is sent
///     salt 32 bytes
///     hash 32 bytes                   PBKDF2-HMAC-SHA256 of the 20-byte response, 100,000 rounds
struct ChallengeRecord
{
    std::uint64_t serial = 0;
    Slot slot = Slot::Two;
    Challenge challenge = {};
    std::array<std::uint8_t, 32> salt = {};
    std::array<std::uint8_t, 32> hash = {};

    bool operator==(const ChallengeRecord&) const = default;

    /// The record of a slot's response, with a salt of its own; nothing when the system has no random numbers.
    [[nodiscard]] static std::optional<ChallengeRecord> make(std::uint64_t serial, Slot slot,
                                                             const Challenge& challenge, const Response& response);

    /// Whether it is the right response, in a time that does not depend on it.
    [[nodiscard]] bool isMatchedBy(const Response& response) const;

    [[nodiscard]] std::string formatted() const;

    /// Nothing for a text that is not exactly in the format.
    [[nodiscard]] static std::optional<ChallengeRecord> parsed(std::string_view text);
};

} // namespace vantro::service
