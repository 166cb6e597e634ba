#include "usbip/CommandSocket.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <string_view>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/LastError.h"

namespace vantro::lab::usbip {

namespace {

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error(path + " is too long a name for a socket");
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    return address;
}

FileDescriptor newSocket()
{
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket) {
        throw std::system_error(lastError(), "socket");
    }
    return socket;
}

/// What the other end sends until it has no more to say.
std::string readToEnd(int socket)
{
    std::string text;
    std::array<char, 1024> part{};
    ssize_t count = 0;
    while ((count = ::recv(socket, part.data(), part.size(), 0)) > 0) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

void send(int socket, std::string_view text)
{
    // Whoever does not wait for the answer does not get it.
    [[maybe_unused]] const auto sent = ::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
    ::shutdown(socket, SHUT_WR);
}

} // namespace

CommandSocket::CommandSocket(const std::string& path) : listening_(newSocket())
{
    constexpr int backlog = 16;
    const sockaddr_un address = addressOf(path);
    ::unlink(path.c_str());
    if (::bind(listening_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listening_.get(), backlog) != 0) {
        throw std::system_error(lastError(), path);
    }
}

void CommandSocket::serve(const std::function<std::string(const std::string& line)>& answer) const
{
    const FileDescriptor connection(::accept4(listening_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!connection) {
        return;
    }
    const timeval patience{1, 0};
    ::setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (const std::string line = readToEnd(connection.get()); !line.empty()) {
        send(connection.get(), answer(line));
    }
}

std::string ask(const std::string& path, const std::string& line)
{
    const sockaddr_un address = addressOf(path);
    const FileDescriptor connection = newSocket();
    if (::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::system_error(lastError(), path);
    }
    send(connection.get(), line);
    return readToEnd(connection.get());
}

} // namespace vantro::lab::usbip
