#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

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
    return VantroStandaloneSetting(XML::parse(text));
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const auto position = text.find(from);
    EXPECT_NE(position, std::string::npos) << from;
    return text.replace(position, from.size(), to);
}

TEST(SettingDocument, ReadsWhatItHoldsAndWritesItAsItWas)
{
    const auto setting = read(example);
    EXPECT_TRUE(setting.isValid());
    EXPECT_TRUE(setting.switchSetting.secureMode);
    EXPECT_FALSE(setting.switchSetting.screenLock);
    ASSERT_EQ(setting.users.size(), 2U);
    EXPECT_EQ(setting.users[0].account, "adam");
    ASSERT_EQ(setting.users[0].keys.size(), 2U);
    EXPECT_EQ(setting.users[0].keys[1].serial, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(setting.users[1].account, "<Zoë & \"漢'>");
    EXPECT_TRUE(setting.users[1].keys.empty());
    ASSERT_EQ(setting.masterKeySetting.masterKeys.size(), 1U);
    EXPECT_EQ(setting.masterKeySetting.masterKeys[0].serial, 3U);
    EXPECT_TRUE(setting.adminSetting.toolLoginAuth);
    ASSERT_EQ(setting.adminSetting.adminKeys.size(), 1U);
    EXPECT_EQ(setting.adminSetting.adminKeys[0].serial, 4U);
    EXPECT_EQ(serialised(setting), example);
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
        const auto again = read(serialised(setting));
        EXPECT_TRUE(setting.isValid() && again.isValid());
        EXPECT_EQ(again.users.size(), users);
        EXPECT_EQ(serialised(again), serialised(setting));
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
            EXPECT_TRUE(read(replaced(example, from, to)).isValid()) << from << " → " << to;
        for (const auto& to : notValid)
            EXPECT_FALSE(read(replaced(example, from, to)).isValid()) << from << " → " << to;
    }
    for (const std::string name : {"Switch", "Users", "MasterKeySetting", "MasterKeys", "Admin", "AdminKeys"}) {
        std::string text = replaced(example, "<" + name, "<Foreign" + name);
        EXPECT_FALSE(read(text).isValid()) << name;
    }
    std::string other = replaced(example, "<VantroStandaloneSetting", "<OtherSetting");
    EXPECT_FALSE(read(replaced(other, "</VantroStandaloneSetting", "</OtherSetting")).isValid());
    EXPECT_FALSE(read("").isValid());
    EXPECT_TRUE(VantroStandaloneSetting().isValid());
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

    auto setting = read(text);
    ASSERT_TRUE(setting.isValid());
    setting.switchSetting.screenLock = true;
    setting.users[0].keys.pop_back();
    setting.users.insert(setting.users.begin(), UserSetting("aaron"))->keys.emplace_back(9);
    setting.masterKeySetting.masterKeys.clear();
    setting.adminSetting.adminKeys.emplace_back(10);

    const std::string written = serialised(setting);
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
    const auto again = read(written);
    EXPECT_TRUE(again.isValid());
    EXPECT_EQ(serialised(again), written);

    setting.users.erase(setting.users.begin() + 1);
    EXPECT_EQ(serialised(setting).find("of=\"UserSetting\""), std::string::npos) << "a removed user takes all along";
}

TEST(SettingDocument, ATruncatedFileIsNeverValidAndADamagedOneReadsTheSameAgain)
{
    // The line break at the end is no part of the document.
    for (std::size_t length = 0; length + 1 < example.size(); ++length)
        EXPECT_FALSE(read(example.substr(0, length)).isValid()) << length;
    for (std::size_t position = 0; position < example.size(); ++position) {
        for (const char damage : {'\0', '<', '>', '/', '&', ' ', '!', '-', '\x80', '\xff', '0', 'a'}) {
            std::string text = example;
            text[position] = damage;
            const auto setting = read(text);
            if (!setting.isValid())
                continue;
            const std::string written = serialised(setting);
            const auto again = read(written);
            ASSERT_TRUE(again.isValid()) << text;
            ASSERT_EQ(serialised(again), written) << text;
        }
    }
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
