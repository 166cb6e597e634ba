#include "emulation/StandInLogind.h"

#include <utility>

namespace vantro::lab {

namespace {

constexpr const char* busName = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";

/// Session, user id, user, seat, object.
using ListedSession = sdbus::Struct<std::string, std::uint32_t, std::string, std::string, sdbus::ObjectPath>;

sdbus::ObjectPath pathOf(const StandInLogind::Session& session)
{
    return {std::string(managerPath) + "/session/" + session.id};
}

} // namespace

StandInLogind::StandInLogind(const std::vector<Session>& sessions, std::function<void()> onChange)
    : onChange_(std::move(onChange)), connection_(sdbus::createSystemBusConnection())
{
    addManager(sessions);
    for (const Session& session : sessions) {
        addSession(session);
    }
    connection_->requestName(busName);
    thread_ = std::jthread([this] {
        try {
            connection_->enterEventLoop();
        } catch (const sdbus::Error&) {
            // The bus has gone, and with it whoever might ask.
            return;
        }
    });
}

StandInLogind::~StandInLogind()
{
    connection_->leaveEventLoop();
}

void StandInLogind::addManager(const std::vector<Session>& sessions)
{
    std::vector<ListedSession> listed;
    listed.reserve(sessions.size());
    for (const Session& session : sessions) {
        listed.emplace_back(session.id, session.userId, session.user, "seat0", pathOf(session));
    }
    auto& manager = objects_.emplace_back(sdbus::createObject(*connection_, managerPath));
    manager->registerMethod("ListSessions").onInterface(managerInterface).implementedAs([listed] { return listed; });
    manager->finishRegistration();
}

void StandInLogind::addSession(const Session& session)
{
    isLocked_[session.id] = false;
    auto& object = objects_.emplace_back(sdbus::createObject(*connection_, pathOf(session)));
    const std::pair<const char*, std::string> texts[] = {
        {"Name", session.user}, {"Type", session.type}, {"Class", session.sessionClass}, {"State", session.state}};
    for (const auto& [name, text] : texts) {
        object->registerProperty(name).onInterface(sessionInterface).withGetter([value = text] { return value; });
    }
    object->registerProperty("LockedHint").onInterface(sessionInterface).withGetter([this, id = session.id] {
        return isLocked(id);
    });
    for (const bool isLocking : {true, false}) {
        object->registerMethod(isLocking ? "Lock" : "Unlock")
            .onInterface(sessionInterface)
            .implementedAs([this, id = session.id, isLocking] { setIsLocked(id, isLocking); });
    }
    object->finishRegistration();
}

bool StandInLogind::isLocked(const std::string& id) const
{
    const std::lock_guard lock(mutex_);
    const auto found = isLocked_.find(id);
    return found != isLocked_.end() && found->second;
}

void StandInLogind::setIsLocked(const std::string& id, bool isLocked)
{
    {
        const std::lock_guard lock(mutex_);
        isLocked_[id] = isLocked;
    }
    if (onChange_) {
        onChange_();
    }
}

} // namespace vantro::lab
