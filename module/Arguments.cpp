#include "Arguments.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <security/pam_ext.h>
#include <syslog.h>

namespace vantro::module {
namespace {

constexpr unsigned long longestWait = 120;

/// False for what is no number from 0 to longestWait.
bool readWait(const char* text, std::uint32_t& seconds)
{
    if (*text < '0' || *text > '9')
        return false;
    char* end = nullptr;
    errno = 0;
    const unsigned long number = std::strtoul(text, &end, 10);
    if (errno != 0 || *end != '\0' || number > longestWait)
        return false;
    seconds = static_cast<std::uint32_t>(number);
    return true;
}

bool read(const char* argument, Arguments& arguments)
{
    constexpr char wait[] = "wait=";
    if (std::strncmp(argument, wait, sizeof wait - 1) == 0)
        return readWait(argument + sizeof wait - 1, arguments.waitSeconds);
    if (std::strcmp(argument, "remote=ignore") == 0)
        arguments.remote = Arguments::Remote::Ignore;
    else if (std::strcmp(argument, "debug") == 0)
        arguments.isDebug = true;
    else
        return false;
    return true;
}

} // namespace

Arguments argumentsOf(pam_handle_t* pam, int count, const char** arguments)
{
    Arguments result;
    for (int index = 0; index < count; ++index)
        if (!read(arguments[index], result))
            pam_syslog(pam, LOG_ERR, "The argument \"%s\" is not known and has no effect.", arguments[index]);
    return result;
}

} // namespace vantro::module
