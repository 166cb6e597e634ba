#pragma once

#include <filesystem>
#include <string>

#include "LoggerManager/Logger.h"

namespace vantro {

/// Hands out the process's logger. One file a program, kept small by rotation, and standard error.
class LoggerManager
{
  public:
    /// Where the records of a program go.
    enum class Destination
    {
        /// $XDG_STATE_HOME/vantro-standalone/IDENTIFIER.log and standard error.
        FileAndStandardError,
        /// Standard error alone, which the journal keeps for a system service.
        StandardError
    };

    /// The logger of `identifier`, made on the first call and the same one afterwards. A log file that can't be opened
    /// is reported on standard error, and the records go there alone. Any thread.
    static Logger logger(const std::string& identifier, Destination destination = Destination::FileAndStandardError);

    /// The log file of `identifier`: below $XDG_STATE_HOME, or ~/.local/state where that is not set.
    static std::filesystem::path logFile(const std::string& identifier);
};

} // namespace vantro
