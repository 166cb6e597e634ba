#include "SystemUsers.h"

#include <filesystem>
#include <system_error>

#include "foundation/Identity.h"

namespace vantro {
namespace {

std::vector<SystemUser> getSystemUsers()
{
    std::vector<SystemUser> users;
    for (const Identity& identity : queryUserIdentities()) {
        std::error_code error;
        if (std::filesystem::exists(identity.homeDirectory, error))
            users.push_back({identity.fullName, identity.posixName});
    }
    return users;
}

} // namespace

const std::vector<SystemUser>& SYSTEM_USERS()
{
    static const std::vector<SystemUser> users = getSystemUsers();
    return users;
}

} // namespace vantro
