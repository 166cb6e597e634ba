#include "Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "support/WaitUntil.h"

namespace vantro::bench {
namespace {

/// Far longer than anything takes.
constexpr int patienceMilliseconds = 60000;

struct Pipe
{
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe()
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

} // namespace

Program::Program(const std::string& path, const std::vector<std::string>& arguments, const std::string& preload)
{
    Pipe input = makePipe();
    Pipe output = makePipe();
    std::vector<char*> words = {const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    process_ = ::fork();
    if (process_ < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (process_ == 0) {
        if (!preload.empty())
            ::setenv("LD_PRELOAD", preload.c_str(), 1);
        ::dup2(input.readEnd.get(), STDIN_FILENO);
        ::dup2(output.writeEnd.get(), STDOUT_FILENO);
        ::dup2(output.writeEnd.get(), STDERR_FILENO);
        ::execv(path.c_str(), words.data());
        ::_exit(EXIT_FAILURE);
    }
    input_ = std::move(input.writeEnd);
    output_ = std::move(output.readEnd);
}

Program::~Program()
{
    input_.close();
    if (tests::waitUntil([this] { return ::waitpid(process_, nullptr, WNOHANG) == process_; }))
        return;
    kill();
    ::waitpid(process_, nullptr, 0);
}

std::string Program::readUntil(std::string_view marker)
{
    std::array<char, 4096> buffer = {};
    pollfd wait = {output_.get(), POLLIN, 0};
    while (unread_.find(marker) == std::string::npos) {
        const auto count = ::poll(&wait, 1, patienceMilliseconds) > 0
                               ? ::read(output_.get(), buffer.data(), buffer.size())
                               : ssize_t{0};
        if (count <= 0)
            throw std::runtime_error("a program does not do what it is to do. It wrote:\n" + unread_);
        unread_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    const auto end = unread_.find(marker);
    std::string text = unread_.substr(0, end);
    unread_.erase(0, end + marker.size());
    return text;
}

void Program::writeLine() const
{
    if (::write(input_.get(), "\n", 1) != 1)
        throw std::system_error(errno, std::generic_category(), "write");
}

double Program::memory() const
{
    std::ifstream rollup("/proc/" + std::to_string(process_) + "/smaps_rollup");
    for (std::string word; rollup >> word;) {
        double kibibytes = 0;
        if (word == "Pss:" && rollup >> kibibytes)
            return kibibytes / 1024;
    }
    throw std::runtime_error("the kernel does not tell how much memory a process has");
}

void Program::kill() const
{
    ::kill(process_, SIGKILL);
}

} // namespace vantro::bench
