#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace vantro::service {

/// Why each caller's last request failed, by the bus's unique names, which are never given twice. Keeps those of the
/// callers that asked last. Any thread.
class LastFailures
{
  public:
    /// `reason` is one of failure_reason; the empty one after a success.
    void note(const std::string& caller, std::string_view reason);

    /// Empty when there was no failure or nothing is known of the caller.
    [[nodiscard]] std::string of(const std::string& caller) const;

  private:
    struct Failure
    {
        std::string_view reason;
        std::uint64_t order = 0;
    };

    mutable std::mutex mutex_;
    std::map<std::string, Failure, std::less<>> failures_;
    std::uint64_t lastOrder_ = 0;
};

} // namespace vantro::service
