// PAM entries, through the real service and its folders.

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "VantroStandaloneSetting/PamSetting.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;

const std::string requiredLine = "auth\trequired\tpam_vantro_standalone.so\n";
const std::string optionalLine = "auth\toptional\tpam_vantro_standalone.so\n";
const std::string comment = "# To be included by programs that authenticate as root.\n";

ArchiveData archiveOf(const std::string& service, ControlFlag flag,
                      const std::string& module = "pam_vantro_standalone.so")
{
    return PamSetting{service, ModuleInterface::Auth, flag, module}.archived().value();
}

class PamServiceTest : public ServiceFixture
{
  protected:
    PamServiceTest()
    {
        for (const char* const service : {"authorization", "screensaver", "screensaver_new"})
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
};

TEST_F(PamServiceTest, SavesAndRemovesTheEntry)
{
    prefix.makeDemandable();
    const auto file = prefix.pamServices() / "authorization";
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    for (const char* const service : {"authorization", "screensaver", "screensaver_new"}) {
        EXPECT_TRUE(save(service, ControlFlag::Optional));
        EXPECT_EQ(textOf(service), comment + optionalLine);
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

TEST_F(PamServiceTest, ADemandIsMadeInAllServicesOrInNone)
{
    const fs::path module = prefix.pamModules() / "pam_vantro_standalone.so";
    const fs::path record = prefix.records() / "7";
    const fs::path document = prefix.settings() / VantroStandaloneSetting::fileName;
    const fs::path last = prefix.pamServices() / "screensaver_new";
    const struct
    {
        const char* reason;
        std::function<void()> spoil;
        const char* word;
    } cases[] = {
        {"no module", [&] { fs::remove(module); }, "module-missing"},
        {"an empty module", [&] { writeFile(module, ""); }, "module-unusable"},
        {"a program", [&] { fs::copy_file("/bin/true", module, fs::copy_options::overwrite_existing); },
         "module-unusable"},
        {"no document", [&] { fs::remove(document); }, "no-key-registered"},
        {"no key", [&] { prefix.store({}); }, "no-key-registered"},
        {"no record", [&] { fs::remove(record); }, "no-key-registered"},
        {"a record of another token", [&] { writeFile(record, "7"); }, "no-key-registered"},
        {"a damaged document", [&] { writeFile(document, "<"); }, "document-unreadable"},
        {"a linked document",
         [&] {
             fs::rename(document, document.string() + "-elsewhere");
             fs::create_symlink(document.string() + "-elsewhere", document);
         },
         "document-unreadable"},
        {"a jump over one of three",
         [&] {
             writeFile(prefix.pamServices() / "login",
                       "auth [success=1 default=ignore] pam_unix.so\n@include screensaver_new\n");
         },
         "jump"},
        {"one of three missing", [&] { fs::remove(last); }, "service-file-missing"},
    };
    for (const auto& test : cases) {
        prefix.makeDemandable();
        test.spoil();
        EXPECT_FALSE(save("authorization", ControlFlag::Required)) << test.reason;
        EXPECT_EQ(client.lastFailure(), test.word) << test.reason;
        EXPECT_EQ(textOf("authorization"), comment) << test.reason;
        fs::remove(document);
        fs::remove(prefix.pamServices() / "login");
        writeFile(last, comment);
    }
    prefix.makeDemandable();
    EXPECT_TRUE(save("authorization", ControlFlag::Required));
    EXPECT_EQ(client.lastFailure(), "");
}

TEST_F(PamServiceTest, ADemandCanBeTakenBackWhateverStandsAgainstANewOne)
{
    prefix.makeDemandable();
    ASSERT_TRUE(save("screensaver_new", ControlFlag::Required));
    writeFile(prefix.pamServices() / "login",
              "auth [success=1 default=ignore] pam_unix.so\n@include screensaver_new\n");
    fs::remove(prefix.settings() / VantroStandaloneSetting::fileName);
    fs::remove(prefix.pamModules() / "pam_vantro_standalone.so");
    fs::permissions(prefix.records().parent_path() / "pam-backup", fs::perms::all);
    EXPECT_FALSE(save("screensaver_new", ControlFlag::Required));
    EXPECT_TRUE(save("screensaver_new", ControlFlag::Optional));
    EXPECT_EQ(textOf("screensaver_new"), comment + optionalLine);
}

TEST_F(PamServiceTest, RefusalsLeaveTheFileUntouched)
{
    prefix.makeDemandable();
    for (const auto flag : {ControlFlag::Requisite, ControlFlag::Sufficient})
        EXPECT_FALSE(save("authorization", flag)) << "a token beside the password, or none";
    for (const auto interface : {ModuleInterface::Account, ModuleInterface::Password, ModuleInterface::Session}) {
        const PamSetting other{"authorization", interface, ControlFlag::Optional, "pam_vantro_standalone.so"};
        EXPECT_FALSE(client.savePamSetting(other.archived().value()));
        EXPECT_FALSE(client.removePamSetting(other.archived().value()));
    }
    EXPECT_EQ(textOf("authorization"), comment);

    const std::string broken = comment + "auth required pam_permit.so \\\n";
    writeFile(prefix.pamServices() / "screensaver", broken);
    EXPECT_FALSE(save("screensaver", ControlFlag::Optional));
    EXPECT_EQ(client.lastFailure(), "service-file-unusable");
    EXPECT_EQ(textOf("screensaver"), broken);

    const std::string login = "auth [success=1 default=ignore] pam_unix.so\n@include screensaver_new\n";
    writeFile(prefix.pamServices() / "login", login);
    EXPECT_FALSE(save("screensaver_new", ControlFlag::Optional));
    EXPECT_TRUE(logSays("login: A service that includes it jumps"));
    EXPECT_EQ(textOf("screensaver_new"), comment);

    EXPECT_FALSE(save("login", ControlFlag::Optional));
    EXPECT_FALSE(save("../pam.d/authorization", ControlFlag::Optional));
    EXPECT_EQ(textOf("login"), login);
    EXPECT_EQ(client.lastFailure(), "not-accepted");
    EXPECT_FALSE(client.savePamSetting(archiveOf("authorization", ControlFlag::Optional, "pam_unix.so")));
    EXPECT_FALSE(client.savePamSetting({}));
    EXPECT_FALSE(client.savePamSetting({0xff, 0x00, 0x41}));
    EXPECT_EQ(textOf("authorization"), comment);
    EXPECT_EQ(std::distance(fs::directory_iterator(prefix.pamServices()), fs::directory_iterator()), 4);
}

TEST_F(PamServiceTest, FilesThatAreNotTheServicesOwnAreRefused)
{
    prefix.makeDemandable();
    const auto file = prefix.pamServices() / "authorization";
    ASSERT_EQ(::chmod(file.c_str(), 0664), 0);
    EXPECT_FALSE(save("authorization", ControlFlag::Optional));
    EXPECT_TRUE(logSays("is writable by others"));

    fs::rename(file, prefix.path() / "elsewhere");
    fs::create_symlink(prefix.path() / "elsewhere", file);
    EXPECT_FALSE(save("authorization", ControlFlag::Optional));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(textOf("authorization"), comment);

    fs::remove(file);
    EXPECT_FALSE(save("authorization", ControlFlag::Optional));
    EXPECT_FALSE(fs::exists(file)) << "a service is never made";

    ASSERT_EQ(::chmod(prefix.pamServices().c_str(), 0775), 0);
    EXPECT_FALSE(save("screensaver", ControlFlag::Optional));
    ASSERT_EQ(::chmod(prefix.pamServices().c_str(), 0755), 0);
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to give a file away";
    ASSERT_EQ(::chown((prefix.pamServices() / "screensaver").c_str(), 65534, 65534), 0);
    EXPECT_FALSE(save("screensaver", ControlFlag::Optional));
    EXPECT_TRUE(logSays("belongs to user id 65534"));
    EXPECT_EQ(textOf("screensaver"), comment);
}

/// The folder of PAM services on a file system of its own, which is small and can be made read-only.
class SmallFileSystemTest : public PamServiceTest
{
  protected:
    void SetUp() override
    {
        prefix.makeDemandable();
        isMounted_ = ::mount("tmpfs", prefix.pamServices().c_str(), "tmpfs", 0, "size=24k,mode=0755") == 0;
        if (!isMounted_)
            GTEST_SKIP() << "needs to be allowed to mount: " << std::strerror(errno);
        for (const char* const service : {"authorization", "screensaver", "screensaver_new"})
            writeFile(prefix.pamServices() / service, comment);
    }

    void TearDown() override
    {
        PamServiceTest::TearDown();
        if (isMounted_)
            ::umount2(prefix.pamServices().c_str(), MNT_DETACH);
    }

  private:
    bool isMounted_ = false;
};

TEST_F(SmallFileSystemTest, FullDiskLeavesTheOldFile)
{
    const auto filler = prefix.pamServices() / "filler";
    EXPECT_ANY_THROW(writeFile(filler, std::string(65536, 'x')));
    EXPECT_FALSE(save("authorization", ControlFlag::Required));
    EXPECT_EQ(client.lastFailure(), "disk-full");
    EXPECT_EQ(textOf("authorization"), comment);
    EXPECT_EQ(std::distance(fs::directory_iterator(prefix.pamServices()), fs::directory_iterator()), 4);
    fs::remove(filler);
    EXPECT_TRUE(save("authorization", ControlFlag::Required));
}

TEST_F(SmallFileSystemTest, ReadOnlyFolderLeavesTheOldFile)
{
    ASSERT_EQ(::mount(nullptr, prefix.pamServices().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_FALSE(save("authorization", ControlFlag::Required));
    EXPECT_EQ(client.lastFailure(), "write-failed");
    EXPECT_EQ(textOf("authorization"), comment);
}

TEST_F(PamServiceTest, KilledBetweenTwoFilesLeavesBothWhole)
{
    prefix.makeDemandable();
    EXPECT_TRUE(save("authorization", ControlFlag::Required));
    EXPECT_TRUE(bus.endService(SIGKILL));
    EXPECT_EQ(textOf("authorization"), comment + requiredLine);
    EXPECT_EQ(textOf("screensaver"), comment);
    EXPECT_TRUE(save("screensaver", ControlFlag::Required)) << "the next request starts it again";
    EXPECT_EQ(textOf("screensaver"), comment + requiredLine);
}

TEST_F(PamServiceTest, TokenThatIsWaitedForDelaysNoEntry)
{
    auto profile = tokenOf(11);
    profile.otp.slots[1].needsTouch = true;
    lab::VirtualToken token(bed, profile);
    token.plugIn();
    auto written = std::async(std::launch::async, [] { return ServiceClient().createCRSettingFile(11); });
    ASSERT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
    EXPECT_TRUE(save("authorization", ControlFlag::Optional));
    EXPECT_EQ(written.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    token.touch();
    EXPECT_TRUE(written.get());
}

} // namespace
} // namespace vantro::tests
