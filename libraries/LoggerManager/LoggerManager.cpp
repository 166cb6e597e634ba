#include "LoggerManager/LoggerManager.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

namespace vantro {
namespace {

constexpr std::size_t rotationSize = std::size_t{2} * 1024 * 1024;
constexpr std::size_t rotatedFiles = 3;

/// spdlog's own names for the levels but "warn".
class LevelName : public spdlog::custom_flag_formatter
{
  public:
    void format(const spdlog::details::log_msg& message, const std::tm& /*time*/,
                spdlog::memory_buf_t& destination) override
    {
        const auto name = message.level == spdlog::level::warn ? spdlog::string_view_t("warning")
                                                               : spdlog::level::to_string_view(message.level);
        destination.append(name.data(), name.data() + name.size());
    }
    [[nodiscard]] std::unique_ptr<custom_flag_formatter> clone() const override
    {
        return std::make_unique<LevelName>();
    }
};

std::shared_ptr<spdlog::logger> makeSink(const std::string& identifier, LoggerManager::Destination destination)
{
    std::vector<spdlog::sink_ptr> sinks = {std::make_shared<spdlog::sinks::stderr_sink_mt>()};
    std::string failure;
    if (destination == LoggerManager::Destination::FileAndStandardError) {
        try {
            sinks.push_back(std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
                LoggerManager::logFile(identifier).string(), rotationSize, rotatedFiles));
        } catch (const spdlog::spdlog_ex& exception) {
            failure = exception.what();
        }
    }
    auto sink = std::make_shared<spdlog::logger>(identifier, sinks.begin(), sinks.end());
    auto formatter = std::make_unique<spdlog::pattern_formatter>(spdlog::pattern_time_type::utc);
    formatter->add_flag<LevelName>('*').set_pattern("%Y-%m-%dT%H:%M:%S.%eZ %* %v");
    sink->set_formatter(std::move(formatter));
    sink->flush_on(spdlog::level::info);
    if (!failure.empty())
        sink->warn("LoggerManager/LoggerManager:{} logger(_:) The log file can't be opened: {}", __LINE__,
                   escapedForLog(failure));
    return sink;
}

} // namespace

Logger LoggerManager::logger(const std::string& identifier, Destination destination)
{
    // Never destroyed: other threads may log while the process is leaving.
    static auto& sinks = *new std::map<std::string, std::shared_ptr<spdlog::logger>>;
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    auto& sink = sinks[identifier];
    if (!sink)
        sink = makeSink(identifier, destination);
    return {sink, {}};
}

std::filesystem::path LoggerManager::logFile(const std::string& identifier)
{
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    std::filesystem::path folder;
    if (state != nullptr && *state == '/')
        folder = state;
    else
        folder = std::filesystem::path(home != nullptr && *home == '/' ? home : "/") / ".local" / "state";
    return folder / "vantro-standalone" / (identifier + ".log");
}

} // namespace vantro
