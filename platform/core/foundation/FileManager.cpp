#include "foundation/FileManager.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "foundation/Identity.h"
#include "foundation/LastError.h"

namespace vantro {

std::optional<FileManagerItem> FileManagerItem::open(const std::filesystem::path& path, std::error_code& error)
{
    // As a place, not for reading: a file that can't be read has attributes, too.
    FileDescriptor file(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0) {
        error = lastError();
        return std::nullopt;
    }
    error.clear();
    if (S_ISLNK(status.st_mode))
        error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
    else if (!S_ISREG(status.st_mode))
        error = std::make_error_code(std::errc::not_supported);
    else if (status.st_nlink != 1)
        error = std::make_error_code(std::errc::too_many_links);
    if (error)
        return std::nullopt;
    return FileManagerItem(std::move(file), status.st_uid);
}

std::optional<std::string> FileManagerItem::ownerAccountName() const
{
    return loginName(owner_);
}

std::error_code FileManagerItem::setPosixPermissions(mode_t mode) const
{
    // The kernel's own name of the descriptor, since fchmod() takes none that was opened as a place.
    const std::string name = "/proc/self/fd/" + std::to_string(file_.get());
    return ::chmod(name.c_str(), mode) == 0 ? std::error_code() : lastError();
}

} // namespace vantro
