#include "service/ChallengeResponse.h"

#include <chrono>
#include <string>

namespace vantro::service {
namespace {

constexpr auto renewalLimit = std::chrono::seconds(2);

std::string forSerial(std::uint64_t serial)
{
    return " [Serial = " + std::to_string(serial) + "]";
}

} // namespace

ChallengeResponse::ChallengeResponse(TokenRegistry& registry, RecordStore& records, const Logger& logger)
    : tokens_(registry), records_(records), logger_(logger.inFile("ChallengeResponse"))
{
}

std::uint64_t ChallengeResponse::serial(const Limit& limit)
{
    const auto serial = tokens_.newestSerial(limit);
    if (serial)
        return *serial;
    logger_.warning("No serial can be read: " + std::string(describe(serial.failure())), "serial(_:)");
    return 0;
}

bool ChallengeResponse::create(std::uint64_t serial, const Limit& limit)
{
    const auto fail = [this, serial](std::string_view what) {
        logger_.error("No record was written." + forSerial(serial) + " " + std::string(what), "create(_:)");
        return false;
    };
    if (const auto failure = records_.writeFailure(serial))
        return fail(failure->text);
    const auto token = tokens_.acquireWithSerial(serial, limit);
    if (!token)
        return fail(describe(token.failure()));
    const auto challenge = makeChallenge();
    if (!challenge)
        return fail("The system has no random numbers.");

    Slot slot = Slot::Two;
    auto answer = answerChallenge(token->deviceNode(), slot, *challenge, limit);
    if (!answer && answer.failure() == TokenFailure::SlotNotProgrammed) {
        slot = Slot::One;
        answer = answerChallenge(token->deviceNode(), slot, *challenge, limit);
    }
    if (!answer)
        return fail(describe(answer.failure()));
    const auto record = ChallengeRecord::make(serial, slot, *challenge, answer->response);
    if (!record)
        return fail("The hash can't be computed.");
    if (const auto failure = records_.write(*record))
        return fail(failure->text);
    logger_.info("Record written for slot " + std::to_string(static_cast<int>(slot)) + "." + forSerial(serial),
                 "create(_:)");
    return true;
}

bool ChallengeResponse::remove(std::uint64_t serial)
{
    const auto wasThere = records_.remove(serial);
    if (!wasThere) {
        logger_.error("The record was not removed." + forSerial(serial) + " " + wasThere.failure().text, "remove(_:)");
        return false;
    }
    logger_.info((*wasThere ? "Record removed." : "There was no record to remove.") + forSerial(serial), "remove(_:)");
    return true;
}

void ChallengeResponse::validate(std::uint64_t serial, const Limit& limit, const std::function<void(bool)>& reply)
{
    const auto fail = [this, serial, &reply](std::string_view what) {
        logger_.warning("The token was not validated." + forSerial(serial) + " " + std::string(what), "validate(_:)");
        reply(false);
    };
    const auto record = records_.read(serial);
    if (!record)
        return fail(record.failure().text);
    const auto token = tokens_.acquireWithSerial(serial, limit);
    if (!token)
        return fail(describe(token.failure()));
    const auto answer = answerChallenge(token->deviceNode(), record->slot, record->challenge, limit);
    if (!answer)
        return fail(describe(answer.failure()));
    if (!record->isMatchedBy(answer->response))
        return fail("Its response is not the one of the record; the slot was programmed anew.");
    logger_.info("Token validated." + forSerial(serial), "validate(_:)");
    reply(true);

    if (answer->wantsTouch || isRenewing_.test_and_set())
        return;
    renew(*record, *token, Limit{Limit::Clock::now() + renewalLimit, limit.stop});
    isRenewing_.clear();
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
        return fail(describe(answer.failure()));
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
