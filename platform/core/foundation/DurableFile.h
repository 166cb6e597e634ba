#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/types.h>

#include "foundation/FileDescriptor.h"

namespace vantro {

/// How the new file of a replacement is made.
struct ReplacementOptions
{
    /// Mode bits of the new file, set before any content is written, whatever the umask.
    mode_t mode = 0600;
    /// Owner and group of the new file, set before any content is written; absent leaves them the process's own.
    std::optional<uid_t> owner;
    std::optional<gid_t> group;
    /// Where the file that is replaced goes, in the same folder and the same instant, instead of being removed. It must
    /// be there; and where something has this name already, nothing is replaced (std::errc::file_exists).
    std::optional<std::filesystem::path> aside;
};

/// How a replacement ended.
struct Replacement
{
    /// Whether the new file is in place.
    bool isDone = false;
    /// Why it is not; where it is, why it may not outlast a loss of power.
    std::error_code error;

    [[nodiscard]] bool isDurable() const { return isDone && !error; }
};

/// Replaces the file at `path` whole and durably: a new file in the same folder (O_EXCL, no following of links), fsync,
/// rename, fsync of the folder. Whatever fails, and whenever the process is killed, the old file or the new one is
/// there. Where nothing is replaced the new file is removed again; what a kill left of an earlier replacement of the
/// same file is removed first.
[[nodiscard]] Replacement replaceFile(const std::filesystem::path& path, std::string_view content,
                                      const ReplacementOptions& options);

/// Removes what kills have left of replacements in a folder: the new files that never took their place, of those files
/// whose name `isOwn` knows. One that is just being written, by whatever process, stays.
void removeUnfinishedReplacements(const std::filesystem::path& folder,
                                  const std::function<bool(std::string_view name)>& isOwn);

/// Whether a file may be reached by a symbolic link as the last name of its path, and have further names.
enum class Links
{
    Follow,
    Refuse
};

/// The bytes of a regular file, at most `limit` of them. Fails for a missing or unreadable file, for anything that is
/// no regular file (std::errc::not_supported), for one that is larger (std::errc::file_too_large), and where links
/// are refused for a symbolic link (std::errc::too_many_symbolic_link_levels) and for a file of several names
/// (std::errc::too_many_links).
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path, std::size_t limit,
                                                  std::error_code& error, Links links = Links::Follow);

/// The same of a regular file that is open for reading, from where it stands.
[[nodiscard]] std::optional<std::string> readFile(const FileDescriptor& file, std::size_t limit,
                                                  std::error_code& error);

} // namespace vantro
