#pragma once

#include <string>
#include <vector>

namespace vantro::lab {

/// Makes the process one that can own a TokenBed: unless the preloaded libraries of the emulation are there already,
/// the program starts over under them, with the same arguments. To be the first thing in main(). Children inherit them.
///
/// The order is: a sanitizer's runtime if the program has one, our own socket names, umockdev, `furtherLibraries`.
/// Throws std::system_error when the program can't be started again.
void reexecuteUnderPreload(char** argv, const std::vector<std::string>& furtherLibraries = {});

/// Whether this process runs under the emulation's libraries.
[[nodiscard]] bool isUnderPreload();

} // namespace vantro::lab
