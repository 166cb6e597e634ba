#include "support/Accounts.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

constexpr auto passwdVariable = "NSS_WRAPPER_PASSWD";
constexpr auto groupVariable = "NSS_WRAPPER_GROUP";

} // namespace

void replaceAccounts(const std::string& passwd)
{
    std::string folder = (std::filesystem::temp_directory_path() / "vantro-accounts-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr)
        std::abort();
    writeFile(folder + "/passwd", passwd);
    writeFile(folder + "/group", "root:x:0:\nusers:x:100:\n");
    ::setenv(passwdVariable, (folder + "/passwd").c_str(), 1);
    ::setenv(groupVariable, (folder + "/group").c_str(), 1);
}

void removeAccounts()
{
    std::error_code ignored;
    if (const char* const passwd = std::getenv(passwdVariable))
        std::filesystem::remove_all(std::filesystem::path(passwd).parent_path(), ignored);
}

} // namespace vantro::tests
