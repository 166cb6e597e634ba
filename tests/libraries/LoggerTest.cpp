#include "LoggerManager/LoggerManager.h"

#include <cstdlib>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

using testing::MatchesRegex;

TEST(Logger, EscapesControlCharacters)
{
    const std::pair<std::string, const char*> cases[] = {
        {"", ""},
        {"plain é 漢 {} %s", "plain é 漢 {} %s"},
        {"a\nb\tc\rd\\", "a\\nb\\tc\\x0dd\\\\"},
        {std::string("\x1b[31m\0\x7f", 7), "\\x1b[31m\\x00\\x7f"},
        {"\u0080 \u009b \u00a0", "\\x80 \\x9b \u00a0"},
        {"\xc2", "\xc2"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(escapedForLog(text), expected);
}

TEST(Logger, WritesOneLineARecordToTheFileAndStandardError)
{
    const TemporaryFolder folder;
    ::setenv("XDG_STATE_HOME", folder.path().c_str(), 1);
    const auto file = folder / "vantro-standalone" / "tool.log";
    EXPECT_EQ(LoggerManager::logFile("tool"), file);

    testing::internal::CaptureStderr();
    const Logger logger = LoggerManager::logger("tool").inFile("Model/Some");
    logger.info("Launched {} %n Application.", "applicationDidFinishLaunching(_:)");
    logger.warning("two\nlines", "f()");
    LoggerManager::logger("tool").inFile("Other").error("", "g(a:b:)");
    const std::string onStandardError = testing::internal::GetCapturedStderr();

    const std::string time = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z ";
    EXPECT_THAT(
        contentOf(file),
        MatchesRegex(
            time + "info Model/Some:[0-9]+ applicationDidFinishLaunching\\(_:\\) Launched \\{\\} %n Application\\.\n" +
            time + "warning Model/Some:[0-9]+ f\\(\\) two\\\\nlines\n" + time + "error Other:[0-9]+ g\\(a:b:\\) \n"));
    EXPECT_EQ(onStandardError, contentOf(file));
}

TEST(Logger, PutsTheFileIntoTheHomeFolderByDefault)
{
    ::setenv("HOME", "/home/adam", 1);
    for (const char* const state : {"", "relative"}) {
        ::setenv("XDG_STATE_HOME", state, 1);
        EXPECT_EQ(LoggerManager::logFile("tool"), "/home/adam/.local/state/vantro-standalone/tool.log");
    }
    ::unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(LoggerManager::logFile("tool"), "/home/adam/.local/state/vantro-standalone/tool.log");
}

TEST(Logger, GoesOnWithStandardErrorAlone)
{
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    ::setenv("XDG_STATE_HOME", (folder / "file").c_str(), 1);
    testing::internal::CaptureStderr();
    LoggerManager::logger("tool").inFile("A").info("still here", "f()");
    LoggerManager::logger("service", LoggerManager::Destination::StandardError).inFile("B").info("no file", "g()");
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                MatchesRegex("[^\n]* warning LoggerManager/LoggerManager:[^\n]*\n"
                             "[^\n]* f\\(\\) still here\n"
                             "[^\n]* g\\(\\) no file\n"));
}

} // namespace
} // namespace vantro::tests
