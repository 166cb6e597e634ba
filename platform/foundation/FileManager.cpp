#include "foundation/FileManager.h"

#include <cerrno>
#include <sys/stat.h>

#include "foundation/Identity.h"

namespace vantro::FileManager {

std::optional<FileAttributes> attributesOfItem(const std::filesystem::path& path, std::error_code& error)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        error = {errno, std::generic_category()};
        return std::nullopt;
    }
    error.clear();
    return FileAttributes{loginName(status.st_uid)};
}

std::error_code setPosixPermissions(const std::filesystem::path& path, mode_t mode)
{
    return ::chmod(path.c_str(), mode) == 0 ? std::error_code() : std::error_code(errno, std::generic_category());
}

} // namespace vantro::FileManager
