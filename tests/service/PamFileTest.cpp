#include "service/PamFile.h"

#include <map>
#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <security/pam_appl.h>

#include "service/PamStack.h"
#include "support/TemporaryFolder.h"

/// libpam itself leaks what it has read of a service when the rest can't be read.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier): the sanitizer's name
{
    return "leak:libpam.so";
}

namespace vantro::service {
namespace {

const PamSetting required{"authorization", ModuleInterface::Auth, ControlFlag::Required, "pam_vantro_standalone.so"};
const PamSetting optional{"authorization", ModuleInterface::Auth, ControlFlag::Optional, "pam_vantro_standalone.so"};
const std::string requiredLine = "auth\trequired\tpam_vantro_standalone.so\n";
const std::string optionalLine = "auth\toptional\tpam_vantro_standalone.so\n";
const std::string permit = "auth required pam_permit.so\n";

/// What libpam makes of a service: the result of an authentication, or of reading it.
int libpamResult(const std::string& text)
{
    const tests::TemporaryFolder folder;
    tests::writeFile(folder.path() / "authorization", text);
    const pam_conv conversation = {[](int, const pam_message**, pam_response**, void*) { return PAM_CONV_ERR; },
                                   nullptr};
    pam_handle_t* handle = nullptr;
    int result = ::pam_start_confdir("authorization", "root", &conversation, folder.path().c_str(), &handle);
    if (result != PAM_SUCCESS)
        return result;
    result = ::pam_authenticate(handle, 0);
    ::pam_end(handle, result);
    return result;
}

/// The setting's entry put into a text: `before` and `after` it, in place of `replaced`.
struct Case
{
    std::string name;
    std::string before;
    std::string replaced;
    std::string after;
};

class PamFileTest : public testing::TestWithParam<Case>
{
};

TEST_P(PamFileTest, HoldsOneEntryAndKeepsEveryOtherByte)
{
    const Case& test = GetParam();
    const auto file = PamFile::parsed(test.before + test.replaced + test.after);
    ASSERT_TRUE(file) << describe(file.failure());
    const auto withRequired = file->withEntry(required);
    ASSERT_TRUE(withRequired);
    EXPECT_EQ(*withRequired, test.before + requiredLine + test.after);

    const auto again = PamFile::parsed(*withRequired);
    ASSERT_TRUE(again);
    EXPECT_EQ(*again->withEntry(required), *withRequired);
    const auto withOptional = again->withEntry(optional);
    ASSERT_TRUE(withOptional);
    EXPECT_EQ(*withOptional, test.before + optionalLine + test.after);
    EXPECT_EQ(*again->withoutEntry(optional), test.before + test.after);

    // The module is not installed where tests run: an entry that takes effect makes itself felt when it is mandatory,
    // and only then.
    EXPECT_EQ(libpamResult(*withRequired + permit), PAM_MODULE_UNKNOWN) << *withRequired;
    EXPECT_EQ(libpamResult(*withOptional + permit), PAM_SUCCESS) << *withOptional;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PamFileTest,
    testing::Values(
        Case{"Empty", "", "", ""}, Case{"CommentsAlone", "# The add-on's entry goes here.\n\n", "", ""},
        Case{"BeforeTheFirstModule", "# one\n", "", "auth sufficient pam_permit.so\nauth required pam_deny.so\n"},
        Case{"BehindOtherInterfaces", "account required pam_permit.so\n", "", "-auth optional pam_permit.so\n"},
        Case{"BeforeAJump", "", "",
             "auth [success=1 default=ignore] pam_permit.so\nauth requisite pam_deny.so\n" + permit},
        Case{"BeforeAnIndentedModule", "#\n", "", "\tAUTH  optional pam_permit.so # comment\n"},
        Case{"InPlace", permit, requiredLine, permit},
        Case{"InPlaceWithPathAndArguments", permit,
             " -AUTH [default=ignore] /lib/security/pam_vantro_standalone.so debug # ours\n", permit},
        Case{"InPlaceOverSeveralLines", "#\n", "auth \\\n  optional\\ \n# between\n\tpam_vantro_standalone.so\n",
             permit},
        Case{"InPlaceWithoutFinalBreak", permit, "auth optional pam_vantro_standalone.so", ""},
        Case{"CommentEndsInABackslash", "# comment \\\n", "", permit},
        Case{"OtherModulesAndInterfacesAreNotOurs",
             "account required pam_vantro_standalone.so\n# auth required pam_vantro_standalone.so\n", "",
             "auth optional pam_vantro_standalone.so.old\n"},
        Case{"LineOf1023Bytes", "#" + std::string(1022, 'x') + "\n", "",
             "auth required pam_permit.so " + std::string(1023 - 28, 'x') + "\n"}),
    [](const auto& test) { return test.param.name; });

TEST(PamFileEndTest, LastLineWithoutBreakIsGivenOne)
{
    EXPECT_EQ(*PamFile::parsed("# comment")->withEntry(required), "# comment\n" + requiredLine);
    EXPECT_EQ(*PamFile::parsed("account required pam_permit.so")->withEntry(required),
              "account required pam_permit.so\n" + requiredLine);
}

TEST(PamFileRefusalTest, WhatLibpamWouldNotReadIsNotChanged)
{
    const std::string start = "auth required pam_permit.so ";
    const struct
    {
        std::string text;
        PamFailure failure;
    } cases[] = {
        {"auth required pam_permit.so\r\n", PamFailure::CarriageReturn},
        {"auth required pam_permit.so\n" + std::string(1, '\0') + "\nauth required pam_deny.so\n",
         PamFailure::ZeroByte},
        {start + std::string(1024 - start.size(), 'x') + "\n", PamFailure::LineTooLong},
        {start + "\\\n" + std::string(1023 - start.size(), 'x') + "\n", PamFailure::LineTooLong},
        {permit + "#" + std::string(1030, 'x') + "\n", PamFailure::LineTooLong},
        {permit + "auth required pam_permit.so \\\n", PamFailure::StrayContinuation},
        {permit + "\\\n", PamFailure::StrayContinuation},
    };
    EXPECT_EQ(libpamResult(permit), PAM_SUCCESS);
    for (const auto& test : cases) {
        const auto file = PamFile::parsed(test.text);
        ASSERT_FALSE(file) << test.text;
        EXPECT_EQ(file.failure(), test.failure) << test.text;
        EXPECT_NE(libpamResult(test.text), PAM_SUCCESS) << test.text;
    }
    const auto twice = PamFile::parsed(requiredLine + permit + optionalLine);
    ASSERT_TRUE(twice);
    EXPECT_EQ(twice->withEntry(required).failure(), PamFailure::SeveralEntries);
    EXPECT_EQ(twice->withoutEntry(required).failure(), PamFailure::SeveralEntries);
}

/// A folder of services.
class PamStackTest : public testing::Test
{
  protected:
    void add(const std::string& name, const std::string& text)
    {
        auto file = PamFile::parsed(text);
        ASSERT_TRUE(file) << text;
        services_.insert_or_assign(name, std::move(*file));
    }

