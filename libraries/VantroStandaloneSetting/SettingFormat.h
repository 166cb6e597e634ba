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

/// The text in an element; whatever else it holds is passed over.
[[nodiscard]] inline std::string textOf(const pugi::xml_node& element)
{
    std::string text;
    for (const auto& child : element.children())
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            text += child.value();
    return text;
}
} // namespace vantro::setting_format
