#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "AppDataSet.h"
#include "ServiceFailure.h"
#include "foundation/ReplyCell.h"

namespace vantro {

/// One request to the privileged service that its caller waits for, and why it failed. Sent when it is made. Any thread
/// but the connection's.
template <class Value>
class ServiceRequest
{
    using Duration = std::chrono::steady_clock::duration;

  public:
    /// `send` is called at once with the proxy to send the request through and the block to take the reply; a reply of
    /// false or 0 is a failure.
    template <class Send>
    explicit ServiceRequest(const Send& send)
    {
        auto& service = AppDataSet::shared().service();
        const auto tell = failure_.sender();
        ServiceProxy proxy = service.withErrorHandler([tell](const NSError& error) { tell(ServiceFailure(error)); });
        send(proxy, [reply = reply_.sender(), tell, &service](Value value) {
            reply(value);
            // Asked at once, on the connection's own thread, since the service only tells the reason of its last
            // failure: that must still be this one.
            if (value == Value())
                service.lastFailureWithReply([tell](const std::string& word) { tell(ServiceFailure(word)); });
        });
    }

    /// Waits for the reply until `limit` has passed since the call. A request that has failed is waited for like a
    /// silent one.
    [[nodiscard]] std::optional<Value> waitFor(Duration limit) const { return reply_.waitFor(limit); }

    /// Waits for the reply until it is there, the request has failed, or `limit` has passed since the call; without
    /// `limit` as long as it takes.
    [[nodiscard]] std::optional<Value> waitForReplyOrFailure(Duration limit) const
    {
        return reply_.waitForReplyOrFailure(limit);
    }
    [[nodiscard]] std::optional<Value> waitForReplyOrFailure() const { return reply_.waitForReplyOrFailure(); }

    /// Why the request failed. Waits until that is known or can't be told, or `limit` has passed since the request was
    /// sent.
    [[nodiscard]] ServiceFailure failure(Duration limit) const
    {
        return failure_.waitForReplyOrFailure(sent_ + limit - std::chrono::steady_clock::now())
            .value_or(ServiceFailure());
    }

  private:
    const std::chrono::steady_clock::time_point sent_ = std::chrono::steady_clock::now();
    ReplyCell<Value> reply_;
    ReplyCell<ServiceFailure> failure_;
};

} // namespace vantro
