#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace vantro {

/// The kinds of failure that the sender of a message may have to tell apart.
enum class NSXPCConnectionError
{
    /// An error reply, no reply, a reply of another type: nothing more is known than the error's name and text.
    ReplyInvalid,
    /// The service, or the bus on its behalf, does not serve this user.
    AccessDenied,
    /// The service is not installed, or can't be started.
    ServiceMissing,
    /// There is no system bus, or it has been lost.
    ConnectionInvalid
};

/// Why a message failed.
struct NSError
{
    NSXPCConnectionError code = NSXPCConnectionError::ReplyInvalid;
    /// The name of the error on the bus, for example org.freedesktop.DBus.Error.ServiceUnknown.
    std::string name;
    /// The text for people.
    std::string localizedDescription;

    /// Name and text.
    [[nodiscard]] std::string description() const { return name + ": " + localizedDescription; }
};

/// The one argument of a message: none, "t" or "ay".
using XPCArgument = std::variant<std::monostate, std::uint64_t, std::vector<std::uint8_t>>;

/// The one value of a reply: "b", "t" or "s".
using XPCValue = std::variant<bool, std::uint64_t, std::string>;

/// What a message's sender expects back.
enum class XPCReplyType
{
    Boolean,
    UnsignedInteger,
    String
};

/// What a message asks for: a method of one of the object's interfaces.
struct XPCMethod
{
    std::string interface;
    std::string name;
};

/// A connection to a service of the system bus, which starts the service when it is needed. One thread of its own talks
/// to the bus and runs every block and handler, so a block must not wait for another message of the same connection.
/// Messages don't wait for each other. Opened at resume(), again with each message while that fails; once an open
/// connection has lost the bus it is invalid for good.
class NSXPCConnection
{
  public:
    using ReplyBlock = std::function<void(const XPCValue&)>;
    using ErrorHandler = std::function<void(const NSError&)>;
    using Handler = std::function<void()>;

    /// `serviceName` is the bus name; `objectPath` the object that answers.
    NSXPCConnection(std::string serviceName, std::string objectPath);

    /// Ends the thread; messages that are under way are dropped without a call. Not from within a block.
    ~NSXPCConnection();
    NSXPCConnection(const NSXPCConnection&) = delete;
    NSXPCConnection& operator=(const NSXPCConnection&) = delete;

    /// Starts the connection's thread. Once, before the first message.
    void resume();

    /// Called when the bus is lost, once. Any thread.
    void setInvalidationHandler(Handler handler);

    /// Called when the service's name has lost its owner; the next message starts the service again. Any thread.
    void setInterruptionHandler(Handler handler);

    /// Sends a message and returns at once. Exactly one of the two is called, on the connection's thread: `reply` with
    /// the value, or `onError` when the message failed (no service, an error reply, the bus's own time-out of 25
    /// seconds, a reply of another type). Any thread.
    void send(XPCMethod method, XPCArgument argument, XPCReplyType type, ReplyBlock reply, ErrorHandler onError);

  private:
    class Worker;
    std::unique_ptr<Worker> worker_;
};

} // namespace vantro
