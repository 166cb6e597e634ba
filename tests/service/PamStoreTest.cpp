#include "pam/PamStore.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <elf.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "LoggerManager/LoggerManager.h"
#include "support/Privileges.h"
#include "support/TemporaryFolder.h"

namespace vantro::service {
namespace {

namespace fs = std::filesystem;

const std::string requiredLine = "auth\trequired\tpam_vantro_standalone.so\n";
const std::string optionalLine = "auth\toptional\tpam_vantro_standalone.so\n";
const std::string permit = "auth required pam_permit.so\n";
const std::string jump = "auth [success=1 default=ignore] pam_unix.so\n";
const std::string include = "@include authorization\n";
const std::string empty = "# To be included.\n";
const std::string done(failure_reason::none);
const fs::path libpamModules = VANTRO_LIBPAM_MODULES_FOLDER;
const fs::path example = fs::path(VANTRO_SOURCE_FOLDER) / "fuzz" / "seeds" / "setting" / "example.xml";

using Reasons = std::vector<std::string>;

/// A store in folders of its own, in which a required entry lacks nothing.
class PamStoreTest : public testing::Test
{
  protected:
    PamStoreTest()
    {
        for (const auto& folder : {folders_.services, folders_.modules, folders_.vendorServices, records_})
            fs::create_directory(folder);
        EXPECT_EQ(::chmod(records_.c_str(), 0700), 0);
        reset();
        add("nested", include);
        fs::create_symlink("authorization", folders_.services / "alias");
    }

    void reset()
    {
        for (const char* const service : services)
            add(service, empty);
        fs::remove_all(module_);
        fs::copy_file(libpamModules / "pam_permit.so", module_);
        tests::writeFile(document_, tests::contentOf(example));
        writeRecord(1);
    }

    void writeRecord(std::uint64_t serial)
    {
        EXPECT_FALSE(recordStore_.write(*ChallengeRecord::make(serial, Slot::Two, {}, {})));
    }

    void add(const std::string& service, const std::string& text) const
    {
        tests::writeFile(folders_.services / service, text);
    }

    [[nodiscard]] std::string textOf(const std::string& service) const
    {
        return tests::contentOf(folders_.services / service);
    }

    /// The reason of the failure; empty when there is none.
    using Action = std::optional<RequestFailure> (PamStore::*)(const ArchiveData&);
    [[nodiscard]] std::string reasonOf(Action action, const PamSetting& setting)
    {
        const auto failure = (store_.*action)(setting.archived().value());
        return failure ? std::string(failure->reason) : done;
    }

    [[nodiscard]] std::string save(const std::string& service, ControlFlag flag)
    {
        return reasonOf(&PamStore::save, {service, ModuleInterface::Auth, flag, "pam_vantro_standalone.so"});
    }

    [[nodiscard]] std::string remove(const std::string& service)
    {
        return reasonOf(&PamStore::remove,
                        {service, ModuleInterface::Auth, ControlFlag::Optional, "pam_vantro_standalone.so"});
    }

    /// What the tool asks for when the switch is turned.
    [[nodiscard]] Reasons saveAll(ControlFlag flag)
    {
        Reasons reasons;
        for (const char* const service : services)
            reasons.push_back(save(service, flag));
        return reasons;
    }

    [[nodiscard]] std::vector<std::string> texts() const
    {
        return {textOf("authorization"), textOf("screensaver"), textOf("screensaver_new")};
    }

    /// The reason why a required entry is refused while there is a service with this text.
    [[nodiscard]] std::string refusal(const std::string& includer)
    {
        add("login", includer);
        auto reason = save("authorization", ControlFlag::Required);
        EXPECT_EQ(textOf("authorization"), reason == done ? empty + requiredLine : empty);
        add("authorization", empty);
        return reason;
    }

