#include "VantroStandaloneSetting/SettingFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "LoggerManager/DurabilityWarning.h"
#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "foundation/Bundle.h"
#include "foundation/DurableFile.h"
#include "foundation/FileDescriptor.h"
#include "foundation/LastError.h"
#include "foundation/Text.h"

namespace vantro {
namespace {

constexpr std::size_t documentSizeLimit = std::size_t{256} * 1024 * 1024;
constexpr mode_t newDocumentMode = 0660;
/// All that is taken over of a mode. Who made a document may have made it a program that runs as whoever copies it.
constexpr mode_t documentModes = 0666;
constexpr int namesTried = 1000;

Logger settingLogger()
{
    return LoggerManager::logger("VantroStandalone").inFile("VantroStandaloneSetting/SettingFile");
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

/// Calls `attempt` with one name after the other until one is free; it answers its error.
template <class Attempt>
std::error_code withFreeName(const std::filesystem::path& file, const char* suffix, const Attempt& attempt)
{
    std::error_code error;
    for (int number = 0; number < namesTried; ++number) {
        error = attempt(nameBeside(file, suffix, number));
        if (error != std::errc::file_exists)
            break;
    }
    return error;
}

std::error_code moveAside(const std::filesystem::path& file, const std::filesystem::path& name)
{
    return ::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0 ? std::error_code()
                                                                                              : lastError();
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
        return lastError();
    if (!S_ISREG(status.st_mode))
        return std::make_error_code(std::errc::not_supported);
    if (status.st_nlink != 1)
        return std::make_error_code(std::errc::too_many_links);
    if (static_cast<std::uintmax_t>(status.st_size) > documentSizeLimit)
        return std::make_error_code(std::errc::file_too_large);
    return {};
}

/// What is foreign in the text of a document; nothing where the text does not read back as a valid document. Only what
/// others have put into it takes a reader to know.
std::optional<ForeignContent> foreignIfReadable(const std::string& text, const VantroStandaloneSetting& setting,
                                                const ForeignContent& foreign)
{
    if (text.size() > documentSizeLimit)
        return std::nullopt;
    if (foreign.isEmpty()) {
        const bool isReadable = std::all_of(setting.users.begin(), setting.users.end(), [](const UserSetting& user) {
            return setting_format::isAccount(user.account) && isValidUTF8(user.account);
        });
        return isReadable ? std::optional(ForeignContent()) : std::nullopt;
    }
    auto again = readSettingWithForeign(XML::parse(text));
    return again.setting.isValid ? std::optional(std::move(again.foreign)) : std::nullopt;
}

/// The bytes of the file and no error, or an error; neither for a file that is missing.
std::optional<std::string> readXML(const std::filesystem::path& url, std::error_code& error)
{
    auto bytes = readFile(url, documentSizeLimit, error, Links::Refuse);
    if (error == std::errc::no_such_file_or_directory)
        error.clear();
    if (error)
        settingLogger().warning(
            "The settings document can't be read from " + url.string() + ": " + error.message() + ".", "readXML(url:)");
    return bytes;
}

} // namespace

// Below the prefix where the dictionary names no folder, never below the folder that the process happens to be in.
SettingFile::SettingFile()
    : url_(Bundle::main().prefix() / Bundle::main().string(bundle_key::settingsFolder) / fileName)
{
}

std::optional<VantroStandaloneSetting> SettingFile::read()
{
    foreign_ = {};
    auto bytes = readXML(url_, readError_);
    if (!bytes)
        return std::nullopt;
    auto [setting, foreign] = readSettingWithForeign(XML::parse(*std::move(bytes)));
    foreign_ = std::move(foreign);
    return std::move(setting);
}

void SettingFile::write(const VantroStandaloneSetting& setting)
{
    const std::string text = serialised(setting, foreign_);
    std::string reason = "What it holds could not be read again";
    if (auto foreign = foreignIfReadable(text, setting, foreign_)) {
        const auto replacement = replace(text);
        warnUnlessDurable(settingLogger(), url_, replacement, "write()");
        if (replacement.isDone) {
            // What stood with a key that is gone does not come back with it.
            foreign_ = std::move(*foreign);
            // Whatever was there before, what is there now is known.
            readError_.clear();
            return;
        }
        reason = replacement.error.message();
    }
    settingLogger().error("The settings document can't be written to " + url_.string() + ": " + reason +
                              ". The file is left as it was.",
                          "write()");
    NotificationCenter::defaultCenter().post(DocumentNotWritten);
}

Replacement SettingFile::replace(const std::string& text)
{
    const auto error = readabilityOf(url_);
    ReplacementOptions options;
    options.mode = newDocumentMode;
    if (error == std::errc::no_such_file_or_directory)
        return replaceFile(url_, text, options);
    struct stat status = {};
    if (::lstat(url_.c_str(), &status) != 0)
        return {false, lastError()};
    if (!error || !isUnreadable(status, error)) {
        // Its content is known to nobody when it could not be read before.
        if (readError_)
            return {false, readError_};
        options.mode = status.st_mode & documentModes;
        return replaceFile(url_, text, options);
    }
    Replacement replacement;
    replacement.error = withFreeName(url_, ".unreadable", [&](const std::filesystem::path& aside) {
        options.aside = aside;
        replacement = replaceFile(url_, text, options);
        if (replacement.isDone) {
            settingLogger().warning("The settings document can't be read and was kept as " + aside.string() + ".",
                                    "write()");
            keptAside_ = aside;
        }
        return replacement.error;
    });
    return replacement;
}

std::error_code SettingFile::keepInvalid() const
{
    const std::filesystem::path copy = nameBeside(url_, ".invalid", 0);
    auto error = withFreeName(url_, ".invalid-old",
                              [&copy](const std::filesystem::path& name) { return moveAside(copy, name); });
    if (error && error != std::errc::no_such_file_or_directory)
        return error;
    struct stat status = {};
    const auto bytes = readFile(url_, documentSizeLimit, error, Links::Refuse);
    if (bytes && ::lstat(url_.c_str(), &status) == 0) {
        ReplacementOptions options;
        options.mode = status.st_mode & documentModes;
        const auto replacement = replaceFile(copy, *bytes, options);
        warnUnlessDurable(settingLogger(), copy, replacement, "keepInvalid()");
        if (replacement.isDone)
            return {};
    }
    return moveAside(url_, copy);
}

std::error_code SettingFile::readability() const
{
    return readError_ ? readError_ : readabilityOf(url_);
}

std::error_code SettingFile::writability() const
{
    // The folder's permissions count alone: the file is replaced, not changed.
    if (::faccessat(AT_FDCWD, url_.parent_path().c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return lastError();
    return {};
}

} // namespace vantro
