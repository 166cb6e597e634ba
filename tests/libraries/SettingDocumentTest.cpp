#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VantroStandaloneSetting/SettingText.h"

namespace vantro::tests {
namespace {

/// A document with everything in it, as a person could have written it.
const std::string example = R"(<?xml version="1.0" encoding="UTF-8"?>
<VantroStandaloneSetting version="1">
  <SwitchSetting>
    <SecureMode>true</SecureMode>
    <ScreenLock>false</ScreenLock>
  </SwitchSetting>
  <Users>
    <UserSetting>
      <Account>adam</Account>
      <Keys>
        <YubiKey>
          <Serial>1</Serial>
        </YubiKey>
        <YubiKey>
          <Serial>18446744073709551615</Serial>
        </YubiKey>
      </Keys>
    </UserSetting>
    <UserSetting>
      <Account>&lt;Zoë &amp; "漢'&gt;</Account>
      <Keys>
      </Keys>
    </UserSetting>
  </Users>
  <MasterKeySetting>
    <MasterKeys>
      <YubiKey>
        <Serial>3</Serial>
      </YubiKey>
    </MasterKeys>
  </MasterKeySetting>
  <AdminSetting>
    <ToolLoginAuth>true</ToolLoginAuth>
    <AdminKeys>
      <YubiKey>
        <Serial>4</Serial>
      </YubiKey>
    </AdminKeys>
  </AdminSetting>
</VantroStandaloneSetting>
)";

VantroStandaloneSetting read(std::string_view text)
{
    return readSetting(XML::parse(text));
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const auto position = text.find(from);
    EXPECT_NE(position, std::string::npos) << from;
    return text.replace(position, from.size(), to);
}

TEST(SettingDocument, ReadsWhatItHoldsAndWritesItAsItWas)
{
    const VantroStandaloneSetting expected{
        .switchSetting = {.secureMode = true},
        .users = {{"adam", {1, std::numeric_limits<std::uint64_t>::max()}}, {"<Zoë & \"漢'>"}},
        .masterKeySetting = {.masterKeys = {3}},
        .adminSetting = {.toolLoginAuth = true, .adminKeys = {4}}};
    EXPECT_EQ(read(example), expected);
    EXPECT_EQ(serialised(expected), example);
}

TEST(SettingDocument, RoundTripsAnyNumberOfUsers)
{
    for (const std::size_t users : {0U, 1U, 500U}) {
        VantroStandaloneSetting setting;
        for (std::size_t number = 0; number < users; ++number) {
            auto& user = setting.users.emplace_back("user" + std::to_string(number));
            for (std::size_t key = 1; key <= number % 4; ++key)
                user.keys.emplace_back(number * 10 + key);
        }
        EXPECT_EQ(read(serialised(setting)), setting);
    }
}

TEST(SettingDocument, IsValidUnlessReadingOnWouldMisrepresentIt)
{
    const std::string whole = "<SwitchSetting>\n    <SecureMode>true</SecureMode>\n    "
                              "<ScreenLock>false</ScreenLock>\n  </SwitchSetting>";
    const std::string end = "</VantroStandaloneSetting>";
    const std::string version = " version=\"1\"";
    const struct
    {
        std::string from;
        std::vector<std::string> valid;
        std::vector<std::string> notValid;
    } cases[] = {
        {end, {end + "<!-- more -->"}, {"", end + "<more/>", end + "more"}},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", {""}, {}},
        {version, {"", " version=\"0\""}, {" version=\"2\"", " version=\"one\"", " version=\"\""}},
        {whole, {whole + "<Other/>"}, {"", whole + whole}},
        {"<Users>", {}, {"<Users/><Users>"}},
        {"<Keys>\n      </Keys>", {"<Keys/>"}, {"", "<Keys/><Keys/>"}},
        {"<Account>adam</Account>", {}, {"", "<Account>adam</Account><Account>eve</Account>"}},
        {"<Serial>1</Serial>", {}, {"", "<Serial>1</Serial><Serial>2</Serial>"}},
        {"<ToolLoginAuth>true</ToolLoginAuth>", {}, {""}},
        {">true</SecureMode>", {">false</SecureMode>"}, {"/>", ">True</SecureMode>", ">1</SecureMode>"}},
        {"ScreenLock>false", {"ScreenLock>true"}, {"ScreenLock> false", "ScreenLock>false\n", "ScreenLock>no"}},
        {"Auth>true", {"Auth><![CDATA[true]]><!-- yes -->"}, {"Auth>true<b/>", "Auth>"}},
        {">1<", {">007<", ">3<"}, {">0<", "><", ">+1<", ">-1<", "> 1<", ">0x1<", ">1&#0;2<", ">1,2<"}},
        {">3<", {}, {">18446744073709551616<", ">0<"}},
        {">4<", {}, {">4 2<", ">0<"}},
        {">adam<", {"> adam <"}, {"><", "><!-- nobody --><", ">ad\tam<", ">adam\n<", ">ad\xc2\x85m<", ">ad\xff<"}},
        // The same account twice is odd, but clear.
        {"&lt;Zoë &amp; \"漢'&gt;", {"adam"}, {}},
    };
    for (const auto& [from, valid, notValid] : cases) {
        for (const auto& to : valid)
            EXPECT_TRUE(read(replaced(example, from, to)).isValid) << from << " → " << to;
        for (const auto& to : notValid)
            EXPECT_FALSE(read(replaced(example, from, to)).isValid) << from << " → " << to;
    }
    for (const std::string name : {"Switch", "Users", "MasterKeySetting", "MasterKeys", "Admin", "AdminKeys"}) {
        std::string text = replaced(example, "<" + name, "<Foreign" + name);
        EXPECT_FALSE(read(text).isValid) << name;
    }
    std::string other = replaced(example, "<VantroStandaloneSetting", "<OtherSetting");
    EXPECT_FALSE(read(replaced(other, "</VantroStandaloneSetting", "</OtherSetting")).isValid);
    EXPECT_FALSE(read("").isValid);
    EXPECT_TRUE(VantroStandaloneSetting().isValid);
}

TEST(SettingDocument, KeepsWhatItDoesNotKnowAtEveryLevel)
{
    const std::string levels[] = {
        "SwitchSetting", "YubiKey",          "Keys",      "UserSetting",  "Users",
        "MasterKeys",    "MasterKeySetting", "AdminKeys", "AdminSetting", "VantroStandaloneSetting"};
    std::string text = replaced(example, "<Vantro", "<!-- before --><Vantro") + "<!-- after -->";
    const auto foreign = [](const std::string& level) {
        return "<x:note of=\"" + level + "\"><Serial>0</Serial> t &amp; u </x:note><!-- " + level +
               " -->\n text &amp; <![CDATA[<data>]]> of it\n";
    };
    for (const auto& level : levels)
        text = replaced(text, "</" + level + ">", foreign(level) + "</" + level + ">");

    for (const auto& level : levels) {
        const auto end = "</" + level + ">";
        EXPECT_FALSE(readSettingWithForeign(XML::parse(replaced(example, end, "<x/>" + end))).foreign.isEmpty())
            << level;
    }
    EXPECT_FALSE(readSettingWithForeign(XML::parse(example + "<!-- after -->")).foreign.isEmpty());
    EXPECT_TRUE(readSettingWithForeign(XML::parse(example)).foreign.isEmpty());

    auto [setting, foreignContent] = readSettingWithForeign(XML::parse(text));
    ASSERT_TRUE(setting.isValid);
    setting.switchSetting.screenLock = true;
    setting.users[0].keys.pop_back();
    setting.users.insert(setting.users.begin(), UserSetting("aaron"))->keys.emplace_back(9);
    setting.masterKeySetting.masterKeys.clear();
    setting.adminSetting.adminKeys.emplace_back(10);

    const std::string written = serialised(setting, foreignContent);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(written.c_str(), pugi::parse_default | pugi::parse_comments));
    for (const auto& level : levels) {
        const auto notes = document.select_nodes(("//*[@of='" + level + "']").c_str());
        ASSERT_EQ(notes.size(), 1U) << level;
        const auto note = notes.first().node();
        EXPECT_EQ(note.parent().name(), level);
        EXPECT_STREQ(note.child_value(), " t & u ");
        EXPECT_EQ(note.next_sibling().value(), " " + level + " ");
        EXPECT_NE(std::string(note.parent().child_value()).find("text &"), std::string::npos);
    }
    EXPECT_EQ(document.select_nodes("/comment()").size(), 2U);
    EXPECT_EQ(document.select_node("//*[@of='UserSetting']/../Account").node().child_value(), std::string("adam"));
    EXPECT_EQ(read(written), setting);
    EXPECT_EQ(serialised(setting, readSettingWithForeign(XML::parse(written)).foreign), written);

