#pragma once

#include <chrono>
#include <string>

#include "ServiceFailure.h"

namespace vantro {

/// The check that the tool's own sign-in stands on. Holds no state.
class LoginAuthentication
{
  public:
    enum class AuthResult
    {
        /// One token is plugged in, it is an administrator key, and the service confirmed it.
        Success,
        /// One administrator key is plugged in, but the service did not confirm it, or could not be asked.
        CRFailure,
        NotConnected,
        MultipleConnected,
        /// One token is plugged in, but its serial is not known.
        SerialAcquisitionError,
        NotAdminYubiKey
    };

    /// The name of a result, as it stands in the log.
    [[nodiscard]] static std::string rawValue(AuthResult result);

    /// How long the service may take to confirm a token; it gives a person 15 seconds to touch one. Set by tests alone.
    static std::chrono::milliseconds validationLimit;

    /// Checks the token that is plugged in. Count comes before serial, serial before membership, and the service is
    /// asked last. Blocks until the result is known, at most validationLimit; a connection that fails ends the wait at
    /// once. Where the service did not confirm the token, `failure` says why. Main thread.
    [[nodiscard]] static AuthResult authenticate(ServiceFailure* failure = nullptr);

  private:
    [[nodiscard]] static AuthResult check(ServiceFailure* failure);
};

} // namespace vantro
