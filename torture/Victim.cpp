#include "Victim.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "foundation/LastError.h"

namespace vantro::torture {
namespace {

struct Reply
{
    Answer answer = Answer::Done;
    bool hasLeaked = false;
};

template <class Message>
bool receive(const FileDescriptor& from, Message& message)
{
    return ::read(from.get(), &message, sizeof message) == sizeof message;
}

template <class Message>
bool send(const FileDescriptor& to, const Message& message)
{
    return ::write(to.get(), &message, sizeof message) == sizeof message;
}

std::ptrdiff_t openDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

[[noreturn]] void obey(const FileDescriptor& orders, const FileDescriptor& answers, const Folders& folders,
                       const Logger& logger, Faults& faults)
{
    // What the product logs of its failures is not asked for here.
    const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    ::dup2(nowhere.get(), STDERR_FILENO);
    Subject subject(folders, logger);
    Operation operation;
    while (receive(orders, operation)) {
        const auto before = openDescriptors();
        faults.isArmed = true;
        const auto answer = subject.carryOut(operation);
        faults.isArmed = false;
        if (!send(answers, Reply{answer, openDescriptors() != before}))
            break;
    }
    ::_exit(0);
}

void makePipe(FileDescriptor& reading, FileDescriptor& writing)
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(lastError(), "pipe");
    reading = FileDescriptor(ends[0]);
    writing = FileDescriptor(ends[1]);
}

} // namespace

Victim::Victim(const Folders& folders, const Logger& logger, Faults& faults)
{
    FileDescriptor ordered;
    FileDescriptor answering;
    makePipe(ordered, orders_);
    makePipe(answers_, answering);
    process_ = ::fork();
    if (process_ < 0)
        throw std::system_error(lastError(), "fork");
    if (process_ == 0) {
        orders_.close();
        answers_.close();
        obey(ordered, answering, folders, logger, faults);
    }
}

Victim::~Victim()
{
    if (process_ < 0)
        return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

Victim::Result Victim::carryOut(const Operation& operation, Kill kill, unsigned int killMicroseconds)
{
    Result result;
    if (!send(orders_, operation))
        throw std::system_error(lastError(), "the process takes no more orders");
    if (kill == Kill::AtATime) {
        // Too short for a sleep.
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(killMicroseconds);
        while (std::chrono::steady_clock::now() < end)
            continue;
        ::kill(process_, SIGKILL);
    }
    Reply reply;
    if (receive(answers_, reply)) {
        result.answer = reply.answer;
        result.hasLeaked = reply.hasLeaked;
        if (kill != Kill::AtATime)
            return result;
    }
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    result.isAlive = false;
    result.hasCrashed = kill == Kill::No || !WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL;
    return result;
}

} // namespace vantro::torture
