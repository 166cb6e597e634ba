#include "xpc/NSXPCConnection.h"

#include <array>
#include <deque>
#include <mutex>
#include <optional>
#include <poll.h>
#include <thread>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "foundation/WakeEvent.h"

namespace vantro {
namespace {

struct Message
{
    XPCMethod method;
    XPCArgument argument;
    XPCReplyType type = XPCReplyType::Boolean;
    NSXPCConnection::ReplyBlock reply;
    NSXPCConnection::ErrorHandler onError;
};

NSXPCConnectionError codeOf(const std::string& errorName)
{
    if (errorName == "org.freedesktop.DBus.Error.AccessDenied")
        return NSXPCConnectionError::AccessDenied;
    // A bus that starts its services by systemd hands on what systemd says, for a masked unit for example.
    constexpr std::array missing = {"org.freedesktop.DBus.Error.ServiceUnknown",
                                    "org.freedesktop.DBus.Error.NameHasNoOwner", "org.freedesktop.DBus.Error.Spawn.",
                                    "org.freedesktop.systemd1."};
    for (const char* const beginning : missing)
        if (errorName.starts_with(beginning))
            return NSXPCConnectionError::ServiceMissing;
    return NSXPCConnectionError::ReplyInvalid;
}

NSError asNSError(const sdbus::Error& error)
{
    return {codeOf(error.getName()), error.getName(), error.getMessage()};
}

void append(sdbus::MethodCall& call, const XPCArgument& argument)
{
    if (const auto* const number = std::get_if<std::uint64_t>(&argument))
        call << *number;
    else if (const auto* const bytes = std::get_if<std::vector<std::uint8_t>>(&argument))
        call << *bytes;
}

template <class Value>
XPCValue read(sdbus::MethodReply& reply)
{
    Value value = {};
    reply >> value;
    return value;
}

/// Throws sdbus::Error when the reply holds something else.
XPCValue readValue(sdbus::MethodReply& reply, XPCReplyType type)
{
    switch (type) {
    case XPCReplyType::Boolean:
        return read<bool>(reply);
    case XPCReplyType::UnsignedInteger:
        return read<std::uint64_t>(reply);
    case XPCReplyType::String:
        break;
    }
    return read<std::string>(reply);
}

void deliver(const Message& message, sdbus::MethodReply& reply, const sdbus::Error* error)
{
    NSError failure;
    try {
        if (error == nullptr) {
            const XPCValue value = readValue(reply, message.type);
            message.reply(value);
            return;
        }
        failure = asNSError(*error);
    } catch (const sdbus::Error& exception) {
        failure = asNSError(exception);
    }
    message.onError(failure);
}

} // namespace

/// All that the connection's thread works on. The bus connection itself is touched by that thread alone, which waits
/// for the bus in a loop of its own. The library's loop, on a thread that it makes, is not used, since
/// - the library holds one mutex while it runs a callback: with another thread at work there, whoever sends would wait
///   for as long as somebody's block takes. Here a sender takes no lock but that of the queue;
/// - a reply that another thread receives can be there before the call that asked for it has been noted. Calls and
///   replies of one thread have an order;
/// - when the bus goes, its loop ends by an exception that nobody can catch, and the program with it. Here the
///   connection becomes invalid.
class NSXPCConnection::Worker
{
  public:
    Worker(std::string serviceName, std::string objectPath)
        : serviceName_(std::move(serviceName)), objectPath_(std::move(objectPath))
    {
    }

    ~Worker()
    {
        {
            const std::lock_guard lock(mutex_);
            isStopping_ = true;
        }
        wakeEvent_.wake();
        if (thread_.joinable())
            thread_.join();
    }

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void start()
    {
        thread_ = std::thread([this] { run(); });
    }

    void setHandler(Handler Worker::*which, Handler handler)
    {
        const std::lock_guard lock(mutex_);
        this->*which = std::move(handler);
    }

    void enqueue(Message message)
    {
        {
            const std::lock_guard lock(mutex_);
            messages_.push_back(std::move(message));
        }
        wakeEvent_.wake();
    }

    Handler onInvalidation;
    Handler onInterruption;

  private:
    void run()
    {
        static_cast<void>(open());
        while (waitForWork()) {
            for (auto message = takeMessage(); message; message = takeMessage())
                sendNow(std::move(*message));
            processBus();
        }
        proxy_.reset();
        match_.reset();
        connection_.reset();
    }

