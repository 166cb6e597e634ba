#include "LoggerManager/DurabilityWarning.h"

namespace vantro {

void warnUnlessDurable(const Logger& logger, const std::filesystem::path& path, const Replacement& replacement,
                       std::string_view function, int line)
{
    if (replacement.isDone && !replacement.isDurable())
        logger.warning(path.string() +
                           " is in place, but may not outlast a loss of power: " + replacement.error.message() + ".",
                       function, line);
}

} // namespace vantro
