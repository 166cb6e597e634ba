#include "tokens/ChallengeResponse.h"

#include <chrono>
#include <string>

namespace vantro::service {
namespace {

constexpr auto renewalLimit = std::chrono::seconds(2);

std::string forSerial(std::uint64_t serial)
{
    return " [Serial = " + std::to_string(serial) + "]";
}

RequestFailure failureOf(TokenFailure failure)
{
    return {reasonOf(failure), std::string(textOf(failure))};
}

/// Sets a flag while it lives, unless somebody else has set it.
class Turn
{
  public:
    explicit Turn(std::atomic_flag& flag) : flag_(flag), isTaken_(!flag.test_and_set()) {}
    ~Turn()
    {
        if (isTaken_)
            flag_.clear();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    [[nodiscard]] bool isTaken() const { return isTaken_; }

  private:
    std::atomic_flag& flag_;
    const bool isTaken_;
};

} // namespace

ChallengeResponse::ChallengeResponse(TokenRegistry& registry, RecordStore& records, const RegisteredKeys& keys,
                                     const Logger& logger)
    : tokens_(registry), records_(records), keys_(keys), logger_(logger.inFile("ChallengeResponse"))
{
}

Outcome<std::uint64_t, RequestFailure> ChallengeResponse::serial(const Limit& limit)
{
    const auto serial = tokens_.newestSerial(limit);
    if (serial)
        return *serial;
    logger_.warning("No serial can be read: " + std::string(textOf(serial.failure())), "serial(_:)");
    return failureOf(serial.failure());
}

void ChallengeResponse::create(std::uint64_t serial, const Limit& limit, const Reply& reply)
{
    const auto fail = [this, serial, &reply](const RequestFailure& failure) {
        logger_.error("No record was written." + forSerial(serial) + " " + failure.text, "create(_:)");
        reply(failure);
    };
    if (const auto failure = records_.writeFailure(serial))
        return fail(recordFailure(*failure));
    const auto token = tokens_.acquireWithSerial(serial, limit);
    if (!token)
        return fail(failureOf(token.failure()));

    const auto record = records_.read(serial);
    const bool isUnknown = !record && record.failure().kind == FileFailure::Kind::SystemError;
    if ((record || isUnknown) && isRegistered(serial)) {
        if (!record)
            return fail(recordFailure(record.failure()));
        const auto answer = prove(*record, *token, limit, {},
                                  {failure_reason::claimsAnother,
                                   "It can't answer as the registered token of this serial does. If its slot was "
                                   "programmed anew, delete the token from every list first."});
        if (!answer)
            return fail(answer.failure());
        logger_.info("The record stays: the token has answered its challenge." + forSerial(serial), "create(_:)");
        reply({});
        renewAfter(*answer, *record, *token, limit);
        return;
    }
    if (const auto failure = writeNew(serial, *token, limit))
        return fail(*failure);
    reply({});
}

void ChallengeResponse::remove(std::uint64_t serial, const Limit& /*limit*/, const Reply& reply)
{
    const auto wasThere = records_.remove(serial);
    if (!wasThere) {
        logger_.error("The record was not removed." + forSerial(serial) + " " + wasThere.failure().text, "remove(_:)");
        return reply(recordFailure(wasThere.failure()));
    }
    logger_.info((*wasThere ? "Record removed." : "There was no record to remove.") + forSerial(serial), "remove(_:)");
    reply({});
}

void ChallengeResponse::validate(std::uint64_t serial, const Limit& limit, const TouchWanted& onTouchWanted,
                                 const Reply& reply)
{
    const auto fail = [this, serial, &reply](const RequestFailure& failure) {
        logger_.warning("The token was not validated." + forSerial(serial) + " " + failure.text, "validate(_:)");
        reply(failure);
    };
    // Nobody waits for a token that has no record.
    if (const auto record = records_.read(serial); !record)
        return fail(recordFailure(record.failure()));
    const auto token = tokens_.acquireWithSerial(serial, limit);
    if (!token)
        return fail(failureOf(token.failure()));
    // The record may be renewed meanwhile, when the token was pulled out and in again behind an earlier validation.
    for (const bool isLast : {false, true}) {
        // Whoever had the token before may have renewed it as well.
        const auto record = records_.read(serial);
        if (!record)
            return fail(recordFailure(record.failure()));
        const auto answer = prove(*record, *token, limit, onTouchWanted,
                                  {failure_reason::wrongResponse,
                                   "Its response is not the one of the record; the slot was programmed anew."});
        if (!answer && answer.failure().reason == failure_reason::noRecord && !isLast)
            continue;
        if (!answer)
            return fail(answer.failure());
        logger_.info("Token validated." + forSerial(serial), "validate(_:)");
        reply({});
        return renewAfter(*answer, *record, *token, limit);
    }
}

bool ChallengeResponse::isRegistered(std::uint64_t serial) const
{
    const auto isNamed = keys_.isNamed(serial);
    if (isNamed)
        return *isNamed;
    // Nobody gets a record by damaging the document.
    logger_.warning("The token counts as registered." + forSerial(serial) + " " + isNamed.failure().text,
                    "isRegistered(_:)");
    return true;
}

RequestFailure ChallengeResponse::recordFailure(const FileFailure& failure) const
{
    if (failure.kind == FileFailure::Kind::DiskFull)
        return {failure_reason::diskFull, failure.text};
    if (records_.folderFailure())
        return {failure_reason::recordsFolder, failure.text};
    const bool isMissing = failure.kind == FileFailure::Kind::Missing;
    return {isMissing ? failure_reason::noRecord : failure_reason::recordUnusable, failure.text};
}

Outcome<SlotAnswer, RequestFailure> ChallengeResponse::prove(const ChallengeRecord& record, const TokenLease& token,
                                                             const Limit& limit, const TouchWanted& onTouchWanted,
                                                             const RequestFailure& mismatch) const
{
    const auto answer = answerChallenge(token.deviceNode(), record.slot, record.challenge, limit, onTouchWanted);
    if (!answer)
        return failureOf(answer.failure());
    if (!record.isMatchedBy(answer->response))
        return mismatch;
    const auto current = records_.read(record.serial);
    if (!current)
        return recordFailure(current.failure());
    if (!(*current == record))
        return RequestFailure{failure_reason::noRecord, "Its record was changed meanwhile."};
    return *answer;
}

std::optional<RequestFailure> ChallengeResponse::writeNew(std::uint64_t serial, const TokenLease& token,
                                                          const Limit& limit)
{
    const auto challenge = makeChallenge();
    if (!challenge)
        return RequestFailure{failure_reason::internal, "The system has no random numbers."};
    Slot slot = Slot::Two;
    auto answer = answerChallenge(token.deviceNode(), slot, *challenge, limit);
    if (!answer && answer.failure() == TokenFailure::SlotNotProgrammed) {
        slot = Slot::One;
        answer = answerChallenge(token.deviceNode(), slot, *challenge, limit);
    }
    if (!answer)
        return failureOf(answer.failure());
    const auto record = ChallengeRecord::make(serial, slot, *challenge, answer->response);
    if (!record)
        return RequestFailure{failure_reason::internal, "The hash can't be computed."};
    if (const auto failure = records_.write(*record))
        return recordFailure(*failure);
    logger_.info("Record written for slot " + std::to_string(static_cast<int>(slot)) + "." + forSerial(serial),
                 "writeNew(_:)");
    return std::nullopt;
}

void ChallengeResponse::renewAfter(const SlotAnswer& answer, const ChallengeRecord& record, const TokenLease& token,
                                   const Limit& limit)
{
    if (answer.wantsTouch)
        return;
    if (const Turn turn(isRenewing_); turn.isTaken())
        renew(record, token, Limit{Limit::Clock::now() + renewalLimit, limit.stop});
}

void ChallengeResponse::renew(const ChallengeRecord& record, const TokenLease& token, const Limit& limit)
{
    const auto fail = [this, &record](std::string_view what) {
        logger_.warning("The record keeps its challenge." + forSerial(record.serial) + " " + std::string(what),
                        "renew(_:)");
    };
    const auto challenge = makeChallenge();
    if (!challenge)
        return fail("The system has no random numbers.");
    const auto answer = answerChallenge(token.deviceNode(), record.slot, *challenge, limit);
    if (!answer)
        return fail(textOf(answer.failure()));
    const auto renewed = ChallengeRecord::make(record.serial, record.slot, *challenge, answer->response);
    if (!renewed)
        return fail("The hash can't be computed.");
    const auto isRenewed = records_.renew(record, *renewed);
    if (!isRenewed)
        return fail(isRenewed.failure().text);
    if (!*isRenewed)
        return fail("It was changed or removed meanwhile.");
    logger_.info("Record renewed." + forSerial(record.serial), "renew(_:)");
}

} // namespace vantro::service
