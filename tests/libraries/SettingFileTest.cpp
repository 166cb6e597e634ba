#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "support/FailingFolderSync.h"
#include "support/Privileges.h"
#include "support/TemporaryPrefix.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;

class SettingFile : public testing::Test
{
  protected:
    SettingFile()
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
    void expectWritten() const
    {
        const auto text = readXML(file);
        ASSERT_TRUE(text);
        EXPECT_EQ(*text, serialised(setting));
        EXPECT_TRUE(VantroStandaloneSetting(XML::parse(*text)).isValid());
    }

    const TemporaryPrefix prefix;
    const fs::path file = prefix.settingsDocument();
    VantroStandaloneSetting setting;
};

TEST_F(SettingFile, IsMadeReplacedAndKeepsItsMode)
{
    EXPECT_EQ(VantroStandaloneSetting::url(), file);
    EXPECT_EQ(readXML(file), std::nullopt);
    ::umask(0077);
    setting.write();
    expectWritten();
    EXPECT_EQ(mode(), 0660U);
    for (const mode_t wanted : {0666U, 0600U, 0640U}) {
        // A document is never a program, least of all one that runs as whoever wrote it last.
        constexpr mode_t ofPrograms = 06110;
        fs::permissions(file, fs::perms(wanted | ofPrograms));
        setting.users[0].keys.emplace_back(wanted);
        setting.write();
        expectWritten();
        EXPECT_EQ(mode(), wanted);
    }
    EXPECT_EQ(log(), "");
}

TEST_F(SettingFile, AFailureLeavesTheOldOneAndIsInTheLog)
{
    writeFile(file, "old");
    fs::permissions(file, fs::perms(0666));
    fs::permissions(prefix.settingsFolder(), fs::perms(0555));
    {
        const WithoutPrivileges nobody;
        setting.write();
        EXPECT_EQ(contentOf(file), "old");
        EXPECT_NE(log().find(" error VantroStandaloneSetting/SettingFile:"), std::string::npos);
        EXPECT_NE(log().find(file.string() + ": Permission denied"), std::string::npos) << log();
    }
    // One that can't be read can't be kept aside there either.
    fs::permissions(file, fs::perms(0000));
    {
        const WithoutPrivileges nobody;
        setting.write();
    }
    fs::permissions(prefix.settingsFolder(), fs::perms(0755));
    fs::permissions(file, fs::perms(0644));
    EXPECT_EQ(contentOf(file), "old");
}

TEST_F(SettingFile, AFullDiskLeavesTheOldOneAndIsInTheLog)
{
    const SmallFileSystem disk(prefix.settingsFolder());
    if (!disk.isMounted())
        GTEST_SKIP() << "mounting a small file system needs root";
    setting.write();
    const std::string old = serialised(setting);
    constexpr std::uint64_t keys = 2 * SmallFileSystem::size / 40;
    for (std::uint64_t serial = 1; serial < keys; ++serial)
        setting.masterKeySetting.masterKeys.emplace_back(serial);
    setting.write();
    EXPECT_EQ(contentOf(file), old);
    EXPECT_NE(log().find("No space left on device"), std::string::npos) << log();
}

TEST_F(SettingFile, OneThatCanNotBeReadIsKeptAside)
{
    const auto expectKept = [&](const std::string& suffix) {
        EXPECT_EQ(readXML(file), std::nullopt);
        setting.write();
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

TEST_F(SettingFile, IsWrittenWhenOnlyItsFolderDoesNotReachTheDisk)
{
    const FailingFolderSync failing;
    bool isToldNotWritten = false;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        DocumentNotWritten, [&isToldNotWritten](const Notification&) { isToldNotWritten = true; });
    setting.write();
    expectWritten();
    EXPECT_FALSE(isToldNotWritten);
    EXPECT_FALSE(VantroStandaloneSetting::keepInvalid());
    for (const char* const name : {".xml is in place, but may not", ".invalid is in place, but may not"})
        EXPECT_NE(log().find(name), std::string::npos) << log();
    EXPECT_EQ(log().find(" error "), std::string::npos) << log();
}

TEST_F(SettingFile, AProcessWithoutDescriptorsLeavesTheOldOne)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer needs descriptors of its own";
#endif
    writeFile(file, "old");
    rlimit usual = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none = {0, usual.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    setting.write();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_FALSE(fs::exists(aside("")));
}

TEST_F(SettingFile, OneThatCanBeReadOnlyLaterIsLeftAlone)
{
    writeFile(file, "old");
    fs::permissions(file, fs::perms::none);
    {
        const WithoutPrivileges nobody;
        EXPECT_EQ(readXML(file), std::nullopt);
    }
    fs::permissions(file, fs::perms(0666));
    setting.write();
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_FALSE(fs::exists(aside("")));
    EXPECT_EQ(VantroStandaloneSetting::readability(), std::errc::permission_denied) << "nobody may go on without it";
}

TEST_F(SettingFile, IsNotTheOneThatCouldNotBeReadAgain)
{
    setting.write();
    const std::string old = contentOf(file);
    std::string nested = old;
    constexpr int depth = 20000;
    std::string foreign;
    for (int level = 0; level < depth; ++level)
        foreign += "<x>";
    for (int level = 0; level < depth; ++level)
        foreign += "</x>";
    nested.insert(nested.find("</Users>"), foreign);
    VantroStandaloneSetting(XML::parse(nested)).write();
    EXPECT_LT(fs::file_size(file), 2 * nested.size()) << "what is nested deeply is written as it is";
    EXPECT_TRUE(VantroStandaloneSetting(XML::parse(contentOf(file))).isValid());

    writeFile(file, old);
    VantroStandaloneSetting damaged(XML::parse(nested));
    damaged.users[0].account.clear();
    damaged.write();
    EXPECT_EQ(contentOf(file), old);
    for (const char* const account : {"", "ad\nam", "ad\xff"}) {
        setting.users[0].account = account;
        setting.write();
        EXPECT_EQ(contentOf(file), old) << account;
    }
}

TEST_F(SettingFile, AnInvalidOneIsKeptWithAllThatWereKeptBefore)
{
    const auto invalid = [this](const std::string& suffix) { return file.string() + ".invalid" + suffix; };
    for (const char* const content : {"first", "second", "third"}) {
        writeFile(file, content, 04777);
        EXPECT_FALSE(VantroStandaloneSetting::keepInvalid());
    }
    EXPECT_EQ(contentOf(invalid("")), "third");
    EXPECT_EQ(modeOf(invalid("")), 0666U);
    EXPECT_EQ(contentOf(invalid("-old")), "first");
    EXPECT_EQ(contentOf(invalid("-old-1")), "second");
    fs::remove(invalid(""));
    fs::create_directories(fs::path(invalid("")) / "inside");
    EXPECT_FALSE(VantroStandaloneSetting::keepInvalid());
    EXPECT_EQ(contentOf(invalid("")), "third");
    EXPECT_TRUE(fs::exists(fs::path(invalid("-old-2")) / "inside"));

    fs::permissions(prefix.settingsFolder(), fs::perms(0555));
    const WithoutPrivileges nobody;
    EXPECT_TRUE(VantroStandaloneSetting::keepInvalid()) << "nothing may take its place";
    EXPECT_EQ(contentOf(file), "third");
}

} // namespace
} // namespace vantro::tests
