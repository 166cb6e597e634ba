#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "Limit.h"
#include "foundation/Outcome.h"
#include "tokens/TokenFailure.h"

namespace vantro::service {

/// The token's two slots; the values are those of a record.
enum class Slot : std::uint8_t
{
    One = 1,
    Two = 2
};

using Challenge = std::array<std::uint8_t, 63>;

/// What a slot made of a challenge.
struct SlotAnswer
{
    std::array<std::uint8_t, 20> response = {};
    /// Whether the slot waited for a touch before it answered.
    bool wantsTouch = false;
};

/// Called on the thread of the exchange.
using TouchWanted = std::function<void()>;

// Each of these is one exchange with the token behind a hidraw device node, which is open only meanwhile. They block
// up to the limit (one report may hold up its caller longer when the token itself hangs); any thread, but one exchange
// at a time with a token.

/// Asks a token for its serial number.
[[nodiscard]] Outcome<std::uint32_t, TokenFailure> readSerial(const std::string& deviceNode, const Limit& limit);

/// Has a slot answer a challenge (HMAC-SHA1). A slot that is silent for a second and a half without asking for a touch
/// counts as not programmed. `onTouchWanted` is called when the slot begins to wait for a touch.
[[nodiscard]] Outcome<SlotAnswer, TokenFailure> answerChallenge(const std::string& deviceNode, Slot slot,
                                                                const Challenge& challenge, const Limit& limit,
                                                                const TouchWanted& onTouchWanted = {});

} // namespace vantro::service
