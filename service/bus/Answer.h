#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "LoggerManager/Logger.h"

namespace vantro::service {

/// The one answer of one request: whoever gives it first. Any thread.
template <class Value>
class Answer
{
  public:
    Answer(sdbus::Result<Value>&& result, const Logger& logger) : result_(std::move(result)), logger_(logger) {}

    /// False when it was given before. `first` is called before it is sent, and not where it was given before.
    bool give(const Value& value, const std::function<void()>& first)
    {
        return send([&] {
            first();
            result_.returnResults(value);
        });
    }

    void refuse(const char* name, const std::string& text)
    {
        send([this, name, &text] { result_.returnError(sdbus::Error(name, text)); });
    }

  private:
    bool send(const std::function<void()>& sending)
    {
        if (isGiven_.test_and_set())
            return false;
        try {
            sending();
        } catch (const sdbus::Error& error) {
            logger_.error("The answer can't be sent: " + error.getMessage(), "send(_:)");
        }
        return true;
    }

    const sdbus::Result<Value> result_;
    const Logger logger_;
    std::atomic_flag isGiven_;
};

namespace bus_error {
inline constexpr const char* accessDenied = "org.freedesktop.DBus.Error.AccessDenied";
inline constexpr const char* limitsExceeded = "org.freedesktop.DBus.Error.LimitsExceeded";
inline constexpr const char* invalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";
inline constexpr const char* failed = "org.freedesktop.DBus.Error.Failed";
} // namespace bus_error

} // namespace vantro::service
