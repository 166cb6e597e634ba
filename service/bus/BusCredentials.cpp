#include "bus/BusCredentials.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

#include <systemd/sd-bus.h>

namespace vantro::service {
namespace {

/// D-Bus's own: where the system bus is unless the variable says otherwise.
constexpr const char* addressVariable = "DBUS_SYSTEM_BUS_ADDRESS";
constexpr const char* usualAddress = "unix:path=/run/dbus/system_bus_socket";
constexpr auto answerLimit = std::chrono::seconds(1);
constexpr std::size_t knownLimit = 256;

template <class Object, Object* (*release)(Object*)>
struct Release
{
    void operator()(Object* object) const { release(object); }
};
using Bus = std::unique_ptr<sd_bus, Release<sd_bus, sd_bus_close_unref>>;
using Message = std::unique_ptr<sd_bus_message, Release<sd_bus_message, sd_bus_message_unref>>;

/// The result of an sd-bus call, which is negative where it failed.
int checked(int result)
{
    if (result < 0)
        throw std::system_error(-result, std::generic_category());
    return result;
}

/// A connection for one question. It has no name that the bus policy could keep others from, so whatever anybody sends
/// to its unique name arrives: nothing of that may outlive the question, and no file descriptor is taken at all.
Bus connected()
{
    sd_bus* raw = nullptr;
    checked(sd_bus_new(&raw));
    Bus bus(raw);
    const char* const address = ::secure_getenv(addressVariable);
    checked(sd_bus_set_address(raw, address != nullptr ? address : usualAddress));
    checked(sd_bus_set_bus_client(raw, 1));
    checked(sd_bus_negotiate_fds(raw, 0));
    checked(sd_bus_start(raw));
    return bus;
}

/// Reads an entry of the answer, whose variant comes next; false for one that is of no interest.
bool read(sd_bus_message* answer, std::string_view name, Caller& caller)
{
    if (name == "UnixUserID") {
        std::uint32_t userId = 0;
        checked(sd_bus_message_read(answer, "v", "u", &userId));
        caller.userId = userId;
        return true;
    }
    if (name == "UnixGroupIDs") {
        checked(sd_bus_message_enter_container(answer, 'v', "au"));
        const void* ids = nullptr;
        std::size_t size = 0;
        checked(sd_bus_message_read_array(answer, 'u', &ids, &size));
        const auto* const first = static_cast<const std::uint32_t*>(ids);
        caller.groupIds.assign(first, first + size / sizeof *first);
        checked(sd_bus_message_exit_container(answer));
        return true;
    }
    checked(sd_bus_message_skip(answer, "v"));
    return false;
}

Caller ask(const std::string& sender)
{
    const Bus bus = connected();
    sd_bus_message* raw = nullptr;
    checked(sd_bus_message_new_method_call(bus.get(), &raw, bus_daemon::name, bus_daemon::path, bus_daemon::name,
                                           "GetConnectionCredentials"));
    const Message question(raw);
    checked(sd_bus_message_append(raw, "s", sender.c_str()));
    raw = nullptr;
    constexpr auto limit = std::chrono::microseconds(answerLimit).count();
    checked(sd_bus_call(bus.get(), question.get(), static_cast<std::uint64_t>(limit), nullptr, &raw));
    const Message answer(raw);

    Caller caller;
    bool isUserKnown = false;
    checked(sd_bus_message_enter_container(raw, 'a', "{sv}"));
    while (checked(sd_bus_message_enter_container(raw, 'e', "sv")) > 0) {
        const char* name = nullptr;
        checked(sd_bus_message_read(raw, "s", &name));
        isUserKnown |= read(raw, name, caller) && std::string_view(name) == "UnixUserID";
        checked(sd_bus_message_exit_container(raw));
    }
    if (!isUserKnown)
        throw std::system_error(ENODATA, std::generic_category());
    return caller;
}

} // namespace

std::optional<Caller> BusCredentials::knownCaller(const std::string& sender) const
{
    const std::lock_guard lock(mutex_);
    const auto known = known_.find(sender);
    return known == known_.end() ? std::nullopt : std::optional(known->second);
}

std::optional<Caller> BusCredentials::callerOf(const std::string& sender)
{
    if (auto known = knownCaller(sender))
        return known;
    try {
        Caller caller = ask(sender);
        const std::lock_guard lock(mutex_);
        if (known_.size() >= knownLimit)
            known_.clear();
        known_.emplace(sender, caller);
        return caller;
    } catch (const std::system_error& error) {
        logger_.error("The bus does not tell who " + sender + " is: " + error.code().message(), "callerOf(_:)");
        return std::nullopt;
    }
}

} // namespace vantro::service
