#include "foundation/DurableFile.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "foundation/FileDescriptor.h"

namespace vantro {
namespace {

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

/// A name beside `path` that no other program uses: hidden, so that programs that read a whole folder pass it over.
std::string temporaryName(const std::filesystem::path& path)
{
    std::random_device random;
    std::string name(1, '.');
    name += path.filename().string();
    name += '.';
    name += std::to_string(random());
    name += ".new";
    return name;
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

} // namespace

std::error_code replaceFile(const std::filesystem::path& path, std::string_view content,
                            const ReplacementOptions& options)
{
    const FileDescriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return lastError();

    const std::string name = temporaryName(path);
    FileDescriptor file(
        ::openat(folder.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file)
        return lastError();

    std::error_code error = fill(file.get(), content, options);
    if (!error && !file.close())
        error = lastError();
    if (!error && ::renameat(folder.get(), name.c_str(), folder.get(), path.filename().c_str()) != 0)
        error = lastError();
    if (error) {
        ::unlinkat(folder.get(), name.c_str(), 0);
        return error;
    }
    return ::fsync(folder.get()) == 0 ? std::error_code() : lastError();
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
