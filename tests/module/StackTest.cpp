// What libpam makes of the module among others, in the folder pam.d: the auth lines of Debian's sudo, su, login,
// lightdm and polkit-1 behind a common-auth as pam-auth-update writes it, and lines of an administrator's own.

#include <array>
#include <filesystem>
#include <regex>
#include <string>

#include <gmock/gmock.h>

#include "VantroStandaloneSetting/SettingFile.h"
#include "module/ModuleFixture.h"

namespace vantro::tests {
namespace {

constexpr int in = PAM_SUCCESS;
constexpr int denied = PAM_AUTH_ERR;
constexpr int notKnown = PAM_AUTHINFO_UNAVAIL;
/// What libpam answers where no line has decided anything.
constexpr int undecided = PAM_PERM_DENIED;

enum Situation
{
    SwitchedOff,
    WithToken,
    WithoutToken,
    WithTokenAndWrongPassword,
    WithDamagedSettings,
    situationCount
};

struct Row
{
    const char* service;
    std::array<int, situationCount> codes;
};

constexpr Row table[] = {
    {"sudo", {in, in, denied, denied, notKnown}},
    {"su", {in, in, denied, denied, notKnown}},
    {"su-l", {in, in, denied, denied, notKnown}},
    {"login", {in, in, denied, denied, notKnown}},
    {"lightdm", {in, in, denied, denied, notKnown}},
    {"polkit-1", {in, in, denied, denied, notKnown}},
    {"own-required-behind", {in, in, denied, denied, notKnown}},
    {"own-required-before", {in, in, denied, denied, notKnown}},
    {"own-optional", {in, in, in, denied, in}},
    {"own-sufficient", {in, in, in, in, in}},
    {"own-required", {undecided, in, denied, in, notKnown}},
};

class StackTest : public ModuleFixture
{
  protected:
    /// Puts the services where libpam finds them and what they include, with stand-ins for the modules that look at
    /// passwords and at who calls.
    void install(bool isPasswordRight) const
    {
        const std::string password = isPasswordRight ? "pam_debug.so auth=success" : "pam_debug.so auth=auth_err";
        const std::pair<std::regex, std::string> changes[] = {
            {std::regex(R"(include(\s+)(\S+))"), "include$1" + services_.path().string() + "/$2"},
            {std::regex("pam_unix\\.so nullok"), password},
            {std::regex("pam_rootok\\.so"), "pam_debug.so auth=auth_err"},
            {std::regex("pam_vantro_standalone\\.so"), VANTRO_PAM_MODULE}};
        for (const auto& entry : std::filesystem::directory_iterator(VANTRO_PAM_SERVICES)) {
            std::string text = contentOf(entry.path());
            for (const auto& [what, replacement] : changes)
                text = std::regex_replace(text, what, replacement);
            writeFile(services_ / entry.path().filename(), text);
        }
    }

    void expect(Situation situation) const
    {
        const auto atOnce = [](pam_handle_t* pam) {
            constexpr auto noDelay = [](int, unsigned, void*) {};
            ::pam_set_item(pam, PAM_FAIL_DELAY, reinterpret_cast<void*>(+noDelay));
        };
        install(situation != WithTokenAndWrongPassword);
        for (const auto& [service, codes] : table)
            EXPECT_EQ(signInThrough(service, "root", {}, atOnce).code, codes[situation])
                << service << " in situation " << situation;
    }
};

TEST_F(StackTest, AnswersInEveryPlace)
{
    lab::VirtualToken token(bed, tokenOf(11));
    demand({&token}, {.secureMode = false});
    expect(SwitchedOff);
    demand({&token});
    expect(WithoutToken);
    token.plugIn();
    expect(WithToken);
    expect(WithTokenAndWrongPassword);
    writeFile(prefix.settings() / SettingFile::fileName, "<damaged");
    expect(WithDamagedSettings);
}

} // namespace
} // namespace vantro::tests
