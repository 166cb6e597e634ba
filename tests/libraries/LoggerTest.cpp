#include "LoggerManager/LoggerManager.h"

#include <cstdlib>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

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

    const auto lines = linesOf(contentOf(file));
    ASSERT_EQ(lines.size(), 3U);
    const std::string time = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z )";
    const std::string expected[] = {
        R"(info Model/Some:\d+ applicationDidFinishLaunching\(_:\) Launched \{\} %n Application\.)",
        R"(warning Model/Some:\d+ f\(\) two\\nlines)",
        R"(error Other:\d+ g\(a:b:\) )",
    };
    for (std::size_t number = 0; number < lines.size(); ++number)
        EXPECT_TRUE(std::regex_match(lines[number], std::regex(time + expected[number]))) << lines[number];
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
    const auto lines = linesOf(testing::internal::GetCapturedStderr());
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_NE(lines[0].find("warning LoggerManager/LoggerManager:"), std::string::npos) << lines[0];
    EXPECT_TRUE(lines[1].ends_with(" f() still here")) << lines[1];
    EXPECT_TRUE(lines[2].ends_with(" g() no file")) << lines[2];
}

} // namespace
} // namespace vantro::tests
