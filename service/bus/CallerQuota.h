#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace vantro::service {

/// How many requests of each caller are under way, so that nobody takes the threads of all others. Any thread.
class CallerQuota : public std::enable_shared_from_this<CallerQuota>
{
  public:
    /// A place among the requests under way; free again when the last copy has gone.
    using Place = std::shared_ptr<const void>;

    explicit CallerQuota(std::size_t limit) : limit_(limit) {}

    /// Null when the caller has as many under way as it may.
    [[nodiscard]] Place placeFor(const std::string& caller);

  private:
    const std::size_t limit_;
    std::mutex mutex_;
    std::map<std::string, std::size_t> counts_;
};

} // namespace vantro::service
