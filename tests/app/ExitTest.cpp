// How the application ends when the toolkit ends it.

#include <cstdio>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "appkit/NSApplication.h"

namespace vantro::tests {
namespace {

struct Witness
{
    ~Witness() { std::fputs("destroyed\n", stderr); }
};

TEST(Application, EndedByTheToolkitDestroysNothingThatOtherThreadsMayUse)
{
    const int count = 1;
    char name[] = "vantro-standalone";
    char* arguments[] = {name, nullptr};
    MainStoryboard storyboard;
    storyboard.stringTables = QStringLiteral(":/strings");
    storyboard.mayLaunch = []() -> bool {
        static const Witness witness;
        std::exit(EXIT_FAILURE);
    };
    EXPECT_EXIT(NSApplicationMain(count, arguments, storyboard), testing::ExitedWithCode(EXIT_FAILURE),
                testing::Not(testing::HasSubstr("destroyed")));
}

} // namespace
} // namespace vantro::tests
