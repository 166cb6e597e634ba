#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include "LoggerManager/LoggerManager.h"
#include "foundation/Bundle.h"
#include "foundation/DurableFile.h"
#include "foundation/FileDescriptor.h"

namespace vantro {
namespace {

constexpr std::size_t documentSizeLimit = std::size_t{256} * 1024 * 1024;
constexpr mode_t newDocumentMode = 0660;
constexpr int asideNamesTried = 1000;

/// Whether the document was there and could not be read when it was asked for last. Its content is known to nobody
/// then, even if it can be read again by the time something is written. Main thread.
bool lastReadFailed = false;

/// What keptAside() answers. Main thread.
std::filesystem::path& asideOfLastWrite()
{
    static std::filesystem::path aside;
    return aside;
}

Logger settingLogger()
{
    return LoggerManager::logger("VantroStandalone").inFile("VantroStandaloneSetting/VantroStandaloneSetting");
}

std::error_code systemError()
{
    return {errno, std::generic_category()};
}

/// Moves the file to the first free name beside it. Never replaces anything.
std::error_code keepAside(const std::filesystem::path& file)
{
    for (int number = 0; number < asideNamesTried; ++number) {
        std::filesystem::path aside = file;
        aside += number == 0 ? ".unreadable" : ".unreadable-" + std::to_string(number);
        if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0) {
            settingLogger().warning("The settings document can't be read and was kept as " + aside.string() + ".",
                                    "write()");
            asideOfLastWrite() = aside;
            return {};
        }
        if (errno != EEXIST)
            break;
    }
    return systemError();
}

std::error_code readabilityOf(const std::filesystem::path& file, const struct stat& status)
{
    if (!S_ISREG(status.st_mode))
        return std::make_error_code(std::errc::not_supported);
    if (static_cast<std::uintmax_t>(status.st_size) > documentSizeLimit)
        return std::make_error_code(std::errc::file_too_large);
    if (!FileDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)))
        return systemError();
    return {};
}

} // namespace

bool VantroStandaloneSetting::isAllocatedKey() const
{
    return !masterKeySetting.masterKeys.empty() ||
           std::any_of(users.begin(), users.end(), [](const UserSetting& user) { return !user.keys.empty(); });
}

const std::filesystem::path& VantroStandaloneSetting::url()
{
    // Below the prefix where the dictionary names no folder, never below the folder that the process happens to be in.
    static const auto path = Bundle::main().prefix() / Bundle::main().string(bundle_key::settingsFolder) / fileName;
    return path;
}

void VantroStandaloneSetting::write() const
{
    struct stat status = {};
    ReplacementOptions options;
    options.mode = newDocumentMode;
    std::error_code error;
    if (::stat(url().c_str(), &status) == 0) {
        if (!readabilityOf(url(), status) && !lastReadFailed)
            options.mode = status.st_mode & 07777;
        else
            error = keepAside(url());
    } else if (errno != ENOENT) {
        error = systemError();
    }
    if (!error) {
        lastReadFailed = false;
        error = replaceFile(url(), serialised(*this), options);
    }
    if (!error)
        return;
    settingLogger().error("The settings document can't be written to " + url().string() + ": " + error.message() +
                              ". The file is left as it was.",
                          "write()");
    NotificationCenter::defaultCenter().post(DocumentNotWritten);
}

std::error_code VantroStandaloneSetting::readability()
{
    struct stat status = {};
    return ::stat(url().c_str(), &status) == 0 ? readabilityOf(url(), status) : systemError();
}

std::error_code VantroStandaloneSetting::writability()
{
    // The folder's permissions count alone: the file is replaced, not changed.
    if (::faccessat(AT_FDCWD, url().parent_path().c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return systemError();
    return {};
}

const std::filesystem::path& VantroStandaloneSetting::keptAside()
{
    return asideOfLastWrite();
}

std::optional<std::string> readXML(const std::filesystem::path& url)
{
    std::error_code error;
    auto bytes = readFile(url, documentSizeLimit, error);
    lastReadFailed = error && error != std::errc::no_such_file_or_directory;
    if (lastReadFailed)
        settingLogger().warning(
            "The settings document can't be read from " + url.string() + ": " + error.message() + ".", "readXML(url:)");
    return bytes;
}

} // namespace vantro