    setting.users.erase(setting.users.begin() + 1);
    EXPECT_EQ(serialised(setting, foreignContent).find("of=\"UserSetting\""), std::string::npos)
        << "a removed user takes all along";
}

TEST(SettingDocument, KeepsWhatItDoesNotKnowWithTheEntryWhereItStood)
{
    const auto user = [](const std::string& account, const std::string& keys) {
        return "<UserSetting><Account>" + account + "</Account><Keys>" + keys + "</Keys></UserSetting>";
    };
    const auto key = [](const std::string& serial) {
        return "<YubiKey><Serial>" + serial + "</Serial><!--" + serial + "--></YubiKey>";
    };
    const std::string old = "<Users>\n    <UserSetting>\n      <Account>adam</Account>";
    auto [setting, foreign] = readSettingWithForeign(
        XML::parse(replaced(example, old,
                            "<Users>" + user("zoe", key("8") + key("007") + "<YubiKey><Serial>7</Serial></YubiKey>") +
                                user("adam", key("5")) + "<UserSetting><Account>adam</Account><!--second-->")));
    ASSERT_TRUE(setting.isValid);
    setting.addUserKey("zoe", 6);
    setting.removeUserKey("adam", 5);
    setting.removeUsersWithoutKeys();
    const auto text = serialised(setting, foreign);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(text.c_str(), pugi::parse_default | pugi::parse_comments));
    const auto users = document.document_element().child("Users");
    const auto comment = [](const pugi::xml_node& node) {
        const auto children = node.children();
        const auto found = std::find_if(children.begin(), children.end(),
                                        [](const auto& child) { return child.type() == pugi::node_comment; });
        return found == children.end() ? std::string() : std::string(found->value());
    };
    EXPECT_EQ(comment(users.first_child()), "second") << "the first of the two is the one that went";
    std::vector<std::string> ofKeys;
    for (const auto& child : users.last_child().child("Keys").children())
        ofKeys.push_back(child.child_value("Serial") + (":" + comment(child)));
    EXPECT_EQ(ofKeys, (std::vector<std::string>{"6:", "7:007", "7:", "8:8"})) << text;
}

