#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <sdbus-c++/sdbus-c++.h>

#include "LoggerManager/Logger.h"
#include "service/BusCredentials.h"
#include "service/ChallengeResponse.h"
#include "service/PamStore.h"
#include "service/RequestRunner.h"

namespace vantro::service {

/// The service's object on the bus: takes the six requests, has each authorised and done on a thread of its own, and
/// answers it in time. The bus thread never waits for anything.
class StandaloneObject
{
  public:
    /// Exports the object; what it is given must outlive it. Throws sdbus::Error.
    StandaloneObject(sdbus::IConnection& connection, ChallengeResponse& challengeResponse, PamStore& pamStore,
                     const Logger& logger);

  private:
    template <class Value>
    using Answerer = std::function<void(Value)>;

    void registerTokenMethods();
    void registerPamMethods();

    /// Takes one request: `work` is to call its argument once; `failed` is answered when it does not in time.
    template <class Value>
    void take(std::string_view method, sdbus::Result<Value>&& result, Limit::Clock::duration duration, Value failed,
              std::function<void(const Limit&, const Answerer<Value>&)> work);

    [[nodiscard]] bool isAllowed(std::string_view method, const std::string& sender);

    ChallengeResponse& challengeResponse_;
    PamStore& pamStore_;
    const Logger logger_;
    BusCredentials credentials_;
    // Requests hold on to the object and its connection: the runner ends first.
    std::unique_ptr<sdbus::IObject> object_;
    RequestRunner runner_;
};

} // namespace vantro::service
