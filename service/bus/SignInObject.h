#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include <sdbus-c++/sdbus-c++.h>

#include "LoggerManager/Logger.h"
#include "bus/Answer.h"
#include "bus/Authorisation.h"
#include "bus/CallerQuota.h"
#include "bus/RequestRunner.h"
#include "signin/SignIn.h"

namespace vantro::service {

/// The interface for signing in, which everybody may call: one request a connection, some an account, and on threads
/// of its own, so that whoever floods it keeps neither root nor the administrators' methods waiting. A caller that
/// leaves the bus ends its request.
class SignInObject
{
  public:
    /// Exports the interface; what it is given must outlive it. Throws sdbus::Error.
    SignInObject(sdbus::IConnection& connection, SignIn& signIn, const Logger& logger);

  private:
    struct Request;
    using RequestPointer = std::shared_ptr<Request>;

    // On the bus thread.
    void take(sdbus::Result<std::string>&& result, std::string account, std::uint32_t waitSeconds);
    void askWhoCalls(const RequestPointer& request);
    void begin(const RequestPointer& request, uid_t userId);
    void endRequestOf(const std::string& sender);

    // On a thread of the request's own.
    void run(const RequestPointer& request, uid_t userId, const Limit& limit);
    void tellWanted(const std::string& sender, SignIn::Wanted wanted);

    void refuse(Request& request, const char* error, const char* text) const;
    void forget(const std::string& sender);

    SignIn& signIn_;
    const Logger logger_;
    const std::shared_ptr<CallerQuota> quotaOfRoot_;
    const std::shared_ptr<CallerQuota> quotaOfOthers_;
    const std::shared_ptr<CallerQuota> quotaOfAccounts_;
    std::mutex mutex_;
    std::map<std::string, RequestPointer> requests_;
    std::unique_ptr<sdbus::IProxy> bus_;
    // Requests hold on to the object and its connection: the runner ends first.
    std::unique_ptr<sdbus::IObject> object_;
    RequestRunner runner_;
};

} // namespace vantro::service
