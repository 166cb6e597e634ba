#include "LoggerManager/Logger.h"

#include <spdlog/spdlog.h>
#include <utility>

namespace vantro {
namespace {

void write(spdlog::logger& sink, spdlog::level::level_enum level, const std::string& file, std::string_view message,
           std::string_view function, int line)
{
    sink.log(level, spdlog::string_view_t(file + ":" + std::to_string(line) + " " + std::string(function) + " " +
                                          escapedForLog(message)));
}

} // namespace

std::string escapedForLog(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char character = text[position];
        const auto byte = static_cast<unsigned char>(character);
        const auto next = position + 1 < text.size() ? static_cast<unsigned char>(text[position + 1]) : 0;
        if (character == '\\')
            escaped += "\\\\";
        else if (character == '\n')
            escaped += "\\n";
        else if (character == '\t')
            escaped += "\\t";
        else if (byte < 0x20 || byte == 0x7f)
            escaped += fmt::format("\\x{:02x}", byte);
        else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {
            // U+0080 to U+009F, which terminals obey as well.
            escaped += fmt::format("\\x{:02x}", next);
            ++position;
        } else
            escaped += character;
    }
    return escaped;
}

Logger::Logger(std::shared_ptr<spdlog::logger> sink, std::string file) : sink_(std::move(sink)), file_(std::move(file))
{
}

Logger Logger::onBehalfOf(const LogSource& source) const
{
    Logger logger = inFile(source.file);
    logger.line_ = source.line;
    return logger;
}

Logger Logger::inFile(std::string_view file) const
{
    return {sink_, std::string(file)};
}

void Logger::info(std::string_view message, std::string_view function, int line) const
{
    write(*sink_, spdlog::level::info, file_, message, function, line_.value_or(line));
}

void Logger::warning(std::string_view message, std::string_view function, int line) const
{
    write(*sink_, spdlog::level::warn, file_, message, function, line_.value_or(line));
}

void Logger::error(std::string_view message, std::string_view function, int line) const
{
    write(*sink_, spdlog::level::err, file_, message, function, line_.value_or(line));
}

void Logger::flush() const
{
    sink_->flush();
}

} // namespace vantro
