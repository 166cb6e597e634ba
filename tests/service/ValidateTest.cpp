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

using ValidateTest = ServiceFixture;

TEST_F(ValidateTest, RightTokenIsValidAndItsChallengeIsRenewedUntilItsRecordIsRemoved)
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
    EXPECT_TRUE(client.removeCRSettingFile(11));
    EXPECT_TRUE(client.removeCRSettingFile(11)) << "it is gone already";
    EXPECT_FALSE(client.validate(11));
    EXPECT_FALSE(fs::exists(recordOf(11)));
    EXPECT_TRUE(client.removeCRSettingFile(18446744073709551615U));
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

    VirtualToken forged(bed, forgedTokenOf(11));
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
    VirtualToken token(bed, blinkingTokenOf(11));
    token.plugIn();
    auto written = whenBlinking(token, [this] { return client.createCRSettingFile(11); });
    token.touch();
    ASSERT_TRUE(written.get());

    const std::string record = contentOf(recordOf(11));
    auto validated = whenBlinking(token, [this] { return client.validate(11); });
    EXPECT_EQ(validated.wait_for(4500ms), std::future_status::timeout) << "there is time to find the token";
    token.touch();
    EXPECT_TRUE(validated.get());
    auto overtaken = whenBlinking(token, [this] { return client.validate(11); });
    EXPECT_TRUE(ServiceClient().removeCRSettingFile(11));
    token.touch();
    EXPECT_FALSE(overtaken.get()) << "its record went while it was waited for";
    EXPECT_EQ(client.lastFailure(), "no-record");
    writeFile(recordOf(11), record, 0600);
    // The token is free again only after everything that belongs to the validation.
    auto next = whenBlinking(token, [this] { return client.createCRSettingFile(11); });
    EXPECT_EQ(contentOf(recordOf(11)), record);
    token.touch();
    EXPECT_TRUE(next.get());

    auto interrupted = whenBlinking(token, [this] { return client.validate(11); });
    token.unplug();
    EXPECT_FALSE(interrupted.get());
    EXPECT_EQ(client.lastFailure(), "token-gone");
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
    for (int round = 1; round <= 2; ++round) {
        EXPECT_TRUE(client.validate(11)) << round;
        EXPECT_TRUE(waitUntil([&] { return timesLogged("The record keeps its challenge.") == round; }));
        EXPECT_EQ(contentOf(recordOf(11)), record);
    }
    ::umount2(prefix.records().c_str(), MNT_DETACH);
}

} // namespace
} // namespace vantro::tests
