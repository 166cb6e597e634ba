#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vantro {

/// The name of a notification; constants of this type stand beside whoever posts them.
using NotificationName = std::string;

/// What an observer is given: the name and whatever the poster sent along (nothing, as a rule).
struct Notification
{
    NotificationName name;
    std::any object;
};

class NotificationCenter;

/// An observer's registration. Destroying it ends the observation: no call begins after that. A call that another
/// thread has begun before may still be running, so a handler that is called on foreign threads owns what it uses.
class Observation
{
  public:
    Observation() = default;
    ~Observation() { end(); }
    Observation(Observation&& other) noexcept;
    Observation& operator=(Observation&& other) noexcept;
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

    void end();

  private:
    friend class NotificationCenter;
    struct Entry;
    explicit Observation(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}
    std::shared_ptr<Entry> entry_;
};

/// Hands notifications from whoever posts them to whoever observes their name. Any thread; a post calls every observer
/// on the posting thread, in the order of their registration, and returns when the last has returned. Observers may
/// post, register and unregister inside a call.
class NotificationCenter
{
  public:
    using Handler = std::function<void(const Notification&)>;

    /// The process's one centre; never destroyed.
    static NotificationCenter& defaultCenter();

    [[nodiscard]] Observation addObserver(const NotificationName& name, Handler handler);

    void post(const NotificationName& name, std::any object = {});

  private:
    std::mutex mutex_;
    std::map<NotificationName, std::vector<std::weak_ptr<Observation::Entry>>> observers_;
};

} // namespace vantro
