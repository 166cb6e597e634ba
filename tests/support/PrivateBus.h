#pragma once

#include <optional>
#include <string>

#include <sys/types.h>

#include "support/BusDaemon.h"
#include "support/ServicePrefix.h"

namespace vantro::tests {

/// A system bus of the test's own, with the rules of the machine's one and the policy file that the packages install;
/// it starts the service of a prefix when somebody calls it.
class PrivateBus
{
  public:
    enum class Policy
    {
        /// The installed one; a test that does not run as root may own the name and call the service as well.
        Installed,
        /// Everybody may call the service, so that its own check is all there is.
        Open
    };

    /// Throws when the bus does not come up.
    explicit PrivateBus(const ServicePrefix& prefix, Policy policy = Policy::Installed);
    /// Ends the service and the bus, and waits for both.
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return daemon_.address(); }

    /// What the service wrote to its log so far.
    [[nodiscard]] std::string log() const { return daemon_.log(); }

    /// The process id of the running service.
    [[nodiscard]] std::optional<pid_t> servicePid() const;

    /// Sends the service a signal, waits for its end and answers its wait status; nothing when none is running.
    std::optional<int> endService(int signal) const;

    /// Ends the bus alone and answers the wait status of the service that lost it; nothing when none was running.
    std::optional<int> endBus();

  private:
    BusDaemon daemon_;
};

} // namespace vantro::tests
