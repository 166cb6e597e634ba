#pragma once

#include <cstdlib>
#include <string_view>

namespace vantro::fuzz {

/// What a fuzzer is: has one input read and expects of the result what must hold for any bytes.
void look(std::string_view bytes);

/// Ends the fuzzer, which keeps the input, where it does not hold.
inline void expect(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace vantro::fuzz
