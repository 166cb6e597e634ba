// Preloaded before umockdev's own library. Some of umockdev's habits stand in the way of a lab in which several
// processes and threads listen to one bed; they are cured here, in front of it:
//
// - it names a listener's socket after the descriptor number alone, so that two processes with the same number steal
//   each other's events: bind() gives the socket a name with the process id in it;
// - it aborts the sender as soon as a listener's queue is full: sendmsg() waits for room, and after a while drops the
//   event as the kernel would;
// - its fstatfs() finds the descriptor's path in memory that all threads share, so that libudev takes a device that is
//   there for none when another thread looks at another one meanwhile: one thread at a time.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <linux/netlink.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

constexpr int attemptMilliseconds = 10;
constexpr int attemptLimit = 500;

/// The path of a listener's socket begins with this; umockdev finds listeners by the pattern "event[0-9]*".
bool listenerPrefix(char* buffer, std::size_t size)
{
    const char* const bed = getenv("UMOCKDEV_DIR");
    if (bed == nullptr) {
        return false;
    }
    const int length = snprintf(buffer, size, "%s/event", bed);
    return length > 0 && static_cast<std::size_t>(length) < size;
}

bool isLocalSocket(int descriptor)
{
    int domain = 0;
    socklen_t size = sizeof domain;
    return getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 && domain == AF_UNIX;
}

bool isConnectedToListener(int descriptor)
{
    sockaddr_un peer{};
    socklen_t size = sizeof peer;
    char prefix[sizeof peer.sun_path];
    return getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 && peer.sun_family == AF_UNIX &&
           listenerPrefix(prefix, sizeof prefix) && strncmp(peer.sun_path, prefix, strlen(prefix)) == 0;
}

template <class Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

pthread_mutex_t statfsMutex = PTHREAD_MUTEX_INITIALIZER;

template <class Status>
int oneAtATime(int (*function)(int, Status*), int descriptor, Status* status)
{
    pthread_mutex_lock(&statfsMutex);
    const int result = function(descriptor, status);
    pthread_mutex_unlock(&statfsMutex);
    return result;
}

} // namespace

extern "C" int bind(int descriptor, const sockaddr* address, socklen_t size) noexcept
{
    using Bind = int (*)(int, const sockaddr*, socklen_t);
    static const auto nextBind = next<Bind>("bind");

    sockaddr_un listener{};
    char prefix[sizeof listener.sun_path];
    // A netlink address for what is a local socket: umockdev has put it in the place of the netlink one.
    if (address == nullptr || address->sa_family != AF_NETLINK || !isLocalSocket(descriptor) ||
        !listenerPrefix(prefix, sizeof prefix)) {
        return nextBind(descriptor, address, size);
    }
    listener.sun_family = AF_UNIX;
    const int length = snprintf(listener.sun_path, sizeof listener.sun_path, "%s%d-%d", prefix,
                                static_cast<int>(getpid()), descriptor);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof listener.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    unlink(listener.sun_path);
    return static_cast<int>(syscall(SYS_bind, descriptor, &listener, sizeof listener));
}

extern "C" ssize_t sendmsg(int descriptor, const msghdr* message, int flags)
{
    using SendMessage = ssize_t (*)(int, const msghdr*, int);
    static const auto nextSendMessage = next<SendMessage>("sendmsg");

    ssize_t sent = nextSendMessage(descriptor, message, flags);
    if (sent >= 0 || errno != EAGAIN || !isConnectedToListener(descriptor)) {
        return sent;
    }
    for (int attempt = 0; attempt < attemptLimit; ++attempt) {
        pollfd room{descriptor, POLLOUT, 0};
        poll(&room, 1, attemptMilliseconds);
        sent = nextSendMessage(descriptor, message, flags);
        if (sent >= 0 || errno != EAGAIN) {
            return sent;
        }
    }
    std::size_t size = 0;
    for (std::size_t part = 0; part < message->msg_iovlen; ++part) {
        size += message->msg_iov[part].iov_len;
    }
    return static_cast<ssize_t>(size);
}

extern "C" int fstatfs(int descriptor, struct statfs* status) noexcept
{
    static const auto nextFstatfs = next<int (*)(int, struct statfs*)>("fstatfs");
    return oneAtATime(nextFstatfs, descriptor, status);
}

extern "C" int fstatfs64(int descriptor, struct statfs64* status) noexcept
{
    static const auto nextFstatfs64 = next<int (*)(int, struct statfs64*)>("fstatfs64");
    return oneAtATime(nextFstatfs64, descriptor, status);
}
