#include "support/PrivateBus.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include <sdbus-c++/sdbus-c++.h>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "foundation/FileDescriptor.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

constexpr int startLimitMilliseconds = 30000;

std::string firstLine(int descriptor)
{
    std::string line;
    pollfd wait = {descriptor, POLLIN, 0};
    while (::poll(&wait, 1, startLimitMilliseconds) > 0) {
        char character = 0;
        if (::read(descriptor, &character, 1) != 1)
            break;
        if (character == '\n')
            return line;
        line += character;
    }
    throw std::runtime_error("the private bus does not come up");
}

/// The wait status of a child, or of a grandchild that becomes ours when its parent ends.
int waitForEnd(pid_t process)
{
    int status = 0;
    if (!waitUntil([process, &status] { return ::waitpid(process, &status, WNOHANG) == process; }))
        throw std::runtime_error("process " + std::to_string(process) + " does not end");
    return status;
}

} // namespace

PrivateBus::PrivateBus(const ServicePrefix& prefix, Policy policy)
{
    // Other users reach the bus's socket, but can't list the folder.
    std::filesystem::permissions(temporary_.path(), static_cast<std::filesystem::perms>(0711));
    writeConfiguration(prefix, policy);
    // The bus starts the service through a process that then ends: the service becomes our child.
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);

    int ends[2];
    if (::pipe(ends) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    const std::string configuration = "--config-file=" + (temporary_.path() / "bus.conf").string();
    const std::string print = "--print-address=" + std::to_string(writeEnd.get());
    const std::string log = temporary_.path() / "log";
    daemon_ = ::fork();
    if (daemon_ == 0) {
        const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(output, STDERR_FILENO);
        ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
        ::execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nopidfile", "--nosyslog", configuration.c_str(),
                 print.c_str(), nullptr);
        ::_exit(127);
    }
    writeEnd.close();
    address_ = firstLine(readEnd.get());
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address_.c_str(), 1);
}

PrivateBus::~PrivateBus()
{
    try {
        endService(SIGTERM);
        endBus();
    } catch (const std::exception&) {
        ::kill(daemon_, SIGKILL);
    }
}

void PrivateBus::writeConfiguration(const ServicePrefix& prefix, Policy policy) const
{
    const auto folder = temporary_.path();
    std::filesystem::create_directory(folder / "services");
    // The command that is to start the service, for a test that shuts the service in.
    const char* const wrapper = ::getenv("VANTRO_TEST_SERVICE_WRAPPER");
    const std::string start = wrapper == nullptr ? std::string() : std::string(wrapper) + " ";
    writeFile(folder / "services" / (std::string(label) + ".service"),
              "[D-BUS Service]\nName=" + std::string(label) + "\nExec=" + start + prefix.program().string() + "\n");

    const std::string user = std::to_string(::geteuid());
    const std::string own = "<allow own=\"" + std::string(label) + "\"/>";
    const std::string send = "<allow send_destination=\"" + std::string(label) + "\"/>";
    std::string further = "<policy user=\"" + user + "\">" + own + send + "</policy>";
    if (policy == Policy::Open)
        further += "<policy context=\"mandatory\">" + send + "</policy>";
    writeFile(folder / "bus.conf",
              "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\""
              " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
              "<busconfig><type>system</type><listen>unix:path=" +
                  (folder / "bus").string() + "</listen><auth>EXTERNAL</auth><servicedir>" +
                  (folder / "services").string() +
                  "</servicedir><policy context=\"default\"><allow user=\"*\"/><deny own=\"*\"/>"
                  "<deny send_type=\"method_call\"/><allow send_type=\"signal\"/>"
                  "<allow send_requested_reply=\"true\" send_type=\"method_return\"/>"
                  "<allow send_requested_reply=\"true\" send_type=\"error\"/><allow receive_type=\"method_call\"/>"
                  "<allow receive_type=\"method_return\"/><allow receive_type=\"error\"/>"
                  "<allow receive_type=\"signal\"/><allow send_destination=\"org.freedesktop.DBus\"/></policy>"
                  "<include>" VANTRO_BUS_POLICY "</include>" +
                  further + "</busconfig>");
}

std::string PrivateBus::log() const
{
    return contentOf(temporary_.path() / "log");
}

std::optional<pid_t> PrivateBus::servicePid() const
{
    if (daemon_ < 0)
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
    if (daemon_ < 0)
        return std::nullopt;
    ::kill(daemon_, SIGTERM);
    waitForEnd(daemon_);
    daemon_ = -1;
    if (!process)
        return std::nullopt;
    return waitForEnd(*process);
}

} // namespace vantro::tests
