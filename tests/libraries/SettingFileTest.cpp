#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <utility>

#include <gtest/gtest.h>

#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "support/FailingFolderSync.h"
#include "support/Privileges.h"
#include "support/TemporaryPrefix.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;

class SettingFileTest : public testing::Test
{
  protected:
    SettingFileTest()
    {
        // The log is opened before any test gives up its privileges.
        static_cast<void>(LoggerManager::logger("VantroStandalone"));
        fs::permissions(prefix.path(), fs::perms(0755));
        fs::permissions(prefix.settings(), fs::perms(0777));
        setting.users.emplace_back("adam").keys.emplace_back(5);
    }

    [[nodiscard]] fs::path aside(const std::string& suffix) const { return file.string() + ".unreadable" + suffix; }

    [[nodiscard]] static std::string log() { return contentOf(LoggerManager::logFile("VantroStandalone")); }

    /// Expects that the file is `setting`, and that it reads so.
    void expectWritten()
    {
        EXPECT_EQ(contentOf(file), serialised(setting));
        EXPECT_EQ(document.read(), setting);
    }

    const TemporaryPrefix prefix;
    const fs::path file = prefix.settingsDocument();
    SettingFile document;
    VantroStandaloneSetting setting;
};

TEST_F(SettingFileTest, IsMadeReplacedAndKeepsItsMode)
{
    EXPECT_EQ(document.url(), file);
    EXPECT_EQ(document.read(), std::nullopt);
    ::umask(0077);
    document.write(setting);
    expectWritten();
    EXPECT_EQ(modeOf(file), 0660U);
    for (const mode_t wanted : {0666U, 0600U, 0640U}) {
        // A document is never a program, least of all one that runs as whoever wrote it last.
        constexpr mode_t ofPrograms = 06110;
        fs::permissions(file, fs::perms(wanted | ofPrograms));
        setting.users[0].keys.emplace_back(wanted);
        document.write(setting);
        expectWritten();
        EXPECT_EQ(modeOf(file), wanted);
    }
    EXPECT_EQ(log(), "");
}

TEST_F(SettingFileTest, AFailureLeavesTheOldOneAndIsInTheLog)
{
    writeFile(file, "old");
    fs::permissions(file, fs::perms(0666));
    fs::permissions(prefix.settings(), fs::perms(0555));
    {
        const WithoutPrivileges nobody;
        document.write(setting);
        EXPECT_EQ(contentOf(file), "old");
        EXPECT_NE(log().find(" error VantroStandaloneSetting/SettingFile:"), std::string::npos);
        EXPECT_NE(log().find(file.string() + ": Permission denied"), std::string::npos) << log();
    }
    // One that can't be read can't be kept aside there either.
    fs::permissions(file, fs::perms(0000));
    {
        const WithoutPrivileges nobody;
        document.write(setting);
    }
    fs::permissions(prefix.settings(), fs::perms(0755));
    fs::permissions(file, fs::perms(0644));
    EXPECT_EQ(contentOf(file), "old");
}

TEST_F(SettingFileTest, OneThatCanNotBeReadIsKeptAside)
{
    constexpr std::uintmax_t tooLarge = (std::uintmax_t{256} << 20) + 1;
    const auto elsewhere = prefix.path() / "elsewhere";
    writeFile(elsewhere, "untouched", 0666);
    const struct
    {
        std::string suffix;
        std::function<void()> make;
        std::function<bool(const fs::path& kept)> isWhole;
    } cases[] = {
        {"", [&] { fs::create_directories(file / "inside"); },
         [](const auto& kept) { return exists(kept / "inside"); }},
        {"-1",
         [&] {
             writeFile(file, "");
             fs::resize_file(file, tooLarge);
         },
         [](const auto& kept) { return file_size(kept) == tooLarge; }},
        {"-2", [&] { ASSERT_EQ(::mkfifo(file.c_str(), 0666), 0); }, [](const auto& kept) { return is_fifo(kept); }},
        {"-3", [&] { fs::create_symlink(elsewhere, file); }, [](const auto& kept) { return is_symlink(kept); }},
        {"-4", [&] { fs::create_hard_link(elsewhere, file); },
         [&](const auto& kept) { return equivalent(kept, elsewhere); }},
        {"-5", [&] { writeFile(file, "secret", 0); }, [](const auto& kept) { return file_size(kept) == 6; }},
    };
    const WithoutPrivileges nobody;
    for (const auto& [suffix, make, isWhole] : cases) {
        make();
        EXPECT_EQ(document.read(), std::nullopt);
        document.write(setting);
        expectWritten();
        EXPECT_EQ(modeOf(file), 0660U) << "the mode that could not be read is not taken over";
        EXPECT_TRUE(isWhole(aside(suffix))) << suffix;
        EXPECT_NE(log().find("kept as " + aside(suffix).string() + "."), std::string::npos) << log();
        fs::remove(file);
    }
    EXPECT_EQ(contentOf(elsewhere), "untouched");
}

