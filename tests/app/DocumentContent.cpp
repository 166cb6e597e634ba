#include "app/DocumentContent.h"

namespace vantro::tests {
namespace {

Serials serialsOf(const std::vector<YubiKey>& keys)
{
    Serials serials;
    for (const YubiKey& key : keys)
        serials.push_back(key.serial);
    return serials;
}

std::vector<YubiKey> keysOf(const Serials& serials)
{
    return {serials.begin(), serials.end()};
}

} // namespace

DocumentContent DocumentContent::of(const VantroStandaloneSetting& setting)
{
    DocumentContent content;
    for (const UserSetting& user : setting.users)
        content.users.emplace_back(user.account, serialsOf(user.keys));
    content.masterKeys = serialsOf(setting.masterKeySetting.masterKeys);
    content.adminKeys = serialsOf(setting.adminSetting.adminKeys);
    content.secureMode = setting.switchSetting.secureMode;
    content.screenLock = setting.switchSetting.screenLock;
    content.toolLoginAuth = setting.adminSetting.toolLoginAuth;
    return content;
}

VantroStandaloneSetting DocumentContent::asDocument() const
{
    VantroStandaloneSetting setting;
    for (const auto& [account, serials] : users)
        setting.users.emplace_back(account).keys = keysOf(serials);
    setting.masterKeySetting.masterKeys = keysOf(masterKeys);
    setting.adminSetting.adminKeys = keysOf(adminKeys);
    setting.switchSetting.secureMode = secureMode;
    setting.switchSetting.screenLock = screenLock;
    setting.adminSetting.toolLoginAuth = toolLoginAuth;
    return setting;
}

std::ostream& operator<<(std::ostream& stream, const DocumentContent& content)
{
    return stream << serialised(content.asDocument());
}

} // namespace vantro::tests