    static constexpr std::array services = {"authorization", "screensaver", "screensaver_new"};
    const tests::TemporaryFolder temporary_;
    const PamStore::Folders folders_ = {temporary_ / "pam.d", temporary_ / "security", temporary_ / "backup",
                                        temporary_ / "vendor"};
    const fs::path module_ = folders_.modules / "pam_vantro_standalone.so";
    const fs::path document_ = temporary_ / "document.xml";
    const fs::path records_ = temporary_ / "records";
    RecordStore recordStore_{records_, LoggerManager::logger("test", LoggerManager::Destination::StandardError)};
    const RegisteredKeys registeredKeys_{document_, recordStore_};
    PamStore store_{folders_, registeredKeys_,
                    LoggerManager::logger("PamStoreTest", LoggerManager::Destination::StandardError)};
};

TEST_F(PamStoreTest, OnlyWhatTheToolAsksForIsAccepted)
{
    using Interface = ModuleInterface;
    for (const auto interface : {Interface::Account, Interface::Auth, Interface::Password, Interface::Session})
        for (const auto flag :
             {ControlFlag::Required, ControlFlag::Requisite, ControlFlag::Sufficient, ControlFlag::Optional})
            for (const std::string service : {"screensaver", "login", "../pam.d/screensaver"})
                for (const std::string module : {"pam_vantro_standalone.so", "pam_unix.so"}) {
                    const bool isRight = interface == Interface::Auth && service == "screensaver" &&
                                         (flag == ControlFlag::Required || flag == ControlFlag::Optional) &&
                                         module == "pam_vantro_standalone.so";
                    const PamSetting setting{service, interface, flag, module};
                    const std::string expected(isRight ? done : failure_reason::notAccepted);
                    add("login", permit);
                    EXPECT_EQ(reasonOf(&PamStore::save, setting), expected) << service << pamKeyword(flag) << module;
                    EXPECT_EQ(textOf("screensaver") != empty, isRight);
                    EXPECT_EQ(reasonOf(&PamStore::remove, setting), expected) << service << pamKeyword(flag) << module;
                    EXPECT_EQ(textOf("login"), permit);
                }
    EXPECT_EQ(store_.save({0xff, 0x00, 0x41})->reason, failure_reason::notAccepted);
}

TEST_F(PamStoreTest, NothingIsDemandedThatNobodyCouldGive)
{
    const std::string usable = tests::contentOf(module_);
    const auto changed = [&usable](std::size_t place, auto value) {
        return std::string(usable).replace(place, 1, 1, static_cast<char>(value));
    };
    const auto put = [this](const std::string& content) {
        return [this, content] { tests::writeFile(module_, content); };
    };
    const auto recordOf = [this](const char* serial) { return records_ / serial; };
    const struct
    {
        std::string_view reason;
        std::function<void()> harm;
    } cases[] = {
        {failure_reason::moduleMissing, [this] { fs::remove(module_); }},
        {failure_reason::moduleUnusable, [this] { fs::remove(module_), fs::create_directory(module_); }},
        {failure_reason::moduleUnusable, put("")},
        {failure_reason::moduleUnusable, put("The module stands here.\n")},
        {failure_reason::moduleUnusable, put(usable.substr(0, 100))},
        {failure_reason::moduleUnusable, put(changed(offsetof(Elf64_Ehdr, e_machine), EM_S390))},
        {failure_reason::moduleUnusable, put(changed(offsetof(Elf64_Ehdr, e_type), ET_REL))},
        {failure_reason::moduleUnusable, put(tests::contentOf(libpamModules.parent_path() / "libpam.so.0"))},
        {failure_reason::noKeyRegistered, [&] { fs::remove(recordOf("1")), writeRecord(4); }},
        {failure_reason::noKeyRegistered, [&] { tests::writeFile(recordOf("1"), "damaged", 0600); }},
        {failure_reason::noKeyRegistered, [this] { fs::remove(document_); }},
        {failure_reason::documentUnreadable, [this] { tests::writeFile(document_, "<any/>"); }},
    };
    for (const auto& test : cases) {
        test.harm();
        EXPECT_EQ(saveAll(ControlFlag::Required), Reasons(3, std::string(test.reason)));
        EXPECT_EQ(texts(), std::vector(3, empty)) << test.reason;
        EXPECT_EQ(saveAll(ControlFlag::Optional), Reasons(3)) << test.reason;
        reset();
        EXPECT_EQ(saveAll(ControlFlag::Required), Reasons(3)) << test.reason;
        reset();
    }
}

/// Something in the way of one service's entry: nothing is demanded anywhere, and what was demanded can be taken back.
TEST_F(PamStoreTest, DemandIsAllOrNothingAndCanAlwaysBeTakenBack)
{
    const std::string spanned = jump + "@include screensaver_new\n";
    const std::string jumps(failure_reason::jump);
    const std::string unusable(failure_reason::serviceFileUnusable);
    const struct
    {
        std::string login;
        std::string text;
        /// What stands as it is asked for is not refused.
        std::string reason;
        std::string removal;
        std::string relaxed;
    } cases[] = {
        {spanned, empty, jumps, done, empty},
        {spanned, requiredLine, done, jumps, optionalLine},
        {permit, jump + requiredLine + permit, done, jumps, jump + optionalLine + permit},
        {permit, requiredLine + permit + requiredLine, unusable, unusable, optionalLine + permit + optionalLine},
    };
    for (const auto& test : cases) {
        add("login", test.login);
        add("screensaver_new", test.text);
        EXPECT_EQ(saveAll(ControlFlag::Required), Reasons(3, test.reason)) << test.text;
        const std::string other = test.reason == done ? empty + requiredLine : empty;
        EXPECT_EQ(texts(), (std::vector{other, other, test.text}));
        EXPECT_EQ(remove("screensaver_new"), test.removal) << test.text;
        EXPECT_EQ(saveAll(ControlFlag::Optional), Reasons(3)) << test.text;
        EXPECT_EQ(texts(), (std::vector{empty + optionalLine, empty + optionalLine, test.relaxed}));
        reset();
    }
    add("login", permit);
    EXPECT_EQ(saveAll(ControlFlag::Required), Reasons(3));
    fs::remove_all(folders_.backup);
    tests::writeFile(folders_.backup, "no folder");
    EXPECT_EQ(saveAll(ControlFlag::Optional), Reasons(3));
    EXPECT_EQ(texts(), std::vector(3, empty + optionalLine));
    EXPECT_EQ(saveAll(ControlFlag::Required), Reasons(3, std::string(failure_reason::writeFailed)));
}

TEST_F(PamStoreTest, AFullOrReadOnlyDiskLeavesTheOldFile)
{
    const tests::SmallFileSystem disk(folders_.services);
    if (!disk.isMounted())
        GTEST_SKIP() << "mounting a small file system needs root";
    reset();
    const auto filler = folders_.services / "filler";
    EXPECT_ANY_THROW(tests::writeFile(filler, std::string(2 * tests::SmallFileSystem::size, '#')));
    EXPECT_EQ(save("authorization", ControlFlag::Optional), failure_reason::diskFull);
    EXPECT_EQ(std::distance(fs::directory_iterator(folders_.services), {}), 4) << "what was written is gone";
    fs::remove(filler);
    EXPECT_EQ(save("authorization", ControlFlag::Optional), done);
    ASSERT_EQ(::mount(nullptr, folders_.services.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(save("screensaver", ControlFlag::Optional), failure_reason::writeFailed);
    EXPECT_EQ(texts(), (std::vector{empty + optionalLine, empty, empty}));
}

TEST_F(PamStoreTest, FilesThatAreNotTheServicesOwnAreRefused)
{
    const auto file = folders_.services / "screensaver";
    const auto elsewhere = temporary_ / "elsewhere";
    const std::string unusable(failure_reason::serviceFileUnusable);
    const std::string missing(failure_reason::serviceFileMissing);
    const struct
    {
        std::string reason;
        std::function<void()> harm;
    } cases[] = {
        {unusable, [&] { ::chmod(file.c_str(), 0664); }},
        {unusable, [&] { tests::writeFile(file, empty + "auth required pam_permit.so \\\n"); }},
        {unusable, [&] { fs::rename(file, elsewhere), fs::create_symlink(elsewhere, file); }},
        {missing, [&] { fs::remove(file); }},
        {unusable, [&] { add("screensaver", empty), ::chmod(folders_.services.c_str(), 0775); }},
    };
    for (const auto& test : cases) {
        test.harm();
        const auto text = textOf("screensaver");
        EXPECT_EQ(save("screensaver", ControlFlag::Optional), test.reason) << text;
        EXPECT_EQ(saveAll(ControlFlag::Required), Reasons(3, test.reason)) << text;
        EXPECT_EQ(textOf("screensaver"), text) << "a service is never made";
    }
    ASSERT_EQ(::chmod(folders_.services.c_str(), 0755), 0);
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to give a file away";
    ASSERT_EQ(::chown(file.c_str(), 65534, 65534), 0);
    EXPECT_EQ(save("screensaver", ControlFlag::Optional), unusable);
}

/// How libpam counts is compared with libpam itself, by the program pam_stack.
TEST_F(PamStoreTest, NoJumpOfAnotherServiceLeadsOverTheEntry)
{
    const std::string absolute = "@include " + (folders_.services / "authorization").string() + "\n";
    const std::string jumps(failure_reason::jump);
    const std::string unreadable(failure_reason::includerUnreadable);
    const struct
    {
        std::string text;
        std::string reason;
    } cases[] = {
        {include, done},
        {jump + include + permit, jumps},
        {jump + absolute, jumps},
        {jump + "@include alias\n", jumps},
        {jump + "@include nested\n", jumps},
        {jump + "@include ../pam.d/authorization\n", jumps},
        {jump + "auth [include] authorization\n", jumps},
        {"auth [success=99999999999999999999999] pam_unix.so\n" + include, jumps},
        {jump + std::string(70000, '\n') + include, jumps},
        {jump + "auth include missing\n" + include, done},
        {"@include missing\n" + jump + include, done},
        {include + "@include missing\n", unreadable},
        {include + "@include login\n", unreadable},
        {include + "auth include\n", unreadable},
        {permit + std::string(2'000'000, '\n'), unreadable},
    };
    for (const auto& test : cases)
        EXPECT_EQ(refusal(test.text), test.reason) << test.text.substr(0, 200);

    fs::remove(folders_.services / "login");
    ASSERT_EQ(::mkfifo((folders_.services / "login").c_str(), 0600), 0);
    fs::rename(folders_.services / "login", folders_.services / "pipe");
    EXPECT_EQ(refusal(permit), unreadable);
}

TEST_F(PamStoreTest, ServicesOfPackagesCountUnlessOneOfTheNameIsInTheirPlace)
{
    tests::writeFile(folders_.vendorServices / "polkit-1", jump + include);
    EXPECT_EQ(refusal(permit), failure_reason::jump);
    add("polkit-1", include);
    EXPECT_EQ(refusal(permit), done);
}

} // namespace
} // namespace vantro::service
