#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include <sys/types.h>

namespace vantro {

/// What the tool asks about files beyond reading and replacing them. Any thread.
namespace FileManager {

/// The attributes of a file that the tool looks at.
struct FileAttributes
{
    /// The login name of the file's owner; absent when the directory does not know the owner's id.
    std::optional<std::string> ownerAccountName;
};

/// Follows symbolic links. Nothing, with the reason in `error`, when the file can't be looked at.
[[nodiscard]] std::optional<FileAttributes> attributesOfItem(const std::filesystem::path& path, std::error_code& error);

[[nodiscard]] std::error_code setPosixPermissions(const std::filesystem::path& path, mode_t mode);

} // namespace FileManager
} // namespace vantro
