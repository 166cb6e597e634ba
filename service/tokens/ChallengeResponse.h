#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>

#include "Limit.h"
#include "LoggerManager/Logger.h"
#include "RequestFailure.h"
#include "foundation/Outcome.h"
#include "tokens/RecordStore.h"
#include "tokens/RegisteredKeys.h"
#include "tokens/TokenAccess.h"

namespace vantro::service {

/// The requests about tokens and their challenge-response files. Whatever fails is in the log. Any thread; blocks up to
/// the limit.
class ChallengeResponse
{
  public:
    /// Called once: with nothing after a success.
    using Reply = std::function<void(const std::optional<RequestFailure>&)>;

    /// `records` and `keys` must outlive this.
    ChallengeResponse(TokenRegistry& registry, RecordStore& records, const RegisteredKeys& keys, const Logger& logger);

    /// The serial of the token that was plugged in last.
    [[nodiscard]] Outcome<std::uint64_t, RequestFailure> serial(const Limit& limit);

    /// Has the token that has the serial answer a new challenge and writes the record. Slot 2 is asked first, slot 1
    /// when that one is not programmed. A serial is only a claim: while the settings document names it, the token must
    /// answer the challenge of its record instead, which then stays and is renewed as after a validation.
    void create(std::uint64_t serial, const Limit& limit, const Reply& reply);

    /// Succeeds when there is no record afterwards.
    void remove(std::uint64_t serial, const Limit& limit, const Reply& reply);

    /// Has the token answer the challenge of its record and replies whether it is the right one; then puts a new
    /// challenge in its place, unless the slot wants a touch or another record is just being renewed. When that fails
    /// the old record stays.
    void validate(std::uint64_t serial, const Limit& limit, const Reply& reply) { validate(serial, limit, {}, reply); }

    /// The same; calls `onTouchWanted` when the token begins to wait for a touch.
    void validate(std::uint64_t serial, const Limit& limit, const TouchWanted& onTouchWanted, const Reply& reply);

  private:
    [[nodiscard]] bool isRegistered(std::uint64_t serial) const;
    [[nodiscard]] RequestFailure recordFailure(const FileFailure& failure) const;
    /// Has the token answer the challenge of the record; `mismatch` is the reason when it can't. Nothing of the record
    /// is taken for granted afterwards: it must still be there.
    [[nodiscard]] Outcome<SlotAnswer, RequestFailure> prove(const ChallengeRecord& record, const TokenLease& token,
                                                            const Limit& limit, const TouchWanted& onTouchWanted,
                                                            const RequestFailure& mismatch) const;
    [[nodiscard]] std::optional<RequestFailure> writeNew(std::uint64_t serial, const TokenLease& token,
                                                         const Limit& limit);
    void renewAfter(const SlotAnswer& answer, const ChallengeRecord& record, const TokenLease& token,
                    const Limit& limit);
    void renew(const ChallengeRecord& record, const TokenLease& token, const Limit& limit);

    TokenAccess tokens_;
    RecordStore& records_;
    const RegisteredKeys& keys_;
    const Logger logger_;
    std::atomic_flag isRenewing_;
};

} // namespace vantro::service
