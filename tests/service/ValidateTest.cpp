#include <fstream>
#include <future>
#include <sys/mount.h>
#include <sys/stat.h>

#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using lab::VirtualToken;

class ValidateTest : public ServiceFixture
{
};

TEST_F(ValidateTest, RightTokenIsValidAndItsChallengeIsRenewed)
{
    VirtualToken wanted(bed, tokenOf(11));
    VirtualToken newest(bed, tokenOf(12));
    wanted.plugIn();
    newest.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    std::string record = contentOf(recordOf(11));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(client.validate(11));
        ASSERT_TRUE(waitUntil([this, &record] { return contentOf(recordOf(11)) != record; }));
        record = contentOf(recordOf(11));
        EXPECT_EQ(modeOf(recordOf(11)), 0600U);
    }
    EXPECT_FALSE(client.validate(12)) << "it has no record";
}

TEST_F(ValidateTest, AnotherSecretOrNoTokenIsRefused)
{
    VirtualToken token(bed, tokenOf(11));
    token.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    const std::string record = contentOf(recordOf(11));
    token.unplug();
    EXPECT_FALSE(client.validate(11));
    EXPECT_TRUE(logSays("No token is plugged in."));

    auto profile = tokenOf(11);
    profile.otp.slots[1].key = lab::SlotKey{3, 2, 1};
    VirtualToken forged(bed, profile);
    forged.plugIn();
    EXPECT_FALSE(client.validate(11));
    EXPECT_TRUE(logSays("Its response is not the one of the record"));
    EXPECT_EQ(contentOf(recordOf(11)), record);
    forged.unplug();

    token.plugIn();
    ASSERT_EQ(::chmod(recordOf(11).c_str(), 0644), 0);
    EXPECT_FALSE(client.validate(11));
    EXPECT_TRUE(logSays("is open to others"));
}

TEST_F(ValidateTest, WaitsForATouchAndThenKeepsTheChallenge)
{
    auto profile = tokenOf(11);
    profile.otp.slots[1].needsTouch = true;
    VirtualToken token(bed, profile);
    token.plugIn();
    auto written = std::async(std::launch::async, [this] { return client.createCRSettingFile(11); });
    ASSERT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
    token.touch();
    ASSERT_TRUE(written.get());

    const std::string record = contentOf(recordOf(11));
    auto validated = std::async(std::launch::async, [this] { return client.validate(11); });
    ASSERT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
    EXPECT_EQ(validated.wait_for(4500ms), std::future_status::timeout) << "there is time to find the token";
    token.touch();
    EXPECT_TRUE(validated.get());
    auto overtaken = std::async(std::launch::async, [this] { return client.validate(11); });
    ASSERT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
    EXPECT_TRUE(ServiceClient().removeCRSettingFile(11));
    token.touch();
    EXPECT_FALSE(overtaken.get()) << "its record went while it was waited for";
    EXPECT_EQ(client.lastFailure(), "no-record");
    writeFile(recordOf(11), record, 0600);
    // The token is free again only after everything that belongs to the validation.
    auto next = std::async(std::launch::async, [this] { return client.createCRSettingFile(11); });
    ASSERT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
    EXPECT_EQ(contentOf(recordOf(11)), record);
    token.touch();
    EXPECT_TRUE(next.get());
}

TEST_F(ValidateTest, AFullDiskKeepsTheOldChallenge)
{
    if (::mount("tmpfs", prefix.records().c_str(), "tmpfs", 0, "size=64k,mode=0700") != 0)
        GTEST_SKIP() << "mounting a small file system, for the service too, needs root";
    VirtualToken token(bed, tokenOf(11));
    token.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    const std::string record = contentOf(recordOf(11));
    std::ofstream(prefix.records() / "filler") << std::string(65536, ' ');
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(client.validate(11)) << round;
        EXPECT_TRUE(logSays("The record keeps its challenge."));
        EXPECT_EQ(contentOf(recordOf(11)), record);
    }
    ::umount2(prefix.records().c_str(), MNT_DETACH);
}

TEST_F(ValidateTest, RemovedRecordIsGoneForGood)
{
    VirtualToken token(bed, tokenOf(11));
    token.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    EXPECT_TRUE(client.validate(11));
    EXPECT_TRUE(client.removeCRSettingFile(11));
    EXPECT_TRUE(client.removeCRSettingFile(11));
    EXPECT_FALSE(client.validate(11));
    EXPECT_FALSE(fs::exists(recordOf(11)));
    EXPECT_TRUE(client.removeCRSettingFile(18446744073709551615U));
}

} // namespace
} // namespace vantro::tests
