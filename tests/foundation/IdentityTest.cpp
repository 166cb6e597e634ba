#include "foundation/Identity.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "foundation/DurableFile.h"
#include "foundation/FileManager.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

TEST(Identity, ReadsTheRangeOfPeople)
{
    const struct
    {
        const char* loginDefs;
        std::uint32_t first;
        std::uint32_t last;
    } cases[] = {
        {"", 1000, 60000},
        {"UID_MIN 500\nUID_MAX\t\t 4294967295\n", 500, 4294967295},
        {"#UID_MIN 1\n# UID_MIN 2\nSYS_UID_MIN 3\nUID_MINIMUM 4\nMY UID_MIN 5", 1000, 60000},
        {"  UID_MIN\t2000   # people\r\nUID_MAX 3000", 2000, 3000},
        {"UID_MIN many\nUID_MAX 99999999999\nUID_MIN", 1000, 60000},
        {"UID_MIN -1\nUID_MAX -5\n", 1000, 60000},
        {"UID_MIN 1500\nUID_MIN 1600\n", 1600, 60000},
    };
    for (const auto& [loginDefs, first, last] : cases) {
        const auto range = userIdRange(loginDefs);
        EXPECT_EQ(range.first, first) << loginDefs;
        EXPECT_EQ(range.last, last) << loginDefs;
    }
}

TEST(Identity, NamesTheOwnerOfAFile)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    std::error_code error;
    const auto item = FileManagerItem::open(folder / "file", error);
    ASSERT_TRUE(item) << error.message();
    EXPECT_EQ(item->ownerAccountName().value_or(std::to_string(::geteuid())), NSUserName());
    std::filesystem::rename(folder / "file", folder / "renamed");
    std::filesystem::create_symlink("renamed", folder / "file");
    EXPECT_FALSE(item->setPosixPermissions(0666));
    EXPECT_EQ(std::filesystem::status(folder / "renamed").permissions(), std::filesystem::perms(0666));
    EXPECT_FALSE(FileManagerItem::open(folder / "file", error));
    EXPECT_EQ(error, std::errc::too_many_symbolic_link_levels);
    std::filesystem::create_hard_link(folder / "renamed", folder / "twice");
    EXPECT_FALSE(FileManagerItem::open(folder / "renamed", error));
    EXPECT_EQ(error, std::errc::too_many_links);
}

TEST(Identity, QueriesTheUsersOfTheDirectory)
{
    if (std::getenv("NSS_WRAPPER_PASSWD") == nullptr)
        GTEST_SKIP() << "needs the directory that stands beside this test, by way of libnss_wrapper";
    std::error_code error;
    const auto range = userIdRange(readFile("/etc/login.defs", 1 << 20, error).value_or(""));
    if (range.first != UserIdRange().first || range.last != UserIdRange().last)
        GTEST_SKIP() << "this machine has a range of its own in /etc/login.defs";

    const Identity expected[] = {
        {"Zoë Quinn", "zoe", "/home/zoe"},
        {"Adam Adam", "adam", "/nonexistent/adam"},
        {"", "empty", ""},
        {"Smith Amp Amp", "amp", "/home/amp"},
        {"Last", "last", "/home/last"},
    };
    const auto found = queryUserIdentities();
    ASSERT_EQ(found.size(), std::size(expected));
    for (std::size_t number = 0; number < found.size(); ++number) {
        EXPECT_EQ(found[number].posixName, expected[number].posixName);
        EXPECT_EQ(found[number].fullName, expected[number].fullName);
        EXPECT_EQ(found[number].homeDirectory, expected[number].homeDirectory);
    }
    EXPECT_EQ(queryUserIdentities().size(), found.size()) << "a second query begins at the first record again";
    EXPECT_EQ(loginName(1000), "adam");
    EXPECT_EQ(loginName(77777), std::nullopt);
}

} // namespace
} // namespace vantro::tests
