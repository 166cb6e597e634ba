#include "signin/AcceptedTokens.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "foundation/DurableFile.h"
#include "foundation/LastError.h"
#include "foundation/Text.h"

namespace vantro::service {
namespace {

namespace fs = std::filesystem;

constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
constexpr std::size_t fileSizeLimit = 64;

/// A file's words, behind the serial.
constexpr std::string_view pluggedIn = " plugged-in\n";
constexpr std::string_view gone = " gone\n";

std::optional<uid_t> userIdOf(std::string_view name)
{
    const auto user = parseUInt64(name);
    return user && *user == static_cast<uid_t>(*user) ? std::optional(static_cast<uid_t>(*user)) : std::nullopt;
}

std::optional<AcceptedToken> parsed(std::string_view content)
{
    const bool isPluggedIn = content.ends_with(pluggedIn);
    const auto state = isPluggedIn ? pluggedIn : gone;
    if (!content.ends_with(state))
        return std::nullopt;
    const auto serial = parseUInt64(content.substr(0, content.size() - state.size()));
    return serial ? std::optional(AcceptedToken{*serial, isPluggedIn}) : std::nullopt;
}

} // namespace

AcceptedTokens::AcceptedTokens(fs::path folder, const Logger& logger)
    : folder_(std::move(folder)), logger_(logger.inFile("AcceptedTokens"))
{
    constexpr const char* function = "init(_:logger:)";
    if (::mkdir(folder_.c_str(), folderMode) != 0 && errno != EEXIST)
        report(systemFailure(folder_, lastError()), function);
    else if (const auto failure = folderFailure(folder_, openToOthers))
        report(*failure, function);
    removeUnfinishedReplacements(folder_, [](std::string_view name) { return userIdOf(name).has_value(); });
}

std::map<uid_t, AcceptedToken> AcceptedTokens::read() const
{
    std::map<uid_t, AcceptedToken> tokens;
    if (folderFailure(folder_, openToOthers))
        return tokens;
    std::error_code error;
    for (fs::directory_iterator entry(folder_, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        if (const auto user = userIdOf(entry->path().filename().string()))
            if (const auto token = readFile(entry->path()))
                tokens.emplace(*user, *token);
    if (error)
        report(systemFailure(folder_, error), "read()");
    return tokens;
}

std::optional<AcceptedToken> AcceptedTokens::readFile(const fs::path& path) const
{
    constexpr const char* function = "readFile(_:)";
    const auto file = readTrustedFile(path, openToOthers, fileSizeLimit);
    if (!file) {
        report(file.failure(), function);
        return std::nullopt;
    }
    const auto token = parsed(file->content);
    if (!token)
        report({FileFailure::Kind::BadContent, path.string() + " names no token."}, function);
    return token;
}

void AcceptedTokens::write(uid_t user, const AcceptedToken& token) const
{
    constexpr const char* function = "write(_:token:)";
    if (const auto failure = folderFailure(folder_, openToOthers))
        return report(*failure, function);
    const auto path = folder_ / std::to_string(user);
    const auto state = token.isPluggedIn ? pluggedIn : gone;
    const auto written = replaceFile(path, std::to_string(token.serial) + std::string(state), {fileMode, {}, {}, {}});
    if (!written.isDone)
        report(systemFailure(path, written.error), function);
}

void AcceptedTokens::report(const FileFailure& failure, const char* function) const
{
    logger_.error("A restart of the service will not know who is signed in with which token: " + failure.text,
                  function);
}

} // namespace vantro::service
