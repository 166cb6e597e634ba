#include "foundation/OperatingSystem.h"

#include <limits>
#include <sstream>

#include "foundation/DurableFile.h"

namespace vantro {
namespace {

OperatingSystemVersion& currentVersion()
{
    static OperatingSystemVersion version{std::numeric_limits<int>::max(), 0, 0};
    return version;
}

/// The shell's reading of a text outside single quotes: a backslash stands for the character behind it.
std::string withoutEscapes(std::string_view text)
{
    std::string plain;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text[position] == '\\' && position + 1 < text.size())
            ++position;
        plain += text[position];
    }
    return plain;
}

} // namespace

std::string prettyName(std::string_view osRelease)
{
    constexpr std::string_view key = "PRETTY_NAME=";
    std::istringstream lines{std::string(osRelease)};
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(key))
            continue;
        std::string value = line.substr(key.size());
        const char quote = value.empty() ? '\0' : value.front();
        if (value.size() >= 2 && (quote == '"' || quote == '\'') && value.back() == quote)
            value = value.substr(1, value.size() - 2);
        return quote == '\'' ? value : withoutEscapes(value);
    }
    return {};
}

std::string ProcessInfo::operatingSystemVersionString()
{
    constexpr std::size_t limit = 1 << 16;
    std::error_code error;
    for (const char* const path : {"/etc/os-release", "/usr/lib/os-release"}) {
        const auto text = readFile(path, limit, error);
        if (text)
            return prettyName(*text).empty() ? "Linux" : prettyName(*text);
    }
    return "Linux";
}

bool ProcessInfo::isOperatingSystemAtLeast(const OperatingSystemVersion& version)
{
    return currentVersion() >= version;
}

void ProcessInfo::setOperatingSystemVersion(const OperatingSystemVersion& version)
{
    currentVersion() = version;
}

} // namespace vantro
