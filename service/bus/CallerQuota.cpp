#include "bus/CallerQuota.h"

namespace vantro::service {

CallerQuota::Place CallerQuota::placeFor(const std::string& caller)
{
    const std::lock_guard lock(mutex_);
    const auto count = counts_.try_emplace(caller).first;
    if (count->second >= limit_)
        return nullptr;
    ++count->second;
    return {this, [self = shared_from_this(), caller](const void*) {
                const std::lock_guard unlock(self->mutex_);
                if (--self->counts_.at(caller) == 0)
                    self->counts_.erase(caller);
            }};
}

} // namespace vantro::service