TEST(SettingDocument, ATruncatedFileIsNeverValidAndADamagedOneReadsTheSameAgain)
{
    // The line break at the end is no part of the document.
    for (std::size_t length = 0; length + 1 < example.size(); ++length)
        EXPECT_FALSE(read(example.substr(0, length)).isValid) << length;
    for (std::size_t position = 0; position < example.size(); ++position) {
        for (const char damage : {'\0', '<', '>', '/', '&', ' ', '!', '-', '\x80', '\xff', '0', 'a'}) {
            std::string text = example;
            text[position] = damage;
            const auto [setting, foreign] = readSettingWithForeign(XML::parse(text));
            if (!setting.isValid)
                continue;
            const std::string written = serialised(setting, foreign);
            const auto again = readSettingWithForeign(XML::parse(written));
            ASSERT_EQ(again.setting, setting) << text;
            ASSERT_EQ(serialised(setting, again.foreign), written) << text;
        }
    }
}

TEST(SettingDocument, AddsFindsAndRemovesKeysInTheirOrder)
{
    VantroStandaloneSetting setting;
    for (const std::uint64_t serial : {9U, 3U, 5U, 3U})
        addSorted(setting.adminSetting.adminKeys, serial);
    EXPECT_EQ(setting.adminSetting.adminKeys, (std::vector<YubiKey>{3, 3, 5, 9}));
    removeSerial(setting.adminSetting.adminKeys, 3);
    EXPECT_EQ(setting.adminSetting.adminKeys, (std::vector<YubiKey>{5, 9}));
    EXPECT_TRUE(setting.isNamed(9) && !setting.isNamed(3));

    setting.users = {{"zo\u00eb", {8}}, {"zoe\u0308", {7}}, {"adam", {2, 1}}};
    setting.addUserKey("zoe\u0308", 6);
    setting.addUserKey("Eve", 4);
    EXPECT_EQ(setting.users,
              (std::vector<UserSetting>{{"Eve", {4}}, {"adam", {1, 2}}, {"zo\u00eb", {6, 8}}, {"zoe\u0308", {7}}}));
    EXPECT_TRUE(setting.isAllcatedUserKey("zoe\u0308", 8)) << "written another way, it is the same account";
    EXPECT_FALSE(setting.isAllcatedUserKey("zo\u00eb", 7)) << "the first entry counts";
    EXPECT_FALSE(setting.isAllcatedUserKey("nobody", 8)) << "though another account has it";
    EXPECT_TRUE(setting.isNamed(7));
    setting.removeUserKey("Eve", 4);
    setting.removeUserKey("nobody", 8);
    EXPECT_EQ(setting.users.size(), 4U);
    setting.removeUsersWithoutKeys();
    EXPECT_EQ(setting.users.front().account, "adam");
}

