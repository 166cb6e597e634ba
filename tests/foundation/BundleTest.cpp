#include "foundation/Bundle.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

TEST(Bundle, ReadsTheDictionaryOfTheBuildTree)
{
    const Bundle bundle(VANTRO_BUILD_PREFIX);
    EXPECT_EQ(bundle.string(bundle_key::shortVersion), VANTRO_VERSION);
    for (const auto key : {bundle_key::settingsFolder, bundle_key::challengeResponseFolder, bundle_key::signedInFolder,
                           bundle_key::pamServicesFolder, bundle_key::pamModulesFolder})
        EXPECT_TRUE(std::filesystem::path(bundle.string(key)).is_absolute()) << key;
    EXPECT_EQ(bundle.string("NoSuchKey"), "");
}

TEST(Bundle, TakesTheTextsOfADictionaryAndNothingElse)
{
    const struct
    {
        const char* plist;
        const char* value;
    } cases[] = {
        {"<plist><dict><key>K</key><string>a &amp; b</string></dict></plist>", "a & b"},
        {"<plist><dict><key>J</key><true/><key>K</key><!-- note --><string> v </string></dict></plist>", " v "},
        {"<plist><dict><key>K</key><integer>1</integer></dict></plist>", ""},
        {"<plist><dict><key>K</key><string>v</string>", ""},
        {"", ""},
    };
    for (const auto& [plist, value] : cases) {
        const TemporaryFolder folder;
        const auto file = Bundle(folder.path()).resourceFolder() / "Info.plist";
        std::filesystem::create_directories(file.parent_path());
        writeFile(file, plist);
        EXPECT_EQ(Bundle(folder.path()).string("K"), value) << plist;
    }
    EXPECT_EQ(Bundle("/nonexistent").string("K"), "") << "no file at all";
}

TEST(Bundle, MainIsFoundFromTheExecutable)
{
    const auto executable = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(Bundle::main().prefix(), executable.parent_path().parent_path());
    EXPECT_FALSE(Bundle::setMainPrefix("/elsewhere")) << "too late";
    EXPECT_EQ(Bundle::main().prefix(), executable.parent_path().parent_path());
}

} // namespace
} // namespace vantro::tests
