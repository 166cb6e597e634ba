// The settings document's file: where it is, and how it is read, replaced and kept.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include "LoggerManager/DurabilityWarning.h"
#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "foundation/Bundle.h"
#include "foundation/DurableFile.h"
#include "foundation/FileDescriptor.h"
#include "foundation/Text.h"

namespace vantro {
namespace {

constexpr std::size_t documentSizeLimit = std::size_t{256} * 1024 * 1024;
constexpr mode_t newDocumentMode = 0660;
/// All that is taken over of a mode. Who made a document may have made it a program that runs as whoever copies it.
constexpr mode_t documentModes = 0666;
constexpr int namesTried = 1000;

/// Why the document could not be read when it was asked for last; no error where it was read or is not there. Main
/// thread.
std::error_code& lastReadError()
{
    static std::error_code error;
    return error;
}

/// What keptAside() answers. Main thread.
std::filesystem::path& asideOfLastWrite()
{
    static std::filesystem::path aside;
    return aside;
}

Logger settingLogger()
{
    return LoggerManager::logger("VantroStandalone").inFile("VantroStandaloneSetting/SettingFile");
}

std::error_code systemError()
{
    return {errno, std::generic_category()};
}

/// `file` with the suffix appended, and with a number behind that from the second on.
std::filesystem::path nameBeside(const std::filesystem::path& file, const char* suffix, int number)
{
    std::filesystem::path name = file;
    name += suffix;
    if (number > 0)
        name += "-" + std::to_string(number);
    return name;
}

/// Calls `take` with one name after the other until one is free; it answers the error of the attempt.
template <class Take>
std::error_code withFreeName(const std::filesystem::path& file, const char* suffix, const Take& take)
{
    std::error_code error;
    for (int number = 0; number < namesTried; ++number) {
        error = take(nameBeside(file, suffix, number));
        if (error != std::errc::file_exists)
            break;
    }
    return error;
}

std::error_code moveAside(const std::filesystem::path& file, const std::filesystem::path& name)
{
    return ::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0 ? std::error_code()
                                                                                              : systemError();
}

/// Whether the document itself is such that this account can't read it. Any other error may be gone a moment later.
bool isUnreadable(const struct stat& status, const std::error_code& error)
{
    return !S_ISREG(status.st_mode) || error == std::errc::too_many_links || error == std::errc::file_too_large ||
           error == std::errc::permission_denied || error == std::errc::operation_not_permitted;
}

std::error_code readabilityOf(const std::filesystem::path& file)
{
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    struct stat status = {};
    if (!descriptor || ::fstat(descriptor.get(), &status) != 0)
        return systemError();
    if (!S_ISREG(status.st_mode))
        return std::make_error_code(std::errc::not_supported);
    if (status.st_nlink != 1)
        return std::make_error_code(std::errc::too_many_links);
    if (static_cast<std::uintmax_t>(status.st_size) > documentSizeLimit)
        return std::make_error_code(std::errc::file_too_large);
    return {};
}

/// Whether the text reads back as a valid document. Only what others have put into it takes a reader to know.
bool canBeReadAgain(const VantroStandaloneSetting& setting, const std::string& text)
{
    if (text.size() > documentSizeLimit)
        return false;
    if (setting.hasForeignNodes())
        return VantroStandaloneSetting(XML::parse(text)).isValid();
    return std::all_of(setting.users.begin(), setting.users.end(), [](const UserSetting& user) {
        return setting_format::isAccount(user.account) && isValidUTF8(user.account);
    });
}

Replacement replaceDocument(const std::string& text)
{
    const auto& file = VantroStandaloneSetting::url();
    const auto readError = readabilityOf(file);
    ReplacementOptions options;
    options.mode = newDocumentMode;
    if (readError == std::errc::no_such_file_or_directory)
        return replaceFile(file, text, options);
    struct stat status = {};
    if (::lstat(file.c_str(), &status) != 0)
        return {false, systemError()};
    if (!readError || !isUnreadable(status, readError)) {
        // Its content is known to nobody when it could not be read before.
        if (lastReadError())
            return {false, lastReadError()};
        options.mode = status.st_mode & documentModes;
        return replaceFile(file, text, options);
    }
    Replacement replacement;
    replacement.error = withFreeName(file, ".unreadable", [&](const std::filesystem::path& aside) {
        options.aside = aside;
        replacement = replaceFile(file, text, options);
        if (replacement.isDone) {
            settingLogger().warning("The settings document can't be read and was kept as " + aside.string() + ".",
                                    "write()");
            asideOfLastWrite() = aside;
            lastReadError().clear();
        }
        return replacement.error;
    });
    return replacement;
}

} // namespace

const std::filesystem::path& VantroStandaloneSetting::url()
{
    // Below the prefix where the dictionary names no folder, never below the folder that the process happens to be in.
    static const auto path = Bundle::main().prefix() / Bundle::main().string(bundle_key::settingsFolder) / fileName;
    return path;
}

void VantroStandaloneSetting::write() const
{
    const std::string text = serialised(*this);
    std::string reason = "What it holds could not be read again";
    if (canBeReadAgain(*this, text)) {
        const auto replacement = replaceDocument(text);
        warnUnlessDurable(settingLogger(), url(), replacement, "write()");
        if (replacement.isDone)
            return;
        reason = replacement.error.message();
    }
    settingLogger().error("The settings document can't be written to " + url().string() + ": " + reason +
                              ". The file is left as it was.",
                          "write()");
    NotificationCenter::defaultCenter().post(DocumentNotWritten);
}

std::error_code VantroStandaloneSetting::keepInvalid()
{
    const std::filesystem::path copy = nameBeside(url(), ".invalid", 0);
    struct stat status = {};
    if (::lstat(copy.c_str(), &status) == 0) {
        const auto error = withFreeName(url(), ".invalid-old",
                                        [&copy](const std::filesystem::path& name) { return moveAside(copy, name); });
        if (error)
            return error;
    }
    std::error_code error;
    const auto bytes = readFile(url(), documentSizeLimit, error, Links::Refuse);
    if (bytes && ::lstat(url().c_str(), &status) == 0) {
        ReplacementOptions options;
        options.mode = status.st_mode & documentModes;
        const auto replacement = replaceFile(copy, *bytes, options);
        warnUnlessDurable(settingLogger(), copy, replacement, "keepInvalid()");
        if (replacement.isDone)
            return {};
    }
    return moveAside(url(), copy);
}

std::error_code VantroStandaloneSetting::readability()
{
    return lastReadError() ? lastReadError() : readabilityOf(url());
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
    auto& error = lastReadError();
    auto bytes = readFile(url, documentSizeLimit, error, Links::Refuse);
    if (error == std::errc::no_such_file_or_directory)
        error.clear();
    if (error)
        settingLogger().warning(
            "The settings document can't be read from " + url.string() + ": " + error.message() + ".", "readXML(url:)");
    return bytes;
}

} // namespace vantro
