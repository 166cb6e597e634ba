#include "foundation/NotificationCenter.h"

#include <utility>

namespace vantro {

struct Observation::Entry
{
    explicit Entry(NotificationCenter::Handler function) : handler(std::move(function)) {}

    // A call begins under this mutex and runs outside it, so ending an observation neither races with the start of a
    // call nor waits for a call that itself waits for the thread that ends the observation.
    std::mutex mutex;
    bool hasEnded = false;
    NotificationCenter::Handler handler;
};

Observation::Observation(Observation&& other) noexcept : entry_(std::exchange(other.entry_, nullptr)) {}

Observation& Observation::operator=(Observation&& other) noexcept
{
    if (this != &other) {
        end();
        entry_ = std::exchange(other.entry_, nullptr);
    }
    return *this;
}

void Observation::end()
{
    if (!entry_)
        return;
    {
        const std::lock_guard lock(entry_->mutex);
        entry_->hasEnded = true;
    }
    entry_.reset();
}

NotificationCenter& NotificationCenter::defaultCenter()
{
    static auto* const center = new NotificationCenter;
    return *center;
}

Observation NotificationCenter::addObserver(const NotificationName& name, Handler handler)
{
    auto entry = std::make_shared<Observation::Entry>(std::move(handler));
    const std::lock_guard lock(mutex_);
    auto& entries = observers_[name];
    std::erase_if(entries, [](const auto& known) { return known.expired(); });
    entries.push_back(entry);
    return Observation(std::move(entry));
}

void NotificationCenter::post(const NotificationName& name, std::any object)
{
    std::vector<std::weak_ptr<Observation::Entry>> entries;
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = observers_.find(name); found != observers_.end())
            entries = found->second;
    }
    const Notification notification{name, std::move(object)};
    for (const auto& known : entries) {
        const auto entry = known.lock();
        if (!entry)
            continue;
        Handler handler;
        {
            const std::lock_guard lock(entry->mutex);
            if (entry->hasEnded)
                continue;
            handler = entry->handler;
        }
        handler(notification);
    }
}

} // namespace vantro
