#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "LoggerManager/Logger.h"
#include "service/Limit.h"
#include "service/RecordStore.h"
#include "service/TokenAccess.h"

namespace vantro::service {

/// The requests about tokens and their challenge-response files. Whatever fails is in the log. Any thread; blocks up to
/// the limit.
class ChallengeResponse
{
  public:
    ChallengeResponse(TokenRegistry& registry, RecordStore& records, const Logger& logger);

    /// The serial of the token that was plugged in last; 0 when none can be read.
    [[nodiscard]] std::uint64_t serial(const Limit& limit);

    /// Has the token that has the serial answer a new challenge and writes the record. Slot 2 is asked first, slot 1
    /// when that one is not programmed.
    [[nodiscard]] bool create(std::uint64_t serial, const Limit& limit);

    /// True when there is no record afterwards.
    [[nodiscard]] bool remove(std::uint64_t serial);

    /// Has the token answer the challenge of its record and replies whether it is the right one; then puts a new
    /// challenge in its place, unless the slot wants a touch or another record is just being renewed. When that fails
    /// the old record stays.
    void validate(std::uint64_t serial, const Limit& limit, const std::function<void(bool)>& reply);

  private:
    void renew(const ChallengeRecord& record, const TokenLease& token, const Limit& limit);

    TokenAccess tokens_;
    RecordStore& records_;
    const Logger logger_;
    std::atomic_flag isRenewing_;
};

} // namespace vantro::service
