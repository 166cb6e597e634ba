#include "tokens/RegisteredKeys.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "VantroStandaloneSetting/SettingText.h"
#include "foundation/DurableFile.h"
#include "foundation/XML.h"

namespace vantro::service {
namespace {

/// Some 400,000 keys. The service has less memory than the tool, and answers within seconds.
constexpr std::size_t documentSizeLimit = std::size_t{32} * 1024 * 1024;

} // namespace

Outcome<VantroStandaloneSetting, FileFailure> RegisteredKeys::read() const
{
    std::error_code error;
    auto bytes = readFile(document_, documentSizeLimit, error, Links::Refuse);
    if (error == std::errc::no_such_file_or_directory)
        return VantroStandaloneSetting();
    if (!bytes)
        return systemFailure(document_, error);
    auto setting = readSetting(XML::parse(*std::move(bytes)));
    if (!setting.isValid)
        return FileFailure{FileFailure::Kind::BadContent, document_.string() + " is no valid settings document."};
    return setting;
}

Outcome<bool, FileFailure> RegisteredKeys::isNamed(std::uint64_t serial) const
{
    const auto setting = read();
    if (!setting)
        return setting.failure();
    return setting->isNamed(serial);
}

Outcome<std::optional<std::vector<std::uint64_t>>, FileFailure>
RegisteredKeys::openersOf(const std::string& account) const
{
    const auto setting = read();
    if (!setting)
        return setting.failure();
    if (!setting->switchSetting.secureMode || !setting->isAllocatedKey())
        return std::optional<std::vector<std::uint64_t>>();
    std::vector<std::uint64_t> serials;
    const auto add = [&serials](const std::vector<YubiKey>& keys) {
        for (const YubiKey& key : keys)
            serials.push_back(key.serial);
    };
    // What the tool takes out of the account's entry opens nothing any more, even if a second entry names it.
    if (const UserSetting* const user = setting->user(account))
        add(user->keys);
    add(setting->masterKeySetting.masterKeys);
    std::sort(serials.begin(), serials.end());
    return std::optional(std::move(serials));
}

Outcome<bool, FileFailure> RegisteredKeys::locksScreens() const
{
    const auto setting = read();
    if (!setting)
        return setting.failure();
    return setting->switchSetting.screenLock;
}

Outcome<bool, FileFailure> RegisteredKeys::opensAnAccount() const
{
    const auto setting = read();
    if (!setting)
        return setting.failure();
    const auto hasRecord = [this](const std::vector<YubiKey>& keys) {
        return std::any_of(keys.begin(), keys.end(),
                           [this](const YubiKey& key) { return static_cast<bool>(records_.read(key.serial)); });
    };
    return hasRecord(setting->masterKeySetting.masterKeys) ||
           std::any_of(setting->users.begin(), setting->users.end(),
                       [&hasRecord](const UserSetting& user) { return hasRecord(user.keys); });
}

} // namespace vantro::service
