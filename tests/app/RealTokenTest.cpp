// The road from a token to the data set with nothing pretended but the token: the real monitor, the real service.

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <future>
#include <memory>
#include <sstream>
#include <sys/mount.h>

#include <gtest/gtest.h>

#include "AppDataSet.h"
#include "LoggerManager/LoggerManager.h"
#include "LoginAuthentication.h"
#include "foundation/Bundle.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

using AuthResult = LoginAuthentication::AuthResult;
using namespace std::chrono_literals;
using lab::VirtualToken;

class RealTokens : public ServiceFixture
{
  protected:
    RealTokens()
    {
        Bundle::setMainPrefix(prefix.path());
        ::setenv("XDG_STATE_HOME", (prefix.path() / "tool").c_str(), 1);
    }
    static AppDataSet& dataSet() { return AppDataSet::shared(); }
    [[nodiscard]] static bool reaches(std::int64_t count, std::optional<std::uint64_t> serial)
    {
        const bool isReached = waitUntil(
            [&] { return dataSet().connectedYubiKeyCount() == count && dataSet().connectedYubiKeySerial() == serial; });
        EXPECT_EQ(dataSet().connectedYubiKeyCount(), count);
        EXPECT_EQ(dataSet().connectedYubiKeySerial(), serial);
        return isReached;
    }
    /// Has the service write the record of a token that is gone again afterwards.
    void writeRecord(std::uint32_t serial)
    {
        VirtualToken token(bed, tokenOf(serial));
        token.plugIn();
        ASSERT_TRUE(client.createCRSettingFile(serial));
    }
    /// What the check has logged since the log had this size.
    [[nodiscard]] static std::string authenticationRecords(std::size_t since)
    {
        std::istringstream lines(toolLog().substr(since));
        std::string records;
        for (std::string line; std::getline(lines, line);) {
            const auto function = line.find(" authenticate() ");
            if (line.find(" info LoginAuthentication:") != std::string::npos && function != std::string::npos)
                records += (records.empty() ? "" : " ") + line.substr(function + std::strlen(" authenticate() "));
        }
        return records;
    }
    static std::string toolLog() { return contentOf(LoggerManager::logFile("VantroStandalone")); }
};

TEST_F(RealTokens, AreCountedWithTheirSerials)
{
    VirtualToken first(bed, tokenOf(11));
    first.plugIn();
    EXPECT_TRUE(reaches(1, 11)) << "was there before the start";

    auto otherSize = tokenOf(3);
    otherSize.fidoReportSize = 32;
    VirtualToken uncounted(bed, otherSize);
    uncounted.plugIn();
    auto otherModel = tokenOf(4294967295U);
    otherModel.productId = 0x0116;
    VirtualToken second(bed, otherModel);
    // Events come in order: when it has been counted, the one before has been passed over.
    second.plugIn();
    EXPECT_TRUE(reaches(2, 4294967295U));
    first.unplug();
    EXPECT_TRUE(reaches(1, {})) << "which one is left is not known";
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::SerialAcquisitionError);
    second.unplug();
    EXPECT_TRUE(reaches(0, {}));
    second.plugIn();
    EXPECT_TRUE(reaches(1, 4294967295U));
}

TEST_F(RealTokens, AServiceThatIsKilledIsStartedForTheNextToken)
{
    VirtualToken first(bed, tokenOf(11));
    VirtualToken second(bed, tokenOf(12));
    first.plugIn();
    EXPECT_TRUE(reaches(1, 11));
    ASSERT_TRUE(bus.endService(SIGKILL));
    EXPECT_TRUE(waitUntil([] { return toolLog().find("Connection has been interrupted.") != std::string::npos; }));
    second.plugIn();
    EXPECT_TRUE(reaches(2, 12));
}

/// One sign-in, from what is plugged in to its result. The administrator key 11 has its record.
struct SignIn
{
    const char* name;
    AuthResult result;
    /// The tokens that are plugged in, in this order.
    std::vector<lab::TokenProfile> tokens;
    /// What happens while the service asks the first token.
    void (*meanwhile)(const PrivateBus&, VirtualToken&) = nullptr;
    /// Why the service did not confirm the token.
    const char* reason = "";
};

constexpr std::uint32_t adminKey = 11;

lab::TokenProfile blinking()
{
    auto profile = tokenOf(adminKey);
    profile.otp.slots[1].needsTouch = true;
    return profile;
}

lab::TokenProfile withOtherSecret()
{
    auto profile = tokenOf(adminKey);
    profile.otp.slots[1].key = lab::SlotKey{9, 9, 9};
    return profile;
}

/// Its keyboard interface, which tells the serial, never comes.
lab::TokenProfile withoutSerial()
{
    auto profile = tokenOf(adminKey);
    profile.interfaces = {lab::TokenInterface::fido};
    return profile;
}

void waitForBlinking(const VirtualToken& token)
{
    EXPECT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
}

class Authentication : public RealTokens, public testing::WithParamInterface<SignIn>
{
};

