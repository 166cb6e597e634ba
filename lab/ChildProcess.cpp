#include "ChildProcess.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantro::lab {

namespace {

using namespace std::chrono_literals;

constexpr int patienceMilliseconds = 5000;

std::vector<pid_t> children()
{
    std::vector<pid_t> found;
    std::ifstream list("/proc/self/task/" + std::to_string(::getpid()) + "/children");
    for (pid_t child = 0; list >> child;) {
        found.push_back(child);
    }
    return found;
}

} // namespace

void endWithParent(QProcess& process)
{
    process.setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != parent) {
            ::_exit(1);
        }
    });
}

void end(QProcess& process)
{
    if (process.state() == QProcess::NotRunning) {
        return;
    }
    process.terminate();
    if (!process.waitForFinished(patienceMilliseconds)) {
        process.kill();
        process.waitForFinished(patienceMilliseconds);
    }
}

void adoptDescendants()
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

void endDescendants()
{
    const auto patience = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMilliseconds);
    int signal = SIGTERM;
    for (std::vector<pid_t> left = children(); !left.empty(); left = children()) {
        for (const pid_t child : left) {
            ::kill(child, signal);
        }
        while (::waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        std::this_thread::sleep_for(10ms);
        if (std::chrono::steady_clock::now() > patience) {
            signal = SIGKILL;
        }
    }
}

} // namespace vantro::lab
