#include "support/PlainBus.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/FileDescriptor.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

bool answers(const std::string& socketPath)
{
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    socketPath.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

} // namespace

PlainBus::PlainBus()
{
    const std::string configuration = folder_ / "bus.conf";
    const std::string socketPath = folder_ / "bus";
    writeFile(configuration,
              "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\""
              " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
              "<busconfig><listen>unix:path=" +
                  socketPath +
                  "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
                  "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>");
    const std::string option = "--config-file=" + configuration;
    daemon_ = ::fork();
    if (daemon_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nopidfile", option.c_str(), nullptr);
        ::_exit(127);
    }
    if (daemon_ < 0 || !waitUntil([&] { return answers(socketPath); }))
        throw std::runtime_error("the bus does not come up");
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socketPath).c_str(), 1);
}

PlainBus::~PlainBus()
{
    end();
}

void PlainBus::end()
{
    if (daemon_ < 0)
        return;
    ::kill(daemon_, SIGKILL);
    ::waitpid(daemon_, nullptr, 0);
    daemon_ = -1;
}

} // namespace vantro::tests
