#include "support/BusDaemon.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "foundation/FileDescriptor.h"

namespace vantro::tests {
namespace {

/// Nothing more comes from a bus that ends instead of coming up.
std::string firstLine(const FileDescriptor& file)
{
    std::string line;
    for (char character = 0; ::read(file.get(), &character, 1) == 1; line += character)
        if (character == '\n')
            return line;
    throw std::runtime_error("the bus does not come up");
}

} // namespace

BusDaemon::BusDaemon(std::string rules)
{
    const std::string here = folder().string();
    for (auto at = rules.find("{}"); at != std::string::npos; at = rules.find("{}", at + here.size()))
        rules.replace(at, 2, here);
    // Other users reach the bus's socket, but can't list the folder.
    std::filesystem::permissions(folder(), static_cast<std::filesystem::perms>(0711));
    writeFile(folder_ / "bus.conf", "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\""
                                    " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
                                    "<busconfig><listen>unix:path=" +
                                        here + "/bus</listen><auth>EXTERNAL</auth>" + rules + "</busconfig>");

    int ends[2];
    if (::pipe(ends) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    const std::string configuration = "--config-file=" + here + "/bus.conf";
    const std::string print = "--print-address=" + std::to_string(writeEnd.get());
    const std::string logFile = here + "/log";
    daemon_ = ::fork();
    if (daemon_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        const int output = ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(output, STDERR_FILENO);
        ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
        ::execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nopidfile", "--nosyslog", configuration.c_str(),
                 print.c_str(), nullptr);
        ::_exit(127);
    }
    writeEnd.close();
    address_ = firstLine(readEnd);
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address_.c_str(), 1);
}

BusDaemon::~BusDaemon()
{
    end();
}

void BusDaemon::end()
{
    if (daemon_ < 0)
        return;
    ::kill(daemon_, SIGKILL);
    ::waitpid(daemon_, nullptr, 0);
    daemon_ = -1;
}

} // namespace vantro::tests
