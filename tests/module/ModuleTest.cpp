#include <chrono>
#include <clocale>
#include <functional>
#include <future>
#include <libintl.h>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <security/pam_appl.h>
#include <sys/stat.h>

#include <sdbus-c++/sdbus-c++.h>

#include "VantroStandaloneNames.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "module/ModuleFixture.h"

namespace vantro::tests {
namespace {

using namespace std::chrono_literals;
using lab::VirtualToken;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* plugIn = "Plug in your token.";
constexpr const char* touch = "Touch your token.";
constexpr const char* noToken = "No registered token was plugged in.";
constexpr const char* refused = "The token was not accepted.";
constexpr const char* unavailable = "The token could not be checked. Try again, or ask an administrator.";

/// What the stack answers where the module ignores the sign-in.
constexpr int ignored = PAM_MODULE_UNKNOWN;

using ModuleTest = ModuleFixture;

TEST_F(ModuleTest, LetsInWhoHasTheTokenAndNobodyElse)
{
    VirtualToken token(bed, tokenOf(11));
    VirtualToken stranger(bed, tokenOf(12));
    EXPECT_EQ(signIn().code, ignored) << "there is no settings document";
    demand({&token});

    EXPECT_EQ(signIn().code, PAM_AUTH_ERR);
    stranger.plugIn();
    EXPECT_THAT(signIn().said, ElementsAre(noToken));
    token.plugIn();
    const auto accepted = signIn();
    EXPECT_EQ(accepted.code, PAM_SUCCESS);
    EXPECT_THAT(accepted.said, IsEmpty());
    EXPECT_EQ(signIn("wait=0", "no-such-account").code, PAM_USER_UNKNOWN);
    token.unplug();

    const auto waited = signIn("wait=20", "root", [&](const std::string&) { token.plugIn(); });
    EXPECT_EQ(waited.code, PAM_SUCCESS);
    EXPECT_THAT(waited.said, ElementsAre(plugIn));
}

TEST_F(ModuleTest, AsksForATouch)
{
    auto profile = tokenOf(11);
    profile.otp.slots[1].needsTouch = true;
    VirtualToken token(bed, profile);
    token.plugIn();
    std::string records[2];
    for (auto& record : records) {
        auto creation = std::async(std::launch::async, [&] { return client.createCRSettingFile(11); });
        ASSERT_TRUE(waitUntil([&] { return token.isWaitingForTouch(); }));
        token.touch();
        ASSERT_TRUE(creation.get());
        record = contentOf(recordOf(11));
    }
    VantroStandaloneSetting setting;
    setting.switchSetting.secureMode = true;
    setting.masterKeySetting.masterKeys.emplace_back(11);
    prefix.store(setting);

    const auto touched = signIn("wait=0", "root", [&](const std::string&) { token.touch(); });
    EXPECT_EQ(touched.code, PAM_SUCCESS);
    EXPECT_THAT(touched.said, ElementsAre(touch));

    const auto changed = signIn("wait=0", "root", [&](const std::string&) {
        writeFile(recordOf(11), records[0], 0600);
        token.touch();
    });
    EXPECT_EQ(changed.code, PAM_SUCCESS);
    EXPECT_THAT(changed.said, ElementsAre(touch, touch)) << "what answers a record of before does not count";
}

TEST_F(ModuleTest, WhatCanNotBeCheckedIsNotLetIn)
{
    VirtualToken token(bed, tokenOf(11));
    auto profile = tokenOf(11);
    profile.otp.slots[1].key = lab::SlotKey{9};
    VirtualToken forged(bed, profile);
    VirtualToken other(bed, tokenOf(12));
    demand({&token, &other});

    forged.plugIn();
    EXPECT_THAT(signIn().said, ElementsAre(refused));
    forged.unplug();
    other.plugIn();
    forged.plugIn();
    EXPECT_EQ(signIn().code, PAM_SUCCESS) << "the older of two passes";
    other.unplug();
    forged.unplug();

    token.plugIn();
    const auto record = contentOf(recordOf(11));
    ASSERT_EQ(::chmod(recordOf(11).c_str(), 0644), 0);
    EXPECT_THAT(signIn().said, ElementsAre(unavailable));
    writeFile(recordOf(11), "damaged", 0600);
    EXPECT_EQ(signIn().code, PAM_AUTHINFO_UNAVAIL);
    std::filesystem::remove(recordOf(11));
    EXPECT_EQ(signIn().code, PAM_AUTHINFO_UNAVAIL);
    writeFile(recordOf(11), record, 0600);
    EXPECT_EQ(signIn().code, PAM_SUCCESS);

    writeFile(prefix.settings() / SettingFile::fileName, "<damaged");
    EXPECT_THAT(signIn().said, ElementsAre(unavailable));
    writeFile(prefix.settings() / SettingFile::fileName, "");
    EXPECT_EQ(signIn().code, PAM_AUTHINFO_UNAVAIL);
}

TEST_F(ModuleTest, DemandsNothingWhereThatWouldLockEverybodyOut)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    VantroStandaloneSetting setting;
    setting.users.emplace_back("nobody").keys.emplace_back(11);
    prefix.store(setting);
    EXPECT_EQ(signIn().code, ignored) << "it is switched off";
    setting.switchSetting.secureMode = true;
    prefix.store(setting);
    const auto withoutKeys = signIn("wait=60");
    EXPECT_EQ(withoutKeys.code, PAM_AUTH_ERR) << "only another account has keys";
    EXPECT_THAT(withoutKeys.said, ElementsAre(noToken)) << "no token could help, so none is waited for";
    setting.users.clear();
    prefix.store(setting);
    EXPECT_EQ(signIn().code, ignored) << "no key is registered";
}

TEST_F(ModuleTest, TokensOfAnotherMachineAreNotWaitedFor)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    token.plugIn();
    const auto from = [](const char* host) {
        return [host](pam_handle_t* pam) { ::pam_set_item(pam, PAM_RHOST, host); };
    };
    EXPECT_EQ(signIn("", "root", {}, from("192.0.2.7")).code, PAM_AUTH_ERR);
    EXPECT_EQ(signIn("remote=ignore", "root", {}, from("192.0.2.7")).code, ignored);
    for (const char* const host : {"localhost", "127.0.0.1", "::1", ""})
        EXPECT_EQ(signIn("wait=0", "root", {}, from(host)).code, PAM_SUCCESS) << host;
}

