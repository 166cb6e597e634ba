// The lock that one process at a time has.

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/ProcessLock.h"
#include "support/LockHolder.h"
#include "support/Privileges.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

TEST(ProcessLock, IsWithOneProcessUntilThatEnds)
{
    const TemporaryFolder folder;
    const auto file = folder.path() / "lock";
    {
        LockHolder other(file);
        const ProcessLock lock(file);
        EXPECT_TRUE(lock.isHeldByAnother());
        EXPECT_EQ(lock.holder(), ::geteuid());
        EXPECT_TRUE(lock.signalHolder(SIGUSR1));
        EXPECT_EQ(other.waitForEnd(), SIGUSR1);
        EXPECT_FALSE(lock.signalHolder(SIGUSR1)) << "it has ended";
    }
    const ProcessLock lock(file);
    EXPECT_FALSE(lock.isHeldByAnother());
    EXPECT_EQ(lock.holder(), std::nullopt);
    EXPECT_FALSE(lock.signalHolder(SIGUSR1));

    struct stat status = {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0666U) << "another account has to be able to take it";
}

TEST(ProcessLock, IsFreeWhereNothingCanBeWritten)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(ProcessLock(folder.path() / "missing" / "lock").isHeldByAnother());
    EXPECT_FALSE(ProcessLock(folder.path() / "missing" / "lock").failure());
}

TEST(ProcessLock, FailsWhereItsFileCanNotBeUsed)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder");
    std::filesystem::create_symlink("elsewhere", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0666), 0);
    for (const char* const name : {"folder", "link", "pipe"})
        EXPECT_TRUE(ProcessLock(folder / name).failure()) << name;
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));

    std::filesystem::permissions(folder.path(), std::filesystem::perms(0777));
    writeFile(folder / "of another", "", 0);
    const WithoutPrivileges nobody;
    EXPECT_EQ(ProcessLock(folder / "of another").failure(), std::errc::permission_denied);
}

} // namespace
} // namespace vantro::tests
