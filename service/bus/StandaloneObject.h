#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <sdbus-c++/sdbus-c++.h>

#include "LoggerManager/Logger.h"
#include "RequestFailure.h"
#include "bus/BusCredentials.h"
#include "bus/CallerQuota.h"
#include "bus/LastFailures.h"
#include "bus/RequestRunner.h"
#include "pam/PamStore.h"
#include "tokens/ChallengeResponse.h"

namespace vantro::service {

/// The service's object on the bus: takes the requests, has each authorised and done on a thread of its own, and
/// answers it in time. The bus thread never waits for anything.
class StandaloneObject
{
  public:
    /// Exports the object; what it is given must outlive it. Throws sdbus::Error.
    StandaloneObject(sdbus::IConnection& connection, ChallengeResponse& challengeResponse, PamStore& pamStore,
                     const Logger& logger);

  private:
    /// What a request gives: its value, and why it failed where it did.
    template <class Value>
    using Answerer = std::function<void(Value, const std::optional<RequestFailure>&)>;

    template <class Value>
    using Work = std::function<void(const Limit&, const Answerer<Value>&)>;

    void registerTokenMethods();
    void registerPamMethods();
    void registerDiagnosis();

    /// Registers a method that takes a serial and answers whether it was done.
    void registerSerialMethod(const char* name, Limit::Clock::duration duration,
                              void (ChallengeResponse::*method)(std::uint64_t, const Limit&,
                                                                const ChallengeResponse::Reply&));

    /// Takes one request: `work` is to call its argument once; `failed` is answered when it does not in time.
    template <class Value>
    void accept(std::string_view method, sdbus::Result<Value>&& result, Limit::Clock::duration duration,
                const Value& failed, Work<Value> work);

    /// A place among the requests of the sender's account, or of the newcomers while that is not known; null when there
    /// is none left.
    [[nodiscard]] CallerQuota::Place placeFor(const std::string& sender) const;
    [[nodiscard]] bool isAllowed(std::string_view method, const std::string& sender);

    ChallengeResponse& challengeResponse_;
    PamStore& pamStore_;
    const Logger logger_;
    BusCredentials credentials_;
    LastFailures lastFailures_;
    const std::shared_ptr<CallerQuota> quota_;
    // Requests hold on to the object and its connection: the runner ends first.
    std::unique_ptr<sdbus::IObject> object_;
    RequestRunner runner_;
};

} // namespace vantro::service
