// To be preloaded: stands in front of the C library's calls that change or read files, and has them fail by the plan.

#include "Faults.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <initializer_list>
#include <string>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using vantro::torture::Call;
using vantro::torture::callCount;
using vantro::torture::Faults;
using vantro::torture::Plan;

extern "C" Faults vantroFaults;
Faults vantroFaults;

namespace {

constexpr int shortened = -1;

[[gnu::constructor]] void makePlan()
{
    void* const memory = ::mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        std::abort();
    vantroFaults.plan = new (memory) Plan;
}

/// The C library's own.
template <auto* function>
auto original(const char* name)
{
    static const auto found = reinterpret_cast<decltype(function)>(::dlsym(RTLD_NEXT, name));
    return found;
}

std::uint64_t below(std::uint64_t count)
{
    auto& random = vantroFaults.plan->random;
    random ^= random << 13;
    random ^= random >> 7;
    random ^= random << 17;
    return (random >> 16) % count;
}

/// Whether it is the call at which the process is killed.
bool isLast()
{
    auto& left = vantroFaults.plan->callOfKill;
    return vantroFaults.isArmed && left > 0 && --left == 0;
}

void die()
{
    ::kill(::getpid(), SIGKILL);
}

/// One of the errors for a call that is to fail, 0 for one that is not.
int chosenError(Call call, std::initializer_list<int> errors)
{
    auto* const plan = vantroFaults.plan;
    if (!vantroFaults.isArmed)
        return 0;
    const auto kind = static_cast<std::size_t>(call);
    const bool isOfKind = plan->kindOfFault == kind;
    if (isOfKind)
        plan->kindOfFault = callCount;
    const bool isIt = isOfKind || (plan->callOfFault > 0 && --plan->callOfFault == 0);
    if (!isIt && (plan->odds == 0 || below(plan->odds) != 0))
        return 0;
    ++plan->faults[kind];
    const int error = errors.begin()[below(errors.size())];
    const bool isToBeRepeated = error == shortened || (error == EINTR && (call == Call::Read || call == Call::Write));
    plan->excuses += isToBeRepeated ? 0 : 1;
    return error;
}

/// How much is read or written of what was asked for: mostly less than most files are long.
size_t shortenedSize(size_t size)
{
    return size <= 1 ? size : 1 + below(std::min<size_t>(size - 1, std::uint64_t{1} << below(16)));
}

bool fails(Call call, std::initializer_list<int> errors)
{
    if (isLast())
        die();
    const int error = chosenError(call, errors);
    if (error != 0)
        errno = error;
    return error != 0;
}

ino_t inodeOf(int folder, const char* path)
{
    struct stat status = {};
    return ::fstatat(folder, path, &status, AT_EMPTY_PATH) == 0 ? status.st_ino : 0;
}

void setSynced(ino_t inode, bool isSynced)
{
    if (!vantroFaults.isArmed)
        return;
    auto& plan = *vantroFaults.plan;
    auto* const end = plan.unsynced.begin() + plan.unsyncedCount;
    auto* const known = std::find(plan.unsynced.begin(), end, inode);
    if (isSynced && known != end) {
        *known = *(end - 1);
        --plan.unsyncedCount;
    } else if (!isSynced && known == end && plan.unsyncedCount < plan.unsynced.size()) {
        *end = inode;
        ++plan.unsyncedCount;
    }
}

/// The folder in which a name is changed.
void setFolderUnsynced(int folder, const char* path)
{
    const std::string name(path);
    const auto slash = name.rfind('/');
    setSynced(slash == std::string::npos ? inodeOf(folder, "") : inodeOf(folder, name.substr(0, slash + 1).c_str()),
              false);
}

bool openFails(int flags)
{
    return (flags & O_CREAT) != 0 ? fails(Call::Open, {ENOSPC, EIO, EINTR, EMFILE})
                                  : fails(Call::Open, {EIO, EINTR, EMFILE});
}

mode_t modeOf(int flags, std::va_list arguments)
{
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

bool changesNamesOf(int folder, const char* path, Call call)
{
    if (fails(call, {ENOSPC, EIO}))
        return false;
    setFolderUnsynced(folder, path);
    return true;
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFails(flags) ? -1 : original<&::open>("open")(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFails(flags) ? -1 : original<&::openat>("openat")(folder, path, flags, mode);
}

ssize_t read(int file, void* buffer, size_t size)
{
    if (isLast())
        die();
    const int error = chosenError(Call::Read, {EIO, EINTR, shortened});
    if (error > 0) {
        errno = error;
        return -1;
    }
    return original<&::read>("read")(file, buffer, error == shortened ? shortenedSize(size) : size);
}

ssize_t write(int file, const void* data, size_t size)
{
    const auto originalWrite = original<&::write>("write");
    if (!vantroFaults.isArmed)
        return originalWrite(file, data, size);
    setSynced(inodeOf(file, ""), false);
    if (isLast()) {
        static_cast<void>(originalWrite(file, data, size / 2));
        die();
    }
    const int error = chosenError(Call::Write, {ENOSPC, EIO, EINTR, shortened});
    if (error > 0) {
        errno = error;
        return -1;
    }
    return originalWrite(file, data, error == shortened ? shortenedSize(size) : size);
}

/// What could not be written to the disk may be gone from memory as well.
int fsync(int file)
{
    if (fails(Call::Sync, {EIO, ENOSPC})) {
        const int error = errno;
        struct stat status = {};
        if (::fstatat(file, "", &status, AT_EMPTY_PATH) == 0 && S_ISREG(status.st_mode))
            static_cast<void>(::ftruncate(file, status.st_size / 2));
        errno = error;
        return -1;
    }
    setSynced(inodeOf(file, ""), true);
    return original<&::fsync>("fsync")(file);
}

int renameat(int from, const char* old, int to, const char* name) noexcept
{
    return changesNamesOf(to, name, Call::Rename) ? original<&::renameat>("renameat")(from, old, to, name) : -1;
}

int renameat2(int from, const char* old, int to, const char* name, unsigned int flags) noexcept
{
    return changesNamesOf(to, name, Call::Rename) ? original<&::renameat2>("renameat2")(from, old, to, name, flags)
                                                  : -1;
}

int rename(const char* old, const char* name) noexcept
{
    return ::renameat(AT_FDCWD, old, AT_FDCWD, name);
}

int unlinkat(int folder, const char* path, int flags) noexcept
{
    return changesNamesOf(folder, path, Call::Unlink) ? original<&::unlinkat>("unlinkat")(folder, path, flags) : -1;
}

int unlink(const char* path) noexcept
{
    return ::unlinkat(AT_FDCWD, path, 0);
}

int fchmod(int file, mode_t mode) noexcept
{
    return fails(Call::ChangeMode, {EIO}) ? -1 : original<&::fchmod>("fchmod")(file, mode);
}

int fchown(int file, uid_t owner, gid_t group) noexcept
{
    return fails(Call::ChangeOwner, {EIO}) ? -1 : original<&::fchown>("fchown")(file, owner, group);
}

int flock(int file, int operation) noexcept
{
    return fails(Call::Lock, {EINTR, ENOLCK}) ? -1 : original<&::flock>("flock")(file, operation);
}

int fstat(int file, struct stat* status) noexcept
{
    return fails(Call::Status, {EIO}) ? -1 : ::fstatat(file, "", status, AT_EMPTY_PATH);
}

int lstat(const char* path, struct stat* status) noexcept
{
    return fails(Call::Status, {EIO}) ? -1 : ::fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

int stat(const char* path, struct stat* status) noexcept
{
    return fails(Call::Status, {EIO}) ? -1 : ::fstatat(AT_FDCWD, path, status, 0);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    return fails(Call::MakeFolder, {EIO, ENOSPC}) ? -1 : original<&::mkdir>("mkdir")(path, mode);
}

DIR* fdopendir(int folder)
{
    return fails(Call::OpenFolder, {EIO, EMFILE}) ? nullptr : original<&::fdopendir>("fdopendir")(folder);
}

dirent* readdir(DIR* folder)
{
    return fails(Call::ReadFolder, {EIO}) ? nullptr : original<&::readdir>("readdir")(folder);
}

int close(int file)
{
    const int result = original<&::close>("close")(file);
    return fails(Call::Close, {EIO, EINTR}) ? -1 : result;
}

} // extern "C"
