// The road from a token to the data set with nothing pretended but the token: the real monitor, the real service.

#include <cstdlib>
#include <future>

#include <gtest/gtest.h>

#include "AppDataSet.h"
#include "LoggerManager/LoggerManager.h"
#include "LoginAuthentication.h"
#include "foundation/Bundle.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

using AuthResult = LoginAuthentication::AuthResult;
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

    // A service that is killed is started for the next token.
    ASSERT_TRUE(bus.endService(SIGKILL));
    EXPECT_TRUE(waitUntil([] { return toolLog().find("Connection has been interrupted.") != std::string::npos; }));
    second.plugIn();
    EXPECT_TRUE(reaches(1, 4294967295U));
}

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

/// One sign-in with a token that claims to be the administrator key, which has its record.
struct SignIn
{
    const char* name;
    lab::TokenProfile token;
    /// What happens while the token waits for a touch.
    void (*meanwhile)(const PrivateBus&, VirtualToken&);
    AuthResult result;
    /// Why the service did not confirm the token.
    const char* reason;
};

class Authentication : public RealTokens, public testing::WithParamInterface<SignIn>
{
};

INSTANTIATE_TEST_SUITE_P(
    RealTokens, Authentication,
    testing::Values(SignIn{"Touched", blinking(), [](const PrivateBus&, VirtualToken& token) { token.touch(); },
                           AuthResult::Success, ""},
                    SignIn{"NeverTouched", blinking(), [](const PrivateBus&, VirtualToken&) {}, AuthResult::CRFailure,
                           "not-touched"},
                    SignIn{"PulledOut", blinking(), [](const PrivateBus&, VirtualToken& token) { token.unplug(); },
                           AuthResult::CRFailure, "token-gone"},
                    SignIn{"OtherSecret", withOtherSecret(), nullptr, AuthResult::CRFailure, "wrong-response"}),
    [](const auto& instance) { return instance.param.name; });

TEST_P(Authentication, EndsAsTheTokenAnswers)
{
    const SignIn& signIn = GetParam();
    {
        VirtualToken registered(bed, tokenOf(adminKey));
        registered.plugIn();
        ASSERT_TRUE(client.createCRSettingFile(adminKey));
    }
    dataSet().vantroStandaloneSetting.adminSetting.adminKeys = {5, adminKey};
    VirtualToken token(bed, signIn.token);
    token.plugIn();
    ASSERT_TRUE(reaches(1, adminKey));
    auto meanwhile = std::async(std::launch::async, [&] {
        if (signIn.meanwhile == nullptr)
            return;
        EXPECT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
        signIn.meanwhile(bus, token);
    });
    ServiceFailure failure;
    EXPECT_EQ(LoginAuthentication::authenticate(&failure), signIn.result);
    EXPECT_EQ(failure, ServiceFailure(signIn.reason));
    meanwhile.get();
}

} // namespace
} // namespace vantro::tests
