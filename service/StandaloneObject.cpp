#include "service/StandaloneObject.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <utility>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"

namespace vantro::service {
namespace {

using namespace std::chrono_literals;

/// The tool waits five seconds for most answers and twenty for a validation, where somebody may have to touch the
/// token.
constexpr auto usualLimit = 4s;
constexpr auto validationLimit = 14s;

constexpr const char* accessDenied = "org.freedesktop.DBus.Error.AccessDenied";
constexpr const char* limitsExceeded = "org.freedesktop.DBus.Error.LimitsExceeded";
constexpr const char* failedError = "org.freedesktop.DBus.Error.Failed";

/// The names of arguments and results, which callers see when they ask what the object can do.
constexpr const char* serialName = "serial";
constexpr const char* settingName = "setting";
constexpr const char* successName = "isSuccess";

/// The one answer of one request: whoever gives it first. Any thread.
template <class Value>
class Answer
{
  public:
    Answer(sdbus::Result<Value>&& result, const Logger& logger) : result_(std::move(result)), logger_(logger) {}

    /// False when it was given before.
    bool give(const Value& value)
    {
        return send([this, &value] { result_.returnResults(value); });
    }

    void refuse(const char* name, const std::string& text)
    {
        send([this, name, &text] { result_.returnError(sdbus::Error(name, text)); });
    }

  private:
    bool send(const std::function<void()>& sending)
    {
        if (isGiven_.test_and_set())
            return false;
        try {
            sending();
        } catch (const sdbus::Error& error) {
            logger_.error("The answer can't be sent: " + error.getMessage(), "send(_:)");
        }
        return true;
    }

    const sdbus::Result<Value> result_;
    const Logger logger_;
    std::atomic_flag isGiven_;
};

} // namespace

StandaloneObject::StandaloneObject(sdbus::IConnection& connection, ChallengeResponse& challengeResponse,
                                   PamStore& pamStore, const Logger& logger)
    : challengeResponse_(challengeResponse), pamStore_(pamStore), logger_(logger.inFile("StandaloneObject")),
      credentials_(logger), object_(sdbus::createObject(connection, serviceObjectPath))
{
    registerTokenMethods();
    registerPamMethods();
    object_->finishRegistration();
}

void StandaloneObject::registerTokenMethods()
{
    using Serial = std::uint64_t;
    object_->registerMethod(service_method::getSerial)
        .onInterface(label)
        .withOutputParamNames(serialName)
        .implementedAs([this](sdbus::Result<Serial>&& result) {
            take<Serial>(service_method::getSerial, std::move(result), usualLimit, 0,
                         [this](const Limit& limit, const auto& answer) { answer(challengeResponse_.serial(limit)); });
        });
    object_->registerMethod(service_method::createCRSettingFile)
        .onInterface(label)
        .withInputParamNames(serialName)
        .withOutputParamNames(successName)
        .implementedAs([this](sdbus::Result<bool>&& result, Serial serial) {
            take<bool>(service_method::createCRSettingFile, std::move(result), usualLimit, false,
                       [this, serial](const Limit& limit, const auto& answer) {
                           answer(challengeResponse_.create(serial, limit));
                       });
        });
    object_->registerMethod(service_method::removeCRSettingFile)
        .onInterface(label)
        .withInputParamNames(serialName)
        .withOutputParamNames(successName)
        .implementedAs([this](sdbus::Result<bool>&& result, Serial serial) {
            take<bool>(service_method::removeCRSettingFile, std::move(result), usualLimit, false,
                       [this, serial](const Limit&, const auto& answer) { answer(challengeResponse_.remove(serial)); });
        });
    object_->registerMethod(service_method::validate)
        .onInterface(label)
        .withInputParamNames(serialName)
        .withOutputParamNames(successName)
        .implementedAs([this](sdbus::Result<bool>&& result, Serial serial) {
            take<bool>(service_method::validate, std::move(result), validationLimit, false,
                       [this, serial](const Limit& limit, const auto& answer) {
                           challengeResponse_.validate(serial, limit, answer);
                       });
        });
}

void StandaloneObject::registerPamMethods()
{
    using Change = std::optional<RequestFailure> (PamStore::*)(const ArchiveData&);
    const auto add = [this](const char* name, Change change) {
        object_->registerMethod(name)
            .onInterface(label)
            .withInputParamNames(settingName)
            .withOutputParamNames(successName)
            .implementedAs([this, name, change](sdbus::Result<bool>&& result, const ArchiveData& setting) {
                take<bool>(name, std::move(result), usualLimit, false,
                           [this, change, setting](const Limit&, const auto& answer) {
                               answer(!(pamStore_.*change)(setting));
                           });
            });
    };
    add(service_method::savePamSetting, &PamStore::save);
    add(service_method::removePamSetting, &PamStore::remove);
}

template <class Value>
void StandaloneObject::take(std::string_view method, sdbus::Result<Value>&& result, Limit::Clock::duration duration,
                            Value failed, std::function<void(const Limit&, const Answerer<Value>&)> work)
{
    const auto answer = std::make_shared<Answer<Value>>(std::move(result), logger_);
    const std::string sender = object_->getCurrentlyProcessedMessage()->getSender();
    const bool isRunning = runner_.run(
        duration,
        [this, method, sender, answer, work = std::move(work)](const Limit& limit) {
            if (!isAllowed(method, sender)) {
                answer->refuse(accessDenied, "Only administrators may call this method.");
                return;
            }
            try {
                work(limit, [&answer](const Value& value) { answer->give(value); });
            } catch (const std::exception& error) {
                logger_.error(std::string(method) + " failed: " + error.what(), "take(_:)");
                answer->refuse(failedError, "The request failed.");
            }
        },
        [this, method, answer, failed] {
            if (answer->give(failed))
                logger_.error(std::string(method) + " is still under way and was given up.", "take(_:)");
        });
    if (!isRunning) {
        logger_.error(std::string(method) + " was refused: too many requests are under way.", "take(_:)");
        answer->refuse(limitsExceeded, "Too many requests are under way.");
    }
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
