#pragma once

#include <cerrno>
#include <system_error>

namespace vantro {

/// What errno says right after a call that failed.
[[nodiscard]] inline std::error_code lastError()
{
    return {errno, std::generic_category()};
}

} // namespace vantro
