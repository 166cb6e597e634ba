#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <string_view>

#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "foundation/Text.h"

namespace vantro {

namespace format = setting_format;

/// Fills a document from a parsed file and notes whatever would misrepresent it.
class SettingReader
{
  public:
    explicit SettingReader(VantroStandaloneSetting& setting) : setting_(setting) {}

    void read(const XMLAccessor& accessor)
    {
        const pugi::xml_node root = accessor.root();
        if (!accessor.isWellFormed() || std::string_view(root.name()) != format::root || !isKnownVersion(root)) {
            setting_.isValid_ = false;
            return;
        }
        readSwitches(onlyChild(root, format::switchSetting));
        readUsers(onlyChild(root, format::users));
        const auto masters = onlyChild(root, format::masterKeySetting);
        auto& masterKeySetting = setting_.masterKeySetting;
        masterKeySetting.masterKeys = keysOf(onlyChild(masters, format::masterKeys), masterKeySetting.foreignKeys);
        masterKeySetting.foreign = foreignIn(masters, {format::masterKeys});
        readAdmin(onlyChild(root, format::adminSetting));
        setting_.foreign_ =
            foreignIn(root, {format::switchSetting, format::users, format::masterKeySetting, format::adminSetting});
        setting_.foreignBeside_ = foreignIn(root.parent(), {format::root});
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
            setting_.isValid_ = false;
    }

    pugi::xml_node onlyChild(const pugi::xml_node& parent, const char* name)
    {
        const auto child = parent.child(name);
        require(child && !child.next_sibling(name));
        return child;
    }

    /// The text of an element that holds nothing but text.
    std::string textOf(const pugi::xml_node& element)
    {
        std::string text;
        for (const auto& child : element.children()) {
            require(child.type() != pugi::node_element);
            if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
                text += child.value();
        }
        return text;
    }

    bool switchOf(const pugi::xml_node& section, const char* name)
    {
        const std::string text = textOf(onlyChild(section, name));
        require(text == "true" || text == "false");
        return text == "true";
    }

    std::vector<YubiKey> keysOf(const pugi::xml_node& list, ForeignNodes& foreign)
    {
        std::vector<YubiKey> keys;
        for (const auto& element : list.children(format::yubiKey)) {
            const std::string text = textOf(onlyChild(element, format::serial));
            const auto serial = text.starts_with('+') ? std::nullopt : parseUInt64(text);
            require(serial.value_or(0) != 0);
            auto& key = keys.emplace_back(serial.value_or(0));
            key.foreign = foreignIn(element, {format::serial});
        }
        foreign = foreignIn(list, {format::yubiKey});
        return keys;
    }

    void readSwitches(const pugi::xml_node& section)
    {
        setting_.switchSetting.secureMode = switchOf(section, format::secureMode);
        setting_.switchSetting.screenLock = switchOf(section, format::screenLock);
        setting_.switchSetting.foreign = foreignIn(section, {format::secureMode, format::screenLock});
    }

    void readUsers(const pugi::xml_node& section)
    {
        for (const auto& element : section.children(format::userSetting)) {
            const std::string account = textOf(onlyChild(element, format::account));
            require(format::isAccount(account));
            auto& user = setting_.users.emplace_back(account);
            user.keys = keysOf(onlyChild(element, format::keys), user.foreignKeys);
            user.foreign = foreignIn(element, {format::account, format::keys});
        }
        setting_.foreignUsers_ = foreignIn(section, {format::userSetting});
    }

    void readAdmin(const pugi::xml_node& section)
    {
        setting_.adminSetting.toolLoginAuth = switchOf(section, format::toolLoginAuth);
        auto& adminSetting = setting_.adminSetting;
        adminSetting.adminKeys = keysOf(onlyChild(section, format::adminKeys), adminSetting.foreignKeys);
        adminSetting.foreign = foreignIn(section, {format::toolLoginAuth, format::adminKeys});
    }

    static std::string trimmed(const std::string& text)
    {
        constexpr const char* space = " \t\r\n";
        const auto first = text.find_first_not_of(space);
        return first == std::string::npos ? std::string()
                                          : text.substr(first, text.find_last_not_of(space) + 1 - first);
    }

    /// Copies of the children of `parent` that this version does not know.
    ForeignNodes foreignIn(const pugi::xml_node& parent, std::initializer_list<std::string_view> known)
    {
        ForeignNodes foreign;
        for (const auto& child : parent.children()) {
            const bool isKnown = child.type() == pugi::node_element &&
                                 std::find(known.begin(), known.end(), child.name()) != known.end();
            if (isKnown)
                continue;
            setting_.hasForeignNodes_ = true;
            if (!foreign.parent)
                foreign = {foreign_, foreign_->append_child("element")};
            auto copy = foreign.parent.append_copy(child);
            // The space around a text is the file's layout, which the writer makes anew each time.
            if (copy.type() == pugi::node_pcdata)
                copy.set_value(trimmed(copy.value()).c_str());
        }
        return foreign;
    }

    VantroStandaloneSetting& setting_;
    std::shared_ptr<pugi::xml_document> foreign_ = std::make_shared<pugi::xml_document>();
};

VantroStandaloneSetting::VantroStandaloneSetting(const XMLAccessor& accessor)
{
    SettingReader(*this).read(accessor);
}

} // namespace vantro
