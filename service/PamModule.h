#pragma once

#include <filesystem>
#include <optional>

#include "service/RequestFailure.h"

namespace vantro::service {

/// Says why libpam could not load the module; nothing when it could, as far as its file tells: a regular file, an ELF
/// shared object for this machine that has the entry points of an authentication module. Nothing of it is run. Any
/// thread.
[[nodiscard]] std::optional<RequestFailure> moduleFailure(const std::filesystem::path& module);

} // namespace vantro::service
