#include <atomic>
#include <chrono>
#include <csignal>
#include <future>
#include <limits>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "VantroStandaloneSetting/SettingText.h"
#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using lab::TokenInterface;
using lab::VirtualToken;
using Clock = std::chrono::steady_clock;

/// Asks the service for a serial as another user and answers what dbus-send printed.
std::string callAs(const std::string& groups, const PrivateBus& bus)
{
    return saidByNobody("dbus-send --bus=" + bus.address() + " --print-reply --dest=" + label + " " +
                            serviceObjectPath + " " + label + "." + service_method::getSerial,
                        groups);
}

using SerialTest = ServiceFixture;

TEST_F(SerialTest, NewestTokenAnswers)
{
    VirtualToken first(bed, tokenOf(11));
    VirtualToken second(bed, tokenOf(4294967295));
    first.plugIn(); // before the service starts
    EXPECT_EQ(client.getSerial(), 11U);
    second.plugIn();
    EXPECT_EQ(client.getSerial(), 4294967295U);
    second.unplug();
    EXPECT_EQ(client.getSerial(), 11U);
    first.unplug();
    second.plugIn();
    first.plugIn();
    EXPECT_EQ(client.getSerial(), 11U) << "plugged in again, it is the newest";
}

TEST_F(SerialTest, TokensFromBeforeTheStartCountByTheirAge)
{
    VirtualToken first(bed, tokenOf(11));
    VirtualToken second(bed, tokenOf(12));
    second.plugIn();
    first.plugIn();
    EXPECT_EQ(client.getSerial(), 11U);
}

TEST_F(SerialTest, WaitsForTheKeyboardInterface)
{
    VirtualToken token(bed, tokenOf(11));
    EXPECT_EQ(client.getSerial(), 0U) << "no token, no waiting";
    token.plugIn(TokenInterface::fido);
    auto serial = std::async(std::launch::async, [this] { return client.getSerial(); });
    ASSERT_TRUE(logSays("GetSerial for user id"));
    EXPECT_EQ(serial.wait_for(100ms), std::future_status::timeout);
    token.plugIn(TokenInterface::keyboard);
    EXPECT_EQ(serial.get(), 11U);
}

TEST_F(SerialTest, IsZeroInTimeWhenNoneCanBeRead)
{
    VirtualToken zero(bed, tokenOf(0));
    zero.plugIn();
    EXPECT_EQ(client.getSerial(), 0U);
    zero.unplug();

    auto profile = tokenOf(11);
    profile.interfaces = {TokenInterface::fido};
    VirtualToken withoutKeyboard(bed, profile);
    withoutKeyboard.plugIn();
    const auto start = Clock::now();
    EXPECT_EQ(client.getSerial(), 0U);
    EXPECT_LT(Clock::now() - start, 5s);
    EXPECT_TRUE(logSays("keyboard interface did not appear"));

    profile = tokenOf(12);
    profile.productId = 0x0120;
    VirtualToken unsupported(bed, profile);
    withoutKeyboard.unplug();
    unsupported.plugIn();
    EXPECT_EQ(client.getSerial(), 0U);
    EXPECT_EQ(client.lastFailure(), "no-token");
}

TEST_F(SerialTest, HangingTokenIsGivenUpAndDelaysNobodyElse)
{
    auto profile = tokenOf(11);
    profile.transferTime = 5s; // as long as the kernel waits for a transfer
    VirtualToken older(bed, tokenOf(13));
    older.plugIn();
    VirtualToken hanging(bed, profile);
    hanging.plugIn();
    EXPECT_FALSE(client.createCRSettingFile(13)) << "the newest is asked first and takes all the time";
    EXPECT_TRUE(client.createCRSettingFile(13)) << "who is busy or has failed is asked last";
    EXPECT_TRUE(logSays("[Serial = 13] The token gave no answer in time.")) << "it is free again then";
    const auto start = Clock::now();
    auto serial = std::async(std::launch::async, [] { return ServiceClient().getSerial(); });
    ASSERT_TRUE(opens(hanging.deviceNode(TokenInterface::keyboard)));

    VirtualToken quick(bed, tokenOf(12));
    quick.plugIn();
    EXPECT_EQ(client.getSerial(), 12U);
    EXPECT_TRUE(client.createCRSettingFile(12));
    EXPECT_EQ(serial.wait_for(0s), std::future_status::timeout) << "the slow token was not in the way";
    EXPECT_EQ(serial.get(), 0U);
    EXPECT_LT(Clock::now() - start, 5s);
}

