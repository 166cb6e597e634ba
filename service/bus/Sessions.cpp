#include "bus/Sessions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <sdbus-c++/sdbus-c++.h>

namespace vantro::service {
namespace {

using namespace std::chrono_literals;

// The names are those of the manual page org.freedesktop.login1(5).
constexpr const char* logind = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr std::array graphicalTypes = {"x11", "wayland", "mir"};

/// What one answer of logind's may take.
constexpr auto logindLimit = 5s;

/// Session, user id, user, seat, object.
using ListedSession = sdbus::Struct<std::string, std::uint32_t, std::string, std::string, sdbus::ObjectPath>;
using Properties = std::map<std::string, sdbus::Variant>;

std::string textOf(const Properties& properties, const char* name)
{
    const auto found = properties.find(name);
    return found != properties.end() && found->second.containsValueOfType<std::string>()
               ? found->second.get<std::string>()
               : std::string();
}

/// Whether somebody works in the session in front of a screen; a greeter's is not theirs.
bool isGraphical(const Properties& properties)
{
    return std::ranges::count(graphicalTypes, textOf(properties, "Type")) != 0 &&
           textOf(properties, "Class") == "user" && textOf(properties, "State") != "closing";
}

/// Locks one session if it is graphical. Answers whether it was.
bool lockSession(sdbus::IConnection& bus, const sdbus::ObjectPath& path)
{
    const auto session = sdbus::createProxy(bus, logind, path);
    Properties properties;
    session->callMethod("GetAll")
        .onInterface("org.freedesktop.DBus.Properties")
        .withTimeout(logindLimit)
        .withArguments(std::string(sessionInterface))
        .storeResultsTo(properties);
    if (!isGraphical(properties))
        return false;
    session->callMethod("Lock").onInterface(sessionInterface).withTimeout(logindLimit);
    return true;
}

void lockSessions(uid_t user, const Logger& logger)
{
    constexpr const char* function = "lockSessions(_:)";
    const auto complain = [&](const sdbus::Error& error) {
        logger.error("The screen of user id " + std::to_string(user) + " could not be locked: " + error.getName() +
                         ": " + error.getMessage(),
                     function);
    };
    try {
        const auto bus = sdbus::createSystemBusConnection();
        const auto manager = sdbus::createProxy(*bus, logind, managerPath);
        std::vector<ListedSession> sessions;
        manager->callMethod("ListSessions")
            .onInterface(managerInterface)
            .withTimeout(logindLimit)
            .storeResultsTo(sessions);
        for (const auto& session : sessions) {
            if (session.get<1>() != user)
                continue;
            try {
                if (lockSession(*bus, session.get<4>()))
                    logger.info("Session " + session.get<0>() + " of " + session.get<2>() + " is locked.", function);
            } catch (const sdbus::Error& error) {
                // It may just have ended; the others are to be locked all the same.
                complain(error);
            }
        }
    } catch (const sdbus::Error& error) {
        complain(error);
    }
}

} // namespace

Sessions::Sessions(const Logger& logger)
    : logger_(logger.inFile("Sessions")), thread_([this](const std::stop_token& stop) { serve(stop); })
{
}

void Sessions::lock(uid_t user)
{
    {
        const std::lock_guard guard(mutex_);
        wanted_.insert(user);
    }
    isWanted_.notify_one();
}

void Sessions::serve(const std::stop_token& stop)
{
    while (true) {
        uid_t user = 0;
        {
            std::unique_lock guard(mutex_);
            if (!isWanted_.wait(guard, stop, [this] { return !wanted_.empty(); }))
                return;
            user = wanted_.extract(wanted_.begin()).value();
        }
        lockSessions(user, logger_);
    }
}

} // namespace vantro::service
