// Many who sign in at once, and somebody who keeps the service busy.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "VantroStandaloneNames.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "module/ModuleFixture.h"

namespace vantro::tests {
namespace {

using namespace std::chrono_literals;
using lab::VirtualToken;
using testing::AnyOf;
using testing::Each;
using testing::HasSubstr;

constexpr int manyCallers = 100;
constexpr int placesOfAnAccount = 4;

class CallersTest : public ModuleFixture
{
  protected:
    /// What each of a hundred is answered who sign in at once.
    std::vector<int> codesOfMany() const
    {
        std::vector<std::future<SignedIn>> attempts;
        for (int caller = 0; caller < manyCallers; ++caller)
            attempts.push_back(std::async(std::launch::async, [this] { return signInThrough("try"); }));
        std::vector<int> codes;
        for (auto& attempt : attempts)
            codes.push_back(attempt.get().code);
        return codes;
    }
};

TEST_F(CallersTest, AHundredAtOnceAreEachAnsweredRightly)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    EXPECT_EQ(signIn().code, PAM_AUTH_ERR);
    const auto denied = AnyOf(PAM_AUTH_ERR, PAM_AUTHINFO_UNAVAIL);
    EXPECT_THAT(codesOfMany(), Each(denied));
    token.plugIn();
    const auto codes = codesOfMany();
    // The one token has not answered everybody in time.
    EXPECT_THAT(codes, Each(AnyOf(PAM_SUCCESS, denied)));
    EXPECT_GT(std::count(codes.begin(), codes.end(), PAM_SUCCESS), 0);
    EXPECT_EQ(signIn().code, PAM_SUCCESS) << "once they are through";
}

TEST_F(CallersTest, AStrangersFloodLeavesRootsSignInAlone)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to call as another user";
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    VantroStandaloneSetting setting;
    setting.switchSetting.secureMode = true;
    setting.users.emplace_back("root").keys.emplace_back(11);
    setting.users.emplace_back("nobody").keys.emplace_back(12);
    prefix.store(setting);
    const auto asking = [this](const std::string& account) {
        return "dbus-send --bus=" + bus.address() + " --print-reply --reply-timeout=60000 --dest=" + names::service +
               " " + names::serviceObject + " " + names::sign_in::interface + "." + names::sign_in::authenticate +
               " string:" + account + " uint32:60";
    };
    EXPECT_THAT(saidByNobody(asking("root")), HasSubstr("Only root may ask for another account."));

    const std::string flood =
        "for caller in $(seq " + std::to_string(manyCallers) + "); do " + asking("nobody") + " & done; wait";
    auto flooding = std::async(std::launch::async, [&flood] { return saidByNobody("sh -c '" + flood + "'"); });
    // All have asked: none comes later and has the service started again.
    ASSERT_TRUE(waitUntil([this] {
        return timesLogged("The sign-in of nobody was refused. Too many") == manyCallers - placesOfAnAccount;
    }));
    token.plugIn();
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(signIn().code, PAM_SUCCESS);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 5s);
    EXPECT_EQ(flooding.wait_for(0s), std::future_status::timeout) << "those that are waited for still wait";
    bus.endService(SIGTERM);
    EXPECT_THAT(flooding.get(), HasSubstr("Too many sign-ins are under way."));
}

} // namespace
} // namespace vantro::tests