TEST_F(ModuleTest, ArgumentsThatAreNotKnownChangeNothing)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    for (const char* const wait :
         {"wait=0", "wait=0 wait=121", "wait=0 wait=-1", "wait=0 wait=", "wait=0 wait=1s use_uid"}) {
        const auto before = std::chrono::steady_clock::now();
        EXPECT_EQ(signIn(wait).code, PAM_AUTH_ERR) << wait;
        EXPECT_LT(std::chrono::steady_clock::now() - before, 5s) << wait;
    }
    EXPECT_THAT(signIn("wait=1", "root", {}, {}, PAM_SILENT).said, ElementsAre(plugIn)) << "what to do, but no reason";
}

TEST_F(ModuleTest, ServiceOrBusThatGoIsNoSuccess)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    const auto killed = signIn("wait=60", "root", [&](const std::string& text) {
        if (text == plugIn)
            bus.endService(SIGKILL);
    });
    EXPECT_EQ(killed.code, PAM_AUTHINFO_UNAVAIL);
    EXPECT_THAT(killed.said, ElementsAre(plugIn, unavailable));

    bus.endBus();
    EXPECT_EQ(signIn("wait=60").code, PAM_AUTHINFO_UNAVAIL);
}

TEST_F(ModuleTest, ACallerThatLeavesEndsItsRequestAndASecondOneMustWait)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    auto leaving = sdbus::createSystemBusConnection();
    auto proxy = sdbus::createProxy(*leaving, names::service, names::serviceObject);
    proxy->finishRegistration();
    const auto ask = [&proxy](std::uint32_t wait) {
        auto call = proxy->createMethodCall(names::sign_in::interface, names::sign_in::authenticate);
        call << std::string("root") << wait;
        return call;
    };
    proxy->callMethod(ask(60), [](sdbus::MethodReply&, const sdbus::Error*) {});
    EXPECT_THROW(proxy->callMethod(ask(0), 5000000), sdbus::Error);
    proxy.reset();
    leaving.reset();
    EXPECT_TRUE(logSays("root: no-token."));
}

TEST_F(ModuleTest, SpeaksTheLanguageOfTheProgram)
{
    VirtualToken token(bed, tokenOf(11));
    demand({&token});
    ::bindtextdomain("pam_vantro_standalone", VANTRO_PAM_TEXTS);
    const std::pair<const char*, const char*> texts[] = {{"de", "Es wurde kein registrierter Token eingesteckt."},
                                                         {"ja", "登録済みのトークンが挿入されませんでした。"},
                                                         {"xx", noToken}};
    for (const auto& [language, text] : texts) {
        ::setenv("LANGUAGE", language, 1);
        // gettext looks anew where the locale changes.
        std::setlocale(LC_ALL, "C");
        ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
        EXPECT_THAT(signIn().said, ElementsAre(text));
    }
    ::unsetenv("LANGUAGE");
}

} // namespace
} // namespace vantro::tests
