#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <sys/types.h>

#include "foundation/FileDescriptor.h"

namespace vantro {

/// A file whose attributes the tool looks at and changes: the very one that was opened, whatever comes to stand under
/// its name meanwhile. Any thread.
class FileManagerItem
{
  public:
    /// Opens a regular file of one name without following a symbolic link. Nothing, with the reason in `error`, where
    /// there is none.
    [[nodiscard]] static std::optional<FileManagerItem> open(const std::filesystem::path& path, std::error_code& error);

    /// The login name of the file's owner; absent when the directory does not know the owner's id.
    [[nodiscard]] std::optional<std::string> ownerAccountName() const;

    [[nodiscard]] std::error_code setPosixPermissions(mode_t mode) const;

  private:
    FileManagerItem(FileDescriptor file, uid_t owner) : file_(std::move(file)), owner_(owner) {}

    FileDescriptor file_;
    uid_t owner_;
};

} // namespace vantro
