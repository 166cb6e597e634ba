#include "bus/StandaloneObject.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include <systemd/sd-bus.h>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "bus/Answer.h"
#include "foundation/KeyedArchive.h"

namespace vantro::service {
namespace {

using namespace std::chrono_literals;

/// The tool waits five seconds for most answers and twenty for a validation, where somebody may have to touch the
/// token.
constexpr auto usualLimit = 4s;
constexpr auto validationLimit = 14s;

/// The names of arguments and results, which callers see when they ask what the object can do.
constexpr const char* serialName = "serial";
constexpr const char* settingName = "setting";
constexpr const char* successName = "isSuccess";
constexpr const char* reasonName = "reason";

/// Of one account, and of all callers together whose account is not known yet, which is a matter of milliseconds: each
/// of them alone leaves the others most of the runner's threads.
constexpr std::size_t requestsOfOneCaller = 12;
constexpr std::size_t requestsAtATime = 48;

/// Reaches what the library keeps to itself.
struct RawMessage : sdbus::Message
{
    static sd_bus_message* of(const sdbus::Message& message)
    {
        return static_cast<sd_bus_message*>(message.*(&RawMessage::msg_));
    }
};

/// The bytes of a call's one argument, at most one more than any archive has. The library itself would read byte after
/// byte of however many there are, on the one thread that serves everybody.
ArchiveData bytesOf(const sdbus::MethodCall& call)
{
    const void* bytes = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read_array(RawMessage::of(call), 'y', &bytes, &size) < 0)
        throw sdbus::Error(bus_error::invalidArguments, "The argument is no array of bytes.");
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    return {first, first + std::min(size, keyed_archive::sizeLimit + 1)};
}

} // namespace

StandaloneObject::StandaloneObject(sdbus::IConnection& connection, ChallengeResponse& challengeResponse,
                                   PamStore& pamStore, const Logger& logger)
    : challengeResponse_(challengeResponse), pamStore_(pamStore), logger_(logger.inFile("StandaloneObject")),
      credentials_(logger), quota_(std::make_shared<CallerQuota>(requestsOfOneCaller)),
      object_(sdbus::createObject(connection, serviceObjectPath)), runner_(requestsAtATime)
{
    registerTokenMethods();
    registerPamMethods();
    registerDiagnosis();
    object_->finishRegistration();
}

void StandaloneObject::registerTokenMethods()
{
    using Serial = std::uint64_t;
    object_->registerMethod(service_method::getSerial)
        .onInterface(label)
        .withOutputParamNames(serialName)
        .implementedAs([this](sdbus::Result<Serial>&& result) {
            accept<Serial>(service_method::getSerial, std::move(result), usualLimit, 0,
                           [this](const Limit& limit, const auto& answer) {
                               const auto serial = challengeResponse_.serial(limit);
                               if (serial)
                                   answer(*serial, std::nullopt);
                               else
                                   answer(0, serial.failure());
                           });
        });
    registerSerialMethod(service_method::createCRSettingFile, usualLimit, &ChallengeResponse::create);
    registerSerialMethod(service_method::removeCRSettingFile, usualLimit, &ChallengeResponse::remove);
    registerSerialMethod(service_method::validate, validationLimit, &ChallengeResponse::validate);
}

void StandaloneObject::registerSerialMethod(const char* name, Limit::Clock::duration duration,
                                            void (ChallengeResponse::*method)(std::uint64_t, const Limit&,
                                                                              const ChallengeResponse::Reply&))
{
    object_->registerMethod(name)
        .onInterface(label)
        .withInputParamNames(serialName)
        .withOutputParamNames(successName)
        .implementedAs([this, name, duration, method](sdbus::Result<bool>&& result, std::uint64_t serial) {
            accept<bool>(name, std::move(result), duration, false,
                         [this, method, serial](const Limit& limit, const auto& answer) {
                             (challengeResponse_.*method)(serial, limit,
                                                          [&answer](const std::optional<RequestFailure>& failure) {
                                                              answer(!failure, failure);
                                                          });
                         });
        });
}

