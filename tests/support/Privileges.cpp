#include "support/Privileges.h"

#include <cerrno>
#include <exception>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <system_error>

namespace vantro::tests {

WithoutPrivileges::WithoutPrivileges()
{
    constexpr uid_t nobody = 65534;
    if (user_ == 0 && ::seteuid(nobody) != 0)
        throw std::system_error(errno, std::generic_category(), "seteuid");
}

WithoutPrivileges::~WithoutPrivileges()
{
    if (::geteuid() != user_ && ::seteuid(user_) != 0)
        std::terminate();
}

SmallFileSystem::SmallFileSystem(const std::filesystem::path& folder) : folder_(folder)
{
    const std::string options = "mode=0755,size=" + std::to_string(size);
    isMounted_ = ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                 ::mount("tmpfs", folder_.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

SmallFileSystem::~SmallFileSystem()
{
    if (isMounted_)
        ::umount2(folder_.c_str(), MNT_DETACH);
}

} // namespace vantro::tests
