#pragma once

#include <filesystem>
#include <string_view>

#include "LoggerManager/Logger.h"
#include "foundation/DurableFile.h"

namespace vantro {

/// Notes in the log that a file is in place and may not outlast a loss of power; nothing for any other outcome.
/// `function` and `line` are the caller's, as for a Logger's own operations. Any thread.
void warnUnlessDurable(const Logger& logger, const std::filesystem::path& path, const Replacement& replacement,
                       std::string_view function, int line = __builtin_LINE());

} // namespace vantro
