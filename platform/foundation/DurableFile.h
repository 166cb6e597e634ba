#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/types.h>

namespace vantro {

/// How the new file of a replacement is made.
struct ReplacementOptions
{
    /// Mode bits of the new file, set before any content is written, whatever the umask.
    mode_t mode = 0600;
    /// Owner and group of the new file, set before any content is written; absent leaves them the process's own.
    std::optional<uid_t> owner;
    std::optional<gid_t> group;
};

/// Replaces the file at `path` whole and durably: a new file in the same folder (O_EXCL, no following of links), fsync,
/// rename, fsync of the folder. Whatever fails, and whenever the process is killed, the old file or the new one is
/// there. Answers the first error, with nothing replaced and the new file removed; no error when the file is in place.
/// An error of the last step alone leaves the new file in place, but it may not outlast a loss of power.
[[nodiscard]] std::error_code replaceFile(const std::filesystem::path& path, std::string_view content,
                                          const ReplacementOptions& options);

/// Whether the last name of a path may be a symbolic link.
enum class Links
{
    Follow,
    Refuse
};

/// The bytes of a regular file, at most `limit` of them. Fails for a missing or unreadable file, for anything that is
/// no regular file (std::errc::not_supported), for one that is larger (std::errc::file_too_large), and for a symbolic
/// link that is not to be followed (std::errc::too_many_symbolic_link_levels).
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& path, std::size_t limit,
                                                  std::error_code& error, Links links = Links::Follow);

} // namespace vantro
