#include <sstream>
#include <string>
#include <vector>

#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

namespace vantro {
namespace {

namespace format = setting_format;

void appendForeign(pugi::xml_node element, const ForeignNodes& foreign)
{
    for (const auto& node : foreign.parent.children())
        element.append_copy(node);
}

void appendText(pugi::xml_node parent, const char* name, const std::string& text)
{
    parent.append_child(name).text().set(text.c_str());
}

void appendSwitch(pugi::xml_node parent, const char* name, bool isOn)
{
    appendText(parent, name, isOn ? "true" : "false");
}

void appendKeys(pugi::xml_node parent, const char* name, const std::vector<YubiKey>& keys, const ForeignNodes& foreign)
{
    pugi::xml_node list = parent.append_child(name);
    for (const YubiKey& key : keys) {
        const pugi::xml_node element = list.append_child(format::yubiKey);
        appendText(element, format::serial, std::to_string(key.serial));
        appendForeign(element, key.foreign);
    }
    appendForeign(list, foreign);
}

} // namespace

std::string serialised(const VantroStandaloneSetting& setting)
{
    pugi::xml_document document;
    auto declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    auto root = document.append_child(format::root);
    root.append_attribute(format::version) = settingFormatVersion;

    const auto switches = root.append_child(format::switchSetting);
    appendSwitch(switches, format::secureMode, setting.switchSetting.secureMode);
    appendSwitch(switches, format::screenLock, setting.switchSetting.screenLock);
    appendForeign(switches, setting.switchSetting.foreign);

    auto users = root.append_child(format::users);
    for (const UserSetting& user : setting.users) {
        const auto element = users.append_child(format::userSetting);
        appendText(element, format::account, user.account);
        appendKeys(element, format::keys, user.keys, user.foreignKeys);
        appendForeign(element, user.foreign);
    }
    appendForeign(users, setting.foreignUsers_);

    const auto masters = root.append_child(format::masterKeySetting);
    appendKeys(masters, format::masterKeys, setting.masterKeySetting.masterKeys, setting.masterKeySetting.foreignKeys);
    appendForeign(masters, setting.masterKeySetting.foreign);

    const auto admin = root.append_child(format::adminSetting);
    appendSwitch(admin, format::toolLoginAuth, setting.adminSetting.toolLoginAuth);
    appendKeys(admin, format::adminKeys, setting.adminSetting.adminKeys, setting.adminSetting.foreignKeys);
    appendForeign(admin, setting.adminSetting.foreign);

    appendForeign(root, setting.foreign_);
    appendForeign(document, setting.foreignBeside_);

    std::ostringstream text;
    document.save(text, "  ", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

} // namespace vantro
