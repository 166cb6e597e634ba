#include <sys/stat.h>

#include <gtest/gtest.h>

#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
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
        fs::permissions(file, fs::perms(wanted));
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
        EXPECT_NE(log().find(" error VantroStandaloneSetting/VantroStandaloneSetting:"), std::string::npos);
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

    const WithoutPrivileges nobody;
    writeFile(file, "secret");
    fs::permissions(file, fs::perms::none);
    expectKept("-3");
    fs::permissions(aside("-3"), fs::perms(0600));
    EXPECT_EQ(contentOf(aside("-3")), "secret");
}

} // namespace
} // namespace vantro::tests
