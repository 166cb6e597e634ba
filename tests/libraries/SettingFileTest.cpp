#include <sys/resource.h>
#include <sys/stat.h>

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
        fs::permissions(prefix.settingsFolder(), fs::perms(0777));
        setting.users.emplace_back("adam").keys.emplace_back(5);
    }

    [[nodiscard]] mode_t mode() const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(file.c_str(), &status), 0);
        return status.st_mode & 07777;
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
    EXPECT_EQ(mode(), 0660U);
    for (const mode_t wanted : {0666U, 0600U, 0640U}) {
        // A document is never a program, least of all one that runs as whoever wrote it last.
        constexpr mode_t ofPrograms = 06110;
        fs::permissions(file, fs::perms(wanted | ofPrograms));
        setting.users[0].keys.emplace_back(wanted);
        document.write(setting);
        expectWritten();
        EXPECT_EQ(mode(), wanted);
    }
    EXPECT_EQ(log(), "");
}

TEST_F(SettingFileTest, AFailureLeavesTheOldOneAndIsInTheLog)
{
    writeFile(file, "old");
    fs::permissions(file, fs::perms(0666));
    fs::permissions(prefix.settingsFolder(), fs::perms(0555));
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
    fs::permissions(prefix.settingsFolder(), fs::perms(0755));
    fs::permissions(file, fs::perms(0644));
    EXPECT_EQ(contentOf(file), "old");
}

TEST_F(SettingFileTest, AFullDiskLeavesTheOldOneAndIsInTheLog)
{
    const SmallFileSystem disk(prefix.settingsFolder());
    if (!disk.isMounted())
        GTEST_SKIP() << "mounting a small file system needs root";
    document.write(setting);
    const std::string old = serialised(setting);
    constexpr std::uint64_t keys = 2 * SmallFileSystem::size / 40;
    for (std::uint64_t serial = 1; serial < keys; ++serial)
        setting.masterKeySetting.masterKeys.emplace_back(serial);
    document.write(setting);
    EXPECT_EQ(contentOf(file), old);
    EXPECT_NE(log().find("No space left on device"), std::string::npos) << log();
}

TEST_F(SettingFileTest, OneThatCanNotBeReadIsKeptAside)
{
    const auto expectKept = [&](const std::string& suffix) {
        EXPECT_EQ(document.read(), std::nullopt);
        document.write(setting);
        expectWritten();
        EXPECT_EQ(mode(), 0660U) << "the mode that could not be read is not taken over";
        EXPECT_TRUE(fs::exists(aside(suffix))) << suffix;
        EXPECT_NE(log().find("kept as " + aside(suffix).string() + "."), std::string::npos) << log();
        fs::remove(file);
    };
    fs::create_directories(file / "inside");
    expectKept("");
    EXPECT_TRUE(fs::exists(aside("") / "inside"));

    writeFile(file, "");
    constexpr std::uintmax_t tooLarge = (std::uintmax_t{256} << 20) + 1;
    fs::resize_file(file, tooLarge);
    expectKept("-1");
    EXPECT_EQ(fs::file_size(aside("-1")), tooLarge);

    ASSERT_EQ(::mkfifo(file.c_str(), 0666), 0);
    expectKept("-2");

    const auto elsewhere = prefix.path() / "elsewhere";
    writeFile(elsewhere, "untouched");
    fs::create_symlink(elsewhere, file);
    expectKept("-3");
    EXPECT_TRUE(fs::is_symlink(aside("-3")));
    fs::create_hard_link(elsewhere, file);
    expectKept("-4");
    EXPECT_EQ(contentOf(elsewhere), "untouched");

    const WithoutPrivileges nobody;
    writeFile(file, "secret");
    fs::permissions(file, fs::perms::none);
    expectKept("-5");
    fs::permissions(aside("-5"), fs::perms(0600));
    EXPECT_EQ(contentOf(aside("-5")), "secret");
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

TEST_F(SettingFileTest, AProcessWithoutDescriptorsLeavesTheOldOne)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs descriptors of its own";
#endif
    writeFile(file, "old");
    rlimit usual = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none = {0, usual.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    document.write(setting);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_FALSE(fs::exists(aside("")));
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
    constexpr int depth = 20000;
    std::string foreign;
    for (int level = 0; level < depth; ++level)
        foreign += "<x>";
    for (int level = 0; level < depth; ++level)
        foreign += "</x>";
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
    for (const char* const end : {"</YubiKey>", "</Users>"})
        text.insert(text.find(end), "<!-- kept -->");
    const auto comments = [this] {
        const std::string content = contentOf(file);
        std::size_t count = 0;
        for (auto at = content.find("kept"); at != std::string::npos; at = content.find("kept", at + 1))
            ++count;
        return count;
    };
    writeFile(file, text);
    EXPECT_EQ(document.read(), setting);
    document.write(setting);
    EXPECT_EQ(comments(), 2U);
    document.write({});
    EXPECT_EQ(comments(), 1U);
    document.write(setting);
    EXPECT_EQ(comments(), 1U) << "a key that is registered again is a new one";

    writeFile(file, text + "<more/>");
    ASSERT_TRUE(document.read());
    document.write(setting);
    EXPECT_EQ(comments(), 0U) << "an invalid document gives way whole";
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

    fs::permissions(prefix.settingsFolder(), fs::perms(0555));
    const WithoutPrivileges nobody;
    EXPECT_TRUE(document.keepInvalid()) << "nothing may take its place";
    EXPECT_EQ(contentOf(file), "third");
}

} // namespace
} // namespace vantro::tests