    /// Opens the bus; the error where it can't be done.
    NSError open()
    {
        try {
            auto connection = sdbus::createSystemBusConnection();
            match_ =
                connection->addMatch("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                                     "member='NameOwnerChanged',arg0='" +
                                         serviceName_ + "'",
                                     [this](sdbus::Message& signal) { onNameOwnerChanged(signal); });
            proxy_ = sdbus::createProxy(*connection, serviceName_, objectPath_);
            connection_ = std::move(connection);
            return {};
        } catch (const sdbus::Error& error) {
            match_.reset();
            return {NSXPCConnectionError::ConnectionInvalid, error.getName(), error.getMessage()};
        }
    }

    void onNameOwnerChanged(sdbus::Message& signal)
    {
        std::string name;
        std::string oldOwner;
        std::string newOwner;
        signal >> name >> oldOwner >> newOwner;
        if (!oldOwner.empty() && newOwner.empty())
            call(&Worker::onInterruption);
    }

    void call(Handler Worker::*which)
    {
        Handler handler;
        {
            const std::lock_guard lock(mutex_);
            handler = this->*which;
        }
        if (handler)
            handler();
    }

    std::optional<Message> takeMessage()
    {
        const std::lock_guard lock(mutex_);
        if (messages_.empty() || isStopping_)
            return std::nullopt;
        Message message = std::move(messages_.front());
        messages_.pop_front();
        return message;
    }

    bool waitForWork()
    {
        pollfd polled[2] = {{wakeEvent_.fileDescriptor(), POLLIN, 0}, {-1, 0, 0}};
        int timeout = -1;
        if (connection_) {
            const auto data = connection_->getEventLoopPollData();
            polled[1] = {data.fd, data.events, 0};
            timeout = data.getPollTimeout();
        }
        ::poll(polled, 2, timeout);
        wakeEvent_.clear();
        const std::lock_guard lock(mutex_);
        return !isStopping_;
    }

    void processBus()
    {
        if (!connection_)
            return;
        try {
            while (connection_->processPendingRequest())
                continue;
        } catch (const sdbus::Error&) {
            invalidate();
        }
    }

    void invalidate()
    {
        isInvalid_ = true;
        // Messages that were under way get no reply any more; their blocks go with the proxy, after their errors.
        auto underWay = std::exchange(underWay_, {});
        proxy_.reset();
        match_.reset();
        connection_.reset();
        for (const auto& message : underWay)
            message->onError(invalidError());
        call(&Worker::onInvalidation);
    }

    static NSError invalidError()
    {
        return {NSXPCConnectionError::ConnectionInvalid, "org.freedesktop.DBus.Error.Disconnected",
                "The connection to the system bus has been lost."};
    }

    void sendNow(Message taken)
    {
        const auto message = std::make_shared<const Message>(std::move(taken));
        if (isInvalid_) {
            message->onError(invalidError());
            return;
        }
        if (!connection_) {
            if (const NSError error = open(); !connection_) {
                message->onError(error);
                return;
            }
        }
        try {
            auto methodCall = proxy_->createMethodCall(message->method.interface, message->method.name);
            append(methodCall, message->argument);
            underWay_.push_back(message);
            proxy_->callMethod(methodCall, [this, message](sdbus::MethodReply& reply, const sdbus::Error* error) {
                std::erase(underWay_, message);
                deliver(*message, reply, error);
            });
        } catch (const sdbus::Error& error) {
            std::erase(underWay_, message);
            message->onError(asNSError(error));
        }
    }

    const std::string serviceName_;
    const std::string objectPath_;
    WakeEvent wakeEvent_;
    std::thread thread_;

    std::mutex mutex_;
    std::deque<Message> messages_;
    bool isStopping_ = false;

    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IProxy> proxy_;
    sdbus::Slot match_;
    std::vector<std::shared_ptr<const Message>> underWay_;
    bool isInvalid_ = false;
};

NSXPCConnection::NSXPCConnection(std::string serviceName, std::string objectPath)
    : worker_(std::make_unique<Worker>(std::move(serviceName), std::move(objectPath)))
{
}

NSXPCConnection::~NSXPCConnection() = default;

void NSXPCConnection::resume()
{
    worker_->start();
}

void NSXPCConnection::setInvalidationHandler(Handler handler)
{
    worker_->setHandler(&Worker::onInvalidation, std::move(handler));
}

void NSXPCConnection::setInterruptionHandler(Handler handler)
{
    worker_->setHandler(&Worker::onInterruption, std::move(handler));
}

void NSXPCConnection::send(XPCMethod method, XPCArgument argument, XPCReplyType type, ReplyBlock reply,
                           ErrorHandler onError)
{
    worker_->enqueue({std::move(method), std::move(argument), type, std::move(reply), std::move(onError)});
}

} // namespace vantro