using RecordTest = ServiceFixture;

TEST_F(RecordTest, IsWrittenForTheTokenThatHasTheSerial)
{
    VirtualToken wanted(bed, tokenOf(11));
    VirtualToken newest(bed, tokenOf(12));
    wanted.plugIn();
    newest.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    EXPECT_EQ(modeOf(recordOf(11)), 0600U);
    const std::string first = contentOf(recordOf(11));
    EXPECT_EQ(first.find("vantro-challenge-response 1\nserial 11\nslot 2\nchallenge "), 0U) << first;
    EXPECT_FALSE(fs::exists(recordOf(12)));

    ASSERT_TRUE(client.createCRSettingFile(11));
    EXPECT_NE(contentOf(recordOf(11)), first) << "a new challenge each time";
    EXPECT_EQ(std::distance(fs::directory_iterator(prefix.records()), fs::directory_iterator()), 1);
}

TEST_F(RecordTest, StaysWithTheTokenThatItWasWrittenForWhileAnyListNamesIt)
{
    VirtualToken token(bed, tokenOf(11));
    token.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    token.unplug();
    VirtualToken claimant(bed, forgedTokenOf(11));
    claimant.plugIn();
    const std::string documents[] = {serialised({.users = {{"alice", {11}}}}),
                                     serialised({.masterKeySetting = {.masterKeys = {11}}}),
                                     serialised({.adminSetting = {.adminKeys = {11}}}), "<"};
    const std::string record = contentOf(recordOf(11));
    for (const auto& document : documents) {
        writeFile(prefix.settingsDocument(), document);
        EXPECT_FALSE(client.createCRSettingFile(11)) << document;
        EXPECT_EQ(client.lastFailure(), "claims-another");
        EXPECT_EQ(contentOf(recordOf(11)), record);
    }
    claimant.unplug();
    token.plugIn();
    EXPECT_TRUE(client.createCRSettingFile(11)) << "the token itself may be registered again";
    EXPECT_TRUE(waitUntil([&] { return contentOf(recordOf(11)) != record; })) << "with a new challenge";
    token.unplug();

    claimant.plugIn();
    prefix.store({});
    EXPECT_TRUE(client.createCRSettingFile(11)) << "nobody relies on the record any more";
}

TEST_F(RecordTest, TakesSlotOneWhenSlotTwoIsNotProgrammed)
{
    auto profile = tokenOf(11);
    std::swap(profile.otp.slots[0], profile.otp.slots[1]);
    VirtualToken token(bed, profile);
    token.plugIn();
    ASSERT_TRUE(client.createCRSettingFile(11));
    EXPECT_NE(contentOf(recordOf(11)).find("\nslot 1\n"), std::string::npos);
}

TEST_F(RecordTest, WaitsForATouch)
{
    VirtualToken token(bed, blinkingTokenOf(11));
    token.plugIn();
    auto written = whenBlinking(token, [this] { return client.createCRSettingFile(11); });
    token.touch();
    EXPECT_TRUE(written.get());

    const auto start = Clock::now();
    EXPECT_FALSE(client.createCRSettingFile(11));
    EXPECT_LT(Clock::now() - start, 5s);
    EXPECT_EQ(client.lastFailure(), "not-touched");
    EXPECT_FALSE(token.isWaitingForTouch()) << "it goes on blinking";

    auto interrupted = whenBlinking(token, [this] { return client.createCRSettingFile(11); });
    token.unplug();
    EXPECT_FALSE(interrupted.get());
    EXPECT_TRUE(logSays("The token was unplugged."));
}

