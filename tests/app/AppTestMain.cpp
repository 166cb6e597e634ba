// The main function of the tool's tests: without a display, under the device emulation, so that tokens of the machine
// at hand are not seen, and with accounts of the tests' own.

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "CompositionRoot.h"
#include "emulation/Preload.h"
#include "support/TemporaryFolder.h"
#include "support/TestProcess.h"

namespace {

constexpr auto passwdVariable = "NSS_WRAPPER_PASSWD";
constexpr auto groupVariable = "NSS_WRAPPER_GROUP";

/// The directory: "tester", who runs the tests, is no local person; Zed and adam are; ghost has lost its home folder.
void makeAccounts()
{
    std::string folder = (std::filesystem::temp_directory_path() / "vantro-accounts-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr)
        std::abort();
    const std::string home = ":" + folder + ":/bin/sh\n";
    const std::string user = std::to_string(::geteuid());
    vantro::tests::writeFile(folder + "/passwd", "tester:x:" + user + ":100:Test Person:/nonexistent:/bin/sh\n" +
                                                     "Zed:x:1801:100:Zed Zero" + home + "adam:x:1802:100:" + home +
                                                     "ghost:x:1803:100:Gone:/nonexistent:/bin/sh\n");
    vantro::tests::writeFile(folder + "/group", "root:x:0:\nusers:x:100:\n");
    ::setenv(passwdVariable, (folder + "/passwd").c_str(), 1);
    ::setenv(groupVariable, (folder + "/group").c_str(), 1);
}

} // namespace

int main(int argc, char** argv)
{
    if (!vantro::lab::isUnderPreload()) {
        vantro::tests::keepTemporaryFilesInMemory();
        makeAccounts();
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
        ::unsetenv("LANGUAGE");
    }
    vantro::lab::reexecuteUnderPreload(argv, {NSS_WRAPPER_LIBRARY});
    vantro::installStoryboards();
    testing::InitGoogleTest(&argc, argv);
    // An exit is watched in a process that begins afresh: this one has threads.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(std::getenv(passwdVariable)).parent_path(), ignored);
    vantro::tests::endTests(result);
}