void StandaloneObject::registerPamMethods()
{
    using Change = std::optional<RequestFailure> (PamStore::*)(const ArchiveData&);
    const auto add = [this](const char* name, Change change) {
        object_->registerMethod(
            label, name, "ay", {settingName}, "b", {successName}, [this, name, change](sdbus::MethodCall call) {
                auto setting = bytesOf(call);
                accept<bool>(name, sdbus::Result<bool>(std::move(call)), usualLimit, false,
                             [this, change, setting = std::move(setting)](const Limit&, const auto& answer) {
                                 const auto failure = (pamStore_.*change)(setting);
                                 answer(!failure, failure);
                             });
            });
    };
    add(service_method::savePamSetting, &PamStore::save);
    add(service_method::removePamSetting, &PamStore::remove);
}

void StandaloneObject::registerDiagnosis()
{
    object_->registerMethod(service_method::lastFailure)
        .onInterface(diagnosisInterface)
        .withOutputParamNames(reasonName)
        .implementedAs([this](sdbus::Result<std::string>&& result) {
            const std::string sender = object_->getCurrentlyProcessedMessage()->getSender();
            accept<std::string>(
                service_method::lastFailure, std::move(result), usualLimit, {},
                [this, sender](const Limit&, const auto& answer) { answer(lastFailures_.of(sender), std::nullopt); });
        });
}

template <class Value>
void StandaloneObject::accept(std::string_view method, sdbus::Result<Value>&& result, Limit::Clock::duration duration,
                              const Value& failed, Work<Value> work)
{
    const auto answer = std::make_shared<Answer<Value>>(std::move(result), logger_);
    const std::string sender = object_->getCurrentlyProcessedMessage()->getSender();
    // Whoever has the answer may ask for the reason at once.
    const auto note = [this, sender, isRequest = method != service_method::lastFailure](std::string_view reason) {
        if (isRequest)
            lastFailures_.note(sender, reason);
    };
    const auto refuseAsTooMany = [this, method, answer] {
        logger_.error(std::string(method) + " was refused: too many requests are under way.", "accept(_:)");
        answer->refuse(bus_error::limitsExceeded, "Too many requests are under way.");
    };
    auto place = placeFor(sender);
    const bool isRoom = place != nullptr;
    auto request = [this, method, sender, answer, note, refuseAsTooMany, place = std::move(place),
                    work = std::move(work)](const Limit& limit) mutable {
        if (!isAllowed(method, sender)) {
            answer->refuse(bus_error::accessDenied, "Only administrators may call this method.");
            return;
        }
        // A newcomer's account is known by now, and its place among the newcomers is somebody else's to take.
        place = placeFor(sender);
        if (!place) {
            refuseAsTooMany();
            return;
        }
        try {
            work(limit, [&](const Value& value, const std::optional<RequestFailure>& failure) {
                answer->give(value, [&] { note(failure ? failure->reason : failure_reason::none); });
            });
        } catch (const std::exception& error) {
            logger_.error(std::string(method) + " failed: " + error.what(), "accept(_:)");
            answer->refuse(bus_error::failed, "The request failed.");
        }
    };
    auto expired = [this, method, answer, note, failed] {
        if (answer->give(failed, [&note] { note(failure_reason::noTime); }))
            logger_.error(std::string(method) + " is still under way and was given up.", "accept(_:)");
    };
    if (!isRoom || !runner_.run(duration, std::move(request), std::move(expired)))
        refuseAsTooMany();
}

CallerQuota::Place StandaloneObject::placeFor(const std::string& sender) const
{
    const auto known = credentials_.knownCaller(sender);
    return quota_->placeFor(known ? std::to_string(known->userId) : std::string());
}

bool StandaloneObject::isAllowed(std::string_view method, const std::string& sender)
{
    const auto caller = credentials_.callerOf(sender);
    if (!caller)
        return false;
    const bool isAllowed = mayCall(method, *caller);
    const std::string who = std::string(method) + " for user id " + std::to_string(caller->userId);
    if (isAllowed)
        logger_.info(who + ".", "isAllowed(_:sender:)");
    else
        logger_.warning(who + " was refused: no administrator.", "isAllowed(_:sender:)");
    return isAllowed;
}

} // namespace vantro::service