TEST_F(RecordTest, RefusalsWriteNothing)
{
    auto profile = tokenOf(11);
    profile.otp.slots[1].key.reset();
    VirtualToken unprogrammed(bed, profile);
    unprogrammed.plugIn();
    EXPECT_FALSE(client.createCRSettingFile(11));
    EXPECT_EQ(client.lastFailure(), "slot-not-programmed");

    EXPECT_FALSE(client.createCRSettingFile(0));
    EXPECT_FALSE(client.createCRSettingFile(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_TRUE(logSays("[Serial = 18446744073709551615] No plugged-in token has this serial."));

    VirtualToken token(bed, tokenOf(12));
    token.plugIn();
    fs::permissions(prefix.records(), fs::perms::owner_all | fs::perms::group_read);
    EXPECT_FALSE(client.createCRSettingFile(12));
    EXPECT_EQ(client.lastFailure(), "records-folder");
    fs::permissions(prefix.records(), fs::perms::owner_all);

    fs::create_symlink("elsewhere", recordOf(12));
    EXPECT_FALSE(client.createCRSettingFile(12));
    EXPECT_EQ(client.lastFailure(), "record-unusable");
    EXPECT_FALSE(fs::exists(prefix.records() / "elsewhere"));
    fs::remove(recordOf(12));

    fs::remove(prefix.records());
    EXPECT_FALSE(client.createCRSettingFile(12));
    EXPECT_TRUE(logSays("Make the folder for the records"));
}

TEST_F(RecordTest, ServiceEndsCleanlyInTheMiddleOfARequest)
{
    VirtualToken token(bed, blinkingTokenOf(11));
    token.plugIn();
    auto written = whenBlinking(token, [] {
        try {
            return ServiceClient().createCRSettingFile(11);
        } catch (const sdbus::Error&) {
            return false;
        }
    });
    const auto start = Clock::now();
    EXPECT_EQ(bus.endService(SIGTERM), 0);
    EXPECT_LT(Clock::now() - start, 3s);
    EXPECT_FALSE(written.get());
    EXPECT_TRUE(logSays("Service ends."));
    EXPECT_EQ(client.getSerial(), 11U) << "the next request starts it again";

    const auto status = bus.endBus();
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status)) << "losing the bus is no crash either";
}

TEST_F(RecordTest, RequestsOfOneAccountLeaveRoomForOthers)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to call as another user";
    VirtualToken token(bed, blinkingTokenOf(11));
    token.plugIn();
    EXPECT_EQ(client.getSerial(), 11U);
    constexpr int flood = 60;
    std::atomic<int> refused = 0;
    std::vector<std::future<void>> requests;
    for (int request = 0; request < flood; ++request)
        requests.push_back(std::async(std::launch::async, [&refused] {
            try {
                ServiceClient().createCRSettingFile(11);
            } catch (const sdbus::Error& error) {
                refused += error.getName() == "org.freedesktop.DBus.Error.LimitsExceeded" ? 1 : 0;
            }
        }));
    EXPECT_TRUE(waitUntil([&refused] { return refused > flood / 2; }));
    EXPECT_NE(callAs("--groups=sudo", bus).find("uint64 11"), std::string::npos);
    token.unplug();
}

TEST(CallerTest, OnlyAdministratorsGetAnAnswer)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to call as another user";
    struct Case
    {
        PrivateBus::Policy policy;
        std::string groups;
        std::string answer;
    };
    const Case cases[] = {
        {PrivateBus::Policy::Installed, "--clear-groups", "org.freedesktop.DBus.Error.AccessDenied"},
        {PrivateBus::Policy::Installed, "--groups=sudo", "uint64 0"},
        {PrivateBus::Policy::Open, "--clear-groups", "Only administrators may call this method."},
        {PrivateBus::Policy::Open, "--groups=sudo", "uint64 0"},
    };
    const lab::TokenBed bed;
    for (const auto& test : cases) {
        const ServicePrefix prefix;
        const PrivateBus bus(prefix, test.policy);
        EXPECT_EQ(ServiceClient().getSerial(), 0U);
        const std::string output = callAs(test.groups, bus);
        EXPECT_NE(output.find(test.answer), std::string::npos) << test.groups << output << bus.log();
    }
}

} // namespace
} // namespace vantro::tests
