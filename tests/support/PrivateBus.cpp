#include "support/PrivateBus.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sdbus-c++/sdbus-c++.h>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

/// The wait status of a child, or of a grandchild that becomes ours when its parent ends.
int waitForEnd(pid_t process)
{
    int status = 0;
    if (!waitUntil([process, &status] { return ::waitpid(process, &status, WNOHANG) == process; }))
        throw std::runtime_error("process " + std::to_string(process) + " does not end");
    return status;
}

std::string rulesFor(PrivateBus::Policy policy)
{
    // Who runs the tests may stand in for logind as well.
    std::string rules = R"(
        <type>system</type>
        <servicedir>{}/services</servicedir>
        <policy context="default">
          <allow user="*"/><deny own="*"/><deny send_type="method_call"/><allow send_type="signal"/>
          <allow send_requested_reply="true" send_type="method_return"/>
          <allow send_requested_reply="true" send_type="error"/>
          <allow receive_type="method_call"/><allow receive_type="method_return"/>
          <allow receive_type="error"/><allow receive_type="signal"/><allow send_destination="org.freedesktop.DBus"/>
        </policy>
        <include>)" VANTRO_BUS_POLICY R"(</include>)";
    const std::string send = "<allow send_destination=\"" + std::string(label) + "\"/>";
    rules += "<policy user=\"" + std::to_string(::geteuid()) + "\"><allow own=\"" + std::string(label) + "\"/>" + send +
             R"(<allow own="org.freedesktop.login1"/><allow send_destination="org.freedesktop.login1"/></policy>)";
    if (policy == PrivateBus::Policy::Open)
        rules += "<policy context=\"mandatory\">" + send + "</policy>";
    return rules;
}

} // namespace

PrivateBus::PrivateBus(const ServicePrefix& prefix, Policy policy) : daemon_(rulesFor(policy))
{
    std::filesystem::create_directory(daemon_.folder() / "services");
    writeFile(daemon_.folder() / "services" / (std::string(label) + ".service"),
              "[D-BUS Service]\nName=" + std::string(label) + "\nExec=" + prefix.program().string() + "\n");
    // The bus starts the service through a process that then ends: the service becomes our child.
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

PrivateBus::~PrivateBus()
{
    try {
        endService(SIGTERM);
    } catch (const std::exception& exception) {
        // It loses its bus then, and ends by that.
        std::cerr << "The service could not be ended: " << exception.what() << '\n';
    }
}

std::optional<pid_t> PrivateBus::servicePid() const
{
    if (!daemon_.isRunning())
        return std::nullopt;
    try {
        const auto connection = sdbus::createSystemBusConnection();
        const auto bus = sdbus::createProxy(*connection, "org.freedesktop.DBus", "/org/freedesktop/DBus");
        std::uint32_t process = 0;
        bus->callMethod("GetConnectionUnixProcessID")
            .onInterface("org.freedesktop.DBus")
            .withArguments(std::string(label))
            .storeResultsTo(process);
        return static_cast<pid_t>(process);
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
}

std::optional<int> PrivateBus::endService(int signal) const
{
    const auto process = servicePid();
    if (!process)
        return std::nullopt;
    ::kill(*process, signal);
    return waitForEnd(*process);
}

std::optional<int> PrivateBus::endBus()
{
    const auto process = servicePid();
    daemon_.end();
    if (!process)
        return std::nullopt;
    return waitForEnd(*process);
}

} // namespace vantro::tests
