#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <sys/types.h>

#include "foundation/Outcome.h"

namespace vantro {

/// Why a file or a folder is not used.
struct FileFailure
{
    enum class Kind
    {
        Missing,
        SymbolicLink,
        WrongType,
        WrongOwner,
        LooseMode,
        TooLarge,
        BadContent,
        DiskFull,
        SystemError
    };

    Kind kind = Kind::SystemError;
    /// For the log: what happened where, and what to do about it.
    std::string text;
};

/// Mode bits that let others than the owner write, or do anything at all.
inline constexpr mode_t writableByOthers = 022;
inline constexpr mode_t openToOthers = 077;

/// Says why the folder can't be trusted; nothing when it can. It must belong to the account of this process and have
/// none of the `forbidden` mode bits. Nobody but root and that account may be able to put another folder in its place:
/// all its parents belong to either and are writable by nobody else, and there is no symbolic link on the way. A parent
/// with the sticky bit may be writable by all, since nobody can rename or remove there what is not their own. The
/// installed service runs as root, so that it comes down to root alone.
[[nodiscard]] std::optional<FileFailure> folderFailure(const std::filesystem::path& folder, mode_t forbidden);

/// What is known of a file that was read.
struct TrustedFile
{
    std::string content;
    mode_t mode = 0;
    gid_t group = 0;
};

/// Reads a regular file of this process's account that has none of the `forbidden` mode bits and at most `limit`
/// bytes, without following a symbolic link.
[[nodiscard]] Outcome<TrustedFile, FileFailure> readTrustedFile(const std::filesystem::path& path, mode_t forbidden,
                                                                std::size_t limit);

/// The failure of a call of the operating system's.
[[nodiscard]] FileFailure systemFailure(const std::filesystem::path& path, std::error_code error);

} // namespace vantro
