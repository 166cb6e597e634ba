#include "bus/SignInObject.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "VantroStandaloneNames.h"
#include "bus/BusCredentials.h"

namespace vantro::service {
namespace {

using namespace std::chrono_literals;

/// Beyond the wait for a token: for one that wants a touch. Whoever asks waits a little longer.
constexpr auto exchangeLimit = 14s;
constexpr std::uint32_t longestWait = 120;

/// A connection that has gone has no new owner.
constexpr const char* departures = "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                                   "member='NameOwnerChanged',arg2=''";

/// Requests at a time: of root, which signs everybody in, of all others, of one account among these, and of callers
/// whose account the bus is being asked.
constexpr std::size_t requestsOfRoot = 64;
constexpr std::size_t requestsOfOthers = 32;
constexpr std::size_t requestsOfAnAccount = 4;
constexpr std::size_t callers = 512;

} // namespace

struct SignInObject::Request
{
    Request(sdbus::Result<std::string>&& result, const Logger& logger) : answer(std::move(result), logger) {}

    Answer<std::string> answer;
    std::string sender;
    std::string account;
    std::chrono::seconds wait{0};
    std::stop_source stop;
    CallerQuota::Place ownPlace;
    CallerQuota::Place place;
};

SignInObject::SignInObject(sdbus::IConnection& connection, SignIn& signIn, const Logger& logger)
    : signIn_(signIn), logger_(logger.inFile("SignInObject")),
      quotaOfRoot_(std::make_shared<CallerQuota>(requestsOfRoot)),
      quotaOfOthers_(std::make_shared<CallerQuota>(requestsOfOthers)),
      quotaOfAccounts_(std::make_shared<CallerQuota>(requestsOfAnAccount)),
      bus_(sdbus::createProxy(connection, bus_daemon::name, bus_daemon::path)),
      object_(sdbus::createObject(connection, names::serviceObject)), runner_(requestsOfRoot + requestsOfOthers)
{
    connection.addMatch(
        departures,
        [this](sdbus::Message& message) {
            std::string name;
            message >> name;
            endRequestOf(name);
        },
        sdbus::floating_slot);
    object_->registerMethod(names::sign_in::authenticate)
        .onInterface(names::sign_in::interface)
        .withInputParamNames("account", "waitSeconds")
        .withOutputParamNames("outcome")
        .implementedAs([this](sdbus::Result<std::string>&& result, std::string account, std::uint32_t waitSeconds) {
            take(std::move(result), std::move(account), waitSeconds);
        });
    object_->registerSignal(names::sign_in::wanted)
        .onInterface(names::sign_in::interface)
        .withParameters<std::string>("what");
    object_->finishRegistration();
}

void SignInObject::take(sdbus::Result<std::string>&& result, std::string account, std::uint32_t waitSeconds)
{
    const auto request = std::make_shared<Request>(std::move(result), logger_);
    request->sender = object_->getCurrentlyProcessedMessage()->getSender();
    request->account = std::move(account);
    request->wait = std::chrono::seconds(std::min(waitSeconds, longestWait));
    {
        const std::lock_guard lock(mutex_);
        if (requests_.size() >= callers || !requests_.emplace(request->sender, request).second)
            return refuse(*request, bus_error::limitsExceeded, "Too many sign-ins are under way.");
    }
    askWhoCalls(request);
}

void SignInObject::askWhoCalls(const RequestPointer& request)
{
    // Not on a thread, of which a flood of callers could take all.
    bus_->callMethodAsync("GetConnectionUnixUser")
        .onInterface(bus_daemon::name)
        .withArguments(request->sender)
        .uponReplyInvoke([this, request](const sdbus::Error* error, std::uint32_t userId) {
            if (error == nullptr)
                return begin(request, userId);
            logger_.error("The bus does not tell who " + request->sender + " is: " + error->getMessage(),
                          "askWhoCalls(_:)");
            forget(request->sender);
            refuse(*request, bus_error::accessDenied, "The bus does not tell who you are.");
        });
}

void SignInObject::begin(const RequestPointer& request, uid_t userId)
{
    request->ownPlace = userId == 0 ? quotaOfRoot_->placeFor({}) : quotaOfAccounts_->placeFor(std::to_string(userId));
    request->place = userId == 0 ? request->ownPlace : quotaOfOthers_->placeFor({});
    const bool isBegun =
        request->ownPlace && request->place &&
        runner_.run(
            request->wait + exchangeLimit, [this, request, userId](const Limit& limit) { run(request, userId, limit); },
            [this, request] {
                request->stop.request_stop();
                if (request->answer.give(std::string(names::sign_in::unavailable), [] {}))
                    logger_.error("The sign-in of " + request->account + " is still under way and was given up.",
                                  "begin(_:userId:)");
            });
    if (isBegun)
        return;
    forget(request->sender);
    refuse(*request, bus_error::limitsExceeded, "Too many sign-ins are under way.");
}

void SignInObject::run(const RequestPointer& request, uid_t userId, const Limit& limit)
{
    // Ended by the caller's leaving as well as by the service's own end.
    const std::stop_callback serviceEnds(limit.stop, [&request] { request->stop.request_stop(); });
    const Limit own{limit.deadline, request->stop.get_token()};
    if (!maySignIn({userId, {}}, request->account)) {
        logger_.warning("Sign-in as " + request->account + " for user id " + std::to_string(userId) +
                            " was refused: it is another account.",
                        "run(_:userId:limit:)");
        forget(request->sender);
        return refuse(*request, bus_error::accessDenied, "Only root may ask for another account.");
    }
    const auto answer = [this, &request](SignIn::Outcome outcome) {
        // Whoever has the answer may ask anew at once.
        forget(request->sender);
        request->answer.give(std::string(wordOf(outcome)), [] {});
    };
    try {
        signIn_.authenticate(
            request->account, request->wait, own,
            [this, &request](SignIn::Wanted wanted) { tellWanted(request->sender, wanted); }, answer);
    } catch (const std::exception& error) {
        logger_.error("The sign-in of " + request->account + " failed: " + error.what(), "run(_:userId:limit:)");
        answer(SignIn::Outcome::Unavailable);
    }
}

void SignInObject::tellWanted(const std::string& sender, SignIn::Wanted wanted)
{
    try {
        auto signal = object_->createSignal(names::sign_in::interface, names::sign_in::wanted);
        signal.setDestination(sender);
        signal << std::string(wordOf(wanted));
        object_->emitSignal(signal);
    } catch (const sdbus::Error& error) {
        logger_.error("What is wanted can't be told: " + error.getMessage(), "tellWanted(_:)");
    }
}

void SignInObject::endRequestOf(const std::string& sender)
{
    RequestPointer request;
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = requests_.extract(sender))
            request = found.mapped();
    }
    if (request)
        request->stop.request_stop();
}

void SignInObject::refuse(Request& request, const char* error, const char* text) const
{
    logger_.warning("The sign-in of " + request.account + " was refused. " + text, "refuse(_:)");
    request.answer.refuse(error, text);
}

void SignInObject::forget(const std::string& sender)
{
    const std::lock_guard lock(mutex_);
    requests_.erase(sender);
}

} // namespace vantro::service