    [[nodiscard]] bool isSpanned(const std::string& includer)
    {
        add("login", includer);
        return stack_.includerJumpFailure(services_.at("login"), required).has_value();
    }

    std::map<std::string, PamFile> services_;
    const PamStack stack_{"/etc/pam.d", [this](const std::string& name) {
                              const auto found = services_.find(name);
                              return found == services_.end() ? nullptr : &found->second;
                          }};
};

TEST_F(PamStackTest, IncludersJumpMustNotSpanTheInclude)
{
    add("authorization", "# empty\n");
    add("two", permit + permit);
    add("leading", "auth [success=2 default=ignore] pam_unix.so\nauth requisite pam_deny.so\n");
    add("nested", "@include authorization\n");
    const std::string jump = "auth [success=1 default=ignore] pam_unix.so\n";
    const struct
    {
        std::string text;
        bool isSpanned;
    } cases[] = {
        {"@include authorization\n", false},
        {jump + "@include authorization\n" + permit, true},
        {jump + "@include /etc/pam.d/authorization\n" + permit, true},
        {jump + "@include /etc/other/authorization\n" + permit, false},
        {jump + "auth include authorization\n" + permit, true},
        {jump + "auth substack authorization\n" + permit, true},
        {jump + "account include authorization\n" + permit, false},
        {jump + permit + "@include authorization\n", false},
        {jump + "account required pam_permit.so\n@include authorization\n", true},
        {"auth [default=ignore success=2] pam_unix.so\n" + permit + "@include authorization\n", true},
        {"auth [success=ok default=die] pam_unix.so\n@include authorization\n", false},
        {"auth [success=2] pam_unix.so\n@include two\n@include authorization\n", false},
        {"auth [success=3] pam_unix.so\n@include two\n@include authorization\n", true},
        {"@include leading\n@include authorization\n", true},
        {jump + "@include nested\n", true},
        {"auth [success=99999999999999999999999] pam_unix.so\n@include authorization\n", true},
    };
    for (const auto& test : cases)
        EXPECT_EQ(isSpanned(test.text), test.isSpanned) << test.text;
}

TEST_F(PamStackTest, ServicesThatIncludeOneAnotherEnd)
{
    add("authorization", "@include login\n@include login\n@include login\n");
    EXPECT_TRUE(isSpanned("@include authorization\n@include authorization\n@include authorization\n"));
}

TEST_F(PamStackTest, EntryInsideAJumpIsLeftAlone)
{
    const auto failureIn = [this](const std::string& text) {
        return stack_.ownJumpFailure(*PamFile::parsed(text), required);
    };
    const std::string jump = "auth [success=1 default=ignore] pam_unix.so\n";
    EXPECT_FALSE(failureIn(jump + permit));
    EXPECT_FALSE(failureIn(requiredLine + jump + permit));
    EXPECT_FALSE(failureIn(jump + permit + requiredLine));
    EXPECT_EQ(failureIn(jump + requiredLine + permit), PamFailure::EntryInsideJump);
}

} // namespace
} // namespace vantro::service
