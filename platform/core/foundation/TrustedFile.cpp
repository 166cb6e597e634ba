#include "foundation/TrustedFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "foundation/DurableFile.h"
#include "foundation/FileDescriptor.h"
#include "foundation/LastError.h"

namespace vantro {
namespace {

using Kind = FileFailure::Kind;

FileFailure failure(Kind kind, const std::filesystem::path& path, const std::string& what)
{
    return {kind, path.string() + " " + what};
}

bool isTrustedOwner(uid_t owner)
{
    return owner == 0 || owner == ::geteuid();
}

std::optional<FileFailure> parentFailure(const std::filesystem::path& path, const struct stat& status)
{
    if (!isTrustedOwner(status.st_uid))
        return failure(Kind::WrongOwner, path, "belongs to user id " + std::to_string(status.st_uid) + ".");
    if ((status.st_mode & writableByOthers) != 0 && (status.st_mode & S_ISVTX) == 0)
        return failure(Kind::LooseMode, path, "is writable by others; take that away (chmod go-w).");
    return std::nullopt;
}

std::optional<FileFailure> ownFailure(const std::filesystem::path& path, const struct stat& status, mode_t forbidden)
{
    if (status.st_uid != ::geteuid())
        return failure(Kind::WrongOwner, path, "belongs to user id " + std::to_string(status.st_uid) + ".");
    if ((status.st_mode & forbidden) != 0)
        return failure(Kind::LooseMode, path,
                       forbidden == openToOthers ? "is open to others; take that away (chmod go=)."
                                                 : "is writable by others; take that away (chmod go-w).");
    return std::nullopt;
}

} // namespace

FileFailure systemFailure(const std::filesystem::path& path, std::error_code error)
{
    const auto told = [&path, error](Kind kind) {
        return failure(kind, path, "can't be used: " + error.message() + ".");
    };
    switch (error.value()) {
    case ENOENT:
        return told(Kind::Missing);
    case ELOOP:
        return told(Kind::SymbolicLink);
    case ENOSPC:
    case EDQUOT:
        return told(Kind::DiskFull);
    default:
        return told(Kind::SystemError);
    }
}

std::optional<FileFailure> folderFailure(const std::filesystem::path& folder, mode_t forbidden)
{
    if (!folder.is_absolute())
        return failure(Kind::Missing, folder, "is no absolute path; the information dictionary must name the folder.");
    FileDescriptor place;
    std::filesystem::path path;
    struct stat status = {};
    for (const auto& name : folder.lexically_normal()) {
        if (name.empty())
            continue;
        if (place)
            if (auto refusal = parentFailure(path, status))
                return refusal;
        path /= name;
        place = FileDescriptor(::openat(place ? place.get() : AT_FDCWD, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (!place || ::fstat(place.get(), &status) != 0)
            return systemFailure(path, lastError());
        if (S_ISLNK(status.st_mode))
            return failure(Kind::SymbolicLink, path, "is a symbolic link; name the folder itself.");
        if (!S_ISDIR(status.st_mode))
            return failure(Kind::WrongType, path, "is no folder.");
    }
    return ownFailure(path, status, forbidden);
}

Outcome<TrustedFile, FileFailure> readTrustedFile(const std::filesystem::path& path, mode_t forbidden,
                                                  std::size_t limit)
{
    // O_NONBLOCK keeps a pipe that lies there from holding up the caller.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0)
        return systemFailure(path, lastError());
    if (!S_ISREG(status.st_mode))
        return failure(Kind::WrongType, path, "is no regular file.");
    if (const auto refusal = ownFailure(path, status, forbidden))
        return *refusal;

    std::error_code error;
    auto content = readFile(file, limit, error);
    if (error == std::errc::file_too_large)
        return failure(Kind::TooLarge, path, "is larger than " + std::to_string(limit) + " bytes.");
    if (!content)
        return systemFailure(path, error);
    return TrustedFile{std::move(*content), status.st_mode & 07777, status.st_gid};
}

} // namespace vantro
