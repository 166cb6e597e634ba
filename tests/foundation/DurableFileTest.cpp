#include "foundation/DurableFile.h"

#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "foundation/FileDescriptor.h"
#include "support/FailingFolderSync.h"
#include "support/Privileges.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;

struct stat statusOf(const fs::path& path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

std::size_t entriesIn(const fs::path& folder)
{
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

TEST(ReplaceFile, SetsModeAndContentWhateverTheUmaskAndTheOldFile)
{
    const TemporaryFolder folder;
    for (const mode_t mask : {0U, 0027U, 0777U}) {
        for (const mode_t mode : {0600U, 0666U, 0444U}) {
            ::umask(mask);
            const std::string content = std::to_string(mask) + " " + std::to_string(mode);
            EXPECT_TRUE(replaceFile(folder / "file", content, {mode, {}, {}, {}}).isDurable());
            ::umask(0022);
            EXPECT_EQ(statusOf(folder / "file").st_mode & 07777, mode) << "umask " << mask;
            EXPECT_EQ(contentOf(folder / "file"), content);
        }
    }
    EXPECT_TRUE(replaceFile(folder / "file", "", {}).isDurable());
    EXPECT_EQ(contentOf(folder / "file"), "");
    EXPECT_EQ(entriesIn(folder.path()), 1U) << "no new file is left behind";
}

TEST(ReplaceFile, ReplacesALinkAndNeverItsTarget)
{
    const TemporaryFolder folder;
    writeFile(folder / "target", "untouched");
    fs::create_symlink("target", folder / "link");
    fs::create_symlink("missing", folder / "dangling");
    for (const char* const link : {"link", "dangling"}) {
        EXPECT_TRUE(replaceFile(folder / link, "new", {}).isDurable());
        EXPECT_TRUE(S_ISREG(statusOf(folder / link).st_mode)) << link;
    }
    EXPECT_EQ(contentOf(folder / "target"), "untouched");
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST(ReplaceFile, SetsOwnerAndGroup)
{
    const TemporaryFolder folder;
    if (::geteuid() != 0) {
        EXPECT_EQ(replaceFile(folder / "file", "x", {0600, 0, {}, {}}).error, std::errc::operation_not_permitted);
        EXPECT_EQ(entriesIn(folder.path()), 0U);
        GTEST_SKIP() << "only root can give a file to another user";
    }
    EXPECT_TRUE(replaceFile(folder / "file", "x", {04755, 12, 34, {}}).isDurable());
    const auto status = statusOf(folder / "file");
    EXPECT_EQ(status.st_uid, 12U);
    EXPECT_EQ(status.st_gid, 34U);
    EXPECT_EQ(status.st_mode & 07777, 04755U) << "the mode survives the change of owner";
    EXPECT_TRUE(replaceFile(folder / "file", "x", {0600, {}, 34, {}}).isDurable());
    EXPECT_EQ(statusOf(folder / "file").st_uid, ::geteuid());
}

TEST(ReplaceFile, AFailureLeavesTheOldFileAlone)
{
    const TemporaryFolder folder;
    EXPECT_EQ(replaceFile(folder / "missing" / "file", "x", {}).error, std::errc::no_such_file_or_directory);
    fs::create_directories(folder / "directory" / "full");
    EXPECT_FALSE(replaceFile(folder / "directory", "x", {}).isDone);
    EXPECT_EQ(entriesIn(folder.path()), 1U);

    writeFile(folder / "file", "old");
    fs::permissions(folder.path(), fs::perms(0555));
    {
        const WithoutPrivileges nobody;
        EXPECT_EQ(replaceFile(folder / "file", "new", {}).error, std::errc::permission_denied);
    }
    fs::permissions(folder.path(), fs::perms(0755));
    EXPECT_EQ(contentOf(folder / "file"), "old");
}

TEST(ReplaceFile, AFullDiskLeavesTheOldFileAlone)
{
    const TemporaryFolder folder;
    const SmallFileSystem disk(folder.path());
    if (!disk.isMounted())
        GTEST_SKIP() << "mounting a small file system needs root";
    writeFile(folder / "file", "old");
    EXPECT_EQ(replaceFile(folder / "file", std::string(2 * SmallFileSystem::size, 'x'), {}).error,
              std::errc::no_space_on_device);
    EXPECT_EQ(contentOf(folder / "file"), "old");
    EXPECT_EQ(entriesIn(folder.path()), 1U) << "the part that was written is gone";
    EXPECT_TRUE(replaceFile(folder / "file", "new", {}).isDurable());
}

TEST(ReplaceFile, AKillAtAnyInstantLeavesOneWholeFile)
{
    const TemporaryFolder folder;
    const auto file = folder / "file";
    const std::string contents[] = {std::string(300'000, 'a'), std::string(200'000, 'b')};
    ASSERT_TRUE(replaceFile(file, contents[0], {}).isDurable());
    std::mt19937 random(1);
    for (int round = 0; round < 40; ++round) {
        int ends[2] = {};
        ASSERT_EQ(::pipe(ends), 0);
        const FileDescriptor reading(ends[0]);
        FileDescriptor writing(ends[1]);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (std::size_t number = 0;; ++number) {
                if (!replaceFile(file, contents[number % 2], {}).isDurable() || ::write(writing.get(), "x", 1) != 1)
                    ::_exit(1);
            }
        }
        writing.close();
        char byte = 0;
        EXPECT_EQ(::read(reading.get(), &byte, 1), 1) << "the child replaces the file";
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        const std::string found = contentOf(file);
        ASSERT_TRUE(found == contents[0] || found == contents[1]) << round << ": " << found.size() << " bytes";
    }
    EXPECT_TRUE(replaceFile(file, contents[0], {}).isDurable());
    EXPECT_EQ(entriesIn(folder.path()), 1U) << "what the kills left is gone with the next replacement";
}

TEST(ReplaceFile, IsDoneWhenOnlyTheFolderDoesNotReachTheDisk)
{
    const TemporaryFolder folder;
    const FailingFolderSync failing;
    const auto replacement = replaceFile(folder / "file", "new", {});
    EXPECT_TRUE(replacement.isDone);
    EXPECT_FALSE(replacement.isDurable());
    EXPECT_EQ(replacement.error, std::errc::io_error);
    EXPECT_EQ(contentOf(folder / "file"), "new");
    EXPECT_EQ(FailingFolderSync::syncedFiles(), 1) << "the content alone";
}

TEST(ReplaceFile, KeepsTheOldFileAsideInTheSameInstantOrDoesNothing)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "old");
    writeFile(folder / "taken", "");
    EXPECT_EQ(replaceFile(folder / "file", "new", {0600, {}, {}, folder / "taken"}).error, std::errc::file_exists);
    EXPECT_EQ(contentOf(folder / "file"), "old");
    EXPECT_TRUE(replaceFile(folder / "file", "new", {0600, {}, {}, folder / "aside"}).isDurable());
    EXPECT_EQ(contentOf(folder / "file") + contentOf(folder / "aside"), "newold");
    EXPECT_FALSE(replaceFile(folder / "missing", "new", {0600, {}, {}, folder / "other"}).isDone);
    EXPECT_EQ(entriesIn(folder.path()), 3U);
}