TEST(SettingDocument, KnowsTheLastKeysWhileSomethingDependsOnThem)
{
    VantroStandaloneSetting setting{.switchSetting = {.secureMode = true},
                                    .users = {{"adam", {1, 2}}, {"zoe", {1}}},
                                    .adminSetting = {.toolLoginAuth = true, .adminKeys = {5, 6}}};
    EXPECT_TRUE(setting.areLastUserKeys(3) && setting.areLastAdminKeys(2));
    EXPECT_FALSE(setting.areLastUserKeys(2) || setting.areLastAdminKeys(1));
    setting.masterKeySetting.masterKeys = {7};
    EXPECT_FALSE(setting.areLastUserKeys(3) || setting.areLastMasterKeys(1));
    setting.users.clear();
    EXPECT_TRUE(setting.areLastMasterKeys(1));
    setting.switchSetting.secureMode = setting.adminSetting.toolLoginAuth = false;
    EXPECT_FALSE(setting.areLastMasterKeys(1) || setting.areLastAdminKeys(2));
}

TEST(SettingDocument, KnowsWhetherATokenOpensAnAccount)
{
    for (int combination = 0; combination < 16; ++combination) {
        VantroStandaloneSetting setting;
        if (combination & 1)
            setting.users.emplace_back("without keys");
        if (combination & 2)
            setting.users.emplace_back("with a key").keys.emplace_back(1);
        if (combination & 4)
            setting.masterKeySetting.masterKeys.emplace_back(2);
        if (combination & 8)
            setting.adminSetting.adminKeys.emplace_back(3);
        EXPECT_EQ(setting.isAllocatedKey(), (combination & (2 | 4)) != 0) << combination;
    }
}

} // namespace
} // namespace vantro::tests
