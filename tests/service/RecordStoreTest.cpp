#include "tokens/RecordStore.h"

#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "LoggerManager/LoggerManager.h"
#include "support/FailingFolderSync.h"
#include "support/TemporaryFolder.h"

namespace vantro::service {
namespace {

namespace fs = std::filesystem;
using Kind = FileFailure::Kind;

constexpr std::uint64_t serial = std::numeric_limits<std::uint64_t>::max();

ChallengeRecord recordOf(std::uint8_t seed)
{
    Challenge challenge;
    challenge.fill(seed);
    Response response;
    response.fill(static_cast<std::uint8_t>(seed + 1));
    return *ChallengeRecord::make(serial, Slot::One, challenge, response);
}

class RecordStoreTest : public testing::Test
{
  protected:
    RecordStoreTest() { fs::create_directory(folder_); }

    void SetUp() override { ASSERT_EQ(::chmod(folder_.c_str(), 0700), 0); }

    const tests::TemporaryFolder temporary_;
    const fs::path folder_ = temporary_.path() / "records";
    const fs::path file_ = folder_ / std::to_string(serial);
    RecordStore store_{folder_, LoggerManager::logger("test", LoggerManager::Destination::StandardError)};
};

TEST_F(RecordStoreTest, WritesReadsRenewsAndRemoves)
{
    for (const bool reachesTheDisk : {true, false}) {
        std::optional<tests::FailingFolderSync> failing;
        if (!reachesTheDisk)
            failing.emplace();
        const auto first = recordOf(1);
        ASSERT_FALSE(store_.write(first));
        EXPECT_EQ(tests::modeOf(file_), 0600U);
        ASSERT_TRUE(store_.read(serial));
        EXPECT_EQ(*store_.read(serial), first);

        const auto second = recordOf(2);
        EXPECT_TRUE(*store_.renew(first, second));
        EXPECT_FALSE(*store_.renew(first, recordOf(3))) << "the record is another one by now";
        EXPECT_EQ(*store_.read(serial), second);

        EXPECT_TRUE(*store_.remove(serial));
        EXPECT_FALSE(*store_.remove(serial));
        EXPECT_FALSE(*store_.renew(second, recordOf(4))) << "a removed record does not come back";
        EXPECT_TRUE(fs::is_empty(folder_));
    }
}

TEST_F(RecordStoreTest, RecordTellsTheRightResponse)
{
    const auto record = recordOf(7);
    Response response;
    response.fill(8);
    EXPECT_TRUE(record.isMatchedBy(response));
    response.back() ^= 1;
    EXPECT_FALSE(record.isMatchedBy(response));
    EXPECT_NE(record.salt, recordOf(7).salt);
}

TEST_F(RecordStoreTest, AnyOtherTextIsNoRecord)
{
    const std::string good = recordOf(1).formatted();
    ASSERT_TRUE(ChallengeRecord::parsed(good));
    const auto changed = [&good](const std::string& from, const std::string& to) {
        std::string text = good;
        return text.replace(text.find(from), from.size(), to);
    };
    const std::string wrong[] = {
        "",
        good.substr(0, good.size() - 1),
        good + "\n",
        changed("response 1", "response 2"),
        changed("slot 1", "slot 3"),
        changed("serial 1", "serial +1"),
        changed("serial 1", "serial 01"),
        changed("challenge 01", "challenge 0"),
        changed("challenge 01", "challenge 0g"),
        changed("salt", "sald"),
    };
    for (const auto& text : wrong)
        EXPECT_FALSE(ChallengeRecord::parsed(text)) << text;
}

/// What somebody did to the files before, and how it is taken.
struct Refusal
{
    std::string name;
    std::function<void(const fs::path& folder, const fs::path& file)> prepare;
    Kind kind;
    bool refusesWriting;
};

class RefusedRecordTest : public RecordStoreTest, public testing::WithParamInterface<Refusal>
{
};

TEST_P(RefusedRecordTest, IsLeftAsItIs)
{
    ASSERT_FALSE(store_.write(recordOf(1)));
    GetParam().prepare(folder_, file_);
    if (IsSkipped())
        return;
    const auto found = store_.read(serial);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.failure().kind, GetParam().kind) << found.failure().text;
    const auto failure = store_.write(recordOf(2));
    EXPECT_EQ(failure.has_value(), GetParam().refusesWriting);
    if (failure) {
        EXPECT_EQ(failure->kind, GetParam().kind) << failure->text;
    } else {
        EXPECT_EQ(tests::modeOf(file_), 0600U);
    }
}

void giveAway(const fs::path& path)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to give a file away";
    ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Files, RefusedRecordTest,
    testing::Values(
        Refusal{"LooseFolder", [](const auto& folder, const auto&) { ::chmod(folder.c_str(), 0710); }, Kind::LooseMode,
                true},
        Refusal{"LooseParent", [](const auto& folder, const auto&) { ::chmod(folder.parent_path().c_str(), 0770); },
                Kind::LooseMode, true},
        Refusal{"FolderOfSomebodyElse", [](const auto& folder, const auto&) { giveAway(folder); }, Kind::WrongOwner,
                true},
        Refusal{"ParentOfSomebodyElse", [](const auto& folder, const auto&) { giveAway(folder.parent_path()); },
                Kind::WrongOwner, true},
        Refusal{"LinkedFolder",
                [](const auto& folder, const auto&) {
                    fs::rename(folder, folder.parent_path() / "elsewhere");
                    fs::create_directory_symlink("elsewhere", folder);
                },
                Kind::SymbolicLink, true},
        Refusal{"MissingFolder", [](const auto& folder, const auto&) { fs::remove_all(folder); }, Kind::Missing, true},
        Refusal{"LinkedRecord",
                [](const auto& folder, const auto& file) {
                    fs::rename(file, folder / "elsewhere");
                    fs::create_symlink("elsewhere", file);
                },
                Kind::SymbolicLink, true},
        Refusal{"Pipe",
                [](const auto&, const auto& file) {
                    fs::remove(file);
                    ::mkfifo(file.c_str(), 0600);
                },
                Kind::WrongType, true},
        Refusal{"RecordOfSomebodyElse", [](const auto&, const auto& file) { giveAway(file); }, Kind::WrongOwner, true},
        Refusal{"LooseRecord", [](const auto&, const auto& file) { ::chmod(file.c_str(), 0640); }, Kind::LooseMode,
                false},
        Refusal{"LargeRecord",
                [](const auto&, const auto& file) { tests::writeFile(file, std::string(5000, ' '), 0600); },
                Kind::TooLarge, false},
        Refusal{"RecordOfAnotherToken",
                [](const auto&, const auto& file) {
                    auto record = recordOf(1);
                    record.serial = 1;
                    tests::writeFile(file, record.formatted(), 0600);
                },
                Kind::BadContent, false}),
    [](const auto& test) { return test.param.name; });

} // namespace
} // namespace vantro::service
