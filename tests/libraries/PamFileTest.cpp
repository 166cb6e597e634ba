#include "VantroStandalonePam/PamFile.h"

#include <string>

#include <gtest/gtest.h>

namespace vantro {
namespace {

const PamSetting required{"authorization", ModuleInterface::Auth, ControlFlag::Required, "pam_vantro_standalone.so"};
const PamSetting optional{"authorization", ModuleInterface::Auth, ControlFlag::Optional, "pam_vantro_standalone.so"};
const std::string requiredLine = "auth\trequired\tpam_vantro_standalone.so\n";
const std::string optionalLine = "auth\toptional\tpam_vantro_standalone.so\n";
const std::string permit = "auth required pam_permit.so\n";

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
    const PamFile file(test.before + test.replaced + test.after);
    const auto withRequired = file.withEntry(required);
    ASSERT_TRUE(withRequired) << textOf(withRequired.failure());
    EXPECT_EQ(*withRequired, test.before + requiredLine + test.after);

    const PamFile again(*withRequired);
    EXPECT_EQ(*again.withEntry(required), *withRequired);
    const auto withOptional = again.withEntry(optional);
    ASSERT_TRUE(withOptional);
    EXPECT_EQ(*withOptional, test.before + optionalLine + test.after);
    EXPECT_EQ(*again.withoutEntry(optional), test.before + test.after);
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
    EXPECT_EQ(*PamFile("# comment").withEntry(required), "# comment\n" + requiredLine);
    EXPECT_EQ(*PamFile("account required pam_permit.so").withEntry(required),
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
        {permit + "auth required lib/\n", PamFailure::NamelessEntry},
    };
    for (const auto& test : cases) {
        const auto changed = PamFile(test.text).withEntry(optional);
        ASSERT_FALSE(changed) << test.text;
        EXPECT_EQ(changed.failure(), test.failure) << test.text;
    }
    const PamFile twice(requiredLine + permit + optionalLine);
    EXPECT_EQ(twice.withEntry(required).failure(), PamFailure::SeveralEntries);
    EXPECT_EQ(twice.withoutEntry(required).failure(), PamFailure::SeveralEntries);
}

/// Whatever else is wrong with the text: what the entry demands can be taken back.
TEST(PamFileRefusalTest, OptionalEntryTakesThePlaceOfEveryEntry)
{
    const std::string zero(1, '\0');
    for (const std::string& odd : {permit, "auth required pam_permit.so\r\n" + permit, "# " + zero + "\n", zero + "\n",
                                   "#" + std::string(1100, '#') + "\n", requiredLine}) {
        const std::string relaxed = odd == requiredLine ? optionalLine : odd;
        EXPECT_EQ(*PamFile(odd + requiredLine + odd).withEntry(optional), relaxed + optionalLine + relaxed) << odd;
    }
    const std::string cut = "#" + std::string(1022, '#');
    EXPECT_EQ(PamFile(cut + requiredLine).withEntry(optional).failure(), PamFailure::LineTooLong);
}

} // namespace
} // namespace vantro
