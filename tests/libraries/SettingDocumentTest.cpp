#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VantroStandaloneSetting/SettingText.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

/// A document with everything in it, as a person could have written it.
const std::string exampleDocument = contentOf(SEEDS "/example.xml");

VantroStandaloneSetting read(std::string_view text)
{
    return readSetting(XML::parse(std::string(text)));
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
    EXPECT_EQ(read(exampleDocument), expected);
    EXPECT_EQ(serialised(expected), exampleDocument);
    EXPECT_EQ(read(serialised({})), VantroStandaloneSetting());
}

TEST(SettingDocument, IsValidUnlessReadingOnWouldMisrepresentIt)
{
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
        {"</SwitchSetting>", {"</SwitchSetting><Other/>"}, {"</SwitchSetting><SwitchSetting/>"}},
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
            EXPECT_TRUE(read(replaced(exampleDocument, from, to)).isValid) << from << " → " << to;
        for (const auto& to : notValid)
            EXPECT_FALSE(read(replaced(exampleDocument, from, to)).isValid) << from << " → " << to;
    }
    for (const std::string name : {"VantroStandaloneSetting", "SwitchSetting", "Users", "MasterKeySetting",
                                   "MasterKeys", "AdminSetting", "AdminKeys"})
        EXPECT_FALSE(read(replaced(replaced(exampleDocument, "<" + name, "<Other"), "</" + name, "</Other")).isValid)
            << name;
    EXPECT_FALSE(read("").isValid);
    EXPECT_TRUE(VantroStandaloneSetting().isValid);
}

TEST(SettingDocument, KeepsWhatItDoesNotKnowWhereItStood)
{
    EXPECT_TRUE(readSettingWithForeign(XML::parse(exampleDocument)).foreign.isEmpty());
    auto [setting, foreign] = readSettingWithForeign(XML::parse(contentOf(SEEDS "/foreign.xml")));
    ASSERT_TRUE(setting.isValid);
    setting.switchSetting.screenLock = true;
    setting.users[0].keys.pop_back();
    setting.addUserKey("aaron", 9);
    setting.addUserKey("zoe", 6);
    setting.removeUserKey("eve", 5);
    setting.removeUsersWithoutKeys();
    setting.masterKeySetting.masterKeys.clear();
    setting.adminSetting.adminKeys.emplace_back(10);
    const std::string written = serialised(setting, foreign);
    EXPECT_EQ(written, contentOf(RECORDED_DOCUMENTS "/foreign-changed.xml"));
    EXPECT_EQ(read(written), setting);
    EXPECT_EQ(serialised(setting, readSettingWithForeign(XML::parse(written)).foreign), written);
}

TEST(SettingDocument, ATruncatedFileIsNeverValidAndADamagedOneReadsTheSameAgain)
{
    // The line break at the end is no part of the document.
    for (std::size_t length = 0; length + 1 < exampleDocument.size(); ++length)
        EXPECT_FALSE(read(exampleDocument.substr(0, length)).isValid) << length;
    for (std::size_t position = 0; position < exampleDocument.size(); ++position) {
        for (const char damage : {'\0', '<', '>', '/', '&', ' ', '!', '-', '\x80', '\xff', '0', 'a'}) {
            std::string text = exampleDocument;
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
    const auto isAllocated = [](const VantroStandaloneSetting& setting) { return setting.isAllocatedKey(); };
    const UserSetting withoutKeys("adam");
    EXPECT_FALSE(isAllocated({.users = {withoutKeys}, .adminSetting = {.adminKeys = {3}}}));
    EXPECT_TRUE(isAllocated({.users = {withoutKeys, {"eve", {1}}}}));
    EXPECT_TRUE(isAllocated({.masterKeySetting = {.masterKeys = {2}}}));
}

} // namespace
} // namespace vantro::tests
