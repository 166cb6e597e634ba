#pragma once

#include <string>
#include <vector>

namespace vantro {

/// A local account that a token can be assigned to.
struct SystemUser
{
    /// The display name; may be empty.
    std::string fullName;
    /// The login name.
    std::string accountName;
};

/// The local accounts whose home folder exists, in the directory's order. Loaded once, by the first reader; another
/// reader waits for that. Any thread.
const std::vector<SystemUser>& SYSTEM_USERS();

} // namespace vantro
