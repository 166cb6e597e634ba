#include "bus/Authorisation.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"

namespace vantro::service {
namespace {

constexpr const char* methods[] = {service_method::getSerial,           service_method::createCRSettingFile,
                                   service_method::removeCRSettingFile, service_method::validate,
                                   service_method::savePamSetting,      service_method::removePamSetting,
                                   service_method::lastFailure};

TEST(AuthorisationTest, EveryMethodIsForAdministratorsAlone)
{
    const struct group* const administrators = ::getgrnam("sudo");
    if (administrators == nullptr)
        GTEST_SKIP() << "needs a group sudo";
    constexpr uid_t somebody = 65533;
    for (const char* const method : methods) {
        EXPECT_TRUE(mayCall(method, {0, {}})) << method;
        EXPECT_TRUE(mayCall(method, {::geteuid(), {}})) << method;
        EXPECT_TRUE(mayCall(method, {somebody, {65533, administrators->gr_gid}})) << method;
        EXPECT_FALSE(mayCall(method, {somebody, {}})) << method;
        EXPECT_FALSE(mayCall(method, {somebody, {0, 65533}})) << method;
    }
}

TEST(AuthorisationTest, AnAccountSignsItselfInAndRootEverybody)
{
    for (const uid_t user : {uid_t{0}, ::geteuid()})
        for (const char* const account : {"root", "nobody", "no-such-account"})
            EXPECT_TRUE(maySignIn({user, {}}, account)) << user << account;
    const struct passwd* const nobody = ::getpwnam("nobody");
    ASSERT_NE(nobody, nullptr);
    const Caller caller{nobody->pw_uid, {}};
    EXPECT_TRUE(maySignIn(caller, "nobody"));
    for (const char* const account : {"root", "no-such-account", ""})
        EXPECT_FALSE(maySignIn(caller, account)) << account;
}

TEST(AuthorisationTest, WhatIsNoMethodIsForNobody)
{
    EXPECT_FALSE(mayCall("getSerial", {0, {}}));
    EXPECT_FALSE(mayCall("", {0, {}}));
}

} // namespace
} // namespace vantro::service
