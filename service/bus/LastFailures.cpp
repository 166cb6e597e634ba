#include "bus/LastFailures.h"

#include <algorithm>
#include <cstddef>

namespace vantro::service {
namespace {
constexpr std::size_t callersKept = 64;
}

void LastFailures::note(const std::string& caller, std::string_view reason)
{
    const std::lock_guard lock(mutex_);
    if (reason.empty()) {
        failures_.erase(caller);
        return;
    }
    failures_[caller] = {reason, ++lastOrder_};
    if (failures_.size() > callersKept)
        failures_.erase(std::min_element(failures_.begin(), failures_.end(), [](const auto& left, const auto& right) {
            return left.second.order < right.second.order;
        }));
}

std::string LastFailures::of(const std::string& caller) const
{
    const std::lock_guard lock(mutex_);
    const auto found = failures_.find(caller);
    return std::string(found == failures_.end() ? std::string_view() : found->second.reason);
}

} // namespace vantro::service
