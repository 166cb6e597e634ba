#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace vantro::service {

/// Who calls, as the bus knows it from the caller's connection.
struct Caller
{
    uid_t userId = 0;
    /// The primary group and the others.
    std::vector<gid_t> groupIds;
};

/// Whom a request is for.
enum class Requirement
{
    /// Root, the account that the service itself runs as, and the members of the administrators' group.
    Administrator,
    /// Whatever account, for itself alone; root and the account that the service itself runs as, for all (maySignIn()).
    Account
};

/// What a method of the service requires of its caller; nothing for a name that is no method.
[[nodiscard]] std::optional<Requirement> requirementOf(std::string_view method);

/// Whether the caller may call the method. Whoever is not known to be allowed is not: an unknown method, and a system
/// without the administrators' group for everybody who needs it.
[[nodiscard]] bool mayCall(std::string_view method, const Caller& caller);

/// Whether the caller may ask whether `account` is let in. Any thread.
[[nodiscard]] bool maySignIn(const Caller& caller, const std::string& account);

} // namespace vantro::service