TEST(RemoveUnfinishedReplacements, TakesTheirFilesAlone)
{
    const TemporaryFolder folder;
    for (const char* const name : {".file.1.new", ".other.file.42.new"})
        writeFile(folder / name, "");
    for (const char* const name : {"file", "file.1.new", ".1.new", "..1.new", ".new", ".file.new", ".file.1a.new",
                                   ".file.1.new~", ".foreign.1.new"})
        writeFile(folder / name, "");
    fs::create_directory(folder / ".folder.1.new");
    writeFile(folder / ".busy.1.new", "");
    const FileDescriptor busy(::open((folder / ".busy.1.new").c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::flock(busy.get(), LOCK_EX), 0);
    removeUnfinishedReplacements(folder.path(), [](std::string_view name) { return name != "foreign"; });
    EXPECT_EQ(entriesIn(folder.path()), 11U);
    EXPECT_FALSE(fs::exists(folder / ".file.1.new"));
    EXPECT_FALSE(fs::exists(folder / ".other.file.42.new"));
}

TEST(RemoveUnfinishedReplacements, NeverMakesAReplacementFail)
{
    const TemporaryFolder folder;
    const std::jthread remover([&folder](const std::stop_token& stop) {
        while (!stop.stop_requested())
            removeUnfinishedReplacements(folder.path(), [](std::string_view) { return true; });
    });
    constexpr int replacements = 200;
    for (int number = 0; number < replacements; ++number)
        ASSERT_TRUE(replaceFile(folder / "file", "x", {}).isDurable()) << number;
}

TEST(ReadFile, TakesRegularFilesUpToTheLimit)
{
    const TemporaryFolder folder;
    const std::string content("a\0b\n", 4);
    writeFile(folder / "file", content);
    writeFile(folder / "empty", "");
    writeFile(folder / "huge", "");
    fs::resize_file(folder / "huge", std::uintmax_t{1} << 40);
    writeFile(folder / "secret", "x");
    fs::permissions(folder / "secret", fs::perms::none);
    fs::permissions(folder.path(), fs::perms(0755));
    fs::create_symlink("file", folder / "link");
    writeFile(folder / "twice", "");
    fs::create_hard_link(folder / "twice", folder / "thrice");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0666), 0);
    constexpr std::errc none{};
    const struct
    {
        const char* name;
        std::size_t limit;
        std::optional<std::string> expected;
        std::errc error;
        Links links = Links::Follow;
    } cases[] = {
        {"file", 4, content, none},
        {"file", 3, {}, std::errc::file_too_large},
        {"link", 4, content, none},
        {"link", 4, {}, std::errc::too_many_symbolic_link_levels, Links::Refuse},
        {"twice", 9, {}, std::errc::too_many_links, Links::Refuse},
        {"file", 4, content, none, Links::Refuse},
        {"empty", 0, "", none},
        {"huge", 1000, {}, std::errc::file_too_large},
        {"missing", 10, {}, std::errc::no_such_file_or_directory},
        {".", 10, {}, std::errc::not_supported},
        {"pipe", 10, {}, std::errc::not_supported},
        {"secret", 10, {}, std::errc::permission_denied},
    };
    const WithoutPrivileges nobody;
    for (const auto& [name, limit, expected, expectedError, links] : cases) {
        std::error_code error = std::make_error_code(std::errc::interrupted);
        EXPECT_EQ(readFile(folder / name, limit, error, links), expected) << name;
        EXPECT_EQ(error.value(), static_cast<int>(expectedError)) << name;
    }
    std::error_code error;
    constexpr std::size_t procLimit = 65536;
    EXPECT_TRUE(readFile("/proc/self/status", procLimit, error)) << "a file whose size is not known before";
}

} // namespace
} // namespace vantro::tests
