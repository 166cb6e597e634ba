#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace spdlog {
class logger;
}

namespace vantro {

/// Where a source file names itself to what logs for it.
struct LogSource
{
    // NOLINTNEXTLINE(google-explicit-constructor): named in place, so that the line is that of the naming.
    LogSource(const char* name, int ownLine = __builtin_LINE()) : file(name), line(ownLine) {}

    const char* file;
    int line;
};

/// Writes log records, one line each: TIME LEVEL FILE:LINE FUNCTION MESSAGE, separated by single spaces, the time in
/// UTC with milliseconds. Control characters in a message are escaped, so a message never breaks its line. A cheap
/// handle; copies write to the same log. Any thread. Every record is handed to the operating system before the call
/// returns.
class Logger
{
  public:
    /// A logger that names `file` as the source of its records: the file that they are logged from, without extension;
    /// in the tool and the libraries with its folders below the room.
    [[nodiscard]] Logger inFile(std::string_view file) const;

    /// The same for what is logged elsewhere in that file's name: its records carry the line where the file is named.
    [[nodiscard]] Logger onBehalfOf(const LogSource& source) const;

    /// `function` is the name of the operation that logs, with its argument labels; `line` is the caller's own.
    void info(std::string_view message, std::string_view function, int line = __builtin_LINE()) const;
    void warning(std::string_view message, std::string_view function, int line = __builtin_LINE()) const;
    void error(std::string_view message, std::string_view function, int line = __builtin_LINE()) const;

    void flush() const;

  private:
    friend class LoggerManager;
    Logger(std::shared_ptr<spdlog::logger> sink, std::string file);

    std::shared_ptr<spdlog::logger> sink_;
    std::string file_;
    /// The line of every record; absent for the caller's own.
    std::optional<int> line_;
};

/// The text with every control character written as an escape (\n, \t, \x1b) and every backslash doubled.
[[nodiscard]] std::string escapedForLog(std::string_view text);

} // namespace vantro
