// PAM entries, through the real service and its folders.

#include <array>
#include <csignal>
#include <future>

#include <sys/stat.h>

#include "VantroStandaloneSetting/PamSetting.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;

const std::string requiredLine = "auth\trequired\tpam_vantro_standalone.so\n";
const std::string optionalLine = "auth\toptional\tpam_vantro_standalone.so\n";
const std::string comment = "# To be included by programs that authenticate as root.\n";

ArchiveData archiveOf(const std::string& service, ControlFlag flag)
{
    return PamSetting{service, ModuleInterface::Auth, flag, "pam_vantro_standalone.so"}.archived().value();
}

class PamServiceTest : public ServiceFixture
{
  protected:
    PamServiceTest()
    {
        for (const char* const service : services)
            writeFile(prefix.pamServices() / service, comment);
    }

    [[nodiscard]] bool save(const std::string& service, ControlFlag flag)
    {
        return client.savePamSetting(archiveOf(service, flag));
    }

    [[nodiscard]] std::string textOf(const std::string& service) const
    {
        return contentOf(prefix.pamServices() / service);
    }

    static constexpr std::array services = {"authorization", "screensaver", "screensaver_new"};
};

TEST_F(PamServiceTest, SavesAndRemovesTheEntry)
{
    const auto file = prefix.pamServices() / "authorization";
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    for (const char* const service : services) {
        EXPECT_TRUE(save(service, ControlFlag::Optional));
        EXPECT_EQ(textOf(service), comment + optionalLine);
        EXPECT_FALSE(save(service, ControlFlag::Required)) << "there is no module, and no key";
    }
    prefix.makeDemandable();
    for (const char* const service : services) {
        EXPECT_TRUE(save(service, ControlFlag::Required));
        EXPECT_EQ(textOf(service), comment + requiredLine);
    }
    EXPECT_EQ(modeOf(file), 0640U);
    EXPECT_EQ(contentOf(prefix.records().parent_path() / "pam-backup" / "authorization"), comment + optionalLine);

    struct stat before = {};
    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    EXPECT_TRUE(save("authorization", ControlFlag::Required));
    struct stat after = {};
    ASSERT_EQ(::stat(file.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino) << "nothing to change, nothing written";

    EXPECT_TRUE(client.removePamSetting(archiveOf("authorization", ControlFlag::Required)));
    EXPECT_EQ(textOf("authorization"), comment);
    EXPECT_TRUE(client.removePamSetting(archiveOf("authorization", ControlFlag::Required))) << "it is gone already";
}

TEST_F(PamServiceTest, KilledBetweenTwoFilesLeavesBothWhole)
{
    EXPECT_TRUE(save("authorization", ControlFlag::Optional));
    EXPECT_TRUE(bus.endService(SIGKILL));
    EXPECT_EQ(textOf("authorization"), comment + optionalLine);
    EXPECT_EQ(textOf("screensaver"), comment);
    const auto backups = prefix.records().parent_path() / "pam-backup";
    const fs::path leftBehind[] = {prefix.pamServices() / ".authorization.1.new", backups / ".screensaver.2.new",
                                   prefix.records() / ".18446744073709551615.3.new"};
    const auto foreign = prefix.pamServices() / ".login.1.new";
    for (const auto& file : leftBehind)
        writeFile(file, "");
    writeFile(foreign, "");
    EXPECT_TRUE(save("screensaver", ControlFlag::Optional)) << "the next request starts it again";
    EXPECT_EQ(textOf("screensaver"), comment + optionalLine);
    for (const auto& file : leftBehind)
        EXPECT_FALSE(fs::exists(file)) << file;
    EXPECT_TRUE(fs::exists(foreign));
}

TEST_F(PamServiceTest, TokenThatIsWaitedForDelaysNoEntry)
{
    lab::VirtualToken token(bed, blinkingTokenOf(11));
    token.plugIn();
    auto written = whenBlinking(token, [] { return ServiceClient().createCRSettingFile(11); });
    EXPECT_TRUE(save("authorization", ControlFlag::Optional));
    EXPECT_EQ(written.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    token.touch();
    EXPECT_TRUE(written.get());
}

} // namespace
} // namespace vantro::tests
