#include "service/StandaloneObject.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <utility>
#include <vector>

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
constexpr const char* notAvailable = "com.vantro.Standalone1.Error.NotAvailable";

/// The one answer of one request: whoever gives it first. Any thread.
template <class Value>
class Answer
{
  public:
    Answer(sdbus::Result<Value>&& result, const Logger& logger) : result_(std::move(result)), logger_(logger) {}

    void give(const Value& value)
    {
        send([this, &value] { result_.returnResults(value); });
    }

    void refuse(const char* name, const std::string& text)
    {
        send([this, name, &text] { result_.returnError(sdbus::Error(name, text)); });
    }

  private:
    void send(const std::function<void()>& sending)
    {
        if (isGiven_.test_and_set())
            return;
        try {
            sending();
        } catch (const sdbus::Error& error) {
            logger_.error("The answer can't be sent: " + error.getMessage(), "send(_:)");
        }
    }

    const sdbus::Result<Value> result_;
    const Logger logger_;
    std::atomic_flag isGiven_;
};

} // namespace

StandaloneObject::StandaloneObject(sdbus::IConnection& connection, ChallengeResponse& challengeResponse,
                                   const Logger& logger)
    : challengeResponse_(challengeResponse), logger_(logger.inFile("StandaloneObject")), credentials_(logger),
      object_(sdbus::createObject(connection, serviceObjectPath))
{
    using Serial = std::uint64_t;
    using Archive = std::vector<std::uint8_t>;

    object_->registerMethod(service_method::getSerial)
        .onInterface(label)
        .implementedAs([this](sdbus::Result<Serial>&& result) {
            take<Serial>(service_method::getSerial, std::move(result), usualLimit, 0,
                         [this](const Limit& limit, const auto& answer) { answer(challengeResponse_.serial(limit)); });
        });
    object_->registerMethod(service_method::createCRSettingFile)
        .onInterface(label)
        .implementedAs([this](sdbus::Result<bool>&& result, Serial serial) {
            take<bool>(service_method::createCRSettingFile, std::move(result), usualLimit, false,
                       [this, serial](const Limit& limit, const auto& answer) {
                           answer(challengeResponse_.create(serial, limit));
                       });
        });
    for (const char* const name : {service_method::removeCRSettingFile, service_method::validate})
        object_->registerMethod(name).onInterface(label).implementedAs([](sdbus::Result<bool>&& result, Serial) {
            result.returnError(sdbus::Error(notAvailable, "Not available yet."));
        });
    for (const char* const name : {service_method::savePamSetting, service_method::removePamSetting})
        object_->registerMethod(name).onInterface(label).implementedAs(
            [](sdbus::Result<bool>&& result, const Archive&) {
                result.returnError(sdbus::Error(notAvailable, "Not available yet."));
            });
    object_->finishRegistration();
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
            logger_.error(std::string(method) + " is still under way and was given up.", "take(_:)");
            answer->give(failed);
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
