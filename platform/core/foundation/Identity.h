#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace vantro {

/// One record of the user class of the identity directory (NSS).
struct Identity
{
    /// The display name: the first GECOS field, with its "&" standing for the capitalised login name; may be empty.
    std::string fullName;
    /// The login name.
    std::string posixName;
    /// The home folder as the directory has it; may be empty.
    std::filesystem::path homeDirectory;
};

/// The range of user ids that belong to people, both ends included.
struct UserIdRange
{
    std::uint32_t first = 1000;
    std::uint32_t last = 60000;
};

/// UID_MIN and UID_MAX of a login.defs text; what it does not set keeps Debian's values.
[[nodiscard]] UserIdRange userIdRange(std::string_view loginDefs);

/// The same of this machine's /etc/login.defs.
[[nodiscard]] UserIdRange localUserIdRange();

/// Runs the identity query: every user of the directory (getpwent) whose id belongs to people by /etc/login.defs, in
/// the directory's order. A second record of a name can't be looked up by that name and is left out. getpwent has one
/// cursor a process: one thread at a time.
[[nodiscard]] std::vector<Identity> queryUserIdentities();

/// Login name of a user id; nothing where the directory does not know it. Any thread.
[[nodiscard]] std::optional<std::string> loginName(uid_t user);

/// Id of a group; nothing where the directory does not know its name. Any thread.
[[nodiscard]] std::optional<gid_t> groupId(const std::string& name);

/// User id of a login name; nothing where the directory does not know it. Any thread.
[[nodiscard]] std::optional<uid_t> userId(const std::string& loginName);

/// Login name of the process's user; the decimal user id where the directory does not know it.
[[nodiscard]] std::string NSUserName();

/// Display name of the process's user; empty where the directory has none.
[[nodiscard]] std::string NSFullUserName();

} // namespace vantro
