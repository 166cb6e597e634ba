#include <optional>
#include <string>

#include <pwd.h>

#include <gtest/gtest.h>

#include "emulation/StandInLogind.h"
#include "module/ModuleFixture.h"

namespace vantro::tests {
namespace {

using lab::StandInLogind;
using lab::VirtualToken;

/// Somebody signed in with a token, in front of a screen.
class ScreenLock : public ModuleFixture
{
  protected:
    void signInWithToken(bool locksScreens = true)
    {
        demand({&token}, {.secureMode = true, .screenLock = locksScreens});
        token.plugIn();
        ASSERT_EQ(signIn().code, PAM_SUCCESS);
    }

    [[nodiscard]] bool isLocked(const std::string& session) const
    {
        return waitUntil([&] { return logind->isLocked(session); });
    }

    VirtualToken token{bed, tokenOf(11)};
    VirtualToken other{bed, tokenOf(12)};
    std::optional<StandInLogind> logind{std::in_place, std::vector<StandInLogind::Session>{
                                                           {"x", 0, "root"},
                                                           {"wayland", 0, "root", "wayland"},
                                                           {"console", 0, "root", "tty"},
                                                           {"greeter", 0, "root", "x11", "greeter"},
                                                           {"leaving", 0, "root", "x11", "user", "closing"},
                                                           {"stranger", 1, "daemon"},
                                                       }};
};

TEST_F(ScreenLock, TheTokenThatOpenedTheAccountLocksItsGraphicalSessions)
{
    signInWithToken();
    other.plugIn();
    other.unplug();
    token.unplug();
    EXPECT_TRUE(isLocked("x"));
    EXPECT_TRUE(isLocked("wayland"));
    ASSERT_TRUE(logSays("Session wayland of root is locked."));
    for (const char* const session : {"console", "greeter", "leaving", "stranger"})
        EXPECT_FALSE(logind->isLocked(session)) << session;
    EXPECT_EQ(bus.log().find("12, with which"), std::string::npos);

    // The screen was unlocked without it; then it comes, and goes again.
    logind->unlock("x");
    token.plugIn();
    ASSERT_TRUE(waitUntil([&] { return contentOf(prefix.signedIn() / "0") == "11 plugged-in\n"; }));
    token.unplug();
    EXPECT_TRUE(isLocked("x"));
}

TEST_F(ScreenLock, HappensOnlyWhereItIsSwitchedOn)
{
    signInWithToken(false);
    token.unplug();
    EXPECT_TRUE(waitUntil([&] { return contentOf(prefix.signedIn() / "0") == "11 gone\n"; }));
    EXPECT_EQ(bus.log().find("is to be locked"), std::string::npos);
}

TEST_F(ScreenLock, ATokenThatWentWhileTheServiceWasDownLocksWhenItStarts)
{
    signInWithToken();
    bus.endService(SIGKILL);
    EXPECT_EQ(client.getSerial(), 11u) << "the service starts, and the token is there";
    EXPECT_FALSE(logind->isLocked("x"));
    bus.endService(SIGTERM);
    token.unplug();
    other.plugIn();
    EXPECT_EQ(client.getSerial(), 12u);
    EXPECT_TRUE(isLocked("x"));
}

TEST_F(ScreenLock, WithoutLogindAllElseGoesOn)
{
    logind.reset();
    signInWithToken();
    token.unplug();
    EXPECT_TRUE(logSays("The screen of user id 0 could not be locked"));
    token.plugIn();
    EXPECT_EQ(signIn().code, PAM_SUCCESS);
}

} // namespace
} // namespace vantro::tests
