#pragma once

#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "foundation/Text.h"

/// The element and attribute names of the settings document's file, and how texts stand in it.
namespace vantro::setting_format {
inline constexpr const char* root = "VantroStandaloneSetting";
inline constexpr const char* version = "version";
inline constexpr const char* switchSetting = "SwitchSetting";
inline constexpr const char* secureMode = "SecureMode";
inline constexpr const char* screenLock = "ScreenLock";
inline constexpr const char* users = "Users";
inline constexpr const char* userSetting = "UserSetting";
inline constexpr const char* account = "Account";
inline constexpr const char* keys = "Keys";
inline constexpr const char* masterKeySetting = "MasterKeySetting";
inline constexpr const char* masterKeys = "MasterKeys";
inline constexpr const char* adminSetting = "AdminSetting";
inline constexpr const char* toolLoginAuth = "ToolLoginAuth";
inline constexpr const char* adminKeys = "AdminKeys";
inline constexpr const char* yubiKey = "YubiKey";
inline constexpr const char* serial = "Serial";

/// Whether the text, valid UTF-8, can be an account's name.
[[nodiscard]] inline bool isAccount(std::string_view text)
{
    return !text.empty() && !hasControlCharacters(text);
}

/// What stands in an element that is meant to hold a text.
struct ElementText
{
    std::string text;
    bool holdsElements = false;
};

[[nodiscard]] inline ElementText textOf(const pugi::xml_node& element)
{
    ElementText result;
    for (auto child = element.first_child(); child; child = child.next_sibling()) {
        const auto type = child.type();
        if (type == pugi::node_pcdata || type == pugi::node_cdata)
            result.text += child.value();
        else if (type == pugi::node_element)
            result.holdsElements = true;
    }
    return result;
}
} // namespace vantro::setting_format
