#include "foundation/DurableFile.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/LastError.h"

namespace vantro {
namespace {

constexpr std::string_view newFileEnd = ".new";
constexpr int newFilesTried = 100;

/// A name that no other program uses: hidden, so that programs that read a whole folder pass it over.
std::string newFileName(const std::filesystem::path& path)
{
    std::random_device random;
    std::string name = "." + path.filename().string() + "." + std::to_string(random());
    name += newFileEnd;
    return name;
}

/// The name of the file that a newFileName() is for; empty for every other name.
std::string_view replacedName(std::string_view name)
{
    if (!name.starts_with('.') || !name.ends_with(newFileEnd))
        return {};
    name.remove_suffix(newFileEnd.size());
    const auto dot = name.rfind('.');
    const auto number = name.substr(dot + 1);
    const bool isNumbered = !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
    return isNumbered && dot > 0 ? name.substr(1, dot - 1) : std::string_view();
}

/// A new file that has not taken its place yet.
struct NewFile
{
    std::string name;
    /// Whoever writes a new file holds a lock on it, so that it is not taken for one that was left behind.
    FileDescriptor file;
};

std::optional<NewFile> makeNewFile(int folder, const std::filesystem::path& path, std::error_code& error)
{
    const auto tryAgain = std::make_error_code(std::errc::resource_unavailable_try_again);
    error = tryAgain;
    for (int attempt = 0; attempt < newFilesTried && error == tryAgain; ++attempt) {
        NewFile made{newFileName(path), {}};
        made.file = FileDescriptor(
            ::openat(folder, made.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        struct stat status = {};
        if (!made.file) {
            error = lastError();
        } else if (::flock(made.file.get(), LOCK_EX | LOCK_NB) != 0 || ::fstat(made.file.get(), &status) != 0) {
            error = lastError();
            ::unlinkat(folder, made.name.c_str(), 0);
        } else if (status.st_nlink == 1) {
            error.clear();
            return made;
        }
        // Before it had its lock somebody may have taken it for one that was left behind.
    }
    return std::nullopt;
}

void removeUnlocked(int folder, const char* name)
{
    const FileDescriptor file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
        ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
        ::unlinkat(folder, name, 0);
}

std::error_code fill(int file, std::string_view content, const ReplacementOptions& options)
{
    constexpr auto unchanged = static_cast<uid_t>(-1);
    if ((options.owner || options.group) &&
        ::fchown(file, options.owner.value_or(unchanged), options.group.value_or(unchanged)) != 0)
        return lastError();
    if (::fchmod(file, options.mode) != 0)
        return lastError();
    while (!content.empty()) {
        const ssize_t written = ::write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return lastError();
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(file) != 0)
        return lastError();
    return {};
}

/// Puts the new file in the place of the old one.
std::error_code takePlace(int folder, const char* name, const std::filesystem::path& path,
                          const std::optional<std::filesystem::path>& aside)
{
    if (!aside)
        return ::renameat(folder, name, folder, path.filename().c_str()) == 0 ? std::error_code() : lastError();
    // Under the name that the old one is to have, and then both names change hands at once: at every instant there is a
    // file in the place.
    if (::renameat2(folder, name, folder, aside->filename().c_str(), RENAME_NOREPLACE) != 0)
        return lastError();
    if (::renameat2(folder, aside->filename().c_str(), folder, path.filename().c_str(), RENAME_EXCHANGE) == 0)
        return {};
    const auto error = lastError();
    ::unlinkat(folder, aside->filename().c_str(), 0);
    return error;
}

} // namespace

Replacement replaceFile(const std::filesystem::path& path, std::string_view content, const ReplacementOptions& options)
{
    removeUnfinishedReplacements(path.parent_path(),
                                 [own = path.filename().string()](std::string_view name) { return name == own; });
    const FileDescriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return {false, lastError()};

    std::error_code error;
    const auto made = makeNewFile(folder.get(), path, error);
    if (!made)
        return {false, error};
    error = fill(made->file.get(), content, options);
    if (!error)
        error = takePlace(folder.get(), made->name.c_str(), path, options.aside);
    if (error) {
        ::unlinkat(folder.get(), made->name.c_str(), 0);
        return {false, error};
    }
    return {true, ::fsync(folder.get()) == 0 ? std::error_code() : lastError()};
}

void removeUnfinishedReplacements(const std::filesystem::path& folder,
                                  const std::function<bool(std::string_view name)>& isOwn)
{
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error);
         descriptor && !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        const auto replaced = replacedName(name);
        if (!replaced.empty() && isOwn(replaced))
            removeUnlocked(descriptor.get(), name.c_str());
    }
}

std::optional<std::string> readFile(const std::filesystem::path& path, std::size_t limit, std::error_code& error,
                                    Links links)
{
    error.clear();
    // O_NONBLOCK keeps a pipe that lies there from holding up the caller.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | (links == Links::Refuse ? O_NOFOLLOW : 0);
    const FileDescriptor file(::open(path.c_str(), flags));
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0) {
        error = lastError();
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = std::make_error_code(std::errc::not_supported);
        return std::nullopt;
    }
    if (links == Links::Refuse && status.st_nlink != 1) {
        error = std::make_error_code(std::errc::too_many_links);
        return std::nullopt;
    }

    return readFile(file, limit, error);
}

std::optional<std::string> readFile(const FileDescriptor& file, std::size_t limit, std::error_code& error)
{
    error.clear();
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) {
        error = lastError();
        return std::nullopt;
    }
    const auto fileTooLarge = std::make_error_code(std::errc::file_too_large);
    if (static_cast<std::uintmax_t>(status.st_size) > limit) {
        error = fileTooLarge;
        return std::nullopt;
    }
    std::string content;
    content.reserve(static_cast<std::size_t>(status.st_size) + 1);
    char buffer[65536];
    while (true) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            error = lastError();
            return std::nullopt;
        }
        if (count == 0)
            return content;
        content.append(buffer, static_cast<std::size_t>(count));
        if (content.size() > limit) {
            error = fileTooLarge;
            return std::nullopt;
        }
    }
}

} // namespace vantro
