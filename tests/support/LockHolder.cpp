#include "support/LockHolder.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/FileDescriptor.h"
#include "foundation/ProcessLock.h"

namespace vantro::tests {

LockHolder::LockHolder(const std::filesystem::path& file, std::optional<uid_t> user)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    const FileDescriptor hears(ends[0]);
    FileDescriptor tells(ends[1]);
    process_ = ::fork();
    if (process_ == 0) {
        const ProcessLock lock(file);
        // Afterwards, since the folder may be closed to it; the kernel hides whose a process is that has changed.
        if (user && (::setuid(*user) != 0 || ::prctl(PR_SET_DUMPABLE, 1) != 0))
            ::_exit(1);
        if (lock.isHeldByAnother() || ::write(tells.get(), "", 1) != 1)
            ::_exit(1);
        for (;;)
            ::pause();
    }
    tells.close();
    char byte = 1;
    if (::read(hears.get(), &byte, 1) != 1)
        throw std::runtime_error("the other process does not have the lock");
}

LockHolder::~LockHolder()
{
    if (process_ <= 0)
        return;
    ::kill(process_, SIGKILL);
    waitForEnd();
}

int LockHolder::waitForEnd()
{
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

} // namespace vantro::tests
