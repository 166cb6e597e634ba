#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "foundation/Text.h"

namespace vantro {

namespace format = setting_format;

namespace {

/// Fills a document from a parsed file and notes whatever would misrepresent it.
class Reader
{
  public:
    [[nodiscard]] VantroStandaloneSetting read(const XMLAccessor& accessor)
    {
        const pugi::xml_node root = accessor.root();
        require(accessor.isWellFormed() && std::string_view(root.name()) == format::root && isKnownVersion(root));
        if (!setting_.isValid)
            return std::move(setting_);
        readSwitches(onlyChild(root, format::switchSetting));
        readUsers(onlyChild(root, format::users));
        const auto masters = onlyChild(root, format::masterKeySetting);
        setting_.masterKeySetting.masterKeys = keysOf(onlyChild(masters, format::masterKeys));
        const auto administrators = onlyChild(root, format::adminSetting);
        setting_.adminSetting.toolLoginAuth = switchOf(administrators, format::toolLoginAuth);
        setting_.adminSetting.adminKeys = keysOf(onlyChild(administrators, format::adminKeys));
        return std::move(setting_);
    }

  private:
    static bool isKnownVersion(const pugi::xml_node& root)
    {
        const auto attribute = root.attribute(format::version);
        const auto version = parseUInt64(attribute.value());
        return !attribute || (version && *version <= settingFormatVersion);
    }

    void require(bool condition)
    {
        if (!condition)
            setting_.isValid = false;
    }

    pugi::xml_node onlyChild(const pugi::xml_node& parent, const char* name)
    {
        const auto child = parent.child(name);
        require(child && !child.next_sibling(name));
        return child;
    }

    /// The text of an element that may hold no other element.
    std::string textIn(const pugi::xml_node& element)
    {
        auto [text, holdsElements] = format::textOf(element);
        require(!holdsElements);
        return text;
    }

    bool switchOf(const pugi::xml_node& section, const char* name)
    {
        const std::string text = textIn(onlyChild(section, name));
        require(text == "true" || text == "false");
        return text == "true";
    }

    std::vector<YubiKey> keysOf(const pugi::xml_node& list)
    {
        std::vector<YubiKey> keys;
        for (const auto& element : list.children(format::yubiKey)) {
            const std::string text = textIn(onlyChild(element, format::serial));
            const auto serial = text.starts_with('+') ? std::nullopt : parseUInt64(text);
            require(serial.value_or(0) != 0);
            keys.emplace_back(serial.value_or(0));
        }
        return keys;
    }

    void readSwitches(const pugi::xml_node& section)
    {
        setting_.switchSetting.secureMode = switchOf(section, format::secureMode);
        setting_.switchSetting.screenLock = switchOf(section, format::screenLock);
    }

    void readUsers(const pugi::xml_node& section)
    {
        for (const auto& element : section.children(format::userSetting)) {
            const std::string account = textIn(onlyChild(element, format::account));
            require(format::isAccount(account));
            setting_.users.emplace_back(account, keysOf(onlyChild(element, format::keys)));
        }
    }

    VantroStandaloneSetting setting_;
};

} // namespace

VantroStandaloneSetting readSetting(const XMLAccessor& accessor)
{
    return Reader().read(accessor);
}

SettingWithForeign readSettingWithForeign(const XMLAccessor& accessor)
{
    auto setting = readSetting(accessor);
    auto foreign = setting.isValid ? ForeignContent(accessor) : ForeignContent();
    return {std::move(setting), std::move(foreign)};
}

} // namespace vantro
