#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace vantro {

/// The result cell of one request that is waited for: a semaphore and the value, on the heap, shared by the waiting
/// caller and the reply block. The reply block holds a Sender; when the last copy of that goes away without a value,
/// the request has failed and nobody will ever answer.
template <class Value>
class ReplyCell
{
    struct State
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<Value> value;
        bool isAbandoned = false;
    };

    struct Promise
    {
        explicit Promise(std::shared_ptr<State> shared) : state(std::move(shared)) {}
        ~Promise()
        {
            const std::lock_guard lock(state->mutex);
            state->isAbandoned = true;
            state->changed.notify_all();
        }
        Promise(const Promise&) = delete;
        Promise& operator=(const Promise&) = delete;

        std::shared_ptr<State> state;
    };

  public:
    /// Stores the reply. Copies share one cell; any thread.
    class Sender
    {
      public:
        void operator()(Value value) const
        {
            const std::lock_guard lock(promise_->state->mutex);
            promise_->state->value = std::move(value);
            promise_->state->changed.notify_all();
        }

      private:
        friend class ReplyCell;
        explicit Sender(std::shared_ptr<Promise> promise) : promise_(std::move(promise)) {}
        std::shared_ptr<Promise> promise_;
    };

    /// The one sender of this cell; to be moved or copied into the reply block. May be called once.
    [[nodiscard]] Sender sender() const { return Sender(std::make_shared<Promise>(state_)); }

    /// Waits for the reply until `limit` has passed. A request that has failed is waited for like a silent one.
    [[nodiscard]] std::optional<Value> waitFor(std::chrono::steady_clock::duration limit) const
    {
        std::unique_lock lock(state_->mutex);
        state_->changed.wait_for(lock, limit, [this] { return state_->value.has_value(); });
        return state_->value;
    }

    /// Waits for the reply until it is there, the request has failed, or `limit` has passed.
    [[nodiscard]] std::optional<Value> waitForReplyOrFailure(std::chrono::steady_clock::duration limit) const
    {
        std::unique_lock lock(state_->mutex);
        state_->changed.wait_for(lock, limit, [this] { return state_->value.has_value() || state_->isAbandoned; });
        return state_->value;
    }

    /// Waits without a limit until the reply is there or the request has failed.
    [[nodiscard]] std::optional<Value> waitForReplyOrFailure() const
    {
        std::unique_lock lock(state_->mutex);
        state_->changed.wait(lock, [this] { return state_->value.has_value() || state_->isAbandoned; });
        return state_->value;
    }

  private:
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace vantro