INSTANTIATE_TEST_SUITE_P(
    RealTokens, Authentication,
    testing::Values(SignIn{"Success", AuthResult::Success, {tokenOf(adminKey)}},
                    SignIn{"Touched",
                           AuthResult::Success,
                           {blinking()},
                           [](const PrivateBus&, VirtualToken& token) {
                               waitForBlinking(token);
                               token.touch();
                           }},
                    SignIn{"NeverTouched",
                           AuthResult::CRFailure,
                           {blinking()},
                           [](const PrivateBus&, VirtualToken& token) { waitForBlinking(token); },
                           "not-touched"},
                    SignIn{"PulledOut",
                           AuthResult::CRFailure,
                           {blinking()},
                           [](const PrivateBus&, VirtualToken& token) {
                               waitForBlinking(token);
                               token.unplug();
                           },
                           "token-gone"},
                    SignIn{"ServiceKilled",
                           AuthResult::CRFailure,
                           {blinking()},
                           [](const PrivateBus& bus, VirtualToken& token) {
                               waitForBlinking(token);
                               EXPECT_TRUE(bus.endService(SIGKILL));
                           }},
                    SignIn{"OtherSecret", AuthResult::CRFailure, {withOtherSecret()}, nullptr, "wrong-response"},
                    SignIn{"NoRecord", AuthResult::CRFailure, {tokenOf(12)}, nullptr, "no-record"},
                    SignIn{"NotConnected", AuthResult::NotConnected, {}},
                    SignIn{"MultipleConnected", AuthResult::MultipleConnected, {tokenOf(22), tokenOf(adminKey)}},
                    SignIn{"SerialAcquisitionError", AuthResult::SerialAcquisitionError, {withoutSerial()}},
                    SignIn{"NotAdminYubiKey", AuthResult::NotAdminYubiKey, {tokenOf(22)}}),
    [](const auto& instance) { return instance.param.name; });

TEST_P(Authentication, HasSixResults)
{
    const SignIn& signIn = GetParam();
    writeRecord(adminKey);
    auto& setting = dataSet().vantroStandaloneSetting;
    setting.adminSetting.adminKeys = {YubiKey(5), YubiKey(12), YubiKey(adminKey)};
    setting.masterKeySetting.masterKeys = {YubiKey(22)};
    std::vector<std::unique_ptr<VirtualToken>> tokens;
    for (const auto& profile : signIn.tokens) {
        tokens.push_back(std::make_unique<VirtualToken>(bed, profile));
        tokens.back()->plugIn();
    }
    const bool isSerialKnown = !tokens.empty() && signIn.result != AuthResult::SerialAcquisitionError;
    const auto serial = isSerialKnown ? std::optional<std::uint64_t>(signIn.tokens.back().otp.serial) : std::nullopt;
    ASSERT_TRUE(reaches(static_cast<std::int64_t>(tokens.size()), serial));
    if (!tokens.empty() && !serial) {
        EXPECT_TRUE(waitUntil([] { return toolLog().find("Serial is nil or 0. [Optional(0)]") != std::string::npos; }));
    }
    const std::string record = contentOf(recordOf(adminKey));
    const std::size_t logged = toolLog().size();

    auto meanwhile = std::async(std::launch::async, [&] {
        if (signIn.meanwhile != nullptr)
            signIn.meanwhile(bus, *tokens.front());
    });
    ServiceFailure failure;
    EXPECT_EQ(LoginAuthentication::authenticate(&failure), signIn.result);
    EXPECT_EQ(failure, ServiceFailure(signIn.reason));
    meanwhile.get();

    std::string expected = "Start login authentication.";
    if (serial && tokens.size() == 1)
        expected += " [Serial: " + std::to_string(*serial) + "]";
    expected += " [Result: " + LoginAuthentication::rawValue(signIn.result) + "]";
    EXPECT_EQ(authenticationRecords(logged), expected);
    const bool isAsked = signIn.result == AuthResult::Success || signIn.result == AuthResult::CRFailure;
    EXPECT_EQ(bus.log().find("Validate") != std::string::npos, isAsked);
    const bool isRenewed = signIn.result == AuthResult::Success && !signIn.tokens[0].otp.slots[1].needsTouch;
    EXPECT_EQ(waitUntil([&] { return contentOf(recordOf(adminKey)) != record; }, isRenewed ? 20s : 100ms), isRenewed)
        << "a challenge is good for one validation, but nobody touches a token twice";
}

TEST_F(RealTokens, WhoseRecordsCantBeReplacedStillOpenTheTool)
{
    if (::mount("tmpfs", prefix.records().c_str(), "tmpfs", 0, "size=64k,mode=0700") != 0)
        GTEST_SKIP() << "needs to be allowed to mount: " << std::strerror(errno);
    writeRecord(adminKey);
    dataSet().vantroStandaloneSetting.adminSetting.adminKeys.emplace_back(adminKey);
    VirtualToken token(bed, tokenOf(adminKey));
    token.plugIn();
    ASSERT_TRUE(reaches(1, adminKey));
    const std::string record = contentOf(recordOf(adminKey));
    std::ofstream(prefix.records() / "filler") << std::string(65536, ' ');
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::Success);
    EXPECT_TRUE(logSays("The record keeps its challenge."));
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::Success) << "with the old challenge";
    EXPECT_EQ(contentOf(recordOf(adminKey)), record);
    ::umount2(prefix.records().c_str(), MNT_DETACH);
}

} // namespace
} // namespace vantro::tests
