// The main function of the tool's tests: without a display, under the device emulation, so that tokens of the machine
// at hand are not seen, and with accounts of the tests' own.

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "CompositionRoot.h"
#include "emulation/Preload.h"
#include "support/Accounts.h"
#include "support/TestProcess.h"

namespace {

/// The directory: "tester", who runs the tests, is no local person; Zed and adam are; ghost has lost its home folder.
void makeAccounts()
{
    const std::string user = std::to_string(::geteuid());
    vantro::tests::replaceAccounts("tester:x:" + user +
                                   ":100:Test Person:/nonexistent:/bin/sh\n"
                                   "Zed:x:1801:100:Zed Zero:/:/bin/sh\nadam:x:1802:100::/:/bin/sh\n"
                                   "ghost:x:1803:100:Gone:/nonexistent:/bin/sh\n");
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
        // A test changes it while there are threads, which can't go together with adding one.
        ::setenv("VANTRO_TEST_CONFIGURATION", "", 1);
    }
    vantro::lab::reexecuteUnderPreload(argv, {NSS_WRAPPER_LIBRARY});
    vantro::installStoryboards();
    testing::InitGoogleTest(&argc, argv);
    // An exit is watched in a process that begins afresh: this one has threads.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const int result = RUN_ALL_TESTS();
    vantro::tests::removeAccounts();
    vantro::tests::endTests(result);
}