TEST_F(SettingFileTest, IsWrittenWhenOnlyItsFolderDoesNotReachTheDisk)
{
    const FailingFolderSync failing;
    bool isToldNotWritten = false;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        DocumentNotWritten, [&isToldNotWritten](const Notification&) { isToldNotWritten = true; });
    document.write(setting);
    expectWritten();
    EXPECT_FALSE(isToldNotWritten);
    EXPECT_FALSE(document.keepInvalid());
    for (const char* const name : {".xml is in place, but may not", ".invalid is in place, but may not"})
        EXPECT_NE(log().find(name), std::string::npos) << log();
    EXPECT_EQ(log().find(" error "), std::string::npos) << log();
}

TEST_F(SettingFileTest, OneThatCanBeReadOnlyLaterIsLeftAlone)
{
    writeFile(file, "old");
    fs::permissions(file, fs::perms::none);
    {
        const WithoutPrivileges nobody;
        EXPECT_EQ(document.read(), std::nullopt);
    }
    fs::permissions(file, fs::perms(0666));
    document.write(setting);
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_FALSE(fs::exists(aside("")));
    EXPECT_EQ(document.readability(), std::errc::permission_denied) << "nobody may go on without it";
}

TEST_F(SettingFileTest, IsNotTheOneThatCouldNotBeReadAgain)
{
    document.write(setting);
    const std::string old = contentOf(file);
    std::string nested = old;
    std::string foreign;
    constexpr int depth = 20000;
    for (int tag = 0; tag < 2 * depth; ++tag)
        foreign += tag < depth ? "<x>" : "</x>";
    nested.insert(nested.find("</Users>"), foreign);
    writeFile(file, nested);
    EXPECT_EQ(document.read(), setting);
    document.write(setting);
    EXPECT_GT(fs::file_size(file), nested.size());
    EXPECT_LT(fs::file_size(file), 2 * nested.size()) << "what is nested deeply is written as it is";
    const std::string written = contentOf(file);
    setting.users[0].account.clear();
    document.write(setting);
    EXPECT_EQ(contentOf(file), written);

    writeFile(file, old);
    EXPECT_TRUE(document.read());
    for (const char* const account : {"", "ad\nam", "ad\xff"}) {
        setting.users[0].account = account;
        document.write(setting);
        EXPECT_EQ(contentOf(file), old) << account;
    }
}

TEST_F(SettingFileTest, KeepsWhatItDoesNotKnowUntilItsKeyIsWrittenAway)
{
    document.write(setting);
    std::string text = contentOf(file);
    text.insert(text.find("</YubiKey>"), "<!-- of the key -->").insert(text.find("</Users>"), "<!-- of the users -->");
    const auto kept = [this] {
        const std::string content = contentOf(file);
        return std::pair(content.find("of the key") != std::string::npos,
                         content.find("of the users") != std::string::npos);
    };
    writeFile(file, text);
    EXPECT_EQ(document.read(), setting);
    document.write(setting);
    EXPECT_EQ(kept(), std::pair(true, true));
    document.write({});
    EXPECT_EQ(kept(), std::pair(false, true));
    document.write(setting);
    EXPECT_EQ(kept(), std::pair(false, true)) << "a key that is registered again is a new one";

    writeFile(file, text + "<more/>");
    ASSERT_TRUE(document.read());
    document.write(setting);
    EXPECT_EQ(kept(), std::pair(false, false)) << "an invalid document gives way whole";
}

TEST_F(SettingFileTest, AnInvalidOneIsKeptWithAllThatWereKeptBefore)
{
    const auto invalid = [this](const std::string& suffix) { return file.string() + ".invalid" + suffix; };
    for (const char* const content : {"first", "second", "third"}) {
        writeFile(file, content, 04777);
        EXPECT_FALSE(document.keepInvalid());
    }
    EXPECT_EQ(contentOf(invalid("")), "third");
    EXPECT_EQ(modeOf(invalid("")), 0666U);
    EXPECT_EQ(contentOf(invalid("-old")), "first");
    EXPECT_EQ(contentOf(invalid("-old-1")), "second");
    fs::remove(invalid(""));
    fs::create_directories(fs::path(invalid("")) / "inside");
    EXPECT_FALSE(document.keepInvalid());
    EXPECT_EQ(contentOf(invalid("")), "third");
    EXPECT_TRUE(fs::exists(fs::path(invalid("-old-2")) / "inside"));

    fs::permissions(prefix.settings(), fs::perms(0555));
    const WithoutPrivileges nobody;
    EXPECT_TRUE(document.keepInvalid()) << "nothing may take its place";
    EXPECT_EQ(contentOf(file), "third");
}

} // namespace
} // namespace vantro::tests
