#include "service/BusCredentials.h"

#include <cstdint>
#include <vector>

namespace vantro::service {
namespace {

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
constexpr auto answerLimit = std::chrono::seconds(1);
constexpr std::size_t knownLimit = 256;

} // namespace

BusCredentials::BusCredentials(const Logger& logger)
    : logger_(logger.inFile("BusCredentials")), connection_(sdbus::createSystemBusConnection()),
      bus_(sdbus::createProxy(*connection_, busName, busPath))
{
}

std::optional<Caller> BusCredentials::callerOf(const std::string& sender)
{
    const std::lock_guard lock(mutex_);
    if (const auto known = known_.find(sender); known != known_.end())
        return known->second;
    auto caller = ask(sender);
    if (caller) {
        if (known_.size() >= knownLimit)
            known_.clear();
        known_.emplace(sender, *caller);
    }
    return caller;
}

std::optional<Caller> BusCredentials::ask(const std::string& sender)
{
    try {
        std::map<std::string, sdbus::Variant> credentials;
        bus_->callMethod("GetConnectionCredentials")
            .onInterface(busName)
            .withTimeout(answerLimit)
            .withArguments(sender)
            .storeResultsTo(credentials);
        Caller caller;
        caller.userId = credentials.at("UnixUserID").get<std::uint32_t>();
        if (const auto groups = credentials.find("UnixGroupIDs"); groups != credentials.end())
            caller.groupIds = groups->second.get<std::vector<std::uint32_t>>();
        return caller;
    } catch (const std::exception& error) {
        logger_.error("The bus does not tell who " + sender + " is: " + error.what(), "ask(_:)");
        return std::nullopt;
    }
}

} // namespace vantro::service
